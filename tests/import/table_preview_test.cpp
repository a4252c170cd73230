// What a table looks like before it is read, and the mapping that says how it is.
#include "import/table_preview.h"

#include <random>

#include "cli/arguments.h"
#include "core/job_block.h"
#include "core/settings.h"
#include "import/table_mapping.h"
#include "import/table_words.h"
#include "support/fixture.h"

using namespace corvinade;

namespace {

TablePreview PreviewOf(const std::string& bytes, const TableOptions& options = {}) {
    TableText text;
    EXPECT_EQ(TakeTableText(bytes, nullptr, text), "");
    return PreviewTable(text, "f", options);
}

// "1: a b | 2* c !d": lines by their numbers, rows of points with a star, bad cells with an exclamation mark.
std::string Shown(const TablePreview& preview) {
    std::string shown;
    for (const PreviewLine& line : preview.Lines) {
        shown += (shown.empty() ? "" : " | ") + std::to_string(line.Number) + (line.IsPoint ? "*" : ":");
        for (std::size_t i = 0; i < std::max(line.Cells.size(), line.Bad.size()); ++i)
            shown += std::string(" ") + (i < line.Bad.size() && line.Bad[i] ? "!" : "") +
                     (i < line.Cells.size() ? line.Cells[i] : "");
    }
    return shown;
}

TableOptions SomeOptions() {
    TableOptions options;
    EXPECT_EQ(TakeTableColumns("name,-,y,x,z", options.Columns), "");
    options.Delimiter = '\t';
    options.Decimal = ',';
    options.Unit = "ft";
    options.Skip = 3;
    options.Comment = "\"\\ \t;";
    options.Encoding = TableEncoding::Utf16Be;
    options.SkipBad = true;
    return options;
}

}  // namespace

// --- Preview ----------------------------------------------------------------------------------------------

TEST(TablePreviewed, ShowsHeadingAndCommentsAndMarksWhatIsNoNumber) {
    EXPECT_EQ(Shown(PreviewOf("# hall\nPt;X;Y;Z;day\nA;1;2;3;mon\nB;1;x;3\nC;1;2\n;1;2;3\nD;1;2;3;4;5;6\n")),
              "1: # hall | 2: Pt X Y Z day | 3* A 1 2 3 mon | 4* B 1 !x 3 | 5* C 1 2 ! | 6* ! 1 2 3 | "
              "7* D 1 2 3 4 !5 6");
}

TEST(TablePreviewed, ShowsNoMoreThanTwoHundredLines) {
    std::string text;
    for (int i = 1; i <= 1000; ++i) text += "P" + std::to_string(i) + ";1;2;3\n";
    const TablePreview preview = PreviewOf(text);
    EXPECT_EQ(preview.Lines.size(), 200U);
    EXPECT_EQ(preview.Lines.back().Cells.front(), "P200");
}

TEST(TablePreviewed, ShowsTheLikeliestFormOfAnAmbiguousFileWithTheRefusal) {
    const std::string text = "P1,1,5,2,5,3,5\nP2,1,6,2,6,3,6\n";
    TablePreview preview = PreviewOf(text);
    EXPECT_TRUE(preview.Refusal.TwoWays) << preview.Refusal.Text;
    EXPECT_TRUE(preview.Found);
    EXPECT_EQ(preview.Columns, 7U);
    TableOptions comma;
    comma.Decimal = ',';
    preview = PreviewOf(text, comma);
    EXPECT_FALSE(preview.Refusal.Refused()) << preview.Refusal.Text;
    EXPECT_EQ(Shown(preview), "1* P1 1,5 2,5 3,5 | 2* P2 1,6 2,6 3,6");
}

TEST(TablePreviewed, AColumnThatIsMissingIsTheRefusal) {
    TableOptions options;
    options.Columns = {TableRole::Name, TableRole::X, TableRole::Pass, TableRole::Z};
    const TablePreview preview = PreviewOf("A;1;2;3\n", options);
    EXPECT_EQ(preview.Refusal.Text, "Cannot read \"f\": the column y is missing");
    EXPECT_EQ(Shown(preview), "1* A 1 2 3");
}

