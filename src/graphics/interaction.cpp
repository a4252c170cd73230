// Mouse, keys, picking, lines, saved views and the analyse mode.
#include "core/refresh.h"
#include "graphics/analyse_mode.h"
#include "graphics/bindings_overlay.h"
#include "graphics/lines.h"
#include "graphics/picking.h"
#include "graphics/saved_views.h"
#include "graphics/scene.h"
#include "graphics/screen_events.h"

int Search_Point_Index(const ScreenWindow&, float, float) {
    return 0;
}
bool PixelWithinScreen(const ScreenWindow&, int) {
    return false;
}
int IndexMainSheet(int) {
    return 0;
}
int ActualRow() {
    return 0;
}
void DrawActualPoint() {}
void SetActivePoint(int) {}
void ScreenPixel_MouseDown(ScreenWindow&, const MouseEvent&) {}
void ScreenPixel_MouseMove(ScreenWindow&, const MouseEvent&) {}
void ScreenPixel_MouseUp(ScreenWindow&, const MouseEvent&) {}
void ScreenPixel_Click(ScreenWindow&, const MouseEvent&) {}
void ScreenPixel_DblClick(ScreenWindow&, const MouseEvent&) {}
void ScreenPixel_Wheel(ScreenWindow&, const MouseEvent&, int) {}
void ScreenPixel_KeyDown(ScreenWindow&, std::string_view, bool, bool) {}
void ScreenPixel_KeyUp(ScreenWindow&, std::string_view) {}
int LineCount(const ScreenRecord&) {
    return 0;
}
int LineEnd(const ScreenRecord&, int, int) {
    return 0;
}
void AddLine(ScreenRecord&, int, int) {}
void RemoveLine(ScreenRecord&, int) {}
void SaveView(ScreenWindow&) {}
void DeleteView(int) {}
void GetScreenPropertiesFromSavedView(ScreenWindow&, int) {}
void AnalyseModeAction(ScreenWindow&) {}
void ToggleAnalyseMode(ScreenWindow&) {}
std::span<const Binding> ScreenBindings() {
    return {};
}
void ToggleBindingsOverlay(ScreenWindow&) {}
