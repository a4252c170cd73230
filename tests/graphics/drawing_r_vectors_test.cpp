// The vectors of a fit to distances.
#include "engine/calculation_job.h"
#include "graphics/drawing_job.h"

using namespace corvinade;

using DrawingRVectors = Drawing;

namespace {

void FillDistances() {
    FillJob({{10, 20, 30, 1, 2, 3}, {-50, 60, 70, 0, 0, 0}});
    Job.RVecX = {{}, 100.0, 200.0};
    Job.RVecY = {{}, -30.0, 0.0};
    Job.RVecZ = {0, 5, 0};
    Job.RDist = 80;
    Job.ParamText[kRDist] = "float";
    Settings.ShowRVec = kTrue;
}

std::vector<Operation> PaintVectors(ScreenWindow& window) {
    RecordingOf(window).Operations.clear();
    DrawRVectors(window);
    return OperationsOf(window, Stroke::Line);
}

}  // namespace

TEST_F(DrawingRVectors, LeadToTheSecondPointAndAlongItAtTheVectorsScale) {
    FillDistances();
    const TestView view = TiltedView();
    ScreenWindow& window = OpenAndPaint(view);
    window.State.Vec_Maßstab = 3;
    const std::vector<Operation> lines = PaintVectors(window);
    ASSERT_EQ(lines.size(), 4U);
    const auto point = view.Pixel(11, 22, 33, 600), second = view.Pixel(100, -30, 5, 600);
    ExpectLine(lines[0], point[0], point[1], point[0] + 3 * (second[0] - point[0]),
               point[1] + 3 * (second[1] - point[1]));
    ExpectLine(lines[1], point[0], point[1], second[0], second[1]);
    for (const Operation& line : lines) EXPECT_EQ(line.Colour1, QbColor(13));
}

TEST_F(DrawingRVectors, AreShownOnlyWhereTheJobHasADistance) {
    FillDistances();
    ScreenWindow& window = OpenAndPaint(TiltedView());
    EXPECT_FALSE(PaintVectors(window).empty());
    Settings.ShowRVec = kFalse;
    EXPECT_TRUE(PaintVectors(window).empty());
    Settings.ShowRVec = kTrue;
    Job.RDist = 0;
    EXPECT_TRUE(PaintVectors(window).empty());
    Job.RDist = 80;
    Job.ParamText[kRDist] = "";
    EXPECT_TRUE(PaintVectors(window).empty());
}

TEST_F(DrawingRVectors, HiddenPointsAndPointsWithoutASecondPointHaveNone) {
    FillDistances();
    ScreenWindow& window = OpenAndPaint(TiltedView());
    Scene.Points[kScenePlotted][1] = 0;
    EXPECT_EQ(PaintVectors(window).size(), 2U);
    Scene.Points[kSceneInside][2] = 0;
    EXPECT_TRUE(PaintVectors(window).empty());
    Scene.Points[kScenePlotted][1] = Scene.Points[kSceneInside][2] = 1;
    Job.RVecX[1].reset();
    EXPECT_EQ(PaintVectors(window).size(), 2U);
    Job.RVecZ.resize(1);
    EXPECT_TRUE(PaintVectors(window).empty());
}

TEST_F(DrawingRVectors, AreAsWideAsThePointsWhereVectorsAreThick) {
    FillDistances();
    ScreenWindow& window = OpenAndPaint(TiltedView());
    window.State.BigNess = 4;
    EXPECT_EQ(PaintVectors(window)[0].Width, 1);
    Settings.VectorThick = kTrue;
    EXPECT_EQ(PaintVectors(window)[0].Width, 4);
}

