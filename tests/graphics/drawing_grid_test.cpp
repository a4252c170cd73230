// The grid of the world system.
#include <algorithm>
#include <set>

#include "core/desktop_defaults.h"
#include "core/units.h"
#include "graphics/drawing_job.h"

using namespace corvinade;

using DrawingGrid = Drawing;

namespace {

ScreenWindow& PaintGrid(ScreenWindow& window) {
    RecordingOf(window).Operations.clear();
    Zeichne_KSGrid(window);
    return window;
}

void SetGrid(ScreenWindow& window, int a, int b, int c) {
    window.State.ADis = a;
    window.State.BDis = b;
    window.State.Cdis = c;
}

// The lines of the grid as the two world points that they should join, in order.
struct WorldLine {
    std::array<double, 3> From, To;
};

std::vector<WorldLine> Family(std::array<double, 3> middle, std::array<double, 3> spacing, int half,
                              std::size_t along, std::size_t across) {
    std::vector<WorldLine> lines;
    for (int i = -half; i <= half; ++i) {
        WorldLine line{middle, middle};
        line.From[across] = line.To[across] = middle[across] + i * spacing[across];
        line.From[along] -= half * spacing[along];
        line.To[along] += half * spacing[along];
        lines.push_back(line);
    }
    return lines;
}

// Where the strokes of the numbers lie, on the desktop.
class UprightGrid : public DrawingGrid {
protected:
    void SetUp() override {
        DrawingGrid::SetUp();
        DesktopDefaults.GridNumbers = true;
        Units.FmtLength = "0";
    }
};

TEST_F(UprightGrid, FlatLinesBearTheirCoordinateUprightInsideThePicture) {
    FillJob({{0, 0, 0, 0, 0, 0}});
    ScreenWindow& window = OpenAndPaint(FlatView());
    SetGrid(window, 5000, 400, 0);
    Units.LengthFactor = 0.0025;
    window.State.GridXY = window.State.ShowGridDim = kTrue;
    PaintGrid(window);
    // The line at pixel 500 reads "1" from 50 pixels on: its one stroke goes down, at the right of its cell.
    bool found = false;
    for (const Operation& line : LinesOf(window, QbColor(7)))
        found = found || (line.X1 == 50 + 6 && line.Y1 == 500 + 1 && line.X2 == 50 + 6 && line.Y2 == 500 + 7);
    EXPECT_TRUE(found);
}

TEST_F(UprightGrid, NoNumberStandsHeadDownOrOutsideHoweverTheViewIsTurned) {
    FillJob({{0, 0, 0, 0, 0, 0}});
    Units.LengthFactor =
        0;  // every line reads "0": its first stroke is the upper bar, its third the lower one
    int seen = 0;
    for (int turn = 0; turn < 24; ++turn) {
        ScreenWindow& window = OpenAndPaint({0, 0, static_cast<float>(turn * 0.2618), 1, 500, 500});
        SetGrid(window, 300, 300, 0);
        window.State.GridXY = window.State.ShowGridDim = kTrue;
        PaintGrid(window);
        const std::vector<Operation> strokes = LinesOf(window, QbColor(7));
        ASSERT_EQ(strokes.size() % 4, 0U);
        for (std::size_t i = 0; i + 3 < strokes.size(); i += 4) {
            const Operation &upper = strokes[i], &lower = strokes[i + 2];
            // From left to right; straight up is neither, but rounding may make a pixel of it.
            EXPECT_GE(upper.X2, upper.X1 - 1) << turn;
            // A line that falls to the right or runs flat has its number in the picture.
            for (const Operation& stroke : {upper, lower})
                EXPECT_GE(std::min(stroke.Y1, stroke.Y2), -8) << turn;
            ++seen;
        }
    }
    EXPECT_GT(seen, 24);
}

}  // namespace

// The view's middle (400, 300) is the world point (300, 200, 0): multiples of 70 below are 280, 140.
TEST_F(DrawingGrid, RunsThroughMultiplesOfItsSpacingAboutTheMiddle) {
    FillJob({{0, 0, 0, 0, 0, 0}});
    const TestView view = FlatView();
    ScreenWindow& window = OpenAndPaint(view);
    SetGrid(window, 70, 70, 70);
    window.State.GridXY = kTrue;
    const std::vector<Operation> lines = LinesOf(PaintGrid(window), QbColor(8));
    // 800 / 70 = 11 lines, made even.
    std::vector<WorldLine> expected = Family({280, 140, 0}, {70, 70, 70}, 6, 1, 0);
    for (const WorldLine& line : Family({280, 140, 0}, {70, 70, 70}, 6, 0, 1)) expected.push_back(line);
    ASSERT_EQ(lines.size(), expected.size());
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const auto from = view.Pixel(expected[i].From[0], expected[i].From[1], expected[i].From[2], 600);
        const auto to = view.Pixel(expected[i].To[0], expected[i].To[1], expected[i].To[2], 600);
        ExpectLine(lines[i], from[0], from[1], to[0], to[1]);
    }
    EXPECT_EQ(OperationsOf(window, Stroke::Line).size(), lines.size());
}

