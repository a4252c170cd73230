// The batch window: folders, options, and the run.
#include "analysis/form_batch.h"

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "analysis/batch_file.h"
#include "analysis/form_change_dir.h"
#include "cli/headless.h"
#include "core/controller.h"
#include "core/files.h"
#include "core/folders.h"
#include "core/form_main.h"
#include "core/job.h"
#include "core/settings.h"
#include "core/units.h"
#include "engine/calculation_window.h"
#include "support/fixture.h"

using namespace corvinade;

namespace fs = std::filesystem;

namespace {

using Names = std::vector<std::string>;

class BatchRun : public Program {
protected:
    // A result that is known: (x, y, z) comes to (10 + y, 20 - x, 30 + z).
    BatchRun() {
        StartUp("");
        Job.RotZ = Job.RotZCopy = kPi / 2;
        Job.TraX = 10;
        Job.TraY = 20;
        Job.TraZ = 30;
        Run.JobDataValid = Run.TrafoValid = Run.CalcDone = kTrue;
        ProgrammLogik();
        fs::create_directories(In());
        fs::create_directories(Out());
        ShowWindow("FormBatch");
        UserSetText(Batch.TextNameMCSDirectory, In());
        UserSetText(Batch.TextNameTCSDirectory, Out());
    }
    std::string In(const std::string& name = "") const { return PathOf(name.empty() ? "in" : "in/" + name); }
    std::string Out(const std::string& name = "") const {
        return PathOf(name.empty() ? "out" : "out/" + name);
    }
    static void Start() { UserClick(Batch.BtnStartBatch); }
    static void Answer(const std::string& answer) { Headless.Answers["message"].push_back(answer); }
    static std::string Question(const std::string& name) {
        return "File " + name + "\r\n does allready exist, will you..\r\n";
    }
};

const std::string kPoint = "A;1;2;3\n";
const std::string kResult = "A\t12.000\t19.000\t33.000\r\n";

}  // namespace

TEST_F(BatchRun, EveryFileOfTheFolderIsTransformed) {
    Write("in/a.txt", kPoint + "B;4.5;5;6\n");
    Write("in/b.two.csv", "7,1,2,3\n8,4,5,6\n");
    Write("in/sub/inner.txt", kPoint);
    Start();
    EXPECT_EQ(FilesOfFolder(Out()), (Names{"a_out.txt", "b_out.two.csv"}));
    EXPECT_EQ(Contents(Out("a_out.txt")), kResult + "B\t15.000\t15.500\t36.000\r\n");
    EXPECT_EQ(Contents(Out("b_out.two.csv")), "7\t12.000\t19.000\t33.000\r\n8\t15.000\t16.000\t36.000\r\n");
    EXPECT_EQ(Batch.LabelStatus.Text, "Calculating on File 2 of 2 Files");
    EXPECT_TRUE(Messages().empty());
    EXPECT_EQ(Run.WaitPointers, 0);
    EXPECT_TRUE(Batch.BtnStartBatch.Enabled);
}

TEST_F(BatchRun, AFileOfThreeColumnsIsNumberedByItsLines) {
    Write("in/a.txt", "1;2;3\n4;5;6\n");
    Start();
    EXPECT_EQ(Contents(Out("a_out.txt")), "1\t12.000\t19.000\t33.000\r\n2\t15.000\t16.000\t36.000\r\n");
    ASSERT_EQ(Messages().size(), 1u);
    EXPECT_NE(Messages()[0].find("File has only 3 columns"), std::string::npos);
}

TEST_F(BatchRun, ANameWithoutADotIsAllExtension) {
    EXPECT_EQ(BatchOutName("points"), "_out.points");
    EXPECT_EQ(BatchOutName("a.txt"), "a_out.txt");
    EXPECT_EQ(BatchOutName("a.b.txt"), "a_out.b.txt");
    EXPECT_EQ(BatchOutName(".hidden"), "_out.hidden");
    EXPECT_EQ(BatchOutName("a."), "a_out.");
    Write("in/points", kPoint);
    Start();
    EXPECT_EQ(FilesOfFolder(Out()), Names{"_out.points"});
}

