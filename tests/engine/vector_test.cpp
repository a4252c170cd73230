// Vectors, triangles and angles.
#include "fit/vector.h"

#include <cmath>

#include "core/units.h"
#include "engine/inverted_solutions.h"
#include "fit/angles.h"
#include "fit/triangle.h"
#include "support/fixture.h"

using namespace corvinade;

using Vectors = Program;
using VectorAngles = Program;

namespace {

void ExpectVector(const Vec3& v, double x, double y, double z, double tolerance = 0) {
    EXPECT_NEAR(v(1), x, tolerance);
    EXPECT_NEAR(v(2), y, tolerance);
    EXPECT_NEAR(v(3), z, tolerance);
}

}  // namespace

TEST_F(Vectors, AddSubtractAndScaleElementWise) {
    const Vec3 a(1, -2, 3), b(10, 20, 30);
    Vec3 c;
    VecAdd(a, b, c);
    ExpectVector(c, 11, 18, 33);
    VecSub(a, b, c);
    ExpectVector(c, -9, -22, -27);
    VecScale(a, -2, c);
    ExpectVector(c, -2, 4, -6);
}

TEST_F(Vectors, MultiplyAsInnerAndOuterProduct) {
    const Vec3 a(1, 2, 3), b(4, -5, 6);
    double dot = 0;
    VecDot(a, b, dot);
    EXPECT_EQ(dot, 12);
    Vec3 c;
    VecCross(a, b, c);
    ExpectVector(c, 27, 6, -13);
    VecCross({1, 0, 0}, {0, 1, 0}, c);
    ExpectVector(c, 0, 0, 1);
}

TEST_F(Vectors, TakeTheirResultInPlaceOfAnInput) {
    Vec3 a(1, 2, 3);
    VecCross(a, {4, -5, 6}, a);
    ExpectVector(a, 27, 6, -13);
}

TEST_F(Vectors, HaveTheirLength) {
    double length = 0;
    VecLength({2, 3, 6}, length);
    EXPECT_EQ(length, 7);
    EXPECT_EQ(Hypot2(3, -4), 5);
    EXPECT_EQ(Hypot3(-2, 3, 6), 7);
}

TEST_F(Vectors, AreNormalisedAndAZeroVectorStaysZero) {
    Vec3 c;
    VecNormalize({0, -5, 0}, c);
    ExpectVector(c, 0, -1, 0, 1e-16);
    VecNormalize({0, 0, 0}, c);
    ExpectVector(c, 0, 0, 0);
}

TEST_F(Vectors, PolarAngleIsTheAngleFromTheZAxis) {
    EXPECT_NEAR(PolarAngle(1, 0, 1), std::atan(1.0), 1e-9);
    EXPECT_NEAR(PolarAngle(3, 4, 0), 2 * std::atan(1.0), 1e-9);
    EXPECT_NEAR(PolarAngle(0, 0, 0), 2 * std::atan(1.0), 1e-9);
}

TEST_F(Vectors, PlaneDistanceHasTheSignOfTheNormal) {
    double distance = 0;
    PlaneDistance({0, 0, 5}, {0, 0, 2}, {7, 8, 9}, distance);
    EXPECT_NEAR(distance, 4, 1e-9);
    PlaneDistance({0, 0, 5}, {0, 0, -0.5}, {7, 8, 9}, distance);
    EXPECT_NEAR(distance, -4, 1e-8);
    PlaneDistance({0, 0, 5}, {0, 0, 0}, {7, 8, 9}, distance);
    EXPECT_EQ(distance, 0);
}

TEST_F(Vectors, LinePointFootAndDistanceWorkForAnyDirectionLength) {
    Vec3 foot;
    LinePointFoot({1, 1, 0}, {3, 0, 0}, {5, 4, 4}, foot);
    ExpectVector(foot, 5, 1, 0, 1e-9);
    EXPECT_NEAR(LinePointDistance({1, 1, 0}, {3, 0, 0}, {5, 4, 4}), 5, 1e-9);
    EXPECT_NEAR(LinePointDistance({1, 1, 0}, {0, 0, 0}, {1, 4, 4}), 5, 1e-9);
}

TEST_F(Vectors, TriangleHeightDividesTheBase) {
    std::string message = "kept";
    double h = 0, p = 0, q = 0;
    // 3, 4, 5: the height over the base 5 is 12/5, the feet are 9/5 under side 3 and 16/5 under side 4.
    HoeheHoehenfusspunkt(3, 4, 5, h, p, q, message);
    EXPECT_NEAR(h, 2.4, 1e-9);
    EXPECT_NEAR(p, 1.8, 1e-9);
    EXPECT_NEAR(q, 3.2, 1e-9);
    HoeheHoehenfusspunkt(4, 3, 5, h, p, q, message);
    EXPECT_NEAR(h, 2.4, 1e-9);
    EXPECT_NEAR(p, 3.2, 1e-9);
    EXPECT_NEAR(q, 1.8, 1e-9);
    EXPECT_EQ(message, "kept");
}

