// `corvinade-cli fit`: sigmas of the files, the member `statistics`, the blocks of the table, and --snoop.
#include <cmath>

#include "cli/fit_command.h"

using namespace corvinade;

using FitStatisticsOutput = FitCommand;

namespace {

const std::vector<std::string> kNoTurn = {"--hold", "rotx=0", "--hold", "roty=0", "--hold", "rotz=0"};

std::vector<std::string> With(std::vector<std::string> arguments, const std::vector<std::string>& more) {
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
}

// Four points moved by 1, 2, 3 and by these errors, whose means are 0.
const char* const kStart = "A;0;0;0\nB;1000;0;0\nC;0;2000;0\nD;0;0;3000\nE;5;6;7\n";
const char* const kTarget = "A;1.1;2.2;3.3\nB;1000.9;2.2;3.1\nC;1.3;2001.8;2.9\nD;0.7;1.8;3002.7\n";
constexpr double kErrors[4][3] = {{0.1, 0.2, 0.3}, {-0.1, 0.2, 0.1}, {0.3, -0.2, -0.1}, {-0.3, -0.2, -0.3}};

double SumOfSquares() {
    double sum = 0;
    for (const auto& point : kErrors)
        for (const double error : point) sum += error * error;
    return sum;
}

}  // namespace

// A shift is the mean of the differences; all figures follow by hand.
TEST_F(FitStatisticsOutput, AShiftInClosedForm) {
    const std::string start = Write("s.txt", kStart), target = Write("t.txt", kTarget);
    const json s = FitJson(With({start, target, "--accuracy-at", "7,8,9"}, kNoTurn))["statistics"];
    EXPECT_EQ(s["observations"], 12);
    EXPECT_EQ(s["unknowns"], 3);
    EXPECT_EQ(s["redundancy"], 9);
    EXPECT_NEAR(s["vtpv"], SumOfSquares(), 1e-9);
    const double s0 = std::sqrt(SumOfSquares() / 9);
    EXPECT_NEAR(s["s0"], s0, 1e-9);
    EXPECT_EQ(s["s0Unit"], "mm");
    EXPECT_FALSE(s.contains("globalTest"));
    ASSERT_EQ(s["parameters"].size(), 3u);
    EXPECT_EQ(s["parameters"][1]["name"], "tray");
    EXPECT_EQ(s["parameters"][1]["unit"], "mm");
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_NEAR(s["parameters"][i]["sigma"], s0 / 2, 1e-9);
        for (std::size_t j = 0; j < 3; ++j) {
            EXPECT_NEAR(s["covariance"][i][j], i == j ? s0 * s0 / 4 : 0, 1e-9);
            EXPECT_NEAR(s["correlation"][i][j], i == j ? 1 : 0, 1e-9);
        }
    }
    // Student's t of 8, 0.0005 above: 5.041; Pope's tau of it.
    EXPECT_NEAR(s["criticalValue"], 3 * 5.0413 / std::sqrt(8 + 5.0413 * 5.0413), 1e-4);
    EXPECT_NEAR(s["criticalValuePredicted"], 4.781, 5e-4);  // t of 9
    ASSERT_EQ(s["points"].size(), 4u);
    for (std::size_t i = 0; i < 4; ++i) {
        const json& point = s["points"][i];
        EXPECT_EQ(point["name"], std::string(1, "ABCD"[i]));
        for (std::size_t axis = 0; axis < 3; ++axis) {
            EXPECT_NEAR(point["redundancy"][axis], 0.75, 1e-9);
            EXPECT_NEAR(point["standardized"][axis], -kErrors[i][axis] / (s0 * std::sqrt(0.75)), 1e-6);
            EXPECT_EQ(point["outlier"][axis], false);
            EXPECT_EQ(point["predicted"][axis], false);
        }
    }
    // All start points, the one without partner too; the same ellipsoid everywhere, of 3 F(3, 9) = 3
    // * 3.8625.
    ASSERT_EQ(s["transformed"].size(), 5u);
    EXPECT_EQ(s["transformed"][4]["name"], "E");
    for (const json& row : {s["transformed"][4], s["accuracyAt"][0]}) {
        EXPECT_NEAR(row["sigma_mm"][2], s0 / 2, 1e-9);
        EXPECT_NEAR(row["covariance_mm2"][0][0], s0 * s0 / 4, 1e-9);
        EXPECT_EQ(row["ellipsoid"]["confidence"], 0.95);
        for (std::size_t k = 0; k < 3; ++k)
            EXPECT_NEAR(row["ellipsoid"]["semiAxes_mm"][k], s0 / 2 * std::sqrt(3 * 3.8625), 1e-4);
    }
    EXPECT_NEAR(s["accuracyAt"][0]["transformed_mm"][0], 8, 1e-9);
    EXPECT_FALSE(s.contains("snooping"));
}