TEST_F(BatchRun, WithoutACalculationNothingRuns) {
    Run.CalcDone = kFalse;
    Write("in/a.txt", kPoint);
    Start();
    EXPECT_EQ(Messages(), Names{"No Transformation calculated"});
    EXPECT_EQ(FilesOfFolder(Out()), Names{});
    EXPECT_NE(IniWertLesen("BatchMCSDir"), In() + "/") << "nothing has been stored either";
}

TEST_F(BatchRun, AMissingFolderIsAskedFor) {
    UserSetText(Batch.TextNameMCSDirectory, "");
    Start();
    EXPECT_EQ(Messages(), Names{"No MCS Directory choosen"});
    UserSetText(Batch.TextNameMCSDirectory, In());
    UserSetText(Batch.TextNameTCSDirectory, "");
    Start();
    EXPECT_EQ(Messages(), (Names{"No MCS Directory choosen", "No TCS Directory choosen"}));
    EXPECT_EQ(Run.WaitPointers, 0);
    EXPECT_EQ(IniWertLesen("BatchMCSDir"), In() + "/") << "what was named is stored all the same";
    EXPECT_EQ(IniWertLesen("BatchTCSDir"), "");
}

TEST_F(BatchRun, WithinACalculationNothingRuns) {
    Write("in/a.txt", kPoint);
    CalculationWindow.Running = true;
    Start();
    CalculationWindow.Running = false;
    EXPECT_EQ(Messages(), Names{"No Transformation calculated"});
    EXPECT_EQ(FilesOfFolder(Out()), Names{});
}

TEST_F(BatchRun, AFolderWithoutFilesLeavesNoWordOfTheRunBefore) {
    Write("in/a.txt", kPoint);
    Start();
    EXPECT_EQ(Batch.LabelStatus.Text, "Calculating on File 1 of 1 Files");
    fs::create_directories(PathOf("bare"));
    UserSetText(Batch.TextNameMCSDirectory, PathOf("bare"));
    Start();
    EXPECT_EQ(Batch.LabelStatus.Text, "");
    EXPECT_TRUE(Messages().empty());
}

TEST_F(BatchRun, AFolderThatIsNotThereEndsTheRunAtOnce) {
    UserSetText(Batch.TextNameMCSDirectory, PathOf("none"));
    Start();
    EXPECT_TRUE(Messages().empty());
    EXPECT_EQ(Batch.LabelStatus.Text, "");
}

TEST_F(BatchRun, FoldersAndOptionsAreStoredAndComeBack) {
    UserSetValue(Batch.OptionTransformWithNewCalc, 1);
    UserSetValue(Batch.OptionWriteAll, 1);
    Start();
    EXPECT_EQ(IniWertLesen("BatchMCSDir"), In() + "/");
    EXPECT_EQ(IniWertLesen("BatchTCSDir"), Out() + "/");
    EXPECT_EQ(IniWertLesen("BatchType"), "2");
    EXPECT_EQ(IniWertLesen("BatchWriteType"), "2");
    UserClick(Batch.BtnCancel);
    EXPECT_FALSE(IsLoaded("FormBatch"));
    ShowWindow("FormBatch");
    EXPECT_EQ(Batch.TextNameMCSDirectory.Text, In() + "/");
    EXPECT_EQ(Batch.TextNameTCSDirectory.Text, Out() + "/");
    EXPECT_EQ(Batch.OptionTransformWithNewCalc.Value, 1);
    EXPECT_EQ(Batch.OptionTransformWithActualCalc.Value, 0);
    EXPECT_EQ(Batch.OptionWriteAll.Value, 1);
    UserSetValue(Batch.OptionTransformWithActualCalc, 1);
    UserSetValue(Batch.OptionOnlyOnlyMCS, 1);
    Start();
    EXPECT_EQ(IniWertLesen("BatchType"), "1");
    EXPECT_EQ(IniWertLesen("BatchWriteType"), "1");
}

TEST_F(BatchRun, TheOptionsChangeNothingOfTheResult) {
    Write("in/a.txt", kPoint);
    for (Control* type : {&Batch.OptionTransformWithActualCalc, &Batch.OptionTransformWithNewCalc})
        for (Control* write : {&Batch.OptionOnlyOnlyMCS, &Batch.OptionWriteAll}) {
            fs::remove(Out("a_out.txt"));
            UserSetValue(*type, 1);
            UserSetValue(*write, 1);
            Start();
            EXPECT_EQ(Contents(Out("a_out.txt")), kResult);
        }
}

