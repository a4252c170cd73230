// `corvinade-cli fit`: points that keep a distance from their targets, and points on a robot's tool.
#include <array>
#include <cmath>
#include <cstdio>
#include <numbers>

#include "cli/fit_command.h"
#include "engine/tolerance_check.h"
#include "support/degrees.h"

using namespace corvinade;

namespace {

std::string Line(const std::string& name, const std::array<double, 3>& point) {
    std::array<char, 120> text{};
    const int length =
        std::snprintf(text.data(), text.size(), ";%.9f;%.9f;%.9f\n", point[0], point[1], point[2]);
    return name + std::string(text.data(), static_cast<std::size_t>(length));
}

// Ten points, turned by 30 degrees about z and moved by (100, -200, 300) to where they truly are; what is
// found there is shifted from case to case.
class RobotFits : public FitCommand {
protected:
    std::vector<std::array<double, 3>> start_ = {
        {0, 0, 0},       {1000, 100, 0},    {900, 1100, 50},  {-100, 950, 20}, {50, -30, 800},
        {1100, 40, 850}, {1000, 1000, 900}, {-60, 1040, 820}, {500, 480, 400}, {480, 120, 1200}};
    std::vector<std::array<double, 3>> true_;
    std::string startFile_;

    void SetUp() override {
        FitCommand::SetUp();
        std::string text;
        for (std::size_t i = 0; i < start_.size(); ++i) {
            const auto& [x, y, z] = start_[i];
            const double c = std::cos(30 * kDegree), s = std::sin(30 * kDegree);
            true_.push_back({100 + c * x - s * y, -200 + s * x + c * y, 300 + z});
            text += Line("P" + std::to_string(i + 1), start_[i]);
        }
        startFile_ = Write("models_start.txt", text);
    }

    // Every target stands 25 mm from its point, each in another direction.
    std::string TargetsOnSpheres() {
        std::string text;
        for (std::size_t i = 0; i < true_.size(); ++i) {
            const double a = (40.0 + 77 * static_cast<double>(i)) * kDegree;
            const double b = (-70.0 + 31 * static_cast<double>(i % 5)) * kDegree;
            text += Line("P" + std::to_string(i + 1),
                         {true_[i][0] + 25 * std::cos(b) * std::cos(a),
                          true_[i][1] + 25 * std::cos(b) * std::sin(a), true_[i][2] + 25 * std::sin(b)});
        }
        return Write("spheres.txt", text);
    }

    // Every target is a flange with a tool of 40 mm along its own x axis, turned about z, then about the new
    // y.
    std::string Flanges(std::string& poses) {
        std::string text;
        for (std::size_t i = 0; i < true_.size(); ++i) {
            const double a = 20.0 * static_cast<double>(i + 1), b = 70 - a;
            const std::string name = "P" + std::to_string(i + 1);
            const double cosB = std::cos(b * kDegree);
            text += Line(name, {true_[i][0] + 40 * cosB * std::cos(a * kDegree),
                                true_[i][1] + 40 * cosB * std::sin(a * kDegree),
                                true_[i][2] - 40 * std::sin(b * kDegree)});
            poses += name + " 0 0 0 " + std::to_string(a) + " " + std::to_string(b) + " 0\n";
        }
        poses = Write("poses.txt", poses);
        return Write("flanges.txt", text);
    }

    // As an engineer would begin it: near the truth.
    static json DistanceFit(std::vector<std::string> arguments) {
        arguments.emplace_back("--r-dist");
        for (const char* start :
             {"trax=103", "tray=-204", "traz=302", "rotx=0.05", "roty=-0.1", "rotz=-29.9"}) {
            arguments.emplace_back("--start");
            arguments.emplace_back(start);
        }
        return FitJson(arguments);
    }

    static double Parameter(const json& fit, const std::string& name) {
        for (const json& row : fit["parameters"])
            if (row["name"] == name) return row["value"].get<double>();
        ADD_FAILURE() << "no parameter " << name << " in " << fit["parameters"];
        return NAN;
    }
    static void ExpectTruth(const json& fit) {
        EXPECT_NEAR(Parameter(fit, "trax"), 100, 1e-5);
        EXPECT_NEAR(Parameter(fit, "tray"), -200, 1e-5);
        EXPECT_NEAR(Parameter(fit, "traz"), 300, 1e-5);
        const json& matrix = fit["transformation"]["matrix"];
        EXPECT_NEAR(matrix[0][0].get<double>(), std::cos(30 * kDegree), 1e-8);
        EXPECT_NEAR(matrix[1][0].get<double>(), 0.5, 1e-8);
    }
};

}  // namespace

TEST_F(RobotFits, TargetsAtOneDistanceGiveTheDistanceAndTheTransformation) {
    const json fit = DistanceFit({startFile_, TargetsOnSpheres()});
    ExpectTruth(fit);
    EXPECT_NEAR(std::fabs(Parameter(fit, "rdist")), 25, 1e-5);
    EXPECT_EQ(fit["counts"]["observations"], 10) << "a distance a point";
    for (const json& point : fit["points"])
        EXPECT_NEAR(point["residual3D_mm"].get<double>(), 0, 1e-5) << "the distance is no deviation";
}

