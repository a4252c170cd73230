// The layers of a paint, one above the other.
#include <algorithm>

#include "graphics/drawing_job.h"
#include "graphics/tolerance.h"

using namespace corvinade;

using DrawingOrder = Drawing;

namespace {

// Where in the record the first operation stands that fits.
template <class Fits>
std::ptrdiff_t First(const ScreenWindow& window, Fits fits) {
    const std::vector<Operation>& all = RecordingOf(window).Operations;
    return std::find_if(all.begin(), all.end(), fits) - all.begin();
}
template <class Fits>
std::ptrdiff_t Last(const ScreenWindow& window, Fits fits) {
    const std::vector<Operation>& all = RecordingOf(window).Operations;
    return all.rend() - std::find_if(all.rbegin(), all.rend(), fits) - 1;
}

auto LineOf(int qb) {
    return [qb](const Operation& operation) {
        return operation.Kind == Stroke::Line && operation.Colour1 == QbColor(qb);
    };
}

}  // namespace

TEST_F(DrawingOrder, IsPointsRVectorsGridRotationAxisColourBarAxesScales) {
    FillJob({{0, 0, 0, 0.3, 0, 0}, {100, 200, 50, 0, 0.4, 0}});
    Job.RVecX = {{}, 10.0, 20.0};
    Job.RVecY = {{}, 10.0, 20.0};
    Job.RVecZ = {0, 10, 20};
    Job.RDist = 1;
    Job.ParamText[kRDist] = "float";
    Job.RotXCopy = 0.2;
    Run.TrafoValid = kTrue;
    Settings.ShowRVec = Settings.VectorQuat = Settings.ShowColorBar = kTrue;
    ScreenWindow& window = Open(FlatView());
    window.State.BigNess = 4;
    window.State.VectorMode = window.State.GridXY = kTrue;
    window.State.ADis = window.State.BDis = window.State.Cdis = 100;
    Paint(window);

    const std::vector<Operation>& all = RecordingOf(window).Operations;
    EXPECT_EQ(all.front().Kind, Stroke::Clear);
    EXPECT_EQ(all.front().Colour1, window.BackColor);
    EXPECT_EQ(all.back().Kind, Stroke::Refresh);
    EXPECT_EQ(OperationsOf(window, Stroke::Clear).size(), 1U);
    EXPECT_EQ(OperationsOf(window, Stroke::Refresh).size(), 1U);

    // Each point is followed by its vector.
    EXPECT_EQ(all[1].Kind, Stroke::Circle);
    EXPECT_EQ(all[2].Kind, Stroke::Line);
    EXPECT_EQ(all[3].Kind, Stroke::Circle);
    EXPECT_EQ(all[4].Kind, Stroke::Line);
    const auto circles = Last(window, [](const Operation& o) { return o.Kind == Stroke::Circle; });
    const auto rVectors = First(window, LineOf(13));
    const auto grid = First(window, LineOf(8)), gridEnd = Last(window, LineOf(8));
    const auto quaternion = Last(window, LineOf(13));
    const auto bar = First(window, [](const Operation& o) {
        return o.Kind == Stroke::Line && o.X1 == 725 && o.X2 == 747 && o.Y1 == o.Y2;
    });
    const auto axes =
        First(window, [](const Operation& o) { return o.Kind == Stroke::Line && o.X1 == 70 && o.Y1 == 510; });
    const auto scale = First(window, LineOf(9));
    EXPECT_LT(circles, rVectors);
    EXPECT_LT(rVectors, grid);
    EXPECT_LT(gridEnd, quaternion);
    EXPECT_LT(quaternion, bar);
    EXPECT_LT(bar, axes);
    EXPECT_LT(axes, scale);
    EXPECT_LT(scale, static_cast<std::ptrdiff_t>(all.size()) - 1);
}

TEST_F(DrawingOrder, LayersThatAreOffAreNotDrawn) {
    FillJob({{0, 0, 0, 0.3, 0, 0}});
    Job.RotXCopy = 0.2;
    Run.TrafoValid = kFalse;
    Settings.VectorQuat = kTrue;  // without a result there is no rotation
    ScreenWindow& window = OpenAndPaint(FlatView());
    EXPECT_TRUE(LinesOf(window, QbColor(13)).empty());
    EXPECT_TRUE(LinesOf(window, QbColor(8)).empty());
    EXPECT_EQ(OperationsOf(window, Stroke::Line).size(), 14U + 3);  // axes and scale
    Run.TrafoValid = kTrue;
    Paint(window);
    EXPECT_EQ(LinesOf(window, QbColor(13)).size(), 1U);
    Settings.VectorQuat = kFalse;
    Paint(window);
    EXPECT_TRUE(LinesOf(window, QbColor(13)).empty());
}

TEST_F(DrawingOrder, APaintBeginsFromNothing) {
    FillJob({{20, 30, 0, 0, 0, 0}});
    ScreenWindow& window = OpenAndPaint(FlatView());
    const std::vector<std::uint32_t> first = RecordingOf(window).Memory;
    const std::size_t operations = RecordingOf(window).Operations.size();
    TestView{1, 2, 3, 0.4, 0, 0}.GiveTo(window);
    Paint(window);
    FlatView().GiveTo(window);
    Paint(window);
    EXPECT_EQ(RecordingOf(window).Memory, first);
    EXPECT_EQ(RecordingOf(window).Operations.size(), operations);
}

TEST_F(DrawingOrder, WindowsOfOnePixelAndJobsWithoutPointsArePainted) {
    Settings.ShowColorBar = Settings.VectorQuat = Settings.ShowPointNames = Settings.ShowPointsBigger = kTrue;
    Settings.ShowCoordinateSystemLabels = kTrue;
    for (const bool empty : {true, false}) {
        FillJob(empty ? std::vector<Pair>{} : std::vector<Pair>(3, {1e12, 1e12, 1e12, 1, 1, 1}));
        ScreenWindow& window = OpenAndPaint(FlatView());
        window.State.GridXY = window.State.VectorMode = window.State.ShowGridDim = kTrue;
        Paint(window);
        ResizeScreenWindow(window, 1, 1);
        EXPECT_EQ(OperationsOf(window, Stroke::Refresh).size(), 1U);
        EXPECT_TRUE(GuardIsUntouched(window));
        CloseScreenWindow(window);
    }
}
