// What pairs say to a plain fit by least squares: the sums of their coordinates and of the products of these.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "fit/exact_sums.h"

namespace corvinade::fit {

inline constexpr int kPairSums = 27;  // six coordinates of a pair, and 21 products of two of them
inline constexpr std::size_t kMostStandIns = 1000;

struct PairMoments {
    std::uint64_t Count = 0;  // pairs
    ExactSums Sums{kPairSums};
};

// Coordinates x y z of the start, then of the target; finite, and not beyond 1e100 mm.
void AddPair(const std::array<double, 6>& pair, PairMoments& moments);

// Pairs with the mean and the second moments of all, divided by their number: every sum of squares of a
// linear map is that of all pairs times their number by Count. There are as many as Count, and at most
// kMostStandIns: what a fit makes of its redundancy it makes of theirs. The lower triangle of the covariance
// (Cholesky, in twice the digits of a double) stands along waves that are at right angles to each other.
// Columns of the six coordinates.
std::array<std::vector<double>, 6> StandInPairs(const PairMoments& moments);

}  // namespace corvinade::fit
