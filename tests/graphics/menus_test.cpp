// Menu entries and tool bar keys of the main window that act on the graphics window on top.
#include "engine/calculation_window.h"
#include "graphics/bindings_overlay.h"
#include "graphics/graphics_refresh.h"
#include "graphics/input_window.h"
#include "graphics/tolerance.h"

using namespace corvinade;

class Menus : public InputWindow {
protected:
    using Three = std::array<double, 3>;
    static void ExpectOneStep(ScreenWindow& window, Control& command) {
        window.UndoCount = 1;
        const std::uint64_t painted = window.PaintCount;
        UserClick(command);
        EXPECT_EQ(window.UndoCount, 2) << command.Text << command.ToolTip;
        EXPECT_EQ(window.PaintCount, painted + 1) << command.Text << command.ToolTip;
    }
};

TEST_F(Menus, EachUseOfGraphicsOpensAWindow) {
    OpenFive();
    EXPECT_TRUE(Main.MenueGraphics.Checked);
    UserClick(Main.ToolbarGraphics_Graphics);
    UserClick(Main.MenueGraphics);
    std::vector<std::string> captions;
    for (const auto& window : Screens().Open) captions.push_back(window->Caption);
    EXPECT_EQ(captions, (Texts{"Screen - DEFAULT", "Screen - 2", "Screen - 3"}));
}

TEST_F(Menus, TheFixedViewsSetTheirAngles) {
    constexpr double kDegree = 180 / 3.14159265358979, kThreeQuarters = 4.712388980384685;
    const struct {
        Control& Entry;
        Control& Key;
        Three Angles;
    } rows[] = {
        {Main.MenüAnsichtTopview, Main.ToolbarGraphics_ViewTop, {-3.14159265358979, 0, 0}},
        {Main.MenüAnsichtSideView, Main.ToolbarGraphics_ViewSide, {kThreeQuarters, 0, 0}},
        {Main.MenüAnsichtFrontView, Main.ToolbarGraphics_ViewFront, {kThreeQuarters, kThreeQuarters, 0}},
        {Main.MenüAnsichtIsometricView,
         Main.ToolbarGraphics_ViewIso,
         {210 / kDegree, -50 / kDegree, -50 / kDegree}}};
    ScreenWindow& window = OpenFive();
    for (const auto& row : rows)
        for (Control* command : {&row.Entry, &row.Key}) {
            LookStraight(window);
            ExpectOneStep(window, *command);
            EXPECT_EQ(Angles(window), row.Angles) << command->Text;
            EXPECT_EQ(window.State.BildFaktor, 1);
            EXPECT_EQ(window.State.BildOffsetX, -200);
        }
}

TEST_F(Menus, FitAndCenter) {
    ScreenWindow& window = OpenFive();
    for (Control* command : {&Main.MenüAnsichtAnpassen, &Main.ToolbarGraphics_ZoomAll}) {
        LookStraight(window);
        ExpectOneStep(window, *command);
        // The box is 600 by 400: 0.9 of the smaller of 800 / 600 and 600 / 400.
        EXPECT_FLOAT_EQ(window.State.BildFaktor, 1.2F);
        EXPECT_NEAR(window.State.BildOffsetX, -(300 * 1.2 - (800 - 600 * 1.2) / 2), 1e-3);
        EXPECT_NEAR(window.State.BildOffsetY, -(-300 * 1.2 - (600 - 400 * 1.2) / 2), 1e-3);
    }
    LookStraight(window);
    ExpectOneStep(window, Main.MenüAnsichtcenter);
    EXPECT_EQ(window.State.BildFaktor, 1);
    EXPECT_EQ(window.State.BildOffsetX, 400);
    EXPECT_EQ(window.State.BildOffsetY, 300);
}

TEST_F(Menus, TheZoomKeysGoAboutTheMiddle) {
    ScreenWindow& window = OpenFive();
    Move(window, 10, 10);
    ExpectOneStep(window, Main.ToolbarGraphics_ZoomIn);
    EXPECT_FLOAT_EQ(window.State.BildFaktor, static_cast<float>(1 / 0.7));
    EXPECT_NEAR(window.State.BildOffsetX, -(400 + 200) / 0.7 + 400, 1e-3);
    ExpectOneStep(window, Main.ToolbarGraphics_ZoomOut);
    EXPECT_NEAR(window.State.BildFaktor, 1, 1e-6);
    EXPECT_NEAR(window.State.BildOffsetX, -200, 1e-3);
}

