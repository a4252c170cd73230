// The ring of the last fifty views.
#include "cli/headless.h"
#include "graphics/drawing.h"
#include "graphics/form_color_bar.h"
#include "graphics/graphics_fixture.h"
#include "graphics/view_undo.h"

using namespace corvinade;

using GraphicsUndo = GraphicsJob;

namespace {

// Stores `count` views with the factors first, first + 1, ...
void StoreViews(ScreenWindow& window, int first, int count) {
    for (int i = 0; i < count; ++i) {
        window.State.BildFaktor = static_cast<float>(first + i);
        StoreScreenPropertiesToRecord(window);
    }
}

int StepBackToTheEnd(ScreenWindow& window) {
    int steps = 0;
    for (; Main.ToolbarSaveView_LastView.Enabled && steps < 1000; ++steps) Rückgängig_Back(window);
    return steps;
}

}  // namespace

TEST_F(GraphicsUndo, ANewWindowHasStoredItsFirstView) {
    FivePoints();
    ScreenWindow& window = OpenScreenWindow();
    EXPECT_EQ(window.UndoCount, 1);
    EXPECT_EQ(window.UndoIndex, 1);
    EXPECT_FALSE(Main.ToolbarSaveView_LastView.Enabled);
    EXPECT_FALSE(Main.MenüViewLastView.Enabled);
    const float fitted = window.State.BildFaktor;
    ZoomIn(window);
    EXPECT_TRUE(Main.ToolbarSaveView_LastView.Enabled);
    UserClick(Main.MenüViewLastView);
    EXPECT_EQ(window.State.BildFaktor, fitted);
}

TEST_F(GraphicsUndo, StepsBackAndForthThroughTheViews) {
    FivePoints();
    ScreenWindow& window = OpenScreenWindow();
    StoreViews(window, 10, 3);
    EXPECT_EQ(Main.ToolbarSaveView_LastView.ToolTip, "3 Last view");
    EXPECT_EQ(Main.ToolbarSaveView_NextView.ToolTip, "0 Next view");
    EXPECT_FALSE(Main.ToolbarSaveView_NextView.Enabled);
    UserClick(Main.ToolbarSaveView_LastView);
    EXPECT_EQ(window.State.BildFaktor, 11.0F);
    EXPECT_EQ(window.UndoOffset, -1);
    EXPECT_EQ(Main.ToolbarSaveView_LastView.ToolTip, "2 Last view");
    EXPECT_EQ(Main.ToolbarSaveView_NextView.ToolTip, "1 Next view");
    EXPECT_TRUE(Main.ToolbarSaveView_NextView.Enabled);
    EXPECT_TRUE(Main.MenüViewNextView.Enabled);
    UserClick(Main.ToolbarSaveView_LastView);
    EXPECT_EQ(window.State.BildFaktor, 10.0F);
    UserClick(Main.ToolbarSaveView_NextView);
    UserClick(Main.MenüViewNextView);
    EXPECT_EQ(window.State.BildFaktor, 12.0F);
    EXPECT_EQ(window.UndoOffset, 0);
    EXPECT_FALSE(Main.ToolbarSaveView_NextView.Enabled);
    Rückgängig_Force(window);
    EXPECT_EQ(window.State.BildFaktor, 12.0F);
}

TEST_F(GraphicsUndo, AfterFiftyStoresTheOldestViewIsLost) {
    FivePoints();
    ScreenWindow& window = OpenScreenWindow();
    StoreViews(window, 100, 50);  // the first view of the window falls out
    EXPECT_EQ(window.UndoCount, 50);
    EXPECT_EQ(StepBackToTheEnd(window), 49);
    EXPECT_EQ(window.State.BildFaktor, 100.0F);
    Rückgängig_Back(window);
    EXPECT_EQ(window.State.BildFaktor, 100.0F);
    for (int i = 0; i < 60; ++i) Rückgängig_Force(window);
    EXPECT_EQ(window.State.BildFaktor, 149.0F);
}

TEST_F(GraphicsUndo, TheRingRunsOnForever) {
    FivePoints();
    ScreenWindow& window = OpenScreenWindow();
    StoreViews(window, 1, 177);
    EXPECT_EQ(window.UndoCount, 50);
    EXPECT_EQ(StepBackToTheEnd(window), 49);
    EXPECT_EQ(window.State.BildFaktor, 128.0F);
}

TEST_F(GraphicsUndo, StoringAfterSteppingBackDropsTheStepsThatWereUndone) {
    FivePoints();
    ScreenWindow& window = OpenScreenWindow();
    StoreViews(window, 10, 4);
    for (int i = 0; i < 3; ++i) Rückgängig_Back(window);
    EXPECT_EQ(window.State.BildFaktor, 10.0F);
    StoreViews(window, 50, 1);
    EXPECT_FALSE(Main.ToolbarSaveView_NextView.Enabled);
    EXPECT_EQ(window.UndoCount, 3);
    Rückgängig_Back(window);
    EXPECT_EQ(window.State.BildFaktor, 10.0F);
    EXPECT_EQ(StepBackToTheEnd(window), 1);
}

