// `corvinade-cli fit` with a robot program as its target.
#include <array>
#include <cmath>
#include <cstdio>
#include <numbers>

#include "cli/fit_command.h"
#include "core/job_file.h"
#include "support/degrees.h"

using namespace corvinade;

namespace {

using Point = std::array<double, 3>;

struct RobotPose {
    Point Flange, Angles;  // mm in the robot's base; degrees about z, the new y, the new x
};

// Point of the flange's system, in the base.
Point InBase(const RobotPose& pose, Point p) {
    const auto turn = [&p](std::size_t i, std::size_t j, double degrees) {
        const double c = std::cos(degrees * kDegree), s = std::sin(degrees * kDegree), pi = p[i], pj = p[j];
        p[i] = c * pi - s * pj;
        p[j] = s * pi + c * pj;
    };
    turn(1, 2, pose.Angles[2]);
    turn(2, 0, pose.Angles[1]);
    turn(0, 1, pose.Angles[0]);
    for (std::size_t k = 0; k < 3; ++k) p[k] += pose.Flange[k];
    return p;
}

std::string Print(const char* format, auto... values) {
    std::array<char, 300> text{};
    const int length = std::snprintf(text.data(), text.size(), format, values...);
    return {text.data(), static_cast<std::size_t>(length)};
}

// Nine poses. A start point p lies at T + M p in the base, T = (100, -200, 300), M a turn by 30 degrees about
// z.
class RobotProgramFits : public FitCommand {
protected:
    std::vector<RobotPose> poses_ = {
        {{900, -500, 700}, {10, 20, 170}},   {{1200, 150, 650}, {-35, 45, -160}},
        {{850, 620, 900}, {80, 5, 150}},     {{1100, -300, 1300}, {-70, 35, 120}},
        {{1350, 400, 1150}, {25, 60, -140}}, {{700, 90, 520}, {130, -10, 165}},
        {{980, 310, 1480}, {-5, 72, 178}},   {{1420, -120, 830}, {55, -30, -125}},
        {{780, -640, 1210}, {-110, 15, 95}}};

    // The tips of a tool, measured in the start system, as lines of a point file.
    std::string Tips(const Point& tool, const char* format = "%s;%.9f;%.9f;%.9f\n", double scale = 1) const {
        std::string text;
        for (std::size_t i = 0; i < poses_.size(); ++i) {
            const Point tip = InBase(poses_[i], tool);
            const double x = tip[0] - 100, y = tip[1] + 200, z = tip[2] - 300;
            const double c = std::cos(30 * kDegree), s = std::sin(30 * kDegree);
            text +=
                Print(format, Name(i).c_str(), scale * (c * x + s * y), scale * (c * y - s * x), scale * z);
        }
        return text;
    }
    std::string Name(std::size_t i) const { return names_ + std::to_string(i + 1); }
    std::string Kuka(double length = 1, double angle = 1) const {
        std::string text;
        for (const auto& [p, a] : poses_)
            text +=
                Print("DECL E6POS XP={X %.9g,Y %.9g,Z %.9g,A %.9g,B %.9g,C %.9g,S 2,T 35}\n", length * p[0],
                      length * p[1], length * p[2], angle * a[0], angle * a[1], angle * a[2]);
        return Write("program.dat", text + "ENDDAT\n");
    }
    static double Parameter(const json& fit, const std::string& name) {
        for (const json& row : fit["parameters"])
            if (row["name"] == name) return row["value"].get<double>();
        ADD_FAILURE() << "no parameter " << name << " in " << fit["parameters"];
        return NAN;
    }
    static void ExpectTruth(const json& fit, const Point& tool) {
        EXPECT_NEAR(Parameter(fit, "trax"), 100, 1e-5);
        EXPECT_NEAR(Parameter(fit, "tray"), -200, 1e-5);
        EXPECT_NEAR(Parameter(fit, "traz"), 300, 1e-5);
        EXPECT_NEAR(fit["transformation"]["matrix"][1][0].get<double>(), 0.5, 1e-8);
        // The vector of the model leads from the tip to the flange.
        EXPECT_NEAR(Parameter(fit, "rvecx"), -tool[0], 1e-5);
        EXPECT_NEAR(Parameter(fit, "rvecy"), -tool[1], 1e-5);
        EXPECT_NEAR(Parameter(fit, "rvecz"), -tool[2], 1e-5);
        for (const json& point : fit["points"]) EXPECT_NEAR(point["residual3D_mm"].get<double>(), 0, 1e-5);
    }
    std::string names_;
};

const Point kTool = {60, -20, 210};
const std::string kTips = kExamples + "robot_tool_measured.txt";
// The five programs of the same poses, by their kinds.
const std::vector<std::pair<std::string, std::string>> kPrograms = {
    {"kuka", kExamples + "robot_tool.dat"},
    {"fanuc", kExamples + "robot_tool.ls"},
    {"abb", kExamples + "robot_tool.modx"},
    {"xyzabc", kExamples + "robot_tool_xyzabc.txt"},
    {"quaternion", kExamples + "robot_tool_quaternion.txt"}};

}  // namespace

