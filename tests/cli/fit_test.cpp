// `corvinade-cli fit`: its numbers against a closed form, its outputs, its refusals and exit statuses.
#include <cmath>
#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>

#include "cli/closed_form.h"
#include "cli/commands.h"
#include "cli/headless.h"
#include "cli/text_columns.h"
#include "core/files.h"
#include "support/fixture.h"

using nlohmann::json;

namespace {

const std::string kExamples = std::string(CORVINADE_SOURCE_DIR) + "/examples/";
const std::string kMeasured = kExamples + "robot_cell_measured.txt";
const std::string kNominal = kExamples + "robot_cell_nominal.txt";

struct Outcome {
    int Status;
    std::string Out, Err;
};

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

class FitCommand : public Program {
protected:
    static Outcome Fit(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"corvinade-cli", "fit"});
        if (std::find(arguments.begin(), arguments.end(), "--decimal") == arguments.end()) {
            arguments.emplace_back("--decimal");
            arguments.emplace_back(".");
        }
        std::vector<const char*> argv;
        for (const std::string& argument : arguments) argv.push_back(argument.c_str());
        std::istringstream in;
        std::ostringstream out;
        std::ostringstream err;
        const int status =
            RunCommandLine(static_cast<int>(argv.size()), argv.data(), in, out, err, false, false);
        return {status, out.str(), err.str()};
    }
    static json FitJson(std::vector<std::string> arguments) {
        arguments.emplace_back("--json");
        const Outcome outcome = Fit(arguments);
        EXPECT_EQ(outcome.Status, 0) << outcome.Err;
        return json::parse(outcome.Out);
    }
    // The example's pairs without the mark that was knocked.
    static void ExamplePairs(std::vector<closed_form::Point>& start,
                             std::vector<closed_form::Point>& target) {
        const auto measured = ReadPoints(kMeasured);
        for (const auto& [name, point] : ReadPoints(kNominal))
            if (name != "F09" && measured.count(name) == 1) {
                start.push_back(measured.at(name));
                target.push_back(point);
            }
    }
    std::string start_ = Write("start.txt", "A;0;0;0\nB;1000;0;0\nC;0;2000;0\nD;0;0;3000\nE;700;800;900\n");
    std::string target_ = Write("target.txt", "A;5;6;7\nB;1005;6;7\nC;5;2006;7\nD;5;6;3007\nE;705;806;907\n");
};

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

// --- Questions, refusals, exit statuses -------------------------------------------------------------------

TEST_F(FitCommand, AQuestionWithoutAnAnswerIsAnErrorThatQuotesIt) {
    ExpectUnanswered();
    const std::string start = Write("c1.txt", "A;0,5;0;0\nB;1000;0;0,25\nC;0;2000;0\n");
    const Outcome outcome = Fit({start, target_});
    EXPECT_EQ(outcome.Status, 3);
    EXPECT_NE(outcome.Err.find("Your Decimal Delimiter is different"), std::string::npos) << outcome.Err;
    EXPECT_NE(outcome.Err.find("--yes"), std::string::npos);
    EXPECT_EQ(Contents(start), "A;0,5;0;0\nB;1000;0;0,25\nC;0;2000;0\n");
    Headless.Unanswered = false;
}

TEST_F(FitCommand, YesChangesTheFileAndNoLeavesIt) {
    const std::string content = "A;0,5;0;0\nB;1000;0;0,25\nC;0;2000;0\n";
    const std::string start = Write("c1.txt", content);
    EXPECT_EQ(Fit({start, target_, "--no"}).Status, 3);
    EXPECT_EQ(Contents(start), content);
    EXPECT_EQ(Fit({start, target_, "--yes"}).Status, 0);
    EXPECT_EQ(Contents(start).substr(0, 9), "A;0.5;0;0");
}

TEST_F(FitCommand, AnAnsweredQuestionIsToldWithItsAnswer) {
    const std::string start = Write("c1.txt", "A;0,5;0;0\nB;1000;0;0,25\nC;0;2000;0\n");
    EXPECT_NE(Fit({start, target_, "--no"}).Err.find("Should I change the , in your File to . ? No"),
              std::string::npos);
    EXPECT_NE(Fit({start, target_, "--yes"}).Err.find("Should I change the , in your File to . ? Yes"),
              std::string::npos);
}

TEST_F(FitCommand, TooFewPairsAreRefusedWithWhatTheFilesHold) {
    const Outcome byName = Fit({start_, Write("other.txt", "P;5;6;7\nQ;1005;6;7\nR;1;2;3\n")});
    EXPECT_EQ(byName.Status, 1);
    EXPECT_NE(byName.Err.find("the start file has 5 points and the target file 3, 0 of them identical"),
              std::string::npos)
        << byName.Err;
    EXPECT_NE(byName.Err.find("--match coordinate"), std::string::npos);
    const Outcome near = Fit({start_, target_, "--match", "coordinate", "--tolerance", "0.25"});
    EXPECT_EQ(near.Status, 1);
    EXPECT_NE(near.Err.find("0.25 mm; --tolerance"), std::string::npos) << near.Err;
}

