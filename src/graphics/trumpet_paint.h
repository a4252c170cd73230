// The trumpet plot, painted: the one picture of it for the window and for files.
#pragma once

#include <cstdint>

#include "analysis/trumpet_plot.h"
#include "core/rooms.h"
#include "graphics/surface.h"

namespace corvinade::graphics {

struct TrumpetColours {
    Colour Ground = 0, Text = 0, Grid = 0, Zero = 0, Frame = 0, Point = 0;
};

// The letters of numbers and titles, and what they measure on the surface; logical pixels.
struct TrumpetLetters {
    TextFont Font;
    double Ascent = 12;  // from the top of a line to the base of its letters
    double Height = 15;  // of a line
};

struct TrumpetLook {
    TrumpetColours Colours;
    TrumpetLetters Letters;
    bool NamePairs = false;    // where they are few: each mark tells its pair, if the surface takes words
    bool NotAllPairs = false;  // said beside the title: the user has cancelled the drawing
};

// More pairs than these are a cloud in which nobody finds one: their marks are set side by side.
inline constexpr std::int64_t kMostTrumpetSpots = 2000;

// Paints ground, grid, numbers, titles and a mark for each pair of the raster.
//   points   those that the raster was made of; pairs of points that are there no more are left out
//   plot     the axes; the surface has the size of its place. Its letters take a line and 12 pixels above the
//            axes, two lines and 15 pixels below them, and 8 pixels beside the numbers at the left
// Reads Job (names and units) and Units. A surface without the functions for plots stays as it is.
void PaintTrumpet(Surface& screen, const DistancePoints& points, const TrumpetPlot& plot,
                  const TrumpetRaster& raster, const TrumpetLook& look);

}  // namespace corvinade::graphics
