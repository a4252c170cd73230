// The document of the kinds of files, row by row: a file of each kind goes through `fit`, and what the row
// says happens.
#include <array>
#include <map>
#include <sstream>

#include "cli/fit_command.h"

namespace {

const std::string kRoot = CORVINADE_SOURCE_DIR;

// The points that every file holds which is read, in this order; "-" as a name: its number.
const std::array<std::array<double, 3>, 4> kPoints = {
    {{1.5, -2, 3}, {400, 5, 6.25}, {-7.25, 800, 9.5}, {10, 20.5, 930}}};

// A kind of file: `Rows` have one gap for another where `Gap` says so.
struct Sample {
    std::string Text;
    std::vector<std::string> Names = {"A", "B", "C", "D"};
    std::string File = "f.txt";
    std::vector<std::string> Then = {};  // what the row says that helps: with it the file is read
    double Unit = 1;                     // of the result in mm, against the points
    bool Flat = false;                   // z is 0
    bool Pairs = false;                  // both systems stand in it
};

const std::string kRows = "A;1.5;-2;3\nB;400;5;6.25\nC;-7.25;800;9.5\nD;10;20.5;930\n";
const std::vector<std::string> kNumbers = {"1", "2", "3", "4"};

std::string With(std::string text, const std::string& from, const std::string& to) {
    for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size())
        text.replace(at, from.size(), to);
    return text;
}
std::string Between(const std::string& gap) {
    return With(kRows, ";", gap);
}
std::string Comma(const std::string& text) {
    return With(text, ".", ",");
}
// The rows without their names.
std::string Bare(const std::string& gap) {
    std::string text = Between(gap);
    for (const char name : {'A', 'B', 'C', 'D'}) text = With(text, name + gap, "");
    return text;
}
std::string Wide(const std::string& text, bool bigEndian, bool mark = true) {
    std::string wide = !mark ? "" : bigEndian ? "\xFE\xFF" : "\xFF\xFE";
    for (const char c : text) wide += bigEndian ? std::string{'\0', c} : std::string{c, '\0'};
    return wide;
}
std::string Renamed(const std::string& a, const std::string& b, const std::string& c, const std::string& d,
                    const std::string& gap = ";") {
    std::string text = Between(gap);
    text = With(text, "A" + gap, "@1" + gap);
    text = With(text, "B" + gap, "@2" + gap);
    text = With(text, "C" + gap, "@3" + gap);
    text = With(text, "D" + gap, "@4" + gap);
    text = With(With(text, "@1", a), "@2", b);
    return With(With(text, "@3", c), "@4", d);
}
const std::vector<std::string> kHoles = {"Hole 1", "Hole 2", "Hole 3", "Hole 4"};
std::string Holes(const std::string& gap) {
    return Renamed("Hole 1", "Hole 2", "Hole 3", "Hole 4", gap);
}
const std::string kAligned =
    "A     1.5    -2.0     3.00\nB   400.0     5.0     6.25\nC    -7.25  800.0     9.50\nD    10.0    20.5   930.00\n";
const std::string kMetres = "A;.0015;-.002;.003\nB;.4;.005;.00625\nC;-.00725;.8;.0095\nD;.01;.0205;.93\n";
const std::string kFourth =  // of three decimals and more
    "1.5000 -2 3 9\n400 5 6.25 9\n-7.2500 800 9.5 9\n10 20.5 930 9\n";
// A row that is wrong among good ones.
std::string AndBad(const std::string& row) {
    return kRows + row + "\n";
}
const std::vector<std::string> kSkip = {"--skip-bad"};

