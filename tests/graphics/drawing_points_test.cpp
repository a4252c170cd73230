// The points of a paint: their squares and discs, names, vectors, and what hides them.
#include "graphics/drawing_job.h"
#include "graphics/point_loop.h"
#include "graphics/tolerance.h"

using namespace corvinade;

using DrawingPoints = Drawing;

namespace {

// One pair at the world's (20, 30), which is pixel (120, 130), and one far outside.
void FillOne() {
    FillJob({{20, 30, 0, 0.5, 0, 0}});
    Job.ViewAllOCS = kFalse;
}

struct Box {
    int Left, Top, Right, Bottom, Count;
};

// What the pixels of one colour cover.
Box Covered(const ScreenWindow& window, Colour colour) {
    Box box = {10000, 10000, -1, -1, 0};
    for (int row = 0; row < window.Screen.PixelHeight; ++row)
        for (int column = 0; column < window.Screen.PixelWidth; ++column) {
            if (PixelAt(window, column, row) != PixelOf(colour)) continue;
            box = {std::min(box.Left, column), std::min(box.Top, row), std::max(box.Right, column),
                   std::max(box.Bottom, row), box.Count + 1};
        }
    return box;
}

void ExpectSquare(const ScreenWindow& window, Colour colour, int x, int y, int r) {
    const Box box = Covered(window, colour);
    EXPECT_EQ(box.Left, x - r);
    EXPECT_EQ(box.Right, x + r);
    EXPECT_EQ(box.Top, y - r);
    EXPECT_EQ(box.Bottom, y + r);
    EXPECT_EQ(box.Count, (2 * r + 1) * (2 * r + 1));
}

Colour ColourOfRow(int row) {
    return static_cast<Colour>(Scene.Points[kSceneColour][static_cast<std::size_t>(row)]);
}

void SetBigNess(ScreenWindow& window, int size) {
    window.State.BigNess = static_cast<std::int16_t>(size);
}

}  // namespace

TEST_F(DrawingPoints, UpToSizeThreeAreSquaresOfPixels) {
    FillOne();
    ScreenWindow& window = Open(FlatView());
    // Half the size, a half rounded to the even neighbour: 0.5 to 0, 1, 1.5 to 2.
    const std::array<int, 4> radius = {0, 0, 1, 2};
    for (int size = 1; size <= 3; ++size) {
        SetBigNess(window, size);
        Paint(window);
        ExpectSquare(window, ColourOfRow(1), 120, 130, radius[static_cast<std::size_t>(size)]);
        EXPECT_TRUE(OperationsOf(window, Stroke::Circle).empty()) << size;
    }
}

TEST_F(DrawingPoints, FromSizeFourOnAreDiscsOfHalfTheSize) {
    FillOne();
    ScreenWindow& window = Open(FlatView());
    for (const int size : {4, 5}) {
        SetBigNess(window, size);
        Paint(window);
        const std::vector<Operation> discs = OperationsOf(window, Stroke::Circle);
        ASSERT_EQ(discs.size(), 1U);
        EXPECT_NEAR(discs[0].X1, 120.5, 1e-3);  // with the deviation of half a millimetre
        EXPECT_NEAR(discs[0].Y1, 130, 1e-3);
        EXPECT_EQ(discs[0].Radius, static_cast<float>(size) / 2);
        EXPECT_EQ(discs[0].Colour1, ColourOfRow(1));
        EXPECT_EQ(discs[0].Fill, ColourOfRow(1));
        EXPECT_EQ(Covered(window, ColourOfRow(1)).Count, 0);
    }
}

TEST_F(DrawingPoints, AreCutOffAtTheBordersOfThePicture) {
    for (const int size : {1, 2, 3})
        for (const double x : {-1.0, 0.0, 1.0, 798.0, 799.0, 800.0, 805.0})
            for (const double y : {-2.0, 0.0, 599.0, 601.0}) {
                FillJob({{x - 100, y - 100, 0, 0, 0, 0}});
                Job.ViewAllOCS = kFalse;
                ScreenWindow& window = Open(FlatView());
                SetBigNess(window, size);
                Paint(window);
                const int r = SquareRadius(size);
                int expected = 0;
                for (int row = 0; row < 600; ++row)
                    for (int column = 0; column < 800; ++column)
                        if (std::abs(column - x) <= r && std::abs(row - y) <= r) ++expected;
                EXPECT_EQ(CountPixels(window, ColourOfRow(1)), expected) << size << ": " << x << ' ' << y;
                EXPECT_TRUE(GuardIsUntouched(window));
                CloseScreenWindow(window);
            }
}

