// New, Open, Save, Save As, the recent files and the question for a changed job, by the menu.
#include "core/job_commands.h"

#include <algorithm>

#include "cli/headless.h"
#include "core/controller.h"
#include "core/files.h"
#include "core/form_main.h"
#include "core/job.h"
#include "core/job_file.h"
#include "core/settings.h"
#include "core/text.h"
#include "support/fixture.h"

using namespace corvinade;

namespace {

const std::string kQuestion = CrLf("Changes have been made to the job.\n\nDo you want to save it?");
const std::string kNothingToSave = "There is still no data within Corvinade, so you cant save this job!";
const std::string kMissing = "File does not exist; maybe check the drive!?";

// A program with one pair of points in the unnamed job and a settings file.
class JobCommands : public Program {
protected:
    JobCommands() {
        Headless.SettingsDir = folder_;
        StartUp("");
        Fill("A");
    }
    static void Fill(const std::string& name) {
        Job.Start = Job.Target = Job.Transformed = PointSet({{"", name}, {{}, 1.0}, {{}, 1.0}, {0, 1}});
        Job.RVecX = Job.RVecY = {{}, {}};
        Job.RVecZ = {0, 0};
        Job.UseFlags = {0, 1, 1, 1};
        Job.SetPairs(1);
        ::Run.JobDataValid = kTrue;
        ProgrammLogik();
    }
    static void Answer(const std::string& kind, const std::optional<std::string>& value) {
        Headless.Answers[kind].push_back(value);
    }
    std::string Saved(const std::string& name) {
        ::Run.JobFilePath = PathOf(name);
        UserClick(Main.MenuFileSave);
        return PathOf(name);
    }
    static std::vector<std::string> Kinds() {
        std::vector<std::string> kinds;
        for (const DialogShown& dialog : Headless.Dialogs) kinds.push_back(dialog.Kind);
        return kinds;
    }
    static std::vector<std::string> Recent() { return {Run.LastFile.begin() + 1, Run.LastFile.end()}; }
};

using Texts = std::vector<std::string>;

}  // namespace

// --- Save and Save As -------------------------------------------------------------------------------------

TEST_F(JobCommands, SaveWritesTheJobUnderItsNameAfterASecondWithABusyPointer) {
    Run.JobFilePath = PathOf("a.cvn");
    Run.JobDirty = kTrue;
    int busy = 0;
    bool there = true;
    Headless.OnYield = [&] {
        busy = std::max(busy, Run.WaitPointers);
        there = File_Exist(PathOf("a.cvn"));
    };
    const double before = Headless.Clock;
    UserClick(Main.MenuFileSave);
    EXPECT_EQ(Headless.Clock - before, 1);
    EXPECT_EQ(busy, 1);
    EXPECT_FALSE(there) << "the file is written behind the pause";
    EXPECT_TRUE(File_Exist(PathOf("a.cvn")));
    EXPECT_EQ(Run.WaitPointers, 0);
    EXPECT_EQ(Run.JobDirty, kFalse);
    EXPECT_EQ(Kinds(), Texts{});
}

TEST_F(JobCommands, SaveAndSaveAsWithoutDataSayThatThereIsNone) {
    Run.JobFilePath = PathOf("a.cvn");
    Run.JobDataValid = kFalse;
    UserClick(Main.MenuFileSave);
    UserClick(Main.MenuFileSaveAs);
    UserClick(Main.Toolbar2_FileSave);
    EXPECT_EQ(Messages(), (Texts{kNothingToSave, kNothingToSave, kNothingToSave}));
    EXPECT_FALSE(File_Exist(PathOf("a.cvn")));
}

TEST_F(JobCommands, SaveOfTheUnnamedJobAsksForAName) {
    Answer("save", PathOf("named.cvn"));
    UserClick(Main.MenuFileSave);
    ASSERT_EQ(Kinds(), Texts{"save"});
    EXPECT_EQ(Headless.Dialogs[0].Title, "File save as");
    EXPECT_EQ(Headless.Dialogs[0].Filter, "cvn Datei (*.cvn)|*.cvn");
    EXPECT_EQ(Headless.Dialogs[0].Default, "");
    EXPECT_EQ(Run.JobFilePath, PathOf("named.cvn"));
    EXPECT_TRUE(File_Exist(PathOf("named.cvn")));
    EXPECT_EQ(Main.Window.Caption, TitleText(PathOf("named.cvn")));
    EXPECT_EQ(Settings.LastDir, folder_);
    EXPECT_EQ(IniWertLesen("LastDir"), folder_);
}

