// What the calculation window says of the age of its result.
#include "engine/result_state.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "core/controller.h"
#include "core/desktop_defaults.h"
#include "core/form_main.h"
#include "core/job.h"
#include "core/measurement_sigmas.h"
#include "core/run.h"
#include "core/window.h"
#include "engine/adjustment.h"
#include "engine/calculation.h"
#include "engine/calculation_window.h"
#include "engine/norm_table.h"
#include "engine/result_statistics.h"
#include "engine/selection.h"
#include "engine/transform.h"

namespace corvinade::engine {

namespace {

FormTrafoBerechnung& w = TrafoWindow;

constexpr std::int32_t kNoticeBack = 0x8CE6FF;  // amber, red in the low byte
constexpr int kGrey = 8;

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

bool WindowIsOpen() {
    return IsLoaded("FormTrafoBerechnung");
}

ResultSource SourceNow() {
    ResultSource now{Run.JobGeneration, Job.NormType, {}, Job.UseFlags};
    for (const ParameterControls& row : ParameterRows())
        if (row.Check->Value != 1) now.Choice[At(row.Parameter)] = "=" + row.Text->Text;
    return now;
}

// Parameters are compared with what a calculation leaves: neutral ones and start points that have not moved
// are what a job has before any.
bool HasMoved() {
    for (int i = 1; i <= Job.Start.Count() && i <= Job.Transformed.Count(); ++i) {
        const Vec3 before = StartPoint(i), after = TransformedPoint(i);
        if (before(1) != after(1) || before(2) != after(2) || before(3) != after(3)) return true;
    }
    return false;
}

bool HasStoredResult() {
    return Job.Pairs() >= 2 && !Job.ParamText[kTraX].empty() && HasMoved();
}

// Do the stored parameters carry the pairs to where they are stored?
bool GivesTheStoredPoints(const Column& v) {
    for (int i = 1; i <= Job.Pairs(); ++i) {
        const Vec3 stored = TransformedPoint(i), target = TargetPoint(i);
        for (int axis = 1; axis <= 3; ++axis) {
            const double size = 1 + std::fabs(target(axis));
            if (!(std::fabs(stored(axis) - target(axis) - v[At(3 * (i - 1) + axis)]) <= 1e-6 * size))
                return false;
        }
    }
    return true;
}

void Dim(bool dimmed) {
    const std::int32_t colour = dimmed ? QbColor(kGrey) : kSystemColour;
    for (const ParameterControls& row : ParameterRows())
        for (Control* const field : {row.Sigma, row.Signifikanz})
            if (field != nullptr) field->ForeColor = colour;
    for (int quality = kSxyz; quality < kQualityEnd; ++quality) QualityRow(quality).Field->ForeColor = colour;
    for (Control* const field : {&w.TextMaxDevXYZPkt, &w.TextMaxDevXPkt, &w.TextMaxDevYPkt, &w.TextMaxDevZPkt,
                                 &w.TextMinDevXPkt, &w.TextMinDevYPkt, &w.TextMinDevZPkt})
        field->ForeColor = colour;
    if (dimmed) ResetArrows();
}

void Say(const char* word, const char* tip) {
    w.LabelResultState.Text = word;
    w.LabelResultState.ToolTip = tip;
    w.LabelResultState.BackColor = *word != 0 ? kNoticeBack : kSystemColour;
    w.LabelResultState.ForeColor = *word != 0 ? QbColor(0) : kSystemColour;
    w.LabelResultState.Visible = *word != 0;
}

void ShowState() {
    Dim(ShownResult.State == ResultState::Outdated);
    switch (ShownResult.State) {
        case ResultState::None:
            return Say("not calculated", "Choose parameters and norm, and press Calculate");
        case ResultState::Stored:
            return Say("stored", "The result that the job holds; Calculate makes it anew");
        case ResultState::Outdated:
            return Say("out of date",
                       "Points, parameters, norm or use are others now; Calculate makes it anew");
        case ResultState::Fresh:
            return Say("", "");
    }
}

// In the models of distances and tools a residual is not the way to the target point.
bool ResidualsAreDeviations() {
    return !IsTrue(Job.IsParaboloid) && ChooseMode(Job.ParamText) == FitMode::Coincide;
}

bool StatisticsAreThose() {
    return IsLeastSquares(NormOfJob()) && !SigmasOf(Job).Any();
}

void TakeStoredDeviations() {
    const int n = 3 * Job.Pairs();
    Calculation = CalculationRecord{};
    Calculation.nObs = n;
    Calculation.P = WeightsFromUseFlags(n);
    Calculation.v.assign(At(n) + 1, 0);
    for (int i = 1; i <= Job.Pairs(); ++i) {
        const Vec3 stored = TransformedPoint(i), target = TargetPoint(i);
        for (int axis = 1; axis <= 3; ++axis)
            Calculation.v[At(3 * (i - 1) + axis)] = stored(axis) - target(axis);
    }
}

}  // namespace

KnownOfResult TakeStoredResult() {
    if (!HasStoredResult() || !ResidualsAreDeviations()) return KnownOfResult::Parameters;
    TakeStoredDeviations();
    if (!StatisticsAreThose()) return KnownOfResult::Deviations;
    SelectionFromJob();
    const int u = CountUnknowns(Job.ParamText), n = 3 * Job.Pairs();
    Column P = WeightsFromUseFlags(n);
    int used = 0;
    for (const double weight : P) used += weight != 0 ? 1 : 0;
    GatheredPoints points;
    if (used < u || !GatherForFit(P, points)) return KnownOfResult::Deviations;

    const FitModel model = ChooseModel(Job.ParamText);
    FitRun run = BeginFitOfJob();
    IterationResult here;
    SettleHere(run, model, points, P, here);
    BeginAdjustment(model);
    Adjustment.Iterations = run.State.Iterations;
    Adjustment.Converged = run.State.Converged;
    if (!GivesTheStoredPoints(here.v)) return KnownOfResult::Deviations;
    Calculation = CalculationRecord{};
    Calculation.Done = true;
    Calculation.JobGeneration = Run.JobGeneration;
    Calculation.Converged = !IsTrue(Job.Unconverged);
    Calculation.nFloat = u;
    Calculation.nObs = n;
    Calculation.Q = std::move(here.Q);
    Calculation.v = std::move(here.v);
    Calculation.P = std::move(P);
    std::copy(Job.LeftOpen.begin(), Job.LeftOpen.end(), Calculation.HeldByFit.begin());
    std::copy(model.UnknownOf.begin(), model.UnknownOf.end(), Calculation.UnknownOf.begin());
    FillStatistics(model);
    return KnownOfResult::All;
}

void ResultIsFresh() {
    ShownResult.State = ResultState::Fresh;
    ShownResult.From = SourceNow();
    ShownResult.OfFile = false;
}

void ShowKnownResult() {
    if (!DesktopDefaults.ResultState) return;
    const bool ofFile = ShownResult.OfFile && ShownResult.From.JobGeneration == Run.JobGeneration;
    const bool ofThisRun = CalculationIsOfThisJob() && !ofFile;
    if (ofThisRun) {
        ShowResultFields(KnownOfResult::All);
        // The boxes are those of the last calculation; points and use may be others.
        ResultSource now = SourceNow();
        if (ShownResult.State == ResultState::None)
            ShownResult.From = std::move(now);
        else
            ShownResult.From.Choice = std::move(now.Choice);
        ShownResult.State = ResultState::Fresh;
    } else if (HasStoredResult() && !IsTrue(Job.IsParaboloid)) {
        ShowResultFields(TakeStoredResult());
        ShownResult.State = ResultState::Stored;
        ShownResult.From = SourceNow();
        ShownResult.OfFile = true;
    } else {
        ShownResult = ResultStateRecord{.TrendOf = ShownResult.TrendOf};
    }
    CheckResultState();
}

void CheckResultState() {
    if (!DesktopDefaults.ResultState || !WindowIsOpen()) return;
    const bool shown = ShownResult.State != ResultState::None;
    if (shown && ShownResult.State != ResultState::Outdated && SourceNow() != ShownResult.From)
        ShownResult.State = ResultState::Outdated;
    else if (ShownResult.State == ResultState::Outdated && SourceNow() == ShownResult.From)
        ShownResult.State = ShownResult.OfFile ? ResultState::Stored : ResultState::Fresh;
    ShowState();
}

bool StoredResultStands() {
    return DesktopDefaults.ResultState && IsTrue(Run.JobDataValid) &&
           ShownResult.State == ResultState::Stored && ShownResult.From.JobGeneration == Run.JobGeneration;
}

bool ResultStands() {
    return !CalculationWindow.Running && (IsTrue(Run.TrafoValid) || StoredResultStands());
}

void ResultInOtherUnits() {
    if (!DesktopDefaults.ResultState || !WindowIsOpen() || ShownResult.State == ResultState::Outdated) return;
    ShownResult.From.Choice = SourceNow().Choice;
}

void ShowImport() {
    if (!DesktopDefaults.AfterImport || !IsTrue(Run.JobDataValid)) return;
    FormMain::MenuVievMainSheet_Click();
    FormMain::MenüViewInputStatistic_Click();
    SetStatus(1, "Next: Calculation (Ctrl+T)");
}

void OpenWindowOfResult() {
    if (!DesktopDefaults.ResultState || WindowIsOpen() || !HasStoredResult()) return;
    if (!IsTrue(Run.JobDataValid) || Job.Pairs() < 3) return;  // with two a question would come up
    FormMain::MenuTransformationCalculation_Click();
}

}  // namespace corvinade::engine
