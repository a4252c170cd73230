// A file that is read piece by piece: also a pipe, or a file larger than memory.
#pragma once

#include <cstddef>
#include <cstdio>
#include <string>

#include "core/rooms.h"

namespace corvinade::core {

// Where a stream is held, see core/held_streams.h, it gives that.
// Throws PlatformError where the file is missing, a folder or unreadable.
class FileSource {
public:
    explicit FileSource(const std::string& path);
    ~FileSource();
    FileSource(const FileSource&) = delete;
    FileSource& operator=(const FileSource&) = delete;

    // Up to `most` bytes, fewer at the end alone; 0 behind it. Throws PlatformError when the disk refuses.
    std::size_t Read(char* to, std::size_t most);

private:
    std::string path_;
    std::FILE* file_ = nullptr;
    std::size_t at_ = 0;  // of a stream that is held
};

// Is there something at this path that is neither a file nor a folder: a pipe, a terminal, a device?
bool IsPipe(const std::string& path);

}  // namespace corvinade::core
