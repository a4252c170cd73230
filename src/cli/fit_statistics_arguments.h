// The options of `corvinade-cli fit` that ask how far its result can be trusted.
#pragma once

#include <string>

#include "cli/fit_options.h"
#include "core/rooms.h"

namespace CLI {
class App;
}

namespace corvinade::cli {

void AddStatisticsOptions(CLI::App& fit, FitOptions& o);

// "" or what goes with points that coincide alone, and with which norms.
std::string CheckStatisticsOptions(const FitOptions& o);

}  // namespace corvinade::cli
