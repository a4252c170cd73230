// `corvinade-cli fit --details` and `--protocol`.
#include <cmath>
#include <map>
#include <numbers>

#include "cli/fit_command.h"
#include "cli/headless.h"
#include "engine/clipboard_report.h"
#include "support/degrees.h"

using namespace corvinade;

namespace {

using Rotation = std::array<std::array<double, 3>, 3>;

Rotation Times(const Rotation& a, const Rotation& b) {
    Rotation c{};
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t j = 0; j < 3; ++j)
            for (std::size_t k = 0; k < 3; ++k) c[i][j] += a[i][k] * b[k][j];
    return c;
}

// Coordinates in a frame that is turned about one of its axes.
Rotation TurnedFrame(char axis, double angle) {
    const double c = std::cos(angle), s = std::sin(angle);
    if (axis == 'X') return {{{1, 0, 0}, {0, c, s}, {0, -s, c}}};
    if (axis == 'Y') return {{{c, 0, -s}, {0, 1, 0}, {s, 0, c}}};
    return {{{c, s, 0}, {-s, c, 0}, {0, 0, 1}}};
}

double Difference(const Rotation& a, const json& b) {
    double most = 0;
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t j = 0; j < 3; ++j) most = std::max(most, std::fabs(a[i][j] - b[i][j].get<double>()));
    return most;
}

class FitDetails : public FitCommand {
protected:
    // The start points carried into a frame turned by these angles about x, y', z'', and shifted.
    std::string Turned(const std::string& name, double x, double y, double z) const {
        const Rotation R = Times(TurnedFrame('Z', z * kDegree),
                                 Times(TurnedFrame('Y', y * kDegree), TurnedFrame('X', x * kDegree)));
        std::string text;
        const double points[5][3] = {{0, 0, 0}, {1000, 0, 0}, {0, 2000, 0}, {0, 0, 3000}, {700, 800, 900}};
        for (int i = 0; i < 5; ++i) {
            std::array<double, 3> q = {5, 6, 7};
            for (std::size_t row = 0; row < 3; ++row)
                for (std::size_t k = 0; k < 3; ++k) q[row] += R[row][k] * points[i][k];
            char line[200];
            std::snprintf(line, sizeof line, "%c;%.12f;%.12f;%.12f\n", 'A' + i, q[0], q[1], q[2]);
            text += line;
        }
        return Write(name, text);
    }
};

}  // namespace

TEST_F(FitDetails, EverySolutionOfEveryOrderTurnsAsItSays) {
    const json fit = FitJson({start_, Turned("t.txt", 20, -35, 110), "--details"});
    const json& details = fit["details"];
    std::string orders;
    for (const json& order : details["rotationOrders"]) {
        const std::string axes = order["order"];
        orders += axes + " ";
        ASSERT_EQ(order["solutions_rad"].size(), 2u);
        for (const json& angles : order["solutions_rad"]) {
            ASSERT_FALSE(angles.is_null()) << axes;
            // Each turn is about an axis of the frame as the turn before has left it.
            Rotation R = TurnedFrame(axes[0], angles[0]);
            R = Times(TurnedFrame(axes[1], angles[1]), R);
            R = Times(TurnedFrame(axes[2], angles[2]), R);
            EXPECT_LT(Difference(R, details["rotationMatrix"]), 1e-9) << axes << angles;
        }
        EXPECT_GT(std::fabs(order["solutions_rad"][0][1].get<double>() -
                            order["solutions_rad"][1][1].get<double>()),
                  0.1)
            << axes << ": two different solutions";
    }
    EXPECT_EQ(orders, "XYZ ZYX ZXY ZXZ ZYZ ");
    EXPECT_EQ(details["rotationOrders"][2]["angles"], json({"rot z", "rot x'", "rot y''"}));
}

TEST_F(FitDetails, QuaternionAndAxisAreThoseOfAKnownRotation) {
    // About z by 60 degrees: w = cos 30; the matrix turns coordinates the other way round.
    const json details = FitJson({start_, Turned("t.txt", 0, 0, 60), "--details"})["details"];
    const double sign = details["quaternion"]["w"].get<double>() > 0 ? 1 : -1;
    EXPECT_NEAR(sign * details["quaternion"]["w"].get<double>(), std::sqrt(3) / 2, 1e-10);
    EXPECT_NEAR(sign * details["quaternion"]["z"].get<double>(), -0.5, 1e-10);
    const double angle = details["axisAngle"]["angle_rad"];
    EXPECT_NEAR(details["axisAngle"]["axis"][2].get<double>() * std::sin(angle), -std::sqrt(3) / 2, 1e-9);
    EXPECT_NEAR(std::cos(angle), 0.5, 1e-9);
    EXPECT_NEAR(details["anglesOfQuaternion_rad"][2].get<double>(), 60 * kDegree, 1e-9);
}

