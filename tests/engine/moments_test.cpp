// The road by moments against the road by rows: the same fit to the last digits that the data hold.
#include "fit/moments.h"

#include <cmath>

#include "cli/headless.h"
#include "engine/adjustment.h"
#include "engine/design.h"
#include "engine/fit_job.h"
#include "engine/selection.h"
#include "engine/start_values.h"
#include "engine/transform.h"
#include "fit/normal_equations.h"
#include "support/fixture.h"

using namespace corvinade;

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
        BestFitIteration(CountUnknowns(Job.ParamText), 3 * Job.Pairs(), Job.ParamText, result.Q, result.v, P,
                         points);
        for (int k = 1; k < kParameterEnd; ++k)
            result.Parameters[static_cast<std::size_t>(k)] = ParameterValue(Job, k);
        result.Passes = Adjustment.Iterations;
        result.Converged = Adjustment.Converged;
        return result;
    }

    // Compares the roads; `relative` of each figure, of residuals of the cloud's size 1000 mm. Far from the
    // origin the last digits of the shift are as large as the threshold, and may ask for a pass more.
    static void ExpectTheSame(double relative = 1e-11, int passes = 0) {
        Column P(Job.UseFlags.begin(), Job.UseFlags.end());
        const Result rows = FitBy(true, P);
        const Result moments = FitBy(false, P);
        EXPECT_TRUE(rows.Converged);
        EXPECT_TRUE(moments.Converged);
        EXPECT_NEAR(moments.Passes, rows.Passes, passes);
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
    // Poses turned by up to `most` rad about each axis.
    static void AddPoses(double most = 1.5) {
        Job.RobotABC = Matrix(Job.Pairs(), 3);
        for (int i = 1; i <= Job.Pairs(); ++i)
            for (int k = 1; k <= 3; ++k) Job.RobotABC(i, k) = most * NextNumber();
    }
    static void FloatTwelve() {
        FloatParameters(kRigid);
        FloatParameters({kScaleX, kScaleY, kScaleZ, kAngleXY, kAzimuth, kAngleZtoXY});
    }
};

namespace {}  // namespace

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
    Job.Target.X[1] = *Job.Target.X[1] + 400;
    Job.Target.Z[2] -= 300;
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
    AddPoses();
    FloatParameters(kRigid);
    for (int kind = 0; kind < 8; ++kind) {
        SCOPED_TRACE(kind);
        const bool weighted = (kind & 1) != 0;
        Column P(Job.UseFlags.begin(), Job.UseFlags.end());
        if (weighted)
            for (std::size_t i = 1; i < P.size(); i += 5) P[i] = 0;
        GatheredPoints points;
        GatherPoints(P, true, points);
        SetWeights(P, points);
        Linearisation at = Linearise(ChooseModel(Job.ParamText), points);
        at.Tool = {3, 4, 5};
        MomentPass pass{.Tool = (kind & 2) != 0, .Reweighted = (kind & 4) != 0, .Width = VectorWidth::Two};
        PointMoments two;
        SumMoments(points, at, pass, two);
        for (const VectorWidth width : {VectorWidth::Four, VectorWidth::Eight}) {
            if (width > WidestVectors()) continue;
            PointMoments wide;
            pass.Width = width;
            SumMoments(points, at, pass, wide);
            EXPECT_EQ(wide.B, two.B);
            EXPECT_EQ(wide.m, two.m);
            EXPECT_EQ(wide.AbsoluteSum, two.AbsoluteSum);
        }
    }
}

