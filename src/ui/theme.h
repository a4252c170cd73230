// Light and dark, and the icons that follow them.
#pragma once

#include <QIcon>
#include <QString>

// Gives the program the style of all its windows, with the palette that the desktop prefers: light unless
// it asks for dark.
void ApplyTheme();

// An icon of the family by its name, in the text colour of the palette; an empty one where there is none.
QIcon IconOf(const QString& name);
