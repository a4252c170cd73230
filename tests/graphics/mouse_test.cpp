// What the mouse does on the picture: rotation, pan, roll, frame and wheel zoom, status bar, clicks.
#include <cmath>

#include "graphics/graphics_refresh.h"
#include "graphics/input_window.h"

using namespace corvinade;

namespace {

using Rows3 = std::array<std::array<double, 3>, 3>;

// The rotation written out by the axes' angles.
Rows3 RotationOf(double a, double b, double c) {
    const double sa = std::sin(a), ca = std::cos(a), sb = std::sin(b), cb = std::cos(b), sc = std::sin(c),
                 cc = std::cos(c);
    return {{{cb * cc, sb * sa * cc + ca * sc, sc * sa - sb * ca * cc},
             {-sc * cb, cc * ca - sb * sa * sc, sb * ca * sc + cc * sa},
             {sb, -cb * sa, ca * cb}}};
}

Rows3 Product(const Rows3& left, const Rows3& right) {
    Rows3 product{};
    for (std::size_t row = 0; row < 3; ++row)
        for (std::size_t column = 0; column < 3; ++column)
            for (std::size_t k = 0; k < 3; ++k) product[row][column] += left[row][k] * right[k][column];
    return product;
}

void ExpectRotation(const ScreenWindow& window, const Rows3& expected) {
    const Mat3 M = ViewRotation(window);
    for (int row = 1; row <= 3; ++row)
        for (int column = 1; column <= 3; ++column)
            EXPECT_NEAR(M(row, column),
                        expected[static_cast<std::size_t>(row - 1)][static_cast<std::size_t>(column - 1)],
                        1e-9)
                << row << " " << column;
}

}  // namespace

class Mouse : public InputWindow {
protected:
    static constexpr int kBoth = kLeftButton | kRightButton;
};

// --- Rotation ---------------------------------------------------------------------------------------------

TEST_F(Mouse, LeftWithShiftTurnsAboutTheAxesOfTheScreen) {
    ScreenWindow& window = OpenFive();
    SetViewAngles(window, 0.3, -0.4, 1.1);
    ScreenPixel_MouseDown(window, WithShift(At(100, 100, kLeftButton)));
    ScreenPixel_MouseMove(window, WithShift(At(150, 120, kLeftButton)));
    // dx = 100 - 150, dy = 100 - 120.
    Rows3 expected = Product(RotationOf(20 * 0.008, 50 * 0.008, 0), RotationOf(0.3, -0.4, 1.1));
    ExpectRotation(window, expected);
    ScreenPixel_MouseMove(window, WithShift(At(140, 160, kLeftButton)));
    expected = Product(RotationOf(40 * 0.008, -10 * 0.008, 0), expected);
    ExpectRotation(window, expected);
    EXPECT_EQ(window.State.BildFaktor, 1);
    EXPECT_EQ(window.State.BildOffsetX, -200);
    EXPECT_EQ(window.State.RotAngles[1], 0);  // row 2 stays zero
}

TEST_F(Mouse, MovesBelowThreePixelsInADirectionDoNotTurnInThatDirection) {
    ScreenWindow& window = OpenFive();
    ScreenPixel_MouseDown(window, WithShift(At(100, 100, kLeftButton)));
    ScreenPixel_MouseMove(window, WithShift(At(102.5F, 97.5F, kLeftButton)));
    EXPECT_EQ(Angles(window), (std::array<double, 3>{0, 0, 0}));
    ScreenPixel_MouseMove(window, WithShift(At(105.5F, 95, kLeftButton)));  // 3 and 2.5 from there
    ExpectRotation(window, RotationOf(0, 3 * 0.008, 0));
    ScreenPixel_MouseMove(window, WithShift(At(103, 92, kLeftButton)));  // 2.5 and 3
    ExpectRotation(window, Product(RotationOf(-3 * 0.008, 0, 0), RotationOf(0, 3 * 0.008, 0)));
}

