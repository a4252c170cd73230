// The windows that paint a part of themselves.
#pragma once

#include "core/rooms.h"
#include "core/window.h"

class QWidget;

namespace corvinade::ui {

// Gives the form of such a window what it paints in; nothing to any other.
void AddPlot(const WindowEntry& window, QWidget& form);

// Paints it anew where it is no longer what the window holds.
void ShowPlot(const WindowEntry& window, const QWidget& form);

}  // namespace corvinade::ui
