// Reading of text point files into the job.
#include "import/point_file.h"

#include "cli/headless.h"
#include "core/controller.h"
#include "core/files.h"
#include "core/job.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/units.h"
#include "support/fixture.h"

using namespace corvinade;

namespace {

class PointFile : public Program {
protected:
    // Reads one file as start and another as target set.
    void Import(const std::string& start, const std::string& target = "Z;1;1;1\r\n") {
        Job.PathMCS = Write("start.txt", start);
        Job.PathOCS = Write("target.txt", target);
        ::Run.ImportFailed = kFalse;
        Einlesen_Neu();
    }
    std::string ErrorOf(const std::string& start, const std::string& target = "Z;1;1;1\r\n") {
        try {
            Import(start, target);
        } catch (const PlatformError& error) {
            return error.What;
        }
        return "";
    }
};

void ExpectStart(std::size_t i, const std::string& name, double x, double y, double z) {
    ASSERT_LT(i, Job.Start.Name.size());
    EXPECT_EQ(Job.Start.Name[i], name);
    EXPECT_EQ(Job.Start.X[i], x);
    EXPECT_EQ(Job.Start.Y[i], y);
    EXPECT_EQ(Job.Start.Z[i], z);
}

TEST_F(PointFile, FourColumnsAreNameAndCoordinates) {
    Import("A;1;2;3\r\nB;-4.5;5.25;1E2\r\n", "C;7;8;9\r\n");
    EXPECT_EQ(::Run.ImportFailed, kFalse);
    EXPECT_TRUE(Messages().empty());
    EXPECT_EQ(Job.Start.Count(), 2);
    EXPECT_EQ(Job.Target.Count(), 1);
    ExpectStart(1, "A", 1, 2, 3);
    ExpectStart(2, "B", -4.5, 5.25, 100);
    EXPECT_EQ(Job.Target.Name[1], "C");
    EXPECT_EQ(Job.Target.X[1], 7);
    EXPECT_EQ(Job.Start.X[0], std::nullopt);
    EXPECT_TRUE(JobIsWhole(Job));
}

TEST_F(PointFile, ThreeColumnsAreNumberedAndSaidSo) {
    Import("1;2;3\n4;5;6\n");
    ExpectStart(1, "1", 1, 2, 3);
    ExpectStart(2, "2", 4, 5, 6);
    ASSERT_EQ(Messages().size(), 1u);
    EXPECT_EQ(Messages()[0], "File: " + Job.PathMCS +
                                 "\r\n\r\nFile has only 3 columns; they will be interpreted as x, y, z; "
                                 "Point Number will be Line Number of File!");
}

TEST_F(PointFile, FurtherColumnsAreIgnored) {
    Import("A;1;2;3;x;y\r\nB;4;5;6;;\r\n");
    EXPECT_EQ(::Run.ImportFailed, kFalse);
    ExpectStart(2, "B", 4, 5, 6);
}

TEST_F(PointFile, TwoColumnsHaveANameAndMissingCoordinatesOfZero) {
    Import("A;1\r\nB;2\r\n");
    ExpectStart(1, "A", 1, 0, 0);
    ExpectStart(2, "B", 2, 0, 0);
}

TEST_F(PointFile, ValuesAreReadInTheChosenLengthUnit) {
    Units.LengthFactor = 1 / 25.4;
    Import("A;1;2;-3\r\n");
    EXPECT_NEAR(*Job.Start.X[1], 25.4, 1e-12);
    EXPECT_NEAR(*Job.Start.Y[1], 50.8, 1e-12);
    EXPECT_NEAR(Job.Start.Z[1], -76.2, 1e-12);
}

TEST_F(PointFile, TwoBlanksBesideASemicolonDisturbNothing) {
    Import("A ;  1;2;3\r\nB;4;5;6\r\n");
    ExpectStart(1, "A", 1, 2, 3);
    ExpectStart(2, "B", 4, 5, 6);
}

TEST_F(PointFile, ABlankEndsAFieldWhateverTheDelimiter) {
    Import("A 7;1;2;3\r\n");
    ExpectStart(1, "A", 7, 1, 2);
}

TEST_F(PointFile, SeveralLineEndsAreLineEnds) {
    Import("A;1;2;3\rB;4;5;6\nC;7;8;9\r\nD;1;1;1");
    ASSERT_EQ(Job.Start.Count(), 4);
    ExpectStart(2, "B", 4, 5, 6);
    ExpectStart(4, "D", 1, 1, 1);
}

TEST_F(PointFile, EmptyLinesAtTheEndGiveNoMessage) {
    Import("A;1;2;3\r\nB;4;5;6\r\n\r\n\r\n\r\n");
    EXPECT_EQ(Job.Start.Count(), 2);
    EXPECT_TRUE(Messages().empty());
}

TEST_F(PointFile, EmptyLinesBetweenPointsAreReportedOneByOne) {
    Import("A;1;2;3\r\n\r\n\r\nB;4;5;6\r\n");
    EXPECT_EQ(Job.Start.Count(), 2);
    ExpectStart(2, "B", 4, 5, 6);
    ASSERT_EQ(Messages().size(), 2u);
    EXPECT_EQ(Messages()[0], "Empty Row in File \r\n" + Job.PathMCS + "\r\n in line 2 will be ignored");
    EXPECT_EQ(Messages()[1], "Empty Row in File \r\n" + Job.PathMCS + "\r\n in line 3 will be ignored");
}

TEST_F(PointFile, ALineOfOneCharacterLeavesAnUnusedElementAtTheEnd) {
    ::Run.Delimiter = std::string(";");
    // The line holds no delimiter, so the columns of this file change there.
    Import(";1;2\r\n;3;4\r\n");
    EXPECT_EQ(Job.Start.Count(), 2);
    Import("7\r\n89\r\n");
    ASSERT_EQ(Job.Start.Count(), 2);
    EXPECT_EQ(Job.Start.Name[1], "89");
    EXPECT_EQ(Job.Start.Name[2], "");
    EXPECT_EQ(Job.Start.X[2], std::nullopt);
    EXPECT_EQ(LastMessage(), "Empty Row in File \r\n" + Job.PathMCS + "\r\n in line 1 will be ignored");
}

TEST_F(PointFile, ALineOfOneUmlautIsOneCharacterInEitherEncoding) {
    ::Run.Delimiter = std::string(";");
    Import("ü\r\nab\r\n", "\xFC\r\nab\r\n");
    EXPECT_EQ(Job.Start.Name[1], "ab");
    EXPECT_EQ(Job.Target.Name[1], "ab");
    EXPECT_EQ(Messages().size(), 2u);
}

TEST_F(PointFile, NamesAreDecodedLineByLine) {
    Import("\xC4x;1;2;3\r\nÖ;4;5;6\r\n");
    ExpectStart(1, "Äx", 1, 2, 3);
    ExpectStart(2, "Ö", 4, 5, 6);
}

TEST_F(PointFile, ByteOrderMarksAreNoPartOfTheFirstName) {
    Import(
        "\xEF\xBB\xBF"
        "A;1;2;3\r\n",
        "\xFF\xFE"
        "B;1;2;3\r\n");
    ExpectStart(1, "A", 1, 2, 3);
    EXPECT_EQ(Job.Target.Name[1], "B");
}

TEST_F(PointFile, AMissingStartFileIsNamed) {
    Job.PathMCS = PathOf("none.txt");
    Einlesen_Neu();
    EXPECT_EQ(::Run.ImportFailed, kTrue);
    EXPECT_EQ(LastMessage(), "File " + Job.PathMCS + " not found");
}

TEST_F(PointFile, AnEmptyPathIsNamedAsItIs) {
    Einlesen_Neu();
    EXPECT_EQ(::Run.ImportFailed, kTrue);
    EXPECT_EQ(LastMessage(), "File  not found");
}

TEST_F(PointFile, AMissingTargetFileLeavesTheStartPointsRead) {
    Job.PathMCS = Write("start.txt", "A;1;2;3\r\n");
    Job.PathOCS = folder_;  // a folder is no file
    Einlesen_Neu();
    EXPECT_EQ(::Run.ImportFailed, kTrue);
    EXPECT_EQ(Job.Start.Count(), 1);
    ExpectStart(1, "A", 1, 2, 3);
    EXPECT_TRUE(JobIsWhole(Job));
}

TEST_F(PointFile, AFieldThatIsNoNumberEndsTheStartFile) {
    EXPECT_EQ(ErrorOf("A;1;2;3\r\nB;4;x5;6\r\n"),
              "Cannot read \"" + PathOf("start.txt") + "\", line 2: \"x5\" is not a number");
    EXPECT_TRUE(JobIsWhole(Job));
    ExpectStart(1, "A", 1, 2, 3);
}

TEST_F(PointFile, NumbersAreNumbersAndNothingElse) {
    for (const char* bad :
         {"nan", "inf", "1e400", "0x10", "1'000", "--1", "1-", "1e", ".", "-", "+-1", "1.2.3"})
        EXPECT_NE(ErrorOf(std::string("A;1;") + bad + ";3\r\n"), "") << bad;
    for (const char* good : {"+1", "1.", ".5", "1e3", "1E-3", "123456789012345678901234567890", "1e-400"})
        EXPECT_EQ(ErrorOf(std::string("A;1;") + good + ";3\r\n"), "") << good;
}

TEST_F(PointFile, DecimalsOfAnyLengthAreRoundedCorrectly) {
    // strtod rounds correctly and is another implementation.
    for (const char* text : {"0.1", "123.4567", "-999999999999999", "0.000000000000001", "9007199254740993",
                             "1234567.89012345", "0.30000000000000004", "12345678.9012345678"}) {
        Import(std::string("A;") + text + ";0;0\r\n");
        EXPECT_EQ(*Job.Start.X[1], std::strtod(text, nullptr)) << text;
    }
}

TEST_F(PointFile, AFieldThatIsNoNumberLeavesATargetValueWithoutNumber) {
    Import("A;1;2;3\r\n", "A;1;y;z\r\nB;4;5;6\r\n");
    EXPECT_EQ(::Run.ImportFailed, kFalse);
    EXPECT_EQ(Job.Target.X[1], 1);
    EXPECT_EQ(Job.Target.Y[1], std::nullopt);
    EXPECT_EQ(Job.Target.Z[1], 0);
    EXPECT_EQ(Job.Target.Z[2], 6);
}

TEST_F(PointFile, NumbersThatTheUnitTakesBeyondAnyValueAreNoNumbers) {
    Units.LengthFactor = 0.001;  // metres
    EXPECT_EQ(ErrorOf("A;1;2;1e307\r\n"),
              "Cannot read \"" + PathOf("start.txt") + "\", line 1: \"1e307\" is not a number");
    Import("A;1;2;3\r\n", "A;1e307;2;1e307\r\n");
    EXPECT_EQ(Job.Target.X[1], std::nullopt);
    EXPECT_EQ(Job.Target.Y[1], 2000);
    EXPECT_EQ(Job.Target.Z[1], 0);
}

TEST_F(PointFile, AFileWithoutPointsIsRefusedAlsoWithTheDelimiterOfAnEarlierFile) {
    for (const char* nothing : {"", "\r\n\r\n", "\n", "\xEF\xBB\xBF"}) {
        Import("A;1;2;3\r\n");
        EXPECT_EQ(ErrorOf("A;1;2;3\r\n", nothing),
                  "Cannot read \"" + PathOf("target.txt") + "\": there is no point in it");
        EXPECT_EQ(ErrorOf(nothing), "Cannot read \"" + PathOf("start.txt") + "\": there is no point in it");
        EXPECT_TRUE(JobIsWhole(Job));
    }
}

TEST_F(PointFile, ASixteenBitTextIsRefusedInEitherSet) {
    const auto wide = [](const std::string& text, bool lowFirst) {
        std::string bytes;
        for (const char c : text) bytes += lowFirst ? std::string{c, '\0'} : std::string{'\0', c};
        return bytes;
    };
    const std::string text = "A;1;2;3\r\n";
    for (const std::string& bytes : {"\xFF\xFE" + wide(text, true), "\xFE\xFF" + wide(text, false)}) {
        const std::string why = "it is a 16-bit text; please save it as UTF-8 or as single-byte text";
        EXPECT_EQ(ErrorOf(bytes), "Cannot read \"" + PathOf("start.txt") + "\": " + why);
        EXPECT_EQ(ErrorOf(text, bytes), "Cannot read \"" + PathOf("target.txt") + "\": " + why);
    }
    for (const std::string& bytes : {wide(text, true), text + std::string("B;4;5;\0\r\n", 9)})
        EXPECT_NE(ErrorOf(text, bytes).find(": it is no text, it holds characters of code 0"),
                  std::string::npos);
    EXPECT_TRUE(JobIsWhole(Job));
}

TEST_F(PointFile, AParaboloidTakesTheStartPointsAsTarget) {
    Job.IsParaboloid = kTrue;
    Job.PathOCS = PathOf("none.txt");
    Job.PathMCS = Write("start.txt", "A;1;2;3\r\nB;4;5;6\r\n");
    Einlesen_Neu();
    EXPECT_TRUE(Messages().empty());
    EXPECT_EQ(Job.Target.Name, Job.Start.Name);
    EXPECT_EQ(Job.Target.Y, Job.Start.Y);
    EXPECT_EQ(Job.Target.Count(), 2);
}

TEST_F(PointFile, APreviousJobsPairsAreForgotten) {
    for (PointSet* points : {&Job.Start, &Job.Target}) points->Resize(50);
    Job.SetPairs(50);
    Import("A;1;2;3\r\n");
    EXPECT_EQ(Job.Pairs(), 0);
    EXPECT_EQ(Job.StartOnly(), 1);
    EXPECT_TRUE(JobIsWhole(Job));
}

TEST_F(PointFile, WhatAFailedReadingLeavesOfAClosedJobCounts) {
    Import("A;1;2;3\r\n", "Y;1;1;1\r\nZ;1;1;1\r\n");
    Initialisieren();
    EXPECT_EQ(Job.Target.Count(), 0);
    EXPECT_THROW(Import("A;1;2;3\r\nB;x;5;6\r\n"), PlatformError);
    EXPECT_EQ(Job.Start.Count(), 2);
    EXPECT_EQ(Job.Target.Count(), 2);
    EXPECT_TRUE(JobIsWhole(Job));
}

TEST_F(PointFile, MorePointsFollowTheOldOnesWithPrefixOrSuffix) {
    Import("A;1;2;3\r\n");
    EXPECT_TRUE(ReadMorePoints(Write("more.txt", "B;4;5;6\r\nC;7;8;9\r\n"), "x_", ""));
    EXPECT_TRUE(ReadMorePoints(Write("more.txt", "B;4;5;6\r\n"), "", "_y"));
    EXPECT_TRUE(ReadMorePoints(Write("more.txt", "4;5;6\r\n"), "", ""));
    ASSERT_EQ(Job.Start.Count(), 5);
    ExpectStart(2, "x_B", 4, 5, 6);
    ExpectStart(3, "x_C", 7, 8, 9);
    ExpectStart(4, "B_y", 4, 5, 6);
    ExpectStart(5, "1", 4, 5, 6);
    EXPECT_EQ(Job.Transformed.Name[2], "x_B");
    EXPECT_EQ(Job.Transformed.Name[5], "1");
    EXPECT_EQ(Job.Transformed.X[4], 4);
    EXPECT_EQ(Job.StartOnly(), 5);
    EXPECT_TRUE(JobIsWhole(Job));
}

TEST_F(PointFile, MorePointsFollowTheLastNameWhereCoordinatesAreLonger) {
    Import("A;1;2;3\r\n");
    Job.Start.SpareCoordinates(3);
    for (int i = 2; i < 5; ++i) Job.Start.SetPoint(i, 99, 99, 99);
    EXPECT_TRUE(ReadMorePoints(Write("more.txt", "B;4;5;6\r\n"), "", ""));
    ExpectStart(2, "B", 4, 5, 6);
}

TEST_F(PointFile, MorePointsThatCannotBeReadLeaveTheJobAlone) {
    Import("A;1;2;3\r\n");
    EXPECT_THROW(ReadMorePoints(Write("more.txt", "B;4;5;6\r\nC;x;1;1\r\n"), "", ""), PlatformError);
    EXPECT_FALSE(ReadMorePoints(Write("more.txt", "B;4;5;6\r\nC;1;1\r\n"), "", ""));
    EXPECT_EQ(Job.Start.Count(), 1);
    EXPECT_EQ(Job.Start.Name.size(), 2u);
}

TEST_F(PointFile, ARewrittenFileHoldsMillimetresAndKeepsABackup) {
    Import("A;1;2;3\r\nB;4;5;6\r\n");
    ::Run.Delimiter = std::string(";");
    Units.LengthFactor = 0.001;
    Job.Start.Name[1] = "A=1";
    Job.Start.Name[2] = "Ä";
    Job.Start.X[2] = 0.1;
    RewritePointFile(Job.PathMCS, Job.Start.Name, Job.Start.X, Job.Start.Y, Job.Start.Z);
    EXPECT_EQ(Contents(Job.PathMCS), "A=1;1;2;3\r\n\xC4;0.1;5;6\r\n");
    EXPECT_EQ(Contents(Job.PathMCS + ".$"), "A;1;2;3\r\nB;4;5;6\r\n");
    RewritePointFile(Job.PathMCS, Job.Start.Name, Job.Start.X, Job.Start.Y, Job.Start.Z);
    EXPECT_EQ(Contents(Job.PathMCS + ".$.$"), "A=1;1;2;3\r\n\xC4;0.1;5;6\r\n");
    EXPECT_EQ(Contents(Job.PathMCS + ".$"), "A;1;2;3\r\nB;4;5;6\r\n");
}

TEST_F(PointFile, ARewrittenFileHasTheSystemsDecimalDelimiter) {
    Headless.Decimal = ',';
    Import("A;1,5;2;3\r\n");
    RewritePointFile(Job.PathMCS, Job.Start.Name, Job.Start.X, Job.Start.Y, Job.Start.Z);
    EXPECT_EQ(Contents(Job.PathMCS), "A;1,5;2;3\r\n");
}

TEST_F(PointFile, ARewriteThatTheDiskRefusesPutsTheOldFileBack) {
    Import("A;1;2;3\r\n");
    for (const std::string refused : {"create", "write", "flush"}) {
        FileFaults.Refuse = [&](const std::string& operation, const std::string&) {
            return operation == refused ? std::string("disk full") : std::string();
        };
        EXPECT_THROW(RewritePointFile(Job.PathMCS, Job.Start.Name, Job.Start.X, Job.Start.Y, Job.Start.Z),
                     PlatformError);
        FileFaults.Refuse = nullptr;
        EXPECT_EQ(Contents(Job.PathMCS), "A;1;2;3\r\n") << refused;
        EXPECT_FALSE(File_Exist(Job.PathMCS + ".$")) << refused;
    }
}

}  // namespace