TEST_F(Vectors, AnImpossibleTriangleSetsTheMessageAndStillDeliversNumbers) {
    std::string message;
    double h = 0, p = 0, q = 0;
    HoeheHoehenfusspunkt(1, 1, 5, h, p, q, message);
    EXPECT_EQ(message, "Error in Höhe-Höhenfußpunkt; no possible triangle");
    EXPECT_NEAR(q, 2.5, 1e-9);
    EXPECT_NEAR(p, 2.5, 1e-9);
    EXPECT_NEAR(h, std::sqrt(5.25), 1e-8);
    for (const auto& [a, b, c] : {std::array{5.0, 1.0, 1.0}, std::array{1.0, 5.0, 1.0}}) {
        message.clear();
        HoeheHoehenfusspunkt(a, b, c, h, p, q, message);
        EXPECT_FALSE(message.empty());
        EXPECT_TRUE(std::isfinite(h));
    }
}

TEST_F(VectorAngles, ArcCosIsZeroAtBothEndsAndOutside) {
    EXPECT_EQ(ArcCos(1), 0);
    EXPECT_EQ(ArcCos(-1), 0);
    EXPECT_EQ(ArcCos(1.0000001), 0);
    EXPECT_EQ(ArcCos(-1.5), 0);
    for (const double x : {-0.999, -0.5, 0.0, 0.3, 0.9999}) EXPECT_NEAR(ArcCos(x), std::acos(x), 1e-12);
}

TEST_F(VectorAngles, ArcSinLosesTheSignAtMinusOne) {
    EXPECT_EQ(ArcSin(1), 3.1415926535 / 2);
    EXPECT_EQ(ArcSin(-1), 3.1415926535 / 2);
    EXPECT_EQ(ArcSin(1.0000001), 0);
    for (const double x : {-0.999, -0.5, 0.0, 0.3, 0.9999}) EXPECT_NEAR(ArcSin(x), std::asin(x), 1e-12);
}

TEST_F(VectorAngles, WrapBringsAnAngleToPlusMinusPi) {
    EXPECT_EQ(WrapAngle(0), 0);
    EXPECT_FALSE(std::signbit(WrapAngle(-0.0)));
    EXPECT_EQ(WrapAngle(3.1415926535), 3.1415926535);
    EXPECT_NEAR(WrapAngle(-1), -1, 1e-15);
    EXPECT_NEAR(WrapAngle(4), 4 - 6.283185307, 1e-15);
    EXPECT_NEAR(WrapAngle(-4), -4 + 6.283185307, 1e-15);
    EXPECT_NEAR(WrapAngle(1 + 10 * 6.283185307), 1, 1e-13);
    EXPECT_NEAR(WrapAngle(-1 - 10 * 6.283185307), -1, 1e-13);
    EXPECT_EQ(WrapAngle(1e30), 0);  // no digit of the angle is left
}

TEST_F(VectorAngles, AzimuthIsTheDirectionInThePlane) {
    EXPECT_EQ(AzimuthAngle(0, 0), 0);
    EXPECT_EQ(AzimuthAngle(-1, 0), 3.1415926535);
    EXPECT_EQ(AzimuthAngle(1, 0), 0);
    EXPECT_EQ(AzimuthAngle(0, 1), 3.1415926535 / 2);
    EXPECT_NEAR(AzimuthAngle(0, -1), -3.1415926535 / 2, 1e-15);
    for (const double angle : {-3.0, -2.0, -1.0, -0.1, 0.1, 1.0, 2.0, 3.0})
        EXPECT_NEAR(AzimuthAngle(5 * std::cos(angle), 5 * std::sin(angle)), angle, 1e-9);
}

TEST_F(VectorAngles, ChooseFindsTheAngleOfSineAndCosine) {
    for (int degree = -179; degree < 180; degree += 7) {
        const double angle = degree / 180.0 * kPi;
        EXPECT_NEAR(ChooseAngleBySinCos(std::sin(angle), std::cos(angle)), angle, 1e-9) << degree;
    }
}

TEST_F(VectorAngles, ChooseTrustsTheCosineNearThePoleAndTheSineElsewhere) {
    // The sine is wrong by what would be 2.6 degrees at 80 degrees; the cosine is right.
    EXPECT_NEAR(ChooseAngleBySinCos(std::sin(1.4) + 0.01, std::cos(1.4)), 1.4, 1e-9);
    // At 0.2 rad it is the sine that counts.
    EXPECT_NEAR(ChooseAngleBySinCos(std::sin(0.2), std::cos(0.2) - 0.01), 0.2, 1e-12);
    EXPECT_NEAR(ChooseAngleBySinCos(std::sin(-2.9), std::cos(-2.9) + 0.01), -2.9, 1e-9);
}

