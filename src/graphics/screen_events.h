// What the user does on the picture of a graphics window. Each is one event; the caller dispatches it.
#pragma once

#include <string_view>

#include "core/rooms.h"
#include "graphics/screen_window.h"

namespace corvinade::graphics {

struct MouseEvent {
    float X = 0, Y = 0;  // logical pixels of the picture
    int Buttons = 0;     // down, up, click: the one; move: all that are held
    bool Shift = false, Ctrl = false;
};
void ScreenPixel_MouseDown(ScreenWindow& window, const MouseEvent& event);
void ScreenPixel_MouseMove(ScreenWindow& window, const MouseEvent& event);
void ScreenPixel_MouseUp(ScreenWindow& window, const MouseEvent& event);
void ScreenPixel_Click(ScreenWindow& window, const MouseEvent& event);
void ScreenPixel_DblClick(ScreenWindow& window, const MouseEvent& event);
void ScreenPixel_Wheel(ScreenWindow& window, const MouseEvent& event, int delta);
// Key names as in the automation ("Left", "KP_Add", "r", "Pause", "Shift").
void ScreenPixel_KeyDown(ScreenWindow& window, std::string_view key, bool shift, bool ctrl);
void ScreenPixel_KeyUp(ScreenWindow& window, std::string_view key);

}  // namespace corvinade::graphics