TEST(TablePreviewed, OfATextWithoutAnyTableShowsItsLines) {
    const TablePreview preview = PreviewOf("Dear all,\nthe points will follow.\n");
    EXPECT_FALSE(preview.Found);
    EXPECT_EQ(Shown(preview), "1: Dear all, | 2: the points will follow.");
}

TEST(TablePreviewed, ALineOfManyCellsAndALongCellAreCut) {
    std::string text = "A;1;2;3";
    for (int i = 0; i < 5000; ++i) text += ";" + std::to_string(i);
    text += "\nB;1;2;3;" + std::string(100000, 'x') + "\n";
    const TablePreview preview = PreviewOf(text);
    EXPECT_EQ(preview.Columns, kPreviewCells);
    EXPECT_LT(preview.Lines[1].Cells[4].size(), 200U);
}

TEST(TablePreviewed, TakesAnyBytesAndAnyRoles) {
    std::mt19937 random(7);
    const std::string signs = "A1.,;\t \"'|#-\r\n\xC3\xE4xyz";
    for (int i = 0; i < 3000; ++i) {
        std::string bytes;
        for (auto left = random() % 300; left > 0; --left) bytes += signs[random() % signs.size()];
        TableOptions options;
        for (auto left = random() % 6; left > 0; --left)
            options.Columns.push_back(static_cast<TableRole>(random() % kTableRoles));
        if (random() % 2 == 0) options.Delimiter = ";\t, |"[random() % 5];
        if (random() % 2 == 0) options.Decimal = random() % 2 == 0 ? '.' : ',';
        options.Skip = random() % 4;
        TableText text;
        if (!TakeTableText(bytes, nullptr, text).empty()) continue;
        const TablePreview preview = PreviewTable(text, "f", options);
        for (const PreviewLine& line : preview.Lines) EXPECT_LE(line.Cells.size(), preview.Columns);
        if (!options.Columns.empty() && !MissingColumn(options.Columns).empty()) continue;
        TableRefusal bad;
        const TableResult result = CountTable(bytes, "f", options, bad);
        EXPECT_TRUE(result.Refusal.Refused() || result.Points.Count() > 0);
    }
}

TEST(TablePreviewed, CountsGoodAndBadRowsAndTellsTheFirstBadOne) {
    TableRefusal bad;
    const TableResult result = CountTable("A;1;2;3\nB;1;x;3\nC;1;2;3\nD;1;2\n", "f", {}, bad);
    EXPECT_EQ(result.Points.Count(), 2);
    EXPECT_EQ(result.Skipped, 2);
    EXPECT_EQ(bad.Line, 2);
    EXPECT_EQ(bad.Column, 3);
}

// A whole number of rows in front, and a comma behind that only a reading without --skip-bad notices.
TEST(TablePreviewed, CountsByTheDecimalThatARowFarBehindShows) {
    std::string text;
    for (int i = 1; i <= 1000; ++i) text += "P" + std::to_string(i) + ";1;2;3\n";
    text += "Q;1,5;2;3\n";
    TableRefusal bad;
    const TableResult result = CountTable(text, "f", {}, bad);
    EXPECT_EQ(result.Points.Count(), 1001);
    EXPECT_EQ(result.Skipped, 0);
    EXPECT_EQ(result.Form.Decimal, ',');
}

TEST(TablePreviewed, AReadingThatIsNoLongerWantedEndsWithoutPoints) {
    std::string text;
    for (int i = 1; i <= 50000; ++i) text += "P" + std::to_string(i) + ";1;2;3\n";
    int looks = 0;
    TableOptions options;
    options.GoesOn = [&looks](const TableProgress& progress) {
        EXPECT_GT(progress.Good, 0);
        return progress.Share < 0.5 && ++looks > 0;
    };
    const TableResult result = ReadTable(text, "f", options);
    EXPECT_TRUE(result.Cancelled);
    EXPECT_EQ(result.Points.Count(), 0);
    EXPECT_GE(looks, 4);
}

// --- Which files are asked for ----------------------------------------------------------------------------

