// ThreeAngles that leave the program make their rotation again, at gimbal lock too.
#include "engine/sound_angles.h"

#include <cmath>
#include <numbers>

#include "analysis/exports.h"
#include "core/job.h"
#include "core/notes.h"
#include "core/numbers.h"
#include "core/settings.h"
#include "core/units.h"
#include "engine/calculation_job.h"
#include "engine/solution_details.h"
#include "engine/transform.h"
#include "fit/matrix.h"
#include "fit/rotations.h"
#include "support/degrees.h"

using namespace corvinade;

namespace {

using ThreeAngles = std::array<double, 3>;

// The rotation that turns coordinates by the angle about an axis, 0 to 2, written out once more.
Mat3 Turn(char axis, double t) {
    const double c = std::cos(t), s = std::sin(t);
    Mat3 R;
    const auto set = [&R](std::initializer_list<double> values) {
        int k = 0;
        for (const double value : values) {
            R(k / 3 + 1, k % 3 + 1) = value;
            ++k;
        }
    };
    if (axis == 'X') set({1, 0, 0, 0, c, s, 0, -s, c});
    if (axis == 'Y') set({c, 0, -s, 0, 1, 0, s, 0, c});
    if (axis == 'Z') set({c, s, 0, -s, c, 0, 0, 0, 1});
    return R;
}
Mat3 Turned(const std::string& axes, const ThreeAngles& t) {
    return MatrixProduct(Turn(axes[2], t[2]), MatrixProduct(Turn(axes[1], t[1]), Turn(axes[0], t[0])));
}
double Difference(const Mat3& A, const Mat3& B) {
    double largest = 0;
    for (int i = 1; i <= 3; ++i)
        for (int j = 1; j <= 3; ++j) largest = std::max(largest, std::fabs(A(i, j) - B(i, j)));
    return largest;
}

const std::vector<double> kOuter = {0, 146.4, 123.6, -90, 45, 180, -179.999, 1e-7};
// At the poles of either kind of order, beside them, and in between.
const std::vector<double> kMiddle = {90,         -90,  0,    180,         89.9999999, 90 - 1e-10,
                                     -90 + 1e-6, 1e-9, 1e-6, 179.9999999, 30};

class SoundAngles : public CalculationJob {};

}  // namespace

TEST_F(SoundAngles, EverySetOfEveryOrderMakesTheRotation) {
    for (const RotationOrder order : kRotationOrders)
        for (const double first : kOuter)
            for (const double second : kMiddle)
                for (const double third : kOuter) {
                    const Mat3 R =
                        Turned(AxesOf(order), {first * kDegree, second * kDegree, third * kDegree});
                    RotationSolutions found;
                    SoundSolutions(order, R, found);
                    const RotationSolutions plain = SolutionsOfMatrix(order, R);
                    for (const ThreeAngles& set : {found.First, found.Second})
                        EXPECT_LT(Difference(Turned(AxesOf(order), set), R), 1.5e-9)
                            << AxesOf(order) << " " << first << " " << second << " " << third;
                    for (const ThreeAngles& set : {plain.First, plain.Second})
                        EXPECT_LT(Difference(Turned(AxesOf(order), set), R), 3e-12) << AxesOf(order);
                }
}

TEST_F(SoundAngles, WhatTheDecompositionsFindRightStaysToTheLastBit) {
    for (const double first : {10.0, -130.0, 77.0})
        for (const double second : {20.0, -60.0, 110.0}) {
            Mat3 R;
            RotMatrixXYZ(first * kDegree, second * kDegree, 0.5, R);
            Vec3 a, b;
            EulerFromMatrixXYZ(R, a, b);
            RotationSolutions found;
            EXPECT_FALSE(SoundSolutions(RotationOrder::XYZ, R, found));
            for (int k = 1; k <= 3; ++k) {
                EXPECT_EQ(found.First[static_cast<std::size_t>(k - 1)], a(k));
                EXPECT_EQ(found.Second[static_cast<std::size_t>(k - 1)], b(k));
            }
        }
}

