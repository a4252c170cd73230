// The main sheet on the screen: what can be read in it, its columns, copying and sorting by the mouse.
#include <QClipboard>
#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QMdiSubWindow>
#include <QMenu>
#include <QTableView>

#include "analysis/form_main_sheet.h"
#include "core/fresh_start.h"
#include "core/job.h"
#include "core/settings.h"
#include "ui/desktop.h"
#include "ui/desktop_fixture.h"
#include "ui/qt_text.h"

using namespace corvinade;

namespace {

class MainSheetByHand : public DesktopTest {
protected:
    // A cell far from its origin, and a point in each system that has no partner.
    void Import() {
        const std::string start =
            Write("start.txt",
                  "A;-4292.512;-11850.007;-250.125\nB;3300.5;-10420.25;1210\nC;120;4410;77\nM;1;2;3\n");
        const std::string target =
            Write("target.txt", "A;-4292.5;-11850;-250\nB;3300;-10420;1210\nC;120;4410.5;77\nO;4;5;6\n");
        Trigger("MenuFileInputFiles");
        Type("FormInputFiles.TextNameMCS", start);
        Type("FormInputFiles.TextNameOCS", target);
        Click("FormInputFiles.BtnOK");
        ASSERT_EQ(Job.Pairs(), 3);
    }

    void Open() {
        Import();
        Trigger("MenuVievMainSheet");
        ASSERT_TRUE(IsOpen("FormMainSheet"));
    }

    static QTableView* Table() { return qobject_cast<QTableView*>(Widget("FormMainSheet.MSFlexGrid1")); }

    static void CloseSheet() {
        WidgetOf(FormMainSheet_Entry)->parentWidget()->close();
        QApplication::processEvents();
        ASSERT_FALSE(IsOpen("FormMainSheet"));
    }

    // What the view paints of a text beside its cell's own margins.
    static void ExpectNothingCut() {
        QTableView* table = Table();
        const int margin =
            2 * (table->style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, table) + 1);
        const QFontMetrics font = table->fontMetrics();
        for (int col = 0; col < kColNumber; ++col) {
            const int width = table->columnWidth(col);
            EXPECT_GE(width, table->horizontalHeader()->sectionSizeHint(col)) << "heading of column " << col;
            for (int row = 0; row < table->model()->rowCount(); ++row) {
                const QString text = table->model()->index(row, col).data().toString();
                EXPECT_GE(width, font.horizontalAdvance(text) + margin) << S(text) << " in column " << col;
            }
        }
    }
};

}  // namespace

TEST_F(MainSheetByHand, ShowsEveryValueAndHeadingWholeWhileNobodyHasChosenAWidth) {
    Begin();
    Open();
    ExpectNothingCut();
    EXPECT_TRUE(Table()->isColumnHidden(kColNumber));
    Table()->horizontalHeader()->setSortIndicatorShown(true);
    ExpectNothingCut();
}

TEST_F(MainSheetByHand, MoreDigitsWidenIt) {
    Begin();
    Open();
    Trigger("MenuSettingsUnits");
    for (int i = 0; i < 3; ++i) QTest::keyClick(Widget("FormUnits.ComboDigitLength"), Qt::Key_Down);
    Click("FormUnits.BtnOK");
    ASSERT_EQ(Job.LengthDigits, 6);
    ASSERT_TRUE(Table()->model()->index(0, 1).data().toString().endsWith(QLatin1String(".512000")));
    ExpectNothingCut();
}

TEST_F(MainSheetByHand, WidthsThatNobodyHasChosenAreStoredAsTheyCame) {
    Begin();
    Open();
    ASSERT_GT(Table()->columnWidth(1), kMissingColWidth / kTwips);
    CloseSheet();
    EXPECT_EQ(IniWertLesen("FormMainSheet1"), "1000");
    EXPECT_EQ(IniWertLesen("Cols"), "23");
    Trigger("MenuVievMainSheet");
    ExpectNothingCut();
}