TEST_F(Menus, PointsBecomeBiggerSmallerAndSmall) {
    ScreenWindow& window = OpenFive();
    for (Control* command : {&Main.MenüAnsichtPunkteBigger, &Main.ToolbarGraphics_PointsBigger})
        ExpectOneStep(window, *command);
    EXPECT_EQ(window.State.BigNess, 4);
    for (Control* command : {&Main.MenüAnsichtPunkteSmaller, &Main.ToolbarGraphics_PointsSmaller})
        ExpectOneStep(window, *command);
    EXPECT_EQ(window.State.BigNess, 2);
    for (int i = 0; i < 3; ++i) UserClick(Main.MenüAnsichtPunkteSmaller);
    EXPECT_EQ(window.State.BigNess, 1);
    window.State.BigNess = 9;
    ExpectOneStep(window, Main.MenüAnsichtPunkteSmallPoints);
    EXPECT_EQ(window.State.BigNess, 1);
}

TEST_F(Menus, TheVectorModeCarriesItsCommands) {
    ScreenWindow& window = OpenFive();
    const auto expect = [&](bool on) {
        EXPECT_EQ(IsTrue(window.State.VectorMode), on);
        EXPECT_EQ(Main.MenüAnsichtVektorenVektorModeActive.Checked, on);
        EXPECT_EQ(Main.MenüAnsichtVektorenLonger.Enabled, on);
        EXPECT_EQ(Main.MenüAnsichtVektorenShorter.Enabled, on);
        for (const Control* button : {&Main.ToolbarGraphics_VectorMode, &Main.ToolbarGraphics_VectorLonger,
                                      &Main.ToolbarGraphics_VectorShorter})
            EXPECT_EQ(button->Value, on ? 1 : 0);
    };
    expect(false);
    ExpectOneStep(window, Main.MenüAnsichtVektorenVektorModeActive);
    expect(true);
    ExpectOneStep(window, Main.ToolbarGraphics_VectorMode);
    expect(false);
    UserClick(Main.ToolbarGraphics_VectorMode);
    window.State.Vec_Maßstab = 100;
    for (Control* command : {&Main.MenüAnsichtVektorenLonger, &Main.ToolbarGraphics_VectorLonger})
        ExpectOneStep(window, *command);
    EXPECT_FLOAT_EQ(window.State.Vec_Maßstab, 225);
    for (Control* command : {&Main.MenüAnsichtVektorenShorter, &Main.ToolbarGraphics_VectorShorter})
        ExpectOneStep(window, *command);
    EXPECT_FLOAT_EQ(window.State.Vec_Maßstab, 100);
}

TEST_F(Menus, TheFlagModeCarriesItsKeyAndThePointer) {
    ScreenWindow& window = OpenFive();
    for (Control* command : {&Main.MenüGlobalFlagsMode, &Main.ToolbarGraphics_FlagMode}) {
        ExpectOneStep(window, *command);
        EXPECT_TRUE(IsTrue(window.State.FlagMode));
        EXPECT_TRUE(Main.MenüGlobalFlagsMode.Checked);
        EXPECT_EQ(Main.ToolbarGraphics_FlagMode.Value, 1);
        EXPECT_EQ(window.Pointer, ScreenPointer::SetsFlag);
        ExpectOneStep(window, *command);
        EXPECT_FALSE(Main.MenüGlobalFlagsMode.Checked);
        EXPECT_EQ(Main.ToolbarGraphics_FlagMode.Value, 0);
        EXPECT_EQ(window.Pointer, ScreenPointer::Arrow);
    }
}