TEST_F(Mouse, TheShiftKeyThatIsHeldOnThePictureTurnsToo) {
    ScreenWindow& window = OpenFive();
    ScreenPixel_KeyDown(window, "Shift", true, false);
    EXPECT_TRUE(Screens().RotateKey);
    Drag(window, At(100, 100, kLeftButton), At(150, 100, kLeftButton));
    ExpectRotation(window, RotationOf(0, 50 * 0.008, 0));
    ScreenPixel_KeyUp(window, "Shift");
    EXPECT_FALSE(Screens().RotateKey);
}

TEST_F(Mouse, LeftAndRightWithShiftRoll) {
    ScreenWindow& window = OpenFive();
    SetViewAngles(window, 0.3, -0.4, 1.1);
    ScreenPixel_MouseDown(window, WithShift(At(100, 100, kLeftButton)));
    ScreenPixel_MouseDown(window, WithShift(At(100, 100, kRightButton)));
    EXPECT_EQ(window.State.BildFaktor, 1);  // the right button does not zoom while the view is turned
    ScreenPixel_MouseMove(window, WithShift(At(110, 95, kBoth)));
    EXPECT_DOUBLE_EQ(ViewAngle(window, 3), 1.1 + (-10 + 5) * 0.02);
    EXPECT_EQ(ViewAngle(window, 1), 0.3);
    EXPECT_EQ(ViewAngle(window, 2), -0.4);
    ScreenPixel_MouseMove(window, WithShift(At(109, 95, kBoth)));  // no least step here
    EXPECT_DOUBLE_EQ(ViewAngle(window, 3), 1.1 - 0.1 + 0.02);
}

TEST_F(Mouse, LeftWithCtrlMovesThePicture) {
    ScreenWindow& window = OpenFive();
    ScreenPixel_MouseDown(window, WithCtrl(At(100, 100, kLeftButton)));
    ScreenPixel_MouseMove(window, WithCtrl(At(130, 80, kLeftButton)));
    EXPECT_EQ(window.State.BildOffsetX, -200 + 30);
    EXPECT_EQ(window.State.BildOffsetY, 400 + 20);
    EXPECT_EQ(PixelOfRow(1), std::make_pair(130.0F, 80.0F));  // the point follows the mouse
    ScreenPixel_MouseMove(window, WithCtrl(At(131, 81, kLeftButton)));
    EXPECT_EQ(PixelOfRow(1), std::make_pair(131.0F, 81.0F));
    ScreenPixel_MouseUp(window, At(131, 81, kLeftButton));  // Ctrl is let go first: still no frame
    EXPECT_EQ(window.State.BildFaktor, 1);
    EXPECT_FALSE(window.Mouse.FrameVisible);
}

TEST_F(Mouse, NamesAreLeftOutDuringAMoveAndComeBackBehindIt) {
    ScreenWindow& window = OpenFive();
    Settings.ShowPointNames = kTrue;
    Stelle_Grafik_dar(window);
    const std::size_t all = window.Labels.size();
    const auto names = [&window] {
        std::size_t count = 0;
        for (const ScreenLabel& label : window.Labels)
            if (label.Text == "P1" || label.Text == "S") ++count;
        return count;
    };
    ASSERT_GE(names(), 2U);
    for (const bool pan : {false, true}) {
        const auto held = [pan](const MouseEvent& event) { return pan ? WithCtrl(event) : WithShift(event); };
        ScreenPixel_MouseDown(window, held(At(100, 100, kLeftButton)));
        ScreenPixel_MouseMove(window, held(At(104, 100, kLeftButton)));
        EXPECT_EQ(names(), 0U);
        EXPECT_TRUE(IsTrue(Settings.ShowPointNames));
        ScreenPixel_MouseUp(window, held(At(104, 100, kLeftButton)));
        EXPECT_EQ(window.Labels.size(), all);
    }
}

// --- Zoom -------------------------------------------------------------------------------------------------

TEST_F(Mouse, TheRightButtonZoomsOutAboutTheMouse) {
    ScreenWindow& window = OpenFive();
    ScreenPixel_MouseDown(window, At(300, 100, kRightButton));
    EXPECT_FLOAT_EQ(window.State.BildFaktor, 0.7F);
    EXPECT_NEAR(PixelOfRow(2).first, 300, 1e-3);
    EXPECT_NEAR(PixelOfRow(2).second, 100, 1e-3);
    EXPECT_NEAR(PixelOfRow(1).first, 300 - 200 * 0.7, 1e-3);
}

