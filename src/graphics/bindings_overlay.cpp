// What mouse and keys do on a picture, as the user reads it.
#include "graphics/bindings_overlay.h"

#include "core/settings.h"

namespace corvinade::graphics {

namespace {

constexpr const char* kSection = "GraphicsSettings";
constexpr const char* kKey = "BindingsShown";

constexpr Binding kBindings[] = {
    {"Shift + drag", "rotate"},
    {"Shift + drag with both buttons", "roll"},
    {"Ctrl + drag", "move the picture"},
    {"T + drag, B + drag", "move the black planes, thickness of their slab"},
    {"Wheel", "zoom about the mouse"},
    {"Drag a frame", "zoom to the frame"},
    {"Right button", "zoom out about the mouse"},
    {"Shift + right button", "menu of the picture"},
    {"Middle button", "draw the picture again"},
    {"Click", "choose a point; in the flag mode, give it a flag"},
    {"Drag a flag", "move it"},
    {"Right button on a flag", "edit, copy or delete it"},
    {"Double click on a cell use of a flag", "use of this coordinate in the fit"},
    {"Double click", "background colour"},
    {"Arrow keys", "move the picture"},
    {"Shift + arrow keys", "rotate in steps"},
    {"Shift + R, Shift + L", "roll right, roll left"},
    {"+ and - of the number pad", "zoom in about the mouse, zoom out"},
    {"Pause", "pause or continue the analyse mode"},
    {"Esc", "end the analyse mode, close this text"},
};

}  // namespace

std::span<const Binding> ScreenBindings() {
    return kBindings;
}

void ToggleBindingsOverlay(ScreenWindow& window) {
    window.BindingsShown = !window.BindingsShown;
}

void ShowBindingsOnce(ScreenWindow& window) {
    if (Screens().BindingsTold) return;
    Screens().BindingsTold = true;
    if (FindIniWert(kKey)) return;
    window.BindingsShown = true;
    IniWertSchreiben(kSection, kKey, "True");
}

}  // namespace corvinade::graphics
