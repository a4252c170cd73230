// Point sets on which an iteration alone ends in a wrong solution, or in none: the fit is the best one, and
// what it cannot know it says.
#include <cmath>
#include <functional>
#include <numbers>
#include <random>

#include "cli/closed_form.h"
#include "cli/fit_command.h"
#include "core/notes.h"
#include "core/numbers.h"

using namespace corvinade;

namespace {

using Point = closed_form::Point;
using Map = std::function<Point(const Point&)>;

class BestFit : public FitCommand {
protected:
    // A file with points named P1, P2, ...
    std::string File(const std::string& name, const std::vector<Point>& points) {
        std::string text;
        for (std::size_t i = 0; i < points.size(); ++i) {
            text += "P" + std::to_string(i + 1);
            for (const double value : points[i]) text += ";" + PlainText(value);
            text += "\n";
        }
        return Write(name, text);
    }
    json Fitted(const std::vector<Point>& start, const std::vector<Point>& target,
                std::vector<std::string> more) {
        more.insert(more.begin(), {File("s.txt", start), File("t.txt", target)});
        return FitJson(more);
    }
    static std::vector<Point> Mapped(const std::vector<Point>& points, const Map& map) {
        std::vector<Point> result;
        for (const Point& p : points) result.push_back(map(p));
        return result;
    }
    static std::vector<Point> Cloud(int n, double size, unsigned seed) {
        std::mt19937_64 engine(seed);
        std::uniform_real_distribution<double> number(-size / 2, size / 2);
        std::vector<Point> points;
        for (int i = 0; i < n; ++i) {
            const double x = number(engine), y = number(engine), z = number(engine);
            points.push_back({x, y, z});
        }
        return points;
    }
    static double Value(const json& fit, const std::string& name) {
        for (const json& parameter : fit["parameters"])
            if (parameter["name"] == name) return parameter["value"].get<double>();
        ADD_FAILURE() << "no parameter " << name;
        return 0;
    }
    static bool HasSigma(const json& fit, const std::string& name) {
        for (const json& parameter : fit["parameters"])
            if (parameter["name"] == name) return parameter["sigma"].is_number();
        return false;
    }
    static double Squares(const json& fit) {
        double sum = 0;
        for (const json& point : fit["points"])
            for (const json& residual : point["residual_mm"])
                sum += residual.get<double>() * residual.get<double>();
        return sum;
    }
    static int Count(const json& fit, const std::string& code) {
        int count = 0;
        for (const json& note : fit["notes"])
            if (note["code"] == code) ++count;
        return count;
    }
    static std::string TextOf(const json& fit, const std::string& code) {
        for (const json& note : fit["notes"])
            if (note["code"] == code) return note["text"].get<std::string>();
        return "";
    }
};

Point Turned(const Point& p) {  // about z, then shifted
    const double c = std::cos(0.7), s = std::sin(0.7);
    return {c * p[0] - s * p[1] + 1000, s * p[0] + c * p[1] - 2000, p[2] + 300};
}

}  // namespace

TEST_F(BestFit, OfAPlateWithSeedsOnOneEdgeHasItsScale) {
    const std::vector<Point> plate = {{0, 0, 0},   {100, 0, 0},   {200, 0, 0},
                                      {0, 100, 0}, {200, 100, 0}, {100, 100, 0}};
    for (const std::string parameters : {"7", "9", "12"}) {
        const json fit = Fitted(plate, Mapped(plate, Turned), {"--parameters", parameters});
        EXPECT_LT(Squares(fit), 1e-18) << parameters;
        EXPECT_NEAR(Value(fit, "scalex"), 1, 1e-9) << parameters;
        EXPECT_NEAR(Value(fit, "scaley"), 1, 1e-9) << parameters;
        EXPECT_EQ(Count(fit, "mirrored"), 0) << parameters;
    }
}

TEST_F(BestFit, WithRotYAtARightAngleIsFoundForEachPreset) {
    const std::vector<Point> cloud = Cloud(6, 1000, 3);
    const std::vector<Point> target = Mapped(cloud, [](const Point& p) {
        return Point{p[2] + 100, p[1] + 200, -p[0] + 300};
    });
    for (const std::string parameters : {"6", "7", "9", "12"}) {
        const json fit = Fitted(cloud, target, {"--parameters", parameters});
        EXPECT_LT(Squares(fit), 1e-16) << parameters;
        EXPECT_NEAR(Value(fit, "trax"), 100, 1e-8) << parameters;
        EXPECT_NEAR(Value(fit, "tray"), 200, 1e-8) << parameters;
        EXPECT_NEAR(Value(fit, "traz"), 300, 1e-8) << parameters;
        EXPECT_NEAR(Value(fit, "scalex"), 1, 1e-11) << parameters;
        const std::vector<std::vector<double>> R = fit["transformation"]["rotationMatrix"];
        EXPECT_NEAR(R[0][2], 1, 1e-11) << parameters;
        EXPECT_NEAR(R[1][1], 1, 1e-11) << parameters;
        EXPECT_NEAR(R[2][0], -1, 1e-11) << parameters;
        EXPECT_EQ(Count(fit, "gimbal-lock"), 1) << parameters;
        EXPECT_EQ(TextOf(fit, "open-parameters").find("the points"), std::string::npos) << parameters;
        EXPECT_FALSE(HasSigma(fit, "rotx"));
        EXPECT_TRUE(HasSigma(fit, "trax"));
    }
}