// By the numbers of the rows.
const std::map<int, Sample>& Samples() {
    static const std::map<int, Sample> kSamples = {
        {1, {kRows}},
        {2, {Between(",")}},
        {3, {Between("\t")}},
        {4, {Between(":")}},
        {5, {Between("|")}},
        {6, {Between("*")}},
        {7, {Between("#")}},
        {8, {Between(" ")}},
        {9, {Between("   ")}},
        {10, {kAligned}},
        {11,
         {With(With(With(With(kAligned, "A  ", "Hole 1  "), "B  ", "Hole 2  "), "C  ", "Hole 3  "), "D  ",
               "Hole 4  "),
          kHoles}},
        {12, {With(Between(" \t"), "B \t", "B  ")}},
        {13, {kRows.substr(0, kRows.size() - 1)}},
        {14, {With(kRows, "\n", "\r\n")}},
        {15, {With(kRows, "\n", "\r")}},
        {16, {"\xEF\xBB\xBF" + kRows}},
        {17, {Renamed("L\xC3\xA4nge", "B", "C", "D"), {"L\xC3\xA4nge", "B", "C", "D"}}},
        {18, {Renamed("L\xE4nge", "B", "C", "D"), {"L\xC3\xA4nge", "B", "C", "D"}}},
        {19, {Wide("Name\tX\tY\tZ\r\n" + With(Between("\t"), "\n", "\r\n"), false)}},
        {20, {Wide(Between("\t"), true)}},
        {21, {Comma(kRows)}},
        {22, {Comma(Between(" "))}},
        {23, {Comma(Between("\t"))}},
        {24, {"A,\"1,5\",-2,3\nB,400,5,\"6,25\"\nC,\"-7,25\",800,\"9,5\"\nD,10,\"20,5\",930\n"}},
        {25,
         {"A;1,500;-2;3\nB;400;5;6,250\nC;-7,250;800;9,500\nD;10;20,500;930\n",
          {"A", "B", "C", "D"},
          "f.txt",
          {"--decimal", ","}}},
        {26, {Bare(";"), kNumbers}},
        {27, {Between(" ; ")}},
        {28, {Renamed("A    ", "B    ", "C    ", "D    ")}},
        {29, {Between(", ")}},
        {30, {Holes(";"), kHoles}},
        {31,
         {"\"A\";\"1.5\";\"-2\";\"3\"\n\"B\";\"400\";\"5\";\"6.25\"\n\"C\";\"-7.25\";\"800\";\"9.5\"\n"
          "\"D\";\"10\";\"20.5\";\"930\"\n"}},
        {32, {Renamed("\"A;1\"", "B", "C", "D"), {"A;1", "B", "C", "D"}}},
        {33, {Renamed("\"1\"\" bore\"", "B", "C", "D"), {"1\" bore", "B", "C", "D"}}},
        {34, {Renamed("'A'", "'B'", "'C'", "'D'", ", ")}},
        {35, {Renamed("\"Hole 1\"", "\"Hole 2\"", "\"Hole 3\"", "\"Hole 4\"", " "), kHoles}},
        {36, {"Name;X;Y;Z\n" + kRows}},
        {37, {"z,name,y,x\n3,A,-2,1.5\n6.25,B,5,400\n9.5,C,800,-7.25\n930,D,20.5,10\n"}},
        {38, {"x y z\n" + Bare(" "), kNumbers}},
        {39, {"x y z intensity\n" + With(Bare(" "), "\n", " 100\n"), kNumbers}},
        {40, {"Point ID,Easting,Northing,Height\n" + Between(",")}},
        {41, {"Pt;N;E;H\nA;-2;1.5;3\nB;5;400;6.25\nC;800;-7.25;9.5\nD;20.5;10;930\n"}},
        {42, {"Punktnummer;Rechtswert;Hochwert;H\xC3\xB6he\n" + Comma(kRows)}},
        {43, {"Name;X [m];Y [m];Z [m]\n" + kMetres}},
        {44, {"id,x_m,y_m,z_m\n" + With(kMetres, ";", ",")}},
        {45, {"Name;X;Y;Z\n;[m];[m];[m]\n" + kMetres}},
        {46, {"name x [m] y [m] z [m]\n" + With(kMetres, ";", " ")}},
        {47, {"Report 7 of 2020-01-02\nOperator: Smith\n\nName;X;Y;Z\n" + kRows}},
        {48, {"# by hand\n" + kRows + "// one more\n% and\n! again\n#E;4;5;6\n"}},
        {49, {"//X Y Z R G B\n" + With(Bare(" "), "\n", " 255 0 0\n"), kNumbers}},
        {50, {"# name, z, y, x\nA, 3, -2, 1.5\nB, 6.25, 5, 400\nC, 9.5, 800, -7.25\nD, 930, 20.5, 10\n"}},
        {51, {"sep=,\nName,X,Y,Z\n" + Between(",")}},
        {52, {With(kRows, "\n", ";;\n") + ";;;;;\n;;;;;\n"}},
        {53, {With(kRows, "\nB", "\n\n\nB")}},
        {54, {"A;1.5E0;-20e-1;+3\nB;400.;5;.625e1\nC;-7.25;+8e2;9.5\nD;10;20.5;93E1\n"}},
        {55,
         {"| Name | X | Y | Z |\n|------|---|---|---|\n| A | 1.5 | -2 | 3 |\n| B | 400 | 5 | 6.25 |\n"
          "| C | -7.25 | 800 | 9.5 |\n| D | 10 | 20.5 | 930 |\n"}},
        {56, {"Name      X      Y      Z\n----   ----   ----   ----\n" + kAligned}},
        {57, {"name,x,y,z,sx,sy,sz\n" + With(Between(","), "\n", ",.1,.2,.3\n")}},
        {58, {"Name,\"X\n[mm]\",\"Y\n[mm]\",\"Z\n[mm]\"\n" + Between(",")}},
        {59, {With(kRows, "\n", ";0.1;0.2\n")}},
        {60, {With(kFourth, " 9\n", " 9 8\n"), kNumbers, "f.pts"}},
        {61, {kFourth, kNumbers, "f.txt", {"--columns", "x,y,z"}}},
        {62, {With(kFourth, "00 ", " "), {}, "f.txt", {"--columns", "x,y,z"}}},
        {63, {AndBad("E;oops;1;2"), {"A", "B", "C", "D"}, "f.txt", kSkip}},
        {64, {AndBad("E;1.234,5;1;2"), {"A", "B", "C", "D"}, "f.txt", kSkip}},
        {65, {AndBad("E;1,5;1;2"), {"A", "B", "C", "D"}, "f.txt", kSkip}},
        {66, {AndBad("E;;1;2"), {"A", "B", "C", "D"}, "f.txt", kSkip}},
        {67, {AndBad("E;1;2;3;4"), {"A", "B", "C", "D"}, "f.txt", kSkip}},
        {68, {With(Between(" "), "\n", " 0.1\n") + "E 1 2 3\n", {"A", "B", "C", "D"}, "f.txt", kSkip}},
        {69, {AndBad("E;1e400;1;2"), {"A", "B", "C", "D"}, "f.txt", kSkip}},
        {70,
         {"name;x;y;z;s\n" + With(kRows, "\n", ";1\n") + "E;1;2;3;-1\n",
          {"A", "B", "C", "D"},
          "f.txt",
          kSkip}},
        {71, {kRows + "A;7;8;9\n"}},
        {72, {"P1,1,5,2,5,3,5\nP2,4,5,6,5,7,5\n", {}, "f.txt", {"--decimal", ","}}},
        {73, {"P1,1,000.5,2,000.5,300\nP2,4,100.5,1,020.5,250\n"}},
        {74,
         {"name;x;y;z;x\n" + With(kRows, "\n", ";4\n"),
          {"A", "B", "C", "D"},
          "f.txt",
          {"--columns", "name,x,y,z,-", "--skip", "1"}}},
        {75,
         {"name;x;y;what\n" + kRows,
          {"A", "B", "C", "D"},
          "f.txt",
          {"--columns", "name,x,y,z", "--skip", "1"}}},
        {76, {"name;x [furlong];y;z\n" + kRows, {"A", "B", "C", "D"}, "f.txt", {"--unit", "mm"}}},
        {77, {"Nom du lieu;Gauche;Droite;Haut\n" + kRows}},
        {78,
         {"Left 1 1.5 -2 3\nLeft 2 400 5 6.25\nLeft 3 -7.25 800 9.5\nLeft 4 10 20.5 930\n",
          kNumbers,
          "f.txt",
          {"--columns", "-,name,x,y,z"}}},
        {79,
         {Wide("Name\tX\tY\tZ\r\n" + Between("\t"), false, false),
          {"A", "B", "C", "D"},
          "f.txt",
          {"--encoding", "utf-16le"}}},
        {80, {"Dear Sir,\nhow are you?\n"}},
        {102,
         {"#CRS: LOCAL_CS[\"hall\"]\nmapX,mapY,sourceX,sourceY,enable,dX,dY,residual\n"
          "11.5,-2,1.5,-2,1,0,0,0\n410,5,400,5,1,0,0,0\n2.75,800,-7.25,800,1,0,0,0\n20,20.5,10,20.5,1,0,0,0\n",
          kNumbers,
          "f.points",
          {},
          1,
          true}},
        {103,
         {"# t x y z qx qy qz qw\n0.1 1.5 -2 3 0 0 0 1\n0.2 400 5 6.25 0 0 0 1\n"
          "0.3 -7.25 800 9.5 0 0 0 1\n0.4 10 20.5 930 0 0 0 1\n",
          {"0.1", "0.2", "0.3", "0.4"},
          "f.tum"}},
        {104,
         {"<?xml version=\"1.0\"?>\n<LandXML><Units><Metric linearUnit=\"millimeter\"/></Units><CgPoints>\n"
          "<CgPoint name=\"A\">-2 1.5 3</CgPoint>\n<!-- <CgPoint name=\"no\">1 2 3</CgPoint> -->\n"
          "<CgPoint name=\"B\">5 400 6.25</CgPoint>\n<CgPoint name=\"C\">800 -7.25 9.5</CgPoint>\n"
          "<CgPoint name=\"D\">20.5 10 930</CgPoint>\n</CgPoints></LandXML>\n",
          {"A", "B", "C", "D"},
          "f.xml"}},
        {105,
         {"name,x,y,z,X,Y,Z\nA,1.5,-2,3,11.5,-2,3\nB,400,5,6.25,410,5,6.25\nC,-7.25,800,9.5,2.75,800,9.5\n"
          "D,10,20.5,930,20,20.5,930\n",
          {"A", "B", "C", "D"},
          "f.csv",
          {},
          1,
          false,
          true}},
    };
    return kSamples;
}

