// Windows as state: when handlers run, what loading and unloading do, and what ends an event.
#include "core/window.h"

#include <new>

#include "cli/headless.h"
#include "core/form_help_info.h"
#include "core/form_main.h"
#include "core/form_progress_bar.h"
#include "core/form_units.h"
#include "core/job.h"
#include "core/platform.h"
#include "core/settings.h"
#include "support/fixture.h"

using namespace corvinade;

class Windows : public Program {
protected:
    Windows() {
        Run.SettingsFilePath = PathOf("Corvinade.ini");
        Clicks = Changes = DblClicks = 0;
    }
    static inline int Clicks = 0, Changes = 0, DblClicks = 0;
    static inline const Handlers Counting = {
        .Click = [] { ++Clicks; }, .Change = [] { ++Changes; }, .DblClick = [] { ++DblClicks; }};
};

TEST_F(Windows, AValueRunsItsHandlerOnlyWhenItDiffers) {
    Control box = CheckBox("box");
    const ControlEntry entry = {"box", &box, Counting};
    box.Entry = &entry;
    SetValue(box, 0);
    EXPECT_EQ(Clicks, 0);
    SetValue(box, 1);
    SetValue(box, 1);
    EXPECT_EQ(Clicks, 1);
    SetValue(box, 2);
    EXPECT_EQ(Clicks, 2);
    UserSetValue(box, 2);
    EXPECT_EQ(Clicks, 2);
    UserSetValue(box, 0);
    EXPECT_EQ(Clicks, 3);
    EXPECT_EQ(Changes, 0);
}

TEST_F(Windows, ATextRunsItsHandlerOnlyWhenItDiffers) {
    Control text = TextBox("a");
    const ControlEntry entry = {"text", &text, Counting};
    text.Entry = &entry;
    SetText(text, "a");
    EXPECT_EQ(Changes, 0);
    SetText(text, "b");
    UserSetText(text, "b");
    UserSetText(text, "");
    EXPECT_EQ(Changes, 2);
    EXPECT_EQ(text.Text, "");
    EXPECT_EQ(Clicks, 0);
}

TEST_F(Windows, AListEntryRunsItsHandlerOnlyWhenItDiffers) {
    Control list = ComboBox({"x", "y"});
    const ControlEntry entry = {"list", &list, Counting};
    list.Entry = &entry;
    EXPECT_EQ(list.Index, -1);
    SetIndex(list, -1);
    EXPECT_EQ(Clicks, 0);
    SetIndex(list, 1);
    UserSetIndex(list, 1);
    EXPECT_EQ(Clicks, 1);
    EXPECT_EQ(list.Text, "y");
    SetIndex(list, -1);
    EXPECT_EQ(Clicks, 2);
    EXPECT_EQ(list.Text, "");
    EXPECT_DEATH(SetIndex(list, 2), "internal error");
}

TEST_F(Windows, AnActionOfTheUserRunsItsHandlerEachTime) {
    Control button = Button("&OK");
    const ControlEntry entry = {"button", &button, Counting};
    EXPECT_TRUE(UserClick(button));  // without a window nothing happens
    button.Entry = &entry;
    EXPECT_TRUE(UserClick(button));
    EXPECT_TRUE(UserClick(button));
    EXPECT_TRUE(UserDblClick(button));
    EXPECT_EQ(Clicks, 2);
    EXPECT_EQ(DblClicks, 1);
    const ControlEntry silent = {"button", &button};
    button.Entry = &silent;
    EXPECT_TRUE(UserClick(button));
    EXPECT_TRUE(UserDblClick(button));
}

TEST_F(Windows, TheHandlerSeesTheNewValue) {
    static int seen = 0;
    static Control box;
    box = CheckBox("box");
    const ControlEntry entry = {"box", &box, {.Click = [] { seen = box.Value; }}};
    box.Entry = &entry;
    SetValue(box, 2);
    EXPECT_EQ(seen, 2);
}

TEST_F(Windows, SelectingAnOptionClearsTheOthersOfItsGroupWithoutTheirHandlers) {
    ShowWindow("FormUnits");
    // Any three controls of one window serve as options.
    Control& a = UnitsWindow.LabelLength;
    Control& b = UnitsWindow.LabelAngle;
    Control& other = UnitsWindow.LabelScale;
    const ControlEntry entryA = {"a", &a, Counting};
    const ControlEntry entryB = {"b", &b, Counting};
    a = Option("a", 1);
    b = Option("b", 1);
    other = Option("other", 2);
    a.Entry = &entryA;
    b.Entry = &entryB;
    other.Value = 1;
    SetValue(a, 1);
    EXPECT_EQ(Clicks, 1);
    SetValue(b, 1);
    EXPECT_EQ(Clicks, 2);
    EXPECT_EQ(a.Value, 0);
    EXPECT_EQ(b.Value, 1);
    EXPECT_EQ(other.Value, 1);
    SetValue(b, 1);
    EXPECT_EQ(Clicks, 2);
}

