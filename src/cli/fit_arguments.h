// The options of `corvinade-cli fit`.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "cli/fit_batch.h"
#include "cli/fit_options.h"
#include "core/rooms.h"

namespace CLI {
class App;
}

namespace corvinade::cli {

// The options as they were typed; what more than one of them says goes into Options afterwards.
struct TableSwitches {
    std::string Format, Columns, Comment, Delimiter, Decimal, Unit, AngleUnit, Encoding;
    std::int64_t Skip = 0;
};
struct FitSwitches {
    FitOptions Options;
    std::array<TableSwitches, 3> Tables;  // of both files, of START, of TARGET
    BatchOptions Batch;                   // where its list is not empty, the command is one of many fits
    bool Yes = false, No = false, Json = false, Csv = false;
};

// Adds the command to the program. What it is given goes to `s` when the program's arguments are parsed.
CLI::App* AddFit(CLI::App& app, FitSwitches& s);

// Completes s.Options. Gives "" or what does not go together.
std::string TakeFitSwitches(FitSwitches& s);

}  // namespace corvinade::cli
