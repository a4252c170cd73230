// The chart of a column of the main sheet.
#include "analysis/form_grafik.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "analysis/main_sheet_job.h"
#include "core/form_main.h"

using namespace corvinade;

namespace {

class Chart : public MainSheetJob {
protected:
    ~Chart() override { UnloadWindow("FormGrafik"); }

    static void Select(int row, int col, int row2 = 0) {
        UserSelectCells(Sheet(), {row, col, row2 == 0 ? row : row2, col});
    }
    static void Graph() { EXPECT_TRUE(UserClick(Main.MenuEditGraphData)); }
    static std::vector<std::pair<double, double>> Shown() {
        std::vector<std::pair<double, double>> points;
        for (const ChartPoint& point : GrafikWindow.Points) points.emplace_back(point.Index, point.Value);
        return points;
    }
    using Points = std::vector<std::pair<double, double>>;
    static constexpr int kDevX = 7, kTargetX = 4, kPhi = 11;
};

TEST_F(Chart, ALargestValueOfZeroGivesAnAxisToATenth) {
    EXPECT_DOUBLE_EQ(ChartLimit(0), 0.1);
}

// Worked out by hand, step by step: times 1.3, down to hundredths, down to fiftieths and one more, then the
// next tenth.
TEST_F(Chart, TheAxisRunsToTheNextTenthAboveOnePointThreeTimesTheLargest) {
    EXPECT_DOUBLE_EQ(ChartLimit(0.01), 0.1);   // 0.013 -> 0.01 -> 0.02 -> (0 + 1) / 10
    EXPECT_DOUBLE_EQ(ChartLimit(0.07), 0.2);   // 0.091 -> 0.09 -> 0.10 -> (1 + 1) / 10
    EXPECT_DOUBLE_EQ(ChartLimit(0.5), 0.7);    // 0.65 -> 0.65 -> 0.66 -> (6 + 1) / 10
    EXPECT_DOUBLE_EQ(ChartLimit(2.03), 2.7);   // 2.639 -> 2.63 -> 2.64 -> (26 + 1) / 10
    EXPECT_DOUBLE_EQ(ChartLimit(12.5), 16.3);  // 16.25 -> 16.25 -> 16.26 -> (162 + 1) / 10
    // 1300.481 -> 1300.48 -> 1300.50 -> (13005 + 1) / 10
    EXPECT_DOUBLE_EQ(ChartLimit(1000.37), 1300.6);
}

TEST_F(Chart, EveryValueLiesInsideTheAxis) {
    for (double m = 1e-6; m < 1e9; m *= 1.37) {
        const double limit = ChartLimit(m);
        EXPECT_GT(limit, m);
        EXPECT_LE(limit, 1.3 * m + 0.1 + 0.02 + 1e-9 * m);
    }
}

TEST_F(Chart, WithoutIdenticalPointsThereIsNothingToShow) {
    AddStart("S", 1, 2, 3);
    AddTarget("T", 4, 5, 6);
    SizeRest();
    Open();
    Select(1, kTargetX);
    Graph();
    EXPECT_EQ(Messages(), Texts{"There are no Points to graph!"});
    EXPECT_FALSE(IsLoaded("FormGrafik"));
}

TEST_F(Chart, WithoutTheMainSheetNoColumnIsChosen) {
    FivePoints();
    Graph();
    EXPECT_EQ(Messages(), Texts{"Open the main sheet and click a cell of the column first."});
    EXPECT_FALSE(IsLoaded("FormGrafik"));
}

TEST_F(Chart, ASelectionOverTwoRowsIsRefused) {
    FivePoints();
    Open();
    Select(1, kDevX, 2);
    Graph();
    Select(3, kDevX, 1);
    Graph();
    EXPECT_EQ(Messages(), (Texts{"Only one row can be selected", "Only one row can be selected"}));
    EXPECT_FALSE(IsLoaded("FormGrafik"));
}

TEST_F(Chart, TheValuesOfAllRowsOfTheSelectedColumnAreShown) {
    FivePoints();
    Open();
    Select(2, kDevX);
    Graph();
    EXPECT_TRUE(Messages().empty());
    ASSERT_TRUE(IsLoaded("FormGrafik"));
    EXPECT_EQ(Shown(), (Points{{1, -1}, {2, 0}, {3, 3}})) << "points without a partner have no deviation";
    EXPECT_DOUBLE_EQ(GrafikWindow.Max, 4);  // 3.9 -> 3.90 -> 3.92 -> (39 + 1) / 10
    EXPECT_DOUBLE_EQ(GrafikWindow.Min, -4);
    EXPECT_EQ(GrafikWindow.Title, "Datas Graph");
    EXPECT_EQ(GrafikWindow.ValueTitle, "[dev.]");
    EXPECT_EQ(GrafikWindow.CategoryTitle, "");
    // Another column in the open window; rows without a value leave their number out.
    Select(1, kTargetX);
    Graph();
    EXPECT_EQ(Shown(), (Points{{1, 101}, {2, 0}, {3, 27}, {5, 4}}));
}

TEST_F(Chart, RowsCountAsTheyStandInTheSheet) {
    FivePoints();
    Open();
    SortGrid(Cells(), kDevX, true);
    Select(1, kDevX);
    Graph();
    std::vector<double> values;
    for (const ChartPoint& point : GrafikWindow.Points) {
        EXPECT_EQ(Cell(static_cast<int>(point.Index), kDevX), FormatNumber(point.Value, "0.000"));
        values.push_back(point.Value);
    }
    EXPECT_TRUE(std::is_sorted(values.rbegin(), values.rend()));
    EXPECT_EQ(values.size(), 3U);
}

TEST_F(Chart, AnglesInMinutesAndSecondsAreShownAsDegrees) {
    AddPair({1, 0, 0}, {0, 0, 0});
    AddPair({1, 1, 0}, {0, 0, 0});
    AddPair({0, 2, 0}, {0, 0, 0});
    SizeRest();
    Job.AngleDigits = 4;
    for (const char* unit : {"degree", kDegreeMinuteSecond}) {
        Job.AngleUnitName = unit;
        RhoFestlegung();
        Open();
        Select(1, kPhi);
        Graph();
        ASSERT_EQ(GrafikWindow.Points.size(), 3U) << unit;
        for (std::size_t i = 0; i < 3; ++i)
            EXPECT_NEAR(GrafikWindow.Points[i].Value, 45.0 * static_cast<double>(i), 1e-3) << unit;
        UnloadWindow("FormMainSheet");
    }
}

TEST_F(Chart, NamesAreNoValues) {
    FivePoints();
    Open();
    Select(1, 0);
    Graph();
    EXPECT_TRUE(Shown().empty());
    EXPECT_DOUBLE_EQ(GrafikWindow.Max, 0.1);
}

TEST_F(Chart, OnlyTheGivenPartOfTheArrayIsShown) {
    const std::vector<ChartPoint> array = {{0, 99}, {1, 0.5}, {2, -0.25}, {3, 99}};
    Grafik(array, 1, 2);
    EXPECT_EQ(Shown(), (Points{{1, 0.5}, {2, -0.25}}));
    EXPECT_DOUBLE_EQ(GrafikWindow.Max, 0.7);
    Grafik(array, 1, 0);
    EXPECT_TRUE(Shown().empty());
}

TEST_F(Chart, ValuesThatNoAxisCanHoldLeaveTheWindowEmpty) {
    for (const double value : {std::nan(""), std::numeric_limits<double>::infinity(), -1e308}) {
        const std::vector<ChartPoint> array = {{1, 1}, {2, value}, {3, 2}};
        Grafik(array, 0, 2);
        EXPECT_EQ(LastMessage(), "Sorry, but do have Problems with Graphs with Windows 7 or higher") << value;
        EXPECT_TRUE(IsLoaded("FormGrafik"));
        EXPECT_TRUE(Shown().empty());
        EXPECT_EQ(GrafikWindow.Max, 0);
    }
}

TEST_F(Chart, TheWindowStoresItsPlaceAndFindsItAgain) {
    FivePoints();
    Open();
    Select(1, kDevX);
    Graph();
    FormGrafik_Entry.State->Place = {1500, 2250, 9000, 6000};
    EXPECT_TRUE(UserEscape(FormGrafik_Entry));
    EXPECT_FALSE(IsLoaded("FormGrafik"));
    const std::string settings = Contents(Run.SettingsFilePath);
    for (const char* line :
         {"FormGrafikTop=2250", "FormGrafikLeft=1500", "FormGrafikHeight=6000", "FormGrafikWidth=9000"})
        EXPECT_NE(settings.find(line), std::string::npos) << line;
    Graph();
    const WindowPlace& place = FormGrafik_Entry.State->Place;
    EXPECT_EQ(place.Left, 1500);
    EXPECT_EQ(place.Top, 2250);
    EXPECT_EQ(place.Width, 9000);
    EXPECT_EQ(place.Height, 6000);
    EXPECT_EQ(GrafikWindow.Points.size(), 3U);
}

}  // namespace
