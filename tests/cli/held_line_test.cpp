// Points on one line with an angle held: two results keep it, and fit alike.
#include <array>
#include <cmath>
#include <cstdio>
#include <numbers>
#include <utility>

#include "cli/fit_command.h"
#include "fit/chain.h"

namespace {

class HeldLine : public FitCommand {
protected:
    // Eight points along a line, and their images by the angles that are given, degrees.
    void AddLine(double x, double y, double z, const Vec3& along = Vec3(-0.31, 0.35, 0.88)) {
        const double degree = std::numbers::pi / 180;
        Mat3 R;
        RotMatrixXYZ(x * degree, y * degree, z * degree, R);
        std::string start, target;
        for (int i = 0; i < 8; ++i) {
            const double at = 120.0 * i * (1 + 0.1 * i);
            const Vec3 p(-590 + at * along(1), -850 + at * along(2), -4 + at * along(3));
            const double shift[] = {1000, -500, 300};
            char line[200];
            std::snprintf(line, sizeof line, "P%d;%.6f;%.6f;%.6f\n", i, p(1), p(2), p(3));
            start += line;
            double q[3] = {};
            for (int axis = 1; axis <= 3; ++axis)
                q[axis - 1] = shift[axis - 1] + R(axis, 1) * p(1) + R(axis, 2) * p(2) + R(axis, 3) * p(3);
            std::snprintf(line, sizeof line, "P%d;%.6f;%.6f;%.6f\n", i, q[0], q[1], q[2]);
            target += line;
        }
        start_ = Write("line.txt", start);
        target_ = Write("images.txt", target);
    }
    // The places of other results that fit, and keep what is held, from starts all round.
    std::vector<std::array<double, 3>> Places(const std::vector<std::string>& held) {
        std::vector<std::array<double, 3>> places;
        for (const char* x : {"-150", "-30", "90"})
            for (const char* y : {"5", "60"})
                for (const char* z : {"-90", "90"}) {
                    std::vector<std::string> arguments = {start_, target_, "--parameters", "7", "--json"};
                    std::string all;
                    for (const std::string& each : held) {
                        arguments.insert(arguments.end(), {"--hold", each});
                        all += each;
                    }
                    for (const auto& [name, value] : {std::pair("rotx", x), {"roty", y}, {"rotz", z}})
                        if (all.find(name) == std::string::npos)
                            arguments.insert(arguments.end(), {"--start", std::string(name) + "=" + value});
                    const Outcome outcome = Fit(arguments);
                    if (outcome.Status != 0) continue;
                    const json result = json::parse(outcome.Out);
                    if (result["quality"]["s0_mm"].get<double>() > 1e-4) continue;
                    const std::array<double, 3> place = {ValueOf(result, "trax"), ValueOf(result, "tray"),
                                                         ValueOf(result, "traz")};
                    if (std::none_of(places.begin(), places.end(), [&](const auto& before) {
                            return std::hypot(before[0] - place[0], before[1] - place[1],
                                              before[2] - place[2]) < 1;
                        }))
                        places.push_back(place);
                }
        return places;
    }
    static bool Told(const json& result) {
        return std::any_of(result["notes"].begin(), result["notes"].end(), [](const json& note) {
            return note["code"] == "hardly-known" || note["code"] == "open-parameters";
        });
    }
    static double ValueOf(const json& result, const std::string& name) {
        for (const json& parameter : result["parameters"])
            if (parameter["name"] == name) return parameter["shown"].get<double>();
        return 0;
    }
};

}  // namespace

TEST_F(HeldLine, BothPlacesOfAnAngleThatBothShowAreTold) {
    int apart = 0;
    for (const double z : {84.483, -20.0, 150.0, 35.0}) {
        SCOPED_TRACE(z);
        AddLine(-1.722, 2.700179, z);
        const std::vector<std::string> held = {start_, target_, "--hold", "roty=2.700179"};
        const json found = FitJson(held);
        std::vector<std::string> fromTruth = held;
        for (const std::string& start : {std::string("rotx=-1.722"), "rotz=" + std::to_string(z)}) {
            fromTruth.emplace_back("--start");
            fromTruth.push_back(start);
        }
        const json truth = FitJson(fromTruth);
        EXPECT_LT(truth["quality"]["s0_mm"].get<double>(), 1e-5);
        EXPECT_LT(found["quality"]["s0_mm"].get<double>(), 1e-5);
        apart += std::fabs(ValueOf(found, "trax") - ValueOf(truth, "trax")) > 1 ? 1 : 0;
        EXPECT_TRUE(Told(found));
        EXPECT_TRUE(Told(truth));
    }
    EXPECT_GT(apart, 0) << "the places are two";
}

