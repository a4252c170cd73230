// The details window: every form of the solution, checked by putting the matrices together again.
#include <cmath>
#include <limits>
#include <numbers>

#include "cli/headless.h"
#include "core/desktop_defaults.h"
#include "core/job.h"
#include "core/numbers.h"
#include "core/settings.h"
#include "core/units.h"
#include "engine/details_texts.h"
#include "engine/fit_reference.h"
#include "engine/form_trafo_details.h"
#include "engine/monte_carlo.h"
#include "support/degrees.h"
#include "support/fixture.h"

using namespace corvinade;

namespace {

FormTrafoDetails& details = DetailsWindow;

const char* const kNoInverse =
    "No inverted Solutions found. Notice: A transformation with any scale in a SEPPARATE Axis does not have an "
    "inverted solution!";

class DetailsWindowTest : public Program {
protected:
    DetailsWindowTest() {
        Job.LengthUnitName = "millimeter";
        Job.AngleUnitName = "degree";
        Job.LengthDigits = 3;
        Job.AngleDigits = 6;
        RhoFestlegung();
    }
    static void Turn(double x, double y, double z) {  // degrees
        Job.RotX = x * kDegree;
        Job.RotY = y * kDegree;
        Job.RotZ = z * kDegree;
    }
    static void Open() { ShowWindow("FormTrafoDetails"); }
    static std::string Cell(Control& grid, int row, int col) { return CellText(grid.Grid, row, col); }
    static double Number(Control& grid, int row, int col) { return Val(Cell(grid, row, col)); }
    static std::string ColumnOf(Control& grid, int col) {
        std::string text;
        for (int row = 0; row < grid.Grid.Rows; ++row) text += Cell(grid, row, col) + "|";
        return text;
    }
};

reference::Square Shear(double xy, double az, double zt) {
    return {{{1, std::sin(xy), std::cos(az) * std::sin(zt)},
             {0, std::cos(xy), std::sin(az) * std::sin(zt)},
             {0, 0, std::cos(zt)}}};
}

reference::Square Diagonal(double x, double y, double z) {
    return {{{x, 0, 0}, {0, y, 0}, {0, 0, z}}};
}

void ExpectNear(const reference::Square& A, const reference::Square& B, double tolerance) {
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t j = 0; j < 3; ++j)
            EXPECT_NEAR(static_cast<double>(A[i][j]), static_cast<double>(B[i][j]), tolerance)
                << i + 1 << ", " << j + 1;
}

reference::Square ShownMatrix(Control& grid) {
    reference::Square M{};
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            M[static_cast<std::size_t>(i)][static_cast<std::size_t>(j)] = Val(CellText(grid.Grid, i, j));
    return M;
}

struct OrderGrid {
    const char* Axes;
    Control* Grid;
};
const OrderGrid kOrderGrids[] = {{"XYZ", &details.GridRotXYZ},
                                 {"ZYX", &details.GridRotZYX},
                                 {"ZXY", &details.GridRotZXY},
                                 {"ZXZ", &details.GridRotZXZ},
                                 {"ZYZ", &details.GridRotZYZ}};

// What turns coordinates into a frame that has been turned about its own axes one after the other.
reference::Square FromShownAngles(const OrderGrid& order, int solution) {
    reference::Square M = Diagonal(1, 1, 1);
    for (int k = 0; k < 3; ++k) {
        const double angle = Val(CellText(order.Grid->Grid, k + 1, solution)) * kDegree;
        M = reference::Product(reference::Turn(order.Axes[k] - 'X', -angle), M);
    }
    return M;
}

const std::vector<std::array<double, 3>> kRotations = {{10, 20, 30},   {-170, 80, 45}, {0, 0, 0},
                                                       {91, -60, 179}, {120, 10, -95}, {0.01, -0.02, 0.03},
                                                       {5, 100, 7}};

}  // namespace

