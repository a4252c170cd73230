// A whole fit of points to a shape of revolution, and its runs of Monte Carlo.
#include "fit/fit_shape.h"

#include <algorithm>
#include <utility>

#include "fit/held_directions.h"
#include "fit/require.h"
#include "fit/shape.h"
#include "fit/shape_way.h"

namespace corvinade::fit {

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

std::array<bool, kParameterEnd> FloatsOf(const FitModel& model) {
    std::array<bool, kParameterEnd> floats{};
    for (std::size_t k = kTraX; k < kParameterEnd; ++k) floats[k] = model.UnknownOf[k] != 0;
    return floats;
}

// Passes of the gathered points until s0 rests.
LoopEnd Loop(ShapeRun& run, ShapeLoop& loop, double tolerance) {
    BeginLoop(loop);
    const ShapeListener& listener = run.Listener;
    return LoopToRest(loop, tolerance,
                      {.Pass =
                           [&run, &loop, floats = FloatsOf(run.Model)](double& s0) {
                               const PassEnd end = Pass(run);
                               if (end != PassEnd::Done) return end;
                               s0 = run.s0;
                               if (run.Listener.PassCounts) run.Listener.PassCounts(run);
                               EndOfPass(loop, floats, s0, true, run.Now);
                               return end;
                           },
                       .GoesOn = [&run] { return !run.Lost(); },
                       .StopIsWanted = [&listener] { return listener.Stops(); },
                       .RestIsWanted = listener.RestIsWanted,
                       .MostPasses = listener.MostPasses});
}

PassEnd EndOf(LoopEnd end) {
    if (end == LoopEnd::Lost) return PassEnd::Lost;
    return end == LoopEnd::Rest ? PassEnd::Done : PassEnd::Failed;
}

// The loop, and on from where it rests.
PassEnd LoopAndRest(ShapeRun& run, ShapeLoop& loop, double tolerance) {
    const PassEnd end = EndOf(Loop(run, loop, tolerance));
    bool moved = false;
    return end == PassEnd::Done ? GoToRest(run, moved) : end;
}

// One more pass, whose residuals count.
PassEnd PassThatCounts(ShapeRun& run) {
    const PassEnd end = Pass(run);
    return end == PassEnd::Done && run.Listener.Stops() ? PassEnd::Failed : end;
}

WaySteps StepsOf(ShapeRun& run, ShapeLoop& loop, double tolerance) {
    return {.Loop = [&run, &loop, tolerance] { return Loop(run, loop, tolerance); },
            .GoToRest = [&run](bool& moved) { return GoToRest(run, moved); },
            .SearchBeside = [&run](BesideSearch& found) { return SearchBeside(run, found); },
            .Now = [&run] { return run.Now; },
            .Put = [&run](const Parameters& now) { run.Now = now; },
            .s0 = [&run] { return run.s0; },
            .Stopped = [&run] { return run.Listener.StopsOrRests(); }};
}

MonteCarloEnd AllRuns(const ShapeRuns& runs, const CleanPoints& clean, ShapeRun& fit, ShapeLoop& loop,
                      NoiseRecord& noise, const ShapeRunsListener& listener) {
    Column values;
    for (int i = 1; i <= runs.Runs; ++i) {
        if (listener.Begins) listener.Begins(i);
        if (fit.Lost()) return MonteCarloEnd::Abandoned;
        AddNoise(clean, runs.Sigma, noise, fit.Points);
        PassEnd end = LoopAndRest(fit, loop, runs.Tolerance);
        if (end == PassEnd::Done) end = PassThatCounts(fit);
        if (end == PassEnd::Lost) return MonteCarloEnd::Abandoned;
        if (end == PassEnd::Failed) return MonteCarloEnd::Ended;
        if (TakeNicerRotation(fit.Now)) BuildChain(ChainSourceOf(fit.Now), fit.Chain);
        ResultOfRun(fit.Model, {}, fit.Now, SigmaXYZOf(fit.Result.v, fit.P), values);
        if (listener.Counts) listener.Counts(i, values);
    }
    return MonteCarloEnd::Complete;
}

}  // namespace

ShapeRun BeginShape(const ShapeProblem& problem, const ShapeListener& listener) {
    const std::size_t count = problem.Start[0].size();
    for (const std::span<const double>& column : problem.Start) Require(column.size() == count);
    Require(problem.InUse.empty() || problem.InUse.size() == 3 * count);
    Require(ShapeServes(problem.Shape) && problem.Model.Mode == FitMode::Coincide);
    ShapeRun run{.Shape = problem.Shape, .Model = problem.Model, .Now = problem.Begin};
    run.Limits = problem.Limits;
    run.Listener = listener;
    run.P.assign(3 * count + 1, 1);
    run.P[0] = 0;
    std::copy(problem.InUse.begin(), problem.InUse.end(), run.P.begin() + 1);
    // Their first targets, about whose centre those of all passes are taken.
    std::array<std::vector<double>, 3> target;
    double distance = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const Vec3 image = ImageOf(run, {problem.Start[0][i], problem.Start[1][i], problem.Start[2][i]});
        Vec3 nearest;
        NearestShapePoint(image(1), image(2), image(3), run.Shape, nearest(1), nearest(2), nearest(3),
                          distance);
        for (int axis = 1; axis <= 3; ++axis) target[At(axis - 1)].push_back(nearest(axis));
    }
    GatherPoints({.Start = problem.Start, .Target = {target[0], target[1], target[2]}}, run.P, false,
                 run.Points);
    return run;
}

ShapeResult FitShape(const ShapeProblem& problem, const ShapeListener& listener) {
    ShapeRun run = BeginShape(problem, listener);
    ShapeLoop loop;
    ShapeResult result;
    const WaySteps steps = StepsOf(run, loop, problem.Tolerance);
    LoopEnd end = FitToRest(loop, steps);
    if (end == LoopEnd::Rest) end = FitBeside(loop, steps, result.Beside);
    result.End = EndOf(end);
    if (result.End == PassEnd::Done) result.End = PassThatCounts(run);
    if (result.End == PassEnd::Lost) return result;
    result.Values = run.Now;
    result.s0 = run.s0;
    result.Open = OpenOfShape(run);
    result.Sigmas = SigmasByDistances(run);
    result.Residuals = std::move(run.Result.v);
    result.Weights = std::move(run.P);
    return result;
}

MonteCarloEnd RunMonteCarloOfShape(const ShapeRuns& runs, ShapeRun& fit, ShapeLoop& loop, NoiseRecord& noise,
                                   const ShapeRunsListener& listener) {
    const CleanPoints clean = {runs.Clean[0], runs.Clean[1], runs.Clean[2]};
    const MonteCarloEnd end = AllRuns(runs, clean, fit, loop, noise, listener);
    TakeNoiseOff(clean, fit.Points);
    return end;
}

}  // namespace corvinade::fit
