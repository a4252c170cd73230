// Views that a job keeps: saving, naming, restoring, deleting.
#include "graphics/saved_views.h"

#include "graphics/form_save_view.h"
#include "graphics/graphics_refresh.h"
#include "graphics/input_window.h"
#include "graphics/lines.h"
#include "graphics/view_undo.h"

using namespace corvinade;

class SavedViews : public InputWindow {
protected:
    // The user types a name and presses OK, in the next dialog.
    static void WillName(const std::string& name) {
        Headless.OnForm = [name](const std::string& window) {
            EXPECT_EQ(window, "FormSaveView");
            UserSetText(SaveViewWindow.TextNewName, name);
            UserClick(SaveViewWindow.BtnOK);
        };
    }
    static void Save(const std::string& name) {
        WillName(name);
        UserClick(Main.MenüViewSaveView);
    }
    static const Texts& Names() { return Main.ComboSaveView.Items; }
    static ScreenRecord& Slot(int number) { return Job.SavedView[static_cast<std::size_t>(number)]; }
    // A step of the ring that can be told from all others.
    static void ShowAt(ScreenWindow& window, float offset) {
        window.State.BildOffsetX = offset;
        Stelle_Grafik_dar(window);
        StoreScreenPropertiesToRecord(window);
    }
};

TEST_F(SavedViews, AViewIsKeptInTheNextSlotUnderItsName) {
    ScreenWindow& window = OpenFive();
    Run.JobDirty = kFalse;
    ShowAt(window, 11);
    Save("front");
    ShowAt(window, 22);
    Save("Rückseite");
    EXPECT_EQ(Names(), (Texts{"front", "Rückseite"}));
    EXPECT_EQ(Job.nSavedViews, 2);
    EXPECT_EQ(Slot(1).BildOffsetX, 11);
    EXPECT_EQ(Slot(2).BildOffsetX, 22);
    EXPECT_TRUE(IsTrue(Run.JobDirty));
    EXPECT_EQ(Main.ComboSaveView.Index, 1);
    EXPECT_EQ(Main.ComboSaveView.Text, "Rückseite");
    EXPECT_FALSE(IsLoaded("FormSaveView"));
}

TEST_F(SavedViews, WhatIsKeptIsTheStepOfTheRingWithTheSizeOfTheWindow) {
    ScreenWindow& window = OpenFive();
    ShowAt(window, 11);
    window.State.BildOffsetX = 99;  // not stored: no step
    ResizeScreenWindow(window, 640, 480);
    UserClick(Main.ToolbarSaveView_SaveView);
    EXPECT_EQ(Job.nSavedViews, 0);  // nobody has answered
    EXPECT_TRUE(Headless.Unanswered);
    ExpectUnanswered();
    WillName("a");
    UserClick(Main.ToolbarSaveView_SaveView);
    EXPECT_EQ(Slot(1).BildOffsetX, 11);
    EXPECT_EQ(Slot(1).WindowWidth, 640);
    EXPECT_EQ(Slot(1).WindowHeight, 480);
    EXPECT_EQ(Slot(1).FlagIndex, std::vector<std::int16_t>(8, 0));  // 3 + 3 + 1 + 1 rows
}

TEST_F(SavedViews, TheFiftyFirstIsRefusedWithTheMessageAndNothingChanges) {
    ScreenWindow& window = OpenFive();
    for (int i = 1; i <= kMostViews; ++i) {
        ShowAt(window, static_cast<float>(i));
        Save("view " + std::to_string(i));
    }
    EXPECT_EQ(Job.nSavedViews, 50);
    EXPECT_EQ(Slot(50).BildOffsetX, 50);
    EXPECT_EQ(Messages(), Texts{});
    Run.JobDirty = kFalse;
    const Texts before = Names();
    Headless.OnForm = [](const std::string&) { ADD_FAILURE() << "the dialog came up"; };
    UserClick(Main.MenüViewSaveView);
    EXPECT_EQ(Messages(), Texts{"max. 50 Views to save, you must delete a view to save a new one"});
    EXPECT_EQ(Job.nSavedViews, 50);
    EXPECT_EQ(Names(), before);
    EXPECT_FALSE(IsTrue(Run.JobDirty));
    // After one has been deleted there is room.
    DeleteView(1);
    Save("view 51");
    EXPECT_EQ(Names().back(), "view 51");
    EXPECT_EQ(Slot(1).BildOffsetX, 2);
    EXPECT_EQ(Slot(50).BildOffsetX, 50);
}

