// Places to look for an exact norm's optimum from, other than where the norm's loop has ended.
#pragma once

#include <vector>

#include "engine/exact_place.h"

// The least-squares solution in closed form, and those of three points each that have the least objective:
// one gross error, or two names swapped, can lead the loop to a wrong place, and three good points do not
// know of it. Always the same triples. Empty where a rotation or a translation is held.
//   place      is left at parameters of its own choice, and so is the job
//   objective  of the norm
//   most       starts at most
std::vector<ParameterArray> StartsByPoints(const NormFit& fit, ExactPlace& place,
                                           double (*objective)(const LinearRows&), int most);
