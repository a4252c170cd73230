// The iteration of the adjustment: its ends, its messages, its start values, its edge cases.
#include "engine/adjustment.h"

#include <cmath>

#include "cli/headless.h"
#include "core/form_main.h"
#include "core/numbers.h"
#include "core/run.h"
#include "core/settings.h"
#include "core/text.h"
#include "core/units.h"
#include "engine/design.h"
#include "engine/fit_job.h"
#include "engine/seed.h"
#include "engine/selection.h"
#include "engine/transform.h"
#include "fit/angles.h"
#include "fit/rotations.h"
#include "support/fixture.h"

using namespace corvinade;

class Fit : public Program {
protected:
    Fit() { BeginFit(); }

    void RunFit() {
        const int n = 3 * Job.Pairs();
        P_ = Column(Job.UseFlags.begin(), Job.UseFlags.end());
        BestFitIteration(CountUnknowns(Job.ParamText), n, Job.ParamText, Q_, v_, P_);
    }
    static std::array<double, 18> Result() {
        std::array<double, 18> values{};
        for (int k = 1; k < kParameterEnd; ++k) values[static_cast<std::size_t>(k)] = ParameterValue(Job, k);
        return values;
    }

    Matrix Q_;
    Column v_, P_;
};

namespace {}  // namespace

TEST_F(Fit, RecoversASimilarityWithoutNoise) {
    AddCloud({.Points = 7, .Truth = Truth({100, -200, 300, 0.4, -0.7, 2.1, 1.5, 1.5, 1.5, 1.5})});
    FloatParameters(kRigid);
    FloatParameters({kScaleXYZ});
    RunFit();
    EXPECT_TRUE(Adjustment.Converged);
    EXPECT_NEAR(Job.TraX, 100, 1e-10);
    EXPECT_NEAR(Job.TraY, -200, 1e-10);
    EXPECT_NEAR(Job.TraZ, 300, 1e-10);
    EXPECT_NEAR(Job.RotX, 0.4, 1e-13);
    EXPECT_NEAR(Job.RotY, -0.7, 1e-13);
    EXPECT_NEAR(Job.RotZ, 2.1, 1e-13);
    EXPECT_NEAR(Job.ScaleXYZ, 1.5, 1e-13);
    EXPECT_EQ(Job.ScaleX, Job.ScaleXYZ);
    EXPECT_EQ(Job.ScaleY, Job.ScaleXYZ);
    EXPECT_EQ(Job.ScaleZ, Job.ScaleXYZ);
    for (std::size_t i = 1; i < v_.size(); ++i) EXPECT_NEAR(v_[i], 0, 1e-11);
}

TEST_F(Fit, RecoversAllTwelveParametersWithoutNoise) {
    AddCloud(
        {.Points = 7, .Truth = Truth({100, -200, 300, 0.4, -0.7, 2.1, 1.1, 0.9, 1.2, 1, 0.02, 0.6, 0.03})});
    FloatParameters(kRigid);
    FloatParameters({kScaleX, kScaleY, kScaleZ, kAngleXY, kAzimuth, kAngleZtoXY});
    RunFit();
    EXPECT_TRUE(Adjustment.Converged);
    for (std::size_t i = 1; i < v_.size(); ++i) EXPECT_NEAR(v_[i], 0, 1e-10);
    EXPECT_NEAR(Job.ScaleX, 1.1, 1e-12);
    EXPECT_NEAR(Job.AngleXY, 0.02, 1e-12);
    // The frame may lean the other way round with the azimuth turned by half a circle.
    EXPECT_NEAR(std::fabs(Job.AngleZtoXY), 0.03, 1e-12);
    EXPECT_NEAR(std::cos(Job.Azimuth) * std::sin(Job.AngleZtoXY), std::cos(0.6) * std::sin(0.03), 1e-12);
}

