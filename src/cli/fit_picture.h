// The picture of the fitted points in the page of a fit.
#pragma once

#include <string>

#include "cli/fit_options.h"
#include "core/rooms.h"

namespace corvinade::cli {

// A section of the page: the pairs with their deviations seen from above one corner, and what is to be seen.
// Empty for the robot models, whose deviations are no differences of two points.
std::string FitPictureSection(const FitOptions& options);

}  // namespace corvinade::cli
