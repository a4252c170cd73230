// The views that a job keeps, slots 1 to 50 of Job.SavedView, with their names in ComboSaveView.
#pragma once

#include "graphics/screen_window.h"

void SaveView(ScreenWindow& window);
void DeleteView(int number);
void GetScreenPropertiesFromSavedView(ScreenWindow& window, int number);
