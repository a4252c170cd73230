// Monte Carlo of the fit to a shape: each run is an outer loop of its own.
#include "core/platform.h"
#include "core/run.h"
#include "core/settings.h"
#include "core/units.h"
#include "engine/monte_carlo.h"
#include "engine/noise.h"
#include "fit/fit_shape.h"
#include "paraboloid/form_stop_para_trafo.h"
#include "paraboloid/paraboloid.h"
#include "paraboloid/shape_passes.h"

namespace corvinade::paraboloid {

namespace {

struct Finaliser {
    GatheredPoints& Points;
    ~Finaliser() { MonteCarloFinalisieren(Points); }
};

ShapeRuns RunsOfJob() {
    ShapeRuns runs;
    const auto saved = [](const Column& column) {
        return std::vector<double>(column.begin() + 1, column.end());
    };
    runs.Clean = {saved(MonteCarlo.MCSaveX), saved(MonteCarlo.MCSaveY), saved(MonteCarlo.MCSaveZ)};
    runs.Sigma = {Settings.SigmaX, Settings.SigmaY, Settings.SigmaZ};
    runs.Runs = MonteCarlo.MCResults.Columns;
    constexpr double kRest = 1e-5;
    runs.Tolerance = kRest * Units.LengthFactor;
    return runs;
}

}  // namespace

bool RunMonteCarloOfShape() {
    TakeStartOfShape();
    ShapePasses passes;
    if (!passes.Begin()) return false;
    MonteCarloInitialisieren();
    passes.MonteCarloStarted = MonteCarlo.Started;
    const Finaliser finaliser{passes.Fit.Points};
    CloseStopWindow();  // the button of the progress window ends the runs
    const ShapeRuns runs = RunsOfJob();
    const ShapeRunsListener listener = {.Begins = [&runs](int i) { ShowRunOfMonteCarlo(i, runs.Runs); },
                                        .Counts =
                                            [&passes](int i, const Column& values) {
                                                passes.PutIntoJob();
                                                TakeRunOfMonteCarlo(i, values);
                                            }};
    const MonteCarloEnd end =
        fit::RunMonteCarloOfShape(runs, passes.Fit, ParaboloidRun.Loop, Noise, listener);
    if (end == MonteCarloEnd::Abandoned) return false;
    passes.PutIntoJob();
    MonteCarlo.MonteCarloDone = ToFlag(end == MonteCarloEnd::Complete);
    return true;
}

}  // namespace corvinade::paraboloid
