// The one reader and the one writer of files.
#include "core/files.h"

#include <sys/stat.h>

#include <algorithm>
#include <filesystem>

#include "core/platform.h"
#include "support/fixture.h"

using namespace corvinade;

namespace fs = std::filesystem;

class Files : public Program {
protected:
    std::vector<std::string> Beside() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(folder_)) names.push_back(entry.path().filename());
        std::sort(names.begin(), names.end());
        return names;
    }
    static void RefuseWith(const std::string& operation) {
        FileFaults.Refuse = [operation](const std::string& asked, const std::string&) {
            return asked == operation ? std::string("the disk is full") : std::string();
        };
    }
};

TEST_F(Files, WrittenBytesAreReadBackUnchanged) {
    std::string bytes;
    for (int i = 0; i < 100000; ++i) bytes += static_cast<char>(i * 7 % 256);
    const std::string path = PathOf("a.bin");
    WriteFile(path, bytes);
    EXPECT_EQ(Contents(path), bytes);
    EXPECT_EQ(ReadFile(path).View(), bytes);
    WriteFile(path, "");
    EXPECT_EQ(ReadFile(path).View(), "");
    EXPECT_EQ(Beside(), std::vector<std::string>{"a.bin"});
}

TEST_F(Files, TheSizeOfAFileIsToldAndThatOfNoneIs0) {
    EXPECT_EQ(FileSize(Write("a.bin", std::string(1234, '\0'))), 1234U);
    EXPECT_EQ(FileSize(Write("empty", "")), 0U);
    EXPECT_EQ(FileSize(PathOf("none")), 0U);
    EXPECT_EQ(FileSize(folder_), 0U);
}

TEST_F(Files, NamesWithUmlautsAndBlanksAreFound) {
    const std::string path = PathOf("Rückgängig 1.cvn");
    WriteFile(path, "x");
    EXPECT_TRUE(File_Exist(path));
    EXPECT_EQ(ReadFile(path).View(), "x");
}

TEST_F(Files, TheTestsOfExistenceNeverFail) {
    Write("a.txt", "a");
    EXPECT_TRUE(File_Exist(PathOf("a.txt")));
    EXPECT_FALSE(File_Exist(folder_));
    EXPECT_FALSE(File_Exist(""));
    EXPECT_FALSE(File_Exist(PathOf("a.txt/b")));
    EXPECT_FALSE(File_Exist(PathOf(std::string(5000, 'n'))));
    EXPECT_TRUE(Directory_Exist(folder_));
    EXPECT_FALSE(Directory_Exist(PathOf("a.txt")));
    EXPECT_FALSE(Directory_Exist(""));
    EXPECT_FALSE(Directory_Exist(PathOf("none")));
}

TEST_F(Files, WhatCannotBeReadIsNamed) {
    const std::string missing = PathOf("none.txt");
    EXPECT_EQ(ErrorOf([&] { ReadFile(missing); }), "Cannot read \"" + missing + "\": there is no such file");
    EXPECT_EQ(ErrorOf([&] { ReadFile(folder_); }),
              "Cannot read \"" + folder_ + "\": it is a folder, not a file");
    EXPECT_NE(ErrorOf([] { ReadFile(""); }), "");
}

TEST_F(Files, APipeIsRefusedInsteadOfWaitedFor) {
    const std::string path = PathOf("pipe");
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    EXPECT_NE(ErrorOf([&] { ReadFile(path); }), "");
    EXPECT_FALSE(File_Exist(path));
}

TEST_F(Files, RefusedReadingIsTold) {
    const std::string path = Write("a.txt", "a");
    for (const char* operation : {"open", "read"}) {
        RefuseWith(operation);
        EXPECT_EQ(ErrorOf([&] { ReadFile(path); }), "Cannot read \"" + path + "\": the disk is full");
    }
}

TEST_F(Files, ARefusalAtAnyStepLeavesTheOldFileAndNothingBeside) {
    const std::string path = Write("a.txt", "old");
    for (const char* operation : {"create", "write", "flush", "rename"}) {
        RefuseWith(operation);
        EXPECT_EQ(ErrorOf([&] { WriteFile(path, "new"); }),
                  "Cannot write \"" + path + "\": the disk is full");
        EXPECT_EQ(Contents(path), "old") << operation;
        EXPECT_EQ(Beside(), std::vector<std::string>{"a.txt"}) << operation;
    }
    FileFaults = FileFaultRecord{};
    WriteFile(path, "new");
    EXPECT_EQ(Contents(path), "new");
}

TEST_F(Files, ANewFileThatIsRefusedIsNotThere) {
    for (const char* operation : {"create", "write", "flush", "rename"}) {
        RefuseWith(operation);
        EXPECT_NE(ErrorOf([&] { WriteFile(PathOf("a.txt"), "new"); }), "");
        EXPECT_TRUE(Beside().empty()) << operation;
    }
}

TEST_F(Files, AFileThatCannotBeCreatedIsToldAndNothingIsLeft) {
    EXPECT_NE(ErrorOf([&] { WriteFile(PathOf("none/a.txt"), "x"); }), "");
    EXPECT_NE(ErrorOf([&] { WriteFile(PathOf(std::string(300, 'n')), "x"); }), "");
    EXPECT_TRUE(Beside().empty());
}