TEST_F(BatchRun, AFolderThatWasNeverStoredIsEmpty) {
    UserClick(Batch.BtnCancel);
    Settings.BatchMCSDir = Settings.BatchTCSDir = "1000";
    ShowWindow("FormBatch");
    EXPECT_EQ(Batch.TextNameMCSDirectory.Text, "");
    EXPECT_EQ(Batch.TextNameTCSDirectory.Text, "");
}

// --- The same folder --------------------------------------------------------------------------------------

TEST_F(BatchRun, TheTargetFollowsWhileItIsTheSame) {
    UserSetValue(Batch.CheckSameAsMCS, 1);
    EXPECT_EQ(Batch.TextNameTCSDirectory.Text, In());
    EXPECT_FALSE(Batch.TextNameTCSDirectory.Enabled);
    EXPECT_FALSE(Batch.BtnBrowseTCS.Enabled);
    UserSetText(Batch.TextNameMCSDirectory, PathOf("other"));
    EXPECT_EQ(Batch.TextNameTCSDirectory.Text, PathOf("other"));
    UserSetValue(Batch.CheckSameAsMCS, 0);
    EXPECT_TRUE(Batch.TextNameTCSDirectory.Enabled);
    EXPECT_TRUE(Batch.BtnBrowseTCS.Enabled);
}

TEST_F(BatchRun, ASecondRunInTheSameFolderReadsWhatTheFirstOneWrote) {
    Write("in/a.txt", kPoint);
    UserSetValue(Batch.CheckSameAsMCS, 1);
    Start();
    EXPECT_EQ(FilesOfFolder(In()), (Names{"a.txt", "a_out.txt"}));
    Answer("overwrite");
    Start();
    EXPECT_EQ(FilesOfFolder(In()), (Names{"a.txt", "a_out.txt", "a_out_out.txt"}));
    // A quarter turn and shift of (12, 19, 33).
    EXPECT_EQ(Contents(In("a_out_out.txt")), "A\t29.000\t8.000\t63.000\r\n");
}

// --- Files that exist -------------------------------------------------------------------------------------

TEST_F(BatchRun, AFileThatExistsIsReplacedOnlyWhenTheUserSaysSo) {
    for (const char* name : {"a.txt", "b.txt", "c.txt"}) {
        Write(std::string("in/") + name, kPoint);
        Write("out/" + BatchOutName(name), "old");
    }
    Answer("overwrite");
    Answer("Cancel Batch");
    Start();
    EXPECT_EQ(Contents(Out("a_out.txt")), kResult) << "what was done so far is kept";
    EXPECT_EQ(Contents(Out("b_out.txt")), "old");
    EXPECT_EQ(Contents(Out("c_out.txt")), "old");
    EXPECT_EQ(Messages(), (Names{Question("a.txt"), Question("b.txt")}));
    EXPECT_EQ(Headless.Dialogs.back().Title, "File does exist");
    EXPECT_EQ(Headless.Dialogs.back().Buttons, (Names{"overwrite", "overwrite all ", "Cancel Batch"}));
    EXPECT_EQ(Run.WaitPointers, 0);
}

TEST_F(BatchRun, AfterOverwriteAllNoFurtherQuestionComes) {
    for (const char* name : {"a.txt", "b.txt", "c.txt"}) {
        Write(std::string("in/") + name, kPoint);
        Write("out/" + BatchOutName(name), "old");
    }
    Answer("overwrite all ");
    Start();
    EXPECT_EQ(Messages(), Names{Question("a.txt")});
    for (const char* name : {"a_out.txt", "b_out.txt", "c_out.txt"}) EXPECT_EQ(Contents(Out(name)), kResult);
    Answer("overwrite all ");
    Start();
    EXPECT_EQ(Messages().size(), 2u) << "a further run asks again";
}

