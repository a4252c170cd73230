// Fits of points that determine nothing, that are no numbers, or that change under the calculation.
#include <cmath>
#include <limits>

#include "cli/headless.h"
#include "core/run.h"
#include "core/settings.h"
#include "engine/adjustment.h"
#include "engine/calculation.h"
#include "engine/calculation_window.h"
#include "engine/design.h"
#include "engine/fit_job.h"
#include "engine/selection.h"
#include "support/fixture.h"

using namespace corvinade;

class HostileFit : public Program {
protected:
    HostileFit() { BeginFit(); }

    void RunFit() {
        P_ = Column(Job.UseFlags.begin(), Job.UseFlags.end());
        BestFitIteration(CountUnknowns(Job.ParamText), 3 * Job.Pairs(), Job.ParamText, Q_, v_, P_);
    }
    // Pairs whose targets lie at the distance 50 from their start points, in all directions.
    static void AddPairsAtDistanceFifty(int pairs) {
        for (int i = 0; i < pairs; ++i) {
            const reference::Point start = {500 * NextNumber(), 500 * NextNumber(), 500 * NextNumber()};
            const double a = 4 * NextNumber(), b = 1.5 * NextNumber();
            AddPair(start, {start[0] + 50 * std::cos(b) * std::cos(a),
                            start[1] + 50 * std::cos(b) * std::sin(a), start[2] + 50 * std::sin(b)});
        }
    }
    static void LeaveOutLastPair() {
        const auto last = static_cast<std::size_t>(3 * Job.Pairs());
        Job.UseFlags[last - 2] = Job.UseFlags[last - 1] = Job.UseFlags[last] = 0;
    }

    Matrix Q_;
    Column v_, P_;
};

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

}  // namespace

TEST_F(HostileFit, ACoordinateOutOfUseThatIsNoNumberChangesNothing) {
    // The target's coordinate enters the observation alone, and that takes no part.
    for (const double bad : {std::nan(""), kInfinity, 1e300}) {
        Job = JobRecord{};
        BeginFit();
        AddCloud({.Points = 9, .Truth = kTruth});
        Job.Target.Y[5] = bad;
        Job.UseFlags[3 * 4 + 2] = 0;
        FloatParameters(kRigid);
        RunFit();
        EXPECT_TRUE(Adjustment.Converged) << bad;
        EXPECT_NEAR(Job.TraX, 100, 1e-9) << bad;
        EXPECT_NEAR(Job.RotZ, 2.1, 1e-12) << bad;
        EXPECT_NEAR(v_[1], 0, 1e-9) << bad;
    }
}

TEST_F(HostileFit, TheCentreLiesInTheCloudWhicheverPairsAreOutOfUse) {
    // Of many points only every so many are asked for the centre; here it is just these that are out.
    AddCloud({.Points = 8192, .Centre = {1e6, -2e6, 3e6}, .Truth = kTruth});
    for (std::size_t i = 0; i < 8192; i += 2)
        for (std::size_t axis = 1; axis <= 3; ++axis) Job.UseFlags[3 * i + axis] = 0;
    GatheredPoints points;
    GatherPoints(Column(Job.UseFlags.begin(), Job.UseFlags.end()), false, points);
    EXPECT_NEAR(points.StartCentre(1), 1e6, 50);
    EXPECT_NEAR(points.StartCentre(2), -2e6, 50);
    EXPECT_NEAR(points.StartCentre(3), 3e6, 50);
}

TEST_F(HostileFit, AGrossTargetCoordinateOutOfUseDoesNotMoveTheCentre) {
    AddCloud({.Points = 9, .Truth = kTruth});
    Job.Target.Y[5] = 1e12;
    Job.UseFlags[3 * 4 + 2] = 0;
    GatheredPoints points;
    GatherPoints(Column(Job.UseFlags.begin(), Job.UseFlags.end()), false, points);
    EXPECT_LT(std::fabs(points.TargetCentre(2)), 1000);
}

TEST_F(HostileFit, APairOutOfUseOnItsTargetLeavesTheDistancesQualityANumber) {
    AddPairsAtDistanceFifty(20);
    AddPair({7, 8, 9}, {7, 8, 9});
    LeaveOutLastPair();
    FloatParameters({kRDist});
    Selection.CheckRDist = true;
    ButtonCalcErsatz();
    EXPECT_TRUE(Calculation.Converged);
    EXPECT_NEAR(Job.RDist, 50, 1e-9);
    for (std::size_t i = 1; i <= 20; ++i) EXPECT_NEAR(Calculation.v[i], 0, 1e-9);
    EXPECT_NEAR(Calculation.v[21], 50, 1e-9);  // the distance found, less its own of 0
    EXPECT_TRUE(std::isfinite(Calculation.s0));
    EXPECT_TRUE(std::isfinite(Calculation.Sigma[kRDist]));
}

TEST_F(HostileFit, APairOutOfUseAtTheEndOfTheRangeDoesNotSpoilTheDistances) {
    AddPairsAtDistanceFifty(20);
    AddPair({7, 8, 9}, {1e200, -1e200, 0});
    LeaveOutLastPair();
    Job.ParamText[kRDist] = "50";
    FloatParameters({kTraX});
    RunFit();
    EXPECT_TRUE(Adjustment.Converged);
    EXPECT_NEAR(Job.TraX, 0, 1e-9);
}

