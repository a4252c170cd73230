// Undo and redo by the keys of the frame, to the painted table.
#include <QAction>
#include <QTableView>
#include <algorithm>

#include "core/form_main.h"
#include "core/job.h"
#include "engine/calculation_window.h"
#include "ui/desktop.h"
#include "ui/desktop_fixture.h"
#include "ui/qt_text.h"
#include "ui/work_time.h"

using namespace corvinade;

namespace {

class UndoOnScreen : public DesktopTest {
protected:
    static QTableView* Table() { return qobject_cast<QTableView*>(Widget("FormTrafoBerechnung.Tabelle")); }
    static QString Shown(int row, int col) { return Table()->model()->index(row, col).data().toString(); }
    static void DoubleClick(int row, int col) {
        Table()->scrollTo(Table()->model()->index(row, col));
        const QPoint place = Table()->visualRect(Table()->model()->index(row, col)).center();
        QTest::mouseClick(Table()->viewport(), Qt::LeftButton, Qt::NoModifier, place);
        QTest::mouseDClick(Table()->viewport(), Qt::LeftButton, Qt::NoModifier, place);
        QApplication::processEvents();
    }
    static void Press(Qt::Key key, Qt::KeyboardModifiers modifiers) {
        QTest::keyClick(Table(), key, modifiers);
        QApplication::processEvents();
    }
    // 1,000 pairs, by the files that a user would bring in.
    void ImportThousand() {
        std::string start, target;
        for (int i = 1; i <= 1000; ++i) {
            const std::string x = std::to_string(i * 7 % 1013), y = std::to_string(i * 31 % 997);
            const std::string z = std::to_string(i * 57 % 499);
            start += "P" + std::to_string(i) + ";" + x + ";" + y + ";" + z + "\n";
            target += "P" + std::to_string(i) + ";" + x + ";" + y + ";" + z + "\n";
        }
        Trigger("MenuFileInputFiles");
        Type("FormInputFiles.TextNameMCS", Write("start.txt", start));
        Type("FormInputFiles.TextNameOCS", Write("target.txt", target));
        Click("FormInputFiles.BtnOK");
        ASSERT_EQ(Job.Pairs(), 1000);
    }
};

}  // namespace

TEST_F(UndoOnScreen, TheKeysTakeAUseCellBackAndAgainAndTheMenuNamesTheStep) {
    Begin(CORVINADE_SOURCE_DIR "/examples/robot_cell.cvn");
    Trigger("MenuTransformationCalculation");
    EXPECT_FALSE(Action("MenuEditUndo")->isEnabled());
    Click("FormTrafoBerechnung.CheckAutoRec");
    const auto flags = Job.UseFlags;
    const QString before = Shown(1, kColUseX);
    DoubleClick(1, kColUseX);
    ASSERT_NE(Job.UseFlags, flags);
    ASSERT_NE(Shown(1, kColUseX), before);
    EXPECT_EQ(S(Action("MenuEditUndo")->text()), "&Undo Use of Points");
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Job.UseFlags, flags);
    EXPECT_EQ(Shown(1, kColUseX), before);
    EXPECT_FALSE(Action("MenuEditUndo")->isEnabled());
    Press(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_NE(Job.UseFlags, flags);
    EXPECT_NE(Shown(1, kColUseX), before);
}

TEST_F(UndoOnScreen, AThousandPointsArePaintedAsTheyWereBefore) {
    Begin();
    ImportThousand();
    Trigger("MenuTransformationCalculation");
    DoubleClick(1, kColUseX);
    ASSERT_TRUE(Action("MenuEditUndo")->isEnabled());
    const QImage without = Table()->grab().toImage();
    WorkTime watch;
    watch.start();
    Trigger("MenuEditUndo");
    const QImage with = Table()->grab().toImage();
    RecordProperty("ms", watch.elapsed());
    EXPECT_NE(with, without);
    EXPECT_EQ(std::count(Job.UseFlags.begin() + 1, Job.UseFlags.end(), 0), 0);
    Trigger("MenuEditRedo");
    EXPECT_EQ(Table()->grab().toImage(), without);
}
