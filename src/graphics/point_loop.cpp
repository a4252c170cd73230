// The loop over all points of a paint. Small points of one size and nothing else on them, which is what a
// rotation of a large cloud paints, have a loop of their own.
#include "graphics/point_loop.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <utility>

#include "core/desktop_defaults.h"
#include "core/settings.h"
#include "core/window.h"
#include "fit/any_vectors.h"
#include "graphics/drawing.h"
#include "graphics/scene.h"
#include "graphics/tolerance.h"

namespace corvinade::graphics {

namespace {

constexpr float kMargin = 10;  // pixels around the picture within which a point is still painted
constexpr int kLeastBigness =
    2;                        // on the desktop far points are no smaller, where the user lets them be larger
constexpr int kBlock = 1024;  // points whose places stay in the cache
constexpr float kWhole = 12582912;  // 1.5 * 2^23: added and taken off, it leaves the nearest whole number

bool OutsideTolerance(const ScreenRecord& state, std::size_t row) {
    const float k = Scene.Points[kSceneClass][row];
    return k > static_cast<float>(state.AnzKlassenPos) || k < -static_cast<float>(state.AnzKlassenNeg);
}

// Column 6 as the picture holds it, for every row that is painted.
void FillPaint(const ScreenWindow& window) {
    if (!Scene.PaintStale && Scene.PaintBackground == window.BackColor) return;
    const ScreenRecord& state = window.State;
    // Points out of tolerance are hidden by giving them the colour of the background.
    const bool hide = window.BackColor == state.OuterColor && IsTrue(state.AusserhalbTol);
    Scene.Paint.resize(static_cast<std::size_t>(Scene.Rows) + 1);
    for (int i = 1; i <= Scene.Rows; ++i) {
        const auto row = static_cast<std::size_t>(i);
        const bool painted = Scene.Points[kScenePlotted][row] == 1.0F &&
                             Scene.Points[kSceneInside][row] == 1.0F &&
                             !(hide && OutsideTolerance(state, row));
        Scene.Paint[row] = painted ? PixelOf(static_cast<Colour>(Scene.Points[kSceneColour][row])) : 0;
    }
    Scene.PaintStale = false;
    Scene.PaintBackground = window.BackColor;
}

bool InReach(const Surface& screen, float x, float y) {
    return x <= static_cast<float>(screen.Width) + kMargin && x >= -kMargin &&
           y <= static_cast<float>(screen.Height) + kMargin && y >= -kMargin;
}

int Nearest(float value) {
    return static_cast<int>(std::nearbyint(value));
}

// --- Small points alone -----------------------------------------------------------------------------------

constexpr int kLongestSide = 8;  // pixels of the device; above it the loop over rows is as quick

// Where pixels of the device stand, as PaintSquare has it.
int OnDevice(const Surface& screen, int logical) {
    return static_cast<int>(std::nearbyint(static_cast<float>(logical) * static_cast<float>(screen.Scale)));
}

struct Bounds {
    float Radius, Scale;
    float Right, Bottom;  // of the upper left pixels of squares that lie in the picture as a whole
    int Stride;
};

// Where the upper left pixel of each square lies in the picture; -1 where the square is not all inside.
ON_ANY_VECTORS void PlacesOfBlock(int count, const float* __restrict x, const float* __restrict y,
                                  const Bounds& bounds, int* __restrict places) {
    const float radius = bounds.Radius, scale = bounds.Scale, right = bounds.Right, bottom = bounds.Bottom;
    const int stride = bounds.Stride;
    for (int i = 0; i < count; ++i) {
        const float logicalX = (x[i] + kWhole) - kWhole - radius,
                    logicalY = (y[i] + kWhole) - kWhole - radius;
        const float column = (logicalX * scale + kWhole) - kWhole, row = (logicalY * scale + kWhole) - kWhole;
        const bool inside = (column >= 0) & (column <= right) & (row >= 0) & (row <= bottom);
        const int place =
            static_cast<int>(inside ? row : 0.0F) * stride + static_cast<int>(inside ? column : 0.0F);
        places[i] = inside ? place : -1;
    }
}

// One row of a square, from registers alone: through an array the numbers would go by way of the stack.
template <int Side>
void WriteRow(std::uint32_t* pixel, std::uint64_t two, std::uint32_t one) {
    for (int k = 0; k + 1 < Side; k += 2) std::memcpy(pixel + k, &two, sizeof two);
    if constexpr (Side % 2 == 1) pixel[Side - 1] = one;
}

// Points of a cloud lie anywhere in a picture that is larger than the cache next to the processor: the rows
// of the squares to come are asked for while the present one is written.
constexpr int kAhead = 16;

template <int Side>
void PaintBlock(Surface& screen, int r, int first, int count, const int* places) {
    // Copies of its own: what is written into the picture could be the surface, as far as the compiler knows.
    const std::ptrdiff_t stride = screen.Stride;
    std::uint32_t* const pixels = screen.Pixels;
    const std::uint32_t* const colours = Scene.Paint.data() + first;
    for (int i = 0; i < count; ++i) {
        const int ahead = i + kAhead < count ? places[i + kAhead] : -1;
        if (ahead >= 0)
            for (int k = 0; k < Side; ++k) __builtin_prefetch(pixels + ahead + k * stride, 1);
        const std::uint32_t colour = colours[i];
        if (colour == 0) continue;
        if (places[i] >= 0) {
            const std::uint64_t two = static_cast<std::uint64_t>(colour) << 32U | colour;
            std::uint32_t* pixel = pixels + places[i];
            for (int k = 0; k < Side; ++k, pixel += stride) WriteRow<Side>(pixel, two, colour);
            continue;
        }
        const auto row = static_cast<std::size_t>(first + i);
        if (InReach(screen, Scene.PixelX[row], Scene.PixelY[row]))
            PaintSquare(screen, Scene.PixelX[row], Scene.PixelY[row], r, colour);
    }
}

// Rows `from` to `last`.
template <int Side>
void PaintSquares(Surface& screen, int r, int from, int last) {
    alignas(64) std::array<int, kBlock> places;
    const Bounds bounds = {static_cast<float>(r), static_cast<float>(screen.Scale),
                           static_cast<float>(screen.PixelWidth - Side),
                           static_cast<float>(screen.PixelHeight - Side), static_cast<int>(screen.Stride)};
    for (int first = from; first <= last; first += kBlock) {
        const int count = std::min(kBlock, last + 1 - first);
        PlacesOfBlock(count, Scene.PixelX.data() + first, Scene.PixelY.data() + first, bounds, places.data());
        PaintBlock<Side>(screen, r, first, count, places.data());
    }
}

// One loop for each length of a side, which the compiler then knows.
template <int... Lengths>
void PaintSmallPoints(Surface& screen, int r, int from, int last,
                      std::integer_sequence<int, Lengths...> /*from 0*/) {
    const int side = OnDevice(screen, 2 * r + 1);
    (void)((side == Lengths + 1 && (PaintSquares<Lengths + 1>(screen, r, from, last), true)) || ...);
}

// Whether all squares of this size may go through the loop for small points.
bool AreSmall(const Surface& screen, int r) {
    const int side = OnDevice(screen, 2 * r + 1);
    return screen.Pixels != nullptr && side >= 1 && side <= kLongestSide && screen.PixelWidth >= side &&
           screen.PixelHeight >= side;
}

void PaintSmallPoints(Surface& screen, int r, int from, int last) {
    PaintSmallPoints(screen, r, from, last, std::make_integer_sequence<int, kLongestSide>());
}

// --- Points with all that belongs to them -----------------------------------------------------------------

struct PointLook {
    bool Names, Vectors;
    int VectorWidth;
    int ActualRow;
};

PointLook LookOfPoints(const ScreenWindow& window, bool names) {
    const ScreenRecord& state = window.State;
    return {names, IsTrue(state.VectorMode), IsTrue(Settings.VectorThick) ? state.BigNess : 1, ActualRow()};
}

// A row with a flag is never left out, wherever it lies.
bool HasFlag(const ScreenRecord& state, std::size_t row) {
    return row <= state.FlagIndex.size() && state.FlagIndex[row - 1] != 0;
}

void DrawDot(ScreenWindow& window, std::size_t row, const DepthSize& depth) {
    const int bigness = window.State.BigNess;
    const float x = Scene.PixelX[row], y = Scene.PixelY[row];
    // The point nearest to the eye is the biggest.
    const float inDepth = (Scene.View[3][row] - window.ViewBox[4]) * depth.Factor + 1;
    const float byDepth = DesktopDefaults.Fit
                              ? std::max(inDepth, static_cast<float>(std::min(bigness, kLeastBigness)))
                              : inDepth;
    if (bigness > kLargestSquare) {
        const auto colour = static_cast<Colour>(Scene.Points[kSceneColour][row]);
        const float radius = depth.On ? byDepth : static_cast<float>(bigness) / 2;
        if (window.Screen.Circle != nullptr)
            window.Screen.Circle(window.Screen, x, y, radius, colour, colour, 1);
        return;
    }
    const int r = SquareRadius(depth.On ? byDepth : bigness);
    if (window.Screen.Pixels != nullptr) PaintSquare(window.Screen, x, y, r, Scene.Paint[row]);
}

void DrawRow(ScreenWindow& window, std::size_t row, const DepthSize& depth, const PointLook& look) {
    const float x = Scene.PixelX[row], y = Scene.PixelY[row];
    const bool inReach = InReach(window.Screen, x, y);
    if (!inReach && !HasFlag(window.State, row)) return;
    if (look.Names && Scene.Points[kScenePlotted][row] == 1.0F && Scene.Points[kSceneInside][row] == 1.0F)
        SetLabelToPos(window, ScenePointName(static_cast<int>(row)), x + 5, y + 5);
    if (Scene.Paint[row] == 0) return;
    if (inReach) DrawDot(window, row, depth);
    const auto colour = static_cast<Colour>(Scene.Points[kSceneColour][row]);
    if (look.Vectors && static_cast<int>(row) <= Scene.Ident && window.Screen.Line != nullptr)
        window.Screen.Line(window.Screen, x, y, x + Scene.VecPixelX[row], y + Scene.VecPixelY[row], colour,
                           look.VectorWidth);
    const int bigness = window.State.BigNess;
    if (static_cast<int>(row) == look.ActualRow && window.Screen.Circle != nullptr)
        window.Screen.Circle(window.Screen, x, y, static_cast<float>(bigness + 1), colour, kNoFill,
                             bigness + 1);
}

}  // namespace

void PaintSquare(Surface& screen, float x, float y, int r, std::uint32_t colour) {
    const int side = OnDevice(screen, 2 * r + 1);
    const int left = OnDevice(screen, Nearest(x) - r), top = OnDevice(screen, Nearest(y) - r);
    const int firstX = std::max(left, 0), endX = std::min(left + side, screen.PixelWidth);
    const int firstY = std::max(top, 0), endY = std::min(top + side, screen.PixelHeight);
    for (int row = firstY; row < endY; ++row) {
        std::uint32_t* line = screen.Pixels + row * screen.Stride;
        for (int column = firstX; column < endX; ++column) line[column] = colour;
    }
}

int SquareRadius(double bigness) {
    return static_cast<int>(std::nearbyint(bigness / 2));
}

// On top of all others, and of the bar: it is what everybody looks for.
void DrawWorstPoint(ScreenWindow& window) {
    const auto row = static_cast<std::size_t>(Tolerance.Worst);
    if (row == 0 || row >= Scene.Paint.size() || Scene.Paint[row] == 0 || !IsSeen(Tolerance.Worst)) return;
    const float x = Scene.PixelX[row], y = Scene.PixelY[row];
    const int r = std::max(SquareRadius(window.State.BigNess), SquareRadius(kLeastBigness)) + 1;
    if (InReach(window.Screen, x, y) && window.Screen.Pixels != nullptr)
        PaintSquare(window.Screen, x, y, r, Scene.Paint[row]);
}

void DrawPoints(ScreenWindow& window, const DepthSize& depth) {
    DrawPoints(window, depth, LookOf(window).PointNames);
}

void DrawPoints(ScreenWindow& window, const DepthSize& depth, bool names) {
    FillPaint(window);
    const PointLook look = LookOfPoints(window, names);
    const int r = SquareRadius(window.State.BigNess);
    const bool small = window.State.BigNess <= kLargestSquare && !depth.On;
    if (small && !look.Names && !look.Vectors && AreSmall(window.Screen, r)) {
        if (look.ActualRow != 0) {
            PaintSmallPoints(window.Screen, r, 1, look.ActualRow - 1);
            DrawRow(window, static_cast<std::size_t>(look.ActualRow), depth, look);
        }
        PaintSmallPoints(window.Screen, r, look.ActualRow + 1, Scene.Rows);
        return;
    }
    if (look.Names) {
        const BusyPointer busy;
        for (int i = 1; i <= Scene.Rows; ++i) DrawRow(window, static_cast<std::size_t>(i), depth, look);
        return;
    }
    for (int i = 1; i <= Scene.Rows; ++i) DrawRow(window, static_cast<std::size_t>(i), depth, look);
}

}  // namespace corvinade::graphics