TEST_F(Menus, TheLineModeIsWithinReachWhileItIsOff) {
    ScreenWindow& window = OpenFive();
    EXPECT_TRUE(Main.MenüGraphicsLinesLineModeActive.Enabled);
    EXPECT_FALSE(Main.MenüGraphicsLinesLineModeActive.Checked);
    EXPECT_FALSE(Main.MenüGraphicsLinesSetLines.Enabled);
    EXPECT_FALSE(Main.MenüGraphicsLinesDeleteLines.Enabled);
    for (Control* command : {&Main.MenüGraphicsLinesLineModeActive, &Main.ToolbarLines_LineMode}) {
        ExpectOneStep(window, *command);
        EXPECT_TRUE(IsTrue(window.State.LineMode));
        EXPECT_TRUE(Main.MenüGraphicsLinesLineModeActive.Checked);
        EXPECT_TRUE(Main.MenüGraphicsLinesSetLines.Enabled);
        EXPECT_TRUE(Main.MenüGraphicsLinesDeleteLines.Enabled);
        for (const Control* button :
             {&Main.ToolbarLines_LineMode, &Main.ToolbarLines_SetLines, &Main.ToolbarLines_DeleteLines})
            EXPECT_EQ(button->Value, 1);
        ExpectOneStep(window, *command);
        EXPECT_FALSE(Main.MenüGraphicsLinesLineModeActive.Checked);
        EXPECT_TRUE(Main.MenüGraphicsLinesLineModeActive.Enabled);
        EXPECT_FALSE(Main.MenüGraphicsLinesSetLines.Enabled);
        EXPECT_EQ(Main.ToolbarLines_LineMode.Value, 0);
    }
}

TEST_F(Menus, SettingAndDeletingLinesExcludeEachOtherAndHaveTheirPointers) {
    ScreenWindow& window = OpenFive();
    UserClick(Main.MenüGraphicsLinesLineModeActive);
    const auto expect = [&](bool sets, bool deletes, ScreenPointer pointer) {
        EXPECT_EQ(window.SetLine, sets);
        EXPECT_EQ(window.DeleteLine, deletes);
        EXPECT_EQ(Main.MenüGraphicsLinesSetLines.Checked, sets);
        EXPECT_EQ(Main.MenüGraphicsLinesDeleteLines.Checked, deletes);
        EXPECT_EQ(window.Pointer, pointer);
    };
    expect(false, false, ScreenPointer::Arrow);
    UserClick(Main.MenüGraphicsLinesSetLines);
    expect(true, false, ScreenPointer::SetsLine);
    UserClick(Main.ToolbarLines_DeleteLines);
    expect(false, true, ScreenPointer::DeletesLine);
    UserClick(Main.ToolbarLines_SetLines);
    expect(true, false, ScreenPointer::SetsLine);
    UserClick(Main.MenüGraphicsLinesSetLines);
    expect(false, false, ScreenPointer::Arrow);
    UserClick(Main.MenüGraphicsLinesDeleteLines);
    expect(false, true, ScreenPointer::DeletesLine);
    // They go with the line mode.
    UserClick(Main.MenüGraphicsLinesLineModeActive);
    expect(false, false, ScreenPointer::Arrow);
    UserClick(Main.ToolbarLines_SetLines);
    expect(false, false, ScreenPointer::Arrow);
}

TEST_F(Menus, ANewChainBeginsWhenLinesAreSetAgain) {
    ScreenWindow& window = OpenFive();
    UserClick(Main.MenüGraphicsLinesLineModeActive);
    UserClick(Main.MenüGraphicsLinesSetLines);
    ClickAt(window, 100, 100);
    EXPECT_EQ(window.State.LineStartRow, 1);
    UserClick(Main.MenüGraphicsLinesSetLines);
    EXPECT_EQ(window.State.LineStartRow, 0);
}

TEST_F(Menus, TheSearchForALineThatFailsIsToldAgainWhenLinesAreDeletedAgain) {
    ScreenWindow& window = OpenFive();
    UserClick(Main.MenüGraphicsLinesLineModeActive);
    for (int times = 1; times <= 2; ++times) {
        UserClick(Main.MenüGraphicsLinesDeleteLines);
        Move(window, 100, 100);
        Move(window, 101, 100);
        EXPECT_EQ(Messages(),
                  Texts(static_cast<std::size_t>(times), "Poblem while searching actual Line\r\n"));
        UserClick(Main.MenüGraphicsLinesDeleteLines);
    }
}

