// The distance of two points that are clicked in a picture.
#include "graphics/measuring.h"

#include <cmath>
#include <utility>

#include "core/changes.h"
#include "core/controller.h"
#include "core/job.h"
#include "core/numbers.h"
#include "core/run.h"
#include "core/units.h"
#include "fit/vector.h"
#include "graphics/drawing.h"
#include "graphics/scene.h"

namespace corvinade::graphics {

namespace {

constexpr float kRing = 7;  // radius about a point, pixels

// Places in the scene are kept in 32 bits; a distance has the digits of the job.
Vec3 PointOfRow(int row) {
    if (row <= Scene.Ident) return TransformedPoint(row);
    if (row <= 2 * Scene.Ident) return TargetPoint(row - Scene.Ident);
    if (row <= 2 * Scene.Ident + Scene.MCSOnly) return TransformedPoint(row - Scene.Ident);
    return TargetPoint(row - Scene.Ident - Scene.MCSOnly);
}

bool Stands(const ScreenWindow& window) {
    return window.Measure.On && window.Measure.JobGeneration == Run.JobGeneration;
}

bool IsRow(int row) {
    return row >= 1 && row <= Scene.Rows;
}

std::string Length(double value_mm) {
    return FormatNumber(value_mm * Units.LengthFactor, Units.FmtLength);
}

Colour ColourOn(Colour background) {
    const int brightness = (background & 0xff) + (background >> 8 & 0xff) + (background >> 16 & 0xff);
    return brightness > 3 * 255 / 2 ? Rgb(170, 0, 120) : Rgb(255, 220, 80);
}

}  // namespace

void ToggleMeasuring(ScreenWindow& window) {
    window.Measure = {.On = !window.Measure.On, .JobGeneration = Run.JobGeneration};
    SetStatus(1, window.Measure.On ? "Distance: click the first point" : "");
    Changed(What::State);
    Stelle_Grafik_dar(window);
}

bool MeasureClicked(ScreenWindow& window, int row) {
    if (!window.Measure.On) return false;
    if (!IsRow(row)) return true;
    const bool second = Stands(window) && window.Measure.From != 0 && window.Measure.To == 0;
    if (second && row != window.Measure.From)
        window.Measure.To = row;
    else
        window.Measure = {.On = true, .From = row, .JobGeneration = Run.JobGeneration};
    const std::string text = MeasuredText(window);
    SetStatus(1, text.empty() ? "Distance from " + ScenePointName(row) + ": click the second point" : text);
    Stelle_Grafik_dar(window);
    return true;
}

std::string MeasuredText(const ScreenWindow& window) {
    const auto& [on, from, to, generation] = window.Measure;
    if (!Stands(window) || !IsRow(from) || !IsRow(to)) return "";
    const Vec3 a = PointOfRow(from), b = PointOfRow(to);
    const double dx = b(1) - a(1), dy = b(2) - a(2), dz = b(3) - a(3);
    return ScenePointName(from) + " to " + ScenePointName(to) + ": " + Length(Hypot3(dx, dy, dz)) + " " +
           Job.LengthUnitName + " (dx " + Length(dx) + ", dy " + Length(dy) + ", dz " + Length(dz) + ")";
}

void DrawMeasured(ScreenWindow& window) {
    if (!Stands(window) || !IsRow(window.Measure.From)) return;
    const auto place = [](int row) {
        const auto i = static_cast<std::size_t>(row);
        return std::pair{Scene.PixelX[i], Scene.PixelY[i]};
    };
    Surface& screen = window.Screen;
    const Colour colour = ColourOn(window.BackColor);
    const auto ring = [&](int row) {
        const auto [x, y] = place(row);
        if (screen.Circle != nullptr) screen.Circle(screen, x, y, kRing, colour, kNoFill, 2);
    };
    ring(window.Measure.From);
    if (!IsRow(window.Measure.To)) return;
    ring(window.Measure.To);
    const auto [x1, y1] = place(window.Measure.From);
    const auto [x2, y2] = place(window.Measure.To);
    if (screen.Line != nullptr) screen.Line(screen, x1, y1, x2, y2, colour, 2);
    const Vec3 a = PointOfRow(window.Measure.From), b = PointOfRow(window.Measure.To);
    const double length = Hypot3(b(1) - a(1), b(2) - a(2), b(3) - a(3));
    if (std::isfinite(x1 + x2 + y1 + y2))
        SetLabelToPos(window, Length(length) + " " + Job.LengthUnitName, (x1 + x2) / 2 + kRing,
                      (y1 + y2) / 2);
}

}  // namespace corvinade::graphics