TEST_F(VectorAngles, ChooseMovesItsSectorsWithTheShownUnit) {
    // 45 / 1000 rad with milliradians: an angle of 0.2 rad then counts as steep, and the cosine is taken.
    Units.AngleFactor = 1000;
    const double noisy = std::cos(0.2) - 0.01;
    // Beyond 135 / 1000 it is in the far sector again, and the sine is taken.
    EXPECT_NEAR(ChooseAngleBySinCos(std::sin(0.1), std::cos(0.1) - 0.001), std::acos(std::cos(0.1) - 0.001),
                1e-12);
    EXPECT_NEAR(ChooseAngleBySinCos(std::sin(0.15), std::cos(0.15) - 0.001), 0.15, 1e-12);
    EXPECT_NEAR(ChooseAngleBySinCos(std::sin(0.2), noisy), std::acos(noisy), 1e-12);
}

TEST_F(Vectors, SmallConstantsKeepDivisionsAliveAndShowAtTheirOwnSize) {
    // Each divisor equals its constant here, so each result is half of what it were without.
    EXPECT_NEAR(PolarAngle(0, 0, 1e-10), std::acos(0.5), 1e-9);
    double distance = 0;
    PlaneDistance({0, 0, 5}, {0, 0, 1e-10}, {0, 0, 9}, distance);
    EXPECT_NEAR(distance, 2, 1e-9);
    Vec3 foot;
    LinePointFoot({0, 0, 0}, {1e-5, 0, 0}, {4, 7, 0}, foot);
    ExpectVector(foot, 2, 0, 0, 1e-9);
    EXPECT_NEAR(LinePointDistance({0, 0, 0}, {1e-5, 0, 0}, {4, 0, 0}), 2, 1e-9);
    EXPECT_NEAR(AzimuthAngle(1e-10, 1e-10), std::atan(0.5), 1e-12);
}

TEST_F(Vectors, NormalisingTakesItsSubstituteOnlyForALengthOfExactlyZero) {
    Vec3 c;
    VecNormalize({0, 0, 1e-150}, c);
    ExpectVector(c, 0, 0, 1, 1e-15);
    // The square of 1e-200 is 0, and so is the length.
    VecNormalize({0, 1e-200, 0}, c);
    EXPECT_NEAR(c(2) / 1e-191, 1, 1e-12);
}

TEST_F(Vectors, TriangleHeightOfSidesAsSmallAsItsConstant) {
    // In units of 1e-10: p = (4 + 4 - 1) / 2 / (2 + 2), q = 2 - p, h = sqrt(|1 - q q|).
    std::string message;
    double h = 0, p = 0, q = 0;
    HoeheHoehenfusspunkt(2e-10, 1e-10, 2e-10, h, p, q, message);
    EXPECT_NEAR(p / 1e-10, 0.875, 1e-12);
    EXPECT_NEAR(q / 1e-10, 1.125, 1e-12);
    EXPECT_NEAR(h / 1e-10, std::sqrt(1.125 * 1.125 - 1), 1e-12);
    HoeheHoehenfusspunkt(1e-10, 2e-10, 2e-10, h, p, q, message);
    EXPECT_NEAR(q / 1e-10, 0.875, 1e-12);
    EXPECT_NEAR(p / 1e-10, 1.125, 1e-12);
    EXPECT_EQ(message, "");
}

TEST_F(Vectors, AFlatTriangleIsPossible) {
    std::string message;
    double h = 0, p = 0, q = 0;
    for (const auto& [a, b, c] : {std::array{3.0, 1.0, 2.0}, {1.0, 3.0, 2.0}, {1.0, 2.0, 3.0}}) {
        HoeheHoehenfusspunkt(a, b, c, h, p, q, message);
        EXPECT_EQ(message, "");
        EXPECT_NEAR(h, 0, 1e-4);
        EXPECT_NEAR(p + q, c, 1e-15);
    }
}

TEST_F(VectorAngles, WrapTakesWholeTurnsOfTheLibrarysCircle) {
    EXPECT_EQ(WrapAngle(6.283185307), 0);
    // Minus half a turn is one turn short and comes out as plus half a turn.
    EXPECT_EQ(WrapAngle(-3.1415926535), 3.1415926535);
    // Half a turn proper lies beyond the library's.
    EXPECT_EQ(WrapAngle(M_PI), M_PI - 6.283185307);
    EXPECT_EQ(WrapAngle(-M_PI), -M_PI + 6.283185307);
    EXPECT_NEAR(WrapAngle(2 * M_PI), 2 * M_PI - 6.283185307, 1e-15);
    EXPECT_NEAR(WrapAngle(-1e-300), 0, 1e-15);
    EXPECT_TRUE(std::isnan(WrapAngle(std::nan(""))));
}