TEST_F(Fit, ConvergesAtHalfAndQuarterTurnsFarFromTheOrigin) {
    for (int axis = 0; axis < 3; ++axis)
        for (const double angle :
             {0.0, 1e-12, M_PI / 2, M_PI, M_PI - 1e-10, M_PI + 1e-10, -M_PI, -M_PI / 2}) {
            // At a quarter turn about Y the other two angles cannot be told apart.
            if (axis == 1 && std::fabs(std::fabs(angle) - M_PI / 2) < 0.1) continue;
            SCOPED_TRACE(std::to_string(axis) + ", " + std::to_string(angle));
            Job = JobRecord{};
            BeginFit();
            auto truth = Truth({100, -200, 300, 0, 0, 0, 1, 1, 1, 1});
            truth[static_cast<std::size_t>(kRotX + axis)] = angle;
            AddCloud({.Points = 12, .Centre = {5e5, -2e5, 3e4}, .Truth = truth});
            FloatParameters(kRigid);
            RunFit();
            EXPECT_TRUE(Adjustment.Converged);
            for (std::size_t i = 1; i < v_.size(); ++i) EXPECT_NEAR(v_[i], 0, 1e-9);
            // The angles themselves describe the fit, not only the residuals of the last pass.
            const Vec3 p = StartPoint(1), q = TargetPoint(1);
            Vec3 image;
            trafo(p(1), p(2), p(3), image(1), image(2), image(3), Job.TraX, Job.TraY, Job.TraZ, Job.RotX,
                  Job.RotY, Job.RotZ, 1, 1, 1, 0);
            for (int k = 1; k <= 3; ++k) EXPECT_NEAR(image(k), q(k), 1e-8);
        }
}

TEST_F(Fit, ResidualsAreTransformedMinusTarget) {
    AddCloud({.Points = 6, .Noise = 0.1, .Truth = kTruth});
    FloatParameters(kRigid);
    RunFit();
    Job.RotXCopy = Job.RotX;
    Job.RotYCopy = Job.RotY;
    Job.RotZCopy = Job.RotZ;
    for (int i = 1; i <= Job.Pairs(); ++i) {
        const Vec3 p = StartPoint(i), q = TargetPoint(i);
        Vec3 image;
        TransformPoint(p(1), p(2), p(3), image(1), image(2), image(3));
        for (int k = 1; k <= 3; ++k)
            EXPECT_NEAR(v_[static_cast<std::size_t>(3 * (i - 1) + k)], image(k) - q(k), 1e-11);
    }
}

TEST_F(Fit, WithAsManyEquationsAsUnknownsIsExactAndDividesByTheWeightsLessOne) {
    // Six unknowns, six coordinates in use: three, two and one of three points.
    AddPair({0, 0, 0}, {1, 2, 3});
    AddPair({100, 0, 0}, {101, 3, 3.5});
    AddPair({0, 100, 0}, {1, 102, 4});
    Job.UseFlags = {0, 1, 1, 1, 0, 1, 1, 0, 0, 1};
    FloatParameters(kRigid);
    RunFit();
    EXPECT_TRUE(Adjustment.Converged);
    double s0 = 0, sx = 0, sy = 0, sz = 0;
    Statistics(v_, P_, 9, s0, sx, sy, sz);
    for (const std::size_t row : {1, 2, 3, 5, 6, 9}) EXPECT_NEAR(v_[row], 0, 1e-10);
    EXPECT_NEAR(s0, 0, 1e-10);
    Statistics({0, 3, 0, 0, 0, 0, 0, 0, 0, 0}, P_, 9, s0, sx, sy, sz);
    EXPECT_NEAR(s0, std::sqrt(9.0 / 5), 1e-9);  // six weights less one
}

TEST_F(Fit, APointOutOfUseChangesNothing) {
    AddCloud({.Points = 9, .Noise = 0.1, .Truth = kTruth});
    FloatParameters(kRigid);
    RunFit();
    const auto before = Result();
    AddPair({5000, 4000, 3000}, {-1, -2, -3});
    for (std::size_t k = 0; k < 3; ++k) Job.UseFlags[28 + k] = 0;
    RunFit();
    const auto after = Result();
    for (std::size_t k = 1; k < before.size(); ++k) EXPECT_NEAR(before[k], after[k], 1e-11);
    EXPECT_GT(std::fabs(v_[28]), 1000);  // but it has its residual
}

