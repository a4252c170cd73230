// What the user does while a job is being opened or saved: in a question, in the pause of a save, in the fill
// of the main sheet.
#include "analysis/form_main_sheet.h"
#include "cli/headless.h"
#include "core/controller.h"
#include "core/form_main.h"
#include "core/job.h"
#include "core/job_bytes.h"
#include "core/job_file.h"
#include "core/platform.h"
#include "core/window.h"
#include "support/fixture.h"

using namespace corvinade;

namespace {

class JobGuests : public Program {
protected:
    JobGuests() {
        Headless.SettingsDir = folder_;
        StartUp("");
    }
    // A file whose beginning is no head, so that opening it asks a question.
    static std::string Questionable() {
        HandJob job = HandExample();
        for (int i = 5; i <= 10; ++i) job.MCS.Add("P" + std::to_string(i), i, i, i);
        job.TMCS = job.MCS;
        job.nMCS = 10;
        return HandFile68(job, "1.3.68");
    }
    // Opens `path` in the question for a file and answers it then.
    static void OpenInQuestion(const std::string& path, const std::string& answer) {
        Headless.OnQuestion = [path, answer](const DialogShown&) -> std::optional<std::string> {
            Headless.Answers["open"].push_back(path);
            UserClick(Main.MenuFileOpen);
            return answer;
        };
    }
    static void ExpectRobotJob(const std::string& path) {
        EXPECT_EQ(::Run.JobFilePath, path);
        EXPECT_EQ(::Run.JobDataValid, kTrue);
        EXPECT_EQ(::Run.WaitPointers, 0);
        ExpectJob(Job, HandRobotExample());
        EXPECT_EQ(Main.ComboSaveView.Items, HandRobotExample().ViewNames);
    }
};

}  // namespace

TEST_F(JobGuests, AJobOpenedInTheQuestionForAnotherFileIsTheOneThatIsOpen) {
    const std::string asked = Write("asked.cvn", Questionable());
    const std::string other = Write("other.cvn", HandFile(HandRobotExample()));
    for (const char* answer : {"Yes", "No"}) {
        SCOPED_TRACE(answer);
        OpenInQuestion(other, answer);
        Headless.Answers["open"].push_back(asked);
        UserClick(Main.MenuFileOpen);
        ExpectRobotJob(other);
    }
}

TEST_F(JobGuests, AFileThatTurnsOutToBeDamagedDoesNotGiveUpTheJobThatWasOpenedInItsQuestion) {
    const std::string asked = Write("asked.cvn", Questionable().substr(0, 100));
    const std::string other = Write("other.cvn", HandFile(HandRobotExample()));
    OpenInQuestion(other, "Yes");
    Headless.Answers["open"].push_back(asked);
    UserClick(Main.MenuFileOpen);
    EXPECT_NE(LastMessage().find("asked.cvn\", byte"), std::string::npos) << LastMessage();
    ExpectRobotJob(other);
}

TEST_F(JobGuests, AJobGivenUpWhileTheSheetIsFilledStaysGivenUp) {
    Headless.OnQuestion = [](const DialogShown&) -> std::optional<std::string> {
        ShowWindow("FormMainSheet");
        Headless.OnYield = [] {
            if (Job.Start.Count() != 10) return;
            Headless.OnYield = nullptr;
            UserClick(Main.MenuFileNew);
        };
        return "Yes";
    };
    Headless.Answers["save"].push_back(PathOf("new.cvn"));
    Headless.Answers["open"].push_back(Write("asked.cvn", Questionable()));
    UserClick(Main.MenuFileOpen);
    ASSERT_TRUE(Headless.Answers["save"].empty());
    EXPECT_EQ(Run.JobDataValid, kFalse);
    EXPECT_EQ(Run.JobFilePath, PathOf("new.cvn"));
}

TEST_F(JobGuests, AProgramClosedInThePauseOfASaveLeavesTheSavedViewsInTheFile) {
    const std::string bytes = HandFile(HandRobotExample());
    for (const bool changed : {false, true}) {
        ShowWindow("FormMain");
        const std::string path = Write("a.cvn", bytes);
        Run.JobFilePath = path;
        OpenFile(path);
        Run.JobDirty = ToFlag(changed);
        if (changed) Headless.Answers["message"].push_back("Yes");
        Headless.OnYield = [] {
            Headless.OnYield = nullptr;
            UserClick(Main.MenuFileExit);
        };
        UserClick(Main.MenuFileSave);
        EXPECT_FALSE(IsLoaded("FormMain"));
        HandJob saved = HandRobotExample();
        if (changed) saved.AutoRecalc = false;  // opening switches it off
        ExpectBytes(Contents(path), HandFile(saved));
    }
}

TEST_F(JobGuests, ASaveInThePauseOfASaveWritesTheSameJobTwice) {
    HandJob job = HandRobotExample();
    job.AutoRecalc = false;
    const std::string path = Write("a.cvn", HandFile(job));
    Run.JobFilePath = path;
    OpenFile(path);
    Headless.OnYield = [] {
        Headless.OnYield = nullptr;
        UserClick(Main.MenuFileSave);
    };
    UserClick(Main.MenuFileSave);
    EXPECT_EQ(Headless.Clock, 2);
    ExpectBytes(Contents(path), HandFile(job));
    EXPECT_EQ(Run.WaitPointers, 0);
}
