// The report on the desktop, from the menu to a file, and help where the user stands.
#include <QAction>
#include <QDialog>
#include <QFile>
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QScrollArea>
#include <QTableView>
#include <QTextBrowser>
#include <QUrl>

#include "core/desktop_defaults.h"
#include "core/files.h"
#include "core/form_main.h"
#include "core/run.h"
#include "graphics/bindings_overlay.h"
#include "graphics/form_report.h"
#include "ui/desktop.h"
#include "ui/desktop_fixture.h"
#include "ui/frame.h"
#include "ui/help.h"
#include "ui/qt_text.h"
#include "ui/work_time.h"

using namespace corvinade;

namespace {

constexpr const char* kExample = CORVINADE_SOURCE_DIR "/examples/robot_cell.cvn";

class ReportOnScreen : public DesktopTest {
protected:
    static QWidget* Paper() {
        const auto* area = WidgetOf(FormReport_Entry)->findChild<QScrollArea*>(QStringLiteral("_Preview"));
        return area == nullptr ? nullptr : area->widget();
    }
};

class HelpOnScreen : public DesktopTest {
protected:
    static QTextBrowser* Shown() {
        for (QWidget* window : QApplication::topLevelWidgets())
            if (window->objectName() == QLatin1String("_Help") && window->isVisible())
                return window->findChild<QTextBrowser*>();
        return nullptr;
    }
    static std::string ChapterShown() {
        QTextBrowser* browser = Shown();
        if (browser == nullptr) return "";
        std::string chapter = S(browser->source().toString());
        browser->window()->close();
        QApplication::processEvents();
        return chapter;
    }
};

}  // namespace

TEST_F(ReportOnScreen, IsShownAsItPrintsAndWrittenAsAPdf) {
    WantDesktopDefaults();
    Begin(kExample);
    Click("FormTrafoBerechnung.BtnCalculate");
    Trigger("MenuFileReport");
    ASSERT_TRUE(IsOpen("FormReport"));
    ASSERT_NE(Paper(), nullptr);
    QApplication::processEvents();
    EXPECT_GT(Paper()->height(), Paper()->width()) << "a page upright at least";
    const QImage with = Paper()->grab().toImage();
    Click("FormReport.CheckParameters");
    EXPECT_NE(Paper()->grab().toImage(), with);
    ChooseNext(PathOf("cell.pdf"));
    Click("FormReport.BtnSave");
    const FileBytes file = ReadFile(PathOf("cell.pdf"));
    const std::string pdf(file.View());
    EXPECT_TRUE(pdf.starts_with("%PDF-"));
    EXPECT_NE(pdf.find("/Outlines"), std::string::npos);
    ::Run.JobDirty = kFalse;
}

TEST_F(HelpOnScreen, EveryWindowHasItsChapter) {
    for (const WindowEntry* window : AllWindows())
        EXPECT_TRUE(QFile::exists(QStringLiteral(":/manual/") + QLatin1String(ChapterOf(*window))) &&
                    *ChapterOf(*window) != '\0')
            << window->Name;
}

TEST_F(HelpOnScreen, F1OpensTheChapterOfTheWindowInFrontAndOfADialog) {
    Begin(kExample);
    Trigger("_HelpChapter");
    EXPECT_EQ(ChapterShown(), "qrc:/manual/01-first-job.md");
    Trigger("MenuTransformationCalculation");
    QTest::keyClick(Widget("FormTrafoBerechnung.TextTraX"), Qt::Key_F1);
    EXPECT_EQ(ChapterShown(), "qrc:/manual/03-calculation.md");
    Trigger("MenuFileInputFiles");
    QTest::keyClick(Widget("FormInputFiles.TextNameMCS"), Qt::Key_F1);
    EXPECT_EQ(ChapterShown(), "qrc:/manual/02-points.md");
}

