// Points under the mouse, and the actual point that main sheet and pictures share.
#include "graphics/picking.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>

#include "analysis/form_main_sheet.h"
#include "core/desktop_defaults.h"
#include "engine/calculation_window.h"
#include "fit/any_vectors.h"
#include "fit/require.h"
#include "graphics/black_planes.h"
#include "graphics/drawing.h"
#include "graphics/projection.h"
#include "graphics/scene.h"

namespace corvinade::graphics {

namespace {

constexpr double kFar = std::numeric_limits<double>::infinity();
constexpr int kBlock = 2048;
constexpr int kLanesOfPick = 16;
constexpr int kLowerMargin = 5, kRightMargin = 10;  // pixels

struct Columns {
    const float *X, *Y, *Plotted, *Inside;
};

// The least squared distance in a block, whether its points are plotted or not. A minimum is the same in
// whatever order it is taken, so lanes may take it.
ON_ANY_VECTORS double LeastOfAll(int count, const float* __restrict px, const float* __restrict py, double x,
                                 double y) {
    std::array<double, kLanesOfPick> least{};
    least.fill(kFar);
    double* __restrict lanes = least.data();
    const int whole = count / kLanesOfPick * kLanesOfPick;
    for (int i = 0; i < whole; i += kLanesOfPick)
        for (int lane = 0; lane < kLanesOfPick; ++lane) {
            const double dx = x - px[i + lane], dy = y - py[i + lane];
            const double d = dx * dx + dy * dy;
            lanes[lane] = d < lanes[lane] ? d : lanes[lane];
        }
    for (int i = whole; i < count; ++i) {
        const double dx = x - px[i], dy = y - py[i];
        const double d = dx * dx + dy * dy;
        lanes[0] = d < lanes[0] ? d : lanes[0];
    }
    return *std::min_element(least.begin(), least.end());
}

// The same of the plotted points alone.
ON_ANY_VECTORS double LeastOfPlotted(int count, const Columns& at, double x, double y) {
    const float* __restrict px = at.X;
    const float* __restrict py = at.Y;
    const float* __restrict plotted = at.Plotted;
    const float* __restrict inside = at.Inside;
    std::array<double, kLanesOfPick> least{};
    least.fill(kFar);
    double* __restrict lanes = least.data();
    const int whole = count / kLanesOfPick * kLanesOfPick;
    for (int i = 0; i < whole; i += kLanesOfPick)
        for (int lane = 0; lane < kLanesOfPick; ++lane) {
            const int k = i + lane;
            const double dx = x - px[k], dy = y - py[k];
            const double d = dx * dx + dy * dy;
            // Both switches are 0 or 1.
            const double seen = plotted[k] * inside[k] != 0 ? d : kFar;
            lanes[lane] = seen < lanes[lane] ? seen : lanes[lane];
        }
    for (int i = whole; i < count; ++i) {
        const double dx = x - px[i], dy = y - py[i];
        const double d = dx * dx + dy * dy;
        const double seen = plotted[i] * inside[i] != 0 ? d : kFar;
        lanes[0] = seen < lanes[0] ? seen : lanes[0];
    }
    return *std::min_element(least.begin(), least.end());
}

Columns ColumnsFrom(int row) {
    return {Scene.PixelX.data() + row, Scene.PixelY.data() + row, Scene.Points[kScenePlotted].data() + row,
            Scene.Points[kSceneInside].data() + row};
}

// The first plotted row from `first` at exactly this squared distance.
int RowAt(int first, double distance, double x, double y) {
    int row = first;
    for (;; ++row) {
        Require(row <= Scene.Rows);
        const Columns at = ColumnsFrom(row);
        const double dx = x - *at.X, dy = y - *at.Y;
        if (*at.Plotted != 0 && *at.Inside != 0 && dx * dx + dy * dy == distance) return row;
    }
}

}  // namespace

void PixelsForWindow(ScreenWindow& window) {
    SceneForWindow(window);
    SetInside(window);
    if (Scene.PixelsOf == window.Id) return;
    rechne_PixelCloud(window);
    Rechne_pixel(window);
}

// Most blocks hold no point that is nearer than the nearest so far, plotted or not, so half of the columns is
// never read there: at a million points it is the memory that takes the time.
int Search_Point_Index(ScreenWindow& window, float mouseX, float mouseY) {
    PixelsForWindow(window);
    const double x = mouseX, y = mouseY;
    double best = kFar;
    int block = 0;  // where the best was found
    for (int first = 1; first <= Scene.Rows; first += kBlock) {
        const int count = std::min(kBlock, Scene.Rows + 1 - first);
        const Columns at = ColumnsFrom(first);
        if (!(LeastOfAll(count, at.X, at.Y, x, y) < best)) continue;
        const double least = LeastOfPlotted(count, at, x, y);
        if (!(least < best)) continue;
        best = least;
        block = first;
    }
    if (block == 0) return 0;
    const int row = RowAt(block, best, x, y);
    return row > Scene.Ident && row <= 2 * Scene.Ident ? row - Scene.Ident : row;
}

bool PixelWithinScreen(const ScreenWindow& window, int row) {
    Require(row >= 1 && row <= UpperBound(Scene.PixelX));
    const float x = Scene.PixelX[static_cast<std::size_t>(row)];
    const float y = Scene.PixelY[static_cast<std::size_t>(row)];
    const int right = PictureWidth(window) - kRightMargin;
    const int lower = PictureHeight(window) - window.Screen.StatusBarHeight - kLowerMargin;
    return x >= 0 && y >= 0 && x <= static_cast<float>(right) && y <= static_cast<float>(lower);
}

// Sheet and scene list the same points in the same order, but that the scene has the second points of the
// pairs in between.
int IndexMainSheet(int row) {
    const PointCounts counts = {Scene.Ident, Scene.MCSOnly, Scene.OCSOnly};
    if (row < 1 || row > Scene.Rows || MainSheetWindow.Cells.Counts != counts) return 0;
    return MainSheet_LineOf(row > Scene.Ident ? row - Scene.Ident : row);
}

int ActualRow() {
    const PointCounts counts = {Scene.Ident, Scene.MCSOnly, Scene.OCSOnly};
    if (Scene.ActualPointName.empty() || MainSheetWindow.Cells.Counts != counts) return 0;
    const int filled = MainSheet_CursorRow();
    const int row = filled > Scene.Ident ? filled + Scene.Ident : filled;
    return row != 0 && ScenePointName(row) == Scene.ActualPointName ? row : 0;
}

void TakeActualPoint(int row) {
    Scene.RotateAboutIndex = row;
    Scene.ActualPointName = ScenePointName(row);
    if (const int line = IndexMainSheet(row); line != 0) MainSheet_ShowLine(line);
    if (!DesktopDefaults.PointsFollow || row > 2 * Scene.Ident) return;
    CalculationWindow_ShowPoint(row > Scene.Ident ? row - Scene.Ident : row);
}

// A rotation about the point that has just been picked is taken by the first picture that is drawn.
void DrawActualPoint(ScreenWindow* first) {
    if (first != nullptr) Stelle_Grafik_dar(*first);
    for (const auto& window : Screens().Open)
        if (window.get() != first) Stelle_Grafik_dar(*window);
}

void SetActivePoint(int point) {
    if (point < 1 || point > Scene.Ident) return;
    Scene.ActualPointName = ScenePointName(point);
    DrawActualPoint();
}

void SetActiveSheetRow(int filledRow) {
    const PointCounts counts = {Scene.Ident, Scene.MCSOnly, Scene.OCSOnly};
    if (filledRow < 1 || MainSheetWindow.Cells.Counts != counts) return;
    Scene.ActualPointName = ScenePointName(filledRow > Scene.Ident ? filledRow + Scene.Ident : filledRow);
    DrawActualPoint();
}

}  // namespace corvinade::graphics
