// The table of plotted points: its rows, columns and switches, and when it follows the job.
#include "graphics/scene.h"

#include <cmath>
#include <limits>

#include "graphics/drawing.h"
#include "graphics/graphics_fixture.h"

using namespace corvinade;

using GraphicsScene = GraphicsJob;

namespace {

constexpr int kRowsOfFive = 8;  // two a pair, and two points without a partner

void ExpectPlotted(const std::array<float, kRowsOfFive>& expected) {
    for (int row = 1; row <= kRowsOfFive; ++row)
        EXPECT_EQ(Scene.Points[kScenePlotted][static_cast<std::size_t>(row)],
                  expected[static_cast<std::size_t>(row - 1)])
            << "row " << row;
}

void Deselect(int point) {
    for (int axis = 1; axis <= 3; ++axis) Job.UseFlags[static_cast<std::size_t>(3 * point - 3 + axis)] = 0;
}

}  // namespace

TEST_F(GraphicsScene, HasTheStartPointsThenTheTargetsThenThePointsWithoutAPartner) {
    FivePoints();
    Job.Transformed.X[1] = 100.5;  // what is shown is the transformed point
    OpenScreenWindow();
    ASSERT_EQ(Scene.Rows, kRowsOfFive);
    const std::array<Vec3, kRowsOfFive> places = {Vec3(100.5, 0, 0),  Vec3(0, 200, 10),  Vec3(30, 40, 50),
                                                  Vec3(101, -2, 0),   Vec3(0, 202, 9.5), Vec3(27, 40, 50),
                                                  Vec3(-10, 20, -30), Vec3(40, -50, 60)};
    const std::array<const char*, kRowsOfFive> names = {"A", "B", "C", "A", "B", "C", "S", "T"};
    for (int row = 1; row <= kRowsOfFive; ++row) {
        const Vec3& place = places[static_cast<std::size_t>(row - 1)];
        EXPECT_EQ(Cell(row, kSceneX), static_cast<float>(place(1)));
        EXPECT_EQ(Cell(row, kSceneY), static_cast<float>(place(2)));
        EXPECT_EQ(Cell(row, kSceneZ), static_cast<float>(place(3)));
        EXPECT_EQ(ScenePointName(row), names[static_cast<std::size_t>(row - 1)]);
        EXPECT_EQ(Cell(row, kSceneInside), 1.0F);
    }
    EXPECT_EQ(ScenePointName(0), "");
    EXPECT_EQ(ScenePointName(kRowsOfFive + 1), "");
}

TEST_F(GraphicsScene, HoldsTheDeviationsOfThePairsAloneAndTheirPlainLength) {
    FivePoints();
    ScreenWindow& window = OpenScreenWindow();
    window.State.showVeY = kFalse;
    Grafik_Festlegen(window);
    EXPECT_EQ(Cell(1, kSceneDevX), -1.0F);
    EXPECT_EQ(Cell(1, kSceneDevY), 2.0F);
    EXPECT_EQ(Cell(1, kSceneDevZ), 0.0F);
    EXPECT_EQ(Cell(2, kSceneDevY), -2.0F);
    EXPECT_EQ(Cell(2, kSceneDevZ), 0.5F);
    // The length of all three components, although the second is switched off.
    EXPECT_FLOAT_EQ(Cell(1, kSceneSize), std::sqrt(5.0F));
    EXPECT_FLOAT_EQ(Cell(2, kSceneSize), std::sqrt(4.25F));
    EXPECT_EQ(Cell(3, kSceneSize), 3.0F);
    for (int row = 4; row <= kRowsOfFive; ++row) {
        EXPECT_EQ(Cell(row, kSceneDevX), 0.0F);
        EXPECT_EQ(Cell(row, kSceneSize), 0.0F);
    }
}

TEST_F(GraphicsScene, ColoursBySizesThatAreShownOnceItIsPainted) {
    FivePoints();
    ScreenWindow& window = OpenScreenWindow();
    window.State.showVeY = kFalse;
    Grafik_Festlegen(window);
    Stelle_Grafik_dar(window);
    EXPECT_EQ(Cell(1, kSceneSize), 1.0F);
    EXPECT_EQ(Cell(2, kSceneSize), 0.5F);
}