// The way to the target is 25 mm long everywhere, and none of that is a deviation.
TEST_F(RobotFits, DistancesKeepATolerance) {
    const std::string page = PathOf("distances.html");
    const json fit = DistanceFit({startFile_, TargetsOnSpheres(), "--within", "0.01", "--report", page});
    EXPECT_EQ(fit["tolerance"]["verdict"], "pass");
    EXPECT_EQ(fit["tolerance"]["beyond"], 0);
    EXPECT_NE(Contents(page).find("0.01 millimeter: pass"), std::string::npos);
    for (const json& point : fit["points"]) EXPECT_EQ(point["beyond"], json({false, false, false}));
    // The windows, whose cells ask the same.
    EXPECT_EQ(CheckTolerance().Word, Verdict::Pass);
    for (int axis = 1; axis <= 3; ++axis) EXPECT_FALSE(IsBeyond(1, axis, 0.01));
    EXPECT_TRUE(IsBeyond(1, 1, 1e-12) || IsBeyond(1, 2, 1e-12) || IsBeyond(1, 3, 1e-12));
}

TEST_F(RobotFits, ADistanceThatHasNoDirectionAtTheStartIsRefusedWithThePointsName) {
    const Outcome outcome = Fit({startFile_, TargetsOnSpheres(), "--r-dist"});
    EXPECT_EQ(outcome.Status, 1);
    EXPECT_NE(outcome.Err.find("\"P1\""), std::string::npos) << outcome.Err;
    EXPECT_EQ(outcome.Err.find("observations"), std::string::npos) << "these are enough";
}

TEST_F(RobotFits, ADistanceFitThatRunsAwayIsNoResult) {
    true_[4][2] += 7;
    const Outcome outcome =
        Fit({startFile_, TargetsOnSpheres(), "--r-dist", "--start", "trax=110", "--leave-out", "P5"});
    EXPECT_EQ(outcome.Status, 1);
    EXPECT_NE(outcome.Err.find("ran away"), std::string::npos) << outcome.Err;
    EXPECT_EQ(outcome.Out, "");
}

TEST_F(RobotFits, APointThatLeavesTheSphereShowsHowFar) {
    true_[4][2] += 7;  // the target of P5 is made from a point that is not there
    const std::string moved = TargetsOnSpheres();
    const json fit = DistanceFit({startFile_, moved, "--leave-out", "P5"});
    ExpectTruth(fit);
    // The target is the point's, shifted by 25 mm in its direction and by 7 along z.
    const double a = (40.0 + 77 * 4) * kDegree, b = (-70.0 + 31 * 4) * kDegree;
    const double way =
        std::hypot(25 * std::cos(b) * std::cos(a), 25 * std::cos(b) * std::sin(a), 25 * std::sin(b) + 7);
    for (const json& point : fit["points"])
        EXPECT_NEAR(point["residual3D_mm"].get<double>(), point["name"] == "P5" ? std::fabs(way - 25) : 0,
                    1e-5);
    EXPECT_EQ(fit["counts"]["observations"], 9);
}

TEST_F(RobotFits, RobotPosesGiveTheToolVectorAndTheTransformation) {
    std::string poses;
    const std::string flanges = Flanges(poses);
    const json fit = FitJson({startFile_, flanges, "--poses", poses});
    ExpectTruth(fit);
    EXPECT_NEAR(std::fabs(Parameter(fit, "rvecx")), 40, 1e-5);
    EXPECT_NEAR(Parameter(fit, "rvecy"), 0, 1e-5);
    EXPECT_NEAR(Parameter(fit, "rvecz"), 0, 1e-5);
    for (const json& point : fit["points"]) EXPECT_NEAR(point["residual3D_mm"].get<double>(), 0, 1e-5);
}

TEST_F(RobotFits, WithoutAModelOnlyTheThirteenParametersOfTheChainAreListed) {
    EXPECT_EQ(FitJson({startFile_, TargetsOnSpheres()})["parameters"].size(), 13u);
}

TEST_F(RobotFits, ModelsThatDoNotGoTogetherAreWrongUsage) {
    std::string poses;
    const std::string flanges = Flanges(poses);
    for (const std::vector<std::string>& more : {std::vector<std::string>{"--norm", "l1"},
                                                 {"--norm", "minimax"},
                                                 {"--direction", "ocs-mcs"},
                                                 {"--r-dist"}}) {
        std::vector<std::string> arguments = {startFile_, flanges, "--poses", poses};
        arguments.insert(arguments.end(), more.begin(), more.end());
        const Outcome outcome = Fit(arguments);
        EXPECT_EQ(outcome.Status, 2) << more.back();
        EXPECT_NE(outcome.Err.find("--poses"), std::string::npos) << outcome.Err;
        EXPECT_EQ(outcome.Out, "");
    }
}

TEST_F(RobotFits, PosesThatCannotBeReadSayWhere) {
    std::string poses;
    const std::string flanges = Flanges(poses);
    const Outcome missing = Fit({startFile_, flanges, "--poses", folder_ + "/none.txt"});
    EXPECT_NE(missing.Status, 0);
    EXPECT_NE(missing.Err.find("none.txt"), std::string::npos) << missing.Err;
    const Outcome torn =
        Fit({startFile_, flanges, "--poses", Write("torn.txt", "P1 0 0 0 1 2 3\nP2 0 0 x 1 2 3\n")});
    EXPECT_NE(torn.Status, 0);
    EXPECT_NE(torn.Err.find("line 2"), std::string::npos) << torn.Err;
    const Outcome few = Fit({startFile_, flanges, "--poses", Write("few.txt", "P1 0 0 0 1 2 3\n")});
    EXPECT_NE(few.Status, 0);
    EXPECT_NE(few.Err.find("no pose for the identical point"), std::string::npos) << few.Err;
}
