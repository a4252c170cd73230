// PLY files, written here byte by byte.
#include <cmath>
#include <limits>
#include <random>

#include "import/cloud_bytes.h"

using namespace corvinade;

namespace {

struct Vertex {
    double X, Y, Z, NX, NY, NZ;
    int Red;
};
const std::vector<Vertex> kVerticesBefore = {{1, 2, 3, 1, 0, 0, 7}, {-5, 10, 0, 0, 0, -1, 255}};
// X = 0.8 x - 0.6 y + 10, Y = 0.6 x + 0.8 y + 20, Z = z + 30
const std::vector<Vertex> kVerticesAfter = {{9.6, 22.2, 33, 0.8, 0.6, 0, 7}, {0, 25, 30, 0, 0, -1, 255}};

const std::string kElements =
    "comment made by hand\nobj_info of a scanner\nelement camera 1\nproperty list uchar short ids\n"
    "property double focus\nelement vertex 2\nproperty uchar red\nproperty TYPE x\nproperty TYPE y\n"
    "property TYPE z\nproperty float nx\nproperty float ny\nproperty float nz\n"
    "element face 2\nproperty list uchar int vertex_indices\nproperty float quality\nend_header\n";

std::string PlyHeader(const std::string& format, const std::string& type) {
    std::string text = "ply\nformat " + format + " 1.0\n" + kElements;
    for (std::size_t at = 0; (at = text.find("TYPE")) != std::string::npos;) text.replace(at, 4, type);
    return text;
}

template <class T>
std::string Binary(const std::vector<Vertex>& vertices, bool big) {
    std::string bytes =
        PlyHeader(big ? "binary_big_endian" : "binary_little_endian", sizeof(T) == 4 ? "float" : "float64");
    bytes += '\2' + Packed<std::int16_t>(7, big) + Packed<std::int16_t>(-8, big) + Packed(3.5, big);
    for (const Vertex& v : vertices) {
        bytes += static_cast<char>(v.Red);
        for (const double value : {v.X, v.Y, v.Z}) bytes += Packed(static_cast<T>(value), big);
        for (const double value : {v.NX, v.NY, v.NZ}) bytes += Packed(static_cast<float>(value), big);
    }
    bytes += '\3' + Packed(0, big) + Packed(1, big) + Packed(0, big) + Packed(0.5F, big);
    bytes += '\0' + Packed(1.5F, big);
    return bytes;
}

TEST(PlyCloud, BinaryKeepsEverythingButPointsAndNormals) {
    for (const bool big : {false, true}) {
        EXPECT_EQ(Carried(Binary<float>(kVerticesBefore, big), "a.ply").Out,
                  Binary<float>(kVerticesAfter, big));
        const CloudRun run = Carried(Binary<double>(kVerticesBefore, big), "a");
        EXPECT_EQ(run.Error, "");
        EXPECT_EQ(run.Facts.Points, 2);
        EXPECT_EQ(run.Out.size(), Binary<double>(kVerticesAfter, big).size());
        // In doubles 0.8 x - 0.6 y is off by its rounding: the way back is nearer than that.
        const std::string expected = Binary<double>(kVerticesAfter, big);
        const std::size_t vertices = expected.find("end_header\n") + 11 + 5 + 8;
        for (std::size_t i = 0; i < expected.size(); ++i)
            if (i < vertices || i >= vertices + 2 * 37) {
                EXPECT_EQ(run.Out[i], expected[i]) << i;
            }
        for (std::size_t k = 0; k < 3; ++k) {
            std::string bytes = run.Out.substr(vertices + 1 + 8 * k, 8);
            if (big) std::reverse(bytes.begin(), bytes.end());
            double value = 0;
            std::memcpy(&value, bytes.data(), 8);
            EXPECT_NEAR(value, (std::array<double, 3>{9.6, 22.2, 33}[k]), 1e-14);
        }
    }
}

TEST(PlyCloud, AFileThatComesByteByByteGivesTheSame) {
    for (const std::size_t most : {1U, 7U, 4096U})
        EXPECT_EQ(RunThrough(Binary<float>(kVerticesBefore, true), "a.ply", &CloudTurn(), {}, most).Out,
                  Binary<float>(kVerticesAfter, true));
}

TEST(PlyCloud, TextKeepsLinesAndColumns) {
    const std::string before = PlyHeader("ascii", "float") +
                               "2 7 -8 3.5\n7 1 2 3 1 0 0\n\n255  -5\t10.0 0 0 0 -1 \r\n3 0 1 0 .5\n0 1.5";
    const std::string after = PlyHeader("ascii", "float") +
                              "2 7 -8 3.5\n7 9.600 22.200 33.000 0.800000 0.600000 0.000000\n\n"
                              "255  0.000\t25.000 30.000 0.000000 0.000000 -1.000000 \r\n3 0 1 0 .5\n0 1.5";
    EXPECT_EQ(Carried(before, "a.ply").Out, after);
    CloudWish wish;
    wish.Digits = 1;
    EXPECT_NE(Carried(before, "a.ply", wish).Out.find("\n7 9.6 22.2 33.0 0.8"), std::string::npos);
}

TEST(PlyCloud, LinesMayEndInReturns) {
    const auto returns = [](std::string text, const std::string& end) {
        for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos; at += end.size())
            text.replace(at, 1, end);
        return text;
    };
    const std::string head =
        "ply\nformat ascii 1.0\nelement vertex 1\nproperty float x\nproperty float y\nproperty float z\nend_header\n";
    for (const std::string end : {"\r", "\r\n"})
        EXPECT_EQ(Carried(returns(head + "1 2 3\n", end), "a.ply").Out,
                  returns(head + "9.600 22.200 33.000\n", end));
}

