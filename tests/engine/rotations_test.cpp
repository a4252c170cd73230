// Euler forms, their decompositions, and quaternions.
#include "fit/rotations.h"

#include <cmath>
#include <fstream>
#include <nlohmann/json.hpp>

#include "core/units.h"
#include "engine/fit_reference.h"
#include "engine/transform.h"
#include "fit/angles.h"
#include "fit/matrix.h"
#include "fit/quaternion.h"
#include "support/fixture.h"

using namespace corvinade;

using Rotations = Program;

namespace {

struct FormEntry {
    const char* Name;
    void (*Build)(double, double, double, Mat3&);
    void (*Decompose)(const Mat3&, Vec3&, Vec3&);
    std::array<int, 3> Axes;    // of the factors from left to right
    std::array<int, 3> Angles;  // which of a, b, c each of them turns by
};

const FormEntry kForms[] = {
    {"XYZ", RotMatrixXYZ, EulerFromMatrixXYZ, {2, 1, 0}, {2, 1, 0}},
    {"YXZ", RotMatrixYXZ, EulerFromMatrixYXZ, {1, 0, 2}, {1, 0, 2}},
    {"ZYX", RotMatrixZYX, EulerFromMatrixZYX, {0, 1, 2}, {0, 1, 2}},
    {"ZYZ", RotMatrixZYZ, EulerFromMatrixZYZ, {2, 1, 2}, {2, 1, 0}},
    {"ZXZ", RotMatrixZXZ, EulerFromMatrixZXZ, {2, 0, 2}, {2, 1, 0}},
};

reference::Square FromElementary(const FormEntry& form, double a, double b, double c) {
    const std::array<double, 3> angles = {a, b, c};
    const auto factor = [&](std::size_t k) {
        return reference::Turn(form.Axes[k], -angles[static_cast<std::size_t>(form.Angles[k])]);
    };
    return reference::Product(factor(0), reference::Product(factor(1), factor(2)));
}

void ExpectMatrix(const Mat3& M, const reference::Square& expected, double tolerance) {
    for (int i = 1; i <= 3; ++i)
        for (int j = 1; j <= 3; ++j)
            EXPECT_NEAR(M(i, j),
                        static_cast<double>(
                            expected[static_cast<std::size_t>(i - 1)][static_cast<std::size_t>(j - 1)]),
                        tolerance)
                << i << ", " << j;
}

nlohmann::json ReferenceRotations() {
    std::ifstream file(std::string(CORVINADE_SOURCE_DIR) + "/tests/data/engine/reference_rotations.json");
    return nlohmann::json::parse(file);
}

}  // namespace

TEST_F(Rotations, EveryFormIsTheProductOfItsElementaryRotations) {
    for (const FormEntry& form : kForms)
        for (const double a : {-2.5, 0.3, 1.6})
            for (const double b : {-1.7, 0.4, 2.2})
                for (const double c : {-0.2, 1.1, 3.0}) {
                    SCOPED_TRACE(form.Name);
                    Mat3 R;
                    form.Build(a, b, c, R);
                    ExpectMatrix(R, FromElementary(form, a, b, c), 1e-15);
                }
}

TEST_F(Rotations, DecompositionFindsBothTriplesOfEveryForm) {
    for (const FormEntry& form : kForms)
        for (const double a : {-2.5, 0.3, 1.6})
            for (const double b : {-1.2, 0.4, 1.3})
                for (const double c : {-0.2, 1.1, 3.0}) {
                    SCOPED_TRACE(form.Name);
                    Mat3 R;
                    form.Build(a, b, c, R);
                    Vec3 first, second;
                    form.Decompose(R, first, second);
                    for (const Vec3& angles : {first, second})
                        ExpectMatrix(R, FromElementary(form, angles(1), angles(2), angles(3)), 2e-9);
                    const double apart = std::fabs(first(1) - second(1)) + std::fabs(first(2) - second(2)) +
                                         std::fabs(first(3) - second(3));
                    EXPECT_GT(apart, 0.1);
                    const auto isInput = [&](const Vec3& angles) {
                        return std::fabs(angles(1) - a) + std::fabs(angles(2) - b) +
                                   std::fabs(angles(3) - c) <
                               1e-8;
                    };
                    EXPECT_TRUE(isInput(first) || isInput(second));
                }
}