// --- The dialog -------------------------------------------------------------------------------------------

TEST_F(SavedViews, TheDialogListsAllNamesAndTakesTheChosenOne) {
    OpenFive();
    Save("a");
    Save("b");
    Headless.OnForm = [](const std::string&) {
        EXPECT_EQ(SaveViewWindow.ListViews.Items, (Texts{"a", "b"}));
        EXPECT_EQ(SaveViewWindow.TextNewName.Text, "");
        UserSetIndex(SaveViewWindow.ListViews, 1);
        EXPECT_EQ(SaveViewWindow.TextNewName.Text, "b");
        UserClick(SaveViewWindow.BtnAbbrechen);
        EXPECT_FALSE(IsLoaded("FormSaveView"));
    };
    UserClick(Main.MenüViewSaveView);
    EXPECT_EQ(Job.nSavedViews, 2);
}

TEST_F(SavedViews, AnEmptyNameDoesNothing) {
    OpenFive();
    Headless.OnForm = [](const std::string&) {
        UserClick(SaveViewWindow.BtnOK);
        EXPECT_TRUE(IsLoaded("FormSaveView"));
        UserSetText(SaveViewWindow.TextNewName, "a");
        UserEscape(FormSaveView_Entry);
    };
    Run.JobDirty = kFalse;
    UserClick(Main.MenüViewSaveView);
    EXPECT_EQ(Job.nSavedViews, 0);
    EXPECT_FALSE(IsTrue(Run.JobDirty));
    EXPECT_EQ(Messages(), Texts{});
}

TEST_F(SavedViews, ANameInUseIsReplacedAfterAQuestion) {
    ScreenWindow& window = OpenFive();
    ShowAt(window, 1);
    Save("a");
    ShowAt(window, 2);
    Save("b");
    ShowAt(window, 3);
    Headless.Answers["message"] = {"No"};
    Headless.OnForm = [](const std::string&) {
        UserSetText(SaveViewWindow.TextNewName, "a");
        UserClick(SaveViewWindow.BtnOK);
        EXPECT_TRUE(IsLoaded("FormSaveView"));  // back to the name
        UserClick(SaveViewWindow.BtnAbbrechen);
    };
    UserClick(Main.MenüViewSaveView);
    EXPECT_EQ(Slot(1).BildOffsetX, 1);
    EXPECT_EQ(Headless.Dialogs.back().Title, "Name in use");
    EXPECT_EQ(LastMessage(), "a is already in use for a view, will you replace the old one?");
    EXPECT_EQ(Headless.Dialogs.back().Buttons, (Texts{"Yes", "No"}));
    Headless.Answers["message"] = {"Yes"};
    Save("a");
    EXPECT_EQ(Names(), (Texts{"a", "b"}));
    EXPECT_EQ(Job.nSavedViews, 2);
    EXPECT_EQ(Slot(1).BildOffsetX, 3);
    EXPECT_EQ(Slot(2).BildOffsetX, 2);
    EXPECT_EQ(Main.ComboSaveView.Index, 0);
}

TEST_F(SavedViews, WhatGoesAwayWhileTheNameIsAskedForIsNotSaved) {
    OpenFive();
    const auto answer = [] {
        UserSetText(SaveViewWindow.TextNewName, "a");
        UserClick(SaveViewWindow.BtnOK);
    };
    Headless.OnForm = [&answer](const std::string&) {
        CloseAllGraphicsWindows();
        answer();
    };
    UserClick(Main.MenüViewSaveView);
    EXPECT_EQ(Job.nSavedViews, 0);
    ProgrammLogik();
    UserClick(Main.MenueGraphics);
    Headless.OnForm = [&answer](const std::string&) {
        ++::Run.JobGeneration;  // another job
        answer();
    };
    UserClick(Main.MenüViewSaveView);
    EXPECT_EQ(Job.nSavedViews, 0);
    EXPECT_EQ(Names(), Texts{});
}