TEST_F(DetailsWindowTest, BothSolutionsOfEveryOrderGiveTheRotationMatrix) {
    for (const auto& angles : kRotations) {
        SCOPED_TRACE(angles[0]);
        Turn(angles[0], angles[1], angles[2]);
        Open();
        const reference::Square R =
            reference::Rotation(angles[0] * kDegree, angles[1] * kDegree, angles[2] * kDegree);
        ExpectNear(ShownMatrix(details.GridRotMatrix), R, 0.5e-8 + 1e-15);
        for (const OrderGrid& order : kOrderGrids) {
            SCOPED_TRACE(order.Axes);
            for (const int solution : {1, 2}) ExpectNear(FromShownAngles(order, solution), R, 3e-8);
        }
        UnloadWindow("FormTrafoDetails");
    }
    EXPECT_TRUE(Messages().empty());
}

TEST_F(DetailsWindowTest, TheTwoSolutionsOfAnOrderAreDifferent) {
    Turn(10, 20, 30);
    Open();
    for (const OrderGrid& order : kOrderGrids) {
        double difference = 0;
        for (int row = 1; row <= 3; ++row)
            difference += std::fabs(Number(*order.Grid, row, 1) - Number(*order.Grid, row, 2));
        EXPECT_GT(difference, 180) << order.Axes;
    }
}

TEST_F(DetailsWindowTest, RotationsBearTheNamesOfTheirAxes) {
    Open();
    EXPECT_EQ(ColumnOf(details.GridRotXYZ, 0), "|Rot X|Rot Y'|Rot Z''|");
    EXPECT_EQ(ColumnOf(details.GridRotZYX, 0), "|Rot Z|Rot Y'|Rot X''|");
    EXPECT_EQ(ColumnOf(details.GridRotZXY, 0), "|Rot Z|Rot X'|Rot Y''|");
    EXPECT_EQ(ColumnOf(details.GridRotZXZ, 0), "|Rot Z|Rot X'|Rot Z''|");
    EXPECT_EQ(ColumnOf(details.GridRotZYZ, 0), "|Rot Z|Rot Y'|Rot Z''|");
    for (const OrderGrid& order : kOrderGrids) {
        EXPECT_EQ(Cell(*order.Grid, 0, 1), "Solution 1");
        EXPECT_EQ(Cell(*order.Grid, 0, 2), "Solution 2");
        EXPECT_EQ(order.Grid->Grid.Cols, 3);
    }
}

TEST_F(DetailsWindowTest, QuaternionAxisAndAnglesAreThoseOfTheRotation) {
    for (const auto& angles : kRotations) {
        SCOPED_TRACE(angles[0]);
        Turn(angles[0], angles[1], angles[2]);
        Open();
        const reference::Square R =
            reference::Rotation(angles[0] * kDegree, angles[1] * kDegree, angles[2] * kDegree);
        const double qw = Number(details.GridQuat, 0, 1), x = Number(details.GridQuat, 1, 1),
                     y = Number(details.GridQuat, 2, 1), z = Number(details.GridQuat, 3, 1);
        EXPECT_NEAR(qw * qw + x * x + y * y + z * z, 1, 4e-8);
        // The rotation matrix of a unit quaternion.
        ExpectNear({{{1 - 2 * (y * y + z * z), 2 * (x * y - qw * z), 2 * (x * z + qw * y)},
                     {2 * (x * y + qw * z), 1 - 2 * (x * x + z * z), 2 * (y * z - qw * x)},
                     {2 * (x * z - qw * y), 2 * (y * z + qw * x), 1 - 2 * (x * x + y * y)}}},
                   R, 1e-7);
        // Angle and axis are the quaternion again: q = (cos, axis sin) of the half angle.
        const double half = Number(details.GridQuat, 4, 1) * kDegree / 2;
        EXPECT_NEAR(std::cos(half), qw, 3e-8);
        for (int k = 1; k <= 3; ++k)
            EXPECT_NEAR(std::sin(half) * Number(details.GridQuat, 4 + k, 1), Number(details.GridQuat, k, 1),
                        5e-8)
                << k;
        ExpectNear(reference::Rotation(Number(details.GridQuat, 8, 1) * kDegree,
                                       Number(details.GridQuat, 9, 1) * kDegree,
                                       Number(details.GridQuat, 10, 1) * kDegree),
                   R, 5e-8);
        UnloadWindow("FormTrafoDetails");
    }
    Open();
    EXPECT_EQ(ColumnOf(details.GridQuat, 0),
              "qw|qx|qy|qz|Angel of Rot|RotVec .x |RotVec .y|RotVec .z|Rot x|Rot y'|Rot z''|");
}

