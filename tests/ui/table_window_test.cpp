// The window of a table on the screen.
#include <QAbstractItemModel>
#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QScrollBar>
#include <QTableView>

#include "core/job.h"
#include "core/window.h"
#include "import/form_input_files.h"
#include "import/form_table.h"
#include "ui/desktop.h"
#include "ui/desktop_fixture.h"
#include "ui/drops.h"
#include "ui/qt_text.h"

using namespace corvinade;

namespace {

class TableOnScreen : public DesktopTest {
protected:
    TableOnScreen() {
        Begin();
        path_ = Write("points.csv",
                      "Name;East [m];North [m];Height [m];Remark\r\nP1;1,5;2;3;good\r\nP2;2,5;x;4;bad\r\n"
                      "P3;3,5;4;5;\r\nP4;9;4;5;\r\n");
    }

    void Choose() {
        Trigger("MenuFileInputFiles");
        ChooseNext(path_);
        Click("FormInputFiles.BtnBrowseMCS");
        QApplication::processEvents();
    }

    static QTableView& Grid() { return *qobject_cast<QTableView*>(Widget("FormTable.GridPreview")); }
    static QComboBox& Role(int number) {
        return *qobject_cast<QComboBox*>(Widget("FormTable.ComboRole" + std::to_string(number)));
    }

    std::string path_;
};

}  // namespace

TEST_F(TableOnScreen, OpensForAFileThatIsNotPlainAndShowsWhatWasFound) {
    Choose();
    ASSERT_TRUE(IsOpen("FormTable"));
    const auto text = [](const char* name) {
        return S(qobject_cast<QComboBox*>(Widget(std::string("FormTable.") + name))->currentText());
    };
    EXPECT_EQ(text("ComboDelimiter"), "semicolon");
    EXPECT_EQ(text("ComboDecimal"), ",");
    EXPECT_EQ(text("ComboUnit"), "m");
    EXPECT_EQ(text("ComboRole1"), "name");
    EXPECT_EQ(text("ComboRole2"), "x");
    EXPECT_EQ(text("ComboRole5"), "-");
    EXPECT_FALSE(Role(6).isVisible());
    EXPECT_EQ(S(qobject_cast<QLabel*>(Widget("FormTable.LabelCount"))->text()), "3 good rows, 1 bad row");
}

TEST_F(TableOnScreen, RolesStandAboveTheirColumnsWhereverTheseAre) {
    Choose();
    const auto expectAbove = [] {
        for (int column = 1; column <= 5; ++column) {
            const QComboBox& role = Role(column);
            const QHeaderView& heading = *Grid().horizontalHeader();
            const int left = heading.mapToGlobal(QPoint(heading.sectionViewportPosition(column), 0)).x();
            const int right = left + heading.sectionSize(column);
            const int middle = role.mapToGlobal(role.rect().center()).x();
            EXPECT_TRUE(left < middle && middle < right) << column;
            EXPECT_LE(role.width(), heading.sectionSize(column));
            EXPECT_LT(role.mapToGlobal(role.rect().bottomLeft()).y(),
                      heading.mapToGlobal(QPoint(0, 0)).y() + 1);
        }
    };
    expectAbove();
    Grid().horizontalHeader()->resizeSection(2, 240);
    QApplication::processEvents();
    expectAbove();
    Grid().window()->resize(400, 500);
    QApplication::processEvents();
    Grid().horizontalScrollBar()->setValue(60);
    QApplication::processEvents();
    expectAbove();
}

TEST_F(TableOnScreen, ACellThatIsNoNumberHasAGroundOfItsOwn) {
    Choose();
    const auto ground = [](int row, int column) {
        return Grid().model()->index(row, column).data(Qt::BackgroundRole);
    };
    EXPECT_TRUE(ground(2, 3).isValid());  // "x" of the row P2; the heading is line 1
    EXPECT_FALSE(ground(1, 3).isValid());
    EXPECT_NE(ground(2, 3), ground(0, 3));
}

// Dropped onto the frame, both files are asked for, one behind the other.
TEST_F(TableOnScreen, OpensForEachDroppedFileThatIsNotPlain) {
    const std::string other = Write("other.csv", "x y z intensity\r\n1 2 3 4\r\n5 6 7 8\r\n");
    OpenDropped({path_, other});
    ASSERT_TRUE(IsOpen("FormTable"));
    EXPECT_EQ(TableWindow.Path, path_);
    Click("FormTable.BtnCancel");
    ASSERT_TRUE(IsOpen("FormTable"));
    EXPECT_EQ(TableWindow.Path, other);
    Click("FormTable.BtnOK");
    EXPECT_FALSE(IsOpen("FormTable"));
    EXPECT_EQ(InputFiles.LabelTableMCS.Text, "");
    EXPECT_EQ(InputFiles.LabelTableOCS.Text, "read as a table");
}

TEST_F(TableOnScreen, APlainFileThatIsDroppedOpensNothingMore) {
    OpenDropped({Write("plain.txt", "A;1;2;3\r\nB;1;2;3\r\n")});
    EXPECT_TRUE(IsOpen("FormInputFiles"));
    EXPECT_FALSE(IsOpen("FormTable"));
}

TEST_F(TableOnScreen, GoesBeforeTheDialogAndHandsThePointsOn) {
    Choose();
    Click("FormTable.CheckStrict");
    Click("FormTable.BtnOK");
    EXPECT_FALSE(IsOpen("FormTable"));
    EXPECT_EQ(S(qobject_cast<QLabel*>(Widget("FormInputFiles.LabelTableMCS"))->text()), "read as a table");
    Type("FormInputFiles.TextNameOCS", Write("target.txt", "P1;0;0;0\r\nP3;1;1;1\r\nP4;2;5;2\r\n"));
    Click("FormInputFiles.BtnOK");
    ASSERT_EQ(Job.Pairs(), 3);
    EXPECT_EQ(Job.Start.X[2], 3500);
}