TEST_F(RobotProgramFits, TheToolVectorComesFromTheOrientationsOfTheProgram) {
    const json fit = FitJson({Write("tips.txt", Tips(kTool)), Kuka(), "--as", "kuka", "--tool"});
    ExpectTruth(fit, kTool);
    EXPECT_EQ(fit["counts"]["unknowns"], 9);
    EXPECT_EQ(fit["input"]["targetKind"], "kuka");
    EXPECT_EQ(FitJson({start_, target_})["input"]["targetKind"], "points");
}

TEST_F(RobotProgramFits, ProgramsAreInTheUnitsOfTheOptions) {
    const std::string tips = Write("tips.txt", Tips(kTool, "%s;%.12f;%.12f;%.12f\n", 0.001));
    ExpectTruth(FitJson({tips, Kuka(0.001, 10 / 9.0), "--as", "kuka", "--tool", "--length-unit", "m",
                         "--angle-unit", "gon"}),
                kTool);
}

TEST_F(RobotProgramFits, UnitsThatAreNotThoseOfTheProgramAreNoted) {
    const auto warnings = [](const std::string& kind, const std::string& program, const std::string& option,
                             const std::string& unit) {
        std::vector<std::string> codes;
        const json fit = json::parse(Fit({kTips, program, "--as", kind, option, unit, "--json"}).Out);
        for (const json& note : fit["notes"])
            if (note["severity"] == "warning") codes.push_back(note["code"]);
        return codes;
    };
    const auto warnsOfAngles = [](const std::string& kind, const std::string& program,
                                  const std::string& unit, const std::vector<std::string>& more) {
        std::vector<std::string> command = {kTips, program, "--as", kind, "--angle-unit", unit, "--json"};
        command.insert(command.end(), more.begin(), more.end());
        const json fit = json::parse(Fit(command).Out);
        for (const json& note : fit["notes"])
            if (note["code"] == "angle-unit" && note["severity"] == "warning") return true;
        return false;
    };
    for (const auto& [kind, program] : kPrograms) {
        const bool hasDegrees = kind == "kuka" || kind == "fanuc";
        const bool hasMillimetres = hasDegrees || kind == "abb";
        for (const char* unit : {"rad", "gon", "mrad"}) {
            EXPECT_EQ(warnsOfAngles(kind, program, unit, {"--tool"}), hasDegrees) << kind;
            EXPECT_EQ(warnsOfAngles(kind, program, unit, {"--save", PathOf("a.cvn")}), hasDegrees) << kind;
            // Without the tool vector no orientation takes part.
            EXPECT_EQ(warnings(kind, program, "--angle-unit", unit), std::vector<std::string>{}) << kind;
        }
        for (const char* unit : {"m", "in"})
            EXPECT_EQ(warnings(kind, program, "--length-unit", unit),
                      (hasMillimetres ? std::vector<std::string>{"length-unit"} : std::vector<std::string>{}))
                << kind;
        EXPECT_EQ(warnings(kind, program, "--angle-unit", "deg"), std::vector<std::string>{}) << kind;
        EXPECT_EQ(warnings(kind, program, "--angle-unit", "dms"), std::vector<std::string>{}) << kind;
        EXPECT_EQ(Fit({kTips, program, "--as", kind, "--tool", "--angle-unit", "rad", "--strict"}).Status,
                  hasDegrees ? 3 : 0)
            << kind;
    }
    const json fit = FitJson(
        {kTips, kPrograms[1].second, "--as", "fanuc", "--angle-unit", "rad", "--save", PathOf("a.cvn")});
    EXPECT_EQ(fit["notes"][0]["text"],
              "The angles of the program are in degrees, and are read as numbers in the unit in use, rad");
    EXPECT_EQ(fit["notes"][0]["file"], kPrograms[1].second);
    EXPECT_EQ(fit["notes"][0]["count"], 10) << "poses";
    EXPECT_GT(fit["notes"][0]["line"], 1);
}

