// What is said of the columns of a cloud, numbers as files have them, and lists and ends of PLY.
#include "import/cloud_bytes.h"
#include "import/cloud_columns.h"
#include "import/cloud_rows.h"
#include "import/table_mapping.h"
#include "import/table_reader.h"

using namespace corvinade;

namespace {

TEST(ColumnWords, EachThatIsWrongIsRefusedInItsOwnWords) {
    const std::vector<std::array<std::string, 2>> rows = {
        {"name,x,y,w",
         "\"w\" is no column: name, x, y, z, X, Y, Z, nx, ny, nz, qx, qy, qz, qw, sx, sy, sz, s or -"},
        {"", "\"\" is no column: name, x, y, z, X, Y, Z, nx, ny, nz, qx, qy, qz, qw, sx, sy, sz, s or -"},
        {"x,y,z,x", "\"x\" stands twice"},
        {"name,t,x,y,z", "\"t\" stands twice"},
        {"y,z", "x, y and z are wanted among the columns"},
        {"x,z", "x, y and z are wanted among the columns"},
        {"x,y", "x, y and z are wanted among the columns"},
        {"x,y,z,nx,ny", "of nx, ny and nz all three are wanted"},
        {"x,y,z,qx,qy,qz", "of qx, qy, qz and qw all four are wanted"},
        {"x,y,z,X,Z", "of X, Y and Z all three are wanted"},
        {"x,y,z,SX,SY,SZ", "SX, SY, SZ and S go with X, Y and Z"},
        {"x,y,z,S", "SX, SY, SZ and S go with X, Y and Z"},
    };
    for (const auto& [text, expected] : rows) {
        std::string why;
        EXPECT_FALSE(ColumnsFromText(text, why)) << text;
        EXPECT_EQ(why, expected) << text;
    }
    std::string why;
    for (const char* const text :
         {"x,y,z", "-,x ,y,z", "z,y,x,-,-", "t,x,y,z,qx,qy,qz,qw,nx,ny,nz", "name,x,y,z,X,Y,Z,sx,sy,sz,S"})
        EXPECT_TRUE(ColumnsFromText(text, why)) << text << ": " << why;
}

TEST(ColumnWords, SigmasOfOneSystemAreText) {
    std::string why;
    EXPECT_EQ(ColumnsFromText("x,y,z,s", why).value(),
              (std::vector<PointColumn>{PointColumn::X, PointColumn::Y, PointColumn::Z, PointColumn::None}));
}

TEST(ColumnWords, DelimitersHaveAWordAndOthersNone) {
    EXPECT_STREQ(TableDelimiterWord('?'), "");
    for (const auto& row : TableDelimiterWords()) EXPECT_STREQ(TableDelimiterWord(row.Delimiter), row.Name);
}

TEST(ColumnWords, AHeadingMayNameSigmasByTheGreekLetter) {
    for (const std::string sigma : {"\xCF\x83", "\xCF\x82"}) {
        const TableResult table = ReadTable(
            "Name;X;Y;H\xC3\xB6he;" + sigma + "X;" + sigma + "Y;" + sigma + "Z\nA;1;2;3;0.1;0.2;0.3\n", "f",
            {});
        ASSERT_EQ(table.Points.Count(), 1) << table.Refusal.Text;
        EXPECT_EQ(table.Points.Z[1], 3);
        EXPECT_EQ(table.SX, (std::vector<double>{0, 0.1}));
        EXPECT_EQ(table.SY, (std::vector<double>{0, 0.2}));
        EXPECT_EQ(table.SZ, (std::vector<double>{0, 0.3}));
    }
}

TEST(NumbersOfFiles, AreNumbersAsTheFormatsHaveThem) {
    struct Row {
        std::string Text;
        char Decimal;
        NumberKind Kind;
        double Value;
    };
    const std::vector<Row> rows = {
        {"1", '.', NumberKind::Finite, 1},
        {" +1.5\t", '.', NumberKind::Finite, 1.5},
        {"-1,5", ',', NumberKind::Finite, -1.5},
        {"1e3", '.', NumberKind::Finite, 1000},
        {"1E+3", '.', NumberKind::Finite, 1000},
        {"-2,5e-1", ',', NumberKind::Finite, -0.25},
        {".5", '.', NumberKind::Finite, 0.5},
        {"5.", '.', NumberKind::Finite, 5},
        {"nan", '.', NumberKind::NotFinite, 0},
        {"-inf", '.', NumberKind::NotFinite, 0},
        {"1e999", '.', NumberKind::OutOfRange, 0},
        {"-1e999", '.', NumberKind::OutOfRange, 0},
        {"", '.', NumberKind::None, 0},
        {" \t ", '.', NumberKind::None, 0},
        {"+", '.', NumberKind::None, 0},
        {"-", '.', NumberKind::None, 0},
        {"+-1", '.', NumberKind::None, 0},
        {"++1", '.', NumberKind::None, 0},
        {"1,5", '.', NumberKind::None, 0},
        {"1.5", ',', NumberKind::None, 0},
        {"1.000,5", ',', NumberKind::None, 0},
        {"1 2", '.', NumberKind::None, 0},
        {"0x10", '.', NumberKind::None, 0},
        {"1e", '.', NumberKind::None, 0},
        {"abc", '.', NumberKind::None, 0},
        {"1mm", '.', NumberKind::None, 0},
    };
    for (const auto& [text, decimal, kind, value] : rows) {
        double found = 0;
        EXPECT_EQ(NumberOf(text, decimal, found), kind) << "\"" << text << "\"";
        if (kind == NumberKind::Finite) {
            EXPECT_EQ(found, value) << text;
        }
    }
}

TEST(NumbersOfFiles, HaveAsManyDecimalsAsTheyShow) {
    const std::vector<std::tuple<std::string, char, int>> rows = {
        {"1", '.', 0},      {"1.", '.', 0},      {"1.250", '.', 3}, {" 1.25 ", '.', 2}, {"1,25", ',', 2},
        {"1.5e-2", '.', 3}, {"1.25e+1", '.', 1}, {"1e3", '.', 0},   {"125E-2", '.', 2}, {"1e-12", '.', 12},
    };
    for (const auto& [text, decimal, decimals] : rows) EXPECT_EQ(DecimalsOf(text, decimal), decimals) << text;
}

TEST(NumbersOfFiles, AreWrittenWithTheirDecimalsAndNoneIsMinusNothing) {
    const std::vector<std::tuple<double, int, char, std::string>> rows = {
        {0, 3, '.', "0.000"},
        {-0.0004, 3, '.', "0.000"},
        {-0.0, 0, '.', "0"},
        {-1e-300, 12, ',', "0,000000000000"},
        {1.5, 0, '.', "2"},
        {-1234567.125, 2, ',', "-1234567,12"},
        {1e15, 1, '.', "1000000000000000.0"},
        {-1e22, 0, '.', "-10000000000000000000000"},
        {0.1, 12, '.', "0.100000000000"},
        {99.9996, 3, '.', "100.000"},
    };
    for (const auto& [value, decimals, decimal, expected] : rows) {
        std::string text = "<";
        AppendFixed(value, decimals, decimal, text);
        EXPECT_EQ(text, "<" + expected) << value;
    }
}

// --- PLY --------------------------------------------------------------------------------------------------

const std::string kXyz = "property float x\nproperty float y\nproperty float z\n";

std::string PlyText(const std::string& properties, const std::string& row) {
    return "ply\nformat ascii 1.0\nelement vertex 1\n" + properties + "end_header\n" + row + "\n";
}

TEST(ListsOfPly, OfARowOfTextMoveWhatStandsBehindThem) {
    const std::string properties = "property list uchar int more\n" + kXyz;
    for (const std::string list : {"0", "1 7", "3 7 8 9"}) {
        const CloudRun run = ReadThrough(PlyText(properties, list + " 5 10 -7"), "a.ply");
        ASSERT_EQ(run.Points.size(), 1U) << run.Error;
        EXPECT_EQ(run.Points[0].At, (std::array<double, 3>{5, 10, -7})) << list;
    }
    const std::vector<std::array<std::string, 2>> rows = {
        {"-1 5 10 -7", "line 9: \"-1\" is no length of a list"},
        {"x 5 10 -7", "line 9: \"x\" is no length of a list"},
        {"9 5 10 -7", "line 9: it has fewer values than its element has properties"},
        {"2 7 8 5 10", "line 9: it has fewer values than its element has properties"},
        {"0", "line 9: it has fewer values than its element has properties"},
        {"0 5 10 -7 4", "line 9: it has more values than its element has properties"},
        {"1 7 5 ten -7", "line 9: it holds no three numbers for x, y and z"},
    };
    for (const auto& [row, why] : rows) {
        const CloudRun run = ReadThrough(PlyText(properties, row), "a.ply");
        EXPECT_NE(run.Error.find(why), std::string::npos) << row << ": " << run.Error;
    }
}

TEST(ListsOfPly, NoCoordinateIsOne) {
    const std::string list = "property list uchar float x\nproperty float y\nproperty float z\n";
    EXPECT_NE(ReadThrough(PlyText(list, "1 5 10 -7"), "a.ply").Error, "");
}

TEST(HeadersOfPly, SayTheirFormatBeforeTheirEnd) {
    const std::vector<std::array<std::string, 2>> heads = {
        {"ply\nelement vertex 1\n" + kXyz + "end_header\n1 2 3\n",
         "line 6: its header does not say the format"},
        {"ply\nformat ascii 1.0\nelement vertex 1\n" + kXyz, "its header has no end"},
        {"ply\nformat text 1.0\n", "line 2: \"text\" is no format of a PLY file"},
        {"ply\nformat\nend_header\n", "line 2: \"format\" is no line of a PLY header"},
        {"ply\nformat ascii 1.0\ncolour red\n", "line 3: \"colour red\" is no line of a PLY header"},
        {"ply\n" + std::string((std::size_t{1} << 20) + 9, ' ') + "\n", "its header has no end"},
    };
    for (const auto& [bytes, why] : heads) {
        const CloudRun run = ReadThrough(bytes, "a.ply");
        EXPECT_NE(run.Error.find(why), std::string::npos) << bytes.substr(0, 80) << run.Error;
    }
}

TEST(PointsThatAreNone, OfBinaryFilesAreLeftOutAndCounted) {
    const float none = std::numeric_limits<float>::quiet_NaN();
    for (const bool big : {false, true}) {
        const std::string bytes = "ply\nformat binary_" + std::string(big ? "big" : "little") +
                                  "_endian 1.0\nelement vertex 3\n" + kXyz + "end_header\n" +
                                  Packed(1.0F, big) + Packed(2.0F, big) + Packed(3.0F, big) +
                                  Packed(1.0F, big) + Packed(none, big) + Packed(3.0F, big) +
                                  Packed(none, big) + Packed(2.0F, big) + Packed(3.0F, big);
        const CloudRun run = ReadThrough(bytes, "a.ply");
        ASSERT_EQ(run.Points.size(), 1U) << run.Error;
        EXPECT_EQ(run.Points[0].At, (std::array<double, 3>{1, 2, 3}));
        EXPECT_EQ(run.Facts.NotFinite, 2);
        EXPECT_EQ(run.Facts.FirstNotFinite, 2);
        const std::vector<Note> notes = NotesOfCloud(run.Facts, "a.ply", false);
        ASSERT_EQ(notes.size(), 1U);
        EXPECT_EQ(notes[0].Text,
                  "Points whose coordinates are no finite numbers are left out, the first is point 2");
        EXPECT_EQ(notes[0].Count, 2);
    }
}

}  // namespace
