// `corvinade-cli transform` and `export`.
#include <filesystem>

#include "analysis/exports.h"
#include "cli/fit_command.h"
#include "core/files.h"
#include "core/folders.h"
#include "core/job_file.h"

using namespace corvinade;

namespace fs = std::filesystem;

namespace {

using Names = std::vector<std::string>;

class TransformCommand : public FitCommand {
protected:
    static Outcome Command(const std::vector<std::string>& arguments, bool progress = false) {
        return FreshCommandLine(arguments, progress);
    }
    // A job whose result is the shift by 5, 6, 7.
    std::string Shift() {
        const std::string path = PathOf("shift.cvn");
        EXPECT_EQ(Command({"fit", start_, target_, "--save", path}).Status, 0);
        return path;
    }
    std::string job_ = Shift();
};

const std::string kPoint = "A;1;2;3\n", kResult = "A\t6.000\t8.000\t10.000\r\n";

}  // namespace

TEST_F(TransformCommand, FilesAndFoldersAreTransformed) {
    Write("many/b.txt", kPoint);
    Write("many/a.txt", kPoint);
    const std::string one = Write("one.csv", "P;-1.5;0;1\n");
    const std::string to = PathOf("new/out");
    const Outcome outcome = Command({"transform", job_, PathOf("many"), one, "--to", to});
    EXPECT_EQ(outcome.Status, 0) << outcome.Err;
    EXPECT_EQ(outcome.Out, "");
    EXPECT_EQ(outcome.Err, "3 of 3 files transformed\n");
    EXPECT_EQ(FilesOfFolder(to), (Names{"a_out.txt", "b_out.txt", "one_out.csv"}));
    EXPECT_EQ(Contents(to + "/a_out.txt"), kResult);
    EXPECT_EQ(Contents(to + "/one_out.csv"), "P\t3.500\t6.000\t8.000\r\n");
}

TEST_F(TransformCommand, OnAMachineWithDecimalCommaEveryCommandHasThePoint) {
    const std::string in = Write("a.txt", kPoint);
    const std::string frame = PathOf("cell.rf"), matrix = PathOf("cell.bas");
    // What the locale of the machine would give.
    const auto onGermanMachine = [](const std::vector<std::string>& arguments) {
        FreshStart();
        Headless = HeadlessRecord{};
        Headless.Decimal = ',';
        return CommandLine(arguments);
    };
    const Outcome fit =
        onGermanMachine({"fit", kMeasured, kNominal, "--leave-out", "F09", "--save", PathOf("cell.cvn")});
    EXPECT_EQ(fit.Status, 0) << fit.Err;
    EXPECT_EQ(fit.Err, "");
    EXPECT_NE(fit.Out.find("1834.184"), std::string::npos) << fit.Out;
    EXPECT_EQ(onGermanMachine({"transform", job_, in, "--to", PathOf("out")}).Status, 0);
    EXPECT_EQ(Contents(PathOf("out/a_out.txt")), kResult);
    for (const std::vector<std::string>& more : {std::vector<std::string>{}, {"--decimal", ","}}) {
        std::vector<std::string> arguments = {"export", PathOf("cell.cvn"), "--robcad", frame};
        arguments.insert(arguments.end(), more.begin(), more.end());
        EXPECT_EQ(onGermanMachine(arguments).Status, 0);
        EXPECT_NE(Contents(frame).find("1.8342E+03 , -4.2101E+03"), std::string::npos) << Contents(frame);
        arguments[2] = "--rocal";
        arguments[3] = matrix;
        EXPECT_EQ(onGermanMachine(arguments).Status, 0);
        EXPECT_TRUE(Contents(matrix).starts_with("[0.")) << Contents(matrix);
        EXPECT_NE(Contents(matrix).find(",1834.18"), std::string::npos) << Contents(matrix);
    }
    EXPECT_NE(onGermanMachine({"info", PathOf("cell.cvn")}).Out.find("1834.184"), std::string::npos);
    EXPECT_NE(onGermanMachine({"distances", PathOf("cell.cvn"), "--csv"}).Out.find('.'), std::string::npos);
    // Who wants the comma says so.
    EXPECT_NE(onGermanMachine({"info", PathOf("cell.cvn"), "--decimal", ","}).Out.find("1834,184"),
              std::string::npos);
}