TEST_F(Menus, TheColourBarIsSwitchedForAllPicturesAndTheNextStart) {
    ScreenWindow& first = OpenFive();
    ScreenWindow& second = OpenScreenWindow();
    EXPECT_TRUE(Main.MenüAnsichtToleranzenColorbar.Checked);  // as the settings have it
    const std::uint64_t painted = first.PaintCount, paintedToo = second.PaintCount;
    UserClick(Main.MenüAnsichtToleranzenColorbar);
    EXPECT_FALSE(Main.MenüAnsichtToleranzenColorbar.Checked);
    EXPECT_FALSE(IsTrue(Settings.ShowColorBar));
    EXPECT_EQ(IniWertLesen("ShowColorBar"), "False");
    EXPECT_EQ(first.PaintCount, painted + 1);
    EXPECT_EQ(second.PaintCount, paintedToo + 1);
    UserClick(Main.MenüAnsichtToleranzenColorbar);
    EXPECT_TRUE(Main.MenüAnsichtToleranzenColorbar.Checked);
    EXPECT_TRUE(IsTrue(Settings.ShowColorBar));
}

TEST_F(Menus, TheSettingsOfTheColourScaleOpenTheirDialog) {
    OpenFive();
    for (Control* command : {&Main.MenüAnsichtToleranzenEinstellungen, &Main.ToolbarGraphics_ColorBar}) {
        UserClick(*command);
        EXPECT_TRUE(IsLoaded("FormColorBar"));
        UnloadWindow("FormColorBar");
    }
}

TEST_F(Menus, LastAndNextViewWalkTheRing) {
    ScreenWindow& window = OpenFive();
    UserClick(Main.MenüAnsichtSideView);
    UserClick(Main.MenüAnsichtTopview);
    for (const auto& [back, forth] : {std::pair{&Main.MenüViewLastView, &Main.MenüViewNextView},
                                      {&Main.ToolbarSaveView_LastView, &Main.ToolbarSaveView_NextView}}) {
        UserClick(*back);
        EXPECT_EQ(ViewAngle(window, 1), 4.712388980384685);
        UserClick(*forth);
        EXPECT_EQ(ViewAngle(window, 1), -3.14159265358979);
    }
    EXPECT_FALSE(Main.MenüViewNextView.Enabled);
    ProgrammLogik();  // enables all of the bar, but not what has no step to take
    EXPECT_FALSE(Main.MenüViewNextView.Enabled);
    EXPECT_FALSE(Main.ToolbarSaveView_NextView.Enabled);
    EXPECT_TRUE(Main.ToolbarSaveView_LastView.Enabled);
}

TEST_F(Menus, CommandsActOnTheWindowOnTopAndShowItsModes) {
    ScreenWindow& first = OpenFive();
    UserClick(Main.MenueGraphics);
    ScreenWindow& second = *Screens().Active;
    UserClick(Main.MenüAnsichtVektorenVektorModeActive);
    UserClick(Main.MenüGraphicsLinesLineModeActive);
    EXPECT_TRUE(IsTrue(second.State.VectorMode));
    EXPECT_FALSE(IsTrue(first.State.VectorMode));
    ActivateScreenWindow(first);
    EXPECT_FALSE(Main.MenüAnsichtVektorenVektorModeActive.Checked);
    EXPECT_FALSE(Main.MenüGraphicsLinesLineModeActive.Checked);
    CloseScreenWindow(first);
    EXPECT_TRUE(Main.MenüAnsichtVektorenVektorModeActive.Checked);
    EXPECT_TRUE(Main.MenüGraphicsLinesLineModeActive.Checked);
}

TEST_F(Menus, WithTheLastWindowAllCommandsOfGraphicsGo) {
    ScreenWindow& window = OpenFive();
    UserClick(Main.MenüAnsichtVektorenVektorModeActive);
    UserClick(Main.MenüGlobalFlagsMode);
    UserClick(Main.MenüGlobalRotateAbout);
    UserClick(Main.MenüGraphicsLinesLineModeActive);
    CloseScreenWindow(window);
    EXPECT_FALSE(Main.MenueGraphics.Checked);
    EXPECT_TRUE(Main.MenueGraphics.Enabled);
    for (const Control* command :
         {&Main.MenueGraphicsWindow, &Main.MenüAnsichtAnpassen, &Main.MenüGlobalRotateAbout,
          &Main.MenüGlobalFlagsMode, &Main.MenüGraphicsLines, &Main.MenüViewS, &Main.ToolbarLines,
          &Main.MenuHelpBindings, &Main.ToolbarGraphics_AnalyseMode})
        EXPECT_FALSE(command->Enabled) << command->Text;
    for (const Control* entry : {&Main.MenüAnsichtVektorenVektorModeActive, &Main.MenüGlobalFlagsMode,
                                 &Main.MenüGlobalRotateAbout, &Main.MenüGraphicsLinesLineModeActive})
        EXPECT_FALSE(entry->Checked) << entry->Text;
    for (const Control* button : {&Main.ToolbarGraphics_VectorMode, &Main.ToolbarGraphics_FlagMode,
                                  &Main.ToolbarGraphics_RotateAbout, &Main.ToolbarLines_LineMode})
        EXPECT_EQ(button->Value, 0) << button->ToolTip;
    EXPECT_FALSE(Scene.RotateAboutArmed);
}

