// The colours of the tolerance classes as a bar at the right edge, lowest class at its lower end.
#include <algorithm>
#include <cstddef>

#include "core/numbers.h"
#include "core/window.h"
#include "graphics/drawing.h"
#include "graphics/projection.h"
#include "graphics/strokes.h"
#include "graphics/tolerance.h"

namespace corvinade::graphics {

namespace {

constexpr double kWidestBar = 75;  // pixels kept free at the right edge

struct Bar {
    double Left, Bottom, Thickness;
    int Lines = 0;  // drawn so far, from below
};

// One side of zero: `height` lines shared evenly by its classes.
void DrawClasses(ScreenWindow& window, const ColourTable& table, int count, double height, Bar& bar) {
    const int classes = std::min(count, static_cast<int>(table.Colour.size()) - 1);
    const int lines = count > 0 ? static_cast<int>(Round(height / count)) : 0;
    for (int k = 1; k <= classes; ++k) {
        const auto colour = static_cast<Colour>(table.Colour[static_cast<std::size_t>(k)]);
        for (int line = 0; line < lines; ++line, ++bar.Lines) {
            const double y = bar.Bottom - bar.Lines;
            DrawStroke(window.Screen, {bar.Left, y}, {bar.Left + bar.Thickness, y}, colour, 1);
        }
    }
}

}  // namespace

void Zeichne_ColorBar(ScreenWindow& window) {
    const double W = PictureWidth(window), H = PictureHeight(window);
    const double height = Round(H / 3), thickness = Round(height / 9);
    Bar bar = {Round(W - std::min(Round(W / 7), kWidestBar)), Round((H - 2 * height) * 2.5), thickness};
    const ScreenRecord& state = window.State;
    DrawClasses(window, Tolerance.Negative, state.AnzKlassenNeg, height, bar);
    // The stroke at zero is upright and as a rule lies to the right of the bar.
    const double zero = bar.Left + bar.Lines;
    DrawStroke(window.Screen, {zero, bar.Bottom}, {zero, bar.Bottom + thickness}, QbColor(0), 1);
    DrawClasses(window, Tolerance.Positive, state.AnzKlassenPos, height, bar);

    const auto label = [&](double value, double y) {
        SetLabelToPos(window, FormatNumber(value * LimitFactor(state), "0.00"),
                      static_cast<float>(bar.Left - 1.5 * thickness), static_cast<float>(y - thickness / 2));
    };
    label(state.Min, bar.Bottom);
    label(state.Max, bar.Bottom - 2 * height);
}

}  // namespace corvinade::graphics
