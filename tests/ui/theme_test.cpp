// Light and dark, chosen in the settings menu.
#include "ui/theme.h"

#include <QFile>
#include <QImage>
#include <QPainter>
#include <QPalette>
#include <QStyle>
#include <QStyleOptionButton>
#include <QSvgRenderer>
#include <QToolBar>
#include <QToolTip>
#include <algorithm>
#include <array>
#include <cmath>

#include "core/job_tolerance.h"
#include "core/settings.h"
#include "ui/colours.h"
#include "ui/desktop.h"
#include "ui/desktop_fixture.h"
#include "ui/frame.h"

using namespace corvinade;

namespace {

bool IsDark() {
    const QPalette palette = QApplication::palette();
    return palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
}

// Relative luminance and contrast as the Web Content Accessibility Guidelines 2.1 define them.
double Luminance(const QColor& colour) {
    const auto linear = [](double part) {
        return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
           0.0722 * linear(colour.blueF());
}
double Contrast(const QColor& one, const QColor& other) {
    const double a = Luminance(one), b = Luminance(other);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

struct TextOnGround {
    QPalette::ColorRole Text, Ground;
};
constexpr std::array<TextOnGround, 12> kTexts = {{{QPalette::WindowText, QPalette::Window},
                                                  {QPalette::WindowText, QPalette::Button},
                                                  {QPalette::WindowText, QPalette::Base},
                                                  {QPalette::Text, QPalette::Base},
                                                  {QPalette::Text, QPalette::AlternateBase},
                                                  {QPalette::Text, QPalette::Window},
                                                  {QPalette::ButtonText, QPalette::Button},
                                                  {QPalette::ToolTipText, QPalette::ToolTipBase},
                                                  {QPalette::HighlightedText, QPalette::Highlight},
                                                  {QPalette::PlaceholderText, QPalette::Base},
                                                  {QPalette::Link, QPalette::Base},
                                                  {QPalette::Link, QPalette::Window}}};

// The mark of a check box without its check, painted by the style of the program.
QImage EmptyCheckBox() {
    QStyleOptionButton option;
    option.palette = QApplication::palette();
    option.rect = QRect(3, 3, 14, 14);
    option.state = QStyle::State_Enabled | QStyle::State_Off | QStyle::State_Active;
    QImage image(20, 20, QImage::Format_RGB32);
    image.fill(option.palette.color(QPalette::Window));
    QPainter painter(&image);
    QApplication::style()->drawPrimitive(QStyle::PE_IndicatorCheckBox, &option, &painter);
    return image;
}

}  // namespace

TEST_F(DesktopTest, TheAppearanceIsChosenInTheSettingsMenuAndComesBack) {
    Begin();
    Trigger("_ThemeDark");
    EXPECT_TRUE(IsDark());
    EXPECT_TRUE(Action("_ThemeDark")->isChecked());
    EXPECT_FALSE(Action("_ThemeLight")->isChecked());
    EXPECT_EQ(IniWertLesen("Theme"), "dark");
    CloseDesktop();
    ApplyTheme(Theme::Light);
    Begin();
    ShowStoredTheme();
    EXPECT_TRUE(IsDark());
    Trigger("_ThemeLight");
    EXPECT_FALSE(IsDark());
    EXPECT_EQ(IniWertLesen("Theme"), "light");
    EXPECT_TRUE(Action("_ThemeLight")->isChecked()) << "a second click on it leaves it on";
    Trigger("_ThemeLight");
    EXPECT_TRUE(Action("_ThemeLight")->isChecked());
}

TEST_F(DesktopTest, EveryIconOfTheToolBarsIsThereInBothColours) {
    Begin();
    for (const Theme theme : {Theme::Light, Theme::Dark}) {
        ApplyTheme(theme);
        for (const char* name : {"FileNew", "TrafoBerechnung", "DeleteView", "corvinade"})
            EXPECT_FALSE(IconOf(QLatin1String(name)).isNull()) << name;
    }
    EXPECT_TRUE(IconOf(QStringLiteral("NoSuchIcon")).isNull());
    ApplyTheme(Theme::Light);
}

TEST_F(DesktopTest, TextCanBeReadOnEveryGroundInBothThemes) {
    for (const Theme theme : {Theme::Light, Theme::Dark}) {
        ApplyTheme(theme);
        const QPalette palette = QApplication::palette();
        for (const auto& [text, ground] : kTexts) {
            for (const auto group : {QPalette::Active, QPalette::Inactive})
                EXPECT_GE(Contrast(palette.color(group, text), palette.color(group, ground)), 4.5)
                    << "dark " << IsDark() << ", role " << text << " on " << ground;
            // What is out of reach is fainter, but can still be made out.
            const bool written = text != QPalette::PlaceholderText && text != QPalette::Link;
            const QColor faint = palette.color(QPalette::Disabled, text);
            if (written) {
                EXPECT_GE(Contrast(faint, palette.color(QPalette::Disabled, ground)), 2)
                    << "dark " << IsDark() << ", disabled role " << text << " on " << ground;
            }
        }
        EXPECT_EQ(QToolTip::palette().color(QPalette::ToolTipBase), palette.color(QPalette::ToolTipBase));
        EXPECT_EQ(QToolTip::palette().color(QPalette::ToolTipText), palette.color(QPalette::ToolTipText));
    }
    ApplyTheme(Theme::Light);
}

TEST_F(DesktopTest, TextCanBeReadOnTheMarkingsOfTables) {
    constexpr std::int32_t kOrange = 33023;
    for (const std::int32_t ground : {QbColor(10), QbColor(12), QbColor(14), kOrange, kBeyondTolerance})
        EXPECT_GE(Contrast(QColor::fromRgb(kDarkText), ColourOf(ground)), 4.5) << ground;
}

TEST_F(DesktopTest, TheEdgeOfAnEmptyCheckBoxIsSeenInBothThemes) {
    for (const Theme theme : {Theme::Light, Theme::Dark}) {
        ApplyTheme(theme);
        const QImage box = EmptyCheckBox();
        const QColor edge = box.pixelColor(3, 10), inside = box.pixelColor(10, 10);
        EXPECT_GE(Contrast(edge, inside), 3) << "dark " << IsDark();
    }
    ApplyTheme(Theme::Light);
}

TEST_F(DesktopTest, TheArrowsOfAToolBarThatDoesNotFitAreSeenInBothThemes) {
    Begin();
    auto* bar = Frame()->findChild<QToolBar*>(QStringLiteral("ToolbarGraphics"));
    auto* more = bar->findChild<QWidget*>(QStringLiteral("qt_toolbar_ext_button"));
    ASSERT_NE(more, nullptr);
    for (const Theme theme : {Theme::Light, Theme::Dark}) {
        ApplyTheme(theme);
        more->resize(16, 32);
        bar->setEnabled(true);
        more->setEnabled(true);
        const QImage shown = more->grab().toImage();
        double best = 0;
        for (int y = 0; y < shown.height(); ++y)
            for (int x = 0; x < shown.width(); ++x)
                best = std::max(best, Contrast(shown.pixelColor(x, y), shown.pixelColor(1, 1)));
        EXPECT_GE(best, 3) << "dark " << IsDark();
    }
    ApplyTheme(Theme::Light);
}

TEST_F(DesktopTest, IconsAreDrawnForEverySizeAndScale) {
    for (const int size : {24, 30, 36, 48, 72, 96}) {
        const QImage shown = IconOf(QStringLiteral("FileNew")).pixmap(QSize(size, size), 1.0).toImage();
        ASSERT_EQ(shown.size(), QSize(size, size));
        QFile file(QStringLiteral(":/icons/FileNew.svg"));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        QByteArray drawing = file.readAll();
        drawing.replace("#3c4653", QApplication::palette().color(QPalette::ButtonText).name().toLatin1());
        QImage truth(size, size, QImage::Format_ARGB32_Premultiplied);
        truth.fill(Qt::transparent);
        QPainter painter(&truth);
        QSvgRenderer(drawing).render(&painter);
        painter.end();
        EXPECT_EQ(shown.convertToFormat(truth.format()), truth) << size;
    }
    const QPixmap fine = IconOf(QStringLiteral("FileNew")).pixmap(QSize(24, 24), 3.0);
    EXPECT_EQ(fine.size(), QSize(72, 72));
}
