// What the mouse does with flags: marking, dragging, the pop-up menu, use cells, the dynamic flag.
#include "engine/form_trafo_berechnung.h"
#include "graphics/flag_window.h"
#include "graphics/graphics_refresh.h"

using namespace corvinade;

using FlagMouse = FlagWindow;

namespace {

// A flag at (200, 150) with the name and the rows of deviations and use.
int SmallFlagAt(ScreenWindow& window, int row, int left, int top) {
    FlagRecord record;
    record.ShowLegendeName = record.ShowDev = record.ShowUseNotUse = kTrue;
    record.showX = record.showY = record.showZ = kTrue;
    record.Size = 8;
    TakeAsTemplate(window, record);
    const int flag = AddFlag(window, row, left, top);
    Stelle_Grafik_dar(window);
    return flag;
}

}  // namespace

TEST_F(FlagMouse, APressMarksTheFlagOnTop) {
    ScreenWindow& window = OpenFive();
    SmallFlagAt(window, 1, 200, 150);
    SmallFlagAt(window, 2, 205, 155);
    EXPECT_EQ(FlagAt(window, 210, 160), 2);
    EXPECT_EQ(FlagAt(window, 202, 152), 1);
    EXPECT_EQ(FlagAt(window, 100, 400), 0);
    ClickAt(window, 202, 152);
    EXPECT_EQ(window.State.ActiveFlag, 1);
    EXPECT_EQ(FlagAt(window, 210, 160), 1) << "the active flag lies on top";
}

TEST_F(FlagMouse, AClickOnAFlagIsNoneOnThePictureBelow) {
    ScreenWindow& window = OpenFive();
    SmallFlagAt(window, 1, 280, 90);  // on the second point
    ClickAt(window, 300, 100);
    EXPECT_EQ(Scene.ActualPointName, "");
    window.State.FlagMode = kTrue;
    ClickAt(window, 300, 100);
    EXPECT_EQ(window.State.FlagCount, 1);
}

TEST_F(FlagMouse, AFlagFollowsTheMouseAndTheWayIsAStepOfTheHistory) {
    ScreenWindow& window = OpenFive();
    SmallFlagAt(window, 1, 200, 150);
    StoreScreenPropertiesToRecord(window);
    const int stored = window.UndoCount;
    ScreenPixel_MouseDown(window, At(205, 155, kLeftButton));
    ScreenPixel_MouseMove(window, At(235, 195, kLeftButton));
    EXPECT_EQ(RecordOf(window, 1).Left, 230);
    EXPECT_EQ(RecordOf(window, 1).Top, 190);
    EXPECT_FALSE(window.Mouse.FrameVisible);
    ScreenPixel_MouseMove(window, At(0, 0, kLeftButton));
    EXPECT_EQ(RecordOf(window, 1).Left, 0) << "below 0 is 0";
    EXPECT_EQ(RecordOf(window, 1).Top, 0);
    ScreenPixel_MouseUp(window, At(0, 0, kLeftButton));
    EXPECT_EQ(window.UndoCount, stored + 1);
    ScreenPixel_MouseMove(window, At(300, 300));
    EXPECT_EQ(RecordOf(window, 1).Left, 0) << "it has been let go";
    Rückgängig_Back(window);
    EXPECT_EQ(RecordOf(window, 1).Left, 200);
}

TEST_F(FlagMouse, SnapsToTheNearestMultipleOfTheGridLength) {
    ScreenWindow& window = OpenFive();
    SmallFlagAt(window, 1, 200, 150);
    FlagOf(window, 1).SnaptoGrid = kTrue;
    window.State.GridLength = 40;
    ScreenPixel_MouseDown(window, At(205, 155, kLeftButton));
    ScreenPixel_MouseMove(window, At(224, 156, kLeftButton));  // to (219, 151)
    EXPECT_EQ(RecordOf(window, 1).Left, 200);
    EXPECT_EQ(RecordOf(window, 1).Top, 160);
    ScreenPixel_MouseMove(window, At(226, 174, kLeftButton));  // to (221, 169)
    EXPECT_EQ(RecordOf(window, 1).Left, 240);
    EXPECT_EQ(RecordOf(window, 1).Top, 160);
}

