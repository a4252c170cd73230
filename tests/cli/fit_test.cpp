// `corvinade-cli fit`: its numbers against a closed form, and its outputs.
#include <array>
#include <cmath>
#include <fstream>
#include <map>

#include "cli/closed_form.h"
#include "cli/fit_command.h"
#include "cli/text_columns.h"

using namespace corvinade;

namespace {

// "name;x;y;z" lines, read apart from the program.
std::map<std::string, closed_form::Point> ReadPoints(const std::string& path) {
    std::map<std::string, closed_form::Point> points;
    std::ifstream file(path);
    std::string line;
    while (std::getline(file, line)) {
        std::istringstream fields(line);
        std::string name;
        std::getline(fields, name, ';');
        closed_form::Point point{};
        char separator = 0;
        fields >> point[0] >> separator >> point[1] >> separator >> point[2];
        points[name] = point;
    }
    return points;
}

// The example's pairs without the mark that was knocked.
void ExamplePairs(std::vector<closed_form::Point>& start, std::vector<closed_form::Point>& target) {
    const auto measured = ReadPoints(kMeasured);
    for (const auto& [name, point] : ReadPoints(kNominal))
        if (name != "F09" && measured.count(name) == 1) {
            start.push_back(measured.at(name));
            target.push_back(point);
        }
}

}  // namespace

// --- Numbers ----------------------------------------------------------------------------------------------

TEST_F(FitCommand, TheExampleAgreesWithTheClosedForm) {
    std::vector<closed_form::Point> start;
    std::vector<closed_form::Point> target;
    ExamplePairs(start, target);
    ASSERT_EQ(start.size(), 13u);
    const closed_form::Rigid truth = closed_form::Fit(start, target, false);
    const json fit = FitJson({kMeasured, kNominal, "--leave-out", "F09"});
    const json& matrix = fit["transformation"]["matrix"];
    for (std::size_t r = 0; r < 3; ++r) {
        for (std::size_t c = 0; c < 3; ++c) EXPECT_NEAR(matrix[r][c].get<double>(), truth.R[r][c], 1e-12);
        EXPECT_NEAR(matrix[r][3].get<double>(), truth.t[r], 1e-8);
    }
    // s0 divides by the sum of weights less one: 39 observations in use.
    EXPECT_NEAR(fit["quality"]["s0_mm"].get<double>(), std::sqrt(truth.squares / 38), 1e-9);
    EXPECT_EQ(fit["counts"]["observations"], 39);
    EXPECT_EQ(fit["counts"]["pairs"], 14);
}

TEST_F(FitCommand, TheKnockedMarkOfTheExampleShowsByHowMuchItMoved) {
    const json fit = FitJson({kMeasured, kNominal, "--leave-out", "F09"});
    double largest = 0;
    std::string name;
    for (const json& point : fit["points"])
        if (point["residual3D_mm"] > largest) {
            largest = point["residual3D_mm"];
            name = point["name"];
        }
    EXPECT_EQ(name, "F09");
    EXPECT_NEAR(largest, std::hypot(3.2, 1.1), 0.3) << "the mark was moved by 3.2 and 1.1 mm";
}

TEST_F(FitCommand, SevenParametersAgreeWithTheClosedFormOfTheSimilarity) {
    std::vector<closed_form::Point> start;
    std::vector<closed_form::Point> target;
    ExamplePairs(start, target);
    const closed_form::Rigid truth = closed_form::Fit(start, target, true);
    // The scale of least squares in the target system is the closed form's: its optimum is the same.
    const json fit = FitJson({kMeasured, kNominal, "--leave-out", "F09", "--parameters", "7"});
    EXPECT_NEAR(fit["transformation"]["scales"][0].get<double>(), truth.s, 1e-12);
    EXPECT_NEAR(fit["quality"]["s0_mm"].get<double>(), std::sqrt(truth.squares / 38), 1e-9);
}

