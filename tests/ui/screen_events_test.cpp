// Mouse, wheel and keys on a graphics window of the desktop.
#include <QClipboard>
#include <QColorDialog>
#include <QLabel>
#include <QTimer>
#include <cmath>

#include "analysis/form_main_sheet.h"
#include "graphics/drawing.h"
#include "graphics/projection.h"
#include "graphics/scene.h"
#include "ui/screen_fixture.h"

using namespace corvinade;

namespace {

// Where a row of the scene lies in the picture, painted for this window.
QPointF PixelOfRow(ScreenWindow& window, int row) {
    Stelle_Grafik_dar(window);
    return {Scene.PixelX[static_cast<std::size_t>(row)], Scene.PixelY[static_cast<std::size_t>(row)]};
}

// The angle between two views, rad.
double AngleBetween(const Mat3& one, const Mat3& other) {
    double trace = 0;
    for (int row = 1; row <= 3; ++row)
        for (int column = 1; column <= 3; ++column) trace += one(row, column) * other(row, column);
    return std::acos(std::min(1.0, (trace - 1) / 2));
}

void ExpectNear(QPointF one, QPointF other, double tolerance) {
    EXPECT_NEAR(one.x(), other.x(), tolerance);
    EXPECT_NEAR(one.y(), other.y(), tolerance);
}

}  // namespace

TEST_F(ScreenByHand, RotatesWithShiftByEightThousandthsAPixel) {
    BeginWithPoints();
    const ScreenWindow& window = OpenScreen();
    const Mat3 before = ViewRotation(window);
    Drag(window, {200, 200}, {260, 200}, Qt::ShiftModifier);
    EXPECT_NEAR(AngleBetween(before, ViewRotation(window)), 60 * 0.008, 1e-9);
    const Mat3 turned = ViewRotation(window);
    Drag(window, {200, 200}, {200, 160}, Qt::ShiftModifier);
    EXPECT_NEAR(AngleBetween(turned, ViewRotation(window)), 40 * 0.008, 1e-9);
    EXPECT_EQ(window.UndoCount, 3);
}

TEST_F(ScreenByHand, RollsWithShiftAndBothButtons) {
    BeginWithPoints();
    const ScreenWindow& window = OpenScreen();
    ScreenView& view = View(window);
    const Mat3 before = ViewRotation(window);
    QTest::mousePress(&view, Qt::LeftButton, Qt::ShiftModifier, {200, 200});
    QTest::mousePress(&view, Qt::RightButton, Qt::ShiftModifier, {200, 200});
    QMouseEvent move(QEvent::MouseMove, QPointF(210, 205), view.mapToGlobal(QPointF(210, 205)), Qt::NoButton,
                     Qt::LeftButton | Qt::RightButton, Qt::ShiftModifier);
    QApplication::sendEvent(&view, &move);
    Serve();
    EXPECT_NEAR(AngleBetween(before, ViewRotation(window)), 15 * 0.02, 1e-9);
    for (const Qt::MouseButton button : {Qt::RightButton, Qt::LeftButton})
        QTest::mouseRelease(&view, button, Qt::ShiftModifier, {210, 205});
}

TEST_F(ScreenByHand, PansWithCtrlPixelByPixel) {
    BeginWithPoints();
    ScreenWindow& window = OpenScreen();
    const QPointF before = PixelOfRow(window, 1);
    Drag(window, {200, 200}, {260, 170}, Qt::ControlModifier);
    ExpectNear(PixelOfRow(window, 1), before + QPointF(60, -30), 1e-3);
}

TEST_F(ScreenByHand, TheWheelZoomsAboutTheMouse) {
    BeginWithPoints();
    ScreenWindow& window = OpenScreen();
    const QPointF before = PixelOfRow(window, 8), mouse(120, 90);
    Wheel(window, mouse.toPoint(), 120);
    ExpectNear(PixelOfRow(window, 8), mouse + (before - mouse) / 0.7, 0.01);
    Wheel(window, mouse.toPoint(), -120);
    ExpectNear(PixelOfRow(window, 8), before, 0.01);
    // Half steps of a fine wheel add up.
    Wheel(window, mouse.toPoint(), 60);
    ExpectNear(PixelOfRow(window, 8), before, 0.01);
    Wheel(window, mouse.toPoint(), 60);
    ExpectNear(PixelOfRow(window, 8), mouse + (before - mouse) / 0.7, 0.01);
}

