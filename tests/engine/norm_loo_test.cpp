// L-infinity by exchange of weight: its steps by hand, its end, the weights taken back.
#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

#include "cli/headless.h"
#include "core/form_main.h"
#include "core/notes.h"
#include "core/run.h"
#include "core/units.h"
#include "engine/fit_job.h"
#include "engine/norm_job.h"
#include "engine/selection.h"

using namespace corvinade;

using Loo = NormTest;

namespace {

struct ByHand {
    double Mean = 0, Max = 0;
    int Rounds = 0;
    bool Rose = false;
    std::vector<double> Weights;
};

// The loop for a height alone; places counted from 0, and all rows in use.
ByHand Exchanged(const std::vector<double>& values) {
    ByHand hand;
    std::vector<double>& P = hand.Weights;
    P.assign(values.size(), 1);
    double max = 0, maxBefore = 0;
    std::ptrdiff_t iMax = -1, iMin = -1, iMaxBefore = -1, iMinBefore = -1;
    const auto change = [&P](std::ptrdiff_t i, double factor) {
        if (i >= 0) P[static_cast<std::size_t>(i)] *= factor;
    };
    for (;;) {
        maxBefore = max;
        iMaxBefore = iMax;
        iMinBefore = iMin;
        ++hand.Rounds;
        hand.Mean = WeightedMean(values, P);
        std::vector<double> residuals;
        for (const double value : values) residuals.push_back(std::fabs(hand.Mean - value));
        const auto largest = std::max_element(residuals.begin(), residuals.end());
        max = *largest;
        iMax = largest - residuals.begin();
        iMin = std::min_element(residuals.begin(), residuals.end()) - residuals.begin();
        change(iMax, 1.1);
        change(iMin, 1 / 1.1);
        hand.Rose = hand.Rounds > 1 && max > maxBefore;
        if (std::fabs(max - maxBefore) < 1e-4 || hand.Rose) break;
    }
    for (const std::ptrdiff_t i : {iMax, iMaxBefore}) change(i, 1 / 1.1);
    for (const std::ptrdiff_t i : {iMin, iMinBefore}) change(i, 1.1);
    hand.Max = max;
    hand.Mean = WeightedMean(values, P);
    return hand;
}

void ExpectAsByHand(const std::vector<double>& heights, const ByHand& hand) {
    EXPECT_EQ(Norm.Iterations, hand.Rounds);
    EXPECT_NEAR(Job.TraZ, hand.Mean, 1e-9);
    for (std::size_t i = 0; i < heights.size(); ++i)
        EXPECT_NEAR(Calculation.P[3 * (i + 1)], hand.Weights[i], 1e-9 * hand.Weights[i]) << i;
}

}  // namespace

TEST_F(Loo, TakesTheStepsOfAWeightedMean) {
    const std::vector<double> heights = {0, 0.5, -0.25, 0.1, 10};
    Heights(heights);
    Calculate(kLoo);
    const ByHand hand = Exchanged(heights);
    EXPECT_GT(hand.Rounds, 5);
    ExpectAsByHand(heights, hand);
    EXPECT_TRUE(Calculation.Converged);
    // The least largest residual is half of the span; least squares leave 7.93.
    EXPECT_GE(LargestResidual(), 5.125 - 1e-9);
    EXPECT_LT(LargestResidual(), 5.5);
}

TEST_F(Loo, ANormThatIsChosenInsideTheLoopIsThatOfTheNextCalculation) {
    const std::vector<double> heights = {0, 0.5, -0.25, 0.1, 10};
    Heights(heights);
    // Its end was held against the sum of the residuals then, and the loop taken for one led astray.
    Headless.OnYield = [] {
        if (Norm.Iterations == 2) Job.NormType = kL1;
    };
    Calculate(kLoo);
    EXPECT_EQ(Job.NormType, kL1);
    ExpectAsByHand(heights, Exchanged(heights));
    EXPECT_TRUE(Calculation.Converged);
    for (const Note& note : Notes.List) EXPECT_NE(note.Code, NoteCode::BetterStart) << note.Text;
}