TEST_F(Files, AFolderIsNotOverwritten) {
    fs::create_directory(PathOf("a"));
    EXPECT_EQ(ErrorOf([&] { WriteFile(PathOf("a"), "x"); }),
              "Cannot write \"" + PathOf("a") + "\": it is a folder, not a file");
    EXPECT_EQ(Beside(), std::vector<std::string>{"a"});
}

TEST_F(Files, PermissionsOfTheOldFileAreKept) {
    const std::string path = Write("a.txt", "old");
    fs::permissions(path, fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
    WriteFile(path, "new");
    EXPECT_EQ(fs::status(path).permissions(),
              fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
}

TEST_F(Files, AWriteProtectedFileIsNotReplaced) {
    const std::string path = Write("a.txt", "old");
    fs::permissions(path, fs::perms::owner_read);
    EXPECT_EQ(ErrorOf([&] { WriteFile(path, "new"); }),
              "Cannot write \"" + path + "\": it is write-protected");
    EXPECT_EQ(Contents(path), "old");
}

TEST_F(Files, ALinkStillPointsToItsFileAfterwards) {
    const std::string path = Write("real/a.txt", "old");
    fs::create_symlink(path, PathOf("link.txt"));
    WriteFile(PathOf("link.txt"), "new");
    EXPECT_TRUE(fs::is_symlink(PathOf("link.txt")));
    EXPECT_EQ(Contents(path), "new");
}

TEST_F(Files, AForeignFileBesideTheTargetIsLeftAlone) {
    Write("a.txt.new1", "mine");
    WriteFile(PathOf("a.txt"), "x");
    EXPECT_EQ(Contents(PathOf("a.txt.new1")), "mine");
    EXPECT_EQ(Beside(), (std::vector<std::string>{"a.txt", "a.txt.new1"}));
}

TEST_F(Files, FoldersAreCreatedWithThoseAboveThem) {
    CreateFolder(PathOf("a/b/c"));
    EXPECT_TRUE(Directory_Exist(PathOf("a/b/c")));
    CreateFolder(PathOf("a/b/c"));
    Write("file", "x");
    EXPECT_NE(ErrorOf([&] { CreateFolder(PathOf("file")); }), "");
    EXPECT_NE(ErrorOf([&] { CreateFolder(PathOf("file/below")); }), "");
    RefuseWith("folder");
    EXPECT_EQ(ErrorOf([&] { CreateFolder(PathOf("d")); }),
              "Cannot create the folder \"" + PathOf("d") + "\": the disk is full");
    EXPECT_FALSE(Directory_Exist(PathOf("d")));
}

TEST_F(Files, ALinkWhoseFileIsNotThereYetGetsOne) {
    fs::create_directory(PathOf("there"));
    fs::create_symlink("there/file.txt", PathOf("link.txt"));
    WriteFile(PathOf("link.txt"), "new");
    EXPECT_TRUE(fs::is_symlink(PathOf("link.txt")));
    EXPECT_EQ(Contents(PathOf("there/file.txt")), "new");
}

TEST_F(Files, WhatIsNoRegularFileIsNotReplaced) {
    fs::create_symlink("b", PathOf("a"));
    fs::create_symlink("a", PathOf("b"));
    EXPECT_EQ(ErrorOf([&] { WriteFile(PathOf("a"), "new"); }),
              "Cannot write \"" + PathOf("a") + "\": its links lead in a circle");
    ASSERT_EQ(mkfifo(PathOf("pipe").c_str(), 0600), 0);
    EXPECT_EQ(ErrorOf([&] { WriteFile(PathOf("pipe"), "new"); }),
              "Cannot write \"" + PathOf("pipe") + "\": it is no regular file");
    EXPECT_TRUE(fs::is_fifo(PathOf("pipe")));
    EXPECT_EQ(Beside(), (std::vector<std::string>{"a", "b", "pipe"}));
}

TEST_F(Files, RenamingNeverGoesOverAFile) {
    const std::string a = Write("a", "A");
    const std::string b = Write("b", "B");
    EXPECT_NE(ErrorOf([&] { RenameFile(a, b); }), "");
    EXPECT_EQ(Contents(b), "B");
    RenameFile(a, PathOf("c"));
    EXPECT_EQ(Beside(), (std::vector<std::string>{"b", "c"}));
    EXPECT_NE(ErrorOf([&] { RenameFile(a, PathOf("d")); }), "");
    RefuseWith("rename");
    EXPECT_NE(ErrorOf([&] { RenameFile(b, PathOf("d")); }), "");
    EXPECT_EQ(Beside(), (std::vector<std::string>{"b", "c"}));
}

TEST_F(Files, PathsAreTakenApartAndPutTogether) {
    EXPECT_EQ(Pfad("/a/b/c.txt"), "/a/b");
    EXPECT_EQ(Pfad("c.txt"), "");
    EXPECT_EQ(Pfad("/c.txt"), "");
    EXPECT_EQ(JoinPath("/a", "b"), "/a/b");
    EXPECT_EQ(JoinPath("/a/", "b"), "/a/b");
    EXPECT_EQ(JoinPath("", "b"), "b");
}