TEST_F(RobotProgramFits, WithoutAModelThePositionsAreFitted) {
    const json fit = FitJson({Write("flanges.txt", Tips({0, 0, 0})), Kuka(), "--as", "kuka"});
    EXPECT_NEAR(Parameter(fit, "tray"), -200, 1e-5);
    EXPECT_EQ(fit["parameters"].size(), 13u);
    EXPECT_EQ(fit["counts"]["unknowns"], 6);
}

TEST_F(RobotProgramFits, TheDistanceModelNeedsNoOrientation) {
    const json fit = FitJson({Write("tips.txt", Tips(kTool)), Kuka(), "--as", "kuka", "--r-dist", "--start",
                              "trax=102", "--start", "tray=-203", "--start", "traz=301", "--start",
                              "rotx=0.1", "--start", "roty=-0.1", "--start", "rotz=-29.8"});
    EXPECT_NEAR(Parameter(fit, "trax"), 100, 1e-4);
    EXPECT_NEAR(std::fabs(Parameter(fit, "rdist")), std::sqrt(60 * 60 + 20 * 20 + 210 * 210), 1e-4);
}

TEST_F(RobotProgramFits, EachPoseKeepsItsOrientationWhereverItsPointGoes) {
    const Point nib = {0.2, -0.15, 0.3};  // so that the flange is near enough to the tip for pairing
    names_ = "T";
    const std::string tips = Write("tips.txt", Tips(nib));
    ExpectTruth(FitJson({tips, Kuka(), "--as", "kuka", "--tool", "--match", "distance", "--tolerance", "1"}),
                nib);

    names_.clear();
    std::string shuffled;
    std::istringstream lines(Tips(nib));
    for (std::string line; std::getline(lines, line);) shuffled.insert(0, line + "\n");
    ExpectTruth(FitJson({Write("shuffled.txt", shuffled), Kuka(), "--as", "kuka", "--tool"}), nib);
}

TEST_F(RobotProgramFits, AfterPairingByDistanceAPoseAnswersToEitherName) {
    std::string program;
    for (std::size_t i = 0; i < poses_.size(); ++i) {
        const auto& [p, a] = poses_[i];
        program += Print("R%zu;%g;%g;%g;%g;%g;%g\n", i + 1, p[0], p[1], p[2], a[0], a[1], a[2]);
    }
    names_ = "T";
    const json fit =
        FitJson({Write("tips.txt", Tips({0.2, -0.15, 0.3})), Write("program.txt", program), "--as", "xyzabc",
                 "--match", "distance", "--tolerance", "1", "--leave-out", "T3", "--leave-out", "R7:z"});
    EXPECT_EQ(fit["counts"]["observations"], 23);
}

TEST_F(RobotProgramFits, ByCoordinateEachPoseKeepsItsOrientationToo) {
    const Point nib = {0.2, -0.15, 0.3};
    // Both systems are one.
    std::string here;
    for (std::size_t i = poses_.size(); i-- > 0;) {
        const Point tip = InBase(poses_[i], nib);
        here += Print("Q%zu;%.9f;%.9f;%.9f\n", i + 1, tip[0], tip[1], tip[2]);
    }
    const json fit =
        FitJson({Write("here.txt", here), Kuka(), "--as", "kuka", "--tool", "--match", "coordinate"});
    EXPECT_EQ(fit["counts"]["pairs"], 9);
    EXPECT_NEAR(Parameter(fit, "trax"), 0, 1e-5);
    EXPECT_NEAR(Parameter(fit, "rvecz"), -0.3, 1e-5);
}