TEST_F(Loo, AMaximumThatRisesInTheSecondRoundEndsTheLoopAndBothExchangesAreTakenBack) {
    const std::vector<double> heights = {1, -0.99, 0.001, 0};
    Heights(heights);
    Calculate(kLoo);
    const ByHand hand = Exchanged(heights);
    ASSERT_TRUE(hand.Rose);
    EXPECT_EQ(Norm.Iterations, 2);
    ExpectAsByHand(heights, hand);
    for (int i = 1; i <= 4; ++i) EXPECT_NEAR(WeightOfHeight(i), 1, 1e-15) << i;
    EXPECT_NEAR(Job.TraZ, 0.011 / 4, 1e-12) << "all weights are 1 again: the mean";
    EXPECT_TRUE(Calculation.Converged);
}

TEST_F(Loo, TheTakeBackLeavesEarlierExchangesInPlace) {
    const std::vector<double> heights = {0, 0.5, -0.25, 0.1, 10};
    Heights(heights);
    Calculate(kLoo);
    const ByHand hand = Exchanged(heights);
    EXPECT_GT(WeightOfHeight(5), 1.2);
    EXPECT_NEAR(WeightOfHeight(5), hand.Weights[4], 1e-12);
}

TEST_F(Loo, ASingleRowIsWorstAndBestAndItsChangesCancel) {
    Heights({7});
    Calculate(kLoo);
    EXPECT_EQ(Norm.Iterations, 1) << "its largest residual is 0, as at the start";
    EXPECT_NEAR(WeightOfHeight(1), 1, 1e-15);
    EXPECT_EQ(Job.TraZ, 7);
    EXPECT_NEAR(Calculation.v[3], 0, 1e-14);
}

TEST_F(Loo, OnlyRowsInUseAreWorstOrBest) {
    Heights({0, 0.5, -0.25, 0.1, 10, 500});
    Job.UseFlags[18] = 0;
    Calculate(kLoo);
    ExpectAsByHand({0, 0.5, -0.25, 0.1, 10}, Exchanged({0, 0.5, -0.25, 0.1, 10}));
    EXPECT_EQ(WeightOfHeight(6), 0);
    for (std::size_t i = 1; i < Calculation.P.size(); i += 3) {
        EXPECT_EQ(Calculation.P[i], 0) << i;
        EXPECT_EQ(Calculation.P[i + 1], 0) << i;
    }
}

TEST_F(Loo, APlaneComesNearTheOneOfLeastLargestResidual) {
    // Four corners at height 0 and the centre at 1. The plane lies level by symmetry; least squares put
    // it at 1/5 and leave 0.8 at the centre, the least largest residual is 1/2 at all five.
    for (const double x : {-1000.0, 1000.0})
        for (const double y : {-1000.0, 1000.0}) AddPair({x, y, 0}, {x, y, 0});
    AddPair({0, 0, 0}, {0, 0, 1});
    FloatParameters({kTraZ, kRotX, kRotY});
    Calculate(kL2);
    EXPECT_NEAR(LargestResidual(), 0.8, 1e-9);
    Calculate(kLoo);
    EXPECT_TRUE(Calculation.Converged);
    EXPECT_GE(LargestResidual(), 0.5 - 1e-6);
    EXPECT_LT(LargestResidual(), 0.55);
    EXPECT_NEAR(Job.TraZ, 0.5, 0.05);
}

TEST_F(Loo, LiesBetweenTheOptimumsLowerBoundAndLeastSquares) {
    AddCloud({.Points = 15, .Noise = 0.3, .Truth = kTruth});
    FloatParameters(kRigid);
    Calculate(kL2);
    const double largestOfL2 = LargestResidual();
    // The residuals of least squares are orthogonal to every change of the parameters, so no result has a
    // largest residual below v'v / sum |v|.
    double squares = 0;
    for (const double v : Calculation.v) squares += v * v;
    const double bound = squares / SumOfResiduals();
    Calculate(kLoo);
    EXPECT_TRUE(Calculation.Converged);
    EXPECT_LT(LargestResidual(), largestOfL2);
    EXPECT_GT(LargestResidual(), bound);
}

