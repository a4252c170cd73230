// Where the frame and its windows stand: at the first start, after closing, and in the next program.
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPushButton>
#include <QScreen>

#include "core/files.h"
#include "core/fresh_start.h"
#include "core/job.h"
#include "core/run.h"
#include "core/settings.h"
#include "ui/desktop.h"
#include "ui/desktop_fixture.h"
#include "ui/qt_text.h"

using namespace corvinade;

namespace {

class Places : public DesktopTest {
protected:
    std::string start_ = Write("start.txt", "A;0;0;0\nB;1000;0;0\nC;0;2000;0\nD;0;0;3000\n");
    std::string target_ = Write("target.txt", "A;5;6;7\nB;1005;6;7\nC;5;2006;7\nD;5;6;3007\n");

    void Import() {
        Trigger("MenuFileInputFiles");
        Type("FormInputFiles.TextNameMCS", start_);
        Type("FormInputFiles.TextNameOCS", target_);
        Click("FormInputFiles.BtnOK");
        ASSERT_EQ(Job.Pairs(), 4);
    }

    // The program ends as by its own command, and begins anew.
    static void StartAgain() {
        ::Run.JobDirty = kFalse;
        Frame()->close();
        QApplication::processEvents();
        CloseDesktop();
        FreshStart();
        Begin();
    }

    static QMdiSubWindow* Child(const std::string& window) {
        return qobject_cast<QMdiSubWindow*>(WidgetOf(*FindWindow(window))->parentWidget());
    }
    static QWidget* Dialog(const std::string& window) { return WidgetOf(*FindWindow(window))->window(); }
    static QMdiArea* Area() { return Frame()->findChild<QMdiArea*>(); }
};

}  // namespace

TEST_F(Places, TheFrameFitsOntoItsScreenWithTitleAndBordersAtTheFirstStart) {
    Begin();
    const QRect screen = Frame()->screen()->availableGeometry();
    // Any title and border of a usual width has room beside it.
    EXPECT_TRUE(screen.contains(Frame()->geometry().adjusted(-4, -30, 4, 6)));
    EXPECT_GT(Frame()->width(), screen.width() / 2);
    EXPECT_GT(Frame()->height(), screen.height() / 2);
    EXPECT_LE(Frame()->width(), 1600);
}

TEST_F(Places, TheFrameComesBackWhereItStoodAndAsLargeAsItWas) {
    Begin();
    Frame()->resize(640, 420);
    Frame()->move(70, 55);
    QApplication::processEvents();
    StartAgain();
    EXPECT_EQ(Frame()->size(), QSize(640, 420));
    EXPECT_EQ(Frame()->pos(), QPoint(70, 55));
    EXPECT_FALSE(Frame()->isMaximized());
}

TEST_F(Places, AMaximisedFrameComesBackMaximisedAndKnowsItsNormalSize) {
    Begin();
    Frame()->resize(640, 420);
    Frame()->move(70, 55);
    QApplication::processEvents();
    Frame()->showMaximized();
    QApplication::processEvents();
    StartAgain();
    EXPECT_TRUE(Frame()->isMaximized());
    Frame()->showNormal();
    QApplication::processEvents();
    EXPECT_EQ(Frame()->size(), QSize(640, 420));
    EXPECT_EQ(Frame()->pos(), QPoint(70, 55));
}

TEST_F(Places, AFrameThatWouldBeOffEveryScreenIsBroughtBack) {
    Begin();
    const QRect screen = Frame()->screen()->availableGeometry();
    const auto stored = [](const char* left, const char* top, const char* width, const char* height) {
        IniWerteSchreiben({{"Desktop", "FrameLeft", left},
                           {"Desktop", "FrameTop", top},
                           {"Desktop", "FrameWidth", width},
                           {"Desktop", "FrameHeight", height}});
        CloseDesktop();
        FreshStart();
        Begin();
    };
    stored("900000", "-900000", "9000", "7500");
    EXPECT_TRUE(screen.contains(Frame()->geometry()));
    EXPECT_EQ(Frame()->size(), QSize(600, 500));
    stored("2000000000", "2000000000", "2000000000", "2000000000");
    EXPECT_TRUE(screen.contains(Frame()->geometry()));
    stored("left", "", "much", "-5");
    EXPECT_TRUE(screen.contains(Frame()->geometry()));
    EXPECT_GT(Frame()->width(), screen.width() / 2);
}

