// Flags on the desktop: by hand on the picture, and their dialog.
#include <QAction>
#include <QFontDialog>
#include <QLineEdit>
#include <QMenu>
#include <QScrollBar>
#include <QTimer>
#include <ctime>
#include <iostream>

#include "core/controller.h"
#include "graphics/drawing.h"
#include "graphics/flags.h"
#include "graphics/form_edit_fahne.h"
#include "graphics/picking.h"
#include "graphics/scene.h"
#include "ui/screen_fixture.h"

using namespace corvinade;

namespace {

class FlagsByHand : public ScreenByHand {
protected:
    static QPoint PixelOf(ScreenWindow& window, std::size_t row) {
        PixelsForWindow(window);
        return {static_cast<int>(Scene.PixelX[row]), static_cast<int>(Scene.PixelY[row])};
    }
    // Coordinates of a flag in the picture.
    static QPoint Inside(const ScreenWindow& window, std::size_t flag) {
        return {window.State.Flags[flag].Left + 4, window.State.Flags[flag].Top + 4};
    }
    static void ClickPicture(const ScreenWindow& window, QPoint at, Qt::MouseButton button = Qt::LeftButton) {
        QTest::mouseClick(&View(window), button, {}, at);
        Serve();
    }
    ScreenWindow& OpenWithFlag() {
        BeginWithPoints();
        ScreenWindow& window = OpenScreen();
        Trigger("MenüGlobalFlagsMode");
        ClickPicture(window, PixelOf(window, 1));
        EXPECT_EQ(window.State.FlagCount, 1);
        return window;
    }
};

}  // namespace

TEST_F(FlagsByHand, AClickSetsAFlagThatIsSeenInThePicture) {
    const ScreenWindow& window = OpenWithFlag();
    ASSERT_TRUE(window.FlagLabels[1].Visible);
    const QColor ground = ColourAt(window, Inside(window, 1) - QPoint(2, 2));
    const Colour wanted = FlagGround(window.State.Flags[1], window.FlagLabels[1]);
    EXPECT_EQ(ground, QColor(wanted & 0xff, wanted >> 8 & 0xff, wanted >> 16 & 0xff));
}

TEST_F(FlagsByHand, AThousandFlagsFollowTheMouse) {
    constexpr int kFlags = 1000, kSteps = 20;
    Begin();
    UserDid([] {
        Job = JobRecord{};
        for (int i = 1; i <= kFlags; ++i) {
            const double x = i % 40 * 10.0, y = i / 40 * 10.0;
            const std::string name = "P" + std::to_string(i);
            Job.Target.Add(name, x, y, 0);
            for (PointSet* points : {&Job.Start, &Job.Transformed}) points->Add(name, x, y, 0.001 * i);
        }
        Job.UseFlags.assign(3 * kFlags + 1, 1);
        for (auto* column : {&Job.RVecX, &Job.RVecY}) column->resize(kFlags + 1);
        Job.RVecZ.resize(kFlags + 1);
        Job.SetPairs(kFlags);
        Job.ViewAllMCS = kTrue;
        Job.LengthUnitName = "mm";
        ::Run.JobDataValid = kTrue;
        ++::Run.JobGeneration;
        ProgrammLogik();
    });
    ScreenWindow& window = OpenScreen();
    Frame()->resize(1720, 1240);
    Serve();
    Outer(window).setGeometry(0, 0, 1608, 1028);
    Serve();
    UserDid([&window] {
        for (int row = 1; row <= kFlags; ++row) AddFlag(window, row, row % 40 * 30, row / 40 * 30);
        window.State.Flags[kFlags].SnaptoGrid = kFalse;
        Stelle_Grafik_dar(window);
    });
    ScreenView& view = View(window);
    const QPoint from(window.State.Flags[kFlags].Left + 4, window.State.Flags[kFlags].Top + 4);
    const auto paints = window.PaintCount;
    QTest::mousePress(&view, Qt::LeftButton, {}, from);
    const std::clock_t begin = std::clock();
    for (int step = 1; step <= kSteps; ++step) {
        const QPointF at(from.x() + 5 * step, from.y() - 4 * step);
        QMouseEvent move(QEvent::MouseMove, at, view.mapToGlobal(at), Qt::NoButton, Qt::LeftButton, {});
        QApplication::sendEvent(&view, &move);
        Serve();
    }
    const double frame_ms = static_cast<double>(std::clock() - begin) * 1000 / CLOCKS_PER_SEC / kSteps;
    std::cout << "a frame with a thousand flags: " << frame_ms << " ms\n";
    EXPECT_EQ(window.PaintCount, paints + kSteps);
}