// Published examples, details x y z: two of fixed angles W, P, R about x, y, z from the public tests of a
// converter of robot angles, one of A, B, C about z, y', x'' from the examples of a mathematics package, one
// of a robot's reference manual.
TEST_F(DetailsWindowTest, QuaternionsOfPublishedPosesComeOut) {
    struct Example {
        std::array<double, 3> AboutXYZ;  // Rz(third) Ry(second) Rx(first), degrees
        std::array<double, 4> Quaternion;
        double Tolerance;
    };
    const Example examples[] = {
        {{-50, 125, 67}, {0.142067, -0.606432, 0.562658, 0.543574}, 1e-6},
        {{13.8274, -15.7247, 31.445}, {0.942141, 0.15158, -0.0984059, 0.28233}, 1e-5},
        {{90, 0, 0}, {0.7071, 0.7071, 0, 0}, 5e-5},
        {{0, 30, 0}, {0.965926, 0, 0.258819, 0}, 1e-6},
    };
    for (const Example& example : examples) {
        SCOPED_TRACE(&example - examples);
        // The parameters turn the frame, poses the point.
        Turn(-example.AboutXYZ[0], -example.AboutXYZ[1], -example.AboutXYZ[2]);
        Open();
        // A quaternion and its negative are the same rotation.
        const double sign = Number(details.GridQuat, 0, 1) * example.Quaternion[0] < 0 ? -1 : 1;
        for (int k = 0; k < 4; ++k)
            EXPECT_NEAR(sign * Number(details.GridQuat, k, 1),
                        example.Quaternion[static_cast<std::size_t>(k)], example.Tolerance)
                << k;
        UnloadWindow("FormTrafoDetails");
    }
}

TEST_F(DetailsWindowTest, MatricesOfTheChainStandWithEightDigits) {
    Turn(30, 0, 0);
    Job.TraX = 1234.5678;
    Job.TraY = -0.0004;
    Job.TraZ = 7;
    Job.ScaleX = 2;
    Job.ScaleY = 2;
    Job.ScaleZ = 2;
    Job.AngleXY = 30 * kDegree;
    Job.Azimuth = 90 * kDegree;
    Job.AngleZtoXY = 60 * kDegree;
    Open();
    const auto rows = [](Control& grid) {
        return RectText(grid.Grid, {0, 0, grid.Grid.Rows - 1, grid.Grid.Cols - 1});
    };
    EXPECT_EQ(rows(details.GridRotMatrix), CrLf("1.00000000\t0.00000000\t0.00000000\n"
                                                "0.00000000\t0.86602540\t0.50000000\n"
                                                "0.00000000\t-0.50000000\t0.86602540"));
    EXPECT_EQ(rows(details.GridHomogen), CrLf("1.00000000\t0.00000000\t0.00000000\t1234.568\n"
                                              "0.00000000\t0.86602540\t0.50000000\t0.000\n"
                                              "0.00000000\t-0.50000000\t0.86602540\t7.000\n"
                                              "0.00000000\t0.00000000\t0.00000000\t1.00000000"));
    EXPECT_EQ(rows(details.GridScaleMatrix), CrLf("2.00000000\t0.00000000\t0.00000000\n"
                                                  "0.00000000\t2.00000000\t0.00000000\n"
                                                  "0.00000000\t0.00000000\t2.00000000"));
    EXPECT_EQ(rows(details.GridAffineMatrix), CrLf("1.00000000\t0.50000000\t0.00000000\n"
                                                   "0.00000000\t0.86602540\t0.86602540\n"
                                                   "0.00000000\t0.00000000\t0.50000000"));
}

