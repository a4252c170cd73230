// The axis crosses and the rotation axis.
#include "core/desktop_defaults.h"
#include "graphics/drawing_job.h"

using namespace corvinade;

using DrawingAxes = Drawing;

namespace {

// Target points on the corners of a box of 300 by 400 by 1200: a diagonal of 1300, axes of 130.
void FillBox() {
    FillJob({{0, 0, 0, 0, 0, 0}, {300, 400, 1200, 0, 0, 0}});
}

void PaintAxes(ScreenWindow& window) {
    RecordingOf(window).Operations.clear();
    window.Labels.clear();
    Zeichne_Kosys(window);
}

constexpr int kX = 12, kY = 14, kZ = 10;

}  // namespace

TEST_F(DrawingAxes, TheCornerMarkTurnsWithTheViewAndKeepsItsSize) {
    FillBox();
    const TestView view = TiltedView();
    ScreenWindow& window = OpenAndPaint(view);
    PaintAxes(window);
    const auto at = [&view](double x, double y, double z) {
        const auto turned = view.Turned(x, y, z);
        return std::array<double, 2>{70 + turned[0], 600 - 90 + turned[1]};
    };
    const std::vector<Operation> lines = OperationsOf(window, Stroke::Line);
    ASSERT_EQ(lines.size(), 8U + 3 + 3);
    const auto expect = [&](std::size_t i, std::array<double, 2> from, std::array<double, 2> to, int colour) {
        ExpectLine(lines[i], from[0], from[1], to[0], to[1]);
        EXPECT_EQ(lines[i].Colour1, QbColor(colour)) << i;
    };
    const auto middle = at(0, 0, 0);
    expect(0, middle, at(50, 0, 0), kX);
    expect(1, at(50, 0, 0), at(40, 6, 0), kX);
    expect(2, at(50, 0, 0), at(40, -6, 0), kX);
    expect(3, middle, at(0, 50, 0), kY);
    expect(4, at(-2.5, 40, 0), at(2.5, 40, 0), kY);
    expect(5, middle, at(0, 0, 50), kZ);
    expect(6, at(-2.5, 0, 40), at(2.5, 0, 40), kZ);
    expect(7, at(-2.5, 0, 35), at(2.5, 0, 35), kZ);
}

TEST_F(DrawingAxes, AreDarkOnALightGroundOfTheDesktop) {
    FillBox();
    ScreenWindow& window = OpenAndPaint(TiltedView());
    const auto coloursOf = [&](int background, bool desktop) {
        DesktopDefaults.AxisColors = desktop;
        window.BackColor = QbColor(background);
        PaintAxes(window);
        const std::vector<Operation> lines = OperationsOf(window, Stroke::Line);
        return std::array{lines[0].Colour1, lines[3].Colour1, lines[5].Colour1,
                          lines[8].Colour1, lines[9].Colour1, lines[10].Colour1};
    };
    const std::array told{QbColor(kX), QbColor(kY), QbColor(kZ), QbColor(kX), QbColor(kY), QbColor(kZ)};
    const std::array dark{QbColor(4), QbColor(6), QbColor(2), QbColor(4), QbColor(6), QbColor(2)};
    EXPECT_EQ(coloursOf(0, true), told);
    EXPECT_EQ(coloursOf(15, true), dark);
    EXPECT_EQ(coloursOf(15, false), told) << "as scripts know it";
}

TEST_F(DrawingAxes, TheTargetSystemHasAxesOfATenthOfTheExtent) {
    FillBox();
    const TestView view = TiltedView();
    ScreenWindow& window = OpenAndPaint(view);
    PaintAxes(window);
    const std::vector<Operation> lines = OperationsOf(window, Stroke::Line);
    ASSERT_EQ(lines.size(), 14U);
    const auto origin = view.Pixel(0, 0, 0, 600);
    const std::array<std::array<double, 3>, 3> tips = {{{130, 0, 0}, {0, 130, 0}, {0, 0, 130}}};
    const std::array<int, 3> colours = {kX, kY, kZ};
    for (std::size_t k = 0; k < 3; ++k) {
        const auto tip = view.Pixel(tips[k][0], tips[k][1], tips[k][2], 600);
        ExpectLine(lines[8 + k], origin[0], origin[1], tip[0], tip[1], 1);
        EXPECT_EQ(lines[8 + k].Colour1, QbColor(colours[k]));
    }
}

TEST_F(DrawingAxes, TheStartSystemGoesThroughTheTransformationAndIsTwiceAsWide) {
    FillBox();
    Job.TraX = 500;
    Job.TraY = -40;
    Job.TraZ = 7;
    Job.ScaleX = Job.ScaleY = Job.ScaleZ = 2;
    const TestView view = TiltedView();
    ScreenWindow& window = OpenAndPaint(view);
    PaintAxes(window);
    const std::vector<Operation> lines = OperationsOf(window, Stroke::Line);
    ASSERT_EQ(lines.size(), 14U);
    const auto origin = view.Pixel(500, -40, 7, 600);
    const auto tipX = view.Pixel(500 + 260, -40, 7, 600), tipY = view.Pixel(500, -40 + 260, 7, 600),
               tipZ = view.Pixel(500, -40, 7 + 260, 600);
    ExpectLine(lines[11], origin[0], origin[1], tipX[0], tipX[1], 2);
    ExpectLine(lines[12], origin[0], origin[1], tipY[0], tipY[1], 2);
    ExpectLine(lines[13], origin[0], origin[1], tipZ[0], tipZ[1], 2);
    EXPECT_EQ(lines[11].Colour1, QbColor(kX));
    EXPECT_EQ(lines[13].Colour1, QbColor(kZ));
}

