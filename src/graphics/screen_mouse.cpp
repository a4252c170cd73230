// What the mouse does on the picture of a graphics window.
#include <algorithm>
#include <cmath>
#include <utility>

#include "core/form_main.h"
#include "core/platform.h"
#include "core/settings.h"
#include "engine/transform.h"
#include "fit/rotations.h"
#include "graphics/black_planes.h"
#include "graphics/drawing.h"
#include "graphics/flags.h"
#include "graphics/lines.h"
#include "graphics/measuring.h"
#include "graphics/picking.h"
#include "graphics/projection.h"
#include "graphics/scene.h"
#include "graphics/screen_events.h"
#include "graphics/status_bar.h"
#include "graphics/view_undo.h"
#include "graphics/view_values.h"
#include "graphics/views.h"

namespace corvinade::graphics {

namespace {

constexpr double kTurn = 0.008, kRoll = 0.02;  // rad a pixel
constexpr float kLeastTurn = 3;                // pixels; a smaller move does not turn
constexpr float kLeastFrame = 8;               // pixels; a frame of this size does not zoom yet
constexpr double kNearestByFrame = 1e6;        // BildFaktor

bool Rotating(const MouseEvent& event) {
    return event.Shift || Screens().RotateKey;
}
bool Panning(const MouseEvent& event) {
    return event.Ctrl || Screens().PanKey;
}
bool MovesPlane(const ScreenWindow& window) {
    return window.Mouse.KeyT || window.Mouse.KeyB;
}

void PaintMove(ScreenWindow& window) {
    PaintWhileMoving(window);
    window.Mouse.ViewMoved = true;
}

void MovePlanes(ScreenWindow& window, const MouseEvent& event) {
    const double dx = window.Mouse.X - event.X, dy = window.Mouse.Y - event.Y;
    if (window.Mouse.KeyT) MoveTopPlane(window, dx, dy);
    if (window.Mouse.KeyB) ThickenSlab(window, dx, dy);
    Stelle_Grafik_dar(window);
    // Also where the key is let go before the button, which is no end of a frame then.
    window.Mouse.ViewMoved = window.Mouse.PlanesMoved = true;
}

Colour FrameColourOn(Colour background) {
    return QbColor(IsLight(background) ? 0 : 15);
}

void BeginFrame(ScreenWindow& window) {
    ScreenMouse& mouse = window.Mouse;
    mouse.FrameArmed = true;
    mouse.FrameVisible = false;
    mouse.FrameLeft = static_cast<int>(mouse.DownX);
    mouse.FrameTop = static_cast<int>(mouse.DownY);
    mouse.FrameWidth = mouse.FrameHeight = 0;
    mouse.FrameColor = FrameColourOn(window.BackColor);
}

void SizeFrame(ScreenMouse& mouse, const MouseEvent& event) {
    const float width = event.X - mouse.DownX, height = event.Y - mouse.DownY;
    mouse.FrameVisible = width >= 1 && height >= 1;
    if (!mouse.FrameVisible) return;
    mouse.FrameWidth = static_cast<int>(width);
    mouse.FrameHeight = static_cast<int>(height);
}

// About the axes of the screen and not those of the object: the turn of the mouse stands in front of the
// rotation that there is.
void Rotate(ScreenWindow& window, const MouseEvent& event) {
    const auto step = [](float last, float now) {
        const float way = last - now;
        return std::abs(way) < kLeastTurn ? 0.0 : static_cast<double>(way);
    };
    const double dx = step(window.Mouse.X, event.X), dy = step(window.Mouse.Y, event.Y);
    if (dx != 0 || dy != 0) {
        const Mat3 before = ViewRotation(window);
        Mat3 turn, after;
        RotMatrixXYZ(-dy * kTurn, -dx * kTurn, 0, turn);
        for (int row = 1; row <= 3; ++row)
            for (int column = 1; column <= 3; ++column)
                after(row, column) = turn(row, 1) * before(1, column) + turn(row, 2) * before(2, column) +
                                     turn(row, 3) * before(3, column);
        Vec3 angles, other;
        EulerFromMatrixXYZ(after, angles, other);
        SetViewAngles(window, angles(1), angles(2), angles(3));
    }
    PaintMove(window);
}

void Pan(ScreenWindow& window, const MouseEvent& event) {
    window.State.BildOffsetX -= window.Mouse.X - event.X;
    window.State.BildOffsetY += window.Mouse.Y - event.Y;
    PaintMove(window);
}

void Roll(ScreenWindow& window, const MouseEvent& event) {
    const double way = (window.Mouse.X - event.X) + (window.Mouse.Y - event.Y);
    SetViewAngles(window, ViewAngle(window, 1), ViewAngle(window, 2), ViewAngle(window, 3) + way * kRoll);
    PaintMove(window);
}

// The frame from the place of the press to this one comes to fill the picture, its middle to the middle of
// the picture. False where it is too small for that.
bool ZoomToFrame(ScreenWindow& window, const MouseEvent& event) {
    const ScreenMouse& mouse = window.Mouse;
    ScreenRecord& state = window.State;
    const double dx = event.X - mouse.DownX, dy = event.Y - mouse.DownY;
    if (!(std::abs(dx) > kLeastFrame && std::abs(dy) > kLeastFrame)) return false;
    const double W = PictureWidth(window), H = PictureHeight(window), F = state.BildFaktor;
    const double factor = std::min({W * F / std::abs(dx), H * F / std::abs(dy), kNearestByFrame});
    // The frame's first edge goes to a, in y (which runs up there) the lower one to c.
    const double a = (W - factor * dx / F) / 2, c = (H - factor * dy / F) / 2;
    const auto offsetX = static_cast<float>(a - factor * ((mouse.DownX - state.BildOffsetX) / F));
    const auto offsetY = static_cast<float>(c - factor * ((H - event.Y - state.BildOffsetY) / F));
    if (!(factor > kLeastFaktor) || !std::isfinite(offsetX) || !std::isfinite(offsetY)) return false;
    state.BildFaktor = static_cast<float>(factor);
    state.BildOffsetX = offsetX;
    state.BildOffsetY = offsetY;
    Stelle_Grafik_dar(window);
    return true;
}

bool EndsFrame(const ScreenWindow& window, const MouseEvent& event) {
    const ScreenMouse& mouse = window.Mouse;
    return event.X != mouse.DownX && event.Buttons == kLeftButton && mouse.DownButton == kLeftButton &&
           !Rotating(event) && !Panning(event) && !MovesPlane(window) && !mouse.ViewMoved;
}

bool InPicture(const ScreenWindow& window, const MouseEvent& event) {
    return event.X >= 0 && event.Y >= 0 && event.X <= static_cast<float>(PictureWidth(window)) &&
           event.Y <= static_cast<float>(PictureHeight(window));
}

// A press on a flag is not one on the picture below it, unless the view is being turned or shifted.
bool PressedFlag(ScreenWindow& window, const MouseEvent& event) {
    if (Rotating(event) || Panning(event) || MovesPlane(window)) return false;
    if (event.Buttons != kLeftButton && event.Buttons != kRightButton) return false;
    const int flag = FlagAt(window, event.X, event.Y);
    if (flag == 0) return false;
    if (event.Buttons == kLeftButton)
        PressFlag(window, flag, event.X, event.Y);
    else
        ShowFlagMenu(window, flag);
    return true;
}

// The dynamic flag follows the point while no button is held.
void FollowWithFlag(ScreenWindow& window, const MouseEvent& event) {
    if (Main.MenüAnsichtDynamicFlag.Checked && event.Buttons == 0)
        DynamicFlagTo(window, window.Mouse.ActualRow);
}

}  // namespace

void ScreenPixel_MouseDown(ScreenWindow& window, const MouseEvent& event) {
    ScreenMouse& mouse = window.Mouse;
    Main.MenuFahne.Value = Main.MenuPicture.Value = 0;
    window.BindingsShown = false;
    mouse.DownButton = event.Buttons;
    mouse.X = mouse.DownX = event.X;
    mouse.Y = mouse.DownY = event.Y;
    mouse.ZoomedByFrame = mouse.ViewMoved = mouse.PlanesMoved = false;
    mouse.OnFlag = PressedFlag(window, event);
    if (mouse.OnFlag) return;
    if (event.Buttons == kRightButton && !Rotating(event)) {
        ZoomAbout(window, event.X, event.Y, window.State.BildFaktor * kZoomStep);
        Stelle_Grafik_dar(window);
    }
    if (event.Buttons == kLeftButton && !Panning(event)) BeginFrame(window);
    if (event.Buttons == kMiddleButton) Stelle_Grafik_dar(window);
}

void ScreenPixel_MouseMove(ScreenWindow& window, const MouseEvent& event) {
    ScreenMouse& mouse = window.Mouse;
    const bool left = (event.Buttons & kLeftButton) != 0, right = (event.Buttons & kRightButton) != 0;
    if (left && mouse.DraggedFlag != 0)
        DragFlag(window, event.X, event.Y);
    else if (left && right && Rotating(event))
        Roll(window, event);
    else if (left && Rotating(event))
        Rotate(window, event);
    else if (left && Panning(event))
        Pan(window, event);
    else if (left && MovesPlane(window) && IsTrue(window.State.BlackPlane))
        MovePlanes(window, event);
    else if (left && mouse.FrameArmed && !mouse.ViewMoved && !MovesPlane(window))
        SizeFrame(mouse, event);
    mouse.X = event.X;
    mouse.Y = event.Y;
    mouse.ActualRow = Search_Point_Index(window, event.X, event.Y);
    ShowPointInStatusBar(window, mouse.ActualRow);
    FollowWithFlag(window, event);
    LinesUnderMouse(window, mouse.ActualRow);
}

void ScreenPixel_MouseUp(ScreenWindow& window, const MouseEvent& event) {
    ScreenMouse& mouse = window.Mouse;
    if (mouse.OnFlag) return ReleaseFlag(window);
    if (event.Buttons == kRightButton && mouse.DownButton == kRightButton && Rotating(event) &&
        !mouse.ViewMoved)
        Main.MenuPicture.Value = 1;
    if (EndsFrame(window, event))
        mouse.ZoomedByFrame = ZoomToFrame(window, event);
    else if (mouse.ViewMoved && LookOf(window).PointNames)
        Stelle_Grafik_dar(window);  // the names come back
    if (event.Buttons == kLeftButton) mouse.FrameArmed = mouse.FrameVisible = false;
    // The flag mode keeps no turned or shifted views, but the planes always travel with the view.
    if (!IsTrue(window.State.FlagMode) || mouse.PlanesMoved) StoreScreenPropertiesToRecord(window);
}

void ScreenPixel_Click(ScreenWindow& window, const MouseEvent& event) {
    if (std::exchange(window.Mouse.ZoomedByFrame, false)) return;
    if ((event.Buttons & (kRightButton | kMiddleButton)) != 0 || window.Mouse.OnFlag) return;
    const bool plain = !Rotating(event) && !Panning(event);
    if (window.Measure.On && plain && InPicture(window, event)) {
        MeasureClicked(window, Search_Point_Index(window, event.X, event.Y));
        return;
    }
    // In the flag mode a plain click is for flags and leaves the actual point alone; lines are set all the
    // same.
    const bool forFlags = IsTrue(window.State.FlagMode) && plain;
    int row = 0;
    if (InPicture(window, event)) row = Search_Point_Index(window, event.X, event.Y);
    if (row != 0 && !forFlags) {
        TakeActualPoint(row);
        const bool recentres = Scene.RotateAboutArmed;
        DrawActualPoint(&window);
        if (recentres) StoreScreenPropertiesToRecord(window);
    }
    if (forFlags) FlagByClick(window, row, event.X, event.Y);
    LinesClicked(window, row);
}

void ScreenPixel_DblClick(ScreenWindow& window, const MouseEvent& event) {
    const bool other = (event.Buttons & (kRightButton | kMiddleButton)) != 0;
    if (other) return;
    if (const int flag = FlagAt(window, event.X, event.Y); flag != 0)
        return FlagDoubleClicked(window, flag, FlagCellAt(window, flag, event.X, event.Y));
    if (IsTrue(window.State.LineMode)) return;
    const std::uint64_t id = window.Id;
    const auto colour = AskColour(window.BackColor);
    // The dialog has let events be handled.
    if (!colour || !ScreenIsOpen(id)) return;
    window.BackColor = *colour;
    Stelle_Grafik_dar(window);
    StoreScreenPropertiesToRecord(window);
    Settings.ScreenBackColor = *colour;
    SettingsSchreiben({"ScreenBackColor"});
}

void ScreenPixel_Wheel(ScreenWindow& window, const MouseEvent& event, int delta) {
    if (delta == 0) return;
    window.BindingsShown = false;
    window.Mouse.X = event.X;
    window.Mouse.Y = event.Y;
    Screens().Wheel = true;
    if (delta > 0)
        ZoomIn(window);
    else
        ZoomOut(window);
}

}  // namespace corvinade::graphics
