// The road by moments against the road by rows: the same fit to the last digits that the data hold.
#include "engine/moments.h"

#include <cmath>

#include "cli/headless.h"
#include "engine/adjustment.h"
#include "engine/fit_job.h"
#include "support/fixture.h"

namespace {

struct Result {
    std::array<double, kParameterEnd> Parameters{};
    Matrix Q;
    Column v;
    int Passes = 0;
    bool Converged = false;
};

}  // namespace

class MomentRoad : public Program {
protected:
    MomentRoad() { BeginFit(); }

    static Result FitBy(bool rows, const Column& weights) {
        Result result;
        Column P = weights;
        GatheredPoints points;
        EXPECT_TRUE(GatherForFit(P, points));
        points.ByRows = rows;
        BestFitIteration(CountUnknowns(Job.ParamText), 3 * Job.nIdent, Job.ParamText, result.Q, result.v, P,
                         points);
        for (int k = 1; k < kParameterEnd; ++k)
            result.Parameters[static_cast<std::size_t>(k)] = ParameterValue(Job, k);
        result.Passes = Adjustment.Iterations;
        result.Converged = Adjustment.Converged;
        return result;
    }

    // Compares the roads; `relative` of each figure, of residuals of the cloud's size 1000 mm.
    static void ExpectTheSame(double relative = 1e-11) {
        Column P(Job.UseFlags.begin(), Job.UseFlags.end());
        const Result rows = FitBy(true, P);
        const Result moments = FitBy(false, P);
        EXPECT_TRUE(rows.Converged);
        EXPECT_TRUE(moments.Converged);
        EXPECT_EQ(moments.Passes, rows.Passes);
        for (std::size_t k = 1; k < rows.Parameters.size(); ++k)
            EXPECT_NEAR(moments.Parameters[k], rows.Parameters[k],
                        relative * std::max(1.0, std::fabs(rows.Parameters[k])))
                << "parameter " << k;
        const int u = CountUnknowns(Job.ParamText);
        for (int i = 1; i <= u; ++i)
            for (int j = 1; j <= u; ++j)
                EXPECT_NEAR(moments.Q(i, j), rows.Q(i, j),
                            10 * relative * std::sqrt(rows.Q(i, i) * rows.Q(j, j)))
                    << "Q " << i << ", " << j;
        for (std::size_t i = 1; i < rows.v.size(); ++i)
            EXPECT_NEAR(moments.v[i], rows.v[i], 1000 * relative) << "v " << i;
    }
    static void FloatTwelve() {
        FloatParameters(kRigid);
        FloatParameters({kScaleX, kScaleY, kScaleZ, kAngleXY, kAzimuth, kAngleZtoXY});
    }
};

namespace {
const std::array<reference::Real, 18> kTruth = Truth({100, -200, 300, 0.4, -0.7, 2.1, 1, 1, 1, 1});
const std::array<reference::Real, 18> kSkewed =
    Truth({100, -200, 300, 0.4, -0.7, 2.1, 1.1, 0.9, 1.2, 1, 0.02, 0.6, 0.03});
}  // namespace

TEST_F(MomentRoad, AgreesForSixSevenNineAndTwelveParameters) {
    for (const int parameters : {6, 7, 9, 12}) {
        SCOPED_TRACE(parameters);
        Job = JobRecord{};
        BeginFit();
        AddCloud({.Points = 23, .Noise = 0.3, .Truth = parameters == 12 ? kSkewed : kTruth});
        if (parameters == 12) {
            FloatTwelve();
        } else {
            FloatParameters(kRigid);
        }
        if (parameters == 7) FloatParameters({kScaleXYZ});
        if (parameters == 9) FloatParameters({kScaleX, kScaleY, kScaleZ});
        ExpectTheSame();
    }
}

TEST_F(MomentRoad, AgreesAMillionMillimetresFromTheOrigin) {
    AddCloud({.Points = 40, .Centre = {1e6, -2e6, 1e5}, .Noise = 0.05, .Truth = kTruth});
    FloatParameters(kRigid);
    FloatParameters({kScaleXYZ});
    ExpectTheSame();
}

TEST_F(MomentRoad, AgreesForMoreThanABlockOfPoints) {
    for (const int points : {512, 513, 1200}) {
        SCOPED_TRACE(points);
        Job = JobRecord{};
        BeginFit();
        AddCloud({.Points = points, .Centre = {5e5, 0, 0}, .Noise = 0.5, .Truth = kSkewed});
        FloatTwelve();
        ExpectTheSame();
    }
}

