// The graphics windows by name: opening, state, views, size, undo and what is refused.
#include <random>

#include "cli/headless.h"
#include "cli/screen_automation.h"
#include "core/window.h"

using namespace corvinade;

namespace {

using OpenScreens = ScreenByNames;

constexpr double kShownPi = 3.14159265358979;

// --- Opening and closing ----------------------------------------------------------------------------------

TEST_F(OpenScreens, AWindowOpensByItsEntryAndByTheKeyOfTheToolBar) {
    Start();
    EXPECT_EQ(Get("FormMain.MenueGraphics")["checked"], false);
    Click("FormMain.MenueGraphics");
    EXPECT_EQ(Get("Screen#1")["caption"], "Screen - DEFAULT");
    EXPECT_EQ(Get("FormMain.MenueGraphics")["checked"], true);
    Click("FormMain.ToolbarGraphics.Graphics");
    EXPECT_EQ(Get("Screen#2")["caption"], "Screen - 2");
    Click("FormMain.ToolbarGraphics.Graphics");
    EXPECT_EQ(Get("Screen#3")["caption"], "Screen - 3");
    EXPECT_EQ(Get("Windows")["windows"], json({"FormMain", "Screen#1", "Screen#2", "Screen#3"}));
}

TEST_F(OpenScreens, WindowsAreNamedByTheirPlaceAmongTheOpenOnes) {
    StartWithScreen();
    Click("FormMain.MenueGraphics");
    Close("Screen#1");
    EXPECT_EQ(Get("Screen#1")["caption"], "Screen - 2");
    EXPECT_NE(ErrorOf({{"do", "get"}, {"at", "Screen#2"}}).find("one is open"), std::string::npos);
    Close("Screen#1");
    EXPECT_EQ(Get("Windows")["windows"], json({"FormMain"}));
    EXPECT_EQ(Get("FormMain.MenueGraphics")["checked"], false);
    // Those that stand in a disabled menu as well.
    for (const char* entry : {"MenüViewSaveView", "MenüViewDeleteView", "MenüAnsichtPunkteBigger",
                              "MenüAnsichtVektorenLonger", "MenüGraphicsLinesSetLines", "MenuFahneEdit"})
        EXPECT_EQ(Get(std::string("FormMain.") + entry)["enabled"], false) << entry;
    EXPECT_EQ(Get("FormMain.MenüAnsichtTopview")["enabled"], false);
}

TEST_F(OpenScreens, TheSizeOfNewWindowsIsThatOfTheStart) {
    Start(320, 200);
    Click("FormMain.MenueGraphics");
    const json screen = Get("Screen#1");
    EXPECT_EQ(screen["width"], 320);
    EXPECT_EQ(screen["height"], 200);
}

TEST_F(OpenScreens, TheJobsEndClosesThem) {
    StartWithScreen();
    Answer("message", "No");
    Answer("save", PathOf("new.cvn"));
    Click("FormMain.MenuFileNew");
    EXPECT_EQ(Get("Windows")["windows"], json({"FormMain"}));
}

// --- State ------------------------------------------------------------------------------------------------

TEST_F(OpenScreens, AWindowTellsAllFieldsOfItsState) {
    StartWithScreen();
    const json screen = Get("Screen#1");
    for (const char* name :
         {"VectorMode",    "BigNess",       "FlagMode",      "BildFaktor",  "BildOffsetX",
          "BildOffsetY",   "Vec_Maßstab",   "GridLength",    "RotAngles",   "FlagCount",
          "FlagIndex",     "Flags",         "ActiveFlag",    "WindowWidth", "WindowHeight",
          "AnzKlassenPos", "AnzKlassenNeg", "AusserhalbTol", "Min",         "Max",
          "showVeX",       "showVeY",       "showVeZ",       "ColorBased",  "ShowOnlyUsedComponent",
          "OuterColor",    "CS_Type",       "BinärModus",    "BlackPlane",  "BlackPlaneBorders",
          "BlackInitial",  "FrameOffsetX",  "FrameOffsetY",  "FrameFactor", "SlabThickness",
          "FrameInverse",  "TopDepth",      "GridXY",        "GridYZ",      "GridZX",
          "ADis",          "BDis",          "Cdis",          "ShowGridDim", "LineTable",
          "LineStartRow",  "LineMode",      "SelectedLine",  "SetLine",     "DeleteLine",
          "UndoIndex",     "UndoCount",     "UndoOffset",    "ViewBox"}) {
        ASSERT_TRUE(screen.contains(name)) << name;
        EXPECT_EQ(Field(name), screen[name]) << name;
    }
    for (const char* name : {"caption", "labels", "width", "height", "pointer"})
        EXPECT_TRUE(screen.contains(name)) << name;
}

TEST_F(OpenScreens, ArraysOfTheStateAreIndexedAsTheyAreNamed) {
    StartWithScreen();
    const json angles = Field("RotAngles");  // rows 1 to 2, columns 1 to 3, with unused elements 0
    ASSERT_EQ(angles.size(), 3u);
    EXPECT_EQ(angles[0], json({0, 0, 0, 0}));
    EXPECT_EQ(angles[1], json({0, -kShownPi, 0.0, 0.0}));
    EXPECT_EQ(angles[2], json({0, 0.0, 0.0, 0.0}));
    EXPECT_EQ(Field("FlagIndex"), json(std::vector<int>(9, 0)));  // one a row, and element 0
    EXPECT_EQ(Field("FrameInverse").size(), 4u);
    EXPECT_EQ(Field("LineTable"), json::array());
}

TEST_F(OpenScreens, AWindowBeginsFromAboveWithThePlateFitted) {
    StartWithScreen();
    EXPECT_NEAR(Number("BildFaktor"), kFaktor, 1e-5);
    EXPECT_EQ(Field("BigNess"), 2);
    EXPECT_EQ(Field("VectorMode"), 0);
    EXPECT_EQ(Field("Vec_Maßstab"), 400) << "nothing has been calculated";
    EXPECT_EQ(Field("AnzKlassenPos"), 10);
    EXPECT_NEAR(Number("Max"), 0.4, 1e-7) << "the largest deviation, that of B";
    EXPECT_EQ(Field("UndoCount"), 1);
    const json box = Field("ViewBox");
    const double expected[] = {200, 300, 200, 250, 0, 0.3};
    ASSERT_EQ(box.size(), 6u);
    for (std::size_t i = 0; i < 6; ++i) EXPECT_NEAR(box[i].get<double>(), expected[i], 1e-4) << i;
}

TEST_F(OpenScreens, TheTablesOfPointsAreReadAsRecords) {
    StartWithScreen();
    const json points = Record("ScenePoints");
    ASSERT_EQ(points.size(), 9u);
    ASSERT_EQ(points[2].size(), 17u);
    EXPECT_EQ(points[2][1], 100.0);
    EXPECT_NEAR(points[2][14].get<double>(), 0.4, 1e-7) << "B is off its target by 0.4 in y";
    EXPECT_EQ(points[2][12], 1.0);
    EXPECT_EQ(points[6][2], 0.0) << "row 6 is the target of B";
    EXPECT_EQ(Record("ScenePointName"), json({"", "A", "B", "C", "D", "A", "B", "C", "D"}));
    const json view = Record("ViewPoints")[7];  // the target of C
    const double expected[] = {0, 200, 250, 0};
    ASSERT_EQ(view.size(), 4u);
    for (std::size_t i = 0; i < 4; ++i) EXPECT_NEAR(view[i].get<double>(), expected[i], 1e-10) << i;
    EXPECT_NEAR(PixelOf(1).X, kLeft, kNear);
    EXPECT_NEAR(PixelOf(1).Y, kLower, kNear);
    EXPECT_NEAR(PixelOf(4).X, kRight, kNear);
    EXPECT_NEAR(PixelOf(4).Y, kUpper, kNear);
    EXPECT_NEAR(Record("PixelZ")[1].get<double>(), 0.3 * kFaktor, 1e-4);
    EXPECT_EQ(Record("RotCenter"), json({0.0, 0.0, 0.0, 0.0}));
    EXPECT_EQ(ErrorOf({{"do", "record"}, {"name", "PixelX"}, {"value", json::array()}}),
              "PixelX: this record can only be read");
}

TEST_F(OpenScreens, TheDrawingSurfaceTellsItsColourAndSize) {
    StartWithScreen();
    const json picture = Get("Screen#1.ScreenPixel");
    EXPECT_EQ(picture["kind"], "picture");
    EXPECT_EQ(picture["backColor"], 0);
    EXPECT_EQ(picture["width"], 800);
    EXPECT_EQ(picture["height"], 600);
    EXPECT_EQ(picture["frame"]["visible"], false);
    EXPECT_EQ(Get("Screen#1")["pointer"], "arrow");
}

TEST_F(OpenScreens, TheStatusBarHasFourPanels) {
    StartWithScreen();
    for (const char* panel : {"1", "2", "3", "4"})
        EXPECT_EQ(Get(std::string("Screen#1.StatusBar.") + panel)["kind"], "panel");
    for (const char* panel : {"0", "5", "", "x", "1.1"})
        EXPECT_NE(ErrorOf({{"do", "get"}, {"at", std::string("Screen#1.StatusBar.") + panel}}), "") << panel;
}

// --- Views ------------------------------------------------------------------------------------------------

TEST_F(OpenScreens, TheFixedViewsTurnTheScene) {
    StartWithScreen();
    struct View {
        const char *Entry, *Key;
        double A, B, C;
    };
    const double sideways = 4.712388980384685, degree = kShownPi / 180;
    for (const View& view :
         {View{"MenüAnsichtSideView", "ViewSide", sideways, 0, 0},
          View{"MenüAnsichtFrontView", "ViewFront", sideways, sideways, 0},
          View{"MenüAnsichtIsometricView", "ViewIso", 210 * degree, -50 * degree, -50 * degree},
          View{"MenüAnsichtTopview", "ViewTop", -kShownPi, 0, 0}}) {
        const double faktor = Number("BildFaktor");
        const std::string places[] = {std::string("FormMain.") + view.Entry,
                                      std::string("FormMain.ToolbarGraphics.") + view.Key};
        for (const std::string& at : places) {
            Click("FormMain.ToolbarGraphics.ViewTop");
            Click(at);
            const json angles = Field("RotAngles")[1];
            EXPECT_NEAR(angles[1].get<double>(), view.A, 1e-12) << at;
            EXPECT_NEAR(angles[2].get<double>(), view.B, 1e-12) << at;
            EXPECT_NEAR(angles[3].get<double>(), view.C, 1e-12) << at;
        }
        EXPECT_EQ(Number("BildFaktor"), faktor) << "scale and offsets stay";
    }
}

TEST_F(OpenScreens, FromTheSideZRunsUp) {
    StartWithScreen();
    Click("FormMain.ToolbarGraphics.ViewSide");
    const json view = Record("ViewPoints");
    // A's start point stands 0.3 above its target.
    EXPECT_NEAR(view[1][1].get<double>(), 200, 1e-4);
    EXPECT_NEAR(view[1][2].get<double>() - view[5][2].get<double>(), 0.3, 1e-4);
    EXPECT_LT(PixelOf(1).Y, PixelOf(5).Y);
}

TEST_F(OpenScreens, AStepOfTheZoomGoesAboutTheMiddle) {
    StartWithScreen();
    Click("FormMain.ToolbarGraphics.ZoomIn");
    EXPECT_NEAR(Number("BildFaktor"), kFaktor / 0.7, 1e-5);
    EXPECT_NEAR(PixelOf(1).X, 400 - 50 * kFaktor / 0.7, kNear);
    EXPECT_NEAR(PixelOf(1).Y, 300 + 25 * kFaktor / 0.7, kNear);
    Click("FormMain.ToolbarGraphics.ZoomOut");
    EXPECT_NEAR(Number("BildFaktor"), kFaktor, 1e-5);
    EXPECT_NEAR(PixelOf(4).X, kRight, kNear);
    EXPECT_NEAR(PixelOf(4).Y, kUpper, kNear);
}

TEST_F(OpenScreens, FitAndCentreBringThePlateBackAndTheOriginToTheMiddle) {
    StartWithScreen();
    Click("FormMain.ToolbarGraphics.ZoomIn");
    Click("FormMain.MenüAnsichtcenter");
    EXPECT_EQ(Number("BildOffsetX"), 400);
    EXPECT_EQ(Number("BildOffsetY"), 300);
    EXPECT_NEAR(Number("BildFaktor"), kFaktor / 0.7, 1e-5);
    Click("FormMain.ToolbarGraphics.ZoomAll");
    EXPECT_NEAR(Number("BildFaktor"), kFaktor, 1e-5);
    EXPECT_NEAR(PixelOf(1).X, kLeft, kNear);
}

TEST_F(OpenScreens, PointsAndVectorsChangeTheirSize) {
    StartWithScreen();
    Click("FormMain.ToolbarGraphics.PointsBigger");
    EXPECT_EQ(Field("BigNess"), 3);
    Click("FormMain.MenüAnsichtPunkteSmallPoints");
    EXPECT_EQ(Field("BigNess"), 1);
    Click("FormMain.ToolbarGraphics.PointsSmaller");
    EXPECT_EQ(Field("BigNess"), 1);
    Click("FormMain.ToolbarGraphics.VectorMode");
    EXPECT_EQ(Field("VectorMode"), -1);
    EXPECT_EQ(Get("FormMain.MenüAnsichtVektorenVektorModeActive")["checked"], true);
    Click("FormMain.ToolbarGraphics.VectorLonger");
    EXPECT_EQ(Field("Vec_Maßstab"), 600);
    // From above y runs up: B's deviation of 0.4 mm in y is a vector of 240 pixels; its sense is that of
    // DevVecDirection.
    EXPECT_NEAR(std::fabs(Record("VecPixelY")[2].get<double>()), 240, 1e-3);
    EXPECT_NEAR(Record("VecPixelX")[2].get<double>(), 0, 1e-3);
    Click("FormMain.ToolbarGraphics.VectorShorter");
    EXPECT_EQ(Field("Vec_Maßstab"), 400);
}

TEST_F(OpenScreens, VectorsHaveALongestAndAShortestLength) {
    StartWithScreen();
    Click("FormMain.ToolbarGraphics.VectorMode");
    std::vector<std::string> said;
    double before = 0;
    for (int step = 0; step < 30 && said.empty(); ++step) {
        before = Number("Vec_Maßstab");
        const json reply = Click("FormMain.ToolbarGraphics.VectorLonger");
        if (reply.contains("dialogs")) said.push_back(reply["dialogs"][0]["text"]);
    }
    EXPECT_EQ(said, std::vector<std::string>{"Vectors can not be made longer"});
    EXPECT_EQ(Number("Vec_Maßstab"), before);
    EXPECT_LE(before, 1e7);
    EXPECT_GT(before * 1.5, 1e7);
}

// --- Undo -------------------------------------------------------------------------------------------------

TEST_F(OpenScreens, TheLastViewsComeBackAndGoForth) {
    StartWithScreen();
    EXPECT_EQ(Get("FormMain.MenüViewLastView")["enabled"], false);
    Click("FormMain.ToolbarGraphics.ZoomIn");
    Click("FormMain.ToolbarGraphics.ViewIso");
    EXPECT_EQ(Field("UndoCount"), 3);
    EXPECT_EQ(Get("FormMain.ToolbarSaveView.LastView")["toolTip"].get<std::string>().substr(0, 1), "2");
    Click("FormMain.ToolbarSaveView.LastView");
    EXPECT_NEAR(Field("RotAngles")[1][1].get<double>(), -kShownPi, 1e-12);
    EXPECT_EQ(Field("UndoOffset"), -1);
    Click("FormMain.MenüViewLastView");
    EXPECT_NEAR(Number("BildFaktor"), kFaktor, 1e-5);
    EXPECT_EQ(Get("FormMain.ToolbarSaveView.LastView")["enabled"], false);
    Click("FormMain.ToolbarSaveView.NextView");
    Click("FormMain.MenüViewNextView");
    EXPECT_NEAR(Field("RotAngles")[1][1].get<double>(), 210 * kShownPi / 180, 1e-12);
    EXPECT_EQ(Get("FormMain.ToolbarSaveView.NextView")["enabled"], false);
}

TEST_F(OpenScreens, FiftyViewsAreKept) {
    StartWithScreen();
    for (int i = 0; i < 60; ++i) Click("FormMain.ToolbarGraphics.ViewTop");
    EXPECT_EQ(Field("UndoCount"), 50);
    int steps = 0;
    while (Get("FormMain.ToolbarSaveView.LastView")["enabled"] == true && steps < 100) {
        Click("FormMain.ToolbarSaveView.LastView");
        ++steps;
    }
    EXPECT_EQ(steps, 49);
}

// --- Several windows --------------------------------------------------------------------------------------

TEST_F(OpenScreens, EachWindowHasAViewOfItsOwn) {
    StartWithScreen();
    Click("FormMain.MenueGraphics");
    Click("FormMain.ToolbarGraphics.ViewIso");  // goes to the newer one, which is on top
    EXPECT_NEAR(Get("Screen#1")["RotAngles"][1][1].get<double>(), -kShownPi, 1e-12);
    EXPECT_NEAR(Get("Screen#2")["RotAngles"][1][1].get<double>(), 210 * kShownPi / 180, 1e-12);
    EXPECT_EQ(Get("Screen#2")["active"], true);
    // A key or a button that is pressed on a window brings it to the top.
    Mouse("down", 5, 5, {{"button", "middle"}});
    Mouse("up", 5, 5, {{"button", "middle"}});
    EXPECT_EQ(Get("Screen#1")["active"], true);
    const double faktor = Get("Screen#2")["BildFaktor"];
    Click("FormMain.ToolbarGraphics.ZoomIn");
    EXPECT_NEAR(Get("Screen#1")["BildFaktor"].get<double>(), kFaktor / 0.7, 1e-5);
    EXPECT_EQ(Get("Screen#2")["BildFaktor"], faktor);
}

// --- Size -------------------------------------------------------------------------------------------------

TEST_F(OpenScreens, AWindowTakesAnotherSize) {
    StartWithScreen();
    const auto paints = Get("Screen#1.ScreenPixel")["paints"].get<int>();
    Good({{"do", "resize"}, {"at", "Screen#1"}, {"width", 1000}, {"height", 500}});
    EXPECT_EQ(Get("Screen#1")["width"], 1000);
    EXPECT_EQ(Get("Screen#1")["height"], 500);
    EXPECT_GT(Get("Screen#1.ScreenPixel")["paints"].get<int>(), paints);
    Click("FormMain.ToolbarGraphics.ZoomAll");
    // Now the height decides: 500 / 50 = 10 and 1000 / 100 = 10 pixels to the millimetre.
    EXPECT_NEAR(Number("BildFaktor"), 9, 1e-5);
    Good({{"do", "resize"}, {"at", "Screen#1"}, {"width", 1}, {"height", 1}});
    Click("FormMain.ToolbarGraphics.ZoomAll");
    EXPECT_GT(Number("BildFaktor"), 0);
}

TEST_F(OpenScreens, SizesThatNoWindowHasAreRefused) {
    StartWithScreen();
    const auto resize = [](const json& width, const json& height) {
        return ErrorOf({{"do", "resize"}, {"at", "Screen#1"}, {"width", width}, {"height", height}});
    };
    for (const json& wrong :
         {json(0), json(-5), json(100000), json(1e300), json("wide"), json(2.5), json()}) {
        EXPECT_NE(resize(wrong, 100), "") << wrong;
        EXPECT_NE(resize(100, wrong), "") << wrong;
    }
    EXPECT_NE(resize(16384, 16384), "") << "a gigabyte of pixels";
    EXPECT_NE(ErrorOf({{"do", "resize"}, {"at", "Screen#1"}}), "");
    EXPECT_NE(ErrorOf({{"do", "resize"}, {"at", "FormMain"}, {"width", 5}, {"height", 5}}), "");
    EXPECT_EQ(Get("Screen#1")["width"], 800) << "nothing has changed";
}

// --- Dialogs ----------------------------------------------------------------------------------------------

TEST_F(OpenScreens, AnswersOfTheirKindsAreCheckedBeforeTheyAreQueued) {
    Start();
    const auto answer = [](const char* kind, const json& value) {
        return Ask({{"do", "answer"}, {"kind", kind}, {"value", value}})["ok"];
    };
    EXPECT_EQ(answer("colour", 0xffffff), true);
    EXPECT_EQ(answer("colour", nullptr), true);
    for (const json& wrong : {json(-1), json(0x1000000), json("red"), json(1.5)})
        EXPECT_EQ(answer("colour", wrong), false) << wrong;
    EXPECT_EQ(answer("form", json::array()), true);
    EXPECT_EQ(answer("form", nullptr), true);
    EXPECT_EQ(answer("form", "x"), false);
}

// --- What is refused --------------------------------------------------------------------------------------

TEST_F(OpenScreens, AWindowThatIsNotThereIsAClearError) {
    Start();
    EXPECT_EQ(ErrorOf({{"do", "get"}, {"at", "Screen#1"}}),
              "there is no graphics window \"Screen#1\"; none is open");
    Click("FormMain.MenueGraphics");
    for (const char* at : {"Screen#2", "Screen#0", "Screen#", "Screen#-1", "Screen#01", "Screen#1x",
                           "Screen#99999999999999999999", "Screen#2.ScreenPixel"}) {
        const std::string name = std::string(at).substr(0, std::string(at).find('.'));
        for (const char* what : {"get", "close", "click", "set", "key", "mouse", "resize", "picture"})
            EXPECT_EQ(ErrorOf({{"do", what},
                               {"at", at},
                               {"key", "a"},
                               {"event", std::string(what) == "mouse" ? "down" : "press"},
                               {"x", 1},
                               {"y", 1},
                               {"value", 1},
                               {"width", 10},
                               {"height", 10},
                               {"file", PathOf("a.png")}}),
                      "there is no graphics window \"" + name + "\"; one is open")
                << what << " " << at;
    }
}

TEST_F(OpenScreens, AFieldCanBeReadAlone) {
    StartWithScreen();
    EXPECT_NE(ErrorOf({{"do", "set"}, {"at", "Screen#1.BildFaktor"}, {"value", 3}}).find("only be read"),
              std::string::npos);
    EXPECT_NE(ErrorOf({{"do", "set"}, {"at", "Screen#1.Nothing"}, {"value", 3}}).find("no field"),
              std::string::npos);
    EXPECT_NE(ErrorOf({{"do", "get"}, {"at", "Screen#1.Nothing"}}), "");
    EXPECT_NE(ErrorOf({{"do", "get"}, {"at", "Screen#1."}}), "");
    EXPECT_NE(ErrorOf({{"do", "close"}, {"at", "Screen#1.BildFaktor"}}), "");
    EXPECT_EQ(Field("SetMinMaxOnChange"), 0);
    Click("FormMain.ToolbarGraphics.ColorBar");
    Set("FormColorBar.CheckSetMinMaxOnChange", 1);
    Click("FormColorBar.BtnOK");
    EXPECT_EQ(Field("SetMinMaxOnChange"), -1);
    EXPECT_NE(ErrorOf({{"do", "click"}, {"at", "Screen#1"}}).find("mouse"), std::string::npos);
    EXPECT_NEAR(Number("BildFaktor"), kFaktor, 1e-5);
}

TEST_F(OpenScreens, MouseAndKeysSayWhatTheyMiss) {
    StartWithScreen();
    const auto mouse = [](const json& more) {
        json request = {{"do", "mouse"}, {"at", "Screen#1"}, {"event", "down"}, {"x", 5}, {"y", 5}};
        request.update(more);
        return Ask(request)["ok"];
    };
    EXPECT_EQ(mouse(json::object()), true);
    for (const json& wrong :
         {json{{"event", "fly"}}, json{{"event", nullptr}}, json{{"x", "left"}}, json{{"y", 1e300}},
          json{{"button", "fourth"}}, json{{"button", {"left", "right"}}}, json{{"button", 1}},
          json{{"shift", 1}}, json{{"event", "wheel"}}, json{{"event", "wheel"}, {"delta", 1.5}},
          json{{"at", "Screen#1.BildFaktor"}}, json{{"at", "FormMain"}}})
        EXPECT_EQ(mouse(wrong), false) << wrong;
    EXPECT_EQ(mouse({{"event", "move"}, {"button", {"left", "right"}}, {"shift", true}}), true);
    EXPECT_EQ(mouse({{"event", "move"}, {"button", json::array()}}), true);
    for (const json& wrong : {json(""), json("Ctrl+"), json("Shift+Ctrl+"), json(7), json()})
        EXPECT_NE(ErrorOf({{"do", "key"}, {"at", "Screen#1"}, {"key", wrong}}), "") << wrong;
    EXPECT_NE(ErrorOf({{"do", "key"}, {"at", "Screen#1"}, {"key", "r"}, {"event", "held"}}), "");
    for (const char* key : {"+", "Ctrl++", "Shift+Left", "Ctrl+Shift+r", "KP_Add", "Pause", "F35"}) Key(key);
}

// --- Anything at all --------------------------------------------------------------------------------------

TEST_F(OpenScreens, AWindowSurvivesAnyRequest) {
    ExpectUnanswered();
    StartWithScreen();
    Click("FormMain.MenueGraphics");
    std::mt19937 random(61);
    const auto pick = [&random](const auto& list) { return list[random() % list.size()]; };
    const std::vector<std::string> verbs = {"mouse", "mouse", "mouse", "mouse", "key",      "key",
                                            "get",   "set",   "click", "close", "resize",   "form",
                                            "menu",  "menu",  "menu",  "menu",  "newWindow"};
    const std::vector<std::string> places = {"Screen#1", "Screen#2", "Screen#1.ScreenPixel",
                                             "Screen#1.BildFaktor", "Screen#1.StatusBar.2"};
    const std::vector<std::string> events = {"down", "move", "up", "click", "dblclick", "wheel", "press"};
    const std::vector<std::string> keys = {"r",  "L",    "t",     "b",      "Shift",       "Ctrl",   "Up",
                                           "F1", "Left", "Pause", "KP_Add", "KP_Subtract", "Shift+r"};
    const std::vector<json> buttons = {"left", "right", "middle", {"left", "right"}, json::array(), 7};
    const std::vector<double> numbers = {-1e6, -1, 0, 1, 8, 9, 250, 399.5, 600, 800, 1e6, 1e300};
    std::vector<std::string> entries;
    for (const ControlEntry& entry : FindWindow("FormMain")->Controls) {
        const std::string name = entry.Name;
        if (name.find("Ansicht") != std::string::npos || name.find("Graphics") != std::string::npos ||
            name.find("SaveView") != std::string::npos || name.find("Lines") != std::string::npos)
            entries.push_back("FormMain." + name);
    }
    const auto any = [&]() -> json {
        const std::string verb = pick(verbs);
        if (verb == "menu") return {{"do", "click"}, {"at", pick(entries)}};
        if (verb == "newWindow") return {{"do", "click"}, {"at", "FormMain.MenueGraphics"}};
        if (verb == "form") return {{"do", "answer"}, {"kind", "form"}, {"value", nullptr}};
        return {{"do", verb},
                {"at", pick(places)},
                {"event", pick(events)},
                {"key", pick(keys)},
                {"button", pick(buttons)},
                {"x", pick(numbers)},
                {"y", pick(numbers)},
                {"delta", static_cast<int>(random() % 5) * 60 - 120},
                {"shift", random() % 2 == 0},
                {"ctrl", random() % 2 == 0},
                {"value", 3},
                {"width", static_cast<int>(random() % 1200)},
                {"height", static_cast<int>(random() % 800)}};
    };
    for (int round = 0; round < 3000; ++round) {
        // Work that waits for something to happen is ended from inside.
        Ask({{"do", "during"}, {"yield", 1 + random() % 3}, {"request", any()}});
        Ask({{"do", "during"}, {"yield", 4}, {"request", {{"do", "close"}, {"at", "Screen#1"}}}});
        const json reply = Ask(any());
        ASSERT_TRUE(reply.contains("ok"));
        ASSERT_FALSE(reply.contains("platformError")) << reply;
        while (Get("Windows")["windows"].size() > 6) Ask({{"do", "close"}, {"at", "Screen#1"}});
    }
    Headless.Unanswered = false;
}

}  // namespace
