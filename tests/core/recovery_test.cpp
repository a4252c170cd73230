// Copies of unsaved jobs: when they are there, whose they are, and how they come back.
#include "core/recovery.h"

#include <sys/stat.h>

#include <filesystem>
#include <fstream>

#include "cli/command_line.h"
#include "core/controller.h"
#include "core/files.h"
#include "core/form_recovery.h"
#include "core/grid.h"
#include "core/job.h"
#include "core/job_bytes.h"
#include "core/job_commands.h"
#include "core/job_file.h"
#include "core/lock_file.h"
#include "core/platform.h"
#include "support/fixture.h"

using namespace corvinade;

namespace fs = std::filesystem;

class RecoveryCopies : public Program {
protected:
    RecoveryCopies() {
        ::Run.SettingsFilePath = PathOf("Corvinade.ini");
        StartRecovery();
        Open();
        opened_ = Job.TraX;
    }
    ~RecoveryCopies() override {
        FileFaults.Refuse = nullptr;
        EndRecovery();
    }
    std::string path_ = Write("a.cvn", HandFile(HandExample()));
    double opened_ = 0;

    void Open() const {
        ::Run.JobFilePath = path_;
        OpenFile(path_);
        TendRecovery(0);
    }
    static void Change(double to) {
        Job.TraX = to;
        JobTouched();
    }
    bool IsThere(const char* name) const { return File_Exist(PathOf(name)); }
    // A kill: the system closes what was open, and nothing else happens.
    static void Kill() {
        DropLock(Recovery.Lock);
        Recovery = RecoveryRecord{};
    }
    static void Reply(const char* answer) { Headless.Answers["message"].push_back(answer); }
};

TEST_F(RecoveryCopies, WhatWasOpenedIsNoChangeAndHasNoCopy) {
    EXPECT_FALSE(JobHasChanged());
    JobTouched();
    TendRecovery(100);
    EXPECT_FALSE(IsThere("recovery-1.cvn"));
    Change(7);
    EXPECT_TRUE(JobHasChanged());
    Change(opened_);
    EXPECT_FALSE(JobHasChanged()) << "a change that was taken back is none";
}

TEST_F(RecoveryCopies, TheCopyFollowsAChangeWithinTheTimeAndGoesWithTheSave) {
    Change(7);
    TendRecovery(kBetweenLooks_s / 2);
    EXPECT_FALSE(IsThere("recovery-1.cvn")) << "not with each event of a series";
    TendRecovery(kBetweenLooks_s);
    ASSERT_TRUE(IsThere("recovery-1.cvn"));
    struct stat file {};
    ASSERT_EQ(stat(PathOf("recovery-1.cvn").c_str(), &file), 0);
    EXPECT_EQ(file.st_mode & 0777U, 0600U);
    // A long series: never more than the time between looks behind.
    for (int i = 1; i <= 600; ++i) {
        Change(100 + i);
        const double now = kBetweenLooks_s + i * 0.1;
        TendRecovery(now);
        const FileBytes bytes = ReadFile(PathOf("recovery-1.cvn"));
        const double kept = ReadJobBytes(bytes.View(), "").Job.TraX;
        ASSERT_LE(i - (kept < 100 ? 0 : kept - 100), kBetweenLooks_s * 10 + 1) << i;
    }
    SaveFileAs(path_);
    EXPECT_FALSE(IsThere("recovery-1.cvn"));
    TendRecovery(1000);
    EXPECT_FALSE(Recovery.Changed);
    EndRecovery();
    EXPECT_FALSE(IsThere("recovery-1.lock"));
}

