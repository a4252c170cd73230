// A surface that writes what is drawn on it as SVG.
#include "cli/svg_surface.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <memory>

#include "cli/svg_plots.h"
#include "fit/require.h"
#include "graphics/point_loop.h"
#include "graphics/scene.h"
#include "paint/picture.h"

namespace {

constexpr double kMargin = 20;  // pixels around the picture that are still written

struct SvgSheet {
    std::string Strokes;
    Colour Background = 0;
};

SvgSheet& SheetOf(const Surface& screen) {
    return *static_cast<SvgSheet*>(screen.Own);
}

std::string Hex(std::uint32_t pixel) {
    char text[16];
    std::snprintf(text, sizeof text, "#%06x", pixel & 0xffffffU);
    return text;
}
std::string Hex(Colour colour) {
    return Hex(PixelOf(colour));
}

// Cuts a line to the picture and its margin. False where nothing of it is there.
bool CutLine(const Surface& screen, std::array<double, 4>& line) {
    for (const double place : line)
        if (!std::isfinite(place)) return false;
    const std::array<double, 4> whole = line;
    double from = 0, to = 1;
    for (std::size_t axis = 0; axis < 2; ++axis) {
        const double start = whole[axis], way = whole[axis + 2] - start;
        const double room = (axis == 0 ? screen.Width : screen.Height) + kMargin;
        if (way == 0) {
            if (start < -kMargin || start > room) return false;
            continue;
        }
        const double a = (-kMargin - start) / way, b = (room - start) / way;
        from = std::max(from, std::min(a, b));
        to = std::min(to, std::max(a, b));
    }
    if (from > to) return false;
    for (std::size_t axis = 0; axis < 2; ++axis) {
        const double start = whole[axis], way = whole[axis + 2] - start;
        line[axis] = start + from * way;
        line[axis + 2] = start + to * way;
    }
    return true;
}

void Clear(Surface& screen, Colour background) {
    SheetOf(screen) = {"", background};
}

void DrawLine(Surface& screen, float x1, float y1, float x2, float y2, Colour colour, int width) {
    std::array<double, 4> line = {x1, y1, x2, y2};
    if (!CutLine(screen, line)) return;
    SheetOf(screen).Strokes += "<line x1=\"" + SvgNumber(line[0]) + "\" y1=\"" + SvgNumber(line[1]) +
                               "\" x2=\"" + SvgNumber(line[2]) + "\" y2=\"" + SvgNumber(line[3]) +
                               "\" stroke=\"" + Hex(colour) +
                               (width > 1 ? "\" stroke-width=\"" + std::to_string(width) : "") + "\"/>\n";
}

void DrawCircle(Surface& screen, float x, float y, float radius, Colour colour, Colour fill, int width) {
    const double reach = static_cast<double>(radius) + width + kMargin;
    const bool near = x >= -reach && x <= screen.Width + reach && y >= -reach && y <= screen.Height + reach;
    if (!near || !std::isfinite(reach)) return;
    SheetOf(screen).Strokes += "<circle cx=\"" + SvgNumber(x) + "\" cy=\"" + SvgNumber(y) + "\" r=\"" +
                               SvgNumber(radius) + "\" fill=\"" + (fill == kNoFill ? "none" : Hex(fill)) +
                               "\" stroke=\"" + Hex(colour) +
                               (width > 1 ? "\" stroke-width=\"" + std::to_string(width) : "") + "\"/>\n";
}

std::string TextElement(float x, float y, const std::string& text, Colour colour) {
    constexpr double kAscent = 11;  // of the letters, from the top of the text to its base line
    return "<text x=\"" + SvgNumber(x) + "\" y=\"" + SvgNumber(y + kAscent) + "\" fill=\"" + Hex(colour) +
           "\">" + EscapeMarkup(text) + "</text>\n";
}

void DrawText(Surface& screen, float x, float y, const std::string& text, Colour colour) {
    SheetOf(screen).Strokes += TextElement(x, y, text, colour);
}

void FillRectangle(Surface& screen, float x, float y, float width, float height, Colour colour) {
    const bool near = x <= screen.Width && y <= screen.Height && x + width >= 0 && y + height >= 0;
    if (!near || !(width > 0) || !(height > 0)) return;
    // The sheet is shifted by half a pixel, for lines.
    SheetOf(screen).Strokes += "<rect x=\"" + SvgNumber(x - 0.5) + "\" y=\"" + SvgNumber(y - 0.5) +
                               "\" width=\"" + SvgNumber(width) + "\" height=\"" + SvgNumber(height) +
                               "\" fill=\"" + Hex(colour) + "\" stroke=\"none\"/>\n";
}

void DrawTextInFont(Surface& screen, float x, float y, const std::string& text, Colour colour,
                    const TextFont& font) {
    const bool near = x <= screen.Width && y <= screen.Height && x >= -1000 && y >= -1000;
    if (!near) return;
    const double pixels = font.Size * 96 / 72;
    std::string look;
    if (font.Bold) look += " font-weight=\"bold\"";
    if (font.Italic) look += " font-style=\"italic\"";
    if (font.Underline || font.Strikethrough)
        look += std::string(" text-decoration=\"") + (font.Underline ? "underline" : "") +
                (font.Underline && font.Strikethrough ? " " : "") +
                (font.Strikethrough ? "line-through" : "") + "\"";
    constexpr double kAscent = 0.93;  // of the letters' size, from the top of the text to its base line
    SheetOf(screen).Strokes +=
        "<text x=\"" + SvgNumber(x) + "\" y=\"" + SvgNumber(y + kAscent * pixels) + "\" font-family=\"'" +
        EscapeMarkup(font.Name) + "', 'DejaVu Sans', Arial, sans-serif\" font-size=\"" + SvgNumber(pixels) +
        "\"" + look + " fill=\"" + Hex(colour) + "\">" + EscapeMarkup(text) + "</text>\n";
}

void Close(Surface& screen) {
    const std::unique_ptr<SvgSheet> gone(static_cast<SvgSheet*>(screen.Own));
    screen = Surface{};
}

// Points that a picture would set pixel by pixel: squares, those of one colour in a row as one path.
std::string SmallPoints(const ScreenWindow& window) {
    if (window.State.BigNess > kLargestSquare) return "";
    const int r = SquareRadius(window.State.BigNess);
    const std::string side = std::to_string(2 * r + 1);
    const std::string square = "h" + side + "v" + side + "h-" + side + "z";
    std::string text;
    std::uint32_t last = 0;
    for (std::size_t row = 1; row <= static_cast<std::size_t>(Scene.Rows) && row < Scene.Paint.size();
         ++row) {
        const double x = Scene.PixelX[row], y = Scene.PixelY[row];
        const bool near = x >= -kMargin && x <= window.Screen.Width + kMargin && y >= -kMargin &&
                          y <= window.Screen.Height + kMargin;
        if (Scene.Paint[row] == 0 || !near) continue;
        if (Scene.Paint[row] != last)
            text += (last == 0 ? "<path fill=\"" : "\"/>\n<path fill=\"") + Hex(Scene.Paint[row]) + "\" d=\"";
        last = Scene.Paint[row];
        text += "M" + SvgNumber(std::nearbyint(x) - r - 0.5) + " " + SvgNumber(std::nearbyint(y) - r - 0.5) +
                square;
    }
    return last == 0 ? "" : text + "\"/>\n";
}

}  // namespace

