// The distance of two points that are clicked in a picture.
#pragma once

#include <string>

#include "core/rooms.h"
#include "graphics/screen_window.h"

namespace corvinade::graphics {

// Turns measuring on, or off with what was measured. Repaints.
void ToggleMeasuring(ScreenWindow& window);

// A click on a row of the scene, 0 = none: the first point, or the second one, with which the distance is
// told; a third begins anew. False where the window does not measure.
bool MeasureClicked(ScreenWindow& window, int row);

// "A to B: 12.345 millimeter (dx 1.000, dy 2.000, dz 3.000)" of the two points as the result has put them; ""
// while there are not two. Reads Job and Units.
std::string MeasuredText(const ScreenWindow& window);

// The line between them with its length. Pixel tables are those of the window.
void DrawMeasured(ScreenWindow& window);

}  // namespace corvinade::graphics
