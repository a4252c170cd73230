// Saving: the file on disk is the whole old job or the whole new one, and what is refused is told.
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>

#include "core/files.h"
#include "core/form_main.h"
#include "core/job_bytes.h"
#include "core/job_file.h"
#include "core/platform.h"
#include "core/window.h"
#include "support/fixture.h"
#include "support/memory_use.h"

using namespace corvinade;

class JobFileSave : public Program {
protected:
    void OpenExample() {
        OpenFile(Write("example.cvn", HandFile(HandRobotExample())));
        Run.JobDirty = kTrue;
    }
    static std::string ExampleBytes() {
        HandJob job = HandRobotExample();
        job.AutoRecalc = false;
        return HandFile(job);
    }
    std::size_t FilesInFolder() const {
        std::size_t count = 0;
        for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(folder_)) ++count;
        return count;
    }
};

TEST_F(JobFileSave, ASavedJobIsNoLongerChanged) {
    OpenExample();
    SaveFileAs(PathOf("a.cvn"));
    EXPECT_EQ(Run.JobDirty, kFalse);
    EXPECT_EQ(Run.JobDataValid, kTrue);
    ExpectBytes(Contents(PathOf("a.cvn")), ExampleBytes());
    EXPECT_TRUE(Messages().empty());
}

TEST_F(JobFileSave, ALongerOldFileKeepsItsTail) {
    OpenExample();
    const std::string now = ExampleBytes();
    std::string old(now.size(), '#');
    old += "the tail of a longer job";
    const std::string path = Write("a.cvn", old);
    SaveFileAs(path);
    ExpectBytes(Contents(path), now + "the tail of a longer job");
    // The reader never reaches it, and saving again keeps it.
    OpenFile(path);
    ExpectJob(Job, HandRobotExample());
    SaveFileAs(path);
    ExpectBytes(Contents(path), now + "the tail of a longer job");
}

TEST_F(JobFileSave, AShorterOldFileAndOneOfTheSameLengthAreGone) {
    OpenExample();
    for (const std::size_t length : {std::size_t{0}, std::size_t{10}, ExampleBytes().size()}) {
        const std::string path = Write("a.cvn", std::string(length, '#'));
        SaveFileAs(path);
        ExpectBytes(Contents(path), ExampleBytes());
    }
}

TEST_F(JobFileSave, ARefusalAtAnyStepIsToldAndTheJobStaysChanged) {
    OpenExample();
    for (const std::string& old : {std::string("old job"), std::string(100000, 'o')}) {
        const std::string path = Write("a.cvn", old);
        const std::size_t files = FilesInFolder();
        for (const std::string operation : {"create", "write", "flush", "rename"}) {
            SCOPED_TRACE(operation);
            for (const std::string why : {"No space left on device", "Read-only file system",
                                          "Transport endpoint is not connected"}) {
                FileFaults.Refuse = [&](const std::string& asked, const std::string&) {
                    return asked == operation ? why : std::string();
                };
                EXPECT_FALSE(Dispatch([&] { SaveFileAs(path); }));
                FileFaults = FileFaultRecord{};
                EXPECT_EQ(LastMessage(), "Cannot write \"" + path + "\": " + why);
                EXPECT_EQ(Run.JobDirty, kTrue);
                EXPECT_EQ(Run.JobDataValid, kTrue);
                EXPECT_EQ(Run.WaitPointers, 0);
                ExpectBytes(Contents(path), old);
                EXPECT_EQ(FilesInFolder(), files);
            }
        }
    }
}

TEST_F(JobFileSave, AnOldFileThatCannotBeReadIsNotReplaced) {
    OpenExample();
    const std::string path = Write("a.cvn", std::string(100000, 'o'));
    FileFaults.Refuse = [](const std::string& asked, const std::string&) {
        return asked == "read" ? "Input/output error" : "";
    };
    EXPECT_FALSE(Dispatch([&] { SaveFileAs(path); }));
    FileFaults = FileFaultRecord{};
    EXPECT_EQ(LastMessage(), "Cannot read \"" + path + "\": Input/output error");
    EXPECT_EQ(Run.JobDirty, kTrue);
    ExpectBytes(Contents(path), std::string(100000, 'o'));
}

TEST_F(JobFileSave, AMissingFolderAndAFolderInThePlaceAreTold) {
    OpenExample();
    std::filesystem::create_directories(PathOf("folder.cvn"));
    for (const std::string& path : {PathOf("none/a.cvn"), PathOf("folder.cvn")}) {
        EXPECT_FALSE(Dispatch([&] { SaveFileAs(path); }));
        EXPECT_TRUE(LastMessage().starts_with("Cannot write \"" + path + "\": ")) << LastMessage();
        EXPECT_EQ(Run.JobDirty, kTrue);
    }
}