TEST_F(Windows, EveryWindowAndControlIsFoundByItsName) {
    for (const WindowEntry* window : AllWindows()) {
        EXPECT_EQ(FindWindow(window->Name), window);
        for (const ControlEntry& entry : window->Controls)
            EXPECT_EQ(FindControl(*window, entry.Name), entry.Place) << window->Name << "." << entry.Name;
    }
    EXPECT_EQ(FindWindow("FormNone"), nullptr);
    EXPECT_EQ(FindControl(FormMain_Entry, "None"), nullptr);
    EXPECT_EQ(FindControl(FormMain_Entry, "Toolbar2.FileNew"), &Main.Toolbar2_FileNew);
    EXPECT_EQ(FindControl(FormMain_Entry, "StatusBar.9"), &Main.StatusBar_9);
}

TEST_F(Windows, LoadingStartsFromAFreshStruct) {
    ShowWindow("FormUnits");
    EXPECT_TRUE(IsLoaded("FormUnits"));
    UnitsWindow.LabelLength.Text = "changed";
    UnitsWindow.ComboLength.Items.clear();
    UnloadWindow("FormUnits");
    EXPECT_FALSE(IsLoaded("FormUnits"));
    EXPECT_TRUE(UnitsWindow.ComboLength.Items.empty());
    ShowWindow("FormUnits");
    EXPECT_EQ(UnitsWindow.LabelLength.Text, "&Length");
    EXPECT_EQ(UnitsWindow.ComboLength.Items.size(), 4U);
}

TEST_F(Windows, AWindowThatIsOpenStaysAsItIs) {
    ShowWindow("FormUnits");
    UnitsWindow.LabelLength.Text = "changed";
    ShowWindow("FormUnits");
    EXPECT_EQ(UnitsWindow.LabelLength.Text, "changed");
}

TEST_F(Windows, UnloadingAWindowThatIsNotOpenDoesNothing) {
    UnloadWindow("FormUnits");
    UnloadWindow("FormNone");
    EXPECT_FALSE(IsLoaded("FormNone"));
    EXPECT_EQ(Contents(Run.SettingsFilePath), "");
}

TEST_F(Windows, AWindowTakesAndLeavesItsPlace) {
    Write("Corvinade.ini", CrLf("[Window]\nFormUnitsTop=11\nFormUnitsLeft=12\nFormUnitsWidth=13\n"));
    ShowWindow("FormUnits");
    EXPECT_EQ(UnitsWindow.Window.Place.Top, 11);
    EXPECT_EQ(UnitsWindow.Window.Place.Left, 12);
    EXPECT_EQ(UnitsWindow.Window.Place.Width, 13);
    EXPECT_EQ(UnitsWindow.Window.Place.Height, 1000);  // the key is missing
    UnitsWindow.Window.Place = {1, 2, 3, 4};
    UserClose(FormUnits_Entry);
    EXPECT_FALSE(IsLoaded("FormUnits"));
    EXPECT_EQ(Contents(Run.SettingsFilePath),
              CrLf("[Window]\nFormUnitsTop=2\nFormUnitsLeft=1\nFormUnitsWidth=3\nFormUnitsHeight=4"));
    ShowWindow("FormUnits");
    EXPECT_EQ(UnitsWindow.Window.Place.Height, 4);
}

TEST_F(Windows, AWindowWithAnUnreadablePlaceIsToldOnceAndOpensAtTheUsualOne) {
    Write("Corvinade.ini", "[Window]\r\nFormUnitsTop=here\r\n");
    ShowWindow("FormMain");
    EXPECT_TRUE(UserClick(Main.MenuSettingsUnits));
    EXPECT_TRUE(IsLoaded("FormUnits"));
    ASSERT_EQ(Messages().size(), 1U);
    EXPECT_EQ(UnitsWindow.Window.Place.Top, 1000);
    UserClose(FormUnits_Entry);
    UserClick(Main.MenuSettingsUnits);
    EXPECT_EQ(Messages().size(), 1U) << "the window has stored a place that is one";
}

TEST_F(Windows, AWindowThatDoesNotExistIsAnErrorOfThePlatform) {
    EXPECT_THROW(ShowWindow("FormNone"), PlatformError);
}