TEST_F(RecoveryCopies, WhatAKillLeavesComesBackAsTheUnsavedJobOfItsPath) {
    const std::string before = Contents(path_);
    Change(4711);
    TendRecovery(10);
    Kill();
    StartRecovery();
    EXPECT_NE(Recovery.CopyPath, PathOf("recovery-1.cvn")) << "what was left is not written over";
    Job.TraX = 0;
    ShowWhatWasLeft();
    ASSERT_TRUE(IsLoaded("FormRecovery"));
    ASSERT_EQ(RecoveryWindow.Rows.size(), 1U);
    EXPECT_EQ(RecoveryWindow.Rows[0].JobPath, path_);
    EXPECT_EQ(RecoveryWindow.Rows[0].Pairs, Job.Pairs());
    EXPECT_EQ(RecoveryWindow.Rows[0].Fault, "");
    Reply("No");  // the job that is open counts as changed
    EXPECT_TRUE(UserClick(RecoveryWindow.BtnRestore));
    EXPECT_EQ(Job.TraX, 4711);
    EXPECT_EQ(Run.JobFilePath, path_);
    EXPECT_TRUE(IsTrue(Run.JobDirty));
    EXPECT_TRUE(JobHasChanged());
    EXPECT_TRUE(Job.OtherMembers.empty());
    EXPECT_EQ(Contents(path_), before);
    EXPECT_FALSE(IsThere("recovery-1.cvn"));
    EXPECT_FALSE(IsThere("recovery-1.lock"));
    EXPECT_TRUE(IsThere("recovery-2.cvn")) << "it is unsaved, and has a copy of its own at once";
    // The file is the one that was read: no question. It is no longer once somebody has written it.
    SaveUnlessChanged(path_);
    EXPECT_EQ(ReadJobBytes(Contents(path_), path_).Job.TraX, 4711);
}

TEST_F(RecoveryCopies, ARestoredJobAsksBeforeItReplacesWhatWasSavedMeanwhile) {
    Change(4711);
    TendRecovery(10);
    Kill();
    HandJob other = HandExample();
    other.NameMCS = "others'";
    WriteFile(path_, HandFile(other));
    StartRecovery();
    Reply("No");
    RestoreCopy(LeftBehindCopies().at(0));
    Reply("No");
    EXPECT_NE(ErrorOf([&] { SaveUnlessChanged(path_); }), "");
    EXPECT_EQ(Contents(path_), HandFile(other));
}

TEST_F(RecoveryCopies, ACopyOfARunningProgramIsNobodyElses) {
    Change(4711);
    TendRecovery(10);
    const LeftBehind mine{.Copy = Recovery.CopyPath, .JobPath = path_, .Time = {}, .Fault = {}};
    const RecoveryRecord first = Recovery;
    StartRecovery();  // another program, which locks by a handle of its own
    EXPECT_TRUE(LeftBehindCopies().empty());
    EXPECT_NE(ErrorOf([&] { DiscardCopy(mine); }), "");
    EXPECT_TRUE(IsThere("recovery-1.cvn"));
    const std::size_t messages = Messages().size();
    OpenFile(path_);
    ASSERT_EQ(Messages().size(), messages + 1);
    EXPECT_NE(LastMessage().find("Another Corvinade has this job open"), std::string::npos);
    EndRecovery();
    EXPECT_TRUE(IsThere("recovery-1.cvn"));
    Recovery = first;
}

TEST_F(RecoveryCopies, AKillBehindTheSaveLeavesNothingToRestore) {
    Change(4711);
    TendRecovery(10);
    const std::string copy = Contents(PathOf("recovery-1.cvn"));
    SaveFileAs(path_);
    Kill();
    Write("recovery-1.cvn", copy);  // as it was before the save could remove it
    StartRecovery();
    EXPECT_TRUE(LeftBehindCopies().empty());
    EXPECT_FALSE(IsThere("recovery-1.cvn"));
}

TEST_F(RecoveryCopies, TheQuestionCanBeCancelledAndTheJobStays) {
    Change(4711);
    Reply("Cancel");
    EXPECT_FALSE(MayGiveUpJob());
    EXPECT_EQ(Headless.Dialogs.back().Buttons, (std::vector<std::string>{"Yes", "No", "Cancel"}));
    Reply("No");
    EXPECT_TRUE(MayGiveUpJob());
    Change(opened_);
    ::Run.JobDirty = kTrue;  // a calculation with the same result
    EXPECT_TRUE(MayGiveUpJob()) << "nothing changed, nothing asked";
    EndRecovery();
    Reply("No");
    EXPECT_TRUE(MayGiveUpJob());
    EXPECT_EQ(Headless.Dialogs.back().Buttons, (std::vector<std::string>{"Yes", "No"}));
}