TEST_F(HostileFit, APairInUseOnItsTargetHasNoDirectionAndTheRunEnds) {
    AddPairsAtDistanceFifty(20);
    AddPair({7, 8, 9}, {7, 8, 9});
    Job.ParamText[kRDist] = "50";
    FloatParameters({kRDist});
    FloatParameters({kTraX});
    Job.ParamText[kRDist] = "50";
    Selection.DialogOpen = Selection.Float[kTraX] = Selection.Seed[kTraX] = true;
    Selection.FieldText.fill(kNotUsed);
    Selection.SeedText[kTraX] = "0";
    RunFit();
    EXPECT_FALSE(Adjustment.Converged);
    EXPECT_EQ(LastMessage(), "Calculation stopped after 100 Iterations, Convergence not reached yet!");
}

TEST_F(HostileFit, NoWeightAtAllLeavesTheStartValues) {
    AddCloud({.Points = 9, .Truth = kTruth});
    for (std::size_t k = 1; k < Job.UseFlags.size(); ++k) Job.UseFlags[k] = 0;
    FloatParameters(kRigid);
    RunFit();
    EXPECT_TRUE(Adjustment.Converged);
    EXPECT_EQ(Adjustment.Iterations, 1);
    EXPECT_NEAR(Job.TraX, 100, 1e-4);        // the raw solution
    EXPECT_NEAR(Q_(4, 4), 1 / 1e-12, 1e-3);  // nothing but the constant of the pivots
    double s0 = 1, sx = 1, sy = 1, sz = 1;
    Statistics(v_, P_, 27, s0, sx, sy, sz);
    for (const double none : {s0, sx, sy, sz}) EXPECT_EQ(none, 0);
}

TEST_F(HostileFit, OneAndTwoPairsWithEveryParameterEndByThemselves) {
    for (int pairs = 0; pairs < 3; ++pairs) {
        FloatParameters(kRigid);
        FloatParameters({kScaleX, kScaleY, kScaleZ, kScaleXYZ, kAngleXY, kAzimuth, kAngleZtoXY, kRDist,
                         kRvecX, kRvecY, kRvecZ});
        for (const bool distance : {false, true})
            for (const bool tool : {false, true}) {
                Selection.CheckRDist = distance;
                Selection.CheckUseABC = tool;
                RunFit();
                EXPECT_LE(Adjustment.Iterations, 101);
                EXPECT_EQ(UpperBound(v_), 3 * pairs);
            }
        AddPair({100.0L * pairs, 3, 5}, {1, 100.0L * pairs, 6});
    }
}

TEST_F(HostileFit, HugeAndInfiniteCoordinatesEndTheRunInEveryMode) {
    for (const double bad : {1e154, 1e300, -1.7e308, kInfinity, std::nan("")})
        for (const int mode : {0, 1, 2}) {
            Job = JobRecord{};
            BeginFit();
            AddCloud({.Points = 9, .Truth = kTruth});
            Job.RobotABC = Matrix(9, 3);
            Job.RobotABC(3, 2) = bad;
            Job.Start.Z[2] = bad;
            Job.Target.X[7] = -bad;
            Selection.CheckRDist = mode == 1;
            Selection.CheckUseABC = mode == 2;
            FloatParameters(kRigid);
            FloatParameters({kScaleXYZ});
            if (mode == 1) FloatParameters({kRDist});
            if (mode == 2) FloatParameters({kRvecX, kRvecY, kRvecZ});
            ButtonCalcErsatz();
            EXPECT_LE(Adjustment.Iterations, 101) << bad << ", " << mode;
            EXPECT_TRUE(std::isfinite(bad) || !Calculation.Finite) << bad << ", " << mode;
        }
}

TEST_F(HostileFit, AHeldValueBeyondTheRangeIsNoResult) {
    AddCloud({.Points = 9, .Truth = kTruth});
    Job.ParamText[kTraX] = "1e999";
    ButtonCalcErsatz();
    EXPECT_FALSE(Calculation.Finite);
    EXPECT_EQ(::Run.TrafoValid, kFalse);
}

TEST_F(HostileFit, AChoiceThatChangesDuringTheRunCountsFromTheNextOneOn) {
    AddCloud({.Points = 9, .Noise = 0.1, .Truth = kTruth});
    FloatParameters(kRigid);
    Headless.OnYield = [] {
        if (Headless.Yields != 3) return;
        FloatParameters({kScaleX, kScaleY, kScaleZ, kAngleXY, kAzimuth, kAngleZtoXY});
        Selection.CheckRDist = Selection.CheckUseABC = true;
    };
    ButtonCalcErsatz();
    EXPECT_TRUE(Calculation.Converged);
    EXPECT_EQ(Calculation.nFloat, 6);
    EXPECT_GT(Calculation.Sigma[kRotZ], 0);
    for (const int parameter : {kScaleX, kScaleY, kScaleZ, kAngleXY, kAzimuth, kAngleZtoXY})
        EXPECT_EQ(Calculation.Sigma[static_cast<std::size_t>(parameter)], 0) << parameter;
    EXPECT_EQ(Job.RDist, 0);
    // The pairs are their targets plus the residuals, as without a distance.
    EXPECT_EQ(*Job.Transformed.X[2], *Job.Target.X[2] + Calculation.v[4]);
    EXPECT_EQ(Headless.Clipboard, "");
}

TEST_F(HostileFit, AStopEndsOneCalculationAndNotTheNext) {
    AddCloud({.Points = 9, .Noise = 1, .Truth = kTruth});
    FloatParameters(kRigid);
    Headless.OnYield = [] {
        if (Headless.Yields == 2) ::Run.StopRequested = kTrue;
    };
    myButtonCalculate();
    EXPECT_FALSE(Calculation.Converged);
    EXPECT_EQ(Adjustment.Iterations, 1);
    EXPECT_EQ(::Run.StopRequested, kFalse);
    myButtonCalculate();
    EXPECT_TRUE(Calculation.Converged);
}
