// How far a result can be trusted, beside the fit that it is about: the statistics of every coordinate and
// the accuracy of every transformed point. And the fit under a-priori standard deviations beside the plain
// one: equal ones of the target, of the start, and of both sides with one an axis, and those of each pair, of
// the target and of both sides. Ratios are taken round by round.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "core/job.h"
#include "core/measurement_sigmas.h"
#include "engine/adjustment.h"
#include "engine/calculation.h"
#include "engine/norms.h"
#include "engine/result_statistics.h"
#include "fit/adjustment_statistics.h"
#include "fit_data.h"
#include "timing.h"

using namespace corvinade;

namespace {

constexpr int kPoints = 100000;

// The whole calculation, points gathered and residuals left; ms.
double TimeOfFit(const MeasurementSigmas& sigmas, NormFit& fit) {
    PutSigmas(sigmas, Job);
    SigmasOf(Job);  // read from their text, which is done once a job
    fit.u = 7;
    fit.n = 3 * Job.Pairs();
    fit.ParamText = Job.ParamText;
    fit.P.assign(static_cast<std::size_t>(fit.n) + 1, 1);
    const auto begin = std::chrono::steady_clock::now();
    if (!FitInNorm(fit) || !Norm.Converged) return NAN;
    return Milliseconds(begin);
}

void Statistics_OfFit(benchmark::State& state) {
    FillJob(MakeFitData(kPoints, 7), 7);
    std::vector<double> fits, statistics, ratios;
    double check = 0;
    for (auto _ : state) {
        NormFit fit;
        fits.push_back(TimeOfFit({}, fit));
        const auto begin = std::chrono::steady_clock::now();
        Column inUse(fit.v.size(), 1);
        GatheredPoints points;
        GatherPoints(inUse, false, points);
        SetWeights(inUse, points);
        const AdjustmentStatistics s = StatisticsOf({.Points = points,
                                                     .Model = Adjustment.Model,
                                                     .Result = ParametersOf(Job),
                                                     .InUse = inUse,
                                                     .Residuals = fit.v});
        double largest = 0;
        for (int i = 1; i <= Job.Start.Count(); ++i) {
            const Vec3 sigma = SigmaOfTransformed(s, StartPoint(i));
            largest = std::max({largest, sigma(1), sigma(2), sigma(3)});
        }
        statistics.push_back(Milliseconds(begin));
        state.SetIterationTime(statistics.back() / 1000);
        ratios.push_back(statistics.back() / fits.back());
        double sum = 0;
        for (std::size_t i = 1; i < s.Redundancies.size(); ++i) sum += s.Redundancies[i];
        check = std::fabs(sum - s.Redundancy) + (largest > 0 ? 0 : 1);
    }
    state.counters["ms"] = Median(statistics);
    state.counters["fit_ms"] = Median(fits);
    state.counters["statistics/fit"] = Median(ratios);
    if (!(check < 1e-3)) state.SkipWithError("the redundancies do not make the redundancy");
}

// From 0.02 to 0.3 mm, another one for each coordinate.
SharedAccuracies OfEachPair(unsigned seed) {
    PointAccuracies each;
    std::mt19937_64 random(seed);
    for (std::vector<double>& axis : each.Of)
        for (int i = 0; i < kPoints; ++i) axis.push_back(0.02 + static_cast<double>(random() % 281) / 1000);
    return std::make_shared<const PointAccuracies>(std::move(each));
}

void Statistics_WeightedFit(benchmark::State& state) {
    FillJob(MakeFitData(kPoints, 7), 7);
    const SideAccuracy equal = {0.05, 0.05, 0.05}, byAxis = {0.04, 0.05, 0.06};
    const SharedAccuracies start = OfEachPair(1), target = OfEachPair(2);
    struct Row {
        const char* Name;
        MeasurementSigmas Sigmas;
        std::vector<double> Ratios{};
    };
    std::vector<Row> rows = {{"target", {.Target = equal}},
                             {"start", {.Start = equal}},
                             {"both", {.Start = byAxis, .Target = equal}},
                             {"target of each", {.TargetOfEach = target}},
                             {"both of each", {.StartOfEach = start, .TargetOfEach = target}}};
    std::vector<double> plain;
    for (auto _ : state) {
        NormFit fit;
        plain.push_back(TimeOfFit({}, fit));
        for (Row& row : rows) row.Ratios.push_back(TimeOfFit(row.Sigmas, fit) / plain.back());
        state.SetIterationTime(plain.back() / 1000);
    }
    state.counters["plain_ms"] = Median(plain);
    for (const Row& row : rows) state.counters[std::string(row.Name) + "/plain"] = Median(row.Ratios);
}

BENCHMARK(Statistics_OfFit)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(Statistics_WeightedFit)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace
