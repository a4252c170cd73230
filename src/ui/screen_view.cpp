// The inside of a graphics window on the screen.
#include "ui/screen_view.h"

#include <QContextMenuEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

#include "core/form_main.h"
#include "core/window.h"
#include "paint/image.h"
#include "ui/desktop.h"
#include "ui/plain_text.h"
#include "ui/qt_text.h"
#include "ui/screen_paint.h"
#include "ui/screen_windows.h"

namespace corvinade::ui {

namespace {

// How far a press and its release may lie apart and still be a click, logical pixels.
constexpr double kClickReach = 3;

constexpr int kWheelStep = 120;  // eighths of a degree

int ButtonOf(Qt::MouseButton button) {
    return button == Qt::LeftButton     ? kLeftButton
           : button == Qt::RightButton  ? kRightButton
           : button == Qt::MiddleButton ? kMiddleButton
                                        : 0;
}

int ButtonsOf(Qt::MouseButtons buttons) {
    int all = 0;
    for (const auto one : {Qt::LeftButton, Qt::RightButton, Qt::MiddleButton})
        if (buttons.testFlag(one)) all |= ButtonOf(one);
    return all;
}

MouseEvent EventAt(QPointF place, int buttons, Qt::KeyboardModifiers modifiers) {
    return {static_cast<float>(std::floor(place.x())), static_cast<float>(std::floor(place.y())), buttons,
            modifiers.testFlag(Qt::ShiftModifier), modifiers.testFlag(Qt::ControlModifier)};
}

// The name that the logic has for a key; empty for keys that mean nothing in a picture.
std::string NameOf(const QKeyEvent& event) {
    switch (event.key()) {
        case Qt::Key_Left:
            return "Left";
        case Qt::Key_Right:
            return "Right";
        case Qt::Key_Up:
            return "Up";
        case Qt::Key_Down:
            return "Down";
        case Qt::Key_Plus:  // small keyboards have no other
            return "KP_Add";
        case Qt::Key_Minus:
            return "KP_Subtract";
        case Qt::Key_Pause:
            return "Pause";
        case Qt::Key_Shift:
            return "Shift";
        case Qt::Key_Control:
            return "Ctrl";
        default:
            break;
    }
    if (event.key() < Qt::Key_A || event.key() > Qt::Key_Z) return "";
    const char letter = event.modifiers().testFlag(Qt::ShiftModifier) ? 'A' : 'a';
    return {static_cast<char>(letter + (event.key() - Qt::Key_A))};
}

}  // namespace

ScreenView::ScreenView(std::uint64_t id) : id_(id), bar_(this) {
    setObjectName(QStringLiteral("ScreenPixel"));
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMinimumSize(160, 120);
    bar_.setAutoFillBackground(true);
    bar_.setCursor(Qt::ArrowCursor);
    auto* row = new QHBoxLayout(&bar_);
    row->setContentsMargins(6, 0, 6, 0);
    row->setSpacing(12);
    for (std::size_t i = 1; i < panel_.size(); ++i) {
        panel_[i] = new QLabel(&bar_);
        panel_[i]->setObjectName(QStringLiteral("StatusBar.%1").arg(i));
        panel_[i]->setTextFormat(Qt::PlainText);
        panel_[i]->setMinimumWidth(1);
        row->addWidget(panel_[i], i == 1 ? 3 : 2);
    }
    deviation_.setObjectName(QStringLiteral("_Deviation"));
    deviation_.setTextFormat(Qt::PlainText);
    deviation_.setMinimumWidth(1);
    row->addWidget(&deviation_, 5);
    for (QTimer* timer : {&moves_, &sizes_}) {
        timer->setSingleShot(true);
        timer->setInterval(0);
    }
    QObject::connect(&moves_, &QTimer::timeout, this, [this] { DoWaitingMove(); });
    QObject::connect(&sizes_, &QTimer::timeout, this, [this] { TellSize(); });
}

ScreenWindow* ScreenView::Window() const {
    return ScreenOf(id_);
}

// --- What it shows ----------------------------------------------------------------------------------------

void ScreenView::PlaceBar(const ScreenWindow& window) {
    const int rows = std::min(window.Screen.StatusBarHeight, height());
    const QRect place(0, height() - rows, width(), rows);
    if (bar_.geometry() != place) bar_.setGeometry(place);
    bar_.setVisible(rows > 0 && window.StatusBarVisible);
}

void ScreenView::ShowWindow(const ScreenWindow& window) {
    for (std::size_t i = 1; i < panel_.size(); ++i) {
        const QString text = Q(window.Panel[i]);
        if (panel_[i]->text() != text) panel_[i]->setText(text);
    }
    if (const QString text = Q(window.Deviation); deviation_.text() != text) {
        deviation_.setText(text);
        deviation_.setToolTip(PlainWhereGuessed(text));  // a narrow window cuts it
    }
    deviation_.setVisible(window.Mouse.ActualRow != 0);  // the legend needs its room
    PlaceBar(window);
    const QString name = Q(window.Caption);
    if (accessibleName() != name) setAccessibleName(name);
    if (window.Pointer != pointer_) {
        pointer_ = window.Pointer;
        setCursor(PointerOf(pointer_));
    }
    const QRect frame = FrameOf(window);
    const bool drawn = stale_ || window.PaintCount != paintCount_;
    pictureStale_ = pictureStale_ || drawn;
    if (drawn || window.BindingsShown != bindings_) {
        update();
    } else if (frame != frame_) {
        update(frame);
        update(frame_);
    }
    stale_ = false;
    paintCount_ = window.PaintCount;
    bindings_ = window.BindingsShown;
    frame_ = frame;
}

void ScreenView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const ScreenWindow* window = Window();
    if (window == nullptr) return painter.fillRect(rect(), palette().mid());
    if (std::exchange(pictureStale_, false)) PictureInto(picture_, *window);
    PaintScreen(painter, *window, picture_, size());
    // On a screen of another scale the picture is drawn anew, for its pixels.
    if (window->Screen.Pixels != nullptr && window->Screen.Scale != devicePixelRatioF()) sizes_.start();
}