TEST_F(FitDetails, MatricesAreThoseOfTheTransformation) {
    const json fit = FitJson({kMeasured, kNominal, "--parameters", "12", "--details"});
    const json& details = fit["details"];
    const json& t = fit["transformation"];
    EXPECT_EQ(details["rotationMatrix"], t["rotationMatrix"]);
    EXPECT_EQ(details["affineMatrix"], t["shearMatrix"]);
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t j = 0; j < 3; ++j) {
            EXPECT_EQ(details["scaleMatrix"][i][j], i == j ? t["scales"][i] : json(0.0));
            EXPECT_EQ(details["rotationAndTranslation"][i][j], t["rotationMatrix"][i][j]);
        }
        EXPECT_EQ(details["rotationAndTranslation"][i][3], t["translation_mm"][i]);
    }
    EXPECT_EQ(details["rotationAndTranslation"][3], json({0.0, 0.0, 0.0, 1.0}));
    EXPECT_TRUE(fit.contains("inverse")) << "the inverse belongs to the details";
}

TEST_F(FitDetails, InGimbalLockAWrongTripleIsNeverShown) {
    // Of rotations about z alone, which two orders cannot tell from one about the first axis.
    const std::string target = Turned("t.txt", 0, 0, 30);
    const json details = FitJson({start_, target, "--details"})["details"];
    for (const json& order : details["rotationOrders"])
        for (const json& angles : order["solutions_rad"]) {
            if (angles.is_null()) continue;
            const std::string axes = order["order"];
            const Rotation R = Times(TurnedFrame(axes[2], angles[2]),
                                     Times(TurnedFrame(axes[1], angles[1]), TurnedFrame(axes[0], angles[0])));
            EXPECT_LT(Difference(R, details["rotationMatrix"]), 1e-6) << axes << angles;
        }
    for (const std::string& lock : {Turned("y.txt", 0, 90, 0), Turned("z.txt", 10, -90, 20), target})
        EXPECT_EQ(Fit({start_, lock, "--details"}).Status, 0);
}

TEST_F(FitDetails, TheTableShowsAllForms) {
    const Outcome outcome = Fit({start_, Turned("t.txt", 20, -35, 110), "--details", "--angle-digits", "2"});
    EXPECT_EQ(outcome.Status, 0) << outcome.Err;
    for (const char* part :
         {"\nXYZ rot x  ", "\nXYZ rot y' ", "\nXYZ rot z''", "\nZYX rot x''", "\nZXY rot y''",
          "\nZXZ rot x' ", "\nZYZ rot y' ", "\nqw  ", "\naxis z  ", "\nRotation matrix\n", "\nScale matrix\n",
          "\nAffine matrix\n", "\nRotation and translation\n", "\nInverse ", "solution 1", "solution 2",
          "110.00", "-35.00", "1.00000000      0.00000000      0.00000000\n"})
        EXPECT_NE(outcome.Out.find(part), std::string::npos) << part << "\n" << outcome.Out;
    std::istringstream lines(outcome.Out);
    for (std::string line; std::getline(lines, line);) EXPECT_LE(line.size(), 110u) << line;
    EXPECT_EQ(Fit({start_, target_}).Out.find("Rotation"), std::string::npos);
    EXPECT_FALSE(FitJson({start_, target_}).contains("details"));
}

TEST_F(FitDetails, DoesNotGoWithTheTableOfPoints) {
    EXPECT_EQ(Fit({start_, target_, "--details", "--csv"}).Status, 2);
    EXPECT_EQ(Fit({start_, target_, "--protocol", "--csv"}).Status, 2);
}

// --- The protocol -----------------------------------------------------------------------------------------

