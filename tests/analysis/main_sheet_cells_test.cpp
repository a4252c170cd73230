// What the main sheet shows: headings, texts and colours of each kind of row, and its numbers against closed
// forms computed here.
#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "analysis/main_sheet_job.h"
#include "core/job_tolerance.h"
#include "engine/fit_reference.h"
#include "support/degrees.h"

using namespace corvinade;

namespace {

constexpr double pi = std::numbers::pi;

class MainSheetCellsShown : public MainSheetJob {
protected:
    // What a row of a pair shall show, in mm and degrees.
    static std::vector<double> ClosedForms(const reference::Point& image, const reference::Point& target) {
        const auto forms = [](const reference::Point& p) {
            const double x = static_cast<double>(p[0]), y = static_cast<double>(p[1]);
            const double z = static_cast<double>(p[2]);
            return std::vector<double>{std::hypot(x, y), std::atan2(y, x) / kDegree, std::hypot(x, y, z),
                                       std::atan2(std::hypot(x, y), z) / kDegree};
        };
        const std::vector<double> a = forms(image), b = forms(target);
        std::vector<double> row;
        for (const reference::Point& p : {image, target})
            for (const reference::Real value : p) row.push_back(static_cast<double>(value));
        for (std::size_t axis = 0; axis < 3; ++axis)
            row.push_back(static_cast<double>(image[axis] - target[axis]));
        for (const std::size_t first : {0U, 2U}) {
            row.insert(row.end(), {a[first], a[first + 1], b[first], b[first + 1]});
            row.push_back(a[first] - b[first]);
            row.push_back(first == 0 ? std::remainder(a[1] - b[1], 360) : a[3] - b[3]);
        }
        return row;
    }
    static void UseTransformation(const std::array<reference::Real, 18>& truth) {
        for (int parameter = kTraX; parameter < kParameterEnd; ++parameter)
            ParameterValue(Job, parameter) = static_cast<double>(truth[static_cast<std::size_t>(parameter)]);
        Job.RotXCopy = Job.RotX;
        Job.RotYCopy = Job.RotY;
        Job.RotZCopy = Job.RotZ;
    }
    static std::vector<int> Angles() { return {11, 13, 15, 17, 19, 21}; }
};

}  // namespace

TEST_F(MainSheetCellsShown, TheFirstRowHoldsTheHeadingsAndTheLastColumnIsHidden) {
    FivePoints();
    Open();
    EXPECT_EQ(Cells().Cols, 23);
    EXPECT_EQ(Row(0),
              (Texts{"Point ID",  "MCS.x",         "MCS.y",     "MCS.z",         "OCS.x",     "OCS.y",
                     "OCS.z",     "dev.x",         "dev.y",     "dev.z",         "MCS.r.CYL", "MCS.Phi",
                     "OCS.r.CYL", "OCS.Phi",       "dev.r.CYL", "dev.Phi",       "MCS.R.SPH", "MCS.Theta.SPH",
                     "OCS.R.SPH", "OCS.Theta.SPH", "dev.R.SPH", "dev.Theta.SPH", ""}));
    EXPECT_EQ(Cells().FixedRows, 1);
    for (int col = 0; col < 23; ++col) {
        EXPECT_EQ(IsHiddenCol(Cells(), col), col == 22);
        EXPECT_EQ(Colour(0, col), kSystemColour);
    }
}

TEST_F(MainSheetCellsShown, PairsComeFirstThenStartPointsThenTargetPoints) {
    FivePoints();
    AddStart("S2", 0, 0, 1);
    Open();
    EXPECT_EQ(Rows(), 7);
    EXPECT_EQ(Col(0), (Texts{"P1", "P2", "P3", "S", "S2", "T"}));
    EXPECT_EQ(Col(22), (Texts{"1", "2", "3", "4", "5", "4"}));  // each in its own list
}

