// The norm of the job's calculation.
#include "engine/norms.h"

#include <string>
#include <utility>

#include "core/controller.h"
#include "core/job.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/run.h"
#include "engine/adjustment.h"
#include "engine/best_fit.h"
#include "engine/calculation.h"
#include "engine/fit_remarks.h"
#include "engine/job_fit.h"
#include "engine/monte_carlo.h"
#include "engine/norm_table.h"
#include "engine/result_statistics.h"
#include "fit/weighted_fit.h"
#include "fit/weighted_norms.h"

namespace corvinade::engine {

namespace {

// The job's side of a run: lends it what is gathered, and takes what it leaves.
class RunOfJob {
public:
    RunOfJob(NormFit& fit, const NormRow& norm) : fit_(fit) {
        Run.Kind = norm.Fit;
        Run.Choice = fit.Choice;
        Run.Seeds = TakeSeedPoints();
        Run.SeeksBest = !IsTrue(Job.IsParaboloid);
        // Held values decide on the model, with those that the start values put beside them.
        PutParameters(StartValues(Run.Choice, Run.Seeds), Job);
        Run.Model = Adjustment.Model = ChooseModel(fit.ParamText);
        Run.Run = BeginFitOfJob(Run.Kind);
        if (Run.Kind != FitNorm::LeastSquares) Run.InUse = WeightsFromUseFlags(fit.n);
        std::swap(Run.P, fit.P);
        std::swap(Run.Points, fit.Points);
    }
    ~RunOfJob() {
        std::swap(Run.P, fit_.P);
        std::swap(Run.Points, fit_.Points);
    }
    RunOfJob(const RunOfJob&) = delete;
    RunOfJob& operator=(const RunOfJob&) = delete;

    // False when the job's points were replaced meanwhile: nothing more is written then.
    bool Take() {
        TakeFit(Run.Run);
        if (Run.Abandoned()) return false;
        Adjustment.Model = Run.Model;
        Norm = Run.Run.Norm;
        Certificate = Run.Certificate;
        fit_.RunsBegin = Run.RunsBegin;
        fit_.RunsAgain = Run.RunsAgain;
        fit_.HeldByFit = Run.HeldByFit;
        fit_.LeftByPoses = Run.LeftByPoses;
        fit_.Q = std::move(Run.Result.Q);
        fit_.v = std::move(Run.Result.v);
        return true;
    }
    NormRun Run;

private:
    NormFit& fit_;
};

// Where the start values lead astray they would do so in the runs of Monte Carlo as well.
bool ChooseBeginOfRuns(NormFit& fit) {
    RunOfJob job(fit, LeastSquares());
    SeekBeginOfRuns(job.Run);
    return job.Take();
}

// Goes on to the fit under the job's standard deviations, where it has some, and takes the result. False
// where the points were replaced meanwhile, or a pair has no weight, which is told.
bool TakeSigmas(RunOfJob& job) {
    const JobSigmas sigmas(SigmasOf(Job));
    int without = 0;
    // What no calculation begins with can come while it runs, by an event in a yield.
    if (sigmas.Any() && job.Run.Model.Mode != FitMode::Coincide) {
        Calculation.Refused = true;
        ShowMessage(
            "The standard deviations of the points do not go with the distance R_Dist and the tool "
            "vector, and one of the two was changed while the calculation ran. Please calculate again.");
        return false;
    }
    if (sigmas.Any() && !job.Run.Abandoned() && job.Run.Run.State.Finite) {
        if (job.Run.InUse.empty()) job.Run.InUse = job.Run.P;
        without = job.Run.Kind == FitNorm::LeastSquares ? FitWeighted(job.Run, sigmas.View())
                                                        : FitWeightedNorm(job.Run, sigmas.View());
    }
    if (without == 0 || job.Run.Abandoned()) return job.Take();
    Calculation.Refused = true;
    ShowMessage(PairHasNoWeight(without));
    return false;
}

bool FitL2(NormFit& fit) {
    if (MonteCarloIsInTheFit() && (!ChooseBeginOfRuns(fit) || !RunMonteCarlo(fit))) return false;
    RunOfJob job(fit, LeastSquares());
    FitLeastSquares(job.Run);
    if (!TakeSigmas(job)) return false;
    NoteRemarks(job.Run);
    TellOfLimit();
    return true;
}

// The message of the last inner fit's limit, or of a loop that has come to its limit although its last fit
// converged. The user's stop is no news.
void TellOfLoop(const NormRow& norm) {
    if (Norm.Converged) return;
    if (!Adjustment.Converged) return TellOfLimit();
    if (IsTrue(Run.StopRequested) || Norm.RunOn) return;
    ShowMessage(std::string(norm.Told) + " stopped after " + PlainText(Norm.Iterations) +
                " Iterations, the " + norm.Weighted + " does not come to rest!");
}

bool FitLoop(NormFit& fit, const NormRow& norm) {
    RunOfJob job(fit, norm);
    FitByLoop(job.Run);
    if (!TakeSigmas(job)) return false;
    if (Norm.RunOn && job.Run.Model.Mode != FitMode::Coincide)
        ShowMessage(
            "The true optimum of L1 and L-infinity is found for points that are to coincide, not for the "
            "distance R_Dist and the tool vector. The result is that of the weightings.");
    NoteRemarks(job.Run);
    TellOfLoop(norm);
    return true;
}

}  // namespace

bool FitInNorm(NormFit& fit) {
    const bool runOn = Norm.RunOn;
    Norm = NormRecord{};
    Norm.RunOn = runOn;
    if (!GatherForFit(fit.P, fit.Points)) return false;
    fit.Choice = ReadStartChoice(fit.ParamText);
    const NormRow& norm = NormOfJob();
    if (norm.Begins != nullptr)
        for (const int panel : {6, 7}) SetStatus(panel, norm.Begins);
    const Parameters before = ParametersOf(Job);
    const bool done = IsLeastSquares(norm) ? FitL2(fit) : FitLoop(fit, norm);
    // What is refused leaves the parameters that belong to the points shown.
    if (Calculation.Refused) PutParameters(before, Job);
    if (done) SetStatus(2, "...ready");
    return done;
}

}  // namespace corvinade::engine
