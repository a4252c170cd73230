// Poses of robot programs by the names of their program: --names and --select.
#include <cmath>
#include <cstdio>
#include <functional>
#include <set>
#include <sstream>

#include "cli/fit_command.h"
#include "core/notes.h"

using namespace corvinade;

namespace {

// Five points that are only shifted, by (5, 6, 7), in programs of three kinds.
class PoseNamesOfPrograms : public FitCommand {
protected:
    struct Pose {
        const char* Name;
        int At[3];
    };
    static constexpr Pose kPoses[] = {{"XP1", {5, 6, 7}},
                                      {"xHome", {1005, 6, 7}},
                                      {"XP30", {5, 2006, 7}},
                                      {"XP4", {5, 6, 3007}},
                                      {"XP5", {705, 806, 907}}};

    std::string Kuka() const {
        std::ostringstream text;
        text << "; points of the cell\nDECL FRAME F1={X 1,Y 2,Z 3,A 0,B 0,C 0}\n";
        for (const Pose& p : kPoses)
            text << "DECL E6POS " << p.Name << "={X " << p.At[0] << ",Y " << p.At[1] << ",Z " << p.At[2]
                 << ",A 10,B 20,C 30,S 2,T 35}\nDECL E6AXIS A" << p.Name
                 << "={A1 1,A2 2,A3 3,A4 4,A5 5,A6 6}\n";
        return Write("program.dat", text.str());
    }
    std::string Abb() const {
        std::ostringstream text;
        text << "MODULE m\nPERS tooldata t1:=[TRUE,[[1,2,3],[1,0,0,0]],[1,[0,0,0],[1,0,0,0],0,0,0]];\n";
        for (const Pose& p : kPoses)
            text << "! a remark\nCONST robtarget " << p.Name << ":=[[" << p.At[0] << "," << p.At[1] << ","
                 << p.At[2] << "],[1,0,0,0],[0,0,0,0],[9E9,9E9,9E9,9E9,9E9,9E9]];\n"
                 << "CONST jointtarget j" << p.Name << ":=[[1,2,3,4,5,6],[9E9,9E9,9E9,9E9,9E9,9E9]];\n";
        return Write("program.modx", text.str() + "ENDMODULE\n");
    }
    // The numbers in the brackets are 10, 20 and so on, one of them with a comment.
    std::string Fanuc(int step = 10) const {
        std::string text = "/PROG P\n/POS\n";
        int number = 0;
        for (const Pose& p : kPoses) {
            char rows[400];
            number += step;
            std::snprintf(rows, sizeof rows,
                          "P[%d%s]{\n   GP1:\n\tUF : 0, UT : 1,\t\tCONFIG : 'N U T, 0, 0, 0',\n"
                          "\tX = %9.3f  mm,\tY = %9.3f  mm,\tZ = %9.3f  mm,\n"
                          "\tW = %9.3f deg,\tP = %9.3f deg,\tR = %9.3f deg\n};\n",
                          number, number == 2 * step ? ":\"home [1]\"" : "", double(p.At[0]), double(p.At[1]),
                          double(p.At[2]), 0.0, 10.0, 20.0);
            text += rows;
        }
        return Write("program.ls", text + "/END\n");
    }
    // The start points in another order than the poses, called by what `name` gives for pose 1 to 5.
    std::string Start(const std::function<std::string(int)>& name) const {
        std::string text;
        for (const int i : {3, 1, 5, 4, 2}) {
            const Pose& p = kPoses[i - 1];
            text += name(i) + ";" + std::to_string(p.At[0] - 5) + ";" + std::to_string(p.At[1] - 6) + ";" +
                    std::to_string(p.At[2] - 7) + "\n";
        }
        return Write("start_" + name(1) + ".txt", text);
    }
    static std::string NameOf(int i) { return kPoses[i - 1].Name; }

    // That the right ones have come together shows in residuals of 0.
    static void ExpectPaired(const json& fit, std::size_t pairs) {
        EXPECT_EQ(fit["counts"]["pairs"], pairs);
        EXPECT_NEAR(fit["quality"]["largestDeviation_mm"].get<double>(), 0, 1e-6);
        EXPECT_NEAR(fit["transformation"]["translation_mm"][0].get<double>(), 5, 1e-6);
        EXPECT_NEAR(fit["transformation"]["translation_mm"][2].get<double>(), 7, 1e-6);
    }
    static bool Noted(NoteCode code) {
        return std::any_of(Notes.List.begin(), Notes.List.end(),
                           [code](const Note& note) { return note.Code == code; });
    }
    static json Of(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "fit");
        arguments.emplace_back("--json");
        const Outcome outcome = FreshCommandLine(arguments);
        EXPECT_EQ(outcome.Status, 0) << outcome.Err;
        return json::parse(outcome.Out, nullptr, false);
    }
};

