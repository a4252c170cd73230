// The ring of the last fifty views of a window.
#pragma once

#include "core/rooms.h"
#include "graphics/screen_window.h"

namespace corvinade::graphics {

void StoreScreenPropertiesToRecord(ScreenWindow& window);
void Rückgängig_Back(ScreenWindow& window);
void Rückgängig_Force(ScreenWindow& window);
// Restores `view` (not its window size): labels of flags go, the colour bar dialog and the main window
// follow, the picture is painted.
void GetScreenPropertiesFromRecord(ScreenWindow& window, const ScreenRecord& view);
// The buttons and entries "last view" and "next view" of the main window, after the active window's ring.
void ShowUndoState();

}  // namespace corvinade::graphics
