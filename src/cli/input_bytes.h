// The bytes of an input of a command: a file, a pipe, or standard input.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "cli/named_files.h"
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

// Reads a stream, so that it is as good as a file from then on (core/held_streams.h); nothing where `path` is
// a file, or empty, or is held already. Throws as ReadInput does.
void HoldStream(const std::string& path, std::istream* in);

// "", or which two of the inputs of a command are standard input.
std::string StandardInputTwice(const std::vector<NamedFile>& inputs);

// How messages call it: its path, and "standard input".
std::string InputName(const std::string& path);

}  // namespace corvinade::cli