TEST(PlyCloud, ListsOfAVertexMoveWhatStandsBehindThem) {
    const std::string head =
        "element vertex 2\nproperty list uchar float tags\nproperty float x\nproperty float y\n"
        "property float z\nend_header\n";
    EXPECT_EQ(Carried("ply\nformat ascii 1.0\n" + head + "2 8 9 1 2 3\n0 -5 10 0\n", "a.ply").Out,
              "ply\nformat ascii 1.0\n" + head + "2 8 9 9.600 22.200 33.000\n0 0.000 25.000 30.000\n");
    const auto binary = [&head](const std::vector<Vertex>& vertices) {
        std::string bytes = "ply\nformat binary_little_endian 1.0\n" + head;
        char count = 2;
        for (const Vertex& v : vertices) {
            bytes += count;
            for (char i = 0; i < count; ++i) bytes += Packed(8.5F);
            for (const double value : {v.X, v.Y, v.Z}) bytes += Packed(static_cast<float>(value));
            count = 0;
        }
        return bytes;
    };
    EXPECT_EQ(Carried(binary(kVerticesBefore), "a.ply").Out, binary(kVerticesAfter));
}

TEST(PlyCloud, NormalsOfFacesTurnToo) {
    const auto file = [](const std::string& rows) {
        return "ply\nformat ascii 1.0\nelement vertex 1\nproperty float x\nproperty float y\nproperty float "
               "z\nelement face 1\nproperty float nx\nproperty float ny\nproperty float nz\nproperty list "
               "uchar int vertex_indices\nend_header\n" +
               rows;
    };
    EXPECT_EQ(Carried(file("1 2 3\n1 0 0 3 0 0 0\n"), "a.ply").Out,
              file("9.600 22.200 33.000\n0.800000 0.600000 0.000000 3 0 0 0\n"));
}

TEST(PlyCloud, ItsPointsAreNumbered) {
    for (const std::string& bytes :
         {Binary<float>(kVerticesBefore, false), Binary<double>(kVerticesBefore, true)}) {
        const CloudRun run = ReadThrough(bytes, "a.ply");
        ASSERT_EQ(run.Points.size(), 2U) << run.Error;
        EXPECT_EQ(run.Points[1].At, (std::array<double, 3>{-5, 10, 0}));
        EXPECT_EQ(run.Points[1].Name, "");
        EXPECT_EQ(run.Out, "");
    }
}

