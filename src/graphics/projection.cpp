// World to picture: the rotation of all points, their pixels, and single points both ways.
#include "graphics/projection.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>

#include "core/form_main.h"
#include "core/job.h"
#include "core/settings.h"
#include "engine/transform.h"
#include "fit/any_vectors.h"
#include "fit/rotations.h"
#include "graphics/black_planes.h"
#include "graphics/scene.h"

namespace corvinade::graphics {

namespace {

constexpr double kShift = 200;     // stands in the offsets of all saved views
constexpr float kFarAway = 1e10F;  // where the bounds of a box begin
constexpr int kBlock = 1024;       // points whose turned coordinates stay in the cache

struct Turn {
    std::array<double, 9> M{};  // row by row
    std::array<double, 3> Center{};
};

ON_ANY_VECTORS void TurnBlock(const Turn& turn, int count, const float* __restrict x,
                              const float* __restrict y, const float* __restrict z, float* __restrict right,
                              float* __restrict down, float* __restrict depth) {
    const double m0 = turn.M[0], m1 = turn.M[1], m2 = turn.M[2];
    const double m3 = turn.M[3], m4 = turn.M[4], m5 = turn.M[5];
    const double m6 = turn.M[6], m7 = turn.M[7], m8 = turn.M[8];
    const double cx = turn.Center[0], cy = turn.Center[1], cz = turn.Center[2];
    for (int i = 0; i < count; ++i) {
        const double px = x[i] - cx, py = y[i] - cy, pz = z[i] - cz;
        right[i] = static_cast<float>((m0 * px + m1 * py + m2 * pz) + kShift);
        down[i] = static_cast<float>(kShift - (m3 * px + m4 * py + m5 * pz));
        depth[i] = static_cast<float>(-(m6 * px + m7 * py + m8 * pz));
    }
}

// Takes a block into the bounds: in lanes, since a single minimum would be taken number by number, and by
// twos of them, since each minimum waits for the one before. Written as vectors, or the compiler keeps them
// in memory.
constexpr int kLanesOfBox = 16;
using BoxLanes = float __attribute__((vector_size(kLanesOfBox * sizeof(float))));
ON_ANY_VECTORS void BoundBlock(int count, const float* __restrict values, float& lowest, float& highest) {
    BoxLanes low = lowest - BoxLanes{}, high = highest - BoxLanes{}, low2 = low, high2 = high;
    constexpr int kStep = 2 * kLanesOfBox;
    const int whole = count / kStep * kStep;
    for (int i = 0; i < whole; i += kStep) {
        BoxLanes one, two;
        std::memcpy(&one, values + i, sizeof one);
        std::memcpy(&two, values + i + kLanesOfBox, sizeof two);
        low = one < low ? one : low;
        high = one > high ? one : high;
        low2 = two < low2 ? two : low2;
        high2 = two > high2 ? two : high2;
    }
    low = low2 < low ? low2 : low;
    high = high2 > high ? high2 : high;
    for (int lane = 0; lane < kLanesOfBox; ++lane) {
        lowest = low[lane] < lowest ? low[lane] : lowest;
        highest = high[lane] > highest ? high[lane] : highest;
    }
    for (int i = whole; i < count; ++i) {
        lowest = values[i] < lowest ? values[i] : lowest;
        highest = values[i] > highest ? values[i] : highest;
    }
}

// One coordinate of all pixels: the product and the sum in 64 bits, kept in 32.
ON_ANY_VECTORS void ScaleAndShift(int count, const float* __restrict from, double factor, double offset,
                                  float* __restrict to) {
    for (int i = 0; i < count; ++i) to[i] = static_cast<float>(from[i] * factor + offset);
}

// The part of a vector along one axis of the picture.
ON_ANY_VECTORS void TurnVectors(int count, const std::array<double, 3>& row, const float* __restrict x,
                                const float* __restrict y, const float* __restrict z, float* __restrict to) {
    const double m0 = row[0], m1 = row[1], m2 = row[2];
    for (int i = 0; i < count; ++i) to[i] = static_cast<float>(m0 * x[i] + m1 * y[i] + m2 * z[i]);
}

Turn TurnOf(const ScreenWindow& window) {
    const Mat3 M = ViewRotation(window);
    Turn turn;
    for (int row = 1; row <= 3; ++row)
        for (int column = 1; column <= 3; ++column)
            turn.M[static_cast<std::size_t>(3 * (row - 1) + column - 1)] = M(row, column);
    turn.Center = {Scene.RotCenter(1), Scene.RotCenter(2), Scene.RotCenter(3)};
    return turn;
}

bool VectorsNeeded(const ScreenWindow& window) {
    return IsTrue(window.State.VectorMode) || window.AnalyseMode;
}

// The shown vectors without the components that take no part in the fit.
void TurnUsedVectors(const Mat3& M) {
    for (int i = 1; i <= Scene.Ident; ++i) {
        const auto row = static_cast<std::size_t>(i);
        const auto component = [i, row](SceneColumn column, int axis) {
            return Used(i, axis) ? static_cast<double>(Scene.Points[column][row]) : 0.0;
        };
        const double x = component(kSceneVecX, 1), y = component(kSceneVecY, 2), z = component(kSceneVecZ, 3);
        Scene.Vectors[1][row] = static_cast<float>(M(1, 1) * x + M(1, 2) * y + M(1, 3) * z);
        Scene.Vectors[2][row] = static_cast<float>(M(2, 1) * x + M(2, 2) * y + M(2, 3) * z);
    }
}

// The centre is that of all windows and of all views that they can go back to.
void KeepAllPlanes(const Vec3& before) {
    for (const auto& open : Screens().Open) {
        KeepPlanesInWorld(open->State, before, Scene.RotCenter);
        for (ScreenRecord& step : open->UndoRing) KeepPlanesInWorld(step, before, Scene.RotCenter);
    }
}

// The armed centre of rotation: the point of its row; the box of the window's view as it stood before goes to
// the middle of the picture. The tables may hold the view of another window by now.
void TakeRotationCenter(ScreenWindow& window) {
    const auto row = static_cast<std::size_t>(Scene.RotateAboutIndex);
    const Vec3 before = Scene.RotCenter;
    Scene.RotCenter = {Scene.Points[kSceneX][row], Scene.Points[kSceneY][row], Scene.Points[kSceneZ][row]};
    KeepAllPlanes(before);
    CenterBox(window);
    Scene.RotateAboutArmed = false;
    Main.MenüGlobalRotateAbout.Checked = false;
    Main.ToolbarGraphics_RotateAbout.Value = 0;
}

}  // namespace

int PictureWidth(const ScreenWindow& window) {
    return window.Screen.Width;
}
int PictureHeight(const ScreenWindow& window) {
    return window.Screen.Height;
}

double ViewAngle(const ScreenWindow& window, int axis) {
    // Two rows by columns, the row runs first in memory.
    const std::size_t place = 2 * static_cast<std::size_t>(axis - 1);
    return place < window.State.RotAngles.size() ? window.State.RotAngles[place] : 0.0;
}

void SetViewAngles(ScreenWindow& window, double a, double b, double c) {
    window.State.RotAngles = {a, 0, b, 0, c, 0};
    window.State.RotAnglesShape.clear();
}

Mat3 ViewRotation(const ScreenWindow& window) {
    Mat3 M;
    RotMatrixXYZ(ViewAngle(window, 1), ViewAngle(window, 2), ViewAngle(window, 3), M);
    return M;
}

void CenterBox(ScreenWindow& window) {
    const double F = window.State.BildFaktor;
    const auto& [xmin, xmax, ymin, ymax, zmin, zmax] = window.ViewBox;
    const auto offset = [F](double low, double high, int size) {
        return static_cast<float>(-(low * F - (size - (high - low) * F) / 2));
    };
    window.State.BildOffsetX = offset(xmin, xmax, PictureWidth(window));
    window.State.BildOffsetY = offset(ymin, ymax, PictureHeight(window));
}

namespace {

void SizeView() {
    const std::size_t size = static_cast<std::size_t>(Scene.Rows) + 1;
    for (std::size_t column = 1; column <= 3; ++column) Scene.View[column].resize(size);
    Scene.Vectors[1].resize(size);
    Scene.Vectors[2].resize(size);
}

void SizePixels(const ScreenWindow& window) {
    Scene.PixelsOf = window.Id;
    const std::size_t size = static_cast<std::size_t>(Scene.Rows) + 1;
    for (std::vector<float>* table :
         {&Scene.PixelX, &Scene.PixelY, &Scene.PixelZ, &Scene.VecPixelX, &Scene.VecPixelY})
        table->resize(size);
}

// Armed without a point, it waits for one.
void TakeArmedRotationCenter(ScreenWindow& window) {
    const bool known = Scene.RotateAboutIndex >= 1 && Scene.RotateAboutIndex <= Scene.Rows;
    if (Scene.RotateAboutArmed && known) TakeRotationCenter(window);
}

void TurnRows(const Turn& turn, int first, int count) {
    TurnBlock(turn, count, Scene.Points[kSceneX].data() + first, Scene.Points[kSceneY].data() + first,
              Scene.Points[kSceneZ].data() + first, Scene.View[1].data() + first,
              Scene.View[2].data() + first, Scene.View[3].data() + first);
}

void TurnDeviations(const ScreenWindow& window) {
    if (!VectorsNeeded(window)) return;
    const Mat3 M = ViewRotation(window);
    if (IsTrue(window.State.ShowOnlyUsedComponent)) {
        TurnUsedVectors(M);
        return;
    }
    for (int row = 1; row <= 2; ++row)
        TurnVectors(Scene.Ident, {M(row, 1), M(row, 2), M(row, 3)}, Scene.Points[kSceneVecX].data() + 1,
                    Scene.Points[kSceneVecY].data() + 1, Scene.Points[kSceneVecZ].data() + 1,
                    Scene.Vectors[static_cast<std::size_t>(row)].data() + 1);
}

void ScaleRows(const ScreenWindow& window, int first, int count) {
    const double F = window.State.BildFaktor;
    const double lowerEdge = static_cast<double>(PictureHeight(window)) - window.State.BildOffsetY;
    ScaleAndShift(count, Scene.View[1].data() + first, F, window.State.BildOffsetX,
                  Scene.PixelX.data() + first);
    ScaleAndShift(count, Scene.View[2].data() + first, -F, lowerEdge, Scene.PixelY.data() + first);
    ScaleAndShift(count, Scene.View[3].data() + first, F, 0, Scene.PixelZ.data() + first);
}

void ScaleVectors(const ScreenWindow& window) {
    if (!VectorsNeeded(window)) return;
    const double length = IsTrue(Settings.DevVecDirection) ? window.State.Vec_Maßstab
                                                           : -static_cast<double>(window.State.Vec_Maßstab);
    ScaleAndShift(Scene.Ident, Scene.Vectors[1].data() + 1, length, 0, Scene.VecPixelX.data() + 1);
    ScaleAndShift(Scene.Ident, Scene.Vectors[2].data() + 1, length, 0, Scene.VecPixelY.data() + 1);
}

constexpr std::array<float, 6> kNoBox = {kFarAway, -kFarAway, kFarAway, -kFarAway, kFarAway, -kFarAway};

void TakeIntoBox(int first, int count, std::array<float, 6>& box) {
    for (std::size_t axis = 0; axis < 3; ++axis)
        BoundBlock(count, Scene.View[axis + 1].data() + first, box[2 * axis], box[2 * axis + 1]);
}

// A shift, another size or another window of the same view leaves the turned points as they are.
SceneView KeyOf(const Turn& turn) {
    return {Scene.Stamp, turn.M, turn.Center};
}
bool HoldsView(const Turn& turn) {
    return Scene.Stamp != 0 && Scene.ViewOf == KeyOf(turn);
}
void KeepView(const Turn& turn, const std::array<float, 6>& box) {
    Scene.ViewOf = KeyOf(turn);
    Scene.ViewBox = box;
}

template <class Work>
void ForEachBlock(Work work) {
    for (int first = 1; first <= Scene.Rows; first += kBlock)
        work(first, std::min(kBlock, Scene.Rows + 1 - first));
}

}  // namespace

void rechne_PixelCloud(ScreenWindow& window) {
    TakeArmedRotationCenter(window);
    SizeView();
    const Turn turn = TurnOf(window);
    ForEachBlock([&turn](int first, int count) { TurnRows(turn, first, count); });
    Max_Min(window);
    KeepView(turn, window.ViewBox);
    TurnDeviations(window);
}

void Rechne_pixel(ScreenWindow& window) {
    SizePixels(window);
    ForEachBlock([&window](int first, int count) { ScaleRows(window, first, count); });
    ScaleVectors(window);
}

// Block by block, so that what is turned is still in the cache when it is scaled: a million points are at the
// limit of the memory.
void RechneCloudAndPixels(ScreenWindow& window) {
    TakeArmedRotationCenter(window);
    SizeView();
    SizePixels(window);
    const Turn turn = TurnOf(window);
    const bool turned = HoldsView(turn);
    std::array<float, 6> box = turned ? Scene.ViewBox : kNoBox;
    ForEachBlock([&](int first, int count) {
        if (!turned) {
            TurnRows(turn, first, count);
            TakeIntoBox(first, count, box);
        }
        ScaleRows(window, first, count);
    });
    KeepView(turn, box);
    window.ViewBox = box;
    TurnDeviations(window);
    ScaleVectors(window);
}

void Max_Min(ScreenWindow& window) {
    std::array<float, 6> box = kNoBox;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const std::vector<float>& values = Scene.View[axis + 1];
        const int rows = std::min(Scene.Rows, UpperBound(values));
        if (rows > 0) BoundBlock(rows, values.data() + 1, box[2 * axis], box[2 * axis + 1]);
    }
    window.ViewBox = box;
}