TEST_F(Mouse, TheWheelZoomsByOneStepAboutTheMouse) {
    ScreenWindow& window = OpenFive();
    const int stored = window.UndoCount;
    ScreenPixel_Wheel(window, At(100, 300), 120);
    EXPECT_FLOAT_EQ(window.State.BildFaktor, 1 / 0.7F);
    EXPECT_FALSE(Screens().Wheel);
    EXPECT_NEAR(PixelOfRow(3).first, 100, 1e-3);
    EXPECT_NEAR(PixelOfRow(3).second, 300, 1e-3);
    EXPECT_EQ(window.UndoCount, stored + 1);
    ScreenPixel_Wheel(window, At(100, 300), -240);  // one message, one step
    EXPECT_NEAR(window.State.BildFaktor, 1, 1e-6);
    EXPECT_NEAR(window.State.BildOffsetX, -200, 1e-3);
    EXPECT_NEAR(window.State.BildOffsetY, 400, 1e-3);
    ScreenPixel_Wheel(window, At(100, 300), 0);
    EXPECT_EQ(window.UndoCount, stored + 2);
}

TEST_F(Mouse, AFrameFillsThePictureWithItsMiddleInTheMiddle) {
    ScreenWindow& window = OpenFive();
    Drag(window, At(100, 100, kLeftButton), At(300, 200, kLeftButton));
    // F1 = 800 / 200, F2 = 600 / 100; the point (200, 150) comes to (400, 300).
    EXPECT_FLOAT_EQ(window.State.BildFaktor, 4);
    EXPECT_NEAR(window.State.BildOffsetX, 400 - (200 + 200) * 4, 1e-3);
    EXPECT_NEAR(window.State.BildOffsetY, 600 - 300 - (200 - 150) * 4, 1e-3);
    EXPECT_NEAR(PixelOfRow(1).first, 0, 1e-3);  // the left edge of the frame
    EXPECT_TRUE(window.Mouse.ZoomedByFrame);
}

TEST_F(Mouse, AFrameInAnyOtherDirectionZoomsAlike) {
    const MouseEvent corners[] = {At(100, 100, kLeftButton), At(300, 200, kLeftButton),
                                  At(100, 200, kLeftButton), At(300, 100, kLeftButton)};
    ScreenWindow& window = OpenFive();
    for (const auto& [from, to] : {std::pair{1, 0}, {2, 3}, {3, 2}}) {
        LookStraight(window);
        Drag(window, corners[from], corners[to]);
        EXPECT_FLOAT_EQ(window.State.BildFaktor, 4) << from;
        EXPECT_NEAR(window.State.BildOffsetX, -1200, 1e-3) << from;
        EXPECT_NEAR(window.State.BildOffsetY, 100, 1e-3) << from;
    }
}

TEST_F(Mouse, AFrameOfEightByAHundredPixelsDoesNotZoomAndOneOfNineByNineDoes) {
    ScreenWindow& window = OpenFive();
    Drag(window, At(100, 100, kLeftButton), At(108, 200, kLeftButton));
    Drag(window, At(100, 100, kLeftButton), At(200, 108, kLeftButton));
    EXPECT_EQ(window.State.BildFaktor, 1);
    EXPECT_FALSE(window.Mouse.ZoomedByFrame);
    Drag(window, At(100, 100, kLeftButton), At(109, 109, kLeftButton));
    EXPECT_FLOAT_EQ(window.State.BildFaktor, 600.0F / 9);
}

TEST_F(Mouse, AFrameZoomsToAMillionPixelsAMillimetreAtMost) {
    ScreenWindow& window = OpenFive();
    window.State.BildFaktor = 5e5F;
    Drag(window, At(100, 100, kLeftButton), At(109, 109, kLeftButton));
    EXPECT_EQ(window.State.BildFaktor, 1e6F);
}

