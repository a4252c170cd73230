// The point table of 100,000 points: filling costs nothing until it is looked at; then taking the points,
// sorting them by a column of numbers, and the cells of one screen.
#include <benchmark/benchmark.h>

#include "core/fresh_start.h"
#include "core/window.h"
#include "engine/calculation_window.h"
#include "engine/form_trafo_berechnung.h"
#include "fit_data.h"
#include "grid_screen.h"

using namespace corvinade;

namespace {

void OpenWithPoints(int points) {
    FillJob(MakeFitData(points, 7), 7);
    ShowWindow("FormTrafoBerechnung");
    LookAt(TrafoWindow.Tabelle.Grid);
}

void BM_PointTableFill(benchmark::State& state) {
    OpenWithPoints(static_cast<int>(state.range(0)));
    for (auto _ : state) TabelleFüllenNeu();
    FreshStart();
}
BENCHMARK(BM_PointTableFill)->Arg(100'000)->Unit(benchmark::kMillisecond);

void BM_PointTableFirstLook(benchmark::State& state) {
    OpenWithPoints(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        TabelleFüllenNeu();
        LookAt(TrafoWindow.Tabelle.Grid);
    }
    FreshStart();
}
BENCHMARK(BM_PointTableFirstLook)->Arg(100'000)->Unit(benchmark::kMillisecond);

void BM_PointTableSort(benchmark::State& state) {
    OpenWithPoints(static_cast<int>(state.range(0)));
    const int col = static_cast<int>(state.range(1));
    for (auto _ : state) UserClickCell(TrafoWindow.Tabelle, 0, col, false);
    FreshStart();
}
BENCHMARK(BM_PointTableSort)
    ->Args({100'000, kColX})
    ->Args({100'000, kColName})
    ->Unit(benchmark::kMillisecond);

void BM_PointTableScreen(benchmark::State& state) {
    OpenWithPoints(static_cast<int>(state.range(0)));
    for (auto _ : state) LookAtScreen(TrafoWindow.Tabelle.Grid);
    FreshStart();
}
BENCHMARK(BM_PointTableScreen)->Arg(100'000)->Unit(benchmark::kMillisecond);

}  // namespace
