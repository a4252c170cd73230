// The second sets of angles of a solution, and the walk through the sets of rotation and affine part.
#include <cmath>
#include <limits>
#include <numbers>

#include "core/numbers.h"
#include "core/settings.h"
#include "engine/calculation_job.h"
#include "engine/field_number.h"
#include "engine/fit_reference.h"
#include "engine/inverted_solutions.h"
#include "engine/trafo_window.h"
#include "engine/transform.h"
#include "fit/matrix.h"
#include "support/degrees.h"

using namespace corvinade;

namespace {

using Texts = std::vector<std::string>;

class Alternatives : public CalculationJob {
protected:
    Alternatives() { Job.AngleDigits = 6; }

    // An open window that shows a solution, angles in degrees, without a calculation.
    static void Show(std::array<double, 3> rotation, std::array<double, 3> shear = {}) {
        RhoFestlegung();
        if (!IsLoaded("FormTrafoBerechnung")) Open();
        Job.RotX = Job.RotXCopy = rotation[0] * kDegree;
        Job.RotY = Job.RotYCopy = rotation[1] * kDegree;
        Job.RotZ = Job.RotZCopy = rotation[2] * kDegree;
        Job.AngleXY = shear[0] * kDegree;
        Job.Azimuth = shear[1] * kDegree;
        Job.AngleZtoXY = shear[2] * kDegree;
        const double* const values[] = {&Job.RotX,    &Job.RotY,    &Job.RotZ,
                                        &Job.AngleXY, &Job.Azimuth, &Job.AngleZtoXY};
        for (std::size_t k = 0; k < 6; ++k) SetText(*Fields()[k], WinkelFormat(*values[k]));
    }
    static std::array<Control*, 6> Fields() {
        return {&trafoWindow.TextRotX, &trafoWindow.TextRotY,    &trafoWindow.TextRotZ,
                &trafoWindow.TextXY,   &trafoWindow.TextAzimuth, &trafoWindow.TextZtoXY};
    }
    static Texts Rotation() {
        return {trafoWindow.TextRotX.Text, trafoWindow.TextRotY.Text, trafoWindow.TextRotZ.Text};
    }
    static Texts Shear() {
        return {trafoWindow.TextXY.Text, trafoWindow.TextAzimuth.Text, trafoWindow.TextZtoXY.Text};
    }
    static double Degrees(const Control& text) { return Val(text.Text); }

    static reference::Square ShownRotation() {
        return reference::Rotation(Degrees(trafoWindow.TextRotX) * kDegree,
                                   Degrees(trafoWindow.TextRotY) * kDegree,
                                   Degrees(trafoWindow.TextRotZ) * kDegree);
    }
    // The oblique axes, from their definition.
    static reference::Square Oblique(double xy, double az, double zt) {
        return {{{1, std::sin(xy), std::cos(az) * std::sin(zt)},
                 {0, std::cos(xy), std::sin(az) * std::sin(zt)},
                 {0, 0, std::cos(zt)}}};
    }
    static reference::Square ShownShear() {
        return Oblique(Degrees(trafoWindow.TextXY) * kDegree, Degrees(trafoWindow.TextAzimuth) * kDegree,
                       Degrees(trafoWindow.TextZtoXY) * kDegree);
    }
    static void ExpectNear(const reference::Square& A, const reference::Square& B, double tolerance) {
        for (std::size_t i = 0; i < 3; ++i)
            for (std::size_t j = 0; j < 3; ++j)
                EXPECT_NEAR(static_cast<double>(A[i][j]), static_cast<double>(B[i][j]), tolerance);
    }
    static bool Enabled() { return trafoWindow.BtnShowAlternativeRottAff.Enabled; }
};

}  // namespace

TEST_F(Alternatives, TheSecondSolutionIsTheSameRotationAndASecondPressReturns) {
    for (const std::array<double, 3> angles :
         {std::array<double, 3>{10, 20, 30}, {-100, 50, 170}, {5, -80, -3}, {90.5, 1, 0}}) {
        Show(angles);
        const Texts before = Rotation();
        const reference::Square R = ShownRotation();
        UserClick(trafoWindow.BtnSecSolution);
        EXPECT_NE(Rotation(), before);
        EXPECT_GT(std::fabs(Degrees(trafoWindow.TextRotX) - angles[0]), 90);
        ExpectNear(ShownRotation(), R, 5e-8);
        UserClick(trafoWindow.BtnSecSolution);
        EXPECT_EQ(Rotation(), before);
    }
}

TEST_F(Alternatives, TheSecondSolutionIsShownAndNotTaken) {
    Show({10, 20, 30});
    const JobRecord before = Job;
    UserClick(trafoWindow.BtnSecSolution);
    EXPECT_EQ(Job.RotX, before.RotX);
    EXPECT_EQ(Job.RotY, before.RotY);
    EXPECT_EQ(Job.RotZ, before.RotZ);
    EXPECT_EQ(trafoWindow.TextRotX.Text, "-170.000000");
    EXPECT_EQ(trafoWindow.TextRotY.Text, "160.000000");
    EXPECT_EQ(trafoWindow.TextRotZ.Text, "-150.000000");
}

