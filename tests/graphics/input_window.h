// A graphics window on a small job, seen so that the point (x, y, z) of the job stands on pixel (x, y), and
// the user's mouse and keys on it.
#pragma once

#include <utility>

#include "analysis/main_sheet_job.h"
#include "graphics/drawing.h"
#include "graphics/graphics_refresh.h"
#include "graphics/picking.h"
#include "graphics/projection.h"
#include "graphics/scene.h"
#include "graphics/screen_events.h"
#include "graphics/screen_window.h"
#include "graphics/views.h"

using namespace corvinade;

class InputWindow : public MainSheetJob {
protected:
    static constexpr int kWidth = 800, kHeight = 600;

    InputWindow() {
        FillSurface = nullptr;
        Screens().NewWidth = kWidth;
        Screens().NewHeight = kHeight;
    }
    ~InputWindow() override {
        CloseAllGraphicsWindows();
        FillSurface = nullptr;
    }

    // Without rotation x' = x + 200 and y' = 200 - y, so with F = 1 PixelX = x + 200 + OffsetX and
    // PixelY = H - (200 - y + OffsetY).
    static void LookStraight(ScreenWindow& window) {
        SetViewAngles(window, 0, 0, 0);
        window.State.BildFaktor = 1;
        window.State.BildOffsetX = -200;
        window.State.BildOffsetY = kHeight - 200;
        Stelle_Grafik_dar(window);
    }
    static ScreenWindow& OpenStraight() {
        ProgrammLogik();
        EXPECT_TRUE(UserClick(Main.MenueGraphics));
        ScreenWindow& window = *Screens().Active;
        LookStraight(window);
        return window;
    }
    // Three pairs, a start point "S" and a target point "T", all apart in the picture; the target points of
    // the pairs stand 40 pixels right of their start points.
    static ScreenWindow& OpenFive() {
        AddPair({100, 100, 5}, {140, 100, 0});
        AddPair({300, 100, 6}, {340, 100, 0});
        AddPair({100, 300, 7}, {140, 300, 0});
        AddStart("S", 500, 500, 8);
        AddTarget("T", 700, 500, 9);
        SizeRest();
        Job.ViewAllOCS = kTrue;
        return OpenStraight();
    }

    static MouseEvent At(float x, float y, int buttons = 0) {
        return {.X = x, .Y = y, .Buttons = buttons, .Shift = false, .Ctrl = false};
    }
    static MouseEvent WithShift(MouseEvent event) {
        event.Shift = true;
        return event;
    }
    static MouseEvent WithCtrl(MouseEvent event) {
        event.Ctrl = true;
        return event;
    }
    static void Move(ScreenWindow& window, float x, float y) { ScreenPixel_MouseMove(window, At(x, y)); }
    // A press and a release at one place, as the faces send them.
    static void ClickAt(ScreenWindow& window, float x, float y) {
        ScreenPixel_MouseDown(window, At(x, y, kLeftButton));
        const std::uint64_t id = window.Id;
        ScreenPixel_MouseUp(window, At(x, y, kLeftButton));
        if (ScreenIsOpen(id)) ScreenPixel_Click(window, At(x, y, kLeftButton));
    }
    static void Drag(ScreenWindow& window, const MouseEvent& from, const MouseEvent& to) {
        ScreenPixel_MouseDown(window, from);
        ScreenPixel_MouseMove(window, to);
        ScreenPixel_MouseUp(window, to);
    }
    static void Press(ScreenWindow& window, const char* key) {
        ScreenPixel_KeyDown(window, key, false, false);
        ScreenPixel_KeyUp(window, key);
    }
    static void PressWithShift(ScreenWindow& window, const char* key) {
        ScreenPixel_KeyDown(window, "Shift", true, false);
        ScreenPixel_KeyDown(window, key, true, false);
        ScreenPixel_KeyUp(window, key);
        ScreenPixel_KeyUp(window, "Shift");
    }

    static std::array<double, 3> Angles(const ScreenWindow& window) {
        return {ViewAngle(window, 1), ViewAngle(window, 2), ViewAngle(window, 3)};
    }
    static std::pair<float, float> PixelOfRow(int row) {
        return {Scene.PixelX[static_cast<std::size_t>(row)], Scene.PixelY[static_cast<std::size_t>(row)]};
    }
    static std::vector<std::string> Panels(const ScreenWindow& window) {
        return {window.Panel.begin() + 1, window.Panel.end()};
    }
};
