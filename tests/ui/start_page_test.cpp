// The start page on the screen: where it stands, what fits, and the pictures of jobs.
#include <QFile>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPushButton>

#include "core/desktop_defaults.h"
#include "core/form_start.h"
#include "core/job.h"
#include "ui/desktop.h"
#include "ui/desktop_fixture.h"
#include "ui/frame.h"
#include "ui/qt_text.h"

using namespace corvinade;

namespace {

class StartPageByHand : public DesktopTest {
protected:
    static void BeginAsPeople() {
        WantDesktopDefaults();
        Begin();
        ASSERT_TRUE(IsOpen("FormStart"));
    }
    // Of the picture of a button, pixels that something is painted on.
    static int Painted(const char* button) {
        const auto* at = qobject_cast<QPushButton*>(Widget(std::string("FormStart.") + button));
        const QImage image = at->icon().pixmap(64, 40).toImage();
        int painted = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x) painted += qAlpha(image.pixel(x, y)) > 128 ? 1 : 0;
        return painted;
    }
};

}  // namespace

TEST_F(StartPageByHand, StandsInTheMiddleOfTheFrame) {
    BeginAsPeople();
    const QWidget* outer = WidgetOf(FormStart_Entry)->parentWidget();
    const QRect room = AreaOf(*Frame()).viewport()->rect();
    EXPECT_NEAR(outer->geometry().center().x(), room.center().x(), 2);
    EXPECT_NEAR(outer->geometry().center().y(), room.center().y(), 2);
    EXPECT_FALSE(Widget("FormStart.BtnRecent1")->isVisible());
    EXPECT_TRUE(Widget("FormStart.LabelRecent")->isVisible());
}

// Of a screen of 1920 by 1080 at twice the size the frame leaves some 940 by 420.
TEST_F(StartPageByHand, FitsASmallScreenWithFourRecentJobs) {
    BeginAsPeople();
    UserDid([] {
        for (std::size_t i = 1; i <= kRecentJobs; ++i)
            ::Run.LastFile[i] = "/jobs/a" + std::to_string(i) + ".cvn";
        FollowOnStartPage(false);
    });
    QApplication::processEvents();
    const QSize least = WidgetOf(FormStart_Entry)->minimumSizeHint();
    EXPECT_LE(least.width(), 940);
    EXPECT_LE(least.height(), 420);
}

TEST_F(StartPageByHand, AJobIsShownByItsPicture) {
    BeginAsPeople();
    Click("FormStart.BtnExample2");
    EXPECT_FALSE(IsOpen("FormStart"));
    EXPECT_EQ(Job.Pairs(), 273);
    Trigger("MenuViewStart");
    ASSERT_TRUE(IsOpen("FormStart"));
    const auto* recent = qobject_cast<QPushButton*>(Widget("FormStart.BtnRecent1"));
    EXPECT_EQ(recent->text(), QStringLiteral("roof.cvn"));
    EXPECT_GT(Painted("BtnRecent1"), 50) << "points of the roof";
    EXPECT_EQ(Painted("BtnRecent2"), 0);
    ::Run.JobDirty = kFalse;
}

TEST_F(StartPageByHand, IsNotThereForAJobThatIsOpenedWithTheProgram) {
    WantDesktopDefaults();
    Begin(std::string(CORVINADE_SOURCE_DIR) + "/examples/robot_cell.cvn");
    EXPECT_FALSE(IsOpen("FormStart"));
    ::Run.JobDirty = kFalse;
}

// The main job from this page: two files, the fit, and its report, in eight actions.
TEST_F(StartPageByHand, LeadsFromTwoFilesToTheReport) {
    BeginAsPeople();
    const std::string examples = std::string(CORVINADE_SOURCE_DIR) + "/examples/robot_cell_";
    Click("FormStart.BtnInputFiles");
    Type("FormInputFiles.TextNameMCS", examples + "measured.txt");
    Type("FormInputFiles.TextNameOCS", examples + "nominal.txt");
    Click("FormInputFiles.BtnOK");
    EXPECT_FALSE(IsOpen("FormStart")) << "it has done its work";
    Click("FormInputStatistic.BtnNextCalculation");
    Click("FormTrafoBerechnung.BtnCalculate");
    Trigger("MenuFileReport");
    ChooseNext(PathOf("report.pdf"));
    Click("FormReport.BtnSave");
    QFile pdf(Q(PathOf("report.pdf")));
    ASSERT_TRUE(pdf.open(QIODevice::ReadOnly));
    EXPECT_TRUE(pdf.read(5) == "%PDF-");
    ::Run.JobDirty = kFalse;
}