TEST_F(MainSheetCellsShown, ARowOfAPairShowsBothPointsTheirFormsAndTheDifferences) {
    FivePoints();
    Open();
    // A point on the X axis and one on the Y axis, so that the forms are known by heart.
    EXPECT_EQ(Row(1),
              (Texts{"P1",      "100.000", "0.000",   "0.000",   "101.000", "-2.000",  "0.000",  "-1.000",
                     "2.000",   "0.000",   "100.000", "0.0000",  "101.020", "-1.1344", "-1.020", "1.1344",
                     "100.000", "90.0000", "101.020", "90.0000", "-1.020",  "0.0000",  "1"}));
    EXPECT_EQ(Row(2),
              (Texts{"P2",      "0.000",   "200.000", "10.000",  "0.000",   "202.000", "9.500",  "0.000",
                     "-2.000",  "0.500",   "200.000", "90.0000", "202.000", "90.0000", "-2.000", "0.0000",
                     "200.250", "87.1376", "202.223", "87.3074", "-1.973",  "-0.1698", "2"}));
    EXPECT_EQ(Colour(1, 0), kGreen);
    EXPECT_EQ(YellowCols(1), (std::vector<int>{4, 5, 6}));
    EXPECT_EQ(YellowCols(3), (std::vector<int>{4, 5, 6}));
}

TEST_F(MainSheetCellsShown, AStartPointWithoutPartnerLeavesTargetAndDeviationsEmpty) {
    FivePoints();
    Open();
    EXPECT_EQ(Row(4),
              (Texts{"S", "1.000", "2.000", "3.000", "",      "",        "", "", "", "", "2.236", "63.4349",
                     "",  "",      "",      "",      "3.742", "36.6992", "", "", "", "", "4"}));
    EXPECT_EQ(Colour(4, 0), kYellow);
    EXPECT_EQ(YellowCols(4), (std::vector<int>{4, 5, 6, 10, 11, 14, 15, 18, 19}));
}

TEST_F(MainSheetCellsShown, ATargetPointWithoutPartnerLeavesStartAndDeviationsEmpty) {
    FivePoints();
    Open();
    EXPECT_EQ(Row(5), (Texts{"T",     "",        "", "", "4.000", "5.000", "6.000", "",        "", "", "", "",
                             "6.403", "51.3402", "", "", "",      "",      "8.775", "46.8616", "", "", "4"}));
    EXPECT_EQ(Colour(5, 0), kOrange);
    EXPECT_EQ(YellowCols(5), (std::vector<int>{4, 5, 6, 10, 11, 14, 15, 18, 19}));
}

TEST_F(MainSheetCellsShown, EveryOtherCellHasTheDesktopsColour) {
    FivePoints();
    Open();
    for (int row = 1; row < Rows(); ++row)
        for (int col = 1; col < 23; ++col)
            EXPECT_TRUE(Colour(row, col) == kYellow || Colour(row, col) == kSystemColour)
                << row << " " << col;
}

TEST_F(MainSheetCellsShown, StartPointsGoThroughTheTransformationOfTheJob) {
    const auto truth = Truth({12000, -7000, 800, 0.4, -0.3, 1.1, 1.2, 0.9, 1.1, 1, 0.02, 0.7, 0.03});
    AddCloud({.Points = 40, .Centre = {3000, -500, 200}, .Size = 9000, .Noise = 20, .Truth = truth});
    AddStart("S", -4000, 300, 77);
    SizeRest();
    UseTransformation(truth);
    Open();
    for (int i = 1; i <= 40; ++i) {
        const Vec3 p = StartPoint(i), q = TargetPoint(i);
        const std::vector<double> expected =
            ClosedForms(reference::Image(truth, {p(1), p(2), p(3)}), {q(1), q(2), q(3)});
        for (int col = 1; col <= 21; ++col) {
            const auto angles = Angles();
            const bool isAngle = std::find(angles.begin(), angles.end(), col) != angles.end();
            // Half a digit of what is shown, and what pi with ten digits costs the directions.
            EXPECT_NEAR(Number(i, col), expected[static_cast<std::size_t>(col - 1)],
                        (isAngle ? 0.5e-4 : 0.5e-3) + 2e-8)
                << "row " << i << " col " << col;
        }
    }
    const reference::Point image = reference::Image(truth, {-4000, 300, 77});
    for (int axis = 0; axis < 3; ++axis)
        EXPECT_NEAR(Number(41, 1 + axis), static_cast<double>(image[static_cast<std::size_t>(axis)]),
                    0.51e-3);
}