TEST_F(Menus, WithoutAWindowNoHandlerDoesHarm) {
    OpenFive();
    CloseAllGraphicsWindows();
    for (const ControlEntry& entry : FormMain_Entry.Controls) {
        const std::string name = entry.Name;
        const bool graphics = name.starts_with("MenüAnsicht") || name.starts_with("MenüGra") ||
                              name.starts_with("MenüGlobal") || name.starts_with("MenüView") ||
                              name.starts_with("ToolbarLines.") || name.starts_with("ToolbarSaveView.") ||
                              name == "MenuHelpBindings";
        if (graphics && name != "MenüViewInputStatistic") {
            EXPECT_TRUE(UserClick(*entry.Place)) << name;
        }
    }
    EXPECT_TRUE(Screens().Open.empty());
}

// --- Keys and mouse told ----------------------------------------------------------------------------------

TEST_F(Menus, TheFirstWindowEverTellsWhatMouseAndKeysDo) {
    ScreenWindow& first = OpenFive();
    EXPECT_TRUE(first.BindingsShown);
    EXPECT_GE(ScreenBindings().size(), 10U);
    EXPECT_EQ(IniWertLesen("BindingsShown"), "True");
    UserClick(Main.MenueGraphics);
    EXPECT_FALSE(Screens().Active->BindingsShown);
    // The next run of the program knows it from the settings.
    CloseAllGraphicsWindows();
    Screens() = ScreensRecord{};
    UserClick(Main.MenueGraphics);
    EXPECT_FALSE(Screens().Active->BindingsShown);
}

TEST_F(Menus, AnyPressTakesTheBindingsAwayAndActsAllTheSame) {
    ScreenWindow& window = OpenFive();
    ClickAt(window, 300, 100);
    EXPECT_FALSE(window.BindingsShown);
    EXPECT_EQ(Scene.ActualPointName, "P2");
    UserClick(Main.MenuHelpBindings);
    EXPECT_TRUE(window.BindingsShown);
    Press(window, "Left");
    EXPECT_FALSE(window.BindingsShown);
    EXPECT_EQ(window.State.BildOffsetX, -220);
    UserClick(Main.MenuHelpBindings);
    UserClick(Main.MenuHelpBindings);
    EXPECT_FALSE(window.BindingsShown);
}

// --- What the other rooms tell ----------------------------------------------------------------------------

TEST_F(Menus, OtherUnitsPaintThePicturesAnew) {
    ScreenWindow& window = OpenFive();
    ShowWindow("FormUnits");
    const std::uint64_t painted = window.PaintCount;
    UserClick(*FindControl(*FindWindow("FormUnits"), "BtnOK"));
    EXPECT_EQ(window.PaintCount, painted + 1);
}

TEST_F(Menus, ACalculationShowsItsResultInAllPictures) {
    ScreenWindow& first = OpenFive();
    ScreenWindow& second = OpenScreenWindow();
    const std::uint64_t painted = first.PaintCount, paintedToo = second.PaintCount;
    myButtonCalculate();
    EXPECT_EQ(first.PaintCount, painted + 1);
    EXPECT_EQ(second.PaintCount, paintedToo + 1);
    // The targets stand 40 mm right of the start points, whose plane leans by 1 mm in 200.
    EXPECT_NEAR(Scene.Points[kSceneX][1], 140, 0.01);
}

TEST_F(Menus, AnotherDirectionShowsThePointsOfTheOtherSet) {
    ScreenWindow& window = OpenFive();
    ShowWindow("FormTrafoBerechnung");
    UserClick(TrafoWindow.BtnSwitchMcsOcs);
    UnloadWindow("FormTrafoBerechnung");
    EXPECT_EQ(Scene.Points[kSceneX][1], 140);
    EXPECT_EQ(Scene.Points[kSceneX][4], 100);
    EXPECT_EQ(Search_Point_Index(window, 140, 100), 1);
}
