// The batch window and the choice of a folder, by hand.
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QTimer>
#include <filesystem>

#include "analysis/form_batch.h"
#include "analysis/form_change_dir.h"
#include "core/files.h"
#include "core/form_main.h"
#include "core/job.h"
#include "core/run.h"
#include "ui/desktop.h"
#include "ui/desktop_fixture.h"
#include "ui/qt_text.h"

using namespace corvinade;

namespace {

class BatchByHand : public DesktopTest {
protected:
    void Open() {
        Begin();
        ::Run.JobDataValid = ::Run.TrafoValid = ::Run.CalcDone = kTrue;
        Job.TraX = 1;
        ShowWindow("FormBatch");
        ShowState();
    }
    // A file in a folder of the test's.
    void WriteIn(const std::string& folder, const std::string& name, const std::string& content) const {
        std::filesystem::create_directories(PathOf(folder));
        Write(folder + "/" + name, content);
    }
    static std::string Field(const std::string& at) {
        return S(qobject_cast<QLineEdit*>(Widget(at))->text());
    }
    // Does `work` once the window for a folder is there.
    static void InTheFolderWindow(const std::function<void()>& work) {
        QTimer::singleShot(0, [work] {
            ASSERT_TRUE(IsOpen("FormChangeDir"));
            work();
        });
    }
};

}  // namespace

TEST_F(BatchByHand, AFolderIsTransformedByHand) {
    Open();
    WriteIn("in", "a.txt", "A;1;2;3\n");
    WriteIn("out", "a_out.txt", "old");
    Type("FormBatch.TextNameMCSDirectory", PathOf("in"));
    Type("FormBatch.TextNameTCSDirectory", PathOf("out"));
    AnswerNext("overwrite all ");
    Click("FormBatch.BtnStartBatch");
    EXPECT_EQ(S(qobject_cast<QLabel*>(Widget("FormBatch.LabelStatus"))->text()),
              "Calculating on File 1 of 1 Files");
    EXPECT_EQ(ReadFile(PathOf("out/a_out.txt")).View(), "A\t2.000\t2.000\t3.000\r\n");
    ASSERT_EQ(messages_.size(), 1u);
}

TEST_F(BatchByHand, TheSameFolderLeavesNothingToBrowse) {
    Open();
    Click("FormBatch.CheckSameAsMCS");
    EXPECT_FALSE(Widget("FormBatch.TextNameTCSDirectory")->isEnabled());
    EXPECT_FALSE(Widget("FormBatch.BtnBrowseTCS")->isEnabled());
    EXPECT_TRUE(Widget("FormBatch.BtnExBrowseTCS")->isEnabled());
}

TEST_F(BatchByHand, AFolderThatIsNotThereIsToldInsteadOfShown) {
    Open();
    Type("FormBatch.TextNameMCSDirectory", PathOf("none"));
    AnswerNext("OK");
    Click("FormBatch.BtnEXBrowseMCS");
    ASSERT_EQ(messages_.size(), 1u);
    EXPECT_EQ(messages_[0],
              "\"" + PathOf("none") + "\" could not be opened: there is no such file or folder.");
}

TEST_F(BatchByHand, AFolderIsChosenWithMouseAndKeys) {
    Open();
    WriteIn("tree/one", "x", "");
    WriteIn("tree/two/deep", "x", "");
    Type("FormBatch.TextNameMCSDirectory", PathOf("tree"));
    InTheFolderWindow([this] {
        auto* list = qobject_cast<QListWidget*>(Widget("FormChangeDir.Dir1"));
        EXPECT_EQ(list->count(), 3);
        list->setCurrentRow(2);
        EXPECT_EQ(Field("FormChangeDir.TextPath"), PathOf("tree/two"));
        const QPoint place = list->visualItemRect(list->item(2)).center();
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, place);
        QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, place);
        EXPECT_EQ(list->count(), 2) << "opened";
        list->setCurrentRow(1);
        Click("FormChangeDir.BtnOK");
    });
    Click("FormBatch.BtnBrowseMCS");
    EXPECT_EQ(Field("FormBatch.TextNameMCSDirectory"), PathOf("tree/two/deep"));
}

TEST_F(BatchByHand, TheFolderWindowIsCancelledWithEsc) {
    Open();
    Type("FormBatch.TextNameMCSDirectory", folder_);
    InTheFolderWindow([] { QTest::keyClick(Widget("FormChangeDir.Dir1"), Qt::Key_Escape); });
    Click("FormBatch.BtnBrowseMCS");
    EXPECT_EQ(Field("FormBatch.TextNameMCSDirectory"), folder_);
}

TEST_F(BatchByHand, AnExportGetsItsExtensionInTheDialog) {
    Open();
    ::Run.JobFilePath = kDefaultJobPath;
    ChooseNext(PathOf("cell"));
    UserClick(Main.MenueFileExportROCAL);
    EXPECT_TRUE(File_Exist(PathOf("cell.bas")));
}