TEST_F(MainSheetCellsShown, AfterACalculationTheDeviationsAreItsResiduals) {
    AddPairs(12);
    CalculationJob::Open();
    Calculate();
    Open();
    for (int i = 1; i <= 12; ++i)
        for (int axis = 0; axis < 3; ++axis)
            EXPECT_NEAR(Number(i, 7 + axis), Calculation.v[static_cast<std::size_t>(3 * i - 2 + axis)],
                        0.51e-3);
}

TEST_F(MainSheetCellsShown, BeforeAnyCalculationStartPointsStandWhereTheyAre) {
    AddPairs(5);
    Open();
    for (int i = 1; i <= 5; ++i)
        for (int axis = 1; axis <= 3; ++axis)
            EXPECT_EQ(Cell(i, axis), FormatNumber(StartPoint(i)(axis), "0.000"));
}

// --- Directions -------------------------------------------------------------------------------------------

TEST_F(MainSheetCellsShown, APointOnTheNegativeYAxisHasPhiOfMinusNinetyDegrees) {
    AddPair({0, -5, 0}, {0, 5, 0});
    AddPair({0, -0.001, 7}, {0, -1e9, 7});
    Job.AngleDigits = 6;
    RhoFestlegung();
    SizeRest();
    Open();
    EXPECT_EQ(Cell(1, 11), "-90.000000");
    EXPECT_EQ(Cell(1, 13), "90.000000");
    EXPECT_EQ(Cell(2, 11), "-90.000000");
    EXPECT_EQ(Cell(2, 13), "-90.000000");
}

TEST_F(MainSheetCellsShown, APointOnTheNegativeXAxisHasPhiOfMinusOneHundredAndEightyDegrees) {
    AddPair({-5, 0, 0}, {-5, 1e-9, 0});
    AddPair({-5, -1e-9, 0}, {5, 0, 0});
    SizeRest();
    Open();
    EXPECT_EQ(Cell(1, 11), "-180.0000");
    EXPECT_EQ(Cell(1, 13), "180.0000");
    EXPECT_EQ(Cell(2, 11), "-180.0000");
    EXPECT_EQ(Cell(2, 13), "0.0000");
}

TEST_F(MainSheetCellsShown, DifferencesOfPhiAcrossTheSeamStaySmall) {
    for (const double degrees : {179.99, -179.99, 179.0, -179.0}) {
        const double phi = degrees * kDegree;
        AddPair({-1000, -1000 * std::tan(phi), 0}, {-1000, 1000 * std::tan(phi), 0});
    }
    AddPair({-1000, 0, 0}, {-1000, 1, 0});
    AddPair({-1000, 0, 0}, {-1000, -1, 0});
    AddPair({-1000, -1, 0}, {-1000, 0, 0});
    SizeRest();
    Open();
    // On the left half of the plane tan(phi) grows downwards from the negative X axis.
    EXPECT_NEAR(Number(1, 15), -2 * 0.01, 1.01e-4 / 2);
    EXPECT_NEAR(Number(2, 15), 2 * 0.01, 1.01e-4 / 2);
    EXPECT_NEAR(Number(3, 15), -2 * 1.0, 1.01e-4 / 2);
    EXPECT_NEAR(Number(4, 15), 2 * 1.0, 1.01e-4 / 2);
    const double one = std::atan(1e-3) / kDegree;
    EXPECT_NEAR(Number(5, 15), one, 1.01e-4 / 2);  // -180 minus (180 - one) goes round
    EXPECT_NEAR(Number(6, 15), -one, 1.01e-4 / 2);
    EXPECT_NEAR(Number(7, 15), one, 1.01e-4 / 2);
}