TEST_F(GraphicsUndo, AFullRingDropsThemToo) {
    FivePoints();
    ScreenWindow& window = OpenScreenWindow();
    StoreViews(window, 100, 60);
    for (int i = 0; i < 20; ++i) Rückgängig_Back(window);
    StoreViews(window, 1000, 1);
    EXPECT_EQ(window.UndoCount, 31);
    EXPECT_EQ(StepBackToTheEnd(window), 30);
    EXPECT_EQ(window.State.BildFaktor, 110.0F);
}

TEST_F(GraphicsUndo, RestoresEveryFieldButTheWindowSize) {
    FivePoints();
    ScreenWindow& window = OpenSized(300, 200);
    window.State.VectorMode = kTrue;
    window.State.BigNess = 7;
    window.State.OuterColor = 12345;
    window.State.ColorBased = "y";
    window.State.CS_Type = "SPH";
    window.State.LineTable = {1, 2, 3, 4};
    window.State.FlagCount = 1;
    window.State.Flags.resize(2);
    window.State.FlagIndex[3] = 1;
    window.State.WindowWidth = 999;
    StoreScreenPropertiesToRecord(window);
    window.State = ScreenRecord{};
    StoreScreenPropertiesToRecord(window);
    const std::uint64_t paints = window.PaintCount;
    Rückgängig_Back(window);
    EXPECT_EQ(window.State.VectorMode, kTrue);
    EXPECT_EQ(window.State.BigNess, 7);
    EXPECT_EQ(window.State.OuterColor, 12345);
    EXPECT_EQ(window.State.ColorBased, "y");
    EXPECT_EQ(window.State.CS_Type, "SPH");
    EXPECT_EQ(window.State.LineTable.size(), 4U);
    EXPECT_EQ(window.State.FlagIndex[3], 1);
    EXPECT_EQ(window.Screen.Width, 300);
    EXPECT_EQ(window.PaintCount, paints + 1);
    EXPECT_TRUE(Main.MenüAnsichtVektorenVektorModeActive.Checked);
}

TEST_F(GraphicsUndo, AViewOfAnotherNumberOfPointsFitsThePresentOnes) {
    FivePoints();
    ScreenWindow& window = OpenScreenWindow();
    window.State.FlagCount = 1;
    window.State.Flags.resize(2);
    window.State.FlagIndex[7] = 1;
    StoreScreenPropertiesToRecord(window);
    ZoomIn(window);
    Job = JobRecord{};
    AddPoints("A", {1, 2, 3}, {4, 5, 6});
    ++::Run.JobGeneration;
    Rückgängig_Back(window);
    EXPECT_EQ(window.State.FlagIndex.size(), 2U);
    EXPECT_EQ(Scene.Rows, 2);
}

TEST_F(GraphicsUndo, EachWindowHasItsOwnRingAndTheMainWindowShowsThatOnTop) {
    FivePoints();
    ScreenWindow& first = OpenScreenWindow();
    StoreViews(first, 10, 2);
    ScreenWindow& second = OpenScreenWindow();
    EXPECT_FALSE(Main.ToolbarSaveView_LastView.Enabled);
    StoreViews(first, 20, 1);  // that of a window below changes nothing on top
    EXPECT_FALSE(Main.ToolbarSaveView_LastView.Enabled);
    ActivateScreenWindow(first);
    EXPECT_EQ(Main.ToolbarSaveView_LastView.ToolTip, "3 Last view");
    CloseScreenWindow(first);
    EXPECT_EQ(Main.ToolbarSaveView_LastView.ToolTip, "0 Last view");
    CloseScreenWindow(second);
    EXPECT_FALSE(Main.ToolbarSaveView_LastView.Enabled);
    UserClick(Main.MenüViewLastView);
}

TEST_F(GraphicsUndo, ButtonsStandByTheRingAfterTheCommandsHaveBeenRecomputed) {
    FivePoints();
    OpenScreenWindow();
    ProgrammLogik();
    EXPECT_FALSE(Main.ToolbarSaveView_LastView.Enabled);
    EXPECT_FALSE(Main.ToolbarSaveView_NextView.Enabled);
    EXPECT_TRUE(Main.ToolbarSaveView_SaveView.Enabled);
}

TEST_F(GraphicsUndo, RefillsTheColourBarDialog) {
    FivePoints();
    ScreenWindow& window = OpenScreenWindow();
    ShowWindow("FormColorBar");
    window.State.AnzKlassenPos = 44;
    StoreScreenPropertiesToRecord(window);
    Rückgängig_Back(window);
    EXPECT_EQ(ColorBarWindow.TextAnzahlTolKlassePos.Text, "10");
    Rückgängig_Force(window);
    EXPECT_EQ(ColorBarWindow.TextAnzahlTolKlassePos.Text, "44");
}
