// Flags: what they show, how they come and go, and that they come back with views.
#include "graphics/flags.h"

#include <cmath>

#include "cli/headless.h"
#include "core/job_tolerance.h"
#include "graphics/black_planes.h"
#include "graphics/flag_window.h"
#include "graphics/saved_views.h"
#include "graphics/scene.h"

using namespace corvinade;

using Flags = FlagWindow;

TEST_F(Flags, AClickInTheFlagModeGivesThePointAFlag) {
    ScreenWindow& window = OpenInFlagMode();
    ClickAt(window, 102, 99);
    ASSERT_EQ(window.State.FlagCount, 1);
    EXPECT_EQ(window.State.ActiveFlag, 1);
    EXPECT_EQ(window.State.FlagIndex[0], 1);
    EXPECT_EQ(LabelOf(window, 1).Row, 1);
    EXPECT_TRUE(LabelOf(window, 1).Visible);
    EXPECT_GT(RecordOf(window, 1).Left, 102);
    EXPECT_GT(RecordOf(window, 1).Top, 99);
}

TEST_F(Flags, ThePointThatHasAFlagGetsNoSecondOne) {
    ScreenWindow& window = OpenInFlagMode();
    ClickAt(window, 100, 100);
    ClickAt(window, 98, 98);
    EXPECT_EQ(window.State.FlagCount, 1);
}

TEST_F(Flags, WithShiftOrCtrlOrWithoutTheModeAClickSetsNone) {
    ScreenWindow& window = OpenInFlagMode();
    for (const MouseEvent& event :
         {WithShift(At(100, 100, kLeftButton)), WithCtrl(At(100, 100, kLeftButton))}) {
        ScreenPixel_MouseDown(window, event);
        ScreenPixel_MouseUp(window, event);
        ScreenPixel_Click(window, event);
    }
    UserClick(Main.MenüGlobalFlagsMode);
    ClickAt(window, 100, 100);
    EXPECT_EQ(window.State.FlagCount, 0);
}

TEST_F(Flags, TheEntryAndTheToolKeyTurnTheModeOnAndOff) {
    ScreenWindow& window = OpenInFlagMode();
    EXPECT_TRUE(Main.MenüGlobalFlagsMode.Checked);
    EXPECT_EQ(Main.ToolbarGraphics_FlagMode.Value, 1);
    EXPECT_EQ(window.Pointer, ScreenPointer::SetsFlag);
    UserClick(Main.ToolbarGraphics_FlagMode);
    EXPECT_FALSE(Main.MenüGlobalFlagsMode.Checked);
    EXPECT_EQ(window.Pointer, ScreenPointer::Arrow);
    EXPECT_FALSE(IsTrue(window.State.FlagMode));
}

TEST_F(Flags, WithoutTemplateAndSettingsAllSwitchesAreOnButTheNumberAlone) {
    ScreenWindow& window = OpenInFlagMode();
    FlagOn(window, 1);
    const FlagRecord& record = RecordOf(window, 1);
    EXPECT_EQ(record.ShowPointNumber, kFalse);
    for (const Flag on :
         {record.ShowActual, record.ShowNominal,    record.ShowDevXYZ,      record.showX,
          record.showY,      record.showZ,          record.show3D,          record.showR,
          record.showPhi,    record.showRho,        record.showTheta,       record.ShowDev,
          record.ShowTolCol, record.ShowLegendeXYZ, record.ShowLegendeName, record.ShowUseNotUse,
          record.ShowGrid,   record.ChangeAll,      record.SnaptoGrid,      record.WithinScreen})
        EXPECT_EQ(on, kTrue);
}

TEST_F(Flags, ANewFlagCopiesTheSettingsAndThenTheTemplate) {
    Settings.FlagDefined = true;
    Settings.FlagDefault.ShowDev = kTrue;
    Settings.FlagDefault.showX = kTrue;
    Settings.FlagDefault.Size = 11;
    ScreenWindow& window = OpenInFlagMode();
    FlagOn(window, 1);
    EXPECT_EQ(RecordOf(window, 1).Size, 11);
    EXPECT_EQ(RecordOf(window, 1).showY, kFalse);
    window.State.Flags[0].Size = 14;
    window.State.Flags[0].showY = kTrue;
    FlagOn(window, 3);
    EXPECT_EQ(RecordOf(window, 2).Size, 14);
    EXPECT_EQ(RecordOf(window, 2).showY, kTrue);
}

