// Texts of labels, written letter by letter from images of them, so that ten thousand names cost little.
#pragma once

#include <QImage>
#include <string>

#include "core/rooms.h"
#include "core/text_font.h"

namespace corvinade::paint {

// Writes `text` with its top left corner at (x, y), logical pixels; `scale` pixels of the image to the
// logical one. What lies outside the image is cut off. Nothing around the letters is covered.
//   picture    Format_RGB32
//   colour     as the picture holds it
//   behind     colour of the thin edge that parts the letters from what they stand on
void DrawLabelText(QImage& picture, double scale, float x, float y, const std::string& text,
                   const TextFont& textFont, QRgb colour, QRgb behind);

// The same in a font of its own and without the edge, for texts on a ground of their own.
void DrawFontText(QImage& picture, double scale, float x, float y, const std::string& text, QRgb colour,
                  const TextFont& font);

// The same for titles: set as a whole, its letters standing on y; x is the place of that share of its width,
// 0 its start, 1 its end.
void DrawTextOnLine(QImage& picture, double scale, double x, double y, double share, const std::string& text,
                    QRgb colour, const TextFont& font);

}  // namespace corvinade::paint
