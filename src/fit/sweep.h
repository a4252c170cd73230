// The sweep of a large matrix in blocks, for MatrixInverse.
#pragma once

#include <functional>

#include "fit/lanes.h"
#include "fit/matrix.h"

namespace corvinade::fit {

// From this size on the blocks are worth their overhead.
inline constexpr int kBlockedFrom = 64;

// Replaces the first n rows and columns of B by their inverse, every bit as the plain sweep of MatrixInverse
// leaves it. Each element takes the same updates in the same order, one product and one sum at a time; only
// the order among the elements differs, so that the matrix is read once for many steps.
//   goOn   null, or asked again and again, every few milliseconds of work: false ends the sweep, B is then
//          neither the matrix nor its inverse
// Gives false where it was ended.
bool BlockedSweep(MatrixView B, int n, VectorWidth width, const std::function<bool()>* goOn);

}  // namespace corvinade::fit
