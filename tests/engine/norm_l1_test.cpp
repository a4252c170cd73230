// L1 by reweighting: its steps by hand, its end, and what it is for.
#include "cli/headless.h"
#include "core/form_main.h"
#include "core/notes.h"
#include "core/run.h"
#include "core/units.h"
#include "engine/fit_job.h"
#include "engine/norm_job.h"
#include "engine/selection.h"

using namespace corvinade;

using L1 = NormTest;

namespace {

struct ByHand {
    double Mean = 0, Change = 0;
    int Rounds = 0;
    std::vector<double> Weights;
};

// The loop for a height alone.
ByHand Reweighted(const std::vector<double>& values) {
    ByHand hand;
    hand.Weights.assign(values.size(), 1);
    double d = 1e12;
    do {
        const double before = d;
        hand.Mean = WeightedMean(values, hand.Weights);
        d = 0;
        for (std::size_t i = 0; i < values.size(); ++i) {
            const double residual = std::fabs(hand.Mean - values[i]);
            hand.Weights[i] = 1 / (1e-12 + residual);
            d += residual;
        }
        hand.Change = std::fabs(d - before);
        ++hand.Rounds;
    } while (hand.Change >= 1e-3);
    return hand;
}

void MoveTarget(int point, double dx, double dy, double dz) {
    const auto k = static_cast<std::size_t>(point);
    Job.Target.X[k] = *Job.Target.X[k] + dx;
    Job.Target.Y[k] = *Job.Target.Y[k] + dy;
    Job.Target.Z[k] += dz;
}

}  // namespace

TEST_F(L1, TakesTheStepsOfAWeightedMean) {
    const std::vector<double> heights = {0, 1, 2.5, 4, 30};
    Heights(heights);
    Calculate(kL1);
    const ByHand hand = Reweighted(heights);
    EXPECT_GT(hand.Rounds, 3);
    EXPECT_EQ(Norm.Iterations, hand.Rounds);
    EXPECT_TRUE(Calculation.Converged);
    EXPECT_NEAR(Job.TraZ, hand.Mean, 1e-9);
    EXPECT_NEAR(Job.TraZ, 2.5, 1e-3) << "the median";
    for (int i = 1; i <= 5; ++i) {
        const double weight = hand.Weights[static_cast<std::size_t>(i - 1)];
        // The weight of the row on the median hangs on the last digits of its residual.
        EXPECT_NEAR(WeightOfHeight(i), weight, 1e-4 * weight) << i;
    }
}

TEST_F(L1, NoFitFollowsTheLastReweighting) {
    Heights({0, 1, 2.5, 4, 30});
    Calculate(kL1);
    for (int i = 1; i <= 5; ++i) {
        const double residual = Calculation.v[static_cast<std::size_t>(3 * i)];
        EXPECT_NEAR(residual, Job.TraZ - Job.Target.Z[static_cast<std::size_t>(i)], 1e-14) << i;
        EXPECT_EQ(WeightOfHeight(i), 1 / (1e-12 + std::fabs(residual))) << i;
    }
}

TEST_F(L1, AResidualOfExactlyZeroGetsAWeightOfABillionTimesAThousand) {
    Heights({7});
    Calculate(kL1);
    EXPECT_EQ(Calculation.v[3], 0);
    EXPECT_DOUBLE_EQ(WeightOfHeight(1), 1e12);
    EXPECT_EQ(Job.TraZ, 7);
}

TEST_F(L1, TheFirstRoundCannotEndTheLoop) {
    Heights({7, 7, 7});
    Calculate(kL1);
    EXPECT_EQ(Norm.Iterations, 2) << "the sum is 0 from the first round on";
    EXPECT_TRUE(Calculation.Converged);
    ASSERT_EQ(Main.StatusBar_7.Text.substr(0, 6), "d[v]: ");
    EXPECT_NEAR(std::stod(Main.StatusBar_7.Text.substr(6)), 0, 1e-14);
}

