// Axis crosses of both systems and of the view, and the rotation axis of the result.
#include <algorithm>
#include <array>
#include <cmath>
#include <string>

#include "core/desktop_defaults.h"
#include "core/job.h"
#include "core/numbers.h"
#include "core/settings.h"
#include "core/window.h"
#include "engine/transform.h"
#include "fit/quaternion.h"
#include "graphics/drawing.h"
#include "graphics/projection.h"
#include "graphics/scene.h"
#include "graphics/strokes.h"

namespace corvinade::graphics {

namespace {

constexpr double kCornerLength = 50, kCornerLeft = 70, kCornerAboveEdge = 90;  // pixels
constexpr double kLabelShift = 5;                                              // pixels
constexpr double kLargestExtent = 1e7, kExtentBeyond = 50000;                  // mm
constexpr std::array<int, 3> kAxisColours = {12, 14, 10};                      // QB numbers
constexpr std::array<int, 3> kDarkAxisColours = {4, 6, 2};                     // the same on a light ground
constexpr std::array<const char*, 3> kAxisNames = {"x ", "y ", "z "};

Colour AxisColour(const ScreenWindow& window, std::size_t axis) {
    const bool dark = DesktopDefaults.AxisColors && IsLight(window.BackColor);
    return QbColor((dark ? kDarkAxisColours : kAxisColours)[axis]);
}

void LabelTip(ScreenWindow& window, const PicturePoint& tip, const std::string& text) {
    if (!IsPlace(tip)) return;
    SetLabelToPos(window, text, static_cast<float>(tip.X + kLabelShift),
                  static_cast<float>(tip.Y + kLabelShift));
}

Vec3 AlongAxis(int axis, double length) {
    Vec3 point;
    point(axis) = length;
    return point;
}

// The cross in the corner: as the view is turned, always of one size.
void DrawCornerMark(ScreenWindow& window, bool labels) {
    const PicturePoint middle = {kCornerLeft, PictureHeight(window) - kCornerAboveEdge};
    const auto place = [&](double x, double y, double z) -> PicturePoint {
        const PictureVector turned = pkt_drehen(window, x, y, z);
        return {middle.X + turned.U, middle.Y + turned.V};
    };
    constexpr double L = kCornerLength, kArrow = L / 5, kTick = L / 10;
    const std::array<PicturePoint, 3> tips = {place(L, 0, 0), place(0, L, 0), place(0, 0, L)};
    const auto stroke = [&window](const PicturePoint& from, const PicturePoint& to, std::size_t axis) {
        DrawStroke(window.Screen, from, to, AxisColour(window, axis), 1);
    };
    stroke(middle, tips[0], 0);
    stroke(tips[0], place(L - kArrow, 0.6 * kArrow, 0), 0);
    stroke(tips[0], place(L - kArrow, -0.6 * kArrow, 0), 0);
    // One tick across y and two across z tell the two apart where colours do not.
    stroke(middle, tips[1], 1);
    stroke(place(-kTick / 2, L - kArrow, 0), place(kTick / 2, L - kArrow, 0), 1);
    stroke(middle, tips[2], 2);
    stroke(place(-kTick / 2, 0, L - kArrow), place(kTick / 2, 0, L - kArrow), 2);
    stroke(place(-kTick / 2, 0, L - kArrow - kTick), place(kTick / 2, 0, L - kArrow - kTick), 2);
    for (std::size_t axis = 0; axis < 3 && labels; ++axis)
        LabelTip(window, tips[axis], kAxisNames[axis] + Job.NameOCS);
}

// The diagonal of the box about the start points. They are many and do not move with the view.
double WorldDiagonal() {
    if (Scene.DiagonalOf != Scene.Stamp || Scene.Stamp == 0) {
        const WorldBounds bounds = MaxMinGlobalSys();
        const double dx = bounds.xmax - bounds.xmin, dy = bounds.ymax - bounds.ymin,
                     dz = bounds.zmax - bounds.zmin;
        Scene.Diagonal = std::sqrt(dx * dx + dy * dy + dz * dz);
        Scene.DiagonalOf = Scene.Stamp;
    }
    return Scene.Diagonal;
}

// Length of the axes, mm: a tenth of the extent of the points.
double AxisLength() {
    double extent = WorldDiagonal();
    if (!(extent <= kLargestExtent)) extent = kExtentBeyond;
    const double length = Round(Int(extent) / 10);
    return length == 0 ? 1 : length;
}

Vec3 Transformed(const Vec3& point) {
    Vec3 target;
    TransformPoint(point(1), point(2), point(3), target(1), target(2), target(3));
    return target;
}

void DrawSystem(ScreenWindow& window, bool start, const std::string& name, int width, bool labels) {
    const auto place = [&window, start](const Vec3& point) {
        return PlaceOf(window, start ? Transformed(point) : point);
    };
    const double L = AxisLength();
    const PicturePoint origin = place(Vec3());
    for (int axis = 1; axis <= 3; ++axis) {
        const auto k = static_cast<std::size_t>(axis - 1);
        const PicturePoint tip = place(AlongAxis(axis, L));
        DrawStroke(window.Screen, origin, tip, AxisColour(window, k), width);
        if (labels) LabelTip(window, tip, kAxisNames[k] + name);
    }
}

}  // namespace

bool IsLight(Colour background) {
    constexpr int kHalfWhite = 3 * 255 / 2;
    return (background & 0xff) + (background >> 8 & 0xff) + (background >> 16 & 0xff) > kHalfWhite;
}

void Zeichne_Kosys(ScreenWindow& window) {
    Zeichne_Kosys(window, LookOf(window).AxisLabels);
}

void Zeichne_Kosys(ScreenWindow& window, bool labels) {
    DrawCornerMark(window, labels);
    DrawSystem(window, false, Job.NameOCS, 1, labels);
    DrawSystem(window, true, Job.NameMCS, 2, labels);
}

// Half of the axis to each side of the origin. Without a rotation there is none.
void Zeichne_Quat(ScreenWindow& window) {
    Mat3 R;
    RotMatrixXYZ(Job.RotXCopy, Job.RotYCopy, Job.RotZCopy, R);
    Column record(9);
    double a = 0, b = 0, c = 0;
    MatrixToQuaternion(R, record, a, b, c);
    const Vec3 axis(record[6], record[7], record[8]);
    const double length = std::sqrt(axis(1) * axis(1) + axis(2) * axis(2) + axis(3) * axis(3));
    if (!(length > 0.5)) return;
    const double half = AxisLength() / 2 / length;
    const PicturePoint tip = PlaceOf(window, {half * axis(1), half * axis(2), half * axis(3)});
    const PicturePoint end = PlaceOf(window, {-half * axis(1), -half * axis(2), -half * axis(3)});
    DrawStroke(window.Screen, end, tip, QbColor(13), 1);
    LabelTip(window, tip, "Quaternion Vector");
}

}  // namespace corvinade::graphics