TEST_F(FitStatisticsOutput, WhatIsOutOfUseIsPredicted) {
    const std::string start = Write("s.txt", kStart), target = Write("t.txt", kTarget);
    const json s = FitJson(With({start, target, "--leave-out", "D:z"}, kNoTurn))["statistics"];
    const json& point = s["points"][3];
    EXPECT_EQ(point["predicted"], (json{false, false, true}));
    EXPECT_TRUE(point["redundancy"][2].is_null());
    EXPECT_TRUE(point["mdb_mm"][2].is_null());
    // Mean of the others is 0.1, the residual of D 0.4; its variance s0^2 (1 + 1/3).
    EXPECT_NEAR(point["standardized"][2], 0.4 / (s["s0"].get<double>() * std::sqrt(4.0 / 3)), 1e-6);
}

TEST_F(FitStatisticsOutput, SigmasMakeAGlobalTest) {
    const std::string start = Write("s.txt", kStart), target = Write("t.txt", kTarget);
    const json s = FitJson(With(
        {start, target, "--start-sigma", "0.06,0.08,0.1", "--target-sigma", "0.08,0.06,0", "--alpha", "0.05"},
        kNoTurn))["statistics"];
    const double vtpv = SumOfSquares() / 0.01;  // 0.06 and 0.08 make 0.1 together
    EXPECT_NEAR(s["vtpv"], vtpv, 1e-6);
    EXPECT_NEAR(s["s0"], std::sqrt(vtpv / 9), 1e-6);
    EXPECT_EQ(s["s0Unit"], "");
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_NEAR(s["parameters"][i]["sigma"], 0.05, 1e-9);
        EXPECT_NEAR(s["parameters"][i]["sigmaPosterior"], 0.05 * std::sqrt(vtpv / 9), 1e-6);
    }
    const json& test = s["globalTest"];
    EXPECT_EQ(test["alpha"], 0.05);
    EXPECT_NEAR(test["statistic"], vtpv, 1e-6);
    EXPECT_NEAR(test["lower"], 2.700, 5e-4);   // chi-square of 9, 0.025 below, tables
    EXPECT_NEAR(test["upper"], 19.023, 5e-4);  // 0.025 above
    EXPECT_EQ(test["passed"], false);
    EXPECT_NEAR(s["criticalValue"], 1.960, 5e-4);
    EXPECT_NEAR(s["points"][0]["standardized"][2], -0.3 / (0.1 * std::sqrt(0.75)), 1e-6);
    EXPECT_EQ(s["points"][0]["outlier"], (json{false, true, true}));
    // 2.80 of Baarda's table.
    EXPECT_NEAR(s["points"][0]["mdb_mm"][0].get<double>(), 2.80 * 0.1 / std::sqrt(0.75), 1e-3);
}

// Nothing that was told before changes by equal sigmas of the target, bit by bit.
TEST_F(FitStatisticsOutput, EqualSigmasLeaveTheToldFigures) {
    for (const char* parameters : {"6", "7", "9", "12"}) {
        json plain = FitJson({kMeasured, kNominal, "--parameters", parameters});
        json weighted = FitJson({kMeasured, kNominal, "--parameters", parameters, "--target-sigma", "0.05"});
        plain.erase("statistics");
        weighted.erase("statistics");
        EXPECT_EQ(plain, weighted);
    }
}