TEST_F(TransformCommand, TheUnitsAndDigitsAreThoseOfTheJob) {
    const std::string path = PathOf("meter.cvn");
    ASSERT_EQ(Command({"fit", start_, target_, "--length-unit", "m", "--digits", "5", "--save", path}).Status,
              0);
    const std::string in = Write("a.txt", kPoint);
    EXPECT_EQ(Command({"transform", path, in, "--to", PathOf("out")}).Status, 0);
    EXPECT_EQ(Contents(PathOf("out/a_out.txt")), "A\t6.00000\t8.00000\t10.00000\r\n");
}

TEST_F(TransformCommand, FieldsBetweenBlanksNeedNoWord) {
    const std::string in = Write("a.txt", "A 1 2 3\nB 4 5 6\n");
    const Outcome outcome = Command({"transform", job_, in, "--to", PathOf("out")});
    EXPECT_EQ(outcome.Status, 0) << outcome.Err;
    EXPECT_EQ(Contents(PathOf("out/a_out.txt")), kResult + "B\t9.000\t11.000\t13.000\r\n");
}

TEST_F(TransformCommand, ResultsAreReplacedWithOverwriteAlone) {
    const std::string a = Write("a.txt", kPoint), b = Write("b.txt", kPoint);
    Write("out/a_out.txt", "old");
    Outcome outcome = Command({"transform", job_, a, b, "--to", PathOf("out")});
    EXPECT_EQ(outcome.Status, 1);
    EXPECT_EQ(Contents(PathOf("out/a_out.txt")), "old");
    EXPECT_EQ(Contents(PathOf("out/b_out.txt")), kResult) << "the rest is done";
    EXPECT_NE(outcome.Err.find("exists; --overwrite replaces it"), std::string::npos);
    EXPECT_NE(outcome.Err.find("1 of 2 files transformed"), std::string::npos);
    outcome = Command({"transform", job_, a, b, "--to", PathOf("out"), "--overwrite"});
    EXPECT_EQ(outcome.Status, 0) << outcome.Err;
    EXPECT_EQ(Contents(PathOf("out/a_out.txt")), kResult);
}

TEST_F(TransformCommand, TwoFilesOfOneNameDoNotReplaceEachOther) {
    const std::string first = Write("one/a.txt", kPoint), second = Write("two/a.txt", "B;0;0;0\n");
    const Outcome outcome = Command({"transform", job_, first, second, "--to", PathOf("out"), "--overwrite"});
    EXPECT_EQ(outcome.Status, 1);
    EXPECT_EQ(Contents(PathOf("out/a_out.txt")), kResult);
    EXPECT_NE(outcome.Err.find(second), std::string::npos);
}

TEST_F(TransformCommand, LinesWithoutNumbersAreToldByFile) {
    const std::string in = Write("a.txt", "A;1;2;3\nnonsense\nB;x;y;z\n");
    const Outcome outcome = Command({"transform", job_, in, "--to", PathOf("out")});
    EXPECT_EQ(outcome.Status, 0);
    EXPECT_EQ(Contents(PathOf("out/a_out.txt")),
              kResult + "nonsense\t5.000\t6.000\t7.000\r\nB\t5.000\t6.000\t7.000\r\n");
    EXPECT_NE(outcome.Err.find("\"" + in + "\": 2 of 3 lines held no three numbers, the first in line 2\n"),
              std::string::npos)
        << outcome.Err;
}