TEST_F(L1, RowsOutOfUseStayOut) {
    Heights({0, 1, 2.5, 4, 30});
    Job.UseFlags[15] = 0;
    Calculate(kL1);
    EXPECT_EQ(WeightOfHeight(5), 0);
    for (int i = 1; i <= 5; ++i)
        for (int axis = 2; axis >= 1; --axis)
            EXPECT_EQ(Calculation.P[static_cast<std::size_t>(3 * i - axis)], 0);
    EXPECT_GE(Job.TraZ, 1 - 1e-3);
    EXPECT_LE(Job.TraZ, 2.5 + 1e-3);
}

TEST_F(L1, ThePanelsTellTheChangeAndTheRounds) {
    const std::vector<double> heights = {0, 1, 2.5, 4, 30};
    Heights(heights);
    Units.LengthFactor = 0.001;
    Calculate(kL1);
    const ByHand hand = Reweighted(heights);
    EXPECT_EQ(Main.StatusBar_6.Text, "L1 Iterationen: " + std::to_string(hand.Rounds));
    ASSERT_EQ(Main.StatusBar_7.Text.substr(0, 6), "d[v]: ");
    EXPECT_NEAR(std::stod(Main.StatusBar_7.Text.substr(6)), hand.Change * 0.001, 1e-9);
    EXPECT_EQ(Main.StatusBar_2.Text, "...ready");
    EXPECT_EQ(Norm.NormTolerance, 1e-3);
}

TEST_F(L1, FindsTheTransformationBehindPlantedOutliers) {
    AddCloud({.Points = 20, .Truth = kTruth});
    MoveTarget(3, 50, -20, 10);
    MoveTarget(11, 0, 300, 0);
    MoveTarget(17, -5, 4, 80);
    FloatParameters(kRigid);
    Calculate(kL2);
    const double sumOfL2 = SumOfResiduals();
    EXPECT_GT(std::fabs(Job.TraX - 100), 1);
    Calculate(kL1);
    EXPECT_TRUE(Calculation.Converged);
    EXPECT_NEAR(Job.TraX, 100, 1e-2);
    EXPECT_NEAR(Job.RotZ, 2.1, 1e-5);
    // Without the outliers all points fit exactly, so the best sum is that of the outliers alone.
    const double optimum = 50 + 20 + 10 + 300 + 5 + 4 + 80;
    EXPECT_GE(SumOfResiduals(), optimum - 1e-9);
    EXPECT_LE(SumOfResiduals(), optimum + 0.05);
    EXPECT_GT(sumOfL2, 1.2 * optimum);
}

TEST_F(L1, WithScalesAndNoiseTheSumIsBelowThatOfLeastSquares) {
    AddCloud({.Points = 50, .Noise = 0.2, .Truth = kTruth});
    MoveTarget(9, 0, 0, 25);
    FloatParameters(kRigid);
    FloatParameters({kScaleX, kScaleY, kScaleZ});
    Calculate(kL2);
    const double sumOfL2 = SumOfResiduals();
    Calculate(kL1);
    EXPECT_TRUE(Calculation.Converged);
    EXPECT_LT(SumOfResiduals(), sumOfL2);
}

TEST_F(L1, ExactPointsFarFromTheOriginConverge) {
    AddCloud({.Points = 12, .Centre = {1e6, -2e6, 3e5}, .Truth = kTruth});
    FloatParameters(kRigid);
    Calculate(kL1);
    EXPECT_TRUE(Calculation.Converged);
    EXPECT_TRUE(Messages().empty());
    EXPECT_LT(LargestResidual(), 1e-8);
}

TEST_F(L1, TheStopEndsTheLoopAndLeavesTheLastPassesParameters) {
    Heights({0, 1, 2.5, 4, 30});
    std::uint64_t at = 0;
    Headless.OnYield = [&at] {
        if (Norm.Iterations != 3 || at != 0) return;
        at = Headless.Yields;
        ::Run.StopRequested = kTrue;
    };
    Calculate(kL1);
    EXPECT_NE(at, 0u);
    EXPECT_EQ(Norm.Iterations, 3);
    EXPECT_EQ(Headless.Yields, at) << "no pass begins after the stop";
    EXPECT_FALSE(Calculation.Converged);
    const double residual = Calculation.v[15];
    EXPECT_EQ(WeightOfHeight(5), 1 / (1e-12 + std::fabs(residual)));
    EXPECT_TRUE(Messages().empty());
}

