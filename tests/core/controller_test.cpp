// Start, commands and end of the program.
#include "core/controller.h"

#include <cstdlib>
#include <filesystem>
#include <optional>

#include "cli/headless.h"
#include "core/files.h"
#include "core/form_main.h"
#include "core/form_units.h"
#include "core/job.h"
#include "core/settings.h"
#include "core/text.h"
#include "core/units.h"
#include "support/fixture.h"

namespace fs = std::filesystem;

class Controller : public Program {
protected:
    std::string UserFile() const { return folder_ + "/settings/Corvinade/Corvinade.ini"; }
    std::string ProgramFile() const { return folder_ + "/program/Corvinade.ini"; }

    // Operations on files in their order.
    std::vector<std::string> Trace;
    void TraceFiles() {
        FileFaults.Refuse = [this](const std::string& operation, const std::string&) {
            Trace.push_back(operation);
            return std::string();
        };
    }
};

namespace {

// Sets a variable of the environment for one test.
class Variable {
public:
    Variable(const char* name, const char* value) : name_(name) {
        if (const char* old = std::getenv(name)) old_ = old;
        value == nullptr ? unsetenv(name) : setenv(name, value, 1);
    }
    ~Variable() { old_ ? setenv(name_, old_->c_str(), 1) : unsetenv(name_); }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

private:
    const char* name_;
    std::optional<std::string> old_;
};

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
        for (auto* names : {&Job.MCS_Name, &Job.OCS_Name, &Job.TMCS_Name})
            names->push_back(std::to_string(i));
        for (auto* places : {&Job.MCS_X, &Job.OCS_X, &Job.TMCS_X, &Job.RVecX}) places->emplace_back(i * i);
        for (auto* places : {&Job.MCS_Y, &Job.OCS_Y, &Job.TMCS_Y, &Job.RVecY}) places->emplace_back(10 * i);
        for (auto* places : {&Job.MCS_Z, &Job.OCS_Z, &Job.TMCS_Z, &Job.RVecZ}) places->push_back(3 - i);
        for (int axis = 0; axis < 3; ++axis) Job.UseFlags.push_back(1);
    }
    Job.nMCS = Job.nOCS = Job.nIdent = pairs;
    EXPECT_TRUE(JobCountsFit(Job));
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

// --- Start: the settings file --------------------------------------------------------------------------

TEST_F(Controller, TheFirstStartCreatesFolderAndSettingsFile) {
    TraceFiles();
    StartUp("");
    EXPECT_EQ(Run.SettingsFilePath, UserFile());
    EXPECT_EQ(Contents(UserFile()), DefaultSettingsText());
    EXPECT_EQ(Trace,
              (std::vector<std::string>{"folder", "create", "write", "flush", "rename", "open", "read"}));
    EXPECT_EQ(Settings.MaxIteration, 100);
    EXPECT_EQ(SettingsFolder(), folder_ + "/settings/Corvinade");
    EXPECT_TRUE(Messages().empty());
}

TEST_F(Controller, AMissingFileInAStandingFolderIsCreated) {
    fs::create_directories(folder_ + "/settings/Corvinade");
    TraceFiles();
    StartUp("");
    EXPECT_EQ(Contents(UserFile()), DefaultSettingsText());
    EXPECT_EQ(Trace.front(), "create");
}

TEST_F(Controller, AnExistingSettingsFileIsNotTouched) {
    const std::string text = "[Global]\nMaxIteration=7\n  \n";
    Write("settings/Corvinade/Corvinade.ini", text);
    TraceFiles();
    StartUp("");
    EXPECT_EQ(Contents(UserFile()), text);
    EXPECT_EQ(Trace, (std::vector<std::string>{"open", "read"}));
    EXPECT_EQ(Settings.MaxIteration, 7);
    EXPECT_EQ(Settings.RawScale, 0);  // a key that is absent leaves its global empty
}

TEST_F(Controller, CharactersNineToThirteenOfTheSystemsNameDecide) {
    fs::create_directories(folder_ + "/program");
    for (const char* name : {"Windows 98", "", "Vista", "Windows vista", "Windows Vist", "Windows  Vista"}) {
        Headless.SystemName = name;
        fs::remove(ProgramFile());
        StartUp("");
        EXPECT_EQ(Run.SettingsFilePath, ProgramFile()) << name;
        EXPECT_EQ(Contents(ProgramFile()), DefaultSettingsText()) << name;
    }
    EXPECT_FALSE(fs::exists(UserFile()));
    for (const char* name : {"Windows Vista", "Windows Vista or LATER", "xxxxxxxxVistaxx"}) {
        Headless.SystemName = name;
        StartUp("");
        EXPECT_EQ(Run.SettingsFilePath, UserFile()) << name;
    }
}

TEST_F(Controller, AnOldSystemKeepsTheFileBesideTheProgram) {
    Headless.SystemName = "Windows XP";
    const std::string text = CrLf("MaxIteration=8\n");
    Write("program/Corvinade.ini", text);
    StartUp("");
    EXPECT_EQ(Settings.MaxIteration, 8);
    EXPECT_EQ(Contents(ProgramFile()), text);
}

