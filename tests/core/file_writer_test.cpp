// The file beside a target: whose it is, what becomes of those that were left behind, rights, owner, links.
#include "core/file_writer.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <memory>

#include "core/file_state.h"
#include "core/files.h"
#include "core/notes.h"
#include "core/platform.h"
#include "support/fixture.h"

using namespace corvinade;

namespace fs = std::filesystem;

class FileWriter : public Program {
protected:
    ~FileWriter() override { LookFaults.Refuse = nullptr; }
    std::vector<std::string> Names() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(folder_)) names.push_back(entry.path().filename());
        std::sort(names.begin(), names.end());
        return names;
    }
    using List = std::vector<std::string>;
    static unsigned ModeOf(const std::string& path) {
        struct stat file {};
        EXPECT_EQ(lstat(path.c_str(), &file), 0) << path;
        return file.st_mode & 0777U;
    }
    // Ends a process in the midst of a write, as a kill does.
    void DieWriting(const std::string& path) const {
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            FileBeside file(path);
            file.Write("half");
            kill(getpid(), SIGKILL);
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSIGNALED(status));
    }
};

TEST_F(FileWriter, WhatAKilledWriterHasLeftIsRemovedByTheNextOne) {
    const std::string path = Write("a.txt", "old");
    DieWriting(path);
    EXPECT_EQ(Names().size(), 2U);
    EXPECT_EQ(Contents(path), "old");
    WriteFile(path, "new");
    EXPECT_EQ(Names(), List{"a.txt"});
    EXPECT_EQ(Contents(path), "new");
}

TEST_F(FileWriter, SeveralThatWereLeftGoAtOnce) {
    const std::string path = PathOf("a.txt");
    for (int number = 1; number <= 4; ++number) Write("a.txt.cvnew" + std::to_string(number), "half");
    WriteFile(path, "new");
    EXPECT_EQ(Names(), List{"a.txt"});
}

TEST_F(FileWriter, WhatAnotherProgramIsWritingIsLeftAlone) {
    const std::string path = PathOf("a.txt");
    FileBeside first(path);
    first.Write("first");
    {
        FileBeside second(path);
        second.Write("second");
        second.Keep(Keeping::Flushed);
    }
    EXPECT_EQ(Contents(path), "second");
    first.Keep(Keeping::Flushed);
    EXPECT_EQ(Contents(path), "first");
    EXPECT_EQ(Names(), List{"a.txt"});
}

TEST_F(FileWriter, ALinkThatStandsInTheWayIsNeitherFollowedNorRemoved) {
    const std::string victim = Write("victim", "mine");
    fs::create_symlink("nowhere", PathOf("a.txt.cvnew1"));
    fs::create_symlink("victim", PathOf("a.txt.cvnew2"));
    fs::create_hard_link(victim, PathOf("a.txt.cvnew3"));
    fs::create_directory(PathOf("a.txt.cvnew4"));
    WriteFile(PathOf("a.txt"), "new");
    EXPECT_EQ(Contents(PathOf("a.txt")), "new");
    EXPECT_EQ(Contents(victim), "mine");
    EXPECT_EQ(Names(),
              (List{"a.txt", "a.txt.cvnew1", "a.txt.cvnew2", "a.txt.cvnew3", "a.txt.cvnew4", "victim"}));
}

TEST_F(FileWriter, NobodyReadsWhatIsNotWholeYetWhoMayNotReadTheOldFile) {
    const std::string path = Write("a.txt", "old");
    for (const unsigned mode : {0600U, 0640U, 0644U}) {
        ASSERT_EQ(chmod(path.c_str(), mode), 0);
        FileBeside file(path);
        file.Write("secret");
        EXPECT_EQ(ModeOf(path + ".cvnew1"), 0600U);
        file.Keep(Keeping::Flushed);
        EXPECT_EQ(ModeOf(path), mode);
    }
}

