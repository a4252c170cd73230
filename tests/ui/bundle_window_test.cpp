// The window of a network on the screen.
#include <QLineEdit>
#include <QMdiSubWindow>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTimer>
#include <cmath>

#include "bundle/bundle_file.h"
#include "bundle/form_buendel.h"
#include "core/job.h"
#include "core/platform.h"
#include "ui/desktop.h"
#include "ui/desktop_fixture.h"
#include "ui/qt_text.h"

using namespace corvinade;

namespace {

class BundleByHand : public DesktopTest {
protected:
    void Read() {
        Begin();
        Trigger("MenuFileInputFiles");
        ChooseNext(CORVINADE_SOURCE_DIR "/examples/hall_network.txt");
        Click("FormInputFiles.Command2");
        AnswerNext("OK");
        Click("FormInputFiles.BtnOK");
        QApplication::processEvents();
    }
    // Of a thousand points, whose distances are none.
    static std::string LargeNetwork() {
        std::string stations, objects, distances;
        for (int i = 0; i < 1000; ++i) {
            const double x = 9000 * std::sin(1.7 * i), y = 9000 * std::sin(2.9 * i + 1),
                         z = 3000 * std::sin(0.7 * i);
            (i < 8 ? stations : objects) += "N" + std::to_string(i) + " " + std::to_string(x) + " " +
                                            std::to_string(y) + " " + std::to_string(z) + "\n\n";
            for (int s = 0; i >= 8 && s < 8; ++s)
                distances += "N" + std::to_string(s) + " N" + std::to_string(i) + " 5000\n";
        }
        return "Theodolite\n\n" + stations + "END\nObject Points\n\n" + objects + "END\nDistances\n\n" +
               distances + "END\n";
    }
    static std::string Page(const std::string& name) {
        return S(qobject_cast<QPlainTextEdit*>(Widget("FormBündel." + name))->toPlainText());
    }
};

}  // namespace

TEST_F(BundleByHand, OpensWithTheFileAndShowsTheAdjustment) {
    Read();
    ASSERT_TRUE(IsOpen("FormBündel"));
    ASSERT_EQ(messages_.size(), 1u);
    EXPECT_EQ(messages_[0].find("Found 6 Stations and 14 Object Points"), 0u) << messages_[0];
    EXPECT_FALSE(Widget("FormBündel.CommandSTOP")->isEnabled());
    Click("FormBündel.BtnCalculate");
    EXPECT_EQ(Job.Pairs(), 20);
    EXPECT_EQ(Page("TextWhatDO").find("calculationg A Matrix"), 0u);
    EXPECT_EQ(Page("TextRUN").find("Iterations 1 "), 0u);
    EXPECT_EQ(Page("TextResults").find("TH1\t5.1\t"), 0u);
    EXPECT_TRUE(qobject_cast<QPlainTextEdit*>(Widget("FormBündel.TextResults"))->isReadOnly());
}

// The button may be clicked while the run goes on: it serves the events that wait, within the inverse too.
TEST_F(BundleByHand, EscapeStopsALongRun) {
    Read();
    Bundle = BündelInputFileEinlesen(Write("large.txt", LargeNetwork()));
    int fired = 0;
    QTimer escape;
    QObject::connect(&escape, &QTimer::timeout, [&fired] {
        if (!BündelWindow.CommandSTOP.Enabled) return;
        ++fired;
        QTest::keyClick(Frame(), Qt::Key_Escape);
    });
    escape.start(20);
    Click("FormBündel.BtnCalculate");
    EXPECT_GT(fired, 0);
    EXPECT_EQ(Page("TextRUN"), "") << "the inverse of 3000 unknowns takes longer than that";
    EXPECT_TRUE(Widget("FormBündel.BtnCalculate")->isEnabled());
    EXPECT_TRUE(IsOpen("FormBündel"));
}

TEST_F(BundleByHand, ClosesAndComesBackFromTheMenu) {
    Read();
    WidgetOf(*FindWindow("FormBündel"))->parentWidget()->close();
    QApplication::processEvents();
    EXPECT_FALSE(IsOpen("FormBündel"));
    Trigger("MenuTransformationBundle");
    EXPECT_TRUE(IsOpen("FormBündel"));
}

TEST_F(BundleByHand, KeepsItsPlaceForTheNextTime) {
    Read();
    auto* outer = WidgetOf(*FindWindow("FormBündel"))->parentWidget();
    outer->setGeometry(30, 20, 640, 500);
    QApplication::processEvents();
    UserDid([] { UnloadWindow("FormBündel"); });
    Trigger("MenuTransformationBundle");
    EXPECT_EQ(WidgetOf(*FindWindow("FormBündel"))->parentWidget()->geometry(), QRect(30, 20, 640, 500));
}