TEST_F(L1, AJobReplacedInTheLoopIsLeftAlone) {
    Heights({0, 1, 2.5, 4, 30});
    Calculation.nFloat = 77;
    Headless.OnYield = [] {
        if (Norm.Iterations == 2) ++::Run.JobGeneration;
    };
    Calculate(kL1);
    EXPECT_EQ(Norm.Iterations, 2);
    EXPECT_EQ(Calculation.nFloat, 77);
    EXPECT_EQ(::Run.JobDirty, kFalse);
    EXPECT_EQ(::Run.TrafoValid, kFalse);
}

TEST_F(L1, FitsThatDoNotConvergeAreOneMessageAndOneNote) {
    AddCloud({.Points = 20, .Noise = 1, .Truth = kTruth});
    FloatParameters(kRigid);
    Settings.MaxIteration = 0;
    Calculate(kL1);
    EXPECT_GT(Norm.Iterations, 1) << "the loop goes on to its own tolerance";
    EXPECT_EQ(Norm.Unsettled, Norm.Iterations);
    EXPECT_FALSE(Calculation.Converged);
    EXPECT_EQ(Messages(), std::vector<std::string>{
                              "Calculation stopped after 0 Iterations, Convergence not reached yet!"});
    // And the result itself is one that did not converge.
    ASSERT_EQ(Notes.List.size(), 2u);
    EXPECT_EQ(Notes.List[0].Code, NoteCode::UnsettledFits);
    EXPECT_EQ(Notes.List[1].Code, NoteCode::NotConverged);
    EXPECT_EQ(
        Notes.List[0].Text.find(std::to_string(Norm.Unsettled) + " inner fits of L1 ended at the limit"), 0u);
}

TEST_F(L1, GoesOnBehindAFitThatDidNotSettle) {
    // Four control points of textbooks, in mm: some inner fits swing about their place for ever.
    struct Set {
        std::vector<reference::Point> Start, Target;
    };
    const std::vector<Set> sets = {
        {{{1094883, 820085, 109821},
          {503891, 1598698, 117685},
          {2349343, 207658, 151387},
          {1395320, 1348853, 215261}},
         {{10037810, 5262090, 772040},
          {10956680, 5128170, 783000},
          {8780080, 4840290, 782620},
          {10185800, 4700210, 851320}}},
        {{{585435, 755475, 102520},
          {553175, 988105, 104190},
          {424045, 785635, 106125},
          {394950, 1061700, 106070}},
         {{929580, 422800, -210}, {575360, 480900, 2370}, {812370, 200820, -240}, {396280, 283240, 410}}}};
    for (const Set& set : sets) {
        Job = JobRecord{};
        BeginFit();
        for (std::size_t i = 0; i < 4; ++i) AddPair(set.Start[i], set.Target[i]);
        FloatParameters(kRigid);
        FloatParameters({kScaleXYZ});
        Calculate(kL1);
        EXPECT_TRUE(Messages().empty());
        EXPECT_TRUE(Calculation.Converged);
        const double loop = SumOfResiduals();
        EXPECT_GT(Norm.Unsettled, 0);
        ASSERT_EQ(Notes.List.size(), 2u);
        EXPECT_EQ(Notes.List[0].Code, NoteCode::UnsettledFits);
        EXPECT_EQ(Notes.List[1].Code, NoteCode::NormSigma);
        // The way to the certified optimum goes by exchanges of rows and knows no inner fits.
        Norm.RunOn = true;
        Calculate(kL1);
        Norm.RunOn = false;
        EXPECT_LT(Norm.AboveOptimum, 1e-6);
        EXPECT_NEAR(loop, SumOfResiduals(), 0.05);
        ASSERT_EQ(Notes.List.size(), 1u) << "the optimum does not stand on the inner fits";
        EXPECT_EQ(Notes.List[0].Code, NoteCode::NormSigma);
        EXPECT_TRUE(Messages().empty());
    }
}

