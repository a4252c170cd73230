// Points under the mouse.
#pragma once

#include "core/rooms.h"
#include "graphics/screen_window.h"

namespace corvinade::graphics {

// Brings the scene and its pixel tables to those of this window, where another one has computed since.
void PixelsForWindow(ScreenWindow& window);

// The nearest plotted row at any distance, the first of several; 0 = none is plotted. An OCS point of a pair
// gives its pair's first row. Takes the distances between the pixels of 32 bits in 64 bits.
int Search_Point_Index(ScreenWindow& window, float x, float y);

// Is the pixel of a row clear of the picture's right and lower edge and of the status bar? Reads the pixel
// tables as they stand. Require: the row exists.
bool PixelWithinScreen(const ScreenWindow& window, int row);

// The line of the main sheet that shows a row of the scene, 0 = none or the sheet is closed.
int IndexMainSheet(int row);

// Makes a row of the scene the actual point: the cursor of the main sheet goes to its line, a rotation about
// a point will be about it.
void TakeActualPoint(int row);

// Makes an identical point the actual one, by its number, and paints all pictures; nothing where there is
// none.
void SetActivePoint(int point);
// The same for a row of the main sheet as it was filled, also of a point without a partner.
void SetActiveSheetRow(int filledRow);

// Puts the main sheet's cursor point into the pictures of all windows; that of `first`, which may be null,
// before the others.
void DrawActualPoint(ScreenWindow* first = nullptr);

}  // namespace corvinade::graphics
