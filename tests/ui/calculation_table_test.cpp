// The calculation window's tables and fields: what they show of the logic's state, that nothing is cut, and
// the keyboard in them.
#include <QCheckBox>
#include <QClipboard>
#include <QHeaderView>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QMdiSubWindow>
#include <QMessageBox>
#include <QRadioButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QTableView>
#include <QTimer>

#include "core/form_main.h"
#include "core/fresh_start.h"
#include "core/job.h"
#include "core/run.h"
#include "core/settings.h"
#include "core/units.h"
#include "engine/calculation_window.h"
#include "engine/form_trafo_details.h"
#include "ui/desktop.h"
#include "ui/desktop_fixture.h"
#include "ui/qt_text.h"

using namespace corvinade;

namespace {

class CalculationScreen : public DesktopTest {
protected:
    static void BeginWithExample() {
        Begin(CORVINADE_SOURCE_DIR "/examples/robot_cell.cvn");
        Trigger("MenuTransformationCalculation");
        ASSERT_TRUE(IsOpen("FormTrafoBerechnung"));
    }

    static QTableView* Table(const std::string& at = "FormTrafoBerechnung.Tabelle") {
        return qobject_cast<QTableView*>(Widget(at));
    }
    static QLineEdit* Field(const std::string& name) {
        return qobject_cast<QLineEdit*>(Widget("FormTrafoBerechnung." + name));
    }

    static void ClickHeading(int col) {
        QHeaderView& heading = *Table()->horizontalHeader();
        const QPoint place(heading.sectionViewportPosition(col) + heading.sectionSize(col) / 2,
                           heading.height() / 2);
        QTest::mouseClick(heading.viewport(), Qt::LeftButton, Qt::NoModifier, place);
        QApplication::processEvents();
    }
    static QPoint CellCentre(int row, int col) {
        Table()->scrollTo(Table()->model()->index(row, col));
        return Table()->visualRect(Table()->model()->index(row, col)).center();
    }
    static void ClickCell(int row, int col) {
        QTest::mouseClick(Table()->viewport(), Qt::LeftButton, Qt::NoModifier, CellCentre(row, col));
        QApplication::processEvents();
    }
    static void DoubleClick(QWidget& widget, const QPoint& place) {
        QTest::mouseClick(&widget, Qt::LeftButton, Qt::NoModifier, place);
        QTest::mouseDClick(&widget, Qt::LeftButton, Qt::NoModifier, place);
        QApplication::processEvents();
    }
    static void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(Table(), key, modifiers);
        QApplication::processEvents();
    }

    static QItemSelectionRange SelectedInView() {
        const QItemSelection selection = Table()->selectionModel()->selection();
        return selection.size() == 1 ? selection.first() : QItemSelectionRange();
    }

    // Every number of the window and every cell of its table can be read whole. Columns are widened when
    // their cells are painted, which takes a round of events more.
    static void ExpectNothingCut() {
        for (int round = 0; round < 3; ++round) {
            Frame()->grab();
            QApplication::processEvents();
        }
        for (const auto* field : WidgetOf(FormTrafoBerechnung_Entry)->findChildren<QLineEdit*>()) {
            if (!field->isVisible()) continue;
            const int inner = field->width() - 8;
            EXPECT_GE(inner, field->fontMetrics().horizontalAdvance(field->text()))
                << S(field->objectName()) << " reads " << S(field->text());
        }
        const QTableView& table = *Table();
        for (int row = 0; row < table.model()->rowCount(); ++row)
            for (int col = kColName; col <= kColUseZ; ++col) {
                const QString text = table.model()->index(row, col).data().toString();
                EXPECT_GE(table.columnWidth(col) - 6, table.fontMetrics().horizontalAdvance(text)) << S(text);
            }
    }
};

}  // namespace