TEST_F(DrawingPoints, TenPixelsOutsideTheyAreLeftOut) {
    FillJob({{-110, 0, 0, 0, 0, 0},    // pixel (-10, 100)
             {-110.5, 0, 0, 0, 0, 0},  // further out
             {710, 0, 0, 0, 0, 0},     // (810, 100)
             {710.5, 0, 0, 0, 0, 0},
             {0, -110, 0, 0, 0, 0},  // (100, -10)
             {0, -110.5, 0, 0, 0, 0},
             {0, 510, 0, 0, 0, 0},  // (100, 610)
             {0, 510.5, 0, 0, 0, 0}});
    Job.ViewAllOCS = kFalse;
    ScreenWindow& window = Open(FlatView());
    SetBigNess(window, 4);
    Paint(window);
    EXPECT_EQ(OperationsOf(window, Stroke::Circle).size(), 4U);
}

TEST_F(DrawingPoints, HaveOneSizeWhereTheDepthHasNoEnd) {
    FillJob({{20, 30, 0, 0, 0, 0}, {0, 0, 1e300, 0, 0, 0}, {0, 0, -1e300, 0, 0, 0}});
    Job.ViewAllOCS = kFalse;
    Settings.ShowPointsBigger = kTrue;
    ScreenWindow& window = Open(FlatView());
    SetBigNess(window, 3);
    Paint(window);
    ExpectSquare(window, ColourOfRow(1), 120, 130, 2);
    SetBigNess(window, 6);
    Paint(window);
    for (const Operation& disc : OperationsOf(window, Stroke::Circle)) EXPECT_EQ(disc.Radius, 3.0F);
    EXPECT_FALSE(OperationsOf(window, Stroke::Circle).empty());
}

TEST_F(DrawingPoints, PlacesThatAreNoNumbersAreLeftOut) {
    FillJob({{HUGE_VAL, 0, 0, 0, 0, 0},
             {std::nan(""), 0, 0, 0, 0, 0},
             {1e12, 0, 0, 0, 0, 0},
             {20, 30, 0, 0, 0, 0}});
    ScreenWindow& window = Open(FlatView());
    for (const int size : {1, 3, 4, 500}) {
        SetBigNess(window, size);
        Paint(window);
        EXPECT_EQ(OperationsOf(window, Stroke::Circle).size(), size >= 4 ? 2U : 0U);
        EXPECT_TRUE(GuardIsUntouched(window));
    }
}

TEST_F(DrawingPoints, ThoseNearerToTheEyeAreBiggerWhereAsked) {
    // Depths 0, 50 and 100, the world's z turned round.
    FillJob({{0, 0, 0, 0, 0, 0}, {20, 0, -50, 0, 0, 0}, {40, 0, -100, 0, 0, 0}});
    Job.ViewAllOCS = kFalse;
    Settings.ShowPointsBigger = kTrue;
    ScreenWindow& window = Open(FlatView());
    SetBigNess(window, 8);
    Paint(window);
    const std::vector<Operation> discs = OperationsOf(window, Stroke::Circle);
    ASSERT_EQ(discs.size(), 3U);
    EXPECT_NEAR(discs[0].Radius, 1, 1e-4);
    EXPECT_NEAR(discs[1].Radius, 1 + 4, 1e-4);
    EXPECT_NEAR(discs[2].Radius, 1 + 8, 1e-4);
    EXPECT_TRUE(IsTrue(Settings.ShowPointsBigger));
}

TEST_F(DrawingPoints, SmallOnesAreBiggerByDepthToo) {
    FillJob({{0, 0, 0, 0, 0, 0}, {20, 0, -50, 0, 0, 0}, {40, 0, -100, 0, 0, 0}});
    Job.ViewAllOCS = kFalse;
    Settings.ShowPointsBigger = kTrue;
    ScreenWindow& window = Open(FlatView());
    SetBigNess(window, 3);
    Paint(window);
    // (z * 3 / 100 + 1) / 2 = 0.5, 1.25, 2: squares of 1, 3 and 5.
    EXPECT_EQ(CountPixels(window, ColourOfRow(1)), 1 + 9 + 25);
    SetBigNess(window, 1);  // the factor is 0: half of 1 for all
    Paint(window);
    EXPECT_EQ(CountPixels(window, ColourOfRow(1)), 3);
}

TEST_F(DrawingPoints, OfOneDepthHaveOneSizeAndTheOptionStays) {
    FillJob({{0, 0, 7, 0, 0, 0}, {20, 0, 7, 0, 0, 0}});
    Job.ViewAllOCS = kFalse;
    Settings.ShowPointsBigger = kTrue;
    ScreenWindow& window = Open(FlatView());
    SetBigNess(window, 6);
    Paint(window);
    const std::vector<Operation> discs = OperationsOf(window, Stroke::Circle);
    ASSERT_EQ(discs.size(), 2U);
    EXPECT_EQ(discs[0].Radius, 3);
    EXPECT_EQ(discs[1].Radius, 3);
    EXPECT_TRUE(IsTrue(Settings.ShowPointsBigger));
    SetBigNess(window, 2);
    Paint(window);
    EXPECT_EQ(CountPixels(window, ColourOfRow(1)), 18);
}