TEST_F(Flags, ShowsThePointItsTargetAndTheirDifferences) {
    ScreenWindow& window = OpenInFlagMode();
    FlagOn(window, 1);  // (100, 100, 5) with the target (140, 100, 0)
    EXPECT_EQ(TextOf(window, 1, kFlagHeading, kFlagName), ScenePointName(1));
    const char* headings[] = {"x", "y", "z", "R", "Phi", "Rho", "Theta", "3D Dev."};
    for (std::size_t i = 0; i < 8; ++i) EXPECT_EQ(LabelOf(window, 1).Text[0][i + 1], headings[i]);
    EXPECT_EQ(TextOf(window, 1, kFlagActual, kFlagName), "Actual");
    EXPECT_EQ(TextOf(window, 1, kFlagNominal, kFlagName), "Nominal");
    EXPECT_EQ(TextOf(window, 1, kFlagDev, kFlagName), "Dev.");
    EXPECT_EQ(TextOf(window, 1, kFlagUse, kFlagName), "use");
    const auto number = [&](FlagRow row, FlagColumn column) { return Val(TextOf(window, 1, row, column)); };
    EXPECT_NEAR(number(kFlagActual, kFlagX), 100, 5e-4);
    EXPECT_NEAR(number(kFlagActual, kFlagZ), 5, 5e-4);
    EXPECT_NEAR(number(kFlagNominal, kFlagX), 140, 5e-4);
    EXPECT_NEAR(number(kFlagDev, kFlagX), -40, 5e-4);
    EXPECT_NEAR(number(kFlagDev, kFlagZ), 5, 5e-4);
    const double r1 = std::hypot(100, 100), r2 = std::hypot(140, 100);
    EXPECT_NEAR(number(kFlagActual, kFlagR), r1, 5e-4);
    EXPECT_NEAR(number(kFlagDev, kFlagR), r1 - r2, 5e-4);
    EXPECT_NEAR(number(kFlagActual, kFlagRho), std::hypot(r1, 5), 5e-4);
    EXPECT_NEAR(number(kFlagActual, kFlagPhi), 45, 5e-4);
    const double phi2 = std::atan2(100.0, 140.0) * 180 / M_PI;
    EXPECT_NEAR(number(kFlagDev, kFlagPhi), 45 - phi2, 5e-4);
    EXPECT_NEAR(number(kFlagNominal, kFlagTheta), 90, 5e-4);
    EXPECT_NEAR(number(kFlagDev, kFlag3D), std::hypot(40, 5), 5e-4);
    EXPECT_EQ(TextOf(window, 1, kFlagActual, kFlag3D), "");
}

// (100, 100, 5) with the target (140, 100, 0): inwards and turned on, which x, y and z do not say alike.
TEST_F(Flags, TheSignIsThatOfTheComponentInTheCoordinateFormOfTheView) {
    ScreenWindow& window = OpenInFlagMode();
    FlagOn(window, 1);
    struct Case {
        const char *Form, *By;
        double Component;
    };
    const double r1 = std::hypot(100, 100), r2 = std::hypot(140, 100);
    const std::vector<Case> cases = {{"CYL", "x", r1 - r2},
                                     {"CYL", "y", std::atan2(100, 100) - std::atan2(100, 140)},
                                     {"CYL", "z", 5},
                                     {"SPH", "x", std::hypot(r1, 5) - r2},
                                     {"SPH", "y", std::atan2(100, 100) - std::atan2(100, 140)},
                                     {"SPH", "z", std::atan2(r1, 5) - std::atan2(r2, 0)},
                                     {"CART", "x", -40},
                                     {"CART", "z", 5}};
    for (const Case& c : cases) {
        window.State.CS_Type = c.Form;
        window.State.ColorBased = c.By;
        Stelle_Grafik_dar(window);
        const double size = std::hypot(40, 5);
        EXPECT_NEAR(Val(TextOf(window, 1, kFlagDev, kFlag3D)), c.Component < 0 ? -size : size, 5e-4)
            << c.Form << " " << c.By;
        EXPECT_EQ(Scene.Points[kSceneSize][1] < 0, c.Component < 0) << "as the class has it";
    }
}

