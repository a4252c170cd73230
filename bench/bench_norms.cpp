// L1 with one gross error in twenty: the whole loop from the seed points on, beside the same loop over a
// streamed Eigen Gauss-Newton that begins each fit at the same start values. Peers run in turn, and the ratio
// is taken round by round. Behind it the way on to the true optimum of either norm.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <vector>

#include "core/fresh_start.h"
#include "core/job.h"
#include "core/settings.h"
#include "engine/design.h"
#include "engine/norms.h"
#include "fit_data.h"
#include "timing.h"
#ifdef CORVINADE_BENCH_EIGEN
#include "eigen_fit.h"

using namespace corvinade;
#endif

namespace {

FitData WithGrossErrors(int points) {
    FitData data = MakeFitData(points, 7);
    for (std::size_t i = 7; i < data.Target.size(); i += 20) {
        const double error = 5.0 + static_cast<double>(i % 11);
        data.Target[i][0] += error;
        data.Target[i][2] -= error / 2;
    }
    return data;
}

void FillNormJob(const FitData& data, int norm) {
    FillJob(data, 7);
    Job.NormType = static_cast<std::int16_t>(norm);
}

// The whole calculation, points gathered and residuals left.
bool Calculate(NormFit& fit) {
    fit.u = 7;
    fit.n = 3 * Job.Pairs();
    fit.ParamText = Job.ParamText;
    fit.P.assign(static_cast<std::size_t>(fit.n) + 1, 1);
    return FitInNorm(fit) && Norm.Converged;
}

double SumOf(const std::vector<std::array<double, 3>>& residuals) {
    double sum = 0;
    for (const auto& residual : residuals)
        for (const double value : residual) sum += std::fabs(value);
    return sum;
}

void Norm_L1(benchmark::State& state) {
    const FitData data = WithGrossErrors(static_cast<int>(state.range(0)));
    FillNormJob(data, 1);
    std::vector<double> own, ratios;
#ifdef CORVINADE_BENCH_EIGEN
    std::array<double, 12> near = data.Truth;
    for (std::size_t k = 0; k < near.size(); ++k) near[k] += (k < 3 ? 0.5 : 1e-5);
    near[9] = near[10] = near[11] = 0;
    EigenFitResult peer;
    int peerRounds = 0;
#endif
    double sum = 0;
    for (auto _ : state) {
        NormFit fit;
        const auto begin = std::chrono::steady_clock::now();
        if (!Calculate(fit)) state.SkipWithError("the loop did not end by its own rule");
        own.push_back(Milliseconds(begin));
        state.SetIterationTime(own.back() / 1000);
        sum = 0;
        for (const double v : fit.v) sum += std::fabs(v);
#ifdef CORVINADE_BENCH_EIGEN
        const auto beginPeer = std::chrono::steady_clock::now();
        peerRounds = EigenL1(data, 7, near, peer);
        ratios.push_back(Milliseconds(beginPeer) / own.back());
#endif
    }
    state.counters["ms"] = Median(own);
    state.counters["rounds"] = Norm.Iterations;
#ifdef CORVINADE_BENCH_EIGEN
    state.counters["Eigen_rounds"] = peerRounds;
    state.counters["Eigen/own"] = Median(ratios);
    // The rule of the stop leaves the last of the sum open.
    if (std::fabs(SumOf(peer.Residuals) - sum) > 0.05) state.SkipWithError("the two sums do not agree");
#endif
}

void Norm_Exact(benchmark::State& state) {
    FillNormJob(WithGrossErrors(static_cast<int>(state.range(0))), static_cast<int>(state.range(1)));
    Norm.RunOn = true;
    for (auto _ : state) {
        NormFit fit;
        if (!Calculate(fit)) state.SkipWithError("the optimum was not found");
    }
    state.counters["exchanges"] = Norm.Exchanges;
    state.counters["at_most_above_mm"] = Norm.AboveOptimum;
}

BENCHMARK(Norm_L1)->ArgName("points")->Arg(10000)->Arg(100000)->Iterations(5)->UseManualTime()->Unit(
    benchmark::kMillisecond);
BENCHMARK(Norm_Exact)
    ->ArgNames({"points", "norm"})
    ->ArgsProduct({{1000, 33000}, {1, 3}})
    ->Unit(benchmark::kMillisecond);

}  // namespace
