// The true optimum of the norms: closed forms, linear programs solved by trying everything, and bounds
// that hold.
#include "fit/exact_norms.h"

#include <numeric>

#include "cli/headless.h"
#include "core/run.h"
#include "engine/exact_norms_job.h"
#include "engine/fit_job.h"
#include "engine/selection.h"
#include "engine/transform.h"
#include "fit/linear_optimum.h"
#include "fit/moments.h"
#include "support/memory_use.h"

using namespace corvinade;

namespace {

// Linear rows of a small random problem, one axis: v + a0 + a1 x + a2 y + a3 z.
struct SmallProblem {
    GatheredPoints Points;
    LinearRows Rows;

    SmallProblem(int rows, int columns) {
        Points.Count = rows;
        Points.Padded = WholeLanes(rows);
        for (LaneArray& axis : Points.Start) {
            axis.resize(static_cast<std::size_t>(Points.Padded));
            for (double& x : axis) x = NextNumber();
        }
        Rows.Points = &Points;
        Rows.Columns = columns;
        Rows.v.assign(static_cast<std::size_t>(3 * Points.Padded), 0);
        Rows.InUse.assign(Rows.v.size(), 0);
        for (int c = 0; c < columns; ++c)
            for (double& entry : Rows.Forms[0][static_cast<std::size_t>(c)]) entry = NextNumber();
        for (int i = 0; i < rows; ++i) {
            Rows.v[static_cast<std::size_t>(i)] = 10 * NextNumber();
            Rows.InUse[static_cast<std::size_t>(i)] = 1;
        }
        Rows.Used = rows;
        std::vector<std::vector<double>> T;
        EXPECT_TRUE(MakeOrthonormal(Rows, T));
    }
    double After(const std::vector<double>& y, double (*objective)(const LinearRows&)) const {
        LinearRows moved = Rows;
        moved.Move(y.data());
        return objective(moved);
    }
};

// All choices of `size` of `count`, as indices.
template <class Visit>
void EachChoice(int count, int size, Visit visit) {
    std::vector<int> choice(static_cast<std::size_t>(size));
    std::iota(choice.begin(), choice.end(), 0);
    for (;;) {
        visit(choice);
        int k = size - 1;
        while (k >= 0 && choice[static_cast<std::size_t>(k)] == count - size + k) --k;
        if (k < 0) return;
        ++choice[static_cast<std::size_t>(k)];
        for (int j = k + 1; j < size; ++j)
            choice[static_cast<std::size_t>(j)] = choice[static_cast<std::size_t>(j - 1)] + 1;
    }
}

// The least sum by all corners, where as many rows as columns fit exactly.
double LeastSumOfAllCorners(const SmallProblem& problem, int rows) {
    double least = 1e300;
    const int m = problem.Rows.Columns;
    EachChoice(rows, m, [&](const std::vector<int>& choice) {
        std::vector<double> A(static_cast<std::size_t>(m * m)), y(static_cast<std::size_t>(m));
        for (int j = 0; j < m; ++j) {
            const int row = choice[static_cast<std::size_t>(j)];
            problem.Rows.Row(row, &A[static_cast<std::size_t>(j * m)]);
            y[static_cast<std::size_t>(j)] = -problem.Rows.v[static_cast<std::size_t>(row)];
        }
        if (SolveSquare(A, m, y.data())) least = std::min(least, problem.After(y, SumOf));
    });
    return least;
}

// The least largest residual by all sets of one row more than columns with all signs.
double LeastLargestOfAllCorners(const SmallProblem& problem, int rows) {
    double least = 1e300;
    const int m = problem.Rows.Columns, n = m + 1;
    EachChoice(rows, n, [&](const std::vector<int>& choice) {
        for (int signs = 0; signs < 1 << m; ++signs) {
            std::vector<double> A(static_cast<std::size_t>(n * n)), y(static_cast<std::size_t>(n));
            for (int j = 0; j < n; ++j) {
                const int row = choice[static_cast<std::size_t>(j)];
                problem.Rows.Row(row, &A[static_cast<std::size_t>(j * n)]);
                A[static_cast<std::size_t>(j * n + m)] = (signs >> j & 1) != 0 ? 1 : -1;
                y[static_cast<std::size_t>(j)] = -problem.Rows.v[static_cast<std::size_t>(row)];
            }
            if (SolveSquare(A, n, y.data())) least = std::min(least, problem.After(y, LargestOf));
        }
    });
    return least;
}

bool Always() {
    return true;
}

}  // namespace