TEST(TablePlain, IsWhatTheToldReaderReadsByTheDecimalOfTheSystem) {
    TableOptions point, comma;
    comma.PlainDecimal = ',';
    const std::string withPoint = "A;1.5;2;3\nB;1.5;2;3\n", withComma = "A;1,5;2;3\nB;1,5;2;3\n";
    EXPECT_TRUE(IsPlainTable(withPoint, "f", point));
    EXPECT_FALSE(IsPlainTable(withComma, "f", point));
    EXPECT_TRUE(IsPlainTable(withComma, "f", comma));
    EXPECT_FALSE(IsPlainTable(withPoint, "f", comma));
    EXPECT_TRUE(IsPlainTable("A;1;2;3\n\n\n", "f", point)) << "lines at the end do no harm";
    EXPECT_TRUE(IsPlainTable("A;1;2;3\nA;1;2;3\n", "f", point)) << "the pairing tells of equal names";
    EXPECT_FALSE(IsPlainTable("Name;X;Y;Z\nA;1;2;3\n", "f", point));
    EXPECT_FALSE(IsPlainTable("A 1 2 3\n", "f", point));
}

TEST(TablePlain, ProseAndRobotProgramsAreNoTables) {
    EXPECT_FALSE(LooksLikeTable("Dear all,\nthe points will follow in a week or 2.\n", "f", {}));
    EXPECT_FALSE(LooksLikeTable(std::string("\0\1\2\3", 4), "f", {}));
    EXPECT_FALSE(
        LooksLikeTable("DEFDAT P\nDECL E6POS XP1={X 1.5,Y 2.5,Z 3,A 0,B 0,C 0,S 2,T 10}\n"
                       "DECL E6POS XP2={X 1.5,Y 2.5,Z 3,A 0,B 0,C 0,S 2,T 10}\nENDDAT\n",
                       "f", {}));
    EXPECT_TRUE(LooksLikeTable("Name;X;Y;Z\nA;1;2;3\nB;1;x;3\n", "f", {}));
}

// --- Mapping ----------------------------------------------------------------------------------------------

TEST(TableMapping, IsTheOptionsOfTheCommandLine) {
    EXPECT_EQ(MappingText({}), "--format table");
    EXPECT_EQ(
        MappingText(SomeOptions()),
        "--format table --columns name,-,y,x,z --delimiter tab --decimal , --encoding utf-16be --unit ft "
        "--skip 3 --skip-bad --comment \"\\ \t;");
    // The words are those that the command takes.
    std::map<std::string, std::string> words;
    for (const DelimiterWord& word : TableDelimiterWords()) words[word.Name] = std::string(1, word.Delimiter);
    EXPECT_EQ(words, cli::DelimiterNames());
}

TEST(TableMapping, ComesBackFromItsText) {
    const std::string text = MappingText(SomeOptions());
    const auto again = MappingFromText(text);
    ASSERT_TRUE(again.has_value());
    EXPECT_EQ(MappingText(*again), text);
    EXPECT_EQ(again->Comment, SomeOptions().Comment);
    EXPECT_EQ(again->Columns, SomeOptions().Columns);
    EXPECT_EQ(MappingFromText("--format table --comment")->Comment, "") << "nothing begins a comment";
}

TEST(TableMapping, AnotherTextIsNone) {
    for (const char* text :
         {"", "x", "--format plain", "--format table --columns x,y", "--format table --skip -1",
          "--format table --skip", "--format table --unit furlong", "--format table --decimal ;",
          "--format table --delimiter dash", "--format table --encoding utf-7", "--format table --what"})
        EXPECT_FALSE(MappingFromText(text).has_value()) << text;
}

TEST(TableMapping, GoesWithTheJobAndComesBackFromItsBlock) {
    JobRecord job;
    PutMappingOfJob(job, kStartTable, MappingText(SomeOptions()));
    PutMappingOfJob(job, kTargetTable, "--format table");
    JobRecord again;
    const JobBlockFault fault = TakeJobBlock(JobBlock(job), again);
    ASSERT_EQ(fault.What, "");
    EXPECT_EQ(MappingOfJob(again, kStartTable), MappingText(SomeOptions()));
    EXPECT_EQ(MappingOfJob(again, kTargetTable), "--format table");
    PutMappingOfJob(again, kStartTable, "");
    EXPECT_EQ(MappingOfJob(again, kStartTable), "");
    EXPECT_EQ(again.OtherMembers.size(), 1U);
}

