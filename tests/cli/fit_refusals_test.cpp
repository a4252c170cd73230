// `corvinade-cli fit`: its questions, refusals and exit statuses, help and colours.
#include <array>
#include <filesystem>

#include "cli/fit_command.h"
#include "cli/headless.h"
#include "core/files.h"
#include "core/job_file.h"
#include "support/program_path.h"

using namespace corvinade;

// --- Questions, refusals, exit statuses -------------------------------------------------------------------

TEST_F(FitCommand, AQuestionWithoutAnAnswerIsAnErrorThatQuotesIt) {
    ExpectUnanswered();
    const std::string start = Write("c1.txt", "A;0,5;0;0\nB;1000;0;0,25\nC;0;2000;0\n");
    const Outcome outcome = Fit({start, target_, "--format", "plain"});
    EXPECT_EQ(outcome.Status, 3);
    EXPECT_NE(outcome.Err.find("Your Decimal Delimiter is different"), std::string::npos) << outcome.Err;
    EXPECT_NE(outcome.Err.find("--yes"), std::string::npos);
    EXPECT_EQ(Contents(start), "A;0,5;0;0\nB;1000;0;0,25\nC;0;2000;0\n");
    Headless.Unanswered = false;
}

TEST_F(FitCommand, YesChangesTheFileAndNoLeavesIt) {
    const std::string content = "A;0,5;0;0\nB;1000;0;0,25\nC;0;2000;0\n";
    const std::string start = Write("c1.txt", content);
    EXPECT_EQ(Fit({start, target_, "--format", "plain", "--no"}).Status, 3);
    EXPECT_EQ(Contents(start), content);
    EXPECT_EQ(Fit({start, target_, "--format", "plain", "--yes"}).Status, 0);
    EXPECT_EQ(Contents(start).substr(0, 9), "A;0.5;0;0");
}

TEST_F(FitCommand, AnAnsweredQuestionIsToldWithItsAnswer) {
    const std::string start = Write("c1.txt", "A;0,5;0;0\nB;1000;0;0,25\nC;0;2000;0\n");
    EXPECT_NE(Fit({start, target_, "--format", "plain", "--no"})
                  .Err.find("Should I change the , in your File to . ? No"),
              std::string::npos);
    EXPECT_NE(Fit({start, target_, "--format", "plain", "--yes"})
                  .Err.find("Should I change the , in your File to . ? Yes"),
              std::string::npos);
}

TEST_F(FitCommand, TooFewPairsAreRefusedWithWhatTheFilesHold) {
    const Outcome byName = Fit({start_, Write("other.txt", "P;5;6;7\nQ;1005;6;7\nR;1;2;3\n")});
    EXPECT_EQ(byName.Status, 1);
    EXPECT_NE(byName.Err.find("the start file has 5 points and the target file 3, 0 of them identical"),
              std::string::npos)
        << byName.Err;
    EXPECT_NE(byName.Err.find("--match coordinate"), std::string::npos);
    EXPECT_EQ(Fit({start_, Write("one.txt", "A;5;6;7\n")}).Err.find("--match"), std::string::npos);
    const Outcome near = Fit({start_, target_, "--match", "coordinate", "--tolerance", "0.25"});
    EXPECT_EQ(near.Status, 1);
    EXPECT_NE(near.Err.find("0.25 mm; --tolerance"), std::string::npos) << near.Err;
}

TEST_F(FitCommand, AStartFileOfOnePointHasOnePointAndNotPoints) {
    const Outcome one = Fit({Write("single.txt", "A;5;6;7\n"), target_});
    EXPECT_EQ(one.Status, 1);
    EXPECT_NE(one.Err.find("the start file has 1 point and the target file "), std::string::npos) << one.Err;
}

TEST_F(FitCommand, AToleranceBeyondAFloatIsWrongUsageAndNeverAskedForEver) {
    for (const char* tolerance : {"0", "1e-60", "1e60", "1e400", "nan", "inf", "x", ""})
        for (const char* match : {"coordinate", "distance"}) {
            const Outcome outcome = Fit({start_, target_, "--match", match, "--tolerance", tolerance});
            EXPECT_EQ(outcome.Status, 2) << tolerance;
            EXPECT_LT(outcome.Err.size(), 200u) << outcome.Err;
        }
    EXPECT_EQ(Fit({start_, start_, "--match", "coordinate", "--tolerance", "1e-30"}).Status, 0);
}