TEST_F(ExactNorms, OfAHeightAloneTheyAreMedianAndMiddle) {
    Heights({0, 1, 2.5, 4, 30});
    Calculate(kL1);
    EXPECT_NEAR(Job.TraZ, 2.5, 1e-12);
    EXPECT_NEAR(Sum(), 2.5 + 1.5 + 1.5 + 27.5, 1e-11);
    EXPECT_LT(Norm.AboveOptimum, 1e-9);
    EXPECT_TRUE(Calculation.Converged);
    Calculate(kLoo);
    EXPECT_NEAR(Job.TraZ, 15, 1e-12);
    EXPECT_NEAR(Largest(), 15, 1e-12);
    EXPECT_LT(Norm.AboveOptimum, 1e-9);
    EXPECT_TRUE(Calculation.Converged);
}

TEST_F(ExactNorms, OfAnEvenNumberOfHeightsTheMedianLiesBetweenTheMiddleOnes) {
    Heights({0, 1, 3, 30});
    Calculate(kL1);
    EXPECT_GE(Job.TraZ, 1 - 1e-12);
    EXPECT_LE(Job.TraZ, 3 + 1e-12);
    EXPECT_NEAR(Sum(), 32, 1e-10);
    EXPECT_LT(Norm.AboveOptimum, 1e-9);
}

TEST_F(ExactNorms, EachShiftHasItsOwnMedianAndMiddle) {
    // Only one of the axes has the largest residual, and the others come to their middle all the same.
    const double x[] = {1, 2, 4, 8, 100}, y[] = {-3, 0, 1, 7, 9}, z[] = {0.25, 0.5, 0, 2, 1};
    for (int i = 0; i < 5; ++i)
        AddPair({10.0 * i, 5.0 * i * i, 0}, {10.0 * i + x[i], 5.0 * i * i + y[i], z[i]});
    FloatParameters({kTraX, kTraY, kTraZ});
    Calculate(kL1);
    EXPECT_NEAR(Job.TraX, 4, 1e-11);
    EXPECT_NEAR(Job.TraY, 1, 1e-11);
    EXPECT_NEAR(Job.TraZ, 0.5, 1e-11);
    EXPECT_LT(Norm.AboveOptimum, 1e-9);
    Calculate(kLoo);
    EXPECT_NEAR(Job.TraX, 50.5, 1e-9);
    EXPECT_NEAR(Job.TraY, 3, 1e-9);
    EXPECT_NEAR(Job.TraZ, 1, 1e-9);
    EXPECT_NEAR(Largest(), 49.5, 1e-10);
    EXPECT_LT(Norm.AboveOptimum, 1e-9);
}

TEST_F(ExactNorms, TheFlattestPlaneLiesBetweenThreeCornersAndOne) {
    // Heights of a square's corners that are +1, -1, +1, -1 in turn keep a plane from any of them: the
    // best is flat and a whole one away. Tilting by small angles is linear to a millionth here.
    const double z[] = {1, -1, 1, -1}, x[] = {-1e4, 1e4, 1e4, -1e4}, y[] = {-1e4, -1e4, 1e4, 1e4};
    for (int i = 0; i < 4; ++i) {
        AddPair({x[i], y[i], 0}, {x[i], y[i], z[i] + 3 + 1e-4 * x[i]});
        Job.UseFlags[Job.UseFlags.size() - 3] = Job.UseFlags[Job.UseFlags.size() - 2] = 0;
    }
    FloatParameters({kTraZ, kRotX, kRotY});
    Calculate(kLoo);
    EXPECT_NEAR(Largest(), 1, 1e-7);
    EXPECT_NEAR(Job.TraZ, 3, 1e-7);
    for (int i = 1; i <= 4; ++i)
        EXPECT_NEAR(std::fabs(Calculation.v[static_cast<std::size_t>(3 * i)]), 1, 1e-7) << i;
    EXPECT_LT(Norm.AboveOptimum, 1e-9);
}

