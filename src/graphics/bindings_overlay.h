// The short text over a picture that tells what mouse and keys do there.
#pragma once

#include <span>

#include "graphics/screen_window.h"

struct Binding {
    const char* Keys;
    const char* Effect;
};
std::span<const Binding> ScreenBindings();

void ToggleBindingsOverlay(ScreenWindow& window);  // shown until the next press or the next call