TEST_F(VectorAngles, ArcCosIsQuarterTurnsAwayFromTheEnds) {
    EXPECT_EQ(ArcCos(0), 2 * std::atan(1.0));  // by the system's pi, not the library's
    EXPECT_EQ(ArcSin(0), 0);
    // Next to -1 it is nearly half a turn, and only at -1 itself 0.
    EXPECT_NEAR(ArcCos(std::nextafter(-1.0, 0.0)), M_PI, 1e-7);
    EXPECT_NEAR(ArcSin(std::nextafter(-1.0, 0.0)), -M_PI / 2, 1e-7);
}

TEST_F(VectorAngles, AzimuthShowsItsConstantAndTheLibrarysPi) {
    // arctan(y / (1e-10 + x)) moves by -y / (x x + y y) 1e-10 against the true direction.
    EXPECT_NEAR(AzimuthAngle(1, 1), M_PI / 4 - 0.5e-10, 1e-15);
    EXPECT_NEAR(AzimuthAngle(-1, 1), 3.1415926535 - M_PI / 4 - 0.5e-10, 1e-15);
    EXPECT_NEAR(AzimuthAngle(-1, -1), M_PI / 4 + 0.5e-10 + 3.1415926535 - 6.283185307, 1e-15);
    EXPECT_NEAR(AzimuthAngle(1, -1), -M_PI / 4 + 0.5e-10, 2e-15);
    EXPECT_EQ(AzimuthAngle(0, -1), 3.1415926535 / 2 + 3.1415926535 - 6.283185307);
    EXPECT_EQ(AzimuthAngle(-1e-10, 0), 3.1415926535);  // where the divisor is 0
    EXPECT_NEAR(AzimuthAngle(-1e-10, 1), M_PI / 2 + 3.1415926535 - 6.283185307, 1e-15);
}

TEST_F(VectorAngles, ChooseAtTheAxesFollowsTheArcsAndTheOrderOfThePairs) {
    // All of d12 and d14 are 0 there: the third pair is taken, and of it the sine's member.
    EXPECT_EQ(ChooseAngleBySinCos(0, 1), 0);
    // ArcCos is 0 at -1, so half a turn is not recognised.
    EXPECT_EQ(ChooseAngleBySinCos(0, -1), 0);
    EXPECT_EQ(ChooseAngleBySinCos(1, 0), 2 * std::atan(1.0));
    // ArcSin is +pi/2 at -1, so neither is the quarter turn backwards.
    EXPECT_EQ(ChooseAngleBySinCos(-1, 0), 2 * std::atan(1.0));
    EXPECT_NEAR(ChooseAngleBySinCos(-0.999999, std::cos(std::asin(-0.999999))), std::asin(-0.999999), 1e-9);
}

TEST_F(VectorAngles, ChooseCountsTheLimitsOfItsSectorsAsSteepButNotBeyond) {
    const double w = std::atan(0.5 / std::sqrt(0.75));  // sine 0.5
    const double noisy = std::cos(w) - 0.01;
    const auto trustsTheCosine = [&](double sine) {
        const double sign = sine < 0 ? -1 : 1;
        const double result = ChooseAngleBySinCos(sine, noisy);
        const bool cosine = std::fabs(result - sign * std::acos(noisy)) < 1e-12;
        EXPECT_TRUE(cosine || std::fabs(result - sign * w) < 1e-12) << result;
        return cosine;
    };
    for (const double sine : {0.5, -0.5}) {
        struct Limit {
            double Degrees, Inside, Outside;  // factors that move the limit just above and just below w
            bool AtLimit, Below, Above;       // is the cosine trusted: limit at, above, below the angle
        };
        for (const Limit& limit :
             {Limit{45, 0.999, 1.001, true, false, true}, Limit{135, 0.999, 1.001, true, true, false},
              Limit{180, 0.999, 1.001, false, false, true}}) {
            SCOPED_TRACE(limit.Degrees);
            Units.AngleFactor = limit.Degrees / w;
            ASSERT_EQ(limit.Degrees / Units.AngleFactor, w);
            ASSERT_EQ(WrapAngle(ArcSin(std::fabs(sine))), w);
            // Wrapping a negative angle rounds it, so it does not lie at the limit to the last bit.
            EXPECT_TRUE(sine < 0 || trustsTheCosine(sine) == limit.AtLimit);
            Units.AngleFactor = limit.Degrees / w * limit.Inside;  // the limit lies above the angle
            EXPECT_EQ(trustsTheCosine(sine), limit.Below);
            Units.AngleFactor = limit.Degrees / w * limit.Outside;
            EXPECT_EQ(trustsTheCosine(sine), limit.Above);
        }
    }
}