TEST_F(DetailsWindowTest, EverySolutionOfTheInverseLeadsBack) {
    Turn(10, 20, 30);
    Job.TraX = 100;
    Job.TraY = -200;
    Job.TraZ = 300;
    Job.ScaleX = Job.ScaleY = Job.ScaleZ = Job.ScaleXYZ = 1.25;
    Open();
    ASSERT_EQ(details.GridInverse.Grid.Rows, 13);
    ASSERT_GE(details.GridInverse.Grid.Cols, 2);
    EXPECT_EQ(ColumnOf(details.GridInverse, 0),
              "|tra x|tra y|tra z|rot x|rot y'|rot z''|scale x|scale y|scale z|xy|Azimuth z|z to xy|");
    const reference::Square forward = reference::Product(
        reference::Rotation(10 * kDegree, 20 * kDegree, 30 * kDegree), Diagonal(1.25, 1.25, 1.25));
    for (int col = 1; col < details.GridInverse.Grid.Cols; ++col) {
        EXPECT_EQ(Cell(details.GridInverse, 0, col), "Solution " + std::to_string(col));
        const auto value = [col](int row) { return Number(details.GridInverse, row, col); };
        const reference::Square back = reference::Product(
            reference::Product(
                reference::Rotation(value(4) * kDegree, value(5) * kDegree, value(6) * kDegree),
                Shear(value(10) * kDegree, value(11) * kDegree, value(12) * kDegree)),
            Diagonal(value(7), value(8), value(9)));
        ExpectNear(reference::Product(back, forward), Diagonal(1, 1, 1), 1e-6);
        // The origin of the start system has gone to T; back it must come.
        for (std::size_t i = 0; i < 3; ++i)
            EXPECT_NEAR(static_cast<double>(back[i][0] * 100 - back[i][1] * 200 + back[i][2] * 300) +
                            value(1 + static_cast<int>(i)),
                        0, 2e-3);
    }
    EXPECT_TRUE(Messages().empty());
}

TEST_F(DetailsWindowTest, AnInverseWithoutSolutionIsSaidOnceAndFillsOneCell) {
    Turn(0, 0, 30);
    Job.ScaleX = 2;
    Open();
    EXPECT_EQ(Messages(), std::vector<std::string>{kNoInverse});
    EXPECT_EQ(details.GridInverse.Grid.Rows, 1);
    EXPECT_EQ(details.GridInverse.Grid.Cols, 1);
    EXPECT_EQ(Cell(details.GridInverse, 0, 0), "no solution");
    EXPECT_EQ(details.GridInverse.Grid.FixedRows, 0);
    // The next solution has headings again.
    Job.ScaleX = 1;
    DetailFormFuellen();
    EXPECT_EQ(details.GridInverse.Grid.Rows, 13);
    EXPECT_EQ(details.GridInverse.Grid.FixedRows, 1);
    EXPECT_EQ(::Run.WaitPointers, 0);
}

TEST_F(DetailsWindowTest, SpreadStandsByKindOnlyWhenTheRunsHaveEnded) {
    MonteCarlo.MCResults = Matrix(18, 3);
    for (int k = 1; k <= 18; ++k)
        for (int i = 1; i <= 3; ++i) MonteCarlo.MCResults(k, i) = k * (i - 2);  // mean 0, sigma k
    Open();
    EXPECT_EQ(details.GridMonteCarlo.Grid.Rows, 19);
    EXPECT_EQ(ColumnOf(details.GridMonteCarlo, 0) + ColumnOf(details.GridMonteCarlo, 1),
              std::string(38, '|'));
    MonteCarlo.MonteCarloDone = kTrue;
    Job.LengthUnitName = "meter";
    Job.AngleUnitName = "mrad";
    Job.AngleDigits = 1;
    RhoFestlegung();
    DetailFormFuellen();
    EXPECT_EQ(
        ColumnOf(details.GridMonteCarlo, 0),
        "|Tra x|Tra y|Tra z|Rot x|Rot y|Rot z|Scale x|Scale y|Scale z|Scale xyz|XY|Azimuth|ZtoXY|R_Dist|"
        "vec_x|vec_y|vec_z|s of sigmaXYZ|");
    EXPECT_EQ(ColumnOf(details.GridMonteCarlo, 1),
              "|0.001|0.002|0.003|4000.0|5000.0|6000.0|7.000000|8.000000|9.000000|10.000000|11000.0|12000.0|"
              "13000.0|0.014|0.015|0.016|0.017|0.018|");
}

