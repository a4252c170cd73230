// Transformations as texts of other machines, there and back.
#include <gtest/gtest.h>

#include <cmath>

#include "corvinade/error.h"
#include "corvinade/transformation.h"

using namespace corvinade;

namespace {

std::string Refusal(const std::string& text, const char* form) {
    try {
        Import(text, form);
    } catch (const InvalidInput& error) {
        return error.what();
    }
    return "";
}

// A quarter turn about z, and the shift 1 2 3 m.
const Matrix4 kQuarter = {0, -1, 0, 1000, 1, 0, 0, 2000, 0, 0, 1, 3000, 0, 0, 0, 1};

void ExpectQuarter(const std::string& text, const char* form) {
    const Matrix4 matrix = Import(text, form);
    for (std::size_t i = 0; i < 16; ++i) EXPECT_NEAR(matrix[i], kQuarter[i], 1e-12) << form << " " << i;
}

TEST(ImportText, WrittenByHandIsTheQuarterTurn) {
    ExpectQuarter("0 -1 0 1000\n1 0 0 2000\n0 0 1 3000\n0 0 0 1\n", "matrix");
    ExpectQuarter("0,-1,0,1e3\r\n1, 0, 0, 2000\r\n0,0,1,+3000\r\n0,0,0,1", "matrix-csv");
    ExpectQuarter("1000 2000 3000 0 0 0.7071067811865476 0.7071067811865476", "quaternion");
    ExpectQuarter(
        "+proj=affine +xoff=1000 +yoff=2000 +zoff=3000 +s11=0 +s12=-1 +s13=0 +s21=1 +s22=0 +s23=0 "
        "+s31=0 +s32=0 +s33=1",
        "proj");
    ExpectQuarter(
        "ros2 run tf2_ros static_transform_publisher --x 1 --y 2 --z 3 --qx 0 --qy 0 --qz "
        "0.7071067811865476 --qw 0.7071067811865476 --frame-id base --child-frame-id cell/tool_0\n",
        "ros");
    ExpectQuarter("<origin xyz=\"1 2 3\" rpy=\"0 0 1.5707963267948966\"/>", "urdf");
    ExpectQuarter("$BASE={X 1000,Y 2000,Z 3000,A 90,B 0,C 0}", "kuka-base");
    ExpectQuarter("$tool = {x 1000.0, y 2000.0, z 3000.0, a 90.0, b 0.0, c 0.0}\n", "kuka-tool");
    ExpectQuarter("X = 1000 mm, Y = 2000 mm, Z = 3000 mm,\nW = 0 deg, P = 0 deg, R = 90 deg\n",
                  "fanuc-uframe");
    ExpectQuarter(
        "PERS wobjdata wobj_cell:=[FALSE,TRUE,\"\",[[1000,2000,3000],[0.70710678,0,0,0.70710678]],"
        "[[0,0,0],[1,0,0,0]]];",
        "abb-wobj");
}

TEST(ImportText, WhatExportWritesComesBack) {
    const Chain rigid{.Translation = {10500.25, -9300.5, 720.125}, .Rotation = {0.3, -0.7, 2.1}},
        lock{.Translation = {1e-7, 0, -4e4}, .Rotation = {0.4, M_PI / 2, 0.1}},
        affine{.Translation = {1, 2, 3},
               .Rotation = {3, 1, -2},
               .Scale = {1.1, -0.9, 25.4},
               .Shear = {0.1, 0, 0}};
    for (const Chain& chain : {rigid, lock, affine, Chain()})
        for (const std::string& form : ExportForms()) {
            const Matrix4 matrix = MatrixOf(chain);
            std::string text;
            try {
                text = Export(matrix, form, "cell");
            } catch (const InvalidInput&) {
                EXPECT_LT(chain.Scale[1], 0) << form;  // has no place for it
                continue;
            }
            const Matrix4 back = Import(text, form);
            // 1e-9 mm at 10 m.
            for (std::size_t i = 0; i < 16; ++i)
                EXPECT_NEAR(back[i], matrix[i], i % 4 == 3 ? 1e-9 : 1e-13) << form << " " << i << "\n"
                                                                           << text;
        }
}

TEST(ImportText, WhatIsDamagedOrSaysMoreIsRefused) {
    const auto says = [](const std::string& text, const char* form, const char* words) {
        EXPECT_NE(Refusal(text, form).find(words), std::string::npos) << form << ": " << Refusal(text, form);
    };
    says("", "matrix", "the text ends");
    says("0 -1 0 1000\n1 0 0 x\n", "matrix", "in line 2 a number was expected, and \"x\" stands there");
    says("1 0 0 0 0 1 0 0 0 0 1 0 0 0 0 1 5", "matrix", "its end was expected");
    says("1 0 0 0 0 1 0 0 0 0 1 0 0 0 0 2", "matrix", "0 0 0 1");
    says("1 0 0 0 0 1 0 0 0 0 0 0 0 0 0 1", "matrix", "no inverse");
    says("1 0 0 nan 0 1 0 0 0 0 1 0 0 0 0 1", "matrix", "a number was expected");
    says("1 2 3 0 0 1 1", "quaternion", "length 1");
    says("1 2 3 0 0 0 0", "quaternion", "length 1");
    says("$BASE={X 1,Y 2,Z 3,A 90,B 0,C 0,S 2}", "kuka-base", "\"}\" was expected, and \",S 2}\"");
    says("$TOOL={X 1,Y 2,Z 3,A 90,B 0,C 0}", "kuka-base", "was expected");
    says("X = 1 in, Y = 2 mm, Z = 3 mm,\nW = 0 deg, P = 0 deg, R = 90 deg\n", "fanuc-uframe", "\"in, Y");
    says("PERS wobjdata w:=[FALSE,TRUE,\"\",[[1,2,3],[1,0,0,0]],[[0,0,5],[1,0,0,0]]];", "abb-wobj",
         "object frame");
    says("<origin xyz=\"1 2 3\" rpy=\"0 0\"/>", "urdf", "a number was expected");
    says("1", "picture", "a form is one of matrix, ");
    EXPECT_FALSE(Refusal("1 2 3 0 0 0 1 0 0 0 0 0 0 0 0 0", "matrix").empty());
    const std::string whole = Export(kQuarter, "json");
    for (const char* form : {"json", "abb-wobj", "ros", "urdf", "fanuc-utool", "kuka-base", "abb-tool"}) {
        const std::string text = Export(kQuarter, form);
        // Cut off anywhere it is none; a shorter name of a frame is a name.
        const std::size_t name = std::string(form) == "ros" ? 6 : 3;
        for (std::size_t size = 0; size + name < text.size(); ++size)
            EXPECT_FALSE(Refusal(text.substr(0, size), form).empty()) << form << " " << size;
    }
    std::string other = whole;
    other.replace(other.find("\"translation_mm\": [1000"), 22, "\"translation_mm\": [1001");
    EXPECT_NE(Refusal(other, "json").find("not the same"), std::string::npos);
}

TEST(ImportText, NumbersThatRunTogetherAreNone) {
    EXPECT_FALSE(Refusal("1-2 3 0 0 0 1 4", "quaternion").empty());
    EXPECT_FALSE(Refusal("12 3 0 0 0 1", "quaternion").empty());
    EXPECT_FALSE(Refusal("1.2.3 4 5 0 0 0 1", "quaternion").empty());
}

}  // namespace