TEST_F(JobFileSave, AWriteProtectedFileIsKept) {
    OpenExample();
    const std::string path = Write("a.cvn", "protected");
    ASSERT_EQ(chmod(path.c_str(), 0444), 0);
    EXPECT_FALSE(Dispatch([&] { SaveFileAs(path); }));
    EXPECT_EQ(Contents(path), "protected");
    EXPECT_EQ(Run.JobDirty, kTrue);
}

TEST_F(JobFileSave, AJobThatCannotBeWrittenLeavesTheFileAlone) {
    OpenExample();
    Job.Start.Name[2] = std::string(70000, 'n');
    const std::string path = Write("a.cvn", "old job");
    EXPECT_FALSE(Dispatch([&] { SaveFileAs(path); }));
    EXPECT_EQ(LastMessage(),
              "This job cannot be saved: MCS_Name: a text of 70000 bytes is too long, 65535 is the most");
    EXPECT_EQ(Contents(path), "old job");
    EXPECT_EQ(Run.JobDirty, kTrue);
}

// Killed at any moment: a child process ends itself inside the writer, without a word.
TEST_F(JobFileSave, AProgramThatDiesWhileSavingLeavesTheWholeOldOrNewJob) {
    OpenExample();
    std::string old = ExampleBytes();
    old[old.size() - 1] = 'x';
    old += "tail";
    const std::string path = PathOf("a.cvn");
    for (const std::string operation : {"open", "read", "create", "write", "flush", "rename", "none"}) {
        SCOPED_TRACE(operation);
        Write("a.cvn", old);
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            FileFaults.Refuse = [&](const std::string& asked, const std::string&) -> std::string {
                if (asked == operation) _exit(3);
                return "";
            };
            SaveFileAs(path);
            _exit(4);
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFEXITED(status));
        EXPECT_EQ(WEXITSTATUS(status), operation == "none" ? 4 : 3);
        ExpectBytes(Contents(path), operation == "none" ? ExampleBytes() + "tail" : old);
    }
}

TEST_F(JobFileSave, TheWaitPointerShowsWhileTheFileIsWritten) {
    OpenExample();
    int most = 0;
    FileFaults.Refuse = [&](const std::string&, const std::string&) {
        most = std::max(most, Run.WaitPointers);
        return "";
    };
    SaveFileAs(PathOf("a.cvn"));
    EXPECT_EQ(most, 1);
    EXPECT_EQ(Run.WaitPointers, 0);
}

// A job of 60000 points that a name too long to be saved may end.
class LargeJobFileSave : public JobFileSave {
protected:
    static constexpr int kPoints = 60000;
    void MakeLargeJob() {
        for (int i = 1; i <= kPoints; ++i)
            Job.Start.Add("Point " + std::to_string(i), i, TaggedValue{}, i / 8.0);
        Job.Target = Job.Transformed = Job.Start;
        Job.SetPairs(kPoints);
        Job.UseFlags.assign(3 * kPoints + 1, 1);
        for (auto* const values : {&Job.RVecX, &Job.RVecY}) values->assign(kPoints + 1, 1.5);
        Job.RVecZ.assign(kPoints + 1, -2);
    }
};

TEST_F(LargeJobFileSave, ASaveTakesASliceOfMemoryAndNotASecondJob) {
    MakeLargeJob();
    const std::string bytes = JobBytes(Job, {});
    ASSERT_GT(bytes.size(), 6000000U);
    const MemoryUse saving;
    SaveFileAs(PathOf("a.cvn"));
    EXPECT_LT(saving.Peak(), 2000000U);
    ExpectBytes(Contents(PathOf("a.cvn")), bytes);
    EXPECT_EQ(JobSize(Job, {}), bytes.size());
    // The next save looks whether it is still the file of the last.
    Write("a.cvn", bytes);
    SaveUnlessChanged(PathOf("a.cvn"));
    EXPECT_TRUE(Messages().empty());
}

TEST_F(LargeJobFileSave, AJobThatCannotBeSavedIsRefusedBeforeTheFileIsTouched) {
    MakeLargeJob();
    Job.Transformed.Name[kPoints] = std::string(70000, 'n');
    const std::string path = Write("a.cvn", "old");
    EXPECT_NE(ErrorOf([&] { SaveFileAs(path); }).find("TMCS_Name"), std::string::npos);
    EXPECT_EQ(Contents(path), "old");
    EXPECT_EQ(FilesInFolder(), 1U);
}