// A row of the document.
struct Row {
    int Number;
    std::string Kind, What;
};

std::vector<Row> RowsOfDocument() {
    std::vector<Row> rows;
    std::istringstream in(Contents(kRoot + "/docs/file-kinds.md"));
    for (std::string line; std::getline(in, line);) {
        if (!line.starts_with("| ") || line[2] < '0' || line[2] > '9') continue;
        const std::size_t second = line.find(" | ", 2), third = line.rfind(" | ");
        rows.push_back({std::stoi(line.substr(2)), line.substr(second + 3, third - second - 3),
                        line.substr(third + 3, line.size() - third - 5)});
    }
    return rows;
}

// The words in backquotes that begin like this.
std::vector<std::string> Quoted(const std::string& text, bool options) {
    std::vector<std::string> words;
    for (std::size_t at = 0; (at = text.find('`', at)) != std::string::npos;) {
        const std::size_t end = text.find('`', at + 1);
        const std::string word = text.substr(at + 1, end - at - 1);
        if (word.starts_with("--") == options) words.push_back(word.substr(0, word.find(' ')));
        at = end + 1;
    }
    return words;
}

class FileKinds : public FitCommand {
protected:
    Outcome FitOf(const std::string& path, const std::vector<std::string>& more, bool pairs = false) const {
        std::vector<std::string> arguments = {"fit", path, path, "--json"};
        if (pairs) arguments = {"fit", "--pairs", path, "--json"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return FreshCommandLine(arguments);
    }
    static void ExpectPoints(const Row& row, const Sample& sample, const Outcome& outcome,
                             const std::array<double, 3>& shift = {0, 0, 0}) {
        ASSERT_EQ(outcome.Status, 0) << row.Number << " " << row.Kind << outcome.Err;
        if (sample.Names.empty()) return;
        const json points = json::parse(outcome.Out)["points"];
        ASSERT_EQ(points.size(), kPoints.size()) << row.Number << " " << row.Kind;
        for (const json& point : points) {
            const auto name = std::find(sample.Names.begin(), sample.Names.end(), point["name"]);
            ASSERT_NE(name, sample.Names.end()) << row.Number << point["name"];
            const auto& truth = kPoints[static_cast<std::size_t>(name - sample.Names.begin())];
            for (std::size_t axis = 0; axis < 3; ++axis)
                EXPECT_NEAR(point["start_mm"][axis].get<double>(),
                            sample.Flat && axis == 2 ? 0 : truth[axis] + shift[axis], 1e-12)
                    << row.Number << " " << row.Kind;
        }
    }
};

}  // namespace