TEST_F(BatchRun, TheFileInQuestionIsTheOneThatTheStatusNames) {
    Write("in/a.txt", kPoint);
    Write("in/b.txt", kPoint);
    Write("out/b_out.txt", "old");
    std::string status;
    int yields = 0, yieldsBefore = 0;
    Headless.OnYield = [&] { ++yields; };
    Headless.OnQuestion = [&](const DialogShown&) -> std::optional<std::string> {
        status = Batch.LabelStatus.Text;
        yieldsBefore = yields;
        return "overwrite";
    };
    Start();
    EXPECT_EQ(status, "Calculating on File 2 of 2 Files");
    EXPECT_GE(yieldsBefore, 2) << "it has been shown";
    EXPECT_EQ(Contents(Out("b_out.txt")), kResult);
}

// --- Files that cannot be done ----------------------------------------------------------------------------

TEST_F(BatchRun, WhatCannotBeDoneIsLeftAndToldAtTheEnd) {
    Write("in/a.txt", kPoint);
    Write("in/b_binary.txt", std::string("A;1\0;2;3", 8));
    Write("in/c_empty.txt", "");
    Write("in/d_wide.txt", std::string("\xFF\xFE"
                                       "A\0;\0",
                                       6));
    Write("in/e_huge.txt", "");
    fs::resize_file(In("e_huge.txt"), kMostBytesOfBatchFile + 1);
    Write("in/f_words.txt", "nothing\nin\nhere\n");
    Write("in/g_locked.txt", kPoint);
    FileFaults.Refuse = [this](const std::string& operation, const std::string& path) {
        return operation == "open" && path == In("g_locked.txt") ? std::string("Permission denied")
                                                                 : std::string();
    };
    Write("in/z.txt", kPoint);
    Start();
    EXPECT_EQ(FilesOfFolder(Out()), (Names{"a_out.txt", "f_words_out.txt", "z_out.txt"}));
    const std::string told = LastMessage();
    EXPECT_NE(told.find("3 files were written\r\n"), std::string::npos) << told;
    EXPECT_NE(told.find("left: Cannot read \"" + In("b_binary.txt") + "\": it is no text"),
              std::string::npos);
    EXPECT_NE(told.find("left: Cannot read \"" + In("c_empty.txt") + "\": it is empty"), std::string::npos);
    EXPECT_NE(told.find("left: Cannot read \"" + In("d_wide.txt") + "\": it is a 16-bit text"),
              std::string::npos);
    EXPECT_NE(told.find("left: Cannot read \"" + In("e_huge.txt") + "\": it is larger than 1 GiB"),
              std::string::npos);
    EXPECT_NE(told.find("left: Cannot read \"" + In("g_locked.txt") + "\": Permission denied"),
              std::string::npos);
    EXPECT_NE(
        told.find("\"" + In("f_words.txt") + "\": 3 of 3 lines held no three numbers, the first in line 1"),
        std::string::npos);
    EXPECT_EQ(Batch.LabelStatus.Text, "Calculating on File 8 of 8 Files");
    EXPECT_EQ(Contents(Out("z_out.txt")), kResult);
}

TEST_F(BatchRun, AFullDiskLeavesTheOldFilesAndNoHalfOnes) {
    Write("in/a.txt", kPoint);
    Write("in/b.txt", kPoint);
    Write("out/a_out.txt", "old");
    FileFaults.Refuse = [](const std::string& operation, const std::string& path) {
        return operation == "write" && path.ends_with("a_out.txt") ? std::string("No space left on device")
                                                                   : std::string();
    };
    Answer("overwrite all ");
    Start();
    EXPECT_EQ(FilesOfFolder(Out()), (Names{"a_out.txt", "b_out.txt"}));
    EXPECT_EQ(Contents(Out("a_out.txt")), "old");
    EXPECT_EQ(LastMessage(), "1 files were written\r\nleft: Cannot write \"" + Out("a_out.txt") +
                                 "\": No space left on device\r\n");
}

TEST_F(BatchRun, ATargetFolderThatIsNotThereIsToldForEveryFile) {
    Write("in/a.txt", kPoint);
    UserSetText(Batch.TextNameTCSDirectory, PathOf("none"));
    Start();
    EXPECT_NE(LastMessage().find("left: Cannot write \"" + PathOf("none/a_out.txt")), std::string::npos);
}