TEST_F(SavedViews, TheDialogComesUpOnce) {
    OpenFive();
    int asked = 0;
    Headless.OnForm = [&asked](const std::string&) {
        ++asked;
        UserClick(Main.MenüViewSaveView);  // a key that comes through all the same
        UserSetText(SaveViewWindow.TextNewName, "a");
        UserClick(SaveViewWindow.BtnOK);
    };
    UserClick(Main.MenüViewSaveView);
    EXPECT_EQ(asked, 1);
    EXPECT_EQ(Names(), Texts{"a"});
}

// --- Restoring --------------------------------------------------------------------------------------------

TEST_F(SavedViews, TheChosenEntryIsRestoredWithTheSizeOfItsWindow) {
    ScreenWindow& window = OpenFive();
    SetViewAngles(window, 0.1, 0.2, 0.3);
    AddLine(window.State, 1, 2);
    window.State.LineMode = kTrue;
    ShowAt(window, 11);
    Save("a");
    LookStraight(window);
    window.State.LineMode = kFalse;
    window.State.LineTable.clear();
    ShowAt(window, 22);
    Save("b");
    ResizeScreenWindow(window, 1000, 700);
    const int stored = window.UndoCount;
    UserSetIndex(Main.ComboSaveView, 0);
    EXPECT_EQ(window.State.BildOffsetX, 11);
    EXPECT_EQ(Angles(window), (std::array<double, 3>{0.1, 0.2, 0.3}));
    EXPECT_EQ(LineCount(window.State), 1);
    EXPECT_TRUE(Main.MenüGraphicsLinesLineModeActive.Checked);
    EXPECT_EQ(PictureWidth(window), kWidth);
    EXPECT_EQ(PictureHeight(window), kHeight);
    EXPECT_EQ(window.UndoCount, stored + 1);  // it can be taken back
    Rückgängig_Back(window);
    EXPECT_EQ(window.State.BildOffsetX, 22);
    EXPECT_FALSE(Main.MenüGraphicsLinesLineModeActive.Checked);
}

TEST_F(SavedViews, TheTableOfFlagsIsSizedToThePointsThatThereAre) {
    ScreenWindow& window = OpenFive();
    Save("a");
    for (const std::size_t size : {0U, 3U, 500U}) {
        Slot(1).FlagIndex.assign(size, 0);
        Slot(1).FlagIndexShape = {{static_cast<std::uint32_t>(size), 1}};
        GetScreenPropertiesFromSavedView(window, 1);
        EXPECT_EQ(window.State.FlagIndex.size(), 8U);
        EXPECT_TRUE(window.State.FlagIndexShape.empty());
    }
}

TEST_F(SavedViews, ViewsWithoutASizeOrOfHugeWindowsDoNoHarm) {
    ScreenWindow& window = OpenFive();
    Save("a");
    Slot(1).WindowWidth = 0;
    GetScreenPropertiesFromSavedView(window, 1);
    EXPECT_EQ(PictureWidth(window), kWidth);
    Slot(1).WindowWidth = -5;
    Slot(1).WindowHeight = 300;
    GetScreenPropertiesFromSavedView(window, 1);
    EXPECT_EQ(PictureHeight(window), kHeight);
    Slot(1).WindowWidth = Slot(1).WindowHeight = 32767;
    GetScreenPropertiesFromSavedView(window, 1);
    EXPECT_EQ(PictureWidth(window), 7680);
    EXPECT_EQ(PictureHeight(window), 4320);
    for (const int number : {-1, 0, 2, 51}) GetScreenPropertiesFromSavedView(window, number);
    EXPECT_EQ(PictureWidth(window), 7680);
}

TEST_F(SavedViews, AViewBelongsToTheJobAndNotToTheWindow) {
    ScreenWindow& first = OpenFive();
    ShowAt(first, 11);
    Save("a");
    ScreenWindow& second = OpenScreenWindow();
    Main.ComboSaveView.Index = -1;
    UserSetIndex(Main.ComboSaveView, 0);
    EXPECT_EQ(second.State.BildOffsetX, 11);
    CloseAllGraphicsWindows();
    EXPECT_EQ(Names(), Texts{"a"});
    Main.ComboSaveView.Index = -1;
    UserSetIndex(Main.ComboSaveView, 0);  // no window: nothing to restore
}