TEST_F(MainSheetCellsShown, ThetaIsMeasuredFromTheZAxis) {
    AddPair({0, 0, 5}, {3, 0, 3});
    AddPair({0, 4, 0}, {0, 3, -3});
    SizeRest();
    Open();
    EXPECT_NEAR(Number(1, 17), 0, 1e-3);  // its constant keeps the quotient below 1
    EXPECT_EQ(Cell(1, 19), "45.0000");
    EXPECT_EQ(Cell(2, 17), "90.0000");
    EXPECT_EQ(Cell(2, 19), "135.0000");
    EXPECT_EQ(Cell(2, 21), "-45.0000");
}

// --- Units ------------------------------------------------------------------------------------------------

TEST_F(MainSheetCellsShown, LengthsAndAnglesStandInTheUnitsOfTheJob) {
    FivePoints();
    Job.LengthUnitName = "inch";
    Job.LengthDigits = 5;
    Job.AngleUnitName = "grad (gon)";
    Job.AngleDigits = 2;
    RhoFestlegung();
    Open();
    EXPECT_EQ(Cell(1, 1), "3.93701");
    EXPECT_EQ(Cell(1, 4), "3.97638");
    EXPECT_EQ(Cell(1, 7), "-0.03937");
    EXPECT_EQ(Cell(1, 10), "3.93701");
    EXPECT_EQ(Cell(1, 16), "3.93701");
    EXPECT_EQ(Cell(2, 11), "100.00");
    EXPECT_EQ(Cell(2, 17), "96.82");  // 87.1376 degrees
    EXPECT_EQ(Cell(2, 21), "-0.19");
}

TEST_F(MainSheetCellsShown, AnglesMayStandInDegreesMinutesAndSeconds) {
    const auto at = [](double degrees, double minutes, double seconds) {
        return reference::Point{1, std::tan((degrees + minutes / 60 + seconds / 3600) * kDegree), 0};
    };
    AddPair(at(45, 20, 50.2), at(30, 10, 20.3));
    AddPair({1, 0, 0}, at(-20, -15, -30));
    SizeRest();
    Job.AngleUnitName = "360°60'60''";
    Job.AngleDigits = 0;
    RhoFestlegung();
    Open();
    EXPECT_EQ(Cell(1, 11), "45 20 50");
    EXPECT_EQ(Cell(1, 13), "30 10 20");
    EXPECT_EQ(Cell(1, 15), "15 10 30");
    EXPECT_EQ(Cell(2, 13), "-20 15 30");
}

TEST_F(MainSheetCellsShown, PhiAndThetaStayAnglesWhereOtherTablesShowLengthsOfArc) {
    FivePoints();
    Settings.PhiThetaAsQ = kTrue;
    Open();
    EXPECT_EQ(Cell(2, 11), "90.0000");
    EXPECT_EQ(Cell(2, 17), "87.1376");
}

TEST_F(MainSheetCellsShown, TheDecimalDelimiterIsThatOfTheSystem) {
    FivePoints();
    Headless.Decimal = ',';
    Open();
    EXPECT_EQ(Cell(1, 1), "100,000");
    EXPECT_EQ(Cell(1, 13), "-1,1344");
}

// --- Edge cases -------------------------------------------------------------------------------------------

TEST_F(MainSheetCellsShown, WithoutPairsAllPointsAreListedWithEmptyDeviations) {
    AddStart("A", 1, 2, 3);
    AddStart("B", 4, 5, 6);
    AddTarget("C", 7, 8, 9);
    SizeRest();
    Open();
    EXPECT_EQ(Messages(), Texts{});
    EXPECT_EQ(Col(0), (Texts{"A", "B", "C"}));
    EXPECT_EQ(Col(1), (Texts{"1.000", "4.000", ""}));
    EXPECT_EQ(Col(4), (Texts{"", "", "7.000"}));
    for (const int col : {7, 8, 9, 14, 15, 20, 21}) EXPECT_EQ(Col(col), (Texts{"", "", ""}));
    EXPECT_EQ(Col(22), (Texts{"1", "2", "1"}));
    EXPECT_EQ(Colour(1, 0), kYellow);
    EXPECT_EQ(Colour(3, 0), kOrange);
}