TEST_F(FitCommand, QuaternionAndMatrixDescribeTheSameRotation) {
    const json t = FitJson({kMeasured, kNominal})["transformation"];
    const double w = t["quaternion"]["w"];
    const double x = t["quaternion"]["x"];
    const double y = t["quaternion"]["y"];
    const double z = t["quaternion"]["z"];
    EXPECT_NEAR(w * w + x * x + y * y + z * z, 1, 1e-12);
    EXPECT_NEAR(t["rotationMatrix"][0][1].get<double>(), 2 * (x * y - w * z), 1e-12);
    EXPECT_NEAR(t["rotationMatrix"][2][1].get<double>(), 2 * (y * z + w * x), 1e-12);
    EXPECT_NEAR(t["rotationMatrix"][2][2].get<double>(), 1 - 2 * (x * x + y * y), 1e-12);
    const double a = t["rotation"]["a_rad"];
    const double b = t["rotation"]["b_rad"];
    EXPECT_NEAR(t["rotationMatrix"][2][0].get<double>(), std::sin(b), 1e-12);
    EXPECT_NEAR(t["rotationMatrix"][2][2].get<double>(), std::cos(a) * std::cos(b), 1e-12);
}

TEST_F(FitCommand, APureShiftComesOutExactly) {
    const json fit = FitJson({start_, target_, "--parameters", "12"});
    EXPECT_NEAR(fit["transformation"]["translation_mm"][0].get<double>(), 5, 1e-8);
    for (const json& scale : fit["transformation"]["scales"]) EXPECT_NEAR(scale.get<double>(), 1, 1e-11);
    EXPECT_EQ(fit["schema"], "corvinade-fit");
    EXPECT_EQ(fit["schemaVersion"], 1);
    EXPECT_EQ(fit["converged"], true);
}

TEST_F(FitCommand, LevelFloatsShiftsAndTheRotationAboutZ) {
    // Turned by 90 degrees about z: (x, y) goes to (-y, x), which is c = -90 degrees in this form.
    const std::string turned =
        Write("t.txt", "A;0;0;1\nB;0;1000;1\nC;-2000;0;1\nD;0;0;3001\nE;-800;700;901\n");
    const json fit = FitJson({start_, turned, "--parameters", "level"});
    EXPECT_EQ(fit["counts"]["unknowns"], 4);
    EXPECT_NEAR(fit["transformation"]["rotation"]["c_rad"].get<double>(), -std::acos(0.0), 1e-9);
    EXPECT_EQ(fit["parameters"][3]["state"], "held");
    EXPECT_EQ(fit["parameters"][5]["state"], "float");
    EXPECT_NEAR(fit["quality"]["s0_mm"].get<double>(), 0, 1e-9);
}

TEST_F(FitCommand, HeldValuesStay) {
    const json fit =
        FitJson({start_, target_, "--hold", "rotz=1.5", "--hold", "scalexyz=1.002", "--hold", "TraX=4"});
    EXPECT_NEAR(fit["transformation"]["rotation"]["c_rad"].get<double>(), 1.5 / 180 * 3.14159265358979,
                1e-15);
    EXPECT_EQ(fit["transformation"]["scales"][2], 1.002);
    EXPECT_EQ(fit["transformation"]["translation_mm"][0], 4);
    EXPECT_EQ(fit["counts"]["unknowns"], 4);
    EXPECT_EQ(fit["parameters"][5]["state"], "held");
    EXPECT_FALSE(fit["parameters"][5].contains("sigma"));
}

TEST_F(FitCommand, HeldAnglesMayBeInDegreesMinutesAndSeconds) {
    const json fit = FitJson({start_, target_, "--hold", "rotz=-0 30 0"});
    EXPECT_NEAR(fit["transformation"]["rotation"]["c_rad"].get<double>(), -0.5 / 180 * 3.14159265358979,
                1e-15);
}

TEST_F(FitCommand, SinglecoordinatesCanBeLeftOut) {
    const json fit = FitJson({start_, target_, "--leave-out", "B:y", "--leave-out", "E"});
    EXPECT_EQ(fit["counts"]["observations"], 11);
    EXPECT_EQ(fit["points"][1]["used"], json({true, false, true}));
    EXPECT_EQ(fit["points"][4]["used"], json({false, false, false}));
}

TEST_F(FitCommand, UnitsHoldForFilesAndForWhatIsShown) {
    const json fit = FitJson({start_, target_, "--length-unit", "m", "--angle-unit", "gon"});
    EXPECT_NEAR(fit["transformation"]["translation_mm"][0].get<double>(), 5000, 1e-6);
    EXPECT_NEAR(fit["parameters"][0]["shown"].get<double>(), 5, 1e-9);
    EXPECT_EQ(fit["parameters"][0]["shownUnit"], "meter");
    EXPECT_EQ(fit["parameters"][3]["shownUnit"], "grad (gon)");
}

