// Steps of undo and redo that are of a graphics window: its flags, and a saved view that is shown in it.
#pragma once

#include "core/rooms.h"
#include "graphics/screen_window.h"

namespace corvinade::graphics {

// The flags of the window are others than those of `before`: a step of its own, unless another one is being
// made or put. What the view does has the last fifty views of the window.
void KeepFlagStep(const ScreenWindow& window, const ScreenRecord& before);

// Shows a view in the window, in its size, as a step.
void ShowViewAsStep(ScreenWindow& window, const ScreenRecord& view, int width, int height);

}  // namespace corvinade::graphics
