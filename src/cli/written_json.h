// `--json` of the commands whose result is files: which ones there are, and what was noticed on the way.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "cli/fit_options.h"
#include "core/rooms.h"

namespace corvinade::cli {

// A file that could not be done, and why.
struct FileLeft {
    std::string Path, Why;
};

// Prints the object for `corvinade-cli COMMAND JOB`: what has been written, what has been left, the notes.
// kDone, or kRefused with the reason on `err` where standard output does not take it.
int TellWritten(const std::string& command, const std::string& job, const std::vector<std::string>& written,
                std::ostream& out, std::ostream& err, const std::vector<FileLeft>& left = {});

}  // namespace corvinade::cli