TEST_F(DrawingAxes, TheCentreOfRotationMovesThemWithThePoints) {
    FillBox();
    const TestView view = TiltedView();
    ScreenWindow& window = OpenAndPaint(view);
    Scene.RotCenter = {10, 20, 30};
    Paint(window);
    PaintAxes(window);
    const auto origin = view.Pixel(-10, -20, -30, 600);
    const Operation line = OperationsOf(window, Stroke::Line)[8];
    EXPECT_NEAR(line.X1, origin[0], 2e-3);
    EXPECT_NEAR(line.Y1, origin[1], 2e-3);
    // The first point of the job lies at the origin.
    EXPECT_NEAR(Scene.PixelX[1], origin[0], 2e-3);
    EXPECT_NEAR(Scene.PixelY[1], origin[1], 2e-3);
}

TEST_F(DrawingAxes, ASmallCloudHasAxesOfOneAndAHugeOneOfFiveThousand) {
    const auto length = [](double extent) {
        FillJob({{0, 0, 0, 0, 0, 0}, {extent, 0, 0, 0, 0, 0}});
        ScreenWindow& window = OpenAndPaint({0, 0, 0, 0.01, 0, 0});
        PaintAxes(window);
        const Operation line = OperationsOf(window, Stroke::Line)[8];
        const double result = (line.X2 - line.X1) / 0.01;
        CloseScreenWindow(window);
        return result;
    };
    EXPECT_NEAR(length(0), 1, 1e-2);
    EXPECT_NEAR(length(4), 1, 1e-2);   // 0.4 is rounded to nothing
    EXPECT_NEAR(length(5), 1, 1e-2);   // 0.5 too
    EXPECT_NEAR(length(16), 2, 1e-2);  // 1.6
    EXPECT_NEAR(length(25), 2, 1e-2);  // 2.5, the even neighbour
    EXPECT_NEAR(length(9.9e6), 990000, 1);
    EXPECT_NEAR(length(1.1e7), 5000, 1e-2);
    EXPECT_NEAR(length(1e12), 5000, 1e-2);
}

TEST_F(DrawingAxes, AJobWithoutPointsHasAxesToo) {
    FillJob({});
    ScreenWindow& window = OpenAndPaint(FlatView());
    PaintAxes(window);
    const std::vector<Operation> lines = OperationsOf(window, Stroke::Line);
    ASSERT_EQ(lines.size(), 14U);
    EXPECT_NEAR(lines[8].X2 - lines[8].X1, 5000, 1e-2);
}

TEST_F(DrawingAxes, TheirTipsBearTheNamesOfTheSystemsWhereAsked) {
    FillBox();
    const TestView view = FlatView();
    ScreenWindow& window = OpenAndPaint(view);
    PaintAxes(window);
    EXPECT_TRUE(window.Labels.empty());
    Settings.ShowCoordinateSystemLabels = kTrue;
    PaintAxes(window);
    ASSERT_EQ(window.Labels.size(), 9U);
    const std::array<const char*, 9> texts = {"x OCS", "y OCS", "z OCS", "x OCS", "y OCS",
                                              "z OCS", "x MCS", "y MCS", "z MCS"};
    for (std::size_t i = 0; i < 9; ++i) EXPECT_EQ(window.Labels[i].Text, texts[i]);
    EXPECT_EQ(window.Labels[0].X, 70 + 50 + 5);
    EXPECT_EQ(window.Labels[0].Y, 510 + 5);
    const auto tip = view.Pixel(0, 130, 0, 600);
    EXPECT_NEAR(window.Labels[4].X, tip[0] + 5, 1e-3);
    EXPECT_NEAR(window.Labels[4].Y, tip[1] + 5, 1e-3);
}

TEST_F(DrawingAxes, TheRotationAxisIsDrawnThroughTheOrigin) {
    FillBox();
    Job.RotXCopy = 0.3;  // about x alone: the axis is x
    const TestView view = TiltedView();
    ScreenWindow& window = OpenAndPaint(view);
    RecordingOf(window).Operations.clear();
    Zeichne_Quat(window);
    const std::vector<Operation> lines = OperationsOf(window, Stroke::Line);
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].Colour1, QbColor(13));
    const auto one = view.Pixel(65, 0, 0, 600), other = view.Pixel(-65, 0, 0, 600);
    const bool turned = std::abs(lines[0].X1 - one[0]) > 1;
    const auto& from = turned ? other : one;
    const auto& to = turned ? one : other;
    ExpectLine(lines[0], from[0], from[1], to[0], to[1]);
    Settings.ShowCoordinateSystemLabels = kTrue;
    Zeichne_Quat(window);
    const ScreenLabel* label = FindLabel(window, "Quaternion Vector");
    ASSERT_NE(label, nullptr);
    EXPECT_NEAR(label->X, to[0] + 5, 1e-3);
    EXPECT_NEAR(label->Y, to[1] + 5, 1e-3);
}

TEST_F(DrawingAxes, WithoutARotationThereIsNoRotationAxis) {
    FillBox();
    ScreenWindow& window = OpenAndPaint(FlatView());
    RecordingOf(window).Operations.clear();
    Zeichne_Quat(window);
    EXPECT_TRUE(RecordingOf(window).Operations.empty());
}
