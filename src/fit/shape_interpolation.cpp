// How good it is to interpolate between the rows of a shape's profile.
#include "fit/shape_interpolation.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "fit/require.h"

namespace corvinade::fit {

namespace {

// Of row i - 1; nothing where its neighbours have the same radius.
std::optional<double> Delta1(const Matrix& shape, int i) {
    const double r = shape(i, 1), z = shape(i, 2), r1 = shape(i - 1, 1), z1 = shape(i - 1, 2),
                 r2 = shape(i - 2, 1), z2 = shape(i - 2, 2);
    const double delta = (z - z2) * (r1 - r2) / (r - r2) + z2 - z1;
    return std::isfinite(delta) ? std::optional<double>(delta) : std::nullopt;
}

}  // namespace

InterpolationTest TestInterpolation(const Matrix& shape) {
    Require(shape.Rows >= kFewestRowsForTest && shape.Columns >= 2);
    InterpolationTest test;
    test.Deltas.assign(static_cast<std::size_t>(shape.Rows) + 1, 0);
    double sum = 0;
    for (int i = kFewestRowsForTest; i <= shape.Rows; ++i) {
        const std::optional<double> delta = Delta1(shape, i);
        if (!delta) continue;
        test.Deltas[static_cast<std::size_t>(i)] = *delta;
        test.Biggest = std::max(test.Biggest, *delta);
        test.Smallest = std::min(test.Smallest, *delta);
        sum += *delta / 4;
    }
    if (test.Biggest < test.Smallest) test.Biggest = test.Smallest = 0;  // no row could be tested
    test.Average = sum / (shape.Rows - 1);
    return test;
}

}  // namespace corvinade::fit