TEST_F(Mouse, NoFrameZoomsWhereTheViewIsTurnedOrMovedOrAnotherButtonIsUsed) {
    ScreenWindow& window = OpenFive();
    const MouseEvent from = At(100, 100, kLeftButton), to = At(300, 200, kLeftButton);
    const auto zooms = [&](const MouseEvent& down, const MouseEvent& up) {
        LookStraight(window);
        ScreenPixel_MouseDown(window, down);
        ScreenPixel_MouseUp(window, up);
        return window.Mouse.ZoomedByFrame;
    };
    EXPECT_TRUE(zooms(from, to));
    EXPECT_FALSE(zooms(from, WithShift(to)));
    EXPECT_FALSE(zooms(from, WithCtrl(to)));
    EXPECT_FALSE(zooms(At(100, 100, kMiddleButton), At(300, 200, kMiddleButton)));
    EXPECT_FALSE(zooms(At(100, 100, kRightButton), At(300, 200, kRightButton)));
    EXPECT_FALSE(zooms(from, At(100, 200, kLeftButton)));  // x as it was
    for (const char* plane : {"t", "T", "b", "B"}) {
        ScreenPixel_KeyDown(window, plane, false, false);
        EXPECT_FALSE(zooms(from, to)) << plane;
        ScreenPixel_KeyUp(window, plane);
        EXPECT_TRUE(zooms(from, to)) << plane;
    }
}

TEST_F(Mouse, TheFrameIsShownFromOnePixelOn) {
    ScreenWindow& window = OpenFive();
    const ScreenMouse& mouse = window.Mouse;
    ScreenPixel_MouseDown(window, At(100, 120, kLeftButton));
    EXPECT_TRUE(mouse.FrameArmed);
    EXPECT_FALSE(mouse.FrameVisible);
    ScreenPixel_MouseMove(window, At(101, 121, kLeftButton));
    EXPECT_TRUE(mouse.FrameVisible);
    ScreenPixel_MouseMove(window, At(160, 150, kLeftButton));
    EXPECT_EQ((std::array{mouse.FrameLeft, mouse.FrameTop, mouse.FrameWidth, mouse.FrameHeight}),
              (std::array{100, 120, 60, 30}));
    ScreenPixel_MouseMove(window, At(160, 120, kLeftButton));
    EXPECT_FALSE(mouse.FrameVisible);
    ScreenPixel_MouseMove(window, At(90, 150, kLeftButton));
    EXPECT_FALSE(mouse.FrameVisible);
    ScreenPixel_MouseMove(window, At(104, 123, kLeftButton));
    EXPECT_TRUE(mouse.FrameVisible);
    ScreenPixel_MouseUp(window, At(104, 123, kLeftButton));
    EXPECT_FALSE(mouse.FrameVisible);
    EXPECT_FALSE(mouse.FrameArmed);
}

TEST_F(Mouse, TheFrameIsWhiteOnBlackAndBlackOnWhite) {
    ScreenWindow& window = OpenFive();
    for (const auto& [background, frame] : {std::pair{0x000000, 0xFFFFFF}, {0xFFFFFF, 0x000000}}) {
        window.BackColor = background;
        ScreenPixel_MouseDown(window, At(100, 100, kLeftButton));
        EXPECT_EQ(window.Mouse.FrameColor, frame);
    }
    window.Mouse.FrameArmed = false;
    ScreenPixel_MouseDown(window, WithCtrl(At(100, 100, kLeftButton)));
    EXPECT_FALSE(window.Mouse.FrameArmed);
}

TEST_F(Mouse, TheMiddleButtonPaintsThePictureAnew) {
    ScreenWindow& window = OpenFive();
    const std::uint64_t before = window.PaintCount;
    ScreenPixel_MouseDown(window, At(100, 100, kMiddleButton));
    EXPECT_EQ(window.PaintCount, before + 1);
}

TEST_F(Mouse, EveryReleaseStoresTheViewButInTheFlagMode) {
    ScreenWindow& window = OpenFive();
    const int stored = window.UndoCount;
    ScreenPixel_MouseUp(window, At(100, 100, kLeftButton));
    ScreenPixel_MouseUp(window, At(100, 100, kRightButton));
    EXPECT_EQ(window.UndoCount, stored + 2);
    window.State.FlagMode = kTrue;
    ScreenPixel_MouseUp(window, At(100, 100, kLeftButton));
    EXPECT_EQ(window.UndoCount, stored + 2);
}