TEST_F(FitDetails, TheProtocolStandsAloneInPlaceOfTheTable) {
    const std::string pairs = "A;0;0;0\nB;1000;0;0\nC;0;2000;0\n";
    const std::string start = Write("p1.txt", pairs);
    const std::string target = Write("p2.txt", "A;5;6;7\nB;1005;6;7\nC;5;2006;7\n");
    const Outcome outcome = Fit({start, target, "--protocol", "--digits", "1", "--angle-digits", "1"});
    EXPECT_EQ(outcome.Status, 0) << outcome.Err;
    EXPECT_EQ(
        outcome.Out,
        CrLf(
            "Start = MCS File: " + start + "\tMCS\nTarget = OCS File: " + target +
            "\tOCS\nTra x    \t5.0\nTra y    \t6.0\nTra z    \t7.0\nRotx \t0.0\nRoty \t0.0\nRotz \t0.0\n"
            "Scale x    \t1.000000\nScale y    \t1.000000\nScale z    \t1.000000\nxy   \t0.0\n"
            "Azimuth   \t0.0\nZtoXY   \t0.0\nR_Dist   \t0.0\ns0 \t0.0\nsigma xyz \t0.0\n"
            "sx   \t0.0\tmax x \t0.0\tmin x   \t0.0\tmax x - min x   \t0.0\n"
            "sy   \t0.0\tmax y \t0.0\tmin y   \t0.0\tmax y - min y   \t0.0\n"
            "sz   \t0.0\tmax z \t0.0\tmin z   \t0.0\tmax z - min z   \t0.0\n"
            "PktNr.\tMCS.x \t MCS.y \t MCS.z \t OCS.x \t OCS.y \t OCS.z \t dev.x \t dev.y \t dev.z \t use.x "
            "\t use.y \t use.z \t MCS.r.CYL \t MCS.Phi \t OCS.r.CYL \t OCS.Phi \t dev.r.CYL \t dev.Phi \t "
            "MCS.R.SPH \t MCS.Theta.SPH \t OCS.R.SPH \t OCS.Theta.SPH \t dev.R.SPH \t dev.Theta.SPH\n"
            // sqrt(61) = 7.8, atan(6/5) = 50.2; sqrt(110) = 10.5, acos(7/10.49) = 48.1; and so on.
            "A\t0.0\t0.0\t0.0\t5.0\t6.0\t7.0\t0.0\t0.0\t0.0\t1\t1\t1\t7.8\t50.2\t7.8\t50.2\t0.0\t0.0\t10.5"
            "\t48.1\t10.5\t48.1\t0.0\t0.0\n"
            "B\t1000.0\t0.0\t0.0\t1005.0\t6.0\t7.0\t0.0\t0.0\t0.0\t1\t1\t1\t1005.0\t0.3\t1005.0\t0.3\t0.0\t0.0"
            "\t1005.0\t89.6\t1005.0\t89.6\t0.0\t0.0\n"
            "C\t0.0\t2000.0\t0.0\t5.0\t2006.0\t7.0\t0.0\t0.0\t0.0\t1\t1\t1\t2006.0\t89.9\t2006.0\t89.9\t0.0"
            "\t0.0\t2006.0\t89.8\t2006.0\t89.8\t0.0\t0.0\n"));
}

TEST_F(FitDetails, InJsonTheProtocolStandsBesideTheRest) {
    const json fit = FitJson({kMeasured, kNominal, "--protocol", "--details"});
    EXPECT_EQ(fit["protocol"], CompleteProtocol());
    EXPECT_TRUE(fit.contains("points"));
    EXPECT_FALSE(FitJson({kMeasured, kNominal}).contains("protocol"));
}

TEST_F(FitDetails, WhatTheProtocolWouldHideIsRefusedBesideIt) {
    for (const std::vector<std::string>& others : std::vector<std::vector<std::string>>{
             {"--details"}, {"--inverse"}, {"--monte-carlo", "20", "--sigma", "0.1"}}) {
        std::vector<std::string> arguments = {start_, target_, "--protocol"};
        arguments.insert(arguments.end(), others.begin(), others.end());
        const Outcome outcome = Fit(arguments);
        EXPECT_EQ(outcome.Status, 2) << others.front();
        EXPECT_NE(outcome.Err.find("--json"), std::string::npos) << outcome.Err;
        EXPECT_EQ(outcome.Out, "");
    }
}

TEST_F(FitDetails, TheProtocolFollowsTheDecimalDelimiter) {
    const std::string start = Write("c1.txt", "A;0,5;0;0\nB;1000;0;0,25\nC;0;2000;0\n");
    const Outcome outcome = Fit({start, start, "--decimal", ",", "--protocol"});
    EXPECT_NE(outcome.Out.find("\r\nA\t0,500\t0,000\t0,000\t0,500\t"), std::string::npos) << outcome.Out;
}