TEST_F(CalculationScreen, AnOpenedJobShowsThePresetThatItStandsOn) {
    BeginWithExample();
    const auto isSet = [](const char* name) {
        return qobject_cast<QRadioButton*>(Widget(std::string("FormTrafoBerechnung.") + name))->isChecked();
    };
    EXPECT_TRUE(isSet("Option6Parameter"));
    EXPECT_FALSE(isSet("Option7Parameter"));
    Click("FormTrafoBerechnung.CheckScaleXYZ");
    EXPECT_FALSE(isSet("Option6Parameter"));
    Click("FormTrafoBerechnung.Option6Parameter");
    EXPECT_TRUE(isSet("Option6Parameter"));
    EXPECT_FALSE(qobject_cast<QCheckBox*>(Widget("FormTrafoBerechnung.CheckScaleXYZ"))->isChecked());
}

TEST_F(CalculationScreen, AHeadingSortsAndTheMarkedColumnIsTheOneThatIsCopied) {
    BeginWithExample();
    Click("FormTrafoBerechnung.BtnCalculate");
    ClickHeading(kColX);
    EXPECT_TRUE(Table()->horizontalHeader()->isSortIndicatorShown());
    EXPECT_EQ(SelectedInView(), QItemSelectionRange(Table()->model()->index(0, kColX),
                                                    Table()->model()->index(Job.Pairs() - 1, kColX)));
    double before = -1e9;
    for (int row = 0; row < Job.Pairs(); ++row) {
        const double value = Table()->model()->index(row, kColX).data().toString().toDouble();
        EXPECT_GE(value, before);
        before = value;
    }
    Key(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text().count('\n'), Job.Pairs() - 1);
    ClickHeading(kColX);
    EXPECT_EQ(Table()->horizontalHeader()->sortIndicatorOrder(), Qt::DescendingOrder);
    const int width = Table()->columnWidth(kColX);
    ClickHeading(kColUseX);  // headings of the use columns do not sort
    EXPECT_EQ(Table()->horizontalHeader()->sortIndicatorSection(), kColX);
    EXPECT_EQ(Table()->columnWidth(kColX), width);
}

TEST_F(CalculationScreen, ArrowsAndTheSpaceBarTakeABlockOutOfTheFit) {
    BeginWithExample();
    ClickCell(3, kColUseX);
    Key(Qt::Key_Right, Qt::ShiftModifier);
    Key(Qt::Key_Down, Qt::ShiftModifier);
    Key(Qt::Key_Space);
    const auto flag = [](int point, int axis) {
        return Job.UseFlags[static_cast<std::size_t>(3 * (point - 1) + axis)];
    };
    for (const int point : {4, 5}) {
        EXPECT_EQ(flag(point, 1), 0);
        EXPECT_EQ(flag(point, 2), 0);
        EXPECT_EQ(flag(point, 3), 1);
    }
    EXPECT_EQ(flag(3, 1), 1);
    EXPECT_EQ(flag(6, 1), 1);
    EXPECT_EQ(SelectedInView().height(), 2) << "what was turned is still marked";
    Key(Qt::Key_Space);
    EXPECT_EQ(flag(4, 1), 1);
    EXPECT_EQ(flag(5, 2), 1);
}

TEST_F(CalculationScreen, ATurnedCellShowsItsGroundThoughItIsSelected) {
    BeginWithExample();
    for (const char* theme : {"_ThemeLight", "_ThemeDark"}) {
        Trigger(theme);
        DoubleClick(*Table()->viewport(), CellCentre(4, kColUseY));
        ASSERT_EQ(Job.UseFlags[14], 0);
        ASSERT_TRUE(Table()->selectionModel()->isSelected(Table()->model()->index(4, kColUseY)));
        const QImage picture = Table()->viewport()->grab().toImage();
        const QRect cell = Table()->visualRect(Table()->model()->index(4, kColUseY));
        const QColor ground = picture.pixelColor(cell.topLeft() + QPoint(6, 6));
        EXPECT_GT(std::min(ground.red(), ground.green()), ground.blue() + 60) << "yellow, as one out of use";
        DoubleClick(*Table()->viewport(), CellCentre(4, kColUseY));
    }
    Trigger("_ThemeLight");
}

