// The black planes by names alone: dialog, drags, saved views and the job file.
#include <cmath>

#include "cli/command_line.h"
#include "cli/screen_automation.h"
#include "core/fresh_start.h"

using namespace corvinade;

namespace {

// A stair of six pairs seen from above: P0 at z = 0 mm, each further one 10 mm higher. Seen from above, depth
// grows with z.
class BlackPlanesByName : public ScreenByNames {
protected:
    void StartStair() {
        AutomationOptions options;
        options.ScreenWidth = 800;
        options.ScreenHeight = 600;
        StartAutomation(options);
        std::string points;
        for (int i = 0; i < 6; ++i)
            points += "P" + std::to_string(i) + ";" + std::to_string(20 * i) + ";" +
                      std::to_string(i % 2 * 40) + ";" + std::to_string(10 * i) + "\n";
        Click("FormMain.MenuFileInputFiles");
        Set("FormInputFiles.TextNameMCS", Write("start.txt", points));
        Set("FormInputFiles.TextNameOCS", Write("target.txt", points));
        Click("FormInputFiles.BtnOK");
        Click("FormMain.MenueGraphics");
    }
    static void Activate() {
        Click("FormMain.MenüGrafikBlackPlane");
        Set("FormBlackPlane.CheckActivate", 1);
        Click("FormBlackPlane.BtnOK");
    }
    // The pairs that are seen, by column 16 of their first row.
    static std::vector<int> Seen() {
        const json rows = Record("ScenePoints");
        std::vector<int> seen;
        for (int i = 0; i < 6; ++i) {
            const bool first = rows[static_cast<std::size_t>(i + 1)][16] == 1.0;
            EXPECT_EQ(first, rows[static_cast<std::size_t>(i + 7)][16] == 1.0);
            if (first) seen.push_back(i);
        }
        return seen;
    }
    static void DragWith(const std::string& key, double dx, double dy) {
        Key(key, "down");
        Mouse("down", 400, 300, {{"button", "left"}});
        Mouse("move", 400 + dx, 300 + dy, {{"button", "left"}});
        Mouse("up", 400 + dx, 300 + dy, {{"button", "left"}});
        Key(key, "up");
    }
    // Pixels of depth to a step of the stair.
    static double Step() { return 10 * Number("BildFaktor"); }
    using Pairs = std::vector<int>;
};

TEST_F(BlackPlanesByName, TheDialogSwitchesTheSlabAndTheKeysMoveIt) {
    StartStair();
    EXPECT_EQ(Seen(), (Pairs{0, 1, 2, 3, 4, 5}));
    Click("FormMain.MenüGrafikBlackPlane");
    EXPECT_EQ(Get("FormBlackPlane")["loaded"], true);
    EXPECT_EQ(Get("FormBlackPlane.BtnInit")["enabled"], false);
    Set("FormBlackPlane.CheckActivate", 1);
    EXPECT_EQ(Get("FormBlackPlane.BtnInit")["enabled"], true);
    Set("FormBlackPlane.CheckShowBlackPlanes", 1);
    Click("FormBlackPlane.BtnApply");
    EXPECT_EQ(Field("BlackPlane"), -1);
    EXPECT_EQ(Field("BlackPlaneBorders"), -1);
    EXPECT_EQ(Field("BlackInitial"), -1);
    EXPECT_EQ(Number("SlabThickness"), 100);
    EXPECT_EQ(Number("TopDepth"), 0);
    EXPECT_EQ(Number("FrameFactor"), Number("BildFaktor"));
    EXPECT_EQ(Record("JobDirty"), -1);
    // 0 to 100 pixels: the first is on the plane.
    Pairs expected;
    for (int i = 0; i * Step() < 100 && i < 6; ++i) expected.push_back(i);
    EXPECT_LT(expected.size(), 6U);
    EXPECT_EQ(Seen(), expected);
    // To the left moves the slab up by as many pixels: from half a step to a step and a half.
    const double step = Step();
    DragWith("t", -std::round(step / 2), 0);
    DragWith("b", 100 - std::round(step), 0);
    EXPECT_EQ(Number("TopDepth"), std::round(step / 2));
    EXPECT_EQ(Number("SlabThickness"), std::round(step));
    EXPECT_EQ(Seen(), (Pairs{1}));
    // Turned, the same points are seen.
    Click("FormMain.ToolbarGraphics.ViewIso");
    EXPECT_EQ(Seen(), (Pairs{1}));
    Click("FormMain.ToolbarGraphics.ZoomIn");
    EXPECT_EQ(Seen(), (Pairs{1}));
    Set("FormBlackPlane.CheckActivate", 0);
    Click("FormBlackPlane.BtnOK");
    EXPECT_EQ(Get("FormBlackPlane")["loaded"], false);
    EXPECT_EQ(Seen(), (Pairs{0, 1, 2, 3, 4, 5}));
}

TEST_F(BlackPlanesByName, ThicknessStopsAtZeroWhereNothingIsSeen) {
    StartStair();
    Activate();
    DragWith("b", 500, 20);
    EXPECT_EQ(Number("SlabThickness"), 0);
    EXPECT_EQ(Seen(), Pairs{});
}

TEST_F(BlackPlanesByName, StepsSavedViewsAndTheJobFileBringTheSlabBack) {
    StartStair();
    Activate();
    DragWith("b", 40, 0);
    DragWith("t", -30, 0);
    const Pairs slab = Seen();
    ASSERT_LT(slab.size(), 6U);
    ASSERT_GT(slab.size(), 0U);
    Click("FormMain.ToolbarSaveView.LastView");
    EXPECT_EQ(Number("TopDepth"), 0);
    EXPECT_EQ(Number("SlabThickness"), 60);
    Click("FormMain.ToolbarSaveView.LastView");
    EXPECT_EQ(Number("SlabThickness"), 100);
    Click("FormMain.ToolbarSaveView.LastView");
    EXPECT_EQ(Field("BlackPlane"), 0);
    EXPECT_EQ(Seen().size(), 6U);
    for (int i = 0; i < 3; ++i) Click("FormMain.ToolbarSaveView.NextView");
    EXPECT_EQ(Seen(), slab);

    Answer("form", {{{"do", "set"}, {"at", "FormSaveView.TextNewName"}, {"value", "slab"}},
                    {{"do", "click"}, {"at", "FormSaveView.BtnOK"}}});
    Click("FormMain.ToolbarSaveView.SaveView");
    const json saved = Record("SavedView")[1];
    Answer("save", PathOf("stair.cvn"));
    Click("FormMain.MenuFileSaveAs");
    StartAutomation({});
    Answer("open", PathOf("stair.cvn"));
    Click("FormMain.MenuFileOpen");
    Click("FormMain.MenueGraphics");
    EXPECT_EQ(Seen().size(), 6U);
    Set("FormMain.ComboSaveView", "slab");
    EXPECT_EQ(Seen(), slab);
    const json state = Get("Screen#1");
    for (const char* field : {"BlackPlane", "BlackPlaneBorders", "BlackInitial", "FrameOffsetX",
                              "FrameOffsetY", "FrameFactor", "SlabThickness", "FrameInverse", "TopDepth"})
        EXPECT_EQ(state[field], saved[field]) << field;
    EXPECT_EQ(state["TopDepth"], 30.0);
    EXPECT_EQ(state["SlabThickness"], 60.0);
    // Every further round leaves the file's bytes as they are.
    Answer("save", PathOf("again.cvn"));
    Click("FormMain.MenuFileSaveAs");
    EXPECT_EQ(Record("SavedView")[1], saved);
    // A picture of the view shows as many points, in any size.
    for (const char* size : {"800x600", "400x500"}) {
        const Outcome outcome = FreshCommandLine({"render", PathOf("stair.cvn"), "--view", "slab", "--size",
                                                  size, "--point-size", "8", "--out", PathOf("slab.svg")});
        ASSERT_EQ(outcome.Status, 0) << outcome.Err;
        const std::string svg = Contents(PathOf("slab.svg"));
        std::size_t discs = 0;
        for (std::size_t at = svg.find("<circle"); at != std::string::npos; at = svg.find("<circle", at + 1))
            ++discs;
        EXPECT_EQ(discs, slab.size()) << size;
    }
}

TEST_F(BlackPlanesByName, ASavedSlabStaysAtItsPointsWhenThePictureTurnsAboutAnother) {
    StartStair();
    Activate();
    DragWith("b", -40, 0);
    const Pairs slab = Seen();
    Click("FormMain.MenüGlobalRotateAbout");
    const json x = Record("PixelX"), y = Record("PixelY");
    Mouse("click", x[2].get<double>(), y[2].get<double>(), {{"button", "left"}});
    EXPECT_EQ(Record("RotCenter"), json({0.0, 20.0, 40.0, 10.0}));
    EXPECT_EQ(Seen(), slab);
    Answer("form", {{{"do", "set"}, {"at", "FormSaveView.TextNewName"}, {"value", "slab"}},
                    {{"do", "click"}, {"at", "FormSaveView.BtnOK"}}});
    Click("FormMain.ToolbarSaveView.SaveView");
    Set("FormMain.ComboSaveView", "slab");
    EXPECT_EQ(Seen(), slab);
    Answer("save", PathOf("stair.cvn"));
    Click("FormMain.MenuFileSaveAs");
    FreshStart();  // a new run, which turns about the origin
    StartAutomation({});
    Answer("open", PathOf("stair.cvn"));
    Click("FormMain.MenuFileOpen");
    Click("FormMain.MenueGraphics");
    Set("FormMain.ComboSaveView", "slab");
    EXPECT_EQ(Record("RotCenter"), json({0.0, 0.0, 0.0, 0.0}));
    EXPECT_EQ(Seen(), slab);
}

// --- The chart --------------------------------------------------------------------------------------------

TEST_F(BlackPlanesByName, TheChartOfAColumnIsReadByItsName) {
    Start();  // deviations along z: 0.3, 0, 0, 0
    Click("FormMain.MenuEditGraphData");
    Click("FormMain.MenuVievMainSheet");
    Good({{"do", "select"},
          {"at", "FormMainSheet.MSFlexGrid1"},
          {"row", 1},
          {"col", 9},
          {"row2", 1},
          {"col2", 9}});
    const json reply = Click("FormMain.MenuEditGraphData");
    EXPECT_FALSE(reply.contains("dialogs")) << reply;
    const json chart = Get("FormGrafik.Chart");
    EXPECT_EQ(chart["title"], "Datas Graph");
    EXPECT_EQ(chart["valueTitle"], "[dev.]");
    EXPECT_EQ(chart["categoryTitle"], "");
    ASSERT_EQ(chart["points"].size(), 4U);
    EXPECT_EQ(chart["points"][0], json({1.0, 0.3}));
    EXPECT_EQ(chart["points"][3], json({4.0, 0.0}));
    EXPECT_DOUBLE_EQ(chart["max"].get<double>(), 0.5);  // 0.39 -> 0.39 -> 0.40 -> (4 + 1) / 10
    EXPECT_EQ(chart["min"].get<double>(), -chart["max"].get<double>());
    Close("FormGrafik");
    EXPECT_EQ(Get("FormGrafik.Chart")["points"], json::array());
}

}  // namespace
