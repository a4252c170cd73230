// Robot programs by the library: their poses, and the same programs with other poses.
#include "corvinade/robot_program.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <regex>

using namespace corvinade;
namespace fs = std::filesystem;

namespace {

const std::string kExamples = std::string(CORVINADE_SOURCE_DIR) + "/examples/";
const double kDegree = std::acos(-1.0) / 180;

struct Folder {
    fs::path Path;
    Folder() {
        std::string name = testing::TempDir() + "corvinadeXXXXXX";
        Path = mkdtemp(name.data());
    }
    Folder(const Folder&) = delete;
    ~Folder() { fs::remove_all(Path); }
    std::string Of(const std::string& name, const std::string& text) const {
        std::ofstream(Path / name, std::ios::binary) << text;
        return (Path / name).string();
    }
};

std::string ContentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

template <class Work>
std::string WhatOf(Work work) {
    try {
        work();
    } catch (const InvalidInput& error) {
        return error.what();
    }
    return "";
}

using Rows = std::array<std::array<double, 3>, 3>;

Rows Times(const Rows& a, const Rows& b) {
    Rows product{};
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t j = 0; j < 3; ++j)
            for (std::size_t k = 0; k < 3; ++k) product[i][j] += a[i][k] * b[k][j];
    return product;
}

// About one axis, degrees.
Rows Turn(int axis, double degrees) {
    const double s = std::sin(degrees * kDegree), c = std::cos(degrees * kDegree);
    if (axis == 0) return {{{1, 0, 0}, {0, c, -s}, {0, s, c}}};
    if (axis == 1) return {{{c, 0, s}, {0, 1, 0}, {-s, 0, c}}};
    return {{{c, -s, 0}, {s, c, 0}, {0, 0, 1}}};
}

Matrix4 Frame(const Rows& turn, double x, double y, double z) {
    return {turn[0][0], turn[0][1], turn[0][2], x, turn[1][0], turn[1][1], turn[1][2], y,
            turn[2][0], turn[2][1], turn[2][2], z, 0,          0,          0,          1};
}

void ExpectNear(const Matrix4& frame, const Matrix4& expected, double mm, double rad,
                const std::string& what) {
    for (std::size_t i = 0; i < 16; ++i)
        EXPECT_NEAR(frame[i], expected[i], i % 4 == 3 ? mm : rad) << what << ", element " << i;
}

const Matrix4 kMove = Frame(Times(Turn(2, 30), Times(Turn(0, -20), Turn(1, 12.5))), 100.5, -250.25, 75);

// Numbers and the blanks before them become "#", so that only what is no number of a pose is compared.
std::string WithoutNumbers(const std::string& text) {
    return std::regex_replace(text, std::regex(" *-?[0-9]+(\\.[0-9]+)?"), "#");
}

}  // namespace

TEST(RobotPrograms, OfAllFormsHaveTheirPoses) {
    const Folder folder;
    const Rows turn = Times(Turn(2, 12.5), Times(Turn(1, 44.25), Turn(0, -170)));
    const Matrix4 expected = Frame(turn, 980.25, -410.5, 1122);
    const RobotPoses kuka = ReadProgram(
        folder.Of("a.dat",
                  "DEFDAT A\nDECL E6POS XP1={X 980.25,Y -410.5,Z 1122,A 12.5,B 44.25,C -170,S 2,T "
                  "35}\nENDDAT\n"),
        "kuka");
    ASSERT_EQ(kuka.Poses.size(), 1U);
    EXPECT_EQ(kuka.Poses[0].Name, "XP1");
    ExpectNear(kuka.Poses[0].Frame, expected, 1e-9, 1e-12, "kuka");
    const RobotPoses fanuc =
        ReadProgram(folder.Of("a.ls",
                              "/POS\nP[7]{\n   GP1:\n\tUF : 0, UT : 1,\t\tCONFIG : 'N U T, 0, 0, 0',\n"
                              "\tX =   980.250  mm,\tY =  -410.500  mm,\tZ =  1122.000  mm,\n"
                              "\tW =  -170.000 deg,\tP =    44.250 deg,\tR =    12.500 deg\n};\n/END\n"),
                    "fanuc");
    ASSERT_EQ(fanuc.Poses.size(), 1U);
    EXPECT_EQ(fanuc.Poses[0].Name, "7");
    ExpectNear(fanuc.Poses[0].Frame, expected, 1e-9, 1e-12, "fanuc");
    // Half a turn about an axis in the plane of x and y that stands at 5 degrees from y: (0, sin 5, cos 5,
    // 0).
    const RobotPoses abb = ReadProgram(
        folder.Of("a.modx",
                  "MODULE A\nCONST robtarget p10:=[[980.25,-410.5,1122],[0,0.087155742748,0.996194698092,0],"
                  "[0,0,0,0],[9E9,9E9,9E9,9E9,9E9,9E9]];\nENDMODULE\n"),
        "abb");
    ASSERT_EQ(abb.Poses.size(), 1U);
    EXPECT_EQ(abb.Poses[0].Name, "p10");
    const double s = std::sin(10 * kDegree), c = std::cos(10 * kDegree);
    ExpectNear(abb.Poses[0].Frame, Frame({{{-c, s, 0}, {s, c, 0}, {0, 0, -1}}}, 980.25, -410.5, 1122), 1e-9,
               1e-9, "abb");
}

