// The views that a job keeps, slots 1 to 50 of Job.SavedView, with their names in ComboSaveView: the entry k
// of the list is the view k + 1.
#pragma once

#include "core/rooms.h"
#include "graphics/screen_window.h"

namespace corvinade::graphics {

inline constexpr int kMostViews = 50;

// Asks for a name and keeps the present step of the window's undo ring under it. Waits for the dialog, so the
// window can be closed meanwhile.
void SaveView(ScreenWindow& window);
void DeleteView(int number);  // a number without a view does nothing
// Restores a view with the size of its window, as a step of the undo ring; likewise.
void GetScreenPropertiesFromSavedView(ScreenWindow& window, int number);

}  // namespace corvinade::graphics