TEST_F(TransformCommand, NoResultHoldsAWordInThePlaceOfANumber) {
    for (const char* field : {"1e400", "-1e999", "1e400mm"}) {
        const std::string in = Write("in/a.txt", std::string("A;1;2;3\nB;1;") + field + ";3\n");
        Write("in/b.txt", kPoint);
        const Outcome outcome =
            Command({"transform", job_, PathOf("in"), "--to", PathOf("out"), "--overwrite"});
        EXPECT_EQ(outcome.Status, 3);
        EXPECT_EQ(FilesOfFolder(PathOf("out")), Names{"b_out.txt"});
        EXPECT_NE(outcome.Err.find("left: Cannot read \"" + in + "\", line 2: \"" + field +
                                   "\" in y of point \"B\" is larger than any number that can be kept\n"),
                  std::string::npos)
            << outcome.Err;
    }
    for (const char* field : {"NaN", "inf", "Infinity"}) {
        const std::string in = Write("c.txt", std::string("A;1;2;3\nB;1;") + field + ";3\n");
        const Outcome outcome = Command({"transform", job_, in, "--to", PathOf("out"), "--overwrite"});
        EXPECT_EQ(Contents(PathOf("out/c_out.txt")), kResult + "B\t6.000\t6.000\t10.000\r\n");
        EXPECT_NE(
            outcome.Err.find("warning: The field \"" + std::string(field) +
                             "\" in y of point \"B\" is not a number and counts as 0 (" + in + ", line 2)\n"),
            std::string::npos)
            << outcome.Err;
    }
}

TEST_F(TransformCommand, ALineOfBlanksAmongSemicolonsIsCalledThat) {
    const std::string in = Write("a.txt", "A;1;2;3\nB 4 5 6 late\nC;1;2;3\n");
    const Outcome outcome = Command({"transform", job_, in, "--to", PathOf("out")});
    EXPECT_EQ(Contents(PathOf("out/a_out.txt")),
              kResult + "B\t9.000\t11.000\t13.000\r\nC" + kResult.substr(1));
    EXPECT_NE(
        outcome.Err.find("warning: The line \"B 4 5 6 late\" is divided at its blanks, since no \";\" stands "
                         "between its fields (" +
                         in + ", line 2)\n"),
        std::string::npos)
        << outcome.Err;
    EXPECT_NE(outcome.Err.find("note: Fields behind z are not read: \"late\" (" + in + ", line 2)\n"),
              std::string::npos);
    EXPECT_EQ(outcome.Err.find("The name"), std::string::npos) << outcome.Err;
}

TEST_F(TransformCommand, AMirroredResultIsToldByAllThatUseIt) {
    const std::string from = "A;0;0;0\nB;1000;0;0\nC;0;1000;0\nD;0;0;1000\nE;300;200;150\n";
    const std::string to = "A;5;6;7\nB;-995;6;7\nC;5;1006;7\nD;5;6;1007\nE;-295;206;157\n";
    const std::string job = PathOf("mirrored.cvn");
    ASSERT_EQ(
        Command({"fit", Write("from.txt", from), Write("to.txt", to), "--parameters", "9", "--save", job})
            .Status,
        0);
    const std::vector<Names> commands = {{"info", job},
                                         {"convert", job, PathOf("copy.csv")},
                                         {"render", job, "--out", PathOf("a.svg")},
                                         {"distances", job, "--with-result"},
                                         {"export", job, "--rocal", PathOf("a.bas")},
                                         {"export", job, "--points", PathOf("a.txt")},
                                         {"transform", job, start_, "--to", PathOf("to")}};
    const std::string told =
        "warning: The result of the job is mirrored: it carries points onto their mirror image, "
        "as no movement can (";
    for (Names command : commands) {
        const Outcome outcome = Command(command);
        EXPECT_EQ(outcome.Status, 0) << command[0] << outcome.Err;
        EXPECT_NE(outcome.Err.find(told + job + ")\n"), std::string::npos) << command[0] << outcome.Err;
        EXPECT_EQ(outcome.Err.find("scales and shears") != std::string::npos,
                  command[2 % command.size()] == "--rocal")
            << outcome.Err;
        command[1] = job_;
        if (command[0] == "transform") command.emplace_back("--overwrite");
        EXPECT_EQ(Command(command).Err.find("mirrored"), std::string::npos) << command[0];
        command[1] = job;
        command.emplace_back("--strict");
        EXPECT_EQ(Command(command).Status, 3) << command[0];
    }
}

