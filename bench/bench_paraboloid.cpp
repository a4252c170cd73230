// Shapes of revolution: the nearest points of 100,000 points on profiles of growing length, one pass of the
// fit, and the whole fit.
#include <benchmark/benchmark.h>

#include <cmath>
#include <random>

#include "core/fresh_start.h"
#include "core/job.h"
#include "core/settings.h"
#include "core/units.h"
#include "engine/calculation.h"
#include "engine/selection.h"
#include "fit/shape.h"
#include "paraboloid/paraboloid.h"

using namespace corvinade;

namespace {

constexpr double kFocus = 1000, kRim = 1500;  // mm
constexpr int kPoints = 100000;

Matrix Profile(int rows) {
    Matrix shape(rows, 2);
    for (int row = 1; row <= rows; ++row) {
        const double r = 1.02 * kRim * (row - 1) / (rows - 1);
        shape(row, 1) = r;
        shape(row, 2) = r * r / (4 * kFocus);
    }
    return shape;
}

// Points of the shape, tilted by 1 degree and shifted, with noise of 0.05 mm.
void FillJob(int points) {
    FreshStart();
    Settings.MaxIteration = 100;
    Settings.BestFit_Etta = 1e-9;
    Settings.RawScale = 2;
    Job.LengthUnitName = "millimeter";
    Job.AngleUnitName = "degree";
    RhoFestlegung();
    Job.NormType = 2;
    std::mt19937_64 random(5);
    std::uniform_real_distribution<double> unit(0, 1);
    std::normal_distribution<double> noise(0, 0.05);
    const double tilt = kPi / 180, c = std::cos(tilt), s = std::sin(tilt);
    for (int i = 0; i < points; ++i) {
        const double r = kRim * std::sqrt(unit(random)), phi = 2 * kPi * unit(random);
        const double y = r * std::sin(phi), z = r * r / (4 * kFocus);
        const double X = r * std::cos(phi) + 5 + noise(random);
        const double Y = c * y - s * z - 3 + noise(random);
        Job.Start.Add(std::to_string(i + 1), X, Y, s * y + c * z + 10 + noise(random));
    }
    Job.Target = Job.Transformed = Job.Start;
    Job.SetPairs(points);
    Job.UseFlags.assign(3 * static_cast<std::size_t>(points) + 1, 1);
    Job.ParamText.fill(kNotUsed);
    for (const int k : {kTraX, kTraY, kTraZ, kRotX, kRotY})
        Job.ParamText[static_cast<std::size_t>(k)] = kFloat;
    Job.ParamText[kRotZ] = "0";
    Job.IsParaboloid = kTrue;
    SelectionFromJob();
}

void Paraboloid_NearestPoints(benchmark::State& state) {
    FillJob(kPoints);
    const Matrix shape = Profile(static_cast<int>(state.range(0)));
    double sum = 0;
    for (auto _ : state)
        for (int i = 1; i <= kPoints; ++i) {
            const Vec3 p = StartPoint(i);
            double X = 0, Y = 0, Z = 0, distance = 0;
            NearestShapePoint(p(1), p(2), p(3), shape, X, Y, Z, distance);
            sum += distance;
        }
    benchmark::DoNotOptimize(sum);
    state.counters["per_point"] =
        benchmark::Counter(kPoints * static_cast<double>(state.iterations()),
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void Paraboloid_Pass(benchmark::State& state) {
    FillJob(kPoints);
    Job.ParaboloidShape = Profile(1501);
    ParaboloidNearestTargets();
    BeginOuterLoop();
    for (auto _ : state)
        if (!CalcParaboloid()) state.SkipWithError("the pass was not carried through");
}

void Paraboloid_Fit(benchmark::State& state) {
    int passes = 0;
    for (auto _ : state) {
        state.PauseTiming();
        FillJob(static_cast<int>(state.range(0)));
        Job.ParaboloidShape = Profile(1501);
        ParaboloidNearestTargets();
        state.ResumeTiming();
        CalculateParaboloid();
        if (!Calculation.Converged || std::fabs(Job.RotX - kPi / 180) > 1e-3)
            state.SkipWithError("the tilt was not found");
        passes = ParaboloidRun.ParaPass;
    }
    state.counters["passes"] = passes;
}

BENCHMARK(Paraboloid_NearestPoints)
    ->ArgName("rows")
    ->Arg(101)
    ->Arg(1501)
    ->Arg(100001)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(Paraboloid_Pass)->Unit(benchmark::kMillisecond);
BENCHMARK(Paraboloid_Fit)->ArgName("points")->Arg(100)->Arg(kPoints)->Unit(benchmark::kMillisecond);

}  // namespace
