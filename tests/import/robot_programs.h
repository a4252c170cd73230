// Robot programs as texts, and what the job holds when they have been read.
#pragma once

#include <cmath>
#include <numbers>

#include "cli/headless.h"
#include "core/job.h"
#include "core/notes.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/units.h"
#include "import/robot_files.h"
#include "support/degrees.h"
#include "support/fixture.h"

using namespace corvinade;

constexpr double kRoundings = 1e-12;  // the system's pi has 15 digits

using Row = std::array<double, 3>;

class RobotFiles : public Program {
protected:
    // A program with CR LF line ends, read by the reader of a kind.
    void Read(PoseReader reader, const std::string& content) const {
        ::Run.ImportFailed = kFalse;
        reader({Write("program.txt", CrLf(content))});
        EXPECT_TRUE(JobIsWhole(Job));
        EXPECT_EQ(Job.RobotABC.Rows, Job.Target.Count());
        EXPECT_EQ(Job.RobotABC.Columns, 3);
    }
    void Kuka(const std::string& content) const { Read(EinlesenKUKAdatDatei, content); }
    void Abb(const std::string& content) const { Read(EinlesenABB_MODX, content); }
    void Fanuc(const std::string& content) const { Read(EinlesenFanucDatei, content); }

    // What a reader says of a file that it cannot read; "" when it can. Counts and arrays fit either way.
    std::string Error(PoseReader reader, const std::string& content) const {
        std::string what;
        try {
            Read(reader, content);
        } catch (const PlatformError& error) {
            what = error.What;
        }
        EXPECT_TRUE(JobIsWhole(Job));
        return what;
    }
    std::string FanucError(const std::string& content) const { return Error(EinlesenFanucDatei, content); }
    std::string In(int line) const {
        return "Cannot read \"" + PathOf("program.txt") + "\", line " + std::to_string(line) + ": ";
    }

    static Row Position(int i) {
        const auto k = static_cast<std::size_t>(i);
        EXPECT_TRUE(Job.Target.X[k] && Job.Target.Y[k]);
        return {Job.Target.X[k].value_or(NAN), Job.Target.Y[k].value_or(NAN), Job.Target.Z[k]};
    }
    static void ExpectAngles(int i, const Row& degrees) {
        for (int k = 1; k <= 3; ++k)
            EXPECT_NEAR(Job.RobotABC(i, k), degrees[static_cast<std::size_t>(k - 1)] * kDegree, kRoundings)
                << "pose " << i << ", angle " << k;
    }
    static void ExpectNoPose(int i) {
        const auto k = static_cast<std::size_t>(i);
        EXPECT_EQ(Job.Target.Name[k], "");
        EXPECT_FALSE(Job.Target.X[k]);
        EXPECT_FALSE(Job.Target.Y[k]);
        EXPECT_EQ(Job.Target.Z[k], 0);
        for (int c = 1; c <= 3; ++c) EXPECT_EQ(Job.RobotABC(i, c), 0);
    }
};

inline std::string KukaLine(const std::string& name, const std::string& values) {
    return "DECL E6POS " + name + "={" + values + ",S 2,T 35,E1 0.0,E2 0.0,E3 0.0,E4 0.0,E5 0.0,E6 0.0}\n";
}
inline const std::string kFirst = KukaLine("XP1", "X 1.5,Y -2.25,Z 3,A 10.5,B -20,C 30.25");
inline const std::string kSecond = KukaLine("XP2", "X 4,Y 5,Z 6,A 170,B 40,C -50");

// The lines of one pose in the columns that the format has: numbers of ten characters, three decimals.
inline std::string FanucPose(int number, const Row& xyz, const Row& wpr) {
    std::array<char, 400> text{};
    std::snprintf(text.data(), text.size(),
                  "P[%d]{\n   GP1:\n\tUF : 0, UT : 1,\t\tCONFIG : 'N U T, 0, 0, 0',\n"
                  "\tX =%10.3f  mm,\tY =%10.3f  mm,\tZ =%10.3f  mm, \n"
                  "\tW =%10.3f deg,\tP =%10.3f deg,\tR =%10.3f deg\n};\n",
                  number, xyz[0], xyz[1], xyz[2], wpr[0], wpr[1], wpr[2]);
    return text.data();
}
inline const std::string kFanucHead =
    "/PROG  CALIB\n/ATTR\nCOMMENT\t\t= \"tips\";\n/MN\n   1:J P[1] 20% FINE    ;\n/POS\n";

inline std::string Target(const std::string& name, const std::string& position,
                          const std::string& quaternion) {
    return "  CONST robtarget " + name + ":=[[" + position + "],[" + quaternion +
           "],[0,0,-1,0],[9E9,9E9,9E9,9E9,9E9,9E9]];\n";
}
inline const std::string kTurned =
    Target("p10", "100.5,-200,300.25", "0.923879532511287,0,0,0.38268343236509");