struct Program {
    const char *Form, *File;
    double Place, Axes;  // how near numbers of the form come
};

class MovedPrograms : public testing::TestWithParam<Program> {};

TEST_P(MovedPrograms, HaveTheirPosesElsewhereAndAllElseAsItWas) {
    const Folder folder;
    const auto& [form, file, place, axes] = GetParam();
    const std::string from = kExamples + file, to = folder.Path / "moved";
    TransformProgram(from, to, form, kMove);
    const RobotPoses before = ReadProgram(from, form), after = ReadProgram(to, form);
    ASSERT_EQ(after.Poses.size(), 10U);
    for (std::size_t i = 0; i < after.Poses.size(); ++i) {
        EXPECT_EQ(after.Poses[i].Name, before.Poses[i].Name);
        // By the product written out, beside what the library has for it.
        Matrix4 expected{};
        for (std::size_t k = 0; k < 16; ++k)
            for (std::size_t j = 0; j < 4; ++j)
                expected[k] += kMove[4 * (k / 4) + j] * before.Poses[i].Frame[4 * j + k % 4];
        ExpectNear(after.Poses[i].Frame, expected, place, axes, after.Poses[i].Name);
    }
    EXPECT_EQ(WithoutNumbers(ContentOf(to)), WithoutNumbers(ContentOf(from)));
    // Moved by nothing it says the same.
    TransformProgram(from, to, form, Identity());
    const RobotPoses same = ReadProgram(to, form);
    for (std::size_t i = 0; i < same.Poses.size(); ++i)
        ExpectNear(same.Poses[i].Frame, before.Poses[i].Frame, place, axes, same.Poses[i].Name);
}
// Of fixed columns the reader takes the last decimal of Z away.
INSTANTIATE_TEST_SUITE_P(All, MovedPrograms,
                         testing::Values(Program{"kuka", "robot_tool.dat", 1e-6, 2e-8},
                                         Program{"fanuc", "robot_tool.ls", 0.011, 2e-5},
                                         Program{"abb", "robot_tool.modx", 1e-6, 2e-8}));