TEST_F(Flags, TheDeviationHasTheSignOfTheComponentThatColours) {
    ScreenWindow& window = OpenInFlagMode();
    FlagOn(window, 1);
    const auto shown = [&](const char* by) {
        window.State.ColorBased = by;
        Stelle_Grafik_dar(window);
        return Val(TextOf(window, 1, kFlagDev, kFlag3D));
    };
    const double size = std::hypot(40, 5);
    EXPECT_NEAR(shown("x"), -size, 5e-4);
    EXPECT_NEAR(shown("y"), size, 5e-4);
    EXPECT_NEAR(shown("z"), size, 5e-4);
    EXPECT_NEAR(shown(""), size, 5e-4);
}

TEST_F(Flags, AnglesAsLengthsOfArcAreShownWithQ) {
    Settings.PhiThetaAsQ = kTrue;
    ScreenWindow& window = OpenInFlagMode();
    FlagOn(window, 1);
    const std::string phi = TextOf(window, 1, kFlagDev, kFlagPhi);
    ASSERT_EQ(phi.substr(0, 4), "Q = ");
    const double angle = M_PI / 4 - std::atan2(100.0, 140.0);
    EXPECT_NEAR(Val(phi.substr(4)), std::hypot(100, 140) * angle, 5e-4);
    EXPECT_EQ(TextOf(window, 1, kFlagDev, kFlagTheta).substr(0, 4), "Q = ");
    EXPECT_NEAR(Val(TextOf(window, 1, kFlagActual, kFlagPhi)), 45, 5e-4);  // that of a point stays an angle
}

TEST_F(Flags, PointsWithoutAPartnerShowTheirRowAlone) {
    ScreenWindow& window = OpenInFlagMode();
    FlagOn(window, 7);
    FlagOn(window, 8);
    EXPECT_NE(TextOf(window, 1, kFlagActual, kFlagX), "");
    EXPECT_EQ(TextOf(window, 1, kFlagNominal, kFlagX), "");
    EXPECT_EQ(TextOf(window, 2, kFlagActual, kFlagX), "");
    EXPECT_NE(TextOf(window, 2, kFlagNominal, kFlagX), "");
    for (const int flag : {1, 2}) {
        EXPECT_EQ(TextOf(window, flag, kFlagDev, kFlag3D), "");
        EXPECT_EQ(TextOf(window, flag, kFlagUse, kFlagX), "");
    }
}

TEST_F(Flags, TextsFollowTheUnit) {
    ScreenWindow& window = OpenInFlagMode();
    FlagOn(window, 1);
    Units.LengthFactor = 0.1;
    Stelle_Grafik_dar(window);
    EXPECT_NEAR(Val(TextOf(window, 1, kFlagActual, kFlagX)), 10, 5e-4);
}

TEST_F(Flags, ASwitchThatIsOffHidesItsRowOrColumn) {
    ScreenWindow& window = OpenInFlagMode();
    FlagOn(window, 1);
    struct Case {
        Flag FlagRecord::*Place;
        int Column, Row;
    };
    const Case cases[] = {{&FlagRecord::ShowLegendeName, kFlagName, -1},
                          {&FlagRecord::showX, kFlagX, -1},
                          {&FlagRecord::showY, kFlagY, -1},
                          {&FlagRecord::showZ, kFlagZ, -1},
                          {&FlagRecord::show3D, kFlag3D, -1},
                          {&FlagRecord::showR, kFlagR, -1},
                          {&FlagRecord::showPhi, kFlagPhi, -1},
                          {&FlagRecord::showRho, kFlagRho, -1},
                          {&FlagRecord::showTheta, kFlagTheta, -1},
                          {&FlagRecord::ShowLegendeXYZ, -1, 0},
                          {&FlagRecord::ShowActual, -1, 1},
                          {&FlagRecord::ShowNominal, -1, 2},
                          {&FlagRecord::ShowDev, -1, 3},
                          {&FlagRecord::ShowUseNotUse, -1, 4}};
    for (const Case& one : cases) {
        FlagOf(window, 1).*one.Place = kFalse;
        FahneFüllen(window, 1, 1);
        for (int column = 0; column < kFlagCols; ++column)
            EXPECT_EQ(LabelOf(window, 1).ColWidth[static_cast<std::size_t>(column)] == 0,
                      column == one.Column);
        for (int row = 0; row < kFlagRows; ++row)
            EXPECT_EQ(LabelOf(window, 1).RowHeight[static_cast<std::size_t>(row)] == 0, row == one.Row);
        FlagOf(window, 1).*one.Place = kTrue;
    }
}

