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

namespace corvinade::ui {

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
    constexpr int kLeft = 136, kRight = 36, kHeight = 220;
    const QString what = QStringLiteral("13 Parameter - least square 3D Transformations");
    QFont font = QApplication::font();
    font.setPixelSize(14);
    font.setWeight(QFont::Normal);
    const QFont plain = font;
    // As wide as the line under the name needs, whatever letters the desktop has.
    const int text = QFontMetrics(plain).horizontalAdvance(what);
    const int width = kLeft + text + kRight;
    const qreal ratio = QApplication::primaryScreen()->devicePixelRatio();
    QPixmap pixmap(QSize(width, kHeight) * ratio);
    pixmap.setDevicePixelRatio(ratio);
    const QPalette palette = QApplication::palette();
    pixmap.fill(palette.color(QPalette::Base));
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    IconOf(QStringLiteral("corvinade")).paint(&painter, QRect(32, 70, 80, 80));
    painter.setPen(palette.color(QPalette::Text));
    font.setPixelSize(34);
    font.setWeight(QFont::DemiBold);
    painter.setFont(font);
    painter.drawText(QRect(kLeft, 66, text, 44), Qt::AlignLeft | Qt::AlignVCenter,
                     QStringLiteral("Corvinade"));
    painter.setFont(plain);
    painter.drawText(QRect(kLeft + 2, 112, text + kRight, 22), Qt::AlignLeft | Qt::AlignVCenter, what);
    painter.setPen(palette.color(QPalette::PlaceholderText));
    painter.drawText(QRect(kLeft + 2, 136, text, 22), Qt::AlignLeft | Qt::AlignVCenter,
                     QStringLiteral("Version ") + Q(ProgramVersion()));
    painter.setPen(QPen(palette.color(QPalette::Mid), 1));
    painter.drawRect(QRectF(0.5, 0.5, width - 1, kHeight - 1));
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
    screen->setWindowTitle(QStringLiteral("Corvinade"));
    screen->installEventFilter(new CloseOnClick(screen));
    screen->show();
    auto* timer = new QTimer(screen);
    timer->setSingleShot(true);
    QObject::connect(timer, &QTimer::timeout, screen, &QWidget::close);
    timer->start(milliseconds);
}

}  // namespace corvinade::ui
