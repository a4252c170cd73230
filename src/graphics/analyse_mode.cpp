// The analyse mode: a loop that yields each round, so that everything may happen under it.
#include "graphics/analyse_mode.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "core/controller.h"
#include "core/form_main.h"
#include "core/platform.h"
#include "core/run.h"
#include "graphics/drawing.h"
#include "graphics/picking.h"
#include "graphics/point_loop.h"
#include "graphics/projection.h"
#include "graphics/scene.h"
#include "graphics/tolerance.h"

namespace corvinade::graphics {

namespace {

constexpr int kSteps = 10;           // from the point to the end of its vector
constexpr double kProgress = 100;    // pixels, the progress line at its longest
constexpr int kPaused_ms = 40;       // a round in which nothing moves
constexpr double kMostPixels = 4e8;  // painted between two yields

// To the end of the vectors and back, without an end.
struct Walk {
    int Step = 0, Direction = 1;
    double T() const { return static_cast<double>(Step) / kSteps; }
    bool AtEnd() const { return Step == 0 || Step == kSteps; }
    void GoOn() {
        if (Step + Direction > kSteps || Step + Direction < 0) Direction = -Direction;
        Step += Direction;
    }
};

// Vectors and classes of this window, where another one, or a new result, has been drawn since.
void BringUpToDate(ScreenWindow& window) {
    SceneForWindow(window);
    Transform_dev_to_klasse(window);
    PixelsForWindow(window);
}

// As the points are painted, but that a million of large squares, which cover the picture long before, do not
// keep the loop from its next yield.
int RadiusOfSquares(const ScreenWindow& window) {
    const double side = std::sqrt(kMostPixels / std::max(1, Scene.Ident));
    return std::min(SquareRadius(window.State.BigNess), static_cast<int>(side / 2));
}

void DrawPointsOnTheirWay(ScreenWindow& window, double t) {
    Surface& screen = window.Screen;
    if (screen.Pixels == nullptr) return;
    const int r = RadiusOfSquares(window);
    const auto left = static_cast<float>(-r), top = left;
    const auto right = static_cast<float>(screen.Width + r), bottom = static_cast<float>(screen.Height + r);
    for (int i = 1; i <= Scene.Ident; ++i) {
        if (!IsSeen(i)) continue;
        const auto row = static_cast<std::size_t>(i);
        const auto x = static_cast<float>(Scene.PixelX[row] + t * Scene.VecPixelX[row]);
        const auto y = static_cast<float>(Scene.PixelY[row] + t * Scene.VecPixelY[row]);
        if (!(x >= left && x <= right && y >= top && y <= bottom)) continue;
        PaintSquare(screen, x, y, r, PixelOf(static_cast<Colour>(Scene.Points[kSceneColour][row])));
    }
}

void DrawRound(ScreenWindow& window, double t) {
    Surface& screen = window.Screen;
    DrawPointsOnTheirWay(window, t);
    if (screen.Line != nullptr)
        screen.Line(screen, 0, 0, static_cast<float>(t * kProgress), 0, QbColor(10), 1);
    if (screen.Refresh != nullptr) screen.Refresh(screen);
}

// With the lines and points that the texts stand at, these go too. The paint at the end brings them back.
void Clear(ScreenWindow& window) {
    for (ScreenLabel& label : window.Labels) label.Visible = false;
    window.LabelScale.Visible = window.LabelVectorScale.Visible = false;
    if (window.Screen.Clear != nullptr) window.Screen.Clear(window.Screen, window.BackColor);
}

void Yield(bool paused) {
    if (paused)
        Pause(kPaused_ms);
    else
        YieldToEvents();
}

}  // namespace

void AnalyseModeAction(ScreenWindow& window) {
    // Turned off and on again inside a yield of its own loop, the mode goes on with that one.
    if (window.AnalyseLoop) return;
    const std::uint64_t id = window.Id, generation = Run.JobGeneration;
    window.AnalyseLoop = true;
    SceneForWindow(window);
    Transform_dev_to_klasse(window);
    rechne_PixelCloud(window);
    Rechne_pixel(window);
    Walk walk;
    while (window.AnalyseMode && Run.JobGeneration == generation) {
        Yield(window.AnalysePaused);
        if (!ScreenIsOpen(id)) return;
        if (!window.AnalyseMode || Run.JobGeneration != generation) break;
        BringUpToDate(window);
        if (!window.AnalysePaused) {
            if (walk.AtEnd() && !Main.MenüAnsichtAnalyseKeepPoints.Checked) Clear(window);
            walk.GoOn();
        }
        DrawRound(window, walk.T());
    }
    window.AnalyseLoop = window.AnalyseMode = window.AnalysePaused = false;
    ProgrammLogik();
    Stelle_Grafik_dar(window);
}

void ToggleAnalyseMode(ScreenWindow& window) {
    window.AnalyseMode = !window.AnalyseMode;
    window.AnalysePaused = false;
    ProgrammLogik();
    if (window.AnalyseMode) AnalyseModeAction(window);
}

}  // namespace corvinade::graphics
