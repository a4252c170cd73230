// One calculation: its counts, its refusal, and what it leaves behind.
#include "engine/calculation.h"

#include <cmath>

#include "cli/headless.h"
#include "core/form_main.h"
#include "core/run.h"
#include "core/settings.h"
#include "engine/adjustment.h"
#include "engine/fit_job.h"
#include "engine/selection.h"
#include "engine/transform.h"
#include "support/fixture.h"

using namespace corvinade;

class CalculationRun : public Program {
protected:
    CalculationRun() {
        BeginFit();
        ShowWindow("FormMain");
    }
    static Vec3 Image(int i) {
        const Vec3 p = StartPoint(i);
        Vec3 image;
        TransformPoint(p(1), p(2), p(3), image(1), image(2), image(3));
        return image;
    }
    static Vec3 Transformed(int i) {
        const auto k = static_cast<std::size_t>(i);
        return {*Job.Transformed.X[k], *Job.Transformed.Y[k], Job.Transformed.Z[k]};
    }
    static void ExpectTransformed(int i) {
        for (int k = 1; k <= 3; ++k) EXPECT_NEAR(Transformed(i)(k), Image(i)(k), 1e-10) << i;
    }
    static void AddStartPointWithoutPartner(double x, double y, double z) {
        Job.Start.Add("alone", x, y, z);
        Job.Transformed.Add("alone", 0, 0, 0);
    }
};

namespace {}

TEST_F(CalculationRun, AUseFlagThatIsNotOneLeavesItsCoordinateOut) {
    AddCloud({.Points = 8, .Noise = 0.1, .Truth = kTruth});
    for (const std::int16_t norm : {1, 2, 3}) {
        Job.NormType = norm;
        std::array<double, 4> shiftWith0{};
        for (const std::int16_t flag : {0, 2, -1, 32767}) {
            SCOPED_TRACE(testing::Message() << "norm " << norm << ", flag " << flag);
            for (const std::size_t out : {1U, 5U, 20U}) Job.UseFlags[out] = flag;
            FloatParameters(kRigid);
            ButtonCalcErsatz();
            EXPECT_TRUE(Calculation.Converged);
            const std::array<double, 4> shift = {Job.TraX, Job.TraY, Job.TraZ, Job.RotX};
            if (flag == 0) shiftWith0 = shift;
            EXPECT_EQ(shift, shiftWith0);
        }
    }
}

TEST_F(CalculationRun, TransformsPairsAndPointsWithoutPartner) {
    AddCloud({.Points = 8, .Noise = 0.1, .Truth = kTruth});
    AddStartPointWithoutPartner(1, 2, 3);
    FloatParameters(kRigid);
    ButtonCalcErsatz();
    EXPECT_TRUE(Calculation.Converged);
    EXPECT_TRUE(Calculation.Finite);
    EXPECT_FALSE(Calculation.Refused);
    EXPECT_EQ(Calculation.nFloat, 6);
    EXPECT_EQ(Calculation.nObs, 24);
    for (int i = 1; i <= 9; ++i) ExpectTransformed(i);
    for (int i = 1; i <= 8; ++i)
        EXPECT_EQ(*Job.Transformed.X[static_cast<std::size_t>(i)],
                  TargetPoint(i)(1) + Calculation.v[static_cast<std::size_t>(3 * i - 2)]);
    EXPECT_EQ(::Run.TrafoValid, kTrue);
    EXPECT_EQ(::Run.JobDirty, kTrue);
    EXPECT_TRUE(Main.MenueFileExport.Enabled);  // the commands know of the result
}

TEST_F(CalculationRun, RefusesTooFewObservationsAndChangesNothing) {
    AddPair({0, 0, 0}, {1, 2, 3});
    AddPair({100, 0, 0}, {101, 2, 3});
    FloatParameters(kRigid);
    FloatParameters({kScaleXYZ});
    Job.TraX = 42;
    ButtonCalcErsatz();
    EXPECT_TRUE(Calculation.Refused);
    EXPECT_EQ(Messages(), std::vector<std::string>{"This is not a redundant calculation"});
    EXPECT_EQ(Job.TraX, 42);
    EXPECT_EQ(::Run.TrafoValid, kFalse);
    EXPECT_EQ(::Run.JobDirty, kFalse);
}

TEST_F(CalculationRun, AsManyWeightsAsUnknownsAreEnough) {
    AddCloud({.Points = 2, .Truth = kTruth});
    FloatParameters({kTraX, kTraY, kTraZ, kRotX, kRotZ, kScaleXYZ});
    Settings.MaxIteration = 5;
    ButtonCalcErsatz();
    EXPECT_FALSE(Calculation.Refused);
    Job.UseFlags[5] = 0;
    ButtonCalcErsatz();
    EXPECT_TRUE(Calculation.Refused);
}

TEST_F(CalculationRun, ADistanceIsOneObservationAPoint) {
    AddCloud({.Points = 6, .Noise = 1, .Truth = kTruth});
    FloatParameters(kRigid);
    FloatParameters({kRDist});
    Selection.CheckRDist = true;
    ButtonCalcErsatz();
    EXPECT_TRUE(Calculation.Refused);  // 6 distances for 7 unknowns
    FloatParameters({kRDist});
    Job.ParamText[kRotX] = "20";
    Settings.MaxIteration = 3;
    ButtonCalcErsatz();
    EXPECT_FALSE(Calculation.Refused);
}

