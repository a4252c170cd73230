// Cylindrical and spherical form of points.
#include "fit/coordinate_forms.h"

#include <cmath>
#include <numbers>

#include "support/fixture.h"

using namespace corvinade;

using CoordinateFormsOfPoints = Program;

namespace {
constexpr double pi = std::numbers::pi;
// The forms know pi with ten digits, and every quotient has a tiny number added to its denominator.
constexpr double kLibraryDigits = 2e-10;
}  // namespace

TEST_F(CoordinateFormsOfPoints, RadiiAreThoseOfPythagoras) {
    EXPECT_EQ(CylRadius(3, -4), 5);
    EXPECT_EQ(SphRadius(3, -4, 12), 13);
    EXPECT_EQ(CylRadius(0, 0), 0);
    EXPECT_EQ(SphRadius(0, 0, 0), 0);
}

TEST_F(CoordinateFormsOfPoints, PhiIsTheDirectionInEveryQuadrant) {
    for (int degree = -179; degree < 180; ++degree) {
        const double phi = degree * pi / 180;
        EXPECT_NEAR(CylPhi(700 * std::cos(phi), 700 * std::sin(phi)), phi, kLibraryDigits) << degree;
    }
}

TEST_F(CoordinateFormsOfPoints, PhiOnTheAxesIsARightAngleOrNone) {
    EXPECT_EQ(CylPhi(5, 0), 0);
    EXPECT_NEAR(CylPhi(0, 5), pi / 2, kLibraryDigits);
    EXPECT_NEAR(CylPhi(0, -5), -pi / 2, kLibraryDigits);
    EXPECT_EQ(CylPhi(0, 0), 0);
}

TEST_F(CoordinateFormsOfPoints, TheNegativeXAxisIsAtTheLowerEndOfTheRange) {
    // 3.14159265358979 is above 3.1415926535, so 6.283185307 is taken away.
    EXPECT_NEAR(CylPhi(-5, 0), -3.14159265341021, 1e-14);
    EXPECT_NEAR(CylPhi(-5, 1e-9), pi, 2e-9);
    EXPECT_NEAR(CylPhi(-5, -1e-9), -pi, 2e-9);
}

TEST_F(CoordinateFormsOfPoints, ThetaIsTheAngleFromTheZAxis) {
    for (int degree = 1; degree < 180; ++degree) {
        const double theta = degree * pi / 180;
        EXPECT_NEAR(SphTheta(-900 * std::sin(theta), 0, 900 * std::cos(theta)), theta, 1e-10) << degree;
    }
    EXPECT_NEAR(SphTheta(0, 0, 0), pi / 2, 1e-12);
}

TEST_F(CoordinateFormsOfPoints, ADifferenceAcrossTheSeamStaysSmall) {
    const CoordinateForms above = FormsOf({-10, 0.1, 5}), below = FormsOf({-10, -0.1, 4});
    const double expected = 2 * std::atan(0.01);
    EXPECT_NEAR(FormDifference(above, below).Phi, -expected, 4e-10);
    EXPECT_NEAR(FormDifference(below, above).Phi, expected, 4e-10);
    EXPECT_NEAR(FormDifference(above, FormsOf({-10, 0, 5})).Phi, -expected / 2, 4e-10);
    EXPECT_EQ(FormDifference(above, below).CylRadius, 0);
    EXPECT_NEAR(FormDifference(above, below).SphRadius, std::sqrt(125.01) - std::sqrt(116.01), 1e-12);
    EXPECT_NEAR(FormDifference(above, below).Theta,
                std::acos(5 / std::sqrt(125.01)) - std::acos(4 / std::sqrt(116.01)), 1e-10);
}

TEST_F(CoordinateFormsOfPoints, TheDifferenceOfTwoDirectionsGoesTheShortWayRound) {
    for (int first = -180; first <= 180; first += 7)
        for (int second = -180; second <= 180; second += 7) {
            const double expected = std::remainder(first - second, 360) * pi / 180;
            EXPECT_NEAR(PhiDifference(first * pi / 180, second * pi / 180), expected, 2e-14)
                << first << " " << second;
        }
}