TEST_F(FlagMouse, ADoubleClickOnAUseCellTurnsTheCoordinateOver) {
    ScreenWindow& window = OpenFive();
    SmallFlagAt(window, 2, 200, 150);
    EXPECT_EQ(TextOf(window, 1, kFlagUse, kFlagY), "X");
    DblClickCell(window, 1, kFlagUse, kFlagY);
    EXPECT_EQ(Job.UseFlags[5], 0);
    EXPECT_EQ(Job.UseFlags[4], 1);
    EXPECT_EQ(TextOf(window, 1, kFlagUse, kFlagY), "");
    EXPECT_EQ(FlagCellGround(RecordOf(window, 1), LabelOf(window, 1), kFlagUse, kFlagY), QbColor(14));
    EXPECT_EQ(FlagCellGround(RecordOf(window, 1), LabelOf(window, 1), kFlagUse, kFlagX), QbColor(15));
    DblClickCell(window, 1, kFlagUse, kFlagY);
    EXPECT_EQ(Job.UseFlags[5], 1);
    EXPECT_EQ(TextOf(window, 1, kFlagUse, kFlagY), "X");
}

TEST_F(FlagMouse, ADoubleClickElsewhereOnAFlagDoesNothing) {
    ScreenWindow& window = OpenFive();
    SmallFlagAt(window, 2, 200, 150);
    DblClickCell(window, 1, kFlagDev, kFlagY);
    DblClickCell(window, 1, kFlagUse, kFlagName);
    EXPECT_EQ(Job.UseFlags[5], 1);  // nor does the dialog of colours come up, which would fail this test
    SmallFlagAt(window, 7, 400, 400);
    DblClickCell(window, 2, kFlagUse, kFlagX);
    EXPECT_EQ(Job.UseFlags.size(), 10U);
}

TEST_F(FlagMouse, WithTheDynamicFlagADoubleClickTurnsNothingOver) {
    ScreenWindow& window = OpenFive();
    SmallFlagAt(window, 2, 200, 150);
    UserClick(Main.MenüAnsichtDynamicFlag);
    EXPECT_TRUE(Main.MenüAnsichtDynamicFlag.Checked);
    DblClickCell(window, 1, kFlagUse, kFlagY);
    EXPECT_EQ(Job.UseFlags[5], 1);
}

TEST_F(FlagMouse, ThePointTableFollowsAUseCell) {
    ScreenWindow& window = OpenFive();
    SmallFlagAt(window, 2, 200, 150);
    ShowWindow("FormTrafoBerechnung");
    DblClickCell(window, 1, kFlagUse, kFlagY);
    LookAt(TrafoWindow.Tabelle.Grid);
    EXPECT_FALSE(TrafoWindow.Points.InUse[2][1]);
    EXPECT_TRUE(TrafoWindow.Points.InUse[2][0]);
}

TEST_F(FlagMouse, TheRightButtonOpensThePopUpMenuOfTheFlag) {
    ScreenWindow& window = OpenFive();
    SmallFlagAt(window, 1, 200, 150);
    SmallFlagAt(window, 2, 400, 150);
    const float factor = window.State.BildFaktor;
    ScreenPixel_MouseDown(window, At(205, 155, kRightButton));
    EXPECT_EQ(Main.MenuFahne.Value, 1);
    EXPECT_EQ(window.State.ActiveFlag, 1);
    EXPECT_EQ(window.State.BildFaktor, factor) << "it does not zoom there";
    EXPECT_TRUE(Main.MenuFahneCopy.Enabled);
    UserClick(Main.MenuFahneDelete);
    EXPECT_EQ(Main.MenuFahne.Value, 0);
    EXPECT_EQ(FlagOfRow(window, 1), 0);
    ScreenPixel_MouseDown(window, At(50, 500, kRightButton));
    EXPECT_LT(window.State.BildFaktor, factor);
}

