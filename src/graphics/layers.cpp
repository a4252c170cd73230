// The layers of a paint above the points.
#include "graphics/drawing.h"
#include "graphics/lines.h"

void DrawLines(ScreenWindow&) {}
void DrawRVectors(ScreenWindow&) {}
void Zeichne_KSGrid(ScreenWindow&) {}
void Zeichne_Quat(ScreenWindow&) {}
void Zeichne_ColorBar(ScreenWindow&) {}
void Zeichne_Kosys(ScreenWindow&) {}
void Zeichne_Scale(ScreenWindow&) {}
void Plot_Number(ScreenWindow&, double, float, float, float, double, Colour) {}
void MenüGraphicsPrint_Command() {}
