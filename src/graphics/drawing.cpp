// The paint of a graphics window: every layer in its order.
#include "graphics/drawing.h"

#include <cmath>

#include "core/desktop_defaults.h"
#include "core/form_main.h"
#include "core/run.h"
#include "core/settings.h"
#include "graphics/black_planes.h"
#include "graphics/ellipsoids.h"
#include "graphics/flags.h"
#include "graphics/lines.h"
#include "graphics/measuring.h"
#include "graphics/point_loop.h"
#include "graphics/projection.h"
#include "graphics/scene.h"
#include "graphics/tolerance.h"

namespace corvinade::graphics {

namespace {

constexpr float kLeastDepth = 0.0001F;  // of the box, mm: with less, all points have one size

DepthSize DepthOf(const ScreenWindow& window, const PictureLook& look) {
    const double depth = static_cast<double>(window.ViewBox[5]) - window.ViewBox[4];
    // A depth without end, as a coordinate beyond all numbers makes it, tells no point from another.
    if (!look.NearPointsBigger || !(depth > kLeastDepth) || !std::isfinite(depth)) return {};
    const int bigness = window.State.BigNess;
    return {true, bigness == 1 ? 0.0F : static_cast<float>(bigness / (depth + 1e-9))};
}

void Paint(ScreenWindow& window, const PictureLook& look) {
    SceneForWindow(window);
    RechneCloudAndPixels(window);
    Surface& screen = window.Screen;
    if (screen.Clear != nullptr) screen.Clear(screen, window.BackColor);
    if (IsTrue(window.State.BlackPlane)) Zeichne_Black_Plane(window);
    SetInside(window);
    const DepthSize depth = DepthOf(window, look);
    window.Labels.clear();
    DrawPoints(window, depth, look.PointNames);
    const ScreenRecord& state = window.State;
    const bool flags = state.FlagCount != 0 || window.DynamicFlag.Row != 0;
    if (flags) DrawFlagLines(window);
    if (IsTrue(state.LineMode)) DrawLines(window);
    DrawRVectors(window);
    DrawEllipsoids(window);
    if (IsTrue(state.GridXY) || IsTrue(state.GridYZ) || IsTrue(state.GridZX)) Zeichne_KSGrid(window);
    if (IsTrue(Settings.VectorQuat) && IsTrue(Run.TrafoValid)) Zeichne_Quat(window);
    if (look.ColorBar) Zeichne_ColorBar(window);
    if (DesktopDefaults.Fit) DrawWorstPoint(window);
    if (look.Axes) Zeichne_Kosys(window, look.AxisLabels);
    Zeichne_Scale(window);
    DrawMeasured(window);
    if (flags) DrawFlags(window);
    if (screen.Refresh != nullptr) screen.Refresh(screen);
    ++window.PaintCount;
}

}  // namespace

void Stelle_Grafik_dar(ScreenWindow& window) {
    Paint(window, LookOf(window));
}

void PaintWhileMoving(ScreenWindow& window) {
    PictureLook look = LookOf(window);
    look.PointNames = false;
    Paint(window, look);
}

// The text stands where it is asked for, as far as that is in the picture.
void SetLabelToPos(ScreenWindow& window, const std::string& text, float x, float y) {
    if (!(x < static_cast<float>(PictureWidth(window)) && y < static_cast<float>(PictureHeight(window))))
        return;
    window.Labels.push_back({text, x, y, QbColor(window.BackColor == QbColor(15) ? 0 : 7), true});
}

}  // namespace corvinade::graphics
