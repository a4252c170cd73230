// PCD files, written here byte by byte, and the compression of one of their forms.
#include <cmath>
#include <limits>
#include <random>

#include "import/cloud_bytes.h"
#include "import/lzf.h"

using namespace corvinade;

namespace {

struct Point {
    float X, Y, Z, NX, NY, NZ;
    std::uint16_t Label;
};
const std::vector<Point> kBefore = {{1, 2, 3, 1, 0, 0, 7}, {-5, 10, 0, 0, 0, -1, 255}};
const std::vector<Point> kAfter = {{9.6F, 22.2F, 33, 0.8F, 0.6F, 0, 7}, {0, 25, 30, 0, 0, -1, 255}};

std::string PcdHeader(const std::string& data, const std::string& points = "2") {
    return "# .PCD v0.7 - Point Cloud Data file format\nVERSION 0.7\n"
           "FIELDS label x y z hist normal_x normal_y normal_z\nSIZE 2 4 4 4 1 4 4 4\n"
           "TYPE U F F F I F F F\nCOUNT 1 1 1 1 3 1 1 1\nWIDTH " +
           points + "\nHEIGHT 1\nVIEWPOINT 0 0 0 1 0 0 0\nPOINTS " + points + "\nDATA " + data + "\n";
}

std::string Rows(const std::vector<Point>& points) {
    std::string bytes;
    for (const Point& p : points)
        bytes += Packed(p.Label) + Packed(p.X) + Packed(p.Y) + Packed(p.Z) + "abc" + Packed(p.NX) +
                 Packed(p.NY) + Packed(p.NZ);
    return bytes;
}

// All values of a field, then those of the next.
std::string ByFields(const std::vector<Point>& points) {
    std::string bytes;
    const auto add = [&](auto field) {
        for (const Point& p : points) bytes += Packed(p.*field);
    };
    add(&Point::Label);
    add(&Point::X);
    add(&Point::Y);
    add(&Point::Z);
    for (std::size_t i = 0; i < points.size(); ++i) bytes += "abc";
    add(&Point::NX);
    add(&Point::NY);
    add(&Point::NZ);
    return bytes;
}

// Literal bytes alone: the simplest form there is of compressed ones.
std::string Literal(const std::string& bytes) {
    std::string packed;
    for (std::size_t at = 0; at < bytes.size(); at += 32) {
        const std::string run = bytes.substr(at, 32);
        packed += static_cast<char>(run.size() - 1) + run;
    }
    return packed;
}

std::string Compressed(const std::string& bytes, const std::string& points = "2") {
    const std::string packed = Literal(bytes);
    return PcdHeader("binary_compressed", points) + Packed(static_cast<std::uint32_t>(packed.size())) +
           Packed(static_cast<std::uint32_t>(bytes.size())) + packed;
}

// Decodes as the format is described, byte by byte.
std::string Decoded(const std::string& packed) {
    std::string bytes;
    const auto at = [&packed](std::size_t i) { return static_cast<unsigned char>(packed.at(i)); };
    for (std::size_t i = 0; i < packed.size();) {
        const unsigned control = at(i++);
        if (control < 32) {
            bytes += packed.substr(i, control + 1);
            i += control + 1;
            continue;
        }
        unsigned length = control >> 5;
        if (length == 7) length += at(i++);
        const std::size_t distance = ((control & 31) << 8) + at(i++) + 1;
        for (unsigned k = 0; k < length + 2; ++k) bytes += bytes.at(bytes.size() - distance);
    }
    return bytes;
}

TEST(PcdCloud, BinaryKeepsEverythingButPointsAndNormals) {
    const CloudRun run = Carried(PcdHeader("binary") + Rows(kBefore), "a.pcd");
    EXPECT_EQ(run.Error, "");
    EXPECT_EQ(run.Out, PcdHeader("binary") + Rows(kAfter));
    EXPECT_EQ(run.Facts.Points, 2);
}

TEST(PcdCloud, ACompressedOneIsCompressedAgain) {
    for (const std::size_t most : {1U, 1U << 20}) {
        const CloudRun run = RunThrough(Compressed(ByFields(kBefore)), "a.pcd", &CloudTurn(), {}, most);
        EXPECT_EQ(run.Error, "");
        const std::string head = PcdHeader("binary_compressed"), expected = ByFields(kAfter);
        ASSERT_TRUE(run.Out.starts_with(head));
        const std::string packed = run.Out.substr(head.size() + 8);
        EXPECT_EQ(run.Out.substr(head.size(), 8), Packed(static_cast<std::uint32_t>(packed.size())) +
                                                      Packed(static_cast<std::uint32_t>(expected.size())));
        EXPECT_EQ(Decoded(packed), expected);
    }
}

TEST(PcdCloud, TextKeepsItsColumns) {
    const CloudRun run =
        Carried(PcdHeader("ascii") + "7 1 2 3 9 8 7 1 0 0\n255 -5 10.0 0 9 8 7 0 0 -1\n", "a.pcd");
    EXPECT_EQ(run.Out, PcdHeader("ascii") +
                           "7 9.600 22.200 33.000 9 8 7 0.800000 0.600000 0.000000\n"
                           "255 0.000 25.000 30.000 9 8 7 0.000000 0.000000 -1.000000\n");
}

TEST(PcdCloud, AllFormsGiveTheSamePoints) {
    for (const std::string& file :
         {PcdHeader("binary") + Rows(kBefore), Compressed(ByFields(kBefore)),
          PcdHeader("ascii") + "7 1 2 3 9 8 7 1 0 0\n255 -5 10.0 0 9 8 7 0 0 -1\n"}) {
        const CloudRun run = ReadThrough(file, "a.pcd");
        ASSERT_EQ(run.Points.size(), 2U) << run.Error;
        EXPECT_EQ(run.Points[1].At, (std::array<double, 3>{-5, 10, 0}));
    }
}

TEST(PcdCloud, PointsOfAnOrganisedCloudThatAreMissingStay) {
    std::vector<Point> before = kBefore, after = kAfter;
    before[0].X = after[0].X = std::numeric_limits<float>::quiet_NaN();
    after[0].Y = before[0].Y;
    after[0].Z = before[0].Z;
    const CloudRun run = Carried(PcdHeader("binary") + Rows(before), "a.pcd");
    EXPECT_EQ(run.Out, PcdHeader("binary") + Rows(after));
    EXPECT_EQ(run.Facts.NotFinite, 1);
    EXPECT_EQ(Carried(PcdHeader("ascii", "1") + "7 nan nan nan 9 8 7 nan nan nan\n", "a.pcd").Out,
              PcdHeader("ascii", "1") + "7 nan nan nan 9 8 7 nan nan nan\n");
}

TEST(PcdCloud, DamagedFilesAreRefused) {
    const auto refusal = [](const std::string& bytes) {
        const CloudRun run = Carried(bytes, "a.pcd");
        EXPECT_TRUE(run.Error.starts_with("Cannot read \"a.pcd\"")) << run.Error;
        return run.Error;
    };
    const auto has = [&refusal](const std::string& bytes, const std::string& what) {
        EXPECT_NE(refusal(bytes).find(what), std::string::npos) << refusal(bytes);
    };
    const std::string binary = PcdHeader("binary") + Rows(kBefore), packed = Compressed(ByFields(kBefore));
    for (std::size_t length = 0; length < binary.size(); ++length) refusal(binary.substr(0, length));
    for (std::size_t length = 0; length < packed.size(); ++length) refusal(packed.substr(0, length));
    has(binary.substr(0, binary.size() - 1), "1 of 2 points are there");
    has(PcdHeader("binary", "1000000000000000000") + Rows(kBefore), "2 of 1000000000000000000 points");
    has(PcdHeader("binary") + Rows(kBefore) + Rows(kBefore), "more stands behind");
    has(PcdHeader("ascii") + "7 1 2 3 9 8 7 1 0 0\n", "1 of 2 points are there");
    has(PcdHeader("ascii", "1") + "7 1 2 3 9 8 7 1 0 0\n7 1 2 3 9 8 7 1 0 0\n", "line 13: more stands");
    has(PcdHeader("ascii") + "7 1 2 3 9 8\n", "line 12: it has 6 values, and its header 10");
    has(PcdHeader("base64"), "line 11: \"base64\" is no form");
    has(PcdHeader("binary", "-2"), "line 7: \"-2\" is no count");
    has(Compressed(ByFields(kBefore), "3"), "its header counts 3 points of");
    has("# .PCD v0.7\nFIELDS x y z\nSIZE 4 4 4\nTYPE F F\nWIDTH 1\nHEIGHT 1\nPOINTS 1\nDATA ascii\n1 2 3\n",
        "not the same number");
    has("# .PCD v0.7\nFIELDS x y z\nSIZE 4 4 3\nTYPE F F F\nWIDTH 1\nHEIGHT 1\nPOINTS 1\nDATA ascii\n1 2 3\n",
        "of no type");
    has("# .PCD v0.7\nFIELDS x y z\nSIZE 4 4 4\nTYPE F F F\nWIDTH 2\nHEIGHT 2\nPOINTS 1\nDATA ascii\n1 2 3\n",
        "1 points, and 2 times 2");
    has("# .PCD v0.7\nFIELDS x y\nSIZE 4 4\nTYPE F F\nPOINTS 1\nDATA ascii\n1 2\n", "no fields x, y and z");
    has("# .PCD v0.7\nFIELDS x y z\nSIZE 4 4 4\nTYPE I I I\nPOINTS 1\nDATA ascii\n1 2 3\n",
        "whole-number type");
    has(PcdHeader("binary") + Rows(kBefore) + "abc", "more stands behind");  // records of other lengths
    has(PcdHeader("ascii") + "7 1 2 3 9 8 7 1 0 0 5\n",
        "line 12: it has more than 10 values, and its header 10");
    // A reference in front of the beginning.
    std::string damaged = packed;
    damaged[PcdHeader("binary_compressed").size() + 8] = '\x20';
    has(damaged, "damaged");
}

TEST(PcdCloud, AViewpointOfItsOwnIsTold) {
    std::string file = PcdHeader("ascii", "1") + "7 1 2 3 9 8 7 1 0 0\n";
    EXPECT_FALSE(Carried(file, "a.pcd").Facts.HasViewpoint);
    file.replace(file.find("VIEWPOINT 0"), 11, "VIEWPOINT 5");
    EXPECT_TRUE(Carried(file, "a.pcd").Facts.HasViewpoint);
}

// --- LZF --------------------------------------------------------------------------------------------------

std::string LzfText(const std::string& packed, std::uint64_t most, bool& good) {
    std::string text;
    std::size_t at = 0;
    const auto next = [&] {
        return at < packed.size() ? static_cast<int>(static_cast<unsigned char>(packed[at++])) : -1;
    };
    good = LzfDecode(next, most, [&text](std::string_view bytes) { text += bytes; });
    return text;
}

TEST(Lzf, AReferenceMayReachIntoWhatItGives) {
    bool good = false;
    // "ab", then 2 + 7 + 3 bytes from 2 back.
    EXPECT_EQ(LzfText(std::string("\1ab\xE0\3\1", 6), 100, good),
              "ab"
              "abababababab");
    EXPECT_TRUE(good);
    LzfText(std::string("\1ab\xE0\3\1", 6), 13, good);
    EXPECT_FALSE(good) << "more than is wanted";
    for (std::size_t length = 1; length < 6; ++length) {
        LzfText(std::string("\1ab\xE0\3\1", 6).substr(0, length), 100, good);
        EXPECT_EQ(good, length == 3) << length;
    }
    LzfText(std::string("\1ab\x20\2", 5), 100, good);
    EXPECT_FALSE(good) << "in front of the beginning";
}

TEST(Lzf, WhatIsEncodedIsDecodedToItself) {
    std::mt19937 random(7);
    for (const int letters : {1, 2, 20, 256}) {
        for (const std::size_t size : {0U, 1U, 2U, 3U, 33U, 300U, 9000U, 700000U}) {
            std::string text;
            for (std::size_t i = 0; i < size; ++i)
                text += static_cast<char>(random() % static_cast<unsigned>(letters));
            // Far repetitions too.
            if (size > 20000) text += text.substr(0, 20000) + text.substr(size - 8300, 200);
            std::string packed;
            LzfEncode(text, packed);
            bool good = false;
            EXPECT_EQ(LzfText(packed, text.size(), good), text) << letters << " " << size;
            EXPECT_TRUE(good);
            EXPECT_EQ(Decoded(packed), text);
            EXPECT_LE(packed.size(), text.size() + text.size() / 32 + 1);
            if (letters == 1 && size > 1000) {
                EXPECT_LT(packed.size(), text.size() / 50);
            }
        }
    }
}

}  // namespace
