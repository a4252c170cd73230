// What stands behind a surface that FillSurfaceWithPicture has filled: for the strokes of paint/ alone.
#pragma once

#include <QImage>
#include <QPainter>

#include "core/rooms.h"
#include "graphics/surface.h"

namespace corvinade::paint {

constexpr int kLargestSide = 32767;  // pixels of the device; QPainter counts no further

struct Picture {
    QImage Image;
    QPainter Painter;       // open from the first stroke of a paint to its end
    Colour Background = 0;  // what it was last cleared to
    Colour PenColour = kNoFill;
    int PenWidth = 0;
};

inline Picture& PictureBehind(Surface& screen) {
    return *static_cast<Picture*>(screen.Own);
}

inline QRgb RgbOf(Colour colour) {
    return PixelOf(colour);
}

// At Scale 1 it draws in whole pixels, otherwise softly, with (0, 0) in the middle of the first logical
// pixel.
QPainter& OpenPainter(const Surface& screen, Picture& picture);

}  // namespace corvinade::paint