TEST_F(DrawingPoints, FromATenthOfAThousandthOnDepthCounts) {
    Settings.ShowPointsBigger = kTrue;
    for (const auto& [depth, counts] : {std::pair{0.00005, false}, {0.0002, true}}) {
        FillJob({{0, 0, 0, 0, 0, 0}, {20, 0, -depth, 0, 0, 0}});
        Job.ViewAllOCS = kFalse;
        ScreenWindow& window = Open(FlatView());
        SetBigNess(window, 6);
        Paint(window);
        const std::vector<Operation> discs = OperationsOf(window, Stroke::Circle);
        ASSERT_EQ(discs.size(), 2U);
        EXPECT_NEAR(discs[0].Radius, counts ? 1 : 3, 1e-3) << depth;
        EXPECT_NEAR(discs[1].Radius, counts ? 7 : 3, 1e-3) << depth;
        CloseScreenWindow(window);
    }
}

TEST_F(DrawingPoints, PlotSwitchAndBlackPlaneHideThem) {
    FillOne();
    ScreenWindow& window = OpenAndPaint(FlatView());
    const Colour colour = ColourOfRow(1);
    EXPECT_EQ(CountPixels(window, colour), 9);
    Settings.ShowPointNames = kTrue;
    // The points alone: a paint as a whole sets these columns first.
    const auto expectNone = [&](SceneColumn column) {
        Scene.Points[column][1] = 0;
        Scene.PaintStale = true;
        window.Screen.Clear(window.Screen, window.BackColor);
        DrawPoints(window, {});
        EXPECT_EQ(CountPixels(window, colour), 0);
        EXPECT_TRUE(window.Labels.empty());
        Scene.Points[column][1] = 1;
    };
    expectNone(kScenePlotted);
    expectNone(kSceneInside);
}

TEST_F(DrawingPoints, OutOfToleranceInTheBackgroundColourAreNotPaintedAtAll) {
    FillJob({{20, 30, 0, 5, 0, 0}, {60, 30, 0, 0.01, 0, 0}});
    Job.ViewAllOCS = kFalse;
    ScreenWindow& window = Open(FlatView());
    window.State.Max = 1;
    window.State.Min = -1;
    window.State.AusserhalbTol = kTrue;
    window.State.OuterColor = window.BackColor = QbColor(4);
    window.State.VectorMode = kTrue;
    Settings.ShowPointNames = kTrue;
    SetBigNess(window, 4);
    const auto circles = [&window] { return OperationsOf(window, Stroke::Circle).size(); };
    // Vectors bear the colour of their points.
    const auto lines = [&window](int row) { return LinesOf(window, ColourOfRow(row)).size(); };
    Paint(window);
    EXPECT_EQ(circles(), 1U);
    EXPECT_EQ(lines(1), 0U);
    EXPECT_EQ(lines(2), 1U);
    EXPECT_EQ(window.Labels.size(), 2U);  // names are shown all the same
    // Each of the three conditions must hold.
    window.BackColor = QbColor(0);
    Paint(window);
    EXPECT_EQ(circles(), 2U);
    EXPECT_EQ(lines(1), 1U);
    window.BackColor = QbColor(4);
    window.State.AusserhalbTol = kFalse;
    Paint(window);
    EXPECT_EQ(circles(), 2U);
    window.State.AusserhalbTol = kTrue;
    window.State.Max = 10;
    Paint(window);
    EXPECT_EQ(circles(), 2U);
}

TEST_F(DrawingPoints, NamesStandFivePixelsRightAndBelow) {
    FillJob(
        {{20, 30, 0, 0, 0, 0, "corner"}, {697, 30, 0, 0, 0, 0, "edge"}, {-105, -105, 0, 0, 0, 0, "above"}});
    Job.ViewAllOCS = kFalse;
    Settings.ShowPointNames = kTrue;
    ScreenWindow& window = OpenAndPaint(FlatView());
    ASSERT_NE(FindLabel(window, "corner"), nullptr);
    EXPECT_EQ(FindLabel(window, "corner")->X, 125);
    EXPECT_EQ(FindLabel(window, "corner")->Y, 135);
    EXPECT_EQ(FindLabel(window, "corner")->ForeColor, QbColor(7));
    EXPECT_EQ(FindLabel(window, "edge"), nullptr);  // at 802 it lies outside
    ASSERT_NE(FindLabel(window, "above"), nullptr);
    EXPECT_EQ(FindLabel(window, "above")->X, 0);
    EXPECT_EQ(Run.WaitPointers, 0);
}