TEST_F(Controller, WithoutAppdataTheUsersOwnFolderServes) {
    for (const char* appdata : {static_cast<const char*>(nullptr), ""}) {
        Headless.SettingsDir.reset();
        const Variable noAppdata("appdata", appdata);
        {
            const Variable config("XDG_CONFIG_HOME", PathOf("config").c_str());
            StartUp("");
            EXPECT_EQ(Run.SettingsFilePath, PathOf("config/Corvinade/Corvinade.ini"));
            EXPECT_TRUE(File_Exist(Run.SettingsFilePath));
        }
        const Variable noConfig("XDG_CONFIG_HOME", nullptr);
        const Variable home("HOME", PathOf("home").c_str());
        StartUp("");
        EXPECT_EQ(Run.SettingsFilePath, PathOf("home/.config/Corvinade/Corvinade.ini"));
        EXPECT_TRUE(File_Exist(Run.SettingsFilePath));
        Headless.SettingsDir = "";
        StartUp("");
        EXPECT_EQ(Run.SettingsFilePath, PathOf("home/.config/Corvinade/Corvinade.ini"));
    }
}

TEST_F(Controller, AFolderThatCannotBeWrittenIsToldOnceAndTheDefaultsHold) {
    for (const char* operation : {"folder", "create", "write", "flush", "rename"}) {
        Settings = SettingsRecord{};
        Headless.Dialogs.clear();
        FileFaults.Refuse = [operation](const std::string& asked, const std::string&) {
            return asked == operation ? std::string("no room") : std::string();
        };
        StartUp("");
        ASSERT_EQ(Messages().size(), 1U) << operation;
        EXPECT_NE(LastMessage().find("no room"), std::string::npos);
        EXPECT_EQ(Settings.MaxIteration, 100);
        EXPECT_EQ(Settings.ClipboardValue, 2);
        EXPECT_EQ(Job.LengthUnitName, "millimeter");
        EXPECT_FALSE(File_Exist(UserFile()));
        // Windows open and close all the same, and the refusal is known by now.
        EXPECT_TRUE(UserClick(Main.MenuSettingsUnits));
        EXPECT_TRUE(UserClick(UnitsWindow.BtnOK));
        EXPECT_EQ(Messages().size(), 1U) << operation;
        Run.JobDirty = kFalse;
        CloseProgram();
        fs::remove_all(folder_ + "/settings");
    }
}

TEST_F(Controller, AFolderInPlaceOfTheSettingsFileIsToldOnce) {
    fs::create_directories(UserFile());
    StartUp("");
    EXPECT_EQ(Messages().size(), 1U);
    EXPECT_EQ(Settings.MaxIteration, 100);
    UserClick(Main.MenuSettingsUnits);
    UserClick(UnitsWindow.BtnOK);
    Run.JobDirty = kFalse;
    CloseProgram();
    EXPECT_EQ(Messages().size(), 1U);
    EXPECT_TRUE(fs::is_empty(UserFile()));
}

TEST_F(Controller, AFileInPlaceOfTheSettingsFolderIsToldOnce) {
    Write("settings/Corvinade", "mine");
    StartUp("");
    EXPECT_EQ(Messages().size(), 1U);
    EXPECT_EQ(Settings.MaxIteration, 100);
    EXPECT_EQ(Contents(folder_ + "/settings/Corvinade"), "mine");
}

TEST_F(Controller, ASettingsFileThatCannotBeReadIsToldOnceAndTheDefaultsHold) {
    const std::string text = CrLf("[Global]\nMaxIteration=7\n");
    Write("settings/Corvinade/Corvinade.ini", text);
    for (const char* operation : {"open", "read"}) {
        Settings = SettingsRecord{};
        Headless.Dialogs.clear();
        FileFaults.Refuse = [operation](const std::string& asked, const std::string&) {
            return asked == operation ? std::string("no") : std::string();
        };
        StartUp("");
        EXPECT_EQ(Messages(), std::vector<std::string>{"Cannot read \"" + UserFile() + "\": no"});
        EXPECT_EQ(Settings.MaxIteration, 100);
        EXPECT_EQ(Contents(UserFile()), text);
    }
}

TEST_F(Controller, AWrongTextInTheSettingsFileIsToldAndTheProgramStarts) {
    Write("settings/Corvinade/Corvinade.ini", CrLf("MaxIteration=7\nsigmaX=much\nRawScale=1\n"));
    StartUp("");
    EXPECT_EQ(Messages(), std::vector<std::string>{"\"" + UserFile() +
                                                   "\", line 2: \"much\" is no value for \"sigmaX\""});
    EXPECT_EQ(Settings.MaxIteration, 7);  // what stands before the fault is kept
    EXPECT_EQ(Settings.RawScale, 2);      // what stands behind it has its default
    EXPECT_EQ(Job.AngleUnitName, "degree");
    EXPECT_TRUE(IsLoaded("FormMain"));
}

