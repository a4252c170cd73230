// The two scale bars.
#include "core/units.h"
#include "graphics/drawing_job.h"

using namespace corvinade;

using DrawingScale = Drawing;

namespace {

void PaintScale(ScreenWindow& window, float factor) {
    window.State.BildFaktor = factor;
    RecordingOf(window).Operations.clear();
    Zeichne_Scale(window);
}

}  // namespace

TEST_F(DrawingScale, ABarBetweenThirtyAndThreeHundredPixelsStandsAsItIs) {
    ScreenWindow& window = Open(FlatView());
    Job.LengthUnitName = "mm";
    PaintScale(window, 0.1F);
    EXPECT_EQ(window.LabelScale.Text, "Scale 1000.000 mm");
    EXPECT_EQ(window.LabelScale.X, 200);
    EXPECT_EQ(window.LabelScale.Y, 535);
    EXPECT_EQ(window.LabelScale.ForeColor, QbColor(12));
    const std::vector<Operation> lines = OperationsOf(window, Stroke::Line);
    ASSERT_EQ(lines.size(), 3U);
    ExpectLine(lines[0], 400, 540, 500, 540);
    ExpectLine(lines[1], 400, 537, 400, 543);
    ExpectLine(lines[2], 500, 537, 500, 543);
    for (const Operation& line : lines) EXPECT_EQ(line.Colour1, QbColor(9));
}

TEST_F(DrawingScale, TheEndsOfTheRangeBelongToIt) {
    ScreenWindow& window = Open(FlatView());
    // 1000 mm are exactly 300 and exactly 30 pixels: 0.3 and 0.03 are no 32-bit numbers, 300 / 1024 is.
    Units.LengthFactor = 1000.0 / 1024.0;
    Job.LengthUnitName = "u";
    PaintScale(window, 300.0F / 1024);
    EXPECT_EQ(window.LabelScale.Text, "Scale 1000.000 u");
    EXPECT_EQ(LinesOf(window, QbColor(9))[0].X2, 700);
    PaintScale(window, 30.0F / 1024);
    EXPECT_EQ(window.LabelScale.Text, "Scale 1000.000 u");
    EXPECT_EQ(LinesOf(window, QbColor(9))[0].X2, 430);
}

TEST_F(DrawingScale, LongerAndShorterBarsGoInStepsOfTen) {
    ScreenWindow& window = Open(FlatView());
    PaintScale(window, 2);
    EXPECT_EQ(window.LabelScale.Text, "Scale 100.000 " + Job.LengthUnitName);
    ExpectLine(LinesOf(window, QbColor(9))[0], 400, 540, 600, 540);
    PaintScale(window, 0.0005F);
    EXPECT_EQ(window.LabelScale.Text, "Scale 100000.000 " + Job.LengthUnitName);
    ExpectLine(LinesOf(window, QbColor(9))[0], 400, 540, 450, 540);
}

TEST_F(DrawingScale, CountsInTheShownUnit) {
    ScreenWindow& window = Open(FlatView());
    Units.LengthFactor = 0.001;  // metres
    PaintScale(window, 0.1F);    // 1000 m are 100,000 pixels
    EXPECT_EQ(window.LabelScale.Text, "Scale 1.000 " + Job.LengthUnitName);
    ExpectLine(LinesOf(window, QbColor(9))[0], 400, 540, 500, 540);
}

TEST_F(DrawingScale, VectorsHaveABarOfTheirOwnWhileTheyAreShown) {
    ScreenWindow& window = Open(FlatView());
    window.State.VectorMode = kTrue;
    window.State.Vec_Maßstab = 500;  // 0.1 mm is 50 pixels
    PaintScale(window, 0.1F);
    EXPECT_TRUE(window.LabelVectorScale.Visible);
    EXPECT_EQ(window.LabelVectorScale.Text, "Scale Vector 0.100 " + Job.LengthUnitName);
    EXPECT_EQ(window.LabelVectorScale.X, 200);
    EXPECT_EQ(window.LabelVectorScale.Y, 505);
    const std::vector<Operation> lines = LinesOf(window, QbColor(9));
    ASSERT_EQ(lines.size(), 6U);
    ExpectLine(lines[3], 400, 510, 450, 510);
    window.State.VectorMode = kFalse;
    PaintScale(window, 0.1F);
    EXPECT_FALSE(window.LabelVectorScale.Visible);
    EXPECT_EQ(LinesOf(window, QbColor(9)).size(), 3U);
}

TEST_F(DrawingScale, ItsLabelIsBlackOnItsOwnColour) {
    ScreenWindow& window = Open(FlatView());
    window.BackColor = QbColor(12);
    PaintScale(window, 0.1F);
    EXPECT_EQ(window.LabelScale.ForeColor, QbColor(0));
}

TEST_F(DrawingScale, FactorsThatNoBarCanShowHaveNone) {
    ScreenWindow& window = Open(FlatView());
    for (const float factor : {0.0F, -1.0F, std::nanf(""), HUGE_VALF, -HUGE_VALF}) {
        PaintScale(window, factor);
        EXPECT_FALSE(window.LabelScale.Visible) << factor;
        EXPECT_TRUE(LinesOf(window, QbColor(9)).empty()) << factor;
    }
    for (const float factor : {1e-38F, 1e38F}) {
        PaintScale(window, factor);
        EXPECT_TRUE(window.LabelScale.Visible) << factor;
        const double end = LinesOf(window, QbColor(9))[0].X2;
        EXPECT_TRUE(end >= 429.99 && end <= 700.01) << factor << ' ' << end;
    }
    Units.LengthFactor = 0;
    PaintScale(window, 1);
    EXPECT_FALSE(window.LabelScale.Visible);
}
