// The records of flags and their labels.
#include "graphics/flags.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "core/form_main.h"
#include "core/job.h"
#include "core/job_tolerance.h"
#include "core/platform.h"
#include "core/settings.h"
#include "core/units.h"
#include "fit/require.h"
#include "graphics/drawing.h"
#include "graphics/form_edit_fahne.h"
#include "graphics/scene.h"
#include "graphics/view_undo.h"

namespace corvinade::graphics {

namespace {

FlagRecord AllSwitchesOn() {
    FlagRecord record;
    for (Flag FlagRecord::*place :
         {&FlagRecord::ShowActual,    &FlagRecord::ShowNominal,    &FlagRecord::ShowDevXYZ,
          &FlagRecord::showX,         &FlagRecord::showY,          &FlagRecord::showZ,
          &FlagRecord::show3D,        &FlagRecord::showR,          &FlagRecord::showPhi,
          &FlagRecord::showRho,       &FlagRecord::showTheta,      &FlagRecord::ShowDev,
          &FlagRecord::ShowTolCol,    &FlagRecord::ShowLegendeXYZ, &FlagRecord::ShowLegendeName,
          &FlagRecord::ShowUseNotUse, &FlagRecord::ShowGrid,       &FlagRecord::ChangeAll,
          &FlagRecord::SnaptoGrid,    &FlagRecord::WithinScreen})
        record.*place = kTrue;
    record.Name = "Arial";
    record.Size = 8;
    record.Weight = 400;
    return record;
}

FlagTextKey PresentKey(const ScreenWindow& window) {
    return {Scene.Stamp,       Units.LengthFactor,      Units.AngleFactor,
            ToleranceOf(Job),  Units.FmtLength,         Units.FmtAngle,
            Job.AngleUnitName, window.State.ColorBased, IsTrue(Settings.PhiThetaAsQ)};
}

std::size_t At(int flag) {
    return static_cast<std::size_t>(flag);
}

}  // namespace

FlagRecord NewFlagRecord(const ScreenWindow& window) {
    if (!window.State.Flags.empty()) return window.State.Flags[0];
    return Settings.FlagDefined ? Settings.FlagDefault : AllSwitchesOn();
}

void TakeAsTemplate(ScreenWindow& window, const FlagRecord& record) {
    std::vector<FlagRecord>& flags = window.State.Flags;
    if (flags.empty()) flags.resize(1);
    flags[0] = record;
    Settings.FlagDefault = record;
    Settings.FlagDefined = true;
}

int FlagsOf(const ScreenRecord& state) {
    return std::max(0, std::min<int>(state.FlagCount, static_cast<int>(state.Flags.size()) - 1));
}

FlagRecord& FlagOf(ScreenWindow& window, int flag) {
    Require(flag >= 1 && flag <= window.State.FlagCount && At(flag) < window.State.Flags.size());
    return window.State.Flags[At(flag)];
}

int FlagOfRow(const ScreenWindow& window, int row) {
    const std::vector<std::int16_t>& index = window.State.FlagIndex;
    return row >= 1 && At(row) <= index.size() ? index[At(row) - 1] : 0;
}

std::int16_t ToFlagPlace(double pixel) {
    constexpr double kMost = std::numeric_limits<std::int16_t>::max();
    return std::isfinite(pixel) ? static_cast<std::int16_t>(std::clamp(std::nearbyint(pixel), 0.0, kMost))
                                : std::int16_t{0};
}

int AddFlag(ScreenWindow& window, int row, int left, int top) {
    ScreenRecord& state = window.State;
    Require(row >= 1 && At(row) <= state.FlagIndex.size() && state.FlagIndex[At(row) - 1] == 0);
    if (state.FlagCount >= kMostFlags) return 0;
    FlagRecord record = NewFlagRecord(window);
    if (state.Flags.empty()) TakeAsTemplate(window, record);
    record.Left = ToFlagPlace(left);
    record.Top = ToFlagPlace(top);
    ++state.FlagCount;
    state.Flags.resize(At(state.FlagCount) + 1);
    state.Flags[At(state.FlagCount)] = record;
    state.FlagIndex[At(row) - 1] = state.FlagCount;
    state.ActiveFlag = state.FlagCount;
    window.FlagLabels.resize(At(state.FlagCount) + 1);
    FahneFüllen(window, row, state.FlagCount);
    if (state.FlagCount == 1) window.FlagsShow = PresentKey(window);
    return state.FlagCount;
}

void FahneFüllen(ScreenWindow& window, int row, int flag) {
    FlagLabel& label = window.FlagLabels[At(flag)];
    const bool visible = label.Visible;
    FillFlagLabel(window, row, FlagOf(window, flag), label);
    label.Visible = visible;
}

void Fahne_Löschen(ScreenWindow& window, int flag) {
    ScreenRecord& state = window.State;
    Require(flag >= 1 && flag <= state.FlagCount);
    state.Flags.erase(state.Flags.begin() + flag);
    --state.FlagCount;
    for (std::int16_t& number : state.FlagIndex) {
        if (number == flag)
            number = 0;
        else if (number > flag)
            --number;
    }
    state.ActiveFlag = 0;
    FahnenReset(window);
    ShowFlagCommands();
    Stelle_Grafik_dar(window);
}

void AlleLöschen(ScreenWindow& window) {
    ScreenRecord& state = window.State;
    if (!state.Flags.empty()) state.Flags.resize(1);
    std::fill(state.FlagIndex.begin(), state.FlagIndex.end(), std::int16_t{0});
    state.FlagCount = state.ActiveFlag = 0;
    window.FlagLabels.clear();
    window.Mouse.DraggedFlag = 0;
    ShowFlagCommands();
    Stelle_Grafik_dar(window);
}

void FahnenReset(ScreenWindow& window) {
    const ScreenRecord& state = window.State;
    window.FlagLabels.clear();
    window.FlagsShow = PresentKey(window);
    const int count = FlagsOf(state);
    if (count == 0) return;
    window.FlagLabels.resize(At(count) + 1);
    for (std::size_t i = 0; i < state.FlagIndex.size(); ++i) {
        const int flag = state.FlagIndex[i];
        if (flag >= 1 && flag <= count) FahneFüllen(window, static_cast<int>(i) + 1, flag);
    }
}

void RefillDynamicFlag(ScreenWindow& window) {
    const int row = window.DynamicFlag.Row;
    if (row >= 1 && row <= Scene.Rows) FillFlagLabel(window, row, window.DynamicRecord, window.DynamicFlag);
}

void RefreshFlags(ScreenWindow& window) {
    if (FlagsOf(window.State) == 0 && window.DynamicFlag.Row == 0) return;
    FahnenReset(window);
    RefillDynamicFlag(window);
    Stelle_Grafik_dar(window);
}

void MakeFlagsUsable(ScreenRecord& view) {
    // The first element is the template; in an array that begins with 1 there is none.
    if (!view.FlagsShape.empty()) {
        const bool fromOne = view.FlagsShape.size() == 1 && view.FlagsShape[0].Lowest == 1;
        if (fromOne && !view.Flags.empty()) view.Flags.insert(view.Flags.begin(), FlagRecord(view.Flags[0]));
        if (!fromOne) view.Flags.clear();
        view.FlagsShape.clear();
    }
    const int records = static_cast<int>(view.Flags.size()) - 1;
    view.FlagCount = static_cast<std::int16_t>(std::clamp<int>(view.FlagCount, 0, std::max(records, 0)));
    if (view.ActiveFlag < 0 || view.ActiveFlag > view.FlagCount) view.ActiveFlag = 0;
    std::vector<bool> taken(At(view.FlagCount) + 1);
    for (std::int16_t& flag : view.FlagIndex) {
        if (flag == 0) continue;
        // A flag belongs to one row.
        if (flag < 0 || flag > view.FlagCount || taken[At(flag)]) {
            flag = 0;
            continue;
        }
        taken[At(flag)] = true;
    }
}

void Alle_Fahnen_neu_zeichnen() {
    for (const auto& window : Screens().Open) RefreshFlags(*window);
}

void MenuFahneCopy_Command() {
    const ScreenWindow* window = findLFDFORM();
    if (window == nullptr || window->State.ActiveFlag == 0) return;
    const std::size_t flag = At(window->State.ActiveFlag);
    if (flag < window->FlagLabels.size()) ToClipboard(FlagText(window->FlagLabels[flag]));
}

void ShowFlagCommands() {
    const ScreenWindow* window = findLFDFORM();
    Main.MenuFahne.Enabled = window != nullptr;
    Main.MenuFahneEdit.Enabled = window != nullptr;
    for (Control* entry : {&Main.MenuFahneCopy, &Main.MenuFahneDelete})
        entry->Enabled = window != nullptr && window->State.ActiveFlag != 0;
    EditFahne_EnableDeleting();
}

}  // namespace corvinade::graphics
