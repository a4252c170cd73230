// Title, commands and end of the program.
#include "core/controller.h"

#include "cli/headless.h"
#include "core/form_main.h"
#include "core/form_units.h"
#include "core/job.h"
#include "core/settings.h"
#include "core/text.h"
#include "support/fixture.h"

using namespace corvinade;

class Controller : public Program {
protected:
    std::string UserFile() const { return folder_ + "/settings/Corvinade/Corvinade.ini"; }
};

namespace {

std::vector<std::string> EnabledOf(const std::vector<std::pair<std::string, Control*>>& controls) {
    std::vector<std::string> names;
    for (const auto& [name, control] : controls)
        if (control->Enabled) names.push_back(name);
    return names;
}

// A job of that many identical points and no others.
void FillPairs(int pairs) {
    Job = JobRecord{};
    for (int i = 1; i <= pairs; ++i) {
        for (PointSet* points : {&Job.Start, &Job.Target, &Job.Transformed})
            points->Add(std::to_string(i), i * i, 10 * i, 3 - i);
        Job.RVecX.emplace_back(i * i);
        Job.RVecY.emplace_back(10 * i);
        Job.RVecZ.push_back(3 - i);
        for (int axis = 0; axis < 3; ++axis) Job.UseFlags.push_back(1);
    }
    Job.SetPairs(pairs);
    EXPECT_TRUE(JobIsWhole(Job));
}

std::vector<Control*> ControlsNamed(const std::vector<const char*>& names) {
    std::vector<Control*> controls;
    for (const char* name : names) {
        Control* control = FindControl(FormMain_Entry, name);
        EXPECT_NE(control, nullptr) << name;
        if (control != nullptr) controls.push_back(control);
    }
    return controls;
}

std::vector<Control*> ButtonsOf(const std::string& bar) {
    std::vector<Control*> buttons;
    for (const ControlEntry& entry : FormMain_Entry.Controls)
        if (std::string(entry.Name).starts_with(bar + ".")) buttons.push_back(entry.Place);
    return buttons;
}

const std::vector<const char*> kGraphicsCommands = {
    "MenüAnsichtAnpassen",   "MenüAnsichtcenter",   "MenüGrafikBlackPlane",   "MenüGraphicsPrint",
    "MenüAnsichtTopview",    "MenüAnsichtSideView", "MenüAnsichtFrontView",   "MenüAnsichtIsometricView",
    "MenüAnsichtPunkte",     "MenüAnsichtVektoren", "MenüAnsichtAnalyse",     "MenüAnsichtToleranzen",
    "MenüGlobalRotateAbout", "MenüGlobalFlagsMode", "MenüAnsichtDynamicFlag", "MenüViewS",
    "MenüGraphicsLines"};

}  // namespace

// --- The title --------------------------------------------------------------------------------------------

TEST_F(Controller, TheTitleKeepsOneHundredAndSixtyCharactersAndTheEndOfThePath) {
    // "Corvinade Version " has 18 characters, "2.0.64 | " has 9.
    const std::string fits(160 - 18 - 9, 'x');
    EXPECT_EQ(TitleText(fits), "Corvinade Version 2.0.64 | " + fits);
    const std::string long1 = "a" + fits;
    const std::string title = TitleText(long1);
    EXPECT_EQ(title.size(), 160U);
    EXPECT_EQ(title, "Corvinade Version ..." + ("2.0.64 | " + long1).substr(9 + long1.size() - 139));
    const std::string path = "/" + std::string(300, 'y') + "/end.cvn";
    EXPECT_EQ(TitleText(path), "Corvinade Version ..." + path.substr(path.size() - 139));
}

