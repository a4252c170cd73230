// The runs of Monte Carlo by themselves, against spreads that are known in closed form.
#include "fit/monte_carlo.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace corvinade::fit;

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

using Columns = std::array<std::vector<double>, 3>;

const Columns kStart = {{{0, 1000, 15, -25, 700, 300, 120, 900},
                         {0, 20, 800, 35, 500, -400, 640, 910},
                         {0, -30, 40, 600, 300, 200, -80, 550}}};

Columns Shifted(double x, double y, double z) {
    Columns target = kStart;
    const std::array<double, 3> shift = {x, y, z};
    for (std::size_t axis = 0; axis < 3; ++axis)
        for (double& value : target[axis]) value += shift[axis];
    return target;
}

MonteCarloProblem ProblemOf(const Columns& target, std::initializer_list<int> floating) {
    MonteCarloProblem problem;
    problem.Fit.Pairs = {.Start = {kStart[0], kStart[1], kStart[2]},
                         .Target = {target[0], target[1], target[2]}};
    for (const int k : floating) problem.Fit.Choice.Floats[At(k)] = true;
    return problem;
}

std::span<const double> Array(const MonteCarloResult& result, int k) {
    return {result.Results.Row(k), At(result.Results.Columns) + 1};
}

const std::initializer_list<int> kRigid = {kTraX, kTraY, kTraZ, kRotX, kRotY, kRotZ};

}  // namespace

// A shift is the mean of the differences, so its spread is that of a mean of eight.
TEST(MonteCarloAlone, TheSpreadOfAShiftIsThatOfAMean) {
    const Columns target = Shifted(10, 20, 30);
    MonteCarloProblem problem = ProblemOf(target, {kTraX, kTraY, kTraZ});
    problem.Sigma = {0.4, 1.5, 0};
    problem.Runs = 20000;
    const MonteCarloResult result = FitWithRuns(problem);
    ASSERT_EQ(result.End, MonteCarloEnd::Complete);
    EXPECT_NEAR(result.Fit.Values[kTraX], 10, 1e-10);
    const double root = std::sqrt(8.0), known = 1 / std::sqrt(2.0 * problem.Runs);
    EXPECT_NEAR(SigmaOfArray(Array(result, kTraX)), 0.4 / root, 4 * known * 0.4 / root);
    EXPECT_NEAR(SigmaOfArray(Array(result, kTraY)), 1.5 / root, 4 * known * 1.5 / root);
    EXPECT_LT(SigmaOfArray(Array(result, kTraZ)), 1e-10) << "no noise along z";
    EXPECT_NEAR(MeanOfArray(Array(result, kTraY)), 20, 4 * 1.5 / root / std::sqrt(1.0 * problem.Runs));
    for (const double value : Array(result, kRotX).subspan(1)) EXPECT_EQ(value, 0) << "held";
}

// The mean error of the runs: of 24 residuals, of which three are spent on the shift, over 23.
TEST(MonteCarloAlone, TheMeanErrorOfTheRunsIsThatOfTheNoise) {
    const Columns target = Shifted(0, 0, 0);
    MonteCarloProblem problem = ProblemOf(target, {kTraX, kTraY, kTraZ});
    problem.Sigma = {0.5, 0.5, 0.5};
    problem.Runs = 4000;
    const MonteCarloResult result = FitWithRuns(problem);
    double squares = 0;
    for (const double value : Array(result, kSigmaXYZ).subspan(1)) squares += value * value;
    // Each axis has the variance of eight numbers about their mean, with the divisor of that.
    EXPECT_NEAR(squares / problem.Runs, 3 * 0.25, 0.02);
}

TEST(MonteCarloAlone, TheSpreadOfARigidFitIsThatOfItsCofactors) {
    const Columns target = Shifted(-3, 5, 7);
    MonteCarloProblem problem = ProblemOf(target, kRigid);
    problem.Sigma = {0.05, 0.05, 0.05};
    problem.Runs = 5000;
    const MonteCarloResult result = FitWithRuns(problem);
    ASSERT_EQ(result.End, MonteCarloEnd::Complete);
    for (const int k : kRigid) {
        const int u = result.Fit.Model.UnknownOf[At(k)];
        const double sigma = 0.05 * std::sqrt(result.Fit.Q(u, u));
        EXPECT_NEAR(SigmaOfArray(Array(result, k)), sigma, 0.05 * sigma) << k;
    }
}

TEST(MonteCarloAlone, EqualSeedsGiveEqualRunsAndOthersOthers) {
    const Columns target = Shifted(1, 2, 3);
    MonteCarloProblem problem = ProblemOf(target, kRigid);
    problem.Sigma = {0.1, 0.1, 0.1};
    problem.Runs = 40;
    const MonteCarloResult first = FitWithRuns(problem), again = FitWithRuns(problem);
    EXPECT_EQ(first.Results.Elements, again.Results.Elements);
    problem.Seed = 7;
    EXPECT_NE(FitWithRuns(problem).Results.Elements, first.Results.Elements);
}

