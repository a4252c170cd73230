// Saved views and the analyse mode.
#include "graphics/analyse_mode.h"
#include "graphics/bindings_overlay.h"
#include "graphics/saved_views.h"

void SaveView(ScreenWindow&) {}
void DeleteView(int) {}
void GetScreenPropertiesFromSavedView(ScreenWindow&, int) {}
void AnalyseModeAction(ScreenWindow&) {}
void ToggleAnalyseMode(ScreenWindow&) {}
std::span<const Binding> ScreenBindings() {
    return {};
}
void ToggleBindingsOverlay(ScreenWindow&) {}