TEST_F(FitStatisticsOutput, SigmasBelongToTheirFilesWhateverTheDirection) {
    const std::vector<std::string> sigmas = {"--start-sigma", "0.02,0.03,0.05", "--target-sigma", "0.1"};
    const json back = FitJson(With({kMeasured, kNominal, "--direction", "ocs-mcs"}, sigmas));
    const json other =
        FitJson({kNominal, kMeasured, "--start-sigma", "0.1", "--target-sigma", "0.02,0.03,0.05"});
    EXPECT_EQ(back["transformation"], other["transformation"]);
    EXPECT_EQ(back["statistics"], other["statistics"]);
    EXPECT_NE(back["statistics"], FitJson(With({kNominal, kMeasured}, sigmas))["statistics"]);
    const json metres = FitJson({start_, target_, "--target-sigma", "0.00005", "--length-unit", "m"});
    EXPECT_NEAR(
        metres["statistics"]["parameters"][0]["sigma"].get<double>(),
        1000 * FitJson({start_, target_, "--target-sigma", "0.00005"})["statistics"]["parameters"][0]["sigma"]
                   .get<double>(),
        1e-9);
}

TEST_F(FitStatisticsOutput, SigmasTravelInTheJob) {
    const std::string job = PathOf("a.cvn"), again = PathOf("b.cvn");
    const json fit = FitJson(
        {kMeasured, kNominal, "--start-sigma", "0.02,0.03,0.05", "--target-sigma", "0.1", "--save", job});
    const Outcome info = CommandLine({"info", job, "--json", "--decimal", "."});
    EXPECT_EQ(json::parse(info.Out)["sigmas"],
              (json{{"start_mm", {0.02, 0.03, 0.05}}, {"target_mm", {0.1, 0.1, 0.1}}}));
    EXPECT_NE(CommandLine({"info", job, "--decimal", "."}).Out.find("0.02, 0.03, 0.05; target 0.1, 0.1, 0.1"),
              std::string::npos);
    EXPECT_EQ(CommandLine({"convert", job, again}).Status, 0);
    const json ofJob = FitJson({"--job", again});
    EXPECT_EQ(ofJob["statistics"], fit["statistics"]);
    EXPECT_EQ(ofJob["parameters"], fit["parameters"]);
    // One side alone goes before the job's.
    const json other = FitJson({"--job", again, "--start-sigma", "0.2"});
    EXPECT_EQ(other["statistics"],
              FitJson({kMeasured, kNominal, "--start-sigma", "0.2", "--target-sigma", "0.1"})["statistics"]);
    // A job without sigmas is as before.
    EXPECT_TRUE(
        json::parse(CommandLine({"info", kExamples + "robot_cell.cvn", "--json"}).Out)["sigmas"].is_null());
}

TEST_F(FitStatisticsOutput, SnoopingFindsTheKnockedMark) {
    const json fit = FitJson({kMeasured, kNominal, "--snoop"});
    std::string found;
    for (const json& out : fit["statistics"]["snooping"]) {
        EXPECT_EQ(out["name"], "F09");
        EXPECT_GT(std::fabs(out["standardized"].get<double>()), out["criticalValue"].get<double>());
        found += out["axis"];
    }
    std::sort(found.begin(), found.end());
    EXPECT_EQ(found, "xyz");
    const json left = FitJson({kMeasured, kNominal, "--leave-out", "F09"});
    EXPECT_EQ(fit["parameters"], left["parameters"]);
    EXPECT_EQ(fit["points"], left["points"]);
    for (const json& point : left["statistics"]["points"])
        EXPECT_EQ(point["outlier"],
                  point["name"] == "F09" ? json({true, true, true}) : json({false, false, false}));
    const Outcome table = Fit({kMeasured, kNominal, "--snoop"});
    EXPECT_NE(table.Out.find("Taken out           axis  standardized       limit"), std::string::npos)
        << table.Out;
    const Outcome clean = Fit({kMeasured, kNominal, "--snoop", "--leave-out", "F09"});
    EXPECT_NE(clean.Out.find("(no coordinate fails its test)"), std::string::npos);
}

// A last coordinate of control is never taken.
TEST_F(FitStatisticsOutput, SnoopingLeavesARedundancyOfThree) {
    const std::string start = Write("s.txt", "A;0;0;0\nB;1000;0;0\nC;0;2000;0\n");
    const std::string target = Write("t.txt", "A;0;0;0\nB;1000;50;0\nC;0;2000;0\n");
    // 9 coordinates, 6 unknowns: 3 of redundancy, and an error of 50 mm that the sigmas forbid.
    const json s = FitJson({start, target, "--snoop", "--target-sigma", "0.01"})["statistics"];
    EXPECT_EQ(s["redundancy"], 3);
    EXPECT_EQ(s["snooping"], json::array());
}

