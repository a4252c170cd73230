// Names in CSV, which spreadsheets open.
#include "cli/command_line.h"
#include "cli/csv.h"
#include "core/job.h"
#include "support/fixture.h"

using namespace corvinade;

class CsvCellsTest : public Program {
protected:
    ~CsvCellsTest() override { CsvCells = {}; }
};

TEST_F(CsvCellsTest, WhatASpreadsheetCalculatesIsMadeAText) {
    for (const char* text : {"=1+1", "+cmd|x", "-2+3", "@SUM(A1)", " =1+1", "=", "-", "--1", "+-+1", "-inf"})
        EXPECT_EQ(CsvText(text), "'" + std::string(text));
    EXPECT_EQ(CsvText("=A1;B2"), "\"'=A1;B2\"");
    EXPECT_EQ(CsvText("\t=1+1"), "' =1+1");
    EXPECT_EQ(CsvText("\r=1+1"), "' =1+1");
    EXPECT_EQ(CsvText("a\nb\x1b[31m\x7f"), "a b [31m ");
}

TEST_F(CsvCellsTest, NumbersAndNamesStayAsTheyAre) {
    for (const char* text : {"-5", "+5", "-1.5e-3", "+.5", "A=1", "P-1", "a@b", "12", "", " ", "Prüfpunkt €"})
        EXPECT_EQ(CsvText(text), text);
    EXPECT_EQ(CsvText("a;\"b\""), "\"a;\"\"b\"\"\"");
}

TEST_F(CsvCellsTest, RawTextStays) {
    CsvCells.Raw = true;
    EXPECT_EQ(CsvText("=1+1"), "=1+1");
    EXPECT_EQ(CsvText("a\nb"), "\"a\nb\"");
}

TEST_F(CsvCellsTest, TheCommandsMakeThemHarmlessUnlessTheyAreAskedNotTo) {
    const std::string start = Write("s.txt", "=1+1;0;0;0\n@B;1000;0;0\n-3;0;2000;0\nD;0;0;3000\n");
    const std::string target = Write("t.txt", "=1+1;5;6;7\n@B;1005;6;7\n-3;5;2006;7\nD;5;6;3007\n");
    const std::string job = PathOf("j.cvn"), csv = PathOf("o.csv");
    const Outcome fit = FreshCommandLine({"fit", start, target, "--csv", "--save", job});
    ASSERT_EQ(fit.Status, 0) << fit.Err;
    EXPECT_NE(fit.Out.find("\n'=1+1;"), std::string::npos) << fit.Out;
    EXPECT_NE(fit.Out.find("\n'@B;"), std::string::npos);
    EXPECT_NE(fit.Out.find("\n-3;"), std::string::npos);
    EXPECT_NE(FreshCommandLine({"fit", start, target, "--csv", "--raw-text"}).Out.find("\n=1+1;"),
              std::string::npos);
    EXPECT_NE(FreshCommandLine({"distances", job, "--csv"}).Out.find("\n'=1+1;"), std::string::npos);
    EXPECT_NE(FreshCommandLine({"distances", job, "--csv", "--raw-text"}).Out.find("\n=1+1;"),
              std::string::npos);
    ASSERT_EQ(FreshCommandLine({"convert", job, csv}).Status, 0);
    EXPECT_NE(Contents(csv).find(";'=1+1;"), std::string::npos) << Contents(csv);
    ASSERT_EQ(FreshCommandLine({"convert", job, csv, "--raw-text"}).Status, 0);
    EXPECT_NE(Contents(csv).find(";=1+1;"), std::string::npos);
}

TEST_F(CsvCellsTest, AFileNameThatIsNoUtf8IsTold) {
    const std::string start = Write("s.txt", "A;0;0;0\nB;1000;0;0\nC;0;2000;0\nD;0;0;3000\n");
    const std::string target = Write("t.txt", "A;5;6;7\nB;1005;6;7\nC;5;2006;7\nD;5;6;3007\n");
    const std::string job = PathOf("j\xff\xfe.cvn");
    ASSERT_EQ(FreshCommandLine({"fit", start, target, "--save", job}).Status, 0);
    for (const std::vector<std::string>& line :
         std::vector<std::vector<std::string>>{{"info", job, "--json"},
                                               {"distances", job, "--json"},
                                               {"convert", job, PathOf("o.json"), "--json"}}) {
        const Outcome outcome = FreshCommandLine(line);
        EXPECT_EQ(outcome.Status, 0) << line[0] << ": " << outcome.Err;
        if (line[0] == "distances") continue;  // which names no file
        EXPECT_NE(outcome.Out.find("j\xEF\xBF\xBD"), std::string::npos) << outcome.Out;
    }
}

TEST_F(CsvCellsTest, ANameThatNoJobKeepsIsRefusedByTheImport) {
    const std::string target = Write("t.txt", "A;5;6;7\nB;1005;6;7\nC;5;2006;7\n");
    const auto start = [&](std::size_t size) {
        return Write("s.txt", "A;0;0;0\nB;1000;0;0\nC;0;2000;0\n" + std::string(size, 'n') + ";1;2;3\n");
    };
    const Outcome outcome = FreshCommandLine({"fit", start(65536), target, "--save", PathOf("j.cvn")});
    EXPECT_NE(outcome.Status, 0);
    EXPECT_NE(outcome.Err.find("has 65536 bytes, and a job keeps 65535"), std::string::npos) << outcome.Err;
    EXPECT_NE(outcome.Err.find("s.txt"), std::string::npos);
    EXPECT_EQ(FreshCommandLine({"fit", start(65535), target, "--save", PathOf("j.cvn")}).Status, 0);
    EXPECT_EQ(FreshCommandLine({"info", PathOf("j.cvn")}).Status, 0);
}

TEST_F(CsvCellsTest, ANameOfAMegabyteIsToldShortAndTheBatchKeepsIt) {
    const std::string target = Write("t.txt", "A;5;6;7\nB;1005;6;7\nC;5;2006;7\n"), name(1'000'000, 'n'),
                      start = Write("s.txt", "A;0;0;0\nB;1000;0;0\nC;0;2000;0\n"), job = PathOf("j.cvn"),
                      named = Write("n.txt", name + ";1;2;3\n");
    const Outcome fit = FreshCommandLine({"fit", named, target, "--save", job});
    EXPECT_NE(fit.Status, 0);
    EXPECT_NE(fit.Err.find("has 1000000 bytes, and a job keeps 65535"), std::string::npos);
    EXPECT_LT(fit.Err.size(), 1000U);
    ASSERT_EQ(FreshCommandLine({"fit", start, target, "--save", job}).Status, 0);
    // A job has no part in the names of the batch.
    ASSERT_EQ(FreshCommandLine({"transform", job, named, "--out", PathOf("o.txt")}).Status, 0);
    EXPECT_TRUE(Contents(PathOf("o.txt")) == name + "\t6.000\t8.000\t10.000\r\n");
}