TEST_F(FitCommand, PointsAreMatchedByCoordinateAndByDistance) {
    const std::string near = Write("near.txt", "p;0.1;0;0\nq;1000;0.1;0\nr;0;2000;0.1\ns;0;0;3000\n");
    const json byCoordinate = FitJson({start_, near, "--match", "coordinate", "--tolerance", "0.5"});
    EXPECT_EQ(byCoordinate["counts"]["pairs"], 4);
    EXPECT_EQ(byCoordinate["points"][0]["name"], "MCS_A=OCS_p");
    const Outcome leftOut = Fit({start_, near, "--match", "coordinate", "--leave-out", "p"});
    EXPECT_EQ(leftOut.Status, 0) << leftOut.Err;
}

TEST_F(FitCommand, MatchingByDistanceFindsATurnedFrame) {
    const json fit = FitJson({kMeasured, kNominal, "--match", "distance", "--tolerance", "0.3"});
    EXPECT_GE(fit["counts"]["pairs"], 13);
    EXPECT_EQ(fit["points"][0]["name"], "MCS_F01=OCS_F01");
}

// --- Outputs ----------------------------------------------------------------------------------------------

TEST_F(FitCommand, TheTableNamesParametersQualityAndTheLargestDeviation) {
    const Outcome outcome = Fit({kMeasured, kNominal, "--leave-out", "F09:z"});
    EXPECT_EQ(outcome.Status, 0) << outcome.Err;
    for (const char* part : {"Tra x", "Rot z", "significance", "mean error", "s0", "F09", "<- largest",
                             "millimeter", "degree", "14 by id", "2 only in start", "1 only in target"})
        EXPECT_NE(outcome.Out.find(part), std::string::npos) << part << "\n" << outcome.Out;
    EXPECT_EQ(outcome.Out.find('\x1b'), std::string::npos) << "no colours away from a terminal";
    EXPECT_EQ(outcome.Out.find("Scale"), std::string::npos) << "scales take no part in six parameters";
}

TEST_F(FitCommand, TheCsvHoldsOneLineAPoint) {
    const Outcome outcome = Fit({start_, target_, "--csv"});
    EXPECT_EQ(std::count(outcome.Out.begin(), outcome.Out.end(), '\n'), 6);
    EXPECT_EQ(outcome.Out.substr(0, 30), "name;start_x;start_y;start_z;t");
    EXPECT_NE(outcome.Out.find("\r\nB;1000;0;0;1005;6;7;"), std::string::npos) << outcome.Out;
}

TEST_F(FitCommand, CsvQuotesNamesThatNeedIt) {
    const std::string start = Write("q1.txt", "a\"b;0;0;0\nB;1000;0;0\nC;0;2000;0\n");
    EXPECT_NE(Fit({start, start, "--csv"}).Out.find("\r\n\"a\"\"b\";0;0;0;"), std::string::npos);
}

TEST_F(FitCommand, TheTableStaysInColumnsWithAnyNameAndAnyValue) {
    const std::string name(3000, 'n');
    const auto file = [&](const char* path, const char* x) {
        return Write(path, "点の名前;0;0;0\nB\x1b[31m;" + std::string(x) + ";0;0\na\u0301;0;2000;0\n" + name +
                               ";0;0;3000\n");
    };
    const Outcome outcome = Fit({file("n1.txt", "1000"), file("n2.txt", "1e14"), "--parameters", "6"});
    std::istringstream lines(outcome.Out.substr(outcome.Out.find("\nDeviation")));
    std::string line;
    std::getline(lines, line);
    std::getline(lines, line);
    const int width = DisplayWidth(line.substr(0, line.find("  millimeter")));
    int rows = 0;
    for (; std::getline(lines, line); ++rows) {
        EXPECT_EQ(DisplayWidth(line.substr(0, line.find("  <- "))), width) << line;
        EXPECT_LT(line.size(), 200u);
        EXPECT_EQ(line.find('\x1b'), std::string::npos) << "a name must not command the terminal";
        std::istringstream cells(line);
        std::string cell;
        double value = 0;
        cells >> cell;
        for (int i = 0; i < 4; ++i) EXPECT_TRUE(cells >> value) << line << ": values run into each other";
    }
    EXPECT_EQ(rows, 4);
}

