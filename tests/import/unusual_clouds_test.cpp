// Clouds whose numbers, names and characters are of kinds that few files have.
#include <sys/resource.h>

#include <cmath>
#include <cstdio>
#include <limits>

#include "import/cloud_bytes.h"
#include "import/cloud_spool.h"
#include "import/cloud_table.h"
#include "import/table_reader.h"

using namespace corvinade;

namespace {

// --- Numbers of every type --------------------------------------------------------------------------------

std::string PlyOf(const std::string& format, const std::array<std::string, 3>& types,
                  const std::string& records, const std::string& normals = "") {
    return "ply\nformat " + format + " 1.0\nelement vertex 1\nproperty " + types[0] + " x\nproperty " +
           types[1] + " y\nproperty " + types[2] + " z\n" + normals + "end_header\n" + records;
}

template <class T>
void ExpectReadAs(const std::string& type, T x, T y, T z) {
    for (const bool big : {false, true}) {
        const CloudRun run =
            ReadThrough(PlyOf(big ? "binary_big_endian" : "binary_little_endian", {type, type, type},
                              Packed(x, big) + Packed(y, big) + Packed(z, big)),
                        "a.ply");
        ASSERT_EQ(run.Error, "") << type;
        ASSERT_EQ(run.Points.size(), 1U) << type;
        EXPECT_EQ(run.Points[0].At, (std::array<double, 3>{static_cast<double>(x), static_cast<double>(y),
                                                           static_cast<double>(z)}))
            << type << (big ? ", big" : ", little");
    }
}

TEST(UnusualClouds, BinaryCoordinatesAreReadFromEveryType) {
    ExpectReadAs<std::int8_t>("char", -128, 127, -1);
    ExpectReadAs<std::uint8_t>("uchar", 0, 255, 128);
    ExpectReadAs<std::int16_t>("short", -32768, 32767, -2);
    ExpectReadAs<std::uint16_t>("ushort", 0, 65535, 32768);
    ExpectReadAs<std::int32_t>("int", -2147483647 - 1, 2147483647, -3);
    ExpectReadAs<std::uint32_t>("uint", 0, 4294967295U, 2147483648U);
    ExpectReadAs<float>("float", -0.5F, 0x1p100F, 0x1p-100F);
    ExpectReadAs<double>("double", -0.1, 1e300, 5e-324);
}

TEST(UnusualClouds, PcdHasWholeNumbersOf64Bits) {
    const auto file = [](const std::string& type, const std::string& records) {
        return "VERSION 0.7\nFIELDS x y z\nSIZE 8 8 8\nTYPE " + type + " " + type + " " + type +
               "\nCOUNT 1 1 1\nWIDTH 1\nHEIGHT 1\nPOINTS 1\nDATA binary\n" + records;
    };
    const CloudRun whole = ReadThrough(file("I", Packed<std::int64_t>(-4503599627370496) +
                                                     Packed<std::int64_t>(-1) + Packed<std::int64_t>(7)),
                                       "a.pcd");
    ASSERT_EQ(whole.Points.size(), 1U) << whole.Error;
    EXPECT_EQ(whole.Points[0].At, (std::array<double, 3>{-4503599627370496.0, -1, 7}));
    const CloudRun natural = ReadThrough(file("U", Packed<std::uint64_t>(9223372036854775808U) +
                                                       Packed<std::uint64_t>(1) + Packed<std::uint64_t>(0)),
                                         "a.pcd");
    ASSERT_EQ(natural.Points.size(), 1U) << natural.Error;
    EXPECT_EQ(natural.Points[0].At, (std::array<double, 3>{9223372036854775808.0, 1, 0}));
}

// X = 0.8 x - 0.6 y + 10, Y = 0.6 x + 0.8 y + 20, Z = z + 30
TEST(UnusualClouds, CoordinatesOfDifferentTypesKeepTheirs) {
    for (const bool big : {false, true}) {
        const std::string format = big ? "binary_big_endian" : "binary_little_endian";
        const std::array<std::string, 3> types = {"float", "double", "float"};
        const std::string head = PlyOf(format, types, "");
        const CloudRun run =
            Carried(head + Packed(5.0F, big) + Packed(10.0, big) + Packed(-7.0F, big), "a.ply");
        ASSERT_EQ(run.Error, "");
        EXPECT_EQ(run.Facts.Points, 1);
        ASSERT_EQ(run.Out.size(), head.size() + 16);
        EXPECT_EQ(run.Out.substr(0, head.size()), head);
        std::string y = run.Out.substr(head.size() + 4, 8);
        if (big) std::reverse(y.begin(), y.end());
        double value = 0;
        std::memcpy(&value, y.data(), 8);
        EXPECT_EQ(run.Out.substr(head.size(), 4), Packed(8.0F, big));
        EXPECT_NEAR(value, 31, 1e-14);
        EXPECT_EQ(run.Out.substr(head.size() + 12), Packed(23.0F, big));
        // One that is no number leaves the point as it is.
        const std::string none = head + Packed(5.0F, big) +
                                 Packed(std::numeric_limits<double>::quiet_NaN(), big) + Packed(-7.0F, big);
        const CloudRun kept = Carried(none, "a.ply");
        EXPECT_TRUE(kept.Out == none);
        EXPECT_EQ(kept.Facts.NotFinite, 1);
        EXPECT_EQ(kept.Facts.Points, 0);
        // What 32 bits cannot hold is refused.
        EXPECT_NE(Carried(head + Packed(3e38F, big) + Packed(-1e39, big) + Packed(0.0F, big), "a.ply")
                      .Error.find("point 1 is larger than any number"),
                  std::string::npos);
    }
}

TEST(UnusualClouds, NormalsOfDoublesTurnAndWholeOnesAreRefused) {
    const auto normals = [](const std::string& type) {
        return "property " + type + " nx\nproperty " + type + " ny\nproperty " + type + " nz\n";
    };
    const std::array<std::string, 3> types = {"float", "float", "float"};
    const std::string point = Packed(0.0F) + Packed(0.0F) + Packed(0.0F),
                      head = PlyOf("binary_little_endian", types, "", normals("double"));
    const CloudRun run = Carried(head + point + Packed(1.0) + Packed(0.0) + Packed(0.0), "a.ply");
    ASSERT_EQ(run.Error, "");
    EXPECT_TRUE(run.Out == head + Packed(10.0F) + Packed(20.0F) + Packed(30.0F) + Packed(0.8) + Packed(0.6) +
                               Packed(0.0));
    EXPECT_NE(Carried(PlyOf("binary_little_endian", types, "", normals("char")) + point + "abc", "a.ply")
                  .Error.find("its normals are of a whole-number type"),
              std::string::npos);
}

// --- Characters -------------------------------------------------------------------------------------------

// Code points in UTF-16 behind its mark, by its description.
std::string Utf16Of(const std::u32string& text, bool big) {
    std::string bytes = big ? "\xFE\xFF" : "\xFF\xFE";
    const auto put = [&](char32_t unit) { bytes += Packed(static_cast<std::uint16_t>(unit), big); };
    for (const char32_t c : text) {
        if (c < 0x10000) {
            put(c);
        } else {
            put(0xD800 + (c - 0x10000) / 1024);
            put(0xDC00 + (c - 0x10000) % 1024);
        }
    }
    return bytes;
}

// A name of two, three and four bytes in UTF-8.
const std::u32string kName = U"\u00E4\u20AC\U0001F600\U0010FFFF";
const std::string kNameUtf8 = "\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80\xF4\x8F\xBF\xBF";

TEST(UnusualClouds, EveryCharacterOfUtf16ComesBack) {
    const std::u32string heading = U"Name;X;Y;Z\n";
    for (const bool big : {false, true}) {
        const std::string before = Utf16Of(heading + kName + U";1;2;3\nB;-5;10;0\n", big),
                          after = Utf16Of(heading + kName + U";9.600;22.200;33.000\nB;0.000;25.000;30.000\n",
                                          big);
        for (const std::size_t most : {1U << 20U, 1U, 3U})
            EXPECT_TRUE(RunThrough(before, "a.csv", &CloudTurn(), {}, most).Out == after) << most;
        const CloudRun read = ReadThrough(before, "a.csv");
        ASSERT_EQ(read.Points.size(), 2U) << read.Error;
        EXPECT_EQ(read.Points[0].Name, kNameUtf8);
        // A character of which half is missing at the end of the file.
        EXPECT_NE(ReadThrough(before.substr(0, before.size() - 1), "a.csv")
                      .Error.find("its UTF-16 ends within a character"),
                  std::string::npos);
    }
}

TEST(UnusualClouds, ATableHasTheSameCharactersAndNoHalvesOfThem) {
    for (const bool big : {false, true}) {
        const TableResult whole = ReadTable(Utf16Of(kName + U";1;2;3\nB;-5;10;0\n", big), "a.csv", {});
        ASSERT_EQ(whole.Points.Count(), 2) << whole.Refusal.Text;
        EXPECT_EQ(whole.Points.Name[1], kNameUtf8);
        // A first half with another character behind it, and a second half alone.
        for (const char32_t half : {char32_t{0xD83D}, char32_t{0xDE00}}) {
            const TableResult torn = ReadTable(
                Utf16Of(U"a" + std::u32string(1, half) + U"b;1;2;3\nB;-5;10;0\n", big), "a.csv", {});
            ASSERT_EQ(torn.Points.Count(), 2) << torn.Refusal.Text;
            EXPECT_EQ(torn.Points.Name[1],
                      "a\xEF\xBF\xBD"
                      "b");
        }
    }
}

// --- LandXML ----------------------------------------------------------------------------------------------

std::string LandXmlOf(const std::string& points) {
    return "<?xml version=\"1.0\"?>\n<LandXML>\n<Units><Metric linearUnit=\"millimeter\"/></Units>\n"
           "<CgPoints>\n" +
           points + "</CgPoints>\n</LandXML>\n";
}

TEST(UnusualClouds, NamesOfLandXmlHaveTheCharactersThatTheirNumbersTell) {
    const std::vector<std::array<std::string, 2>> names = {
        {"&#65;&#x42;&#X43;", "ABC"},
        {"&#228;&#x20AC;&#x1F600;&#1114111;", kNameUtf8},
        {"&lt;&gt;&quot;&apos;&amp;", "<>\"'&"},
        {"a&b", "a&b"},
        {"a&#x110000;b&none;c", "abc"},
    };
    for (const auto& [given, name] : names) {
        const CloudRun run =
            ReadThrough(LandXmlOf("<CgPoint name=\"" + given + "\">2 1 3</CgPoint>\n"), "a.xml");
        ASSERT_EQ(run.Points.size(), 1U) << run.Error;
        EXPECT_EQ(run.Points[0].Name, name) << given;
    }
}

TEST(UnusualClouds, PointsOfLandXmlThatAreNoNumbersStayAndTooLargeOnesAreRefused) {
    const std::string points =
        "<CgPoint name=\"A\">2 1 3</CgPoint>\n<CgPoint name=\"B\">NaN 1 3</CgPoint>\n"
        "<CgPoint name=\"C\">1 2 3 4</CgPoint>\n<CgPoint name=\"D\">1 2 drei</CgPoint>\n";
    const CloudRun run = Carried(LandXmlOf(points), "a.xml");
    EXPECT_EQ(run.Error, "");
    std::string expected = points;
    expected.replace(expected.find("2 1 3"), 5, "22.200 9.600 33.000");
    EXPECT_EQ(run.Out, LandXmlOf(expected));
    EXPECT_EQ(run.Facts.Points, 1);
    EXPECT_EQ(run.Facts.NotFinite, 1);
    EXPECT_EQ(run.Facts.FirstNotFinite, 6);
    EXPECT_NE(Carried(LandXmlOf("<CgPoint name=\"A\">1e400 1 3</CgPoint>\n"), "a.xml")
                  .Error.find("line 5: \"1e400\" is beyond what a number can hold"),
              std::string::npos);
    EXPECT_NE(Carried(LandXmlOf("<CgPoint name=\"A\">1.7e308 -1.7e308 3</CgPoint>\n"), "a.xml")
                  .Error.find("line 5: the transformed point is larger than any number can be"),
              std::string::npos);
}

TEST(UnusualClouds, ARowOfTextThatTheMotionMakesTooLargeIsRefused) {
    const CloudRun run = Carried("A;1;2;3\nB;1.7e308;-1.7e308;3\n", "a.csv");
    EXPECT_NE(run.Error.find("line 2: the transformed point is larger than any number can be"),
              std::string::npos)
        << run.Error;
}

// The motion is in mm: x' = 0.8 x - 0.6 y + 10 mm, and so on.
TEST(UnusualClouds, CoordinatesOfEveryUnitAreCarriedToAThousandthOfAMillimetre) {
    const std::vector<std::pair<std::string, double>> units = {
        {"mm", 1}, {"cm", 10}, {"m", 1000}, {"km", 1e6}, {"in", 25.4}, {"ft", 304.8}, {"ftUS", 1.2e6 / 3937}};
    for (const auto& [unit, mm] : units) {
        CloudWish wish;
        wish.Unit = unit;
        const CloudRun run = Carried("1 2 3\n", "a.xyz", wish);
        ASSERT_EQ(run.Error, "") << unit;
        std::array<double, 3> shown{};
        ASSERT_EQ(std::sscanf(run.Out.c_str(), "%lf %lf %lf", &shown[0], &shown[1], &shown[2]), 3) << run.Out;
        const std::array<double, 3> expected = {0.8 - 1.2 + 10 / mm, 0.6 + 1.6 + 20 / mm, 3 + 30 / mm};
        // Half a last place, which is a power of ten of the unit next to a thousandth of a millimetre.
        for (std::size_t i = 0; i < 3; ++i)
            EXPECT_LE(std::fabs(shown[i] - expected[i]) * mm, 0.0005 * std::sqrt(10) * 1.000001)
                << unit << run.Out;
    }
}

// --- Forms ------------------------------------------------------------------------------------------------

TEST(UnusualClouds, ElementsWithoutPropertiesTakeNoBytes) {
    const std::string xyz = "property float x\nproperty float y\nproperty float z\n";
    const std::string head = "ply\nformat binary_little_endian 1.0\nelement nothing 7\nelement vertex 1\n" +
                             xyz + "element more 3\nend_header\n";
    const CloudRun run = Carried(head + Packed(5.0F) + Packed(10.0F) + Packed(-7.0F), "a.ply");
    EXPECT_EQ(run.Error, "");
    EXPECT_TRUE(run.Out == head + Packed(8.0F) + Packed(31.0F) + Packed(23.0F));
}

TEST(UnusualClouds, EmptyLinesStayWhereTheyAre) {
    const std::string ply =
        "ply\nformat ascii 1.0\nelement vertex 1\nproperty float x\nproperty float y\n"
        "property float z\nend_header\n";
    EXPECT_EQ(Carried(ply + "5 10 -7\n \n\r\n", "a.ply").Out, ply + "8.000 31.000 23.000\n \n\r\n");
    const std::string pcd =
        "VERSION 0.7\nFIELDS x y z\nSIZE 4 4 4\nTYPE F F F\nCOUNT 1 1 1\nWIDTH 2\nHEIGHT 1\n"
        "POINTS 2\nDATA ascii\n";
    EXPECT_EQ(Carried(pcd + "5 10 -7\n\n  \n5 10 -7\n", "a.pcd").Out,
              pcd + "8.000 31.000 23.000\n\n  \n8.000 31.000 23.000\n");
}

TEST(UnusualClouds, APcdWhoseSidesMultiplyToMoreThanThereCanBeIsRefused) {
    const CloudRun run = Carried(
        "VERSION 0.7\nFIELDS x y z\nSIZE 4 4 4\nTYPE F F F\nCOUNT 1 1 1\nWIDTH 4000000000\n"
        "HEIGHT 4000000000\nDATA binary\n",
        "a.pcd");
    EXPECT_NE(run.Error.find("too many points"), std::string::npos) << run.Error;
}

TEST(UnusualClouds, ANormalThatThirtyTwoBitsCannotHoldIsRefused) {
    const std::array<std::string, 3> types = {"float", "float", "float"};
    const std::string head =
        PlyOf("binary_little_endian", types, "", "property float nx\nproperty float ny\nproperty float nz\n");
    // 0.8 * 3e38 + 0.6 * 3e38
    EXPECT_NE(Carried(head + Packed(0.0F) + Packed(0.0F) + Packed(0.0F) + Packed(3e38F) + Packed(-3e38F) +
                          Packed(0.0F),
                      "a.ply")
                  .Error.find("point 1 is larger than any number"),
              std::string::npos);
}

using LargeTables = Program;

// Only the first megabyte is looked at: it says the same of a table that is longer.
TEST_F(LargeTables, TheBeginningOfALongOneSaysWhatAShortOneDoes) {
    const auto columns = [this](std::string text, std::size_t size, const std::string& gap) {
        const std::string row = gap + "-123.5" + gap + "7" + gap + "8.25\n";
        for (int i = 0; i < 5 || text.size() < size; ++i) text += "P" + std::to_string(i) + row;
        return ColumnsOfTableAlone(Write("table.csv", text), {});
    };
    for (const std::size_t size : {std::size_t{0}, std::size_t{3} << 19U}) {
        EXPECT_EQ(columns("Name|Y|X|Z\n", size, "|"), "name,y,x,z");
        EXPECT_EQ(columns("Name;Y;X;Z\n", size, ";"), "name,y,x,z");
        EXPECT_EQ(columns("", size, ";"), std::nullopt) << "a plain one";
    }
}

TEST_F(LargeTables, AMarkOfInchesIsNoQuote) {
    const auto columns = [this](const std::string& first) {
        return ColumnsOfTableAlone(Write("table.csv", first + ";1;2;3\nB;4;5;6\nC;7;8;10\n"), {});
    };
    EXPECT_EQ(columns("5\" pipe"), std::nullopt) << "a plain one";
    EXPECT_EQ(columns("\"5 pipe\""), "name,x,y,z");
}

// --- Temporary files --------------------------------------------------------------------------------------

TEST(CloudSpools, GiveBackWhatStandsBehindAGibibyte) {
    CloudSpool spool;
    const std::uint64_t far = (std::uint64_t{3} << 30U) + 5;
    spool.WriteAt(far, "far");  // what is in front of it takes no room
    spool.WriteAt(7, "near");
    std::string bytes(3, ' ');
    spool.ReadAt(far, bytes);
    EXPECT_EQ(bytes, "far");
    bytes.resize(4);
    spool.ReadAt(7, bytes);
    EXPECT_EQ(bytes, "near");
    EXPECT_NE(ErrorOf([&] { spool.ReadAt(far, bytes); }).find("Cannot read a temporary file"),
              std::string::npos)
        << "one byte more than there is";
}

TEST(CloudSpools, WithoutAHandleForAFileSaySo) {
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
    rlimit none = before;
    none.rlim_cur = 0;
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    const std::string error = ErrorOf([] { const CloudSpool spool; });
    setrlimit(RLIMIT_NOFILE, &before);
    EXPECT_EQ(error, "Cannot make a temporary file: Too many open files");
}

}  // namespace
