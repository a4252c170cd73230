// Ties the widgets of a form to the controls of a window, both ways, by name.
#pragma once

#include <string>
#include <vector>

#include "core/rooms.h"
#include "core/window.h"

class QWidget;

namespace corvinade::ui {

// Connects every control of `window` with the widget of its name below `top`. Gives what does not fit, a line
// a fault: a control without a widget, a widget without a control (names that begin with "_" and the
// toolkit's own are left alone), a widget of another kind than its control.
std::vector<std::string> BindWindow(const WindowEntry& window, QWidget& top);

// Forgets a window's widgets, which are going.
void UnbindWindow(const WindowEntry& window);

// Shows every control of the window that differs from what was last shown; the panels of the status bar can
// be left for a later time.
void ShowControls(const WindowEntry& window, bool withPanels = true);

// Lets the next ShowControls show everything anew, as a new palette needs it.
void ForgetShown();

}  // namespace corvinade::ui
