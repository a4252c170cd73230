// Flags by names: from the click that sets one to the job file that brings them back.
#include <string>

#include "cli/headless.h"
#include "cli/screen_automation.h"

using namespace corvinade;

namespace {

// All coordinates of the plate take part in the fit.
class FlagsByNames : public ScreenByNames {
protected:
    void StartInUse() {
        StartWithScreen();
        json use(13, 1);
        use[0] = 0;
        SetRecord("UseFlags", use);
    }
};

void Reach(const json& reply) {
    EXPECT_EQ(reply["ok"], true) << reply.dump();
}

TEST_F(FlagsByNames, AFlagIsAGridOfItsWindow) {
    StartInUse();
    Click("FormMain.MenüGlobalFlagsMode");
    EXPECT_EQ(Get("FormMain.MenüGlobalFlagsMode")["checked"], true);
    Mouse("click", PixelOf(2).X, PixelOf(2).Y);  // B, off by 0.4 in y
    const json flag = Get("Screen#1.Fahne#1");
    EXPECT_EQ(flag["kind"], "grid");
    EXPECT_EQ(flag["rows"], 5);
    EXPECT_EQ(flag["cols"], 9);
    EXPECT_EQ(flag["cells"][0], json({"B", "x", "y", "z", "R", "Phi", "Rho", "Theta", "3D Dev."}));
    EXPECT_EQ(flag["cells"][1][0], "Actual");
    EXPECT_EQ(Val(flag["cells"][3][2].get<std::string>()), 0.4);
    EXPECT_EQ(Val(flag["cells"][3][8].get<std::string>()), 0.4);
    EXPECT_EQ(flag["cells"][4], json({"use", "X", "X", "X", "", "", "", "", ""}));
    EXPECT_EQ(flag["visible"], true);
    EXPECT_EQ(flag["left"], Field("Flags")[1]["Left"]);
    double twips = 0;
    for (const json& width : flag["colWidths"]) twips += width.get<double>();
    EXPECT_NEAR(flag["width"].get<double>(), twips / 14.9, 1e-3);
    EXPECT_EQ(Field("FlagCount"), 1);
    EXPECT_EQ(Field("ActiveFlag"), 1);
    EXPECT_EQ(Field("FlagIndex")[2], 1);
    EXPECT_NE(ErrorOf({{"do", "get"}, {"at", "Screen#1.Fahne#2"}}).find("there is no flag"),
              std::string::npos);
}

TEST_F(FlagsByNames, CellsOfAFlagTakeClicks) {
    StartInUse();
    Click("FormMain.MenüGlobalFlagsMode");
    Mouse("click", PixelOf(1).X, PixelOf(1).Y);
    Reach(Good({{"do", "dblclick"}, {"at", "Screen#1.Fahne#1"}, {"row", 4}, {"col", 3}}));
    EXPECT_EQ(Record("UseFlags")[3], 0);
    EXPECT_EQ(Get("Screen#1.Fahne#1")["cells"][4][3], "");
    Reach(Good({{"do", "click"}, {"at", "Screen#1.Fahne#1"}, {"row", 0}, {"col", 0}, {"button", "right"}}));
    EXPECT_EQ(Get("FormMain.MenuFahne")["value"], 1);
    Click("FormMain.MenuFahneCopy");
    const std::string text = Good({{"do", "clipboard"}})["value"];
    EXPECT_EQ(text.substr(0, text.find("\r\n")), "A\tx\ty\tz\tR\tPhi\tRho\tTheta\t3D Dev.");
    EXPECT_NE(ErrorOf({{"do", "click"}, {"at", "Screen#1.Fahne#1"}, {"row", 5}, {"col", 0}}), "");
}

TEST_F(FlagsByNames, TheEditorIsDrivenByNames) {
    StartWithScreen();
    Click("FormMain.MenuFahneEdit");
    Set("FormEditFahne.OptionSpeziale", 1);
    Set("FormEditFahne.CheckPutAll", 1);
    Answer("font", {{"name", "Arial"}, {"size", 7}, {"bold", false}, {"italic", false}});
    Click("FormEditFahne.CmdFonts");
    Set("FormEditFahne.TextGridLength", "5");
    EXPECT_EQ(Get("FormEditFahne.TextGridLength")["text"], "10");
    Set("FormEditFahne.CheckShowOnlyPointNumber", 1);
    EXPECT_NE(ErrorOf({{"do", "set"}, {"at", "FormEditFahne.CheckX"}, {"value", 1}}).find("disabled"),
              std::string::npos);
    Click("FormEditFahne.BtnOK");
    EXPECT_EQ(Field("FlagCount"), 4);
    EXPECT_EQ(Field("Flags")[4]["Size"], 7);
    EXPECT_EQ(Field("GridLength"), 10);
    EXPECT_EQ(Get("Screen#1.Fahne#4")["text"], "D");
}

TEST_F(FlagsByNames, TheJobFileBringsSavedFlagsBack) {
    StartWithScreen();
    Click("FormMain.MenüGlobalFlagsMode");
    Mouse("click", PixelOf(2).X, PixelOf(2).Y);
    Mouse("click", PixelOf(3).X, PixelOf(3).Y);
    Answer("form", json::array({{{"do", "set"}, {"at", "FormSaveView.TextNewName"}, {"value", "flags"}},
                                {{"do", "click"}, {"at", "FormSaveView.BtnOK"}}}));
    Click("FormMain.MenüViewSaveView");
    const json before = Get("Screen#1.Fahne#2");
    Answer("save", PathOf("flags.cvn"));
    Click("FormMain.MenuFileSaveAs");
    StartWithScreen();
    Answer("message", "No");
    Answer("open", PathOf("flags.cvn"));
    Click("FormMain.MenuFileOpen");
    Click("FormMain.MenueGraphics");
    EXPECT_EQ(Field("FlagCount"), 0);
    Set("FormMain.ComboSaveView", "flags");
    EXPECT_EQ(Field("FlagCount"), 2);
    EXPECT_EQ(Get("Screen#1.Fahne#2"), before);
}

TEST_F(FlagsByNames, TheSettingsKeepTheLookOfNewFlags) {
    StartWithScreen();
    Click("FormMain.MenuFahneEdit");
    Set("FormEditFahne.CheckRho", 0);
    Click("FormEditFahne.BtnOK");
    Answer("message", "No");
    Answer("message", "No");
    Close("FormMain");
    const std::string settings = Contents(folder_ + "/settings/Corvinade/Corvinade.ini");
    EXPECT_NE(settings.find("[FahnenProp]"), std::string::npos);
    EXPECT_NE(settings.find("showRho=False"), std::string::npos);
    EXPECT_NE(settings.find("showTheta=True"), std::string::npos);
    Headless.Answers.clear();
    StartWithScreen();
    Click("FormMain.MenuFahneEdit");
    EXPECT_EQ(Get("FormEditFahne.CheckRho")["value"], 0);
}

TEST_F(FlagsByNames, TheDynamicFlagFollowsTheMouse) {
    StartWithScreen();
    Click("FormMain.MenüAnsichtDynamicFlag");
    EXPECT_EQ(Get("FormMain.MenüAnsichtDynamicFlag")["checked"], true);
    Mouse("move", PixelOf(4).X + 2, PixelOf(4).Y);
    EXPECT_EQ(Get("Screen#1.DynamicFlag")["cells"][0][0], "D");
    EXPECT_EQ(Get("Screen#1.DynamicFlag")["visible"], true);
    EXPECT_EQ(Field("FlagCount"), 0);
}

}  // namespace
