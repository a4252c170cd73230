// The frame's bars, its theme, and its menus that pop up.
#pragma once

#include "core/rooms.h"

class QMainWindow;
class QMdiArea;

namespace corvinade::ui {

// Gives the frame, as its form has it, all that no form can say: panels, icons, the list of views, themes.
void FurnishFrame(QMainWindow& frame);

// The part of it that its windows stand in.
QMdiArea& AreaOf(const QMainWindow& frame);

// Pops the menu up that the logic wants to have popped up, if any.
void ShowPopUpMenu(const QMainWindow& frame);

// Light or dark as the settings have it.
void ShowStoredTheme();

}  // namespace corvinade::ui
