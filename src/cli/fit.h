// `corvinade-cli fit`: from two point files, or a job, to a transformation.
#pragma once

#include <iosfwd>

#include "cli/fit_options.h"
#include "core/rooms.h"

namespace corvinade::cli {

// Runs the fit. The result goes to `out`, messages go to `err`. Gives the exit status.
//   colour        the table may use colours
//   showProgress  long work tells on `err` how far it is
int RunFit(FitOptions options, std::ostream& out, std::ostream& err, bool colour, bool showProgress);

}  // namespace corvinade::cli