TEST_F(RobotProgramFits, OrientationsOfAFileMayReplaceThoseOfTheProgram) {
    std::string poses;
    for (std::size_t i = 0; i < poses_.size(); ++i) {
        const Point& a = poses_[i].Angles;
        poses += Print("%d 0 0 0 %g %g %g\n", static_cast<int>(i + 1), a[0], a[1], a[2]);
    }
    const std::string tips = Write("tips.txt", Tips(kTool));
    ExpectTruth(FitJson({tips, Kuka(1, 0.5), "--as", "kuka", "--poses", Write("poses.txt", poses)}), kTool);
}

TEST_F(RobotProgramFits, PosesOfAnotherPlaceAreWarnedOf) {
    const std::string tips = Write("tips.txt", Tips(kTool));
    for (const bool astray : {false, true}) {
        std::string poses;
        for (std::size_t i = 0; i < poses_.size(); ++i) {
            const auto& [p, a] = poses_[i];
            poses += Print("%d %g %g %g %g %g %g\n", static_cast<int>(i + 1), p[0], p[1],
                           p[2] + (astray && i == 4 ? 100 : 0), a[0], a[1], a[2]);
        }
        const json fit = FitJson({tips, Kuka(1, 0.5), "--as", "kuka", "--poses", Write("poses.txt", poses)});
        ExpectTruth(fit, kTool);
        int doubtful = 0;
        for (const json& note : fit["notes"])
            if (note["code"] == "poses-doubtful") {
                ++doubtful;
                EXPECT_EQ(note["line"], 5);
                EXPECT_NE(note["text"].get<std::string>().find("is 100.000 off"), std::string::npos);
            }
        EXPECT_EQ(doubtful, astray ? 1 : 0);
    }
}

TEST_F(RobotProgramFits, ProgramsHaveThePointOnASystemWithComma) {
    std::string tips = Tips(kTool);
    std::replace(tips.begin(), tips.end(), '.', ',');
    const json fit = FitJson({Write("tips.txt", tips), Kuka(), "--as", "kuka", "--tool", "--decimal", ","});
    ExpectTruth(fit, kTool);
}

TEST_F(RobotProgramFits, AJobThatKeepsNoOrientationsIsNotFittedWithThem) {
    const std::string tips = Write("tips.txt", Tips(kTool));
    std::string program;
    for (std::size_t i = 0; i < poses_.size(); ++i) {
        const auto& [p, a] = poses_[i];
        program += Print("%zu;%g;%g;%g;%g;%g;%g\n", i + 1, p[0], p[1], p[2], a[0], a[1], a[2]);
    }
    const std::string path = Write("program.txt", program), job = PathOf("angles.cvn");
    ASSERT_EQ(Fit({tips, path, "--as", "xyzabc", "--tool", "--save", job}).Status, 0);
    for (const std::vector<std::string>& more : {std::vector<std::string>{}, {"--tool"}}) {
        FreshStart();
        std::vector<std::string> arguments = {"--job", job, "--json", "--save", PathOf("again.cvn")};
        arguments.insert(arguments.end(), more.begin(), more.end());
        const Outcome outcome = Fit(arguments);
        EXPECT_EQ(outcome.Status, 1);
        EXPECT_NE(outcome.Out.find("\"corvinade-error\""), std::string::npos) << outcome.Out;
        EXPECT_NE(outcome.Out.find("orientation"), std::string::npos) << outcome.Out;
        EXPECT_FALSE(File_Exist(PathOf("again.cvn")));
    }
    // What it says to do: the orientations from a file.
    FreshStart();
    ExpectTruth(FitJson({"--job", job, "--poses", path}), kTool);
    // Kuka jobs keep them.
    const std::string kuka = PathOf("kuka.cvn");
    ASSERT_EQ(Fit({tips, Kuka(), "--as", "kuka", "--tool", "--save", kuka}).Status, 0);
    FreshStart();
    ExpectTruth(FitJson({"--job", kuka}), kTool);
}

