// What a graphics window draws on: a picture that keeps its content until it is cleared. The point loop
// writes pixels straight into it; lines, circles and texts are drawn by whoever fills this table of
// functions. The origin is the top left corner, y runs down.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "core/rooms.h"
#include "core/text_font.h"

namespace corvinade::graphics {

// Colours are RGB with red in the low byte everywhere but in the picture itself.
using Colour = std::int32_t;

// Shares from 0 to 255.
constexpr Colour Rgb(int red, int green, int blue) {
    return red | green << 8 | blue << 16;
}

// The same colour as the picture holds it: 0xffRRGGBB.
constexpr std::uint32_t PixelOf(Colour colour) {
    const auto c = static_cast<std::uint32_t>(colour);
    return 0xff000000U | (c & 0xffU) << 16U | (c & 0xff00U) | (c >> 16U & 0xffU);
}

enum class TextAnchor : std::uint8_t { Start, Middle, End };

// Marks without a gap, from the middle of the first one at (X, Y) to that of the last one.
struct SpotRow {
    double X = 0, Y = 0, Length = 0;
};

struct Surface {
    int Width = 0, Height = 0;  // logical pixels: what all coordinates count in
    int StatusBarHeight = 0;    // rows at the lower edge that a status bar hides

    // The picture, in pixels of the device: Scale of them to the logical pixel. Null: nothing is kept, and
    // points leave no trace.
    double Scale = 1;
    int PixelWidth = 0, PixelHeight = 0;
    std::ptrdiff_t Stride = 0;  // pixels from row to row
    std::uint32_t* Pixels = nullptr;

    // Null functions do nothing.
    void (*Clear)(Surface&, Colour background) = nullptr;
    void (*Line)(Surface&, float x1, float y1, float x2, float y2, Colour colour, int width) = nullptr;
    // Outline `width` wide; filled with `fill` unless that is kNoFill.
    void (*Circle)(Surface&, float x, float y, float radius, Colour colour, Colour fill, int width) = nullptr;
    // Writes a text into the picture, its top left corner at (x, y); for pictures that leave the window with
    // their labels.
    void (*Text)(Surface&, float x, float y, const std::string& text, Colour colour) = nullptr;
    TextFont Font;  // of the texts that are written from now on
    // A rectangle of one colour.
    void (*Fill)(Surface&, float x, float y, float width, float height, Colour colour) = nullptr;
    // A text on a ground of its own: letters alone, its top left corner at (x, y).
    void (*FontText)(Surface&, float x, float y, const std::string& text, Colour colour,
                     const TextFont& font) = nullptr;
    double (*FontWidth)(const TextFont& font, const std::string& text) = nullptr;  // pixels
    double (*FontHeight)(const TextFont& font) = nullptr;                          // of a line, pixels

    // Of plots. Their places count from the left and upper edge of the picture, in parts of pixels: a whole
    // number is the border between two of them.
    // The finest line, along a row or a column.
    void (*Rule)(Surface&, double x1, double y1, double x2, double y2, Colour colour) = nullptr;
    void (*Frame)(Surface&, double left, double top, double right, double bottom, Colour colour) = nullptr;
    // A text whose letters stand on y and begin at x, have their middle there, or end there.
    void (*LineText)(Surface&, double x, double y, TextAnchor anchor, const std::string& text, Colour colour,
                     const TextFont& font) = nullptr;
    // A round mark without an outline. `words` are for a reader's mouse; a picture has no place for them.
    void (*Spot)(Surface&, double x, double y, double radius, Colour colour,
                 const std::string& words) = nullptr;
    // Marks of one size side by side, in rows.
    void (*Spots)(Surface&, std::span<const SpotRow> rows, double radius, Colour colour) = nullptr;

    // Tells that the picture has changed and may be shown.
    void (*Refresh)(Surface&) = nullptr;
    void (*Close)(Surface&) = nullptr;  // frees what stands behind the table

    void* Own = nullptr;  // belongs to whoever filled the table
};
inline constexpr Colour kNoFill = -1;

}  // namespace corvinade::graphics