TEST_F(CalculationScreen, TextOnBrightGroundsIsDarkAndSeedsAreBoldInBothThemes) {
    BeginWithExample();
    for (const char* theme : {"_ThemeLight", "_ThemeDark"}) {
        Trigger(theme);
        const QModelIndex seed = Table()->model()->index(0, kColName);
        ASSERT_EQ(seed.data(Qt::BackgroundRole).value<QColor>(), QColor(0, 255, 0));
        EXPECT_LT(seed.data(Qt::ForegroundRole).value<QColor>().lightness(), 64);
        EXPECT_TRUE(seed.data(Qt::FontRole).value<QFont>().bold());
        EXPECT_FALSE(Table()->model()->index(5, kColName).data(Qt::FontRole).isValid());
    }
    Trigger("_ThemeLight");
}

TEST_F(CalculationScreen, ADoubleClickOnAnExtremeTakesItsPointOutAndCalculatesOnce) {
    BeginWithExample();
    Click("FormTrafoBerechnung.BtnCalculate");
    Click("FormTrafoBerechnung.CheckAutoRec");
    const std::string worst = S(Field("TextMaxDevXYZPkt")->text());
    ASSERT_FALSE(worst.empty());
    const auto runs = CalculationWindow.Started;
    DoubleClick(*Field("TextMaxDevXYZPkt"), Field("TextMaxDevXYZPkt")->rect().center());
    EXPECT_EQ(CalculationWindow.Started, runs + 1);
    EXPECT_NE(S(Field("TextMaxDevXYZPkt")->text()), worst);
    std::size_t point = 1;
    while (Job.Start.Name[point] != worst) ++point;
    for (std::size_t axis = 0; axis < 3; ++axis) EXPECT_EQ(Job.UseFlags[3 * point - 2 + axis], 0);
    DoubleClick(*Field("TextMinDevYPkt"), Field("TextMinDevYPkt")->rect().center());
    EXPECT_EQ(CalculationWindow.Started, runs + 2);
}

TEST_F(CalculationScreen, LargeNumbersAreNotCut) {
    BeginWithExample();
    for (std::size_t i = 1; i <= static_cast<std::size_t>(Job.Pairs()); ++i)
        Job.Target.Y[i] = *Job.Target.Y[i] - 4292512.123456;
    Click("FormTrafoBerechnung.CheckMeasurement");
    Click("FormTrafoBerechnung.CheckObject");
    Click("FormTrafoBerechnung.BtnCalculate");
    ASSERT_LT(Field("TextTraY")->text().toDouble(), -4e6);
    ExpectNothingCut();
    // All digits that the units offer, and angles as degree, minute, second.
    Job.LengthDigits = Job.AngleDigits = 6;
    Job.AngleUnitName = kDegreeMinuteSecond;
    Settings.ScaleDigits = 1;
    UserDid([] { RhoFestlegung(); });
    Click("FormTrafoBerechnung.BtnCalculate");
    ASSERT_EQ(Field("TextRotZ")->text().count(' '), 2);
    ASSERT_EQ(Field("TextTraX")->text().section('.', 1).size(), 6);
    ExpectNothingCut();
}

TEST_F(CalculationScreen, NothingIsCutAfterAFitWithoutAnyDeviation) {
    Begin();
    std::string points;
    for (int i = 0; i < 6; ++i)
        points += "P" + std::to_string(i) + ";" + std::to_string(i * i * 100) + ";" +
                  std::to_string(i * 250 % 700) + ";" + std::to_string(i * 37 % 11 * 90) + "\n";
    Trigger("MenuFileInputFiles");
    Type("FormInputFiles.TextNameMCS", Write("start.txt", points));
    Type("FormInputFiles.TextNameOCS", Write("target.txt", points));
    Click("FormInputFiles.BtnOK");
    Trigger("MenuTransformationCalculation");
    Click("FormTrafoBerechnung.Option12");
    Click("FormTrafoBerechnung.BtnCalculate");  // a scale of 1 over no sigma: a significance of many digits
    ExpectNothingCut();
}

