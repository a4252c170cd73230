// The number of notes in the status bar and the window that lists them.
#include "core/form_notes.h"

#include "cli/headless.h"
#include "core/controller.h"
#include "core/form_main.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/settings.h"
#include "support/fixture.h"

using namespace corvinade;

namespace {

class NotesWindowTest : public Program {
protected:
    NotesWindowTest() { StartUp(""); }

    // What an event of the user leaves to be noted.
    template <class Work>
    static void During(const Work& work) {
        ASSERT_TRUE(Dispatch(work));
    }
    static void NoticeThree() {
        During([] {
            AddNote(NoteCode::ColumnsIgnored, "Fields behind the third coordinate are not read.", "b.txt", 2);
            AddNote(NoteCode::NumberAsZero, "\"abc\" is no number, x counts as 0.", "/cell/a.txt", 7);
            AddNote(NoteCode::NumberAsZero, "\"def\" is no number, x counts as 0.", "/cell/a.txt", 9);
            AddNote(NoteCode::Mirrored, "The result is mirrored.");
        });
    }
    static GridState& Table() { return NotesWindow.GridNotes.Grid; }
    static std::vector<std::string> Row(int row) {
        std::vector<std::string> cells;
        for (int col = 0; col < Table().Cols; ++col) cells.push_back(CellText(Table(), row, col));
        return cells;
    }
};

using Texts = std::vector<std::string>;

}  // namespace

TEST_F(NotesWindowTest, TheStatusBarTellsHowManyThereAreAndNothingWhereThereAreNone) {
    EXPECT_FALSE(Main.StatusBar_Notes.Visible);
    EXPECT_EQ(Main.StatusBar_Notes.Text, "");
    During([] { AddNote(NoteCode::EmptyRow, "A row without a point is passed over.", "a.txt", 3); });
    EXPECT_TRUE(Main.StatusBar_Notes.Visible);
    EXPECT_EQ(Main.StatusBar_Notes.Text, "1 note");
    EXPECT_EQ(Main.StatusBar_Notes.BackColor, kSystemColour);
    NoticeThree();
    EXPECT_EQ(Main.StatusBar_Notes.Text, "4 notes");
    During(ForgetNotes);
    EXPECT_FALSE(Main.StatusBar_Notes.Visible);
    EXPECT_EQ(Main.StatusBar_Notes.Text, "");
}

TEST_F(NotesWindowTest, AWarningGivesItsColourAndTheToolTipTellsBothKinds) {
    NoticeThree();
    EXPECT_NE(Main.StatusBar_Notes.BackColor, kSystemColour);
    EXPECT_EQ(Main.StatusBar_Notes.ToolTip,
              "2 warnings, 1 note of the last import and calculation: click for the list");
    During([] {
        ForgetNotes();
        AddNote(NoteCode::EmptyRow, "A row without a point is passed over.", "a.txt", 3);
    });
    EXPECT_EQ(Main.StatusBar_Notes.BackColor, kSystemColour);
}

TEST_F(NotesWindowTest, TheStatusBarFollowsAnEventThatFails) {
    EXPECT_FALSE(Dispatch([] {
        AddNote(NoteCode::NumberAsZero, "\"abc\" is no number, x counts as 0.", "a.txt", 7);
        throw PlatformError{"the disk is gone"};
    }));
    EXPECT_EQ(LastMessage(), "the disk is gone");
    EXPECT_EQ(Main.StatusBar_Notes.Text, "1 note");
}

TEST_F(NotesWindowTest, AClickOnTheStatusBarOrTheMenuOpensTheList) {
    NoticeThree();
    ASSERT_TRUE(UserClick(Main.StatusBar_Notes));
    ASSERT_TRUE(IsLoaded("FormNotes"));
    EXPECT_EQ(NotesWindow.LabelSummary.Text, "2 warnings, 1 note of the last import and calculation.");
    ASSERT_EQ(Table().Rows, 4);
    EXPECT_EQ(Row(0), (Texts{"Severity", "File", "Line", "Text", "Count"}));
    EXPECT_EQ(Row(1), (Texts{"note", "b.txt", "2", "Fields behind the third coordinate are not read.", "1"}));
    EXPECT_EQ(Row(2), (Texts{"warning", "/cell/a.txt", "7", "\"abc\" is no number, x counts as 0.", "2"}));
    EXPECT_EQ(Row(3), (Texts{"warning", "", "", "The result is mirrored.", "1"}));
    EXPECT_EQ(CellBackColor(Table(), 1, kNotesSeverity), kSystemColour);
    EXPECT_EQ(CellBackColor(Table(), 2, kNotesSeverity), Main.StatusBar_Notes.BackColor);
    ASSERT_TRUE(UserClick(NotesWindow.BtnClose));
    EXPECT_FALSE(IsLoaded("FormNotes"));
    ASSERT_TRUE(UserClick(Main.MenuViewNotes));
    EXPECT_TRUE(IsLoaded("FormNotes"));
    ASSERT_TRUE(UserEscape(FormNotes_Entry));
    EXPECT_FALSE(IsLoaded("FormNotes"));
}