void ScreenView::resizeEvent(QResizeEvent*) {
    if (const ScreenWindow* window = Window()) PlaceBar(*window);
    sizes_.start();
}

void ScreenView::TellSize() {
    if (!isVisible() || IsReduced(*this)) return;
    Did([this](ScreenWindow& window) {
        if (window.Screen.Pixels != nullptr && window.Screen.Scale != devicePixelRatioF())
            window.Screen.Width = 0;  // no size that it has: the picture is made anew
        ResizeScreenWindow(window, width(), height());
    });
}

// --- What the user does -----------------------------------------------------------------------------------

template <class Action>
void ScreenView::Did(Action action) {
    UserDid([this, &action] {
        Dispatch([this, &action] {
            if (ScreenWindow* window = Window()) action(*window);
        });
    });
}

void ScreenView::DoWaitingMove() {
    moves_.stop();
    Did([this](ScreenWindow& window) { ScreenPixel_MouseMove(window, move_); });
}

void ScreenView::mousePressEvent(QMouseEvent* event) {
    if (moves_.isActive()) DoWaitingMove();
    const MouseEvent press = EventAt(event->position(), ButtonOf(event->button()), event->modifiers());
    if (press.Buttons == 0) return;
    down_ = event->position();
    mayClick_ = event->button() == Qt::LeftButton;
    Did([&press](ScreenWindow& window) { ScreenPixel_MouseDown(window, press); });
}

void ScreenView::mouseMoveEvent(QMouseEvent* event) {
    const QPointF way = event->position() - down_;
    if (std::abs(way.x()) > kClickReach || std::abs(way.y()) > kClickReach) mayClick_ = false;
    move_ = EventAt(event->position(), ButtonsOf(event->buttons()), event->modifiers());
    if (!moves_.isActive()) moves_.start();
}

void ScreenView::mouseReleaseEvent(QMouseEvent* event) {
    if (moves_.isActive()) DoWaitingMove();
    const MouseEvent release = EventAt(event->position(), ButtonOf(event->button()), event->modifiers());
    if (release.Buttons == 0) return;
    Did([&release](ScreenWindow& window) { ScreenPixel_MouseUp(window, release); });
    const QPointF way = event->position() - down_;
    const bool near = std::abs(way.x()) <= kClickReach && std::abs(way.y()) <= kClickReach;
    const bool clicks = mayClick_ && near && event->button() == Qt::LeftButton;
    if (event->button() == Qt::LeftButton) mayClick_ = false;
    if (clicks) Did([&release](ScreenWindow& window) { ScreenPixel_Click(window, release); });
}

// The second press of two is the double click; with other buttons each press stands for itself, so that a
// quick hand zooms twice.
void ScreenView::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return mousePressEvent(event);
    if (moves_.isActive()) DoWaitingMove();
    const MouseEvent click = EventAt(event->position(), kLeftButton, event->modifiers());
    mayClick_ = false;
    Did([&click](ScreenWindow& window) { ScreenPixel_DblClick(window, click); });
}

void ScreenView::wheelEvent(QWheelEvent* event) {
    if (moves_.isActive()) DoWaitingMove();
    event->accept();
    wheel_ += event->angleDelta().y();
    const int steps = wheel_ / kWheelStep;
    wheel_ -= steps * kWheelStep;
    const MouseEvent place = EventAt(event->position(), ButtonsOf(event->buttons()), event->modifiers());
    for (int step = 0; step < std::abs(steps); ++step)
        Did([&](ScreenWindow& window) {
            ScreenPixel_Wheel(window, place, steps > 0 ? kWheelStep : -kWheelStep);
        });
}

// By the key for it; the right button zooms, and with Shift it comes here by its release.
void ScreenView::contextMenuEvent(QContextMenuEvent* event) {
    if (event->reason() != QContextMenuEvent::Keyboard) return;
    Did([](ScreenWindow&) { Main.MenuPicture.Value = 1; });
}

void ScreenView::keyPressEvent(QKeyEvent* event) {
    const std::string key = NameOf(*event);
    if (key.empty()) return QWidget::keyPressEvent(event);
    if (moves_.isActive()) DoWaitingMove();
    const bool shift = event->modifiers().testFlag(Qt::ShiftModifier);
    const bool ctrl = event->modifiers().testFlag(Qt::ControlModifier);
    Did([&](ScreenWindow& window) { ScreenPixel_KeyDown(window, key, shift, ctrl); });
}

void ScreenView::keyReleaseEvent(QKeyEvent* event) {
    const std::string key = NameOf(*event);
    if (key.empty()) return QWidget::keyReleaseEvent(event);
    if (event->isAutoRepeat()) return;
    Did([&key](ScreenWindow& window) { ScreenPixel_KeyUp(window, key); });
}

// A key that is held while the window loses the keyboard is let go elsewhere.
void ScreenView::focusOutEvent(QFocusEvent* event) {
    QWidget::focusOutEvent(event);
    if (Window() == nullptr) return;
    Did([](ScreenWindow& window) { ScreenPixel_KeyUp(window, "Shift"); });
}

}  // namespace corvinade::ui
