// The bars that tell how long a thousandth, a hundred, a thousand of the shown unit is on the picture.
#include <cmath>
#include <string>

#include "core/job.h"
#include "core/numbers.h"
#include "core/units.h"
#include "core/window.h"
#include "graphics/drawing.h"
#include "graphics/projection.h"
#include "graphics/strokes.h"

namespace corvinade::graphics {

namespace {

constexpr double kLongestBar = 300, kShortestBar = 30;  // pixels
constexpr float kLabelLeft = 200;
constexpr double kBarLeft = 400, kTick = 3;

struct ScaleBar {
    double Length = 0;  // in the shown unit
    double Pixels = 0;
};

bool Fits(double pixels) {
    return pixels >= kShortestBar && pixels <= kLongestBar;
}

// A bar that can be read, found from `start` in steps of ten. Factors that are not above zero or beyond all
// numbers have none.
bool FindBar(double start, double factor, ScaleBar& bar) {
    bar = {start, start / Units.LengthFactor * factor};
    if (!(bar.Pixels > 0) || !std::isfinite(bar.Pixels)) return false;
    while (bar.Pixels > kLongestBar && bar.Length > 0) bar = {bar.Length / 10, bar.Pixels / 10};
    while (bar.Pixels < kShortestBar && std::isfinite(bar.Length)) bar = {bar.Length * 10, bar.Pixels * 10};
    return Fits(bar.Pixels) && bar.Length > 0 && std::isfinite(bar.Length);
}

void DrawBar(ScreenWindow& window, double pixels, double y) {
    const Colour colour = QbColor(9);
    const double end = kBarLeft + pixels;
    DrawStroke(window.Screen, {kBarLeft, y}, {end, y}, colour, 1);
    for (const double x : {kBarLeft, end})
        DrawStroke(window.Screen, {x, y - kTick}, {x, y + kTick}, colour, 1);
}

// `above`: pixels from the lower edge to the top of the label; the bar is five below that.
void DrawScale(ScreenWindow& window, ScreenLabel& label, const char* title, double start, double factor,
               int above) {
    ScaleBar bar;
    label.Visible = FindBar(start, factor, bar);
    if (!label.Visible) return;
    const int height = PictureHeight(window);
    label.ForeColor = QbColor(window.BackColor == QbColor(12) ? 0 : 12);
    label.X = kLabelLeft;
    label.Y = static_cast<float>(height - above);
    label.Text = title + FormatNumber(bar.Length, "0.000") + " " + Job.LengthUnitName;
    DrawBar(window, bar.Pixels, height - above + 5);
}

}  // namespace

void Zeichne_Scale(ScreenWindow& window) {
    DrawScale(window, window.LabelScale, "Scale ", 1000, window.State.BildFaktor, 65);
    window.LabelVectorScale.Visible = false;
    if (IsTrue(window.State.VectorMode))
        DrawScale(window, window.LabelVectorScale, "Scale Vector ", 0.1, window.State.Vec_Maßstab, 95);
}

}  // namespace corvinade::graphics
