// The options and the input statistic on the screen: every control, and nothing cut.
#include <QAbstractButton>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMdiSubWindow>
#include <QRadioButton>

#include "analysis/form_options.h"
#include "core/job.h"
#include "core/settings.h"
#include "core/units.h"
#include "ui/desktop.h"
#include "ui/desktop_fixture.h"
#include "ui/qt_text.h"

using namespace corvinade;

namespace {

class OptionsByHand : public DesktopTest {
protected:
    static bool IsSet(const std::string& option) {
        return qobject_cast<QAbstractButton*>(Widget("FormOptions." + option))->isChecked();
    }
    static bool IsShown(const std::string& name) { return Widget("FormOptions." + name)->isVisible(); }
    static std::string Field(const std::string& at) {
        return S(qobject_cast<QLineEdit*>(Widget(at))->text());
    }

    // No label, box or button of a window is given less room than its text takes.
    static void ExpectNothingCut(const std::string& window) {
        QWidget* form = WidgetOf(*FindWindow(window));
        const auto fits = [](const QWidget& widget, int needed, const QString& text) {
            EXPECT_TRUE(!widget.isVisible() || widget.width() >= needed) << S(text);
        };
        for (const QLabel* label : form->findChildren<QLabel*>())
            fits(*label, label->minimumSizeHint().width(), label->text());
        for (const QAbstractButton* button : form->findChildren<QAbstractButton*>())
            fits(*button, button->minimumSizeHint().width(), button->text());
        for (const QLineEdit* field : form->findChildren<QLineEdit*>())
            fits(*field, field->fontMetrics().horizontalAdvance(field->text()) + 6, field->text());
    }
};

class InputStatisticByHand : public OptionsByHand {
protected:
    void Import() {
        const std::string start = Write("start.txt", "A;0;0;0\nB;1000;0;0\nC;0;2000;0\nM;1;2;3\n");
        const std::string target = Write("target.txt", "A;0;0;0\nB;1000;0;0\nC;0;2000;0\n");
        Trigger("MenuFileInputFiles");
        Type("FormInputFiles.TextNameMCS", start);
        Type("FormInputFiles.TextNameOCS", target);
        Click("FormInputFiles.BtnOK");
        ASSERT_EQ(Job.Pairs(), 3);
    }
};

}  // namespace

TEST_F(OptionsByHand, TheBoxesOfAnOptionComeAndGoWithIt) {
    Begin();
    Trigger("MenueExtrasOptions");
    EXPECT_TRUE(IsSet("OptionALL"));
    EXPECT_FALSE(IsShown("Option1"));
    const struct {
        const char* Option;
        bool Inverted, Tcp;
    } expected[] = {{"OptionNIX", false, false},
                    {"OptionRobot", false, false},
                    {"OptionBMW", true, false},
                    {"OptionKuka", false, true},
                    {"OptionALL", false, false}};
    for (const auto& [option, inverted, tcp] : expected) {
        Click(std::string("FormOptions.") + option);
        for (const auto& other : expected)
            EXPECT_EQ(IsSet(other.Option), other.Option == option) << other.Option;
        EXPECT_EQ(IsShown("CheckInverted"), inverted) << option;
        EXPECT_EQ(IsShown("CheckAdTCP"), tcp) << option;
        ExpectNothingCut("FormOptions");
    }
}

TEST_F(OptionsByHand, EveryChoiceIsStoredAndShownAgain) {
    Begin();
    Trigger("MenueExtrasOptions");
    Click("FormOptions.OptionKuka");
    Click("FormOptions.CheckAdTCP");
    Click("FormOptions.CheckTabelHeading");
    Type("FormOptions.TextSx", "0.1");
    Type("FormOptions.TextSy", "0.2");
    Type("FormOptions.TextSz", "0.3");
    Type("FormOptions.TextMonteCarloRuns", "1");
    Type("FormOptions.TextGimbalLock", "2.5");
    Click("FormOptions.BtnOK");
    ASSERT_FALSE(IsOpen("FormOptions"));
    EXPECT_EQ(IniWertLesen("ClipboardValue"), "5");
    EXPECT_EQ(IniWertLesen("AdTCP"), "True");
    EXPECT_EQ(IniWertLesen("InvertedBMW"), "False");
    EXPECT_EQ(IniWertLesen("TabelHeadMainSheet"), "True");
    EXPECT_EQ(IniWertLesen("sigmaY"), "0.2");
    EXPECT_EQ(IniWertLesen("MonteCarloRuns"), "2");
    EXPECT_NEAR(std::stod(IniWertLesen("GimbalLockBorder")), 2.5 * 3.14159265358979 / 180, 1e-15);

    Trigger("MenueExtrasOptions");
    EXPECT_TRUE(IsSet("OptionKuka"));
    EXPECT_TRUE(IsShown("CheckAdTCP"));
    EXPECT_TRUE(IsSet("CheckAdTCP"));
    EXPECT_TRUE(IsSet("CheckTabelHeading"));
    EXPECT_EQ(Field("FormOptions.TextSz"), "0.3");
    EXPECT_EQ(Field("FormOptions.TextMonteCarloRuns"), "2");
    EXPECT_EQ(Field("FormOptions.TextGimbalLock"), "2.5000");
}

