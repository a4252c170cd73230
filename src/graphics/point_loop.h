// The points of a paint: squares written straight into the picture, discs, names, vectors.
#pragma once

#include "core/rooms.h"
#include "graphics/screen_window.h"

namespace corvinade::graphics {

// How big a point is by its depth; off: all points have the window's BigNess.
struct DepthSize {
    bool On = false;
    float Factor = 0;  // pixels per pixel of depth above the lowest
};

void DrawPoints(ScreenWindow& window, const DepthSize& depth);  // in the window's look
void DrawPoints(ScreenWindow& window, const DepthSize& depth, bool names);

void DrawWorstPoint(ScreenWindow& window);  // again, larger; nothing where Tolerance.Worst is 0 or not seen

// A square of 2 r + 1 logical pixels about (x, y), as far as it lies in the picture. `colour` as the picture
// holds it. Require: the surface keeps pixels.
void PaintSquare(Surface& screen, float x, float y, int r, std::uint32_t colour);

// Half the side of the square of a point of size `bigness` that is painted by single pixels: a side has
// 2 r + 1 of them.
int SquareRadius(double bigness);
inline constexpr int kLargestSquare = 3;  // BigNess; above it points are discs

}  // namespace corvinade::graphics
