// The grid of the world system: up to three planes of lines at whole multiples of their spacings.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <numbers>

#include "core/desktop_defaults.h"
#include "core/numbers.h"
#include "core/units.h"
#include "core/window.h"
#include "graphics/drawing.h"
#include "graphics/projection.h"
#include "graphics/scene.h"
#include "graphics/strokes.h"

namespace corvinade::graphics {

namespace {

constexpr double kLeastDistance = 2;  // pixels from line to line; closer ones are left out
constexpr double kNumberTop = 10;     // where a steep line gets its number: this far down
constexpr double kNumberLeft = 50;    // and a flat one: this far to the right
constexpr float kNumberSize = 1;

struct GridLook {
    std::array<double, 3> Spacing{};     // mm, 0 = no lines
    std::array<double, 3> Middle{};      // world, mm; a multiple of the spacing
    std::array<PicturePoint, 3> Step{};  // one spacing of each axis, in the picture
    int Half = 0;                        // lines to each side of the middle
    std::array<double, 3> Reach{};       // spacings that a line along each axis goes to either side
};

// How many times one spacing goes into the longer side of the picture; `pixels` of it.
double SpacingsInPicture(const ScreenWindow& window, double pixels) {
    return pixels > 0 ? Int(std::max(PictureWidth(window), PictureHeight(window)) / pixels) : 0;
}

// Half of a count, an odd one made even.
double HalfOf(double count) {
    return Int((count + 1) / 2);
}

GridLook LookOfGrid(const ScreenWindow& window) {
    const ScreenRecord& state = window.State;
    GridLook look;
    const std::array<double, 3> spacings = {static_cast<double>(state.ADis), static_cast<double>(state.BDis),
                                            static_cast<double>(state.Cdis)};
    const Vec3 under = BildKS_to_WeltKS(window, PictureWidth(window) / 2.0, PictureHeight(window) / 2.0, 0);
    double lines = 0;
    for (std::size_t k = 0; k < 3; ++k) {
        const int axis = static_cast<int>(k) + 1;
        const double place = under(axis) + Scene.RotCenter(axis);
        look.Spacing[k] = std::max(0.0, spacings[k]);
        look.Middle[k] = look.Spacing[k] > 0 ? Int(place / look.Spacing[k]) * look.Spacing[k] : place;
        const Vec3 one(axis == 1 ? 1 : 0, axis == 2 ? 1 : 0, axis == 3 ? 1 : 0);
        const PictureVector turned = pkt_drehen(window, one(1), one(2), one(3));
        const double pixels = state.BildFaktor * look.Spacing[k];
        look.Step[k] = {pixels * turned.U, pixels * turned.V};
        const double count = SpacingsInPicture(window, pixels);
        look.Reach[k] = HalfOf(count);
        // Lines below the least distance are left out, so the count stays below half of the picture's side.
        if (pixels >= kLeastDistance) lines = std::max(lines, count);
    }
    look.Half = static_cast<int>(HalfOf(lines));
    // Lines across a wide spacing go through the picture also where the spacing along them is too small for
    // lines of its own.
    for (double& reach : look.Reach) reach = std::max<double>(reach, look.Half);
    return look;
}

double Cross(const PicturePoint& a, const PicturePoint& b) {
    return a.X * b.Y - a.Y * b.X;
}

// Pixels between neighbouring lines that run along `along`.
double DistanceOfLines(const PicturePoint& along, const PicturePoint& across) {
    const double length = std::hypot(along.X, along.Y);
    return length > 0 ? std::abs(Cross(along, across)) / length : 0;
}

// A number that runs along a line and is never head down: from `place` to the right, and on a line that rises
// steeply towards it, so that it stays in the picture.
void WriteUpright(ScreenWindow& window, PicturePoint place, const PicturePoint& along, double shown,
                  Colour colour) {
    const double length = std::hypot(along.X, along.Y);
    double x = along.X / length, y = along.Y / length;
    if (x < 0 || (x == 0 && y < 0)) {
        x = -x;
        y = -y;
    }
    if (y < -x) {
        const double pixels = NumberLength(shown, kNumberSize);
        place = {place.X - x * pixels, place.Y - y * pixels};
    }
    Plot_Number(window, shown, static_cast<float>(place.X), static_cast<float>(place.Y), kNumberSize,
                std::atan2(y, x) * 180 / std::numbers::pi, colour);
}

// Writes a line's coordinate where it comes near the picture's edge: a steep line near the upper one, a flat
// one near the left one. `shown` in the shown unit.
void WriteCoordinate(ScreenWindow& window, const PicturePoint& from, const PicturePoint& to, double shown) {
    const double dx = to.X - from.X, dy = to.Y - from.Y;
    const bool steep = std::abs(dy) > std::abs(dx);
    const double t = steep ? (kNumberTop - from.Y) / dy : (kNumberLeft - from.X) / dx;
    if (!(t >= 0 && t <= 1)) return;
    const double x = from.X + t * dx, y = from.Y + t * dy;
    if (!(x >= 0 && x < PictureWidth(window) && y >= 0 && y < PictureHeight(window))) return;
    const Colour colour = QbColor(window.BackColor == QbColor(15) ? 0 : 7);
    if (DesktopDefaults.GridNumbers) {
        WriteUpright(window, {x, y}, {dx, dy}, shown, colour);
        return;
    }
    // The angle is that of the line's normal and a right angle more, so that the number runs along the line:
    // downwards on a steep one, and on a flat one from here to the edge, which leaves it head down.
    const double normalX = -dy, normalY = dx;
    double angle = std::atan(normalY / (normalX + 1e-10)) * 57 + 90;
    if (angle < 90) angle += 180;
    Plot_Number(window, shown, static_cast<float>(x), static_cast<float>(y), kNumberSize, angle, colour);
}

// The lines of one plane along one of its axes, side by side across the other.
void DrawLinesAlong(ScreenWindow& window, const GridLook& look, std::size_t along, std::size_t across) {
    const PicturePoint &run = look.Step[along], &next = look.Step[across];
    if (!(DistanceOfLines(run, next) >= kLeastDistance)) return;
    const PicturePoint pixel = PlaceOf(window, {look.Middle[0], look.Middle[1], look.Middle[2]});
    const double reach = look.Reach[along];
    for (int i = -look.Half; i <= look.Half; ++i) {
        const PicturePoint middle = {pixel.X + i * next.X, pixel.Y + i * next.Y};
        const PicturePoint from = {middle.X - reach * run.X, middle.Y - reach * run.Y};
        const PicturePoint to = {middle.X + reach * run.X, middle.Y + reach * run.Y};
        DrawStroke(window.Screen, from, to, QbColor(8), 1);
        if (IsTrue(window.State.ShowGridDim))
            WriteCoordinate(window, from, to,
                            (look.Middle[across] + i * look.Spacing[across]) * Units.LengthFactor);
    }
}

void DrawPlane(ScreenWindow& window, const GridLook& look, std::size_t first, std::size_t second) {
    if (look.Half == 0) return;
    DrawLinesAlong(window, look, second, first);
    DrawLinesAlong(window, look, first, second);
}

}  // namespace

void Zeichne_KSGrid(ScreenWindow& window) {
    const GridLook look = LookOfGrid(window);
    const ScreenRecord& state = window.State;
    if (IsTrue(state.GridXY)) DrawPlane(window, look, 0, 1);
    if (IsTrue(state.GridYZ)) DrawPlane(window, look, 1, 2);
    if (IsTrue(state.GridZX)) DrawPlane(window, look, 2, 0);
}

}  // namespace corvinade::graphics
