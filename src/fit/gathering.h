// The steps of GatherPoints, for who has the pairs in columns of another make and would only copy them.
#pragma once

#include <array>
#include <functional>
#include <span>

#include "fit/arrays.h"
#include "fit/gathered_points.h"

namespace corvinade::fit {

using PointAt = std::function<Vec3(int)>;  // of pair 1 to Count, mm

// Sizes the columns for `count` pairs and chooses the centres; what has weight 0 is left out. The columns are
// to be filled next: entry k - 1 of pair k, less the centre; the entries behind the last pair are 0 already.
void BeginGathering(int count, const PointAt& start, const PointAt& target, const Column& P,
                    GatheredPoints& points);

// The orientation matrices of the poses; a pair behind the end of their angles (rad) counts as turned by 0.
void GatherPoses(const std::array<std::span<const double>, 3>& angles, GatheredPoints& points);

}  // namespace corvinade::fit
