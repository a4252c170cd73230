// The lines of the line mode in a picture.
#include "core/window.h"
#include "graphics/lines.h"
#include "graphics/scene.h"

namespace {

constexpr int kLineWidth = 1, kSelectedWidth = 5;  // pixels

bool InScene(int row) {
    return row >= 1 && row <= Scene.Rows;
}

void LineFrom(Surface& screen, int row, float x, float y, Colour colour, int width) {
    const auto from = static_cast<std::size_t>(row);
    screen.Line(screen, Scene.PixelX[from], Scene.PixelY[from], x, y, colour, width);
}

}  // namespace

// Lines of a view that was stored for more points than there are keep their place in the table and are not
// drawn.
void DrawLines(ScreenWindow& window) {
    const ScreenRecord& state = window.State;
    Surface& screen = window.Screen;
    if (screen.Line == nullptr) return;
    const Colour colour = QbColor(9), selected = QbColor(14);
    if (window.SetLine && InScene(state.LineStartRow))
        LineFrom(screen, state.LineStartRow, window.Mouse.X, window.Mouse.Y, colour, kLineWidth);
    for (int line = 1; line <= LineCount(state); ++line) {
        const int first = LineEnd(state, line, 1), second = LineEnd(state, line, 2);
        if (!InScene(first) || !InScene(second)) continue;
        const auto end = static_cast<std::size_t>(second);
        const bool chosen = line == state.SelectedLine;
        LineFrom(screen, first, Scene.PixelX[end], Scene.PixelY[end], chosen ? selected : colour,
                 chosen ? kSelectedWidth : kLineWidth);
    }
}