TEST_F(Windows, AnErrorOfThePlatformIsShownOnceAndTheProgramGoesOn) {
    EXPECT_FALSE(Dispatch([] { throw PlatformError{"file, line 3: text"}; }));
    EXPECT_EQ(Messages(), std::vector<std::string>{"file, line 3: text"});
    EXPECT_EQ(Run.LastPlatformError, "file, line 3: text");
    EXPECT_TRUE(Dispatch([] {}));
    EXPECT_EQ(Messages().size(), 1U);
}

TEST_F(Windows, MemoryThatIsNotThereIsShownToo) {
    EXPECT_FALSE(Dispatch([] { throw std::bad_alloc(); }));
    ASSERT_EQ(Messages().size(), 1U);
    EXPECT_NE(LastMessage(), "");
}

TEST_F(Windows, AnEventInsideWorkKeepsItsErrorToItself) {
    EXPECT_TRUE(Dispatch([] { EXPECT_FALSE(Dispatch([] { throw PlatformError{"inner"}; })); }));
    EXPECT_EQ(Messages(), std::vector<std::string>{"inner"});
}

TEST_F(Windows, HandlersRunFromCodeLetTheErrorPass) {
    Control box = CheckBox("box");
    const ControlEntry entry = {"box", &box, {.Click = [] { throw PlatformError{"no"}; }}};
    box.Entry = &entry;
    EXPECT_THROW(SetValue(box, 1), PlatformError);
    EXPECT_EQ(box.Value, 1);
    EXPECT_FALSE(UserSetValue(box, 0));
    EXPECT_EQ(Messages(), std::vector<std::string>{"no"});
}

TEST_F(Windows, TheBusyPointerIsPutBackWhateverHappens) {
    {
        const BusyPointer outer;
        EXPECT_EQ(Run.WaitPointers, 1);
        Dispatch([] {
            const BusyPointer inner;
            EXPECT_EQ(::Run.WaitPointers, 2);
            throw PlatformError{"no"};
        });
        EXPECT_EQ(Run.WaitPointers, 1);
    }
    EXPECT_EQ(Run.WaitPointers, 0);
}

TEST_F(Windows, TheProgressWindowLivesAsLongAsItsWorkAndCanStopIt) {
    Dispatch([] {
        const ProgressWindow progress("Working");
        EXPECT_TRUE(IsLoaded("FormProgressBar"));
        EXPECT_EQ(Progress.Window.Caption, "Working");
        UserClick(Progress.BtnCancel);
        EXPECT_EQ(::Run.StopRequested, kTrue);
        ::Run.StopRequested = kFalse;
        UserEscape(FormProgressBar_Entry);
        EXPECT_EQ(::Run.StopRequested, kTrue);
        throw PlatformError{"no"};
    });
    EXPECT_FALSE(IsLoaded("FormProgressBar"));
}

TEST_F(Windows, EscapeWithoutAHandlerDoesNothing) {
    ShowWindow("FormMain");
    EXPECT_TRUE(UserEscape(FormMain_Entry));
    EXPECT_TRUE(IsLoaded("FormMain"));
}

TEST_F(Windows, TheInfoWindowTellsTheVersionAndHandsOverTheSettingsFile) {
    ShowWindow("FormMain");
    UserClick(Main.MenuHelpInfo);
    EXPECT_EQ(HelpInfo.LabelVersion.Text, "Version 2.0.64");
    UserClick(HelpInfo.BtnEditIniFile);
    ASSERT_EQ(Headless.Shell.size(), 1U);
    EXPECT_EQ(Headless.Shell[0].Verb, "Open");
    EXPECT_EQ(Headless.Shell[0].Path, Run.SettingsFilePath);
    UserClick(HelpInfo.BtnOK);
    EXPECT_FALSE(IsLoaded("FormMenuHelpInfo"));
    UserClick(Main.MenuHelpInfo);
    UserEscape(FormMenuHelpInfo_Entry);
    EXPECT_FALSE(IsLoaded("FormMenuHelpInfo"));
}

TEST_F(Windows, TheSixteenColoursHaveRedInTheLowByte) {
    const std::int32_t expected[16] = {0x000000, 0x800000, 0x008000, 0x808000, 0x000080, 0x800080,
                                       0x008080, 0xC0C0C0, 0x808080, 0xFF0000, 0x00FF00, 0xFFFF00,
                                       0x0000FF, 0xFF00FF, 0x00FFFF, 0xFFFFFF};
    for (int i = 0; i < 16; ++i) EXPECT_EQ(QbColor(i), expected[i]) << i;
    EXPECT_DEATH(QbColor(16), "internal error");
}