TEST_F(HeldLine, PlacesThatAreHeldTogetherAreToldWhereTheyAreTwo) {
    int one = 0, two = 0;
    for (const Vec3& along : {Vec3(1, 0, 0), Vec3(-0.31, 0.35, 0.88)}) {
        AddLine(-12.823, 7.14, 99.505, along);
        for (const std::vector<std::string>& held : std::vector<std::vector<std::string>>{
                 {"traz=300", "rotz=99.505"}, {"trax=1000", "tray=-500"}, {"tray=-500", "roty=7.14"}}) {
            SCOPED_TRACE(held[0] + " " + held[1]);
            const std::size_t places = Places(held).size();
            ASSERT_GE(places, 1u);
            ++(places == 1 ? one : two);
            const json found =
                FitJson({start_, target_, "--parameters", "7", "--hold", held[0], "--hold", held[1]});
            EXPECT_EQ(Told(found), places > 1) << places;
        }
    }
    EXPECT_GT(one, 0);
    EXPECT_GT(two, 0);
}

// Two and a half degrees lie between the places that the line's plane all but touches the circle at.
TEST_F(HeldLine, PlacesNextToEachOtherAreToldToo) {
    start_ = Write("near.txt",
                   "P1;610.2162;537.5005;-444.3259\nP2;628.1994;460.8710;-421.2958\n"
                   "P3;610.6646;535.5902;-443.7517\nP4;751.9607;-66.4976;-262.8014\n"
                   "P5;623.8439;479.4307;-426.8737\nP6;627.2549;464.8956;-422.5053\n");
    target_ = Write("near_images.txt",
                    "P1;1965.4806;-745.9326;672.2448\nP2;1985.5082;-812.8806;715.1728\n"
                    "P3;1966.0279;-747.6882;673.2792\nP4;2123.0377;-1273.7032;1010.5392\n"
                    "P5;1980.8228;-796.6367;704.7437\nP6;1984.4351;-809.3424;712.8598\n");
    const std::vector<std::string> held = {start_, target_, "--parameters", "6", "--hold", "trax=1325.041"};
    std::vector<std::string> fromTruth = held;
    fromTruth.insert(fromTruth.end(), {"--start", "roty=14"});
    const json found = FitJson(held), truth = FitJson(fromTruth);
    EXPECT_GT(std::fabs(ValueOf(found, "tray") - ValueOf(truth, "tray")), 10);
    EXPECT_NEAR(found["quality"]["s0_mm"].get<double>(), truth["quality"]["s0_mm"].get<double>(), 0.01);
    EXPECT_TRUE(Told(found));
    EXPECT_TRUE(Told(truth));
}

// At the pole Rot x and Rot z turn about one axis, so that each of them can be kept there.
TEST_F(HeldLine, ThePlaceAtThePoleIsToldWhereTheOtherOneIsShown) {
    int apart = 0;
    for (const double y : {90.0, -90.0, 89.99, -89.6})
        for (const char* held : {"rotx", "rotz"}) {
            SCOPED_TRACE(held + std::to_string(y));
            AddLine(0, y, 0, Vec3(0.2, 0.3, -0.93));
            const std::vector<std::string> arguments = {start_, target_, "--hold", std::string(held) + "=0"};
            std::vector<std::string> fromTruth = arguments;
            fromTruth.insert(fromTruth.end(), {"--start", "roty=" + std::to_string(y * 0.9)});
            const json found = FitJson(arguments), truth = FitJson(fromTruth);
            EXPECT_LT(truth["quality"]["s0_mm"].get<double>(), 1e-4);
            EXPECT_LT(found["quality"]["s0_mm"].get<double>(), 1e-4);
            if (std::fabs(ValueOf(found, "trax") - ValueOf(truth, "trax")) < 1) continue;
            ++apart;
            EXPECT_TRUE(Told(found));
        }
    EXPECT_GT(apart, 2) << "the places are two";
}