TEST_F(RecoveryCopies, AFailingDiskIsToldOnceAndTriedAgain) {
    FileFaults.Refuse = [](const std::string& operation, const std::string& path) {
        return operation == "write" && path.find("recovery-") != std::string::npos ? "disk full" : "";
    };
    Change(7);
    EXPECT_NE(ErrorOf([] { TendRecovery(10); }).find("disk full"), std::string::npos);
    EXPECT_EQ(ErrorOf([] { TendRecovery(20); }), "");
    FileFaults.Refuse = nullptr;
    TendRecovery(30);
    EXPECT_TRUE(IsThere("recovery-1.cvn"));
}

TEST_F(RecoveryCopies, WhatIsNoCopyIsListedAndNotOpened) {
    Write("recovery-7.cvn", "nonsense");
    Write("recovery-8.cvn", HandFile(HandExample()));  // a job, but nobody's copy
    Write("recovery-x.cvn", "");
    const auto left = LeftBehindCopies();
    ASSERT_EQ(left.size(), 2U);
    for (const LeftBehind& one : left) {
        EXPECT_NE(one.Fault, "");
        EXPECT_NE(ErrorOf([&] { RestoreCopy(one); }), "");
        EXPECT_TRUE(File_Exist(one.Copy));
    }
    DiscardCopy(left[0]);
    EXPECT_FALSE(IsThere("recovery-7.cvn"));
}

// --- The window of what was left --------------------------------------------------------------------------

class RecoveryWindowByName : public RecoveryCopies {
protected:
    // Two copies of killed programs, of a job with a path and of one that was never saved, and a file that is
    // none.
    void LeaveThree() {
        Change(1);
        TendRecovery(10);
        Kill();
        StartRecovery();
        ::Run.JobFilePath = kDefaultJobPath;
        JobTouched();
        TendRecovery(0);
        Change(2);
        TendRecovery(10);
        Kill();
        Write("recovery-3.cvn", "nonsense");
        StartRecovery();
        ShowWhatWasLeft();
    }
    static std::string Cell(int row, int col) { return CellText(RecoveryWindow.GridRecovery.Grid, row, col); }
    static void Choose(int row) { UserClickCell(RecoveryWindow.GridRecovery, row, 0, false); }
};

TEST_F(RecoveryWindowByName, EachCopyIsARowAndOneOfSeveralHasToBeChosen) {
    LeaveThree();
    ASSERT_TRUE(IsLoaded("FormRecovery"));
    EXPECT_EQ(RecoveryWindow.LabelSummary.Text, "3 jobs were left behind with changes that were not saved.");
    ASSERT_EQ(RecoveryWindow.GridRecovery.Grid.Rows, 4);
    EXPECT_EQ(Cell(1, kRecoveryJob), path_);
    EXPECT_EQ(Cell(2, kRecoveryJob), "(never saved)");
    EXPECT_EQ(Cell(3, kRecoveryJob), PathOf("recovery-3.cvn"));
    EXPECT_TRUE(Cell(3, kRecoveryPoints).starts_with("cannot be read: ")) << Cell(3, kRecoveryPoints);
    EXPECT_EQ(Cell(1, kRecoveryPoints), std::to_string(Job.Pairs()) + " pairs, " +
                                            std::to_string(Job.Start.Count()) + " start, " +
                                            std::to_string(Job.Target.Count()) + " target");
    RecoveryWindow.GridRecovery.Grid.Row = 0;  // that of the headings
    for (Control* button : {&RecoveryWindow.BtnRestore, &RecoveryWindow.BtnDiscard}) {
        EXPECT_TRUE(UserClick(*button));
        EXPECT_EQ(LastMessage(), "Choose a job in the list first.");
    }
    for (const char* name : {"recovery-1.cvn", "recovery-2.cvn", "recovery-3.cvn"})
        EXPECT_TRUE(IsThere(name));
}

