// A whole fit of two point sets.
#include "fit/fit.h"

#include <algorithm>
#include <utility>

#include "fit/norms.h"
#include "fit/require.h"
#include "fit/weighted_fit.h"
#include "fit/weighted_norms.h"

namespace corvinade::fit {

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

SeedPoints SeedsOf(const FitProblem& problem) {
    const PairColumns& pairs = problem.Pairs;
    const int count = static_cast<int>(pairs.Start[0].size());
    SeedPoints seeds;
    for (int k = 1; k <= 3; ++k) {
        const int pair = problem.SeedPairs[At(k - 1)];
        if (pair == 0 || count < k) continue;
        Require(pair >= 1 && pair <= count);
        const std::size_t i = At(pair - 1);
        seeds.Pair[At(k)] = pair;
        seeds.Start[At(k)] = {pairs.Start[0][i], pairs.Start[1][i], pairs.Start[2][i]};
        seeds.Target[At(k)] = {pairs.Target[0][i], pairs.Target[1][i], pairs.Target[2][i]};
    }
    seeds.Reference = ReferenceInFrame(seeds.Target);
    seeds.ScalesAreOne = problem.ScalesAreOne;
    return seeds;
}

}  // namespace

FitModel ModelOf(const StartChoice& choice, FitMode mode) {
    FitModel model;
    model.Mode = mode;
    model.ToolFloats = choice.Floats[kRvecX] && choice.Floats[kRvecY] && choice.Floats[kRvecZ];
    for (int k = kTraX; k < kParameterEnd; ++k)
        if (k >= kRvecX ? model.ToolFloats : choice.Floats[At(k)]) model.UnknownOf[At(k)] = ++model.Unknowns;
    return model;
}

NormRun BeginFit(const FitProblem& problem, const FitListener& listener) {
    const std::size_t count = problem.Pairs.Start[0].size();
    for (const auto* set : {&problem.Pairs.Start, &problem.Pairs.Target})
        for (const std::span<const double>& column : *set) Require(column.size() == count);
    Require(problem.InUse.empty() || problem.InUse.size() == 3 * count);
    NormRun run;
    run.Run.Limits = problem.Limits;
    run.Run.Listener = listener;
    run.Kind = problem.Norm;
    run.Model = ModelOf(problem.Choice, problem.Mode);
    run.Choice = problem.Choice;
    run.Seeds = SeedsOf(problem);
    run.SeeksBest = problem.SeeksBest;
    run.Run.Norm.RunOn = problem.ToOptimum;
    run.InUse.assign(3 * count + 1, 1);
    run.InUse[0] = 0;
    std::copy(problem.InUse.begin(), problem.InUse.end(), run.InUse.begin() + 1);
    run.P = run.InUse;
    GatherPoints(problem.Pairs, run.P, problem.Mode == FitMode::Tool, run.Points);
    return run;
}

FitResult Fit(const FitProblem& problem, const FitListener& listener) {
    NormRun run = BeginFit(problem, listener);
    problem.Norm == FitNorm::LeastSquares ? FitLeastSquares(run) : FitByLoop(run);
    int without = 0;
    if (problem.Sigmas && !run.Abandoned() && run.Run.State.Finite) {
        Require(!problem.ToOptimum);
        without = problem.Norm == FitNorm::LeastSquares ? FitWeighted(run, *problem.Sigmas)
                                                        : FitWeightedNorm(run, *problem.Sigmas);
    }
    return {.Values = run.Run.Now,
            .Model = run.Model,
            .Q = std::move(run.Result.Q),
            .Residuals = std::move(run.Result.v),
            .Weights = std::move(run.P),
            .State = run.Run.State,
            .Norm = run.Run.Norm,
            .Certificate = run.Certificate,
            .Remarks = std::move(run.Remarks),
            .HeldByFit = run.HeldByFit,
            .LeftByPoses = std::move(run.LeftByPoses),
            .PairWithoutWeight = without};
}

}  // namespace corvinade::fit