TEST_F(Fit, TwoRunsGiveTheSameResult) {
    AddCloud({.Points = 9, .Noise = 0.1, .Truth = kTruth});
    FloatParameters(kRigid);
    FloatParameters({kScaleX, kScaleY, kScaleZ, kAngleXY, kAzimuth, kAngleZtoXY});
    RunFit();
    const auto first = Result();
    const Column v = v_;
    RunFit();
    EXPECT_EQ(Result(), first);
    EXPECT_EQ(v_, v);
}

TEST_F(Fit, HeldTranslationIsTakenInShownUnits) {
    AddCloud({.Points = 9, .Noise = 0.1, .Truth = kTruth});
    FloatParameters(kRigid);
    Job.ParamText[kTraY] = "-0.2";
    Units.LengthFactor = 1.0 / 1000;
    RunFit();
    EXPECT_EQ(Job.TraY, -200);
    EXPECT_TRUE(Adjustment.Converged);
}

TEST_F(Fit, HeldAnglesMayBeDegreesMinutesAndSeconds) {
    AddCloud({.Points = 9, .Truth = Truth({1, 2, 3, 0.1, 0.2, 12.5 / 180 * kPi, 1, 1, 1, 1})});
    FloatParameters(kRigid);
    Job.ParamText[kRotZ] = "12 30 0";
    RunFit();
    EXPECT_NEAR(Job.RotZ, 12.5 / 180 * kPi, 1e-15);
    EXPECT_NEAR(Job.RotX, 0.1, 1e-12);
    EXPECT_NEAR(Job.TraX, 1, 1e-9);
}

TEST_F(Fit, AHeldRotZPicksTheRawTripleNearestToItAlone) {
    // The rotation's two triples: (a, b, c) and (a + pi, pi - b, c + pi). Whichever value Rot z is held
    // at, the fit must stay with the triple whose Rot z that is.
    const double c = 0.3;
    AddCloud({.Points = 9, .Truth = Truth({1, 2, 3, 0.1, 0.2, c, 1, 1, 1, 1})});
    for (const bool other : {false, true}) {
        FloatParameters(kRigid);
        Job.ParamText[kRotZ] = PlainText((other ? c - kPi : c) * 180 / kPi);
        RunFit();
        EXPECT_TRUE(Adjustment.Converged);
        EXPECT_NEAR(Job.RotX, other ? 0.1 - kPi : 0.1, 1e-8);
        EXPECT_NEAR(Job.RotY, other ? kPi - 0.2 : 0.2, 1e-8);
    }
}

TEST_F(Fit, OnlyTheLastHeldAngleChoosesTheTriple) {
    // Rot x is held near the one triple, Rot z near the other: Rot z decides, and Rot y starts there.
    AddCloud({.Points = 9, .Truth = Truth({0, 0, 0, 0.1, 0.2, 0.3, 1, 1, 1, 1})});
    FloatParameters({kRotY});
    Settings.MaxIteration = 0;
    Job.ParamText[kRotX] = PlainText(0.1 * 180 / kPi);
    Job.ParamText[kRotZ] = PlainText((0.3 - kPi) * 180 / kPi);
    double rotY = 0;
    Headless.OnYield = [&rotY] { rotY = Job.RotY; };
    RunFit();
    EXPECT_NEAR(rotY, kPi - 0.2, 1e-8);
}

