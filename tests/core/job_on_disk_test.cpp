// A job whose file another program changes while it is open.
#include "core/job_on_disk.h"

#include <sys/stat.h>

#include <filesystem>

#include "cli/command_line.h"
#include "core/file_state.h"
#include "core/files.h"
#include "core/job.h"
#include "core/job_bytes.h"
#include "core/job_commands.h"
#include "core/job_file.h"
#include "core/platform.h"
#include "support/fixture.h"

using namespace corvinade;

namespace fs = std::filesystem;

class JobOnDisk : public Program {
protected:
    ~JobOnDisk() override { LookFaults.Refuse = nullptr; }
    std::string path_ = Write("a.cvn", HandFile(HandExample()));

    void Open() const {
        Run.JobFilePath = path_;
        OpenFile(path_);
    }
    // Another program's save.
    std::string ChangeOnDisk() const {
        HandJob other = HandExample();
        other.NameMCS = "others'";
        const std::string bytes = HandFile(other);
        WriteFile(path_, bytes);
        return bytes;
    }
    static void Reply(const char* answer) { Headless.Answers["message"].push_back(answer); }
};

TEST_F(JobOnDisk, ASaveAsksBeforeItReplacesWhatAnotherProgramHasSaved) {
    Open();
    Run.JobDirty = kTrue;
    const std::string theirs = ChangeOnDisk();
    Reply("No");
    EXPECT_EQ(ErrorOf([&] { SaveUnlessChanged(path_); }),
              "The job has not been saved: \"" + path_ +
                  "\" has been changed by another program since it was read");
    EXPECT_EQ(LastMessage(),
              "The file of this job has been changed by another program since it was read:\r\n\r\n" + path_ +
                  "\r\n\r\nDo you want to replace it?");
    EXPECT_EQ(Contents(path_), theirs);
    EXPECT_TRUE(IsTrue(Run.JobDirty));
    Reply("Yes");
    SaveUnlessChanged(path_);
    EXPECT_NE(Contents(path_), theirs);
    EXPECT_FALSE(IsTrue(Run.JobDirty));
    // It is known from now on.
    const std::size_t messages = Messages().size();
    SaveUnlessChanged(path_);
    EXPECT_EQ(Messages().size(), messages);
}

TEST_F(JobOnDisk, AQuestionThatNobodyAnswersReplacesNothing) {
    ExpectUnanswered();
    Open();
    const std::string theirs = ChangeOnDisk();
    EXPECT_NE(ErrorOf([&] { SaveUnlessChanged(path_); }), "");
    EXPECT_EQ(Contents(path_), theirs);
}

TEST_F(JobOnDisk, AChangeOfEqualLengthAndTimeIsSeen) {
    Open();
    const auto time = fs::last_write_time(path_);
    std::string bytes = Contents(path_);
    bytes[bytes.find("millimeter") + 30] ^= 1;
    Write("a.cvn", bytes);
    fs::last_write_time(path_, time);
    Reply("No");
    EXPECT_NE(ErrorOf([&] { SaveUnlessChanged(path_); }), "");
}

TEST_F(JobOnDisk, OtherRightsTimesAndNamesAreNoChange) {
    Open();
    ASSERT_EQ(chmod(path_.c_str(), 0640), 0);
    fs::last_write_time(path_, fs::file_time_type::clock::now());
    fs::rename(path_, PathOf("b.cvn"));
    fs::copy_file(PathOf("b.cvn"), path_);
    SaveUnlessChanged(path_);
    EXPECT_TRUE(Messages().empty());
}

TEST_F(JobOnDisk, AFileThatHasGoneIsWrittenAgain) {
    Open();
    fs::remove(path_);
    SaveUnlessChanged(path_);
    EXPECT_TRUE(File_Exist(path_));
}

TEST_F(JobOnDisk, ANewJobAsksBeforeItReplacesWhatHasComeSince) {
    Headless.Answers["save"].push_back(PathOf("new.cvn"));
    MenuFileNew_Command();
    const std::string path = Write("new.cvn", "somebody else's");
    Run.JobDataValid = kTrue;
    Reply("No");
    EXPECT_NE(ErrorOf([&] { SaveUnlessChanged(path); }), "");
    EXPECT_EQ(Contents(path), "somebody else's");
}

TEST_F(JobOnDisk, ADiskThatCannotTellLosesNothing) {
    Open();
    const std::string theirs = ChangeOnDisk();
    LookFaults.Refuse = [](const std::string&) { return std::string("Input/output error"); };
    EXPECT_NE(ErrorOf([&] { SaveUnlessChanged(path_); }), "");
    EXPECT_EQ(Contents(path_), theirs);
    EXPECT_NE(ErrorOf([&] { OpenFile(path_); }), "");
}

TEST_F(JobOnDisk, ACommandRefusesWhereTheFileHasChangedWhileItRan) {
    Write("s.txt", "A;0;0;0\nB;1000;0;0\nC;0;2000;0\nD;0;0;3000\n");
    Write("t.txt", "A;5;6;7\nB;1005;6;7\nC;5;2006;7\nD;5;6;3007\n");
    for (const bool yes : {false, true}) {
        LookFaults.Refuse = nullptr;
        ASSERT_EQ(FreshCommandLine({"fit", PathOf("s.txt"), PathOf("t.txt"), "--save", path_}).Status, 0);
        // The first look is the reading's; before the next one, another program saves its own.
        std::string theirs;
        int looks = 0;
        LookFaults.Refuse = [&](const std::string& path) {
            if (path == path_ && ++looks == 2) theirs = ChangeOnDisk();
            return std::string();
        };
        std::vector<std::string> arguments = {"fit", "--job", path_, "--save", path_, "--parameters", "6"};
        if (yes) arguments.push_back("--yes");
        const Outcome outcome = FreshCommandLine(arguments);
        ASSERT_FALSE(theirs.empty());
        if (yes) {
            EXPECT_EQ(outcome.Status, 0) << outcome.Err;
            EXPECT_NE(Contents(path_), theirs);
        } else {
            EXPECT_EQ(outcome.Status, 1);
            EXPECT_NE(outcome.Err.find(
                          "another program has changed it since it was read; with --yes it is replaced"),
                      std::string::npos)
                << outcome.Err;
            EXPECT_EQ(Contents(path_), theirs);
        }
    }
}