TEST_F(ScreenByHand, TheRightButtonZoomsOutAtEachPressOfAQuickHand) {
    BeginWithPoints();
    ScreenWindow& window = OpenScreen();
    const float before = window.State.BildFaktor;
    QTest::mouseClick(&View(window), Qt::RightButton, {}, {50, 60});
    QTest::mouseDClick(&View(window), Qt::RightButton, {}, {50, 60});
    QTest::mouseRelease(&View(window), Qt::RightButton, {}, {50, 60});
    EXPECT_NEAR(window.State.BildFaktor / before, 0.7 * 0.7, 1e-6);
}

TEST_F(ScreenByHand, AFrameIsShownAndComesToFillThePicture) {
    BeginWithPoints();
    ScreenWindow& window = OpenScreen();
    const QPointF before = PixelOfRow(window, 3);
    const float factor = window.State.BildFaktor;
    ScreenView& view = View(window);
    QTest::mousePress(&view, Qt::LeftButton, {}, {100, 80});
    QMouseEvent move(QEvent::MouseMove, QPointF(300, 180), view.mapToGlobal(QPointF(300, 180)), Qt::NoButton,
                     Qt::LeftButton, {});
    QApplication::sendEvent(&view, &move);
    Serve();
    for (const QPoint edge : {QPoint(100, 130), QPoint(300, 130), QPoint(200, 80), QPoint(200, 180)})
        EXPECT_EQ(ColourAt(window, edge), QColor(Qt::white)) << edge.x() << ", " << edge.y();
    EXPECT_EQ(ColourAt(window, {103, 130}), QColor(Qt::black));
    QTest::mouseRelease(&view, Qt::LeftButton, {}, {300, 180});
    Serve();
    const double ratio = std::min(window.Screen.Width / 200.0, window.Screen.Height / 100.0);
    EXPECT_NEAR(window.State.BildFaktor / factor, ratio, 1e-4);
    const QPointF middle(window.Screen.Width / 2.0, window.Screen.Height / 2.0);
    ExpectNear(PixelOfRow(window, 3), middle + (before - QPointF(200, 130)) * ratio, 0.05);
    EXPECT_FALSE(window.Mouse.FrameVisible);
}

TEST_F(ScreenByHand, KeysMoveAndTurnThePicture) {
    BeginWithPoints();
    ScreenWindow& window = OpenScreen();
    ScreenView& view = View(window);
    const float x = window.State.BildOffsetX, y = window.State.BildOffsetY, factor = window.State.BildFaktor;
    QTest::keyClick(&view, Qt::Key_Left);
    EXPECT_NEAR(window.State.BildOffsetX, x - window.Screen.Width / 40.0, 1e-3);
    QTest::keyClick(&view, Qt::Key_Up);
    EXPECT_NEAR(window.State.BildOffsetY, y + window.Screen.Height / 40.0, 1e-3);
    const double step = 6.28318530717958 / 40;
    QTest::keyClick(&view, Qt::Key_Up, Qt::ShiftModifier);
    EXPECT_NEAR(window.State.RotAngles[0], -3.14159265358979 + step, 1e-12);
    QTest::keyClick(&view, Qt::Key_R, Qt::ShiftModifier);
    EXPECT_NEAR(window.State.RotAngles[4], -step, 1e-12);
    QTest::keyClick(&view, Qt::Key_L, Qt::ShiftModifier);
    EXPECT_NEAR(window.State.RotAngles[4], 0, 1e-12);
    QTest::keyClick(&view, Qt::Key_Plus, Qt::KeypadModifier);
    EXPECT_NEAR(window.State.BildFaktor / factor, 1 / 0.7, 1e-5);
    QTest::keyClick(&view, Qt::Key_Minus, Qt::KeypadModifier);
    EXPECT_NEAR(window.State.BildFaktor / factor, 1, 1e-5);
}

TEST_F(ScreenByHand, KeysThatTheWindowLosesAreLetGo) {
    BeginWithPoints();
    const ScreenWindow& window = OpenScreen();
    QTest::keyPress(&View(window), Qt::Key_Shift);
    EXPECT_TRUE(Screens().RotateKey);
    QFocusEvent out(QEvent::FocusOut);
    QApplication::sendEvent(&View(window), &out);
    EXPECT_FALSE(Screens().RotateKey);
}

