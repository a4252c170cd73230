// `corvinade-cli distances`: the table, the forms for programs, the plot and the file of all pairs.
#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>
#include <regex>

#include "analysis/distance_job.h"
#include "cli/command_line.h"
#include "core/files.h"
#include "core/job_file.h"

using namespace corvinade;

using nlohmann::json;

namespace {

class DistancesCommand : public DistanceJob {
protected:
    static Outcome Command(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "distances");
        return FreshCommandLine(arguments);
    }
    // The present points as a job file.
    std::string Saved() {
        Job.LengthUnitName = "millimeter";
        Job.AngleUnitName = "degree";
        Job.LengthDigits = 3;
        WriteFile(PathOf("cell.cvn"), JobBytes(Job, {}));
        return PathOf("cell.cvn");
    }
    static bool Has(const std::string& text, const std::string& part) {
        return text.find(part) != std::string::npos;
    }
    static int Count(const std::string& text, const std::string& part) {
        int count = 0;
        for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
        return count;
    }
};

TEST_F(DistancesCommand, TellsTheTableOfThePoints) {
    Triangle();
    const Outcome outcome = Command({Saved()});
    EXPECT_EQ(outcome.Status, 0);
    EXPECT_EQ(outcome.Err, "");
    EXPECT_TRUE(Has(outcome.Out, "3 identical, 3 pairs")) << outcome.Out;
    EXPECT_TRUE(Has(outcome.Out, "3.000 millimeter  (A - C)"));
    EXPECT_TRUE(Has(outcome.Out, "-2.000 millimeter  (B - C)"));
    EXPECT_TRUE(std::regex_search(
        outcome.Out, std::regex("C +3.000 +A +-2.000 +B +1.230769 +A +0.833333 +B +2.500 +1.032051")))
        << outcome.Out;
}

TEST_F(DistancesCommand, JsonHasFullPrecisionInMillimetres) {
    Pair("A", {0, 0, 0}, {0, 0, 0});
    Pair("B", {0, 0, 10}, {0, 10.1, 0});
    Job.LengthUnitName = "meter";
    const Outcome outcome = Command({Saved(), "--json"});
    const json root = json::parse(outcome.Out);
    EXPECT_EQ(root["schema"], "corvinade-distances");
    EXPECT_EQ(root["pairs"], 1);
    EXPECT_EQ(root["withResult"], false);
    EXPECT_EQ(root["maxDelta"]["to"], "B");
    ASSERT_EQ(root["points"].size(), 2u);
    const json& a = root["points"][0];
    EXPECT_EQ(a["name"], "A");
    EXPECT_EQ(a["maxDelta_mm"], 0.1);
    EXPECT_EQ(a["maxDeltaAt"], "B");
    EXPECT_EQ(a["maxScale"], 1.01);
    EXPECT_NEAR(a["meanAbsDelta_mm"].get<double>(), 0.1, 1e-8);
}

TEST_F(DistancesCommand, CsvIsInTheUnitsOfTheJob) {
    Triangle();
    Job.Start.Name[1] = Job.Transformed.Name[1] = "A;1";
    const Outcome outcome = Command({Saved(), "--csv", "--decimal", ","});
    EXPECT_TRUE(Has(outcome.Out, "name;max_delta_s;max_delta_s_at;")) << outcome.Out;
    EXPECT_TRUE(Has(outcome.Out, "\r\nB;1;\"A;1\";-2;C;1,2;\"A;1\";0,8333333;C;1,5;1,016667\r\n"))
        << outcome.Out;
}

TEST_F(DistancesCommand, WithTheResultThePointsAreTheTransformedOnes) {
    Pair("A", {0, 0, 0}, {0, 0, 0}, {0, 0, 0});
    Pair("B", {10, 0, 0}, {12, 0, 0}, {11, 0, 0});
    const std::string job = Saved();
    EXPECT_EQ(json::parse(Command({job, "--json"}).Out)["points"][0]["maxDelta_mm"], 2);
    const Outcome outcome = Command({job, "--with-result", "--json"});
    EXPECT_EQ(json::parse(outcome.Out)["points"][0]["maxDelta_mm"], 1);
    EXPECT_EQ(outcome.Err, "");
}

TEST_F(DistancesCommand, AJobWithoutAResultIsToldOf) {
    Triangle();
    const Outcome outcome = Command({Saved(), "--with-result"});
    EXPECT_EQ(outcome.Status, 0);
    EXPECT_EQ(outcome.Err, "the job holds no result: its transformed points are the start points\n");
}

TEST_F(DistancesCommand, TooFewPointsAreRefused) {
    Pair("A", {0, 0, 0}, {0, 0, 0});
    const Outcome outcome = Command({Saved()});
    EXPECT_EQ(outcome.Status, 1);
    EXPECT_EQ(outcome.Err, "corvinade-cli: There are not enough identically Points for a calculation\n");
}

