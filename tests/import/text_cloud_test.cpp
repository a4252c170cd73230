// Clouds of text, trajectories, points of maps and of LandXML.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>

#include "import/cloud_bytes.h"

using namespace corvinade;

namespace {

// The same bytes in UTF-16 behind its mark.
std::string Utf16(const std::string& latin, bool big) {
    std::string bytes = big ? "\xFE\xFF" : "\xFF\xFE";
    for (const char c : latin)
        bytes += Packed(static_cast<std::uint16_t>(static_cast<unsigned char>(c)), big);
    return bytes;
}

TEST(TextCloud, KeepsWhatStandsBesideItsCoordinates) {
    const std::vector<std::array<std::string, 3>> files = {
        {"a.xyz", "1 2 3\n-5 10 0\n", "9.600 22.200 33.000\n0.000 25.000 30.000\n"},
        {"a.XYZ", "  1.0\t2   3 255 0 7  \r\n", "  9.600\t22.200   33.000 255 0 7  \r\n"},
        {"a.pts", "2\n1 2 3 -17 255 255 255\n-5 10 0 1 2 3 4",
         "2\n9.600 22.200 33.000 -17 255 255 255\n0.000 25.000 30.000 1 2 3 4"},
        {"a.asc", "1,2,3,0.5\r\n", "9.600,22.200,33.000,0.5\r\n"},
        {"a.asc", "1;2;3;\"a;b\"\n", "9.600;22.200;33.000;\"a;b\"\n"},
        {"a.xyz", "1,0;2,0;3,0;7\n", "9,600;22,200;33,000;7\n"},
        {"a.xyz", "1,0 2,0 3,0 7\n", "9,600 22,200 33,000 7\n"},
        {"a.xyz", "\"1\",\"2\",\"3\"\n", "\"9.600\",\"22.200\",\"33.000\"\n"},
        {"a.xyz", "1.00000 2 3\n", "9.60000 22.20000 33.00000\n"},
        {"a.xyz", "P1 1 2 3\n", "P1 9.600 22.200 33.000\n"},
        {"a.xyz", "1 2 3\r-5 10 0\r", "9.600 22.200 33.000\r0.000 25.000 30.000\r"},
        {"a.xyz", "1 2 3\r-5 10 0\n1 2 3\r\n-5 10 0\r1 2 3",
         "9.600 22.200 33.000\r0.000 25.000 30.000\n9.600 22.200 33.000\r\n0.000 25.000 30.000\r"
         "9.600 22.200 33.000"},
        {"a.xyz", "# a remark 1 2 3\n\n1 2 3\nno point\n",
         "# a remark 1 2 3\n\n9.600 22.200 33.000\nno point\n"},
        {"a.xyz",
         "\xEF\xBB\xBF"
         "1 2 3 \xC3\xA4\n",
         "\xEF\xBB\xBF"
         "9.600 22.200 33.000 \xC3\xA4\n"},
        {"a.xyz", "1 2 3 \xE4\n", "9.600 22.200 33.000 \xE4\n"},
        {"a.xyz", "//X Y Z Nx Ny Nz R\n1 2 3 1 0 0 9\n",
         "//X Y Z Nx Ny Nz R\n9.600 22.200 33.000 0.800000 0.600000 0.000000 9\n"},
        {"a.csv", "id,z,y,x\n7,3,2,1\n", "id,z,y,x\n7,33.000,22.200,9.600\n"},
        {"a.csv", "Name;East [m];North [m];Height [m]\r\nA;1;2;3\r\n",
         "Name;East [m];North [m];Height [m]\r\nA;-0.390000;2.220000;3.030000\r\n"},
        {"a.txt", "A\t1\t2\t3\tremark\n", "A\t9.600\t22.200\t33.000\tremark\n"},
        {"a.tum", "1305031102.1753 1 2 3 0 0 0 1\n",
         "1305031102.1753 9.600 22.200 33.000 0.000000000 0.000000000 0.316227766 0.948683298\n"},
        {"a.txt", "# timestamp tx ty tz qx qy qz qw\n5 1 2 3 0 0 0 1\n",
         "# timestamp tx ty tz qx qy qz qw\n5 9.600 22.200 33.000 0.000000000 0.000000000 0.316227766 0.948683298\n"},
        {"a.points",
         "#CRS: PROJCRS[\"x\"]\nmapX,mapY,sourceX,sourceY,enable,dX,dY,residual\n700,800,1,2,1,0,0,0\n",
         "#CRS: PROJCRS[\"x\"]\nmapX,mapY,sourceX,sourceY,enable,dX,dY,residual\n700,800,9.600,22.200,1,0,0,0\n"},
    };
    for (const auto& [name, before, after] : files) {
        const CloudRun run = Carried(before, name);
        EXPECT_EQ(run.Error, "") << before;
        // In metres the shift is a thousandth: 0.8 - 1.2 + 0.01 and so on.
        EXPECT_EQ(run.Out, after);
        EXPECT_EQ(RunThrough(before, name, &CloudTurn(), {}, 1).Out, after);
        for (const bool big : {false, true}) {
            if (before.front() == '\xEF') continue;
            EXPECT_EQ(Carried(Utf16(before, big), name).Out, Utf16(after, big)) << before;
        }
    }
}

// Rows of usual form and rows beside it, against the formatter of the library.
TEST(TextCloud, RowsOfAnyFormGetTheNearestDecimals) {
    std::mt19937 random(11);
    const auto below = [&random](int count) {
        return static_cast<int>(random() % static_cast<unsigned>(count));
    };
    for (const char delimiter : {';', ' ', '\t', ','}) {
        std::string before, after;
        constexpr int kRows = 20000, kMostPlaces = 6;  // which all rows get
        for (int row = 0; row < kRows; ++row) {
            std::string name(static_cast<std::size_t>(1 + below(row % 50 == 0 ? 90 : 12)), 'P');
            name += std::to_string(row);
            std::array<std::string, 3> from;
            std::array<double, 3> p{};
            for (std::size_t i = 0; i < 3; ++i) {
                const int places = row == 0 ? kMostPlaces : below(kMostPlaces + 1);
                const double size = std::pow(10.0, below(9) - 2);
                std::array<char, 64> text{};
                std::snprintf(text.data(), text.size(), "%.*f", places, (below(2000001) / 1e6 - 1) * size);
                from[i] = text.data();
                p[i] = std::strtod(text.data(), nullptr);
            }
            const std::array<double, 3> q = CloudTurn().Carry(p);
            std::array<std::string, 3> to;
            for (std::size_t i = 0; i < 3; ++i) {
                std::array<char, 64> text{};
                std::snprintf(text.data(), text.size(), "%.*f", kMostPlaces, q[i]);
                to[i] = text.data();
                if (to[i].find_first_of("123456789") == std::string::npos && to[i][0] == '-')
                    to[i].erase(0, 1);
            }
            const std::string quote = delimiter != ' ' && row % 9 == 1 ? "\"" : "";
            const std::string blank = delimiter != ' ' && row % 11 == 1 ? " " : "";
            const std::string plus = row % 13 == 1 ? "+" : "";
            const std::string rest = row % 3 == 0 ? std::string(1, delimiter) + "red" : "";
            const std::string sign(1, delimiter);
            before += quote + name + quote + sign + blank + plus + from[0] + blank + sign + from[1] + sign +
                      from[2] + rest + "\n";
            after += quote + name + quote + sign + blank + to[0] + blank + sign + to[1] + sign + to[2] +
                     rest + "\n";
        }
        // A sign in front would not go with a negative number.
        for (std::size_t at = 0; (at = before.find("+-", at)) != std::string::npos;) before.erase(at, 1);
        const CloudRun run = Carried(before, "a.txt");
        EXPECT_EQ(run.Error, "");
        EXPECT_EQ(run.Facts.Points, kRows);
        ASSERT_EQ(run.Out.size(), after.size());
        EXPECT_TRUE(run.Out == after) << "delimiter \"" << delimiter << '"';
        EXPECT_TRUE(RunThrough(before, "a.txt", &CloudTurn(), {}, 7).Out == after);
    }
}

// What `fit` reads of a table, `transform` carries.
TEST(TextCloud, TablesAreTakenAsTheReaderOfTablesTakesThem) {
    const std::vector<std::array<std::string, 3>> files = {
        {"a.csv", "Punkt;Hochwert;Rechtswert;H\xC3\xB6he\nA;2;1;3\n",
         "Punkt;Hochwert;Rechtswert;H\xC3\xB6he\nA;22.200;9.600;33.000\n"},
        {"a.csv", "Punkt;Hochwert;Rechtswert;H\xF6he\nA;2;1;3\n",
         "Punkt;Hochwert;Rechtswert;H\xF6he\nA;22.200;9.600;33.000\n"},
        {"a.csv", "name;z;y;x\n;m;m;m\nA;3;2;1\n", "name;z;y;x\n;m;m;m\nA;3.030000;2.220000;-0.390000\n"},
        {"a.txt", "Hole 1    1.0   2.0   3.0\nHole 2   -5.0  10.0   0.0\n",
         "Hole 1    9.600   22.200   33.000\nHole 2   0.000  25.000   30.000\n"},
        {"a.txt", "| A | 1 | 2 | 3 |\n|---|---|---|---|\n| B | -5 | 10 | 0 |\n",
         "| A | 9.600 | 22.200 | 33.000 |\n|---|---|---|---|\n| B | 0.000 | 25.000 | 30.000 |\n"},
        {"a.txt", "A*1*2*3\n", "A*9.600*22.200*33.000\n"},
    };
    for (const auto& [name, before, after] : files) {
        const CloudRun run = Carried(before, name);
        EXPECT_EQ(run.Error, "") << before;
        EXPECT_EQ(run.Out, after);
    }
    std::string why;
    CloudWish wish;
    wish.Columns = ColumnsFromText("name,x,y,z", why).value();
    EXPECT_EQ(Carried("Hole 1    1.0   2.0   3.0\n", "a.txt", wish).Out,
              "Hole 1    9.600   22.200   33.000\n");
}

TEST(TextCloud, WhatTheReaderOfTablesRefusesIsRefused) {
    const std::vector<std::array<std::string, 2>> files = {
        {"Name;X nominal;Y nominal;Z nominal;X actual;Y actual;Z actual\nA;1;2;3;1;2;3\n", "--columns"},
        {"Left 1 1.5 2.5 3.5\nLeft 2 1.5 2.5 4.5\n", "--columns"},
        {"Left 1 1.5 -2 3\nLeft 2 400 5 6.25\n", "--columns"},
        {"A,1,234.5,2,345.6,3,456.7\nB,1,234.5,2,345.6,3,456.7\n", "--columns"},
        {"Name;X [m];Y [mm];Z [m]\nA;1;2;3\n", "--unit"},
        {"Name;X [yd];Y [yd];Z [yd]\nA;1;2;3\n", "--unit"},
    };
    for (const auto& [text, option] : files)
        EXPECT_NE(Carried(text, "a.csv").Error.find(option), std::string::npos) << text;
    CloudWish wish;
    wish.Unit = "m";
    EXPECT_EQ(Carried("Name;X [m];Y [mm];Z [m]\nA;1;2;3\n", "a.csv", wish).Out,
              "Name;X [m];Y [mm];Z [m]\nA;-0.390000;2.220000;3.030000\n");
    wish.Unit = "";
    wish.Pairs = true;
    EXPECT_NE(
        ReadThrough("name,x_m,y_m,z_m,X_mm,Y_mm,Z_mm\nA,1,2,3,4,5,6\n", "a.csv", wish).Error.find("m and mm"),
        std::string::npos);
}

TEST(TextCloud, WhatIsDecidedOfATableIsTold) {
    const auto codes = [](const std::string& text) {
        std::vector<NoteCode> all;
        for (const Note& note : NotesOfCloud(Carried(text, "a.csv").Facts, "a.csv", true))
            all.push_back(note.Code);
        return all;
    };
    EXPECT_EQ(codes("Name;a;b;c\nA;1;2;3\n"),
              (std::vector<NoteCode>{NoteCode::HeadingUnknown, NoteCode::LinesKept}));
    EXPECT_EQ(codes("A;1,234;2,345;3,456\n"), std::vector<NoteCode>{NoteCode::DecimalTaken});
    EXPECT_EQ(codes("-5;1;2;3\n"), std::vector<NoteCode>{NoteCode::NameIsNumber});
    for (const char* text : {"A,1,2,3\nB,1,000.5,2,3\n", "A 1 2 3\nB 1 000 2 3\n", "A 1 2 3 9\nB 1 3 9\n"})
        EXPECT_EQ(codes(text), std::vector<NoteCode>{NoteCode::ColumnsChanged}) << text;
    for (const char* text : {"A 1 2 3 good\nB 1 2 3 not so good\nC 1 2 3\n", "A,1,2,3,\nB,1,2,3\n",
                             "A,1,2,3,\"a, b\"\nB,1,2,3,c\n"})
        EXPECT_EQ(codes(text), std::vector<NoteCode>{}) << text;
    EXPECT_EQ(codes("Name;X;Y;Z\nA;1;2;3\n"), std::vector<NoteCode>{}) << "its heading is no line of points";
    EXPECT_EQ(codes("Name;X;Y;Z\nA;1;q;3\nB;1;2;3\n"), std::vector<NoteCode>{NoteCode::LinesKept});
}

TEST(TextCloud, TheUserSaysItsUnitAndItsEncoding) {
    const std::string latin = "H\xF6he;1;2;3\n", moved = "H\xF6he;-0.390000;2.220000;3.030000\n";
    for (const bool big : {false, true}) {
        CloudWish wish;
        wish.Unit = "m";
        wish.Encoding = big ? TableEncoding::Utf16Be : TableEncoding::Utf16Le;
        const std::string before = Utf16(latin, big), after = Utf16(moved, big);
        EXPECT_NE(Carried(before.substr(2), "a.csv").Error.find("--encoding utf-16le"), std::string::npos);
        EXPECT_EQ(Carried(before.substr(2), "a.csv", wish).Out, after.substr(2));
        EXPECT_EQ(Carried(before, "a.csv", wish).Out, after) << "its mark stays";
        EXPECT_NE(Carried(Utf16(latin, !big), "a.csv", wish).Error.find("--encoding"), std::string::npos);
    }
    CloudWish wish;
    wish.Unit = "m";
    wish.Encoding = TableEncoding::Windows1252;
    EXPECT_EQ(Carried(latin, "a.csv", wish).Out, moved);
    EXPECT_EQ(Carried(latin, "a.csv", wish).Facts.Unit, "m");
    wish.Encoding = TableEncoding::Utf8;
    EXPECT_NE(Carried(latin, "a.csv", wish).Error.find("no UTF-8"), std::string::npos);
    EXPECT_NE(Carried("ply\n", "a.ply", wish).Error.find("--encoding"), std::string::npos);
}

TEST(TextCloud, TheUserSaysWhatItsColumnsAre) {
    std::string why;
    CloudWish wish;
    wish.Columns = ColumnsFromText("-,z,y,x,nx,ny,nz", why).value();
    EXPECT_EQ(Carried("9.5 3 2 1 1 0 0 8\n", "a.txt", wish).Out,
              "9.5 33.000 22.200 9.600 0.800000 0.600000 0.000000 8\n");
    EXPECT_EQ(
        Carried("a b c [m] d e f g\nX [m] Y Z a b c d\n9.5 3 2 1 1 0 0 8\n", "a.txt", wish).Out,
        "a b c [m] d e f g\nX [m] Y Z a b c d\n9.5 3.030000 2.220000 -0.390000 0.800000 0.600000 0.000000 8\n")
        << "the unit is still that of the heading";
    wish.Digits = 0;
    EXPECT_EQ(Carried("9.5 3 2 1 1 0 0\n", "a.txt", wish).Out, "9.5 33 22 10 0.800000 0.600000 0.000000\n");
    for (const char* text :
         {"x,y", "x,y,z,x", "x,y,z,w", "x,y,z,nx", "x,y,z,qx,qy,qz", "x,y,z,X", "", "x,y,z,"}) {
        why.clear();
        EXPECT_FALSE(ColumnsFromText(text, why)) << text;
        EXPECT_NE(why, "") << text;
    }
    EXPECT_TRUE(ColumnsFromText("name, x, y, z, sx, -, s", why));
}

TEST(TextCloud, LinesWithoutThreeNumbersStayAndAreCounted) {
    const CloudRun run = Carried("heading\n1 2 3\n4 5\n# end\nnan 1 2\n", "a.xyz");
    EXPECT_EQ(run.Out, "heading\n9.600 22.200 33.000\n4 5\n# end\nnan 1 2\n");
    EXPECT_EQ(run.Facts.LinesKept, 3);
    EXPECT_EQ(run.Facts.FirstKept, 1);
    EXPECT_EQ(run.Facts.NotFinite, 1);
    EXPECT_EQ(run.Facts.FirstNotFinite, 5);
    for (const char* text : {"nothing here\n", "# 1 2 3\n", "1 2\n", "\n"})
        EXPECT_NE(Carried(text, "a.xyz").Error.find("holds the numbers of a point"), std::string::npos)
            << text;
}

TEST(TextCloud, WhatCanBeReadInTwoWaysIsRefused) {
    const auto refusal = [](const std::string& text, const std::string& name = "a.xyz") {
        return Carried(text, name).Error;
    };
    for (const char* text : {"1,5, 2,5, 3,5\n", "1,5,2,5,3,5\n"})
        EXPECT_NE(refusal(text).find("--delimiter comma or --decimal ,"), std::string::npos) << refusal(text);
    CloudWish wish;
    wish.Delimiter = ',';
    EXPECT_EQ(Carried("1,5,2,5,3,5\n", "a.xyz", wish).Error, "");
    EXPECT_NE(refusal("1;2;3\n1,5;2;3\n4.5;1;1\n5.5;1;1\n").find("line 2: \"1,5\" has the decimal delimiter"),
              std::string::npos);
    EXPECT_NE(refusal("1.5 2.5 3.5 17\n", "a.txt").find("--columns"), std::string::npos);
    EXPECT_NE(refusal("X Y Z\n7 1 2 3\n").find("its heading has 3 columns and the row \"7 1 2 3\" 4"),
              std::string::npos);
    EXPECT_NE(refusal("1 2 1e400\n1 2 3\n").find("line 1: \"1e400\" is beyond"), std::string::npos);
    EXPECT_NE(refusal(std::string("1 2 3\0\n", 7)).find("it is no text"), std::string::npos);
}

TEST(TextCloud, LinesWithoutAnEndAreRefused) {
    const std::string line(std::size_t{40} << 20, '7');
    EXPECT_NE(Carried("1 2 3\n" + line, "a.xyz").Error.find("line 2: the line is longer than 16 MiB"),
              std::string::npos);
}

TEST(TextCloud, DirectionsThatNobodyHasNamedAreTold) {
    EXPECT_NE(Carried("1 2 3 0.6 0.8 0.0\n", "a.xyz").Facts.Directions.find("nx"), std::string::npos);
    EXPECT_NE(Carried("5 1 2 3 0.0 0.6 0.8 0.0\n", "a.txt").Facts.Directions.find("qw"), std::string::npos);
    EXPECT_EQ(Carried("1 2 3 255 0 1\n", "a.xyz").Facts.Directions, "");
    EXPECT_EQ(Carried("//X Y Z Nx Ny Nz\n1 2 3 0.6 0.8 0.0\n", "a.xyz").Facts.Directions, "");
}

TEST(TextCloud, AQuaternionTurnsAsARotationDoes) {
    // A quarter turn about x, then that about z: by matrices.
    const double half = std::sqrt(0.5);
    const CloudRun run =
        Carried("1 0 0 0 " + std::to_string(half) + " 0 0 " + std::to_string(half) + "\n", "a.tum");
    double t = 0, x = 0, y = 0, z = 0, q[4];
    ASSERT_EQ(std::sscanf(run.Out.c_str(), "%lf %lf %lf %lf %lf %lf %lf %lf", &t, &x, &y, &z, q, q + 1, q + 2,
                          q + 3),
              8);
    // Of R = Rz * Rx(90) the columns are (0.8, 0.6, 0), (0, 0, 1) and (0.6, -0.8, 0).
    EXPECT_NEAR(1 - 2 * (q[1] * q[1] + q[2] * q[2]), 0.8, 1e-5);
    EXPECT_NEAR(2 * (q[0] * q[1] + q[3] * q[2]), 0.6, 1e-5);
    EXPECT_NEAR(2 * (q[1] * q[2] + q[3] * q[0]), 1, 1e-5);
    EXPECT_NEAR(2 * (q[0] * q[2] + q[3] * q[1]), 0.6, 1e-5);
    const CloudMotion mirror = *MotionOf({-1, 0, 0, 0, 1, 0, 0, 0, 1}, {});
    EXPECT_NE(RunThrough("1 0 0 0 0 0 0 1\n", "a.tum", &mirror).Error.find("mirrors"), std::string::npos);
}

TEST(TextCloud, BothSystemsOfAFileAreRead) {
    CloudWish wish;
    wish.Pairs = true;
    for (const auto& [name, text] :
         std::vector<std::array<std::string, 2>>{{"a.csv", "name,x,y,z,X,Y,Z\nA,1,2,3,4,5,6\n"},
                                                 {"a.csv", "X;Y;Z;z;y;x;name\n4;5;6;3;2;1;A\n"}}) {
        const CloudRun run = ReadThrough(text, name, wish);
        ASSERT_EQ(run.Points.size(), 1U) << run.Error;
        EXPECT_EQ(run.Points[0].Name, "A");
        EXPECT_EQ(run.Points[0].At, (std::array<double, 3>{1, 2, 3}));
        EXPECT_EQ(run.Points[0].Other, (std::array<double, 3>{4, 5, 6}));
    }
    const CloudRun map = ReadThrough("mapX,mapY,pixelX,pixelY,enable\n700,800,1,-2,1\n", "a.points", wish);
    ASSERT_EQ(map.Points.size(), 1U) << map.Error;
    EXPECT_EQ(map.Points[0].At, (std::array<double, 3>{1, -2, 0}));
    EXPECT_EQ(map.Points[0].Other, (std::array<double, 3>{700, 800, 0}));
    EXPECT_TRUE(map.Facts.TwoCoordinates);
}

// --- LandXML ----------------------------------------------------------------------------------------------

std::string LandXml(const std::string& points, const std::string& unit = "millimeter") {
    return "<?xml version=\"1.0\"?>\n<LandXML xmlns=\"http://www.landxml.org/schema/LandXML-1.2\">\n"
           "<!-- <CgPoint name=\"no\">9 9 9</CgPoint> -->\n<Units><Metric linearUnit=\"" +
           unit + "\" areaUnit='squareMeter'/></Units>\n<CgPoints name=\"a > b\">\n" + points +
           "</CgPoints>\n</LandXML>\n";
}

TEST(LandXmlCloud, PointsAreNorthEastAndHeight) {
    const std::string points =
        "<CgPoint name=\"P &amp; 1\" oID='7'>2.0 1 3</CgPoint>\n<CgPoint pntRef=\"P1\"/>\n"
        "<CgPoint name='B'>\n  10\t-5 0\n</CgPoint><CgPoint name=\"flat\">1 2</CgPoint>";
    const CloudRun run = Carried(LandXml(points), "a.xml");
    EXPECT_EQ(run.Error, "");
    EXPECT_EQ(
        run.Out,
        LandXml(
            "<CgPoint name=\"P &amp; 1\" oID='7'>22.200 9.600 33.000</CgPoint>\n<CgPoint pntRef=\"P1\"/>\n"
            "<CgPoint name='B'>\n  25.000\t0.000 30.000\n</CgPoint><CgPoint name=\"flat\">1 2</CgPoint>"));
    EXPECT_EQ(run.Facts.LinesKept, 1);
    EXPECT_EQ(run.Facts.FirstKept, 10);
    EXPECT_EQ(RunThrough(LandXml(points), "a.xml", &CloudTurn(), {}, 1).Out, run.Out);
    const CloudRun read = ReadThrough(LandXml(points), "a.xml");
    ASSERT_EQ(read.Points.size(), 2U);
    EXPECT_EQ(read.Points[0].Name, "P & 1");
    EXPECT_EQ(read.Points[0].At, (std::array<double, 3>{1, 2, 3}));
}

TEST(LandXmlCloud, ItsUnitIsThatOfItsCoordinates) {
    const CloudRun run = Carried(LandXml("<CgPoint name=\"A\">2 1 3</CgPoint>", "meter"), "a.xml");
    EXPECT_NE(run.Out.find(">2.220000 -0.390000 3.030000<"), std::string::npos) << run.Out;
    EXPECT_EQ(run.Facts.Unit, "m");
    EXPECT_NE(Carried(LandXml("", "furlong"), "a.xml").Error.find("line 4: \"furlong\" is no unit"),
              std::string::npos);
}

TEST(LandXmlCloud, WhatIsCutOffIsRefused) {
    const std::string whole = LandXml("<CgPoint name=\"A\">2 1 3</CgPoint>");
    const std::size_t point = whole.find("<CgPoint name=\"A\"");
    for (std::size_t length = 30; length < point + 25; ++length)
        EXPECT_NE(Carried(whole.substr(0, length), "a.xml").Error, "") << length;
    EXPECT_NE(Carried(LandXml(""), "a.xml").Error.find("there is no point in it"), std::string::npos);
    EXPECT_NE(Carried("<LandXML a=\"" + std::string(3 << 20, 'x'), "a.xml").Error.find("longer than 1 MiB"),
              std::string::npos);
}

TEST(LandXmlCloud, AFileThatEndsBetweenTwoPointsIsRefused) {
    const std::string whole =
        LandXml("<CgPoint name=\"A\">2 1 3</CgPoint>\n<CgPoint name=\"B\">5 4 6</CgPoint>\n");
    for (const std::string_view from : {"<CgPoint name=\"B\"", "</CgPoints>", "</LandXML>"})
        EXPECT_NE(ReadThrough(whole.substr(0, whole.find(from)), "a.xml")
                      .Error.find("it ends without \"</LandXML>\""),
                  std::string::npos)
            << from;
    EXPECT_EQ(ReadThrough(whole, "a.xml").Points.size(), 2U);
}

TEST(LandXmlCloud, PointsWithoutCoordinatesOfTheirOwnAreTold) {
    const CloudRun read = ReadThrough(LandXml("<CgPoint name=\"A\">2 1 3</CgPoint>\n<CgPoint pntRef=\"A\"/>\n"
                                              "<CgPoint name=\"B\" pntRef=\"A\"/>\n<CgPoint name=\"C\"/>\n"
                                              "<CgPoint name=\"D\">2 1 3<![CDATA[.5]]></CgPoint>"),
                                      "a.xml");
    EXPECT_EQ(read.Error, "");
    EXPECT_EQ(read.Points.size(), 1U);
    EXPECT_EQ(read.Facts.LinesKept, 3) << "B, C and D; the other one is a mere reference";
    EXPECT_EQ(read.Facts.FirstKept, 8);
}

}  // namespace