WorldBounds MaxMinGlobalSys() {
    WorldBounds bounds{-kFarAway, -kFarAway, -kFarAway, kFarAway, kFarAway, kFarAway};
    const int count = Job.Start.Count();
    for (int i = 1; i <= count; ++i) {
        const Vec3 point = StartPoint(i);
        bounds.xmax = std::max(bounds.xmax, point(1));
        bounds.ymax = std::max(bounds.ymax, point(2));
        bounds.zmax = std::max(bounds.zmax, point(3));
        bounds.xmin = std::min(bounds.xmin, point(1));
        bounds.ymin = std::min(bounds.ymin, point(2));
        bounds.zmin = std::min(bounds.zmin, point(3));
    }
    return bounds;
}

Vec3 WeltKS_to_BildKS(const ScreenWindow& window, const Vec3& world) {
    const Mat3 M = ViewRotation(window);
    const double F = window.State.BildFaktor;
    const auto turned = [&M, &world](int row) {
        return M(row, 1) * world(1) + M(row, 2) * world(2) + M(row, 3) * world(3);
    };
    return {F * (turned(1) + kShift) + window.State.BildOffsetX,
            PictureHeight(window) - (F * (kShift - turned(2)) + window.State.BildOffsetY), F * -turned(3)};
}

Vec3 BildKS_to_WeltKS(const ScreenWindow& window, double x, double y, double z) {
    const double F = window.State.BildFaktor;
    const double u = (x - window.State.BildOffsetX) / F - kShift;
    const double v = kShift - (PictureHeight(window) - y - window.State.BildOffsetY) / F;
    const double w = -z / F;
    const Mat3 back = InverseRotation(ViewRotation(window));
    const auto component = [&](int row) { return back(row, 1) * u + back(row, 2) * v + back(row, 3) * w; };
    return {component(1), component(2), component(3)};
}

PictureVector pkt_drehen(const ScreenWindow& window, double x, double y, double z) {
    const Mat3 M = ViewRotation(window);
    return {M(1, 1) * x + M(1, 2) * y + M(1, 3) * z, M(2, 1) * x + M(2, 2) * y + M(2, 3) * z};
}

}  // namespace corvinade::graphics
