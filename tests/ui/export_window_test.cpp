// The window of the forms of a result on the screen.
#include <QApplication>
#include <QClipboard>
#include <QFile>
#include <QListWidget>
#include <QPlainTextEdit>

#include "analysis/export_forms.h"
#include "core/job.h"
#include "core/run.h"
#include "engine/calculation_window.h"
#include "ui/desktop.h"
#include "ui/desktop_fixture.h"
#include "ui/qt_text.h"

using namespace corvinade;

namespace {

class ExportOnScreen : public DesktopTest {
protected:
    ExportOnScreen() {
        Begin(CORVINADE_SOURCE_DIR "/examples/robot_cell.cvn");
        UserDid([] { Dispatch([] { myButtonCalculate(); }); });
        Trigger("MenueFileExportResult");
    }
    ~ExportOnScreen() override { ::Run.JobDirty = kFalse; }
    static QListWidget& List() { return *qobject_cast<QListWidget*>(Widget("FormExport.ListForms")); }
    static std::string Shown() {
        return S(qobject_cast<QPlainTextEdit*>(Widget("FormExport.TextPreview"))->toPlainText());
    }
};

}  // namespace

TEST_F(ExportOnScreen, AFormThatIsChosenShowsItsTextAndCopyTakesItAlong) {
    ASSERT_TRUE(IsOpen("FormExport"));
    ASSERT_EQ(List().count(), static_cast<int>(analysis::ExportForms().size()));
    for (int i = 0; i < List().count(); ++i) {
        List().setCurrentRow(i);
        const ExportForm& form = analysis::ExportForms()[static_cast<std::size_t>(i)];
        const analysis::Placement placement = analysis::PlacementOfJob(::Run.JobFilePath);
        if (form.Form.Text == nullptr || !analysis::WhyNotInForm(form, placement).empty()) continue;
        EXPECT_EQ(Shown(), analysis::ExportText(form, placement)) << form.Form.Name;
        QApplication::clipboard()->clear();
        Click("FormExport.BtnCopy");
        EXPECT_EQ(S(QApplication::clipboard()->text()), analysis::ExportText(form, placement))
            << form.Form.Name;
    }
}

TEST_F(ExportOnScreen, TheFieldsOfAFrameFileStandThereForItAlone) {
    EXPECT_FALSE(Widget("FormExport.TextRobot")->isVisible());
    for (int i = 0; i < List().count(); ++i)
        if (List().item(i)->text().startsWith(QLatin1String("robcad"))) List().setCurrentRow(i);
    EXPECT_TRUE(Widget("FormExport.TextRobot")->isVisible());
    Type("FormExport.TextRobot", "r2a");
    EXPECT_NE(Shown().find("r2a"), std::string::npos);
}

TEST_F(ExportOnScreen, SaveAsksForANameAndWritesTheText) {
    ChooseNext(PathOf("out.txt"));
    Click("FormExport.BtnSave");
    QFile file(Q(PathOf("out.txt")));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(S(QString::fromUtf8(file.readAll())), Shown());
}