TEST_F(L1, ANumberThatIsNoneEndsTheLoop) {
    Heights({0, 1, std::nan(""), 4});
    Calculate(kL1);
    EXPECT_EQ(Norm.Iterations, 1);
    EXPECT_FALSE(Calculation.Finite);
    EXPECT_EQ(::Run.TrafoValid, kFalse);
}

TEST_F(L1, CoordinatesWhoseRoundingIsAboveTheToleranceEndTheLoop) {
    std::vector<double> heights;
    for (int i = 0; i < 40; ++i) heights.push_back(1e15 * NextNumber());
    Heights(heights);
    Settings.BestFit_Etta = 1;
    Calculate(kL1);
    EXPECT_LT(Norm.Iterations, kMostNormRounds);
    EXPECT_TRUE(Calculation.Finite);
}

TEST_F(L1, ALoopThatDoesNotComeToRestEndsWithAMessage) {
    // The sum of the residuals is beyond all numbers, and so it never stands still.
    Heights({1e308, 1e308, 1e308});
    Job.ParamText[kTraZ] = "0";
    Calculate(kL1);
    EXPECT_FALSE(Calculation.Converged);
    EXPECT_EQ(Messages(),
              (std::vector<std::string>{
                  "L1 stopped after 100 Iterations, the sum of residuals does not come to rest!"}));
}

TEST_F(L1, AStopIsNoNews) {
    Heights({0, 1, 2.5, 4, 30});
    ::Run.StopRequested = kTrue;
    Calculate(kL1);
    EXPECT_FALSE(Calculation.Converged);
    EXPECT_TRUE(Messages().empty());
}

TEST_F(L1, OfDistancesAPointsResidualWeighsItsThreeRows) {
    // Points on a sphere about the start point's image: the distance of all target points is 100.
    std::vector<reference::Point> directions = {{1, 0, 0},      {0, 1, 0},      {0, 0, 1},  {-0.6, 0.8, 0},
                                                {0, -0.6, 0.8}, {0.8, 0, -0.6}, {-1, 0, 0}, {0, -1, 0}};
    for (const reference::Point& e : directions) AddPair({0, 0, 0}, {100 * e[0], 100 * e[1], 100 * e[2]});
    AddPair({0, 0, 0}, {0, 0, -130});
    // Nothing but the distance floats, so it is a weighted mean of eight 100 and one 130.
    FloatParameters({kRDist});
    Selection.CheckRDist = true;
    for (const int k : {kTraX, kTraY, kTraZ, kRotX, kRotY, kRotZ})
        Job.ParamText[static_cast<std::size_t>(k)] = "0";
    Calculate(kL2);
    EXPECT_NEAR(Job.RDist, 100 + 30.0 / 9, 1e-9);
    Calculate(kL1);
    EXPECT_NEAR(Job.RDist, 100, 1e-2);
    for (int i = 1; i <= 9; ++i) {
        const double weight = 1 / std::fabs(1e-12 + Calculation.v[static_cast<std::size_t>(i)]);
        for (int row = 3 * i - 2; row <= 3 * i; ++row)
            EXPECT_EQ(Calculation.P[static_cast<std::size_t>(row)], weight) << row;
    }
}

TEST_F(L1, AnyNumberBesidesOneAndThreeIsLeastSquares) {
    Heights({0, 1, 2.5, 4, 30});
    for (const int norm : {0, 2, 4, -1}) {
        Job.TraZ = 0;
        Calculate(norm);
        EXPECT_NEAR(Job.TraZ, 7.5, 1e-12) << norm;
        EXPECT_EQ(Main.StatusBar_6.Text, "...L2");
        EXPECT_EQ(Main.StatusBar_7.Text, "...L2");
        EXPECT_EQ(Norm.Iterations, 0);
        EXPECT_EQ(Norm.NormTolerance, 1e-10);
        EXPECT_EQ(WeightOfHeight(1), 1);
        EXPECT_TRUE(Calculation.Converged);
    }
}
