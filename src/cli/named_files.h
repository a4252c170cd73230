// The files that a command line names: no output may stand on what it is made from, or on another output.
#pragma once

#include <string>
#include <vector>

#include "core/rooms.h"

namespace corvinade::cli {

struct NamedFile {
    const char* What;  // as the help names it: "START", "--report"
    std::string Path;  // "" = not given
};

// "", or which two are one file, whatever their paths look like: a file that does not exist yet is told by
// where it would stand.
std::string FilesApart(const std::vector<NamedFile>& inputs, const std::vector<NamedFile>& outputs);

}  // namespace corvinade::cli