TEST_F(FlagsByHand, IsDraggedByTheMouse) {
    ScreenWindow& window = OpenWithFlag();
    window.State.Flags[1].SnaptoGrid = kFalse;
    const QPoint before(window.State.Flags[1].Left, window.State.Flags[1].Top);
    Drag(window, Inside(window, 1), Inside(window, 1) + QPoint(40, 30));
    EXPECT_EQ(QPoint(window.State.Flags[1].Left, window.State.Flags[1].Top), before + QPoint(40, 30));
}

TEST_F(FlagsByHand, TheRightButtonOpensItsMenu) {
    const ScreenWindow& window = OpenWithFlag();
    auto* menu = Frame()->findChild<QMenu*>(QStringLiteral("MenuFahne"));
    ASSERT_NE(menu, nullptr);
    ClickPicture(window, Inside(window, 1), Qt::RightButton);
    EXPECT_TRUE(menu->isVisible());
    menu->close();
    Serve();
    EXPECT_FALSE(menu->isVisible());
    Trigger("MenuFahneDelete");
    EXPECT_EQ(window.State.FlagCount, 0);
}

TEST_F(FlagsByHand, TheDialogAppliesToThePicture) {
    const ScreenWindow& window = OpenWithFlag();
    Trigger("MenuFahneEdit");
    ASSERT_TRUE(IsOpen("FormEditFahne"));
    Click("FormEditFahne.CheckTheta");
    Click("FormEditFahne.BtnOK");
    EXPECT_FALSE(IsOpen("FormEditFahne"));
    EXPECT_EQ(window.FlagLabels[1].ColWidth[kFlagTheta], 0);
}

TEST_F(FlagsByHand, TheGridLengthIsTakenWhenItsFieldIsLeft) {
    OpenWithFlag();
    Trigger("MenuFahneEdit");
    auto* text = qobject_cast<QLineEdit*>(Widget("FormEditFahne.TextGridLength"));
    text->setFocus();
    text->selectAll();
    QTest::keyClicks(text, "250");
    EXPECT_EQ(S(text->text()), "250");
    QTest::keyClick(text, Qt::Key_Tab);
    Serve();
    EXPECT_EQ(EditFahneWindow.TextGridLength.Text, "250");
    EXPECT_EQ(qobject_cast<QScrollBar*>(Widget("FormEditFahne.VScroll1"))->value(), 250);
    text->setFocus();
    text->selectAll();
    QTest::keyClicks(text, "5");
    QTest::keyClick(text, Qt::Key_Tab);
    Serve();
    EXPECT_EQ(S(text->text()), "10");
}

TEST_F(FlagsByHand, TheFontDialogChoosesFontAndColour) {
    const ScreenWindow& window = OpenWithFlag();
    Trigger("MenuFahneEdit");
    QTimer::singleShot(50, [] {
        auto* dialog = qobject_cast<QFontDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        QFont font(QStringLiteral("DejaVu Sans"));
        font.setPointSize(14);
        font.setBold(true);
        dialog->setCurrentFont(font);
        dialog->accept();
    });
    Click("FormEditFahne.CmdFonts");
    Click("FormEditFahne.BtnOK");
    EXPECT_EQ(window.State.Flags[1].Name, "DejaVu Sans");
    EXPECT_EQ(window.State.Flags[1].Size, 14);
    EXPECT_TRUE(IsTrue(window.State.Flags[1].Bold));
}