TEST(PlyCloud, PointsThatAreNoNumbersStayBitByBit) {
    const float nan = std::numeric_limits<float>::quiet_NaN(), inf = std::numeric_limits<float>::infinity();
    const std::string head =
        "ply\nformat binary_little_endian 1.0\nelement vertex 3\nproperty float x\nproperty float y\nproperty "
        "float z\nend_header\n";
    const auto file = [&head, nan, inf](float x, float y, float z) {
        return head + Packed(nan) + Packed(1.0F) + Packed(2.0F) + Packed(x) + Packed(y) + Packed(z) +
               Packed(1.0F) + Packed(-inf) + Packed(2.0F);
    };
    const CloudRun run = Carried(file(1, 2, 3), "a.ply");
    EXPECT_EQ(run.Out, file(9.6F, 22.2F, 33));
    EXPECT_EQ(run.Facts.NotFinite, 2);
    EXPECT_EQ(run.Facts.FirstNotFinite, 1);
    const std::string text =
        "ply\nformat ascii 1.0\nelement vertex 2\nproperty float x\nproperty float y\nproperty float "
        "z\nend_header\n";
    EXPECT_EQ(Carried(text + "nan 1 2\n1 2 3\n", "a.ply").Out, text + "nan 1 2\n9.600 22.200 33.000\n");
}

template <class T>
void ExpectManyPointsCarried(bool big) {
    constexpr int kPoints = 1500;
    std::mt19937 random(3);
    const std::string head = std::string("ply\nformat binary_") + (big ? "big" : "little") +
                             "_endian 1.0\nelement vertex 1500\nproperty uchar red\n" +
                             (sizeof(T) == 4 ? "property float x\nproperty float y\nproperty float z\n"
                                             : "property double x\nproperty double y\nproperty double z\n") +
                             "end_header\n";
    std::string before = head, after = head;
    int notFinite = 0, first = 0;
    double largestIn = 0, largestOut = 0;
    for (int i = 1; i <= kPoints; ++i) {
        std::array<T, 3> p{};
        for (T& value : p) value = static_cast<T>((static_cast<double>(random()) / 4e9 - 0.5) * 1e6);
        // The first and the last of a stretch, and a stretch without any.
        if (i == 257 || i == 512 || i == 1024 || i == kPoints) p[1] = std::numeric_limits<T>::quiet_NaN();
        if (i == 700) p[2] = -std::numeric_limits<T>::infinity();
        const bool finite = std::isfinite(p[0]) && std::isfinite(p[1]) && std::isfinite(p[2]);
        notFinite += finite ? 0 : 1;
        if (!finite && first == 0) first = i;
        const double x = p[0], y = p[1], z = p[2];
        const std::array<double, 3> q = {0.8 * x + -0.6 * y + 0 * z + 10, 0.6 * x + 0.8 * y + 0 * z + 20,
                                         0 * x + 0 * y + 1 * z + 30};
        before += static_cast<char>(i);
        after += static_cast<char>(i);
        for (std::size_t k = 0; k < 3; ++k) {
            before += Packed(p[k], big);
            after += Packed(finite ? static_cast<T>(q[k]) : p[k], big);
            if (!finite || sizeof(T) != 4) continue;
            largestIn = std::max(largestIn, std::fabs(static_cast<double>(p[k])));
            largestOut = std::max(largestOut, std::fabs(q[k]));
        }
    }
    const CloudRun run = Carried(before, "a.ply");
    EXPECT_TRUE(run.Out == after);
    EXPECT_EQ(run.Facts.Points, kPoints - notFinite);
    EXPECT_EQ(run.Facts.NotFinite, notFinite);
    EXPECT_EQ(run.Facts.FirstNotFinite, first);
    EXPECT_EQ(run.Facts.LargestIn, largestIn);
    EXPECT_EQ(run.Facts.LargestOut, largestOut);
}

TEST(PlyCloud, ManyPointsGoTheSameWayWhereverSomeAreNoNumbers) {
    for (const bool big : {false, true}) {
        ExpectManyPointsCarried<float>(big);
        ExpectManyPointsCarried<double>(big);
    }
}

TEST(PlyCloud, AMotionBeyondThirtyTwoBitsNamesThePoint) {
    std::string bytes =
        "ply\nformat binary_little_endian 1.0\nelement vertex 400\nproperty float x\nproperty float y\n"
        "property float z\nend_header\n";
    for (int i = 1; i <= 400; ++i)
        for (int k = 0; k < 3; ++k) bytes += Packed(i == 300 ? 3.4e38F : 1.0F);
    EXPECT_NE(Carried(bytes, "a.ply").Error.find("transformed point 300 is larger"), std::string::npos);
}

