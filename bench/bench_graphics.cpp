// A frame of a cloud: a new rotation and the whole paint of a graphics window, tables and all, into a picture
// of 1600 by 1000 in plain memory, beside the loop that only turns and paints. Then picking, as at each move
// of the mouse.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <ctime>
#include <random>
#include <vector>

#include "core/fresh_start.h"
#include "core/job.h"
#include "core/run.h"
#include "core/settings.h"
#include "core/window.h"
#include "engine/transform.h"
#include "graphics/black_planes.h"
#include "graphics/drawing.h"
#include "graphics/picking.h"
#include "graphics/projection.h"
#include "graphics/scene.h"
#include "graphics/screen_window.h"
#include "graphics/views.h"
#include "point_limit.h"
#include "timing.h"

using namespace corvinade;

namespace {

constexpr int kWidth = 1600, kHeight = 1000;
std::vector<std::uint32_t> picture;
double scale = 1;  // pixels of the picture to the logical one

void PlainMemory(Surface& screen) {
    screen.Scale = scale;
    screen.PixelWidth = static_cast<int>(std::ceil(screen.Width * scale));
    screen.PixelHeight = static_cast<int>(std::ceil(screen.Height * scale));
    picture.assign(static_cast<std::size_t>(screen.PixelWidth) * static_cast<std::size_t>(screen.PixelHeight),
                   0);
    screen.Stride = screen.PixelWidth;
    screen.Pixels = picture.data();
    screen.Clear = [](Surface& cleared, Colour background) {
        std::fill(picture.begin(), picture.end(), PixelOf(background));
        cleared.Pixels = picture.data();
    };
}

// A window over pairs that fill a block, each target within a millimetre of its start point.
ScreenWindow& OpenCloud(int rows) {
    FreshStart();
    ShowWindow("FormMain");
    std::mt19937 random(4711);
    const auto between = [&random](double size) {
        return std::uniform_real_distribution<double>(-size, size)(random);
    };
    const int pairs = rows / 2;
    const auto size = static_cast<std::size_t>(pairs) + 1;
    for (PointSet* points : {&Job.Start, &Job.Target, &Job.Transformed}) points->Resize(pairs);
    Job.UseFlags.assign(3 * size, 1);
    for (std::size_t i = 1; i < size; ++i) {
        Job.Target.X[i] = between(2500);
        Job.Target.Y[i] = between(1500);
        Job.Target.Z[i] = between(1000);
        Job.Transformed.X[i] = Job.Start.X[i] = *Job.Target.X[i] + between(0.6);
        Job.Transformed.Y[i] = Job.Start.Y[i] = *Job.Target.Y[i] + between(0.6);
        Job.Transformed.Z[i] = Job.Start.Z[i] = Job.Target.Z[i] + between(0.6);
    }
    Job.SetPairs(pairs);
    Job.ViewAllMCS = Job.ViewAllOCS = kTrue;
    Run.JobDataValid = kTrue;
    FillSurface = PlainMemory;
    Screens().NewWidth = kWidth;
    Screens().NewHeight = kHeight;
    ScreenWindow& window = OpenScreenWindow();
    window.State.BigNess = 2;  // squares of 3 by 3 pixels
    IsoView(window);
    Anpassen(window);
    Stelle_Grafik_dar(window);
    return window;
}

LimitCloud CloudOfScene() {
    LimitCloud cloud;
    const auto copy = [](const auto& column, auto& to) { to.assign(column.begin() + 1, column.end()); };
    copy(Scene.Points[kSceneX], cloud.X);
    copy(Scene.Points[kSceneY], cloud.Y);
    copy(Scene.Points[kSceneZ], cloud.Z);
    copy(Scene.Paint, cloud.Colour);
    return cloud;
}

LimitView ViewOf(const ScreenWindow& window) {
    const Mat3 M = ViewRotation(window);
    const double F = window.State.BildFaktor;
    LimitView view;
    for (int axis = 1; axis <= 3; ++axis) {
        view.Right[static_cast<std::size_t>(axis - 1)] = static_cast<float>(F * M(1, axis));
        view.Down[static_cast<std::size_t>(axis - 1)] = static_cast<float>(F * M(2, axis));
    }
    view.ShiftX = static_cast<float>(200 * F + window.State.BildOffsetX);
    view.ShiftY = static_cast<float>(kHeight - 200 * F - window.State.BildOffsetY);
    return view;
}

// Of the processor, since both run on one thread alone: what else the machine does does not count.
double ProcessorMilliseconds(std::clock_t begin) {
    return 1000.0 * static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
}

// Own frame and limit in turn; the ratio is taken round by round.
void Graphics_Frame(benchmark::State& state) {
    ScreenWindow& window = OpenCloud(static_cast<int>(state.range(0)));
    const LimitCloud cloud = CloudOfScene();
    std::vector<std::uint32_t> limitPicture(picture.size());
    std::vector<double> own, limit, ratios;
    int frame = 0;
    for (auto _ : state) {
        ++frame;
        SetViewAngles(window, 3.4 + 0.017 * frame, -0.9 + 0.011 * frame, -0.7);
        std::clock_t begin = std::clock();
        Stelle_Grafik_dar(window);
        own.push_back(ProcessorMilliseconds(begin));
        state.SetIterationTime(own.back() / 1000);
        const LimitView view = ViewOf(window);
        begin = std::clock();
        PaintLimit(cloud, view, PixelOf(window.BackColor), kWidth, kHeight, limitPicture.data());
        limit.push_back(ProcessorMilliseconds(begin));
        ratios.push_back(own.back() / limit.back());
    }
    // Places half way between two pixels may fall to either; squares at the edge are ours alone.
    std::size_t differ = 0;
    for (std::size_t i = 0; i < picture.size(); ++i) differ += picture[i] != limitPicture[i] ? 1 : 0;
    if (differ > picture.size() / 100) state.SkipWithError("the two pictures do not agree");
    state.counters["ms"] = Median(own);
    state.counters["limit_ms"] = Median(limit);
    state.counters["own/limit"] = Median(ratios);
    state.counters["differing_pixels"] = static_cast<double>(differ);
    FillSurface = nullptr;
    FreshStart();
}

// A frame on a screen of `percent` pixels to 100 logical ones: the small points in their loop, and in the
// loop over rows, which vectors that nobody draws bring about.
void Graphics_FineFrame(benchmark::State& state) {
    scale = static_cast<double>(state.range(1)) / 100;
    ScreenWindow& window = OpenCloud(static_cast<int>(state.range(0)));
    std::vector<double> small, rows, ratios;
    int frame = 0;
    const auto paint = [&](Flag vectors) {
        window.State.VectorMode = vectors;
        const std::clock_t begin = std::clock();
        Stelle_Grafik_dar(window);
        return ProcessorMilliseconds(begin);
    };
    for (auto _ : state) {
        ++frame;
        SetViewAngles(window, 3.4 + 0.017 * frame, -0.9 + 0.011 * frame, -0.7);
        small.push_back(paint(kFalse));
        state.SetIterationTime(small.back() / 1000);
        rows.push_back(paint(kTrue));
        ratios.push_back(rows.back() / small.back());
    }
    state.counters["ms"] = Median(small);
    state.counters["rows/small"] = Median(ratios);
    scale = 1;
    FillSurface = nullptr;
    FreshStart();
}

// Black planes about the whole cloud, so that as many points are painted as without: a turn of the picture,
// and a step of the mouse that moves a plane.
void Graphics_FrameWithPlanes(benchmark::State& state) {
    ScreenWindow& window = OpenCloud(static_cast<int>(state.range(0)));
    Initialisieren_BlackPlane(window, true, true);
    window.State.TopDepth = -1e6F;
    window.State.SlabThickness = 2e6;
    std::vector<double> turned, turnedRatios, movedRatios;
    int frame = 0;
    const auto paint = [&] {
        const std::clock_t begin = std::clock();
        Stelle_Grafik_dar(window);
        return ProcessorMilliseconds(begin);
    };
    // The first one after a switch finds out anew what is seen.
    const auto turn = [&](Flag planes) {
        window.State.BlackPlane = planes;
        Stelle_Grafik_dar(window);
        SetViewAngles(window, 3.4 + 0.017 * frame, -0.9 + 0.011 * frame, -0.7);
        return paint();
    };
    for (auto _ : state) {
        frame += 2;
        const double plain = turn(kFalse);
        --frame;
        turned.push_back(turn(kTrue));
        ++frame;
        state.SetIterationTime(turned.back() / 1000);
        turnedRatios.push_back(turned.back() / plain);
        window.State.TopDepth += 1;
        movedRatios.push_back(paint() / plain);
    }
    state.counters["ms"] = Median(turned);
    state.counters["turned/plain"] = Median(turnedRatios);
    state.counters["moved/plain"] = Median(movedRatios);
    FillSurface = nullptr;
    FreshStart();
}

void Graphics_Pick(benchmark::State& state) {
    ScreenWindow& window = OpenCloud(static_cast<int>(state.range(0)));
    int step = 0;
    for (auto _ : state) {
        ++step;
        benchmark::DoNotOptimize(Search_Point_Index(window, static_cast<float>(37 * step % kWidth),
                                                    static_cast<float>(53 * step % kHeight)));
    }
    FillSurface = nullptr;
    FreshStart();
}

// What a frame does, piece by piece.
void Graphics_Turn(benchmark::State& state) {
    ScreenWindow& window = OpenCloud(static_cast<int>(state.range(0)));
    int frame = 0;
    for (auto _ : state) {
        ++frame;
        SetViewAngles(window, 3.4 + 0.017 * frame, -0.9 + 0.011 * frame, -0.7);
        RechneCloudAndPixels(window);
    }
    FillSurface = nullptr;
    FreshStart();
}

BENCHMARK(Graphics_Frame)
    ->ArgName("points")
    ->Arg(100'000)
    ->Arg(1'000'000)
    ->Iterations(60)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(Graphics_FineFrame)
    ->ArgNames({"points", "percent"})
    ->Args({1'000'000, 100})
    ->Args({1'000'000, 150})
    ->Args({1'000'000, 200})
    ->Iterations(20)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(Graphics_FrameWithPlanes)
    ->ArgName("points")
    ->Arg(1'000'000)
    ->Iterations(40)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(Graphics_Turn)->ArgName("points")->Arg(1'000'000)->Unit(benchmark::kMillisecond);
BENCHMARK(Graphics_Pick)->ArgName("points")->Arg(1'000'000)->Unit(benchmark::kMillisecond);

}  // namespace