TEST_F(ScreenByHand, MovesOfOneRoundArePaintedOnce) {
    BeginWithPoints();
    const ScreenWindow& window = OpenScreen();
    ScreenView& view = View(window);
    const Mat3 before = ViewRotation(window);
    QTest::mousePress(&view, Qt::LeftButton, Qt::ShiftModifier, {100, 100});
    const auto paints = window.PaintCount;
    for (int step = 1; step <= 50; ++step) {
        const QPointF at(100 + step, 100);
        QMouseEvent move(QEvent::MouseMove, at, view.mapToGlobal(at), Qt::NoButton, Qt::LeftButton,
                         Qt::ShiftModifier);
        QApplication::sendEvent(&view, &move);
    }
    Serve();
    EXPECT_EQ(window.PaintCount, paints + 1);
    EXPECT_NEAR(AngleBetween(before, ViewRotation(window)), 50 * 0.008, 1e-9);
}

TEST_F(ScreenByHand, AClickChoosesThePointAndItsRowInTheMainSheet) {
    BeginWithPoints();
    Trigger("MenuVievMainSheet");
    ScreenWindow& window = OpenScreen();
    const QPoint place = PixelOfRow(window, 4).toPoint();
    // From elsewhere: a mouse that stands there already does not move.
    QTest::mouseMove(&View(window), place + QPoint(40, 30));
    QTest::mouseMove(&View(window), place);
    QTest::mouseClick(&View(window), Qt::LeftButton, {}, place + QPoint(1, 1));
    Serve();
    GridState& sheet = MainSheetWindow.MSFlexGrid1.Grid;
    bool found = false;
    for (int col = 0; col < sheet.Cols; ++col) found = found || CellText(sheet, sheet.Row, col) == "P4";
    EXPECT_TRUE(found) << "row " << sheet.Row;
    EXPECT_EQ(S(View(window).findChild<QLabel*>(QStringLiteral("StatusBar.1"))->text()), "Pnt.ID: P4");
    const QLabel* deviation = View(window).findChild<QLabel*>(QStringLiteral("_Deviation"));
    EXPECT_TRUE(deviation->isVisible());
    EXPECT_EQ(S(deviation->text()), "Deviation: 0.000  (0.000, 0.000, 0.000)");
    EXPECT_EQ(Scene.ActualPointName, "P4");
}

TEST_F(ScreenByHand, ADragIsNoClick) {
    BeginWithPoints();
    Trigger("MenuVievMainSheet");
    ScreenWindow& window = OpenScreen();
    const QPoint place = PixelOfRow(window, 4).toPoint();
    Drag(window, place, place + QPoint(20, 0));
    EXPECT_EQ(Scene.ActualPointName, "");
}

TEST_F(ScreenByHand, TheTextAboutTheKeysShowsOnceAndFromTheHelpMenu) {
    BeginWithPoints();
    Trigger("MenueGraphics");
    ScreenWindow& window = *Screens().Open.front();
    EXPECT_TRUE(window.BindingsShown);
    EXPECT_NE(ColourAt(window, View(window).rect().center()), QColor(Qt::black));
    QTest::keyClick(&View(window), Qt::Key_Escape);
    EXPECT_FALSE(window.BindingsShown);
    const ScreenWindow& second = OpenScreen();
    EXPECT_FALSE(second.BindingsShown);
    Trigger("MenuHelpBindings");
    EXPECT_TRUE(second.BindingsShown);
    QTest::mouseClick(&View(second), Qt::LeftButton, {}, {20, 20});
    EXPECT_FALSE(second.BindingsShown);
}

TEST_F(ScreenByHand, ADoubleClickChoosesTheBackground) {
    BeginWithPoints();
    const ScreenWindow& window = OpenScreen();
    QTimer::singleShot(50, [] {
        auto* dialog = qobject_cast<QColorDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        dialog->setCurrentColor(QColor(10, 20, 30));
        dialog->accept();
    });
    QTest::mouseDClick(&View(window), Qt::LeftButton, {}, {33, 33});
    Serve();
    EXPECT_EQ(window.BackColor, 10 | 20 << 8 | 30 << 16);
    EXPECT_EQ(ColourAt(window, {5, 5}), QColor(10, 20, 30));
}