TEST_F(ExactNorms, SmallLinearProblemsAreSolvedAsByTryingAllCorners) {
    for (int trial = 0; trial < 60; ++trial) {
        SCOPED_TRACE(trial);
        const int columns = 1 + trial % 4, rows = columns + 2 + trial % 5;
        const SmallProblem problem(rows, columns);
        std::vector<double> y;
        Holding holding;
        LeastSum(problem.Rows, y, holding, Always);
        const double sum = LeastSumOfAllCorners(problem, rows);
        EXPECT_NEAR(problem.After(y, SumOf), sum, 1e-10 * sum);
        Holding holdingLargest;
        LeastLargest(problem.Rows, y, holdingLargest, Always);
        const double largest = LeastLargestOfAllCorners(problem, rows);
        EXPECT_NEAR(problem.After(y, LargestOf), largest, 1e-10 * largest);
        // At the optimum the bound is the optimum.
        EXPECT_NEAR(LowerBoundOfLargest(problem.Rows, holdingLargest), largest, 1e-9 * largest);
        LinearRows atOptimum = problem.Rows;
        LeastSum(problem.Rows, y, holding, Always);
        atOptimum.Move(y.data());
        EXPECT_NEAR(LowerBoundOfSum(atOptimum, holding), sum, 1e-9 * sum);
    }
}

TEST_F(ExactNorms, TheBoundsHoldForAnyChoiceOfRows) {
    for (int trial = 0; trial < 200; ++trial) {
        SCOPED_TRACE(trial);
        const int columns = 1 + trial % 3, rows = columns + 4;
        const SmallProblem problem(rows, columns);
        Holding some;
        for (int k = 0; k <= columns; ++k) some.Rows.push_back((trial + k) % rows);
        EXPECT_LE(LowerBoundOfLargest(problem.Rows, some), LeastLargestOfAllCorners(problem, rows) + 1e-12);
        some.Rows.pop_back();
        EXPECT_LE(LowerBoundOfSum(problem.Rows, some), LeastSumOfAllCorners(problem, rows) + 1e-12);
    }
}

TEST_F(ExactNorms, NoParametersNearbyAreBetter) {
    for (const int parameters : {6, 7, 9, 12})
        for (const int norm : {kL1, kLoo}) {
            SCOPED_TRACE(std::to_string(parameters) + (norm == kL1 ? ", L1" : ", Loo"));
            Job = JobRecord{};
            BeginFit();
            AddCloud({.Points = 24, .Noise = 0.3, .Truth = parameters == 12 ? kSkewed : kTruth});
            FloatParameters(kRigid);
            if (parameters == 7) FloatParameters({kScaleXYZ});
            if (parameters >= 9) FloatParameters({kScaleX, kScaleY, kScaleZ});
            if (parameters == 12) FloatParameters({kAngleXY, kAzimuth, kAngleZtoXY});
            Job.UseFlags[4] = Job.UseFlags[11] = 0;
            Norm.RunOn = false;
            Calculate(norm);
            const double loop = norm == kL1 ? Sum() : Largest();
            Norm.RunOn = true;
            Calculate(norm);
            EXPECT_TRUE(Calculation.Converged);
            EXPECT_LT(Norm.AboveOptimum, 1e-8);
            EXPECT_LE(norm == kL1 ? Sum() : Largest(), loop + 1e-12);
            ExpectNoBetterNearby(norm == kL1 ? Sum : Largest);
        }
}

TEST_F(ExactNorms, RowsThatFitExactlyAreFoundBehindOutliers) {
    for (const double far : {0.0, 1e6}) {
        SCOPED_TRACE(far);
        Job = JobRecord{};
        BeginFit();
        AddCloud({.Points = 20, .Centre = {far, -far, 0}, .Truth = kTruth});
        for (const std::size_t k : {3, 11, 17}) Job.Target.X[k] = *Job.Target.X[k] + 50.0;
        FloatParameters(kRigid);
        Calculate(kL1);
        EXPECT_TRUE(Calculation.Converged);
        EXPECT_NEAR(Sum(), 150, far == 0 ? 1e-9 : 1e-7);
        EXPECT_LT(Norm.AboveOptimum, far == 0 ? 1e-9 : 1e-7);
        EXPECT_NEAR(Job.RotZ, 2.1, 1e-11);
    }
}

