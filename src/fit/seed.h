// Start values of the adjustment: a closed solution from three seed points.
#pragma once

#include <array>

#include "fit/arrays.h"
#include "fit/parameters.h"

namespace corvinade::fit {

// The pairs that a closed solution stands on, elements 1 to 3.
struct SeedPoints {
    std::array<int, 4> Pair{};          // 0: there is none, and the point counts as 0
    std::array<Vec3, 4> Start, Target;  // mm
    // The target's axes as its seed points have them; these stay where they are while Start may be moved.
    std::array<Vec3, 3> Reference;
    bool ScalesAreOne = false;  // no raw scales are wanted
};

// The target's origin and a point on its X and on its Y axis, as the frame on its seed points (elements 1 to
// 3, mm) has them.
std::array<Vec3, 3> ReferenceInFrame(std::array<Vec3, 4> target);

// Transformation of the seed points, without iteration: translation in mm, rotation in rad, one scale an
// axis. Of seed points that lie on a line or on each other, or are fewer than three, it is a poor start and
// no failure. The other parameters stay as they are.
void RawSolution(const SeedPoints& seeds, Parameters& parameters);

}  // namespace corvinade::fit
