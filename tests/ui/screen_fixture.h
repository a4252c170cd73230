// What the tests of the graphics windows on the desktop stand on: a job of eight corners of a cuboid, of
// which one has moved, and the mouse and keys on the window's picture.
#pragma once

#include <QMdiArea>
#include <QMdiSubWindow>
#include <array>

#include "core/form_main.h"
#include "core/job.h"
#include "core/run.h"
#include "graphics/screen_window.h"
#include "ui/desktop.h"
#include "ui/desktop_fixture.h"
#include "ui/qt_text.h"
#include "ui/screen_view.h"
#include "ui/screen_windows.h"

using namespace corvinade;

class ScreenByHand : public DesktopTest {
protected:
    // The desktop with the eight points in it, no text over the first picture.
    void BeginWithPoints() {
        Write("Corvinade/Corvinade.ini", "");
        Begin();
        Trigger("MenuFileInputFiles");
        Type("FormInputFiles.TextNameMCS", Write("start.txt", Points(0)));
        Type("FormInputFiles.TextNameOCS", Write("target.txt", Points(2)));
        Click("FormInputFiles.BtnOK");
        ASSERT_EQ(Job.Pairs(), 8);
    }

    static ScreenWindow& OpenScreen() {
        Trigger("MenueGraphics");
        ScreenWindow& window = *Screens().Open.back();
        if (window.BindingsShown) QTest::keyClick(ViewOf(window), Qt::Key_Escape);
        Serve();
        return window;
    }

    static ScreenView& View(const ScreenWindow& window) { return *ViewOf(window); }
    static QMdiSubWindow& Outer(const ScreenWindow& window) {
        return *qobject_cast<QMdiSubWindow*>(ViewOf(window)->parentWidget());
    }
    static QMdiArea& Area() { return *Frame()->findChild<QMdiArea*>(); }

    // Everything that waits for the event loop: moves that were put together, sizes, the repaint.
    static void Serve() {
        for (int round = 0; round < 4; ++round) QApplication::processEvents();
    }

    static void Drag(const ScreenWindow& window, QPoint from, QPoint to, Qt::KeyboardModifiers keys = {},
                     Qt::MouseButton button = Qt::LeftButton) {
        ScreenView& view = View(window);
        QTest::mousePress(&view, button, keys, from);
        for (int step = 1; step <= 4; ++step) {
            const QPoint at = from + (to - from) * step / 4;
            QMouseEvent move(QEvent::MouseMove, at, view.mapToGlobal(at), Qt::NoButton, button, keys);
            QApplication::sendEvent(&view, &move);
            Serve();
        }
        QTest::mouseRelease(&view, button, keys, to);
        Serve();
    }

    static void Wheel(const ScreenWindow& window, QPoint at, int delta) {
        ScreenView& view = View(window);
        QWheelEvent event(at, view.mapToGlobal(at), {}, {0, delta}, Qt::NoButton, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(&view, &event);
        Serve();
    }

    // What the screen shows at a logical pixel.
    static QColor ColourAt(const ScreenWindow& window, QPoint at) {
        const QImage shown = View(window).grab().toImage();
        const QPointF middle = (QPointF(at) + QPointF(0.5, 0.5)) * shown.devicePixelRatio();
        return shown.pixelColor(static_cast<int>(middle.x()), static_cast<int>(middle.y()));
    }

    // The corners of a cuboid; the last one stands `moved` mm higher.
    static std::string Points(int moved) {
        std::string text;
        for (int corner = 0; corner < 8; ++corner)
            text += "P" + std::to_string(corner + 1) + ";" + std::to_string((corner & 1) * 1000) + ";" +
                    std::to_string((corner & 2) * 400) + ";" +
                    std::to_string((corner & 4) * 150 + (corner == 7 ? moved : 0)) + "\n";
        return text;
    }
};