TEST_F(Fit, UnusedScalesStartAtOneAndACommonScaleAtTheRawOne) {
    AddCloud({.Points = 9, .Truth = Truth({1, 2, 3, 0.1, 0.2, 0.3, 1.5, 1.5, 1.5, 1.5})});
    std::array<double, 4> scales{};
    Headless.OnYield = [&scales] { scales = {Job.ScaleX, Job.ScaleY, Job.ScaleZ, Job.ScaleXYZ}; };
    Settings.MaxIteration = 0;
    FloatParameters(kRigid);
    RunFit();
    EXPECT_EQ(scales, (std::array<double, 4>{1, 1, 1, 1}));
    FloatParameters({kScaleXYZ});
    RunFit();
    for (const double scale : scales) EXPECT_NEAR(scale, 1.5, 1e-6);
    Job.ParamText[kScaleXYZ] = "1.25";
    RunFit();
    EXPECT_EQ(scales, (std::array<double, 4>{1.25, 1.25, 1.25, 1.25}));
    // Separate scales start at 1, floating or not used, and at their value where they are held.
    Job.ParamText[kScaleXYZ] = kNotUsed;
    FloatParameters({kScaleX});
    Job.ParamText[kScaleY] = "2";
    RunFit();
    EXPECT_EQ(scales, (std::array<double, 4>{1, 2, 1, 1}));
}

TEST_F(Fit, FrameAnglesStartBesideZeroWhereTheyFloat) {
    AddCloud({.Points = 9, .Truth = kTruth});
    std::array<double, 3> angles{};
    Headless.OnYield = [&angles] { angles = {Job.AngleXY, Job.Azimuth, Job.AngleZtoXY}; };
    Settings.MaxIteration = 0;
    Job.AngleXY = Job.Azimuth = 3;
    RunFit();
    EXPECT_EQ(angles, (std::array<double, 3>{0, 0, 0}));
    FloatParameters({kAngleXY, kAzimuth, kAngleZtoXY});
    RunFit();
    EXPECT_EQ(angles[0], 0);
    EXPECT_EQ(angles[1], 0.1 / 180 * 3.14159265358979);
    EXPECT_EQ(angles[2], 0.1 / 180 * 3.14159265358979);
    Job.ParamText[kAzimuth] = "90";
    RunFit();
    EXPECT_NEAR(angles[1], kPi / 2, 1e-15);
}

TEST_F(Fit, SeedsReplaceTheRawSolutionWhileTheWindowIsOpen) {
    AddCloud({.Points = 9, .Truth = kTruth});
    FloatParameters(kRigid);
    FloatParameters({kScaleX});
    Selection.FieldText = Job.ParamText;
    for (const int parameter : {kTraX, kScaleX}) {
        Selection.Float[static_cast<std::size_t>(parameter)] = true;
        Selection.Seed[static_cast<std::size_t>(parameter)] = true;
    }
    for (const int parameter : {kTraY, kTraZ, kRotX, kRotY, kRotZ})
        Selection.Float[static_cast<std::size_t>(parameter)] = true;
    Selection.SeedText[kTraX] = "77";
    Selection.SeedText[kScaleX] = "1.125";
    std::array<double, 2> start{};
    Headless.OnYield = [&start] {
        if (Adjustment.Iterations == 0) start = {Job.TraX, Job.ScaleX};
    };
    RunFit();
    EXPECT_NEAR(start[0], 100, 1e-3);
    EXPECT_EQ(start[1], 1);
    Selection.DialogOpen = true;
    RunFit();
    EXPECT_EQ(start[0], 77);
    EXPECT_EQ(start[1], 1.125);
    EXPECT_NEAR(Job.TraX, 100, 1e-8);
    Job.IsParaboloid = kTrue;
    RunFit();
    EXPECT_NEAR(start[0], 100, 1e-3);
}

TEST_F(Fit, WithLimitZeroOnePassRunsAndTheMessageComes) {
    AddCloud({.Points = 9, .Noise = 1, .Truth = kTruth});
    FloatParameters(kRigid);
    Settings.MaxIteration = 0;
    RunFit();
    EXPECT_EQ(Adjustment.Iterations, 1);
    EXPECT_FALSE(Adjustment.Converged);
    EXPECT_EQ(Messages(), std::vector<std::string>{
                              "Calculation stopped after 0 Iterations, Convergence not reached yet!"});
    EXPECT_NEAR(Job.TraX, 100, 10);  // the parameters of the pass stay
}

