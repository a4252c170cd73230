// Light and dark, chosen in the settings menu.
#include "ui/theme.h"

#include <QPalette>

#include "core/settings.h"
#include "ui/desktop.h"
#include "ui/desktop_fixture.h"

namespace {

bool IsDark() {
    const QPalette palette = QApplication::palette();
    return palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
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
