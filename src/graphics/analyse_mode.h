// The points run along their deviations and back until the mode ends.
#pragma once

#include "core/rooms.h"
#include "graphics/screen_window.h"

namespace corvinade::graphics {

void AnalyseModeAction(ScreenWindow& window);  // yields each round; ends with the mode or with the window
void ToggleAnalyseMode(ScreenWindow& window);  // on: runs AnalyseModeAction to its end; off: ends it

}  // namespace corvinade::graphics
