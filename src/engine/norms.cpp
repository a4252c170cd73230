// The norm of a calculation.
#include "engine/norms.h"

#include "core/controller.h"
#include "core/job.h"
#include "engine/adjustment.h"
#include "engine/exact_norms.h"
#include "engine/monte_carlo.h"

namespace {

bool FitL2(NormFit& fit) {
    SetStatus(6, "...L2");
    SetStatus(7, "...L2");
    if (IsTrue(MonteCarlo.MonteCarloOn) && !RunMonteCarlo(fit)) return false;
    BestFitIteration(fit.u, fit.n, fit.ParamText, fit.Q, fit.v, fit.P, fit.Points);
    Norm.Converged = Adjustment.Converged;
    return !Adjustment.JobChanged;
}

}  // namespace

bool FitInNorm(NormFit& fit) {
    const bool runOn = Norm.RunOn;
    Norm = NormRecord{};
    Norm.RunOn = runOn;
    if (!GatherForFit(fit.P, fit.Points)) return false;
    bool done = false;
    switch (Job.NormType) {
        case 1:
            done = FitL1(fit) && (!runOn || RunOnToLeastSum(fit));
            break;
        case 3:
            done = FitLoo(fit) && (!runOn || RunOnToLeastLargest(fit));
            break;
        default:
            done = FitL2(fit);
    }
    if (done) SetStatus(2, "...ready");
    return done;
}