TEST_F(JobCommands, ANameWithoutExtensionGetsThatOfAJob) {
    Answer("save", PathOf("plain"));
    UserClick(Main.MenuFileSaveAs);
    EXPECT_EQ(Run.JobFilePath, PathOf("plain.cvn"));
    Answer("save", PathOf("other.job"));
    UserClick(Main.MenuFileSaveAs);
    EXPECT_EQ(Run.JobFilePath, PathOf("other.job"));
    CreateFolder(PathOf("v1.2"));
    Answer("save", PathOf("v1.2") + "/job");
    UserClick(Main.MenuFileSaveAs);
    EXPECT_EQ(Run.JobFilePath, PathOf("v1.2") + "/job.cvn") << "the dot of the folder is none of the name";
}

TEST_F(JobCommands, ACancelledSaveAsChangesNothing) {
    Run.JobFilePath = PathOf("a.cvn");
    Run.JobDirty = kTrue;
    Answer("save", std::nullopt);
    UserClick(Main.MenuFileSaveAs);
    EXPECT_EQ(Run.JobFilePath, PathOf("a.cvn"));
    EXPECT_EQ(Run.JobDirty, kTrue);
    EXPECT_FALSE(File_Exist(PathOf("a.cvn")));
}

TEST_F(JobCommands, ARefusedSaveIsToldAndTheJobStaysChangedUnderItsOldName) {
    const std::string old = Saved("old.cvn");
    const std::string bytes = Contents(old);
    Fill("Changed");
    for (const std::string refused : {"create", "write", "flush", "rename"}) {
        SCOPED_TRACE(refused);
        Headless.Dialogs.clear();
        Run.JobDirty = kTrue;
        FileFaults.Refuse = [&](const std::string& operation, const std::string& path) {
            return operation == refused && path.ends_with(".ini") ? ""
                   : operation == refused                         ? "no space"
                                                                  : "";
        };
        UserClick(Main.MenuFileSave);
        ASSERT_EQ(Messages().size(), 1u);
        EXPECT_NE(LastMessage().find("no space"), std::string::npos) << LastMessage();
        Answer("save", PathOf("new.cvn"));
        UserClick(Main.MenuFileSaveAs);
        FileFaults.Refuse = nullptr;
        EXPECT_EQ(Messages().size(), 2u);
        EXPECT_EQ(Run.JobDirty, kTrue);
        EXPECT_EQ(Run.JobFilePath, old);
        EXPECT_EQ(Contents(old), bytes);
        EXPECT_FALSE(File_Exist(PathOf("new.cvn")));
        EXPECT_EQ(Run.WaitPointers, 0);
        EXPECT_EQ(Recent(), (Texts{old, "", "", ""}));
    }
}

TEST_F(JobCommands, ASaveDuringWhosePauseTheJobIsGivenUpWritesNothing) {
    Run.JobFilePath = PathOf("a.cvn");
    Answer("save", PathOf("b.cvn"));
    Headless.OnYield = [] {
        Headless.OnYield = nullptr;
        UserClick(Main.MenuFileNew);
    };
    UserClick(Main.MenuFileSave);
    EXPECT_FALSE(File_Exist(PathOf("a.cvn")));
    EXPECT_FALSE(File_Exist(PathOf("b.cvn")));
}

TEST_F(JobCommands, ASaveDuringWhosePauseAnotherJobIsOpenedDoesNotMixTheTwo) {
    const std::string b = Saved("b.cvn");
    Fill("Other");
    const std::string a = Saved("a.cvn");
    const std::string bytesOfA = Contents(a), bytesOfB = Contents(b);
    Answer("open", b);
    Headless.OnYield = [] {
        Headless.OnYield = nullptr;
        UserClick(Main.MenuFileOpen);
    };
    UserClick(Main.MenuFileSave);
    EXPECT_EQ(Run.JobFilePath, b);
    EXPECT_EQ(Contents(a), bytesOfA);
    EXPECT_EQ(Contents(b), bytesOfB);
}

// --- The question for a changed job -----------------------------------------------------------------------

TEST_F(JobCommands, AChangedJobIsAskedForWithBothAnswers) {
    const std::string path = Saved("a.cvn");
    const std::string bytes = Contents(path);
    Fill("Changed");
    Run.JobDirty = kTrue;
    Answer("message", "No");
    JobChanged();
    ASSERT_EQ(Headless.Dialogs.size(), 1u);
    EXPECT_EQ(Headless.Dialogs[0].Title, "Corvinade");
    EXPECT_EQ(Headless.Dialogs[0].Text, kQuestion);
    EXPECT_EQ(Headless.Dialogs[0].Buttons, (Texts{"Yes", "No"}));
    EXPECT_EQ(Contents(path), bytes);
    EXPECT_EQ(Run.JobDirty, kTrue);
    Answer("message", "Yes");
    JobChanged();
    EXPECT_NE(Contents(path), bytes);
    EXPECT_EQ(Run.JobDirty, kFalse);
}