TEST_F(TransformCommand, WhatCannotBeReadIsLeftAndTheRestDone) {
    Write("in/a.txt", kPoint);
    Write("in/b.bin", std::string("\0\1\2", 3));
    Write("in/c.txt", "");
    const std::string missing = PathOf("none.txt");
    const Outcome outcome = Command({"transform", job_, PathOf("in"), missing, "--to", PathOf("out")});
    EXPECT_EQ(outcome.Status, 3);
    EXPECT_EQ(FilesOfFolder(PathOf("out")), Names{"a_out.txt"});
    EXPECT_NE(outcome.Err.find("left: Cannot read \"" + PathOf("in/b.bin") + "\": it is no text"),
              std::string::npos);
    EXPECT_NE(outcome.Err.find("left: Cannot read \"" + PathOf("in/c.txt") + "\": it is empty"),
              std::string::npos);
    EXPECT_NE(outcome.Err.find("left: Cannot read \"" + missing + "\": there is no such file"),
              std::string::npos);
    EXPECT_NE(outcome.Err.find("1 of 4 files transformed\n"), std::string::npos);
}

TEST_F(TransformCommand, TheOtherDecimalDelimiterIsAQuestion) {
    const std::string in = Write("a.txt", "A;1,5;2,5;3\n");
    const Outcome asked = Command({"transform", job_, in, "--to", PathOf("out")});
    EXPECT_EQ(asked.Status, 3);
    EXPECT_NE(asked.Err.find("(--decimal says which the files have)"), std::string::npos) << asked.Err;
    EXPECT_EQ(Contents(in), "A;1,5;2,5;3\n");
    EXPECT_EQ(Command({"transform", job_, in, "--to", PathOf("out"), "--decimal", ","}).Status, 0);
    EXPECT_EQ(Contents(PathOf("out/a_out.txt")), "A\t6,500\t8,500\t10,000\r\n");
    EXPECT_EQ(Contents(in), "A;1,5;2,5;3\n");
    EXPECT_EQ(Command({"transform", job_, in, "--to", PathOf("out"), "--yes", "--overwrite"}).Status, 0);
    EXPECT_EQ(Contents(in), "A;1.5;2.5;3");
    EXPECT_EQ(Contents(PathOf("out/a_out.txt")), "A\t6.500\t8.500\t10.000\r\n");
}

TEST_F(TransformCommand, AFullDiskIsToldAndNoHalfFileStays) {
    const std::string in = Write("a.txt", kPoint);
    FileFaults.Refuse = [](const std::string& operation, const std::string& path) {
        return operation == "write" && path.ends_with("_out.txt") ? std::string("No space left on device")
                                                                  : std::string();
    };
    const Outcome outcome = Command({"transform", job_, in, "--to", PathOf("out")});
    EXPECT_EQ(outcome.Status, 1);
    EXPECT_NE(outcome.Err.find("Cannot write \"" + PathOf("out/a_out.txt") + "\": No space left on device"),
              std::string::npos);
    EXPECT_EQ(FilesOfFolder(PathOf("out")), Names{});
}

TEST_F(TransformCommand, WrongUsageIsTold) {
    const std::string in = Write("a.txt", kPoint);
    EXPECT_EQ(Command({"transform", job_, in}).Status, 2);
    EXPECT_EQ(Command({"transform", job_, "--to", PathOf("out")}).Status, 2);
    EXPECT_EQ(Command({"transform", job_, in, "--to", ""}).Status, 2);
    EXPECT_EQ(Command({"transform", PathOf("none.cvn"), in, "--to", PathOf("out")}).Status, 3);
    EXPECT_EQ(Command({"transform", job_, in, "--to", in}).Status, 1);
}

// --- export -----------------------------------------------------------------------------------------------

