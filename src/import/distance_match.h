// Distances that both sets of points have, and the transformation that three of them give. Pure.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "core/point_set.h"
#include "core/rooms.h"
#include "fit/arrays.h"
#include "fit/parameters.h"
#include "import/distance_search.h"

namespace corvinade::import {

// A distance of the start set that occurs in the target set as well. The two lengths are kept as text, whose
// 15 digits decide which is larger.
struct DistancePair {
    PointPair Start, Target;
    std::string Difference, NextNearest;  // mm
};

// "", or why the table of the distances between so many points is not made: it would not fit into memory.
//   label  what the message calls the file
std::string StartTableRefusal(std::int64_t points, const char* label);
std::string TargetTableRefusal(std::int64_t points, const char* label);

// As SearchDistances finds them. Of the target set the first `targetPoints` go into the table.
std::vector<DistancePair> FindDistancePairs(const PointSet& start, const PointSet& target,
                                            std::int64_t targetPoints, float etta,
                                            const DistanceRowCall& beforeRow = {});

// What three of them give, those that stand clearest of all other distances. Which end of a distance is which
// does not show, but the middle is the same either way.
struct DistanceSeeds {
    std::array<Vec3, 3> Start, Target;  // the middles, mm
    Parameters Raw;                     // the transformation of these, without scales
};
// Require: three pairs at least.
DistanceSeeds SeedsOf(const std::vector<DistancePair>& pairs, const PointSet& start, const PointSet& target);

}  // namespace corvinade::import
