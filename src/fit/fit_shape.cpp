// A whole fit of points to a shape of revolution, and its runs of Monte Carlo.
#include "fit/fit_shape.h"

#include <algorithm>
#include <utility>

#include "fit/held_directions.h"
#include "fit/require.h"
#include "fit/shape.h"

namespace corvinade::fit {

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

// The loop, and on from where it rests.
PassEnd LoopAndRest(ShapeRun& run, ShapeLoop& loop, double tolerance) {
    const PassEnd end = LoopToRest(run, loop, tolerance);
    bool moved = false;
    return end == PassEnd::Done ? GoToRest(run, moved) : end;
}

// One more pass, whose residuals count.
PassEnd PassThatCounts(ShapeRun& run) {
    const PassEnd end = Pass(run);
    return end == PassEnd::Done && run.Listener.Stops() ? PassEnd::Failed : end;
}

// On to the best place beside, where there is one.
PassEnd GoBeside(ShapeRun& run, ShapeLoop& loop, double tolerance, BesideSearch& found) {
    const PassEnd end = SearchBeside(run, found);
    if (end != PassEnd::Done || !found.Better || run.Listener.StopsOrRests()) return end;
    return LoopAndRest(run, loop, tolerance);
}

MonteCarloEnd AllRuns(const ShapeRuns& runs, const CleanPoints& clean, ShapeRun& fit, ShapeLoop& loop,
                      NoiseRecord& noise, const ShapeRunsListener& listener) {
    for (int i = 1; i <= runs.Runs; ++i) {
        if (listener.Begins) listener.Begins(i);
        if (fit.Lost()) return MonteCarloEnd::Abandoned;
        AddNoise(clean, runs.Sigma, noise, fit.Points);
        PassEnd end = LoopAndRest(fit, loop, runs.Tolerance);
        if (end == PassEnd::Done) end = PassThatCounts(fit);
        if (end == PassEnd::Lost) return MonteCarloEnd::Abandoned;
        if (end == PassEnd::Failed) return MonteCarloEnd::Ended;
        if (TakeNeatRotation(fit.Now)) BuildChain(ChainSourceOf(fit.Now), fit.Chain);
        if (listener.Counts)
            listener.Counts(i, ResultOfRun(fit.Model, {}, fit.Now, SigmaXYZOf(fit.Result.v, fit.P)));
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
    result.End = LoopAndRest(run, loop, problem.Tolerance);
    if (result.End == PassEnd::Done) result.End = GoBeside(run, loop, problem.Tolerance, result.Beside);
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
