// The dialogs beside the graphics windows: the colour scale, and the name of a view.
#include <QColorDialog>
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QScrollBar>
#include <QTimer>

#include "graphics/form_color_bar.h"
#include "ui/screen_fixture.h"

using namespace corvinade;

namespace {

class ScreenDialogs : public ScreenByHand {
protected:
    static void SaveViewAs(const std::string& name) {
        QTimer::singleShot(60, [name] {
            ASSERT_TRUE(IsOpen("FormSaveView"));
            Type("FormSaveView.TextNewName", name);
            Click("FormSaveView.BtnOK");
        });
        Trigger("MenüViewSaveView");  // comes back when the dialog has gone
        EXPECT_FALSE(IsOpen("FormSaveView"));
    }
};

}  // namespace

TEST_F(ScreenDialogs, TheColourDialogStaysBesideThePicture) {
    BeginWithPoints();
    ScreenWindow& window = OpenScreen();
    Trigger("ToolbarGraphics.ColorBar");
    ASSERT_TRUE(IsOpen("FormColorBar"));
    EXPECT_FALSE(WidgetOf(FormColorBar_Entry)->window()->isModal());
    Click("FormColorBar.CheckAutoApply");
    auto* scroll = qobject_cast<QScrollBar*>(Widget("FormColorBar.VScrollAnzKlaPos"));
    EXPECT_EQ(scroll->value(), 10);
    scroll->setValue(4);
    EXPECT_EQ(window.State.AnzKlassenPos, 4);
    EXPECT_EQ(S(qobject_cast<QLineEdit*>(Widget("FormColorBar.TextAnzahlTolKlassePos"))->text()), "4");
    Type("FormColorBar.TextObereGrenze", "1.5");
    EXPECT_EQ(window.State.Max, 1.5);
    // Red is the highest of four classes, and the sample shows it at its upper end.
    const QWidget* sample = Widget("FormColorBar.ScreenColorBar");
    const QImage shown = const_cast<QWidget*>(sample)->grab().toImage();
    const auto scale = static_cast<int>(shown.devicePixelRatio());
    EXPECT_EQ(shown.pixelColor(8 * scale, sample->fontMetrics().height() * scale), QColor(255, 0, 0));
    // It belongs to whichever window is active.
    const ScreenWindow& second = OpenScreen();
    EXPECT_EQ(scroll->value(), second.State.AnzKlassenPos);
    Click("FormColorBar.BtnOK");
    EXPECT_FALSE(IsOpen("FormColorBar"));
}

TEST_F(ScreenDialogs, TheColourOfPointsOutOfToleranceIsShownBesideItsButton) {
    BeginWithPoints();
    const ScreenWindow& window = OpenScreen();
    Trigger("ToolbarGraphics.ColorBar");
    QTimer::singleShot(50, [] {
        auto* dialog = qobject_cast<QColorDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        dialog->setCurrentColor(QColor(200, 100, 50));
        dialog->accept();
    });
    Click("FormColorBar.BtnSetOuterColor");
    const QWidget* sample = Widget("FormColorBar.LabelOuterColor");
    EXPECT_EQ(const_cast<QWidget*>(sample)->grab().toImage().pixelColor(12, 12), QColor(200, 100, 50));
    Click("FormColorBar.BtnApply");
    EXPECT_EQ(window.State.OuterColor, 200 | 100 << 8 | 50 << 16);
}

TEST_F(ScreenDialogs, AViewIsSavedUnderAName) {
    BeginWithPoints();
    ScreenWindow& window = OpenScreen();
    Trigger("MenüAnsichtIsometricView");
    const QSize size = Outer(window).size();
    SaveViewAs("corner");
    auto* combo = Frame()->findChild<QComboBox*>(QStringLiteral("ComboSaveView"));
    ASSERT_EQ(combo->count(), 1);
    EXPECT_EQ(S(combo->itemText(0)), "corner");
    EXPECT_EQ(Job.nSavedViews, 1);
    // Another view, in a window of another size, and back.
    Trigger("MenüAnsichtFrontView");
    Outer(window).resize(size - QSize(120, 90));
    Serve();
    EXPECT_EQ(combo->currentIndex(), 0);
    emit combo->activated(0);
    Serve();
    EXPECT_NEAR(window.State.RotAngles[0], 210 / (180 / 3.14159265358979), 1e-12);
    EXPECT_EQ(Outer(window).size(), size);
}

TEST_F(ScreenDialogs, TheDialogOfAViewsNameBlocksTheFrameAndCanBeLeftByEsc) {
    BeginWithPoints();
    OpenScreen();
    QTimer::singleShot(60, [] {
        ASSERT_TRUE(IsOpen("FormSaveView"));
        EXPECT_EQ(QApplication::activeModalWidget(), WidgetOf(*FindWindow("FormSaveView"))->window());
        QTest::keyClick(Widget("FormSaveView.TextNewName"), Qt::Key_Escape);
    });
    Trigger("ToolbarSaveView.SaveView");
    EXPECT_FALSE(IsOpen("FormSaveView"));
    EXPECT_EQ(Job.nSavedViews, 0);
}

TEST_F(ScreenDialogs, ANameOfTheListIsTakenByAClick) {
    BeginWithPoints();
    OpenScreen();
    SaveViewAs("one");
    SaveViewAs("two");
    AnswerNext("Yes");
    QTimer::singleShot(60, [] {
        auto* list = qobject_cast<QListWidget*>(Widget("FormSaveView.ListViews"));
        ASSERT_NE(list, nullptr);
        ASSERT_EQ(list->count(), 2);
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(list->item(1)).center());
        EXPECT_EQ(S(qobject_cast<QLineEdit*>(Widget("FormSaveView.TextNewName"))->text()), "two");
        Click("FormSaveView.BtnOK");
    });
    Trigger("ToolbarSaveView.SaveView");
    EXPECT_EQ(messages_,
              std::vector<std::string>{"two is already in use for a view, will you replace the old one?"});
    EXPECT_EQ(Job.nSavedViews, 2);
}
