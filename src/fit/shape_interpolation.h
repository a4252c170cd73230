// How good it is to interpolate between the rows of a shape's profile.
#pragma once

#include <limits>

#include "fit/arrays.h"

namespace corvinade::fit {

inline constexpr int kFewestRowsForTest = 5;

// How far the height of a row would be off if it were interpolated between its neighbours. The points that a
// job is measured between are twice as dense, and the error of a chord goes with the square of its length: so
// a quarter of this is what the shape itself may be off by.
struct InterpolationTest {
    // By row: delta1 of the row before it, mm; 0 in the first four, and where the neighbours have the same
    // radius.
    Column Deltas;
    // The largest and the smallest delta1, mm. A dish has delta1 above 0 everywhere, a dome below.
    double Biggest = -std::numeric_limits<double>::infinity();
    double Smallest = std::numeric_limits<double>::infinity();
    double Average = 0;  // of the quarters; mm
};

// Of a profile with radius and height in mm (shape.h). Require: kFewestRowsForTest rows.
InterpolationTest TestInterpolation(const Matrix& shape);

}  // namespace corvinade::fit
