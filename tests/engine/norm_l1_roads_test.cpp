// L1 by one pass a round over the points' moments against the road of rows: the same rounds, the same
// result, and the same state for whoever looks on.
#include "cli/headless.h"
#include "core/form_main.h"
#include "core/run.h"
#include "core/units.h"
#include "engine/fit_job.h"
#include "engine/norm_job.h"
#include "engine/selection.h"
#include "engine/transform.h"

using namespace corvinade;

namespace {

struct RoadResult {
    std::array<double, kParameterEnd> Parameters{};
    Column v, P;
    Matrix Q;
    int Rounds = 0, Passes = 0;
    bool Converged = false;
    std::uint64_t Yields = 0;
    double Sum = 0;
};

}  // namespace

class L1Roads : public NormTest {
protected:
    static RoadResult FitBy(bool rows) {
        RoadResult result;
        const std::uint64_t yields = Headless.Yields;
        Job.NormType = kL1;
        NormFit fit{.u = CountUnknowns(Job.ParamText), .n = 3 * Job.Pairs(), .ParamText = Job.ParamText};
        fit.P.assign(Job.UseFlags.begin(), Job.UseFlags.end());
        fit.Points.ByRows = rows;
        EXPECT_TRUE(FitInNorm(fit));
        for (int k = 1; k < kParameterEnd; ++k)
            result.Parameters[static_cast<std::size_t>(k)] = ParameterValue(Job, k);
        result.v = fit.v;
        result.P = fit.P;
        result.Q = fit.Q;
        result.Rounds = Norm.Iterations;
        result.Passes = Adjustment.Iterations;
        result.Converged = Norm.Converged;
        result.Yields = Headless.Yields - yields;
        for (std::size_t i = 1; i < fit.v.size(); ++i)
            if (Job.UseFlags[i] != 0) result.Sum += std::fabs(fit.v[i]);
        return result;
    }

    static RoadResult Rows, Moments;
    static void FitByBoth() {
        Rows = FitBy(true);
        Moments = FitBy(false);
        EXPECT_TRUE(Rows.Converged);
        EXPECT_TRUE(Moments.Converged);
        EXPECT_EQ(Moments.Rounds, Rows.Rounds);
    }

    // With weights of a few orders.
    static void ExpectTheSame(double relative = 1e-11) {
        FitByBoth();
        EXPECT_EQ(Moments.Passes, Rows.Passes);
        EXPECT_EQ(Moments.Yields, Rows.Yields);
        for (std::size_t k = 1; k < Rows.Parameters.size(); ++k)
            EXPECT_NEAR(Moments.Parameters[k], Rows.Parameters[k],
                        relative * std::max(1.0, std::fabs(Rows.Parameters[k])))
                << "parameter " << k;
        for (std::size_t i = 1; i < Rows.v.size(); ++i) {
            EXPECT_NEAR(Moments.v[i], Rows.v[i], 1000 * relative) << "v " << i;
            EXPECT_EQ(Moments.P[i], Rows.P[i] == 0 ? 0 : 1 / (1e-12 + std::fabs(Moments.v[i]))) << i;
        }
    }

    // Where rows fit exactly their weights hang on the last digits of their residuals, and the rule of the
    // stop leaves the last of the sum open.
    static void ExpectTheSameSum() {
        FitByBoth();
        EXPECT_NEAR(Moments.Sum, Rows.Sum, 1e-6);
        for (std::size_t i = 1; i < Rows.v.size(); ++i)
            EXPECT_EQ(Moments.P[i], Rows.P[i] == 0 ? 0 : 1 / (1e-12 + std::fabs(Moments.v[i]))) << i;
    }
};
RoadResult L1Roads::Rows;
RoadResult L1Roads::Moments;

namespace {}  // namespace

TEST_F(L1Roads, AgreeForSixSevenNineAndTwelveParameters) {
    for (const int parameters : {6, 7, 9, 12}) {
        SCOPED_TRACE(parameters);
        Job = JobRecord{};
        BeginFit();
        AddCloud({.Points = 61, .Noise = 0.3, .Truth = parameters == 12 ? kSkewed : kTruth});
        FloatParameters(kRigid);
        if (parameters == 7) FloatParameters({kScaleXYZ});
        if (parameters >= 9) FloatParameters({kScaleX, kScaleY, kScaleZ});
        if (parameters == 12) FloatParameters({kAngleXY, kAzimuth, kAngleZtoXY});
        ExpectTheSame();
    }
}

TEST_F(L1Roads, AgreeAMillionMillimetresFromTheOrigin) {
    AddCloud({.Points = 80, .Centre = {1e6, -2e6, 1e5}, .Noise = 0.05, .Truth = kTruth});
    FloatParameters(kRigid);
    FloatParameters({kScaleXYZ});
    ExpectTheSameSum();
}

TEST_F(L1Roads, AgreeForMoreThanABlockOfPoints) {
    AddCloud({.Points = 1203, .Noise = 0.5, .Truth = kSkewed});
    FloatParameters(kRigid);
    FloatParameters({kScaleX, kScaleY, kScaleZ, kAngleXY, kAzimuth, kAngleZtoXY});
    ExpectTheSameSum();
}

TEST_F(L1Roads, AgreeWithCoordinatesOutOfUseAndParametersHeld) {
    AddCloud({.Points = 47, .Noise = 0.2, .Truth = kTruth});
    for (const std::size_t row : {2, 3, 7, 22, 23, 24, 50, 141}) Job.UseFlags[row] = 0;
    FloatParameters({kTraX, kTraZ, kRotX, kRotY, kRotZ});
    Job.ParamText[kTraY] = "-199.5";
    ExpectTheSame();
}

