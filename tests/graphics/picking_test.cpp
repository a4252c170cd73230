// Points under the mouse, and the point that main sheet and pictures share.
#include "graphics/picking.h"

#include <random>

#include "graphics/graphics_refresh.h"
#include "graphics/input_window.h"
#include "graphics/tolerance.h"

using namespace corvinade;

class Picking : public InputWindow {
protected:
    // By the rule itself, one row after the other.
    static int NearestOneByOne(float x, float y) {
        int found = 0;
        long double best = 0;
        for (int row = 1; row <= Scene.Rows; ++row) {
            const auto k = static_cast<std::size_t>(row);
            if (Scene.Points[kScenePlotted][k] == 0 || Scene.Points[kSceneInside][k] == 0) continue;
            const long double dx = static_cast<long double>(x) - Scene.PixelX[k];
            const long double dy = static_cast<long double>(y) - Scene.PixelY[k];
            const long double d = dx * dx + dy * dy;
            if (found == 0 || d < best) {
                found = row;
                best = d;
            }
        }
        return found > Scene.Ident && found <= 2 * Scene.Ident ? found - Scene.Ident : found;
    }
};

TEST_F(Picking, TheFirstPickInAnEmptyTableReturnsRowZero) {
    ScreenWindow& window = OpenFive();
    Run.JobDataValid = kFalse;
    EXPECT_EQ(Search_Point_Index(window, 100, 100), 0);
    EXPECT_EQ(Scene.Rows, 0);
}

TEST_F(Picking, TheNearestPlottedPointIsFoundAtAnyDistance) {
    ScreenWindow& window = OpenFive();
    EXPECT_EQ(Search_Point_Index(window, 101, 99), 1);
    EXPECT_EQ(Search_Point_Index(window, 290, 130), 2);
    EXPECT_EQ(Search_Point_Index(window, 499, 480), 7);
    EXPECT_EQ(Search_Point_Index(window, 701, 505), 8);
    EXPECT_EQ(Search_Point_Index(window, 1e9F, 500), 8);  // far beyond 30000 squared pixels
    EXPECT_EQ(Search_Point_Index(window, -1e15F, -1e15F), 1);
}

TEST_F(Picking, APointOfTheTargetSystemThatHasAPartnerSelectsTheRowOfThePair) {
    ScreenWindow& window = OpenFive();
    EXPECT_EQ(Search_Point_Index(window, 140, 100), 1);  // row 4
    EXPECT_EQ(Search_Point_Index(window, 341, 101), 2);
    EXPECT_EQ(Search_Point_Index(window, 140, 299), 3);
}

TEST_F(Picking, OfSeveralPointsAtOneDistanceItIsTheFirst) {
    for (int i = 0; i < 4; ++i) AddPair({100, 100, 1.0 * i}, {900, 900, 0});
    SizeRest();
    ScreenWindow& window = OpenStraight();
    EXPECT_EQ(Search_Point_Index(window, 100, 100), 1);
    EXPECT_EQ(Search_Point_Index(window, 90, 100), 1);
    Scene.Points[kScenePlotted][1] = 0;
    EXPECT_EQ(Search_Point_Index(window, 90, 100), 2);
}

TEST_F(Picking, PointsThatAreNotPlottedOrLieBehindABlackPlaneAreNotFound) {
    ScreenWindow& window = OpenFive();
    Scene.Points[kScenePlotted][1] = 0;
    EXPECT_EQ(Search_Point_Index(window, 100, 100), 1);  // by its partner, 40 pixels away
    Scene.Points[kSceneInside][4] = 0;
    EXPECT_EQ(Search_Point_Index(window, 100, 100), 2);
    for (float& plotted : Scene.Points[kScenePlotted]) plotted = 0;
    EXPECT_EQ(Search_Point_Index(window, 100, 100), 0);
}

TEST_F(Picking, ManyPointsGiveTheSameRowAsOneByOne) {
    std::mt19937 random(20240607);
    const auto place = [&random] { return static_cast<double>(random() % 1000) / 2; };
    for (int i = 0; i < 5000; ++i) AddPair({place(), place(), place()}, {place(), place(), place()});
    for (int i = 0; i < 333; ++i) AddStart("s" + std::to_string(i), place(), place(), place());
    for (int i = 0; i < 17; ++i) AddTarget("t" + std::to_string(i), place(), place(), place());
    SizeRest();
    Job.ViewAllOCS = kTrue;
    ScreenWindow& window = OpenStraight();
    for (float& plotted : Scene.Points[kScenePlotted]) plotted = random() % 4 == 0 ? 1.0F : 0.0F;
    for (float& inside : Scene.Points[kSceneInside]) inside = random() % 3 == 0 ? 0.0F : 1.0F;
    for (int i = 0; i < 300; ++i) {
        const auto x = static_cast<float>(place()), y = static_cast<float>(place());
        EXPECT_EQ(Search_Point_Index(window, x, y), NearestOneByOne(x, y)) << x << " " << y;
    }
}

