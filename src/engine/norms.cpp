// The norm of a calculation.
#include "engine/norms.h"

#include "core/controller.h"
#include "core/job.h"
#include "core/notes.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/settings.h"
#include "engine/adjustment.h"
#include "engine/best_fit.h"
#include "engine/exact_norms.h"
#include "engine/monte_carlo.h"

namespace {

// The iteration from the start values, held against the best fit. False when the job's points were replaced
// meanwhile.
bool SeekFromStart(NormFit& fit) {
    TakeStartValues(fit.Choice, TakeSeedPoints());
    IterateQuietly(fit.u, fit.n, fit.ParamText, fit.Q, fit.v, fit.P, fit.Points);
    return !Adjustment.JobChanged && SeekBestFit(fit);
}

// Where the start values lead astray they would do so in the runs as well.
bool ChooseBeginOfRuns(NormFit& fit) {
    const std::vector<Note> notes = Notes.List;
    if (!SeekFromStart(fit)) return false;
    Notes.List = notes;  // the fit behind the runs says it
    if (!Certificate.BeganAgain) return true;
    std::array<double, 18>& begin = fit.RunsBegin.emplace();
    for (int k = kTraX; k < kParameterEnd; ++k) begin[static_cast<std::size_t>(k)] = ParameterValue(Job, k);
    return true;
}

bool FitL2(NormFit& fit) {
    SetStatus(6, "...L2");
    SetStatus(7, "...L2");
    if (MonteCarloIsInTheFit() && (!ChooseBeginOfRuns(fit) || !RunMonteCarlo(fit))) return false;
    if (!SeekFromStart(fit)) return false;
    TellOfLimit();
    Norm.Converged = Adjustment.Converged;
    return true;
}

// What the loops of L1 and Loo differ in.
struct NormLoop {
    const char* Name;
    const char* Value;  // that it makes least
    bool (*Run)(NormFit&);
    bool (*RunOn)(NormFit&);
};

// The message of the last inner fit's limit, or of a loop that has come to its limit although its last fit
// converged. The user's stop is no news.
void TellOfLoop(const NormLoop& loop) {
    if (Norm.Converged) return;
    if (!Adjustment.Converged) {
        Adjustment.LimitToldLater = false;
        return TellOfLimit();
    }
    if (IsTrue(Run.StopRequested) || Norm.RunOn) return;
    ShowMessage(std::string(loop.Name) + " stopped after " + PlainText(Norm.Iterations) +
                " Iterations, the " + loop.Value + " does not come to rest!");
}

// The loop's own rule does not know of fits that have not settled. What was run on to its optimum does not
// stand on them any more.
void NoteUnsettledFits(const NormLoop& loop) {
    if (Norm.Unsettled == 0 || (Norm.RunOn && Norm.Converged)) return;
    const bool one = Norm.Unsettled == 1;
    AddNote(NoteCode::UnsettledFits,
            PlainText(Norm.Unsettled) + (one ? " inner fit of " : " inner fits of ") + loop.Name +
                " ended at the limit of " + PlainText(Settings.MaxIteration) +
                " iterations and did not settle; the loop went on with " + (one ? "its" : "their") +
                " weights, and the " + loop.Value + " may be above the least one");
}

// The fits inside a loop show no messages of their own.
struct LimitToldByLoop {
    LimitToldByLoop() { Adjustment.LimitToldLater = true; }
    ~LimitToldByLoop() { Adjustment.LimitToldLater = false; }
    LimitToldByLoop(const LimitToldByLoop&) = delete;
    LimitToldByLoop& operator=(const LimitToldByLoop&) = delete;
};

bool FitByLoop(NormFit& fit, const NormLoop& loop) {
    const LimitToldByLoop quiet;
    if (!loop.Run(fit)) return false;
    if (Norm.RunOn && !loop.RunOn(fit)) return false;
    NoteUnsettledFits(loop);
    TellOfLoop(loop);
    return true;
}

}  // namespace

void TakeBeginOfFit(const NormFit& fit) {
    TakeStartValues(fit.Choice, TakeSeedPoints());
    if (!fit.RunsBegin) return;
    for (int k = kTraX; k <= kAngleZtoXY; ++k)
        if (fit.Choice.Floats[static_cast<std::size_t>(k)])
            ParameterValue(Job, k) = (*fit.RunsBegin)[static_cast<std::size_t>(k)];
    if (fit.Choice.Floats[kScaleXYZ]) Job.ScaleX = Job.ScaleY = Job.ScaleZ = Job.ScaleXYZ;
}

void FitFromStart(NormFit& fit) {
    TakeBeginOfFit(fit);
    IterateFromHere(fit.u, fit.n, fit.ParamText, fit.Q, fit.v, fit.P, fit.Points);
}

void FirstFitOfLoop(NormFit& fit) {
    FitFromStart(fit);
    if (Adjustment.JobChanged) return;
    std::array<double, 18> told{};
    for (int k = kTraX; k < kParameterEnd; ++k) told[static_cast<std::size_t>(k)] = ParameterValue(Job, k);
    const AdjustmentRecord record = Adjustment;
    const Matrix Q = fit.Q;
    const Column v = fit.v;
    const std::vector<Note> notes = Notes.List;
    const bool sought = SeekBestFit(fit);
    const bool again = Certificate.BeganAgain;
    Certificate = CertificateRecord{};  // it speaks of least squares alone
    if (!sought) return;
    if (again) {
        std::array<double, 18>& begin = fit.RunsBegin.emplace();
        for (int k = kTraX; k < kParameterEnd; ++k)
            begin[static_cast<std::size_t>(k)] = ParameterValue(Job, k);
        return;
    }
    for (int k = kTraX; k < kParameterEnd; ++k) ParameterValue(Job, k) = told[static_cast<std::size_t>(k)];
    Adjustment = record;
    fit.Q = Q;
    fit.v = v;
    Notes.List = notes;
}

void CountUnsettledFit() {
    if (Adjustment.Finite && !Adjustment.Converged && !IsTrue(Run.StopRequested)) ++Norm.Unsettled;
}

bool FitInNorm(NormFit& fit) {
    const bool runOn = Norm.RunOn;
    Norm = NormRecord{};
    Norm.RunOn = runOn;
    if (!GatherForFit(fit.P, fit.Points)) return false;
    fit.Choice = ReadStartChoice(fit.ParamText);
    bool done = false;
    switch (Job.NormType) {
        case 1:
            done = FitByLoop(fit, {"L1", "sum of residuals", FitL1, RunOnToLeastSum});
            break;
        case 3:
            done = FitByLoop(fit, {"Loo", "largest residual", FitLoo, RunOnToLeastLargest});
            break;
        default:
            done = FitL2(fit);
    }
    if (done) SetStatus(2, "...ready");
    return done;
}