// --- Deleting ---------------------------------------------------------------------------------------------

TEST_F(SavedViews, DeletingMovesTheViewsBehindUpByOne) {
    ScreenWindow& window = OpenFive();
    for (const int i : {1, 2, 3, 4}) {
        ShowAt(window, static_cast<float>(i));
        Save("v" + std::to_string(i));
    }
    Run.JobDirty = kFalse;
    UserSetIndex(Main.ComboSaveView, 1);
    UserClick(Main.MenüViewDeleteView);
    EXPECT_EQ(Names(), (Texts{"v1", "v3", "v4"}));
    EXPECT_EQ(Job.nSavedViews, 3);
    EXPECT_EQ(Slot(1).BildOffsetX, 1);
    EXPECT_EQ(Slot(2).BildOffsetX, 3);
    EXPECT_EQ(Slot(3).BildOffsetX, 4);
    EXPECT_TRUE(IsTrue(Run.JobDirty));
    EXPECT_EQ(Main.ComboSaveView.Index, -1);
    EXPECT_EQ(Main.ComboSaveView.Text, "");
    UserSetIndex(Main.ComboSaveView, 2);
    UserClick(Main.ToolbarSaveView_DeleteView);
    EXPECT_EQ(Names(), (Texts{"v1", "v3"}));
    EXPECT_EQ(Slot(2).BildOffsetX, 3);
}

TEST_F(SavedViews, WithoutAChosenEntryNothingIsDeleted) {
    OpenFive();
    Save("a");
    Run.JobDirty = kFalse;
    Main.ComboSaveView.Index = -1;
    UserClick(Main.MenüViewDeleteView);
    EXPECT_EQ(LastMessage(), "Choose a saved view in the list of the tool bar; it is deleted then.");
    for (const int number : {-1, 0, 2, 51}) DeleteView(number);
    EXPECT_EQ(Job.nSavedViews, 1);
    EXPECT_FALSE(IsTrue(Run.JobDirty));
}

TEST_F(SavedViews, AllFiftyCanBeDeleted) {
    OpenFive();
    for (int i = 1; i <= kMostViews; ++i) Save(std::to_string(i));
    for (int i = 1; i <= kMostViews; ++i) DeleteView(1);
    EXPECT_EQ(Job.nSavedViews, 0);
    EXPECT_EQ(Names(), Texts{});
}

TEST_F(SavedViews, FiftyViewsOfAThousandFlagsEachAreShownAsTheyWereKept) {
    constexpr int kFlags = 1000;
    const auto leftOf = [](int view, int flag) { return static_cast<std::int16_t>(20 * view + flag); };
    for (int i = 0; i < kFlags; ++i) AddPair({1.0 * i, 2.0 * (i % 300), 0}, {1.0 * i, 2.0 * (i % 300), 1});
    SizeRest();
    ScreenWindow& window = OpenStraight();
    window.State.Flags.assign(kFlags + 1, FlagRecord{});
    window.State.FlagCount = kFlags;
    for (std::size_t k = 1; k <= kFlags; ++k) window.State.FlagIndex[k] = static_cast<std::int16_t>(k);
    for (int view = 1; view <= kMostViews; ++view) {
        for (int k = 1; k <= kFlags; ++k)
            window.State.Flags[static_cast<std::size_t>(k)].Left = leftOf(view, k);
        ShowAt(window, static_cast<float>(view));
        Save("view " + std::to_string(view));
    }
    ASSERT_EQ(Job.nSavedViews, kMostViews);
    for (const int view : {1, 2, 25, 49, 50}) {
        GetScreenPropertiesFromSavedView(window, view);
        EXPECT_EQ(window.State.BildOffsetX, static_cast<float>(view));
        ASSERT_EQ(window.State.FlagCount, kFlags);
        for (int k = 1; k <= kFlags; ++k) {
            ASSERT_EQ(window.State.FlagIndex[static_cast<std::size_t>(k)], k);
            ASSERT_EQ(window.State.Flags[static_cast<std::size_t>(k)].Left, leftOf(view, k));
        }
    }
}