TEST_F(Fit, TheLimitAllowsOnePassMore) {
    AddCloud({.Points = 9, .Noise = 1, .Truth = kTruth});
    FloatParameters(kRigid);
    Settings.MaxIteration = 1;
    Settings.BestFit_Etta = 1e-300;
    RunFit();
    EXPECT_EQ(Adjustment.Iterations, 2);
    EXPECT_EQ(LastMessage(), "Calculation stopped after 1 Iterations, Convergence not reached yet!");
}

TEST_F(Fit, AThresholdOfZeroActsAsItsDefault) {
    AddCloud({.Points = 9, .Noise = 1, .Truth = kTruth});
    FloatParameters(kRigid);
    RunFit();
    const int iterations = Adjustment.Iterations;
    Settings.BestFit_Etta = 0;
    RunFit();
    EXPECT_TRUE(Adjustment.Converged);
    EXPECT_EQ(Adjustment.Iterations, iterations);
    Settings.BestFit_Etta = 1e6;
    RunFit();
    EXPECT_EQ(Adjustment.Iterations, 1);
}

TEST_F(Fit, TheStopFlagEndsTheRunAfterThePass) {
    AddCloud({.Points = 9, .Noise = 1, .Truth = kTruth});
    FloatParameters(kRigid);
    Settings.BestFit_Etta = 1e-300;
    Headless.OnYield = [] {
        if (Headless.Yields == 3) ::Run.StopRequested = kTrue;
    };
    RunFit();
    EXPECT_EQ(Adjustment.Iterations, 3);
    EXPECT_FALSE(Adjustment.Converged);
    EXPECT_TRUE(Messages().empty());
    EXPECT_NEAR(Job.TraX, 100, 10);
}

TEST_F(Fit, AJobThatIsReplacedMeanwhileIsNotWrittenTo) {
    AddCloud({.Points = 9, .Noise = 1, .Truth = kTruth});
    FloatParameters(kRigid);
    Headless.OnYield = [] {
        if (Headless.Yields != 2) return;
        Job = JobRecord{};
        Job.TraX = 42;
        ++::Run.JobGeneration;
    };
    RunFit();
    EXPECT_TRUE(Adjustment.JobChanged);
    EXPECT_FALSE(Adjustment.Converged);
    EXPECT_EQ(Job.TraX, 42);
    EXPECT_EQ(Job.RotX, 0);
    EXPECT_EQ(Headless.Yields, 2U);
}

TEST_F(Fit, CorrectionsThatAreNoNumbersEndTheRunWithTheMessageOfTheLimit) {
    AddCloud({.Points = 9, .Truth = kTruth});
    Job.Start.X[4] = std::nan("");
    FloatParameters(kRigid);
    Settings.MaxIteration = 32767;
    RunFit();
    EXPECT_FALSE(Adjustment.Finite);
    EXPECT_FALSE(Adjustment.Converged);
    EXPECT_EQ(LastMessage(), "Calculation stopped after 32767 Iterations, Convergence not reached yet!");
}

TEST_F(Fit, CoordinatesNearTheEndOfTheRangeEndTheRun) {
    AddCloud({.Points = 9, .Truth = kTruth});
    Job.Start.X[4] = 1e308;
    Job.Target.X[5] = -1e308;
    FloatParameters(kRigid);
    FloatParameters({kScaleXYZ});
    RunFit();
    EXPECT_FALSE(Adjustment.Converged);
}

TEST_F(Fit, CoincidentPointsGiveNoFailure) {
    for (int i = 0; i < 4; ++i) AddPair({1, 2, 3}, {4, 5, 6});
    FloatParameters(kRigid);
    FloatParameters({kScaleXYZ});
    RunFit();
    EXPECT_TRUE(Adjustment.Finite);
    for (std::size_t i = 1; i < v_.size(); ++i) EXPECT_NEAR(v_[i], 0, 1e-6);
}

