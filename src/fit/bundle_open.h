// What the distances of a network leave open: coordinates that can change without any distance changing, to
// first order. An object point that two distances lead to is such a one, and a station that sees too few
// points.
#pragma once

#include <functional>

#include "fit/bundle_network.h"

namespace corvinade::fit {

// Fills work.Open from the rows of the last iteration, and where anything is open the cofactors anew: the
// inverse of a matrix that has none has spoilt those of the other coordinates too. With nothing open the
// cofactors stay.
//   stations   of the network that `work` was prepared for
//   goOn       called again and again in the search of a large network; what it returns does not matter
// From the normal matrix: the object points are taken out block by block with the pseudo-inverse of their 3
// by 3 blocks, the stations' matrix that is left is taken apart with diagonal pivots; a direction is open
// where less than 1e-11 of its own observations remains.
void FindOpenCoordinates(int stations, BundleWork& work, const std::function<void()>& goOn);

// Is the coordinate of a column open?
bool IsOpenCoordinate(const BundleWork& work, int column);

}  // namespace corvinade::fit