TEST_F(ScreenByHand, ThePictureGoesToTheClipboardOnWhite) {
    BeginWithPoints();
    const ScreenWindow& window = OpenScreen();
    Trigger("MenüGraphicsPrint");
    const QImage copied = QApplication::clipboard()->image();
    const int margins = static_cast<int>(std::lround(5 * window.Screen.Scale));
    EXPECT_EQ(copied.size(), QSize(window.Screen.PixelWidth - margins, window.Screen.PixelHeight - margins));
    EXPECT_EQ(copied.pixelColor(copied.width() - 20, 20), QColor(Qt::white));
    EXPECT_EQ(ColourAt(window, {5, 5}), QColor(Qt::black));
}

namespace {

// The rounds of a running analyse mode, and the paints of its view between them.
struct RoundsSeen {
    void (*Refresh)(Surface&) = nullptr;  // of the window, behind the counting
    const ScreenWindow* Of = nullptr;
    int Rounds = 0, Unseen = 0;
    bool Painted = true;  // since the last round
};
RoundsSeen Seen;

void CountRound(Surface& screen) {
    if (Seen.Of->AnalyseMode) {
        ++Seen.Rounds;
        if (!Seen.Painted) ++Seen.Unseen;
        Seen.Painted = false;
    }
    Seen.Refresh(screen);
}

class PaintsOfTheView : public QObject {
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint) Seen.Painted = true;
        return false;
    }
};

}  // namespace

TEST_F(ScreenByHand, TheAnalyseModeRunsAtASpeedThatTheEyeFollowsAndEndsWithEsc) {
    BeginWithPoints();
    ScreenWindow& window = OpenScreen();
    Trigger("ToolbarGraphics.VectorMode");
    Seen = {window.Screen.Refresh, &window};
    window.Screen.Refresh = CountRound;
    PaintsOfTheView paints;
    View(window).installEventFilter(&paints);
    constexpr int kRounds = 12;
    QImage last;
    int shown = 0;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, [&] {
        const QImage now = View(window).grab().toImage();
        if (now != last) ++shown;
        last = now;
        if (!window.AnalyseMode || Seen.Rounds < kRounds) return;
        EXPECT_TRUE(Action("MenüAnsichtAnalyseModeActive")->isChecked());
        QTest::keyClick(&View(window), Qt::Key_Escape);
    });
    look.start(5);
    Trigger("MenüAnsichtAnalyseModeActive");  // comes back when the mode has ended
    window.Screen.Refresh = Seen.Refresh;
    EXPECT_FALSE(window.AnalyseMode);
    // No round goes by that the screen has not shown, however fast or busy the machine is.
    EXPECT_GE(Seen.Rounds, kRounds);
    EXPECT_EQ(Seen.Unseen, 0);
    EXPECT_GT(shown, 1);
    EXPECT_FALSE(Action("MenüAnsichtAnalyseModeActive")->isChecked());
}

TEST_F(ScreenByHand, AWindowCanBeTurnedAndClosedWhileItsPointsRun) {
    BeginWithPoints();
    ScreenWindow& window = OpenScreen();
    QTimer::singleShot(100, [&window] {
        const Mat3 before = ViewRotation(window);
        Drag(window, {200, 200}, {260, 200}, Qt::ShiftModifier);
        EXPECT_NEAR(AngleBetween(before, ViewRotation(window)), 60 * 0.008, 1e-9);
        Outer(window).close();
    });
    Trigger("ToolbarGraphics.AnalyseMode");
    EXPECT_TRUE(Screens().Open.empty());
    EXPECT_TRUE(Area().subWindowList().isEmpty());
}

TEST_F(ScreenByHand, TheFrameCanBeClosedWhileThePointsRun) {
    BeginWithPoints();
    OpenScreen();
    ::Run.JobDirty = kFalse;
    QTimer::singleShot(100, [] { Frame()->close(); });
    Trigger("ToolbarGraphics.AnalyseMode");
    Serve();
    EXPECT_FALSE(Frame()->isVisible());
    EXPECT_TRUE(Screens().Open.empty());
}
