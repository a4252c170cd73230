// `corvinade-cli fit --norm`: its numbers by hand, and what the outputs say of it.
#include <cmath>

#include "cli/fit_command.h"

using namespace corvinade;

using FitNorm = FitCommand;

namespace {

// Heights above a plane, everything but the shift in z held.
const std::vector<std::string> kHeightAlone = {"--hold", "trax=0", "--hold", "tray=0", "--hold",
                                               "rotx=0", "--hold", "roty=0", "--hold", "rotz=0"};

std::vector<std::string> WithArguments(std::vector<std::string> arguments,
                                       const std::vector<std::string>& more) {
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
}

}  // namespace

TEST_F(FitNorm, AHeightIsMeanMedianOrNearlyTheMiddle) {
    const std::string start = Write("h1.txt", "A;0;0;0\nB;100;0;0\nC;0;100;0\nD;100;100;0\nE;50;20;0\n");
    const std::string target = Write("h2.txt", "A;0;0;0\nB;100;0;1\nC;0;100;2.5\nD;100;100;4\nE;50;20;30\n");
    const auto fit = [&](const char* norm) {
        return FitJson(WithArguments({start, target, "--norm", norm}, kHeightAlone));
    };
    const json l2 = fit("l2");
    EXPECT_EQ(l2["norm"], "l2");
    EXPECT_EQ(l2["normIterations"], 0);
    EXPECT_NEAR(l2["transformation"]["translation_mm"][2].get<double>(), 7.5, 1e-9);
    EXPECT_NEAR(l2["quality"]["sumOfDeviations_mm"].get<double>(), 7.5 + 6.5 + 5 + 3.5 + 22.5, 1e-9);
    EXPECT_NEAR(l2["quality"]["largestDeviation_mm"].get<double>(), 22.5, 1e-9);
    const json l1 = fit("l1");
    EXPECT_EQ(l1["norm"], "l1");
    EXPECT_GT(l1["normIterations"], 2);
    EXPECT_NEAR(l1["transformation"]["translation_mm"][2].get<double>(), 2.5, 1e-3);
    EXPECT_NEAR(l1["quality"]["sumOfDeviations_mm"].get<double>(), 2.5 + 1.5 + 1.5 + 27.5, 2e-3);
    const json loo = fit("loo");
    EXPECT_EQ(loo["norm"], "loo");
    EXPECT_EQ(loo["converged"], true);
    EXPECT_GE(loo["quality"]["largestDeviation_mm"].get<double>(), 15 - 1e-9);
    EXPECT_LT(loo["quality"]["largestDeviation_mm"].get<double>(), 17);
}

TEST_F(FitNorm, WithL1TheKnockedMarkShowsByHowMuchItMovedWithoutBeingLeftOut) {
    const json fit = FitJson({kMeasured, kNominal, "--norm", "l1"});
    const json leftOut = FitJson({kMeasured, kNominal, "--norm", "l1", "--leave-out", "F09"});
    for (std::size_t axis = 0; axis < 3; ++axis)
        EXPECT_NEAR(fit["transformation"]["translation_mm"][axis].get<double>(),
                    leftOut["transformation"]["translation_mm"][axis].get<double>(), 0.3)
            << "the mark hardly pulls";
    for (const json& point : fit["points"]) {
        if (point["name"] != "F09") continue;
        EXPECT_NEAR(point["residual3D_mm"].get<double>(), std::hypot(3.2, 1.1), 0.3);
    }
}

TEST_F(FitNorm, CoordinatesLeftOutDoNotCountInTheNorms) {
    const std::string target = Write("t.txt", "A;5;6;7\nB;1005;6;7\nC;5;2006;7\nD;5;6;3007\nE;705;906;907\n");
    const json fit = FitJson({start_, target, "--leave-out", "E:y"});
    EXPECT_NEAR(fit["quality"]["sumOfDeviations_mm"].get<double>(), 0, 1e-7);
    EXPECT_NEAR(fit["quality"]["largestDeviation_mm"].get<double>(), 0, 1e-7);
}