TEST_F(FitCommand, AToleranceBeyondAFloatIsWrongUsageAndNeverAskedForEver) {
    for (const char* tolerance : {"0", "1e-60", "1e60", "1e400", "nan", "inf", "x", ""})
        for (const char* match : {"coordinate", "distance"}) {
            const Outcome outcome = Fit({start_, target_, "--match", match, "--tolerance", tolerance});
            EXPECT_EQ(outcome.Status, 2) << tolerance;
            EXPECT_LT(outcome.Err.size(), 200u) << outcome.Err;
        }
    EXPECT_EQ(Fit({start_, start_, "--match", "coordinate", "--tolerance", "1e-30"}).Status, 0);
}

TEST_F(FitCommand, AResultThatCannotBeWrittenIsNoSuccess) {
    for (const char* output : {"--json", "--csv", "--digits=3"}) {
        const std::array<const char*, 7> argv = {"corvinade-cli", "fit", start_.c_str(), target_.c_str(),
                                                 "--decimal",     ".",   output};
        std::istringstream in;
        std::ostream out(nullptr);  // takes nothing, as a full disk
        std::ostringstream err;
        EXPECT_EQ(RunCommandLine(7, argv.data(), in, out, err, false, false), 1) << output;
        EXPECT_NE(err.str().find("could not be written"), std::string::npos);
    }
}

TEST_F(FitCommand, TooFewObservationsAreRefusedWithWhatIsMissing) {
    const std::string two = Write("two.txt", "A;5;6;7\nB;1005;6;7\n");
    const Outcome outcome = Fit({start_, two, "--parameters", "9"});
    EXPECT_EQ(outcome.Status, 1);
    EXPECT_NE(outcome.Err.find("This is not a redundant calculation"), std::string::npos);
    EXPECT_NE(outcome.Err.find("6 observations in use, 9 unknowns"), std::string::npos) << outcome.Err;
    EXPECT_EQ(outcome.Out, "");
    EXPECT_EQ(Fit({start_, Write("one.txt", "A;5;6;7\n")}).Status, 1);
}

TEST_F(FitCommand, PointsThatDetermineNothingNeverGiveASilentResult) {
    const std::string same = Write("same.txt", "A;1;1;1\nB;1;1;1\nC;1;1;1\nD;1;1;1\n");
    const Outcome outcome = Fit({same, same, "--parameters", "12"});
    EXPECT_NE(outcome.Status, 2);
    EXPECT_NE(outcome.Status, 3);
    const std::string huge = Write("huge.txt", "A;1e300;1;1\nB;1;1e300;1\nC;1;1;1e300\nD;-1e300;1;1\n");
    const Outcome overflow = Fit({huge, target_});
    EXPECT_EQ(overflow.Status, 1) << overflow.Out;
    EXPECT_NE(overflow.Err.find("not finite"), std::string::npos) << overflow.Err;
}

TEST_F(FitCommand, WrongUsageIsStatusTwo) {
    for (const auto& arguments :
         std::vector<std::vector<std::string>>{{},
                                               {start_},
                                               {start_, target_, "--match", "luck"},
                                               {start_, target_, "--parameters", "8"},
                                               {start_, target_, "--hold", "rotz"},
                                               {start_, target_, "--hold", "rotz=abc"},
                                               {start_, target_, "--hold", "spin=1"},
                                               {start_, target_, "--hold", "scalexyz=0"},
                                               {start_, target_, "--parameters", "7", "--hold", "scalex=1"},
                                               {start_, target_, "--leave-out", "Nobody"},
                                               {start_, target_, "--leave-out", "A:q"},
                                               {start_, target_, "--yes", "--no"},
                                               {start_, target_, "--json", "--csv"},
                                               {start_, target_, "--digits", "7"},
                                               {start_, target_, "--tolerance", "-1"},
                                               {start_, target_, "--unknown"}}) {
        const Outcome outcome = Fit(arguments);
        EXPECT_EQ(outcome.Status, 2) << json(arguments);
        EXPECT_FALSE(outcome.Err.empty());
        EXPECT_EQ(outcome.Out, "");
    }
}

TEST_F(FitCommand, UnreadableInputsAreStatusThreeAndNamed) {
    EXPECT_EQ(Fit({PathOf("absent.txt"), target_}).Status, 3);
    EXPECT_NE(Fit({PathOf("absent.txt"), target_}).Err.find("absent.txt"), std::string::npos);
    EXPECT_NE(Fit({start_, folder_}).Err.find("folder"), std::string::npos);
    EXPECT_EQ(Fit({start_, folder_}).Status, 3);
    EXPECT_EQ(Fit({Write("empty.txt", ""), target_}).Status, 3);
    const Outcome bad = Fit({Write("bad.txt", "A;1;2;3\nB;1;1,000.5;3\nC;1;nan;2\n"), target_, "--no"});
    EXPECT_EQ(bad.Status, 3);
    const Outcome nan = Fit({Write("nan.txt", "A;1;2;3\nB;1;2;3\nC;1;nan;2\n"), target_});
    EXPECT_EQ(nan.Status, 3);
    EXPECT_NE(nan.Err.find("nan.txt"), std::string::npos) << nan.Err;
    EXPECT_NE(nan.Err.find("line 3"), std::string::npos) << nan.Err;
    EXPECT_NE(nan.Err.find("\"nan\""), std::string::npos) << nan.Err;
    EXPECT_EQ(Fit({Write("big.txt", "A;1;2;3\nB;1;1e400;3\n"), target_}).Status, 3);
}

