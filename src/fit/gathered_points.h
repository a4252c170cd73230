// The identical points as plain columns of numbers, gathered once for many passes and runs.
#pragma once

#include <array>
#include <span>

#include "fit/arrays.h"
#include "fit/lanes.h"

namespace corvinade::fit {

// Coordinates are taken about a point inside each cloud. Hall coordinates near 1e6 mm with deviations
// near 1e-3 mm would otherwise cost half of the digits in the products of a fit.
struct GatheredPoints {
    int Count = 0;   // identical points
    int Padded = 0;  // entries a column: Count, then points of weight 0 up to whole groups of lanes
    Vec3 StartCentre, TargetCentre;          // mm, subtracted from the coordinates
    std::array<LaneArray, 3> Start, Target;  // x, y, z; mm
    bool AllInUse = true;                    // every weight is 1; the columns Weight are then empty
    bool OnlyInUse = true;                   // no weight is other than 0 and 1
    std::array<LaneArray, 3> Weight;         // one for each coordinate
    bool ByRows = false;            // fits take the rows of the points even where their moments would do
    std::array<LaneArray, 9> Pose;  // G(1,1), G(1,2), ... of the target poses; only with poses
};

// Pairs as they stand outside, element 0 the first; mm. All columns are as long.
struct PairColumns {
    std::array<std::span<const double>, 3> Start, Target;  // x, y, z
    // The angles A, B, C (rad) of the target poses, by columns, of fits with a tool vector; a pair behind
    // their end counts as turned by 0.
    std::array<std::span<const double>, 3> PoseAngles;
};

// Gathers all pairs; their weights come apart.
//   P      weights, three entries a pair; what has weight 0 is left out of the choice of centres
//   poses  gathers the orientation matrices Rz(A) Ry(B) Rx(C) of the poses as well
void GatherPoints(const PairColumns& pairs, const Column& P, bool poses, GatheredPoints& points);

// Takes the weights of points that are gathered, three entries a pair.
void SetWeights(const Column& P, GatheredPoints& points);

}  // namespace corvinade::fit
