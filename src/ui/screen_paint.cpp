// What a graphics window shows.
#include "ui/screen_paint.h"

#include <QGuiApplication>
#include <QIcon>
#include <QPalette>
#include <QRegion>
#include <algorithm>

#include "graphics/bindings_overlay.h"
#include "ui/colours.h"
#include "ui/qt_text.h"
#include "ui/theme.h"

namespace corvinade::ui {

namespace {

void PaintPicture(QPainter& painter, const ScreenWindow& window, const QImage& picture, const QSize& size) {
    const QSizeF covered = picture.deviceIndependentSize();
    // Until the logic has followed a larger window its edge has the colour of the ground.
    if (covered.width() < size.width() || covered.height() < size.height())
        painter.fillRect(QRect({}, size), ColourOf(window.BackColor));
    if (!picture.isNull()) painter.drawImage(QPointF(), picture);
}

void PaintFrame(QPainter& painter, const ScreenWindow& window) {
    const QRect frame = FrameOf(window);
    if (frame.isEmpty()) return;
    // Bars, and no lines: those would lie half beside their logical pixels on a finer screen.
    const QRect inside = frame.adjusted(1, 1, -1, -1);
    for (const QRect& bar : QRegion(frame).subtracted(inside))
        painter.fillRect(bar, ColourOf(window.Mouse.FrameColor));
}

// A calm panel in the middle: what to do at the left, what comes of it at the right.
void PaintBindings(QPainter& painter, const QSize& size) {
    constexpr int kMargin = 22, kBetween = 28, kCorner = 10, kLead = 5;
    const auto bindings = ScreenBindings();
    if (bindings.empty()) return;
    QFont bold = painter.font();
    bold.setBold(true);
    const QFontMetrics keyMetrics(bold), metrics(painter.font());
    int keys = 0, effects = 0;
    for (const Binding& one : bindings) {
        keys = std::max(keys, keyMetrics.horizontalAdvance(QString::fromUtf8(one.Keys)));
        effects = std::max(effects, metrics.horizontalAdvance(QString::fromUtf8(one.Effect)));
    }
    const int line = metrics.height() + kLead;
    const int count = static_cast<int>(bindings.size());
    QRect panel(0, 0, keys + kBetween + effects + 2 * kMargin, count * line + 2 * kMargin);
    panel.moveCenter(QRect({}, size).center());
    // A small window shows the panel smaller, as a whole.
    const QRect room = QRect({}, size).adjusted(6, 6, -6, -6);
    const double shrink = std::min({1.0, static_cast<double>(room.width()) / panel.width(),
                                    static_cast<double>(room.height()) / panel.height()});
    painter.save();
    painter.translate(QRectF(QPointF(), QSizeF(size)).center());
    painter.scale(shrink, shrink);
    painter.translate(-QRectF(QPointF(), QSizeF(size)).center());
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(255, 255, 255, 60), 1));
    painter.setBrush(QColor(28, 34, 42, 225));
    painter.drawRoundedRect(QRectF(panel).adjusted(0.5, 0.5, -0.5, -0.5), kCorner, kCorner);
    QRect row(panel.left() + kMargin, panel.top() + kMargin, panel.width() - 2 * kMargin, line);
    for (const Binding& one : bindings) {
        painter.setFont(bold);
        painter.setPen(QColor(255, 255, 255));
        painter.drawText(row, Qt::AlignLeft | Qt::AlignVCenter, QString::fromUtf8(one.Keys));
        painter.setFont(QGuiApplication::font());
        painter.setPen(QColor(205, 214, 224));
        painter.drawText(row.adjusted(keys + kBetween, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter,
                         QString::fromUtf8(one.Effect));
        row.translate(0, line);
    }
    painter.restore();
}

// A cross at the place that the press counts for, with the sign of what it does there.
QCursor Cross(const char* sign) {
    constexpr int kSize = 32, kMiddle = 10, kArm = 8, kSign = 17;
    const qreal scale = qGuiApp->devicePixelRatio();
    QPixmap picture(QSize(kSize, kSize) * scale);
    picture.setDevicePixelRatio(scale);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    for (const auto& [colour, width] : {std::pair{QColor(0, 0, 0), 3.0}, {QColor(255, 255, 255), 1.0}}) {
        painter.setPen(QPen(colour, width));
        painter.drawLine(QPointF(kMiddle - kArm, kMiddle), QPointF(kMiddle + kArm, kMiddle));
        painter.drawLine(QPointF(kMiddle, kMiddle - kArm), QPointF(kMiddle, kMiddle + kArm));
    }
    const QRect place(kSize - kSign, kSize - kSign, kSign, kSign);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QGuiApplication::palette().color(QPalette::Button));
    painter.drawRoundedRect(place, 3, 3);
    IconOf(QLatin1String(sign)).paint(&painter, place.adjusted(1, 1, -1, -1));
    painter.end();
    return QCursor(picture, kMiddle, kMiddle);
}

}  // namespace

QRect FrameOf(const ScreenWindow& window) {
    const ScreenMouse& mouse = window.Mouse;
    if (!mouse.FrameVisible) return {};
    return {mouse.FrameLeft, mouse.FrameTop, mouse.FrameWidth + 1, mouse.FrameHeight + 1};
}

QCursor PointerOf(ScreenPointer pointer) {
    switch (pointer) {
        case ScreenPointer::Busy:
            return QCursor(Qt::WaitCursor);
        case ScreenPointer::SetsFlag:
            return Cross("FlagMode");
        case ScreenPointer::SetsLine:
            return Cross("SetLines");
        case ScreenPointer::DeletesLine:
            return Cross("DeleteLines");
        case ScreenPointer::Arrow:
            break;
    }
    return QCursor(Qt::ArrowCursor);
}

void PaintScreen(QPainter& painter, const ScreenWindow& window, const QImage& picture, const QSize& size) {
    PaintPicture(painter, window, picture, size);
    PaintFrame(painter, window);
    if (window.BindingsShown) PaintBindings(painter, size);
}

}  // namespace corvinade::ui
