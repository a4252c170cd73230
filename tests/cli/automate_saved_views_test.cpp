// Saved views and the analyse mode of the graphics windows, by names alone.
#include "cli/screen_automation.h"

using namespace corvinade;

namespace {

class SavedViewsByNames : public ScreenByNames {
protected:
    SavedViewsByNames() { StartWithScreen(); }

    static double Angle(std::size_t axis) { return Field("RotAngles")[1][axis].get<double>(); }
    // Saves the present view under a name.
    static json SaveView(const std::string& name) {
        Answer("form", {{{"do", "set"}, {"at", "FormSaveView.TextNewName"}, {"value", name}},
                        {{"do", "click"}, {"at", "FormSaveView.BtnOK"}}});
        return Click("FormMain.ToolbarSaveView.SaveView");
    }
    static void During(int yield, const json& request) {
        Good({{"do", "during"}, {"yield", yield}, {"request", request}});
    }
    static json PointClick(const std::string& at) { return {{"do", "click"}, {"at", at}}; }
};

// --- Saved views ------------------------------------------------------------------------------------------

TEST_F(SavedViewsByNames, AViewIsSavedByItsNameAndComesBack) {
    Click("FormMain.ToolbarGraphics.ViewSide");
    const json reply = SaveView("from the side");
    ASSERT_EQ(reply["dialogs"].size(), 1u) << reply;
    EXPECT_EQ(reply["dialogs"][0]["kind"], "form");
    EXPECT_EQ(reply["dialogs"][0]["text"], "FormSaveView");
    EXPECT_EQ(reply["dialogs"][0]["replies"], json({{{"ok", true}}, {{"ok", true}}}));
    EXPECT_FALSE(reply.contains("unanswered"));
    Click("FormMain.ToolbarGraphics.ViewTop");
    Click("FormMain.ToolbarGraphics.ZoomIn");
    SaveView("near");
    EXPECT_EQ(Record("nSavedViews"), 2);
    EXPECT_EQ(Record("JobDirty"), -1);
    EXPECT_EQ(Get("FormMain.ComboSaveView")["items"], json({"from the side", "near"}));
    Set("FormMain.ComboSaveView", "from the side");
    EXPECT_NEAR(Angle(1), 4.712388980384685, 1e-12);
    EXPECT_NEAR(Number("BildFaktor"), kFaktor, 1e-5);
    Set("FormMain.ComboSaveView", "near");
    EXPECT_NEAR(Number("BildFaktor"), kFaktor / 0.7, 1e-5);
    Set("FormMain.ComboSaveView", 0);
    Click("FormMain.ToolbarSaveView.DeleteView");
    EXPECT_EQ(Get("FormMain.ComboSaveView")["items"], json({"near"}));
    EXPECT_EQ(Record("nSavedViews"), 1);
    EXPECT_NEAR(Record("SavedView")[1]["BildFaktor"].get<double>(), kFaktor / 0.7, 1e-5);
}

TEST_F(SavedViewsByNames, TheViewThatTheListShowsCanBeChosenAgain) {
    SaveView("whole");
    EXPECT_EQ(Get("FormMain.ComboSaveView")["index"], 0);
    for (const json& entry : {json("whole"), json(0)}) {
        Click("FormMain.ToolbarGraphics.ZoomIn");
        EXPECT_NEAR(Number("BildFaktor"), kFaktor / 0.7, 1e-5);
        Set("FormMain.ComboSaveView", entry);
        EXPECT_NEAR(Number("BildFaktor"), kFaktor, 1e-5) << entry;
    }
}

TEST_F(SavedViewsByNames, ASavedViewBringsItsWindowsSizeBack) {
    Good({{"do", "resize"}, {"at", "Screen#1"}, {"width", 500}, {"height", 400}});
    SaveView("small");
    Good({{"do", "resize"}, {"at", "Screen#1"}, {"width", 900}, {"height", 700}});
    SaveView("large");
    Set("FormMain.ComboSaveView", "small");
    EXPECT_EQ(Get("Screen#1")["width"], 500);
    EXPECT_EQ(Get("Screen#1")["height"], 400);
}

TEST_F(SavedViewsByNames, ANameInUseAsksBeforeItsViewIsReplaced) {
    SaveView("one");
    Click("FormMain.ToolbarGraphics.ZoomIn");
    Answer("message", "No");
    Answer("form", {{{"do", "set"}, {"at", "FormSaveView.TextNewName"}, {"value", "one"}},
                    {{"do", "click"}, {"at", "FormSaveView.BtnOK"}},
                    {{"do", "click"}, {"at", "FormSaveView.BtnAbbrechen"}}});
    json reply = Click("FormMain.ToolbarSaveView.SaveView");
    const json asked = reply["dialogs"][0]["replies"][1]["dialogs"][0];
    EXPECT_EQ(asked["title"], "Name in use");
    EXPECT_NE(
        asked["text"].get<std::string>().find(" is already in use for a view, will you replace the old one?"),
        std::string::npos);
    EXPECT_NEAR(Record("SavedView")[1]["BildFaktor"].get<double>(), kFaktor, 1e-5);
    Answer("message", "Yes");
    SaveView("one");
    EXPECT_EQ(Record("nSavedViews"), 1);
    EXPECT_NEAR(Record("SavedView")[1]["BildFaktor"].get<double>(), kFaktor / 0.7, 1e-5);
}

TEST_F(SavedViewsByNames, TheFiftyFirstViewIsRefused) {
    for (int i = 1; i <= 50; ++i) SaveView("view " + std::to_string(i));
    EXPECT_EQ(Record("nSavedViews"), 50);
    const json before = Record("SavedView");
    const json reply = Click("FormMain.ToolbarSaveView.SaveView");
    ASSERT_EQ(reply["dialogs"].size(), 1u) << reply;
    EXPECT_EQ(reply["dialogs"][0]["text"], "max. 50 Views to save, you must delete a view to save a new one");
    EXPECT_EQ(Record("SavedView"), before);
}

TEST_F(SavedViewsByNames, WhileAViewIsNamedNothingElseIsInReach) {
    Answer("form", {{{"do", "click"}, {"at", "FormMain.ToolbarGraphics.ZoomIn"}},
                    {{"do", "mouse"}, {"at", "Screen#1"}, {"event", "down"}, {"x", 1}, {"y", 1}},
                    {{"do", "close"}, {"at", "Screen#1"}},
                    {{"do", "get"}, {"at", "Screen#1"}},
                    {{"do", "click"}, {"at", "FormSaveView.BtnAbbrechen"}},
                    {{"do", "get"}, {"at", "Screen#1"}}});
    const json reply = Click("FormMain.ToolbarSaveView.SaveView");
    const json replies = reply["dialogs"][0]["replies"];
    for (const std::size_t refused : {0, 1, 2})
        EXPECT_EQ(replies[refused]["error"], "FormSaveView waits for its answer");
    EXPECT_EQ(replies[3]["ok"], true);
    EXPECT_EQ(replies[4]["ok"], true);
    EXPECT_EQ(replies[5]["error"], "FormSaveView is not open");
    EXPECT_EQ(Record("nSavedViews"), 0);
}

TEST_F(SavedViewsByNames, ANameThatNobodyGivesCancels) {
    ExpectUnanswered();
    json reply = Click("FormMain.ToolbarSaveView.SaveView");
    EXPECT_EQ(reply["unanswered"], true);
    EXPECT_EQ(Get("FormSaveView")["loaded"], false);
    Answer("form", nullptr);
    reply = Click("FormMain.ToolbarSaveView.SaveView");
    EXPECT_FALSE(reply.contains("unanswered"));
    EXPECT_EQ(reply["dialogs"][0]["answer"], nullptr);
    Answer("form", json::array());
    EXPECT_EQ(Click("FormMain.ToolbarSaveView.SaveView")["unanswered"], true) << "it was left open";
    EXPECT_EQ(Record("nSavedViews"), 0);
}

// --- Analyse mode -----------------------------------------------------------------------------------------

TEST_F(SavedViewsByNames, TheAnalyseModeEndsWhenItsKeyIsPressedAgain) {
    During(5, PointClick("FormMain.ToolbarGraphics.AnalyseMode"));
    const json reply = Click("FormMain.MenüAnsichtAnalyseModeActive");
    ASSERT_EQ(reply["during"].size(), 1u) << reply;
    EXPECT_EQ(reply["during"][0]["ok"], true) << reply;
    EXPECT_FALSE(reply.contains("unanswered"));
}

TEST_F(SavedViewsByNames, AWindowMayCloseInsideItsAnalyseMode) {
    During(3, {{"do", "close"}, {"at", "Screen#1"}});
    const json reply = Click("FormMain.MenüAnsichtAnalyseModeActive");
    EXPECT_EQ(reply["during"][0]["ok"], true) << reply;
    EXPECT_EQ(Get("Windows")["windows"], json({"FormMain"}));
}

TEST_F(SavedViewsByNames, TheVectorsOfTheAnalyseModeGrowAndShrink) {
    During(2, PointClick("FormMain.MenüAnsichtAnalyseModeMore"));
    During(4, {{"do", "get"}, {"at", "Screen#1.Vec_Maßstab"}});
    During(5, {{"do", "key"}, {"at", "Screen#1"}, {"key", "Pause"}});
    During(9, {{"do", "key"}, {"at", "Screen#1"}, {"key", "Pause"}});
    During(11, PointClick("FormMain.MenüAnsichtAnalyseModeActive"));
    const json reply = Click("FormMain.MenüAnsichtAnalyseModeActive");
    ASSERT_EQ(reply["during"].size(), 5u) << reply;
    EXPECT_EQ(reply["during"][1]["value"], 600);
}

TEST_F(SavedViewsByNames, AnAnalyseModeThatNobodyEndsIsEnded) {
    ExpectUnanswered();
    const json reply = Click("FormMain.MenüAnsichtAnalyseModeActive");
    EXPECT_EQ(reply["unanswered"], true);
    EXPECT_EQ(Get("Screen#1")["ok"], true);
}

TEST_F(SavedViewsByNames, AJobThatIsOpenedInsideTheAnalyseModeEndsIt) {
    Answer("save", PathOf("plate.cvn"));
    Click("FormMain.MenuFileSaveAs");
    Answer("open", PathOf("plate.cvn"));
    During(3, PointClick("FormMain.MenuFileOpen"));
    Click("FormMain.MenüAnsichtAnalyseModeActive");
    EXPECT_EQ(Get("Windows")["windows"][0], "FormMain");
    EXPECT_EQ(Record("nIdent"), 4);
}

}  // namespace