TEST_F(PoseNamesOfPrograms, PairPointsThatBearThemAndANoteSaysSo) {
    const std::string start = Start(NameOf);
    for (const auto& [kind, program] :
         std::vector<std::pair<std::string, std::string>>{{"kuka", Kuka()}, {"abb", Abb()}}) {
        for (const bool told : {false, true}) {
            std::vector<std::string> fit = {start, program, "--as", kind};
            if (told) fit.insert(fit.end(), {"--names", "program"});
            const json result = Of(fit);
            ExpectPaired(result, 5);
            EXPECT_EQ(result["counts"]["target"], 5) << "tools, joint values and remarks are none";
            EXPECT_EQ(Noted(NoteCode::PoseNames), !told);
            std::set<std::string> names;
            for (const json& point : result["points"]) names.insert(point["name"].get<std::string>());
            EXPECT_EQ(names, (std::set<std::string>{"XP1", "xHome", "XP30", "XP4", "XP5"}));
        }
    }
}

TEST_F(PoseNamesOfPrograms, AreTheNumbersInTheBracketsOfFanuc) {
    const std::string start = Start([](int i) { return std::to_string(10 * i); });
    ExpectPaired(Of({start, Fanuc(), "--as", "fanuc"}), 5);
    EXPECT_TRUE(Noted(NoteCode::PoseNames));
    EXPECT_EQ(FreshCommandLine({"fit", start, Fanuc(), "--as", "fanuc", "--names", "number"}).Status, 1)
        << "10, 20... are no turns";
}

TEST_F(PoseNamesOfPrograms, LeaveNumbersWherePointsAreNumbered) {
    const std::string start = Start([](int i) { return std::to_string(i); });
    ExpectPaired(Of({start, Kuka(), "--as", "kuka"}), 5);
    EXPECT_FALSE(Noted(NoteCode::PoseNames));
    ExpectPaired(Of({start, Fanuc(1), "--as", "fanuc"}), 5);
    EXPECT_FALSE(Noted(NoteCode::PoseNames)) << "both are the same";
    // Numbered in the order of the file, as ever.
    const std::string inOrder =
        Write("o.txt", "a;0;0;0\nb;1000;0;0\nc;0;2000;0\nd;0;0;3000\ne;700;800;900\n");
    ExpectPaired(Of({inOrder, Abb(), "--as", "abb"}), 5);
    // One name of the program among numbers is no reason to leave these.
    const std::string mixed = Start([](int i) { return i == 4 ? std::string("XP4") : std::to_string(i); });
    ExpectPaired(Of({mixed, Kuka(), "--as", "kuka"}), 4);
    EXPECT_FALSE(Noted(NoteCode::PoseNames));
}

TEST_F(PoseNamesOfPrograms, GoAlongWithTheOrientationsToTheTool) {
    // Each pose is 100 mm along its own z from the point, so that the tool vector is (0, 0, 100) if, and only
    // if, every pose has kept its own orientation.
    std::string program, start;
    const double angles[][3] = {{10, 20, 30}, {-50, 40, 0}, {90, -60, 170},
                                {0, 0, -90},  {35, 80, 45}, {-120, 15, 60}};
    for (int i = 0; i < 6; ++i) {
        const double a = angles[i][0] * M_PI / 180, b = angles[i][1] * M_PI / 180,
                     c = angles[i][2] * M_PI / 180;
        // Third column of Rz(a) Ry(b) Rx(c).
        const double z[3] = {std::cos(a) * std::sin(b) * std::cos(c) + std::sin(a) * std::sin(c),
                             std::sin(a) * std::sin(b) * std::cos(c) - std::cos(a) * std::sin(c),
                             std::cos(b) * std::cos(c)};
        const double at[3] = {300.0 * i, 100.0 * i * i, 50.0 * (i % 3)};
        char row[300];
        std::snprintf(row, sizeof row, "DECL E6POS Q%d={X %.9f,Y %.9f,Z %.9f,A %g,B %g,C %g,S 2,T 3}\n",
                      7 - i, at[0] + 100 * z[0], at[1] + 100 * z[1], at[2] + 100 * z[2], angles[i][0],
                      angles[i][1], angles[i][2]);
        program += row;
        std::snprintf(row, sizeof row, "Q%d;%.9f;%.9f;%.9f\n", 7 - i, at[0], at[1], at[2]);
        start += row;
    }
    const std::string file = Write("t.dat", program), points = Write("t.txt", start);
    for (const std::string select : {"", "q7,Q6,Q5,q3,Q2"}) {
        std::vector<std::string> fit = {points, file, "--as", "kuka", "--tool"};
        if (!select.empty()) fit.insert(fit.end(), {"--select", select});
        const json result = Of(fit);
        EXPECT_EQ(result["counts"]["pairs"], select.empty() ? 6 : 5);
        for (const json& parameter : result["parameters"]) {
            const std::string name = parameter["name"];
            if (!name.starts_with("rvec")) continue;
            EXPECT_NEAR(parameter["value"].get<double>(), name == "rvecz" ? 100 : 0, 1e-5) << name << select;
        }
    }
}

