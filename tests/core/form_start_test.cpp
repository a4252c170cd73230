// The start page by its controls: when it is there, and where it leads.
#include "core/form_start.h"

#include "cli/headless.h"
#include "core/controller.h"
#include "core/desktop_defaults.h"
#include "core/form_main.h"
#include "core/job.h"
#include "core/run.h"
#include "core/settings.h"
#include "support/fixture.h"

using namespace corvinade;

namespace {

class StartOfPeople : public Program {
protected:
    // As the program of a built tree stands to the sources.
    StartOfPeople() { Headless.ProgramDir = std::string(CORVINADE_SOURCE_DIR) + "/build/bin"; }
    static void Start(const std::string& job = "") {
        WantDesktopDefaults();
        StartUp(job);
    }
    static bool IsShown() { return IsLoaded("FormStart"); }
};

}  // namespace

TEST_F(StartOfPeople, StandsInTheEmptyFrame) {
    Start();
    ASSERT_TRUE(IsShown());
    EXPECT_TRUE(StartPage.LabelRecent.Visible);
    EXPECT_FALSE(StartPage.BtnRecent1.Visible);
    EXPECT_EQ(StartPage.CheckAtStart.Value, 1);
    EXPECT_TRUE(StartPage.BtnStepPoints.Enabled);
    for (const Control* step : {&StartPage.BtnStepFit, &StartPage.BtnStepCheck, &StartPage.BtnStepHandOn}) {
        EXPECT_FALSE(step->Enabled);
        EXPECT_NE(step->ToolTip.find("first"), std::string::npos) << step->ToolTip;
    }
}

TEST_F(StartOfPeople, ScriptsFindTheEmptyFrame) {
    StartUp("");
    EXPECT_FALSE(IsShown());
    EXPECT_TRUE(UserClick(Main.MenuViewStart));
    EXPECT_TRUE(IsShown());
}

TEST_F(StartOfPeople, ClosesByItselfWhenAnExampleIsOpened) {
    Start();
    ASSERT_NE(ExamplesFolder(), "");
    UserClick(StartPage.BtnExample1);
    EXPECT_FALSE(IsShown());
    EXPECT_EQ(Job.Pairs(), 14);
    EXPECT_TRUE(UserClick(Main.MenuViewStart));
    EXPECT_TRUE(StartPage.BtnStepFit.Enabled);
    EXPECT_TRUE(StartPage.BtnStepCheck.Enabled);
    EXPECT_TRUE(StartPage.BtnStepHandOn.Enabled) << "the result that is stored is shown";
    UserClick(*FindControl(*FindWindow("FormTrafoBerechnung"), "BtnSwitchMcsOcs"));
    EXPECT_FALSE(StartPage.BtnStepHandOn.Enabled) << "it is not that of the other direction";
    UserClick(StartPage.BtnStepFit);
    ASSERT_TRUE(IsLoaded("FormTrafoBerechnung"));
    UserClick(*FindControl(*FindWindow("FormTrafoBerechnung"), "BtnCalculate"));
    EXPECT_TRUE(StartPage.BtnStepHandOn.Enabled) << "the page follows what is done";
    EXPECT_EQ(StartPage.BtnRecent1.Text, "robot_cell.cvn");
    EXPECT_EQ(StartPage.BtnRecent1.ToolTip, ::Run.JobFilePath);
    UserClick(StartPage.BtnStepCheck);
    EXPECT_TRUE(IsLoaded("FormMainSheet"));
    EXPECT_TRUE(IsLoaded("FormReliability"));
    UserClick(StartPage.BtnStepHandOn);
    EXPECT_TRUE(IsLoaded("FormReport"));
    UserClick(StartPage.BtnStepPoints);
    EXPECT_TRUE(IsLoaded("FormInputFiles"));
}

TEST_F(StartOfPeople, ListsTheJobsThatWereOpenedAndOpensThem) {
    Start();
    UserClick(StartPage.BtnExample2);
    UserClick(Main.MenuViewStart);
    UserClick(StartPage.BtnExample1);
    UserClick(Main.MenuViewStart);
    EXPECT_EQ(StartPage.BtnRecent1.Text, "robot_cell.cvn");
    EXPECT_EQ(StartPage.BtnRecent2.Text, "roof.cvn");
    EXPECT_FALSE(StartPage.BtnRecent3.Visible);
    EXPECT_FALSE(StartPage.LabelRecent.Visible);
    ::Run.JobDirty = kFalse;
    UserClick(StartPage.BtnRecent2);
    EXPECT_FALSE(IsShown());
    EXPECT_EQ(Job.Pairs(), 273);
}

TEST_F(StartOfPeople, CanBeSwitchedOffAndOnAgain) {
    Start();
    UserSetValue(StartPage.CheckAtStart, 0);
    EXPECT_EQ(FindIniWert("StartPage").value_or(""), kAsBefore);
    UnloadWindow("FormStart");
    TakeDesktopDefaults();
    ShowStartPage();
    EXPECT_FALSE(IsShown());
    UserClick(Main.MenuViewStart);
    EXPECT_EQ(StartPage.CheckAtStart.Value, 0);
    UserSetValue(StartPage.CheckAtStart, 1);
    UnloadWindow("FormStart");
    TakeDesktopDefaults();
    ShowStartPage();
    EXPECT_TRUE(IsShown());
}

TEST_F(StartOfPeople, EscapeAndCloseTakeItAway) {
    Start();
    UserEscape(FormStart_Entry);
    EXPECT_FALSE(IsShown());
    UserClick(Main.MenuViewStart);
    UserClick(StartPage.BtnClose);
    EXPECT_FALSE(IsShown());
}
