// What plots draw on a picture in memory: rules, frames, texts and marks.
#pragma once

#include "graphics/surface.h"

// Fills the functions for plots of a surface whose other ones are those of paint/picture.h.
void FillSurfaceWithPlotStrokes(Surface& screen);