TEST_F(GraphicsScene, PlotsEachBlockByItsSwitch) {
    FivePoints();
    ScreenWindow& window = OpenScreenWindow();
    ExpectPlotted({1, 1, 1, 1, 1, 1, 1, 1});
    Job.ViewAllMCS = kFalse;
    Grafik_Festlegen(window);
    ExpectPlotted({0, 0, 0, 1, 1, 1, 1, 1});
    Job.ViewAllOCS = kFalse;
    Grafik_Festlegen(window);
    ExpectPlotted({0, 0, 0, 0, 0, 0, 1, 1});
    Job.ViewAllonlyMCS = kFalse;
    Grafik_Festlegen(window);
    ExpectPlotted({0, 0, 0, 0, 0, 0, 0, 1});
    Job.ViewAllonlyOCS = kFalse;
    Grafik_Festlegen(window);
    ExpectPlotted({0, 0, 0, 0, 0, 0, 0, 0});
}

TEST_F(GraphicsScene, FiltersByUseOnlySwitchStartPointsOnAndNeverOff) {
    FivePoints();
    Deselect(2);
    Job.UseFlags[1] = Job.UseFlags[2] = 0;  // point 1 keeps one coordinate
    ScreenWindow& window = OpenScreenWindow();
    Settings.ViewOnlyIfTrafo = kTrue;
    Grafik_Festlegen(window);
    ExpectPlotted({1, 1, 1, 1, 1, 1, 1, 1});
    Job.ViewAllMCS = Job.ViewAllOCS = kFalse;
    Grafik_Festlegen(window);
    ExpectPlotted({1, 0, 1, 0, 0, 0, 1, 1});
    Settings.ViewOnlyIfTrafo = kFalse;
    Settings.ViewOnlyIfNotTrafo = kTrue;
    Grafik_Festlegen(window);
    ExpectPlotted({0, 1, 0, 0, 0, 0, 1, 1});
}

TEST_F(GraphicsScene, HidesStartPointsOutOfTolerance) {
    FivePoints();  // deviations of 2.24, 2.06 and 3 mm
    ScreenWindow& window = OpenScreenWindow();
    window.State.Max = 2.1;
    Settings.DontViewOOT = kTrue;
    Grafik_Festlegen(window);
    ExpectPlotted({0, 1, 0, 1, 1, 1, 1, 1});
}

TEST_F(GraphicsScene, HidesThemBelowTheToleranceTooEvenWhereAFilterSwitchesThemOn) {
    FivePoints();  // deviations along x of -1, 0 and 3 mm
    ScreenWindow& window = OpenScreenWindow();
    window.State.ColorBased = "x";
    window.State.showVeY = window.State.showVeZ = kFalse;
    window.State.Max = 4;
    window.State.Min = -0.5;
    Settings.DontViewOOT = Settings.ViewOnlyIfTrafo = kTrue;
    Grafik_Festlegen(window);
    EXPECT_EQ(Cell(1, kSceneClass), -20.0F);  // one millimetre, of which half fills ten classes
    ExpectPlotted({0, 1, 1, 1, 1, 1, 1, 1});
    window.State.Min = -1;
    Grafik_Festlegen(window);
    EXPECT_EQ(Cell(1, kSceneClass), -10.0F);
    ExpectPlotted({1, 1, 1, 1, 1, 1, 1, 1});
}

TEST_F(GraphicsScene, HidesThemByTheLimitsThatThePaintFindsToo) {
    FivePoints();
    Settings.DontViewOOT = kTrue;
    ScreenWindow& window = OpenScreenWindow();
    window.State.Max = 4;
    Stelle_Grafik_dar(window);
    ExpectPlotted({1, 1, 1, 1, 1, 1, 1, 1});
    window.State.Max = 2.1;
    Stelle_Grafik_dar(window);
    ExpectPlotted({0, 1, 0, 1, 1, 1, 1, 1});
}

