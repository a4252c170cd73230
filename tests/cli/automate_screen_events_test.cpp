// What a user does in a graphics window, by mouse, keys and dialogs, by names alone.
#include "cli/screen_automation.h"

using namespace corvinade;

namespace {

class ScreenEvents : public ScreenByNames {
protected:
    static constexpr double kPi = 3.14159265358979;
    static constexpr double kKeyStep = 6.28318530717958 / 40;  // rad, of a key that turns

    ScreenEvents() { StartWithScreen(); }

    static double Angle(std::size_t axis) { return Field("RotAngles")[1][axis].get<double>(); }
    static std::string Panel(const std::string& number) {
        return Get("Screen#1.StatusBar." + number)["text"];
    }
    void Drag(double x1, double y1, double x2, double y2, const json& more = json::object()) {
        Mouse("down", x1, y1, more);
        Mouse("move", x2, y2, [&] {
            json held = more;
            if (!held.contains("button")) held["button"] = "left";
            return held;
        }());
        Mouse("up", x2, y2, more);
    }
};

// --- Wheel, pan, rotation, frame --------------------------------------------------------------------------

TEST_F(ScreenEvents, AStepOfTheWheelZoomsAboutTheMouse) {
    Mouse("wheel", kLeft, kLower, {{"delta", 120}});
    EXPECT_NEAR(Number("BildFaktor"), kFaktor / 0.7, 1e-5);
    EXPECT_NEAR(PixelOf(1).X, kLeft, kNear);
    EXPECT_NEAR(PixelOf(1).Y, kLower, kNear);
    EXPECT_NEAR(PixelOf(4).X, kLeft + 100 * kFaktor / 0.7, kNear);
    Mouse("wheel", kRight, kUpper, {{"delta", -120}});
    EXPECT_NEAR(Number("BildFaktor"), kFaktor, 1e-5);
    EXPECT_EQ(Field("UndoCount"), 3);
}

TEST_F(ScreenEvents, TheRightButtonZoomsOutAboutTheMouse) {
    Mouse("down", kRight, kUpper, {{"button", "right"}});
    EXPECT_NEAR(Number("BildFaktor"), kFaktor * 0.7, 1e-5);
    EXPECT_NEAR(PixelOf(4).X, kRight, kNear);
    EXPECT_NEAR(PixelOf(4).Y, kUpper, kNear);
    Mouse("up", kRight, kUpper, {{"button", "right"}});
}

TEST_F(ScreenEvents, CtrlAndTheLeftButtonPan) {
    Key("Ctrl", "down");
    Drag(100, 100, 130, 80);
    Key("Ctrl", "up");
    EXPECT_NEAR(PixelOf(1).X, kLeft + 30, kNear);
    EXPECT_NEAR(PixelOf(1).Y, kLower - 20, kNear);
    EXPECT_NEAR(Number("BildFaktor"), kFaktor, 1e-5);
    EXPECT_EQ(Field("UndoCount"), 2) << "the button's way up stores the view";
}

TEST_F(ScreenEvents, ShiftAndTheLeftButtonTurnAboutTheScreensAxes) {
    Key("Shift", "down");
    Drag(400, 300, 410, 300);
    Key("Shift", "up");
    // Ten pixels to the right are 0.08 rad about the screen's vertical: of D = (100, 50, 0), seen from above.
    const json view = Record("ViewPoints")[4];
    EXPECT_NEAR(view[1].get<double>(), 200 + 100 * std::cos(0.08), 1e-3);
    EXPECT_NEAR(view[2].get<double>(), 250, 1e-3);
    EXPECT_NEAR(view[3].get<double>(), -100 * std::sin(0.08), 1e-3);
}

TEST_F(ScreenEvents, MovesBelowThreePixelsDoNotTurn) {
    Key("Shift", "down");
    Drag(400, 300, 402, 310);
    Key("Shift", "up");
    const json view = Record("ViewPoints")[4];
    EXPECT_NEAR(view[1].get<double>(), 300, 1e-3) << "two pixels to the right are none";
    EXPECT_NEAR(view[2].get<double>(), 200 + 50 * std::cos(0.08), 1e-3);
}

TEST_F(ScreenEvents, BothButtonsWithShiftRoll) {
    const double before = Angle(3);
    Key("Shift", "down");
    Mouse("down", 400, 300);
    Mouse("move", 390, 305, {{"button", {"left", "right"}}});
    EXPECT_NEAR(Angle(3), before + (10 - 5) * 0.02, 1e-9);
    Key("Shift", "up");
}

TEST_F(ScreenEvents, AFrameZoomsToItsContent) {
    for (const bool backwards : {false, true}) {
        Click("FormMain.ToolbarGraphics.ZoomAll");
        const double x1 = backwards ? 300 : 100, y1 = backwards ? 250 : 100;
        const double x2 = 400 - x1, y2 = 350 - y1;
        Mouse("down", x1, y1);
        Mouse("move", x2, y2, {{"button", "left"}});
        if (!backwards) {
            EXPECT_EQ(Get("Screen#1.ScreenPixel")["frame"], json({{"visible", true},
                                                                  {"left", 100},
                                                                  {"top", 100},
                                                                  {"width", 200},
                                                                  {"height", 150},
                                                                  {"color", 0xffffff}}));
        }
        Mouse("up", x2, y2);
        EXPECT_EQ(Get("Screen#1.ScreenPixel")["frame"]["visible"], false);
        // 200 by 150 pixels become 800 by 600, the frame's middle (200, 175) the picture's.
        EXPECT_NEAR(Number("BildFaktor"), 4 * kFaktor, 1e-4);
        EXPECT_NEAR(PixelOf(1).X, 400 + (kLeft - 200) * 4, 0.01);
        EXPECT_NEAR(PixelOf(1).Y, 300 + (kLower - 175) * 4, 0.01);
        Mouse("click", x2, y2);
    }
}

TEST_F(ScreenEvents, SmallFramesDoNotZoom) {
    Drag(100, 100, 108, 200);
    EXPECT_NEAR(Number("BildFaktor"), kFaktor, 1e-5);
    Drag(100, 100, 109, 109);
    EXPECT_NEAR(Number("BildFaktor"), kFaktor * 600 / 9, 1e-2);
}

// --- Points -----------------------------------------------------------------------------------------------

TEST_F(ScreenEvents, TheStatusBarTellsThePointUnderTheMouse) {
    Mouse("move", kLeft + 3, kLower + 2);
    EXPECT_EQ(Panel("1"), "Pnt.ID: A");
    EXPECT_EQ(Panel("2"), "x: 0.000");
    EXPECT_EQ(Panel("3"), "y: 0.000");
    EXPECT_EQ(Panel("4"), "z: 0.300");
    EXPECT_EQ(Get("Screen#1.ScreenPixel")["actualRow"], 1);
    EXPECT_EQ(Get("Screen#1.ScreenPixel")["deviation"].get<std::string>().substr(0, 11), "Deviation: ");
    Mouse("move", kRight, kUpper);
    EXPECT_EQ(Panel("1"), "Pnt.ID: D");
    EXPECT_EQ(Panel("2"), "x: 100.000");
}

TEST_F(ScreenEvents, AClickOnAPointMovesTheMainSheetsCursor) {
    Click("FormMain.MenuVievMainSheet");
    const auto cursor = [] {
        const json grid = Get("FormMainSheet.MSFlexGrid1");
        return grid["cells"][grid["current"]["row"].get<std::size_t>()];
    };
    for (const char* name : {"D", "A", "C"}) {
        const bool left = *name != 'D', lower = *name == 'A';
        Mouse("click", left ? kLeft : kRight, lower ? kLower : kUpper);
        bool found = false;
        for (const json& cell : cursor()) found |= cell == name;
        EXPECT_TRUE(found) << name << " " << cursor();
    }
}

TEST_F(ScreenEvents, ThePressThatEndsAFrameIsNoClick) {
    Click("FormMain.MenuVievMainSheet");
    Mouse("click", kLeft, kLower);
    const json before = Get("FormMainSheet.MSFlexGrid1")["current"];
    Drag(kRight - 60, kUpper - 60, kRight + 20, kUpper + 20);
    Mouse("click", kRight + 20, kUpper + 20);
    EXPECT_EQ(Get("FormMainSheet.MSFlexGrid1")["current"], before);
    Mouse("click", PixelOf(4).X, PixelOf(4).Y);
    EXPECT_NE(Get("FormMainSheet.MSFlexGrid1")["current"], before);
}

TEST_F(ScreenEvents, APointThatIsPickedBecomesTheCentreOfRotation) {
    Click("FormMain.MenüGlobalRotateAbout");
    EXPECT_EQ(Record("RotateAboutArmed"), -1);
    Mouse("click", kRight, kUpper);
    EXPECT_EQ(Record("RotCenter"), json({0.0, 100.0, 50.0, 0.0}));
    EXPECT_EQ(Record("RotateAboutArmed"), 0);
    EXPECT_EQ(Get("FormMain.MenüGlobalRotateAbout")["checked"], false);
}

// --- Keys -------------------------------------------------------------------------------------------------

TEST_F(ScreenEvents, KeysTurnAndMoveTheView) {
    Key("Shift+r");
    EXPECT_NEAR(Angle(3), -kKeyStep, 1e-9);
    Key("Shift+L");
    Key("Shift+l");
    EXPECT_NEAR(Angle(3), kKeyStep, 1e-9);
    Click("FormMain.ToolbarGraphics.ViewTop");
    Key("Shift+Up");
    EXPECT_NEAR(Angle(1), -kPi + kKeyStep, 1e-9);
    Key("Shift+Down");
    EXPECT_NEAR(Angle(1), -kPi, 1e-9);
    Key("Shift+Left");
    EXPECT_NEAR(Angle(2), -kKeyStep, 1e-9);
    Key("Shift+Right");
    EXPECT_NEAR(Angle(2), 0, 1e-9);
    const double x = Number("BildOffsetX"), y = Number("BildOffsetY");
    Key("Up");
    EXPECT_NEAR(Number("BildOffsetY"), y + 15, kNear);
    Key("Down");
    Key("Left");
    EXPECT_NEAR(Number("BildOffsetX"), x - 20, kNear);
    Key("Right");
    EXPECT_NEAR(Number("BildOffsetX"), x, kNear);
    EXPECT_NEAR(Number("BildOffsetY"), y, kNear);
}

TEST_F(ScreenEvents, PlusZoomsAboutTheMouseUpToItsLimitAndMinusOut) {
    Mouse("move", kLeft, kLower);
    Key("KP_Add");
    EXPECT_NEAR(Number("BildFaktor"), kFaktor / 0.7, 1e-5);
    EXPECT_NEAR(PixelOf(1).X, kLeft, kNear);
    EXPECT_NEAR(PixelOf(1).Y, kLower, kNear);
    Key("KP_Subtract");
    EXPECT_NEAR(Number("BildFaktor"), kFaktor, 1e-5);
    for (int i = 0; i < 30; ++i) Key("KP_Add");
    EXPECT_LE(Number("BildFaktor"), 1000);
    EXPECT_GT(Number("BildFaktor"), 600);
}

// --- Lines ------------------------------------------------------------------------------------------------

TEST_F(ScreenEvents, ClicksBuildAChainOfLinesAndTakeThemOutAgain) {
    Click("FormMain.ToolbarLines.LineMode");
    Click("FormMain.ToolbarLines.SetLines");
    EXPECT_EQ(Field("SetLine"), -1);
    Mouse("click", kLeft, kLower);
    EXPECT_EQ(Field("LineStartRow"), 1);
    Mouse("click", kRight, kUpper);
    Mouse("click", kLeft, kUpper);
    const json lines = Field("LineTable");  // lines 1 and 2; element 0 is unused
    ASSERT_EQ(lines.size(), 3u) << lines;
    EXPECT_EQ(lines[1], json({0, 1, 4}));
    EXPECT_EQ(lines[2], json({0, 4, 3}));
    Click("FormMain.ToolbarLines.DeleteLines");
    EXPECT_EQ(Field("SetLine"), 0);
    Mouse("move", kLeft, kLower);
    EXPECT_EQ(Field("SelectedLine"), 1);
    Mouse("click", kLeft, kLower);
    EXPECT_EQ(Field("LineTable")[1], json({0, 4}));
    EXPECT_EQ(Field("LineTable")[2], json({0, 3}));
}

// --- Colours ----------------------------------------------------------------------------------------------

TEST_F(ScreenEvents, ADoubleClickChoosesTheBackground) {
    Answer("colour", 0x123456);
    const json reply = Mouse("dblclick", 400, 300);
    ASSERT_EQ(reply["dialogs"].size(), 1u) << reply;
    EXPECT_EQ(reply["dialogs"][0]["kind"], "colour");
    EXPECT_EQ(reply["dialogs"][0]["answer"], 0x123456);
    EXPECT_EQ(Get("Screen#1.ScreenPixel")["backColor"], 0x123456);
    Answer("colour", nullptr);
    Mouse("dblclick", 400, 300);
    EXPECT_EQ(Get("Screen#1.ScreenPixel")["backColor"], 0x123456);
}

TEST_F(ScreenEvents, TheColourBarDialogSetsClassesAndLimits) {
    Click("FormMain.MenüAnsichtToleranzenEinstellungen");
    EXPECT_EQ(Get("FormColorBar.TextAnzahlTolKlassePos")["text"], "10");
    Set("FormColorBar.CheckAutoApply", 0);
    Set("FormColorBar.TextObereGrenze", "1");
    Set("FormColorBar.TextUntereGrenze", "-1");
    Set("FormColorBar.TextAnzahlTolKlassePos", "5");
    EXPECT_NEAR(Number("Max"), 0.4, 1e-7) << "not before it is applied";
    Click("FormColorBar.BtnApply");
    EXPECT_EQ(Field("Max"), 1.0);
    EXPECT_EQ(Field("Min"), -1.0);
    EXPECT_EQ(Field("AnzKlassenPos"), 5);
    // A is off by 0.3 mm: Int(5 * 0.3 + 1) = 2, which is 0.4 of the way: red 0.4/0.5*255, green 255-0.4*200.
    const json point = Record("ScenePoints")[1];
    EXPECT_EQ(point[5], 2.0);
    EXPECT_EQ(point[6], 204.0 + 256.0 * 175);
    const json reply = Set("FormColorBar.TextAnzahlTolKlassePos", "101");
    EXPECT_EQ(reply["dialogs"][0]["text"], "max = 100");
    EXPECT_EQ(Get("FormColorBar.TextAnzahlTolKlassePos")["text"], "100");
    Click("FormColorBar.BtnOK");
    EXPECT_EQ(Field("AnzKlassenPos"), 100);
    EXPECT_EQ(Get("FormColorBar")["loaded"], false);
}

// --- Pictures ---------------------------------------------------------------------------------------------

TEST_F(ScreenEvents, APictureIsAPngOfTheWindowsSize) {
    const auto size = [](const std::string& png) {
        std::vector<unsigned int> sides;
        for (const std::size_t at : {16, 20}) {
            unsigned int side = 0;
            for (std::size_t i = 0; i < 4; ++i)
                side = side << 8U | static_cast<unsigned char>(png.at(at + i));
            sides.push_back(side);
        }
        return sides;
    };
    Good({{"do", "picture"}, {"at", "Screen#1"}, {"file", PathOf("a.png")}});
    EXPECT_EQ(Contents(PathOf("a.png")).substr(0, 8), "\x89PNG\r\n\x1a\n");
    EXPECT_EQ(size(Contents(PathOf("a.png"))), (std::vector<unsigned int>{800, 600}));
    Good({{"do", "resize"}, {"at", "Screen#1"}, {"width", 123}, {"height", 45}});
    Good({{"do", "picture"}, {"at", "Screen#1"}, {"file", PathOf("a.png")}});
    EXPECT_EQ(size(Contents(PathOf("a.png"))), (std::vector<unsigned int>{123, 45}));
    const json refused = Good({{"do", "picture"}, {"at", "Screen#1"}, {"file", PathOf("no/a.png")}});
    EXPECT_NE(refused.value("platformError", ""), "");
    EXPECT_NE(ErrorOf({{"do", "picture"}, {"at", "Screen#1"}}), "");
    EXPECT_NE(ErrorOf({{"do", "picture"}, {"at", "FormMain"}, {"file", PathOf("b.png")}}), "");
}

TEST_F(ScreenEvents, ThePictureGoesToTheClipboardAndFromThereToAFile) {
    EXPECT_NE(ErrorOf({{"do", "picture"}, {"at", "Clipboard"}, {"file", PathOf("a.png")}}), "");
    Click("FormMain.MenüGraphicsPrint");
    const json clipboard = Good({{"do", "clipboard"}});
    ASSERT_TRUE(clipboard.contains("picture")) << clipboard;
    // A margin of 3 pixels goes off on each side at least.
    EXPECT_LE(clipboard["picture"]["width"], 797);
    EXPECT_GT(clipboard["picture"]["width"], 780);
    EXPECT_LE(clipboard["picture"]["height"], 597);
    EXPECT_EQ(clipboard["value"], "");
    Good({{"do", "picture"}, {"at", "Clipboard"}, {"file", PathOf("a.png")}});
    EXPECT_EQ(Contents(PathOf("a.png")).substr(0, 8), "\x89PNG\r\n\x1a\n");
    EXPECT_EQ(Get("Screen#1.ScreenPixel")["backColor"], 0) << "white for the picture alone";
    EXPECT_FALSE(Good({{"do", "clipboard"}, {"value", "text"}}).contains("picture"));
}

TEST_F(ScreenEvents, AClipboardThatRefusesTakesNoPicture) {
    Good({{"do", "clipboard"}, {"refuse", true}});
    Click("FormMain.MenüGraphicsPrint");
    EXPECT_FALSE(Good({{"do", "clipboard"}}).contains("picture"));
    EXPECT_EQ(Get("Screen#1.ScreenPixel")["backColor"], 0);
}

}  // namespace