TEST_F(FileKinds, OfEveryRowAreReadOrRefusedAsItSays) {
    const std::vector<Row> rows = RowsOfDocument();
    ASSERT_GE(rows.size(), 60u);
    int expected = 1;
    for (const Row& row : rows) {
        EXPECT_EQ(row.Number, expected++);
        const std::vector<std::string> written = Quoted(row.Kind, false);
        std::vector<std::pair<std::string, Sample>> files;
        // A file that another program wrote has its number by number test beside its folder.
        for (const std::string& word : written)
            if (word.find('-') != std::string::npos && word.find('.') != std::string::npos)
                files.push_back({kRoot + "/tests/data/other-programs/" + word, {"", {}, "", {}}});
        if (files.empty()) {
            const auto sample = Samples().find(row.Number);
            ASSERT_NE(sample, Samples().end()) << "no file of the kind " << row.Kind;
            files.push_back({Write(sample->second.File, sample->second.Text), sample->second});
        }
        for (const auto& [path, sample] : files) {
            const std::string before = Contents(path);
            ASSERT_FALSE(before.empty()) << path;
            const Outcome outcome = FitOf(path, {}, sample.Pairs);
            const bool refused = row.What.find("refused") != std::string::npos;
            if (refused) {
                EXPECT_EQ(outcome.Status, 3) << row.Number << " " << row.Kind << outcome.Out;
                for (const std::string& option : Quoted(row.What, true))
                    EXPECT_NE(outcome.Out.find(option), std::string::npos) << row.Number << outcome.Out;
                if (!sample.Then.empty()) ExpectPoints(row, sample, FitOf(path, sample.Then));
            } else {
                ExpectPoints(row, sample, outcome);
                std::string codes;
                const json root = json::parse(outcome.Out);
                for (const json& note : root["notes"]) codes += note["code"].get<std::string>() + " ";
                const std::vector<std::string> told = Quoted(row.What, false);
                for (const std::string& code : told)
                    EXPECT_NE(codes.find(code), std::string::npos) << row.Number << " " << row.Kind << codes;
                if (told.empty()) {
                    EXPECT_EQ(codes, "") << row.Number << " " << row.Kind;
                }
                if (!sample.Then.empty()) ExpectPoints(row, sample, FitOf(path, sample.Then));
            }
            EXPECT_EQ(Contents(path), before) << "a file of the user's has been changed";
        }
    }
    EXPECT_EQ(Samples().size(), 84u);
}

