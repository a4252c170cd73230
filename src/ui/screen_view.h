// The inside of a graphics window on the screen: it shows the picture that the logic has drawn, and tells
// the logic what mouse, wheel and keys do there.
#pragma once

#include <QImage>
#include <QLabel>
#include <QTimer>
#include <QWidget>
#include <array>
#include <cstdint>

#include "core/rooms.h"
#include "graphics/screen_events.h"
#include "graphics/screen_window.h"

namespace corvinade::ui {

// Rows at the lower edge of a picture that lie under the window's own status bar.
inline constexpr int kScreenBarHeight = 24;

class ScreenView : public QWidget {
public:
    explicit ScreenView(std::uint64_t id);

    std::uint64_t Id() const { return id_; }
    ScreenWindow* Window() const;  // null once the logic has closed it

    // Shows what differs from what was last shown.
    void ShowWindow(const ScreenWindow& window);
    // The picture has changed without a paint of its own.
    void PictureChanged() { stale_ = true; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    template <class Action>
    void Did(Action action);
    void DoWaitingMove();
    void TellSize();
    void PlaceBar(const ScreenWindow& window);

    std::uint64_t id_;
    QWidget bar_;
    std::array<QLabel*, kScreenPanels + 1> panel_{};
    QLabel deviation_;  // of the point that the panels name
    bool pictureStale_ = true;
    QImage picture_;  // with its labels, as it was when it was last painted

    // What was last shown.
    std::uint64_t paintCount_ = 0;
    bool stale_ = true;
    QRect frame_;
    bool bindings_ = false;
    ScreenPointer pointer_ = ScreenPointer::Arrow;

    // Moves come faster than a large picture can be drawn: the last one of a round of the event loop counts.
    MouseEvent move_;
    QTimer moves_, sizes_;
    QPointF down_;  // where the button went down
    bool mayClick_ = false;
    int wheel_ = 0;  // what is left of the wheel's turning after whole steps
};

}  // namespace corvinade::ui
