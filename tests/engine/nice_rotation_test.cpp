// The neater of the two triples of angles of a rotation.
#include "engine/nice_rotation.h"

#include <cmath>
#include <limits>
#include <numbers>
#include <random>

#include "core/job.h"
#include "core/units.h"
#include "engine/fit_reference.h"
#include "engine/transform.h"
#include "fit/rotations.h"
#include "support/fixture.h"

using namespace corvinade;

namespace {

class NiceRotation : public Program {
protected:
    static void NiceRotSol() {
        if (const auto angles = NicerRotation({Job.RotX, Job.RotY, Job.RotZ})) TakeRotation(*angles);
    }
    static void Set(double a, double b, double c) {
        Job.RotX = Job.RotXCopy = a;
        Job.RotY = Job.RotYCopy = b;
        Job.RotZ = Job.RotZCopy = c;
    }
    static double Sum() { return std::fabs(Job.RotX) + std::fabs(Job.RotY) + std::fabs(Job.RotZ); }
    static void ExpectRotation(double a, double b, double c, double tolerance) {
        const reference::Square now = reference::Rotation(Job.RotX, Job.RotY, Job.RotZ);
        const reference::Square then = reference::Rotation(a, b, c);
        for (std::size_t i = 0; i < 3; ++i)
            for (std::size_t j = 0; j < 3; ++j)
                EXPECT_NEAR(static_cast<double>(now[i][j]), static_cast<double>(then[i][j]), tolerance)
                    << i << ", " << j;
    }
};

}  // namespace

TEST_F(NiceRotation, ThreeHalfTurnsAreNoRotation) {
    Set(kPi, kPi, kPi);
    NiceRotSol();
    // pi has ten digits in the library.
    EXPECT_NEAR(Job.RotX, 0, 2e-10);
    EXPECT_NEAR(Job.RotY, 0, 2e-10);
    EXPECT_NEAR(Job.RotZ, 0, 2e-10);
}

TEST_F(NiceRotation, StaysTheSameRotationWithTheSmallerSumOfAngles) {
    constexpr double pi = std::numbers::pi;
    std::mt19937 random(1);
    std::uniform_real_distribution<double> angle(-pi, pi);
    int changed = 0;
    constexpr double kAllDigits = 1e-14;
    for (int run = 0; run < 500; ++run) {
        const double a = angle(random), b = angle(random), c = angle(random);
        if (std::fabs(std::cos(b)) < 0.01) continue;
        SCOPED_TRACE(run);
        Set(a, b, c);
        NiceRotSol();
        ExpectRotation(a, b, c, kAllDigits);
        // The other triple of the same rotation, wrapped to the half turn by the C library.
        const auto wrapped = [](double x) { return std::fabs(std::remainder(x, 2 * pi)); };
        const double other = wrapped(a + pi) + wrapped(pi - b) + wrapped(c + pi);
        const double given = std::fabs(a) + std::fabs(b) + std::fabs(c);
        EXPECT_NEAR(Sum(), std::min(given, other), kAllDigits);
        changed += other < given;
    }
    EXPECT_GT(changed, 100);
}

TEST_F(NiceRotation, TakesTheFirstTripleOnlyWhenItsSumIsStrictlySmaller) {
    int firstTaken = 0, secondTaken = 0;
    for (const double a : {-2.5, -0.4, 0.3, 1.6, 3.0})
        for (const double b : {-1.2, 0.0, 0.4, 1.3, 2.9})
            for (const double c : {-3.0, -0.2, 1.1, 2.0}) {
                Mat3 R;
                RotMatrixXYZ(a, b, c, R);
                Vec3 first, second;
                EulerFromMatrixXYZ(R, first, second);
                const auto sum = [](const Vec3& v) {
                    return std::fabs(v(1)) + std::fabs(v(2)) + std::fabs(v(3));
                };
                const bool takesFirst = sum(first) < sum(second);
                (takesFirst ? firstTaken : secondTaken) += 1;
                const Vec3& expected = takesFirst ? first : second;
                Set(a, b, c);
                NiceRotSol();
                EXPECT_NEAR(Job.RotX, expected(1), 1e-9);
                EXPECT_NEAR(Job.RotY, expected(2), 1e-9);
                EXPECT_NEAR(Job.RotZ, expected(3), 1e-9);
            }
    EXPECT_GT(firstTaken, 0);
    EXPECT_GT(secondTaken, 0);
}

TEST_F(NiceRotation, TheAnglesThatPointsAreTransformedWithFollow) {
    Set(3, 3, 3);
    NiceRotSol();
    EXPECT_LT(Sum(), 1);
    EXPECT_EQ(Job.RotXCopy, Job.RotX);
    EXPECT_EQ(Job.RotYCopy, Job.RotY);
    EXPECT_EQ(Job.RotZCopy, Job.RotZ);
}

TEST_F(NiceRotation, InGimbalLockTheRotationIsNotReplacedByAnother) {
    // Only the sum of the outer angles is determined there, and the decomposition loses it.
    for (const double b : {kPi / 2, -kPi / 2, std::numbers::pi / 2, -std::numbers::pi / 2}) {
        Set(0.3, b, 0.2);
        NiceRotSol();
        ExpectRotation(0.3, b, 0.2, 1e-8);
    }
}

TEST_F(NiceRotation, CloseToGimbalLockItIsStillTheSameRotation) {
    for (const double off : {1e-2, 1e-4, 1e-6, 1e-8, 1e-10}) {
        SCOPED_TRACE(off);
        Set(2.5, std::numbers::pi / 2 - off, -1.9);
        NiceRotSol();
        ExpectRotation(2.5, std::numbers::pi / 2 - off, -1.9, 1e-8);
    }
}

TEST_F(NiceRotation, AnglesThatAreNoNumbersStay) {
    Set(std::numeric_limits<double>::quiet_NaN(), 2, 3);
    NiceRotSol();
    EXPECT_TRUE(std::isnan(Job.RotX)) << "no rotation of 0 out of nothing";
    EXPECT_EQ(Job.RotY, 2);
    EXPECT_EQ(Job.RotZ, 3);
    Set(std::numeric_limits<double>::infinity(), 0, 0);
    NiceRotSol();
    EXPECT_TRUE(std::isinf(Job.RotX));
}