TEST_F(DistancesCommand, WrongUsageIsToldApartFromAFileThatIsNone) {
    Triangle();
    const std::string job = Saved();
    EXPECT_EQ(Command({job, "--json", "--csv"}).Status, 2);
    EXPECT_EQ(Command({job, "--trumpet", "plot.pdf"}).Status, 2);
    EXPECT_EQ(Command({}).Status, 2);
    EXPECT_EQ(Command({PathOf("missing.cvn")}).Status, 3);
    EXPECT_EQ(Command({Write("text.cvn", "no job at all")}).Status, 3);
}

TEST_F(DistancesCommand, ThePairsAreWrittenBesideTheTable) {
    Triangle();
    const Outcome outcome = Command({Saved(), "--pairs", PathOf("pairs.txt")});
    EXPECT_EQ(outcome.Status, 0) << outcome.Err;
    EXPECT_EQ(Contents(PathOf("pairs.txt")),
              "A\tB\t5\t6\t1.000\r\nA\tC\t13\t16\t3.000\r\nB\tC\t12\t10\t-2.000\r\n");
}

TEST_F(DistancesCommand, AFileThatCannotBeWrittenIsToldAndNothingElse) {
    Triangle();
    const Outcome outcome = Command({Saved(), "--pairs", PathOf("no such folder/pairs.txt")});
    EXPECT_EQ(outcome.Status, 1);
    EXPECT_EQ(outcome.Out, "");
    EXPECT_TRUE(Has(outcome.Err, "Cannot write")) << outcome.Err;
}

TEST_F(DistancesCommand, ThePlotHasAPointForEachPairThatNamesIt) {
    Triangle();
    Job.NameOCS = "R<1>";
    const Outcome outcome = Command({Saved(), "--trumpet", PathOf("cell.svg")});
    EXPECT_EQ(outcome.Status, 0) << outcome.Err;
    const std::string svg = Contents(PathOf("cell.svg"));
    EXPECT_EQ(Count(svg, "<circle "), 3);
    EXPECT_TRUE(Has(svg, "<title>A - C: distance 16.000, delta s 3.000 millimeter</title>"));
    EXPECT_TRUE(Has(svg, ">Distance in R&lt;1&gt; [millimeter]</text>"));
    EXPECT_TRUE(Has(svg, ">delta s [millimeter]</text>"));
    EXPECT_TRUE(Has(svg, "prefers-color-scheme:dark"));
    // The points stand to each other as their numbers do: (6, 1), (16, 3), (10, -2).
    const std::regex pattern(
        "<circle class=\"point\" cx=\"([0-9.]+)\" cy=\"([0-9.]+)\" r=\"[0-9.]+\"><title>(A|B) - (B|C)");
    std::vector<std::pair<double, double>> at(3);
    for (std::sregex_iterator it(svg.begin(), svg.end(), pattern), end; it != end; ++it) {
        const std::string pair = (*it)[3].str() + (*it)[4].str();
        at[pair == "AB" ? 0 : pair == "AC" ? 1 : 2] = {std::stod((*it)[1]), std::stod((*it)[2])};
    }
    const double byX = (at[1].first - at[0].first) / 10, byY = (at[1].second - at[0].second) / 2;
    EXPECT_GT(byX, 0);
    EXPECT_LT(byY, 0) << "up is more";
    EXPECT_NEAR(at[2].first - at[0].first, 4 * byX, 0.05);
    EXPECT_NEAR(at[2].second - at[0].second, -3 * byY, 0.05);
}

TEST_F(DistancesCommand, ManyPairsAreThinnedWhereTheyCoincide) {
    Cloud(400);
    const Outcome outcome = Command({Saved(), "--trumpet", PathOf("cloud.svg")});
    EXPECT_EQ(outcome.Status, 0) << outcome.Err;
    const std::string svg = Contents(PathOf("cloud.svg"));
    EXPECT_EQ(Count(svg, "<circle "), 0);
    EXPECT_EQ(Count(svg, "<path "), 1);
    const int strokes = Count(svg, "M");
    EXPECT_GT(strokes, 5000);
    EXPECT_LT(strokes, 400 * 399 / 2 * 3 / 4);
}

TEST_F(DistancesCommand, APlotThatAllPairsShareOnePlaceOfIsOnePoint) {
    for (int i = 1; i <= 5; ++i) Pair("P" + std::to_string(i), {1, 2, 3}, {3, 2, 1});
    const Outcome outcome = Command({Saved(), "--trumpet", PathOf("one.svg")});
    EXPECT_EQ(outcome.Status, 0) << outcome.Err;
    EXPECT_EQ(Count(Contents(PathOf("one.svg")), "<circle "), 1);
}

}  // namespace
