// The pictures of the graphics windows as images.
#pragma once

#include <QImage>

#include "core/rooms.h"
#include "graphics/screen_window.h"

namespace corvinade::paint {

// The picture alone, without labels, as the window last painted it; it shares the surface's memory. A null
// image for a surface that something else filled.
QImage BarePictureOf(const ScreenWindow& window);
QImage BarePictureOf(const Surface& screen);

// A copy with all labels on it, as a user sees the window.
QImage PictureOf(const ScreenWindow& window);
// The same into an image that keeps its memory from one paint to the next.
void PictureInto(QImage& picture, const ScreenWindow& window);

}  // namespace corvinade::paint
