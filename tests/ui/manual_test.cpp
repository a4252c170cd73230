// The manual: it stands where the help entry looks for it, and what it says is so.
#include <QAction>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QLineEdit>
#include <QRegularExpression>
#include <set>

#include "core/job.h"
#include "core/platform.h"
#include "ui/desktop.h"
#include "ui/desktop_fixture.h"
#include "ui/qt_text.h"

namespace {

class Manual : public DesktopTest {
protected:
    static QDir Folder() { return QDir(QStringLiteral(CORVINADE_SOURCE_DIR "/docs/manual")); }

    static QString Chapters() {
        QString text;
        for (const QString& name : Folder().entryList({QStringLiteral("*.md")})) {
            QFile file(Folder().filePath(name));
            EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << S(name);
            text += QString::fromUtf8(file.readAll());
        }
        return text;
    }
};

}  // namespace

TEST_F(Manual, StandsBesideTheProgram) {
    QFile file(Q(ProgramFolder() + "/manual Corvinade English 2.0.0.pdf"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_TRUE(file.read(5) == "%PDF-");
}

TEST_F(Manual, EveryPictureThatItShowsIsThere) {
    static const QRegularExpression kPicture(QStringLiteral("\\]\\((pictures/[^)]+)\\)"));
    int count = 0;
    for (auto all = kPicture.globalMatch(Chapters()); all.hasNext(); ++count) {
        const QString name = all.next().captured(1);
        EXPECT_FALSE(QImage(Folder().filePath(name)).isNull()) << S(name);
    }
    EXPECT_GT(count, 0);
}

TEST_F(Manual, EveryKeyThatItNamesForAMenuEntryIsTheKeyOfOne) {
    Begin();
    std::set<QString> keys;
    for (const QAction* action : Frame()->findChildren<QAction*>())
        keys.insert(action->shortcut().toString(QKeySequence::PortableText));
    keys.insert(QStringLiteral("Ctrl+C"));  // of every table
    static const QRegularExpression kKey(QStringLiteral("Ctrl\\+(Shift\\+)?[A-Z]\\b"));
    int count = 0;
    for (auto all = kKey.globalMatch(Chapters()); all.hasNext(); ++count) {
        const QString key = all.next().captured(0);
        EXPECT_TRUE(keys.count(key) != 0) << S(key);
    }
    EXPECT_GT(count, 0);
}

// The third section, by keys alone: the table is reached with Tab, its cells are marked and switched.
TEST_F(Manual, APointIsLeftOutAndTheFitRepeatedByKeysAlone) {
    Begin();
    Trigger("MenuFileInputFiles");
    Type("FormInputFiles.TextNameMCS", CORVINADE_SOURCE_DIR "/examples/robot_cell_measured.txt");
    Type("FormInputFiles.TextNameOCS", CORVINADE_SOURCE_DIR "/examples/robot_cell_nominal.txt");
    Click("FormInputFiles.BtnOK");
    ASSERT_EQ(Job.nIdent, 14);
    Trigger("MenuTransformationCalculation");
    Frame()->activateWindow();
    QWidget* form = WidgetOf(*FindWindow("FormTrafoBerechnung"));
    form->setFocus();
    QTest::keyClick(form, Qt::Key_6, Qt::AltModifier);
    QTest::keyClick(form, Qt::Key_F5);
    const auto largest = [] {
        return S(qobject_cast<QLineEdit*>(Widget("FormTrafoBerechnung.TextMaxDevXYZPkt"))->text());
    };
    EXPECT_EQ(largest(), "F09");

    QWidget* table = Widget("FormTrafoBerechnung.Tabelle");
    Widget("FormTrafoBerechnung.BtnUseAllPts")->setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    ASSERT_EQ(QApplication::focusWidget(), table);
    QTest::keyClick(table, Qt::Key_Home, Qt::ControlModifier);
    for (int down = 0; down < 8; ++down) QTest::keyClick(table, Qt::Key_Down);
    QTest::keyClick(table, Qt::Key_End);
    for (int key = 0; key < 2; ++key) QTest::keyClick(table, Qt::Key_Left, Qt::ShiftModifier);
    QTest::keyClick(table, Qt::Key_Space);
    const std::vector<std::int16_t> flags(Job.UseFlags.begin() + 25, Job.UseFlags.begin() + 28);
    EXPECT_EQ(flags, std::vector<std::int16_t>(3, 0));
    QTest::keyClick(table, Qt::Key_F5);
    EXPECT_NE(largest(), "F09");
}
