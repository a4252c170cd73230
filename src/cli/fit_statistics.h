// How far the result of a fit can be trusted, for the outputs of `corvinade-cli fit`.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "cli/fit_options.h"
#include "core/job.h"
#include "core/rooms.h"
#include "engine/result_statistics.h"

namespace corvinade::cli {

// A coordinate that its test has taken out of the fit.
struct TakenOut {
    std::string Name;
    int Axis = 0;  // 1 to 3
    double Standardized = 0, CriticalValue = 0;
};

struct FitStatistics {
    std::optional<AdjustmentStatistics> Of;  // nothing: there are none of this fit
    std::vector<TakenOut> Snooped;
};

TestLevels LevelsOf(const FitOptions& options);

// Of JSON without --statistics, for an output of a million points takes long enough without them.
inline constexpr int kMostPairsUnasked = 10000;

// Do the outputs have statistics?
bool WantsStatistics(const FitOptions& options);

// The value of the member `statistics`, two blanks deep; written point by point.
void WriteStatisticsJson(const FitOptions& options, const FitStatistics& statistics, std::ostream& out);

// The blocks of the table. Of more coordinates, and of more transformed points, than `most` the worst and the
// first ones are shown.
void WriteStatisticsTable(const FitOptions& options, const FitStatistics& statistics, std::ostream& out,
                          bool colour, std::size_t most = std::numeric_limits<std::size_t>::max());

}  // namespace corvinade::cli
