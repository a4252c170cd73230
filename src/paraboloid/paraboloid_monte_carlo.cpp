// Monte Carlo of the fit to a shape: each run is an outer loop of its own.
#include "core/platform.h"
#include "core/run.h"
#include "core/units.h"
#include "core/job.h"
#include "engine/adjustment.h"
#include "engine/monte_carlo.h"
#include "engine/nice_rotation.h"
#include "paraboloid/form_stop_para_trafo.h"
#include "paraboloid/paraboloid.h"
#include "paraboloid/shape_passes.h"

namespace corvinade::paraboloid {

namespace {

// The outer loop on the points as they stand.
PassEnd Loop(ShapePasses& passes, double tolerance) {
    BeginOuterLoop();
    for (int pass = 1; pass <= kMostPasses; ++pass) {
        const double before = ParaboloidRun.PreviousS0;
        const PassEnd end = passes.Pass();
        if (end != PassEnd::Done) return end;
        CountPass();
        ParaboloidRun.S0 = passes.s0;
        Accelerate(passes.s0);
        YieldToEvents();
        if (passes.Overtaken()) return PassEnd::Lost;
        if (IsTrue(Run.StopRequested)) return PassEnd::Failed;
        if (AtRest(before, passes.s0, tolerance) || IsTrue(ParaboloidRun.ParaStopRequested))
            return PassEnd::Done;
    }
    TellOfMostPasses();
    return PassEnd::Failed;
}

// The loop, on from where it rests, and the pass whose residuals count.
PassEnd FitOfRun(ShapePasses& passes, double tolerance) {
    PassEnd end = Loop(passes, tolerance);
    bool moved = false;
    if (end == PassEnd::Done) end = GoToRest(passes, moved);
    if (end == PassEnd::Done) end = passes.Pass();
    return end == PassEnd::Done && IsTrue(Run.StopRequested) ? PassEnd::Failed : end;
}

struct Finaliser {
    GatheredPoints& Points;
    ~Finaliser() { MonteCarloFinalisieren(Points); }
};

}  // namespace

bool RunMonteCarloOfShape() {
    TakeStartOfShape();
    ShapePasses passes;
    if (!passes.Begin()) return false;
    MonteCarloInitialisieren();
    passes.MonteCarloStarted = MonteCarlo.Started;
    const Finaliser finaliser{passes.Fit.Points};
    CloseStopWindow();  // the button of the progress window ends the runs
    constexpr double kRest = 1e-5;
    const double tolerance = kRest * Units.LengthFactor;
    const int count = MonteCarlo.MCResults.Columns;
    bool complete = true;
    for (int i = 1; i <= count && complete; ++i) {
        ShowRunOfMonteCarlo(i, count);
        YieldToEvents();
        if (passes.Overtaken()) return false;
        MCS_verrauschen(passes.Fit.Points);
        const PassEnd end = FitOfRun(passes, tolerance);
        if (end == PassEnd::Lost) return false;
        complete = end == PassEnd::Done;
        if (complete) {
            NiceRotSol();
            TakeRunOfMonteCarlo(i, ResultOfRun(Adjustment.Model, {}, ParametersOf(Job), SigmaXYZOf(passes.Fit.v, passes.Fit.P)));
        }
    }
    MonteCarlo.MonteCarloDone = ToFlag(complete);
    return true;
}

}  // namespace corvinade::paraboloid
