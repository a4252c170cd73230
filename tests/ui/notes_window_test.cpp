// The notes on the screen: their number in the status bar, and the window that lists them.
#include <QAbstractItemModel>
#include <QLabel>
#include <QPushButton>
#include <QScrollBar>
#include <QStatusBar>
#include <QTableView>

#include "core/form_main.h"
#include "core/form_notes.h"
#include "core/platform.h"
#include "ui/colours.h"
#include "ui/desktop.h"
#include "ui/desktop_fixture.h"
#include "ui/qt_text.h"

using namespace corvinade;

namespace {

class NotesOnScreen : public DesktopTest {
protected:
    NotesOnScreen() { Begin(); }

    static void Notice(NoteCode code, const std::string& text, const std::string& file = "", int line = 0) {
        UserDid([&] { Dispatch([&] { AddNote(code, text, file, line); }); });
    }
    static QPushButton& Number() { return *qobject_cast<QPushButton*>(Widget("FormMain.StatusBar.Notes")); }
    static QColor Ground() { return Number().palette().color(Number().backgroundRole()); }
};

}  // namespace

TEST_F(NotesOnScreen, TheStatusBarIsAsBeforeUntilThereIsOne) {
    EXPECT_FALSE(Number().isVisible());
    const QColor plain = Ground();
    Notice(NoteCode::EmptyRow, "A row without a point is passed over.", "a.txt", 3);
    EXPECT_TRUE(Number().isVisible());
    EXPECT_EQ(S(Number().text()), "1 note");
    EXPECT_EQ(Ground(), plain);
    EXPECT_EQ(Number().parentWidget(), Frame()->statusBar());
    Notice(NoteCode::Mirrored, "The result is mirrored.");
    EXPECT_EQ(S(Number().text()), "2 notes");
    EXPECT_EQ(Ground(), ColourOf(Main.StatusBar_Notes.BackColor));
    EXPECT_NE(Ground(), plain);
    UserDid([] { Dispatch(ForgetNotes); });
    EXPECT_FALSE(Number().isVisible());
}

TEST_F(NotesOnScreen, AClickOpensTheListWhichFollows) {
    Notice(NoteCode::NumberAsZero, "\"abc\" is no number, x counts as 0.", "/cell/a.txt", 7);
    Click("FormMain.StatusBar.Notes");
    ASSERT_TRUE(IsOpen("FormNotes"));
    auto* table = qobject_cast<QTableView*>(Widget("FormNotes.GridNotes"));
    ASSERT_EQ(table->model()->rowCount(), 1);
    const auto cell = [&](int row, int col) { return S(table->model()->index(row, col).data().toString()); };
    EXPECT_EQ(cell(0, kNotesSeverity), "warning");
    EXPECT_EQ(cell(0, kNotesFile), "/cell/a.txt");
    EXPECT_EQ(cell(0, kNotesText), "\"abc\" is no number, x counts as 0.");
    Notice(NoteCode::Mirrored, "The result is mirrored.");
    ASSERT_EQ(table->model()->rowCount(), 2);
    EXPECT_EQ(cell(1, kNotesText), "The result is mirrored.");
    Click("FormNotes.BtnClose");
    EXPECT_FALSE(IsOpen("FormNotes"));
}

TEST_F(NotesOnScreen, ASentenceIsReadableWithoutDrawingItsColumn) {
    const std::string sentence =
        "12 of 340 lines of the file hold a text where a number is expected, which counts as 0 in the fit.";
    Notice(NoteCode::NumberAsZero, sentence, "/cell/a.txt", 7);
    Trigger("MenuViewNotes");
    QApplication::processEvents();
    const auto* table = qobject_cast<QTableView*>(Widget("FormNotes.GridNotes"));
    EXPECT_GT(table->columnWidth(kNotesText), table->fontMetrics().horizontalAdvance(Q(sentence)));
}

// Beside a calculation that fills the frame too.
TEST_F(NotesOnScreen, TheWindowOpensWideEnoughAndFromTheLeft) {
    Frame()->resize(1280, 900);
    Notice(NoteCode::Mirrored, "The result is mirrored.");
    Notice(NoteCode::EmptyRow, "A row without a point is passed over.",
           "/cell/measurements/of/this/year/and/of/the/one/before/measured.txt", 3);
    Trigger("MenuViewNotes");
    QApplication::processEvents();
    auto* table = qobject_cast<QTableView*>(Widget("FormNotes.GridNotes"));
    EXPECT_EQ(table->horizontalScrollBar()->value(), 0);
    EXPECT_GE(table->width(), 900);
    table->setFixedWidth(300);  // where the file does not fit
    Notice(NoteCode::GimbalLock, "Rot y is at a right angle.");
    QApplication::processEvents();
    EXPECT_EQ(table->horizontalScrollBar()->value(), 0);
    const auto* summary = qobject_cast<QLabel*>(Widget("FormNotes.LabelSummary"));
    EXPECT_GE(summary->width(), summary->fontMetrics().horizontalAdvance(summary->text()));
}