// --- Status bar -------------------------------------------------------------------------------------------

TEST_F(Mouse, TheStatusBarTellsThePointUnderTheMouse) {
    ScreenWindow& window = OpenFive();
    Move(window, 299, 101);
    EXPECT_EQ(window.Mouse.ActualRow, 2);
    EXPECT_EQ(Panels(window), (Texts{"Pnt.ID: P2", "x: 300.000", "y: 100.000", "z: 6.000"}));
    Units.LengthFactor = 0.001;
    Units.FmtLength = "0.0000";
    Move(window, 690, 510);
    EXPECT_EQ(Panels(window), (Texts{"Pnt.ID: T", "x: 0.7000", "y: 0.5000", "z: 0.0090"}));
}

// P2 stands at (300, 100, 6) and its target at (340, 100, 0).
TEST_F(Mouse, BesideThePointStandsItsDeviation) {
    ScreenWindow& window = OpenFive();
    Move(window, 299, 101);
    EXPECT_EQ(window.Deviation, "Deviation: 40.447  (-40.000, 0.000, 6.000)");
    Move(window, 341, 100);  // its target is the same pair
    EXPECT_EQ(window.Deviation, "Deviation: 40.447  (-40.000, 0.000, 6.000)");
    for (const auto& [x, y] : {std::pair{500.0F, 500.0F}, {700.0F, 500.0F}}) {
        Move(window, x, y);
        EXPECT_EQ(window.Deviation, "") << "a point without a partner";
    }
    Units.LengthFactor = 0.001;
    Units.FmtLength = "0.0000";
    Move(window, 299, 101);
    EXPECT_EQ(window.Deviation, "Deviation: 0.0404  (-0.0400, 0.0000, 0.0060)");
    Run.JobDataValid = kFalse;
    Move(window, 300, 100);
    EXPECT_EQ(window.Deviation, "");
}

TEST_F(Mouse, WithoutAPointTheStatusBarCarriesTheLegend) {
    ScreenWindow& window = OpenFive();
    Move(window, 300, 100);
    Run.JobDataValid = kFalse;
    Move(window, 300, 100);
    EXPECT_EQ(Panels(window),
              (Texts{"no Pt Id.", "red = x   yellow = y    green = z   ", "   -------System = MCS", ""}));
}

TEST_F(Mouse, TheStatusBarIsBroughtUpToDateInEveryKindOfMove) {
    ScreenWindow& window = OpenFive();
    ScreenPixel_MouseDown(window, WithCtrl(At(100, 100, kLeftButton)));
    ScreenPixel_MouseMove(window, WithCtrl(At(150, 120, kLeftButton)));
    EXPECT_EQ(Panels(window)[0], "Pnt.ID: P1");
    ScreenPixel_MouseUp(window, WithCtrl(At(150, 120, kLeftButton)));
    ScreenPixel_MouseMove(window, At(350, 120));  // 300 + 50, 100 + 20
    EXPECT_EQ(Panels(window)[0], "Pnt.ID: P2");
    EXPECT_EQ(window.Mouse.X, 350);
    EXPECT_EQ(window.Mouse.Y, 120);
}

// --- Clicks -----------------------------------------------------------------------------------------------

TEST_F(Mouse, TheClickThatEndsAFrameZoomIsNoClick) {
    ScreenWindow& window = OpenFive();
    Drag(window, At(90, 90, kLeftButton), At(300, 200, kLeftButton));
    ScreenPixel_Click(window, At(300, 200, kLeftButton));
    EXPECT_EQ(Scene.ActualPointName, "");
    ScreenPixel_Click(window, At(300, 200, kLeftButton));
    EXPECT_NE(Scene.ActualPointName, "");
}

TEST_F(Mouse, TheNextPressForgetsAFrameZoomThatNoClickFollowed) {
    ScreenWindow& window = OpenFive();
    Drag(window, At(90, 90, kLeftButton), At(300, 200, kLeftButton));
    LookStraight(window);
    ClickAt(window, 100, 300);
    EXPECT_EQ(Scene.ActualPointName, "P3");
}