TEST_F(ExactNorms, HeldParametersStayAndRowsOutOfUseDoNotCount) {
    AddCloud({.Points = 15, .Noise = 0.2, .Truth = kTruth});
    FloatParameters({kTraX, kTraZ, kRotX, kRotY, kRotZ});
    Job.ParamText[kTraY] = "-200.5";
    Job.Target.X[4] = 1e5;
    Job.UseFlags[10] = 0;
    for (const int norm : {kL1, kLoo}) {
        Calculate(norm);
        EXPECT_EQ(Job.TraY, -200.5);
        EXPECT_LT(Largest(), 3);
        EXPECT_LT(Norm.AboveOptimum, 1e-8);
        EXPECT_TRUE(Calculation.Converged);
    }
}

TEST_F(ExactNorms, AHundredThousandObservationsTakeFewLinearisations) {
    AddCloud({.Points = 33400, .Noise = 0.05, .Truth = kTruth});
    FloatParameters(kRigid);
    FloatParameters({kScaleXYZ});
    for (const int norm : {kL1, kLoo}) {
        Calculate(norm);
        EXPECT_TRUE(Calculation.Converged);
        EXPECT_LT(Norm.AboveOptimum, norm == kL1 ? 1e-6 : 1e-9);
        EXPECT_LT(Norm.Linearisations, 12);
    }
}

TEST_F(ExactNorms, TheWeightsOfL1AreThoseOfItsResiduals) {
    AddCloud({.Points = 12, .Noise = 0.2, .Truth = kTruth});
    FloatParameters(kRigid);
    Calculate(kL1);
    for (std::size_t i = 1; i <= 36; ++i) EXPECT_EQ(Calculation.P[i], ResidualWeight(Calculation.v[i])) << i;
}

TEST_F(ExactNorms, TheStopEndsTheWayWhereItIsWithABoundThatHolds) {
    AddCloud({.Points = 60, .Noise = 0.2, .Truth = kTruth});
    FloatParameters(kRigid);
    for (const int norm : {kL1, kLoo}) {
        ::Run.StopRequested = kFalse;
        Calculate(norm);
        const double optimum = norm == kL1 ? Sum() : Largest();
        Headless.OnYield = [] {
            if (Norm.Linearisations == 1) ::Run.StopRequested = kTrue;
        };
        Calculate(norm);
        Headless.OnYield = nullptr;
        EXPECT_FALSE(Calculation.Converged);
        EXPECT_EQ(Norm.Linearisations, 1);
        const double objective = norm == kL1 ? Sum() : Largest();
        EXPECT_GE(objective, optimum - 1e-9);
        EXPECT_GE(Norm.AboveOptimum, objective - optimum - 1e-6) << "curvature is below a nanometre here";
        EXPECT_TRUE(Messages().empty());
    }
}

TEST_F(ExactNorms, AJobReplacedOnTheWayIsLeftAlone) {
    AddCloud({.Points = 20, .Noise = 0.2, .Truth = kTruth});
    FloatParameters(kRigid);
    Calculation.nFloat = 77;
    Headless.OnYield = [] {
        if (Norm.Linearisations == 1) ++::Run.JobGeneration;
    };
    Calculate(kLoo);
    EXPECT_EQ(Calculation.nFloat, 77);
    EXPECT_EQ(::Run.TrafoValid, kFalse);
}

