// The entries and tool bar keys of the main window that act on the graphics window on top.
#include "graphics/form_main_graphics.h"

#include <algorithm>

#include "core/changes.h"
#include "core/controller.h"
#include "core/form_main.h"
#include "core/platform.h"
#include "core/settings.h"
#include "core/window.h"
#include "graphics/analyse_mode.h"
#include "graphics/bindings_overlay.h"
#include "graphics/drawing.h"
#include "graphics/flags.h"
#include "graphics/form_edit_fahne.h"
#include "graphics/form_graphics_options.h"
#include "graphics/measuring.h"
#include "graphics/picking.h"
#include "graphics/saved_views.h"
#include "graphics/scene.h"
#include "graphics/screen_window.h"
#include "graphics/view_undo.h"
#include "graphics/view_values.h"
#include "graphics/views.h"

namespace corvinade::graphics {

namespace {

// Without a window there is nothing to act on: the entries are disabled then, but a handler may still run
// from inside a loop whose window has just gone.
template <class Action>
void OnTop(Action action) {
    if (ScreenWindow* window = findLFDFORM()) action(*window);
}

void PaintAndStore(ScreenWindow& window) {
    Stelle_Grafik_dar(window);
    StoreScreenPropertiesToRecord(window);
}

void SetBigNess(int size) {
    OnTop([size](ScreenWindow& window) {
        window.State.BigNess = static_cast<std::int16_t>(std::clamp(size, 1, kLargestBigNess));
        PaintAndStore(window);
    });
}

// Turns a mode of the window on or off; the main window follows.
void Toggle(Flag ScreenRecord::*mode) {
    OnTop([mode](ScreenWindow& window) {
        window.State.*mode = ToFlag(!IsTrue(window.State.*mode));
        ProgrammLogik();
        PaintAndStore(window);
    });
}

}  // namespace

void MenueGraphics_Click() {
    ShowBindingsOnce(OpenScreenWindow());
}

void MenüAnsichtAnpassen_Click() {
    OnTop(GrafikAnpassen);
}
void MenüAnsichtcenter_Click() {
    OnTop([](ScreenWindow& window) {
        Center(window);
        Stelle_Grafik_dar(window);
    });
}
void MenüAnsichtTopview_Click() {
    OnTop(TopView);
}
void MenüAnsichtSideView_Click() {
    OnTop(SideView);
}
void MenüAnsichtFrontView_Click() {
    OnTop(FrontView);
}
void MenüAnsichtIsometricView_Click() {
    OnTop(IsoView);
}
void ToolbarGraphics_ZoomIn_Click() {
    OnTop(ZoomIn);
}
void ToolbarGraphics_ZoomOut_Click() {
    OnTop(ZoomOut);
}

void MenüAnsichtPunkteBigger_Click() {
    OnTop([](const ScreenWindow& window) { SetBigNess(window.State.BigNess + 1); });
}
void MenüAnsichtPunkteSmaller_Click() {
    OnTop([](const ScreenWindow& window) { SetBigNess(window.State.BigNess - 1); });
}
void MenüAnsichtPunkteSmallPoints_Click() {
    SetBigNess(1);
}

void MenüAnsichtVektorenVektorModeActive_Click() {
    Toggle(&ScreenRecord::VectorMode);
}
void MenüAnsichtVektorenLonger_Click() {
    OnTop(Vec_Maßstab_longer);
}
void MenüAnsichtVektorenShorter_Click() {
    OnTop(Vec_Maßstab_shorter);
}

void MenüAnsichtAnalyseModeActive_Click() {
    OnTop(ToggleAnalyseMode);
}
void MenüAnsichtAnalyseKeepPoints_Click() {
    Main.MenüAnsichtAnalyseKeepPoints.Checked = !Main.MenüAnsichtAnalyseKeepPoints.Checked;
}
void MenüAnsichtAnalyseModeMore_Click() {
    OnTop(Vec_Maßstab_longer);
}
void MenüAnsichtAnalyseModeLess_Click() {
    OnTop(Vec_Maßstab_shorter);
}

void MenüAnsichtToleranzenColorbar_Click() {
    Settings.ShowColorBar = ToFlag(!IsTrue(Settings.ShowColorBar));
    Main.MenüAnsichtToleranzenColorbar.Checked = IsTrue(Settings.ShowColorBar);
    DrawActualPoint(findLFDFORM());  // the switch is that of all windows
    GraphicsOptions_ShowColorBar();
    SettingsSchreiben({"ShowColorBar"});
}
void MenüAnsichtToleranzenEinstellungen_Click() {
    ShowWindow("FormColorBar");
}
void MenüGrafikBlackPlane_Click() {
    ShowWindow("FormBlackPlane");
}
void MenüGraphicsPrint_Click() {
    MenüGraphicsPrint_Command();
}

void MenüGraphicsLinesLineModeActive_Click() {
    Toggle(&ScreenRecord::LineMode);
}
void MenüGraphicsLinesSetLines_Click() {
    OnTop([](ScreenWindow& window) {
        window.SetLine = !window.SetLine;
        if (window.SetLine) window.DeleteLine = false;
        window.State.LineStartRow = window.State.SelectedLine = 0;  // a new chain begins
        ProgrammLogik();
        Stelle_Grafik_dar(window);
    });
}
void MenüGraphicsLinesDeleteLines_Click() {
    OnTop([](ScreenWindow& window) {
        window.DeleteLine = !window.DeleteLine;
        if (window.DeleteLine) window.SetLine = false;
        window.State.SelectedLine = 0;
        window.LineSearchTold = false;
        ProgrammLogik();
        Stelle_Grafik_dar(window);
    });
}

void MenüGlobalRotateAbout_Click() {
    Main.MenüGlobalRotateAbout.Checked = !Main.MenüGlobalRotateAbout.Checked;
    Main.ToolbarGraphics_RotateAbout.Value = Main.MenüGlobalRotateAbout.Checked ? 1 : 0;
    Scene.RotateAboutArmed = Main.MenüGlobalRotateAbout.Checked;
    if (Scene.RotateAboutArmed) Scene.RotateAboutIndex = 0;  // until a point is picked
}
void MenüGlobalFlagsMode_Click() {
    Toggle(&ScreenRecord::FlagMode);
}
void MenüGlobalGeneralGraphicsSettings_Click() {
    ShowWindow("FormGraphicsOptions");
}

// One flag follows the mouse; without the entry there is none.
void MenüAnsichtDynamicFlag_Click() {
    Main.MenüAnsichtDynamicFlag.Checked = !Main.MenüAnsichtDynamicFlag.Checked;
    if (Main.MenüAnsichtDynamicFlag.Checked) return;
    for (const auto& window : Screens().Open) DynamicFlagTo(*window, 0);
}
void MenuFahneEdit_Click() {
    Main.MenuFahne.Value = 0;
    if (findLFDFORM() == nullptr) return;
    // An open one shows the flag that was clicked last.
    if (EditFahneWindow.Window.Loaded) FormEditFahne::Form_Load();
    ShowWindow("FormEditFahne");
}
void MenuFahneCopy_Click() {
    Main.MenuFahne.Value = 0;
    MenuFahneCopy_Command();
}
void MenuFahneDelete_Click() {
    Main.MenuFahne.Value = 0;
    OnTop([](ScreenWindow& window) {
        if (window.State.ActiveFlag == 0) return;
        Fahne_Löschen(window, window.State.ActiveFlag);
        StoreScreenPropertiesToRecord(window);
    });
}

void MenüViewSaveView_Click() {
    OnTop(SaveView);
}
void MenüViewDeleteView_Click() {
    if (Main.ComboSaveView.Index >= 0)
        DeleteView(Main.ComboSaveView.Index + 1);
    else
        ShowMessage("Choose a saved view in the list of the tool bar; it is deleted then.");
}
void ComboSaveView_Click() {
    const int chosen = Main.ComboSaveView.Index + 1;
    if (chosen >= 1)
        OnTop([chosen](ScreenWindow& window) { GetScreenPropertiesFromSavedView(window, chosen); });
}
void MenüViewLastView_Click() {
    OnTop(Rückgängig_Back);
}
void MenüViewNextView_Click() {
    OnTop(Rückgängig_Force);
}

void MenuGraphicsDistance_Click() {
    OnTop(ToggleMeasuring);
}

// All windows, and those that are opened from now on, as a double click on one of them does it.
void MenuGraphicsWhite_Click() {
    const ScreenWindow* const top = findLFDFORM();
    if (top == nullptr) return;
    const Colour colour = top->BackColor == QbColor(15) ? QbColor(0) : QbColor(15);
    for (const auto& window : Screens().Open) {
        window->BackColor = colour;
        Stelle_Grafik_dar(*window);
    }
    Changed(What::State);
    Settings.ScreenBackColor = colour;
    SettingsSchreiben({"ScreenBackColor"});
}

void MenuHelpBindings_Click() {
    OnTop(ToggleBindingsOverlay);
}

}  // namespace corvinade::graphics