TEST_F(Controller, TheTitleCountsCharactersAndNotBytes) {
    std::string path;
    for (int i = 0; i < 133; ++i) path += "ü";
    EXPECT_EQ(TitleText(path), "Corvinade Version 2.0.64 | " + path);
    for (int i = 0; i < 100; ++i) path += "€";
    const std::string title = TitleText(path);
    EXPECT_EQ(CharacterCount(title), 160);
    EXPECT_TRUE(IsValidUtf8(title));
    EXPECT_TRUE(title.starts_with("Corvinade Version ...ü"));
    EXPECT_TRUE(title.ends_with("€€"));
}

// --- The state of the commands ----------------------------------------------------------------------------

TEST_F(Controller, RecentFilesAndTitleFollowTheRun) {
    StartUp("");
    for (std::size_t i = 1; i <= 4; ++i) Run.LastFile[i] = "/job" + std::to_string(i);
    Run.JobFilePath = "/now.cvn";
    ProgrammLogik();
    EXPECT_EQ(Main.MenüDateiAlt1.Text, "&1 /job1");
    EXPECT_EQ(Main.MenüDateiAlt2.Text, "&2 /job2");
    EXPECT_EQ(Main.MenüDateiAlt3.Text, "&3 /job3");
    EXPECT_EQ(Main.MenüDateiAlt4.Text, "&4 /job4");
    EXPECT_EQ(Main.Window.Caption, "Corvinade Version 2.0.64 | /now.cvn");
}

TEST_F(Controller, DataAndResultEnableTheirCommands) {
    StartUp("");
    const std::vector<std::pair<std::string, Control*>> commands = {
        {"graphics", &Main.MenueGraphics},   {"global", &Main.MenüGlobalGraphics},
        {"trafo", &Main.MenuTransformation}, {"edit", &Main.MenuEdit},
        {"export", &Main.MenueFileExport},   {"bar", &Main.ToolbarGraphics}};
    using Names = std::vector<std::string>;
    EXPECT_EQ(EnabledOf(commands), Names{});
    Run.JobDataValid = kTrue;
    ProgrammLogik();
    EXPECT_EQ(EnabledOf(commands), (Names{"graphics", "global", "trafo", "edit", "bar"}));
    Run.TrafoValid = kTrue;
    Main.MenueFileExport.Text = "other";
    ProgrammLogik();
    EXPECT_EQ(EnabledOf(commands), (Names{"graphics", "global", "trafo", "edit", "export", "bar"}));
    EXPECT_EQ(Main.MenueFileExport.Text, "Export");
    Run.JobDataValid = 1;  // only -1 is true
    Run.TrafoValid = 1;
    ProgrammLogik();
    EXPECT_EQ(EnabledOf(commands), Names{});
}

TEST_F(Controller, TheJobButtonsMirrorTheirMenuEntries) {
    StartUp("");
    Control* const menus[] = {&Main.MenuFileNew, &Main.MenuFileOpen, &Main.MenuFileSave};
    Control* const buttons[] = {&Main.Toolbar2_FileNew, &Main.Toolbar2_FileOpen, &Main.Toolbar2_FileSave};
    for (int mask = 0; mask < 8; ++mask) {
        for (int i = 0; i < 3; ++i) menus[i]->Enabled = (mask >> i) % 2 == 1;
        ProgrammLogik();
        for (int i = 0; i < 3; ++i) EXPECT_EQ(buttons[i]->Enabled, menus[i]->Enabled);
    }
}

TEST_F(Controller, WithoutAGraphicsWindowItsCommandsAreDisabled) {
    StartUp("");
    Run.JobDataValid = kTrue;
    Main.MenueGraphicsWindow.Enabled = true;
    ProgrammLogik();
    EXPECT_FALSE(Main.MenueGraphicsWindow.Enabled);
    for (const Control* command : ControlsNamed(kGraphicsCommands)) EXPECT_FALSE(command->Enabled);
    for (const char* bar : {"ToolbarGraphics", "ToolbarSaveView", "ToolbarLines"}) {
        const std::vector<Control*> buttons = ButtonsOf(bar);
        ASSERT_GT(buttons.size(), 2U);
        for (std::size_t i = 0; i < buttons.size(); ++i)
            EXPECT_EQ(buttons[i]->Enabled, std::string(bar) == "ToolbarGraphics" && i == 0);
    }
    EXPECT_TRUE(Main.ToolbarGraphics.Enabled);
    EXPECT_FALSE(Main.ToolbarSaveView.Enabled);
    EXPECT_FALSE(Main.ToolbarLines.Enabled);
    for (const Control* shown : {&Main.ComboSaveView, &Main.MenüViewLastView, &Main.MenüViewNextView})
        EXPECT_FALSE(shown->Visible);
}

