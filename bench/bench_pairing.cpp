// Pairing of points: by name against one std::sort of the names, by distances, by coordinates.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "cli/headless.h"
#include "core/fresh_start.h"
#include "core/job.h"
#include "core/run.h"
#include "import/auto_find.h"
#include "import/coordinate_pairs.h"
#include "import/distance_search.h"
#include "import/matching.h"

using namespace corvinade;

namespace {

// --- By name: 1,000,000 points in each set ----------------------------------------------------------------

enum class Order { File, Shuffled };

std::vector<std::string> Names(Order order, unsigned seed) {
    std::vector<std::string> names;
    char text[32];
    for (int i = 1; i <= 1'000'000; ++i) {
        std::snprintf(text, sizeof text, "P%07d", i);
        names.emplace_back(text);
    }
    if (order == Order::Shuffled) std::shuffle(names.begin(), names.end(), std::mt19937(seed));
    return names;
}

void SortOfTheNamesAlone(benchmark::State& state, Order order) {
    const std::vector<std::string> names = Names(order, 1);
    for (auto _ : state) {
        state.PauseTiming();
        std::vector<std::string> copy = names;
        state.ResumeTiming();
        std::sort(copy.begin(), copy.end());
        benchmark::DoNotOptimize(copy.data());
    }
}

void PairingByName(benchmark::State& state, Order order) {
    FreshStart();
    JobRecord job;
    for (const std::string& name : Names(order, 1)) job.Start.Add(name, 1, 1, 1);
    for (const std::string& name : Names(order, 2)) job.Target.Add(name, 1, 1, 1);
    for (auto _ : state) {
        state.PauseTiming();
        Job = job;
        state.ResumeTiming();
        MCS_OCS_aufbereiten();
        GetInfoFromData();
        if (Job.Pairs() != 1'000'000) state.SkipWithError("not all points are paired");
    }
}

// --- By distances: the same points in both sets, moved and with noise -------------------------------------

struct Cloud {
    std::vector<double> X{0}, Y{0}, Z{0};
};
Cloud RandomCloud(int count, unsigned seed, double size) {
    std::mt19937_64 random(seed);
    std::uniform_real_distribution<double> place(-size, size);
    Cloud cloud;
    for (int i = 0; i < count; ++i) {
        cloud.X.push_back(place(random));
        cloud.Y.push_back(place(random));
        cloud.Z.push_back(place(random));
    }
    return cloud;
}
Cloud Measured(const Cloud& cloud, double noise) {
    std::mt19937_64 random(99);
    std::normal_distribution<double> error(0, noise);
    Cloud moved = cloud;
    for (std::size_t i = 1; i < cloud.X.size(); ++i) {
        moved.X[i] = 500 - cloud.Y[i] + error(random);
        moved.Y[i] = cloud.X[i] + error(random);
        moved.Z[i] = cloud.Z[i] + error(random);
    }
    return moved;
}

// With both tables. `matching` 0: two sets that have nothing to do with each other, every row is searched.
void SearchByDistances(benchmark::State& state) {
    const auto count = static_cast<int>(state.range(0));
    const Cloud target = RandomCloud(count, 5, 2000);
    const Cloud start = state.range(1) != 0 ? Measured(target, 0.01) : RandomCloud(count, 6, 2000);
    const float etta = state.range(1) != 0 ? 0.05F : 1e-9F;
    std::size_t found = 0;
    for (auto _ : state) {
        const std::vector<double> a = DistancesOfPairs(start.X, start.Y, start.Z, count);
        const std::vector<double> b = DistancesOfPairs(target.X, target.Y, target.Z, count);
        found = SearchDistances(a, b, etta).size();
    }
    state.counters["candidates"] = static_cast<double>(found);
}

// The whole search of a job without a solution, with its progress and yields.
void AutoFindWithoutSolution(benchmark::State& state) {
    FreshStart();
    Headless = HeadlessRecord{};
    const Cloud target = RandomCloud(1000, 5, 2000), start = RandomCloud(1000, 6, 2000);
    for (std::size_t i = 1; i <= 1000; ++i) {
        Job.Start.Add("", start.X[i], start.Y[i], start.Z[i]);
        Job.Target.Add("", target.X[i], target.Y[i], target.Z[i]);
    }
    GetInfoFromData();
    Run.Etta = 1e-9F;
    for (auto _ : state) AutoFindPts({});
    state.counters["unsolved"] =
        static_cast<double>(Headless.Dialogs.size()) / static_cast<double>(state.iterations());
}

// The loops themselves, for as many rows as they need or 200.
void TwoLoopsByDistances(benchmark::State& state) {
    const auto count = static_cast<int>(state.range(0));
    const Cloud target = RandomCloud(count, 5, 2000), start = Measured(target, 0.01);
    constexpr float kEtta = 0.05F;
    std::size_t rows = 0;
    for (auto _ : state) {
        const std::vector<double> a = DistancesOfPairs(start.X, start.Y, start.Z, count);
        const std::vector<double> b = DistancesOfPairs(target.X, target.Y, target.Z, count);
        int found = 0;
        for (rows = 0; rows < std::min<std::size_t>(a.size(), 200) && found <= 5; ++rows) {
            double best1 = 1e10, best2 = 1e10, match = 0;
            std::size_t row = b.size();
            for (std::size_t s = 0; s < b.size(); ++s)
                if (std::fabs(best1) > std::fabs(a[rows] - b[s])) {
                    best1 = a[rows] - b[s];
                    row = s;
                    match = b[s];
                }
            for (std::size_t s = 0; s < b.size(); ++s)
                if (s != row && std::fabs(best2) > std::fabs(match - b[s])) best2 = match - b[s];
            if (static_cast<float>(std::fabs(best1)) < kEtta && static_cast<float>(std::fabs(best2)) > kEtta)
                ++found;
        }
        benchmark::DoNotOptimize(found);
    }
    state.counters["rows"] = static_cast<double>(rows);
}

// --- By coordinates: 100,000 by 100,000 points ------------------------------------------------------------

void PairingByCoordinates(benchmark::State& state) {
    const Cloud target = RandomCloud(100'000, 7, 1000);
    Cloud start = target;
    for (double& x : start.X) x += 0.01;
    const auto etta = static_cast<float>(state.range(0));
    for (auto _ : state)
        benchmark::DoNotOptimize(
            PairByCoordinates({start.X, start.Y, start.Z}, {target.X, target.Y, target.Z}, etta).data());
}

BENCHMARK_CAPTURE(SortOfTheNamesAlone, FileOrder, Order::File)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(PairingByName, FileOrder, Order::File)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(SortOfTheNamesAlone, Shuffled, Order::Shuffled)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(PairingByName, Shuffled, Order::Shuffled)->Unit(benchmark::kMillisecond);
BENCHMARK(SearchByDistances)
    ->ArgsProduct({{100, 300, 1000}, {1, 0}})
    ->ArgNames({"points", "matching"})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(AutoFindWithoutSolution)->Unit(benchmark::kMillisecond);
BENCHMARK(TwoLoopsByDistances)->Arg(100)->Arg(300)->Arg(1000)->Unit(benchmark::kMillisecond);
BENCHMARK(PairingByCoordinates)->Arg(1)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

}  // namespace