TEST_F(FlagMouse, OneFlagFollowsThePointUnderTheMouseAndIsNotStored) {
    ScreenWindow& window = OpenFive();
    UserClick(Main.MenüAnsichtDynamicFlag);
    Move(window, 101, 102);
    EXPECT_EQ(window.DynamicFlag.Row, 1);
    EXPECT_TRUE(window.DynamicFlag.Visible);
    EXPECT_EQ(window.DynamicFlag.Text[kFlagHeading][kFlagName], ScenePointName(1));
    const std::uint64_t painted = window.PaintCount;
    Move(window, 102, 102);
    EXPECT_EQ(window.PaintCount, painted) << "the point is the same";
    Move(window, 301, 102);
    EXPECT_EQ(window.DynamicFlag.Row, 2);
    EXPECT_EQ(window.State.FlagCount, 0);
    UserClick(Main.MenüAnsichtDynamicFlag);
    EXPECT_FALSE(Main.MenüAnsichtDynamicFlag.Checked);
    EXPECT_EQ(window.DynamicFlag.Row, 0);
    Move(window, 101, 102);
    EXPECT_EQ(window.DynamicFlag.Row, 0);
}

TEST_F(FlagMouse, AFlagDraggedBackStandsWhereItWas) {
    ScreenWindow& window = OpenFive();
    SmallFlagAt(window, 1, 200, 150);
    ScreenPixel_MouseDown(window, At(205, 155, kLeftButton));
    ScreenPixel_MouseMove(window, At(245, 175, kLeftButton));
    EXPECT_EQ(RecordOf(window, 1).Left, 240);
    ScreenPixel_MouseMove(window, At(205, 155, kLeftButton));
    EXPECT_EQ(RecordOf(window, 1).Left, 200);
    EXPECT_EQ(RecordOf(window, 1).Top, 150);
}

TEST_F(FlagMouse, TheFlagUnderTheMouseFollowsTheUnit) {
    ScreenWindow& window = OpenFive();
    UserClick(Main.MenüAnsichtDynamicFlag);
    Move(window, 301, 102);
    const double x_mm = Val(window.DynamicFlag.Text[kFlagActual][kFlagX]);
    ASSERT_NE(x_mm, 0);
    Units.LengthFactor = 0.5;
    Stelle_Grafik_dar(window);
    EXPECT_NEAR(Val(window.DynamicFlag.Text[kFlagActual][kFlagX]), x_mm / 2, 0.001);
}

TEST_F(FlagMouse, NoFlagFollowsTheMouseOnceTheLastWindowIsClosed) {
    OpenFive();
    UserClick(Main.MenüAnsichtDynamicFlag);
    CloseAllGraphicsWindows();
    EXPECT_FALSE(Main.MenüAnsichtDynamicFlag.Checked);
}

TEST_F(FlagMouse, ANewFlagStandsBesideTheClickAndTurnsToTheOtherSideAtAnEdge) {
    AddPair({100, 100, 0}, {100, 100, 0});
    AddPair({780, 100, 0}, {780, 100, 0});
    AddPair({100, 590, 0}, {100, 590, 0});
    AddPair({400, 300, 0}, {400, 300, 0});
    SizeRest();
    Job.ViewAllOCS = kFalse;
    ScreenWindow& window = OpenStraight();
    window.State.FlagMode = kTrue;
    FlagRecord record;
    record.ShowLegendeName = record.ShowDev = record.showX = kTrue;
    record.Size = 8;
    TakeAsTemplate(window, record);
    ClickAt(window, 101, 99);
    EXPECT_EQ(RecordOf(window, 1).Left, 121);
    EXPECT_EQ(RecordOf(window, 1).Top, 119);
    ClickAt(window, 780, 100);
    ASSERT_LT(LabelOf(window, 2).Width, 300);
    EXPECT_NEAR(RecordOf(window, 2).Left + LabelOf(window, 2).Width, 760, 1);
    EXPECT_EQ(RecordOf(window, 2).Top, 120);
    ClickAt(window, 100, 590);
    EXPECT_EQ(RecordOf(window, 3).Left, 120);
    EXPECT_NEAR(RecordOf(window, 3).Top + LabelOf(window, 3).Height, 570, 1);
    // One that has room on neither side stays within the picture as far as it can.
    record.showY = record.showZ = record.showR = record.showPhi = record.showRho = record.showTheta =
        record.show3D = record.ShowLegendeXYZ = kTrue;
    record.Size = 12;
    TakeAsTemplate(window, record);
    ClickAt(window, 400, 300);
    const double width = LabelOf(window, 4).Width;
    ASSERT_GT(width, 380);
    EXPECT_NEAR(RecordOf(window, 4).Left, std::max(0.0, 800 - width), 1);
}

