// Fit, fixed views, zoom and length of the vectors of a graphics window.
#include "graphics/views.h"

#include <algorithm>
#include <cmath>

#include "core/desktop_defaults.h"
#include "core/job.h"
#include "core/platform.h"
#include "core/run.h"
#include "fit/require.h"
#include "graphics/drawing.h"
#include "graphics/projection.h"
#include "graphics/scene.h"
#include "graphics/view_undo.h"
#include "graphics/view_values.h"

namespace corvinade::graphics {

namespace {

constexpr double kVectorStep = 1.5;
constexpr double kLongestVectors = 1e7, kShortestVectors = 1e-30;  // Vec_Maßstab, pixels per mm

constexpr double kDegree = 180 / 3.14159265358979;
constexpr double kSideways = 4.712388980384685;  // three quarters of a turn

void ShowFrom(ScreenWindow& window, double a, double b, double c) {
    SetViewAngles(window, a, b, c);
    rechne_PixelCloud(window);
    Stelle_Grafik_dar(window);
    StoreScreenPropertiesToRecord(window);
}

void ZoomStep(ScreenWindow& window, double factor) {
    const bool mouse = Screens().Wheel;
    Screens().Wheel = false;
    const float x = mouse ? window.Mouse.X : static_cast<float>(PictureWidth(window)) / 2;
    const float y = mouse ? window.Mouse.Y : static_cast<float>(PictureHeight(window)) / 2;
    ZoomAbout(window, x, y, factor);
    Stelle_Grafik_dar(window);
    StoreScreenPropertiesToRecord(window);
}

// The right part of the picture that bar and its texts take, pixels; a third at most.
double RoomOfBar(const ScreenWindow& window) {
    if (!DesktopDefaults.Fit || !LookOf(window).ColorBar) return 0;
    return std::min(PictureWidth(window) - ColorBarLeft(window), PictureWidth(window) / 3.0);
}

// Without a refusal the vectors take the length; both ends are painted and stored.
void SetVectorLength(ScreenWindow& window, double length, const char* refusal) {
    const std::uint64_t id = window.Id;
    if (refusal != nullptr)
        ShowMessage(refusal);
    else
        window.State.Vec_Maßstab = static_cast<float>(length);
    // The message has let events be handled.
    if (!ScreenIsOpen(id)) return;
    Stelle_Grafik_dar(window);
    StoreScreenPropertiesToRecord(window);
}

}  // namespace

void Anpassen(ScreenWindow& window) {
    // The tables may hold the view of another window.
    SceneForWindow(window);
    rechne_PixelCloud(window);
    if (Scene.Rows == 0) return;
    const auto& [xmin, xmax, ymin, ymax, zmin, zmax] = window.ViewBox;
    const double least = 1e-10;  // points that all coincide fit too
    const double bar = RoomOfBar(window);
    const double sx = (PictureWidth(window) - bar) / (least + (static_cast<double>(xmax) - xmin));
    const double sy = PictureHeight(window) / (least + (static_cast<double>(ymax) - ymin));
    const auto factor = static_cast<float>(0.9 * std::min(sx, sy));
    if (!(factor > kLeastFaktor && factor < kLargestFaktor)) return;
    window.State.BildFaktor = factor;
    CenterBox(window);
    window.State.BildOffsetX -= static_cast<float>(bar / 2);
}

void GrafikAnpassen(ScreenWindow& window) {
    Anpassen(window);
    Stelle_Grafik_dar(window);
    StoreScreenPropertiesToRecord(window);
}

// The coordinate origin of the view comes to the middle, wherever the points lie: wanted so.
void Center(ScreenWindow& window) {
    // Its box is that of its own view: the tables may hold the view of another window.
    SceneForWindow(window);
    rechne_PixelCloud(window);
    window.State.BildOffsetX = static_cast<float>(PictureWidth(window)) / 2;
    window.State.BildOffsetY = static_cast<float>(PictureHeight(window)) / 2;
    StoreScreenPropertiesToRecord(window);
}

void TopView(ScreenWindow& window) {
    ShowFrom(window, kTopViewAngle, 0, 0);
}
void SideView(ScreenWindow& window) {
    ShowFrom(window, kSideways, 0, 0);
}
void FrontView(ScreenWindow& window) {
    ShowFrom(window, kSideways, kSideways, 0);
}
void IsoView(ScreenWindow& window) {
    ShowFrom(window, 210 / kDegree, -50 / kDegree, -50 / kDegree);
}

void ZoomAbout(ScreenWindow& window, float x, float y, double factor) {
    const double H = PictureHeight(window), ratio = factor / window.State.BildFaktor;
    const double cx = x, cy = y;
    const auto offsetX = static_cast<float>(-(cx - window.State.BildOffsetX) * ratio + cx);
    const auto offsetY = static_cast<float>(-(H - cy - window.State.BildOffsetY) * ratio + H - cy);
    // At the ends of what the numbers can hold a step is not taken, or no step would lead back.
    if (!(factor > kLeastFaktor && factor < kLargestFaktor) || !std::isfinite(offsetX) ||
        !std::isfinite(offsetY))
        return;
    window.State.BildOffsetX = offsetX;
    window.State.BildOffsetY = offsetY;
    window.State.BildFaktor = static_cast<float>(factor);
}

void ZoomToRow(ScreenWindow& window, int row) {
    constexpr float kNear = 8;
    // As all points fit, and from there on: a second time it stays where it is.
    Anpassen(window);
    Rechne_pixel(window);
    Require(row >= 1 && row <= UpperBound(Scene.PixelX));
    const float x = Scene.PixelX[static_cast<std::size_t>(row)];
    const float y = Scene.PixelY[static_cast<std::size_t>(row)];
    ZoomAbout(window, x, y, kNear * window.State.BildFaktor);
    window.State.BildOffsetX += static_cast<float>(PictureWidth(window)) / 2 - x;
    window.State.BildOffsetY -= static_cast<float>(PictureHeight(window)) / 2 - y;
    Stelle_Grafik_dar(window);
    StoreScreenPropertiesToRecord(window);
}

void ZoomIn(ScreenWindow& window) {
    ZoomStep(window, window.State.BildFaktor / kZoomStep);
}
void ZoomOut(ScreenWindow& window) {
    ZoomStep(window, window.State.BildFaktor * kZoomStep);
}

void Vec_Maßstab_longer(ScreenWindow& window) {
    const double length = window.State.Vec_Maßstab * kVectorStep;
    SetVectorLength(window, length, length > kLongestVectors ? "Vectors can not be made longer" : nullptr);
}
void Vec_Maßstab_shorter(ScreenWindow& window) {
    const double length = window.State.Vec_Maßstab / kVectorStep;
    SetVectorLength(window, length, length < kShortestVectors ? "Vectors can not be made smaller" : nullptr);
}

namespace {

bool CountsForLimits(int row) {
    return !DesktopDefaults.ColorLimits ||
           (row <= Scene.Ident && (Used(row, 1) || Used(row, 2) || Used(row, 3)));
}

}  // namespace

float LargestDeviationForLimits() {
    float largest = 0;
    for (int row = 1; row <= Scene.Rows; ++row)
        if (CountsForLimits(row))
            largest = std::max(largest, Scene.Points[kSceneSize][static_cast<std::size_t>(row)]);
    return largest;
}

float LargestDeviation() {
    float largest = 0;
    for (int row = 1; row <= Scene.Rows; ++row)
        largest = std::max(largest, Scene.Points[kSceneSize][static_cast<std::size_t>(row)]);
    return largest;
}

float StartVec_Maßstab(const ScreenWindow& window) {
    constexpr float kWithoutResult = 400;
    if (!IsTrue(Run.TrafoValid)) return kWithoutResult;
    const auto& [xmin, xmax, ymin, ymax, zmin, zmax] = window.ViewBox;
    const double size = (static_cast<double>(xmax) - xmin + (static_cast<double>(ymax) - ymin)) / 2;
    // No points, or all at one place: vectors of length 0 could never be made longer.
    if (!(size > 0)) return kWithoutResult;
    const auto length = static_cast<float>(size / (LargestDeviation() + 1e-10) / 500);
    return std::isfinite(length) && length > 0 ? length : kWithoutResult;
}

}  // namespace corvinade::graphics
