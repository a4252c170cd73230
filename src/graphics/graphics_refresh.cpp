// What the other rooms tell the graphics windows after a change.
#include "core/form_main.h"
#include "core/refresh.h"
#include "core/run.h"
#include "core/settings.h"
#include "graphics/drawing.h"
#include "graphics/flags.h"
#include "graphics/scene.h"
#include "graphics/screen_window.h"
#include "graphics/view_undo.h"

namespace {

// Closing and painting run handlers of other windows, so the list is gone through by place.
template <class Action>
void ForEachScreen(Action action) {
    for (std::size_t i = 0; i < Screens().Open.size(); ++i) action(*Screens().Open[i]);
}

void DrawAnew(ScreenWindow& window) {
    Grafik_Festlegen(window);
    Stelle_Grafik_dar(window);
}

}  // namespace

void CountChildForms(std::int16_t& count) {
    count = static_cast<std::int16_t>(Screens().Open.size());
}

GraphicsModes TopGraphicsModes() {
    const ScreenWindow* window = Screens().Active;
    if (window == nullptr) return {};
    return {IsTrue(window->State.VectorMode), IsTrue(window->State.FlagMode), IsTrue(window->State.LineMode),
            window->SetLine, window->DeleteLine};
}

void ApplyTopGraphicsModes() {
    ScreenWindow* window = Screens().Active;
    if (window == nullptr) return;
    if (!IsTrue(window->State.LineMode)) window->SetLine = window->DeleteLine = false;
    window->Pointer = window->DeleteLine               ? ScreenPointer::DeletesLine
                      : window->SetLine                ? ScreenPointer::SetsLine
                      : IsTrue(window->State.FlagMode) ? ScreenPointer::SetsFlag
                                                       : ScreenPointer::Arrow;
    Main.MenüAnsichtAnalyseModeActive.Checked = window->AnalyseMode;
    Main.ToolbarGraphics_AnalyseMode.Value = window->AnalyseMode ? 1 : 0;
    Main.MenüAnsichtToleranzenColorbar.Checked = IsTrue(Settings.ShowColorBar);
    ShowFlagCommands();
    ShowUndoState();  // the main window has just enabled its tool bars as a whole
}

// The active window goes last: its settings are those that a new window begins with.
void CloseAllGraphicsWindows() {
    while (!Screens().Open.empty()) {
        ScreenWindow* next = Screens().Open.front().get();
        if (next == Screens().Active && Screens().Open.size() > 1) next = Screens().Open[1].get();
        CloseScreenWindow(*next);
    }
}

void UpdateAllGraphicsWindows() {
    if (IsTrue(Run.JobDataValid)) ForEachScreen(DrawAnew);
}

void Grafik_Festlegen_Main() {
    if (!Screens().Open.empty()) Grafik_Festlegen(*Screens().Open.front());
}

void DrawResultInGraphicsWindows() {
    ForEachScreen(DrawAnew);
}

bool GraphicsDefaultsTaken() {
    return Screens().DefaultsTaken && Settings.LocalGraphics.ADis != 0;
}