TEST_F(MomentRoad, AgreesForPlanarSets) {
    // In the plane z = 0 and in one that is tilted against all axes.
    for (const double tilt : {0.0, 0.5}) {
        Job = JobRecord{};
        BeginFit();
        for (int i = 0; i < 15; ++i) {
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

TEST_F(MomentRoad, AgreesForThinSets) {
    // A metre long and a few millimetres wide, along an axis and across all three.
    for (const bool across : {false, true}) {
        SCOPED_TRACE(across);
        Job = JobRecord{};
        BeginFit();
        for (int i = 0; i < 20; ++i) {
            const double along = 500 * NextNumber(), y = 2 * NextNumber(), z = 2 * NextNumber();
            const reference::Point start =
                across ? reference::Point{along, along + y, along + z} : reference::Point{along, y, z};
            reference::Point target = reference::Image(kTruth, start);
            for (auto& coordinate : target) coordinate += 0.001 * NextNumber();
            AddPair(start, target);
        }
        FloatParameters(kRigid);
        // The products of either road lose what the square of the proportions, 6e4, takes.
        ExpectTheSame(1e-10);
    }
}

TEST_F(MomentRoad, AgreesWithCoordinatesOutOfUseAndParametersHeld) {
    AddCloud({.Points = 17, .Noise = 0.2, .Truth = kTruth});
    for (const std::size_t row : {2, 3, 7, 22, 23, 24, 50}) Job.UseFlags[row] = 0;
    FloatParameters({kTraX, kTraZ, kRotX, kRotY, kRotZ});
    Job.ParamText[kTraY] = "-199.5";
    ExpectTheSame();
}

TEST_F(MomentRoad, AgreesAfterStartValuesFarOff) {
    // Seed points that are knocked: the start is hundreds of millimetres and many degrees away.
    AddCloud({.Points = 30, .Noise = 0.1, .Truth = kTruth});
    for (int i = 1; i <= 3; ++i) Job.SeedIndex[static_cast<std::size_t>(i)] = static_cast<std::int16_t>(i);
    Job.OCS_X[1] = *Job.OCS_X[1] + 400;
    Job.OCS_Z[2] -= 300;
    for (std::size_t row = 1; row <= 6; ++row) Job.UseFlags[row] = 0;
    FloatParameters(kRigid);
    ExpectTheSame();
}

TEST_F(MomentRoad, AgreesWithLargeResiduals) {
    AddCloud({.Points = 25, .Noise = 40, .Truth = kTruth});
    FloatParameters(kRigid);
    ExpectTheSame();
}

TEST_F(MomentRoad, TheSumsAreTheSameOnEveryInstructionSet) {
    AddCloud({.Points = 700, .Centre = {1e6, 0, 0}, .Noise = 1, .Truth = kTruth});
    FloatParameters(kRigid);
    for (const bool weighted : {false, true}) {
        Column P(Job.UseFlags.begin(), Job.UseFlags.end());
        if (weighted)
            for (std::size_t i = 1; i < P.size(); i += 5) P[i] = 0;
        GatheredPoints points;
        GatherPoints(P, false, points);
        SetWeights(P, points);
        const Linearisation at = Linearise(ChooseModel(Job.ParamText), points);
        PointMoments two;
        SumMoments(points, at, VectorWidth::Two, two);
        for (const VectorWidth width : {VectorWidth::Four, VectorWidth::Eight}) {
            if (width > WidestVectors()) continue;
            PointMoments wide;
            SumMoments(points, at, width, wide);
            EXPECT_EQ(wide.B, two.B);
            EXPECT_EQ(wide.m, two.m);
        }
    }
}

TEST_F(MomentRoad, TheSumsAreThoseOfPlainLoops) {
    AddCloud({.Points = 21, .Noise = 1, .Truth = kTruth});
    FloatParameters(kRigid);
    Column P(Job.UseFlags.begin(), Job.UseFlags.end());
    for (const bool weighted : {false, true}) {
        if (weighted) P[4] = P[9] = P[60] = 0;
        GatheredPoints points;
        GatherPoints(P, false, points);
        SetWeights(P, points);
        const Linearisation at = Linearise(ChooseModel(Job.ParamText), points);
        PointMoments moments;
        SumMoments(points, at, moments);
        for (int axis = 1; axis <= 3; ++axis) {
            const auto a = static_cast<std::size_t>(axis);
            long double B[4][4] = {}, m[4] = {};
            for (std::size_t i = 0; i < 21; ++i) {
                const long double p[4] = {1, points.Start[0][i], points.Start[1][i], points.Start[2][i]};
                long double l = points.Target[a - 1][i] - at.Shift(axis);
                for (int j = 1; j <= 3; ++j) l -= at.M(axis, j) * p[j];
                for (int r = 0; r < 4; ++r) {
                    m[r] += P[3 * i + a] * l * p[r];
                    for (int c = 0; c < 4; ++c) B[r][c] += P[3 * i + a] * p[r] * p[c];
                }
            }
            for (std::size_t r = 0; r < 4; ++r) {
                EXPECT_NEAR(moments.m[a][r], static_cast<double>(m[r]), 1e-7);  // of terms near 1e6
                for (std::size_t c = 0; c < 4; ++c)
                    EXPECT_NEAR(moments.B[a][r][c], static_cast<double>(B[r][c]),
                                1e-15 * 21 * (r == 0 ? 1 : 500) * (c == 0 ? 1 : 500));
            }
        }
    }
}

TEST_F(MomentRoad, HowFarThePointsHaveMovedIsAShareOfTheCloud) {
    AddCloud({.Points = 50, .Truth = kTruth});
    FloatParameters(kRigid);
    const Column P(Job.UseFlags.begin(), Job.UseFlags.end());
    GatheredPoints points;
    GatherPoints(P, false, points);
    SetWeights(P, points);
    Linearisation at = Linearise(ChooseModel(Job.ParamText), points);
    PointMoments moments;
    SumMoments(points, at, moments);
    EXPECT_EQ(MovedSince(at, moments), 0);
    at.Shift(2) += 3;  // the cloud is 1000 wide: its points lie some 290 from the centre along each axis
    EXPECT_NEAR(MovedSince(at, moments), 3.0 / 290, 0.3 * 3.0 / 290);
}