TEST_F(GraphicsScene, OfTwoWindowsEachPaintsItsOwnClasses) {
    FivePoints();
    Settings.DontViewOOT = kTrue;
    ScreenWindow& wide = OpenScreenWindow();
    ScreenWindow& narrow = OpenScreenWindow();
    wide.State.Max = 4;
    narrow.State.Max = 2.1;
    Stelle_Grafik_dar(narrow);
    ExpectPlotted({0, 1, 0, 1, 1, 1, 1, 1});
    Stelle_Grafik_dar(wide);
    ExpectPlotted({1, 1, 1, 1, 1, 1, 1, 1});
    Stelle_Grafik_dar(narrow);
    ExpectPlotted({0, 1, 0, 1, 1, 1, 1, 1});
}

TEST_F(GraphicsScene, KeepsTheFlagsOfItsRowsWhenItGrows) {
    FivePoints();
    ScreenWindow& window = OpenScreenWindow();
    ASSERT_EQ(window.State.FlagIndex.size(), 8U);
    window.State.FlagIndex[2] = 5;
    AddTargetOnly("U", {1, 1, 1});
    Grafik_Festlegen(window);
    ASSERT_EQ(window.State.FlagIndex.size(), 9U);
    EXPECT_EQ(window.State.FlagIndex[2], 5);
    EXPECT_EQ(window.State.FlagIndex[8], 0);
}

TEST_F(GraphicsScene, FollowsAnotherJobAtTheNextPaint) {
    FivePoints();
    ScreenWindow& window = OpenScreenWindow();
    Initialisieren();
    Stelle_Grafik_dar(window);
    EXPECT_EQ(Scene.Rows, 0);
    Job = JobRecord{};
    Run.JobDataValid = kTrue;
    ++::Run.JobGeneration;
    AddPoints("N", {1, 2, 3}, {1, 2, 3});
    Stelle_Grafik_dar(window);
    EXPECT_EQ(Scene.Rows, 2);
    EXPECT_EQ(ScenePointName(1), "N");
}

TEST_F(GraphicsScene, ShowsWhatAJobHasThatLosesPoints) {
    FivePoints();
    ScreenWindow& window = OpenScreenWindow();
    EXPECT_EQ(Scene.Rows, 8);
    Job.Target.Resize(1);
    Grafik_Festlegen(window);
    EXPECT_EQ(Scene.Ident, 1);
    EXPECT_EQ(Scene.MCSOnly, 3);
    Job.Start.CountOnly(0);
    Grafik_Festlegen(window);
    EXPECT_EQ(Scene.MCSOnly + Scene.Ident, 0);
}

TEST_F(GraphicsScene, IsEmptyWithoutPairsAndOfOnePointWithOne) {
    ScreenWindow& window = OpenScreenWindow();
    EXPECT_EQ(Scene.Rows, 0);
    AddStartOnly("S", {1, 2, 3});
    Grafik_Festlegen(window);
    Stelle_Grafik_dar(window);
    EXPECT_EQ(Scene.Rows, 1);
    EXPECT_EQ(ScenePointName(1), "S");
}

TEST_F(GraphicsScene, CarriesCoordinatesThatAreNoNumbersAndVeryLargeOnes) {
    const double nan = std::numeric_limits<double>::quiet_NaN(),
                 inf = std::numeric_limits<double>::infinity();
    AddPoints("N", {nan, 0, 0}, {0, 0, 0});
    AddPoints("I", {inf, 0, -inf}, {0, 0, 0});
    AddPoints("L", {1e12, -1e12, 1e12}, {1e12, 1e12, 1e12});
    AddPoints("P", {1, 2, 3}, {1, 2, 2});
    for (const char* system : {"CART", "CYL", "SPH"}) {
        ScreenWindow& window = OpenScreenWindow();
        window.State.CS_Type = system;
        window.State.VectorMode = kTrue;
        Stelle_Grafik_dar(window);
        GrafikAnpassen(window);
        IsoView(window);
        EXPECT_NEAR(Cell(4, kSceneSize), 1, 0.05) << system;
        EXPECT_EQ(Cell(1, kSceneClass), 0.0F) << system;  // no number has no class
    }
}
