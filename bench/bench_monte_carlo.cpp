// Monte Carlo of 10,000 runs, noise included, and the noise alone.
#include <benchmark/benchmark.h>

#include <vector>

#include "core/fresh_start.h"
#include "core/job.h"
#include "core/settings.h"
#include "engine/adjustment.h"
#include "engine/design.h"
#include "engine/monte_carlo.h"
#include "engine/noise.h"
#include "fit_data.h"

using namespace corvinade;

namespace {

constexpr int kRuns = 10000;

void MonteCarlo_Runs(benchmark::State& state) {
    const FitData data = MakeFitData(static_cast<int>(state.range(0)), 7);
    FreshStart();
    Settings.MaxIteration = 100;
    Settings.BestFit_Etta = 1e-9;
    Settings.RawScale = 2;
    Settings.SigmaX = Settings.SigmaY = Settings.SigmaZ = 0.05;
    Settings.MonteCarloRuns = kRuns;
    // About the first point: seen from 1000 km off the shifts would spread by what the rotations do.
    const auto& p = data.Start[0];
    const auto& q = data.Target[0];
    for (std::size_t i = 0; i < data.Start.size(); ++i) {
        const auto &a = data.Start[i], &b = data.Target[i];
        Job.Start.Add("", a[0] - p[0], a[1] - p[1], a[2] - p[2]);
        Job.Target.Add("", b[0] - q[0] + 1234.5, b[1] - q[1] - 876.25, b[2] - q[2] + 345.125);
    }
    const std::size_t n = 3 * data.Start.size();
    Job.UseFlags.assign(n + 1, 1);
    Job.SetPairs(Job.Start.Count());
    Job.ParamText.fill(kNotUsed);
    for (const int k : {kTraX, kTraY, kTraZ, kRotX, kRotY, kRotZ, kScaleXYZ})
        Job.ParamText[static_cast<std::size_t>(k)] = kFloat;
    MonteCarlo.MonteCarloOn = kTrue;
    for (auto _ : state) {
        NormFit fit{.u = 7, .n = 3 * Job.Pairs(), .ParamText = Job.ParamText, .P = Column(n + 1, 1)};
        if (!FitInNorm(fit) || !IsTrue(MonteCarlo.MonteCarloDone))
            state.SkipWithError("the runs did not end");
    }
    state.counters["passes"] = Adjustment.Iterations;
    state.counters["spread_TraX"] = SigmaOfArray(MonteCarloArray(kTraX));
}

BENCHMARK(MonteCarlo_Runs)->ArgName("points")->Arg(20)->Arg(200)->Unit(benchmark::kMillisecond);

void MonteCarlo_Noise(benchmark::State& state) {
    std::vector<double> numbers(static_cast<std::size_t>(3 * state.range(0)));
    for (auto _ : state) {
        for (int run = 0; run < kRuns; ++run) FillWithNoise(Noise, numbers);
        benchmark::DoNotOptimize(numbers.data());
    }
}

BENCHMARK(MonteCarlo_Noise)->ArgName("points")->Arg(20)->Arg(200)->Unit(benchmark::kMillisecond);

}  // namespace