TEST_F(FitNorm, TheTableNamesTheNormAndWhatItMakesLeast) {
    const Outcome l1 = Fit({kMeasured, kNominal, "--norm", "l1"});
    EXPECT_EQ(l1.Status, 0) << l1.Err;
    for (const char* part : {"L1, ", " weightings", "sum ", "largest "})
        EXPECT_NE(l1.Out.find(part), std::string::npos) << part << "\n" << l1.Out;
    const Outcome loo = Fit({kMeasured, kNominal, "--norm", "loo"});
    EXPECT_EQ(loo.Status, 0) << loo.Err;
    EXPECT_NE(loo.Out.find("L-infinity, "), std::string::npos) << loo.Out;
    const Outcome l2 = Fit({kMeasured, kNominal, "--norm", "l2"});
    EXPECT_EQ(l2.Out, Fit({kMeasured, kNominal}).Out);
    EXPECT_EQ(l2.Out.find("weightings"), std::string::npos);
}

TEST_F(FitNorm, OfAHeightTheExactNormsAreMedianAndMiddle) {
    const std::string start = Write("h1.txt", "A;0;0;0\nB;100;0;0\nC;0;100;0\nD;100;100;0\nE;50;20;0\n");
    const std::string target = Write("h2.txt", "A;0;0;0\nB;100;0;1\nC;0;100;2.5\nD;100;100;4\nE;50;20;30\n");
    const auto fit = [&](const char* norm) {
        return FitJson(WithArguments({start, target, "--norm", norm}, kHeightAlone));
    };
    const json l1 = fit("l1-exact");
    EXPECT_EQ(l1["norm"], "l1-exact");
    EXPECT_EQ(l1["converged"], true);
    EXPECT_NEAR(l1["transformation"]["translation_mm"][2].get<double>(), 2.5, 1e-12);
    EXPECT_NEAR(l1["quality"]["sumOfDeviations_mm"].get<double>(), 33, 1e-11);
    EXPECT_LT(l1["optimum"]["atMostAbove_mm"].get<double>(), 1e-9);
    EXPECT_GE(l1["optimum"]["atMostAbove_mm"].get<double>(), 0);
    const json minimax = fit("minimax");
    EXPECT_NEAR(minimax["transformation"]["translation_mm"][2].get<double>(), 15, 1e-12);
    EXPECT_NEAR(minimax["quality"]["largestDeviation_mm"].get<double>(), 15, 1e-12);
    EXPECT_LT(minimax["optimum"]["atMostAbove_mm"].get<double>(), 1e-9);
    EXPECT_FALSE(fit("l1").contains("optimum"));
}

TEST_F(FitNorm, TheTableTellsHowNearTheOptimumIs) {
    const Outcome l1 = Fit({kMeasured, kNominal, "--norm", "l1-exact"});
    EXPECT_EQ(l1.Status, 0) << l1.Err;
    EXPECT_NE(l1.Out.find("the sum is at most "), std::string::npos) << l1.Out;
    const Outcome minimax = Fit({kMeasured, kNominal, "--norm", "minimax"});
    EXPECT_EQ(minimax.Status, 0) << minimax.Err;
    EXPECT_NE(minimax.Out.find("the largest deviation is at most "), std::string::npos) << minimax.Out;
    EXPECT_EQ(Fit({kMeasured, kNominal, "--norm", "loo"}).Out.find("optimum"), std::string::npos);
}

TEST_F(FitNorm, AnUnknownNormIsWrongUsage) {
    const Outcome outcome = Fit({start_, target_, "--norm", "l3"});
    EXPECT_EQ(outcome.Status, 2);
    EXPECT_TRUE(outcome.Out.empty());
    EXPECT_NE(outcome.Err.find("--norm"), std::string::npos) << outcome.Err;
}
