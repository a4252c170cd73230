// What the graphics windows show of a change, and what the main window shows of them.
#include "graphics/graphics_refresh.h"

#include <string_view>
#include <vector>

#include "analysis/form_main_sheet.h"
#include "core/desktop_defaults.h"
#include "core/form_main.h"
#include "core/run.h"
#include "core/settings.h"
#include "engine/calculation_window.h"
#include "graphics/drawing.h"
#include "graphics/flags.h"
#include "graphics/form_picture.h"
#include "graphics/form_report.h"
#include "graphics/picking.h"
#include "graphics/scene.h"
#include "graphics/screen_window.h"
#include "graphics/view_undo.h"
#include "graphics/views.h"

namespace corvinade::graphics {

namespace {

// Closing and painting run handlers of other windows, so the list is gone through by place.
template <class Action>
void ForEachScreen(Action action) {
    for (std::size_t i = 0; i < Screens().Open.size(); ++i) action(*Screens().Open[i]);
}

constexpr What kPictureChanges =
    What::Points | What::Coordinates | What::UnitsAndDigits | What::PictureSettings;

void DrawAnew(ScreenWindow& window) {
    Grafik_Festlegen(window);
    Stelle_Grafik_dar(window);
}

// A new result is drawn wherever a picture is, all else where the job holds points.
void ShowPictures(What changed) {
    const bool result = Share(changed, What::Result) && Main.MenueGraphics.Checked;
    const bool other = Share(changed, kPictureChanges);
    if (result)
        DrawResultInGraphicsWindows();
    else if (other)
        UpdateAllGraphicsWindows();
}

// Where colours and their limits go by what is in use, the pictures follow it; a new result has drawn them.
void ShowUse(What changed) {
    const bool coloured = DesktopDefaults.ColorLimits || DesktopDefaults.NeutralColor;
    if (Main.MenueGraphics.Checked && coloured && !Share(changed, What::Result)) UpdateAllGraphicsWindows();
    if (Main.MenueGraphics.Checked) Alle_Fahnen_neu_zeichnen();
}

// The mouse pointer of a window goes by its modes; without line mode no line is set or deleted.
void PutPointerInOrder(ScreenWindow& window) {
    if (!IsTrue(window.State.LineMode)) window.SetLine = window.DeleteLine = false;
    window.Pointer = window.DeleteLine               ? ScreenPointer::DeletesLine
                     : window.SetLine                ? ScreenPointer::SetsLine
                     : IsTrue(window.State.FlagMode) ? ScreenPointer::SetsFlag
                                                     : ScreenPointer::Arrow;
}

// The main window follows the modes of the top graphics window.
void ShowTopWindow(What) {
    ScreenWindow* window = Screens().Active;
    if (window == nullptr) return;
    PutPointerInOrder(*window);
    const auto press = [](Control& button, bool pressed) { button.Value = pressed ? 1 : 0; };
    const bool vectors = IsTrue(window->State.VectorMode);
    Main.MenüAnsichtVektorenVektorModeActive.Checked = vectors;
    for (Control* command : {&Main.MenüAnsichtVektorenShorter, &Main.MenüAnsichtVektorenLonger})
        command->Enabled = vectors;
    for (Control* button : {&Main.ToolbarGraphics_VectorMode, &Main.ToolbarGraphics_VectorLonger,
                            &Main.ToolbarGraphics_VectorShorter})
        press(*button, vectors);
    Main.MenüGlobalFlagsMode.Checked = IsTrue(window->State.FlagMode);
    press(Main.ToolbarGraphics_FlagMode, IsTrue(window->State.FlagMode));
    // The entry that turns the line mode on stays within reach while it is off.
    const bool lines = IsTrue(window->State.LineMode);
    Main.MenüGraphicsLinesLineModeActive.Checked = lines;
    for (Control* command : {&Main.MenüGraphicsLinesDeleteLines, &Main.MenüGraphicsLinesSetLines})
        command->Enabled = lines;
    for (Control* button :
         {&Main.ToolbarLines_LineMode, &Main.ToolbarLines_SetLines, &Main.ToolbarLines_DeleteLines})
        press(*button, lines);
    Main.MenüGraphicsLinesSetLines.Checked = window->SetLine;
    Main.MenüGraphicsLinesDeleteLines.Checked = window->DeleteLine;
    Main.MenuGraphicsDistance.Checked = window->Measure.On;
    Main.MenuGraphicsWhite.Checked = window->BackColor == QbColor(15);
    Main.MenüAnsichtAnalyseModeActive.Checked = window->AnalyseMode;
    press(Main.ToolbarGraphics_AnalyseMode, window->AnalyseMode);
    Main.MenüAnsichtToleranzenColorbar.Checked = IsTrue(Settings.ShowColorBar);
    ShowFlagCommands();
    ShowUndoState();  // the main window has just enabled its tool bars as a whole
}

// Which points the pictures show may depend on the result that is about to change.
void TakeLastResult(What) {
    if (!Main.MenueGraphics.Checked) return;
    for (const Flag setting : {Settings.DontViewOOT, Settings.ViewOnlyIfTrafo, Settings.ViewOnlyIfNotTrafo})
        if (IsTrue(setting)) Grafik_Festlegen_Main();
}

void CircleChosenPoint(What changed) {
    if (Share(changed, What::PointInTable))
        SetActivePoint(CalculationWindow_Point());
    else if (!DesktopDefaults.PointsFollow)
        SetActivePoint(MainSheet_Pair());
    else if (Main.MenueGraphics.Checked)
        SetActiveSheetRow(MainSheet_CursorRow());
}

// The point of the main sheet's cursor, in the picture on top.
void ShowFromNear() {
    ScreenWindow* window = Screens().Active;
    if (window == nullptr) return;
    SceneForWindow(*window);
    const PointCounts counts = {Scene.Ident, Scene.MCSOnly, Scene.OCSOnly};
    const int filled = MainSheet_CursorRow();
    if (filled == 0 || MainSheetWindow.Cells.Counts != counts) return;
    ZoomToRow(*window, filled > Scene.Ident ? filled + Scene.Ident : filled);
}

void ShowPoint(What changed) {
    if (Share(changed, What::PointInTable | What::PointInSheet)) CircleChosenPoint(changed);
    if (Share(changed, What::PointToZoom)) ShowFromNear();
}

void CloseAll(What) {
    CloseAllGraphicsWindows();
}

// The look of the last window is that of the next run.
void StoreDefaults(What) {
    if (!GraphicsDefaultsTaken()) return;
    std::vector<IniLine> lines;
    for (const SettingEntry& entry : AllSettings()) {
        const std::string_view section = entry.Section;
        const bool wanted = section == "LocalGraphics" || (section == "FahnenProp" && Settings.FlagDefined);
        if (wanted) lines.push_back({entry.Section, entry.Key, SettingText(entry.Key)});
    }
    IniWerteSchreiben(lines);
}

constexpr ChangeRow kChanges[] = {
    {kPictureChanges | What::Result, Turn::Pictures, ShowPictures},
    {What::Use, Turn::Flags, ShowUse},
    {kStateOfJob, Turn::TopWindow, ShowTopWindow},
    {What::PointInTable | What::PointInSheet | What::PointToZoom, Turn::PointInPictures, ShowPoint},
    {What::NextResult, Turn::LastResult, TakeLastResult},
    {What::NoPictures, Turn::ClosedPictures, CloseAll},
    {What::ProgramEnd, Turn::PictureDefaults, StoreDefaults},
    {kPictureChanges | kStateOfJob | What::UnitsAndDigits | What::Use | What::Choice, Turn::Report,
     [](What) {
         RenewReport();
         RenewPictureSources();
     }},
};

}  // namespace

std::span<const ChangeRow> GraphicsChanges() {
    return kChanges;
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

void DrawResultInGraphicsWindows() {
    ForEachScreen(DrawAnew);
}

void Grafik_Festlegen_Main() {
    if (!Screens().Open.empty()) Grafik_Festlegen(*Screens().Open.front());
}

bool GraphicsDefaultsTaken() {
    return Screens().DefaultsTaken && Settings.LocalGraphics.ADis != 0;
}

}  // namespace corvinade::graphics