TEST_F(Places, ADialogOpensInTheMiddleOfTheFrameInItsNaturalSizeTheFirstTime) {
    Begin();
    Frame()->resize(700, 500);
    Frame()->move(60, 40);
    QApplication::processEvents();
    Trigger("MenuSettingsUnits");
    const QWidget* units = Dialog("FormUnits");
    const QPoint off = units->geometry().center() - Frame()->geometry().center();
    EXPECT_LE(std::max(std::abs(off.x()), std::abs(off.y())), 2);
    EXPECT_LE(units->height(), units->sizeHint().height() + 2);
    Click("FormUnits.BtnOK");
    // From then on it has a place of its own.
    Trigger("MenuSettingsUnits");
    Dialog("FormUnits")->move(5, 9);
    QApplication::processEvents();
    Click("FormUnits.BtnOK");
    Trigger("MenuSettingsUnits");
    EXPECT_EQ(Dialog("FormUnits")->pos(), QPoint(5, 9));
}

TEST_F(Places, ANewSettingsFileIsToldFromOneThatAWindowWasPutInto) {
    Begin();
    WindowPlace place;
    for (const char* window : {"FormUnits", "FormInputFiles", "FormBatch", "FormMainSheet"}) {
        LoadWindowPlace(place, window);
        EXPECT_TRUE(IsFirstPlace(place, window)) << window;
        ++place.Left;
        EXPECT_FALSE(IsFirstPlace(place, window)) << window;
    }
    LoadWindowPlace(place, "NoSuchWindow");
    EXPECT_TRUE(IsFirstPlace(place, "NoSuchWindow"));
}

TEST_F(Places, AWindowInsideTheFrameOpensBesideTheOthersTheFirstTime) {
    Begin();
    Import();
    Frame()->resize(780, 540);
    QApplication::processEvents();
    Trigger("MenüViewInputStatistic");
    EXPECT_EQ(Child("FormInputStatistic")->pos(), QPoint(0, 0));
    Child("FormInputStatistic")->resize(200, 300);
    QApplication::processEvents();
    Trigger("MenuVievMainSheet");
    const QRect sheet = Child("FormMainSheet")->geometry();
    EXPECT_EQ(sheet.right(), Area()->viewport()->rect().right()) << "as far from it as it can be";
    EXPECT_TRUE(Area()->viewport()->rect().contains(sheet));
}

TEST_F(Places, AWindowThatIsChosenWhileItStandsBehindAnotherComesToTheFront) {
    Begin();
    Import();
    Trigger("MenuVievMainSheet");
    Trigger("MenüViewInputStatistic");
    EXPECT_EQ(Area()->activeSubWindow(), Child("FormInputStatistic"));
    Trigger("MenuVievMainSheet");
    EXPECT_EQ(Area()->activeSubWindow(), Child("FormMainSheet"));
    EXPECT_EQ(Area()->subWindowList(QMdiArea::StackingOrder).last(), Child("FormMainSheet"));
    Child("FormInputStatistic")->showMinimized();
    QApplication::processEvents();
    Trigger("MenüViewInputStatistic");
    EXPECT_FALSE(Child("FormInputStatistic")->isMinimized());
    EXPECT_EQ(Area()->activeSubWindow(), Child("FormInputStatistic"));
    // The calculation's own command closes it, as its mark says.
    Trigger("MenuTransformationCalculation");
    Trigger("MenuVievMainSheet");
    Trigger("MenuTransformationCalculation");
    EXPECT_FALSE(IsOpen("FormTrafoBerechnung"));
}

TEST_F(Places, EnterInADialogIsItsOkAndNoOtherButton) {
    Begin();
    for (const auto& [command, window] :
         {std::pair{"MenuFileInputFiles", "FormInputFiles"}, std::pair{"MenuSettingsUnits", "FormUnits"},
          std::pair{"MenueExtrasOptions", "FormOptions"}, std::pair{"MenuHelpInfo", "FormMenuHelpInfo"}}) {
        Trigger(command);
        for (const QPushButton* button : WidgetOf(*FindWindow(window))->findChildren<QPushButton*>())
            EXPECT_EQ(button->isDefault(), button->objectName() == QLatin1String("BtnOK"))
                << window << ' ' << S(button->objectName());
        QTest::keyClick(Dialog(window), Qt::Key_Escape);
        QApplication::processEvents();
        ASSERT_FALSE(IsOpen(window));
    }
    Trigger("MenuFileInputFiles");
    Type("FormInputFiles.TextNameMCS", start_);
    Type("FormInputFiles.TextNameOCS", target_);
    QTest::keyClick(Widget("FormInputFiles.TextNameOCS"), Qt::Key_Return);
    QApplication::processEvents();
    EXPECT_FALSE(IsOpen("FormInputFiles"));
    EXPECT_EQ(Job.Pairs(), 4);
}