TEST_F(Rotations, TheIdentityHasZeroInOneSlotAndPiInTheOther) {
    Mat3 I;
    I(1, 1) = I(2, 2) = I(3, 3) = 1;
    Vec3 first, second;
    EulerFromMatrixXYZ(I, first, second);
    for (int k = 1; k <= 3; ++k) {
        EXPECT_EQ(first(k), 3.1415926535);
        EXPECT_EQ(second(k), 0);
    }
}

TEST_F(Rotations, DecompositionAtThePoleGivesNumbers) {
    for (const double b : {kPi / 2, -kPi / 2}) {
        Mat3 R;
        RotMatrixXYZ(0.3, b, 0.5, R);
        Vec3 first, second;
        EulerFromMatrixXYZ(R, first, second);
        for (const Vec3& angles : {first, second})
            for (int k = 1; k <= 3; ++k) EXPECT_TRUE(std::isfinite(angles(k)));
    }
}

TEST_F(Rotations, DecompositionOfNoRotationIsHarmless) {
    Mat3 M;
    for (const FormEntry& form : kForms) {
        Vec3 first, second;
        form.Decompose(M, first, second);
        M(2, 1) = 1e300;
        form.Decompose(M, first, second);
        EXPECT_TRUE(std::isfinite(first(1)));
    }
}

TEST_F(Rotations, QuaternionDescribesTheMatrixInAllFourCases) {
    // One matrix for each largest component: the trace, then a half turn about each axis.
    const std::array<std::array<double, 3>, 4> angles = {
        {{0.2, -0.3, 0.4}, {3.0, 0.1, 0.2}, {0.1, 0.1, 3.0}, {3.0, 0.2, 3.0}}};
    for (const auto& [a, b, c] : angles) {
        Mat3 R;
        RotMatrixXYZ(a, b, c, R);
        Column q(9);
        double backA = 0, backB = 0, backC = 0;
        MatrixToQuaternion(R, q, backA, backB, backC);
        EXPECT_NEAR(q[1] * q[1] + q[2] * q[2] + q[3] * q[3] + q[4] * q[4], 1, 1e-14);
        // The matrix of a unit quaternion, written out.
        EXPECT_NEAR(1 - 2 * (q[3] * q[3] + q[4] * q[4]), R(1, 1), 1e-14);
        EXPECT_NEAR(2 * (q[2] * q[3] - q[1] * q[4]), R(1, 2), 1e-14);
        EXPECT_NEAR(2 * (q[2] * q[4] - q[1] * q[3]), R(3, 1), 1e-14);
        EXPECT_NEAR(2 * (q[3] * q[4] - q[1] * q[2]), R(2, 3), 1e-14);
        // Axis and angle describe the same.
        EXPECT_NEAR(std::cos(q[5] / 2), q[1], 1e-12);
        EXPECT_NEAR(q[6] * std::sin(q[5] / 2), q[2], 1e-9);
        EXPECT_NEAR(q[7] * std::sin(q[5] / 2), q[3], 1e-9);
        EXPECT_NEAR(q[8] * std::sin(q[5] / 2), q[4], 1e-9);
        Mat3 back;
        RotMatrixXYZ(backA, backB, backC, back);
        for (int i = 1; i <= 3; ++i)
            for (int j = 1; j <= 3; ++j) EXPECT_NEAR(back(i, j), R(i, j), 2e-9);
    }
}

TEST_F(Rotations, QuaternionAtThePoleHasTheFixedAnswer) {
    double a = 0, b = 0, c = 0;
    // sqrt(1/2) squared and doubled is not exactly 1 in floating point; these components are.
    QuaternionToAngles(0.5, 0.5, 0.5, 0.5, a, b, c);
    EXPECT_EQ(a, 3.1415926535 / 4);
    EXPECT_EQ(c, 3.1415926535 / 4);
    EXPECT_EQ(b, 0);
}