TEST_F(CalculationScreen, AColumnThatIsDrawnComesBackAndTheOthersFit) {
    BeginWithExample();
    Table()->setColumnWidth(kColName, 137);
    QApplication::processEvents();
    const int other = Table()->columnWidth(kColX);
    Trigger("MenuTransformationCalculation");  // closes it
    EXPECT_FALSE(IsOpen("FormTrafoBerechnung"));
    EXPECT_EQ(IniWertLesen("col_fb_1"), "2055");
    EXPECT_EQ(IniWertLesen("col_fb_2"), "1000");
    CloseDesktop();
    FreshStart();
    BeginWithExample();
    EXPECT_EQ(Table()->columnWidth(kColName), 137);
    EXPECT_EQ(Table()->columnWidth(kColX), other);
}

TEST_F(CalculationScreen, TabLeavesTheTable) {
    BeginWithExample();
    Frame()->activateWindow();
    Table()->setFocus();
    QTest::keyClick(Table(), Qt::Key_Tab);
    EXPECT_FALSE(Table()->hasFocus());
}

TEST_F(CalculationScreen, NearTheGimbalLockTheFieldWarnsByASignToo) {
    BeginWithExample();
    Settings.GimbalLockBorder = 0.01;
    Click("FormTrafoBerechnung.CheckRotY");
    EXPECT_EQ(Field("TextRotY")->findChild<QAction*>(QStringLiteral("_Warning")), nullptr);
    AnswerNext("No");
    Type("FormTrafoBerechnung.TextRotY", "90");
    ASSERT_EQ(messages_.size(), 1u);
    EXPECT_EQ(Field("TextRotY")->palette().color(QPalette::Base), QColor(255, 0, 0));
    EXPECT_NE(Field("TextRotY")->findChild<QAction*>(QStringLiteral("_Warning")), nullptr);
    Type("FormTrafoBerechnung.TextRotY", "80");
    EXPECT_EQ(Field("TextRotY")->findChild<QAction*>(QStringLiteral("_Warning")), nullptr);
    AnswerNext("Yes");
    Type("FormTrafoBerechnung.TextRotY", "90");
    EXPECT_EQ(S(Field("TextRotX")->text()).substr(0, 1), "0");
    EXPECT_FALSE(qobject_cast<QCheckBox*>(Widget("FormTrafoBerechnung.CheckRotX"))->isChecked());
    EXPECT_EQ(Field("TextRotY")->findChild<QAction*>(QStringLiteral("_Warning")), nullptr);
}

TEST_F(CalculationScreen, TheDirectionIsToldByWordsAndNotByColourAlone) {
    BeginWithExample();
    const auto* label = qobject_cast<QLabel*>(Widget("FormTrafoBerechnung.LabelDirection"));
    EXPECT_EQ(label->text(), "MCS => OCS");
    Click("FormTrafoBerechnung.BtnSwitchMcsOcs");
    EXPECT_EQ(label->text(), "OCS -> MCS");
    EXPECT_EQ(label->palette().color(label->foregroundRole()), QColor(255, 0, 0));
    EXPECT_EQ(S(label->toolTip()), Job.NameOCS + " => " + Job.NameMCS);
    Click("FormTrafoBerechnung.BtnSwitchMcsOcs");
    EXPECT_EQ(label->text(), "MCS -> OCS");
    EXPECT_NE(label->palette().color(label->foregroundRole()), QColor(255, 0, 0));
}