TEST_F(FitCommand, RefusedReadsAreStatusThreeWithFileAndReason) {
    for (const char* operation : {"open", "read"})
        for (const std::string& refused : {start_, target_}) {
            FileFaults.Refuse = [&](const std::string& asked, const std::string& path) {
                return std::string(asked == operation && path == refused ? "Permission denied" : "");
            };
            const Outcome outcome = Fit({start_, target_});
            EXPECT_EQ(outcome.Status, 3) << operation;
            EXPECT_NE(outcome.Err.find("\"" + refused + "\": Permission denied"), std::string::npos)
                << outcome.Err;
            EXPECT_EQ(outcome.Out, "");
        }
}

TEST_F(FitCommand, AFullDiskLeavesTheFileWithTheOtherDecimalDelimiterAsItWas) {
    const std::string content = "A;0,5;0;0\nB;1000;0;0,25\nC;0;2000;0\n";
    const std::string start = Write("c1.txt", content);
    for (const char* operation : {"create", "write", "flush", "rename"}) {
        FileFaults.Refuse = [&](const std::string& asked, const std::string&) {
            return std::string(asked == operation ? "No space left on device" : "");
        };
        const Outcome outcome = Fit({start, target_, "--yes"});
        EXPECT_EQ(outcome.Status, 3) << operation;
        EXPECT_NE(outcome.Err.find("No space left"), std::string::npos) << outcome.Err;
        EXPECT_EQ(Contents(start), content) << operation;
    }
    const std::filesystem::directory_iterator files(folder_);
    EXPECT_EQ(std::distance(begin(files), end(files)), 3) << "nothing is left beside the files";
}

TEST_F(FitCommand, FilesWithBlanksAloneNeedTheirDelimiterNamed) {
    const std::string start = Write("b1.txt", "A 0 0 0\nB 1000 0 0\nC 0 2000 0\n");
    const std::string target = Write("b2.txt", "A 5 0 0\nB 1005 0 0\nC 5 2000 0\n");
    const Outcome without = Fit({start, target});
    EXPECT_EQ(without.Status, 3);
    EXPECT_NE(without.Err.find("find any delimiter"), std::string::npos);
    EXPECT_EQ(Fit({start, target, "--delimiter", "space"}).Status, 0);
}

TEST_F(FitCommand, LeavesNoTraceInTheSettings) {
    Fit({start_, target_});
    EXPECT_FALSE(std::filesystem::exists(folder_ + "/settings"));
}

TEST_F(FitCommand, HelpAndVersionAreThere) {
    EXPECT_NE(Fit({"--help"}).Out.find("Exit status"), std::string::npos);
    EXPECT_EQ(Fit({"--help"}).Status, 0);
    std::istringstream help(Fit({"--help"}).Out);
    for (std::string line; std::getline(help, line);) {
        EXPECT_LE(line.size(), 110u) << line;
        EXPECT_EQ(line.find('\t'), std::string::npos) << line;
    }
    std::istringstream in;
    std::ostringstream out;
    std::ostringstream err;
    const std::array<const char*, 2> version = {"corvinade-cli", "--version"};
    EXPECT_EQ(RunCommandLine(2, version.data(), in, out, err, false, false), 0);
    EXPECT_EQ(out.str(), "corvinade-cli 2.0.64\n");
}

TEST_F(FitCommand, ColoursStandOnATerminalAloneAndNeverWithNoColor) {
    const auto table = [](bool terminal) {
        const std::vector<const char*> argv = {"corvinade-cli",  "fit",       kMeasured.c_str(),
                                               kNominal.c_str(), "--decimal", "."};
        std::istringstream in;
        std::ostringstream out;
        std::ostringstream err;
        RunCommandLine(static_cast<int>(argv.size()), argv.data(), in, out, err, terminal, false);
        return out.str();
    };
    unsetenv("NO_COLOR");
    EXPECT_NE(table(true).find("\x1b[31m"), std::string::npos);
    EXPECT_EQ(table(false).find('\x1b'), std::string::npos);
    setenv("NO_COLOR", "1", 1);
    EXPECT_EQ(table(true).find('\x1b'), std::string::npos);
    unsetenv("NO_COLOR");
}

TEST_F(FitCommand, TheProgramItselfGivesTheStatus) {
    const std::string program = CORVINADE_CLI;
    const auto run = [&](const std::string& arguments) {
        return std::system((program + " " + arguments + " >/dev/null 2>&1").c_str()) >> 8;
    };
    EXPECT_EQ(run("--version"), 0);
    EXPECT_EQ(run("fit"), 2);
    EXPECT_EQ(run("fit " + kMeasured + " " + kNominal + " --decimal ."), 0);
    EXPECT_EQ(run("fit /nowhere/a.txt /nowhere/b.txt"), 3);
}
