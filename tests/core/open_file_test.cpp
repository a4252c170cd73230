// What is opened for the user to look at starts no program unasked.
#include "core/open_file.h"

#include <sys/stat.h>

#include "cli/headless.h"
#include "core/settings.h"
#include "support/fixture.h"

using namespace corvinade;

using OpenedFiles = Program;

TEST_F(OpenedFiles, APointFileIsOpenedAtOnce) {
    const std::string path = Write("points.txt", "A 1 2 3\n");
    OpenToLookAt(path);
    ASSERT_EQ(Headless.Shell.size(), 1U);
    EXPECT_EQ(Headless.Shell[0].Verb, "Open");
    EXPECT_EQ(Headless.Shell[0].Path, path);
}

TEST_F(OpenedFiles, WhatCouldBeAProgramIsShownAndAskedAbout) {
    const std::string script = Write("points", "#!/bin/sh\n");
    ASSERT_EQ(chmod(script.c_str(), 0755), 0);
    for (const std::string& path :
         {script, Write("points.txt.desktop", ""), Write("POINTS.Exe", ""), Write("a.sh", "")}) {
        Headless.Shell.clear();
        Headless.Answers["message"].push_back("No");
        OpenToLookAt(path);
        EXPECT_TRUE(Headless.Shell.empty()) << path;
        EXPECT_NE(LastMessage().find(path), std::string::npos);
        Headless.Answers["message"].push_back("Yes");
        OpenToLookAt(path);
        EXPECT_EQ(Headless.Shell.size(), 1U) << path;
    }
}

TEST_F(OpenedFiles, TheUsersEditorShowsAndDoesNotStart) {
    Settings.Editor = "/usr/bin/editor";
    const std::string path = Write("a.sh", "");
    OpenToLookAt(path);
    ASSERT_EQ(Headless.Shell.size(), 1U);
    EXPECT_EQ(Headless.Shell[0].Verb, "/usr/bin/editor");
}
