// The norm of a calculation.
#include "engine/norms.h"

#include "core/controller.h"
#include "core/job.h"
#include "core/notes.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/run.h"
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

// A loop that has come to its limit although each of its fits converged. The user's stop is no news, and a
// fit that has not converged has its own message.
void TellOfLimit(const std::string& norm, const std::string& value) {
    if (Norm.Converged || !Adjustment.Converged || IsTrue(Run.StopRequested)) return;
    ShowMessage(norm + " stopped after " + PlainText(Norm.Iterations) + " Iterations, the " + value +
                " does not come to rest!");
}

bool LeastSumOfResiduals(NormFit& fit) {
    if (!FitL1(fit)) return false;
    if (Norm.RunOn) return RunOnToLeastSum(fit);
    TellOfLimit("L1", "sum of residuals");
    return true;
}

bool LeastLargestResidual(NormFit& fit) {
    if (!FitLoo(fit)) return false;
    if (Norm.RunOn) return RunOnToLeastLargest(fit);
    TellOfLimit("Loo", "largest residual");
    return true;
}

}  // namespace

void FitFromStart(NormFit& fit) {
    TakeStartValues(fit.Choice, TakeSeedPoints());
    IterateFromHere(fit.u, fit.n, fit.ParamText, fit.Q, fit.v, fit.P, fit.Points);
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
            done = LeastSumOfResiduals(fit);
            break;
        case 3:
            done = LeastLargestResidual(fit);
            break;
        default:
            done = FitL2(fit);
    }
    if (done) SetStatus(2, "...ready");
    return done;
}