TEST_F(Rotations, AgreeWithPublishedRobotAngles) {
    const double degree = std::atan(1.0) / 45;
    const nlohmann::json figures = ReferenceRotations();
    for (const auto& entry : figures["rotations"]) {
        SCOPED_TRACE(entry["id"].get<std::string>());
        const std::array<double, 3> angle = {entry["angles"][0].get<double>() * degree,
                                             entry["angles"][1].get<double>() * degree,
                                             entry["angles"][2].get<double>() * degree};
        const std::string kind = entry["id"].get<std::string>().substr(0, 3);
        Mat3 M;
        if (kind == "fan") {
            RotMatrixXYZ(-angle[0], -angle[1], -angle[2], M);  // Rz(R) Ry(P) Rx(W)
        } else if (kind == "kuk") {
            RotMatrixXYZ(-angle[2], -angle[1], -angle[0], M);  // Rz(A) Ry(B) Rx(C)
        } else {
            RotMatrixZYX(-angle[0], -angle[1], -angle[2], M);  // Rx(a) Ry(b) Rz(c)
        }
        const double tolerance = entry["tol"];
        if (entry["expect"].contains("matrix")) {
            for (int i = 1; i <= 3; ++i)
                for (int j = 1; j <= 3; ++j)
                    EXPECT_NEAR(M(i, j), entry["expect"]["matrix"][i - 1][j - 1].get<double>(), tolerance);
            continue;
        }
        Column q(9);
        double a = 0, b = 0, c = 0;
        MatrixToQuaternion(M, q, a, b, c);
        const auto& expected = entry["expect"]["quat_wxyz"];
        const double sign = q[1] * expected[0].get<double>() < 0 ? -1 : 1;
        for (std::size_t k = 0; k < 4; ++k)
            EXPECT_NEAR(sign * q[k + 1], expected[k].get<double>(), tolerance);
    }
}

TEST_F(Rotations, TheInverseIsTheOneOfTheSweepUnlessRightAnglesCostItsDigits) {
    Mat3 R;
    RotMatrixXYZ(0.3, -0.4, 0.5, R);
    Mat3 swept;
    MatrixInverse(R, 3, 3, swept);
    EXPECT_EQ(InverseRotation(R).Elements, swept.Elements);
    RotMatrixXYZ(kPi / 2, 0, kPi / 2, R);
    const Mat3 inverse = InverseRotation(R);
    for (int i = 1; i <= 3; ++i)
        for (int j = 1; j <= 3; ++j) EXPECT_NEAR(inverse(i, j), R(j, i), 1e-9);
}

TEST_F(Rotations, QuotientsOfTheDecompositionAddTheirConstant) {
    // 1e-14 / (1e-14 + 1e-14) where both elements are as small as the constant.
    Mat3 M;
    M(3, 1) = 1;
    M(3, 2) = -1e-14;
    M(3, 3) = 1e-14;
    M(2, 1) = -2e-14;
    M(1, 1) = 1e-14;
    Vec3 first, second;
    EulerFromMatrixXYZ(M, first, second);
    for (const Vec3& angles : {first, second}) {
        EXPECT_NEAR(std::tan(angles(1)), 0.5, 1e-8);
        EXPECT_EQ(angles(2), 3.1415926535 - 3.1415926535 / 2);
        EXPECT_NEAR(std::tan(angles(3)), 1, 1e-8);
    }
}

TEST_F(Rotations, TheWorseSlotIsReplacedAndTheSecondOneFirst) {
    // Turned by 0.2 about X. In the order of trial the true triple is the first and goes to the second
    // slot; its twin, all three moved by half a turn, is the last and goes to the first slot.
    Mat3 R;
    Vec3 first, second;
    RotMatrixXYZ(0.2, 0.1, 0.3, R);
    EulerFromMatrixXYZ(R, first, second);
    for (int k = 1; k <= 3; ++k) EXPECT_NEAR(second(k), k == 1 ? 0.2 : k == 2 ? 0.1 : 0.3, 1e-12);
    EXPECT_NEAR(first(1), 0.2 + 3.1415926535 - 6.283185307, 1e-9);
    EXPECT_NEAR(first(2), 3.1415926535 - 0.1, 1e-12);
    EXPECT_NEAR(first(3), 0.3 + 3.1415926535 - 6.283185307, 1e-9);
    // Now the twin is the third in the order of trial. The first one, X and Z moved by half a turn, is
    // wrong by 2 cos b (|cos a| + |sin a| + |cos c| + |sin c|) = 4.95 in all, the second one, X moved
    // alone, by 5.59: the twin replaces that in the first slot, and the true triple the other one.
    RotMatrixXYZ(2.8, 0.1, 2.9, R);
    EulerFromMatrixXYZ(R, first, second);
    EXPECT_NEAR(first(1), 2.8 - M_PI, 1e-9);
    EXPECT_NEAR(first(2), 3.1415926535 - 0.1, 1e-12);
    EXPECT_NEAR(second(1), 2.8, 1e-9);
    EXPECT_NEAR(second(2), 0.1, 1e-12);
}