TEST_F(Controller, TheGraphicsWindowsEntryEnablesTheCommandsOfGraphics) {
    StartUp("");
    Run.GraphicsWindowSeen = true;
    for (const bool enabled : {true, false, true}) {
        Main.MenueGraphicsWindow.Enabled = enabled;
        ProgrammLogik();
        EXPECT_EQ(Main.MenueGraphicsWindow.Enabled, enabled);  // left as it is
        for (const Control* command : ControlsNamed(kGraphicsCommands)) EXPECT_EQ(command->Enabled, enabled);
        for (const char* bar : {"ToolbarGraphics", "ToolbarSaveView", "ToolbarLines"}) {
            const std::vector<Control*> buttons = ButtonsOf(bar);
            for (std::size_t i = std::string(bar) == "ToolbarGraphics" ? 1 : 0; i < buttons.size(); ++i)
                EXPECT_EQ(buttons[i]->Enabled, enabled);
        }
        EXPECT_EQ(Main.ToolbarSaveView.Enabled, enabled);
        EXPECT_EQ(Main.ToolbarLines.Enabled, enabled);
        for (const Control* shown : {&Main.ComboSaveView, &Main.MenüViewLastView, &Main.MenüViewNextView})
            EXPECT_EQ(shown->Visible, enabled);
    }
}

TEST_F(Controller, PanelsOfTheStatusBarAreNumbered) {
    StartUp("");
    for (int panel = 1; panel <= kStatusPanels; ++panel) SetStatus(panel, "text " + std::to_string(panel));
    EXPECT_EQ(Main.StatusBar_3.Text, "text 3");
    EXPECT_EQ(Main.StatusBar_9.Text, "text 9");
    SetStatus(0, "x");
    SetStatus(10, "x");
    EXPECT_EQ(Main.StatusBar_1.Text, "text 1");
}

// --- Commands ---------------------------------------------------------------------------------------------

TEST_F(Controller, WithFewerThanTwoPairsThereIsNoCalculation) {
    StartUp("");
    for (int pairs = 0; pairs < 2; ++pairs) {
        Headless.Dialogs.clear();
        FillPairs(pairs);
        EXPECT_TRUE(UserClick(Main.MenuTransformationCalculation));
        EXPECT_EQ(Messages(),
                  std::vector<std::string>{CrLf(
                      "There are less then two identically Points for a calculation!\nThat makes no sence.\n"
                      "Please load more identically Points to do Transformation Calculations.")});
        EXPECT_FALSE(Main.MenuTransformationCalculation.Checked);
        EXPECT_EQ(Main.Toolbar1_TrafoBerechnung.Value, 0);
    }
}