TEST_F(FlagMouse, RowsThatAreNotSeenGetNone) {
    ScreenWindow& window = OpenInFlagMode();
    Scene.Points[kScenePlotted][1] = 0;
    FlagByClick(window, 1, 100, 100);
    EXPECT_EQ(window.State.FlagCount, 0) << "not plotted";
    Scene.Points[kScenePlotted][1] = 1;
    Scene.PixelX[1] = -5;
    FlagByClick(window, 1, 0, 100);
    EXPECT_EQ(window.State.FlagCount, 0) << "outside the picture";
    Scene.PixelX[1] = 100;
    FlagByClick(window, 1, 100, 100);
    EXPECT_EQ(window.State.FlagCount, 1);
}

TEST_F(FlagMouse, WithSnapAPlaceBelowZeroIsZero) {
    ScreenWindow& window = OpenFive();
    SmallFlagAt(window, 1, 200, 150);
    FlagOf(window, 1).SnaptoGrid = kTrue;
    window.State.GridLength = 50;
    ScreenPixel_MouseDown(window, At(205, 155, kLeftButton));
    ScreenPixel_MouseMove(window, At(-40, -140, kLeftButton));
    EXPECT_EQ(RecordOf(window, 1).Left, 0);
    EXPECT_EQ(RecordOf(window, 1).Top, 0);
}

TEST_F(FlagMouse, TheFlagUnderTheMouseFollowsACalculation) {
    ScreenWindow& window = OpenFive();
    UserClick(Main.MenüAnsichtDynamicFlag);
    Move(window, 101, 102);
    ASSERT_EQ(window.DynamicFlag.Row, 1);
    Job.Transformed.X[1] = 107.25;
    UpdateAllGraphicsWindows();
    EXPECT_EQ(window.DynamicFlag.Text[kFlagActual][kFlagX], "107.250");
}

TEST_F(FlagMouse, AUseCellCalculatesAtOnceWhereThatIsAutomatic) {
    ScreenWindow& window = OpenFive();
    SmallFlagAt(window, 1, 200, 150);
    ShowWindow("FormTrafoBerechnung");
    ::Run.TrafoValid = kFalse;
    DblClickCell(window, 1, kFlagUse, kFlagZ);
    EXPECT_FALSE(IsTrue(::Run.TrafoValid));
    UserSetValue(TrafoWindow.CheckAutoRec, 1);
    ::Run.TrafoValid = kFalse;
    DblClickCell(window, 1, kFlagUse, kFlagZ);
    EXPECT_TRUE(IsTrue(::Run.TrafoValid));
    UnloadWindow("FormTrafoBerechnung");
}

TEST_F(FlagMouse, AFlagCannotBeDraggedOutOfReach) {
    ScreenWindow& window = OpenFive();
    SmallFlagAt(window, 1, 200, 150);
    ScreenPixel_MouseDown(window, At(205, 155, kLeftButton));
    ScreenPixel_MouseMove(window, At(5000, 5000, kLeftButton));
    EXPECT_EQ(RecordOf(window, 1).Left, 788);
    EXPECT_EQ(RecordOf(window, 1).Top, 588);
    ScreenPixel_MouseUp(window, At(5000, 5000, kLeftButton));
    FlagOf(window, 1).SnaptoGrid = kTrue;
    window.State.GridLength = 100;
    ScreenPixel_MouseDown(window, At(790, 590, kLeftButton));
    ScreenPixel_MouseMove(window, At(5000, 5000, kLeftButton));
    EXPECT_EQ(RecordOf(window, 1).Left, 700) << "the last line of the grid in reach";
    EXPECT_EQ(RecordOf(window, 1).Top, 500);
}