TEST_F(RobotProgramFits, OptionsThatDoNotGoTogetherAreWrongUsage) {
    const std::string tips = Write("tips.txt", Tips(kTool)), program = Kuka();
    const std::vector<std::vector<std::string>> wrong = {
        {"--tool"},
        {"--as", "kuka", "--tool", "--r-dist"},
        {"--as", "kuka", "--tool", "--poses", tips},
        {"--as", "kuka", "--tool", "--norm", "l1"},
        {"--as", "kuka", "--tool", "--norm", "minimax"},
        {"--as", "kuka", "--tool", "--direction", "ocs-mcs"},
        {"--as", "other"},
        {"--as", "points"},
        {"--as"},
    };
    for (const std::vector<std::string>& more : wrong) {
        std::vector<std::string> arguments = {tips, program};
        arguments.insert(arguments.end(), more.begin(), more.end());
        const Outcome outcome = Fit(arguments);
        EXPECT_EQ(outcome.Status, 2) << more.back();
        const bool isTool = std::find(more.begin(), more.end(), "--tool") != more.end();
        EXPECT_NE(outcome.Err.find(isTool ? "--tool" : "--as"), std::string::npos) << outcome.Err;
        EXPECT_EQ(outcome.Out, "");
    }
}

TEST_F(RobotProgramFits, AProgramThatCannotBeReadSaysWhere) {
    const std::string tips = Write("tips.txt", Tips(kTool));
    const std::string torn = Write("torn.dat", "DECL E6POS XP1={X 1,Y here,Z 3,A 4,B 5,C 6,S 2}\nENDDAT\n");
    const Outcome kuka = Fit({tips, torn, "--as", "kuka"});
    EXPECT_EQ(kuka.Status, 3);
    EXPECT_NE(kuka.Err.find("\"" + torn + "\", line 1: \"here\" is not a number"), std::string::npos)
        << kuka.Err;
    const Outcome fanuc =
        Fit({tips, Write("torn.ls", "/POS\nP[1]{\n GP1:\n UF\n X = 1\n};\n/END\n"), "--as", "fanuc"});
    EXPECT_EQ(fanuc.Status, 3);
    EXPECT_TRUE(fanuc.Err.starts_with("Error while importing FANUC Data\n")) << fanuc.Err;
    EXPECT_NE(fanuc.Err.find("torn.ls\", line 5: "), std::string::npos) << fanuc.Err;
    const Outcome none = Fit({tips, tips, "--as", "abb"});
    EXPECT_EQ(none.Status, 3);
    EXPECT_NE(none.Err.find("there is no pose in it"), std::string::npos) << none.Err;
}

TEST_F(RobotProgramFits, StartPointsWithOtherNamesAreToldOfTheNamesOfPoses) {
    names_ = "T";
    const Outcome outcome = Fit({Write("tips.txt", Tips(kTool)), Kuka(), "--as", "kuka"});
    EXPECT_EQ(outcome.Status, 1);
    EXPECT_NE(outcome.Err.find("bear the names 1, 2, 3"), std::string::npos) << outcome.Err;
}

// --- The example ------------------------------------------------------------------------------------------

TEST_F(RobotProgramFits, AllFiveKindsOfTheExampleGiveTheSameFit) {
    const json first = FitJson({kTips, kPrograms[0].second, "--as", kPrograms[0].first, "--tool"});
    for (const auto& [kind, path] : kPrograms) {
        for (const bool tool : {true, false}) {
            std::vector<std::string> arguments = {kTips, path, "--as", kind};
            if (tool) arguments.emplace_back("--tool");
            const json fit = FitJson(arguments);
            EXPECT_EQ(fit["counts"]["pairs"], 10) << kind;
            if (!tool) {
                EXPECT_GT(fit["quality"]["s0_mm"], 50) << "the flanges are not the tips";
                continue;
            }
            ASSERT_EQ(fit["parameters"].size(), first["parameters"].size());
            for (std::size_t k = 0; k < fit["parameters"].size(); ++k)
                EXPECT_NEAR(fit["parameters"][k]["value"].get<double>(),
                            first["parameters"][k]["value"].get<double>(), 1e-5)
                    << kind << " " << fit["parameters"][k]["name"];
            for (std::size_t i = 0; i < fit["points"].size(); ++i) {
                EXPECT_EQ(fit["points"][i]["name"], std::to_string(i + 1));
                EXPECT_NEAR(fit["points"][i]["residual3D_mm"].get<double>(),
                            first["points"][i]["residual3D_mm"].get<double>(), 1e-5);
            }
        }
    }
}

