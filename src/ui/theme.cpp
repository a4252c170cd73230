// Light and dark, and the icons that follow them.
#include "ui/theme.h"

#include <QApplication>
#include <QFile>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QPixmap>
#include <QPolygonF>
#include <QProxyStyle>
#include <QStyle>
#include <QStyleFactory>
#include <QStyleOption>
#include <QSvgRenderer>
#include <QToolTip>
#include <array>
#include <map>
#include <string>

#include "core/run.h"
#include "core/settings.h"
#include "ui/portal.h"

namespace corvinade::ui {

namespace {

// The neutral colour that all icons are drawn in.
constexpr const char* kInk = "#3c4653";

constexpr const char* kThemeKey = "Theme";
constexpr const char* kLight = "light";
constexpr const char* kDark = "dark";

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
                                          {QPalette::Highlight, "#2870bb", "#2870bb"},
                                          {QPalette::HighlightedText, "#ffffff", "#ffffff"},
                                          {QPalette::PlaceholderText, "#66717d", "#8b94a0"},
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

bool IsDark(const QPalette& palette) {
    return palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
}

// The toolkit's own style, which draws all edges a shade darker than the window: too faint around the mark of
// a check box, and lost on a dark window. Edges follow the colour of the window, so these two get another
// one.
class Style : public QProxyStyle {
public:
    Style() : QProxyStyle(QStyleFactory::create(QStringLiteral("Fusion"))) {}

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override {
        const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
        const bool mark = element == PE_IndicatorCheckBox || element == PE_IndicatorRadioButton;
        if (!mark || button == nullptr || !(button->state & State_Enabled))
            return QProxyStyle::drawPrimitive(element, option, painter, widget);
        QStyleOptionButton edged(*button);
        edged.palette.setColor(QPalette::Window, QColor(IsDark(button->palette) ? "#abb5c3" : "#a9b1bb"));
        QProxyStyle::drawPrimitive(element, &edged, painter, widget);
    }

    // The arrows at the end of a tool bar that does not fit are a black picture of the toolkit's, which a
    // dark tool bar swallows: they are drawn in the colour of the text.
    void drawMoreArrows(const QStyleOptionToolButton& button, QPainter* painter,
                        const QWidget* widget) const {
        QStyleOptionToolButton bare(button);
        bare.icon = {};
        QProxyStyle::drawComplexControl(CC_ToolButton, &bare, painter, widget);
        const bool enabled = (button.state & State_Enabled) != 0;
        const QColor colour =
            button.palette.color(enabled ? QPalette::Active : QPalette::Disabled, QPalette::ButtonText);
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(QPen(colour, 1.5));
        painter->translate(QRectF(button.rect).center());
        if (button.rect.width() > button.rect.height()) painter->rotate(90);
        for (const qreal shift : {-3.0, 1.0})
            painter->drawPolyline(QPolygonF({{shift, -3.5}, {shift + 3, 0}, {shift, 3.5}}));
        painter->restore();
    }

    // The title of a window inside the frame throws a shadow of the text's colour, which must be a dark one.
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                            const QWidget* widget) const override {
        const auto* button = qstyleoption_cast<const QStyleOptionToolButton*>(option);
        if (control == CC_ToolButton && button != nullptr && widget != nullptr &&
            widget->objectName() == QLatin1String("qt_toolbar_ext_button"))
            return drawMoreArrows(*button, painter, widget);
        const auto* title = qstyleoption_cast<const QStyleOptionTitleBar*>(option);
        if (control != CC_TitleBar || title == nullptr || (title->titleBarState & Qt::WindowActive) == 0)
            return QProxyStyle::drawComplexControl(control, option, painter, widget);
        QStyleOptionTitleBar shaded(*title);
        shaded.palette.setColor(QPalette::Text, title->palette.color(QPalette::Highlight).darker(150));
        QProxyStyle::drawComplexControl(control, &shaded, painter, widget);
    }
};

// A drawing that is painted anew for each size that is asked for, and so is sharp at every scale.
class DrawingEngine : public QIconEngine {
public:
    DrawingEngine(QByteArray normal, QByteArray disabled)
        : normal_(std::move(normal)), disabled_(std::move(disabled)) {}

    QIconEngine* clone() const override { return new DrawingEngine(*this); }

    void paint(QPainter* painter, const QRect& place, QIcon::Mode mode, QIcon::State) override {
        const bool disabled = mode == QIcon::Disabled;
        QSvgRenderer renderer(disabled ? disabled_ : normal_);
        const qreal before = painter->opacity();
        if (disabled) painter->setOpacity(0.45 * before);
        renderer.render(painter, place);
        painter->setOpacity(before);
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap& kept = kept_[{size.width(), size.height(), mode == QIcon::Disabled}];
        if (!kept.isNull()) return kept;
        kept = QPixmap(size);
        kept.fill(Qt::transparent);
        QPainter painter(&kept);
        paint(&painter, QRect(QPoint(), size), mode, state);
        return kept;
    }

private:
    QByteArray normal_, disabled_;
    std::map<std::array<int, 3>, QPixmap> kept_;  // by width, height, and whether it is disabled
};

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
    if (dynamic_cast<Style*>(QApplication::style()) == nullptr) QApplication::setStyle(new Style);
    QApplication::setPalette(PaletteOf(dark));
    QToolTip::setPalette(PaletteOf(dark));
}

QIcon IconOf(const QString& name) {
    QFile file(QStringLiteral(":/icons/") + name + QStringLiteral(".svg"));
    if (!file.open(QIODevice::ReadOnly)) return {};
    const QByteArray drawing = file.readAll();
    const auto inked = [&drawing](QPalette::ColorGroup group) {
        return QByteArray(drawing).replace(
            kInk, QApplication::palette().color(group, QPalette::ButtonText).name().toLatin1());
    };
    return QIcon(new DrawingEngine(inked(QPalette::Active), inked(QPalette::Disabled)));
}

}  // namespace corvinade::ui