TEST_F(CalculationRun, InTheDistanceModelPairsGoThroughTheChain) {
    AddCloud({.Points = 12, .Noise = 30, .Truth = kTruth});
    FloatParameters(kRigid);
    Job.ParamText[kRDist] = "40";
    Settings.MaxIteration = 4;
    ButtonCalcErsatz();
    for (int i = 1; i <= 12; ++i) ExpectTransformed(i);
}

TEST_F(CalculationRun, DistanceAndToolTogetherAreWarnedOfAndCalculatedAllTheSame) {
    AddCloud({.Points = 12, .Noise = 1, .Truth = kTruth});
    Job.RobotABC = Matrix(12, 3);
    for (int i = 1; i <= 12; ++i)
        for (int k = 1; k <= 3; ++k) Job.RobotABC(i, k) = NextNumber();
    FloatParameters(kRigid);
    FloatParameters({kRDist, kRvecX, kRvecY, kRvecZ});
    Selection.CheckRDist = Selection.CheckUseABC = true;
    ButtonCalcErsatz();
    EXPECT_EQ(Messages(),
              std::vector<std::string>{"bigbug here in the CODE, you can never use R_Dist AND UseABC"});
    EXPECT_EQ(Calculation.nFloat, 10);
    EXPECT_TRUE(Calculation.Converged);
    EXPECT_NEAR(Job.RDist,
                std::sqrt(Job.Rvec_x * Job.Rvec_x + Job.Rvec_y * Job.Rvec_y + Job.Rvec_z * Job.Rvec_z),
                1e-12);
}

TEST_F(CalculationRun, PosesInAnotherAngleUnitAreAskedAboutUntilTheUserHasEnough) {
    AddCloud({.Points = 12, .Noise = 1, .Truth = kTruth});
    Job.RobotABC = Matrix(Job.Pairs(), 3);
    Job.AngleUnitName = "rad";
    FloatParameters(kRigid);
    Selection.CheckUseABC = true;
    Headless.Answers["message"] = {"OK", "Cancel"};
    ButtonCalcErsatz();
    ButtonCalcErsatz();
    ButtonCalcErsatz();
    ASSERT_EQ(Headless.Dialogs.size(), 2U);
    EXPECT_EQ(Headless.Dialogs[0].Title, "Attention Angle UNITs");
    EXPECT_EQ(Headless.Dialogs[0].Buttons, (std::vector<std::string>{"OK", "Cancel"}));
    EXPECT_EQ(Headless.Dialogs[0].Text,
              "Unit of Angels in Nominal InputFile must be the SAME as in your program Settings\r\n"
              "Be sure [actual ProgramSetting is rad] is the unit of Angles in Nominal File!\r\n"
              "Cancel = Don't show this Dialog again ");
}

TEST_F(CalculationRun, AResultThatIsNoNumberIsRecognisedAndTransformsNothing) {
    AddCloud({.Points = 8, .Truth = kTruth});
    FloatParameters(kRigid);
    ButtonCalcErsatz();
    EXPECT_EQ(::Run.TrafoValid, kTrue);
    const auto before = Job.Transformed.X;
    Job.Start.Y[5] = std::nan("");
    ButtonCalcErsatz();
    EXPECT_FALSE(Calculation.Finite);
    EXPECT_EQ(::Run.TrafoValid, kFalse);
    EXPECT_EQ(Job.Transformed.X, before);
    EXPECT_EQ(LastMessage(), "Calculation stopped after 100 Iterations, Convergence not reached yet!");
}

TEST_F(CalculationRun, AJobReplacedDuringTheCalculationIsLeftAlone) {
    AddCloud({.Points = 8, .Truth = kTruth});
    FloatParameters(kRigid);
    for (const std::uint64_t when : {1, 3}) {
        Headless.Yields = 0;
        Headless.OnYield = [when] {
            if (Headless.Yields != when) return;
            ::Run.JobDirty = ::Run.TrafoValid = kFalse;
            ++::Run.JobGeneration;
        };
        ButtonCalcErsatz();
        EXPECT_EQ(::Run.TrafoValid, kFalse);
        EXPECT_EQ(::Run.JobDirty, kFalse);
    }
}

TEST_F(CalculationRun, MissingTransformedPointsAndFlagsAreMade) {
    AddCloud({.Points = 8, .Truth = kTruth});
    Job.Transformed.Resize(2);
    Job.UseFlags.resize(4);
    FloatParameters(kRigid);
    ButtonCalcErsatz();
    EXPECT_TRUE(Calculation.Converged);
    EXPECT_EQ(Job.Transformed.Name.size(), 9U);
    for (int i = 1; i <= 8; ++i) ExpectTransformed(i);
}

TEST_F(CalculationRun, SigmaXyzIsTheLengthOfTheAxes) {
    AddCloud({.Points = 20, .Noise = 0.5, .Truth = kTruth});
    FloatParameters(kRigid);
    ButtonCalcErsatz();
    EXPECT_NEAR(Calculation.SigmaXYZ,
                std::sqrt(Calculation.sx * Calculation.sx + Calculation.sy * Calculation.sy +
                          Calculation.sz * Calculation.sz),
                1e-15);
    EXPECT_NEAR(Calculation.SigmaXYZ, 0.5 * std::sqrt(3), 0.2);
    EXPECT_GT(Calculation.Sigma[kTraX], 0);
    EXPECT_EQ(Calculation.Sigma[kScaleX], 0);
    EXPECT_EQ(Calculation.Significance[kScaleX], 0);
}
