// What a paint draws about points that the user has marked: lines between them, and the actual point's ring.
#include "core/window.h"
#include "graphics/input_window.h"
#include "graphics/lines.h"
#include "graphics/recording_surface.h"

using namespace corvinade;

namespace {

// Windows whose strokes are noted, on points of which P1 to P3 stand at (100, 100), (300, 100) and
// (100, 300), "T" at (700, 500).
class DrawingMarks : public InputWindow {
protected:
    static ScreenWindow& OpenRecorded() {
        FillSurface = FillSurfaceWithRecording;
        return OpenFive();
    }
    static void Paint(ScreenWindow& window) {
        RecordingOf(window).Operations.clear();
        Stelle_Grafik_dar(window);
    }
    // The strokes of the lines' layer: they end on points, and no others of these colours do.
    static std::vector<Operation> LinesBetweenPoints(const ScreenWindow& window) {
        std::vector<Operation> found;
        for (const Operation& line : OperationsOf(window, Stroke::Line))
            if ((line.Colour1 == QbColor(9) || line.Colour1 == QbColor(14)) && !IsOfScaleOrAxes(line))
                found.push_back(line);
        return found;
    }
    static std::vector<Operation> Rings(const ScreenWindow& window) {
        std::vector<Operation> found;
        for (const Operation& circle : OperationsOf(window, Stroke::Circle))
            if (circle.Fill == kNoFill) found.push_back(circle);
        return found;
    }
    static void ExpectLine(const Operation& line, float x1, float y1, float x2, float y2, int qb, int width) {
        EXPECT_NEAR(line.X1, x1, 1e-3);
        EXPECT_NEAR(line.Y1, y1, 1e-3);
        EXPECT_NEAR(line.X2, x2, 1e-3);
        EXPECT_NEAR(line.Y2, y2, 1e-3);
        EXPECT_EQ(line.Colour1, QbColor(qb));
        EXPECT_EQ(line.Width, width);
    }

private:
    // The scale bar, the corner mark and the axes through the world's origin.
    static bool IsOfScaleOrAxes(const Operation& line) {
        const bool scale = line.Y1 >= 500 && line.X1 >= 400 && line.X2 <= 700 && line.Y2 >= 500;
        const bool corner = line.X1 <= 130 && line.Y1 >= 440 && line.X2 <= 130;
        const bool axis = line.X1 == 0 && line.Y1 == 0;
        return scale || corner || axis;
    }
};

}  // namespace

TEST_F(DrawingMarks, LinesJoinTheirPointsAndTheSelectedOneStandsOut) {
    ScreenWindow& window = OpenRecorded();
    AddLine(window.State, 1, 2);
    AddLine(window.State, 3, 1);
    AddLine(window.State, 2, 8);
    Paint(window);
    EXPECT_TRUE(LinesBetweenPoints(window).empty()) << "the line mode is off";
    window.State.LineMode = kTrue;
    window.State.SelectedLine = 2;
    Paint(window);
    const std::vector<Operation> lines = LinesBetweenPoints(window);
    ASSERT_EQ(lines.size(), 3U);
    ExpectLine(lines[0], 100, 100, 300, 100, 9, 1);
    ExpectLine(lines[1], 100, 300, 100, 100, 14, 5);
    ExpectLine(lines[2], 300, 100, 700, 500, 9, 1);
}

TEST_F(DrawingMarks, ALineBeingSetRunsFromItsStartToTheMouseBelowTheOthers) {
    ScreenWindow& window = OpenRecorded();
    window.State.LineMode = kTrue;
    AddLine(window.State, 1, 2);
    window.State.LineStartRow = 2;
    window.Mouse.X = 250;
    window.Mouse.Y = 333;
    Paint(window);
    EXPECT_EQ(LinesBetweenPoints(window).size(), 1U) << "none is being set";
    window.SetLine = true;
    Paint(window);
    const std::vector<Operation> lines = LinesBetweenPoints(window);
    ASSERT_EQ(lines.size(), 2U);
    ExpectLine(lines[0], 300, 100, 250, 333, 9, 1);
    ExpectLine(lines[1], 100, 100, 300, 100, 9, 1);
    window.State.LineStartRow = 0;
    Paint(window);
    EXPECT_EQ(LinesBetweenPoints(window).size(), 1U) << "it has no start";
}

TEST_F(DrawingMarks, LinesLieAbovePointsAndBelowTheGrid) {
    ScreenWindow& window = OpenRecorded();
    window.State.LineMode = window.State.GridXY = kTrue;
    window.State.ADis = window.State.BDis = 100;
    window.State.BigNess = 4;
    AddLine(window.State, 1, 8);
    window.State.SelectedLine = 1;
    Paint(window);
    const std::vector<Operation>& all = RecordingOf(window).Operations;
    std::size_t lastPoint = 0, line = 0, firstOfGrid = 0;
    for (std::size_t i = 0; i < all.size(); ++i) {
        if (all[i].Kind == Stroke::Circle) lastPoint = i;
        if (all[i].Kind == Stroke::Line && all[i].Width == 5) line = i;
        if (all[i].Kind == Stroke::Line && all[i].Colour1 == QbColor(8) && firstOfGrid == 0) firstOfGrid = i;
    }
    ASSERT_NE(line, 0U);
    EXPECT_LT(lastPoint, line);
    EXPECT_LT(line, firstOfGrid);
}

TEST_F(DrawingMarks, TheActualPointHasARingInItsColour) {
    ScreenWindow& window = OpenRecorded();
    Open();
    Paint(window);
    EXPECT_TRUE(Rings(window).empty());
    ClickAt(window, 300, 100);
    for (const int size : {2, 6}) {
        window.State.BigNess = static_cast<std::int16_t>(size);
        Paint(window);
        const std::vector<Operation> rings = Rings(window);
        ASSERT_EQ(rings.size(), 1U);
        EXPECT_NEAR(rings[0].X1, 300, 1e-3);
        EXPECT_NEAR(rings[0].Y1, 100, 1e-3);
        EXPECT_EQ(rings[0].Radius, static_cast<float>(size + 1));
        EXPECT_EQ(rings[0].Width, size + 1);
        EXPECT_EQ(rings[0].Colour1, static_cast<std::int32_t>(Scene.Points[kSceneColour][2]));
    }
    // The sheet's cursor on another point takes it away.
    Cells().Row = 1;
    Paint(window);
    EXPECT_TRUE(Rings(window).empty());
}

TEST_F(DrawingMarks, ThePointerIsBusyWhileNamesAreWritten) {
    static int busy, calls;
    busy = calls = 0;
    ScreenWindow& window = OpenRecorded();
    window.State.BigNess = 4;
    window.Screen.Circle = [](Surface&, float, float, float, std::int32_t, std::int32_t, int) {
        ++calls;
        busy += ::Run.WaitPointers > 0 ? 1 : 0;
    };
    Paint(window);
    EXPECT_GT(calls, 0);
    EXPECT_EQ(busy, 0);
    calls = 0;
    Settings.ShowPointNames = kTrue;
    Paint(window);
    EXPECT_GT(calls, 0);
    EXPECT_EQ(busy, calls);
    EXPECT_EQ(::Run.WaitPointers, 0);
}