TEST_F(JobCommands, YesForTheUnnamedJobAsksForAName) {
    Run.JobDirty = kTrue;
    Answer("message", "Yes");
    Answer("save", PathOf("kept.cvn"));
    Answer("open", std::nullopt);
    UserClick(Main.MenuFileOpen);
    EXPECT_EQ(Kinds(), (Texts{"message", "save", "open"}));
    EXPECT_TRUE(File_Exist(PathOf("kept.cvn")));
}

TEST_F(JobCommands, AJobThatWasToBeSavedAndGotNoNameIsNotGivenUp) {
    Run.JobDirty = kTrue;
    for (Control* command : {&Main.MenuFileNew, &Main.MenuFileOpen, &Main.MenuFileExit}) {
        Headless.Dialogs.clear();
        Answer("message", "Yes");
        Answer("save", std::nullopt);
        UserClick(*command);
        EXPECT_EQ(Kinds(), (Texts{"message", "save", "message"}));
        EXPECT_EQ(LastMessage(), "The job has not been saved.");
        EXPECT_EQ(Run.JobDataValid, kTrue);
        EXPECT_TRUE(IsLoaded("FormMain"));
        EXPECT_EQ(Run.WaitPointers, 0);
    }
}

TEST_F(JobCommands, YesWithoutDataSaysSoAndGoesOn) {
    Run.JobDirty = kTrue;
    Run.JobDataValid = kFalse;
    Answer("message", "Yes");
    Answer("open", std::nullopt);
    UserClick(Main.MenuFileOpen);
    EXPECT_EQ(Messages(), (Texts{kQuestion, kNothingToSave}));
    EXPECT_EQ(Kinds().back(), "open");
}

TEST_F(JobCommands, AnUnchangedJobIsNotAskedFor) {
    Answer("open", std::nullopt);
    Answer("save", std::nullopt);
    UserClick(Main.MenuFileOpen);
    UserClick(Main.MenuFileNew);
    EXPECT_EQ(Kinds(), (Texts{"open", "save"}));
}

TEST_F(JobCommands, ExitAsksForAChangedJobAndARefusedSaveKeepsTheProgramOpen) {
    Run.JobFilePath = PathOf("a.cvn");
    Run.JobDirty = kTrue;
    Answer("message", "Yes");
    FileFaults.Refuse = [](const std::string& operation, const std::string&) {
        return operation == "write" ? "no space" : "";
    };
    UserClick(Main.MenuFileExit);
    FileFaults.Refuse = nullptr;
    EXPECT_TRUE(IsLoaded("FormMain"));
    EXPECT_EQ(Run.JobDirty, kTrue);
    Answer("message", "Yes");
    UserClick(Main.MenuFileExit);
    EXPECT_FALSE(IsLoaded("FormMain"));
    EXPECT_TRUE(File_Exist(PathOf("a.cvn")));
}

// --- New --------------------------------------------------------------------------------------------------

TEST_F(JobCommands, NewTakesANameAndGivesUpDataAndResult) {
    Saved("old.cvn");
    Run.TrafoValid = kTrue;
    ShowWindow("FormUnits");
    const auto generation = Run.JobGeneration;
    Answer("save", PathOf("new.cvn"));
    UserClick(Main.Toolbar2_FileNew);
    ASSERT_EQ(Kinds(), Texts{"save"});
    EXPECT_EQ(Headless.Dialogs[0].Title, "New File ");
    EXPECT_EQ(Headless.Dialogs[0].Filter, "cvn Dateien (*.cvn)|*.cvn|Alle Dateien (*.*)|*.*|");
    EXPECT_EQ(Headless.Dialogs[0].Default, PathOf("old.cvn"));
    EXPECT_EQ(Run.JobFilePath, PathOf("new.cvn"));
    EXPECT_FALSE(IsLoaded("FormUnits"));
    EXPECT_EQ(Run.JobDataValid, kFalse);
    EXPECT_EQ(Run.TrafoValid, kFalse);
    EXPECT_GT(Run.JobGeneration, generation) << "running work must not write into what is there now";
    EXPECT_FALSE(Main.MenuTransformation.Enabled);
    EXPECT_EQ(Main.Window.Caption, TitleText(PathOf("new.cvn")));
    EXPECT_FALSE(File_Exist(PathOf("new.cvn"))) << "nothing is written before it is saved";
    EXPECT_EQ(Job.Start.Name, (Texts{"", "A"})) << "the old arrays stay in memory";
    EXPECT_EQ(Job.Start.Count(), 1);
}

