// A surface that writes what is drawn on it as SVG.
#include "paint/svg_surface.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>

#include "fit/require.h"
#include "graphics/point_loop.h"
#include "graphics/scene.h"
#include "paint/picture.h"
#include "paint/svg_element.h"

namespace corvinade::paint {

namespace {

constexpr double kMargin = 20;  // pixels around the picture that are still written
constexpr const char* kFamilies = "'DejaVu Sans', Arial, sans-serif";

struct SvgSheet {
    std::string Strokes;
    Colour Background = 0;
};

SvgSheet& SheetOf(const Surface& screen) {
    return *static_cast<SvgSheet*>(screen.Own);
}

std::string Hex(Colour colour) {
    return SvgColour(PixelOf(colour));
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

// The last attributes of lines and circles.
void Outline(SvgElement& element, Colour colour, int width) {
    element.Word("stroke", Hex(colour));
    if (width > 1) element.Number("stroke-width", width);
    element.Empty("\n");
}

void DrawLine(Surface& screen, float x1, float y1, float x2, float y2, Colour colour, int width) {
    std::array<double, 4> line = {x1, y1, x2, y2};
    if (!CutLine(screen, line)) return;
    SvgElement element(SheetOf(screen).Strokes, "line");
    element.Number("x1", line[0]).Number("y1", line[1]).Number("x2", line[2]).Number("y2", line[3]);
    Outline(element, colour, width);
}

void DrawCircle(Surface& screen, float x, float y, float radius, Colour colour, Colour fill, int width) {
    const double reach = static_cast<double>(radius) + width + kMargin;
    const bool near = x >= -reach && x <= screen.Width + reach && y >= -reach && y <= screen.Height + reach;
    if (!near || !std::isfinite(reach)) return;
    SvgElement element(SheetOf(screen).Strokes, "circle");
    element.Number("cx", x).Number("cy", y).Number("r", radius);
    element.Word("fill", fill == kNoFill ? "none" : Hex(fill));
    Outline(element, colour, width);
}

void AddText(std::string& svg, float x, float y, const std::string& text, Colour colour) {
    constexpr double kAscent = 11;  // of the letters, from the top of the text to its base line
    SvgElement(svg, "text")
        .Number("x", x)
        .Number("y", y + kAscent)
        .Word("fill", Hex(colour))
        .Holds(text, "\n");
}

void DrawText(Surface& screen, float x, float y, const std::string& text, Colour colour) {
    AddText(SheetOf(screen).Strokes, x, y, text, colour);
}

void FillRectangle(Surface& screen, float x, float y, float width, float height, Colour colour) {
    const bool near = x <= screen.Width && y <= screen.Height && x + width >= 0 && y + height >= 0;
    if (!near || !(width > 0) || !(height > 0)) return;
    // The sheet is shifted by half a pixel, for lines.
    SvgElement(SheetOf(screen).Strokes, "rect")
        .Number("x", x - 0.5)
        .Number("y", y - 0.5)
        .Number("width", width)
        .Number("height", height)
        .Word("fill", Hex(colour))
        .Word("stroke", "none")
        .Empty("\n");
}

void DrawTextInFont(Surface& screen, float x, float y, const std::string& text, Colour colour,
                    const TextFont& font) {
    const bool near = x <= screen.Width && y <= screen.Height && x >= -1000 && y >= -1000;
    if (!near) return;
    const double pixels = font.Size * 96 / 72;
    constexpr double kAscent = 0.93;  // of the letters' size, from the top of the text to its base line
    SvgElement element(SheetOf(screen).Strokes, "text");
    element.Number("x", x).Number("y", y + kAscent * pixels);
    element.Word("font-family", "'" + EscapeMarkup(font.Name) + "', " + kFamilies)
        .Number("font-size", pixels);
    if (font.Bold) element.Word("font-weight", "bold");
    if (font.Italic) element.Word("font-style", "italic");
    const std::string under = font.Underline ? "underline" : "",
                      through = font.Strikethrough ? "line-through" : "";
    if (font.Underline || font.Strikethrough)
        element.Word("text-decoration", under + (font.Underline && font.Strikethrough ? " " : "") + through);
    element.Word("fill", Hex(colour)).Holds(text, "\n");
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
        if (Scene.Paint[row] != last) {
            if (last != 0) EndPath(text);
            SvgElement(text, "path").Word("fill", SvgColour(Scene.Paint[row])).BeginsPath();
        }
        last = Scene.Paint[row];
        text += "M" + SvgNumber(std::nearbyint(x) - r - 0.5) + " " + SvgNumber(std::nearbyint(y) - r - 0.5) +
                square;
    }
    if (last != 0) EndPath(text);
    return text;
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
    std::string svg;
    BeginSvg(svg, window.Screen.Width, window.Screen.Height, title, inPage);
    const std::string ground = Hex(sheet.Background);
    SvgElement(svg, "rect").Word("width", "100%").Word("height", "100%").Word("fill", ground).Empty("\n");
    SvgElement(svg, "g").Word("transform", "translate(0.5 0.5)").Number("stroke-width", 1).Opens("\n");
    svg += SmallPoints(window) + sheet.Strokes + "</g>\n";
    // Letters stand out from what they lie on.
    SvgElement(svg, "g")
        .Word("font-family", kFamilies)
        .Number("font-size", 12)
        .Word("paint-order", "stroke")
        .Word("stroke", ground)
        .Number("stroke-width", 2)
        .Word("stroke-linejoin", "round")
        .Opens("\n");
    for (const ScreenLabel& label : window.Labels)
        if (label.Visible) AddText(svg, label.X, label.Y, label.Text, label.ForeColor);
    for (const ScreenLabel* label : {&window.LabelScale, &window.LabelVectorScale})
        if (label->Visible && !label->Text.empty())
            AddText(svg, label->X, label->Y, label->Text, label->ForeColor);
    return svg + "</g>\n</svg>\n";
}

}  // namespace corvinade::paint
