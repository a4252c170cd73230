// The marks of a result that its points do not determine, from one calculation to the next.
#include <cmath>

#include "core/job_file.h"
#include "core/notes.h"
#include "engine/calculation_job.h"
#include "engine/selection.h"

using namespace corvinade;

namespace {

using Marks = decltype(JobRecord::LeftOpen);

class OpenMarks : public CalculationJob {
protected:
    OpenMarks() {
        Job.ParamText.fill(kNotUsed);
        FloatParameters(kRigid);
    }
    static void Fit() {
        SelectionFromJob();
        ButtonCalcErsatz();
    }
    static void AddShifted(double x, double y, double z) { AddPair({x, y, z}, {x + 1, y + 2, z + 3}); }
    static void AddLineAlongX() {
        for (int i = 0; i < 5; ++i) AddShifted(100.0 * i, 20, 30);
    }
    static Marks MarksOf(std::initializer_list<int> parameters) {
        Marks marks{};
        for (const int k : parameters) marks[static_cast<std::size_t>(k)] = 1;
        return marks;
    }
    // As the job's file tells it.
    static JobRecord Reread() { return ReadJobBytes(JobBytes(Job, {}), "").Job; }
};

}  // namespace

TEST_F(OpenMarks, ALineLeavesTheTurnAboutItOpenInEveryNorm) {
    AddLineAlongX();
    for (const std::int16_t norm : {2, 1, 3}) {
        Job.NormType = norm;
        Fit();
        EXPECT_EQ(Reread().LeftOpen, MarksOf({kRotX, kTraY, kTraZ})) << norm;
        EXPECT_EQ(Reread().Collapsed, kFalse);
        Job.LeftOpen.fill(0);
    }
}

TEST_F(OpenMarks, TheNextResultTakesThemOff) {
    AddLineAlongX();
    Fit();
    ASSERT_NE(Job.LeftOpen, Marks{});
    Job.Collapsed = kTrue;
    Job.ParamText[kRotX] = "0";
    Fit();
    EXPECT_EQ(Job.LeftOpen, Marks{});
    EXPECT_EQ(Job.Collapsed, kFalse);
    Job.ParamText[kRotX] = kFloat;
    Fit();
    AddShifted(0, 500, 0);
    Fit();
    EXPECT_EQ(Job.LeftOpen, Marks{});
}

TEST_F(OpenMarks, ARefusedCalculationLeavesWhatWas) {
    AddLineAlongX();
    const Marks before = MarksOf({kRotZ});
    Job.LeftOpen = before;
    Job.Collapsed = kTrue;
    Job.ParamText[kScaleX] = "0";
    Fit();
    ASSERT_TRUE(Calculation.Refused);
    EXPECT_EQ(Job.LeftOpen, before);
    EXPECT_EQ(Job.Collapsed, kTrue);
}

TEST_F(OpenMarks, PosesTurnedAboutOneAxisLeaveTheToolsLengthOpen) {
    Job.RobotABC = Matrix(8, 3);
    for (int i = 1; i <= 8; ++i) {
        const double angle = 0.7 * i, x = 100.0 * (i % 3), y = 70.0 * (i % 4), z = 50.0 * (i % 5);
        Job.RobotABC(i, 1) = angle;
        // The target less the turned tool (30, 40, 200) is the start point.
        AddPair({x, y, z}, {x + 30 * std::cos(angle) - 40 * std::sin(angle),
                            y + 30 * std::sin(angle) + 40 * std::cos(angle), z + 200});
    }
    FloatParameters({kRvecX, kRvecY, kRvecZ});
    Fit();
    EXPECT_EQ(Reread().LeftOpen, MarksOf({kTraZ, kRvecZ}));
}

TEST_F(OpenMarks, TargetsAtOnePlaceCollapseTheScale) {
    for (const auto& [x, y, z] : {std::array{0.0, 0.0, 0.0}, std::array{100.0, 0.0, 10.0},
                                  std::array{0.0, 200.0, 20.0}, std::array{30.0, 40.0, 300.0}})
        AddPair({x, y, z}, {5, 5, 5});
    FloatParameters({kScaleXYZ});
    Fit();
    EXPECT_EQ(Reread().Collapsed, kTrue);
}

TEST_F(OpenMarks, TargetsInAPlaneCollapseTheScaleAcrossIt) {
    for (const auto& [x, y, z] :
         {std::array{0.0, 0.0, 0.0}, std::array{100.0, 0.0, 10.0}, std::array{0.0, 200.0, 20.0},
          std::array{30.0, 40.0, 300.0}, std::array{-70.0, 90.0, 110.0}})
        AddPair({x, y, z}, {x, y, 7});
    FloatParameters({kScaleX, kScaleY, kScaleZ});
    Fit();
    EXPECT_EQ(Reread().Collapsed, kTrue);
}

TEST_F(OpenMarks, GimbalLockIsNone) {
    for (const auto& [x, y, z] : {std::array{0.0, 0.0, 0.0}, std::array{100.0, 0.0, 10.0},
                                  std::array{0.0, 200.0, 20.0}, std::array{30.0, 40.0, 300.0}})
        AddPair({x, y, z}, {z, y, -x});
    Fit();
    ASSERT_FALSE(Notes.List.empty());
    EXPECT_EQ(Notes.List[0].Code, NoteCode::GimbalLock);
    EXPECT_EQ(Job.LeftOpen, Marks{});
}

// The axes of exact points stand at right angles, so that z to xy is 0.
TEST_F(OpenMarks, AnAzimuthWithoutEffectIsANoteAlone) {
    for (const auto& [x, y, z] :
         {std::array{0.0, 0.0, 0.0}, std::array{100.0, 0.0, 10.0}, std::array{0.0, 200.0, 20.0},
          std::array{30.0, 40.0, 300.0}, std::array{-70.0, 90.0, 110.0}, std::array{55.0, -60.0, 20.0}})
        AddPair({x, y, z}, {z + 100, x - 50, y + 20});
    FloatParameters({kScaleX, kScaleY, kScaleZ, kAngleXY, kAzimuth, kAngleZtoXY});
    Fit();
    ASSERT_TRUE(Calculation.Converged);
    ASSERT_LT(std::fabs(Job.AngleZtoXY), 1e-9);
    EXPECT_FALSE(HasWarnings());
    ASSERT_FALSE(Notes.List.empty());
    EXPECT_EQ(Notes.List[0].Code, NoteCode::NoEffect);
    EXPECT_TRUE(std::isnan(Calculation.Sigma[kAzimuth]));
    EXPECT_EQ(Job.LeftOpen, Marks{});
}