TEST_F(DetailsWindowTest, RunsWithoutNoiseHaveNoSpreadOnTheDesktop) {
    MonteCarlo.MCResults = Matrix(18, 3);
    MonteCarlo.MonteCarloDone = kTrue;
    MonteCarlo.WithoutNoise = true;
    Open();
    EXPECT_EQ(ColumnOf(details.GridMonteCarlo, 1).substr(0, 12), "|0.000|0.000") << "as scripts know it";
    DesktopDefaults.ResultFields = true;
    DetailFormFuellen();
    EXPECT_EQ(ColumnOf(details.GridMonteCarlo, 1).find("0.000"), std::string::npos);
    EXPECT_NE(ColumnOf(details.GridMonteCarlo, 1).find("– (noise 0)"), std::string::npos);
    DesktopDefaults.ResultFields = false;
}

TEST_F(DetailsWindowTest, TheCheckGoesToTheSettingsWithOk) {
    ::Run.SettingsFilePath = Write("Corvinade.ini", CrLf("[Settings]\nCheckForGimbalLock=False\n"));
    Open();
    EXPECT_EQ(details.Check1.Value, 0);
    UserSetValue(details.Check1, 1);
    EXPECT_TRUE(IsTrue(Settings.CheckForGimbalLock));
    EXPECT_NE(IniWertLesen("CheckForGimbalLock"), SettingText("CheckForGimbalLock")) << "written by OK alone";
    UserClick(details.BtnOK);
    EXPECT_FALSE(IsLoaded("FormTrafoDetails"));
    EXPECT_EQ(IniWertLesen("CheckForGimbalLock"), SettingText("CheckForGimbalLock"));
    Open();
    EXPECT_EQ(details.Check1.Value, 1);
}

TEST_F(DetailsWindowTest, TheCheckFillsTheWindowAgainOnlyBehindACalculation) {
    Open();
    Job.RotX = 30 * kDegree;
    UserSetValue(details.Check1, 1);
    EXPECT_EQ(Cell(details.GridRotMatrix, 1, 1), "1.00000000");
    ::Run.CalcDone = kTrue;
    UserSetValue(details.Check1, 0);
    EXPECT_EQ(Cell(details.GridRotMatrix, 1, 1), "0.86602540");
    EXPECT_FALSE(IsTrue(Settings.CheckForGimbalLock));
}

TEST_F(DetailsWindowTest, TheLabelExplainsTheQuaternionInThreeLines) {
    Open();
    EXPECT_EQ(
        details.LabelQuat.Text,
        CrLf(
            "qw, qx, qy and qz is the Quaternion of the done Rotation calculated from the Rotation Matrix. \n"
            "Angel of Rot is the Rotation around the Vector Vec x; Vec y and Vec z, calculated from the "
            "Quaternion\n"
            "Rot x; Rot y' and Rot z'' is the Rotation calculated from the Quaternion"));
}

