// The dialog that chooses a folder.
#include "analysis/form_change_dir.h"

#include <filesystem>

#include "cli/headless.h"
#include "core/controller.h"
#include "core/files.h"
#include "support/fixture.h"

using namespace corvinade;

namespace fs = std::filesystem;

namespace {

using Names = std::vector<std::string>;

class ChoosingAFolder : public Program {
protected:
    ChoosingAFolder() {
        StartUp("");
        for (const char* name : {"tree/b/x", "tree/a/deep/x", "tree/file.txt"}) Write(name, "");
    }
    // Asks, with the user doing `work` in the window.
    std::optional<std::string> Ask(const std::function<void()>& work, const std::string& begin = "tree") {
        Headless.OnForm = [&work](const std::string&) { work(); };
        return AskFolder("Where", PathOf(begin));
    }
};

}  // namespace

TEST_F(ChoosingAFolder, TheListShowsTheFoldersOfTheOneThatIsOpen) {
    const auto chosen = Ask([&] {
        EXPECT_EQ(ChangeDir.Window.Caption, "Where");
        EXPECT_EQ(ChangeDir.Drive1.Items, Names{"/"});
        EXPECT_EQ(ChangeDir.Drive1.Text, "/");
        EXPECT_EQ(ChangeDir.Dir1.Items, (Names{"..", "a", "b"}));
        EXPECT_EQ(ChangeDir.TextPath.Text, PathOf("tree"));
        UserClick(ChangeDir.BtnOK);
    });
    EXPECT_EQ(chosen, PathOf("tree"));
}

TEST_F(ChoosingAFolder, AClickChoosesAndADoubleClickOpens) {
    const auto chosen = Ask([&] {
        UserSetIndex(ChangeDir.Dir1, 1);
        EXPECT_EQ(ChangeDir.TextPath.Text, PathOf("tree/a"));
        EXPECT_EQ(ChangeDir.Dir1.Items.size(), 3u) << "not opened yet";
        UserDblClick(ChangeDir.Dir1);
        EXPECT_EQ(ChangeDir.Dir1.Items, (Names{"..", "deep"}));
        UserSetIndex(ChangeDir.Dir1, 0);
        EXPECT_EQ(ChangeDir.TextPath.Text, PathOf("tree"));
        UserClick(ChangeDir.BtnOpen);
        EXPECT_EQ(ChangeDir.Dir1.Items, (Names{"..", "a", "b"}));
        UserSetIndex(ChangeDir.Dir1, 2);
        UserClick(ChangeDir.BtnOK);
    });
    EXPECT_EQ(chosen, PathOf("tree/b"));
}

TEST_F(ChoosingAFolder, ADriveOpensItsTop) {
    Ask([] {
        ChangeDir.Drive1.Index = -1;
        UserSetIndex(ChangeDir.Drive1, 0);
        EXPECT_EQ(ChangeDir.TextPath.Text, "/");
        UserSetIndex(ChangeDir.Dir1, 0);
        UserDblClick(ChangeDir.Dir1);
        EXPECT_EQ(ChangeDir.TextPath.Text, "/") << "there is nothing above";
        UserClick(ChangeDir.BtnCancel);
    });
}

TEST_F(ChoosingAFolder, ANewFolderIsMadeAndChosen) {
    const auto chosen = Ask([&] {
        Headless.Answers["input"].push_back("new one");
        UserClick(ChangeDir.Command3);
        EXPECT_EQ(Headless.Dialogs.back().Title, "Verzeichnis erstellen");
        EXPECT_EQ(Headless.Dialogs.back().Text, "Neues Verzeichnis erstellen in: " + PathOf("tree"));
        UserClick(ChangeDir.BtnOK);
    });
    EXPECT_EQ(chosen, PathOf("tree/new one"));
    EXPECT_TRUE(Directory_Exist(PathOf("tree/new one")));
}

TEST_F(ChoosingAFolder, NoNameMakesNoFolderAndAFileInTheWayIsTold) {
    Ask([&] {
        for (const std::optional<std::string>& name :
             {std::optional<std::string>(), std::optional<std::string>("")}) {
            Headless.Answers["input"].push_back(name);
            UserClick(ChangeDir.Command3);
        }
        EXPECT_TRUE(Messages().empty());
        Headless.Answers["input"].push_back("file.txt");
        UserClick(ChangeDir.Command3);
        EXPECT_NE(LastMessage().find("Cannot create the folder"), std::string::npos);
        UserClick(ChangeDir.BtnCancel);
    });
}

TEST_F(ChoosingAFolder, AFolderThatIsNotThereIsNotTaken) {
    const auto chosen = Ask([&] {
        for (Control* button : {&ChangeDir.BtnOK, &ChangeDir.BtnOpen}) {
            UserSetText(ChangeDir.TextPath, PathOf("none"));
            UserClick(*button);
            EXPECT_EQ(LastMessage(), "There is no folder \"" + PathOf("none") + "\".");
            EXPECT_TRUE(IsLoaded("FormChangeDir"));
        }
        UserEscape(FormChangeDir_Entry);
    });
    EXPECT_EQ(chosen, std::nullopt);
}

TEST_F(ChoosingAFolder, TheListBeginsAtTheNearestFolderThatThereIs) {
    Ask(
        [&] {
            EXPECT_EQ(ChangeDir.TextPath.Text, PathOf("tree"));
            UserClick(ChangeDir.BtnCancel);
        },
        "tree/gone/further");
}