TEST_F(MomentRoad, TheSumsAreThoseOfPlainLoops) {
    AddCloud({.Points = 21, .Noise = 1, .Truth = kTruth});
    AddPoses();
    FloatParameters(kRigid);
    for (int kind = 0; kind < 8; ++kind) {
        SCOPED_TRACE(kind);
        Column P(Job.UseFlags.begin(), Job.UseFlags.end());
        if ((kind & 1) != 0) P[4] = P[9] = P[60] = 0;
        const MomentPass pass{.Tool = (kind & 2) != 0, .Reweighted = (kind & 4) != 0};
        GatheredPoints points;
        GatherPoints(P, true, points);
        SetWeights(P, points);
        Linearisation at = Linearise(ChooseModel(Job.ParamText), points);
        if (pass.Tool) at.Tool = {3, -4, 5};
        PointMoments moments;
        SumMoments(points, at, pass, moments);
        EXPECT_EQ(moments.Places, pass.Tool ? 7 : 4);
        long double absolute = 0;
        for (int axis = 1; axis <= 3; ++axis) {
            const auto a = static_cast<std::size_t>(axis);
            long double B[7][7] = {}, m[7] = {}, of[7][7] = {};
            for (std::size_t i = 0; i < 21; ++i) {
                const long double p[7] = {
                    1,
                    points.Start[0][i],
                    points.Start[1][i],
                    points.Start[2][i],
                    points.Pose[3 * a - 3][i],
                    points.Pose[3 * a - 2][i],
                    points.Pose[3 * a - 1][i],
                };
                long double l = points.Target[a - 1][i] - at.Shift(axis);
                for (int j = 1; j <= 3; ++j) l -= at.M(axis, j) * p[j] + at.Tool(j) * p[3 + j];
                long double w = P[3 * i + a];
                if (pass.Reweighted && w != 0) {
                    w = 1 / (1e-12L + std::fabs(l));
                    absolute += std::fabs(l);
                }
                for (int r = 0; r < moments.Places; ++r) {
                    m[r] += w * l * p[r];
                    for (int c = 0; c < moments.Places; ++c) {
                        B[r][c] += w * p[r] * p[c];
                        of[r][c] += std::fabs(w * p[r] * p[c]);
                    }
                }
            }
            // An observation is right to 1e-13 of coordinates near 500, and so are the weights of small ones.
            const double share = pass.Reweighted ? 1e-11 : 1e-15;
            for (std::size_t r = 0; r < 7; ++r) {
                EXPECT_NEAR(moments.m[a][r], static_cast<double>(m[r]), 1e-7);  // of terms near 1e6
                for (std::size_t c = 0; c < 7; ++c)
                    EXPECT_NEAR(moments.B[a][r][c], static_cast<double>(B[r][c]),
                                share * static_cast<double>(of[r][c]))
                        << r << ", " << c;
            }
        }
        EXPECT_NEAR(moments.AbsoluteSum, pass.Reweighted ? static_cast<double>(absolute) : 0, 1e-10);
    }
}

TEST_F(MomentRoad, AFitOnReweightedSumsIsThatOfRowsWithTheseWeights) {
    for (const double far : {0.0, 1e6}) {
        SCOPED_TRACE(far);
        Job = JobRecord{};
        BeginFit();
        AddCloud({.Points = 40, .Centre = {far, -2 * far, 0}, .Noise = 0.5, .Truth = kTruth});
        Job.UseFlags[8] = Job.UseFlags[77] = 0;
        FloatParameters(kRigid);
        FloatParameters({kScaleXYZ});
        Column P(Job.UseFlags.begin(), Job.UseFlags.end()), v;
        GatheredPoints points;
        ASSERT_TRUE(GatherForFit(P, points));
        Matrix Q;
        BestFitIteration(7, 120, Job.ParamText, Q, v, P, points);
        FitOnMoments fit;
        const Linearisation there = Linearise(Adjustment.Model, points);
        SumMoments(points, there, {.Reweighted = true}, fit.Moments);
        TakeStartValues(Job.ParamText);
        IterateFromHere(7, 120, Job.ParamText, Q, points, fit);
        EXPECT_TRUE(fit.ByMoments);
        EXPECT_TRUE(Adjustment.Converged);
        Column residuals(121);
        Residuals(points, Adjustment.Model, fit.At, fit.Centred, residuals);
        const int passes = Adjustment.Iterations;

        // The weights themselves, as the columns of the points get them.
        GatheredPoints weighed = points;
        TakeResidualWeights(fit.Moments, weighed);
        Column weights(121);
        for (std::size_t i = 1; i <= 120; ++i) {
            weights[i] = weighed.Weight[(i - 1) % 3][(i - 1) / 3];
            EXPECT_NEAR(weights[i], P[i] == 0 ? 0 : 1 / (1e-12 + std::fabs(v[i])), 1e-6 * weights[i]) << i;
        }
        Matrix byRows;
        BestFitIteration(7, 120, Job.ParamText, byRows, v, weights, points);
        EXPECT_EQ(Adjustment.Iterations, passes);
        for (std::size_t i = 1; i <= 120; ++i) EXPECT_NEAR(residuals[i], v[i], 1e-8) << i;
        for (int k = 1; k <= 7; ++k) EXPECT_NEAR(Q(k, k), byRows(k, k), 1e-10 * byRows(k, k)) << k;
    }
}

