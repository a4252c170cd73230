// A picture of the open job, without a screen.
#include "cli/job_picture.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "core/job.h"
#include "core/platform.h"
#include "core/settings.h"
#include "fit/require.h"
#include "graphics/drawing.h"
#include "graphics/flags.h"
#include "graphics/picture_flags.h"
#include "graphics/projection.h"
#include "graphics/scene.h"
#include "graphics/still_picture.h"
#include "graphics/tolerance.h"
#include "graphics/view_values.h"
#include "graphics/views.h"
#include "paint/picture.h"
#include "paint/svg_surface.h"

namespace corvinade::cli {

namespace {

using FixedView = void (*)(ScreenWindow&);

FixedView FixedViewOf(const std::string& name) {
    if (name == "iso") return IsoView;
    if (name == "top") return TopView;
    if (name == "side") return SideView;
    return name == "front" ? FrontView : nullptr;
}

// A graphics window for the picture alone. The centre of rotation is that of all windows and goes back to
// where it was.
class PictureWindow {
public:
    explicit PictureWindow(const PictureSetup& setup) : id_(OpenScreenWindow(setup).Id) {}
    ~PictureWindow() {
        for (const auto& open : Screens().Open)
            if (open->Id == id_) {
                CloseScreenWindow(*open);
                break;
            }
        Scene.RotCenter = center_;
    }
    PictureWindow(const PictureWindow&) = delete;
    PictureWindow& operator=(const PictureWindow&) = delete;
    ScreenWindow& operator*() const {
        const auto& all = Screens().Open;
        const auto window =
            std::find_if(all.begin(), all.end(), [this](const auto& open) { return open->Id == id_; });
        Require(window != all.end());
        return **window;
    }

private:
    Vec3 center_ = Scene.RotCenter;
    std::uint64_t id_;
};

// A target lies under its point's mark, in one colour, and would hide that of the point.
PictureLook LookOf(const PictureWish& wish) {
    return {.StartPoints = IsTrue(Job.ViewAllMCS),
            .Targets = wish.Targets,
            .StartPointsAlone = !wish.PairsAlone && IsTrue(Job.ViewAllonlyMCS),
            .TargetsAlone = !wish.PairsAlone && IsTrue(Job.ViewAllonlyOCS),
            .PointNames = wish.Names,
            .ColorBar = wish.ColorBar,
            .AxisLabels = wish.AxisLabels,
            .NearPointsBigger = false};
}

// Of the points that take part in the fit, mm; of all where none does.
double LargestUsedDeviation() {
    double used = 0, all = 0;
    for (int i = 1; i <= Scene.Ident; ++i) {
        const auto row = static_cast<std::size_t>(i);
        const double size = std::hypot(Scene.Points[kSceneDevX][row], Scene.Points[kSceneDevY][row],
                                       Scene.Points[kSceneDevZ][row]);
        if (!std::isfinite(size)) continue;
        all = std::max(all, size);
        if (Used(i, 1) || Used(i, 2) || Used(i, 3)) used = std::max(used, size);
    }
    return used > 0 ? used : all;
}

// 1, 2 or 5 times a power of ten, at most `value`.
double RoundDown(double value) {
    const double power = std::pow(10.0, std::floor(std::log10(value)));
    for (const double step : {5.0, 2.0})
        if (step * power <= value) return step * power;
    return power;
}

// Vectors that are seen and do not hide the rest: the longest of a point in use comes to a tenth of the
// picture.
double MagnificationFor(const ScreenWindow& window) {
    const double side = std::min(PictureWidth(window), PictureHeight(window));
    const double wanted = side / 10 / (LargestUsedDeviation() * window.State.BildFaktor);
    return std::isfinite(wanted) && wanted > 0 ? RoundDown(wanted) : 1;
}

void FillSharply(Surface& screen) {
    screen.Scale = 2;
    FillSurfaceWithPicture(screen);
}

int PointSizeFor(int rows) {
    return rows <= 2000 ? 8 : rows <= 20000 ? 4 : 2;
}

// The scene turns about its middle: with far away coordinates the offsets of the picture, 32-bit numbers,
// would not have the digits for a small cloud.
void CenterScene() {
    for (int axis = 1; axis <= 3; ++axis) {
        const std::vector<float>& column = Scene.Points[static_cast<std::size_t>(axis)];
        double least = 0, most = 0;
        bool first = true;
        for (std::size_t row = 1; row < column.size(); ++row) {
            const double place = column[row];
            if (Scene.Points[kScenePlotted][row] != 1.0F || !std::isfinite(place)) continue;
            least = first ? place : std::min(least, place);
            most = first ? place : std::max(most, place);
            first = false;
        }
        Scene.RotCenter(axis) = least / 2 + most / 2;
    }
}

// What stands at the picture's edges: the colour bar with its numbers, and the scales. Small pictures have no
// room to spare for them.
struct Margins {
    double Right = 0, Bottom = 0;  // pixels
};

Margins MarginsOf(const ScreenWindow& window) {
    constexpr double kScales = 105, kBar = 75, kNumbers = 60, kName = 20;
    const bool roomy = PictureWidth(window) >= 400 && PictureHeight(window) >= 400;
    if (!roomy) return {};
    const PictureLook look = LookOf(window);
    // A name stands below its point.
    return {look.ColorBar ? kBar + kNumbers : 0, look.PointNames ? kScales + kName : kScales};
}

// Fits what is plotted; a graphics window's own fit counts hidden points too.
void FitScene(ScreenWindow& window) {
    rechne_PixelCloud(window);
    constexpr float kFar = 1e30F;
    float left = kFar, right = -kFar, top = kFar, bottom = -kFar;
    for (std::size_t row = 1; row <= static_cast<std::size_t>(Scene.Rows); ++row) {
        const float x = Scene.View[1][row], y = Scene.View[2][row];
        if (Scene.Points[kScenePlotted][row] != 1.0F || !std::isfinite(x) || !std::isfinite(y)) continue;
        left = std::min(left, x);
        right = std::max(right, x);
        top = std::min(top, y);
        bottom = std::max(bottom, y);
    }
    if (left > right) return;  // nothing is plotted
    window.ViewBox = {left, right, top, bottom, window.ViewBox[4], window.ViewBox[5]};
    const Margins margins = MarginsOf(window);
    const double least = 1e-10, W = PictureWidth(window), H = PictureHeight(window);
    const double fit = 0.9 * std::min((W - margins.Right) / (least + right - left),
                                      (H - margins.Bottom) / (least + bottom - top));
    // A single point has no size to fit.
    constexpr double kLargestFit = 1e4;  // pixels per mm
    window.State.BildFaktor = static_cast<float>(fit > kLargestFit ? 1 : fit);
    CenterBox(window);
    // No farther from the middle than it takes.
    const double F = window.State.BildFaktor;
    const double rightEdge = W / 2 + (static_cast<double>(right) - left) * F / 2;
    const double lowerEdge = H / 2 + (static_cast<double>(bottom) - top) * F / 2;
    window.State.BildOffsetX -= static_cast<float>(std::max(0.0, rightEdge - (W - margins.Right)));
    window.State.BildOffsetY += static_cast<float>(std::max(0.0, lowerEdge - (H - margins.Bottom)));
}

// A saved view shows the same section of the scene, whatever the size of its window was.
void TakeSavedView(ScreenWindow& window, const ScreenRecord& view, bool withFlags) {
    TakeView(window, view, withFlags);
    rechne_PixelCloud(window);
    if (view.WindowWidth > 0 && view.WindowHeight > 0)
        return ScaleView(window, view.WindowWidth, view.WindowHeight);
    PlaceFlagsOfView(window, PictureWidth(window), PictureHeight(window), 1);
    FitScene(window);
}

void SetUpView(ScreenWindow& window, const PictureWish& wish, const std::vector<std::string>& views) {
    if (const FixedView fixed = FixedViewOf(wish.View)) {
        CenterScene();
        fixed(window);
        FitScene(window);
        // The colour of 0 is in the middle of the bar, so its numbers are those of both sides.
        window.State.Max = LargestUsedDeviation();
        window.State.Min = -window.State.Max;
    } else {
        Scene.RotCenter = Vec3();
        const int number = SavedViewNumber(views, wish.View);
        Require(number >= 1 && static_cast<std::size_t>(number) < Job.SavedView.size());
        TakeSavedView(window, Job.SavedView[static_cast<std::size_t>(number)], wish.Flags);
    }
    ZoomAbout(window, static_cast<float>(PictureWidth(window)) / 2,
              static_cast<float>(PictureHeight(window)) / 2, window.State.BildFaktor * wish.Zoom);
}

// Gives the magnification of the vectors.
double TakeWishes(ScreenWindow& window, const PictureWish& wish) {
    ScreenRecord& state = window.State;
    const bool saved = !IsFixedView(wish.View);
    if (wish.PointSize > 0)
        state.BigNess = static_cast<std::int16_t>(wish.PointSize);
    else if (!saved)
        state.BigNess = static_cast<std::int16_t>(PointSizeFor(Scene.Rows));
    if (wish.Classes > 0) state.AnzKlassenPos = state.AnzKlassenNeg = static_cast<std::int16_t>(wish.Classes);
    if (wish.Limits_mm) std::tie(state.Min, state.Max) = *wish.Limits_mm;
    if (!wish.Vectors) return static_cast<double>(state.Vec_Maßstab) / state.BildFaktor;
    state.VectorMode = kTrue;
    const double factor = wish.Magnification > 0 ? wish.Magnification : MagnificationFor(window);
    state.Vec_Maßstab = static_cast<float>(state.BildFaktor * factor);
    return factor;
}

}  // namespace

bool IsFixedView(const std::string& name) {
    return FixedViewOf(name) != nullptr;
}

int SavedViewNumber(const std::vector<std::string>& names, const std::string& name) {
    const auto found = std::find(names.begin(), names.end(), name);
    return found == names.end() ? 0 : static_cast<int>(found - names.begin()) + 1;
}

std::string JobPicture(const PictureWish& wish, PictureForm form, const std::vector<std::string>& views,
                       PictureFacts& facts) {
    const bool svg = form == PictureForm::Svg || form == PictureForm::SvgInPage;
    const PictureWindow opened({.Width = wish.Width,
                                .Height = wish.Height,
                                .BackColor = wish.Background.value_or(Settings.ScreenBackColor),
                                .Look = LookOf(wish),
                                .Fill = svg                             ? FillSurfaceWithSvg
                                        : form == PictureForm::SharpPng ? FillSharply
                                                                        : FillSurfaceWithPicture});
    ScreenWindow& window = *opened;
    SetUpView(window, wish, views);
    const double magnification = TakeWishes(window, wish);
    Stelle_Grafik_dar(window);
    int leftOut = 0;
    if (wish.Flags && FlagsOf(window.State) == 0) {
        leftOut = FlagWorstPairs(window, wish.FlagCount);
        Stelle_Grafik_dar(window);
    }
    const ScreenRecord& state = window.State;
    facts = {IsTrue(state.VectorMode), magnification, state.Max, {}, leftOut};
    for (int k = 1; k <= state.AnzKlassenPos; ++k) facts.Colours.push_back(ClassColour(window, k));
    if (svg) return SvgOfWindow(window, "Deviations of the points", form == PictureForm::SvgInPage);
    std::string bytes = PictureBytes(window);
    if (bytes.empty()) throw PlatformError{"There is not enough memory for a picture of this size"};
    return bytes;
}

}  // namespace corvinade::cli