TEST_F(Mouse, InTheFlagModeOnlyAClickWithShiftOrCtrlPicks) {
    ScreenWindow& window = OpenFive();
    window.State.FlagMode = kTrue;
    ClickAt(window, 100, 100);
    EXPECT_EQ(Scene.ActualPointName, "");
    ScreenPixel_Click(window, WithShift(At(100, 100, kLeftButton)));
    EXPECT_EQ(Scene.ActualPointName, "P1");
    ScreenPixel_Click(window, WithCtrl(At(300, 100, kLeftButton)));
    EXPECT_EQ(Scene.ActualPointName, "P2");
}

TEST_F(Mouse, OtherButtonsDoNotClick) {
    ScreenWindow& window = OpenFive();
    ScreenPixel_Click(window, At(100, 100, kRightButton));
    ScreenPixel_Click(window, At(100, 100, kMiddleButton));
    EXPECT_EQ(Scene.ActualPointName, "");
}

TEST_F(Mouse, ADoubleClickChoosesTheColourOfTheBackground) {
    ScreenWindow& window = OpenFive();
    const int stored = window.UndoCount;
    const std::uint64_t painted = window.PaintCount;
    Headless.Answers["colour"].push_back(std::to_string(0x10FF20));
    ScreenPixel_DblClick(window, At(100, 100, kLeftButton));
    EXPECT_EQ(window.BackColor, 0x10FF20);
    EXPECT_EQ(window.UndoCount, stored + 1);
    EXPECT_EQ(window.PaintCount, painted + 1);
    // The next window, and the next start, begin with it.
    EXPECT_EQ(IniWertLesen("ScreenBackColor"), std::to_string(0x10FF20));
    EXPECT_EQ(OpenScreenWindow().BackColor, 0x10FF20);
}

TEST_F(Mouse, ACancelledColourAndADoubleClickInTheLineModeChangeNothing) {
    ScreenWindow& window = OpenFive();
    const int stored = window.UndoCount;
    Headless.Answers["colour"].push_back(std::nullopt);
    ScreenPixel_DblClick(window, At(100, 100, kLeftButton));
    ExpectUnanswered();
    window.State.LineMode = kTrue;
    ScreenPixel_DblClick(window, At(100, 100, kLeftButton));
    window.State.LineMode = kFalse;
    ScreenPixel_DblClick(window, At(100, 100, kRightButton));
    EXPECT_EQ(window.BackColor, 0);
    EXPECT_EQ(window.UndoCount, stored);
}

TEST_F(Mouse, AWindowThatIsClosedWhileTheColourIsChosenIsLeftAlone) {
    ScreenWindow& window = OpenFive();
    Headless.OnQuestion = [](const DialogShown&) {
        CloseAllGraphicsWindows();
        return std::optional<std::string>("255");
    };
    ScreenPixel_DblClick(window, At(100, 100, kLeftButton));
    EXPECT_TRUE(Screens().Open.empty());
    EXPECT_EQ(Settings.ScreenBackColor, 0);
}

TEST_F(Mouse, NothingHappensToAWindowOfOnePixelWithoutPoints) {
    Screens().NewWidth = Screens().NewHeight = 1;
    Run.JobDataValid = kTrue;
    ScreenWindow& window = OpenStraight();
    Drag(window, WithShift(At(0, 0, kLeftButton)), WithShift(At(50, 50, kLeftButton)));
    Drag(window, WithCtrl(At(0, 0, kLeftButton)), WithCtrl(At(50, 50, kLeftButton)));
    Drag(window, At(0, 0, kLeftButton), At(50, 50, kLeftButton));
    ClickAt(window, 0, 0);
    for (int i = 0; i < 300; ++i) ScreenPixel_Wheel(window, At(0, 0), 120);
    for (int i = 0; i < 600; ++i) ScreenPixel_Wheel(window, At(0, 0), -120);
    EXPECT_TRUE(std::isfinite(window.State.BildFaktor));
    EXPECT_TRUE(std::isfinite(window.State.BildOffsetX));
    EXPECT_GT(window.State.BildFaktor, 0);
}
