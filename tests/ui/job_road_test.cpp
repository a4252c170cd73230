// The road of a typical job by clicks and keys: two files, a calculation, a saved job.
#include <QClipboard>
#include <QDialog>
#include <QLineEdit>
#include <QMdiSubWindow>
#include <QMenu>
#include <QPushButton>
#include <QTableView>

#include "core/job.h"
#include "core/run.h"
#include "ui/desktop.h"
#include "ui/desktop_fixture.h"
#include "ui/drops.h"
#include "ui/qt_text.h"

using namespace corvinade;

namespace {

class JobRoad : public DesktopTest {
protected:
    std::string start_ = Write("start.txt", "A;0;0;0\nB;1000;0;0\nC;0;2000;0\nD;0;0;3000\n");
    std::string target_ = Write("target.txt", "A;5;6;7\nB;1005;6;7\nC;5;2006;7\nD;5;6;3007\n");

    void Import() {
        Trigger("MenuFileInputFiles");
        ASSERT_TRUE(IsOpen("FormInputFiles"));
        Type("FormInputFiles.TextNameMCS", start_);
        Type("FormInputFiles.TextNameOCS", target_);
        Click("FormInputFiles.BtnOK");
        EXPECT_FALSE(IsOpen("FormInputFiles"));
    }
};

}  // namespace

TEST_F(JobRoad, TwoFilesAreImportedAndTheCommandsFollow) {
    Begin();
    EXPECT_FALSE(Frame()->findChild<QMenu*>(QStringLiteral("MenuTransformation"))->menuAction()->isEnabled());
    Import();
    EXPECT_EQ(Job.Pairs(), 4);
    EXPECT_TRUE(Frame()->findChild<QMenu*>(QStringLiteral("MenuTransformation"))->menuAction()->isEnabled());
    EXPECT_TRUE(Frame()->windowTitle().startsWith(QLatin1String("Corvinade Version 2.0.64")));
}

TEST_F(JobRoad, TheMainSheetShowsEveryPointAndCopiesWhatIsMarked) {
    Begin();
    Import();
    Trigger("MenuVievMainSheet");
    ASSERT_TRUE(IsOpen("FormMainSheet"));
    auto* table = qobject_cast<QTableView*>(Widget("FormMainSheet.MSFlexGrid1"));
    ASSERT_EQ(table->model()->rowCount(), 4);
    EXPECT_EQ(table->model()->index(1, 0).data().toString(), "B");
    EXPECT_EQ(table->model()->headerData(0, Qt::Horizontal).toString(), "Point ID");
    table->selectAll();
    QTest::keyClick(table, Qt::Key_C, Qt::ControlModifier);
    EXPECT_TRUE(QApplication::clipboard()->text().startsWith(QLatin1String("A\t0.000")))
        << S(QApplication::clipboard()->text());
}

TEST_F(JobRoad, AJobIsSavedUnderANameAndOpenedAgain) {
    Begin();
    Import();
    ChooseNext(PathOf("cell.cvn"));
    Trigger("MenuFileSave");
    EXPECT_EQ(::Run.JobFilePath, PathOf("cell.cvn"));
    EXPECT_EQ(::Run.JobDirty, kFalse);
    CloseDesktop();
    Begin(PathOf("cell.cvn"));
    EXPECT_EQ(Job.Pairs(), 4);
    EXPECT_TRUE(Frame()->windowTitle().endsWith(QLatin1String("cell.cvn")));
}

TEST_F(JobRoad, RecentFilesAreShownWithTheirWholePathAndEmptyEntriesNotAtAll) {
    Begin();
    EXPECT_FALSE(Action("MenüDateiAlt1")->isVisible());
    Import();
    ChooseNext(PathOf("cell & jig.cvn"));
    Trigger("MenuFileSave");
    EXPECT_TRUE(Action("MenüDateiAlt1")->isVisible());
    EXPECT_EQ(S(Action("MenüDateiAlt1")->text()), "&1 " + PathOf("cell && jig.cvn"));
    EXPECT_FALSE(Action("MenüDateiAlt2")->isVisible());
    Trigger("MenüDateiAlt1");
    EXPECT_EQ(::Run.JobFilePath, PathOf("cell & jig.cvn"));
    EXPECT_EQ(::Run.JobDataValid, kTrue);
}

TEST_F(JobRoad, ClosingAsksForAChangedJob) {
    Begin();
    Import();
    AnswerNext("No");
    Frame()->close();
    QApplication::processEvents();
    ASSERT_EQ(messages_.size(), 1u);
    EXPECT_NE(messages_[0].find("Do you want to save it?"), std::string::npos);
    EXPECT_FALSE(IsLoaded("FormMain"));
}

TEST_F(JobRoad, FilesThatAreDroppedGoToTheInputDialogAndJobsAreOpened) {
    Begin();
    OpenDropped({start_, target_});
    ASSERT_TRUE(IsOpen("FormInputFiles"));
    EXPECT_EQ(S(qobject_cast<QLineEdit*>(Widget("FormInputFiles.TextNameOCS"))->text()), target_);
    Click("FormInputFiles.BtnOK");
    ChooseNext(PathOf("cell.cvn"));
    Trigger("MenuFileSaveAs");
    OpenDropped({PathOf("cell.cvn")});
    EXPECT_EQ(::Run.JobDataValid, kTrue);
    EXPECT_EQ(messages_.size(), 0u);
}

TEST_F(JobRoad, PlacesOfWindowsComeBack) {
    Begin();
    Import();
    Trigger("MenuVievMainSheet");
    QWidget* outer = WidgetOf(*FindWindow("FormMainSheet"))->parentWidget();
    outer->setGeometry(40, 30, 500, 300);
    QApplication::processEvents();
    Trigger("MenuVievMainSheet");
    if (IsOpen("FormMainSheet")) outer->close();
    QApplication::processEvents();
    EXPECT_FALSE(IsOpen("FormMainSheet"));
    Trigger("MenuVievMainSheet");
    EXPECT_EQ(WidgetOf(*FindWindow("FormMainSheet"))->parentWidget()->geometry(), QRect(40, 30, 500, 300));
}

TEST_F(JobRoad, AnErrorIsToldAndTheBusyPointerIsPutBack) {
    Begin();
    AnswerNext("OK");
    OpenDropped({Write("damaged.cvn", std::string("\6\0\0\0"
                                                  "2.0.64",
                                                  10))});
    QApplication::processEvents();
    EXPECT_EQ(::Run.WaitPointers, 0);
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    ASSERT_EQ(messages_.size(), 1u);
    EXPECT_NE(messages_[0].find("damaged.cvn"), std::string::npos) << messages_[0];
}