TEST_F(CalculationScreen, SecondSolutionAndBackAgain) {
    BeginWithExample();
    Click("FormTrafoBerechnung.BtnCalculate");
    const QString first = Field("TextRotX")->text();
    Click("FormTrafoBerechnung.BtnSecSolution");
    EXPECT_NE(Field("TextRotX")->text(), first);
    Click("FormTrafoBerechnung.BtnSecSolution");
    EXPECT_EQ(Field("TextRotX")->text(), first);
    EXPECT_FALSE(Widget("FormTrafoBerechnung.BtnShowAlternativeRottAff")->isEnabled());
    Click("FormTrafoBerechnung.CheckXY");
    EXPECT_TRUE(Widget("FormTrafoBerechnung.BtnShowAlternativeRottAff")->isEnabled());
}

TEST_F(CalculationScreen, TheDetailsShowBothSolutionsWholeInsideAFrameOf1280) {
    BeginWithExample();
    Frame()->resize(1280, 800);
    Click("FormTrafoBerechnung.BtnCalculate");
    Click("FormTrafoBerechnung.BtnDetails");
    QApplication::processEvents();
    for (int round = 0; round < 3; ++round) {
        Frame()->grab();
        QApplication::processEvents();
    }
    QWidget* form = WidgetOf(FormTrafoDetails_Entry);
    ASSERT_NE(form, nullptr);
    for (const auto* table : form->findChildren<QTableView*>()) {
        EXPECT_GE(table->viewport()->width(), table->horizontalHeader()->length()) << S(table->objectName());
        EXPECT_GE(table->viewport()->height(), table->verticalHeader()->length()) << S(table->objectName());
        for (int row = 0; row < table->model()->rowCount(); ++row)
            for (int col = 0; col < table->model()->columnCount(); ++col) {
                const QString text = table->model()->index(row, col).data().toString();
                EXPECT_GE(table->columnWidth(col) - 6, table->fontMetrics().horizontalAdvance(text))
                    << S(text);
            }
    }
    const auto* page = form->findChild<QScrollArea*>();
    EXPECT_EQ(page->horizontalScrollBar()->maximum(), 0);
    Frame()->resize(800, 600);
    form->parentWidget()->resize(600, 400);
    QApplication::processEvents();
    EXPECT_GT(page->horizontalScrollBar()->maximum(), 0) << "what has no room is reached by scrolling";
}

TEST_F(CalculationScreen, EveryTableOfTheDetailsIsCopiedFrom) {
    BeginWithExample();
    Click("FormTrafoBerechnung.BtnCalculate");
    Click("FormTrafoBerechnung.BtnDetails");
    for (const char* name : {"GridRotXYZ", "GridInverse", "GridHomogen"}) {
        QTableView* table = Table(std::string("FormTrafoDetails.") + name);
        const int col = table->model()->columnCount() - 1;
        table->selectionModel()->select(
            QItemSelection(table->model()->index(0, col), table->model()->index(1, col)),
            QItemSelectionModel::ClearAndSelect);
        QTest::keyClick(table, Qt::Key_C, Qt::ControlModifier);
        QApplication::processEvents();
        EXPECT_EQ(S(QApplication::clipboard()->text()),
                  S(table->model()->index(0, col).data().toString()) + "\r\n" +
                      S(table->model()->index(1, col).data().toString()));
    }
}

TEST_F(CalculationScreen, InASmallFrameEverythingIsReached) {
    BeginWithExample();
    Frame()->resize(1024, 700);
    QApplication::processEvents();
    auto* window = qobject_cast<QMdiSubWindow*>(WidgetOf(FormTrafoBerechnung_Entry)->parentWidget());
    ASSERT_NE(window, nullptr);
    EXPECT_LE(window->minimumSizeHint().width(), window->parentWidget()->width());
    EXPECT_LE(window->minimumSizeHint().height(), window->parentWidget()->height());
}
