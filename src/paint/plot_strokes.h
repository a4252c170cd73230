// What plots draw on a picture in memory: rules, frames, texts and marks.
#pragma once

#include "core/rooms.h"
#include "graphics/surface.h"

namespace corvinade::paint {

// Fills the functions for plots of a surface whose other ones are those of paint/picture.h.
void FillSurfaceWithPlotStrokes(Surface& screen);

}  // namespace corvinade::paint