TEST_F(FitStatisticsOutput, TheTableHasTheBlocks) {
    const Outcome table =
        Fit({kMeasured, kNominal, "--statistics", "--target-sigma", "0.05", "--leave-out", "F09"});
    EXPECT_EQ(table.Status, 0);
    for (const char* part : {"redundancy    33 = 39 coordinates - 6 unknowns\n", "global test   passed (",
                             "Accuracy ", "Correlation ", "Reliability ", "Transformed ", "would not fit"})
        EXPECT_NE(table.Out.find(part), std::string::npos) << part;
    EXPECT_EQ(Fit({kMeasured, kNominal}).Out.find("Reliability"), std::string::npos);
}

TEST_F(FitStatisticsOutput, WithoutRedundancyThereIsNoTest) {
    const std::string start = Write("s.txt", "A;0;0;0\nB;5;6;7\n"),
                      target = Write("t.txt", "A;1;2;3\nB;6;8;9\n");
    const json s = FitJson(With({start, target, "--leave-out", "B"}, kNoTurn))["statistics"];
    EXPECT_EQ(s["redundancy"], 0);
    for (const char* member : {"s0", "covariance", "criticalValue"})
        EXPECT_TRUE(s[member].is_null()) << member;
    EXPECT_TRUE(s["parameters"][0]["sigma"].is_null());
    EXPECT_TRUE(s["transformed"][0]["ellipsoid"].is_null());
    EXPECT_NE(s["note"].get<std::string>().find("redundancy is 0"), std::string::npos);
    const json known =
        FitJson(With({start, target, "--leave-out", "B", "--start-sigma", "0.3", "--target-sigma", "0.4"},
                     kNoTurn))["statistics"];
    EXPECT_TRUE(known["globalTest"].is_null());
    EXPECT_NEAR(known["parameters"][0]["sigma"], 0.5, 1e-9);
    EXPECT_NEAR(known["transformed"][1]["sigma_mm"][0], 0.5, 1e-9);
    EXPECT_TRUE(known["parameters"][0]["sigmaPosterior"].is_null());
    EXPECT_NEAR(known["points"][1]["standardized"][2], 1 / std::sqrt(0.5), 1e-6);  // 7 + 3 against 9
}

TEST_F(FitStatisticsOutput, WhatIsUndeterminedIsNamed) {
    const std::string start = Write("s.txt", "A;0;0;0\nB;1000;0;0\nC;2000;0;0\nD;2500;0;0\n");
    const std::string target = Write("t.txt", "A;0;0;0\nB;1000.1;0.1;0\nC;1999.9;0;0.1\nD;2500;0;0\n");
    const json s = FitJson({start, target})["statistics"];
    EXPECT_NE(std::find(s["undetermined"].begin(), s["undetermined"].end(), "rotx"), s["undetermined"].end());
    EXPECT_NE(s["note"].get<std::string>().find("Rot x"), std::string::npos);
    for (const char* member : {"redundancy", "s0", "parameters", "covariance", "points", "transformed"})
        EXPECT_TRUE(s[member].is_null()) << member;
    const Outcome table = Fit({start, target, "--statistics"});
    EXPECT_EQ(table.Status, Fit({start, target}).Status);
    EXPECT_NE(table.Out.find("do not tell these parameters apart: "), std::string::npos);
}

TEST_F(FitStatisticsOutput, OtherNormsAndModelsHaveNone) {
    EXPECT_TRUE(FitJson({kMeasured, kNominal, "--norm", "l1"})["statistics"].is_null());
    EXPECT_TRUE(FitJson({kMeasured, kNominal, "--norm", "loo"})["statistics"].is_null());
    EXPECT_TRUE(FitJson({kExamples + "robot_tool_measured.txt", kExamples + "robot_tool.dat", "--as", "kuka",
                         "--tool"})["statistics"]
                    .is_null());
}

TEST_F(FitStatisticsOutput, EqualSigmasLeaveTheOtherNorms) {
    for (const char* norm : {"l1", "loo"})
        EXPECT_EQ(FitJson({kMeasured, kNominal, "--norm", norm}),
                  FitJson({kMeasured, kNominal, "--norm", norm, "--target-sigma", "0.05"}));
}

