// The bytes of an input of a command: a file, a pipe, or standard input.
#pragma once

#include <iosfwd>
#include <string>

#include "core/files.h"
#include "core/rooms.h"

namespace corvinade::cli {

inline constexpr const char* kStandardInput = "-";

// Is this no file that can be read twice: standard input ("-"), or a pipe as /dev/stdin and those that a
// shell makes?
bool IsStream(const std::string& path);

// All of an input. `in` is what "-" stands for. Throws PlatformError as ReadFile does, and where a stream
// does not end within 4 GB.
FileBytes ReadInput(const std::string& path, std::istream* in);

// How messages call it: its path, and "standard input".
std::string InputName(const std::string& path);

}  // namespace corvinade::cli