TEST_F(Alternatives, TheSecondSolutionTogglesInEveryUnit) {
    for (const char* unit : {"grad (gon)", "rad", "mrad", "arcsecond", "arcminute", "360°60'60''"}) {
        SCOPED_TRACE(unit);
        Headless.Decimal = ',';
        Job.AngleUnitName = unit;
        Show({10, 20, 30});
        const Texts before = Rotation();
        UserClick(trafoWindow.BtnSecSolution);
        const Texts other = Rotation();
        EXPECT_NE(other, before);
        UserClick(trafoWindow.BtnSecSolution);
        const Texts again = Rotation();
        for (std::size_t k = 0; k < 3; ++k)
            EXPECT_NEAR(FieldAngle(again[k]), FieldAngle(before[k]), 2e-9 * Units.AngleFactor + 2e-6);
        UserClick(trafoWindow.BtnSecSolution);
        EXPECT_EQ(Rotation(), other);
    }
}

TEST_F(Alternatives, AFieldBeforeTheFirstCalculationReadsAsZero) {
    Show({0, 0, 0});
    SetText(trafoWindow.TextRotX, "float");
    UserClick(trafoWindow.BtnSecSolution);
    EXPECT_NEAR(std::fabs(Degrees(trafoWindow.TextRotX)), 180, 1e-6)
        << "as from the solution that begins at 0";
}

TEST_F(Alternatives, TheSecondAffineSolutionIsTheSameShearAndReturns) {
    Show({0, 0, 0}, {2, 30, 5});
    const Texts before = Shear();
    const reference::Square K = ShownShear();
    UserClick(trafoWindow.BtnSecAffSol);
    EXPECT_EQ(trafoWindow.TextXY.Text, before[0]);
    EXPECT_EQ(trafoWindow.TextAzimuth.Text, "-150.000000");
    EXPECT_EQ(trafoWindow.TextZtoXY.Text, "-5.000000");
    ExpectNear(ShownShear(), K, 5e-8);
    EXPECT_EQ(Job.Azimuth, 30 * kDegree) << "shown and not taken";
    EXPECT_EQ(Job.AngleZtoXY, 5 * kDegree);
    UserClick(trafoWindow.BtnSecAffSol);
    EXPECT_EQ(Shear(), before);
}

TEST_F(Alternatives, TheWalkIsReachableWhileTheAffinePartActs) {
    AddPairs();
    Open();
    EXPECT_FALSE(Enabled()) << "six parameters";
    UserSetValue(trafoWindow.CheckXY, 1);
    EXPECT_TRUE(Enabled());
    UserSetValue(trafoWindow.CheckXY, 0);  // "float" becomes "0"
    EXPECT_FALSE(Enabled());
    for (Control* const text : {&trafoWindow.TextXY, &trafoWindow.TextAzimuth, &trafoWindow.TextZtoXY}) {
        UserSetText(*text, "0.1");
        EXPECT_TRUE(Enabled());
        for (const char* off : {"not used", "0", "0.000", "-0", "", "abc"}) {
            UserSetText(*text, "1");
            UserSetText(*text, off);
            EXPECT_FALSE(Enabled()) << off;
        }
    }
    UserSetValue(trafoWindow.CheckAzimuth, 1);
    EXPECT_TRUE(Enabled());
    UserSetValue(trafoWindow.CheckZtoXY, 0);
    EXPECT_FALSE(Enabled());
}

TEST_F(Alternatives, WithoutAffinePartAndScaleACalculationLeavesTheWalkDisabled) {
    AddPairs();
    Open();
    Calculate();
    EXPECT_FALSE(Enabled());
    UserSetValue(trafoWindow.Option12, 1);
    Calculate();
    EXPECT_TRUE(Enabled());
}

