// The axes of a set of points, each with its own last digits.
#pragma once

#include <array>
#include <vector>

#include "fit/arrays.h"
#include "fit/lanes.h"

namespace corvinade::fit {

// Of sets as thin as a sheet of paper too: what a set stands off a line or plane by is taken along its own
// axes, since the products of its coordinates have lost it (their error is that of the longest axis).
struct PrincipalAxes {
    Vec3 Middle;   // mm
    Mat3 Axes;     // a rotation matrix; columns are unit vectors, the longest axis first
    Vec3 Squares;  // sums of squares about the middle along them, mm^2
};

//   set    columns of coordinates, x, y, z; mm
//   pairs  from 0, those that count; where there are none all sums are 0
PrincipalAxes AxesOf(const std::array<LaneArray, 3>& set, const std::vector<int>& pairs);

}  // namespace corvinade::fit