TEST_F(JobCommands, NewSizesTheWorkingArraysFromTheCountsInMemory) {
    Job.Transformed = PointSet();
    Answer("save", PathOf("new.cvn"));
    UserClick(Main.MenuFileNew);
    EXPECT_EQ(Job.Transformed.Name, (Texts{"", "A"}));
    EXPECT_EQ(Job.UseFlags.size(), 4u);
}

TEST_F(JobCommands, ACancelledNewLeavesTheJobAsItIs) {
    ShowWindow("FormUnits");
    Answer("save", std::nullopt);
    UserClick(Main.MenuFileNew);
    EXPECT_EQ(Run.JobDataValid, kTrue);
    EXPECT_EQ(Run.JobFilePath, kDefaultJobPath);
    EXPECT_TRUE(IsLoaded("FormUnits"));
}

// --- Open and the recent files ----------------------------------------------------------------------------

TEST_F(JobCommands, OpenReadsAJobAndMovesNothingInTheRecentFiles) {
    const std::string a = Saved("a.cvn");
    Fill("B");
    const std::string b = Saved("b.cvn");
    EXPECT_EQ(Recent(), (Texts{b, a, "", ""}));
    Answer("open", a);
    UserClick(Main.Toolbar2_FileOpen);
    ASSERT_EQ(Kinds(), Texts{"open"});
    EXPECT_EQ(Headless.Dialogs[0].Title, "Open File ");
    EXPECT_EQ(Headless.Dialogs[0].Filter, "cvn Dateien (*.cvn)|*.cvn|Alle Dateien (*.*)|*.*|");
    EXPECT_EQ(Run.JobFilePath, a);
    EXPECT_EQ(Job.Start.Name, (Texts{"", "A"}));
    EXPECT_EQ(Run.WaitPointers, 0);
    EXPECT_EQ(Recent(), (Texts{b, a, "", ""}));
    UserClick(Main.MenuFileSave);
    EXPECT_EQ(Recent(), (Texts{a, b, "", ""})) << "saving moves it";
}

TEST_F(JobCommands, ACancelledOpenLeavesTheJobAndTheWindows) {
    ShowWindow("FormUnits");
    Answer("open", std::nullopt);
    UserClick(Main.MenuFileOpen);
    EXPECT_TRUE(IsLoaded("FormUnits"));
    EXPECT_EQ(Run.JobDataValid, kTrue);
    EXPECT_EQ(Run.WaitPointers, 0);
}

TEST_F(JobCommands, TheFifthSavedJobPushesTheFirstOut) {
    Texts paths;
    for (const char* name : {"1.cvn", "2.cvn", "3.cvn", "4.cvn", "5.cvn"}) paths.push_back(Saved(name));
    EXPECT_EQ(Recent(), (Texts{paths[4], paths[3], paths[2], paths[1]}));
    for (int i = 1; i <= 4; ++i)
        EXPECT_EQ(IniWertLesen("LastFile" + std::to_string(i)), Recent()[static_cast<std::size_t>(i - 1)]);
    EXPECT_EQ(Main.MenüDateiAlt1.Text, "&1 " + paths[4]);
    EXPECT_EQ(Main.MenüDateiAlt4.Text, "&4 " + paths[1]);
    Saved("3.cvn");
    EXPECT_EQ(Recent(), (Texts{paths[2], paths[4], paths[3], paths[1]})) << "a known one goes to the front";
}

TEST_F(JobCommands, APathInAnotherCaseNeitherMovesNorIsAdded) {
    Run.LastFile = {"", "/x/first.cvn", "/x/Größe.cvn", "", ""};
    Run.JobFilePath = "/X/GRÖSSE.CVN";
    LogikLastFileEXIT();
    EXPECT_EQ(Recent(), (Texts{"/X/GRÖSSE.CVN", "/x/first.cvn", "/x/Größe.cvn", ""})) << "ß is no SS";
    Run.LastFile = {"", "/x/first.cvn", "/x/Öse.cvn", "", ""};
    Run.JobFilePath = "/X/öSE.CVN";
    LogikLastFileEXIT();
    EXPECT_EQ(Recent(), (Texts{"/x/first.cvn", "/x/Öse.cvn", "", ""}));
}

TEST_F(JobCommands, TheUnnamedJobIsNoRecentFile) {
    for (const char* path : {"..\\default.cvn", "..\\DEFAULT.cvn"}) {
        Run.LastFile = {"", "/x/first.cvn", "", "", ""};
        Run.JobFilePath = path;
        LogikLastFileEXIT();
        EXPECT_EQ(Recent(), (Texts{"/x/first.cvn", "", "", ""}));
    }
}

