// The options of `corvinade-cli fit`.
#pragma once

#include <string>

#include "cli/fit_options.h"
#include "core/rooms.h"

namespace CLI {
class App;
}

namespace corvinade::cli {

// The options as they were typed; what more than one of them says goes into Options afterwards.
struct FitSwitches {
    FitOptions Options;
    std::string Decimal;
    bool Yes = false, No = false, Json = false, Csv = false;
};

// Adds the command to the program. What it is given goes to `s` when the program's arguments are parsed.
CLI::App* AddFit(CLI::App& app, FitSwitches& s);

// Completes s.Options. Gives "" or what does not go together.
std::string TakeFitSwitches(FitSwitches& s);

}  // namespace corvinade::cli
