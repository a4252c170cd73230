// The program's start: its settings file, and a run without data.
#include <cstdlib>
#include <filesystem>
#include <optional>

#include "cli/headless.h"
#include "core/controller.h"
#include "core/files.h"
#include "core/form_main.h"
#include "core/form_units.h"
#include "core/job.h"
#include "core/settings.h"
#include "core/text.h"
#include "core/units.h"
#include "support/fixture.h"

using namespace corvinade;

namespace fs = std::filesystem;

class ControllerStart : public Program {
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

}  // namespace

// --- Start: the settings file -----------------------------------------------------------------------------

TEST_F(ControllerStart, TheFirstStartCreatesFolderAndSettingsFile) {
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

TEST_F(ControllerStart, AMissingFileInAStandingFolderIsCreated) {
    fs::create_directories(folder_ + "/settings/Corvinade");
    TraceFiles();
    StartUp("");
    EXPECT_EQ(Contents(UserFile()), DefaultSettingsText());
    EXPECT_EQ(Trace.front(), "create");
}

TEST_F(ControllerStart, AnExistingSettingsFileIsNotTouched) {
    const std::string text = "[Global]\nMaxIteration=7\n  \n";
    Write("settings/Corvinade/Corvinade.ini", text);
    TraceFiles();
    StartUp("");
    EXPECT_EQ(Contents(UserFile()), text);
    EXPECT_EQ(Trace, (std::vector<std::string>{"open", "read"}));
    EXPECT_EQ(Settings.MaxIteration, 7);
    EXPECT_EQ(Settings.RawScale, 0);  // a key that is absent leaves its global empty
}

TEST_F(ControllerStart, CharactersNineToThirteenOfTheSystemsNameDecide) {
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

TEST_F(ControllerStart, AnOldSystemKeepsTheFileBesideTheProgram) {
    Headless.SystemName = "Windows XP";
    const std::string text = CrLf("MaxIteration=8\n");
    Write("program/Corvinade.ini", text);
    StartUp("");
    EXPECT_EQ(Settings.MaxIteration, 8);
    EXPECT_EQ(Contents(ProgramFile()), text);
}

TEST_F(ControllerStart, WithoutAppdataTheUsersOwnFolderServes) {
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

TEST_F(ControllerStart, AFolderThatCannotBeWrittenIsToldOnceAndTheDefaultsHold) {
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

TEST_F(ControllerStart, AFolderInPlaceOfTheSettingsFileIsToldOnce) {
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

TEST_F(ControllerStart, AFileInPlaceOfTheSettingsFolderIsToldOnce) {
    Write("settings/Corvinade", "mine");
    StartUp("");
    EXPECT_EQ(Messages().size(), 1U);
    EXPECT_EQ(Settings.MaxIteration, 100);
    EXPECT_EQ(Contents(folder_ + "/settings/Corvinade"), "mine");
}

TEST_F(ControllerStart, ASettingsFileThatCannotBeReadIsToldOnceAndTheDefaultsHold) {
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

TEST_F(ControllerStart, AWrongTextInTheSettingsFileIsToldAndTheProgramStarts) {
    Write("settings/Corvinade/Corvinade.ini", CrLf("MaxIteration=7\nsigmaX=much\nRawScale=1\n"));
    StartUp("");
    EXPECT_EQ(Messages(), std::vector<std::string>{"\"" + UserFile() +
                                                   "\", line 2: \"much\" is no value for \"sigmaX\""});
    EXPECT_EQ(Settings.MaxIteration, 7);  // what stands before the fault is kept
    EXPECT_EQ(Settings.RawScale, 2);      // what stands behind it has its default
    EXPECT_EQ(Job.AngleUnitName, "degree");
    EXPECT_TRUE(IsLoaded("FormMain"));
}

// --- Start: no data ---------------------------------------------------------------------------------------

TEST_F(ControllerStart, TheStartEndsWithoutData) {
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

TEST_F(ControllerStart, InitialisierenSetsTheRunToNoData) {
    Run.JobFilePath = "/a/b.cvn";
    Run.ColorBarOpen = Run.TrafoValid = Run.JobDataValid = kTrue;
    Run.PointCloud = true;
    Job.DirectionMCStoOCS = kFalse;
    for (PointSet* points : {&Job.Start, &Job.Target}) points->Resize(5);
    Job.SetPairs(3);
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
    for (const std::int32_t count :
         {Job.Start.Count(), Job.Target.Count(), Job.Pairs(), Job.StartOnly(), Job.TargetOnly()})
        EXPECT_EQ(count, 0);
    EXPECT_EQ(Job.LengthUnitName, "inch");
    EXPECT_EQ(Job.LengthDigits, 6);
    EXPECT_EQ(Job.AngleUnitName, "degree");
    EXPECT_EQ(Job.AngleDigits, 4);
    EXPECT_DOUBLE_EQ(Units.LengthFactor, 1 / 25.4);
    EXPECT_FALSE(Main.MenuTransformation.Enabled);
    EXPECT_NE(Run.JobGeneration, generation);
}

TEST_F(ControllerStart, TheUnitsOfTheSettingsFileHoldFromTheStart) {
    Write("settings/Corvinade/Corvinade.ini",
          CrLf("UnitLength=meter\nDigitLength=5\nUnitAngle=mrad\nDigitAngle=0\n"));
    StartUp("");
    EXPECT_EQ(Units.LengthFactor, 0.001);
    EXPECT_EQ(Units.AngleFactor, 1000);
    EXPECT_EQ(Units.FmtLength, "0.00000");
    EXPECT_EQ(Units.FmtAngle, "0");
}

TEST_F(ControllerStart, TheCommandLineLosesItsFirstAndLastCharacter) {
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

TEST_F(ControllerStart, AShortCommandLineDoesNotStopTheStart) {
    for (const char* commandLine : {"\"", "\"\"", "ä"}) {
        StartUp(commandLine);
        EXPECT_EQ(Run.JobDataValid, kFalse);
        EXPECT_TRUE(IsLoaded("FormMain"));
    }
}
