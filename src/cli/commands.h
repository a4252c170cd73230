// The command line: its commands, options and exit statuses.
#pragma once

#include <iosfwd>

#include "core/rooms.h"

namespace corvinade::cli {

// Runs one command line and gives its exit status.
//   terminal   standard output is a terminal: colours, unless NO_COLOR is set
//   progress   standard error is a terminal: long work tells how far it is
int RunCommandLine(int argc, const char* const* argv, std::istream& in, std::ostream& out, std::ostream& err,
                   bool terminal, bool progress);

}  // namespace corvinade::cli