TEST_F(BestFit, WithOneGrossErrorConvergesToTheClosedForm) {
    int fits = 0;
    for (unsigned seed = 1; seed <= 20; ++seed)
        for (const double error : {10000.0, 100000.0, 1e6}) {
            const std::vector<Point> cloud = Cloud(8, 1000, seed);
            std::vector<Point> target = Mapped(cloud, Turned);
            target[seed % 8][seed % 3] += error;
            const json fit = Fitted(cloud, target, {});
            EXPECT_TRUE(fit["converged"].get<bool>());
            const double best = closed_form::Fit(cloud, target, false).squares;
            EXPECT_LT(Squares(fit), best * (1 + 1e-9)) << "seed " << seed << ", error " << error;
            EXPECT_EQ(fit["certificate"]["kind"], "closed form");
            EXPECT_LT(fit["certificate"]["relativeAbove"].get<double>(), 1e-9);
            ++fits;
        }
    EXPECT_EQ(fits, 60);
}

TEST_F(BestFit, WithTwoNamesSwappedIsTheBestProperOne) {
    for (unsigned seed = 1; seed <= 60; ++seed) {
        const std::vector<Point> cloud = Cloud(8, 1000, seed);
        std::vector<Point> target = Mapped(cloud, Turned);
        std::swap(target[seed % 8], target[(seed + 3) % 8]);
        const json fit = Fitted(cloud, target, {"--parameters", "7"});
        const double best = closed_form::Fit(cloud, target, true).squares;
        if (Count(fit, "mirrored") > 0) {
            EXPECT_LT(Squares(fit), best / 2) << seed;
        } else {
            EXPECT_GT(Value(fit, "scalexyz"), 0) << seed;
            EXPECT_NEAR(Squares(fit), best, best * 1e-9) << seed;
        }
    }
}

TEST_F(BestFit, OfRealMirrorImagesIsMirroredAndSaysSo) {
    const std::vector<Point> cloud = Cloud(8, 1000, 5);
    const std::vector<Point> target = Mapped(cloud, [](const Point& p) {
        return Turned({-p[0], p[1], p[2]});
    });
    const json fit = Fitted(cloud, target, {"--parameters", "7"});
    EXPECT_LT(Squares(fit), 1e-15);
    EXPECT_NEAR(Value(fit, "scalexyz"), -1, 1e-11);
    EXPECT_EQ(Count(fit, "mirrored"), 1);
}

TEST_F(BestFit, ThatBeganElsewhereSaysSoAndOneThatDidNotSaysNothing) {
    const std::vector<Point> cloud = Cloud(6, 1000, 3);
    const std::vector<Point> target = Mapped(cloud, [](const Point& p) {
        return Point{p[2] + 100, p[1] + 200, -p[0] + 300};
    });
    EXPECT_EQ(Count(Fitted(cloud, target, {"--parameters", "7"}), "better-start"), 1);
    const json usual = Fitted(cloud, Mapped(cloud, Turned), {"--parameters", "7"});
    EXPECT_EQ(usual["notes"], json::array());
    EXPECT_EQ(usual["certificate"]["kind"], "closed form");
    const json nine = Fitted(cloud, Mapped(cloud, Turned), {"--parameters", "9"});
    EXPECT_EQ(nine["certificate"]["kind"], "starts");
    EXPECT_GT(nine["certificate"]["starts"].get<int>(), 1);
}

TEST_F(BestFit, KeepsTheValuesThatAreHeld) {
    const std::vector<Point> cloud = Cloud(8, 1000, 7);
    std::vector<Point> target = Mapped(cloud, Turned);
    std::swap(target[0], target[5]);
    const json fit =
        Fitted(cloud, target, {"--parameters", "7", "--hold", "scalexyz=1.5", "--hold", "rotx=10"});
    EXPECT_EQ(Value(fit, "scalexyz"), 1.5);
    EXPECT_NEAR(Value(fit, "rotx"), 10 * std::numbers::pi / 180, 1e-12);
    EXPECT_EQ(fit["certificate"]["kind"], "starts");
}