// --- Damage -----------------------------------------------------------------------------------------------

std::string Refusal(const std::string& body, const std::string& format = "ascii") {
    const CloudRun run = Carried("ply\nformat " + format + " 1.0\n" + body, "a.ply");
    EXPECT_TRUE(run.Error.starts_with("Cannot read \"a.ply\"")) << run.Error;
    return run.Error;
}

const std::string kXyz = "property float x\nproperty float y\nproperty float z\n";

TEST(PlyCloud, DamagedHeadersAreRefusedWithTheirLine) {
    EXPECT_NE(Refusal("element vertex 1\n" + kXyz).find("its header has no end"), std::string::npos);
    EXPECT_NE(Refusal("element vertex -1\n").find("line 3: \"-1\" is no count"), std::string::npos);
    EXPECT_NE(Refusal("element vertex 99999999999999999999\n").find("is no count"), std::string::npos);
    EXPECT_NE(Refusal("property float x\n").find("in front of all elements"), std::string::npos);
    EXPECT_NE(Refusal("element vertex 1\nproperty half x\n").find("line 4: \"half\" is no type"),
              std::string::npos);
    EXPECT_NE(Refusal("element vertex 1\nproperty float x\nproperty float x\n").find("stands twice"),
              std::string::npos);
    EXPECT_NE(Refusal("element vertex 1\nproperty list float int x\n").find("no whole number"),
              std::string::npos);
    EXPECT_NE(Refusal("element face 0\nend_header\n").find("no element \"vertex\""), std::string::npos);
    EXPECT_NE(Refusal("element vertex 0\nproperty float x\nend_header\n").find("no properties x, y and z"),
              std::string::npos);
    EXPECT_NE(Refusal("", "binary_middle_endian").find("is no format"), std::string::npos);
    EXPECT_NE(Refusal("element vertex 0\n" + kXyz + "end_header\n").find("there is no point in it"),
              std::string::npos);
    EXPECT_NE(Carried("plx\n", "a.ply").Error.find("does not begin"), std::string::npos);
    EXPECT_NE(Carried("", "a.ply").Error.find("it is empty"), std::string::npos);
    EXPECT_NE(Carried("ply\ncomment " + std::string(3 << 20, 'x') + "\n", "a.ply").Error.find("no end"),
              std::string::npos);
}

TEST(PlyCloud, WhatIsCutOffIsRefused) {
    const std::string whole = Binary<float>(kVerticesBefore, false);
    for (std::size_t length = 3; length < whole.size(); ++length)
        EXPECT_TRUE(Carried(whole.substr(0, length), "a.ply").Error.starts_with("Cannot read \"a.ply\""))
            << length;
    EXPECT_NE(Carried(whole.substr(0, whole.size() - 1), "a.ply")
                  .Error.find("it is cut off: 1 of 2 of its element \"face\" are there"),
              std::string::npos);
    EXPECT_NE(Refusal("element vertex 1000000000000000000\n" + kXyz + "end_header\n" + Packed(1.0F),
                      "binary_little_endian")
                  .find("0 of 1000000000000000000"),
              std::string::npos);
    EXPECT_NE(
        Refusal("element vertex 1000000000000000000\n" + kXyz + "end_header\n1 2 3\n").find("1 of 1000"),
        std::string::npos);
    EXPECT_NE(Refusal("element vertex 1\n" + kXyz + "end_header\n1 2\n").find("line 8: it has 2 values"),
              std::string::npos);
    EXPECT_NE(Refusal("element vertex 1\n" + kXyz + "end_header\n1 2 x\n").find("line 8: it holds no three"),
              std::string::npos);
}

TEST(PlyCloud, MoreThanTheHeaderCountsIsRefused) {
    EXPECT_NE(Refusal("element vertex 1\n" + kXyz + "end_header\n1 2 3\n4 5 6\n").find("line 9: more stands"),
              std::string::npos);
    EXPECT_NE(
        Refusal("element vertex 1\n" + kXyz + "end_header\n" + std::string(24, '\0'), "binary_little_endian")
            .find("more stands"),
        std::string::npos);
    const std::string ended = Binary<float>(kVerticesBefore, false) + "\n";
    EXPECT_EQ(Carried(ended, "a.ply").Out, Binary<float>(kVerticesAfter, false) + "\n")
        << "a line end is nothing";
}