TEST_F(Loo, ThePanelsTellTheLargestResidualAndTheRounds) {
    const std::vector<double> heights = {0, 0.5, -0.25, 0.1, 10};
    Heights(heights);
    Units.LengthFactor = 0.1;
    Units.FmtLength = "0.0000";
    std::string first6, first7;
    Headless.OnYield = [&] {
        if (Headless.Yields != 2) return;
        first6 = Main.StatusBar_6.Text;
        first7 = Main.StatusBar_7.Text;
    };
    Calculate(kLoo);
    EXPECT_EQ(first6, "Loo...max is min");
    EXPECT_EQ(first7, "Loo...max is min");
    const ByHand hand = Exchanged(heights);
    EXPECT_EQ(Main.StatusBar_6.Text, "Loo Iterat.: " + std::to_string(hand.Rounds));
    const std::string text = Main.StatusBar_7.Text;
    ASSERT_GT(text.size(), 9u);
    EXPECT_EQ(text.substr(text.size() - 9), "[v max]: ");
    EXPECT_NEAR(std::stod(text), hand.Max / 10, 0.5e-4);
    EXPECT_EQ(Main.StatusBar_2.Text, "...ready");
    EXPECT_EQ(Norm.NormTolerance, 1e-4);
}

TEST_F(Loo, EachCalculationBeginsAfresh) {
    const std::vector<double> heights = {0, 0.5, -0.25, 0.1, 10};
    Heights(heights);
    Calculate(kL1);
    Calculate(kLoo);
    const double first = Job.TraZ;
    Calculate(kLoo);
    ExpectAsByHand(heights, Exchanged(heights));
    EXPECT_EQ(Job.TraZ, first);
}

TEST_F(Loo, AfterAStopTheWeightsStayAsTheyAre) {
    const std::vector<double> heights = {0, 0.5, -0.25, 0.1, 10};
    Heights(heights);
    Headless.OnYield = [] {
        if (Norm.Iterations == 2) ::Run.StopRequested = kTrue;
    };
    Calculate(kLoo);
    EXPECT_EQ(Norm.Iterations, 2);
    EXPECT_FALSE(Calculation.Converged);
    EXPECT_NEAR(WeightOfHeight(5), 1.1 * 1.1, 1e-15) << "the worst row of both rounds";
}

TEST_F(Loo, AStopInTheFirstFitKeepsItsParameters) {
    Heights({0, 0.5, -0.25, 0.1, 10});
    Headless.OnYield = [] { ::Run.StopRequested = kTrue; };
    Calculate(kLoo);
    EXPECT_EQ(Norm.Iterations, 0);
    EXPECT_NEAR(Job.TraZ, 2.07, 1e-9);  // one pass is enough for a mean
    EXPECT_FALSE(Calculation.Converged);
}

TEST_F(Loo, AJobReplacedInTheLoopIsLeftAlone) {
    Heights({0, 0.5, -0.25, 0.1, 10});
    for (const int round : {0, 1, 2}) {
        bool done = false;
        Headless.OnYield = [round, &done] {
            if (Norm.Iterations != round || Headless.Yields < 2 || done) return;
            done = true;
            ++::Run.JobGeneration;
        };
        Headless.Yields = 0;
        Calculate(kLoo);
        EXPECT_EQ(Norm.Iterations, round);
        EXPECT_EQ(::Run.JobDirty, kFalse);
    }
}

TEST_F(Loo, FitsThatDoNotConvergeAreOneMessageAndOneNote) {
    AddCloud({.Points = 20, .Noise = 1, .Truth = kTruth});
    FloatParameters(kRigid);
    Settings.MaxIteration = 0;
    Calculate(kLoo);
    EXPECT_GT(Norm.Iterations, 1) << "the loop goes on by its own rule";
    EXPECT_EQ(Norm.Unsettled, Norm.Iterations + 2) << "with the fit before the rounds and the one behind";
    EXPECT_EQ(Messages().size(), 1u);
    EXPECT_FALSE(Calculation.Converged);
    // And the result itself is one that did not converge.
    ASSERT_EQ(Notes.List.size(), 2u);
    EXPECT_EQ(Notes.List[0].Code, NoteCode::UnsettledFits);
    EXPECT_EQ(Notes.List[1].Code, NoteCode::NotConverged);
}