// What goes the whole way and what goes the short one is the same fit.
TEST(MonteCarloAlone, WholeFitsGiveWhatShortOnesGive) {
    const Columns target = Shifted(1, 2, 3);
    const MonteCarloProblem problem = ProblemOf(target, kRigid);
    MonteCarloRun run;
    run.Choice = problem.Fit.Choice;
    run.Model = ModelOf(run.Choice, FitMode::Coincide);
    run.Seeds = BeginFit(problem.Fit, {}).Seeds;
    run.Clean = kStart;
    run.Sigma = {0.2, 0.2, 0.2};
    run.Runs = 30;
    run.P.assign(25, 1);
    run.Quiet.Limits.MaxIteration = 100;
    GatherPoints(problem.Fit.Pairs, run.P, false, run.Points);
    const GatheredPoints clean = run.Points;
    const auto results = [&run](bool whole) {
        std::vector<Column> all;
        NoiseRecord noise;
        int begun = 0;
        const MonteCarloListener listener = {
            .Begins =
                [&](int i) {
                    EXPECT_EQ(i, ++begun);
                    return whole;
                },
            .BeginWhole = [&run](const Parameters&) { return run.Quiet; },
            .Counts = [&all](int, const Column& values,
                             const std::optional<Vec3>&) { all.push_back(values); }};
        EXPECT_EQ(RunMonteCarlo(run, noise, listener), MonteCarloEnd::Complete);
        return all;
    };
    const std::vector<Column> shortOnes = results(false), wholeOnes = results(true);
    ASSERT_EQ(shortOnes.size(), 30u);
    ASSERT_EQ(wholeOnes.size(), 30u);
    for (std::size_t i = 0; i < shortOnes.size(); ++i)
        for (std::size_t k = 1; k < shortOnes[i].size(); ++k)
            EXPECT_NEAR(shortOnes[i][k], wholeOnes[i][k], 1e-9) << i << " " << k;
    for (std::size_t axis = 0; axis < 3; ++axis) EXPECT_EQ(run.Points.Start[axis], clean.Start[axis]);
}

TEST(MonteCarloAlone, AStopEndsTheRunsAndTheFitOfThePointsFollows) {
    const Columns target = Shifted(1, 2, 3);
    MonteCarloProblem problem = ProblemOf(target, kRigid);
    problem.Sigma = {0.1, 0.1, 0.1};
    int asked = 0;
    const MonteCarloResult result =
        FitWithRuns(problem, {.StopIsWanted = [&asked] { return ++asked == 30; }});
    EXPECT_EQ(result.End, MonteCarloEnd::Ended);
    EXPECT_NEAR(result.Fit.Values[kTraX], 1, 1e-8);
    EXPECT_NE(result.Results(kTraX, 1), 0);
    EXPECT_EQ(result.Results(kTraX, problem.Runs), 0);
    const MonteCarloResult lost = FitWithRuns(problem, {.Hear = [](const FitEvent&) { return false; }});
    EXPECT_EQ(lost.End, MonteCarloEnd::Abandoned);
}

// Eight poses of a robot, as a program tells them, and the points that were measured at the tips: seed points
// with noise lead some of the runs nowhere, which the fit of the points themselves does not.
TEST(MonteCarloAlone, ARunThatFindsNoEndBeginsAgainFromTheResult) {
    const Columns measured = {
        {{174.8790, -339.4178, 21.8592, -422.8644, -455.6137, -97.2013, 530.8511, -284.4173},
         {396.4616, 309.2414, 598.3709, 523.1029, -307.3598, 212.3443, 220.5413, 178.9418},
         {449.1187, 681.7924, 522.8100, -766.1950, -610.2734, -107.5519, 561.1190, -759.4175}}};
    const Columns flange = {
        {{-1074.6200, -1694.1960, -1298.7384, -760.2543, -1086.2446, -966.0822, -1152.2615, -570.2283},
         {471.8180, 573.4877, 638.0191, 716.6542, 120.2079, 492.0015, 452.2230, 173.6767},
         {895.4279, 706.1852, 811.2594, -226.0565, -530.1120, 401.4169, 1266.4443, -346.2456}}};
    Columns angles = {
        {{113.99376, 107.93836, 113.19956, -33.29286, -123.98044, 145.09467, 70.05777, 40.27930},
         {-65.74251, -53.22389, 73.00652, -36.43874, 39.82976, 5.39622, 67.02846, -67.92147},
         {-21.96468, -63.45059, 150.48714, -46.24810, 100.67613, -12.57593, -62.07357, 41.76937}}};
    for (auto& column : angles)
        for (double& angle : column) angle *= 3.14159265358979323846 / 180;
    MonteCarloProblem problem;
    problem.Fit.Mode = FitMode::Tool;
    problem.Fit.Pairs = {.Start = {measured[0], measured[1], measured[2]},
                         .Target = {flange[0], flange[1], flange[2]},
                         .PoseAngles = {angles[0], angles[1], angles[2]}};
    const std::initializer_list<int> floating = {kTraX, kTraY,     kTraZ,  kRotX,  kRotY,
                                                 kRotZ, kScaleXYZ, kRvecX, kRvecY, kRvecZ};
    for (const int k : floating) problem.Fit.Choice.Floats[At(k)] = true;
    problem.Sigma = {0.05, 0.05, 0.05};
    problem.Runs = 2000;
    const MonteCarloResult result = FitWithRuns(problem);
    ASSERT_EQ(result.End, MonteCarloEnd::Complete);
    EXPECT_GT(result.BeganAgain, 0);
    for (const int k : floating) {
        const int u = result.Fit.Model.UnknownOf[At(k)];
        // Each start point has the noise, which the scale carries along.
        const double sigma = 0.05 * result.Fit.Values[kScaleXYZ] * std::sqrt(result.Fit.Q(u, u));
        EXPECT_NEAR(SigmaOfArray(Array(result, k)), sigma, 0.08 * sigma) << k;
    }
}
