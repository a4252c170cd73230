// What the calculation window shows of a change.
#include "engine/engine_changes.h"

#include "core/form_units.h"
#include "engine/calculation_window.h"
#include "engine/result_state.h"
#include "engine/tolerance_check.h"
#include "engine/undo.h"

namespace corvinade::engine {

namespace {

bool WindowIsOpen() {
    return IsLoaded("FormTrafoBerechnung");
}

void ShowUnits(What) {
    if (WindowIsOpen()) CalculationWindow_UnitsChanged();
}

void ShowPoints(What) {
    if (WindowIsOpen()) TabelleFüllenNeu();
}

void ShowJob(What) {
    if (WindowIsOpen()) INI_Formtrafoberechnung();
}

void ConvertHeldValues(What) {
    HeldValues_UnitsChanged(UnitsWindow.LengthBefore, UnitsWindow.AngleBefore);
}

constexpr What kSourceOfResult = What::Choice | What::Use | What::Points | What::MorePoints | What::Restored |
                                 What::Coordinates | What::Result | What::OpenedJob;

void ShowAgeOfResult(What changed) {
    NoteUndoStep();
    if (Share(changed, What::UnitsAndDigits)) ResultInOtherUnits();
    CheckResultState();
    ShowTolerance(Share(changed, What::UnitsAndDigits | What::OpenedJob | What::Points | What::Restored));
}

void ShowWhatCameIn(What changed) {
    if (Share(changed, What::OpenedJob)) OpenWindowOfResult();
    if (Share(changed, What::Points)) ShowImport();
}

constexpr ChangeRow kChanges[] = {
    {What::UnitsAndDigits, Turn::CalculationUnits, ShowUnits},
    {What::Coordinates, Turn::PairTable, ShowPoints},
    {What::OpenedJob, Turn::CalculationFields, ShowJob, true},
    {What::OpenedJob | What::Points, Turn::OpenedResult, ShowWhatCameIn, true},
    {kSourceOfResult | What::UnitsAndDigits, Turn::ResultAge, ShowAgeOfResult},
    {What::UnitFactors, Turn::HeldValues, ConvertHeldValues},
};

}  // namespace

std::span<const ChangeRow> EngineChanges() {
    return kChanges;
}

}  // namespace corvinade::engine