TEST_F(BatchRun, ColumnsThatChangeAreToldAndTheLinesReadAsTheyStand) {
    Write("in/a.txt", "A;1;2;3\nremark\nB;4;5;6\n");
    Start();
    EXPECT_EQ(Contents(Out("a_out.txt")),
              kResult + "remark\t10.000\t20.000\t30.000\r\nB\t15.000\t16.000\t36.000\r\n");
    ASSERT_EQ(Messages().size(), 2u);
    EXPECT_NE(Messages()[0].find("In Row 2 the number of columns has changed"), std::string::npos);
    EXPECT_NE(Messages()[1].find("1 of 3 lines held no three numbers, the first in line 2"),
              std::string::npos);
}

TEST_F(BatchRun, FieldsBetweenBlanksAloneAreFoundAfterTheMessage) {
    Write("in/a.txt", "A 1 2 3\nB 4 5 6\n");
    Start();
    EXPECT_EQ(Contents(Out("a_out.txt")), kResult + "B\t15.000\t16.000\t36.000\r\n");
    ASSERT_EQ(Messages().size(), 1u);
    EXPECT_NE(Messages()[0].find("find any delimiter in file"), std::string::npos);
}

TEST_F(BatchRun, AFileWithTheOtherDecimalDelimiterIsChangedOnYesAndLeftOnNo) {
    const std::string content = "A;1,5;2,5;3,5\r\n";
    Write("in/a.txt", content);
    Answer("No");
    Start();
    EXPECT_EQ(Contents(In("a.txt")), content);
    EXPECT_EQ(FilesOfFolder(Out()), Names{});
    EXPECT_NE(LastMessage().find("its decimal delimiter is the comma"), std::string::npos);
    Answer("Yes");
    Start();
    EXPECT_EQ(Contents(In("a.txt")), "A;1.5;2.5;3.5");
    EXPECT_EQ(Contents(Out("a_out.txt")), "A\t12.500\t18.500\t33.500\r\n");
}

TEST_F(BatchRun, OnASystemWithDecimalCommaBothDelimitersAreRead) {
    Headless.Decimal = ',';
    Write("in/a.txt", "A;1,5;2,5;3,5\n");
    Write("in/b.txt", "A;1.5;2.5;3.5\n");
    Answer("No");
    Start();
    EXPECT_EQ(Contents(Out("a_out.txt")), "A\t12,500\t18,500\t33,500\r\n");
    EXPECT_EQ(Contents(Out("b_out.txt")), "A\t12,500\t18,500\t33,500\r\n");
}

// --- Guests -----------------------------------------------------------------------------------------------

TEST_F(BatchRun, ClosingTheWindowEndsTheRun) {
    for (const char* name : {"in/a.txt", "in/b.txt", "in/c.txt"}) Write(name, kPoint);
    int yields = 0;
    Headless.OnYield = [&] {
        if (++yields == 2) UserClick(Batch.BtnCancel);
    };
    Start();
    EXPECT_EQ(FilesOfFolder(Out()), Names{"a_out.txt"});
    EXPECT_FALSE(IsLoaded("FormBatch"));
    EXPECT_EQ(Run.WaitPointers, 0);
}

TEST_F(BatchRun, AnotherJobEndsTheRunAndNoHalfFileStays) {
    std::string large;
    for (int i = 0; i < 100000; ++i) large += kPoint;
    Write("in/a.txt", large);
    int yields = 0;
    Headless.OnYield = [&] {
        if (++yields == 2) ++::Run.JobGeneration;
    };
    Start();
    EXPECT_GE(yields, 2);
    EXPECT_EQ(FilesOfFolder(Out()), Names{});
}

