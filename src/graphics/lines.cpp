// The lines between points of the line mode.
#include "graphics/lines.h"

void DrawLines(ScreenWindow&) {}