TEST_F(Flags, TheSizeIsThatOfTheCellsInTwipsByTheTwoDivisors) {
    ScreenWindow& window = OpenInFlagMode();
    FlagOn(window, 1);
    const FlagLabel& label = LabelOf(window, 1);
    double width = 0, height = 0;
    for (const int twips : label.ColWidth) width += twips;
    for (const int twips : label.RowHeight) height += twips;
    EXPECT_GT(width, 0);
    EXPECT_NEAR(label.Width, width / 14.9, 1e-3);
    EXPECT_NEAR(label.Height, height / 14.7, 1e-3);
}

TEST_F(Flags, TheNumberAloneLeavesTheNameCell) {
    ScreenWindow& window = OpenInFlagMode();
    FlagOn(window, 1);
    FlagRecord only;
    only.ShowPointNumber = kTrue;
    FlagOf(window, 1) = only;
    FahneFüllen(window, 1, 1);
    EXPECT_EQ(FlagText(LabelOf(window, 1)), ScenePointName(1));
    EXPECT_GT(LabelOf(window, 1).Width, 0);
}

TEST_F(Flags, TheGroundIsTheColourOfThePointOrWhite) {
    ScreenWindow& window = OpenInFlagMode();
    FlagOn(window, 1);
    EXPECT_EQ(FlagGround(RecordOf(window, 1), LabelOf(window, 1)),
              static_cast<std::int32_t>(Scene.Points[kSceneColour][1]));
    FlagOf(window, 1).ShowTolCol = kFalse;
    EXPECT_EQ(FlagGround(RecordOf(window, 1), LabelOf(window, 1)), QbColor(15));
}

TEST_F(Flags, AreHiddenWithTheirPointAndReturnWithIt) {
    ScreenWindow& window = OpenInFlagMode();
    FlagOn(window, 1);
    Job.ViewAllMCS = kFalse;
    Grafik_Festlegen(window);
    Stelle_Grafik_dar(window);
    EXPECT_FALSE(LabelOf(window, 1).Visible);
    Job.ViewAllMCS = kTrue;
    Grafik_Festlegen(window);
    Stelle_Grafik_dar(window);
    EXPECT_TRUE(LabelOf(window, 1).Visible);
}

TEST_F(Flags, AFlagWhosePointLeavesThePictureStaysUnlessItIsToStayWithin) {
    ScreenWindow& window = OpenInFlagMode();
    FlagOn(window, 1);
    FlagOf(window, 1).WithinScreen = kFalse;
    window.State.BildOffsetX -= 5000;
    Stelle_Grafik_dar(window);
    EXPECT_TRUE(LabelOf(window, 1).Visible);
    FlagOf(window, 1).WithinScreen = kTrue;
    Stelle_Grafik_dar(window);
    EXPECT_FALSE(LabelOf(window, 1).Visible);
    window.State.BildOffsetX += 5000;
    Stelle_Grafik_dar(window);
    EXPECT_TRUE(LabelOf(window, 1).Visible);
}

TEST_F(Flags, DeletingOneLeavesTheOthersOnTheirPoints) {
    ScreenWindow& window = OpenInFlagMode();
    for (const int row : {1, 2, 3}) FlagOn(window, row);
    const FlagRecord third = RecordOf(window, 3);
    Fahne_Löschen(window, 2);
    EXPECT_EQ(window.State.FlagCount, 2);
    EXPECT_EQ(window.State.ActiveFlag, 0);
    EXPECT_EQ(FlagOfRow(window, 1), 1);
    EXPECT_EQ(FlagOfRow(window, 2), 0);
    EXPECT_EQ(FlagOfRow(window, 3), 2);
    EXPECT_EQ(RecordOf(window, 2).Left, third.Left);
    EXPECT_EQ(LabelOf(window, 2).Row, 3);
    AlleLöschen(window);
    EXPECT_EQ(window.State.FlagCount, 0);
    EXPECT_EQ(FlagOfRow(window, 1), 0);
    EXPECT_TRUE(window.FlagLabels.empty());
    EXPECT_EQ(window.State.Flags.size(), 1U);  // the template
}

