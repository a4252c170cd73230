// Light and dark, and the icons that follow them.
#pragma once

#include <QIcon>
#include <QString>

#include "core/rooms.h"

namespace corvinade::ui {

// What the user has chosen in the settings menu.
enum class Theme { Desktop, Light, Dark };

// The choice that the settings file holds; Desktop where it holds none.
Theme StoredTheme();

// Keeps a choice in the settings file.
void StoreTheme(Theme theme);

// Gives the program the style of all its windows and their palette. Desktop: light unless the desktop asks
// for dark. The variable CORVINADE_THEME ("light", "dark") goes before every choice.
void ApplyTheme(Theme theme);

// An icon of the family by its name, in the present text colour of the palette and sharp in every size; an
// empty one where there is none.
QIcon IconOf(const QString& name);

}  // namespace corvinade::ui
