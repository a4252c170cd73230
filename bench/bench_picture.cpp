// Whole frames of a graphics window of 1600 by 1000, each with a new rotation, as a user sees them: the paint
// and the picture with its labels. With the names of 10,000 points a frame is wanted in under 100 ms.
#include <benchmark/benchmark.h>

#include "core/fresh_start.h"
#include "core/job.h"
#include "core/settings.h"
#include "fit_data.h"
#include "graphics/drawing.h"
#include "graphics/projection.h"
#include "graphics/scene.h"
#include "graphics/screen_window.h"
#include "graphics/views.h"
#include "paint/picture.h"

using namespace corvinade;

namespace {

double wantedScale = 1;

void FillAtScale(Surface& screen) {
    screen.Scale = wantedScale;
    FillSurfaceWithPicture(screen);
}

ScreenWindow& OpenWithPairs(int pairs, int scale) {
    const FitData data = MakeFitData(pairs, 7);
    FillJob(data, 7);
    for (std::size_t i = 1; i < Job.Target.X.size(); ++i) {
        Job.Transformed.X[i] = *Job.Target.X[i] + 0.01 * static_cast<double>(i % 10);
        Job.Transformed.Y[i] = Job.Target.Y[i];
        Job.Transformed.Z[i] = Job.Target.Z[i];
    }
    Job.ViewAllMCS = kTrue;
    wantedScale = scale;
    FillSurface = FillAtScale;
    Screens().NewWidth = 1600;
    Screens().NewHeight = 1000;
    ScreenWindow& window = OpenScreenWindow();
    // Turned about its middle, the cloud stays in the picture.
    Scene.RotCenter = {Scene.Points[kSceneX][1], Scene.Points[kSceneY][1], Scene.Points[kSceneZ][1]};
    rechne_PixelCloud(window);
    GrafikAnpassen(window);
    window.State.Vec_Maßstab = 300;
    return window;
}

void Turn(ScreenWindow& window) {
    SetViewAngles(window, ViewAngle(window, 1) + 0.01, ViewAngle(window, 2) + 0.02, ViewAngle(window, 3));
}

void WriteLabels(ScreenWindow& window) {
    for (const ScreenLabel& label : window.Labels)
        window.Screen.Text(window.Screen, label.X, label.Y, label.Text, label.ForeColor);
}

void Frames(benchmark::State& state, ScreenWindow& window) {
    for (auto _ : state) {
        Turn(window);
        Stelle_Grafik_dar(window);
        WriteLabels(window);
    }
    FreshStart();
    FillSurface = nullptr;
}

// pairs, device pixels to the logical one
void BM_FrameWithNames(benchmark::State& state) {
    ScreenWindow& window = OpenWithPairs(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    Settings.ShowPointNames = kTrue;
    Frames(state, window);
}
BENCHMARK(BM_FrameWithNames)->Args({10'000, 1})->Args({10'000, 2})->Unit(benchmark::kMillisecond);

void BM_FrameWithDiscs(benchmark::State& state) {
    ScreenWindow& window = OpenWithPairs(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    window.State.BigNess = 8;
    Frames(state, window);
}
BENCHMARK(BM_FrameWithDiscs)
    ->Args({100'000, 1})
    ->Args({100'000, 2})
    ->Args({1'000'000, 1})
    ->Unit(benchmark::kMillisecond);

void BM_FrameWithVectors(benchmark::State& state) {
    ScreenWindow& window = OpenWithPairs(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    window.State.VectorMode = kTrue;
    window.State.BigNess = 3;
    Settings.VectorThick = ToFlag(state.range(2) != 0);
    Frames(state, window);
}
BENCHMARK(BM_FrameWithVectors)
    ->Args({10'000, 1, 0})
    ->Args({100'000, 1, 0})
    ->Args({100'000, 1, 1})
    ->Args({100'000, 2, 0})
    ->Unit(benchmark::kMillisecond);

}  // namespace