TEST_F(Alternatives, TheWalkTakesAnEquivalentSolutionAndComesBack) {
    Show({10, 20, 30}, {2, 40, 5});
    Mat3 R, A;
    RotMatrixXYZ(Job.RotX, Job.RotY, Job.RotZ, R);
    BuildShearMatrix(Job.AngleXY, Job.Azimuth, Job.AngleZtoXY, A);
    Matrix list;
    InvertedSolutions(MatrixProduct(R, A), true, false, list);
    // Four rotations, each with two leanings of the third axis.
    ASSERT_EQ(list.Rows, 8);
    const reference::Square M =
        reference::Product(reference::Rotation(10 * kDegree, 20 * kDegree, 30 * kDegree),
                           Oblique(2 * kDegree, 40 * kDegree, 5 * kDegree));
    const auto expectTaken = [&list, &M](int row) {
        const double values[] = {Job.RotX, Job.RotY, Job.RotZ, Job.AngleXY, Job.Azimuth, Job.AngleZtoXY};
        for (int k = 0; k < 6; ++k) {
            const double angle = list(row, k < 3 ? k + 1 : k + 4);
            EXPECT_NEAR(values[k], angle, 1e-9);
            EXPECT_NEAR(Degrees(*Fields()[static_cast<std::size_t>(k)]), angle / kDegree, 1e-6);
        }
        EXPECT_EQ(Job.RotXCopy, Job.RotX) << "points go through the new angles";
        EXPECT_TRUE(IsTrue(Run.JobDirty));
        ExpectNear(reference::Product(ShownRotation(), ShownShear()), M, 1e-7);
    };
    const std::pair<int, int> steps[] = {{1, 5}, {3, 7}, {5, 1}, {7, 3}};
    for (const auto& [row, next] : steps)
        for (const int shown : {row, row + 1}) {  // the rotation alone says which row is on show
            SCOPED_TRACE(shown);
            Show({list(shown, 1) / kDegree, list(shown, 2) / kDegree, list(shown, 3) / kDegree},
                 {list(shown, 7) / kDegree, list(shown, 8) / kDegree, list(shown, 9) / kDegree});
            ::Run.JobDirty = kFalse;
            UserClick(trafoWindow.BtnShowAlternativeRottAff);
            expectTaken(next);
            UserClick(trafoWindow.BtnShowAlternativeRottAff);
            expectTaken(row);
        }
    EXPECT_TRUE(Messages().empty());
    EXPECT_EQ(::Run.WaitPointers, 0);
}

TEST_F(Alternatives, RowsWithoutASuccessorLeaveTheSolution) {
    // Where the third axis does not lean, its azimuth is free and fills the list with many rows.
    Show({10, 20, 30}, {2, 0, 0});
    const Texts rotation = Rotation(), shear = Shear();
    ::Run.JobDirty = kFalse;
    UserClick(trafoWindow.BtnShowAlternativeRottAff);
    EXPECT_EQ(Rotation(), rotation);
    EXPECT_EQ(Shear(), shear);
    EXPECT_EQ(Job.RotX, 10 * kDegree);
    EXPECT_FALSE(IsTrue(Run.JobDirty));
}

TEST_F(Alternatives, WithoutAffinePartTheWalkHasNoFifthRow) {
    Show({10, 20, 30});
    const Texts rotation = Rotation();
    UserClick(trafoWindow.BtnShowAlternativeRottAff);
    EXPECT_EQ(Rotation(), rotation);
}

TEST_F(Alternatives, AShownRotationThatNoRowHasChangesNothing) {
    Show({10, 20, 30}, {2, 40, 5});
    UserSetText(trafoWindow.TextRotX, "10.002");
    const Texts rotation = Rotation(), shear = Shear();
    const double before = Job.RotX;
    UserClick(trafoWindow.BtnShowAlternativeRottAff);
    EXPECT_EQ(Rotation(), rotation);
    EXPECT_EQ(Shear(), shear);
    EXPECT_EQ(Job.RotX, before);
}

TEST_F(Alternatives, AnglesThatAreNoNumbersAreNotReplaced) {
    for (const double bad :
         {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
        Show({bad, 20, 30}, {2, 40, 5});
        const Texts rotation = Rotation();
        UserClick(trafoWindow.BtnSecSolution);
        EXPECT_EQ(Rotation(), rotation);
        UserClick(trafoWindow.BtnShowAlternativeRottAff);
        EXPECT_EQ(Rotation(), rotation);
        Show({10, 20, 30}, {2, 40, bad});
        const Texts shear = Shear();
        UserClick(trafoWindow.BtnSecAffSol);
        EXPECT_EQ(Shear(), shear);
        UserClick(trafoWindow.BtnShowAlternativeRottAff);
        EXPECT_EQ(Shear(), shear);
    }
}

TEST_F(Alternatives, TheSecondSolutionNearTheLockAsksAndWhatIsCalculatedThenStands) {
    AddCloud({.Points = 8,
              .Truth = Truth({1, 2, 3, 10 * kDegree, 89.9 * kDegree, 20 * kDegree, 1, 1, 1, 1, 0, 0, 0})});
    RhoFestlegung();
    Open();
    Calculate();
    Settings.GimbalLockBorder = 0.5 * kDegree;
    Headless.Answers["message"].push_back("Yes");
    UserClick(trafoWindow.BtnSecSolution);
    EXPECT_EQ(Headless.Dialogs.size(), 1U);
    EXPECT_EQ(trafoWindow.CheckRotX.Value, 0);
    EXPECT_EQ(Job.RotX, 0);
    for (int parameter = kRotX; parameter <= kRotZ; ++parameter)
        EXPECT_EQ(RowOf(parameter).Text->Text, WinkelFormat(ParameterValue(Job, parameter)));
}