TEST_F(FitCommand, AResultThatCannotBeWrittenIsNoSuccess) {
    for (const char* output : {"--json", "--csv", "--digits=3"}) {
        const std::array<const char*, 7> argv = {"corvinade-cli", "fit", start_.c_str(), target_.c_str(),
                                                 "--decimal",     ".",   output};
        std::istringstream in;
        std::ostream out(nullptr);  // takes nothing, as a full disk
        std::ostringstream err;
        EXPECT_EQ(RunCommandLine(7, argv.data(), in, out, err, false, false), 1) << output;
        EXPECT_NE(err.str().find("could not be written"), std::string::npos);
    }
}

TEST_F(FitCommand, TooFewObservationsAreRefusedWithWhatIsMissing) {
    const std::string two = Write("two.txt", "A;5;6;7\nB;1005;6;7\n");
    const Outcome outcome = Fit({start_, two, "--parameters", "9"});
    EXPECT_EQ(outcome.Status, 1);
    EXPECT_NE(outcome.Err.find("This is not a redundant calculation"), std::string::npos);
    EXPECT_NE(outcome.Err.find("6 observations in use, 9 unknowns"), std::string::npos) << outcome.Err;
    EXPECT_EQ(outcome.Out, "");
    EXPECT_EQ(Fit({start_, Write("one.txt", "A;5;6;7\n")}).Status, 1);
}

TEST_F(FitCommand, PointsThatDetermineNothingNeverGiveASilentResult) {
    const std::string same = Write("same.txt", "A;1;1;1\nB;1;1;1\nC;1;1;1\nD;1;1;1\n");
    const Outcome outcome = Fit({same, same, "--parameters", "12"});
    EXPECT_NE(outcome.Status, 2);
    EXPECT_NE(outcome.Status, 3);
    const std::string huge = Write("huge.txt", "A;1e300;1;1\nB;1;1e300;1\nC;1;1;1e300\nD;-1e300;1;1\n");
    const Outcome overflow = Fit({huge, target_});
    EXPECT_EQ(overflow.Status, 1) << overflow.Out;
    EXPECT_NE(overflow.Err.find("not finite"), std::string::npos) << overflow.Err;
}

TEST_F(FitCommand, WrongUsageIsStatusTwo) {
    for (const auto& arguments :
         std::vector<std::vector<std::string>>{{},
                                               {start_},
                                               {start_, target_, "--match", "luck"},
                                               {start_, target_, "--parameters", "8"},
                                               {start_, target_, "--hold", "rotz"},
                                               {start_, target_, "--hold", "rotz=abc"},
                                               {start_, target_, "--hold", "spin=1"},
                                               {start_, target_, "--hold", "scalexyz=0"},
                                               {start_, target_, "--parameters", "7", "--hold", "scalex=1"},
                                               {start_, target_, "--leave-out", "Nobody"},
                                               {start_, target_, "--leave-out", "A:q"},
                                               {start_, target_, "--yes", "--no"},
                                               {start_, target_, "--json", "--csv"},
                                               {start_, target_, "--digits", "7"},
                                               {start_, target_, "--tolerance", "-1"},
                                               {start_, target_, "--unknown"}}) {
        const Outcome outcome = Fit(arguments);
        EXPECT_EQ(outcome.Status, 2) << json(arguments);
        const bool asJson = std::find(arguments.begin(), arguments.end(), "--json") != arguments.end();
        EXPECT_FALSE((asJson ? outcome.Out : outcome.Err).empty());
        EXPECT_EQ(asJson ? outcome.Err : outcome.Out, "");
    }
}

