// Points on one line with an angle held: two results keep it, and fit alike.
#include <cmath>
#include <cstdio>
#include <numbers>

#include "cli/fit_command.h"
#include "fit/chain.h"

namespace {

class HeldLine : public FitCommand {
protected:
    // Eight points along a line, and their images by the angles that are given, degrees.
    void AddLine(double x, double y, double z) {
        const double degree = std::numbers::pi / 180;
        Mat3 R;
        RotMatrixXYZ(x * degree, y * degree, z * degree, R);
        std::string start, target;
        for (int i = 0; i < 8; ++i) {
            const double along = 120.0 * i * (1 + 0.1 * i);
            const Vec3 p(-590 - 0.31 * along, -850 + 0.35 * along, -4 + 0.88 * along);
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
