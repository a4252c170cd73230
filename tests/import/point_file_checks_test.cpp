// The checks on point files: delimiter, columns, decimal delimiter.
#include "import/point_file_checks.h"

#include "cli/headless.h"
#include "core/files.h"
#include "core/job.h"
#include "core/platform.h"
#include "core/run.h"
#include "import/point_file.h"
#include "support/fixture.h"

using namespace corvinade;

namespace {

class PointFileChecks : public Program {
protected:
    std::string DelimiterOf(const std::string& content, const std::string& before = "") {
        std::string delimiter = before;
        FindTrennzeichen(Write("points.txt", content), delimiter);
        return delimiter;
    }
    // Runs all checks on a file; returns its path.
    std::string Check(const std::string& content) {
        const std::string path = Write("points.txt", content);
        ::Run.ImportFailed = kFalse;
        ASCII_FileCheck(path, hasName_, ::Run.Delimiter);
        return path;
    }
    Flag hasName_ = kFalse;
};

TEST_F(PointFileChecks, EachDelimiterIsFound) {
    for (const char* sign : {";", ":", "*", "#", "\t", ","}) {
        const std::string s = sign;
        EXPECT_EQ(DelimiterOf("A" + s + "1" + s + "2" + s + "3\r\n"), s);
    }
}

TEST_F(PointFileChecks, ABlankIsNeverFoundAndKeepsThePreviousDelimiter) {
    EXPECT_EQ(DelimiterOf("A 1 2 3\r\n"), "");
    EXPECT_EQ(DelimiterOf("A 1 2 3\r\n", "#"), "#");
}

TEST_F(PointFileChecks, TheLastRisingNeighbourWins) {
    // Counts: blank 3, ; 4, : 0, * 1. The star rises last, though the semicolon is more frequent.
    EXPECT_EQ(DelimiterOf("A; 1; 2; 3;*\r\n"), "*");
    EXPECT_EQ(DelimiterOf("A; 1; 2; 3;\r\n"), ";");
    // More blanks than semicolons: nothing rises.
    EXPECT_EQ(DelimiterOf("A;  1;  2;  3\r\n"), "");
}

TEST_F(PointFileChecks, TheCommaIsNoDelimiterWhereItIsTheDecimalDelimiter) {
    Headless.Decimal = ',';
    EXPECT_EQ(DelimiterOf("A,1,2,3\r\n"), "");
    EXPECT_EQ(DelimiterOf("A,1,2,3\r\n", ";"), ";");
}

TEST_F(PointFileChecks, DecimalCommasAreNoDelimiterOnASystemWithDecimalPoint) {
    EXPECT_EQ(DelimiterOf("A;1,5;2,5;3,5\r\nB;4;5,5;-6,5E1\r\n"), ";");
    EXPECT_EQ(DelimiterOf("1,5;2,5;3,5\r\n\r\n1;2;3\r\n"), ";");
    EXPECT_EQ(DelimiterOf("A\t1,5\t2,5\t3,5\tc,d,e\r\n"), "\t");
}

TEST_F(PointFileChecks, DecimalCommasBetweenBlanksAreNoDelimiterEither) {
    EXPECT_EQ(DelimiterOf("A 1,5 2,5 3,5\r\nB 4 5,5 -6,5\r\n"), " ");
    EXPECT_EQ(DelimiterOf("1,5 2,5 3,5\r\n"), " ");
    EXPECT_EQ(DelimiterOf("A, 1, 2, 3\r\n"), ",");
    EXPECT_EQ(DelimiterOf("A 1,5 2,5\r\n"), ",");
    EXPECT_EQ(DelimiterOf("A 1,5 2,5 3,5,\r\n"), ",") << "the last comma stands behind the numbers";
}

TEST_F(PointFileChecks, CommasStandWhereTheFileIsNoTableWithoutThem) {
    EXPECT_EQ(DelimiterOf("A:1,1,2,3\r\nB:2,4,5,6\r\n"), ",");      // two columns
    EXPECT_EQ(DelimiterOf("A;1,5;2,5;3,5\r\nB;1,5;2,5\r\n"), ",");  // columns change
    EXPECT_EQ(DelimiterOf("A;1,5;x2,5;3,5\r\n"), ",");              // no number
    EXPECT_EQ(DelimiterOf("A;1.5,;2.5,;3.5,;\r\n"), ",");           // decimal points
    EXPECT_EQ(DelimiterOf("A,1.5,2.5,3.5\r\n"), ",");               // nothing else there
}

TEST_F(PointFileChecks, AFileWithoutDelimiterIsRefused) {
    const std::string path = Check("A 1 2 3\r\n");
    EXPECT_EQ(::Run.ImportFailed, kTrue);
    ASSERT_EQ(Messages().size(), 1u);
    EXPECT_EQ(LastMessage(), CrLf("Couldn´t find any delimiter in file: \n\n\n" + path +
                                  "\n\n\nallowed is ONLY: \n\nSpace ' '\nor Semicolon ';'\nor Colon ':'\n"
                                  "or Star '*'\nor Sharp '#'\nor Tab '   '\n"
                                  "or and Comma IF Decimal Delimiter is NOT comma ','"));
}

TEST_F(PointFileChecks, ACommaFileOnASystemWithDecimalCommaIsRefused) {
    Headless.Decimal = ',';
    Check("A,1,2,3\r\n");
    EXPECT_EQ(::Run.ImportFailed, kTrue);
}

TEST_F(PointFileChecks, ABlankFileIsReadWithTheBlankOfAnEarlierRun) {
    ::Run.Delimiter = std::string(" ");
    Check("A 1 2 3\r\nB 4 5 6\r\n");
    EXPECT_EQ(::Run.ImportFailed, kFalse);
    EXPECT_EQ(hasName_, kTrue);
}

TEST_F(PointFileChecks, AChangeOfColumnsIsRefusedWithItsRow) {
    const std::string path = Check("A;1;2;3\r\n\r\nB;1;2;3\r\nC;1;2\r\nD;1\r\n");
    EXPECT_EQ(::Run.ImportFailed, kTrue);
    EXPECT_EQ(LastMessage(), CrLf("File: " + path +
                                  "\n\nIn Row 4 the number of columns has changed relativ to the rows "
                                  "before\nPlease diagnose and fix"));
}

TEST_F(PointFileChecks, TwoDelimitersInARowAreTwoColumnsButOneBoundary) {
    std::int64_t columns = 0, badRow = 0;
    Diverse_Checks(Write("points.txt", "A;;1;2;3\r\n"), columns, ";", badRow);
    EXPECT_EQ(columns, 5);
    EXPECT_EQ(badRow, 0);
    std::int32_t fields = 0;
    AnzSpalten("A;;1;2;3", fields, ";");
    EXPECT_EQ(fields, 4);
}

TEST_F(PointFileChecks, BlanksBesideADelimiterDoNotCountAsColumns) {
    std::int64_t columns = 0, badRow = 0;
    Diverse_Checks(Write("points.txt", "A;  1;2;3\r\nB;1;2;3\r\n"), columns, ";", badRow);
    EXPECT_EQ(columns, 4);
    EXPECT_EQ(badRow, 0);
}

TEST_F(PointFileChecks, AnEmptyFileHasNoColumns) {
    std::int64_t columns = 0, badRow = 7, lines = 7;
    const std::string path = Write("points.txt", "");
    Diverse_Checks(path, columns, ";", badRow);
    EXPECT_EQ(columns, -9999);
    EXPECT_EQ(badRow, 0);
    AnzZeilen(path, lines);
    EXPECT_EQ(lines, 0);
}

TEST_F(PointFileChecks, LinesWithContentAreCounted) {
    std::int64_t lines = 0;
    AnzZeilen(Write("points.txt", "A;1\r\n\r\n\nx\r\rB;2"), lines);
    EXPECT_EQ(lines, 3);
}

TEST_F(PointFileChecks, YesTurnsTheDecimalCommasOfTheFileIntoPoints) {
    Headless.Answers["message"].push_back("Yes");
    const std::string path = Check("A;1,5;2,5;3,5\r\nB;4;5;6\r\n");
    EXPECT_EQ(::Run.ImportFailed, kFalse);
    EXPECT_EQ(::Run.Delimiter, ";");
    ASSERT_EQ(Messages().size(), 1u);
    EXPECT_EQ(Headless.Dialogs[0].Title, "Country Settings; issue with . and ,");
    EXPECT_EQ(LastMessage(),
              CrLf("File: " + path +
                   "\n\nYour Decimal Delimiter is different to your settings in your operating "
                   "system, which is \".\"\n\nShould I change the , in your File to . ?"));
    EXPECT_EQ(Contents(path), "A;1.5;2.5;3.5\r\nB;4;5;6");
}

TEST_F(PointFileChecks, OneFinalLineEndIsDroppedAndOtherBytesStay) {
    Headless.Answers["message"] = {"Yes", "Yes", "Yes"};
    EXPECT_EQ(Contents(Check("\xEF\xBB\xBFÄ;1,5;2;3\r\n\r\n")), "\xEF\xBB\xBFÄ;1.5;2;3\r\n");
    EXPECT_EQ(Contents(Check("\xC4;1,5;2;3\nB;1;2;3\n")), "\xC4;1.5;2;3\nB;1;2;3");
    EXPECT_EQ(Contents(Check("A;1,5;2;3")), "A;1.5;2;3");
}

TEST_F(PointFileChecks, WhatTheUserSavedWhileTheQuestionStoodIsKept) {
    Headless.OnQuestion = [this](const DialogShown&) {
        Write("points.txt", "A;1,5;2;3\r\nNEW;1,25;2;3\r\n");
        return std::optional<std::string>("Yes");
    };
    const std::string path = Check("A;1,5;2,5;3,5\r\n");
    EXPECT_EQ(Contents(path), "A;1.5;2;3\r\nNEW;1.25;2;3");
}

TEST_F(PointFileChecks, NoLeavesTheFileAndStopsTheImport) {
    Headless.Answers["message"].push_back("No");
    const std::string path = Check("A;1,5;2,5;3,5\r\n");
    EXPECT_EQ(::Run.ImportFailed, kTrue);
    EXPECT_EQ(Contents(path), "A;1,5;2,5;3,5\r\n");
}

TEST_F(PointFileChecks, PointsBecomeCommasOnASystemWithDecimalComma) {
    Headless.Decimal = ',';
    Headless.Answers["message"].push_back("Yes");
    Job.PathMCS = Write("start.txt", "A;1.5;2.5;3.5\r\n");
    Job.PathOCS = Write("target.txt", "A;1,5;2,5;3,5\r\n");
    Einlesen_Neu();
    EXPECT_EQ(Job.Start.X[1], 1.5);
    EXPECT_EQ(Job.Target.Z[1], 3.5);
    EXPECT_EQ(Contents(Job.PathMCS), "A;1,5;2,5;3,5");
}

TEST_F(PointFileChecks, BothDecimalDelimitersInOneFileAreRefused) {
    ::Run.Delimiter = std::string(";");
    const std::string path = Check("A.B;1,5;2;3;\r\nC.D;1;2;3;\r\n");
    EXPECT_EQ(::Run.ImportFailed, kTrue);
    EXPECT_EQ(LastMessage(),
              CrLf("File: " + path + "\n\nFound both possible DecimalDelimiters \".\" and \",\" in \n\n" +
                   path + "\n\nOnly \".\" OR \",\" are allowed!\n\nView File and fix problem"));
}

TEST_F(PointFileChecks, TooManyDecimalDelimitersInOneRowAreRefused) {
    const std::string path = Check("A;1.5;2.5;3.5\r\nA.B;1.5.;2.5;3.5\r\n");
    EXPECT_EQ(::Run.ImportFailed, kTrue);
    EXPECT_EQ(LastMessage(),
              CrLf("File: " + path + "\n\nTo much DecimalDelimiter in Row 2. Please check and fix"));
}

TEST_F(PointFileChecks, TheThirdCoordinateOfANamedPointIsNotLookedAt) {
    Check("A;1.5;2.5;3,5\r\n");
    EXPECT_EQ(::Run.ImportFailed, kFalse);
    EXPECT_TRUE(Messages().empty());
}

TEST_F(PointFileChecks, NamesOfRobotFilesAreSkippedAndTheirThirdCoordinateCounts) {
    const std::string path = Write("robot.txt", "A,B;1.5;2;3.5;\r\n");
    ::Run.Delimiter = std::string(";");
    ASCII_FileCheck(path, ::Run.RobotFileHasId, ::Run.Delimiter);
    EXPECT_EQ(::Run.RobotFileHasId, kTrue);
    EXPECT_EQ(::Run.ImportFailed, kFalse);
    EXPECT_TRUE(Messages().empty());
}

TEST_F(PointFileChecks, AFileThatCannotBeReadIsNamed) {
    try {
        std::int64_t lines = 0;
        AnzZeilen(folder_, lines);
        FAIL();
    } catch (const PlatformError& error) {
        EXPECT_NE(error.What.find(folder_), std::string::npos);
    }
}

TEST_F(PointFileChecks, ARefusedRewriteLeavesTheFile) {
    Headless.Answers["message"].push_back("Yes");
    FileFaults.Refuse = [](const std::string& operation, const std::string&) {
        return operation == "flush" ? std::string("disk full") : std::string();
    };
    EXPECT_THROW(Check("A;1,5;2,5;3,5\r\n"), PlatformError);
    EXPECT_EQ(Contents(PathOf("points.txt")), "A;1,5;2,5;3,5\r\n");
}

TEST_F(PointFileChecks, TheSystemsDecimalDelimiterIsReadFromANumber) {
    Flag isComma = kTrue;
    DezTrennzeichenIstKomma(isComma);
    EXPECT_EQ(isComma, kFalse);
    Headless.Decimal = ',';
    DezTrennzeichenIstKomma(isComma);
    EXPECT_EQ(isComma, kTrue);
}

TEST_F(PointFileChecks, TextsAreCountedAcrossLineEnds) {
    std::int64_t count = 0;
    wieOftStringinFile(Write("a.dat", "{X 1}{\r\nX 2} {x} {X"), "{X", count);
    EXPECT_EQ(count, 3);
    wieOftStringinFile(Write("a.dat", ""), "{X", count);
    EXPECT_EQ(count, 0);
    wieOftStringinFile(Write("a.dat", "abc"), "", count);
    EXPECT_EQ(count, 0);
}

TEST_F(PointFileChecks, FirstAndLastCharactersAreComparedAsCharacters) {
    const std::vector<std::string> texts = {"Ü", "b"};
    Flag result = kFalse;
    LinksIstString("Üb", texts, result);
    EXPECT_EQ(result, kTrue);
    RechtsIstString("aÜ", texts, result);
    EXPECT_EQ(result, kTrue);
    LinksIstString("ab", texts, result);
    EXPECT_EQ(result, kFalse);
    RechtsIstString("", texts, result);
    EXPECT_EQ(result, kFalse);
    LinksIstString("", texts, result);
    EXPECT_EQ(result, kFalse);
    StringGleichFeld("b", texts, result);
    EXPECT_EQ(result, kTrue);
    StringGleichFeld("Ü", texts, result);
    EXPECT_EQ(result, kFalse);
}

}  // namespace