TEST_F(Loo, OfDistancesTheExchangeReachesTheRowBesideThePoint) {
    // Only the distance floats: eight points at 100 and one, the last, at 130.
    const std::vector<reference::Point> directions = {{1, 0, 0},      {0, 1, 0},      {0, 0, 1},
                                                      {-0.6, 0.8, 0}, {0, -0.6, 0.8}, {0.8, 0, -0.6},
                                                      {-1, 0, 0},     {0, -1, 0}};
    for (const reference::Point& e : directions) AddPair({0, 0, 0}, {100 * e[0], 100 * e[1], 100 * e[2]});
    AddPair({0, 0, 0}, {0, 0, -130});
    FloatParameters({kRDist});
    Selection.CheckRDist = true;
    for (const int k : {kTraX, kTraY, kTraZ, kRotX, kRotY, kRotZ})
        Job.ParamText[static_cast<std::size_t>(k)] = "0";
    Calculate(kLoo);
    EXPECT_TRUE(Calculation.Converged);
    // Row 8 belongs to point 3 and is not the one that its weight is taken from: all stays a mean, the
    // second round's largest residual is that of the first, and the last fit spreads the weights of Z.
    EXPECT_EQ(Norm.Iterations, 2);
    EXPECT_NEAR(Job.RDist, 100 + 30.0 / 9, 1e-9);
    for (int i = 1; i <= 9; ++i) EXPECT_NEAR(WeightOfHeight(i), 1, 1e-15);
}

// The middle of the range of n normally distributed numbers spreads by about pi / sqrt(24 ln n) (Cramer,
// Mathematical Methods of Statistics, 28.6), their mean by 1 / sqrt(n).
TEST_F(Loo, OfManyPointsIsKnownWorseThanItsSigmaSaysWhichIsNoted) {
    constexpr int kPoints = 100, kSets = 60;
    const auto normal = [] {
        const double radius = std::sqrt(-2 * std::log((1 + NextNumber()) / 2));
        return radius * std::cos(std::numbers::pi * NextNumber());
    };
    double squares = 0, sigmas = 0;
    for (int set = 0; set < kSets; ++set) {
        SCOPED_TRACE(set);
        Job = JobRecord{};
        BeginFit();
        for (int skip = 0; skip < 2 * kPoints * set; ++skip) NextNumber();
        std::vector<double> heights(kPoints);
        for (double& height : heights) height = normal();
        Heights(heights);
        Norm.RunOn = true;
        Notes.List.clear();
        Calculate(kLoo);
        const auto [least, most] = std::minmax_element(heights.begin(), heights.end());
        EXPECT_NEAR(Job.TraZ, (*least + *most) / 2, 1e-6);
        squares += Job.TraZ * Job.TraZ / kSets;
        sigmas += Calculation.Sigma[kTraZ] / kSets;
        ASSERT_EQ(Notes.List.size(), 1u);
        EXPECT_EQ(Notes.List[0].Code, NoteCode::NormSigma);
        EXPECT_NE(Notes.List[0].Text.find("Loo"), std::string::npos);
    }
    const double spread = std::numbers::pi / std::sqrt(24 * std::log(kPoints));
    EXPECT_NEAR(std::sqrt(squares), spread, 0.35 * spread);
    EXPECT_GT(std::sqrt(squares), 2 * sigmas);
}

TEST_F(Loo, WithoutDeviationsTheSigmasNeedNoNote) {
    Heights({2, 2, 2, 2});
    Calculate(kLoo);
    for (const Note& note : Notes.List)
        EXPECT_NE(note.Code, NoteCode::NormSigma) << note.Text << Calculation.s0;
}
