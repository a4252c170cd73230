// From the job to a fit of its points to its shape, and back.
#include "paraboloid/shape_passes.h"

#include <cmath>

#include "core/job.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/settings.h"
#include "engine/adjustment.h"
#include "engine/design.h"
#include "engine/job_fit.h"
#include "engine/monte_carlo.h"
#include "paraboloid/paraboloid.h"

namespace corvinade::paraboloid {

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

ShapeListener ListenerOf(const ShapePasses& passes) {
    return {.GoesOn =
                [&passes](const ShapeRun&, bool moved) {
                    if (moved) passes.PutIntoJob();
                    YieldToEvents();
                    return !passes.Overtaken();
                },
            .BeginFit =
                [&passes](const Parameters& begin) {
                    PutParameters(begin, Job);
                    BeginAdjustment(passes.Fit.Model);
                    return BeginFitOfJob();
                },
            .Fitted =
                [&passes](const FitRun& fit) {
                    TakeFit(fit);
                    if (!Adjustment.JobChanged) TellOfLimit();
                    return !Adjustment.JobChanged && !passes.Overtaken();
                },
            .PassCounts =
                [](const ShapeRun& run) {
                    CountPass();
                    ParaboloidRun.S0 = run.s0;
                },
            .MostPasses = TellOfMostPasses,
            .StopIsWanted = [] { return IsTrue(Run.StopRequested); },
            .RestIsWanted = [] { return IsTrue(ParaboloidRun.ParaStopRequested); }};
}

// What a search leaves in the job.
PassEnd PutBack(const ShapePasses& passes, PassEnd end) {
    if (end != PassEnd::Lost) passes.PutIntoJob();
    return end;
}

}  // namespace

bool ShapePasses::Begin() {
    Generation = Run.JobGeneration;
    MonteCarloStarted = MonteCarlo.Started;
    const int n = 3 * Job.Pairs();
    Fit.P.assign(At(n) + 1, 0);
    for (int i = 1; i <= n; ++i) Fit.P[At(i)] = CoordinateInUse(At(i)) ? 1 : 0;
    if (!GatherForFit(Fit.P, Fit.Points)) return false;
    Fit.Model = ChooseModel(Job.ParamText);
    Fit.Shape = Job.ParaboloidShape;
    Fit.Now = ParametersOf(Job);
    Fit.Listener = ListenerOf(*this);
    return true;
}

bool ShapePasses::Overtaken() const {
    return Run.JobGeneration != Generation || MonteCarlo.Started != MonteCarloStarted;
}

void ShapePasses::PutIntoJob() const {
    PutParameters(Fit.Now, Job);
    const auto& [x, y, z] = Fit.Chain.BuiltFrom.Rotation;
    if (std::isnan(x)) return;  // no point has gone through them yet
    Job.RotXCopy = x;
    Job.RotYCopy = y;
    Job.RotZCopy = z;
}

PassEnd GoToRest(ShapePasses& passes, bool& moved) {
    passes.Fit.Now = ParametersOf(Job);
    return PutBack(passes, fit::GoToRest(passes.Fit, moved));
}

PassEnd SearchBeside(ShapePasses& passes, BesideSearch& found) {
    passes.Fit.Now = ParametersOf(Job);
    return PutBack(passes, fit::SearchBeside(passes.Fit, found));
}

}  // namespace corvinade::paraboloid