TEST_F(TransformCommand, TheFrameIsExported) {
    const std::string out = PathOf("cell.rf");
    const Outcome outcome =
        Command({"export", job_, "--robcad", out, "--place", "Wob", "--tool", "afo910", "--robot", "r2a"});
    EXPECT_EQ(outcome.Status, 0) << outcome.Err;
    const std::string text = Contents(out);
    EXPECT_NE(text.find("COMPONENT / afo910_Wob_r2a ;     \r\n"), std::string::npos);
    EXPECT_NE(text.find("r2a_calpos =FRA / 5.0000E+00 , 6.0000E+00 , 7.0000E+00 ,\r\n"), std::string::npos)
        << text;
    EXPECT_TRUE(text.ends_with("END;        \r\n"));
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 30);
}

TEST_F(TransformCommand, TheNamesOfAFrameAreNotTakenForAnotherExport) {
    for (const char* option : {"--place", "--tool", "--robot"}) {
        const Outcome outcome = Command({"export", job_, "--rocal", PathOf("cell.bas"), option, "Wob"});
        EXPECT_EQ(outcome.Status, 2);
        EXPECT_NE(outcome.Err.find("--robcad"), std::string::npos) << outcome.Err;
        EXPECT_FALSE(fs::exists(PathOf("cell.bas")));
    }
}

TEST_F(TransformCommand, TheMatrixIsExported) {
    const std::string out = PathOf("cell.bas");
    EXPECT_EQ(Command({"export", job_, "--rocal", out}).Status, 0);
    const std::string text = Contents(out);
    EXPECT_TRUE(text.starts_with("[1,")) << text;
    EXPECT_TRUE(text.ends_with(";\r\n0,0,0,1]")) << text;
}

TEST_F(TransformCommand, PointsWithoutAPartnerAreExported) {
    const std::string start = Write("more.txt", Contents(start_) + "7;0;0;0\nX;1;2;3\n");
    const std::string job = PathOf("more.cvn"), out = PathOf("only.txt");
    ASSERT_EQ(Command({"fit", start, target_, "--save", job}).Status, 0);
    EXPECT_EQ(Command({"export", job, "--points", out}).Status, 0);
    EXPECT_EQ(Contents(out), "7.000\t5.000\t6.000\t7.000\r\nX\t6.000\t8.000\t10.000\r\n");
    EXPECT_EQ(Command({"export", job_, "--points", out}).Status, 0);
    EXPECT_EQ(Contents(out), "") << "what was there is replaced";
}

TEST_F(TransformCommand, AJobWithoutAResultHasNothingToGive) {
    const std::string job = PathOf("imported.cvn"), in = Write("a.txt", kPoint);
    // The points alone, as an import leaves them.
    JobRecord imported = ReadJobBytes(Contents(job_), job_).Job;
    for (std::string& text : imported.ParamText) text.clear();
    WriteFile(job, JobBytes(imported, {}));
    const std::vector<std::pair<std::string, std::string>> refusals = {
        {"--robcad", "You must make a calculation to export a *.rf File"},
        {"--rocal", "You must make a calculation to export a *.bas File"},
        {"--points", "You must make a calculation to export transformed points"}};
    for (const auto& [kind, why] : refusals) {
        const Outcome outcome = Command({"export", job, kind, PathOf("out")});
        EXPECT_EQ(outcome.Status, 1) << kind;
        EXPECT_EQ(outcome.Err, "corvinade-cli: " + why + "\n");
        EXPECT_FALSE(File_Exist(PathOf("out"))) << kind;
    }
    const Outcome outcome = Command({"transform", job, in, "--to", PathOf("folder")});
    EXPECT_EQ(outcome.Status, 1);
    EXPECT_EQ(outcome.Err, "corvinade-cli: No Transformation calculated\n");
    EXPECT_FALSE(Directory_Exist(PathOf("folder")));
}

TEST_F(TransformCommand, AnExportToAFullDiskIsRefused) {
    const std::string out = Write("cell.bas", "old");
    FileFaults.Refuse = [](const std::string& operation, const std::string&) {
        return operation == "write" ? std::string("No space left on device") : std::string();
    };
    const Outcome outcome = Command({"export", job_, "--rocal", out});
    EXPECT_EQ(outcome.Status, 1);
    EXPECT_EQ(outcome.Err, "corvinade-cli: Cannot write \"" + out + "\": No space left on device\n");
    EXPECT_EQ(Contents(out), "old");
}