TEST_F(L1Roads, AgreeForPlanarSets) {
    for (const double tilt : {0.0, 0.5}) {
        SCOPED_TRACE(tilt);
        Job = JobRecord{};
        BeginFit();
        for (int i = 0; i < 40; ++i) {
            const double x = 500 * NextNumber(), y = 500 * NextNumber();
            const reference::Point start = {x, y, tilt * (x + 0.6 * y)};
            reference::Point target = reference::Image(kTruth, start);
            for (auto& coordinate : target) coordinate += 0.1 * NextNumber();
            AddPair(start, target);
        }
        FloatParameters(kRigid);
        ExpectTheSame();
    }
}

TEST_F(L1Roads, AgreeInTheToolModel) {
    // Poses turned all ways; the targets are the images less the tool vector in the pose's frame.
    const double tool[3] = {120, -40, 260};
    Job.RobotABC = Matrix(50, 3);
    for (int i = 1; i <= 50; ++i) {
        for (int k = 1; k <= 3; ++k) Job.RobotABC(i, k) = 1.5 * NextNumber();
        const reference::Point start = {500 * NextNumber(), 500 * NextNumber(), 500 * NextNumber()};
        reference::Point target = reference::Image(kTruth, start);
        Mat3 G;
        RotMatrixXYZ(-Job.RobotABC(i, 3), -Job.RobotABC(i, 2), -Job.RobotABC(i, 1), G);
        for (int row = 1; row <= 3; ++row)
            for (int k = 1; k <= 3; ++k)
                target[static_cast<std::size_t>(row - 1)] += G(row, k) * tool[k - 1] + 0.1 * NextNumber();
        AddPair(start, target);
    }
    Job.AngleUnitName = "degree";
    FloatParameters(kRigid);
    FloatParameters({kRvecX, kRvecY, kRvecZ});
    Selection.CheckUseABC = true;
    Job.UseFlags[5] = Job.UseFlags[12] = 0;
    ExpectTheSame();
    EXPECT_NEAR(Job.Rvec_z, 260, 0.1);
}

TEST_F(L1Roads, AgreeToWhatTheStopLeavesOpenWhereMostRowsFitExactly) {
    // The good rows come to weights of 1e12, the outliers have some hundredths.
    for (const double far : {0.0, 1e6}) {
        SCOPED_TRACE(far);
        Job = JobRecord{};
        BeginFit();
        AddCloud({.Points = 20, .Centre = {far, -2 * far, far / 10}, .Truth = kTruth});
        for (const std::size_t k : {3, 11, 17}) {
            Job.Target.X[k] = *Job.Target.X[k] + 50.0 * static_cast<double>(k);
            Job.Target.Z[k] -= 7;
        }
        FloatParameters(kRigid);
        ExpectTheSameSum();
    }
}

TEST_F(L1Roads, AreNoWorseByMomentsWhereHeavyRowsLeaveAnUnknownToLightOnes) {
    // Six points on a line fit exactly and say nothing about the turn about it; the others, far from
    // fitting, say all of it. Weights of 1e12 and of some hundredths leave the normal matrix no digit for
    // that turn.
    for (int i = 0; i < 6; ++i) {
        const reference::Point start = {100.0 * i, 200.0 * i, -150.0 * i};
        AddPair(start, reference::Image(kTruth, start));
    }
    for (int i = 0; i < 5; ++i) {
        const reference::Point start = {300 * NextNumber(), 300 * NextNumber(), 300 * NextNumber()};
        reference::Point target = reference::Image(kTruth, start);
        for (auto& coordinate : target) coordinate += 30 * NextNumber();
        AddPair(start, target);
    }
    FloatParameters(kRigid);
    const RoadResult rows = FitBy(true), moments = FitBy(false);
    EXPECT_LE(moments.Sum, rows.Sum + 1e-3);
}

TEST_F(L1Roads, AgreeForThinSets) {
    for (int i = 0; i < 20; ++i) {
        const double along = 500 * NextNumber(), y = 2 * NextNumber(), z = 2 * NextNumber();
        const reference::Point start = {along, along + y, along + z};
        reference::Point target = reference::Image(kTruth, start);
        for (auto& coordinate : target) coordinate += 0.05 * NextNumber();
        AddPair(start, target);
    }
    FloatParameters(kRigid);
    FitByBoth();
    EXPECT_NEAR(Moments.Sum, Rows.Sum, 1e-6);
}

TEST_F(L1Roads, ALineOfPointsHasAnUnknownThatNoRoadFinds) {
    for (int i = 0; i < 12; ++i) {
        const reference::Point start = {100.0 * i, 200.0 * i, -150.0 * i};
        reference::Point target = reference::Image(kTruth, start);
        for (auto& coordinate : target) coordinate += 0.1 * NextNumber();
        AddPair(start, target);
    }
    FloatParameters(kRigid);
    // Whether the last of the fits comes to rest is a matter of rounding: the turn about the line is open.
    // The sums do not depend on it.
    const RoadResult rows = FitBy(true), moments = FitBy(false);
    EXPECT_NEAR(moments.Sum, rows.Sum, 1e-2);
}

TEST_F(L1Roads, ShowTheSamePanelsAndTrace) {
    AddCloud({.Points = 33, .Noise = 0.3, .Truth = kTruth});
    FloatParameters(kRigid);
    Units.LengthFactor = 0.001;
    const auto shown = [](bool rows) {
        FitBy(rows);
        return std::vector<std::string>{Main.StatusBar_1.Text, Main.StatusBar_2.Text, Main.StatusBar_4.Text,
                                        Main.StatusBar_6.Text, Main.StatusBar_7.Text.substr(0, 9)};
    };
    EXPECT_EQ(shown(false), shown(true));
}