TEST_F(MainSheetCellsShown, CoordinatesBeyondAllBoundsAreShownAsTheyAre) {
    constexpr double inf = std::numeric_limits<double>::infinity();
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    AddPair({0, 0, 0}, {0, 0, 0});
    AddPair({0, 0, 0}, {0, 0, 0});
    AddPair({0, 0, 0}, {0, 0, 0});
    AddPair({0, 0, 0}, {0, 0, 0});
    SizeRest();
    Job.Target.X[2] = nan;
    Job.Target.Y[3] = inf;
    Job.Target.Z[3] = -inf;
    Job.Start.X[4] = 1e300;
    Job.Target.X[4] = -1e308;
    Open();
    for (int row = 0; row < Rows(); ++row)
        for (int col = 0; col < 23; ++col) Cell(row, col);
    EXPECT_EQ(Cell(2, 4), "NaN");
    EXPECT_EQ(Cell(2, 7), "NaN");
    EXPECT_EQ(Cell(2, 13), "NaN");
    EXPECT_EQ(Cell(3, 5), "Infinity");
    EXPECT_EQ(Cell(3, 6), "-Infinity");
    EXPECT_EQ(Cell(3, 8), "-Infinity");
    EXPECT_EQ(Cell(4, 1).size(), 305U);
    EXPECT_EQ(Cell(1, 11), "0.0000");
    for (int col = 0; col < 22; ++col) Click(0, col);
    Select({1, 0, 4, 21});
    Key("Ctrl+C");
    EXPECT_EQ(std::count(Headless.Clipboard.begin(), Headless.Clipboard.end(), '\t'), 4 * 21);
}

TEST_F(MainSheetCellsShown, ACoordinateThatHoldsNothingCountsAsZero) {
    FivePoints();
    Job.Start.X[1].reset();
    Job.Target.Y[1].reset();
    Open();
    EXPECT_EQ(Cell(1, 1), "0.000");
    EXPECT_EQ(Cell(1, 5), "0.000");
    EXPECT_EQ(Cell(1, 8), "0.000");
}

TEST_F(MainSheetCellsShown, OutsideTheSheetThereIsNothing) {
    FivePoints();
    Open();
    const MainSheetCells& cells = MainSheetWindow.Cells;
    for (const auto& [row, col] : {std::pair{-1, 0}, {6, 0}, {1, -1}, {1, 23}}) {
        EXPECT_EQ(MainSheetText(cells, row, col), "");
        EXPECT_EQ(MainSheetBackColor(cells, row, col), kSystemColour);
    }
    EXPECT_EQ(PairOfRow(cells, 3), 3);
    for (const int row : {-1, 0, 4, 5, 6}) EXPECT_EQ(PairOfRow(cells, row), 0);
}

// The deviations are (-1, 2, 0), (0, -2, 0.5) and (3, 0, 0).
TEST_F(MainSheetCellsShown, DeviationsInUseBeyondTheToleranceAreMarked) {
    FivePoints();
    PutTolerance(1.5, Job);
    Open();
    const std::vector<std::pair<int, int>> beyond = {{1, 8}, {2, 8}, {3, 7}};
    const auto marked = [] {
        std::vector<std::pair<int, int>> cells;
        for (int row = 1; row < Rows(); ++row)
            for (int col = 0; col < Cells().Cols; ++col)
                if (Colour(row, col) == kBeyondTolerance) cells.emplace_back(row, col);
        return cells;
    };
    EXPECT_EQ(marked(), beyond);
    Job.UseFlags[7] = 0;  // x of the third pair
    EXPECT_EQ(marked().size(), 2U);
}
