// The main sheet of 100,000 points: filled, first looked at where it has been sorted before, sorted by a
// column of numbers, copied whole, and the cells of one screen. Copying runs in turn with the bare loop that
// formats the same numbers into one text; at least a third of its speed is wanted.
#include <benchmark/benchmark.h>

#include "analysis/form_main_sheet.h"
#include "cli/headless.h"
#include "core/fresh_start.h"
#include "core/job.h"
#include "core/numbers.h"
#include "core/text.h"
#include "core/units.h"
#include "engine/transform.h"
#include "fit/coordinate_forms.h"
#include "fit_data.h"
#include "grid_screen.h"
#include "timing.h"

using namespace corvinade;

namespace {

constexpr int kDeviationX = 7, kCylinderPhi = 11;

GridState& Sheet() {
    return MainSheetWindow.MSFlexGrid1.Grid;
}

void OpenWithPoints(int points) {
    const FitData data = MakeFitData(points, 7);
    FillJob(data, 7);
    TakeTruth(data);
    ShowWindow("FormMainSheet");
    LookAt(Sheet());
}

void BM_MainSheetFill(benchmark::State& state) {
    OpenWithPoints(static_cast<int>(state.range(0)));
    for (auto _ : state) FuellenHaupttabelle();
    FreshStart();
}
BENCHMARK(BM_MainSheetFill)->Arg(100'000)->Unit(benchmark::kMillisecond);

void BM_MainSheetSort(benchmark::State& state) {
    OpenWithPoints(static_cast<int>(state.range(0)));
    const int col = static_cast<int>(state.range(1));
    for (auto _ : state) UserClickCell(MainSheetWindow.MSFlexGrid1, 0, col, false);
    FreshStart();
}
BENCHMARK(BM_MainSheetSort)
    ->Args({100'000, kDeviationX})
    ->Args({100'000, kCylinderPhi})
    ->Args({100'000, kColPointID})
    ->Unit(benchmark::kMillisecond);

void BM_MainSheetFillAndLookSorted(benchmark::State& state) {
    OpenWithPoints(static_cast<int>(state.range(0)));
    UserClickCell(MainSheetWindow.MSFlexGrid1, 0, kDeviationX, false);
    for (auto _ : state) {
        FuellenHaupttabelle();
        LookAt(Sheet());
    }
    FreshStart();
}
BENCHMARK(BM_MainSheetFillAndLookSorted)->Arg(100'000)->Unit(benchmark::kMillisecond);

// The 21 numbers of each row as the sheet shows them, in shown units.
std::vector<double> NumbersOfJob() {
    std::vector<double> numbers;
    numbers.reserve(21 * static_cast<std::size_t>(Job.Pairs()));
    for (int i = 1; i <= Job.Pairs(); ++i) {
        const Vec3 p = StartPoint(i), q = TargetPoint(i);
        Vec3 image, deviation;
        TransformPoint(p(1), p(2), p(3), image(1), image(2), image(3));
        for (int axis = 1; axis <= 3; ++axis) deviation(axis) = image(axis) - q(axis);
        for (const Vec3& point : {image, q, deviation})
            for (int axis = 1; axis <= 3; ++axis) numbers.push_back(point(axis) * Units.LengthFactor);
        const CoordinateForms a = FormsOf(image), b = FormsOf(q);
        for (const CoordinateForms& forms : {a, b, FormDifference(a, b)}) {
            numbers.push_back(forms.CylRadius * Units.LengthFactor);
            numbers.push_back(forms.Phi * Units.AngleFactor);
        }
        for (const CoordinateForms& forms : {a, b, FormDifference(a, b)}) {
            numbers.push_back(forms.SphRadius * Units.LengthFactor);
            numbers.push_back(forms.Theta * Units.AngleFactor);
        }
    }
    return numbers;
}

void FormatBare(const std::vector<double>& numbers, std::string& text) {
    text.clear();
    std::size_t next = 0;
    for (int i = 1; i <= Job.Pairs(); ++i) {
        if (i > 1) text += kLineEnd;
        text += Job.Start.Name[static_cast<std::size_t>(i)];
        for (int k = 0; k < 21; ++k, ++next) {
            const bool isAngle = k >= 9 && (k - 9) % 2 == 1;
            text += '\t';
            text += FormatNumber(numbers[next], isAngle ? Units.FmtAngle : Units.FmtLength);
        }
    }
}

void BM_MainSheetCopy(benchmark::State& state) {
    OpenWithPoints(static_cast<int>(state.range(0)));
    UserSelectCells(MainSheetWindow.MSFlexGrid1, {1, 0, Sheet().Rows - 1, Sheet().Cols - 1});
    const std::vector<double> numbers = NumbersOfJob();
    UserKey(MainSheetWindow.MSFlexGrid1, "Ctrl+C");
    std::string bareText;
    bareText.reserve(Headless.Clipboard.size());
    std::vector<double> own, bare, ratios;
    for (auto _ : state) {
        const auto begin = std::chrono::steady_clock::now();
        UserKey(MainSheetWindow.MSFlexGrid1, "Ctrl+C");
        own.push_back(Milliseconds(begin));
        state.SetIterationTime(own.back() / 1000);
        const auto beginBare = std::chrono::steady_clock::now();
        FormatBare(numbers, bareText);
        bare.push_back(Milliseconds(beginBare));
        ratios.push_back(own.back() / bare.back());
    }
    state.counters["ms"] = Median(own);
    state.counters["ms_bare"] = Median(bare);
    state.counters["own/bare"] = Median(ratios);
    // Both must have made the same text, or the ratio says nothing.
    if (bareText != Headless.Clipboard) state.SkipWithError("the two texts differ");
    FreshStart();
}
BENCHMARK(BM_MainSheetCopy)->Arg(100'000)->UseManualTime()->Unit(benchmark::kMillisecond);

void BM_MainSheetScreen(benchmark::State& state) {
    OpenWithPoints(static_cast<int>(state.range(0)));
    for (auto _ : state) LookAtScreen(Sheet());
    FreshStart();
}
BENCHMARK(BM_MainSheetScreen)->Arg(100'000)->Unit(benchmark::kMillisecond);

}  // namespace
