// The layer of the lines between points.
#include "core/window.h"
#include "graphics/lines.h"
#include "graphics/scene.h"
#include "graphics/strokes.h"

namespace corvinade::graphics {

namespace {

constexpr int kLineColour = 9, kSelectedColour = 14;
constexpr int kSelectedWidth = 5;

// A view of another job may name rows that this one has not.
bool IsRow(int row) {
    return row >= 1 && row <= Scene.Rows;
}

PicturePoint PlaceOfRow(int row) {
    const auto place = static_cast<std::size_t>(row);
    return {Scene.PixelX[place], Scene.PixelY[place]};
}

}  // namespace

void DrawLines(ScreenWindow& window) {
    const ScreenRecord& state = window.State;
    if (window.SetLine && IsRow(state.LineStartRow))
        DrawStroke(window.Screen, PlaceOfRow(state.LineStartRow), {window.Mouse.X, window.Mouse.Y},
                   QbColor(kLineColour), 1);
    for (int line = 1; line <= LineCount(state); ++line) {
        const int from = LineEnd(state, line, 1), to = LineEnd(state, line, 2);
        if (!IsRow(from) || !IsRow(to)) continue;
        const bool selected = line == state.SelectedLine;
        DrawStroke(window.Screen, PlaceOfRow(from), PlaceOfRow(to),
                   QbColor(selected ? kSelectedColour : kLineColour), selected ? kSelectedWidth : 1);
    }
}

}  // namespace corvinade::graphics
