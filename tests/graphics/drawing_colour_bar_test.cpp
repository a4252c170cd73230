// The bar of the tolerance colours.
#include "core/units.h"
#include "graphics/drawing_job.h"
#include "graphics/tolerance.h"

using namespace corvinade;

using DrawingColourBar = Drawing;

namespace {

ScreenWindow& PaintBar(ScreenWindow& window, int negative, int positive) {
    window.State.AnzKlassenNeg = static_cast<std::int16_t>(negative);
    window.State.AnzKlassenPos = static_cast<std::int16_t>(positive);
    window.State.Min = -1.5;
    window.State.Max = 2.25;
    Transform_dev_to_klasse(window);
    RecordingOf(window).Operations.clear();
    window.Labels.clear();
    Zeichne_ColorBar(window);
    return window;
}

}  // namespace

// 800 by 600: h = 200, t = 22, the lower end at (600 - 400) * 2.5 = 500, the left edge at 800 - 75 = 725.
TEST_F(DrawingColourBar, IsDrawnLineByLineFromBelow) {
    FillJob({{0, 0, 0, 0.1, 0, 0}});
    const ScreenWindow& window = PaintBar(Open(FlatView()), 4, 10);
    const std::vector<Operation> lines = OperationsOf(window, Stroke::Line);
    ASSERT_EQ(lines.size(), 4U * 50 + 1 + 10 * 20);
    for (int c = 0; c < 200; ++c) ExpectLine(lines[static_cast<std::size_t>(c)], 725, 500 - c, 747, 500 - c);
    // The upright stroke at zero, to the right by as many pixels as there are lines below it.
    ExpectLine(lines[200], 725 + 200, 500, 725 + 200, 522);
    EXPECT_EQ(lines[200].Colour1, QbColor(0));
    for (int c = 200; c < 400; ++c)
        ExpectLine(lines[static_cast<std::size_t>(c) + 1], 725, 500 - c, 747, 500 - c);
}

TEST_F(DrawingColourBar, HasTheColoursOfItsClasses) {
    FillJob({{0, 0, 0, 0.1, 0, 0}});
    const ScreenWindow& window = PaintBar(Open(FlatView()), 2, 2);
    const std::vector<Operation> lines = OperationsOf(window, Stroke::Line);
    ASSERT_EQ(lines.size(), 401U);
    // Negative rows are classes -1 and 0, positive ones 1 and 2: t = -1/2, 0, 1/2, 1.
    EXPECT_EQ(lines[0].Colour1, 0 | 155 << 8 | 255 << 16);
    EXPECT_EQ(lines[99].Colour1, lines[0].Colour1);
    EXPECT_EQ(lines[100].Colour1, 255 << 8);
    EXPECT_EQ(lines[201].Colour1, 255 | 155 << 8);
    EXPECT_EQ(lines[301].Colour1, 255);
    EXPECT_EQ(lines[400].Colour1, 255);
}

TEST_F(DrawingColourBar, ClassesThatDoNotShareTheHeightEvenlyAreRounded) {
    FillJob({{0, 0, 0, 0.1, 0, 0}});
    const ScreenWindow& window = PaintBar(Open(FlatView()), 3, 7);  // 66.67 and 28.57 lines each
    EXPECT_EQ(OperationsOf(window, Stroke::Line).size(), 3U * 67 + 1 + 7 * 29);
}

TEST_F(DrawingColourBar, ItsLimitsStandBesideItsEndsInTheShownUnit) {
    FillJob({{0, 0, 0, 0.1, 0, 0}});
    Units.LengthFactor = 10;
    const ScreenWindow& window = PaintBar(Open(FlatView()), 10, 10);
    ASSERT_EQ(window.Labels.size(), 2U);
    EXPECT_EQ(window.Labels[0].Text, "-15.00");
    EXPECT_EQ(window.Labels[0].X, 725 - 33);
    EXPECT_EQ(window.Labels[0].Y, 500 - 11);
    EXPECT_EQ(window.Labels[1].Text, "22.50");
    EXPECT_EQ(window.Labels[1].X, 725 - 33);
    EXPECT_EQ(window.Labels[1].Y, 500 - 400 - 11);
    EXPECT_EQ(window.Labels[0].ForeColor, QbColor(7));
}

TEST_F(DrawingColourBar, IsOneSeventhOfANarrowPicture) {
    FillJob({{0, 0, 0, 0.1, 0, 0}});
    ScreenWindow& window = Open(FlatView());
    ResizeScreenWindow(window, 210, 90);  // w = 30, h = 30, t = 3, from (90 - 60) * 2.5 = 75
    const std::vector<Operation> lines = OperationsOf(PaintBar(window, 10, 10), Stroke::Line);
    ASSERT_EQ(lines.size(), 61U);
    ExpectLine(lines[0], 180, 75, 183, 75);
}

TEST_F(DrawingColourBar, APictureOfOnePixelHasNone) {
    FillJob({{0, 0, 0, 0.1, 0, 0}});
    ScreenWindow& window = Open(FlatView());
    ResizeScreenWindow(window, 1, 1);
    EXPECT_EQ(OperationsOf(PaintBar(window, 10, 10), Stroke::Line).size(), 1U);
}