TEST_F(Flags, UndoStepsBringFlagsBack) {
    ScreenWindow& window = OpenInFlagMode();
    FlagOn(window, 1);
    FlagOn(window, 3);
    Rückgängig_Back(window);
    EXPECT_EQ(window.State.FlagCount, 1);
    EXPECT_EQ(LabelOf(window, 1).Row, 1);
    Rückgängig_Back(window);
    EXPECT_EQ(window.State.FlagCount, 0);
    EXPECT_TRUE(window.FlagLabels.empty());
    Rückgängig_Force(window);
    Rückgängig_Force(window);
    ASSERT_EQ(window.State.FlagCount, 2);
    EXPECT_EQ(LabelOf(window, 2).Row, 3);
    EXPECT_EQ(TextOf(window, 2, kFlagHeading, kFlagName), ScenePointName(3));
    EXPECT_TRUE(LabelOf(window, 2).Visible);
}

TEST_F(Flags, SavedViewsBringFlagsBack) {
    ScreenWindow& window = OpenInFlagMode();
    FlagOn(window, 1);
    FlagOn(window, 3);
    FlagOf(window, 2).showTheta = kFalse;
    StoreScreenPropertiesToRecord(window);
    Job.nSavedViews = 1;
    Job.SavedView[1] = window.UndoRing[static_cast<std::size_t>(window.UndoIndex)];
    Main.ComboSaveView.Items = {"with flags"};
    AlleLöschen(window);
    GetScreenPropertiesFromSavedView(window, 1);
    ASSERT_EQ(window.State.FlagCount, 2);
    EXPECT_EQ(LabelOf(window, 2).Row, 3);
    EXPECT_EQ(LabelOf(window, 2).ColWidth[kFlagTheta], 0);
    EXPECT_TRUE(LabelOf(window, 1).Visible);
}

TEST_F(Flags, AViewThatWasSavedForMorePointsKeepsTheFlagsOfThoseThatAreLeft) {
    ScreenWindow& window = OpenInFlagMode();
    ScreenRecord view = window.State;
    view.FlagCount = 2;
    view.Flags.resize(3, NewFlagRecord(window));
    view.FlagIndex.assign(50, 0);
    view.FlagIndex[0] = 1;
    view.FlagIndex[49] = 2;
    GetScreenPropertiesFromRecord(window, view);
    EXPECT_TRUE(LabelOf(window, 1).Visible);
    EXPECT_FALSE(LabelOf(window, 2).Visible);
    EXPECT_EQ(LabelOf(window, 2).Row, 0);
}

TEST_F(Flags, AViewWithFlagNumbersThatLeadNowhereLosesThem) {
    ScreenRecord view;
    view.FlagCount = 30000;
    view.ActiveFlag = 7;
    view.Flags.resize(3);
    view.FlagIndex = {1, 2, 3, -5, 2, 30000};
    MakeFlagsUsable(view);
    EXPECT_EQ(view.FlagCount, 2);
    EXPECT_EQ(view.ActiveFlag, 0);
    EXPECT_EQ(view.FlagIndex, (std::vector<std::int16_t>{1, 2, 0, 0, 0, 0}));
    view.Flags.clear();
    MakeFlagsUsable(view);
    EXPECT_EQ(view.FlagCount, 0);
}