TEST_F(TransformCommand, AnExportIsOfOneKind) {
    EXPECT_EQ(Command({"export", job_}).Status, 2);
    EXPECT_EQ(Command({"export", job_, "--rocal", PathOf("a"), "--points", PathOf("b")}).Status, 2);
    EXPECT_EQ(Command({"export", job_, "--robcad", PathOf("a"), "--tool", "a\nb"}).Status, 2);
}

TEST_F(TransformCommand, TheExampleFolderIsTransformed) {
    const Outcome outcome =
        Command({"transform", kExamples + "robot_cell.cvn", kExamples + "batch", "--to", PathOf("out")});
    EXPECT_EQ(outcome.Status, 0) << outcome.Err;
    EXPECT_EQ(FilesOfFolder(PathOf("out")).size(), FilesOfFolder(kExamples + "batch").size());
    EXPECT_EQ(outcome.Err.find("held no three numbers"), std::string::npos) << outcome.Err;
}

// A parameter held at 1e999, say: the desktop saves such a job.
TEST_F(TransformCommand, AResultThatIsNotFiniteIsAppliedToNothing) {
    ASSERT_EQ(Command({"fit", start_, target_, "--save", job_}).Status, 0);
    Job.TraX = std::numeric_limits<double>::infinity();
    SaveFileAs(job_);
    const std::string in = Write("a.txt", kPoint), out = PathOf("x");
    for (const std::vector<std::string>& arguments :
         {Names{"transform", job_, in, "--to", out}, Names{"export", job_, "--robcad", out},
          Names{"export", job_, "--rocal", out}, Names{"export", job_, "--points", out}}) {
        const Outcome outcome = Command(arguments);
        EXPECT_EQ(outcome.Status, 1);
        EXPECT_NE(outcome.Err.find("not finite"), std::string::npos) << outcome.Err;
        EXPECT_FALSE(fs::exists(out)) << arguments[0];
    }
}

TEST_F(TransformCommand, AMarkOfAnOpenPointOfANetworkIsToldAsTheReaderOfPointsTellsIt) {
    const auto network = [](const std::string& delimiter, int points) {
        std::string text;
        for (int i = 1; i <= points; ++i) {
            text += "T" + std::to_string(i);
            for (const int value : {i, 2 * i, 3 * i}) text += delimiter + std::to_string(value) + ".25";
            text += delimiter + (i % 5 == 3 ? "open" : "determined") + "\n";
        }
        return text;
    };
    for (const std::string delimiter : {"\t", ";"}) {
        // As many that most lines are not the last ones, which take another road.
        const std::string in = Write("network.txt", network(delimiter, 40));
        const Outcome outcome = Command({"transform", job_, in, "--to", PathOf("out"), "--overwrite"});
        EXPECT_EQ(outcome.Status, 0);
        EXPECT_EQ(
            outcome.Err,
            "warning: Point \"T3\" is marked as one that the distances of its network do not determine; "
            "its coordinates are arbitrary (" +
                in + ", line 3; 8 times)\n1 of 1 files transformed\n");
        EXPECT_TRUE(Contents(PathOf("out/network_out.txt"))
                        .starts_with("T1\t6.250\t8.250\t10.250\r\nT2\t7.250\t10.250\t13.250\r\nT3\t8.250"));
        EXPECT_EQ(Command({"transform", job_, in, "--to", PathOf("strict"), "--strict"}).Status, 3);
        EXPECT_FALSE(fs::exists(PathOf("strict")));
    }
    // Any other fifth field is a remark, and without names there is none.
    const std::string remark = Write("remark.txt", "A;1;2;3;opened\nB;1;2;3;open gate\n");
    EXPECT_EQ(Command({"transform", job_, remark, "--to", PathOf("out")}).Err,
              "note: Fields behind z are not read: \"opened\" (" + remark +
                  ", line 1; 2 times)\n1 of 1 files transformed\n");
}

