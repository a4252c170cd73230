// What the user's desktop wishes.
#include "ui/portal.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QTimer>

namespace corvinade::ui {

namespace {

constexpr const char* kService = "org.freedesktop.portal.Desktop";
constexpr const char* kPath = "/org/freedesktop/portal/desktop";
constexpr const char* kSettings = "org.freedesktop.portal.Settings";
constexpr const char* kAppearance = "org.freedesktop.appearance";
constexpr const char* kColourScheme = "color-scheme";

// What the portal calls a wish for dark windows.
constexpr uint kPrefersDark = 1;

// A portal that does not answer must not hold up the start.
constexpr int kPatience_ms = 200;

// A change of the appearance sends several signals in a row.
constexpr int kBetweenSignals_ms = 30;

}  // namespace

bool DesktopIsDark() {
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) return false;
    // The message itself: an object for the interface would first ask the portal what it can do, and wait
    // for that as long as the bus allows.
    QDBusMessage question = QDBusMessage::createMethodCall(QLatin1String(kService), QLatin1String(kPath),
                                                           QLatin1String(kSettings), QStringLiteral("Read"));
    question << QLatin1String(kAppearance) << QLatin1String(kColourScheme);
    const QDBusMessage answer = bus.call(question, QDBus::Block, kPatience_ms);
    if (answer.type() != QDBusMessage::ReplyMessage || answer.arguments().isEmpty()) return false;
    // Wrapped once or twice, as the portal's age has it.
    QVariant value = answer.arguments().constFirst();
    while (value.canConvert<QDBusVariant>()) value = value.value<QDBusVariant>().variant();
    return value.toUInt() == kPrefersDark;
}

void WatchDesktop(QObject* owner, const std::function<void()>& changed) {
    auto* timer = new QTimer(owner);
    timer->setSingleShot(true);
    timer->setInterval(kBetweenSignals_ms);
    QObject::connect(timer, &QTimer::timeout, timer, changed);
    // The settings of a desktop change seldom, so every change of them is a reason to look.
    QDBusConnection::sessionBus().connect(QLatin1String(kService), QLatin1String(kPath),
                                          QLatin1String(kSettings), QStringLiteral("SettingChanged"), timer,
                                          SLOT(start()));
}

}  // namespace corvinade::ui
