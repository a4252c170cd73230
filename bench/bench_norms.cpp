// L1 with one gross error in twenty: the whole loop from the seed points on.
#include <benchmark/benchmark.h>

#include "core/fresh_start.h"
#include "core/job.h"
#include "core/settings.h"
#include "engine/design.h"
#include "engine/norms.h"
#include "fit_data.h"

namespace {

void Norm_L1(benchmark::State& state) {
    const FitData data = MakeFitData(static_cast<int>(state.range(0)), 7);
    FreshStart();
    Settings.MaxIteration = 100;
    Settings.BestFit_Etta = 1e-9;
    Settings.RawScale = 2;
    const std::size_t n = data.Start.size();
    for (std::size_t i = 0; i < n; ++i) {
        const double error = i % 20 == 7 ? 5.0 + static_cast<double>(i % 11) : 0;
        Job.MCS_X.push_back(data.Start[i][0]);
        Job.MCS_Y.push_back(data.Start[i][1]);
        Job.MCS_Z.push_back(data.Start[i][2]);
        Job.OCS_X.push_back(data.Target[i][0] + error);
        Job.OCS_Y.push_back(data.Target[i][1]);
        Job.OCS_Z.push_back(data.Target[i][2] - error / 2);
    }
    Job.UseFlags.assign(3 * n + 1, 1);
    Job.nIdent = Job.nMCS = Job.nOCS = static_cast<std::int32_t>(n);
    Job.ParamText.fill(kNotUsed);
    for (const int k : {kTraX, kTraY, kTraZ, kRotX, kRotY, kRotZ, kScaleXYZ})
        Job.ParamText[static_cast<std::size_t>(k)] = kFloat;
    Job.NormType = 1;
    for (auto _ : state) {
        NormFit fit{.u = 7, .n = 3 * Job.nIdent, .ParamText = Job.ParamText, .P = Column(3 * n + 1, 1)};
        if (!FitInNorm(fit) || !Norm.Converged) state.SkipWithError("the loop did not end by its own rule");
    }
    state.counters["rounds"] = Norm.Iterations;
}

BENCHMARK(Norm_L1)->ArgName("points")->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

}  // namespace
