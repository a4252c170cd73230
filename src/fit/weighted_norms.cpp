// The norms L1 and L-infinity of residuals that are divided by their a-priori standard deviations.
#include "fit/weighted_norms.h"

#include <algorithm>
#include <cmath>

#include "fit/moments.h"
#include "fit/norms.h"
#include "fit/require.h"

namespace corvinade::fit {

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

// Rounds without a better one that end a loop: rounding is larger than the tolerance then.
constexpr int kMostIdleRounds = 100;

// By coordinate, from 1 on: its sigma in units of their mean; 0 out of use.
Column RelativeSigmas(const NormRun& fit, const PairSigmas& sigmas) {
    constexpr double kSame = 1e-12;
    ChainRecord chain;
    BuildChain(ChainSourceOf(fit.Run.Now), chain);
    Column sizes(fit.InUse.size());
    double sum = 0, n = 0;
    for (int i = 0; i < fit.Points.Count; ++i) {
        const Mat3 C = CovarianceOf(sigmas, chain.Product, i);
        for (int axis = 1; axis <= 3; ++axis) {
            const std::size_t index = At(3 * i + axis);
            if (fit.InUse[index] == 0) continue;
            sum += sizes[index] = std::sqrt(C(axis, axis));
            ++n;
        }
    }
    const double mean = n > 0 ? sum / n : 1;
    for (double& size : sizes)
        if (size != 0) size = std::fabs(size - mean) <= kSame * mean ? 1 : size / mean;
    return sizes;
}

// The sum or the largest of |v| / s.
double ObjectiveOf(const NormRun& fit, const Column& sizes) {
    double sum = 0, largest = 0;
    for (std::size_t i = 1; i < sizes.size(); ++i) {
        if (sizes[i] == 0) continue;
        const double share = std::fabs(fit.Result.v[i]) / sizes[i];
        sum += share;
        largest = std::max(largest, share);
    }
    return fit.Kind == FitNorm::LeastSum ? sum : largest;
}

// Weights of the next fit. L1: the square of v with 1 / (s |v|) is |v| / s. L-infinity: the worst row gains a
// tenth and the best one loses it.
void Reweight(const Column& sizes, NormRun& fit) {
    constexpr double kExchange = 1.1;
    std::size_t worst = 0, best = 0;
    double most = -1, least = 0;
    for (std::size_t i = 1; i < sizes.size(); ++i) {
        if (sizes[i] == 0) continue;
        if (fit.Kind == FitNorm::LeastSum) {
            fit.P[i] = ResidualWeight(fit.Result.v[i]) / sizes[i];
            continue;
        }
        const double share = std::fabs(fit.Result.v[i]) / sizes[i];
        if (share > most) {
            most = share;
            worst = i;
        }
        if (best == 0 || share < least) {
            least = share;
            best = i;
        }
    }
    if (fit.Kind == FitNorm::LeastSum || worst == 0) return;
    fit.P[worst] *= kExchange;
    fit.P[best] /= kExchange;
}

void BeginWeights(const Column& sizes, NormRun& fit) {
    if (fit.Kind == FitNorm::LeastSum) return Reweight(sizes, fit);
    for (std::size_t i = 1; i < sizes.size(); ++i) fit.P[i] = sizes[i] == 0 ? 0 : 1 / (sizes[i] * sizes[i]);
}

}  // namespace

int FitWeightedNorm(NormRun& fit, const PairSigmas& sigmas) {
    Require(fit.Model.Mode == FitMode::Coincide && fit.Kind != FitNorm::LeastSquares);
    ChainRecord chain;
    BuildChain(ChainSourceOf(fit.Run.Now), chain);
    if (const int pair = PairWithoutWeight(sigmas, chain.Product, fit.Points.Count, fit.InUse); pair != 0)
        return pair;
    Column sizes = RelativeSigmas(fit, sigmas);
    if (sizes == fit.InUse) return 0;  // the plain loop
    FitOutcome best(fit);
    Column weights = fit.P;
    double least = ObjectiveOf(fit, sizes);
    BeginWeights(sizes, fit);
    NormRecord& norm = fit.Run.Norm;
    norm.Converged = false;
    for (int idle = 0; norm.Iterations < kMostNormRounds; ++norm.Iterations) {
        const double before = least;
        IterateFit(fit);
        if (fit.Abandoned()) return 0;
        if (!fit.Run.State.Finite) break;
        CountUnsettledFit(fit);
        sizes = RelativeSigmas(fit, sigmas);
        const double now = ObjectiveOf(fit, sizes);
        Reweight(sizes, fit);
        if (now < least) {
            least = now;
            best = FitOutcome(fit);
            weights = fit.P;
        }
        idle = least < before - norm.NormTolerance ? 0 : idle + 1;
        if (!fit.Run.Tell(FitStep::LoopRound, fit.Kind == FitNorm::LeastSum ? before - now : now)) return 0;
        norm.Converged = idle >= kMostIdleRounds && best.State.Converged;
        if (idle >= kMostIdleRounds || fit.Stops()) break;
    }
    best.PutBack(fit);
    fit.P = weights;
    SetWeights(fit.P, fit.Points);
    return 0;
}

}  // namespace corvinade::fit
