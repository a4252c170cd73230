// The distance scale of 3,000 points, 4.5 million pairs: the table, the trumpet plot in a window and under
// the mouse, and the file of all pairs. Half a second and 200 MB are the limits of the table.
#include <benchmark/benchmark.h>

#include <filesystem>

#include "analysis/form_distance_scale.h"
#include "analysis/form_trompete.h"
#include "analysis/trumpet_file.h"
#include "core/fresh_start.h"
#include "fit_data.h"
#include "paint/trumpet_file.h"
#include "paint/trumpet_svg.h"

using namespace corvinade;

namespace {

void FillWithPoints(benchmark::State& state) {
    FreshStart();
    FillJob(MakeFitData(static_cast<int>(state.range(0)), 7), 7);
}

void BM_DistanceScaleTable(benchmark::State& state) {
    FillWithPoints(state);
    for (auto _ : state) {
        const DistancePoints points = TakeDistancePoints(false);
        std::vector<DistanceExtremes> rows;
        benchmark::DoNotOptimize(MeasurePoints(points, rows));
    }
    FreshStart();
}
BENCHMARK(BM_DistanceScaleTable)->Arg(3000)->Unit(benchmark::kMillisecond);

void BM_TrumpetPlot(benchmark::State& state) {
    FillWithPoints(state);
    const DistancePoints points = TakeDistancePoints(false);
    for (auto _ : state) {
        TrumpetRange range;
        RangeOfPairs(points, range);
        benchmark::DoNotOptimize(RasterOf(points, PlotOf(range, {1600, 1000})));
    }
    FreshStart();
}
BENCHMARK(BM_TrumpetPlot)->Arg(3000)->Unit(benchmark::kMillisecond);

void BM_TrumpetPairUnderMouse(benchmark::State& state) {
    FillWithPoints(state);
    const DistancePoints points = TakeDistancePoints(false);
    TrumpetRange range;
    RangeOfPairs(points, range);
    const TrumpetRaster raster = RasterOf(points, PlotOf(range, {1600, 1000}));
    double x = 0;
    for (auto _ : state) {
        x = x > 1500 ? 0 : x + 13;
        benchmark::DoNotOptimize(PairNear(raster, x, 500, kTrumpetReach));
    }
    FreshStart();
}
BENCHMARK(BM_TrumpetPairUnderMouse)->Arg(3000)->Unit(benchmark::kMicrosecond);

void BM_TrumpetFile(benchmark::State& state) {
    FillWithPoints(state);
    const DistancePoints points = TakeDistancePoints(false);
    const std::string path =
        (std::filesystem::temp_directory_path() / "corvinade-bench-trumpet.txt").string();
    for (auto _ : state) benchmark::DoNotOptimize(WriteTrumpetFile(path, points));
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(std::filesystem::file_size(path)));
    std::filesystem::remove(path);
    FreshStart();
}
BENCHMARK(BM_TrumpetFile)->Arg(3000)->Unit(benchmark::kMillisecond);

void BM_TrumpetSvg(benchmark::State& state) {
    FillWithPoints(state);
    const DistancePoints points = TakeDistancePoints(false);
    for (auto _ : state)
        state.counters["bytes"] =
            static_cast<double>(TrumpetSvg(points, "Pairs", WholeTrumpetPlot(points)).size());
    FreshStart();
}
BENCHMARK(BM_TrumpetSvg)->Arg(3000)->Unit(benchmark::kMillisecond);

}  // namespace