TEST_F(MainSheetByHand, AWidthThatIsDraggedIsStoredAndComesBack) {
    Begin();
    Open();
    Table()->setColumnWidth(1, 50);
    const int other = Table()->columnWidth(2);
    CloseSheet();
    EXPECT_EQ(IniWertLesen("FormMainSheet1"), "750");
    EXPECT_EQ(IniWertLesen("FormMainSheet2"), "1000");
    CloseDesktop();
    FreshStart();
    Begin();
    Open();
    EXPECT_EQ(Table()->columnWidth(1), 50) << "narrow, but chosen";
    EXPECT_EQ(Table()->columnWidth(2), other);
}

TEST_F(MainSheetByHand, NothingJumpsWhenItIsSorted) {
    Begin();
    Open();
    const auto widths = [] {
        std::vector<int> all;
        for (int col = 0; col < kColNumber; ++col) all.push_back(Table()->columnWidth(col));
        return all;
    };
    const std::vector<int> before = widths();
    QHeaderView& heading = *Table()->horizontalHeader();
    const QPoint second(heading.sectionViewportPosition(1) + 20, heading.height() / 2);
    for (int click = 0; click < 3; ++click) {
        QTest::mouseClick(heading.viewport(), Qt::LeftButton, Qt::NoModifier, second);
        QApplication::processEvents();
        EXPECT_EQ(widths(), before);
    }
    EXPECT_TRUE(heading.isSortIndicatorShown());
}

TEST_F(MainSheetByHand, HeadingsSortBothWays) {
    Begin();
    Open();
    QHeaderView& heading = *Table()->horizontalHeader();
    const auto click = [&heading] {
        const QPoint second(heading.sectionViewportPosition(1) + 20, heading.height() / 2);
        QTest::mouseClick(heading.viewport(), Qt::LeftButton, Qt::NoModifier, second);
        QApplication::processEvents();
    };
    const auto first = [] { return S(Table()->model()->index(0, 0).data().toString()); };
    click();
    EXPECT_EQ(first(), "A") << "-4292.512";
    click();
    EXPECT_EQ(first(), "O") << "without a value";
    EXPECT_EQ(S(Table()->model()->index(1, 0).data().toString()), "B") << "3300.500";
}

TEST_F(MainSheetByHand, ABlockIsDraggedAndCopiedFromThePopUpMenuWithItsHeadings) {
    Begin();
    Open();
    Settings.TabelHeadMainSheet = kTrue;
    QTableView* table = Table();
    const auto cell = [table](int row, int col) {
        return table->visualRect(table->model()->index(row, col)).center();
    };
    QTest::mousePress(table->viewport(), Qt::LeftButton, Qt::NoModifier, cell(0, 0));
    QTest::mouseMove(table->viewport(), cell(1, 1));
    QTest::mouseMove(table->viewport(), cell(1, 2));
    QTest::mouseRelease(table->viewport(), Qt::LeftButton, Qt::NoModifier, cell(1, 2));
    QTest::mouseClick(table->viewport(), Qt::RightButton, Qt::NoModifier, cell(1, 1));
    QApplication::processEvents();
    auto* menu = Frame()->findChild<QMenu*>(QStringLiteral("MenuEdit"));
    ASSERT_TRUE(menu->isVisible());
    EXPECT_EQ(table->selectionModel()->selectedIndexes().size(), 6) << "the press leaves the selection";
    menu->close();
    Trigger("MenuEditCopy");
    EXPECT_EQ(S(QApplication::clipboard()->text()).substr(0, 23), "Point ID\tMCS.x\tMCS.y\r\nA");
}

// --- Columns as the user wants them -----------------------------------------------------------------------

