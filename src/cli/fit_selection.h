// Which parameters and coordinates of a fit take part, from the options of the command line.
#pragma once

#include <string>

#include "cli/fit_options.h"
#include "core/rooms.h"

namespace corvinade::cli {

// Sets Job.ParamText from the preset and the held values, Job.UseFlags from what is left out, the seed points
// and the start values of the user's own. Gives "" or what is wrong with the options.
std::string SelectParameters(const FitOptions& options);

// The names of the parameters that can be held, in the order of their numbers, 1 to 13.
const char* HeldParameterName(int parameter);

}  // namespace corvinade::cli