TEST_F(Picking, PixelsThatAreNoNumbersAreNeverFound) {
    ScreenWindow& window = OpenFive();
    for (const std::size_t row : {1U, 4U}) Scene.PixelX[row] = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(Search_Point_Index(window, 100, 100), 2);
    for (float& x : Scene.PixelX) x = std::numeric_limits<float>::infinity();
    EXPECT_EQ(Search_Point_Index(window, 100, 100), 0);
}

TEST_F(Picking, EachWindowPicksInItsOwnPicture) {
    ScreenWindow& first = OpenFive();
    OpenScreenWindow();
    ScreenWindow& second = *Screens().Active;
    LookStraight(second);
    second.State.BildOffsetX += 200;  // all points stand 200 pixels further right there
    Stelle_Grafik_dar(second);
    EXPECT_EQ(Search_Point_Index(first, 290, 100), 2);
    EXPECT_EQ(Search_Point_Index(second, 290, 100), 1);
    EXPECT_EQ(Search_Point_Index(first, 290, 100), 2);
    EXPECT_EQ(PixelOfRow(1), std::make_pair(100.0F, 100.0F));
}

TEST_F(Picking, APixelIsWithinThePictureUpToItsMargins) {
    ScreenWindow& window = OpenFive();
    window.Screen.StatusBarHeight = 25;
    const auto within = [&window](float x, float y) {
        Scene.PixelX[1] = x;
        Scene.PixelY[1] = y;
        return PixelWithinScreen(window, 1);
    };
    // Right 800 - 10, below 600 - 25 - 5.
    EXPECT_TRUE(within(790, 570));
    EXPECT_FALSE(within(790.5F, 570));
    EXPECT_FALSE(within(790, 570.5F));
    EXPECT_TRUE(within(0, 0));
    EXPECT_FALSE(within(-0.5F, 0));
    EXPECT_FALSE(within(0, -0.5F));
    EXPECT_FALSE(within(std::numeric_limits<float>::quiet_NaN(), 0));
}

// --- The main sheet ---------------------------------------------------------------------------------------

TEST_F(Picking, TheLineOfTheMainSheetIsFoundForEveryRow) {
    OpenFive();
    EXPECT_EQ(IndexMainSheet(1), 0);  // closed
    Open();
    std::vector<int> lines;
    for (int row = 0; row <= 9; ++row) lines.push_back(IndexMainSheet(row));
    EXPECT_EQ(lines, (std::vector<int>{0, 1, 2, 3, 1, 2, 3, 4, 5, 0}));
}

TEST_F(Picking, ASortedMainSheetHasItsLinesWhereTheyAreSeen) {
    OpenFive();
    Open();
    Click(0, 0);
    Click(0, 0);  // by name, descending: T, S, P3, P2, P1
    EXPECT_EQ(Col(0), (Texts{"T", "S", "P3", "P2", "P1"}));
    std::vector<int> lines;
    for (int row = 1; row <= 8; ++row) lines.push_back(IndexMainSheet(row));
    EXPECT_EQ(lines, (std::vector<int>{5, 4, 3, 5, 4, 3, 2, 1}));
}

TEST_F(Picking, AClickMovesTheCursorOfTheMainSheetAndNamesTheActualPoint) {
    ScreenWindow& window = OpenFive();
    Open();
    Click(0, 0);
    Click(0, 0);
    ClickAt(window, 302, 99);
    EXPECT_EQ(Cells().Row, 4);
    EXPECT_EQ(Cell(Cells().Row, 0), "P2");
    EXPECT_EQ(Scene.ActualPointName, "P2");
    EXPECT_EQ(Scene.RotateAboutIndex, 2);
    EXPECT_EQ(ActualRow(), 2);
    ClickAt(window, 700, 500);  // "T", the last row of the scene
    EXPECT_EQ(Cells().Row, 1);
    EXPECT_EQ(ActualRow(), 8);
    ClickAt(window, 500, 500);
    EXPECT_EQ(Cells().Row, 2);
    EXPECT_EQ(ActualRow(), 7);
}

TEST_F(Picking, OnlyThePointUnderTheCursorOfTheMainSheetIsTheActualOne) {
    ScreenWindow& window = OpenFive();
    ClickAt(window, 100, 100);
    EXPECT_EQ(Scene.ActualPointName, "P1");
    EXPECT_EQ(ActualRow(), 0);  // the sheet is closed
    Open();
    EXPECT_EQ(ActualRow(), 1);
    Cells().Row = 2;
    EXPECT_EQ(ActualRow(), 0);  // another name
}