TEST_F(MainSheetByHand, ColumnsThatAreMovedAreCopiedAsTheyStandAndKept) {
    Begin();
    Open();
    QHeaderView* heading = Table()->horizontalHeader();
    heading->moveSection(heading->visualIndex(7), 1);  // dev.x beside the name
    QApplication::processEvents();
    QTest::mouseClick(Table()->viewport(), Qt::LeftButton, {},
                      Table()->visualRect(Table()->model()->index(1, 0)).center());
    QTest::mouseClick(Table()->viewport(), Qt::LeftButton, Qt::ShiftModifier,
                      Table()->visualRect(Table()->model()->index(1, 7)).center());
    QTest::keyClick(Table(), Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(S(QApplication::clipboard()->text()).substr(0, 16), "Point ID\tdev.x\r\n");
    EXPECT_EQ(FindIniWert("FormMainSheet.MSFlexGrid1").value_or("").substr(0, 8), "0,7,1,2,");
    CloseSheet();
    Trigger("MenuVievMainSheet");
    EXPECT_EQ(Table()->horizontalHeader()->visualIndex(7), 1);
    EXPECT_EQ(Table()->model()->index(0, 7).data().toString(), QStringLiteral("-0.012"))
        << "a column keeps its number";
}

TEST_F(MainSheetByHand, ColumnsAreChosenInTheMenuOfTheHeadings) {
    Begin();
    Open();
    const auto choose = [](const char* text) {
        QHeaderView* heading = Table()->horizontalHeader();
        emit heading->customContextMenuRequested(QPoint(5, 5));
        QApplication::processEvents();
        auto* menu = Table()->findChild<QMenu*>(QStringLiteral("_Columns"));
        ASSERT_NE(menu, nullptr);
        for (QAction* action : menu->actions())
            if (action->text() == QLatin1String(text)) action->trigger();
        menu->close();
        delete menu;
    };
    choose("MCS.y");
    EXPECT_TRUE(Table()->isColumnHidden(2));
    CloseSheet();
    Trigger("MenuVievMainSheet");
    EXPECT_TRUE(Table()->isColumnHidden(2));
    EXPECT_TRUE(Table()->isColumnHidden(kColNumber));
    choose("&All columns in their order");
    EXPECT_FALSE(Table()->isColumnHidden(2));
    EXPECT_TRUE(Table()->isColumnHidden(kColNumber)) << "what the window hides is not offered";
}

TEST_F(MainSheetByHand, AShiftedClickOnAHeadingSortsBySizeAndSaysSo) {
    Begin();
    Open();
    // dev.x: -0.012, 0.5 and 0; two points have none.
    QHeaderView* heading = Table()->horizontalHeader();
    Table()->scrollTo(Table()->model()->index(0, 7));
    const QPoint place(heading->sectionViewportPosition(7) + 20, heading->height() / 2);
    QTest::mouseClick(heading->viewport(), Qt::LeftButton, Qt::ShiftModifier, place);
    EXPECT_EQ(heading->model()->headerData(7, Qt::Horizontal).toString(), QStringLiteral("|dev.x|"));
    EXPECT_EQ(Table()->model()->index(0, 0).data().toString(), QStringLiteral("B"));
    EXPECT_EQ(Table()->model()->index(1, 0).data().toString(), QStringLiteral("A"));
}

TEST_F(MainSheetByHand, TheFilterLeavesRowsOnTheScreen) {
    Begin();
    Open();
    auto* combo = qobject_cast<QComboBox*>(Widget("FormMainSheet.ComboFilter"));
    ASSERT_EQ(combo->count(), 4);
    EXPECT_EQ(Table()->model()->rowCount(), 5);
    combo->setFocus();
    for (int i = 0; i < 3; ++i) QTest::keyClick(combo, Qt::Key_Down);
    EXPECT_EQ(combo->currentText(), QStringLiteral("Without partner"));
    EXPECT_EQ(Table()->model()->rowCount(), 2);
    EXPECT_EQ(qobject_cast<QLabel*>(Widget("FormMainSheet.LabelFilter"))->text(),
              QStringLiteral("2 of 5 points"));
}
