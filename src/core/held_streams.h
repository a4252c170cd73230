// What was read of inputs that can be read once only, standard input and pipes: whoever reads such a path as
// a file reads this, as often as it likes.
#pragma once

#include <map>
#include <string>

#include "core/files.h"
#include "core/rooms.h"

namespace corvinade::core {

struct HeldStreamsRecord {
    std::map<std::string, FileBytes> Bytes;  // by the path that the user gave
};
inline HeldStreamsRecord HeldStreams;

// The bytes of a path that are held; null where none are, as of every file.
inline const FileBytes* HeldStream(const std::string& path) {
    const auto found = HeldStreams.Bytes.find(path);
    return found == HeldStreams.Bytes.end() ? nullptr : &found->second;
}

}  // namespace corvinade::core
