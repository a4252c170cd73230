// Numbers drawn with lines.
#include <map>
#include <set>

#include "core/units.h"
#include "graphics/drawing_job.h"

using namespace corvinade;

using DrawingDigits = Drawing;

namespace {

using Ends = std::array<int, 4>;

// The strokes of a number, each from its upper or left end, in whole pixels from the pen.
std::multiset<Ends> StrokesOf(const ScreenWindow& window, int x, int y) {
    std::multiset<Ends> strokes;
    for (const Operation& line : OperationsOf(window, Stroke::Line)) {
        Ends ends = {static_cast<int>(line.X1) - x, static_cast<int>(line.Y1) - y,
                     static_cast<int>(line.X2) - x, static_cast<int>(line.Y2) - y};
        if (ends[3] < ends[1] || (ends[3] == ends[1] && ends[2] < ends[0]))
            ends = {ends[2], ends[3], ends[0], ends[1]};
        strokes.insert(ends);
    }
    return strokes;
}

// Places of the strokes of a digit of seven bars: top, middle, bottom; left and right, upper and lower half,
// where a bar of both halves is one stroke.
constexpr Ends kTop = {2, 1, 6, 1}, kMiddle = {2, 4, 6, 4}, kBottom = {2, 7, 6, 7};
constexpr Ends kLeft = {2, 1, 2, 7}, kLeftUpper = {2, 1, 2, 4}, kLeftLower = {2, 4, 2, 7};
constexpr Ends kRight = {6, 1, 6, 7}, kRightUpper = {6, 1, 6, 4}, kRightLower = {6, 4, 6, 7};

void Plot(ScreenWindow& window, double value, float size = 1, double angle = 0) {
    RecordingOf(window).Operations.clear();
    Plot_Number(window, value, 100, 200, size, angle, QbColor(14));
}

}  // namespace

TEST_F(DrawingDigits, EveryDigitHasItsBars) {
    ScreenWindow& window = Open(FlatView());
    Units.FmtLength = "0";
    const std::map<int, std::multiset<Ends>> expected = {
        {0, {kTop, kRight, kBottom, kLeft}},
        {1, {kRight}},
        {2, {kTop, kRightUpper, kMiddle, kLeftLower, kBottom}},
        {3, {kTop, kRight, kBottom, kMiddle}},
        {4, {kRight, kLeftUpper, kMiddle}},
        {5, {kTop, kLeftUpper, kBottom, kRightLower, kMiddle}},
        {6, {kTop, kRightLower, kBottom, kLeft, kMiddle}},
        {7, {kTop, kRight, kLeftUpper}},
        {8, {kTop, kRight, kBottom, kLeft, kMiddle}},
        {9, {kTop, kRight, kBottom, kLeftUpper, kMiddle}}};
    for (const auto& [digit, strokes] : expected) {
        Plot(window, digit);
        EXPECT_EQ(StrokesOf(window, 100, 200), strokes) << digit;
    }
}

TEST_F(DrawingDigits, CharactersFollowEachOtherAtTheirOwnWidths) {
    ScreenWindow& window = Open(FlatView());
    Units.FmtLength = "0.0";
    Plot(window, -1.1);
    // The minus, 3 further the one, 6 further the point, 2 further the other one.
    EXPECT_EQ(StrokesOf(window, 100, 200),
              (std::multiset<Ends>{kMiddle, {6 + 3, 1, 6 + 3, 7}, {6 + 11, 1, 6 + 11, 7}}));
    const std::vector<Operation> points = OperationsOf(window, Stroke::Circle);
    ASSERT_EQ(points.size(), 1U);
    EXPECT_EQ(points[0].X1, 100 + 9 + 2);
    EXPECT_EQ(points[0].Y1, 200 + 7);
    EXPECT_FLOAT_EQ(points[0].Radius, 0.3F);
    EXPECT_EQ(points[0].Fill, QbColor(14));
    EXPECT_EQ(points[0].Colour1, QbColor(14));
}

TEST_F(DrawingDigits, BiggerOnesHaveThickerStrokes) {
    ScreenWindow& window = Open(FlatView());
    Units.FmtLength = "0";
    Plot(window, 11, 3);
    const std::vector<Operation> lines = OperationsOf(window, Stroke::Line);
    ASSERT_EQ(lines.size(), 2U);
    ExpectLine(lines[0], 118, 203, 118, 221, 3);
    ExpectLine(lines[1], 136, 203, 136, 221, 3);
    Plot(window, 1, 0.4F);  // nodes at (2.4, 0.4) and (2.4, 2.8) to whole pixels
    ExpectLine(OperationsOf(window, Stroke::Line)[0], 102, 200, 102, 203, 1);
}

TEST_F(DrawingDigits, TurnedByARightAngleTheyRunDownwards) {
    ScreenWindow& window = Open(FlatView());
    Units.FmtLength = "0";
    Plot(window, 11, 1, 90);
    const std::vector<Operation> lines = OperationsOf(window, Stroke::Line);
    ASSERT_EQ(lines.size(), 2U);
    // (x, y) turns to (-y, x); the pen moves 6 down.
    ExpectLine(lines[0], 99, 206, 93, 206);
    ExpectLine(lines[1], 99, 212, 93, 212);
}

TEST_F(DrawingDigits, AreShownAsLengthsOfTheJob) {
    ScreenWindow& window = Open(FlatView());
    Units.FmtLength = "0.000";
    Plot(window, 1);  // 1.000
    EXPECT_EQ(OperationsOf(window, Stroke::Line).size(), 1U + 3 * 4);
    EXPECT_EQ(OperationsOf(window, Stroke::Circle).size(), 1U);
}

TEST_F(DrawingDigits, FarFromThePictureNoneIsDrawn) {
    ScreenWindow& window = Open(FlatView());
    const auto drawn = [&window](float x, float y) {
        RecordingOf(window).Operations.clear();
        Plot_Number(window, 8, x, y, 1, 0, 0);
        return !RecordingOf(window).Operations.empty();
    };
    EXPECT_TRUE(drawn(879, 0));
    EXPECT_FALSE(drawn(881, 0));
    EXPECT_TRUE(drawn(0, -659));
    EXPECT_FALSE(drawn(0, -661));
    EXPECT_FALSE(drawn(std::nanf(""), 0));
}

TEST_F(DrawingDigits, NumbersThatAreNoneHaveNoStrokes) {
    ScreenWindow& window = Open(FlatView());
    Plot(window, HUGE_VAL);
    EXPECT_TRUE(RecordingOf(window).Operations.empty());
}
