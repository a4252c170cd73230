// Places to look for an exact norm's optimum from, other than where the norm's loop has ended.
#pragma once

#include <vector>

#include "fit/exact_place.h"

namespace corvinade::fit {

// The least-squares solution, its turns by the rotations of a cube, and the solutions of three points each,
// on both sides of the mirror where a scale floats: one gross error, or two names swapped, can lead the loop
// to a wrong place, and three good points do not know of it. They depend on the points and not on their
// order. Empty where a rotation or a translation is held.
//   place      is left at parameters of its own choice; the job's are put back
//   most       starts at most; the least-squares solution comes first
std::vector<Parameters> StartsByPoints(const NormRun& fit, const ExactPlace& place, int most);

}  // namespace corvinade::fit