TEST_F(RobotProgramFits, EveryKindOfTheExampleFindsTheLengthOfItsTool) {
    for (const auto& [kind, path] : kPrograms) {
        const json fit = FitJson({kTips, path, "--as", kind, "--r-dist", "--start", "trax=2309", "--start",
                                  "tray=1189", "--start", "traz=-412", "--start", "rotx=-0.6", "--start",
                                  "roty=1.8", "--start", "rotz=-64.2"});
        EXPECT_EQ(fit["counts"]["unknowns"], 7) << kind;
        // The tool that the measured tips were computed with, before noise of 0.1 mm.
        const double length = std::sqrt(62.4 * 62.4 + 18.75 * 18.75 + 214.3 * 214.3);
        EXPECT_NEAR(std::fabs(Parameter(fit, "rdist")), length, 0.2) << kind;
    }
}

TEST_F(RobotProgramFits, TheExampleFindsWhatItWasMadeFrom) {
    // Base and tool that the measured tips were computed with, before noise of 0.1 mm.
    const std::vector<std::pair<std::string, double>> truth = {{"trax", 2310.4}, {"tray", 1187.9},
                                                               {"traz", -412.6}, {"rvecx", -62.4},
                                                               {"rvecy", 18.75}, {"rvecz", -214.3}};
    const json fit = FitJson({kTips, kPrograms[0].second, "--as", "kuka", "--tool"});
    for (const json& row : fit["parameters"])
        for (const auto& [name, value] : truth)
            if (row["name"] == name) {
                EXPECT_NEAR(row["value"].get<double>(), value, 4 * row["sigma"].get<double>()) << name;
                EXPECT_LT(row["sigma"], 0.15);
            }
    EXPECT_NEAR(fit["quality"]["s0_mm"].get<double>(), 0.1, 0.05);
}

// The fields of a job have a place for the text of a tool vector alone, and before its block had one for the
// values these were lost.
TEST_F(RobotProgramFits, AJobDoesNotShowAToolVectorThatItDoesNotKeep) {
    const Point tool = {40, -30, 210};
    const std::string tips = Write("tips.txt", Tips(tool)), program = Kuka();
    const auto info = [this](const std::string& job) {
        const Outcome outcome = CommandLine({"info", job, "--json"});
        EXPECT_EQ(outcome.Status, 0) << outcome.Err;
        return json::parse(outcome.Out);
    };
    FitJson({tips, program, "--as", "kuka", "--tool", "--save", PathOf("floating.cvn")});
    FreshStart();
    const double kept[3] = {-40, 30, -210};
    const json now = info(PathOf("floating.cvn"));
    for (const json& row : now["parameters"])
        for (std::size_t k = 0; k < 3; ++k)
            if (row["name"] == std::string("rvec") + "xyz"[k]) {
                EXPECT_NEAR(row["value"].get<double>(), kept[k], 1e-2) << row;
            }
    JobFileContent before = ReadJobBytes(Contents(PathOf("floating.cvn")), "floating.cvn");
    before.Job.Rvec_x = before.Job.Rvec_y = before.Job.Rvec_z = 0;
    Write("floating.cvn", JobBytes(before.Job, {}));
    FreshStart();
    const json floating = info(PathOf("floating.cvn"));
    for (const json& row : floating["parameters"])
        if (row["name"].get<std::string>().starts_with("rvec")) {
            EXPECT_EQ(row["value"], nullptr) << row;
            EXPECT_EQ(row["shown"], nullptr) << row;
        }
    FreshStart();
    const std::string table = CommandLine({"info", PathOf("floating.cvn")}).Out;
    EXPECT_NE(table.find("R vec x          float                 -"), std::string::npos) << table;
}