TEST_F(FitCommand, UnreadableInputsAreStatusThreeAndNamed) {
    EXPECT_EQ(Fit({PathOf("absent.txt"), target_}).Status, 3);
    EXPECT_NE(Fit({PathOf("absent.txt"), target_}).Err.find("absent.txt"), std::string::npos);
    EXPECT_NE(Fit({start_, folder_}).Err.find("folder"), std::string::npos);
    EXPECT_EQ(Fit({start_, folder_}).Status, 3);
    EXPECT_EQ(Fit({Write("empty.txt", ""), target_}).Status, 3);
    const Outcome bad = Fit({Write("bad.txt", "A;1;2;3\nB;1;1,000.5;3\nC;1;nan;2\n"), target_, "--no"});
    EXPECT_EQ(bad.Status, 3);
    const Outcome nan = Fit({Write("nan.txt", "A;1;2;3\nB;1;2;3\nC;1;nan;2\n"), target_});
    EXPECT_EQ(nan.Status, 3);
    EXPECT_NE(nan.Err.find("nan.txt"), std::string::npos) << nan.Err;
    EXPECT_NE(nan.Err.find("line 3"), std::string::npos) << nan.Err;
    EXPECT_NE(nan.Err.find("\"nan\""), std::string::npos) << nan.Err;
    EXPECT_EQ(Fit({Write("big.txt", "A;1;2;3\nB;1;1e400;3\n"), target_}).Status, 3);
}

TEST_F(FitCommand, RefusedReadsAreStatusThreeWithFileAndReason) {
    for (const char* operation : {"open", "read"})
        for (const std::string& refused : {start_, target_}) {
            FileFaults.Refuse = [&](const std::string& asked, const std::string& path) {
                return std::string(asked == operation && path == refused ? "Permission denied" : "");
            };
            const Outcome outcome = Fit({start_, target_});
            EXPECT_EQ(outcome.Status, 3) << operation;
            EXPECT_NE(outcome.Err.find("\"" + refused + "\": Permission denied"), std::string::npos)
                << outcome.Err;
            EXPECT_EQ(outcome.Out, "");
        }
}

TEST_F(FitCommand, AFullDiskLeavesTheFileWithTheOtherDecimalDelimiterAsItWas) {
    const std::string content = "A;0,5;0;0\nB;1000;0;0,25\nC;0;2000;0\n";
    const std::string start = Write("c1.txt", content);
    for (const char* operation : {"create", "write", "flush", "rename"}) {
        FileFaults.Refuse = [&](const std::string& asked, const std::string&) {
            return std::string(asked == operation ? "No space left on device" : "");
        };
        const Outcome outcome = Fit({start, target_, "--format", "plain", "--yes"});
        EXPECT_EQ(outcome.Status, 3) << operation;
        EXPECT_NE(outcome.Err.find("No space left"), std::string::npos) << outcome.Err;
        EXPECT_EQ(Contents(start), content) << operation;
    }
    const std::filesystem::directory_iterator files(folder_);
    EXPECT_EQ(std::distance(begin(files), end(files)), 3) << "nothing is left beside the files";
}

TEST_F(FitCommand, FilesWithBlanksAloneNeedTheirDelimiterNamed) {
    const std::string start = Write("b1.txt", "A 0 0 0\nB 1000 0 0\nC 0 2000 0\n");
    const std::string target = Write("b2.txt", "A 5 0 0\nB 1005 0 0\nC 5 2000 0\n");
    const Outcome without = Fit({start, target, "--format", "plain"});
    EXPECT_EQ(without.Status, 3);
    EXPECT_NE(without.Err.find("find any delimiter"), std::string::npos);
    EXPECT_EQ(Fit({start, target, "--delimiter", "space"}).Status, 0);
}

TEST_F(FitCommand, LeavesNoTraceInTheSettings) {
    Fit({start_, target_});
    EXPECT_FALSE(std::filesystem::exists(folder_ + "/settings"));
}

TEST_F(FitCommand, HelpAndVersionAreThere) {
    EXPECT_NE(Fit({"--help"}).Out.find("Exit status"), std::string::npos);
    EXPECT_EQ(Fit({"--help"}).Status, 0);
    std::istringstream help(Fit({"--help"}).Out);
    for (std::string line; std::getline(help, line);) {
        EXPECT_LE(line.size(), 110u) << line;
        EXPECT_EQ(line.find('\t'), std::string::npos) << line;
    }
    std::istringstream in;
    std::ostringstream out;
    std::ostringstream err;
    const std::array<const char*, 2> version = {"corvinade-cli", "--version"};
    EXPECT_EQ(RunCommandLine(2, version.data(), in, out, err, false, false), 0);
    EXPECT_EQ(out.str(), "corvinade-cli 2.0.64\n");
}

