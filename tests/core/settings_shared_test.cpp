// The settings file when the disk fails, and when several programs write to it.
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>

#include "cli/headless.h"
#include "core/controller.h"
#include "core/file_state.h"
#include "core/files.h"
#include "core/platform.h"
#include "core/settings.h"
#include "support/fixture.h"

using namespace corvinade;

class SharedSettings : public Program {
protected:
    ~SharedSettings() override { LookFaults.Refuse = nullptr; }
    SharedSettings() { Run.SettingsFilePath = PathOf("Corvinade.ini"); }
    static void RefuseToLook() {
        LookFaults.Refuse = [](const std::string&) { return std::string("Input/output error"); };
    }
};

TEST_F(SharedSettings, AFileThatCannotBeLookedAtIsNotReplaced) {
    IniDateiAnlegen();
    const std::string before = Contents(Run.SettingsFilePath);
    RefuseToLook();
    IniWertSchreiben("Window", "FormUnitsTop", "5");
    EXPECT_EQ(Contents(Run.SettingsFilePath), before);
    EXPECT_EQ(LastMessage(), "The settings could not be stored.\r\n\r\nCannot tell what is at \"" +
                                 Run.SettingsFilePath + "\": Input/output error");
    EXPECT_NE(ErrorOf([] { IniWertLesen("FormUnitsTop"); }), "");
}

TEST_F(SharedSettings, AStartThatCannotLookLeavesTheFileAsItIsAndSaysSo) {
    const std::string path = Write("Corvinade/Corvinade.ini", "[Settings]\r\nMonteCarloRuns=7\r\n");
    Headless.SettingsDir = folder_;
    RefuseToLook();
    StartUp("");
    EXPECT_EQ(Contents(path), "[Settings]\r\nMonteCarloRuns=7\r\n");
    ASSERT_FALSE(Messages().empty());
    EXPECT_NE(Messages()[0].find("Cannot tell what is at"), std::string::npos);
}

TEST_F(SharedSettings, TheFileIsItsOwnersAlone) {
    IniDateiAnlegen();
    struct stat file {};
    ASSERT_EQ(stat(Run.SettingsFilePath.c_str(), &file), 0);
    EXPECT_EQ(file.st_mode & 0777U, 0600U);
    std::filesystem::permissions(Run.SettingsFilePath, std::filesystem::perms(0644));
    IniWertSchreiben("Window", "FormUnitsTop", "5");
    ASSERT_EQ(stat(Run.SettingsFilePath.c_str(), &file), 0);
    EXPECT_EQ(file.st_mode & 0777U, 0600U);
}

TEST_F(SharedSettings, NoUpdateOfSeveralProgramsIsLost) {
    constexpr int kPrograms = 8, kUpdates = 20;
    IniDateiAnlegen();
    std::vector<pid_t> children;
    for (int program = 0; program < kPrograms; ++program) {
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            for (int i = 0; i < kUpdates; ++i)
                IniWertSchreiben("Window", "Of" + std::to_string(program) + "x" + std::to_string(i), "1");
            _exit(0);
        }
        children.push_back(child);
    }
    for (const pid_t child : children) {
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
    }
    int found = 0;
    for (int program = 0; program < kPrograms; ++program)
        for (int i = 0; i < kUpdates; ++i)
            found += IniWertLesen("Of" + std::to_string(program) + "x" + std::to_string(i)) == "1" ? 1 : 0;
    EXPECT_EQ(found, kPrograms * kUpdates);
}