TEST_F(Rotations, AtThePoleTheSignOfTheSineIsLostDownwards) {
    // Upwards the pole is found; downwards ArcSin answers with the upper one for both candidates.
    for (const double b : {kPi / 2, -kPi / 2}) {
        Mat3 R;
        RotMatrixXYZ(0, b, 0, R);
        ASSERT_EQ(R(3, 1), b > 0 ? 1 : -1);
        Vec3 first, second;
        EulerFromMatrixXYZ(R, first, second);
        EXPECT_EQ(first(2), 3.1415926535 - 3.1415926535 / 2);
        EXPECT_EQ(second(2), 3.1415926535 - 3.1415926535 / 2);
    }
}

TEST_F(Rotations, QuaternionOfHalfTurnsTakesTheRightCaseAtTies) {
    const double half = std::sqrt(0.5);
    struct Turn {
        std::array<double, 9> M;
        std::array<double, 4> Q;
    };
    const Turn turns[] = {
        {{1, 0, 0, 0, -1, 0, 0, 0, -1}, {0, 1, 0, 0}},
        {{-1, 0, 0, 0, 1, 0, 0, 0, -1}, {0, 0, 1, 0}},
        {{-1, 0, 0, 0, -1, 0, 0, 0, 1}, {0, 0, 0, 1}},
        {{0, 1, 0, 1, 0, 0, 0, 0, -1}, {0, half, half, 0}},
        {{0, 0, 1, 0, -1, 0, 1, 0, 0}, {0, half, 0, half}},
        {{-1, 0, 0, 0, 0, 1, 0, 1, 0}, {0, 0, half, half}},
        {{0, 0, 1, 1, 0, 0, 0, 1, 0}, {0.5, 0.5, 0.5, 0.5}},  // trace exactly 0
        {{1, 0, 0, 0, 1, 0, 0, 0, 1}, {1, 0, 0, 0}},
    };
    for (const Turn& turn : turns) {
        SCOPED_TRACE(&turn - turns);
        Mat3 M;
        for (int i = 1; i <= 3; ++i)
            for (int j = 1; j <= 3; ++j) M(i, j) = turn.M[static_cast<std::size_t>(3 * (i - 1) + j - 1)];
        Column q(9);
        double a = 0, b = 0, c = 0;
        MatrixToQuaternion(M, q, a, b, c);
        for (std::size_t k = 0; k < 4; ++k) EXPECT_NEAR(q[k + 1], turn.Q[k], 1e-15);
        // Angle and axis: the divisor has 1e-10 beside the sine of half the angle.
        const double theta = 2 * std::acos(turn.Q[0]);
        EXPECT_NEAR(q[5], theta, 1e-14);
        for (std::size_t k = 1; k < 4; ++k)
            EXPECT_NEAR(q[k + 5], turn.Q[k] / (std::sin(theta / 2) + 1e-10), 1e-14);
    }
}

TEST_F(Rotations, QuaternionOfAQuarterTurnGivesThePassiveAngle) {
    Mat3 M;
    RotMatrixXYZ(0, 0, kPi / 2, M);
    Column q(9);
    double a = 1, b = 1, c = 1;
    MatrixToQuaternion(M, q, a, b, c);
    EXPECT_NEAR(q[1], std::sqrt(0.5), 1e-14);
    EXPECT_NEAR(q[4], -std::sqrt(0.5), 1e-14);
    EXPECT_NEAR(a, 0, 1e-15);
    EXPECT_NEAR(b, 0, 1e-15);
    EXPECT_NEAR(c, M_PI / 2, 1e-9);
}

TEST_F(Rotations, QuaternionAtThePoleKeepsItsMiddleAngleAsItIs) {
    double a = 0, b = 0, c = 0;
    QuaternionToAngles(0.5, -0.5, 0.5, 0.5, a, b, c);
    EXPECT_EQ(a, 3.1415926535 / 4);
    EXPECT_EQ(b, 3.1415926535 / 2);  // not turned round
    EXPECT_EQ(c, 3.1415926535 / 4);
}