TEST_F(RecoveryWindowByName, WhatIsDiscardedIsAskedAboutAndTheWindowGoesWithTheLast) {
    LeaveThree();
    Choose(2);
    Reply("No");
    UserClick(RecoveryWindow.BtnDiscard);
    EXPECT_NE(LastMessage().find("(never saved)"), std::string::npos) << LastMessage();
    EXPECT_TRUE(IsThere("recovery-2.cvn"));
    Reply("Yes");
    UserClick(RecoveryWindow.BtnDiscard);
    EXPECT_FALSE(IsThere("recovery-2.cvn"));
    EXPECT_TRUE(IsThere("recovery-1.cvn"));
    EXPECT_EQ(RecoveryWindow.LabelSummary.Text, "2 jobs were left behind with changes that were not saved.");
    Choose(2);
    Reply("Yes");
    UserClick(RecoveryWindow.BtnDiscard);
    EXPECT_FALSE(IsThere("recovery-3.cvn"));
    EXPECT_EQ(RecoveryWindow.LabelSummary.Text, "A job was left behind with changes that were not saved.");
    Reply("Yes");  // the only one need not be chosen
    RecoveryWindow.GridRecovery.Grid.Row = 0;
    UserClick(RecoveryWindow.BtnDiscard);
    EXPECT_FALSE(IsThere("recovery-1.cvn"));
    EXPECT_FALSE(IsLoaded("FormRecovery"));
}

TEST_F(RecoveryWindowByName, ClosingItLeavesAllForTheNextTime) {
    LeaveThree();
    UserClick(RecoveryWindow.BtnClose);
    EXPECT_FALSE(IsLoaded("FormRecovery"));
    ShowWhatWasLeft();
    ASSERT_TRUE(IsLoaded("FormRecovery"));
    UserEscape(FormRecovery_Entry);
    EXPECT_FALSE(IsLoaded("FormRecovery"));
    EXPECT_EQ(LeftBehindCopies().size(), 3U);
}

TEST_F(RecoveryWindowByName, OneThatIsRestoredLeavesTheOthersListed) {
    LeaveThree();
    Choose(1);
    Reply("No");
    UserClick(RecoveryWindow.BtnRestore);
    EXPECT_EQ(Job.TraX, 1);
    EXPECT_EQ(::Run.JobFilePath, path_);
    ASSERT_TRUE(IsLoaded("FormRecovery"));
    EXPECT_EQ(RecoveryWindow.Rows.size(), 2U);
    EXPECT_EQ(Cell(1, kRecoveryJob), "(never saved)");
}

TEST_F(RecoveryWindowByName, WithoutAnythingLeftItSaysSo) {
    ShowWhatWasLeft();
    EXPECT_FALSE(IsLoaded("FormRecovery")) << "nothing to show at a start";
    ShowWindow("FormRecovery");
    EXPECT_EQ(RecoveryWindow.LabelSummary.Text, "Nothing was left behind.");
    EXPECT_FALSE(RecoveryWindow.BtnRestore.Enabled);
    EXPECT_FALSE(RecoveryWindow.BtnDiscard.Enabled);
}

TEST_F(RecoveryWindowByName, AStartWithAJobThatIsOpenElsewhereSaysSo) {
    const RecoveryRecord first = Recovery;
    Recovery = RecoveryRecord{};  // another program
    const std::size_t messages = Messages().size();
    BeginRecovery();
    ASSERT_EQ(Messages().size(), messages + 1);
    EXPECT_NE(LastMessage().find("Another Corvinade has this job open"), std::string::npos) << LastMessage();
    EXPECT_FALSE(JobHasChanged());
    EndRecovery();
    Recovery = first;
}