TEST_F(ExactNorms, TheDistanceModelIsRefusedAndItsLoopsResultStays) {
    for (const reference::Point& e : {reference::Point{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {-0.6, 0.8, 0}})
        AddPair({0, 0, 0}, {100 * e[0], 100 * e[1], 101 * e[2]});
    FloatParameters({kRDist});
    Selection.CheckRDist = true;
    for (const int k : {kTraX, kTraY, kTraZ, kRotX, kRotY, kRotZ})
        Job.ParamText[static_cast<std::size_t>(k)] = "0";
    Calculate(kLoo);
    ASSERT_EQ(Messages().size(), 1u);
    EXPECT_NE(Messages()[0].find("R_Dist"), std::string::npos);
    EXPECT_FALSE(Calculation.Converged);
    EXPECT_TRUE(std::isnan(Norm.AboveOptimum));
}

TEST_F(ExactNorms, AnUnknownThatThePointsLeaveOpenHasNoBound) {
    // On a line nothing tells the turn about it.
    for (int i = 0; i < 8; ++i)
        AddPair({100.0 * i, 200.0 * i, -150.0 * i},
                {100.0 * i + NextNumber(), 200.0 * i + NextNumber(), -150.0 * i + NextNumber()});
    FloatParameters(kRigid);
    Settings.MaxIteration = 30;
    for (const int norm : {kL1, kLoo}) {
        Calculate(norm);
        EXPECT_TRUE(std::isinf(Norm.AboveOptimum)) << Norm.AboveOptimum;
    }
}

TEST_F(ExactNorms, AnUnknownThatMovesNothingAtAllLeavesTheBoundAsItIs) {
    // On the x axis the turn about it, which comes first, moves no point.
    for (int i = 0; i < 8; ++i)
        AddPair({100.0 * i, 0, 0}, {100.0 * i + NextNumber(), NextNumber(), NextNumber()});
    FloatParameters(kRigid);
    for (const int norm : {kL1, kLoo}) {
        Calculate(norm);
        EXPECT_LT(Norm.AboveOptimum, 1e-8);
    }
}

TEST_F(ExactNorms, WhereNothingFloatsTheResultIsTheOptimum) {
    Heights({0, 1, 2.5, 4, 30});
    Job.ParamText[kTraZ] = "3";
    for (const int norm : {kL1, kLoo}) {
        Calculate(norm);
        EXPECT_EQ(Norm.AboveOptimum, 0) << norm;
        EXPECT_EQ(Largest(), 27) << norm;
        EXPECT_TRUE(Calculation.Converged) << norm;
    }
}

TEST_F(ExactNorms, WithoutPairsThereIsNothingToImprove) {
    for (const int norm : {kL1, kLoo}) {
        Calculate(norm);
        EXPECT_EQ(Norm.AboveOptimum, 0) << norm;
        EXPECT_TRUE(Calculation.Converged) << norm;
    }
    EXPECT_TRUE(Messages().empty());
}

TEST_F(ExactNorms, AWayThatLeadsNowhereIsNotCalledTheOptimum) {
    // Two pairs tell five of six unknowns, and where their fit has not converged no step may be any better.
    for (int trial = 0; trial < (UnderSanitizers() ? 10 : 40); ++trial) {
        SCOPED_TRACE(trial);
        Job = JobRecord{};
        const auto any = [] {
            return reference::Point{500 * NextNumber(), 500 * NextNumber(), 500 * NextNumber()};
        };
        Settings.MaxIteration = 30;
        Job.ParamText.fill(kNotUsed);
        for (int i = 0; i < 2; ++i) AddPair(any(), any());
        FloatParameters(kRigid);
        for (const int norm : {kL1, kLoo}) {
            Calculate(norm);
            if (!Calculation.Converged || std::isinf(Norm.AboveOptimum)) continue;
            EXPECT_LE(Norm.AboveOptimum, 1e-6 * (norm == kL1 ? Sum() : Largest()) + 1e-9);
        }
    }
}

TEST_F(ExactNorms, WithoutBeingAskedForNothingIsRunOn) {
    Norm.RunOn = false;
    Heights({0, 1, 2.5, 4, 30});
    Calculate(kLoo);
    EXPECT_EQ(Norm.Linearisations, 0);
    EXPECT_TRUE(std::isnan(Norm.AboveOptimum));
    EXPECT_GT(std::fabs(Job.TraZ - 15), 1e-6) << "the exchange of weights ends near the middle";
}