TEST_F(BatchRun, AllFilesOfARunStandOnOneResultAndOneUnit) {
    const std::vector<std::pair<const char*, std::function<void()>>> changes = {
        {"shift", [] { Job.TraX = 11; }},
        {"rotation", [] { Job.RotZ = Job.RotZCopy = 1; }},
        {"scale", [] { Job.ScaleX = Job.ScaleY = Job.ScaleZ = 2; }},
        {"oblique axes", [] { Job.AngleXY = 0.1; }},
        {"unit",
         [] {
             Job.LengthUnitName = "meter";
             RhoFestlegung();
         }},
        {"digits",
         [] {
             Job.LengthDigits = 5;
             RhoFestlegung();
         }},
        {"no result", [] { ::Run.CalcDone = kFalse; }}};
    const JobRecord job = Job;
    for (const char* name : {"in/a.txt", "in/b.txt", "in/c.txt"}) Write(name, kPoint);
    for (const auto& [what, change] : changes) {
        for (const std::string& name : FilesOfFolder(Out())) fs::remove(Out(name));
        int yields = 0;
        Headless.OnYield = [&yields, &change = change] {
            if (++yields == 2) change();
        };
        Start();
        Headless.OnYield = nullptr;
        EXPECT_EQ(FilesOfFolder(Out()), Names{"a_out.txt"}) << what;
        EXPECT_EQ(LastMessage(),
                  "1 files were written\r\n"
                  "The run has ended: the transformation, the job or its units have changed\r\n")
            << what;
        Headless.Dialogs.clear();
        Job = job;
        RhoFestlegung();
        ::Run.CalcDone = kTrue;
    }
    Answer("overwrite");
    Start();
    EXPECT_EQ(FilesOfFolder(Out()).size(), 3u) << "nothing else ends it";
    EXPECT_EQ(Messages(), Names{Question("a.txt")});
}

TEST_F(BatchRun, ARunDoesNotBeginAgainInsideItself) {
    Write("in/a.txt", kPoint);
    bool enabled = true;
    Headless.OnYield = [&] { enabled = enabled && Batch.BtnStartBatch.Enabled; };
    Start();
    EXPECT_FALSE(enabled);
}

// --- Folders by dialog ------------------------------------------------------------------------------------

TEST_F(BatchRun, FoldersAreChosenInTheWindowForThem) {
    std::vector<std::string> titles;
    Headless.OnForm = [&](const std::string& window) {
        ASSERT_EQ(window, "FormChangeDir");
        titles.push_back(ChangeDir.Window.Caption);
        UserSetText(ChangeDir.TextPath, PathOf(titles.size() == 1 ? "out" : "in"));
        UserClick(ChangeDir.BtnOK);
    };
    UserClick(Batch.BtnBrowseMCS);
    UserClick(Batch.BtnBrowseTCS);
    EXPECT_EQ(titles, (Names{"Choose the MCS = Start Directory", "Choose the TCS = Target Directory"}));
    EXPECT_EQ(Batch.TextNameMCSDirectory.Text, Out());
    EXPECT_EQ(Batch.TextNameTCSDirectory.Text, In());
}

TEST_F(BatchRun, ACancelledDialogChangesNothing) {
    Headless.OnForm = [](const std::string&) { UserClick(ChangeDir.BtnCancel); };
    UserClick(Batch.BtnBrowseMCS);
    EXPECT_EQ(Batch.TextNameMCSDirectory.Text, In());
}

TEST_F(BatchRun, FoldersAreShownByTheDesktop) {
    UserClick(Batch.BtnEXBrowseMCS);
    UserClick(Batch.BtnExBrowseTCS);
    ASSERT_EQ(Headless.Shell.size(), 2u);
    EXPECT_EQ(Headless.Shell[0].Verb, "explore");
    EXPECT_EQ(Headless.Shell[0].Path, In());
    EXPECT_EQ(Headless.Shell[1].Path, Out());
}

TEST_F(BatchRun, TheListOfFilesAddsTheSeparatorToItsFolder) {
    Write("in/b.txt", kPoint);
    Write("in/a.txt", kPoint);
    std::string folder = In();
    std::vector<std::string> list;
    DateiListe(folder, list);
    EXPECT_EQ(folder, In() + "/");
    EXPECT_EQ(list, (Names{"a.txt", "b.txt"}));
}

TEST_F(BatchRun, TheMenuOpensTheWindow) {
    UserClick(Batch.BtnCancel);
    UserClick(Main.MenueTransformationBatch);
    EXPECT_TRUE(IsLoaded("FormBatch"));
    UserEscape(FormBatch_Entry);
    EXPECT_FALSE(IsLoaded("FormBatch"));
}

TEST_F(BatchRun, AResultThatDidNotConvergeIsTakenOnlyWhenItIsWanted) {
    Write("in/a.txt", kPoint);
    Job.Unconverged = kTrue;
    Answer("No");
    Start();
    EXPECT_FALSE(File_Exist(Out("a_out.txt")));
    EXPECT_EQ(Messages().size(), 1u);
    Answer("Yes");
    Start();
    EXPECT_EQ(Contents(Out("a_out.txt")), kResult);
}