// What is carried and read behind that are the points that `fit` reads, carried. A shift by whole numbers
// adds no rounding. What `fit` refuses is refused, or told of.
TEST_F(FileKinds, AreCarriedAsTheyAreReadOrNotWithoutAWord) {
    const std::array<double, 3> shift = {1000, 2000, 3000};
    const std::string matrix = Write("shift.txt", "1 0 0 1000\n0 1 0 2000\n0 0 1 3000\n0 0 0 1\n");
    for (const Row& row : RowsOfDocument()) {
        const auto found = Samples().find(row.Number);
        if (found == Samples().end()) continue;
        const Sample& sample = found->second;
        if (sample.Pairs) continue;  // of two systems
        const std::string path = Write(sample.File, sample.Text), moved = PathOf("moved-" + sample.File);
        const Outcome outcome =
            FreshCommandLine({"transform", "--with", matrix, path, "--out", moved, "--overwrite"});
        EXPECT_EQ(Contents(path), sample.Text);
        if (row.What.find("`name-is-number`") != std::string::npos) {
            EXPECT_EQ(outcome.Status, 3) << "a coordinate that is taken as name would stay where it is";
            EXPECT_NE(outcome.Err.find("--columns"), std::string::npos) << outcome.Err;
        } else if (row.What.find("refused") == std::string::npos) {
            EXPECT_EQ(outcome.Status, 0) << row.Number << " " << row.Kind << outcome.Err;
            if (outcome.Status == 0) ExpectPoints(row, sample, FitOf(moved, {}), shift);
        } else if (row.Kind != "equal names" && row.Kind != "a sigma below 0" && row.Number != 67) {
            // Names and sigmas are of pairs alone, and a field more behind a semicolon moves nothing.
            EXPECT_TRUE(outcome.Status == 3 || outcome.Err.find("note: ") != std::string::npos ||
                        outcome.Err.find("warning: ") != std::string::npos)
                << row.Number << " " << row.Kind << outcome.Err << Contents(moved);
        }
    }
}