TEST_F(Controller, WithTwoPairsTheCalculationIsWarnedOfAndGoesOn) {
    StartUp("");
    for (int pairs = 2; pairs <= 3; ++pairs) {
        Headless.Dialogs.clear();
        FillPairs(pairs);
        const bool opened = UserClick(Main.MenuTransformationCalculation);
        std::vector<std::string> expected;
        if (pairs == 2)
            expected.push_back(
                CrLf("There are less than three identically Points for a calculation.\n"
                     "By rational settings of the Transformation Parameters logical "
                     "Calculations can be made.\nBe sure what you are doing!"));
        if (!opened) expected.push_back("There is no window \"FormTrafoBerechnung\" in this version");
        EXPECT_EQ(Messages(), expected);
        EXPECT_EQ(IsLoaded("FormTrafoBerechnung"), opened);
        EXPECT_EQ(Main.MenuTransformationCalculation.Checked, opened);
        ASSERT_EQ(ButtonsOf("Toolbar1").size(), 3U);
        EXPECT_EQ(ButtonsOf("Toolbar1")[2]->Value, opened ? 1 : 0);
        if (opened) UserClick(*ButtonsOf("Toolbar1")[2]);
        EXPECT_FALSE(IsLoaded("FormTrafoBerechnung"));
        EXPECT_FALSE(Main.MenuTransformationCalculation.Checked);
        EXPECT_EQ(ButtonsOf("Toolbar1")[2]->Value, 0);
    }
}

TEST_F(Controller, TheDistanceScaleNeedsPairs) {
    StartUp("");
    UserClick(Main.MenuTransformationDistanceScale);
    EXPECT_EQ(Messages(),
              std::vector<std::string>{"There are not enough identically Points for a calculation"});
}

TEST_F(Controller, CommandsOpenTheWindowTheyName) {
    StartUp("");
    const std::vector<std::pair<Control*, std::string>> commands = {
        {&Main.MenuFileInputFiles, "FormInputFiles"},
        {&Main.Toolbar1_InputFiles, "FormInputFiles"},
        {&Main.MenuSettingsUnits, "FormUnits"},
        {&Main.MenueExtrasOptions, "FormOptions"},
        {&Main.MenueTransformationBatch, "FormBatch"},
        {&Main.MenuVievMainSheet, "FormMainSheet"},
        {&Main.MenüViewInputStatistic, "FormInputStatistic"},
        {&Main.MenuHelpInfo, "FormMenuHelpInfo"}};
    for (const auto& [command, window] : commands) {
        UnloadWindow(window);
        UserClick(*command);
        if (FindWindow(window) == nullptr) {
            EXPECT_EQ(LastMessage(), "There is no window \"" + window + "\" in this version");
        } else {
            EXPECT_TRUE(IsLoaded(window)) << window;
        }
    }
}

TEST_F(Controller, TheManualIsHandedToTheDesktop) {
    StartUp("");
    UserClick(Main.MenueHelpQuestion);
    ASSERT_EQ(Headless.Shell.size(), 1U);
    EXPECT_EQ(Headless.Shell[0].Verb, "Open");
    EXPECT_EQ(Headless.Shell[0].Path, folder_ + "/program/manual Corvinade English 2.0.0.pdf");
}

// --- The end ----------------------------------------------------------------------------------------------

TEST_F(Controller, ClosingUnloadsEveryWindowWithItsPlace) {
    StartUp("");
    UserClick(Main.MenuSettingsUnits);
    UserClick(Main.MenuHelpInfo);
    UnitsWindow.Window.Place = {21, 22, 23, 24};
    Run.JobDirty = kFalse;
    UserClick(Main.MenuFileExit);
    for (const WindowEntry* window : AllWindows()) EXPECT_FALSE(window->State->Loaded) << window->Name;
    EXPECT_EQ(IniWertLesen("FormUnitsLeft"), "21");
    EXPECT_EQ(IniWertLesen("FormUnitsHeight"), "24");
    EXPECT_EQ(IniWertLesen("FormMenuHelpInfoHeight"), "5880");
    EXPECT_EQ(IniWertLesen("FormMainLeft"), "1000");  // the frame stores no place
}

TEST_F(Controller, WithoutAGraphicsWindowNoGraphicsDefaultsAreWritten) {
    StartUp("");
    CloseProgram();
    EXPECT_EQ(Contents(UserFile()), DefaultSettingsText());
    EXPECT_FALSE(IsLoaded("FormMain"));
}