TEST_F(Fit, NoPairsAndNoUnknownsEndAfterOnePass) {
    RunFit();
    EXPECT_EQ(Adjustment.Iterations, 1);
    EXPECT_TRUE(Adjustment.Converged);
    AddPair({1, 2, 3}, {4, 5, 6});
    RunFit();
    EXPECT_TRUE(Adjustment.Converged);
    EXPECT_EQ(v_[1], -3);
}

TEST_F(Fit, StatusPanelsTellThePassAndItsConvergence) {
    AddCloud({.Points = 9, .Noise = 1, .Truth = kTruth});
    FloatParameters(kRigid);
    std::vector<std::string> iteration, ratio;
    Headless.OnYield = [&] {
        EXPECT_EQ(Main.StatusBar_2.Text, "... calculating Matrix for LeastSquare calc...");
        iteration.push_back(Main.StatusBar_1.Text);
        ratio.push_back(Main.StatusBar_3.Text);
    };
    RunFit();
    ASSERT_GE(iteration.size(), 3U);
    EXPECT_EQ(iteration[1], "Iteration 0");
    EXPECT_EQ(iteration[2], "Iteration 1");
    EXPECT_EQ(ratio[1], "");  // nothing to compare with after the first pass
    EXPECT_TRUE(ratio[2].starts_with("Convergence Ratio: ")) << ratio[2];
    EXPECT_EQ(Main.StatusBar_2.Text, "calculating corrections... ");
    EXPECT_TRUE(Main.StatusBar_4.Text.starts_with("on VarNumber: "));
    EXPECT_TRUE(Main.StatusBar_5.Text.starts_with("delta x(i): "));
}

TEST_F(Fit, TheClipboardIsReplacedEvenWithNothing) {
    AddCloud({.Points = 9, .Noise = 1, .Truth = kTruth});
    FloatParameters(kRigid);
    Headless.Clipboard = "the user's own";
    RunFit();
    EXPECT_EQ(Headless.Clipboard, "");
}

TEST_F(Fit, ABusyClipboardIsToldAndTheRunGoesOn) {
    AddCloud({.Points = 9, .Noise = 1, .Truth = kTruth});
    FloatParameters(kRigid);
    Headless.ClipboardRefuses = true;
    RunFit();
    EXPECT_TRUE(Adjustment.Converged);
    EXPECT_EQ(Messages().size(), static_cast<std::size_t>(Adjustment.Iterations));
    EXPECT_EQ(LastMessage(), "Clipboard coud not be set due unknown error");
}

TEST_F(Fit, StatisticsDivideByTheWeightsLessOne) {
    const Column v = {0, 1, 2, 3, -1, 0, 2, 4, 1, 100};
    const Column P = {0, 1, 1, 1, 1, 1, 1, 2, 1, 0};
    double s0 = 0, sx = 0, sy = 0, sz = 0;
    Statistics(v, P, 9, s0, sx, sy, sz);
    EXPECT_NEAR(s0, std::sqrt((1 + 4 + 9 + 1 + 0 + 4 + 32 + 1) / 8.0), 1e-9);
    EXPECT_NEAR(sx, std::sqrt((1 + 1 + 32) / 3.0), 1e-9);
    EXPECT_NEAR(sy, std::sqrt((4 + 0 + 1) / 2.0), 1e-9);
    EXPECT_NEAR(sz, std::sqrt((9 + 4) / 1.0), 1e-8);
}

TEST_F(Fit, StatisticsOfASingleWeightDoNotFail) {
    double s0 = 0, sx = 0, sy = 0, sz = 0;
    Statistics({0, 2, 0, 0}, {0, 1, 0, 0}, 3, s0, sx, sy, sz);
    // A sum of the weights of exactly 1 leaves 1e-9 as divisor.
    EXPECT_NEAR(s0, 2 / std::sqrt(1e-9), 1);
    EXPECT_NEAR(sy, 0, 1e-12);
    Statistics({0, 2, 0, 0}, {0, 0.5, 0, 0}, 3, s0, sx, sy, sz);
    EXPECT_EQ(s0, 0);
    EXPECT_NEAR(sx, std::sqrt(2 / 0.5), 1e-6);  // the axes take the absolute value instead
}
