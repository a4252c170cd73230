// The least sum of squares that any transformation of a kind reaches, by closed forms. Nothing
// of it comes from the program.
#pragma once

#include <array>
#include <vector>

namespace optimum {

using Real = long double;
using Point = std::array<Real, 3>;

enum class Kind { Rigid, Similarity, Affine };

// Of proper rigid and similarity transformations with a scale of 0 or more by unit quaternions (Horn 1987),
// of affine ones by the linear normal equations, with the directions left out along which the start points
// spread by no more than the rounding of their coordinates to doubles. Weights are 1.
Real LeastSum(Kind kind, const std::vector<Point>& start, const std::vector<Point>& target);

// The same for similarities whose scale is below 0.
Real LeastMirroredSum(const std::vector<Point>& start, const std::vector<Point>& target);

}  // namespace optimum