TEST_F(SoundAngles, AtThePoleTheQuaternionHasTheAnglesOfTheRotation) {
    for (const double first : kOuter)
        for (const double second : kMiddle)
            for (const double third : kOuter) {
                Mat3 R;
                RotMatrixXYZ(first * kDegree, second * kDegree, third * kDegree, R);
                const QuaternionForms forms =
                    SoundQuaternionForms(R, Vec3(first * kDegree, second * kDegree, third * kDegree));
                Mat3 again;
                RotMatrixXYZ(forms.Angles(1), forms.Angles(2), forms.Angles(3), again);
                EXPECT_LT(Difference(again, R), 1.5e-9) << first << " " << second << " " << third;
                // R p = p + sin (e x p) + (1 - cos) e x (e x p)
                const double s = std::sin(forms.Angle), c = 1 - std::cos(forms.Angle);
                const Vec3& e = forms.Axis;
                for (int j = 1; j <= 3; ++j) {
                    Vec3 p;
                    p(j) = 1;
                    const auto cross = [](const Vec3& u, const Vec3& v) {
                        return Vec3(u(2) * v(3) - u(3) * v(2), u(3) * v(1) - u(1) * v(3),
                                    u(1) * v(2) - u(2) * v(1));
                    };
                    const Vec3 once = cross(e, p), twice = cross(e, once);
                    for (int i = 1; i <= 3; ++i)
                        EXPECT_NEAR(p(i) + s * once(i) + c * twice(i), R(i, j), 1.5e-9);
                }
            }
}

TEST_F(SoundAngles, TheFrameFileHasTheAnglesOfAFrameAtThePole) {
    Job.RotX = 146.4 * kDegree;
    Job.RotY = 90 * kDegree;
    Job.RotZ = 123.6 * kDegree;
    const std::string text = RobCadText("", "", "R");
    EXPECT_NE(text.find("\r\n1.4640E+02 , 9.0000E+01 , 1.2360E+02 ;\r\n"), std::string::npos)
        << text.substr(0, 300);
    ASSERT_EQ(Notes.List.size(), 1u);
    EXPECT_EQ(Notes.List[0].Code, NoteCode::MatrixAngles);
    RobCadText("", "", "R");
    DetailsOfSolution();
    EXPECT_EQ(Notes.List.size(), 1u) << "once";
    EXPECT_EQ(Notes.List[0].Count, 1);
}

TEST_F(SoundAngles, AwayFromThePoleNothingIsNoted) {
    Job.RotX = 146.4 * kDegree;
    Job.RotY = 60 * kDegree;
    Job.RotZ = 123.6 * kDegree;
    EXPECT_NE(RobCadText("", "", "R").find("\r\n1.4640E+02 , 6.0000E+01 , 1.2360E+02 ;\r\n"),
              std::string::npos);
    DetailsOfSolution();
    EXPECT_TRUE(Notes.List.empty());
}

TEST_F(SoundAngles, TheDetailsOfAFrameAtThePoleMakeItInEveryOrder) {
    Job.RotX = 146.4 * kDegree;
    Job.RotY = -90 * kDegree;
    Job.RotZ = 23.6 * kDegree;
    Job.ScaleX = Job.ScaleY = Job.ScaleZ = 1;
    const SolutionDetails details = DetailsOfSolution();
    for (const RotationOrder order : kRotationOrders)
        for (const ThreeAngles& set : {details.Of(order).First, details.Of(order).Second})
            EXPECT_LT(Difference(Turned(AxesOf(order), set), details.Rotation), 1.5e-9) << AxesOf(order);
    EXPECT_NEAR(details.QuaternionAngles(1), Job.RotX, 1e-12);
}

TEST_F(SoundAngles, TheSecondSolutionInTheFieldsIsOneAtThePoleToo) {
    AddPairs();
    Open();
    Job.RotX = 40 * kDegree;
    Job.RotY = 90 * kDegree;
    Job.RotZ = 25 * kDegree;
    Settings.GimbalLockBorder = 0;
    UserClick(TrafoWindow.BtnSecSolution);
    const auto angle = [](const Control& field) { return Val(field.Text) * kDegree; };
    const ThreeAngles shown = {angle(TrafoWindow.TextRotX), angle(TrafoWindow.TextRotY),
                               angle(TrafoWindow.TextRotZ)};
    EXPECT_LT(Difference(Turned("XYZ", shown), Turned("XYZ", {Job.RotX, Job.RotY, Job.RotZ})), 1e-5);
}