TEST_F(DetailsWindowTest, ParametersThatAreNoNumbersShowSo) {
    for (const double bad :
         {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(), 1e308, 1e-320})
        for (double* const value :
             {&Job.RotX, &Job.RotY, &Job.ScaleX, &Job.AngleXY, &Job.AngleZtoXY, &Job.TraX})
            for (const char* unit : {"degree", "360°60'60''"}) {
                const double before = *value;
                *value = bad;
                Job.AngleUnitName = unit;
                RhoFestlegung();
                Open();
                UserClick(details.BtnClipALL);
                if (value == &Job.RotX && !std::isfinite(bad)) {
                    EXPECT_NE(Cell(details.GridRotXYZ, 1, 1).find("NaN"), std::string::npos)
                        << Cell(details.GridRotXYZ, 1, 1);
                    EXPECT_EQ(Cell(details.GridRotMatrix, 1, 1), "NaN");
                    EXPECT_EQ(Cell(details.GridQuat, 0, 1), "NaN");
                }
                UnloadWindow("FormTrafoDetails");
                *value = before;
            }
    EXPECT_EQ(::Run.LastPlatformError, "");
}

TEST_F(DetailsWindowTest, DegreesMinutesAndSecondsAndACommaStandInTheGrids) {
    Headless.Decimal = ',';
    Turn(-12 - 30.5 / 60, 0, 0);
    Job.TraX = 1.5;
    Job.AngleUnitName = "360°60'60''";
    Job.AngleDigits = 1;
    RhoFestlegung();
    Open();
    // One of the two slots holds the plain triple.
    const int slot = Cell(details.GridRotXYZ, 2, 1) == "0 0 0,0" ? 1 : 2;
    EXPECT_EQ(Cell(details.GridRotXYZ, 1, slot), "-12 30 30,0");
    EXPECT_EQ(Cell(details.GridHomogen, 0, 3), "1,500");
    EXPECT_EQ(Cell(details.GridRotMatrix, 0, 0), "1,00000000");
    EXPECT_EQ(Cell(details.GridInverse, 1, 1), "-1,500");
}

TEST_F(DetailsWindowTest, EveryButtonPutsItsTextOnTheClipboard) {
    Turn(10, 20, 30);
    Job.TraX = 5;
    Open();
    const SolutionDetails shown = details.Shown;
    const std::vector<std::pair<Control*, std::string>> buttons = {
        {&details.BtnClipR, RotationMatrixText(shown)},
        {&details.Command1, AffineMatrixText(shown)},
        {&details.Command2, ScaleMatrixText(shown)},
        {&details.Command3, InverseText(shown)},
        {&details.BtnClipHomogen, HomogenText(shown)},
        {&details.BtnClipRotXYZ, RotationText(shown, RotationOrder::XYZ)},
        {&details.BtnClipRotZYX, RotationText(shown, RotationOrder::ZYX)},
        {&details.BtnClipRotZXY, RotationText(shown, RotationOrder::ZXY)},
        {&details.BtnClipRotZXZ, RotationText(shown, RotationOrder::ZXZ)},
        {&details.BtnClipRotZYZ, RotationText(shown, RotationOrder::ZYZ)},
        {&details.BtnClipQuat, QuaternionText(shown)},
        {&details.BtnClipMonteCarlo, MonteCarloText(shown)},
        {&details.BtnClipALL, DetailsText(shown)}};
    for (const auto& [button, text] : buttons) {
        UserClick(*button);
        EXPECT_EQ(Headless.Clipboard, text) << button->Entry->Name;
    }
    EXPECT_TRUE(Messages().empty());
    Headless.ClipboardRefuses = true;
    const std::string before = Headless.Clipboard;
    for (const auto& [button, text] : buttons) UserClick(*button);
    EXPECT_EQ(Messages(),
              std::vector<std::string>(buttons.size(), "Clipboard coud not be set due unknown error"));
    EXPECT_EQ(Headless.Clipboard, before);
}

TEST_F(DetailsWindowTest, AnOpenWindowIsFilledAgainWhenItIsAskedFor) {
    ShowDetails();
    EXPECT_EQ(Cell(details.GridRotMatrix, 1, 1), "1.00000000");
    Job.RotX = 30 * kDegree;
    ShowDetails();
    EXPECT_EQ(Cell(details.GridRotMatrix, 1, 1), "0.86602540");
}
