// Distances between all pairs of identical points in the two systems. n points have n (n - 1) / 2 pairs, so
// none of them is kept: a pair is two numbers of points, and its distances come from their coordinates
// whenever they are asked for, the same bits each time.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "core/rooms.h"

namespace corvinade::analysis {

// The identical points as they were when they were taken, element 0 unused; mm.
struct DistancePoints {
    std::vector<std::string> Names{""};
    std::array<std::vector<double>, 3> From{{{0}, {0}, {0}}};  // x, y, z in the start system
    std::array<std::vector<double>, 3> To{{{0}, {0}, {0}}};    // in the target system

    int Count() const { return static_cast<int>(Names.size()) - 1; }
    std::int64_t Pairs() const { return std::int64_t{Count()} * (Count() - 1) / 2; }
    bool operator==(const DistancePoints&) const = default;
};

// Takes the identical points of the job, without data none.
//   transformed   the start points are those after the transformation, otherwise the raw ones
// Reads Job.
DistancePoints TakeDistancePoints(bool transformed);

// A pair as it is shown and written; mm. Distances are computed in 64 bits and kept in 32.
struct TrumpetPair {
    float FromDistance = 0;  // in the start system
    float ToDistance = 0;    // in the target system
    float DeltaS = 0;        // the difference of the two, target less start, rounded once
    bool operator==(const TrumpetPair&) const = default;
};

// The pair of points i and j, which are numbers from 1 and not equal. The other direction has the same
// numbers.
TrumpetPair PairOfPoints(const DistancePoints& points, int i, int j);

// The pairs of point i with the points `first` to the last, in that order.
//   from, to   room for Count() - first + 1 distances each; mm
void DistancesOfPoint(const DistancePoints& points, int i, int first, double* from, double* to);

// The smallest and largest of a point, 32 bits each. A value that no pair has beaten stays as it begins, with
// partner 0: differences beyond about 1e8 mm and scales beyond 1e9 are no extremes.
struct DistanceExtremes {
    float MaxDelta = -1e8F, MinDelta = 1e9F;  // mm
    float MaxScale = -1e9F, MinScale = 1e9F;
    int MaxDeltaAt = 0, MinDeltaAt = 0, MaxScaleAt = 0, MinScaleAt = 0;  // partners; of equal ones the first
    float SumAbs = 0;                                                    // of |delta s|, mm
    float SumScale = 0;
};

// Asked with the share of the work that is done, 0 to 1; false ends the work.
using WorkGoesOn = std::function<bool(double share)>;

// The extremes of each point over its pairs with all others, in the order of the points; element 0 unused.
// The scale of a pair is the target distance by the start distance, to which 1e-10 mm is added so that points
// that coincide in the start system do no harm. False when `goOn`, asked before each point, ended it.
bool MeasurePoints(const DistancePoints& points, std::vector<DistanceExtremes>& rows,
                   const WorkGoesOn& goOn = {});

// What the trumpet plot spans: pairs whose three numbers are finite; mm.
struct TrumpetRange {
    std::int64_t Pairs = 0;
    float XMax = 0;            // the largest target distance
    float YMin = 0, YMax = 0;  // the smallest and largest delta s
    bool operator==(const TrumpetRange&) const = default;
};
// False when `goOn` ended it; `range` is then that of the pairs up to there.
bool RangeOfPairs(const DistancePoints& points, TrumpetRange& range, const WorkGoesOn& goOn = {});

}  // namespace corvinade::analysis