TEST_F(MomentRoad, AgreesInTheToolModel) {
    // Held, floating, with coordinates out of use, and a million millimetres from the origin.
    for (const double far : {0.0, 1e6})
        for (const bool held : {false, true})
            for (const bool out : {false, true}) {
                SCOPED_TRACE(std::to_string(far) + (held ? ", held" : "") + (out ? ", out of use" : ""));
                Job = JobRecord{};
                BeginFit();
                AddCloud({.Points = 530, .Centre = {far, -far, 0}, .Noise = 0.2, .Truth = kTruth});
                AddPoses();
                for (std::size_t i = 1; i <= 530; ++i) {
                    Mat3 G;
                    const int row = static_cast<int>(i);
                    RotMatrixXYZ(-Job.RobotABC(row, 3), -Job.RobotABC(row, 2), -Job.RobotABC(row, 1), G);
                    Job.Target.X[i] = *Job.Target.X[i] + 30 * G(1, 1) - 50 * G(1, 2) + 120 * G(1, 3);
                    Job.Target.Y[i] = *Job.Target.Y[i] + 30 * G(2, 1) - 50 * G(2, 2) + 120 * G(2, 3);
                    Job.Target.Z[i] += 30 * G(3, 1) - 50 * G(3, 2) + 120 * G(3, 3);
                }
                if (out)
                    for (const std::size_t row : {2, 3, 7, 22, 23, 24, 1500}) Job.UseFlags[row] = 0;
                FloatParameters(kRigid);
                Job.AngleUnitName = "degree";
                Selection.CheckUseABC = !held;
                Selection.RDistShown = !held;
                if (held) {
                    Job.ParamText[kRvecX] = "31";
                    Job.ParamText[kRvecY] = "-50";
                    Job.ParamText[kRvecZ] = "119.5";
                } else {
                    FloatParameters({kRvecX, kRvecY, kRvecZ});
                }
                ExpectTheSame(1e-11, far == 0 ? 0 : 1);
                EXPECT_EQ(Adjustment.Model.Mode, FitMode::Tool);
                EXPECT_NEAR(Job.Rvec_z, held ? 119.5 : 120, 0.1);
            }
}

TEST_F(MomentRoad, AgreesInTheToolModelForPosesThatHardlyTurn) {
    // Poses within a degree of each other tell the tool vector from the shift by a hundredth of its size.
    AddCloud({.Points = 60, .Noise = 0.01, .Truth = kTruth});
    AddPoses(0.01);
    FloatParameters(kRigid);
    FloatParameters({kRvecX, kRvecY, kRvecZ});
    Selection.CheckUseABC = true;
    Job.AngleUnitName = "degree";
    // The products of either road lose what the square of the turn, 1e4, takes.
    ExpectTheSame(1e-9);
}

TEST_F(MomentRoad, TheEquationsInLanesAreThoseOfTheMatricesOnEveryInstructionSet) {
    const std::vector<std::vector<int>> choices = {{kTraX, kTraY, kTraZ, kRotX, kRotY, kRotZ, kScaleXYZ},
                                                   {kTraX, kRotX, kRotZ},
                                                   {kTraX, kTraY, kTraZ, kRotX, kRotY, kRotZ, kScaleX,
                                                    kScaleY, kScaleZ, kAngleXY, kAzimuth, kAngleZtoXY}};
    for (const auto& choice : choices)
        for (const bool out : {false, true}) {
            SCOPED_TRACE(choice.size() + (out ? 100 : 0));
            Job = JobRecord{};
            BeginFit();
            AddCloud({.Points = 20, .Centre = {1000, -500, 300}, .Noise = 1, .Truth = kTruth});
            if (out) Job.UseFlags[4] = Job.UseFlags[32] = 0;
            Job.ParamText.fill(kNotUsed);
            for (const int k : choice) Job.ParamText[static_cast<std::size_t>(k)] = kFloat;
            Column P(Job.UseFlags.begin(), Job.UseFlags.end());
            GatheredPoints points;
            GatherPoints(P, false, points);
            SetWeights(P, points);
            const FitModel model = ChooseModel(Job.ParamText);
            PointMoments moments;
            SumMoments(points, Linearise(model, points), moments);
            Job.RotX += 0.01;
            Job.TraX -= 3;
            Job.AngleXY = 0.02;
            const Linearisation at = Linearise(model, points);
            const int u = model.Unknowns;
            Matrix N(u, u);
            Column w(static_cast<std::size_t>(u) + 1);
            ASSERT_TRUE(NormalEquations(model, at, moments, N, w));
            SmallEquations two;
            ASSERT_TRUE(NormalEquations(model, at, moments, VectorWidth::Two, two));
            double largest = 0;
            for (int i = 1; i <= u; ++i)
                largest = std::max(largest, std::fabs(w[static_cast<std::size_t>(i)]));
            const auto at0 = [](int i) { return static_cast<std::size_t>(i - 1); };
            for (int i = 1; i <= u; ++i) {
                EXPECT_NEAR(two.N[at0(i)][at0(u + 1)], w[static_cast<std::size_t>(i)], 1e-12 * largest);
                for (int j = 1; j <= u; ++j)
                    EXPECT_NEAR(two.N[at0(i)][at0(j)], N(i, j), 1e-14 * std::sqrt(N(i, i) * N(j, j)));
            }
            for (const VectorWidth width : {VectorWidth::Four, VectorWidth::Eight}) {
                if (width > WidestVectors()) continue;
                SmallEquations wide;
                ASSERT_TRUE(NormalEquations(model, at, moments, width, wide));
                for (int i = 1; i <= u; ++i)
                    for (int j = 1; j <= u + 1; ++j) EXPECT_EQ(wide.N[at0(i)][at0(j)], two.N[at0(i)][at0(j)]);
            }
        }
}

