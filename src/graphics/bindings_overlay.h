// The short text over a picture that tells what mouse and keys do there.
#pragma once

#include <span>

#include "core/rooms.h"
#include "graphics/screen_window.h"

namespace corvinade::graphics {

struct Binding {
    const char* Keys;
    const char* Effect;
};
std::span<const Binding> ScreenBindings();

void ToggleBindingsOverlay(ScreenWindow& window);  // shown until the next press or the next call
// Shows it over the first graphics window that the user ever opens; the settings remember that. May throw as
// IniWertSchreiben.
void ShowBindingsOnce(ScreenWindow& window);

}  // namespace corvinade::graphics
