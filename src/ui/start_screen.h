// The start screen: name and version, for a short time.
#pragma once

#include "core/rooms.h"

namespace corvinade::ui {

inline constexpr int kStartScreen_ms = 2000;

// Shows it for so long, or until it is clicked. 0 skips it; so does SkipStartScreen.
void ShowStartScreenFor(int milliseconds);
void SkipStartScreen();

}  // namespace corvinade::ui
