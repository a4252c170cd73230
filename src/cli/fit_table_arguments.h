// The options of `corvinade-cli fit` that say how its files are written.
#pragma once

#include <string>

#include "cli/fit_arguments.h"
#include "core/rooms.h"

namespace corvinade::cli {

// For both files, and behind --start- or --target- for one of them.
void AddTableOptions(CLI::App& fit, FitSwitches& s);

// Completes s.Options. Gives "" or what does not go together.
std::string TakeTables(FitSwitches& s);

}  // namespace corvinade::cli