TEST_F(DrawingGrid, EachPlaneHasTheSpacingsOfItsTwoAxes) {
    FillJob({{0, 0, 0, 0, 0, 0}});
    const TestView view = {0.5, 0.6, 0.2, 1, 40, 60};
    ScreenWindow& window = OpenAndPaint(view);
    SetGrid(window, 100, 150, 200);
    // The world point under the middle, found by trying: its pixel is the middle and its depth is none.
    const Vec3 under = BildKS_to_WeltKS(window, 400, 300, 0);
    const auto check = view.Pixel(under(1), under(2), under(3), 600);
    ASSERT_NEAR(check[0], 400, 1e-3);
    ASSERT_NEAR(check[1], 300, 1e-3);
    ASSERT_NEAR(view.Turned(under(1), under(2), under(3))[2], 0, 1e-3);
    const std::array<double, 3> spacing = {100, 150, 200};
    std::array<double, 3> middle{};
    for (std::size_t k = 0; k < 3; ++k)
        middle[k] = std::floor(under(static_cast<int>(k) + 1) / spacing[k]) * spacing[k];
    // The narrowest spacing counts: 800 / 100 = 8 lines, four to each side.
    const auto expectPlane = [&](std::size_t first, std::size_t second) {
        std::vector<WorldLine> expected = Family(middle, spacing, 4, second, first);
        for (const WorldLine& line : Family(middle, spacing, 4, first, second)) expected.push_back(line);
        const std::vector<Operation> lines = LinesOf(PaintGrid(window), QbColor(8));
        ASSERT_EQ(lines.size(), expected.size());
        for (std::size_t i = 0; i < lines.size(); ++i) {
            const WorldLine& line = expected[i];
            const auto from = view.Pixel(line.From[0], line.From[1], line.From[2], 600);
            const auto to = view.Pixel(line.To[0], line.To[1], line.To[2], 600);
            ExpectLine(lines[i], from[0], from[1], to[0], to[1]);
        }
    };
    window.State.GridXY = kTrue;
    expectPlane(0, 1);
    window.State.GridXY = kFalse;
    window.State.GridYZ = kTrue;
    expectPlane(1, 2);
    window.State.GridYZ = kFalse;
    window.State.GridZX = kTrue;
    expectPlane(2, 0);
    window.State.GridXY = window.State.GridYZ = kTrue;
    EXPECT_EQ(LinesOf(PaintGrid(window), QbColor(8)).size(), 3U * 2 * 9);
}

TEST_F(DrawingGrid, StandsInTheWorldWhateverTheCentreOfRotation) {
    FillJob({{0, 0, 0, 0, 0, 0}});
    ScreenWindow& window = OpenAndPaint(FlatView());
    SetGrid(window, 100, 100, 100);
    window.State.GridXY = kTrue;
    const auto uprightLines = [&window] {
        std::set<int> places;
        for (const Operation& line : LinesOf(PaintGrid(window), QbColor(8)))
            if (line.X1 == line.X2) places.insert(static_cast<int>(std::lround(line.X1)));
        return places;
    };
    Scene.RotCenter = {30, 0, 0};
    // The multiples of 100 lie 30 further to the left now.
    EXPECT_TRUE(uprightLines().contains(100 - 30));
    EXPECT_TRUE(uprightLines().contains(700 - 30));
    EXPECT_FALSE(uprightLines().contains(700));
}

TEST_F(DrawingGrid, LinesCloserThanTwoPixelsAreLeftOut) {
    FillJob({{0, 0, 0, 0, 0, 0}});
    ScreenWindow& window = OpenAndPaint(FlatView());
    window.State.GridXY = kTrue;
    SetGrid(window, 2, 100, 100);  // two pixels are enough
    const std::vector<Operation> lines = LinesOf(PaintGrid(window), QbColor(8));
    EXPECT_EQ(lines.size(), 2U * 401);  // 800 / 2 lines
    SetGrid(window, 1, 100, 100);
    EXPECT_EQ(LinesOf(PaintGrid(window), QbColor(8)).size(), 9U);  // those across y alone
    SetGrid(window, 1, 1, 1);
    EXPECT_TRUE(LinesOf(PaintGrid(window), QbColor(8)).empty());
}