// A job brings its sigmas, and its norm: what does not go together is said.
TEST_F(FitStatisticsOutput, AJobWithSigmasAndAnotherNormIsRefused) {
    const std::string job = PathOf("a.cvn"), other = PathOf("b.cvn");
    FitJson({kMeasured, kNominal, "--target-sigma", "0.1", "--save", job});
    for (const std::vector<std::string>& more :
         std::vector<std::vector<std::string>>{{"--norm", "l1-exact"},
                                               {"--norm", "minimax"},
                                               {"--r-dist"},
                                               {"--monte-carlo", "10", "--sigma", "0.1"}}) {
        const Outcome outcome = Fit(With({"--job", job}, more));
        EXPECT_EQ(outcome.Status, 1) << more[0];
        EXPECT_NE(outcome.Err.find("standard deviations"), std::string::npos) << outcome.Err;
    }
    FitJson({kMeasured, kNominal, "--norm", "l1", "--save", other});
    const Outcome snooped = Fit({"--job", other, "--snoop"});
    EXPECT_NE(snooped.Out.find("(no statistics: "), std::string::npos) << snooped.Out;
    EXPECT_EQ(snooped.Out.find("Taken out"), std::string::npos);
    EXPECT_TRUE(FitJson({"--job", other})["statistics"].is_null());
}

TEST_F(FitStatisticsOutput, TheReportHasThem) {
    const std::string page = PathOf("page.html");
    ASSERT_EQ(Fit({kMeasured, kNominal, "--report", page, "--start-sigma", "0.05"}).Status, 0);
    const std::string html = Contents(page);
    for (const char* part : {"How far it can be trusted", "global test", "Reliability", "Transformed"})
        EXPECT_NE(html.find(part), std::string::npos) << part;
}

TEST_F(FitStatisticsOutput, ManyPairsHaveThemWhereAskedFor) {
    std::string start, target;
    for (int i = 0; i <= 10000; ++i) {
        const std::string place = std::to_string(i % 100 * 10) + ";" + std::to_string(i / 100 * 10) + ";" +
                                  std::to_string(i * 7 % 131);
        start += "P" + std::to_string(i) + ";" + place + "\n";
        target += "P" + std::to_string(i) + ";" + place + "." + std::to_string(i % 7) + "\n";
    }
    const std::string s = Write("s.txt", start), t = Write("t.txt", target);
    EXPECT_TRUE(FitJson({s, t})["statistics"].is_null());
    const json asked = FitJson({s, t, "--statistics"})["statistics"];
    EXPECT_EQ(asked["points"].size(), 10001u);
    double sum = 0;
    for (const json& point : asked["points"])
        for (const json& share : point["redundancy"]) sum += share.get<double>();
    EXPECT_NEAR(sum, asked["redundancy"].get<double>(), 1e-6);
}

TEST_F(FitStatisticsOutput, RefusesWhatNoFitCanStandOn) {
    for (const std::vector<std::string>& wrong :
         std::vector<std::vector<std::string>>{{"--start-sigma", "x"},
                                               {"--start-sigma=-1"},
                                               {"--target-sigma", "1,2"},
                                               {"--target-sigma", "1,nan,2"},
                                               {"--alpha", "0"},
                                               {"--alpha", "1"},
                                               {"--power", "1.5"},
                                               {"--confidence", "-0.1"},
                                               {"--accuracy-at", "1,2"},
                                               {"--snoop", "--norm", "l1"},
                                               {"--start-sigma", "1", "--r-dist"},
                                               {"--start-sigma", "1", "--monte-carlo", "10", "--sigma", "1"}})
        EXPECT_EQ(Fit(With({start_, target_}, wrong)).Status, 2) << wrong[0];
    // On one axis alone, or nowhere.
    for (const char* sigma : {"0", "0,0,1"}) {
        const Outcome outcome = Fit({start_, target_, "--start-sigma", sigma});
        EXPECT_EQ(outcome.Status, 1);
        EXPECT_NE(outcome.Err.find("\"A\""), std::string::npos) << outcome.Err;
    }
    EXPECT_EQ(Fit({start_, target_, "--start-sigma", "0,0,1", "--target-sigma", "1,1,0"}).Status, 0);
}
