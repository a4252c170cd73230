// Points under the mouse.
#pragma once

#include "graphics/screen_window.h"

// The nearest plotted row (0 = none is plotted). An OCS point of a pair gives its pair's first row.
int Search_Point_Index(const ScreenWindow& window, float x, float y);
bool PixelWithinScreen(const ScreenWindow& window, int row);
int IndexMainSheet(int row);  // the line of the main sheet that shows the row, 0 = none
void DrawActualPoint();       // puts the main sheet's cursor point into the pictures
