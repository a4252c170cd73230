// The status bar of a graphics window.
#pragma once

#include "core/rooms.h"
#include "graphics/screen_window.h"

namespace corvinade::graphics {

// The point of a row of the scene in all four panels, and its deviation (transformed start minus target);
// row 0: that there is none, and the legend of the axes.
void ShowPointInStatusBar(ScreenWindow& window, int row);

}  // namespace corvinade::graphics
