// The start screen.
#include "ui/start_screen.h"

#include <QApplication>
#include <QEvent>
#include <QPainter>
#include <QScreen>
#include <QSplashScreen>
#include <QTimer>

#include "core/controller.h"
#include "ui/qt_text.h"
#include "ui/theme.h"

namespace {

bool Skipped = false;

class CloseOnClick : public QObject {
public:
    using QObject::QObject;
    bool eventFilter(QObject* object, QEvent* event) override {
        if (event->type() == QEvent::MouseButtonPress) static_cast<QWidget*>(object)->close();
        return false;
    }
};

QPixmap Picture() {
    constexpr int kWidth = 460, kHeight = 220;
    const qreal ratio = QApplication::primaryScreen()->devicePixelRatio();
    QPixmap pixmap(QSize(kWidth, kHeight) * ratio);
    pixmap.setDevicePixelRatio(ratio);
    const QPalette palette = QApplication::palette();
    pixmap.fill(palette.color(QPalette::Base));
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    IconOf(QStringLiteral("corvinade")).paint(&painter, QRect(32, 70, 80, 80));
    painter.setPen(palette.color(QPalette::Text));
    QFont font = QApplication::font();
    font.setPixelSize(34);
    font.setWeight(QFont::DemiBold);
    painter.setFont(font);
    painter.drawText(QRect(136, 66, 300, 44), Qt::AlignLeft | Qt::AlignVCenter, QStringLiteral("Corvinade"));
    font.setPixelSize(14);
    font.setWeight(QFont::Normal);
    painter.setFont(font);
    painter.drawText(QRect(138, 112, 300, 22), Qt::AlignLeft | Qt::AlignVCenter,
                     QStringLiteral("13 Parameter - least square 3D Transformations"));
    painter.setPen(palette.color(QPalette::PlaceholderText));
    painter.drawText(QRect(138, 136, 300, 22), Qt::AlignLeft | Qt::AlignVCenter,
                     QStringLiteral("Version ") + Q(ProgramVersion()));
    painter.setPen(QPen(palette.color(QPalette::Mid), 1));
    painter.drawRect(QRectF(0.5, 0.5, kWidth - 1, kHeight - 1));
    return pixmap;
}

}  // namespace

void SkipStartScreen() {
    Skipped = true;
}

// It is shown while the program goes on, so that it costs no start time; it ends by itself.
void ShowStartScreenFor(int milliseconds) {
    if (Skipped || milliseconds <= 0) return;
    auto* screen = new QSplashScreen(Picture(), Qt::WindowStaysOnTopHint);
    screen->setAttribute(Qt::WA_DeleteOnClose);
    screen->installEventFilter(new CloseOnClick(screen));
    screen->show();
    auto* timer = new QTimer(screen);
    timer->setSingleShot(true);
    QObject::connect(timer, &QTimer::timeout, screen, &QWidget::close);
    timer->start(milliseconds);
}