TEST_F(BestFit, OfTargetsAtOnePlaceIsFlagged) {
    const std::vector<Point> cloud = Cloud(8, 1000, 7);
    const std::vector<Point> target(8, Point{1, 2, 3});
    for (const std::string parameters : {"7", "9"})
        for (const std::string norm : {"l2", "l1", "loo"}) {
            const std::string s = File("s.txt", cloud), t = File("t.txt", target);
            const Outcome outcome = Fit({s, t, "--parameters", parameters, "--norm", norm});
            EXPECT_NE(outcome.Err.find("all at one place"), std::string::npos)
                << parameters << " " << norm << ": " << outcome.Err;
        }
}

TEST_F(BestFit, OfLeftOutPointsNamesWhatTwoOfThemLeaveOpen) {
    const std::vector<Point> cloud = Cloud(3, 1000, 9);
    const json fit = Fitted(cloud, Mapped(cloud, Turned), {"--leave-out", "P2"});
    EXPECT_EQ(Count(fit, "open-parameters"), 1);
    EXPECT_NE(TextOf(fit, "open-parameters").find("leave 1 of the 6"), std::string::npos);
    EXPECT_FALSE(HasSigma(fit, "rotx"));
}

TEST_F(BestFit, WithAsManyParametersAsObservationsSaysThatSigmaSaysNothing) {
    const std::vector<Point> cloud = Cloud(4, 1000, 11);
    const json fit = Fitted(cloud, Mapped(cloud, Turned), {"--parameters", "12"});
    EXPECT_NE(TextOf(fit, "no-redundancy").find("no redundancy: sigma says nothing"), std::string::npos);
    EXPECT_EQ(Count(fit, "equal-residuals"), 1);
}

TEST_F(BestFit, OfAPlateWithSeedsOnOneEdgeHasItsScaleInTheOtherNormsToo) {
    const std::vector<Point> plate = {{0, 0, 0},   {100, 0, 0},   {200, 0, 0},
                                      {0, 100, 0}, {200, 100, 0}, {100, 100, 30}};
    for (const std::string norm : {"l1", "l1-exact", "loo", "minimax"}) {
        const json fit = Fitted(plate, Mapped(plate, Turned), {"--parameters", "7", "--norm", norm});
        EXPECT_NEAR(Value(fit, "scalexyz"), 1, 1e-6) << norm;
        EXPECT_EQ(Count(fit, "mirrored"), 0) << norm;
    }
}

// The equations of these norms are singular there, so the fit may end without convergence, but not elsewhere.
TEST_F(BestFit, WithRotYAtARightAngleIsNeverSilentlyMirroredInTheOtherNorms) {
    const std::vector<Point> cloud = Cloud(6, 1000, 3);
    const std::vector<Point> target = Mapped(cloud, [](const Point& p) {
        return Point{p[2] + 100, p[1] + 200, -p[0] + 300};
    });
    const std::string s = File("s.txt", cloud), t = File("t.txt", target);
    for (const std::string norm : {"l1", "l1-exact", "loo", "minimax"}) {
        const Outcome outcome = Fit({s, t, "--parameters", "7", "--norm", norm, "--json"});
        if (outcome.Status == 4) continue;
        ASSERT_EQ(outcome.Status, 0) << norm << outcome.Err;
        EXPECT_NEAR(Value(json::parse(outcome.Out), "scalexyz"), 1, 1e-6) << norm;
    }
}

// The runs begin where the fit ends, and not where the seed points would lead them.
TEST_F(BestFit, WithMonteCarloSpreadsTheRunsAboutItself) {
    std::vector<Point> cloud = Cloud(12, 1000, 13);
    for (std::size_t i = 0; i < 3; ++i)
        cloud[i] = {100.0 * static_cast<double>(i), 1e-7, 0};  // seeds on a line
    const json fit = Fitted(cloud, Mapped(cloud, Turned),
                            {"--parameters", "7", "--monte-carlo", "200", "--sigma", "0.05"});
    for (const json& parameter : fit["monteCarlo"]["parameters"]) {
        if (parameter["name"] != "scalexyz") continue;
        EXPECT_NEAR(parameter["mean"].get<double>(), 1, 1e-4);
        EXPECT_LT(parameter["spread"].get<double>(), 1e-3);
    }
    EXPECT_EQ(fit["monteCarlo"]["runs"], 200);
}

// A plate of 1 m by 1 mm, ten metres off.
TEST_F(BestFit, OfThinPlatesFarFromTheOriginConverges) {
    for (unsigned seed = 1; seed <= 100; ++seed) {
        std::vector<Point> cloud = Cloud(20, 1000, seed);
        for (Point& p : cloud) p = {p[0] + 1e4, p[1] + 1e4, p[2] / 1000 + 1e4};
        std::vector<Point> target = Mapped(cloud, Turned);
        const std::vector<Point> noise = Cloud(20, 0.1, seed + 1000);
        for (std::size_t i = 0; i < target.size(); ++i)
            for (std::size_t k = 0; k < 3; ++k) target[i][k] += noise[i][k];
        const json fit = Fitted(cloud, target, {"--parameters", "12"});
        EXPECT_TRUE(fit["converged"].get<bool>()) << seed;
    }
}
