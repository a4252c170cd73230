// Small points have a loop of their own; it paints what the loop over rows paints.
#include <algorithm>
#include <cstring>
#include <random>

#include "graphics/drawing_job.h"
#include "graphics/point_loop.h"

using namespace corvinade;

using DrawingFastPath = Drawing;

namespace {

std::vector<std::uint32_t> PixelsOf(const ScreenWindow& window) {
    return RecordingOf(window).Memory;
}

// Both loops on the same window, each on a cleared picture.
void ExpectSamePixels(ScreenWindow& window) {
    window.State.VectorMode = kFalse;
    window.Screen.Clear(window.Screen, window.BackColor);
    DrawPoints(window, {});
    const std::vector<std::uint32_t> fast = PixelsOf(window);
    // Vectors ask for the loop over rows, and a surface without lines draws none of them.
    const auto line = window.Screen.Line;
    window.Screen.Line = nullptr;
    window.State.VectorMode = kTrue;
    window.Screen.Clear(window.Screen, window.BackColor);
    DrawPoints(window, {});
    window.Screen.Line = line;
    const std::vector<std::uint32_t> slow = PixelsOf(window);
    EXPECT_TRUE(std::memcmp(fast.data(), slow.data(), fast.size() * sizeof fast[0]) == 0);
    EXPECT_TRUE(GuardIsUntouched(window));
}

}  // namespace

TEST_F(DrawingFastPath, PaintsTheSamePixelsAsTheLoopOverRows) {
    std::mt19937 random(20240607);
    std::uniform_real_distribution<double> place(-700, 700), deviation(-1, 1), angle(-3, 3);
    for (int round = 0; round < 12; ++round) {
        std::vector<Pair> pairs(1500 + static_cast<std::size_t>(round) * 97);
        for (Pair& pair : pairs)
            pair = {place(random),     place(random),     place(random),
                    deviation(random), deviation(random), deviation(random)};
        FillJob(pairs);
        ScreenWindow& window = Open({angle(random), angle(random), angle(random), 0.7, 100, 50});
        if (round % 3 == 2) ResizeScreenWindow(window, 37 + round, 23);
        for (int size = 1; size <= 3; ++size) {
            window.State.BigNess = static_cast<std::int16_t>(size);
            Paint(window);
            ExpectSamePixels(window);
        }
        CloseScreenWindow(window);
    }
}

TEST_F(DrawingFastPath, PaintsTheSamePixelsOnFinerScreens) {
    std::mt19937 random(77);
    std::uniform_real_distribution<double> place(-700, 700);
    std::vector<Pair> pairs(2500);
    for (Pair& pair : pairs) pair = {place(random), place(random), place(random), 0.3, -0.2, 0.1};
    FillJob(pairs);
    for (const double scale : {0.4, 1.1, 1.25, 1.5, 1.75, 2.0, 3.0, 7.0}) {
        RecordingScale = scale;
        ScreenWindow& window = Open({0.4, -1.1, 0.7, 0.7, 100, 50});
        for (int size = 1; size <= 3; ++size) {
            window.State.BigNess = static_cast<std::int16_t>(size);
            Paint(window);
            ExpectSamePixels(window);
        }
        CloseScreenWindow(window);
    }
}

TEST_F(DrawingFastPath, APointOfAFinerScreenIsASquareAtItsPlace) {
    FillJob({{20, 30, 0, 0, 0, 0}});
    RecordingScale = 1.5;
    ScreenWindow& window = Open(FlatView());
    window.State.BigNess = 2;
    Job.ViewAllMCS = kFalse;
    window.State.VectorMode = kFalse;
    Paint(window);
    window.Screen.Clear(window.Screen, window.BackColor);
    DrawPoints(window, {});
    const auto column = static_cast<int>(Scene.PixelX[1]), row = static_cast<int>(Scene.PixelY[1]);
    ASSERT_EQ(static_cast<float>(column), Scene.PixelX[1]);
    ASSERT_EQ(static_cast<float>(row), Scene.PixelY[1]);
    // Three logical pixels are 4.5 of the device, an even number of which is the nearest.
    const auto left = static_cast<int>(std::nearbyint((column - 1) * 1.5));
    const auto top = static_cast<int>(std::nearbyint((row - 1) * 1.5));
    const auto isPainted = [&](int x, int y) { return PixelAt(window, x, y) != PixelOf(window.BackColor); };
    for (int y = top - 2; y < top + 6; ++y)
        for (int x = left - 2; x < left + 6; ++x)
            EXPECT_EQ(isPainted(x, y), x >= left && x < left + 4 && y >= top && y < top + 4) << x << ' ' << y;
}

TEST_F(DrawingFastPath, PlacesHalfWayBetweenPixelsGoTheSameWay) {
    std::vector<Pair> pairs;
    for (int i = -40; i <= 3300; ++i)
        pairs.push_back({i * 0.25 - 100.5, (i % 2400) * 0.25 - 100.5, 0, 0, 0, 0});
    FillJob(pairs);
    ScreenWindow& window = Open(FlatView());
    for (int size = 1; size <= 3; ++size) {
        window.State.BigNess = static_cast<std::int16_t>(size);
        Paint(window);
        ExpectSamePixels(window);
    }
}

TEST_F(DrawingFastPath, PicturesSmallerThanAPointArePaintedToo) {
    FillJob({{0, 0, 0, 0, 0, 0}});
    for (const auto& [width, height] : {std::pair{1, 1}, {2, 1}, {1, 5}, {3, 3}, {5, 4}, {6, 6}}) {
        ScreenWindow& window = Open(FlatView());
        ResizeScreenWindow(window, width, height);
        TestView{0, 0, 0, 1, -200, static_cast<double>(height) - 200}.GiveTo(window);
        for (int size = 1; size <= 3; ++size) {
            window.State.BigNess = static_cast<std::int16_t>(size);
            Paint(window);
            EXPECT_NE(PixelAt(window, 0, 0), PixelOf(window.BackColor));
            ExpectSamePixels(window);
        }
        CloseScreenWindow(window);
    }
}

TEST_F(DrawingFastPath, SquaresOfOneSizeAreEqualAtEveryScale) {
    for (const double scale : {1.0, 1.25, 1.5, 2.0, 3.0}) {
        const auto side = static_cast<int>(std::nearbyint(3 * scale));
        for (int x = 2; x < 20; ++x) {
            std::vector<std::uint32_t> pixels(100 * 100, 0);
            Surface screen{.Width = 30, .Height = 30, .Scale = scale, .PixelWidth = 100, .PixelHeight = 100};
            screen.Stride = 100;
            screen.Pixels = pixels.data();
            PaintSquare(screen, static_cast<float>(x), 10, 1, 1);
            EXPECT_EQ(std::count(pixels.begin(), pixels.end(), 1U), side * side) << scale << ": " << x;
        }
    }
}
