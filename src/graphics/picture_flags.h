// Flags on a picture without a screen.
#pragma once

#include "core/rooms.h"
#include "graphics/screen_window.h"

namespace corvinade::graphics {

// Gives the pairs with the largest deviations flags that tell of them. Require: the window has been painted.
//   count   how many at most; Require: no more than there can be
// Gives how many of them have none: the picture has room for the worst alone.
int FlagWorstPairs(ScreenWindow& window, int count);

// The flags of a saved view about the middle of the picture, as its points are: `ratio` is that of the sizes
// of picture and view, which was `width` by `height` pixels.
void PlaceFlagsOfView(ScreenWindow& window, double width, double height, double ratio);

}  // namespace corvinade::graphics
