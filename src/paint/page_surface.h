// A surface that keeps what is drawn on it as strokes, for a page of a PDF file: sharp at any size, with text
// that can be selected.
#pragma once

#include <string>

#include "core/rooms.h"
#include "graphics/screen_window.h"

namespace corvinade::paint {

// For the hook of a still picture or a plot.
void FillSurfaceWithPage(Surface& screen);

// A page of that size with the window's strokes and labels, as the bytes of a PDF file. Require: its surface
// was filled by the procedure above, and no other window has been painted since, for small points are taken
// from the scene.
std::string PageOfWindow(const ScreenWindow& window, double width_mm, double height_mm,
                         const std::string& title);

// The same of a plot.
std::string PageOfPlot(const Surface& screen, double width_mm, double height_mm, const std::string& title);

}  // namespace corvinade::paint