TEST_F(FitCommand, ColoursStandOnATerminalAloneAndNeverWithNoColor) {
    const auto table = [](bool terminal) {
        const std::vector<const char*> argv = {"corvinade-cli",  "fit",       kMeasured.c_str(),
                                               kNominal.c_str(), "--decimal", "."};
        std::istringstream in;
        std::ostringstream out;
        std::ostringstream err;
        RunCommandLine(static_cast<int>(argv.size()), argv.data(), in, out, err, terminal, false);
        return out.str();
    };
    unsetenv("NO_COLOR");
    EXPECT_NE(table(true).find("\x1b[31m"), std::string::npos);
    EXPECT_EQ(table(false).find('\x1b'), std::string::npos);
    setenv("NO_COLOR", "1", 1);
    EXPECT_EQ(table(true).find('\x1b'), std::string::npos);
    unsetenv("NO_COLOR");
}

TEST_F(FitCommand, TheProgramItselfGivesTheStatus) {
    const std::string program = ProgramPath();
    const auto run = [&](const std::string& arguments) {
        return std::system((program + " " + arguments + " >/dev/null 2>&1").c_str()) >> 8;
    };
    EXPECT_EQ(run("--version"), 0);
    EXPECT_EQ(run("fit"), 2);
    EXPECT_EQ(run("fit " + kMeasured + " " + kNominal + " --decimal ."), 0);
    EXPECT_EQ(run("fit /nowhere/a.txt /nowhere/b.txt"), 3);
}

TEST_F(FitCommand, AFileBeyondTheLimitOfTheSystemIsRefusedAndNothingIsLeft) {
    const std::string program = ProgramPath(), out = PathOf("out.json");
    const int status = std::system(
        ("ulimit -f 2; " + program + " convert " + kExamples + "roof.cvn " + out + " 2>" + PathOf("err.txt"))
            .c_str());
    EXPECT_EQ(status >> 8, 1);
    EXPECT_NE(Contents(PathOf("err.txt")).find("out.json"), std::string::npos);
    for (const auto& file : std::filesystem::directory_iterator(PathOf("")))
        EXPECT_FALSE(file.path().filename().string().starts_with("out.json")) << file.path();
}

// Every output of a command stands apart from what it is made from, however its path is written.
TEST_F(FitCommand, AnOutputThatIsAnInputOrAnotherOutputIsRefused) {
    const std::string before = Contents(start_);
    std::filesystem::create_symlink(start_, PathOf("link.txt"));
    for (const char* name : {"start.txt", "./start.txt", "link.txt"}) {
        const Outcome outcome = Fit({start_, target_, "--report", PathOf("") + "/" + name});
        EXPECT_EQ(outcome.Status, 2) << name;
        EXPECT_NE(outcome.Err.find("START and --report are the same file"), std::string::npos) << outcome.Err;
    }
    EXPECT_EQ(Contents(start_), before);
    EXPECT_EQ(Fit({start_, target_, "--save", target_}).Status, 2);
    EXPECT_EQ(Fit({start_, target_, "--save", PathOf("a"), "--report", PathOf("a")}).Status, 2);
    EXPECT_FALSE(std::filesystem::exists(PathOf("a")));

    const std::string job = PathOf("job.cvn");
    EXPECT_EQ(Fit({start_, target_, "--save", job}).Status, 0);
    EXPECT_EQ(Fit({"--job", job, "--save", job}).Status, 0) << "a job may be saved where it came from";
    EXPECT_EQ(Fit({"--job", job, "--report", job}).Status, 2);
    EXPECT_EQ(Fit({"--job", job, "--save", job, "--report", job}).Status, 2);
    const std::string stored = Contents(job);
    EXPECT_EQ(CommandLine({"distances", job, "--pairs", job}).Status, 2);
    EXPECT_EQ(
        CommandLine({"distances", job, "--pairs", PathOf("x.svg"), "--trumpet", PathOf("x.svg")}).Status, 2);
    for (const char* kind : {"--robcad", "--rocal", "--points"})
        EXPECT_EQ(CommandLine({"export", job, kind, job}).Status, 2) << kind;
    EXPECT_EQ(Contents(job), stored);
}