TEST_F(PoseNamesOfPrograms, SelectTheirPoses) {
    const std::string named = Start(NameOf), numbered = Start([](int i) { return std::to_string(i); });
    const json some = Of({named, Kuka(), "--as", "kuka", "--select", "xp1,XHOME,xp30", "--select", "XP5"});
    ExpectPaired(some, 4);
    EXPECT_EQ(some["counts"]["target"], 4);
    // Those that are taken keep the numbers of their turn.
    const json byTurn = Of({numbered, Kuka(), "--as", "kuka", "--select", "XP1,XP30,XP4"});
    ExpectPaired(byTurn, 3);
    EXPECT_EQ(byTurn["counts"]["target"], 3);
    ExpectPaired(Of({Start([](int i) { return std::to_string(10 * i); }), Fanuc(), "--as", "fanuc",
                     "--select", "10,30,50"}),
                 3);
    EXPECT_FALSE(Noted(NoteCode::PosesByTurn));
    ExpectPaired(Of({named, Abb(), "--as", "abb", "--select", "xp1,xp4,xp5"}), 3);
}

TEST_F(PoseNamesOfPrograms, UnknownOnesAreWrongUsage) {
    const std::string start = Start(NameOf);
    for (const char* select : {"XP9", "XP1,", "XP1 ", "XP1,XP3"}) {
        const Outcome outcome = FreshCommandLine({"fit", start, Kuka(), "--as", "kuka", "--select", select});
        EXPECT_EQ(outcome.Status, 2) << select;
        EXPECT_NE(outcome.Err.find("there are XP1, xHome, XP30, XP4, XP5"), std::string::npos) << outcome.Err;
        EXPECT_EQ(outcome.Out, "");
    }
    const std::vector<std::vector<std::string>> commands = {
        {"fit", start_, target_, "--names", "program"},
        {"fit", start_, target_, "--select", "A"},
        {"fit", start, Kuka(), "--as", "kuka", "--names", "both"},
        {"fit", "--job", kExamples + "robot_cell.cvn", "--select", "A"},
        {"fit", "--job", kExamples + "robot_cell.cvn", "--names", "number"}};
    for (const auto& command : commands) EXPECT_EQ(FreshCommandLine(command).Status, 2) << command.back();
}

TEST_F(PoseNamesOfPrograms, OfManyTheFirstTwelveAreTold) {
    for (const int count : {12, 13, 15}) {
        std::string program, names;
        for (int i = 1; i <= count; ++i) {
            const std::string name = "P" + std::to_string(i);
            program += "DECL E6POS " + name + "={X " + std::to_string(i) + ",Y 2,Z 3,A 4,B 5,C 6}\n";
            if (i <= 12) names += (i > 1 ? ", " : "") + name;
        }
        if (count > 12) names += " and " + std::to_string(count - 12) + " more";
        const std::string path = Write("many.dat", program);
        const Outcome outcome = FreshCommandLine({"fit", start_, path, "--as", "kuka", "--select", "none"});
        EXPECT_EQ(outcome.Status, 2);
        EXPECT_NE(outcome.Err.find("there are " + names + "\n"), std::string::npos) << outcome.Err;
    }
}

TEST_F(PoseNamesOfPrograms, ThatStandTwiceAreRefusedWithTheirLines) {
    const std::string program =
        Write("twice.dat",
              "DECL E6POS A={X 1,Y 2,Z 3,A 4,B 5,C 6}\nDECL E6POS B={X 1,Y 3,Z 3,A 4,B 5,C 6}\n"
              "DECL E6POS A={X 9,Y 2,Z 3,A 4,B 5,C 6}\n");
    const Outcome outcome = FreshCommandLine({"fit", start_, program, "--as", "kuka"});
    EXPECT_EQ(outcome.Status, 3);
    EXPECT_NE(outcome.Err.find("Please check Point Number A"), std::string::npos) << outcome.Err;
    EXPECT_NE(outcome.Err.find("line 3"), std::string::npos) << outcome.Err;
}

TEST_F(PoseNamesOfPrograms, TextFilesOfPosesCanBeSelectedToo) {
    const std::string poses =
        Write("poses.txt", "A;5;6;7;0;0;0\nB;1005;6;7;0;0;0\nC;5;2006;7;0;0;0\nD;5;6;3007;0;0;0\n");
    ExpectPaired(Of({start_, poses, "--as", "xyzabc", "--select", "a,b,d"}), 3);
}

}  // namespace