TEST(RobotPrograms, AreMovedWhereTheirPosesStandSeveralToALineOrOverMany) {
    const Folder folder;
    const Matrix4 shift = Frame(Turn(2, 0), 1, 2, 3);
    const std::string kuka = folder.Of(
        "a.dat",
        "DECL POS P1={X 1,Y 2,Z 3,A 0,B 0,C 0},P2={c 0,b 0,a 90,z 6,y 5,x 4} ; {X 7}\nPTP {X 8,Y 9}\n");
    const std::string moved = folder.Path / "moved";
    const std::vector<FileNote> notes = TransformProgram(kuka, moved, "kuka", shift);
    EXPECT_EQ(ContentOf(moved),
              "DECL POS P1={X 2,Y 4,Z 6,A 0,B 0,C 0},P2={c 0,b 0,a 90,z 9,y 7,x 5} ; {X 7}\nPTP {X 8,Y 9}\n");
    ASSERT_EQ(notes.size(), 1U);
    EXPECT_EQ(notes[0].Code, "poses-skipped");
    const std::string abb = folder.Of(
        "a.modx",
        "MODULE A\nPERS tooldata t:=[TRUE,[[1,2,3],[1,0,0,0]],[1,[0,0,0],[1,0,0,0],0,0,0]];\n"
        "CONST robtarget a := [ [1, 2 ,3],\r\n ! [[7,7,7]\r\n [1,0,0,0],[0,0,0,0],[9E9,9E9,9E9,9E9,9E9,9E9]]; VAR "
        "robtarget b:=[[1,2,3],[1,0,0,0],[0,0,0,0],[9E9,9E9,9E9,9E9,9E9,9E9]];\nENDMODULE\n");
    TransformProgram(abb, moved, "abb", shift);
    EXPECT_EQ(
        ContentOf(moved),
        "MODULE A\nPERS tooldata t:=[TRUE,[[1,2,3],[1,0,0,0]],[1,[0,0,0],[1,0,0,0],0,0,0]];\n"
        "CONST robtarget a := [ [2, 4 ,6],\r\n ! [[7,7,7]\r\n [1,0,0,0],[0,0,0,0],[9E9,9E9,9E9,9E9,9E9,9E9]]; VAR "
        "robtarget b:=[[2,4,6],[1,0,0,0],[0,0,0,0],[9E9,9E9,9E9,9E9,9E9,9E9]];\nENDMODULE\n");
}

TEST(RobotPrograms, InColumnsKeepThemOrAreRefused) {
    const Folder folder;
    const auto program = [](const std::string& x) {
        return "/POS\nP[1]{\n   GP1:\n\tUF : 0, UT : 1,\t\tCONFIG : 'N U T, 0, 0, 0',\n\tX = " + x +
               "  mm,\tY =  -410.500  mm,\tZ =  1122.000  mm,\n"
               "\tW =     0.000 deg,\tP =     0.000 deg,\tR =     0.000 deg\n};\n/END\n";
    };
    const std::string from = folder.Of("a.ls", program("   99.500")), to = folder.Of("b.ls", "as it was");
    TransformProgram(from, to, "fanuc", Frame(Turn(2, 0), -2000.25, 0, 0));
    EXPECT_EQ(ContentOf(to), program("-1900.750"));
    EXPECT_NE(WhatOf([&] {
                  TransformProgram(from, to, "fanuc", Frame(Turn(2, 0), -2e6, 0, 0));
              }).find("pose 1 cannot be written where it stands: its columns have no room for -1999900.500"),
              std::string::npos);
    EXPECT_EQ(ContentOf(to), program("-1900.750"));
}

TEST(RobotPrograms, AndTransformationsThatDoNotFitAreRefused) {
    const Folder folder;
    const std::string kuka = kExamples + "robot_tool.dat", to = folder.Path / "moved";
    EXPECT_NE(WhatOf([&] { ReadProgram(kuka, "karel"); }).find("kuka, abb, fanuc, and \"karel\" came"),
              std::string::npos);
    EXPECT_NE(WhatOf([&] { ReadProgram(folder.Path / "none.dat", "kuka"); }).find("none.dat"),
              std::string::npos);
    EXPECT_NE(WhatOf([&] {
                  ReadProgram(folder.Of("a.dat", "DECL E6POS P={X 1,Y b,Z 3,A 4,B 5,C 6}\n"), "kuka");
              }).find("line 1: \"b\" is not a number"),
              std::string::npos);
    for (const Chain& chain :
         {Chain{.Scale = {1.001, 1.001, 1.001}}, Chain{.Scale = {1, 1, -1}}, Chain{.Shear = {0.1, 0, 0}}})
        EXPECT_NE(WhatOf([&] {
                      TransformProgram(kuka, to, "kuka", MatrixOf(chain));
                  }).find("turns and shifts alone"),
                  std::string::npos);
    EXPECT_FALSE(fs::exists(to));
    // A reading leaves nothing for the next one.
    EXPECT_EQ(ReadProgram(kuka, "kuka").Poses.size(), 10U);
    EXPECT_TRUE(ReadProgram(kuka, "kuka").Notes.empty());
}
