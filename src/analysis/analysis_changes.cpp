// What main sheet, distances and input statistic show of a change.
#include "analysis/analysis_changes.h"

#include "analysis/form_distance_scale.h"
#include "analysis/form_export.h"
#include "analysis/form_input_statistic.h"
#include "analysis/form_main_sheet.h"
#include "analysis/form_reliability.h"
#include "core/desktop_defaults.h"
#include "core/form_main.h"
#include "core/run.h"
#include "engine/calculation_window.h"
#include "engine/result_state.h"

namespace corvinade::analysis {

namespace {

constexpr What kSheetChanges =
    What::OpenedJob | What::Points | What::MorePoints | What::Coordinates | What::UnitsAndDigits;

// A result fills a sheet that shows points; points that are back after an import are shown where they are
// a job.
void ShowInSheet(What changed) {
    const bool result = Share(changed, What::Result) && Main.MenuVievMainSheet.Checked;
    const bool restored = Share(changed, What::Restored) && IsTrue(Run.JobDataValid);
    if (result || restored || Share(changed, kSheetChanges)) FuellenHaupttabelle();
    if (Share(changed, What::Use | What::Coordinates)) MainSheet_FilterAgain();
}

void ShowInDistances(What) {
    DistanceScale_Refill();
}

constexpr What kCountChanges = What::Points | What::MorePoints | What::Counts;

// Behind all else the sigmas alone may be others.
void ShowInStatistic(What changed) {
    if (!IsLoaded("FormInputStatistic")) return;
    Share(changed, kCountChanges) ? FORMfüllen() : ShowSigmasInStatistic();
}

// The coordinates in use are those of the last calculation until the next one; only the verdicts tell of
// them.
void ShowInReliability(What changed) {
    if (!IsLoaded(FormReliability_Entry.Name)) return;
    if (Share(changed, What::OpenedJob | What::Points)) Reliability.Snooped.clear();
    FillReliability();
}

void ShowInForms(What changed) {
    if (Share(changed, What::Result | What::OpenedJob | What::Points | What::Restored)) {
        ShowNewResult();
    } else {
        ShowInExport();
    }
}

// Commands and window of the exports, once it is known whether the job's own result stands.
void ShowStoredResult(What) {
    if (!DesktopDefaults.ResultState) return;
    Main.MenueFileExport.Enabled = IsTrue(Run.TrafoValid) || StoredResultStands();
    ShowInExport();
}

void FollowChosenPoint(What changed) {
    if (Share(changed, What::PointInTable)) MainSheet_ShowPoint(CalculationWindow_Point());
    if (Share(changed, What::PointInSheet) && DesktopDefaults.PointsFollow)
        CalculationWindow_ShowPoint(MainSheet_Pair());
}

constexpr ChangeRow kChanges[] = {
    {kSheetChanges | What::Result | What::Restored | What::Use, Turn::Sheet, ShowInSheet},
    {What::Pairs | What::Result, Turn::Distances, ShowInDistances},
    {kSheetChanges | What::Result | What::Restored, Turn::Reliability, ShowInReliability},
    {kStateOfJob | What::MorePoints | What::Coordinates | What::UnitsAndDigits, Turn::Forms, ShowInForms},
    {kCountChanges | What::OpenedJob | What::Result | What::UnitsAndDigits | What::State, Turn::Statistic,
     ShowInStatistic},
    {kStateOfJob | What::MorePoints | What::Coordinates | What::Use | What::Choice, Turn::HandedOn,
     ShowStoredResult},
    {What::PointInTable | What::PointInSheet, Turn::PointInSheet, FollowChosenPoint},
};

}  // namespace

std::span<const ChangeRow> AnalysisChanges() {
    return kChanges;
}

}  // namespace corvinade::analysis