TEST(TableMapping, WhatIsNoTextInAJobIsNone) {
    for (const char* value : {"17", "\"", "[\"--format table\"]", "\"\\u00e4\"", "\"\\x\"", "\"\\u12\"",
                              "\"\\u004\"", "\"\\u00zz\"", "\"\\\"", "A\"", "\"A"}) {
        JobRecord job;
        job.OtherMembers.emplace_back(kStartTable, value);
        EXPECT_EQ(MappingOfJob(job, kStartTable), "") << value;
    }
}

TEST(TableMapping, ATextInAJobMayHaveEveryEscapeOfAscii) {
    const std::vector<std::array<std::string, 2>> rows = {
        {"\"\\u0041\"", "A"},
        {"\"a\\u0042c\"", "aBc"},
        {"\"\\u007E\\u007e\"", "~~"},
        {"\"\\\"\\\\\\/\\b\\f\\n\\r\\t\"", "\"\\/\b\f\n\r\t"},
        {"\"\"", ""},
    };
    for (const auto& [value, text] : rows) {
        JobRecord job;
        job.OtherMembers.emplace_back(kStartTable, value);
        EXPECT_EQ(MappingOfJob(job, kStartTable), text) << value;
    }
}

class TableMappingKept : public Program {
protected:
    TableMappingKept() {
        ::Run.SettingsFilePath = PathOf("corvinade.ini");
        IniDateiAnlegen();
    }
};

TEST_F(TableMappingKept, ByFileTheOldestGoing) {
    EXPECT_EQ(RememberedMapping("/cell/a.csv"), "");
    RememberMapping("/cell/a.csv", "--format table");
    RememberMapping("/cell/Höhe = 3.csv", MappingText(SomeOptions()));
    EXPECT_EQ(RememberedMapping("/cell/a.csv"), "--format table");
    EXPECT_EQ(RememberedMapping("/cell/Höhe = 3.csv"), MappingText(SomeOptions()));
    for (int i = 1; i < kMappingsKept; ++i)
        RememberMapping("/cell/" + std::to_string(i), "--format table --skip " + std::to_string(i));
    EXPECT_EQ(RememberedMapping("/cell/a.csv"), "") << "the oldest one";
    EXPECT_EQ(RememberedMapping("/cell/Höhe = 3.csv"), MappingText(SomeOptions()));
    EXPECT_EQ(RememberedMapping("/cell/7"), "--format table --skip 7");
    RememberMapping("/cell/7", "");
    EXPECT_EQ(RememberedMapping("/cell/7"), "");
    EXPECT_EQ(RememberedMapping("/cell/8"), "--format table --skip 8");
}

TEST_F(TableMappingKept, APathThatWouldSpoilTheSettingsIsNotKept) {
    const std::string before = Contents(::Run.SettingsFilePath);
    RememberMapping("/cell/a\tb.csv", "--format table");
    RememberMapping("/cell/a\nb.csv", "--format table");
    RememberMapping("", "--format table");
    EXPECT_EQ(Contents(::Run.SettingsFilePath), before);
}

// --- Words ------------------------------------------------------------------------------------------------

TEST(TableWords, NameControlsWhereTheCommandLineHasOptions) {
    EXPECT_EQ(
        RefusalOfDesktop(
            "Cannot read \"a.csv\", line 7, column 3: \"12;5\" is not a number (--skip-bad passes it over)",
            "a.csv"),
        "Line 7, column 3: \"12;5\" is not a number (without \"Strict\" it is passed over)");
    EXPECT_EQ(RefusalOfDesktop("Cannot read \"a.csv\": there is no point in it", "a.csv"),
              "There is no point in it");
    const std::string all = InWordsOfDesktop(
        "--columns --columns says --columns x,y,z says --skip --skip-bad passes it over --delimiter --decimal "
        "--encoding --comment --unit");
    EXPECT_EQ(all.find("--"), std::string::npos) << all;
}
