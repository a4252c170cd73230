// Flags and saved views are steps of undo and redo.
#include "core/job_file.h"
#include "engine/undo.h"
#include "graphics/flag_window.h"
#include "graphics/form_edit_fahne.h"
#include "graphics/form_save_view.h"
#include "graphics/saved_views.h"

using namespace corvinade;

namespace {

class UndoOfPictures : public FlagWindow {
protected:
    static void Back() { UserClick(Main.MenuEditUndo); }
    static void Again() { UserClick(Main.MenuEditRedo); }
    static std::string SavedBytes() { return JobBytes(Job, Main.ComboSaveView.Items); }
    static void Save(const std::string& name) {
        Headless.OnForm = [name](const std::string&) {
            UserSetText(SaveViewWindow.TextNewName, name);
            UserClick(SaveViewWindow.BtnOK);
        };
        UserClick(Main.MenüViewSaveView);
    }
    // The bytes of a job in which the window is kept as a view, with the flags that it has.
    static std::string BytesWithWindow(const ScreenWindow& window) {
        JobRecord job = Job;
        job.nSavedViews = 1;
        job.SavedView[1] = window.State;
        job.SavedView[1].ActiveFlag = 0;  // which one is marked is no step
        return JobBytes(job, {"now"});
    }
};

}  // namespace

TEST_F(UndoOfPictures, AFlagGoesAndComesAgain) {
    ScreenWindow& window = OpenInFlagMode();
    EXPECT_FALSE(Main.MenuEditUndo.Enabled) << "opening, and a view, are no steps";
    FlagOn(window, 1);
    const std::string one = BytesWithWindow(window);
    FlagOn(window, 2);
    const std::string two = BytesWithWindow(window), name = TextOf(window, 2, kFlagHeading, kFlagName);
    ASSERT_EQ(window.State.FlagCount, 2);
    EXPECT_EQ(Main.MenuEditUndo.Text, "&Undo Flags");
    Back();
    EXPECT_TRUE(BytesWithWindow(window) == one);
    EXPECT_EQ(FlagOfRow(window, 2), 0);
    Back();
    EXPECT_EQ(window.State.FlagCount, 0);
    EXPECT_FALSE(Main.MenuEditUndo.Enabled);
    Again();
    EXPECT_TRUE(BytesWithWindow(window) == one);
    Again();
    EXPECT_TRUE(BytesWithWindow(window) == two);
    EXPECT_EQ(LabelOf(window, 2).Row, 2);
    EXPECT_EQ(TextOf(window, 2, kFlagHeading, kFlagName), name);
}

TEST_F(UndoOfPictures, AllFlagsThatAreDeletedAtOnceComeBackAtOnce) {
    ScreenWindow& window = OpenInFlagMode();
    for (const int row : {1, 2, 3}) FlagOn(window, row);
    const std::string before = BytesWithWindow(window);
    ShowWindow("FormEditFahne");
    UserClick(EditFahneWindow.BtnAlleLöschen);
    ASSERT_EQ(window.State.FlagCount, 0);
    Back();
    EXPECT_TRUE(BytesWithWindow(window) == before);
    EXPECT_TRUE(EditFahneWindow.BtnAlleLöschen.Enabled);
}

TEST_F(UndoOfPictures, AFlagGoesBackToWhereItWasDraggedFrom) {
    ScreenWindow& window = OpenInFlagMode();
    FlagOn(window, 1);
    window.State.Flags[1].SnaptoGrid = kFalse;
    StoreScreenPropertiesToRecord(window);
    const std::string before = BytesWithWindow(window);
    const FlagRecord stood = RecordOf(window, 1);
    PressFlag(window, 1, 0, 0);
    DragFlag(window, 40, 30);
    ReleaseFlag(window);
    ASSERT_NE(RecordOf(window, 1).Left, stood.Left);
    Back();
    EXPECT_TRUE(BytesWithWindow(window) == before);
}

TEST_F(UndoOfPictures, StepsOfAWindowGoWithIt) {
    ScreenWindow& window = OpenInFlagMode();
    FlagOn(window, 1);
    Save("front");
    EXPECT_EQ(Main.MenuEditUndo.Text, "&Undo Save View");
    FlagOn(window, 2);
    CloseScreenWindow(window);
    EXPECT_EQ(Main.MenuEditUndo.Text, "&Undo Save View");
    Back();
    EXPECT_FALSE(Main.MenuEditUndo.Enabled);
    EXPECT_EQ(Job.nSavedViews, 0);
}

TEST_F(UndoOfPictures, SavedReplacedAndDeletedViewsComeBackByteByByte) {
    ScreenWindow& window = OpenInFlagMode();
    std::vector<std::string> bytes = {SavedBytes()};
    const auto next = [&] { bytes.push_back(SavedBytes()); };
    Save("one");
    next();
    Save("two");
    next();
    window.State.BildOffsetX = 77;
    StoreScreenPropertiesToRecord(window);
    Headless.Answers["message"].push_back("Yes");
    Save("one");
    next();
    DeleteView(1);
    next();
    for (std::size_t i = 1; i < bytes.size(); ++i) ASSERT_TRUE(bytes[i - 1] != bytes[i]) << i;
    EXPECT_EQ(Main.MenuEditUndo.Text, "&Undo Delete View");
    for (std::size_t i = bytes.size() - 1; i > 0; --i) {
        Back();
        EXPECT_TRUE(SavedBytes() == bytes[i - 1]) << i;
    }
    EXPECT_FALSE(Main.MenuEditUndo.Enabled);
    for (std::size_t i = 1; i < bytes.size(); ++i) {
        Again();
        EXPECT_TRUE(SavedBytes() == bytes[i]) << i;
    }
}

TEST_F(UndoOfPictures, AViewThatWasShownGivesWayToTheOneBeforeInItsSize) {
    ScreenWindow& window = OpenInFlagMode();
    FlagOn(window, 1);
    Save("with flag");
    ResizeScreenWindow(window, 640, 480);
    AlleLöschen(window);
    window.State.BildOffsetX = 77;
    StoreScreenPropertiesToRecord(window);
    const std::string before = BytesWithWindow(window);
    Main.ComboSaveView.Index = 0;
    UserClick(Main.ComboSaveView);
    const std::string behind = BytesWithWindow(window);
    ASSERT_EQ(window.State.FlagCount, 1);
    ASSERT_EQ(window.Screen.Width, 800);
    EXPECT_EQ(Main.MenuEditUndo.Text, "&Undo View");
    Back();
    EXPECT_TRUE(BytesWithWindow(window) == before);
    EXPECT_EQ(window.Screen.Width, 640);
    Again();
    EXPECT_TRUE(BytesWithWindow(window) == behind);
    EXPECT_EQ(window.Screen.Width, 800);
}

TEST_F(UndoOfPictures, FlagsThatTheLastViewTakesAwayComeBack) {
    ScreenWindow& window = OpenInFlagMode();
    FlagOn(window, 1);
    const std::string before = BytesWithWindow(window);
    UserClick(Main.MenüViewLastView);
    ASSERT_EQ(window.State.FlagCount, 0);
    Back();
    EXPECT_EQ(window.State.FlagCount, 1);
    EXPECT_TRUE(BytesWithWindow(window) == before);
}
