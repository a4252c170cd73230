// Where a few flags stand best in a picture.
#pragma once

#include <vector>

#include "core/rooms.h"
#include "graphics/screen_window.h"

namespace corvinade::graphics {

// Beyond this many the search would take too long, and flags cover what they tell about anyway.
inline constexpr int kMostSearchedFlags = 30;

// What flags keep clear of at the edges of a picture, pixels: colour bar at the right, scales at the lower
// left.
inline constexpr int kFlagEdge = 10, kColourBarRoom = 150, kScalesRoom = 180;

// Gives the flags of these rows places near their points, clear of each other, of the colour bar and of the
// scales, and as far as can be of the points; leader lines cross as little as can be. Reads the pixel tables
// of the window and the sizes of its labels. False, and nothing is moved, where there are too many of them or
// the picture has no room for all. Require: each row has a flag.
bool PlaceBesidePoints(ScreenWindow& window, const std::vector<int>& rows);

}  // namespace corvinade::graphics
