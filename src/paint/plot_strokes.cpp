// What plots draw on a picture in memory. Rules and rows of marks are written straight into its pixels.
#include "paint/plot_strokes.h"

#include <algorithm>
#include <cmath>

#include "paint/label_text.h"
#include "paint/painted_surface.h"

namespace corvinade::paint {

namespace {

// A pixel of the device, kept to a range that sums and products of pixels fit in.
int PixelAt(double place) {
    constexpr double kFar = 1e6;
    return static_cast<int>(std::clamp(place, -kFar, kFar));
}

void EndPainter(Surface& screen) {
    Picture& picture = PictureBehind(screen);
    if (picture.Painter.isActive()) picture.Painter.end();
}

// Columns from `left` up to `right` in the rows from `top` up to `bottom`, as far as they are in the picture.
void FillPixels(Surface& screen, int left, int top, int right, int bottom, std::uint32_t pixel) {
    left = std::clamp(left, 0, screen.PixelWidth);
    right = std::clamp(right, left, screen.PixelWidth);
    bottom = std::min(bottom, screen.PixelHeight);
    for (int row = std::max(top, 0); row < bottom; ++row)
        std::fill_n(screen.Pixels + row * screen.Stride + left, right - left, pixel);
}

// The pixel that holds a place.
int PixelOfPlace(const Surface& screen, double place) {
    constexpr double kRounding = 1e-6;  // pixels; a place on the border of two is in the second one
    return PixelAt(std::floor(place * screen.Scale + kRounding));
}

void DrawRule(Surface& screen, double x1, double y1, double x2, double y2, Colour colour) {
    if (!std::isfinite(x1 + y1 + x2 + y2)) return;
    EndPainter(screen);
    FillPixels(screen, PixelOfPlace(screen, std::min(x1, x2)), PixelOfPlace(screen, std::min(y1, y2)),
               PixelOfPlace(screen, std::max(x1, x2)) + 1, PixelOfPlace(screen, std::max(y1, y2)) + 1,
               PixelOf(colour));
}

void DrawFrame(Surface& screen, double left, double top, double right, double bottom, Colour colour) {
    DrawRule(screen, left, top, right, top, colour);
    DrawRule(screen, left, bottom, right, bottom, colour);
    DrawRule(screen, left, top, left, bottom, colour);
    DrawRule(screen, right, top, right, bottom, colour);
}

void DrawLineText(Surface& screen, double x, double y, TextAnchor anchor, const std::string& text,
                  Colour colour, const TextFont& font) {
    EndPainter(screen);
    const double share = anchor == TextAnchor::Start ? 0 : anchor == TextAnchor::Middle ? 0.5 : 1;
    DrawTextOnLine(PictureBehind(screen).Image, screen.Scale, x, y, share, text, RgbOf(colour), font);
}

// Softly at its very place, at every scale.
void DrawSpot(Surface& screen, double x, double y, double radius, Colour colour,
              const std::string& /*words*/) {
    // Also false where one of them is no number.
    const bool near =
        x >= -radius && x <= screen.Width + radius && y >= -radius && y <= screen.Height + radius;
    if (!near || !(radius >= 0 && radius <= kLargestSide)) return;
    Picture& picture = PictureBehind(screen);
    QPainter& painter = OpenPainter(screen, picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(RgbOf(colour)));
    const double half =
        screen.Scale == 1 ? 0 : 0.5;  // by which the painter counts from the middle of a pixel
    painter.drawEllipse(QPointF(x - half, y - half), radius, radius);
    // The next stroke sets its own.
    picture.PenWidth = 0;
    painter.setRenderHint(QPainter::Antialiasing, screen.Scale != 1);
}

// Each mark a square of pixels of the device, without its corners.
void DrawSpots(Surface& screen, std::span<const SpotRow> rows, double radius, Colour colour) {
    if (!(radius >= 0 && radius <= kLargestSide)) return;
    EndPainter(screen);
    const int r = static_cast<int>(std::lround(radius * screen.Scale));
    const std::uint32_t pixel = PixelOf(colour);
    for (const SpotRow& row : rows) {
        if (!std::isfinite(row.X + row.Y + row.Length)) continue;
        const int first = PixelOfPlace(screen, row.X);
        const int last = first + PixelAt(std::round(row.Length * screen.Scale));
        const int y = PixelOfPlace(screen, row.Y);
        FillPixels(screen, first - r, y - r + 1, last + r + 1, y + r, pixel);
        const int half = std::max(r - 1, 0);
        FillPixels(screen, first - half, y - r, last + half + 1, y - r + 1, pixel);
        FillPixels(screen, first - half, y + r, last + half + 1, y + r + 1, pixel);
    }
}

}  // namespace

void FillSurfaceWithPlotStrokes(Surface& screen) {
    screen.Rule = DrawRule;
    screen.Frame = DrawFrame;
    screen.LineText = DrawLineText;
    screen.Spot = DrawSpot;
    screen.Spots = DrawSpots;
}

}  // namespace corvinade::paint