TEST_F(JobCommands, ARecentEntryOpensItsFile) {
    const std::string a = Saved("a.cvn");
    Fill("B");
    Saved("b.cvn");
    ShowWindow("FormUnits");
    Run.JobDirty = kTrue;
    Answer("message", "No");
    UserClick(Main.MenüDateiAlt2);
    EXPECT_EQ(Messages(), Texts{kQuestion});
    EXPECT_EQ(Run.JobFilePath, a);
    EXPECT_EQ(Job.Start.Name, (Texts{"", "A"}));
    EXPECT_FALSE(IsLoaded("FormUnits"));
    EXPECT_EQ(Run.JobDataValid, kTrue);
}

TEST_F(JobCommands, ARecentEntryThatWasSavedAsideMeanwhileOpensWhatItShowed) {
    const std::string a = Saved("a.cvn");
    Saved("b.cvn");
    Run.LastFile[3] = PathOf("c.cvn");
    ProgrammLogik();
    Run.JobFilePath = PathOf("d.cvn");
    Run.JobDirty = kTrue;
    Answer("message", "Yes");  // saving d.cvn moves all entries
    UserClick(Main.MenüDateiAlt2);
    EXPECT_EQ(Run.JobFilePath, a);
}

TEST_F(JobCommands, ARecentEntryOfAMissingFileLeavesTheProgramWithoutData) {
    Run.LastFile[1] = PathOf("gone.cvn");
    ProgrammLogik();
    UserClick(Main.MenüDateiAlt1);
    EXPECT_EQ(Messages(), Texts{kMissing});
    EXPECT_EQ(Run.JobDataValid, kFalse);
    EXPECT_EQ(Job.Start.Count(), 0);
}

TEST_F(JobCommands, AJobThatCannotBeReadIsNotTheOneThatIsSavedLater) {
    const std::string bytes = Contents(Saved("good.cvn"));
    const std::string damaged = Write("damaged.cvn", bytes.substr(0, bytes.size() / 2));
    Answer("open", damaged);
    UserClick(Main.MenuFileOpen);
    EXPECT_EQ(Messages().size(), 1u);
    EXPECT_EQ(Run.JobFilePath, kDefaultJobPath);
    EXPECT_EQ(Main.Window.Caption, TitleText(kDefaultJobPath));
    EXPECT_EQ(Run.JobDataValid, kFalse);
    EXPECT_EQ(Run.WaitPointers, 0);
    EXPECT_EQ(Contents(damaged), bytes.substr(0, bytes.size() / 2));
}

TEST_F(JobCommands, AnEmptyRecentEntryOpensNothing) {
    UserClick(Main.MenüDateiAlt4);
    EXPECT_EQ(Run.JobDataValid, kTrue);
    EXPECT_EQ(Kinds(), Texts{});
}

TEST_F(JobCommands, SettingsThatCannotBeWrittenDoNotKeepAJobFromBeingSaved) {
    Run.JobFilePath = PathOf("a.cvn");
    Run.JobDirty = kTrue;
    FileFaults.Refuse = [](const std::string& operation, const std::string& path) {
        return operation == "create" && path.find("Corvinade.ini") != std::string::npos ? "refused" : "";
    };
    UserClick(Main.MenuFileSave);
    FileFaults.Refuse = nullptr;
    EXPECT_TRUE(File_Exist(PathOf("a.cvn")));
    EXPECT_EQ(Run.JobDirty, kFalse) << "the job is on the disk";
    EXPECT_EQ(Messages().size(), 1u) << "and the refusal is told";
}

TEST(EqualIgnoringCase, ComparesLettersOfSeveralScriptsWithoutTheirCase) {
    EXPECT_TRUE(EqualIgnoringCase("", ""));
    EXPECT_TRUE(EqualIgnoringCase("aZ9_ÄöÞ Σσ Яя Ёё", "Az9_äÖþ σΣ яЯ ёЁ"));
    EXPECT_FALSE(EqualIgnoringCase("a", "ab"));
    EXPECT_FALSE(EqualIgnoringCase("ab", "a"));
    EXPECT_FALSE(EqualIgnoringCase("×", "÷"));
    EXPECT_FALSE(EqualIgnoringCase("[", "{"));
    EXPECT_FALSE(EqualIgnoringCase("\xC3", "\xC4"));
    EXPECT_TRUE(
        EqualIgnoringCase("\xFF"
                          "a",
                          "\xFF"
                          "A"));
}