TEST_F(FileWriter, APrivateFileIsItsOwnersAlone) {
    const std::string path = PathOf("a.ini");
    WritePrivateFile(path, "x");
    EXPECT_EQ(ModeOf(path), 0600U);
    ASSERT_EQ(chmod(path.c_str(), 0644), 0);
    WritePrivateFile(path, "y");
    EXPECT_EQ(ModeOf(path), 0600U);
    EXPECT_EQ(Contents(path), "y");
}

TEST_F(FileWriter, OwnerAndGroupOfTheOldFileAreKept) {
    if (geteuid() != 0) GTEST_SKIP() << "only root may give files away";
    const std::string path = Write("a.txt", "old");
    ASSERT_EQ(chown(path.c_str(), 1234, 2345), 0);
    ASSERT_EQ(chmod(path.c_str(), 0664), 0);
    WriteFile(path, "new");
    struct stat file {};
    ASSERT_EQ(stat(path.c_str(), &file), 0);
    EXPECT_EQ(file.st_uid, 1234U);
    EXPECT_EQ(file.st_gid, 2345U);
    EXPECT_EQ(file.st_mode & 0777U, 0664U);
    EXPECT_TRUE(Notes.List.empty());
}

TEST_F(FileWriter, OtherNamesOfTheOldFileKeepItAndThatIsSaid) {
    const std::string path = Write("a.txt", "old");
    fs::create_hard_link(path, PathOf("b.txt"));
    WriteFile(path, "new");
    EXPECT_EQ(Contents(path), "new");
    EXPECT_EQ(Contents(PathOf("b.txt")), "old");
    ASSERT_EQ(Notes.List.size(), 1U);
    EXPECT_EQ(NoteLine(Notes.List[0]),
              "The file was replaced by a new one: its other name keeps the old contents (" + path + ")");
}

TEST_F(FileWriter, ANameThatFillsItsFolderIsWrittenAllTheSame) {
    const std::string path = PathOf(std::string(255, 'n'));
    WriteFile(path, "a");
    WriteFile(path, "b");
    EXPECT_EQ(Contents(path), "b");
    EXPECT_EQ(Names().size(), 1U);
}

TEST_F(FileWriter, ManyWritersOfOneTargetNeverSeeEachOther) {
    constexpr int kWriters = 8, kRounds = 100;
    const std::string path = PathOf("a.txt");
    std::vector<pid_t> children;
    for (int writer = 0; writer < kWriters; ++writer) {
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            bool good = true;
            for (int round = 0; round < kRounds && good; ++round) {
                try {
                    FileBeside file(path);
                    file.Write(std::string(1000, static_cast<char>('a' + writer)));
                    file.Keep(Keeping::Unflushed);
                } catch (const PlatformError&) {
                    good = false;
                }
            }
            _exit(good ? 0 : 1);
        }
        children.push_back(child);
    }
    for (const pid_t child : children) {
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }
    const std::string text = Contents(path);
    EXPECT_EQ(text, std::string(1000, text.empty() ? '?' : text[0]));
    EXPECT_EQ(Names(), List{"a.txt"});
}

TEST_F(FileWriter, NothingAndItCannotBeToldAreTwoAnswers) {
    const std::string path = Write("a.txt", "a");
    EXPECT_EQ(KindOfPath(path), PathKind::File);
    EXPECT_EQ(KindOfPath(folder_), PathKind::Folder);
    EXPECT_EQ(KindOfPath(std::string()), PathKind::Nothing);
    EXPECT_EQ(KindOfPath(PathOf("none")), PathKind::Nothing);
    EXPECT_EQ(KindOfPath(path + "/below"), PathKind::Nothing);
    EXPECT_EQ(KindOfPath(PathOf(std::string(5000, 'n'))), PathKind::Nothing);
    EXPECT_EQ(KindOfPath(std::string("/dev/null")), PathKind::Other);
    LookFaults.Refuse = [](const std::string&) { return std::string("Input/output error"); };
    EXPECT_EQ(ErrorOf([&] { FileIsThere(path); }),
              "Cannot tell what is at \"" + path + "\": Input/output error");
    EXPECT_NE(ErrorOf([&] { FolderIsThere(folder_); }), "");
}