// About a line that all points stand on the object may turn as it likes.
TEST_F(FitCommand, PointsThatLeaveParametersOpenAreTold) {
    const auto told = [&](const std::string& points, std::vector<std::string> more = {}) {
        const std::string path = Write("open.txt", points);
        more.insert(more.begin(), {path, path});
        const Outcome outcome = Fit(more);
        const std::size_t leave = outcome.Err.find("leave ");
        return leave == std::string::npos ? ""
                                          : outcome.Err.substr(leave, std::string("leave 1 of the 6").size());
    };
    EXPECT_EQ(told("A;1;2;3\nB;2;4;6\nC;3;6;9\nD;4;8;12\n"), "leave 1 of the 6");
    EXPECT_EQ(told("A;1e6;2e6;3e6\nB;2e6;4e6;6e6\nC;3e6;6e6;9e6\n"), "leave 1 of the 6");
    EXPECT_EQ(told("A;1;2;3\nB;1;2;3\nC;1;2;3\n"), "leave 3 of the 6") << "all at one place";
    EXPECT_EQ(told("A;0;0;5\nB;9;0;5\nC;0;9;5\nD;9;9;5\nE;3;4;5\n", {"--parameters", "9"}),
              "leave 1 of the 9")
        << "nothing tells the scale across a plane";
    EXPECT_EQ(told("A;0;0;5\nB;9;0;5\nC;0;9;5\nD;9;9;5\nE;3;4;5\n"), "");
    EXPECT_EQ(told("A;0;0;0\nB;1e-3;0;0\nC;0;2e-3;0\nD;0;0;1e-3\n", {"--digits", "6"}), "") << "very small";
    EXPECT_EQ(told("A;1e7;0;0\nB;10000001;0;0\nC;1e7;2;0\nD;1e7;0;1\n"), "") << "small and far away";
}

TEST_F(FitCommand, AWholeNumberIsAskedForWithItsLimits) {
    const auto refusal = [&](std::vector<std::string> more) {
        more.insert(more.begin(), {start_, target_});
        const Outcome outcome = Fit(more);
        EXPECT_EQ(outcome.Status, 2);
        return outcome.Err;
    };
    EXPECT_NE(refusal({"--digits", "1.5"}).find("\"1.5\" is no whole number from 0 to 6"), std::string::npos);
    EXPECT_NE(refusal({"--digits", "7"}).find("\"7\" is no whole number from 0 to 6"), std::string::npos);
    EXPECT_NE(refusal({"--monte-carlo", "9", "--sigma", "0.1", "--seed=-1"}).find("from 0 to 4294967295"),
              std::string::npos);
}

// --- Held values of a job ---------------------------------------------------------------------------------

TEST_F(FitCommand, AJobThatHoldsAParameterAtNoNumberIsRefused) {
    const std::string good = PathOf("good.cvn");
    ASSERT_EQ(Fit({start_, target_, "--hold", "rotz=0", "--save", good}).Status, 0);
    const auto holding = [&](const char* text, int parameter = kRotZ) {
        JobFileContent content = ReadJobBytes(Contents(good), good);
        content.Job.ParamText[static_cast<std::size_t>(parameter)] = text;
        return Write("job.cvn", JobBytes(content.Job, {}));
    };
    for (const char* text : {"abc", "nan", "inf", "5.5.5", "1e400", "5 mm", "--5", "0x1F"}) {
        const std::string job = holding(text);
        const Outcome outcome = Fit({"--job", job});
        EXPECT_EQ(outcome.Status, 3) << text;
        EXPECT_EQ(outcome.Out, "") << text;
        EXPECT_NE(outcome.Err.find("the job holds Rot z at \"" + std::string(text) +
                                   "\", which is no number; give a value with --hold rotz=VALUE"),
                  std::string::npos)
            << outcome.Err;
        // Another value, or none, is what the user says.
        EXPECT_EQ(Fit({"--job", job, "--hold", "rotz=0"}).Status, 0) << text;
        EXPECT_EQ(Fit({"--job", job, "--parameters", "6"}).Status, 0) << text;
    }
    EXPECT_EQ(Fit({"--job", holding("abc", kTraX)}).Status, 3);
    for (const char* text : {"0", "0.0", "0,0", " 0 ", "-0", "0e5"})
        EXPECT_EQ(Fit({"--job", holding(text)}).Status, 0) << text;
}