TEST_F(NotesWindowTest, WithoutNotesTheListSaysSo) {
    ASSERT_TRUE(UserClick(Main.MenuViewNotes));
    EXPECT_EQ(Table().Rows, 1);
    EXPECT_EQ(NotesWindow.LabelSummary.Text, "The last import and calculation left nothing to be noted.");
    EXPECT_FALSE(NotesWindow.BtnCopy.Enabled);
}

TEST_F(NotesWindowTest, AnOpenListFollowsTheNotes) {
    ASSERT_TRUE(UserClick(Main.MenuViewNotes));
    NoticeThree();
    EXPECT_EQ(Table().Rows, 4);
    EXPECT_TRUE(NotesWindow.BtnCopy.Enabled);
    During([] { AddNote(NoteCode::ColumnsIgnored, "Fields are not read.", "b.txt", 5); });
    EXPECT_EQ(CellText(Table(), 1, kNotesCount), "2");
    // A calculation takes out what calculations have said.
    During(ForgetCalculationNotes);
    EXPECT_EQ(Table().Rows, 3);
    EXPECT_EQ(Main.StatusBar_Notes.Text, "2 notes");
    During(ForgetNotes);
    EXPECT_EQ(Table().Rows, 1);
    EXPECT_FALSE(NotesWindow.BtnCopy.Enabled);
}

TEST_F(NotesWindowTest, ADoubleClickOpensTheFileOfTheRow) {
    NoticeThree();
    UserClick(Main.StatusBar_Notes);
    ASSERT_TRUE(UserDblClickCell(NotesWindow.GridNotes, 2, kNotesText));
    ASSERT_EQ(Headless.Shell.size(), 1U);
    EXPECT_EQ(Headless.Shell[0].Verb, "Open");
    EXPECT_EQ(Headless.Shell[0].Path, "/cell/a.txt");
    Settings.Editor = "/usr/bin/editor";
    ASSERT_TRUE(UserDblClickCell(NotesWindow.GridNotes, 1, kNotesSeverity));
    ASSERT_EQ(Headless.Shell.size(), 2U);
    EXPECT_EQ(Headless.Shell[1].Verb, "/usr/bin/editor");
    EXPECT_EQ(Headless.Shell[1].Path, "b.txt");
}

TEST_F(NotesWindowTest, ADoubleClickOnARowWithoutAFileOrOnTheHeadingDoesNothing) {
    NoticeThree();
    UserClick(Main.StatusBar_Notes);
    ASSERT_TRUE(UserDblClickCell(NotesWindow.GridNotes, 3, kNotesText));
    ASSERT_TRUE(UserDblClickCell(NotesWindow.GridNotes, 0, kNotesText));
    EXPECT_TRUE(Headless.Shell.empty());
    EXPECT_TRUE(Messages().empty());
}

TEST_F(NotesWindowTest, CopyTakesTheWholeListAlong) {
    NoticeThree();
    UserClick(Main.StatusBar_Notes);
    UserSelectCells(NotesWindow.GridNotes, {1, 1, 1, 1});
    ASSERT_TRUE(UserClick(NotesWindow.BtnCopy));
    const std::string& text = Headless.Clipboard;
    EXPECT_TRUE(
        text.starts_with("Severity\tFile\tLine\tText\tCount\r\n"
                         "note\tb.txt\t2\tFields behind the third coordinate are not read.\t1\r\n"
                         "warning\t/cell/a.txt\t7\t\"abc\" is no number, x counts as 0.\t2\r\n"
                         "warning\t\t\tThe result is mirrored.\t1"))
        << text;
}

TEST_F(NotesWindowTest, TheWindowKeepsItsPlace) {
    UserClick(Main.MenuViewNotes);
    NotesWindow.Window.Place = {1500, 3000, 9000, 4500};
    UserClick(NotesWindow.BtnClose);
    UserClick(Main.MenuViewNotes);
    EXPECT_EQ(NotesWindow.Window.Place.Left, 1500);
    EXPECT_EQ(NotesWindow.Window.Place.Top, 3000);
    EXPECT_EQ(NotesWindow.Window.Place.Width, 9000);
    EXPECT_EQ(NotesWindow.Window.Place.Height, 4500);
}

TEST_F(NotesWindowTest, NoPanelOfTheStatusBarChanges) {
    for (int panel = 1; panel <= kStatusPanels; ++panel) SetStatus(panel, "p" + std::to_string(panel));
    NoticeThree();
    const Control* const panels[] = {&Main.StatusBar_1, &Main.StatusBar_2, &Main.StatusBar_3,
                                     &Main.StatusBar_4, &Main.StatusBar_5, &Main.StatusBar_6,
                                     &Main.StatusBar_7, &Main.StatusBar_8, &Main.StatusBar_9};
    for (int panel = 1; panel <= kStatusPanels; ++panel)
        EXPECT_EQ(panels[panel - 1]->Text, "p" + std::to_string(panel));
}