// Without a further option a job makes plain files lines of name, X, Y and Z; whatever the reader of those
// would take otherwise than it is meant keeps its form, or is refused, or told of.
TEST_F(FileKinds, AJobCarriesThemAsTheyAreReadToo) {
    const std::string job = PathOf("shift.cvn"), start = Write("s.txt", kRows);
    const std::string target =
        Write("t.txt", "A;1001.5;1998;3003\nB;1400;2005;3006.25\nC;992.75;2800;3009.5\nD;1010;2020.5;3930\n");
    ASSERT_EQ(FreshCommandLine({"fit", start, target, "--save", job}).Status, 0);
    int kept = 0, told = 0;
    for (const Row& row : RowsOfDocument()) {
        const auto found = Samples().find(row.Number);
        if (found == Samples().end() || found->second.Pairs) continue;
        const Sample& sample = found->second;
        const std::string path = Write(sample.File, sample.Text), moved = PathOf("moved-" + sample.File);
        const Outcome outcome = FreshCommandLine({"transform", job, path, "--out", moved, "--overwrite"});
        EXPECT_EQ(Contents(path), sample.Text);
        const bool isTold = outcome.Status == 3 || outcome.Err.find("note: ") != std::string::npos ||
                            outcome.Err.find("warning: ") != std::string::npos;
        if (outcome.Status == 0 && row.What.find("refused") == std::string::npos) {
            const json points = json::parse(FitOf(moved, {}).Out)["points"];
            bool same = points.size() == kPoints.size();
            for (const json& point : points) {
                const auto name = std::find(sample.Names.begin(), sample.Names.end(), point["name"]);
                same = same && name != sample.Names.end();
                for (std::size_t axis = 0; same && axis < 3; ++axis)
                    same = sample.Flat ||
                           std::abs(point["start_mm"][axis].get<double>() -
                                    kPoints[static_cast<std::size_t>(name - sample.Names.begin())][axis] -
                                    1000.0 * static_cast<double>(axis + 1)) < 1e-3;
            }
            EXPECT_TRUE(same || isTold) << row.Number << " " << row.Kind << outcome.Err << Contents(moved);
            if (outcome.Err.find("it comes out in this form") != std::string::npos) {
                EXPECT_TRUE(same) << row.Number << " " << row.Kind << Contents(moved);
                ++kept;
            }
        } else if (row.Kind != "equal names" && row.Kind != "a sigma below 0" && row.Number != 67) {
            EXPECT_TRUE(isTold) << row.Number << " " << row.Kind << outcome.Err << Contents(moved);
            ++told;
        }
    }
    EXPECT_GT(kept, 15);
    EXPECT_GT(told, 15);
}
