// What pairs say to a plain fit by least squares: the sums of their coordinates and of the products of these.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "fit/exact_sums.h"

namespace corvinade::fit {

inline constexpr int kPairSums = 27;  // six coordinates of a pair, and 21 products of two of them
inline constexpr int kStandIns = 12;

struct PairMoments {
    std::uint64_t Count = 0;  // pairs
    ExactSums Sums{kPairSums};
};

// Coordinates x y z of the start, then of the target; finite, and not beyond 1e100 mm.
void AddPair(const std::array<double, 6>& pair, PairMoments& moments);

// Twelve pairs with the mean and the second moments of all, divided by their number: every sum of squares
// of a linear map is that of all pairs times 12 / Count. The lower triangle of the covariance (Cholesky, in
// twice the digits of a double) stands along each of its columns, forwards and back. Columns of the six
// coordinates.
std::array<std::array<double, kStandIns>, 6> StandInPairs(const PairMoments& moments);

}  // namespace corvinade::fit
