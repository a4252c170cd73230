// The black planes: their frame, which points lie between them, and how the mouse moves them.
#include "graphics/black_planes.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

#include "fit/any_vectors.h"
#include "fit/rotations.h"
#include "fit/vector.h"
#include "graphics/drawing.h"
#include "graphics/projection.h"
#include "graphics/scene.h"
#include "graphics/strokes.h"

namespace corvinade::graphics {

namespace {

constexpr double kShift = 200;  // as in the projection
// A component of a unit normal below this is rounding. It must not tell the mouse which way the slab faces.
constexpr double kLeastComponent = 1e-9;
constexpr double kLeastTilt = 1e-11;  // the same of a normal in the world
constexpr double kFarthest = 1e30;    // pixels; a frame beyond it is none

Vec3 ColumnOf(const Mat3& M, int column) {
    return {M(1, column), M(2, column), M(3, column)};
}

double Dot(const Vec3& a, const Vec3& b) {
    double value = 0;
    VecDot(a, b, value);
    return value;
}

// A unit normal of the plane along a and b that lies on the side of `to`; zero where they span none.
Vec3 NormalTowards(const Vec3& a, const Vec3& b, const Vec3& to) {
    Vec3 cross, normal;
    VecCross(a, b, cross);
    VecNormalize(cross, normal);
    if (Dot(normal, to) < 0) VecScale(normal, -1, normal);
    return normal;
}

// The normal in the world: the frame's inverse has the axes of its picture as columns, and depth runs against
// the third one.
Vec3 WorldNormal(const ScreenRecord& state) {
    const Mat3& inverse = state.FrameInverse;
    Vec3 normal = NormalTowards(ColumnOf(inverse, 1), ColumnOf(inverse, 2), ColumnOf(inverse, 3));
    // Half a turn, as the view from above has it, leaves some 1e-15 where nothing should be, an inverse
    // 1e-12: enough to throw points of a flat part that lie on the first plane to either side of it.
    for (int axis = 1; axis <= 3; ++axis)
        if (std::abs(normal(axis)) < kLeastTilt) normal(axis) = 0;
    return normal;
}

// A place of the picture as it was at the setting, in the picture as it is.
Vec3 FromFrame(const ScreenWindow& window, double x, double y, double z) {
    const ScreenRecord& state = window.State;
    const double F = state.FrameFactor, H = PictureHeight(window);
    const double u = (x - state.FrameOffsetX) / F - kShift;
    const double v = kShift - (H - y - state.FrameOffsetY) / F;
    const double w = -z / F;
    const Mat3& back = state.FrameInverse;
    const auto component = [&](int row) { return back(row, 1) * u + back(row, 2) * v + back(row, 3) * w; };
    return WeltKS_to_BildKS(window, {component(1), component(2), component(3)});
}

// Where the planes of a window stand in the world, as the test of the points needs them.
SceneSlab SlabOf(const ScreenWindow& window) {
    const ScreenRecord& state = window.State;
    SceneSlab slab;
    if (!IsTrue(state.BlackPlane) || !HasPlaneFrame(state)) return slab;
    const Vec3 normal = WorldNormal(state);
    const double perPixel = Dot(normal, ColumnOf(state.FrameInverse, 3)) / state.FrameFactor;
    const double top = state.TopDepth;
    slab.On = true;
    slab.Normal = {normal(1), normal(2), normal(3)};
    slab.Center = {Scene.RotCenter(1), Scene.RotCenter(2), Scene.RotCenter(3)};
    slab.First = -top * perPixel;
    slab.Second = -(top + state.SlabThickness) * perPixel;
    return slab;
}

// A point that is no number lies between no planes.
ON_ANY_VECTORS void TestRows(const SceneSlab& slab, int count, const float* __restrict x,
                             const float* __restrict y, const float* __restrict z, float* __restrict inside) {
    const double nx = slab.Normal[0], ny = slab.Normal[1], nz = slab.Normal[2];
    const double cx = slab.Center[0], cy = slab.Center[1], cz = slab.Center[2];
    const double first = slab.First, second = slab.Second;
    for (int i = 0; i < count; ++i) {
        const double d = nx * (x[i] - cx) + ny * (y[i] - cy) + nz * (z[i] - cz);
        inside[i] = (d <= first) & (d > second) ? 1.0F : 0.0F;
    }
}

// The way of the mouse along the normal: the planes follow the mouse whichever way the slab faces.
double WayAlongNormal(const ScreenWindow& window, double dx, double dy) {
    const Vec3 normal = PlanesOf(window).Normal;
    const auto sign = [](double component) { return component < -kLeastComponent ? -1.0 : 1.0; };
    return dx * sign(normal(1)) + dy * sign(normal(2));
}

bool Movable(const ScreenWindow& window) {
    return IsTrue(window.State.BlackPlane) && HasPlaneFrame(window.State);
}

Colour EdgeColourOn(Colour background) {
    return QbColor(IsLight(background) ? 0 : 7);
}

float InFrame(double depth) {
    return static_cast<float>(std::clamp(depth, -kFarthest, kFarthest));
}

}  // namespace

void Initialisieren_BlackPlane(ScreenWindow& window, bool active, bool borders) {
    ScreenRecord& state = window.State;
    state.BlackInitial = state.BlackPlane = ToFlag(active);
    if (active) {
        state.FrameInverse = InverseRotation(ViewRotation(window));
        state.SlabThickness = kFirstSlab;
        state.FrameOffsetX = state.BildOffsetX;
        state.FrameOffsetY = state.BildOffsetY;
        state.FrameFactor = state.BildFaktor;
    }
    state.BlackPlaneBorders = ToFlag(borders);
    Zeichne_Black_Plane(window);
}

void Zeichne_Black_Plane(ScreenWindow& window) {
    if (!IsTrue(window.State.BlackPlaneBorders) || !HasPlaneFrame(window.State)) return;
    const std::array<Vec3, 8> corners = PlanesOf(window).Corners;
    const Colour colour = EdgeColourOn(window.BackColor);
    const auto place = [&corners](std::size_t corner) -> PicturePoint {
        return {corners[corner](1), corners[corner](2)};
    };
    for (std::size_t corner = 0; corner < corners.size(); ++corner)
        for (const std::size_t bit : {1U, 2U, 4U})
            if ((corner & bit) == 0) DrawStroke(window.Screen, place(corner), place(corner | bit), colour, 1);
}

void SetInside(const ScreenWindow& window) {
    const SceneSlab slab = SlabOf(window);
    if (slab == Scene.InsideOf) return;
    Scene.InsideOf = slab;
    Scene.PaintStale = true;
    std::vector<float>& inside = Scene.Points[kSceneInside];
    if (!slab.On) {
        std::fill(inside.begin(), inside.end(), 1.0F);
        return;
    }
    TestRows(slab, Scene.Rows, Scene.Points[kSceneX].data() + 1, Scene.Points[kSceneY].data() + 1,
             Scene.Points[kSceneZ].data() + 1, inside.data() + 1);
}

void MoveTopPlane(ScreenWindow& window, double dx, double dy) {
    if (!Movable(window)) return;
    window.State.TopDepth = InFrame(window.State.TopDepth + WayAlongNormal(window, dx, dy));
}

void ThickenSlab(ScreenWindow& window, double dx, double dy) {
    if (!Movable(window)) return;
    double& thickness = window.State.SlabThickness;
    thickness = InFrame(std::max(0.0, thickness + WayAlongNormal(window, dx, dy)));
}

BlackPlanes PlanesOf(const ScreenWindow& window) {
    const ScreenRecord& state = window.State;
    const double top = state.TopDepth, W = PictureWidth(window), H = PictureHeight(window);
    BlackPlanes planes;
    for (std::size_t corner = 0; corner < planes.Corners.size(); ++corner)
        planes.Corners[corner] = FromFrame(window, (corner & 1U) != 0 ? W : 0, (corner & 2U) != 0 ? H : 0,
                                           (corner & 4U) != 0 ? top + state.SlabThickness : top);
    planes.First = planes.Corners[0];
    planes.Second = planes.Corners[4];
    // A slab without thickness faces as one with it.
    const Vec3 beyond = FromFrame(window, 0, 0, top - 1);
    Vec3 right, down, outwards;
    VecSub(planes.Corners[1], planes.First, right);
    VecSub(planes.Corners[2], planes.First, down);
    VecSub(beyond, planes.First, outwards);
    planes.Normal = NormalTowards(right, down, outwards);
    return planes;
}

bool HasPlaneFrame(const ScreenRecord& view) {
    if (!IsTrue(view.BlackInitial)) return false;
    const auto near = [](double value) { return std::abs(value) < kFarthest; };
    const bool places = near(view.FrameOffsetX) && near(view.FrameOffsetY) &&
                        view.FrameFactor > 1 / kFarthest && near(view.FrameFactor) &&
                        std::abs(view.TopDepth) <= InFrame(kFarthest) && view.SlabThickness >= 0 &&
                        view.SlabThickness <= InFrame(kFarthest);
    const auto& elements = view.FrameInverse.Elements;
    if (!places || !std::all_of(elements.begin(), elements.end(), near)) return false;
    const double length = Dot(WorldNormal(view), ColumnOf(view.FrameInverse, 3));
    return length > kLeastComponent && near(length);
}

void KeepPlanesInWorld(ScreenRecord& view, const Vec3& before, const Vec3& after) {
    if (!IsTrue(view.BlackInitial) || before.Elements == after.Elements || !HasPlaneFrame(view)) return;
    Vec3 way;
    VecSub(before, after, way);
    const Mat3 turn = InverseRotation(view.FrameInverse);
    const auto along = [&](int row) {
        return (turn(row, 1) * way(1) + turn(row, 2) * way(2) + turn(row, 3) * way(3)) * view.FrameFactor;
    };
    view.FrameOffsetX = InFrame(view.FrameOffsetX - along(1));
    view.FrameOffsetY = InFrame(view.FrameOffsetY + along(2));
    // A point on the first plane is inside, and must not fall out by a rounding: the plane gives way by one
    // step of a float at the most, and the thickness leaves the second where it was.
    const double top = view.TopDepth - along(3);
    constexpr double kNoise = 1e-9;  // of what the sums above may be off by
    float moved = InFrame(top);
    if (moved > top - kNoise * std::max(1.0, std::abs(top)))
        moved = std::nextafter(moved, -std::numeric_limits<float>::infinity());
    view.SlabThickness += top - moved;
    view.TopDepth = moved;
}

}  // namespace corvinade::graphics