TEST_F(HelpOnScreen, TheListOfKeysHasThoseOfAllMenusAndPictures) {
    Begin();
    Trigger("_HelpKeys");
    ASSERT_NE(Shown(), nullptr);
    const QString text = Shown()->toPlainText();
    int keys = 0;
    for (const QAction* action : Frame()->findChildren<QAction*>()) {
        if (action->shortcut().isEmpty()) continue;
        ++keys;
        EXPECT_TRUE(text.contains(action->shortcut().toString(QKeySequence::NativeText)))
            << S(action->objectName());
    }
    EXPECT_GT(keys, 12);
    for (const Binding& binding : ScreenBindings())
        EXPECT_TRUE(text.contains(QString::fromUtf8(binding.Effect))) << binding.Effect;
    Shown()->window()->close();
}

TEST_F(HelpOnScreen, ToolTipsNameTheirKeys) {
    Begin();
    EXPECT_TRUE(Action("Toolbar2.FileOpen")->toolTip().contains(QStringLiteral("(Ctrl+O)")));
    EXPECT_TRUE(Action("Toolbar1.TrafoBerechnung")->toolTip().contains(QStringLiteral("(Ctrl+T)")));
}

TEST_F(DesktopTest, TheWindowMenuListsAndArrangesTheWindows) {
    Begin(kExample);
    Trigger("MenuVievMainSheet");
    Trigger("MenuTransformationCalculation");
    Trigger("MenüViewInputStatistic");
    auto* menu = Frame()->findChild<QMenu*>(QStringLiteral("_MenuWindow"));
    ASSERT_NE(menu, nullptr);
    const auto listed = [menu] {
        QMetaObject::invokeMethod(menu, "aboutToShow");
        QList<QAction*> actions;
        for (QAction* action : menu->actions())
            if (action->isCheckable()) actions.append(action);
        return actions;
    };
    ASSERT_EQ(listed().size(), 3);
    QMdiArea& area = AreaOf(*Frame());
    listed()[0]->trigger();
    EXPECT_EQ(area.activeSubWindow()->widget(), WidgetOf(*FindWindow("FormMainSheet")));
    EXPECT_TRUE(listed()[0]->isChecked());
    Trigger("_WindowTile");
    const QList<QMdiSubWindow*> windows = area.subWindowList();
    for (int i = 0; i < windows.size(); ++i)
        for (int k = 0; k < i; ++k)
            EXPECT_FALSE(windows[i]->geometry().intersects(windows[k]->geometry())) << i << " and " << k;
    Trigger("_WindowNext");
    EXPECT_NE(area.activeSubWindow()->widget(), WidgetOf(*FindWindow("FormMainSheet")));
    listed()[0]->trigger();
    Trigger("_WindowClose");
    QApplication::processEvents();
    EXPECT_FALSE(IsOpen("FormMainSheet"));
    EXPECT_EQ(listed().size(), 2);
}

TEST_F(DesktopTest, CtrlFFindsTheNextRowOfATable) {
    Begin(kExample);
    Trigger("MenuVievMainSheet");
    auto* table = qobject_cast<QTableView*>(Widget("FormMainSheet.MSFlexGrid1"));
    QTest::keyClick(table, Qt::Key_F, Qt::ControlModifier);
    auto* line = table->findChild<QLineEdit*>(QStringLiteral("_Search"));
    ASSERT_NE(line, nullptr);
    QTest::keyClicks(line, "f1");
    const auto name = [table] {
        return S(table->model()->index(table->currentIndex().row(), 0).data().toString());
    };
    const std::string first = name();
    EXPECT_TRUE(first.starts_with("F1")) << first;
    QTest::keyClick(line, Qt::Key_Return);
    EXPECT_TRUE(name().starts_with("F1")) << name();
    EXPECT_NE(name(), first);
    QTest::keyClick(line, Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_EQ(name(), first);
    QTest::keyClicks(line, "no such");
    EXPECT_EQ(name(), first);
    EXPECT_NE(line->palette().color(QPalette::Text), table->palette().color(QPalette::Text));
    QTest::keyClick(line, Qt::Key_Escape);
    EXPECT_TRUE(line->isHidden());
    EXPECT_TRUE(IsOpen("FormMainSheet"));
}
