// Light and dark, and the icons that follow them.
#include "ui/theme.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusInterface>
#include <QDBusReply>
#include <QDBusVariant>
#include <QFile>
#include <QPainter>
#include <QPalette>
#include <QPixmap>
#include <QStyle>
#include <QStyleFactory>
#include <QSvgRenderer>
#include <array>
#include <string>

#include "core/run.h"
#include "core/settings.h"

namespace {

// The neutral colour that all icons are drawn in.
constexpr const char* kInk = "#3c4653";

constexpr const char* kThemeKey = "Theme";
constexpr const char* kLight = "light";
constexpr const char* kDark = "dark";

// What the portal of the desktop calls a wish for dark windows.
constexpr uint kPrefersDark = 1;

bool DesktopIsDark() {
    QDBusInterface settings(QStringLiteral("org.freedesktop.portal.Desktop"),
                            QStringLiteral("/org/freedesktop/portal/desktop"),
                            QStringLiteral("org.freedesktop.portal.Settings"), QDBusConnection::sessionBus());
    if (!settings.isValid()) return false;
    settings.setTimeout(200);  // a portal that does not answer must not hold up the start
    const QDBusReply<QDBusVariant> reply = settings.call(
        QStringLiteral("Read"), QStringLiteral("org.freedesktop.appearance"), QStringLiteral("color-scheme"));
    if (!reply.isValid()) return false;
    QVariant value = reply.value().variant();
    if (value.canConvert<QDBusVariant>()) value = value.value<QDBusVariant>().variant();
    return value.toUInt() == kPrefersDark;
}

struct Tone {
    QPalette::ColorRole Role;
    const char* Light;
    const char* Dark;
};
constexpr std::array<Tone, 14> kTones = {{{QPalette::Window, "#f3f4f6", "#2f333a"},
                                          {QPalette::WindowText, "#20262d", "#e4e7eb"},
                                          {QPalette::Base, "#ffffff", "#1c1f23"},
                                          {QPalette::AlternateBase, "#f7f8fa", "#24272d"},
                                          {QPalette::Text, "#20262d", "#e4e7eb"},
                                          {QPalette::Button, "#e9ebee", "#40454d"},
                                          {QPalette::ButtonText, "#20262d", "#e4e7eb"},
                                          {QPalette::ToolTipBase, "#fffbe6", "#3b3f46"},
                                          {QPalette::ToolTipText, "#20262d", "#e4e7eb"},
                                          {QPalette::Highlight, "#2f7fd1", "#2f7fd1"},
                                          {QPalette::HighlightedText, "#ffffff", "#ffffff"},
                                          {QPalette::PlaceholderText, "#7b8794", "#8b94a0"},
                                          {QPalette::Link, "#1f6ab8", "#6fb1f0"},
                                          {QPalette::Mid, "#c3c8cf", "#464b53"}}};

QPalette PaletteOf(bool dark) {
    QPalette palette(QColor(dark ? "#40454d" : "#e9ebee"), QColor(dark ? "#2f333a" : "#f3f4f6"));
    for (const Tone& tone : kTones) palette.setColor(tone.Role, QColor(dark ? tone.Dark : tone.Light));
    const QColor faint(dark ? "#757d87" : "#98a1ab");
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, faint);
    // A value that the fit gives stands on the ground of the window, one that is typed on that of a field.
    palette.setColor(QPalette::Disabled, QPalette::Base, palette.color(QPalette::Window));
    return palette;
}

}  // namespace

Theme StoredTheme() {
    const std::string stored = Run.SettingsFilePath.empty() ? "" : IniWertLesen(kThemeKey);
    return stored == kDark ? Theme::Dark : stored == kLight ? Theme::Light : Theme::Desktop;
}

void StoreTheme(Theme theme) {
    IniWertSchreiben("Desktop", kThemeKey,
                     theme == Theme::Dark    ? kDark
                     : theme == Theme::Light ? kLight
                                             : "desktop");
}

void ApplyTheme(Theme theme) {
    const QByteArray wish = qgetenv("CORVINADE_THEME");
    bool dark = theme == Theme::Dark;
    if (!wish.isEmpty()) {
        dark = wish == kDark;
    } else if (theme == Theme::Desktop) {
        dark = DesktopIsDark();
    }
    if (QApplication::style()->name() != QLatin1String("fusion"))
        QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QApplication::setPalette(PaletteOf(dark));
}

QIcon IconOf(const QString& name) {
    QFile file(QStringLiteral(":/icons/") + name + QStringLiteral(".svg"));
    if (!file.open(QIODevice::ReadOnly)) return {};
    const QByteArray drawing = file.readAll();
    QIcon icon;
    for (const QIcon::Mode mode : {QIcon::Normal, QIcon::Disabled}) {
        const auto group = mode == QIcon::Normal ? QPalette::Active : QPalette::Disabled;
        QByteArray coloured = drawing;
        coloured.replace(kInk, QApplication::palette().color(group, QPalette::ButtonText).name().toLatin1());
        QSvgRenderer renderer(coloured);
        for (const int size : {24, 36, 48}) {
            QPixmap pixmap(size, size);
            pixmap.fill(Qt::transparent);
            QPainter painter(&pixmap);
            if (mode == QIcon::Disabled) painter.setOpacity(0.45);
            renderer.render(&painter);
            painter.end();
            icon.addPixmap(pixmap, mode);
        }
    }
    return icon;
}