void FillSurfaceWithSvg(Surface& screen) {
    screen.Clear = Clear;
    screen.Line = DrawLine;
    screen.Circle = DrawCircle;
    screen.Text = DrawText;
    screen.Fill = FillRectangle;
    screen.FontText = DrawTextInFont;
    screen.FontWidth = FontTextWidth;
    screen.FontHeight = FontTextHeight;
    screen.Close = Close;
    screen.Own = std::make_unique<SvgSheet>().release();
}

std::string SvgOfWindow(const ScreenWindow& window, const std::string& title, bool inPage) {
    Require(window.Screen.Close == Close);
    const SvgSheet& sheet = SheetOf(window.Screen);
    const std::string width = std::to_string(window.Screen.Width);
    const std::string height = std::to_string(window.Screen.Height);
    std::string svg = inPage ? "<svg" : "<svg xmlns=\"http://www.w3.org/2000/svg\"";
    svg += " width=\"" + width + "\" height=\"" + height + "\" viewBox=\"0 0 " + width + " " + height +
           "\" role=\"img\" aria-label=\"" + EscapeMarkup(title) + "\">\n<title>" + EscapeMarkup(title) +
           "</title>\n<rect width=\"100%\" height=\"100%\" fill=\"" + Hex(sheet.Background) +
           "\"/>\n<g transform=\"translate(0.5 0.5)\" stroke-width=\"1\">\n" + SmallPoints(window) +
           sheet.Strokes + "</g>\n";
    // Letters stand out from what they lie on.
    svg +=
        "<g font-family=\"'DejaVu Sans', Arial, sans-serif\" font-size=\"12\" paint-order=\"stroke\" stroke=\"" +
        Hex(sheet.Background) + "\" stroke-width=\"2\" stroke-linejoin=\"round\">\n";
    for (const ScreenLabel& label : window.Labels)
        if (label.Visible) svg += TextElement(label.X, label.Y, label.Text, label.ForeColor);
    for (const ScreenLabel* label : {&window.LabelScale, &window.LabelVectorScale})
        if (label->Visible && !label->Text.empty())
            svg += TextElement(label->X, label->Y, label->Text, label->ForeColor);
    return svg + "</g>\n</svg>\n";
}