// The comma of thousands between commas: the first number is cut in two.
TEST_F(TransformCommand, RowsWithMoreColumnsThanOthersAreAWarning) {
    struct Case {
        const char* Rows;
        int Line, Count;  // 0: none
    };
    const std::vector<Case> cases = {{"A,1.5,2.5,3.5\nC,1,234.5,8,9\n", 2, 1},
                                     {"C,1,234.5,8,9\nA,1.5,2.5,3.5\nD,1,2,3,4,5,6\n", 1, 2},
                                     // What stands behind other delimiters moves nothing, nor do remarks.
                                     {"A;1.5;2.5;3.5\nB;1.5;2.5;3.5;9\n", 0, 0},
                                     {"A;1;2;3;0.01;0.02;0.03\nB;4;5;6;0.01;0.02\n", 0, 0},
                                     {"A;1;2;3;x;y\nB;1;2;3;x\nC;1;2;3;x;y\n", 0, 0},
                                     {"A;1;2;3; weld seam one\nB;4;5;6\n", 0, 0},
                                     {"A 1 2 3\nB 4 5 6 weld\nC 7 8 9\n", 0, 0},
                                     {"A,1,2,3,rem\nB,4,5,6\nC,7,8,9\n", 0, 0},
                                     // Commas of thousands in every row, so that all have as many fields.
                                     {"P1,1,000.5,2,000.5,300\nP2,1,000.5,2,000.5,300\n", 1, 2},
                                     {"P1,-1,200,5,6\nP2,1,000,5,6\n", 1, 2},
                                     // Numbers behind z that are no such groups.
                                     {"P1,1000.5,2000.5,300,0.02\nP2,1000.5,2000.5,300,0.02\n", 0, 0},
                                     {"P1,12.5,345.5,678.5,0.02\nP2,12,345,678,0.02\n", 0, 0},
                                     {"A 1.5 2.5 3.5\nB  1.5 2.5  3.5\nC 1 234.5 8 9\n", 3, 1},
                                     // As many fields in each, whatever stands between them.
                                     {"A,1.5,2.5,3.5,remark\nC,1,234.5,8,9\n", 0, 0},
                                     {"A 1.5 2.5 3.5\nB  1.5   2.5  3.5\n", 0, 0},
                                     {"A;1;2;3\nB;1;2;3;\n", 0, 0},
                                     // A heading, and a line that holds no point, are noted for that.
                                     {"points\nA;1;2;3\nB;4;5;6\n", 0, 0}};
    for (const Case& c : cases) {
        const std::string path = Write("rows.txt", c.Rows);
        const std::vector<std::string> command = {"transform",  job_,     path,         "--to",
                                                  PathOf("to"), "--json", "--overwrite"};
        const json notes = json::parse(Command(command).Out).at("notes");
        int found = 0;
        for (const json& note : notes) {
            if (note["code"] != "columns-changed") continue;
            ++found;
            EXPECT_EQ(note["severity"], "warning");
            EXPECT_EQ(note["line"], c.Line) << c.Rows;
            EXPECT_EQ(note["count"], c.Count) << c.Rows;
            EXPECT_EQ(note["file"], path);
        }
        EXPECT_EQ(found, c.Line > 0 ? 1 : 0) << c.Rows << notes;
        if (c.Line == 0) continue;
        const std::string to = PathOf("strict");
        EXPECT_EQ(Command({"transform", job_, path, "--to", to, "--strict"}).Status, 3) << c.Rows;
        EXPECT_FALSE(fs::exists(to)) << c.Rows;
    }
    // The points that come out are those of before.
    EXPECT_EQ(Command({"transform", job_, Write("a.csv", cases[0].Rows), "--to", PathOf("out")}).Status, 0);
    EXPECT_EQ(Contents(PathOf("out/a_out.csv")), "A\t6.500\t8.500\t10.500\r\nC\t6.000\t240.500\t15.000\r\n");
}
