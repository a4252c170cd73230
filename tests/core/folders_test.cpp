// Lists of files and folders, and files that are written piece by piece.
#include "core/folders.h"

#include <sys/stat.h>

#include <algorithm>
#include <filesystem>

#include "core/file_writer.h"
#include "core/files.h"
#include "core/platform.h"
#include "support/fixture.h"

using namespace corvinade;

namespace fs = std::filesystem;

using FileNames = std::vector<std::string>;

class Folders : public Program {};
class PieceByPiece : public Program {
protected:
    FileNames Beside() const {
        FileNames names = FilesOfFolder(folder_);
        return names;
    }
};

TEST_F(Folders, FilesComeByTheirNamesAndFoldersAreNone) {
    for (const char* name : {"b.txt", "a.txt", "C.txt", "ä.txt", ".hidden", "no dot", "sub/inner.txt"})
        Write(name, "x");
    ASSERT_EQ(mkfifo(PathOf("pipe").c_str(), 0600), 0);
    fs::create_symlink("a.txt", PathOf("link.txt"));
    EXPECT_EQ(FilesOfFolder(folder_),
              (FileNames{".hidden", "C.txt", "a.txt", "b.txt", "link.txt", "no dot", "ä.txt"}));
    EXPECT_EQ(FilesOfFolder(folder_ + "/"), FilesOfFolder(folder_));
}

TEST_F(Folders, AFolderThatIsNotThereHoldsNothing) {
    EXPECT_EQ(FilesOfFolder(PathOf("none")), FileNames{});
    EXPECT_EQ(FilesOfFolder(""), FileNames{});
    EXPECT_EQ(FoldersOfFolder(PathOf("none")), FileNames{});
    EXPECT_EQ(FoldersOfFolder(""), FileNames{});
}

TEST_F(Folders, FoldersAreListedWithoutTheHiddenOnes) {
    for (const char* name : {"b/x", "A/x", ".hidden/x", "file.txt"}) Write(name, "x");
    EXPECT_EQ(FoldersOfFolder(folder_), (FileNames{"A", "b"}));
}

TEST_F(Folders, TheNameIsWhatStandsBehindTheLastSeparator) {
    EXPECT_EQ(NameOfFile("/a/b.c/points.txt"), "points.txt");
    EXPECT_EQ(NameOfFile("points"), "points");
    EXPECT_EQ(NameOfFile("/ä.txt"), "ä.txt");
    EXPECT_EQ(NameOfFile("/a/"), "");
    EXPECT_EQ(NameOfFile(""), "");
}

TEST_F(Folders, AFolderHasOnePlainPathAndOneAbove) {
    EXPECT_EQ(PlainFolder("/a/b/"), "/a/b");
    EXPECT_EQ(PlainFolder("/a/../b/."), "/b");
    EXPECT_EQ(PlainFolder("/"), "/");
    EXPECT_EQ(FolderAbove("/a/b"), "/a");
    EXPECT_EQ(FolderAbove("/a"), "/");
    EXPECT_EQ(FolderAbove("/"), "/");
}

TEST_F(Folders, ThereIsADriveToBeginWith) {
    EXPECT_EQ(Drives(), FileNames{"/"});
}

TEST_F(PieceByPiece, NothingStandsInThePlaceBeforeItIsKept) {
    const std::string path = Write("out.txt", "old");
    {
        FileBeside file(path);
        file.Write("new ");
        file.Write("text");
        EXPECT_EQ(Contents(path), "old");
        file.Keep(Keeping::Unflushed);
        EXPECT_EQ(Contents(path), "new text");
    }
    EXPECT_EQ(Beside(), FileNames{"out.txt"});
}

TEST_F(PieceByPiece, WhatIsNotKeptIsGone) {
    const std::string path = PathOf("out.txt");
    { FileBeside(path).Write("half"); }
    EXPECT_EQ(Beside(), FileNames{});
}

TEST_F(PieceByPiece, ARefusalAtAnyStepLeavesTheOldFileAlone) {
    const std::string path = Write("out.txt", "old");
    for (const std::string operation : {"create", "write", "flush", "rename"}) {
        FileFaults.Refuse = [&](const std::string& asked, const std::string&) {
            return asked == operation ? std::string("the disk is full") : std::string();
        };
        EXPECT_EQ(ErrorOf([&] {
                      FileBeside file(path);
                      file.Write("new");
                      file.Keep(Keeping::Flushed);
                  }),
                  "Cannot write \"" + path + "\": the disk is full");
        EXPECT_EQ(Contents(path), "old") << operation;
        EXPECT_EQ(Beside(), FileNames{"out.txt"}) << operation;
    }
}

TEST_F(PieceByPiece, AFullDeviceIsTold) {
    // A file cannot be renamed over a device, so that the refusal comes at the beginning already.
    EXPECT_EQ(ErrorOf([] { FileBeside file("/dev/full"); }),
              "Cannot write \"/dev/full\": it is no regular file");
}
