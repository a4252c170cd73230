// The paint of a graphics window, layer by layer, from nothing.
#pragma once

#include <string>

#include "core/rooms.h"
#include "graphics/screen_window.h"

namespace corvinade::graphics {

void Stelle_Grafik_dar(ScreenWindow& window);  // in its look
// Names would be written again for every step of a move: it goes without them.
void PaintWhileMoving(ScreenWindow& window);

void DrawRVectors(ScreenWindow& window);
void Zeichne_KSGrid(ScreenWindow& window);
void Zeichne_Quat(ScreenWindow& window);
void Zeichne_ColorBar(ScreenWindow& window);
// Where the bar with its texts begins, from the left, pixels.
double ColorBarLeft(const ScreenWindow& window);
void Zeichne_Kosys(ScreenWindow& window);
void Zeichne_Kosys(ScreenWindow& window, bool labels);
void Zeichne_Scale(ScreenWindow& window);
// Writes a number with lines, turned by `angle` degrees, in the job's length format.
void Plot_Number(ScreenWindow& window, double value, float x, float y, float size, double angle,
                 Colour colour);
double NumberLength(double value, float size);  // of what that writes, pixels
// Brighter than half of white.
bool IsLight(Colour background);
// Adds a label when its place is in the picture.
void SetLabelToPos(ScreenWindow& window, const std::string& text, float x, float y);
void MenüGraphicsPrint_Command();  // the picture to the clipboard

}  // namespace corvinade::graphics