TEST_F(Picking, TheCursorOfTheMainSheetChangesThePicturesOfAllWindows) {
    ScreenWindow& first = OpenFive();
    ScreenWindow& second = OpenScreenWindow();
    Open();
    const std::uint64_t before = first.PaintCount, beforeToo = second.PaintCount;
    Click(3, 1);
    EXPECT_EQ(Scene.ActualPointName, "P3");
    EXPECT_EQ(ActualRow(), 3);
    EXPECT_EQ(first.PaintCount, before + 1);
    EXPECT_EQ(second.PaintCount, beforeToo + 1);
    SetActivePoint(0);
    SetActivePoint(4);  // no pair
    EXPECT_EQ(Scene.ActualPointName, "P3");
}

TEST_F(Picking, APickWithNoPlottedPointLeavesTheStateAsItWas) {
    ScreenWindow& window = OpenFive();
    ClickAt(window, 100, 100);
    Job.ViewAllMCS = Job.ViewAllOCS = Job.ViewAllonlyMCS = Job.ViewAllonlyOCS = kFalse;
    UpdateAllGraphicsWindows();
    ClickAt(window, 300, 100);
    EXPECT_EQ(Scene.ActualPointName, "P1");
    EXPECT_EQ(Scene.RotateAboutIndex, 1);
    Move(window, 300, 100);
    EXPECT_EQ(window.Mouse.ActualRow, 0);
}

TEST_F(Picking, AClickOutsideThePicturePicksNothing) {
    ScreenWindow& window = OpenFive();
    ClickAt(window, 801, 100);
    ClickAt(window, 100, -1);
    EXPECT_EQ(Scene.ActualPointName, "");
    ClickAt(window, 800, 600);
    EXPECT_EQ(Scene.ActualPointName, "T");
}

// --- Rotation about a point -------------------------------------------------------------------------------

TEST_F(Picking, AnArmedRotationIsAboutThePointThatIsPicked) {
    ScreenWindow& window = OpenFive();
    UserClick(Main.MenüGlobalRotateAbout);
    EXPECT_TRUE(Scene.RotateAboutArmed);
    EXPECT_TRUE(Main.MenüGlobalRotateAbout.Checked);
    EXPECT_EQ(Main.ToolbarGraphics_RotateAbout.Value, 1);
    const int stored = window.UndoCount;
    ClickAt(window, 300, 100);
    EXPECT_FALSE(Scene.RotateAboutArmed);
    EXPECT_FALSE(Main.MenüGlobalRotateAbout.Checked);
    EXPECT_EQ(Main.ToolbarGraphics_RotateAbout.Value, 0);
    EXPECT_EQ(Scene.RotCenter.Elements, Vec3(300, 100, 6).Elements);
    // The box before was 300 to 900 and -300 to 100 in the view: OffsetX = -(300 - (800 - 600) / 2),
    // OffsetY = -(-300 - (600 - 400) / 2).
    EXPECT_FLOAT_EQ(window.State.BildOffsetX, -200);
    EXPECT_FLOAT_EQ(window.State.BildOffsetY, 400);
    EXPECT_EQ(PixelOfRow(2), std::make_pair(0.0F, 0.0F));  // the picked point is the origin now
    // Once by the release of the button and once for the new centre.
    EXPECT_EQ(window.UndoCount, stored + 2);
    ClickAt(window, 40, 400);  // the next click is a pick alone
    EXPECT_EQ(Scene.RotCenter.Elements, Vec3(300, 100, 6).Elements);
}

TEST_F(Picking, TheSecondUseOfTheEntryDisarmsTheRotation) {
    ScreenWindow& window = OpenFive();
    UserClick(Main.ToolbarGraphics_RotateAbout);
    UserClick(Main.ToolbarGraphics_RotateAbout);
    EXPECT_FALSE(Scene.RotateAboutArmed);
    EXPECT_FALSE(Main.MenüGlobalRotateAbout.Checked);
    ClickAt(window, 300, 100);
    EXPECT_EQ(Scene.RotCenter.Elements, Vec3().Elements);
}

TEST_F(Picking, AnArmedRotationWaitsForAPick) {
    ScreenWindow& window = OpenFive();
    ClickAt(window, 100, 100);  // picked before: does not count
    UserClick(Main.MenüGlobalRotateAbout);
    UserClick(Main.MenüAnsichtTopview);
    EXPECT_TRUE(Scene.RotateAboutArmed);
    EXPECT_EQ(Scene.RotCenter.Elements, Vec3().Elements);
    EXPECT_EQ(window.State.BildOffsetX, -200);
}
