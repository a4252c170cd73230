// The last fifty views of a graphics window.
#include "graphics/view_undo.h"

#include <algorithm>
#include <cstdlib>
#include <string>

#include "core/changes.h"
#include "core/controller.h"
#include "core/form_main.h"
#include "graphics/drawing.h"
#include "graphics/flags.h"
#include "graphics/form_black_plane.h"
#include "graphics/form_color_bar.h"
#include "graphics/picture_steps.h"
#include "graphics/scene.h"
#include "graphics/view_values.h"

namespace corvinade::graphics {

namespace {

// A step of the ring that holds no flags keeps no table of them: a million points would make each step two
// megabytes long.
ScreenRecord WithoutEmptyTables(const ScreenRecord& state) {
    if (state.FlagCount != 0) return state;
    ScreenRecord kept;
    kept = state;
    kept.FlagIndex = {};
    return kept;
}

int StepsBack(const ScreenWindow& window) {
    return std::max(0, window.UndoCount - 1 - std::abs(window.UndoOffset));
}
int StepsForth(const ScreenWindow& window) {
    return std::abs(window.UndoOffset);
}

const ScreenRecord& StepThatShows(const ScreenWindow& window) {
    return window.UndoRing[static_cast<std::size_t>(window.UndoIndex)];
}

// The flags of a view may be others than those that were there.
void ShowStepOfRing(ScreenWindow& window) {
    const ScreenRecord before = WithoutEmptyTables(window.State);
    const std::uint64_t id = window.Id;
    GetScreenPropertiesFromRecord(window, StepThatShows(window));
    if (ScreenIsOpen(id)) KeepFlagStep(window, before);
}

void ShowSteps(int steps, const char* name, Control& button, Control& entry) {
    button.Enabled = entry.Enabled = steps > 0;
    button.ToolTip = std::to_string(steps) + " " + name;
}

}  // namespace

void StoreScreenPropertiesToRecord(ScreenWindow& window) {
    if (window.UndoCount > 0) KeepFlagStep(window, StepThatShows(window));
    if (window.UndoIndex == kUndoSlots) window.UndoIndex = 0;
    ++window.UndoIndex;
    window.UndoCount = std::min(kUndoSlots, window.UndoCount + 1 + window.UndoOffset);
    window.UndoOffset = 0;
    window.UndoRing[static_cast<std::size_t>(window.UndoIndex)] = WithoutEmptyTables(window.State);
    if (&window == Screens().Active) ShowUndoState();
}

void Rückgängig_Back(ScreenWindow& window) {
    if (StepsBack(window) == 0) return;
    window.UndoIndex = window.UndoIndex == 1 ? kUndoSlots : window.UndoIndex - 1;
    --window.UndoOffset;
    ShowStepOfRing(window);
}

void Rückgängig_Force(ScreenWindow& window) {
    if (StepsForth(window) == 0) return;
    window.UndoIndex = window.UndoIndex == kUndoSlots ? 1 : window.UndoIndex + 1;
    ++window.UndoOffset;
    ShowStepOfRing(window);
}

void GetScreenPropertiesFromRecord(ScreenWindow& window, const ScreenRecord& view) {
    window.State = view;
    MakeViewUsable(window.State);
    // The table of flags is as long as the scene, whatever the view was stored for.
    window.State.FlagIndex.resize(static_cast<std::size_t>(Scene.Rows));
    window.State.FlagIndexShape.clear();
    window.Mouse.DraggedFlag = 0;
    FahnenReset(window);
    ColorBar_ShowWindow(window);
    BlackPlane_ShowWindow(window);
    Stelle_Grafik_dar(window);
    Changed(What::State);
}

void ShowUndoState() {
    const ScreenWindow* window = Screens().Active;
    ShowSteps(window == nullptr ? 0 : StepsBack(*window), "Last view", Main.ToolbarSaveView_LastView,
              Main.MenüViewLastView);
    ShowSteps(window == nullptr ? 0 : StepsForth(*window), "Next view", Main.ToolbarSaveView_NextView,
              Main.MenüViewNextView);
}

}  // namespace corvinade::graphics