TEST(PlyCloud, BytesThatNoRecordExplainsAreRefused) {
    const std::string head = "element vertex 2\n" + kXyz + "end_header\n";
    const std::string records = Packed(1.0F) + Packed(2.0F) + Packed(3.0F);
    // Two records of 13 bytes under a header that tells of 12: the second point stands a byte too early.
    EXPECT_NE(Refusal(head + records + "a" + records + "b", "binary_little_endian").find("more stands"),
              std::string::npos);
    for (const std::string end : {"\n", "\r\n", " "})
        EXPECT_EQ(
            ReadThrough("ply\nformat binary_little_endian 1.0\n" + head + records + records + end, "a.ply")
                .Points.size(),
            2U);
}

TEST(PlyCloud, AValueTooManyIsRefused) {
    const std::string head = "element vertex 1\n" + kXyz;
    EXPECT_NE(Refusal(head + "end_header\n1 7 2 3\n")
                  .find("line 8: it has more than 3 values, and its element 3 properties"),
              std::string::npos);
    EXPECT_NE(Refusal(head + "property list uchar int more\nend_header\n1 2 3 1 5 6\n")
                  .find("line 9: it has more values than"),
              std::string::npos);
}

TEST(PlyCloud, ASecondElementOfTheSameNameIsRefused) {
    const std::string one = "element vertex 1\n" + kXyz;
    EXPECT_NE(
        Refusal(one + one + "end_header\n1 2 3\n4 5 6\n").find("line 7: the element \"vertex\" stands twice"),
        std::string::npos);
}

TEST(PlyCloud, ListsOfNegativeAndOfHugeLengthAreRefused) {
    const std::string head = "element vertex 1\n" + kXyz +
                             "element face 1\nproperty list int int vertex_indices\nend_header\n" +
                             std::string(12, '\0');
    EXPECT_NE(Refusal(head + Packed(-3), "binary_little_endian").find("\"face\" 1 has the length -3"),
              std::string::npos);
    EXPECT_NE(Refusal(head + Packed(2000000000), "binary_little_endian").find("longer than 16 MiB"),
              std::string::npos);
    EXPECT_NE(Refusal(head + Packed(3), "binary_little_endian").find("cut off"), std::string::npos);
}

TEST(PlyCloud, WhatWouldLoseItsTypeIsRefused) {
    EXPECT_NE(Refusal("element vertex 1\nproperty int x\nproperty int y\nproperty int z\nend_header\n1 2 3\n")
                  .find("whole-number type"),
              std::string::npos);
    EXPECT_EQ(ReadThrough("ply\nformat ascii 1.0\nelement vertex 1\nproperty int x\nproperty int y\nproperty "
                          "int z\nend_header\n1 2 3\n",
                          "a.ply")
                  .Points.size(),
              1U)
        << "to be read it may have any type";
    const std::string large =
        "element vertex 1\n" + kXyz + "end_header\n" + Packed(3e38F) + Packed(-3e38F) + Packed(0.0F);
    EXPECT_NE(Refusal(large, "binary_little_endian").find("point 1 is larger than any number"),
              std::string::npos);
}

TEST(PlyCloud, ShiftsThatThirtyTwoBitsCannotHoldAreTold) {
    const CloudMotion far = *MotionOf({1, 0, 0, 0, 1, 0, 0, 0, 1}, {4e6, 0, 0});
    const std::string file = "ply\nformat binary_little_endian 1.0\nelement vertex 1\n" + kXyz +
                             "end_header\n" + Packed(1.25F) + Packed(2.0F) + Packed(3.0F);
    const CloudRun run = RunThrough(file, "a.ply", &far);
    ForgetNotes();
    NoteCloud(run.Facts, "a.ply", true);
    ASSERT_EQ(Notes.List.size(), 1U);
    EXPECT_EQ(Notes.List[0].Code, NoteCode::SingleRounded);
    ForgetNotes();
    NoteCloud(Carried(file, "a.ply").Facts, "a.ply", true);
    EXPECT_TRUE(Notes.List.empty());
}

}  // namespace