// --- Start: no data ------------------------------------------------------------------------------------

TEST_F(Controller, TheStartEndsWithoutData) {
    StartUp("");
    EXPECT_EQ(Run.JobFilePath, "..\\default.cvn");
    EXPECT_EQ(Main.Window.Caption, "Corvinade Version 2.0.64 | ..\\default.cvn");
    EXPECT_TRUE(Main.Window.Loaded);
    EXPECT_EQ(Job.LengthUnitName, "millimeter");
    EXPECT_EQ(Job.LengthDigits, 3);
    EXPECT_EQ(Job.AngleUnitName, "degree");
    EXPECT_EQ(Job.AngleDigits, 4);
    EXPECT_EQ(Units.FmtLength, "0.000");
    EXPECT_EQ(Units.FmtAngle, "0.0000");
    EXPECT_EQ(Main.StatusBar_1.Text, "millimeter");
    EXPECT_EQ(Main.StatusBar_2.Text, "degree");
    EXPECT_EQ(Job.DirectionMCStoOCS, kTrue);
    EXPECT_EQ(Run.JobDataValid, kFalse);
    EXPECT_EQ(Run.TrafoValid, kFalse);
    EXPECT_EQ(Run.JobDirty, kFalse);
}

TEST_F(Controller, InitialisierenSetsTheRunToNoData) {
    Run.JobFilePath = "/a/b.cvn";
    Run.ColorBarOpen = Run.TrafoValid = Run.JobDataValid = kTrue;
    Run.PointCloud = true;
    Job.DirectionMCStoOCS = kFalse;
    Job.nMCS = Job.nOCS = Job.nIdent = Job.nMCSOnly = Job.nOCSOnly = 5;
    Job.LengthUnitName = "inch";
    Job.LengthDigits = 6;
    Job.AngleUnitName = "";
    Job.AngleDigits = 1;
    const auto generation = Run.JobGeneration;
    Initialisieren();
    EXPECT_EQ(Run.JobFilePath, "/a/b.cvn");
    EXPECT_EQ(Main.Window.Caption, "Corvinade Version 2.0.64 | /a/b.cvn");
    EXPECT_EQ(Run.ColorBarOpen, kFalse);
    EXPECT_EQ(Run.TrafoValid, kFalse);
    EXPECT_EQ(Run.JobDataValid, kFalse);
    EXPECT_FALSE(Run.PointCloud);
    EXPECT_EQ(Job.DirectionMCStoOCS, kTrue);
    for (const std::int32_t count : {Job.nMCS, Job.nOCS, Job.nIdent, Job.nMCSOnly, Job.nOCSOnly})
        EXPECT_EQ(count, 0);
    EXPECT_EQ(Job.LengthUnitName, "inch");
    EXPECT_EQ(Job.LengthDigits, 6);
    EXPECT_EQ(Job.AngleUnitName, "degree");
    EXPECT_EQ(Job.AngleDigits, 4);
    EXPECT_DOUBLE_EQ(Units.LengthFactor, 1 / 25.4);
    EXPECT_FALSE(Main.MenuTransformation.Enabled);
    EXPECT_NE(Run.JobGeneration, generation);
}

TEST_F(Controller, TheUnitsOfTheSettingsFileHoldFromTheStart) {
    Write("settings/Corvinade/Corvinade.ini",
          CrLf("UnitLength=meter\nDigitLength=5\nUnitAngle=mrad\nDigitAngle=0\n"));
    StartUp("");
    EXPECT_EQ(Units.LengthFactor, 0.001);
    EXPECT_EQ(Units.AngleFactor, 1000);
    EXPECT_EQ(Units.FmtLength, "0.00000");
    EXPECT_EQ(Units.FmtAngle, "0");
}

TEST_F(Controller, TheCommandLineLosesItsFirstAndLastCharacter) {
    const std::vector<std::pair<std::string, std::string>> cases = {{"\"/none/job.cvn\"", "/none/job.cvn"},
                                                                    {"/none/job.cvn", "none/job.cv"},
                                                                    {"ä/none/b.cvnß", "/none/b.cvn"}};
    for (const auto& [commandLine, path] : cases) {
        Run = RunRecord{};
        Headless.Dialogs.clear();
        StartUp(commandLine);
        EXPECT_EQ(Run.JobFilePath, path);
        EXPECT_EQ(Messages().size(), 1U) << "a job that is not there is told";
        EXPECT_EQ(Run.JobDataValid, kFalse);
    }
}

TEST_F(Controller, AShortCommandLineDoesNotStopTheStart) {
    for (const char* commandLine : {"\"", "\"\"", "ä"}) {
        StartUp(commandLine);
        EXPECT_EQ(Run.JobDataValid, kFalse);
        EXPECT_TRUE(IsLoaded("FormMain"));
    }
}

// --- The title -----------------------------------------------------------------------------------------

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

// --- The state of the commands -------------------------------------------------------------------------

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

// --- Commands ------------------------------------------------------------------------------------------

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

// --- The end -------------------------------------------------------------------------------------------

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
