// The fit with its residuals: our own adjustment from its three seed points on, with the points gathered
// from the job and with points that are gathered already (as a second run finds them), the same by the rows
// of the points, and the streamed Eigen Gauss-Newton from start values near the truth, on the same data.
// Peers run in turn, and the ratio is taken round by round, so that a slow minute of the machine meets both.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>

#include "core/fresh_start.h"
#include "core/job.h"
#include "core/settings.h"
#include "engine/adjustment.h"
#include "engine/design.h"
#include "engine/selection.h"
#include "fit_data.h"
#include "timing.h"
#ifdef CORVINADE_BENCH_EIGEN
#include "eigen_fit.h"

using namespace corvinade;
#endif

namespace {

void Adjustment_Fit(benchmark::State& state) {
    const int points = static_cast<int>(state.range(0)), parameters = static_cast<int>(state.range(1));
    const FitData data = MakeFitData(points, parameters);
    FillJob(data, parameters);
    const int n = 3 * points, u = CountUnknowns(Job.ParamText);
    Matrix Q;
    Column v, P(static_cast<std::size_t>(n) + 1, 1);
    std::vector<double> own, again, ratios, ratiosAgain, rowRatios;
    GatheredPoints kept;
    GatherForFit(P, kept);
#ifdef CORVINADE_BENCH_EIGEN
    std::array<double, 12> near = data.Truth;
    for (std::size_t k = 0; k < near.size(); ++k) near[k] += (k < 3 ? 0.5 : 1e-5);
    if (parameters == 7) near[9] = near[10] = near[11] = 0;
    EigenFitResult peer;
    EigenFit(data, parameters, near, peer);
#endif
    const auto fitByRows = [&] {
        GatheredPoints gathered;
        GatherForFit(P, gathered);
        gathered.ByRows = true;
        BestFitIteration(u, n, Job.ParamText, Q, v, P, gathered);
    };
    fitByRows();
    BestFitIteration(u, n, Job.ParamText, Q, v, P);
    for (auto _ : state) {
        const auto begin = std::chrono::steady_clock::now();
        BestFitIteration(u, n, Job.ParamText, Q, v, P);
        own.push_back(Milliseconds(begin));
        state.SetIterationTime(own.back() / 1000);
        const auto beginAgain = std::chrono::steady_clock::now();
        BestFitIteration(u, n, Job.ParamText, Q, v, P, kept);
        again.push_back(Milliseconds(beginAgain));
        const auto beginRows = std::chrono::steady_clock::now();
        fitByRows();
        rowRatios.push_back(Milliseconds(beginRows) / own.back());
#ifdef CORVINADE_BENCH_EIGEN
        const auto beginPeer = std::chrono::steady_clock::now();
        EigenFit(data, parameters, near, peer);
        const double ofPeer = Milliseconds(beginPeer);
        ratios.push_back(ofPeer / own.back());
        ratiosAgain.push_back(ofPeer / again.back());
#endif
    }
    state.counters["ms"] = Median(own);
    state.counters["ms_gathered"] = Median(again);
    state.counters["rows/own"] = Median(rowRatios);
    state.counters["passes"] = Adjustment.Iterations;
#ifdef CORVINADE_BENCH_EIGEN
    state.counters["Eigen_passes"] = peer.Iterations;
    state.counters["Eigen/own"] = Median(ratios);
    state.counters["Eigen/gathered"] = Median(ratiosAgain);
    // Both must have found the same deviations, or the ratio says nothing.
    double worst = 0;
    for (std::size_t i = 0; i < data.Start.size(); ++i)
        for (std::size_t axis = 0; axis < 3; ++axis)
            worst = std::max(worst, std::fabs(peer.Residuals[i][axis] - v[3 * i + axis + 1]));
    if (!Adjustment.Converged || worst > 1e-6) state.SkipWithError("the two fits do not agree");
#endif
}

BENCHMARK(Adjustment_Fit)
    ->ArgNames({"points", "u"})
    ->ArgsProduct({{1000, 100000, 1000000}, {7, 12}})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace
