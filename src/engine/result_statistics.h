// How far the job's result can be trusted (fit/adjustment_statistics.h).
#pragma once

#include <array>
#include <optional>
#include <string>

#include "core/measurement_sigmas.h"
#include "core/rooms.h"
#include "fit/adjustment_statistics.h"

namespace corvinade::engine {

// The a-priori standard deviations of the job's pairs. `View` looks into this. Where all pairs of a side have
// the same, they count as one for all, whichever way the job has them.
class JobSigmas {
public:
    explicit JobSigmas(const MeasurementSigmas& sigmas);
    PairSigmas View() const;
    bool Any() const { return sigmas_.Any(); }

private:
    MeasurementSigmas sigmas_;
    SideAccuracy start_, target_;
};

// Why a fit under the job's a-priori standard deviations cannot be, as a message; "" where it can. Not on to
// the true optimum of another norm, with the distance and the tool model, a shape, and the runs of Monte
// Carlo; nor where they are those of fewer points than there are pairs.
std::string WhyNotWithSigmas();

// The message of a pair whose coordinates in use get no weight from their sigmas.
std::string PairHasNoWeight(int pair);

// Of the last calculation. Nothing where there is none of this job, where it did not converge or was not by
// least squares, with the distance and the tool model and with shapes. Parameters that have no sigma there
// (angles at their lock, turns that the deviations do not depend on) are undetermined here too.
std::optional<AdjustmentStatistics> StatisticsOfResult(const TestLevels& levels);

// What has to be said beside the numbers, in one sentence: missing redundancy, parameters that are not told
// apart, residuals of rounding. "" where there is nothing.
std::string NoteOfStatistics(const AdjustmentStatistics& statistics);

// A coordinate of a pair, both from 1 on; Pair 0: none.
struct Coordinate {
    int Pair = 0, Axis = 0;
};

// The coordinate in use with the largest standardised residual above the critical value. None where the
// redundancy would fall below 3 without it.
Coordinate WorstOutlier(const AdjustmentStatistics& statistics);

// What the test says of a coordinate: "ok", "outlier", "no control"; out of use "out of use", "would not
// fit".
std::string VerdictOf(const AdjustmentStatistics& statistics, int pair, int axis);

}  // namespace corvinade::engine
