// Which points of a network are adjusted, and between which of them its distances are.
#pragma once

#include "bundle/network.h"
#include "core/rooms.h"
#include "fit/bundle_network.h"

namespace corvinade::bundle {

// Percent of the object points to 1st, 1 + step-th, ... with step = Int(100 / percent) and
// Int(percent n / 100) of them, and the points of each distance by their names.
//   percent   1 to 100
// Throws PlatformError where the unknowns are more than a matrix is held for, naming how many there may be.
BundleWork PrepareBundle(const BundleRecord& network, double percent);
inline constexpr int kMostUnknowns = 12000;  // a matrix of 1.2 GB

}  // namespace corvinade::bundle