// A turn about a thin set moves its points by so little that products of the whole set leave no digits of it:
// both ways of making the equations say so, or neither does.
TEST_F(MomentRoad, BothSayWhereATurnAboutAThinSetLeavesNoDigits) {
    constexpr double kEighth = 0.78539816339744831, kOfDiagonal = 0.61547970867038734;  // atan(1 / sqrt(2))
    for (int i = 0; i < 20; ++i) {
        const double along = 500 * NextNumber(), y = 0.01 * NextNumber(), z = 0.01 * NextNumber();
        AddPair({along, along + y, along + z}, {y, z, std::sqrt(3.0) * along});
    }
    Column P(Job.UseFlags.begin(), Job.UseFlags.end());
    FloatParameters(kRigid);
    GatheredPoints points;
    GatherPoints(P, false, points);
    SetWeights(P, points);
    const FitModel model = ChooseModel(Job.ParamText);
    PointMoments moments;
    SumMoments(points, Linearise(model, points), moments);
    int left = 0, none = 0;
    for (const double x : {0.0, kEighth, -kEighth, 3 * kEighth, -3 * kEighth})
        for (const double y :
             {kOfDiagonal, -kOfDiagonal, 2 * kEighth - kOfDiagonal, kOfDiagonal - 2 * kEighth})
            for (const double z : {0.0, kEighth, -kEighth, 3 * kEighth, -3 * kEighth}) {
                Job.RotX = x;
                Job.RotY = y;
                Job.RotZ = z;
                const Linearisation at = Linearise(model, points);
                Matrix N(model.Unknowns, model.Unknowns);
                Column w(static_cast<std::size_t>(model.Unknowns) + 1);
                SmallEquations two;
                const bool digits = NormalEquations(model, at, moments, N, w);
                EXPECT_EQ(NormalEquations(model, at, moments, VectorWidth::Two, two), digits)
                    << x << ", " << y << ", " << z;
                ++(digits ? left : none);
            }
    EXPECT_GT(left, 0);
    EXPECT_GT(none, 0);
    ExpectTheSame(1e-6);
}

TEST_F(MomentRoad, SquaresOfResidualsAreThoseOfTheResiduals) {
    AddCloud({.Points = 21, .Noise = 1, .Truth = kTruth});
    FloatParameters(kRigid);
    for (const bool out : {false, true}) {
        Column P(Job.UseFlags.begin(), Job.UseFlags.end()), v(64);
        if (out) P[5] = P[63] = 0;
        GatheredPoints points;
        GatherPoints(P, false, points);
        SetWeights(P, points);
        const FitModel model = ChooseModel(Job.ParamText);
        const Linearisation at = Linearise(model, points);
        const Column x = {0, 3, -2, 5, 0.01, -0.02, 0.03};
        Residuals(points, model, at, x, v);
        const Vec3 squares = SquaresOfResiduals(points, model, at, x);
        for (std::size_t axis = 1; axis <= 3; ++axis) {
            double sum = 0;
            for (std::size_t i = axis; i <= 63; i += 3) sum += P[i] * v[i] * v[i];
            EXPECT_NEAR(squares(static_cast<int>(axis)), sum, 1e-13 * sum);
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