TEST_F(DrawingRVectors, OfARobotGoFromTheFlangeOverThePoseToThePoint) {
    FillDistances();
    Job.Rvec_x = -40;
    Job.RobotABC = Matrix(2, 3);
    Job.RobotABC(2, 1) = 0.3;  // A alone: the axis (1, 0, 0) turns about x and stays
    Job.RobotABC(1, 3) = 0.5;  // C alone: about z
    const TestView view = TiltedView();
    ScreenWindow& window = OpenAndPaint(view);
    const std::vector<Operation> lines = PaintVectors(window);
    ASSERT_EQ(lines.size(), 4U);
    // The transposed matrix of a turn by -C: first column (cos C, sin C, 0), 40 long.
    const auto flange = view.Pixel(10 + 40 * std::cos(0.5), 20 + 40 * std::sin(0.5), 30, 600);
    const auto pose = view.Pixel(10, 20, 30, 600), point = view.Pixel(11, 22, 33, 600);
    ExpectLine(lines[0], flange[0], flange[1], pose[0], pose[1]);
    ExpectLine(lines[1], pose[0], pose[1], point[0], point[1]);
    EXPECT_EQ(lines[0].Colour1, QbColor(6));
    EXPECT_EQ(lines[1].Colour1, QbColor(10));
    const auto other = view.Pixel(-50 + 40, 60, 70, 600);
    EXPECT_NEAR(lines[2].X1, other[0], 2e-3);
    EXPECT_NEAR(lines[2].Y1, other[1], 2e-3);
}

namespace {

class RVectorsOfAFit : public CalculationJob {
protected:
    Recorded recorded_;
};

}  // namespace

// Targets 40 mm above the places of their points, but that every third one is a millimetre higher: with the
// rotation and the other shifts held the fit can only float between them.
TEST_F(RVectorsOfAFit, AreInThePictureAfterACalculation) {
    for (int i = 0; i < 9; ++i) {
        const double x = 100.0 * (i % 3), y = 80.0 * (i / 3), up = i % 3 == 0 ? 41 : 40;
        AddPair({x, y, 0}, {x, y, up});
    }
    Job.RVecX.resize(10);
    Job.RVecY.resize(10);
    Job.RVecZ.resize(10);
    Job.ViewAllMCS = kTrue;
    ::Run.JobDataValid = kTrue;
    Settings.ShowRVec = kTrue;
    Open();
    FormTrafoBerechnung& w = TrafoWindow;
    for (Control* const box :
         {&w.CheckTraX, &w.CheckTraY, &w.CheckTraZ, &w.CheckRotX, &w.CheckRotY, &w.CheckRotZ})
        UserSetValue(*box, 0);
    for (Control* const text : {&w.TextTraX, &w.TextTraY, &w.TextTraZ, &w.TextRotX, &w.TextRotY, &w.TextRotZ})
        UserSetText(*text, "0");
    UserSetValue(w.CheckRDist, 1);
    Calculate();
    // The mean of the nine distances.
    ASSERT_NEAR(Job.RDist, (6 * 40 + 3 * 41) / 9.0, 1e-9);
    ScreenWindow& window = OpenScreenWindow();
    const TestView view = {1.2, 0.3, 0.1, 2, -150, -100};
    view.GiveTo(window);
    window.State.Vec_Maßstab = 50;
    RecordingOf(window).Operations.clear();
    Stelle_Grafik_dar(window);
    const std::vector<Operation> lines = LinesOf(window, QbColor(13));
    ASSERT_EQ(lines.size(), 18U);
    for (int i = 0; i < 9; ++i) {
        const double x = 100.0 * (i % 3), y = 80.0 * (i / 3), up = i % 3 == 0 ? 41 : 40;
        const int height = window.Screen.Height;
        const auto point = view.Pixel(x, y, 0, height), second = view.Pixel(x, y, up - Job.RDist, height);
        const Operation& longer = lines[2 * static_cast<std::size_t>(i)];
        const Operation& plain = lines[2 * static_cast<std::size_t>(i) + 1];
        EXPECT_NEAR(plain.X1, point[0], 2e-3);
        EXPECT_NEAR(plain.Y1, point[1], 2e-3);
        EXPECT_NEAR(plain.X2, second[0], 2e-3);
        EXPECT_NEAR(plain.Y2, second[1], 2e-3);
        EXPECT_NEAR(longer.X2, point[0] + 50 * (second[0] - point[0]), 0.02);
        EXPECT_NEAR(longer.Y2, point[1] + 50 * (second[1] - point[1]), 0.02);
    }
}
