// What the keys do on the picture of a graphics window.
#include <algorithm>
#include <array>

#include "graphics/analyse_mode.h"
#include "graphics/drawing.h"
#include "graphics/projection.h"
#include "graphics/screen_events.h"
#include "graphics/view_undo.h"
#include "graphics/views.h"

namespace corvinade::graphics {

namespace {

constexpr double kStep = 6.28318530717958 / 4 / 10;  // rad: forty to the turn
constexpr double kNearestByKey = 1000;               // BildFaktor
constexpr float kPanSteps = 40;                      // across the picture

// What one press does: with Shift it turns by steps about a, b, c, without it moves the picture by fortieths.
struct KeyAction {
    std::string_view Key;
    std::array<double, 3> Turn;
    float Right = 0, Up = 0;
};
constexpr KeyAction kActions[] = {
    {"r", {0, 0, -1}},       {"R", {0, 0, -1}},           {"l", {0, 0, 1}},         {"L", {0, 0, 1}},
    {"Up", {1, 0, 0}, 0, 1}, {"Down", {-1, 0, 0}, 0, -1}, {"Left", {0, -1, 0}, -1}, {"Right", {0, 1, 0}, 1},
};

void PaintAndStore(ScreenWindow& window) {
    Stelle_Grafik_dar(window);
    StoreScreenPropertiesToRecord(window);
}

void Turn(ScreenWindow& window, const KeyAction& action) {
    const auto angle = [&](int axis) {
        return ViewAngle(window, axis) + action.Turn[static_cast<std::size_t>(axis - 1)] * kStep;
    };
    SetViewAngles(window, angle(1), angle(2), angle(3));
    PaintAndStore(window);
}

void Move(ScreenWindow& window, const KeyAction& action) {
    window.State.BildOffsetX += action.Right * static_cast<float>(PictureWidth(window)) / kPanSteps;
    window.State.BildOffsetY += action.Up * static_cast<float>(PictureHeight(window)) / kPanSteps;
    PaintAndStore(window);
}

void ZoomInAtMouse(ScreenWindow& window) {
    const double factor = std::min(window.State.BildFaktor / kZoomStep, kNearestByKey);
    ZoomAbout(window, window.Mouse.X, window.Mouse.Y, factor);
    PaintAndStore(window);
}

bool IsOneOf(std::string_view key, std::string_view first, std::string_view second) {
    return key == first || key == second;
}

}  // namespace

void ScreenPixel_KeyDown(ScreenWindow& window, std::string_view key, bool shift, bool ctrl) {
    window.BindingsShown = false;
    if (shift || key == "Shift") Screens().RotateKey = true;
    if (ctrl || key == "Ctrl") Screens().PanKey = true;
    if (IsOneOf(key, "t", "T")) window.Mouse.KeyT = true;
    if (IsOneOf(key, "b", "B")) window.Mouse.KeyB = true;
    if (key == "Pause" && window.AnalyseMode) window.AnalysePaused = !window.AnalysePaused;
    if (IsOneOf(key, "Esc", "Escape") && window.AnalyseMode) ToggleAnalyseMode(window);
    if (key == "KP_Subtract") ZoomOut(window);
    if (key == "KP_Add") ZoomInAtMouse(window);
    for (const KeyAction& action : kActions) {
        if (action.Key != key) continue;
        if (Screens().RotateKey)
            Turn(window, action);
        else if (action.Right != 0 || action.Up != 0)
            Move(window, action);
    }
}

void ScreenPixel_KeyUp(ScreenWindow& window, std::string_view) {
    Screens().RotateKey = Screens().PanKey = false;
    window.Mouse.KeyT = window.Mouse.KeyB = false;
}

}  // namespace corvinade::graphics