TEST_F(Flags, TheTextOfTheActiveFlagGoesToTheClipboard) {
    ScreenWindow& window = OpenInFlagMode();
    EXPECT_FALSE(Main.MenuFahneCopy.Enabled);
    EXPECT_TRUE(Main.MenuFahneEdit.Enabled);
    FlagOn(window, 1);
    FlagRecord record;
    record.ShowLegendeXYZ = record.ShowLegendeName = record.ShowActual = record.showX = record.showY = kTrue;
    FlagOf(window, 1) = record;
    FahneFüllen(window, 1, 1);
    EXPECT_TRUE(UserClick(Main.MenuFahneCopy));
    EXPECT_EQ(Headless.Clipboard, ScenePointName(1) + "\tx\ty\r\nActual\t" +
                                      TextOf(window, 1, kFlagActual, kFlagX) + "\t" +
                                      TextOf(window, 1, kFlagActual, kFlagY));
    Headless.ClipboardRefuses = true;
    UserClick(Main.MenuFahneCopy);
    EXPECT_EQ(LastMessage(), "Clipboard coud not be set due unknown error");
}

TEST_F(Flags, TheEntryDeletesTheActiveFlag) {
    ScreenWindow& window = OpenInFlagMode();
    FlagOn(window, 1);
    FlagOn(window, 3);
    UserClick(Main.MenuFahneDelete);
    EXPECT_EQ(window.State.FlagCount, 1);
    EXPECT_EQ(FlagOfRow(window, 1), 1);
    EXPECT_FALSE(Main.MenuFahneDelete.Enabled);
    Rückgängig_Back(window);
    EXPECT_EQ(window.State.FlagCount, 2);
}

TEST_F(Flags, ATableOfManyFlagsKeepsTheirNumbersWithinSixteenBits) {
    for (int i = 0; i < kMostFlags + 10; ++i) AddStart("s" + std::to_string(i), i % 700, i / 700.0, 0);
    SizeRest();
    ScreenWindow& window = OpenStraight();
    FlagRecord plain;
    plain.ShowPointNumber = kTrue;
    TakeAsTemplate(window, plain);
    for (int row = 1; row <= kMostFlags; ++row) ASSERT_EQ(AddFlag(window, row, 0, 0), row);
    EXPECT_EQ(AddFlag(window, kMostFlags + 1, 0, 0), 0);
    EXPECT_EQ(window.State.FlagCount, kMostFlags);
}

TEST_F(Flags, AreHiddenWithAPointThatABlackPlaneHides) {
    ScreenWindow& window = OpenInFlagMode();
    FlagOn(window, 1);
    Initialisieren_BlackPlane(window, true, false);
    window.State.SlabThickness = 0;
    Stelle_Grafik_dar(window);
    EXPECT_FALSE(LabelOf(window, 1).Visible);
    EXPECT_EQ(FlagAt(window, RecordOf(window, 1).Left + 2.0F, RecordOf(window, 1).Top + 2.0F), 0);
    window.State.BlackPlane = kFalse;
    Stelle_Grafik_dar(window);
    EXPECT_TRUE(LabelOf(window, 1).Visible);
}

TEST_F(Flags, TheGroundIsThatOfItsOwnWindowWhicheverWasPaintedLast) {
    ScreenWindow& window = OpenInFlagMode();
    FlagOn(window, 1);
    const auto ground = FlagGround(RecordOf(window, 1), LabelOf(window, 1));
    ScreenWindow& other = OpenScreenWindow();
    Stelle_Grafik_dar(other);
    Scene.Points[kSceneColour][1] = ground == 255 ? 65280.0F : 255.0F;
    EXPECT_EQ(FlagGround(RecordOf(window, 1), LabelOf(window, 1)), ground);
}

// The first point deviates by (-40, 0, 5).
TEST_F(Flags, DeviationsBeyondTheToleranceAreMarked) {
    ScreenWindow& window = OpenInFlagMode();
    FlagOn(window, 1);
    const auto ground = [&window](FlagRow row, FlagColumn column) {
        return FlagCellGround(RecordOf(window, 1), LabelOf(window, 1), row, column);
    };
    EXPECT_NE(ground(kFlagDev, kFlagX), kBeyondTolerance);
    PutTolerance(10, Job);
    DrawFlagLines(window);
    EXPECT_EQ(ground(kFlagDev, kFlagX), kBeyondTolerance);
    EXPECT_NE(ground(kFlagDev, kFlagZ), kBeyondTolerance);
    EXPECT_NE(ground(kFlagActual, kFlagX), kBeyondTolerance);
    PutTolerance(0, Job);
    DrawFlagLines(window);
    EXPECT_NE(ground(kFlagDev, kFlagX), kBeyondTolerance);
}