TEST_F(DrawingGrid, LinesRunThroughThePictureWhereOneSpacingIsTooSmallForLines) {
    FillJob({{0, 0, 0, 0, 0, 0}});
    const TestView view = {0, 0, 0, 1, -100.5, 300.5};  // the middle is the world's (300.5, 200.5)
    ScreenWindow& window = OpenAndPaint(view);
    window.State.GridXY = kTrue;
    SetGrid(window, 1, 90, 90);
    const std::vector<Operation> lines = LinesOf(PaintGrid(window), QbColor(8));
    ASSERT_EQ(lines.size(), 9U);
    // Along x 800 spacings of 1 mm fit in: 400 to each side of 300. Across it 8 of 90 mm, about 180.
    for (int i = -4; i <= 4; ++i) {
        const auto from = view.Pixel(300 - 400, 180 + 90 * i, 0, 600),
                   to = view.Pixel(300 + 400, 180 + 90 * i, 0, 600);
        ExpectLine(lines[static_cast<std::size_t>(i + 4)], from[0], from[1], to[0], to[1]);
    }
}

TEST_F(DrawingGrid, APlaneSeenEdgeOnHasNoLinesSideBySide) {
    FillJob({{0, 0, 0, 0, 0, 0}});
    ScreenWindow& window = OpenAndPaint(FlatView());
    SetGrid(window, 100, 100, 100);
    window.State.GridYZ = kTrue;  // seen along z: its lines fall together
    EXPECT_TRUE(LinesOf(PaintGrid(window), QbColor(8)).empty());
}

TEST_F(DrawingGrid, WithoutASpacingThereAreNoLines) {
    FillJob({{0, 0, 0, 0, 0, 0}});
    ScreenWindow& window = OpenAndPaint(FlatView());
    window.State.GridXY = window.State.GridYZ = window.State.GridZX = kTrue;
    for (const int spacing : {0, -100}) {
        SetGrid(window, spacing, spacing, spacing);
        EXPECT_TRUE(LinesOf(PaintGrid(window), QbColor(8)).empty()) << spacing;
    }
    SetGrid(window, 100, 0, 0);
    EXPECT_TRUE(LinesOf(PaintGrid(window), QbColor(8)).empty());
}

TEST_F(DrawingGrid, NoFactorLetsItsLoopsRunAway) {
    FillJob({{0, 0, 0, 0, 0, 0}});
    ScreenWindow& window = OpenAndPaint({0.5, 0.6, 0.2, 1, 40, 60});
    window.State.GridXY = window.State.GridYZ = window.State.GridZX = window.State.ShowGridDim = kTrue;
    for (const float factor :
         {1e-38F, 1e-15F, 1e-3F, 1e3F, 1e15F, 1e38F, 0.0F, -1.0F, std::nanf(""), HUGE_VALF})
        for (const int spacing : {1, 1000, 2000000000}) {
            window.State.BildFaktor = factor;
            SetGrid(window, 1, spacing, 2000000000);
            EXPECT_LE(LinesOf(PaintGrid(window), QbColor(8)).size(), 6U * 403) << factor << ' ' << spacing;
        }
}

TEST_F(DrawingGrid, ItsCoordinatesStandAtTheEdgesAlongTheLines) {
    FillJob({{0, 0, 0, 0, 0, 0}});
    ScreenWindow& window = OpenAndPaint(FlatView());
    SetGrid(window, 400, 5000, 0);
    Units.FmtLength = "0";
    Units.LengthFactor = 0.01;
    window.State.GridXY = window.State.ShowGridDim = kTrue;
    PaintGrid(window);
    // Upright lines at x = 0, 400 of the world: pixels 100, 500, written from 10 pixels below the upper edge
    // downwards; 0.01 of it: "0" and "4". (x, y) of the nodes turns to (-y, x).
    const std::vector<Operation> strokes = LinesOf(window, QbColor(7));
    const auto has = [&strokes](double x1, double y1, double x2, double y2) {
        for (const Operation& line : strokes)
            if (line.X1 == x1 && line.Y1 == y1 && line.X2 == x2 && line.Y2 == y2) return true;
        return false;
    };
    EXPECT_TRUE(has(100 - 1, 12, 100 - 1, 16));  // the upper bar of the 0
    EXPECT_TRUE(has(500 - 1, 16, 500 - 7, 16));  // the long bar of the 4
    window.State.ShowGridDim = kFalse;
    PaintGrid(window);
    EXPECT_TRUE(LinesOf(window, QbColor(7)).empty());
}

TEST_F(DrawingGrid, FlatLinesBearTheirCoordinateAtTheLeftEdge) {
    FillJob({{0, 0, 0, 0, 0, 0}});
    ScreenWindow& window = OpenAndPaint(FlatView());
    SetGrid(window, 5000, 400, 0);
    Units.FmtLength = "0";
    Units.LengthFactor = 0.0025;
    window.State.GridXY = window.State.ShowGridDim = kTrue;
    PaintGrid(window);
    // The flat line at y = 400 of the world is at pixel 500 and reads "1", from 50 pixels on, turned by
    // Atn(1e10 or so) * 57 + 90 = 179.54 degrees: about half a turn.
    bool found = false;
    for (const Operation& line : LinesOf(window, QbColor(7)))
        found = found || (line.X1 == 50 - 6 && line.Y1 == 500 - 1 && line.X2 == 50 - 6 && line.Y2 == 500 - 7);
    EXPECT_TRUE(found);
}
