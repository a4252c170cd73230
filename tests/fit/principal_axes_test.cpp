// Axes of sets of points, of those too that stand off a plane or line by next to nothing.
#include "fit/principal_axes.h"

#include <gtest/gtest.h>

#include <cmath>

namespace corvinade::fit {

namespace {

// Two to the third corners a, b, c from a middle far off, turned by the rotation of sevenths: its sums along
// the axes are known, and there are none of products.
struct Box {
    std::array<LaneArray, 3> Set;
    std::vector<int> Pairs;

    Box(double a, double b, double c) {
        const double R[3][3] = {{2, 3, 6}, {3, -6, 2}, {6, 2, -3}};  // by 7
        for (int corner = 0; corner < 8; ++corner) {
            const double at[3] = {(corner & 1) != 0 ? a : -a, (corner & 2) != 0 ? b : -b,
                                  (corner & 4) != 0 ? c : -c};
            for (std::size_t row = 0; row < 3; ++row)
                Set[row].push_back(100 + (R[row][0] * at[0] + R[row][1] * at[1] + R[row][2] * at[2]) / 7);
            Pairs.push_back(corner);
        }
    }
};

}  // namespace

TEST(PrincipalAxes, WhatAPlateStandsOffItsPlaneByKeepsItsDigits) {
    // Its share of the products of the coordinates is 1e-18, a hundredth of their rounding.
    const Box plate(400, 300, 4e-7);
    const PrincipalAxes axes = AxesOf(plate.Set, plate.Pairs);
    EXPECT_NEAR(axes.Squares(1), 8 * 400.0 * 400, 1e-6);
    EXPECT_NEAR(axes.Squares(2), 8 * 300.0 * 300, 1e-6);
    EXPECT_NEAR(axes.Squares(3) / (8 * 4e-7 * 4e-7), 1, 1e-5);
    EXPECT_NEAR(std::fabs(axes.Axes(1, 3) * 6 + axes.Axes(2, 3) * 2 - axes.Axes(3, 3) * 3), 7, 1e-12);
    for (int k = 1; k <= 3; ++k) EXPECT_NEAR(axes.Middle(k), 100, 1e-12);
}

TEST(PrincipalAxes, WhatALineStandsOffByKeepsItsDigitsBothWays) {
    const Box line(400, 3e-6, 4e-7);
    const PrincipalAxes axes = AxesOf(line.Set, line.Pairs);
    EXPECT_NEAR(axes.Squares(2) / (8 * 3e-6 * 3e-6), 1, 1e-5);
    EXPECT_NEAR(axes.Squares(3) / (8 * 4e-7 * 4e-7), 1, 1e-5);
}

TEST(PrincipalAxes, TheyAreARotationWithTheLongestFirstWhateverTheOrderOfTheCoordinates) {
    const Box box(1, 2, 3);
    const PrincipalAxes axes = AxesOf(box.Set, box.Pairs);
    EXPECT_NEAR(axes.Squares(1), 72, 1e-12);
    EXPECT_NEAR(axes.Squares(3), 8, 1e-12);
    const Mat3& A = axes.Axes;
    EXPECT_NEAR(A(1, 1) * (A(2, 2) * A(3, 3) - A(2, 3) * A(3, 2)) -
                    A(1, 2) * (A(2, 1) * A(3, 3) - A(2, 3) * A(3, 1)) +
                    A(1, 3) * (A(2, 1) * A(3, 2) - A(2, 2) * A(3, 1)),
                1, 1e-14);
}

TEST(PrincipalAxes, OfNoPointsAllSumsAreZero) {
    const PrincipalAxes axes = AxesOf(Box(1, 2, 3).Set, {});
    for (int k = 1; k <= 3; ++k) EXPECT_EQ(axes.Squares(k), 0);
}

}  // namespace corvinade::fit