TEST_F(DrawingPoints, NamesAreBlackOnWhite) {
    FillOne();
    Settings.ShowPointNames = kTrue;
    ScreenWindow& window = Open(FlatView());
    window.BackColor = QbColor(15);
    Paint(window);
    ASSERT_NE(FindLabel(window, "P1"), nullptr);
    EXPECT_EQ(FindLabel(window, "P1")->ForeColor, QbColor(0));
}

TEST_F(DrawingPoints, EveryPaintMakesItsLabelsAnew) {
    FillOne();
    Settings.ShowPointNames = kTrue;
    ScreenWindow& window = OpenAndPaint(FlatView());
    Paint(window);
    EXPECT_EQ(window.Labels.size(), 1U);
    Settings.ShowPointNames = kFalse;
    Paint(window);
    EXPECT_TRUE(window.Labels.empty());
}

TEST_F(DrawingPoints, LabelsOutsideThePictureAreNotMade) {
    FillOne();
    ScreenWindow& window = OpenAndPaint(FlatView());
    for (const auto& [x, y] : {std::pair{800.0F, 10.0F}, {10.0F, 600.0F}, {std::nanf(""), 1.0F}})
        SetLabelToPos(window, "A", x, y);
    EXPECT_TRUE(window.Labels.empty());
    SetLabelToPos(window, "A", 799.5F, 599.5F);
    EXPECT_EQ(window.Labels.size(), 1U);
}

TEST_F(DrawingPoints, VectorsRunFromStartToTargetOrBack) {
    FillJob({{20, 30, 0, 0.5, -0.25, 9}});
    const TestView view = {0.3, 0.2, -0.4, 2, -300, 100};
    ScreenWindow& window = Open(view);
    window.State.VectorMode = kTrue;
    window.State.Vec_Maßstab = 40;
    for (const Flag forward : {kTrue, kFalse}) {
        Settings.DevVecDirection = forward;
        Paint(window);
        const std::vector<Operation> lines = LinesOf(window, ColourOfRow(1));
        ASSERT_FALSE(lines.empty());
        const auto from = view.Pixel(20.5, 29.75, 9, 600);
        const auto turned = view.Turned(0.5, -0.25, 9);
        const double sign = IsTrue(forward) ? 40 : -40;
        ExpectLine(lines[0], from[0], from[1], from[0] + sign * turned[0], from[1] + sign * turned[1]);
    }
}

TEST_F(DrawingPoints, VectorsAreAsWideAsThePointsWhereAsked) {
    FillOne();
    ScreenWindow& window = Open(FlatView());
    window.State.VectorMode = kTrue;
    SetBigNess(window, 3);
    Paint(window);
    EXPECT_EQ(LinesOf(window, ColourOfRow(1))[0].Width, 1);
    Settings.VectorThick = kTrue;
    Paint(window);
    EXPECT_EQ(LinesOf(window, ColourOfRow(1))[0].Width, 3);
}

TEST_F(DrawingPoints, OnlyTheStartPointsOfPairsHaveVectors) {
    FillJob({{20, 30, 0, 0.5, 0, 0}, {60, 30, 0, 0.5, 0, 0}});
    Job.Start.Add("alone", 0, 0, 0);
    Job.Transformed = Job.Start;
    ScreenWindow& window = Open(FlatView());
    window.State.VectorMode = kTrue;
    SetBigNess(window, 4);
    Paint(window);
    const std::size_t circles = OperationsOf(window, Stroke::Circle).size();
    EXPECT_EQ(circles, 5U);
    std::size_t vectors = 0;
    for (const Operation& line : OperationsOf(window, Stroke::Line)) {
        if (line.X1 == 70 && line.Y1 == 510) break;  // the axes begin
        ++vectors;
    }
    EXPECT_EQ(vectors, 2U);
}

TEST_F(DrawingPoints, AFlaggedOneOutsideTheWindowIsNotLeftOut) {
    FillJob({{-150, 0, 0, 2, 0, 0}});  // pixel (-48, 100)
    ScreenWindow& window = Open(FlatView());
    window.State.VectorMode = kTrue;
    window.State.Vec_Maßstab = 100;
    Paint(window);
    const Colour colour = ColourOfRow(1);
    EXPECT_TRUE(LinesOf(window, colour).empty() || LinesOf(window, colour)[0].X1 > 0);
    window.State.FlagIndex[0] = 1;
    Paint(window);
    ASSERT_FALSE(LinesOf(window, colour).empty());
    EXPECT_NEAR(std::abs(LinesOf(window, colour)[0].X1 - LinesOf(window, colour)[0].X2), 200, 1e-2);
    EXPECT_TRUE(GuardIsUntouched(window));
}