// Columns are as wide as their widest cell, brackets and signs included, and no wider; 3000 rows are more
// than one block of the output.
TEST_F(FitCommand, TheColumnsOfTheTableAreAsWideAsTheirWidestCell) {
    std::string start, target;
    for (int i = 0; i < 3000; ++i) {
        const std::string name = "P" + std::to_string(i) + ";";
        const std::string rest = std::to_string(i * 37 % 1000) + ";" + std::to_string(i * 91 % 1000) + "\n";
        start += name + std::to_string(i) + ";" + rest;
        target += name + std::to_string(i == 7 ? -4000000 : i) + ";" + rest;
    }
    const std::string from = Write("w1.txt", start), to = Write("w2.txt", target);
    for (const std::vector<std::string>& options : {std::vector<std::string>{},
                                                    {"--digits", "6"},
                                                    {"--leave-out", "P7:x"},
                                                    {"--digits", "6", "--leave-out", "P7:xy"},
                                                    {"--digits", "6", "--leave-out", "P8:z"}}) {
        std::vector<std::string> arguments = {from, to};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const Outcome outcome = Fit(arguments);
        std::istringstream lines(outcome.Out.substr(outcome.Out.find("\nDeviation") + 1));
        std::string line;
        std::getline(lines, line);
        // Where the headings end the cells do.
        std::vector<std::size_t> ends;
        for (const char* heading : {" dx", " dy", " dz", " 3D"}) ends.push_back(line.find(heading) + 3);
        std::array<std::size_t, 4> widest{};
        std::size_t rows = 0;
        for (; std::getline(lines, line) && line.starts_with("P"); ++rows)
            for (std::size_t k = 0; k < 4; ++k) {
                const std::size_t end = ends[k];
                ASSERT_NE(line[end - 1], ' ') << line;
                ASSERT_TRUE(end == line.size() || line[end] == ' ') << line;
                widest[k] = std::max(widest[k], end - line.rfind(' ', end - 1) - 1);
            }
        EXPECT_EQ(rows, 3000U);
        for (std::size_t k = 0; k < 4; ++k)
            EXPECT_EQ(ends[k] - (k == 0 ? 12 : ends[k - 1]), 2 + std::max<std::size_t>(widest[k], 10)) << k;
    }
}

TEST_F(FitCommand, TheJsonIsLaidOutAsAWhole) {
    const auto expectLaidOut = [](std::vector<std::string> arguments) {
        arguments.emplace_back("--json");
        const std::string text = Fit(arguments).Out;
        EXPECT_EQ(nlohmann::ordered_json::parse(text).dump(2) + "\n", text);
    };
    expectLaidOut({kMeasured, kNominal, "--details"});  // points of one file alone, and notes
    expectLaidOut({start_, target_, "--protocol"});     // lists without an element
}

TEST_F(FitCommand, JsonIsValidWithNamesOfAnyBytes) {
    const std::string start = Write("j1.txt", "\xff\x01\"\\;0;0;0\nB\xc3;1000;0;0\nC;0;2000;0\n");
    const json fit = FitJson({start, start});
    EXPECT_EQ(fit["counts"]["pairs"], 3);
}

TEST_F(FitCommand, SignificanceIsThatOfTheAnglesThatAreShown) {
    const json fit = FitJson({kMeasured, kNominal, "--leave-out", "F09"});
    for (const json& parameter : fit["parameters"]) {
        if (parameter["state"] != "float") continue;
        const double expected =
            std::fabs(parameter["value"].get<double>()) / (parameter["sigma"].get<double>() + 1e-9);
        EXPECT_NEAR(parameter["significance"].get<double>(), expected, 1e-6 * expected) << parameter;
    }
}

TEST_F(FitCommand, ADecimalCommaIsTakenFromTheOption) {
    const std::string start = Write("c1.txt", "A;0,5;0;0\nB;1000;0;0,25\nC;0;2000;0\n");
    const std::string target = Write("c2.txt", "A;1,5;0;0\nB;1001;0;0,25\nC;1;2000;0\n");
    const Outcome outcome = Fit({start, target, "--decimal", ",", "--csv"});
    EXPECT_EQ(outcome.Status, 0) << outcome.Err;
    EXPECT_NE(outcome.Out.find("A;0,5;0;0;1,5;0;0;"), std::string::npos) << outcome.Out;
}