TEST_F(OptionsByHand, TheBorderTellsItsUnitAndTheFieldsStandInOneColumn) {
    Begin();
    Trigger("MenueExtrasOptions");
    EXPECT_EQ(S(qobject_cast<QLabel*>(Widget("FormOptions.LabelGimbalLock"))->text()),
              "Gimbal Lock Border in degree");
    const auto right = [](const char* name) {
        const QWidget* field = Widget(name);
        return field->mapTo(field->window(), field->rect().topRight()).x();
    };
    for (const char* name : {"FormOptions.TextSy", "FormOptions.TextSz", "FormOptions.TextMonteCarloRuns",
                             "FormOptions.TextGimbalLock"})
        EXPECT_EQ(right(name), right("FormOptions.TextSx")) << name;
}

TEST_F(OptionsByHand, MnemonicsAndTheReturnKeyWork) {
    Begin();
    Trigger("MenueExtrasOptions");
    QWidget* dialog = Widget("FormOptions.TextSx")->window();
    dialog->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(dialog, kPatience_ms));
    QTest::keyClick(Widget("FormOptions.TextSx"), Qt::Key_R, Qt::AltModifier);
    EXPECT_TRUE(QTest::qWaitFor([] { return IsSet("OptionRobot"); }, kPatience_ms));
    QTest::keyClick(Widget("FormOptions.TextSx"), Qt::Key_Return);
    QApplication::processEvents();
    EXPECT_FALSE(IsOpen("FormOptions"));
    EXPECT_EQ(Settings.ClipboardValue, 3);
}

TEST_F(InputStatisticByHand, ShowsCountsNamesAndFilesAndThatThereAreNoAngles) {
    Begin();
    Import();
    Trigger("MenüViewInputStatistic");
    ASSERT_TRUE(IsOpen("FormInputStatistic"));
    const std::pair<const char*, const char*> counts[] = {
        {"Text1", "4"}, {"Text2", "3"}, {"Text3", "3"}, {"Text4", "1"}, {"Text5", "0"}};
    for (const auto& [name, count] : counts)
        EXPECT_EQ(Field(std::string("FormInputStatistic.") + name), count) << name;
    EXPECT_EQ(Field("FormInputStatistic.Text6"), PathOf("start.txt"));
    EXPECT_EQ(Field("FormInputStatistic.Text7"), PathOf("target.txt"));
    for (const char* name : {"TextRangeA", "TextRangeB", "TextRangeC"}) {
        EXPECT_EQ(Field(std::string("FormInputStatistic.") + name), "not in use");
        EXPECT_FALSE(Widget(std::string("FormInputStatistic.") + name)->isEnabled());
    }
    for (int k = 1; k <= 7; ++k) {
        auto* field = qobject_cast<QLineEdit*>(Widget("FormInputStatistic.Text" + std::to_string(k)));
        EXPECT_TRUE(field->isReadOnly()) << k;
    }
    for (const QLabel* label : WidgetOf(*FindWindow("FormInputStatistic"))->findChildren<QLabel*>())
        EXPECT_GE(label->width(), label->minimumSizeHint().width()) << S(label->text());
}

TEST_F(InputStatisticByHand, AnglesOfARobotProgramStandInTheirUnit) {
    Begin();
    Import();
    Job.IsKuka = kTrue;
    Trigger("MenüViewInputStatistic");
    EXPECT_EQ(S(qobject_cast<QGroupBox*>(Widget("FormInputStatistic.FrameABCRange"))->title()),
              "ABC Range in degree");
    EXPECT_EQ(Field("FormInputStatistic.TextRangeA"), "0.0000");
    EXPECT_TRUE(Widget("FormInputStatistic.TextRangeA")->isEnabled());
}
