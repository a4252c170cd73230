// A whole fit of two point sets: values in, values out.
#pragma once

#include <array>
#include <optional>
#include <span>
#include <vector>

#include "fit/norm_run.h"
#include "fit/pair_weights.h"

namespace corvinade::fit {

// All that a fit needs to know. Lengths in mm, angles in rad.
struct FitProblem {
    PairColumns Pairs;
    std::span<const double> InUse;  // three a pair, x y z: 0 takes no part, 1 does; empty: all do
    FitMode Mode = FitMode::Coincide;
    StartChoice Choice;  // of each parameter: floats, is held, or begins at a value of its own
    std::array<int, 3> SeedPairs{1, 2, 3};  // that the start values come from, numbered from 1; 0: none
    bool ScalesAreOne = false;              // and these are not taken from the seed pairs
    FitNorm Norm = FitNorm::LeastSquares;
    bool ToOptimum =
        false;              // of L1 and Loo: on to the true optimum, and not only to where the weightings end
    bool SeeksBest = true;  // looks for the best solution of all, wherever the seed pairs lead
    FitLimits Limits{.MaxIteration = 100};
    std::optional<PairSigmas> Sigmas;  // a-priori; for the plain model, and not with ToOptimum
};

struct FitResult {
    Parameters Values;
    FitModel Model;        // the number of each unknown, 1 to u
    Matrix Q;              // u by u: inverse of the normal matrix of the last weights
    Column Residuals;      // three a pair from 1 on, x y z: transformed minus target, mm (IterationResult)
    Column Weights;        // likewise: those that the norm has left
    IterationState State;  // Abandoned: nothing here is of use
    NormRecord Norm;
    CertificateRecord Certificate;
    std::vector<FitRemark> Remarks;
    // Parameters that were to float and that the fit has held all the same (proper_beside.h); Q has them
    // float.
    std::array<bool, kParameterEnd> HeldByFit{};
    PosesLeave LeftByPoses;     // of the tool vector; Q is that with this part of it held
    int PairWithoutWeight = 0;  // numbered from 1: its sigmas give it none, and all the above is without them
    bool Converged() const { return Norm.Converged && State.Finite && !State.Abandoned; }
};

// The model of a choice: which parameters float, numbered in their order. The tool vector floats only when
// all its three parts do.
FitModel ModelOf(const StartChoice& choice, FitMode mode);

// Require: columns of pairs are as long, three of InUse a pair or none, seed pairs among the pairs. With
// fewer observations than unknowns, or points that leave some open, the result is one of many and no failure;
// a number that is none ends the fit with State.Finite false.
FitResult Fit(const FitProblem& problem, const FitListener& listener = {});

// The run of a problem as it begins, its points gathered.
NormRun BeginFit(const FitProblem& problem, const FitListener& listener);

}  // namespace corvinade::fit
