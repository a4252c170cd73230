// `corvinade-cli fit --batch`: the fits of a list.
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>

#include "cli/fit_command.h"
#include "support/program_path.h"

using namespace corvinade;

namespace {

class FitBatch : public FitCommand {
protected:
    FitBatch() { Headless.ProgramDir = Pfad(ProgramPath()); }
};

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = text.find('\n', at);
        if (end == std::string::npos) {
            lines.push_back(text.substr(at));
            break;
        }
        lines.push_back(text.substr(at, end - at));
        at = end + 1;
    }
    return lines;
}

std::vector<json> Rows(const std::string& path) {
    std::vector<json> rows;
    for (const std::string& line : Lines(Contents(path))) rows.push_back(json::parse(line));
    return rows;
}

std::vector<std::string> Cells(const std::string& line) {
    std::vector<std::string> cells(1);
    for (const char c : line) {
        if (c == ';') {
            cells.emplace_back();
        } else {
            cells.back() += c;
        }
    }
    return cells;
}

std::string Cell(const std::vector<std::string>& lines, std::size_t row, const std::string& column) {
    const auto headings = Cells(lines[0]);
    const auto found = std::find(headings.begin(), headings.end(), column);
    EXPECT_NE(found, headings.end()) << column;
    return Cells(lines[row])[static_cast<std::size_t>(found - headings.begin())];
}

TEST_F(FitBatch, EachLineIsTheFitOfItsFilesAndOptions) {
    const std::string list = Write("list.csv",
                                   "name,start,target,parameters,norm\n"
                                   "rigid," +
                                       kMeasured + "," + kNominal +
                                       ",6,\n"
                                       "\n# a remark\n"
                                       "\"scaled\"," +
                                       kMeasured + "," + kNominal + ",7,l1\n");
    const std::string out = PathOf("results.jsonl");
    const Outcome run = Fit({"--batch", list, "--out", out, "-j", "2", "--length-unit", "m"});
    ASSERT_EQ(run.Status, 0) << run.Err;
    EXPECT_NE(run.Err.find("2 fits: 2 done, 0 not"), std::string::npos) << run.Err;
    const auto rows = Rows(out);
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0]["name"], "rigid");
    EXPECT_EQ(rows[1]["name"], "scaled");
    EXPECT_EQ(rows[0]["line"], 2);
    EXPECT_EQ(rows[1]["line"], 5);
    EXPECT_EQ(rows[0]["status"], "done");
    EXPECT_EQ(rows[0]["result"], FitJson({kMeasured, kNominal, "--parameters", "6", "--length-unit", "m"}));
    EXPECT_EQ(rows[1]["result"],
              FitJson({kMeasured, kNominal, "--parameters", "7", "--norm", "l1", "--length-unit", "m"}));
}

TEST_F(FitBatch, TheHeadingShowsTheDelimiterWhateverStandsBeforeIt) {
    const std::string out = PathOf("results.jsonl");
    for (const std::string delimiter : {",", ";", "\t", "|"}) {
        const std::string list =
            Write("list.csv", "\xEF\xBB\xBF# cells; of\tthe | hall, all\r\n\r\nSTART" + delimiter +
                                  "Target\r\n" + start_ + delimiter + "\"" + target_ + "\"\r\n");
        std::remove(out.c_str());
        const Outcome run = Fit({"--batch", list, "--out", out});
        EXPECT_EQ(run.Status, 0) << delimiter << run.Err;
        EXPECT_EQ(Rows(out).at(0)["line"], 4);
    }
}

TEST_F(FitBatch, ResultsInCsvHaveTheNumbersOfTheFit) {
    const std::string list = Write("list.csv", "start;target\n" + start_ + ";" + target_ + "\n");
    const std::string out = PathOf("results.csv");
    ASSERT_EQ(Fit({"--batch", list, "--out", out}).Status, 0);
    const auto lines = Lines(Contents(out));
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(Cell(lines, 1, "status"), "done");
    EXPECT_NEAR(std::stod(Cell(lines, 1, "trax")), 5, 1e-9);
    EXPECT_NEAR(std::stod(Cell(lines, 1, "tray")), 6, 1e-9);
    EXPECT_NEAR(std::stod(Cell(lines, 1, "traz")), 7, 1e-9);
    EXPECT_EQ(Cell(lines, 1, "pairs"), "5");
    EXPECT_EQ(Cell(lines, 1, "observations"), "15");
    EXPECT_EQ(Cell(lines, 1, "unknowns"), "6");
    EXPECT_EQ(Cells(lines[0]).size(), Cells(lines[1]).size());
}

TEST_F(FitBatch, AFitThatFailsEndsNoOther) {
    const std::string bad = Write("bad.txt", "A;0;x;0\n");
    const std::string list = Write("list.csv", "start,target,parameters\n" + PathOf("none.txt") + "," +
                                                   target_ + ",\n" + start_ + "," + target_ + ",5\n" + bad +
                                                   "," + target_ + ",\n" + start_ + "," + target_ + ",\n");
    const std::string out = PathOf("results.jsonl");
    const Outcome run = Fit({"--batch", list, "--out", out, "--jobs", "3"});
    EXPECT_EQ(run.Status, 1);
    EXPECT_NE(run.Err.find("line 2: not done"), std::string::npos) << run.Err;
    EXPECT_NE(run.Err.find("4 fits: 1 done, 3 not"), std::string::npos) << run.Err;
    const auto rows = Rows(out);
    ASSERT_EQ(rows.size(), 4U);
    EXPECT_EQ(rows[0]["status"], "unreadable");
    EXPECT_NE(rows[0]["message"].get<std::string>().find("none.txt"), std::string::npos);
    EXPECT_TRUE(rows[0]["result"].is_null());
    EXPECT_EQ(rows[1]["status"], "wrong usage");
    EXPECT_NE(rows[1]["message"].get<std::string>().find("--parameters"), std::string::npos);
    EXPECT_EQ(rows[2]["status"], "unreadable");
    EXPECT_EQ(rows[3]["status"], "done");
}

TEST_F(FitBatch, ASecondRunPassesOverWhatIsDone) {
    const std::string other = Write("other.txt", Contents(start_));
    const std::string list =
        Write("list.csv", "start,target\n" + start_ + "," + target_ + "\n" + other + "," + target_ + "\n" +
                              PathOf("late.txt") + "," + target_ + "\n");
    for (const char* name : {"results.csv", "results.jsonl"}) {
        std::remove(PathOf("late.txt").c_str());
        const std::string out = PathOf(name);
        ASSERT_EQ(Fit({"--batch", list, "--out", out}).Status, 1);
        const auto first = Lines(Contents(out));
        Write("late.txt", Contents(start_));
        const Outcome again = Fit({"--batch", list, "--out", out});
        EXPECT_EQ(again.Status, 0) << again.Err;
        EXPECT_NE(again.Err.find("2 fits are done already and passed over"), std::string::npos) << again.Err;
        EXPECT_NE(again.Err.find("1 fit that failed before: done anew"), std::string::npos) << again.Err;
        const auto second = Lines(Contents(out));
        ASSERT_EQ(second.size(), first.size());
        EXPECT_EQ(second[second.size() - 2], first[first.size() - 2]);
        EXPECT_NE(second.back(), first.back());
    }
}

TEST_F(FitBatch, AFileThatHasChangedIsFittedAnew) {
    const std::string list = Write("list.csv", "start,target\n" + start_ + "," + target_ + "\n");
    const std::string out = PathOf("results.csv");
    ASSERT_EQ(Fit({"--batch", list, "--out", out}).Status, 0);
    Write("target.txt", "A;15;6;7\nB;1015;6;7\nC;15;2006;7\nD;15;6;3007\nE;715;806;907\n");
    const Outcome again = Fit({"--batch", list, "--out", out});
    EXPECT_EQ(again.Status, 0);
    EXPECT_NE(again.Err.find("have changed since: done anew"), std::string::npos) << again.Err;
    EXPECT_NEAR(std::stod(Cell(Lines(Contents(out)), 1, "trax")), 15, 1e-9);
}

TEST_F(FitBatch, ALineThatWasBrokenOffIsDoneAnew) {
    const std::string list = Write("list.csv", "name,start,target\na," + start_ + "," + target_ + "\nb," +
                                                   start_ + "," + target_ + "\n");
    for (const char* name : {"results.csv", "results.jsonl"}) {
        const std::string out = PathOf(name);
        ASSERT_EQ(Fit({"--batch", list, "--out", out}).Status, 0);
        const std::string whole = Contents(out);
        const std::size_t last = whole.rfind('\n', whole.size() - 2);
        for (const std::size_t size : {whole.size() - 1, whole.size() - 40, last + 2}) {
            Write(name, whole.substr(0, size));
            const Outcome again = Fit({"--batch", list, "--out", out});
            EXPECT_EQ(again.Status, 0) << again.Err;
            EXPECT_NE(again.Err.find("1 fit is done already"), std::string::npos) << again.Err;
            EXPECT_NE(again.Err.find("the last line was broken off"), std::string::npos) << again.Err;
            EXPECT_EQ(Contents(out), whole);
        }
    }
}

TEST_F(FitBatch, ResultsAreTheSameHoweverManyRunAtOnce) {
    std::string text = "name,start,target,parameters\n";
    for (int i = 0; i < 12; ++i)
        text += "fit" + std::to_string(i) + "," + kMeasured + "," + kNominal + "," +
                (i % 2 == 0 ? "6" : "7") + "\n";
    const std::string list = Write("list.csv", text);
    ASSERT_EQ(Fit({"--batch", list, "--out", PathOf("one.csv"), "-j", "1"}).Status, 0);
    ASSERT_EQ(Fit({"--batch", list, "--out", PathOf("five.csv"), "-j", "5"}).Status, 0);
    EXPECT_EQ(Contents(PathOf("one.csv")), Contents(PathOf("five.csv")));
}

TEST_F(FitBatch, ResultsOfOtherFitsAreLeftAlone) {
    const std::string list = Write("list.csv", "start,target\n" + start_ + "," + target_ + "\n");
    const std::string out = PathOf("results.csv");
    ASSERT_EQ(Fit({"--batch", list, "--out", out}).Status, 0);
    const std::string before = Contents(out);
    const Outcome other = Fit({"--batch", list, "--out", out, "--parameters", "7"});
    EXPECT_EQ(other.Status, 3);
    EXPECT_NE(other.Err.find("results.csv\", line 2: the result of a fit that is not in"), std::string::npos)
        << other.Err;
    EXPECT_EQ(Contents(out), before);
    const std::string table = Write("table.csv", "a;b\n1;2\n");
    EXPECT_EQ(Fit({"--batch", list, "--out", table}).Status, 3);
    EXPECT_EQ(Contents(table), "a;b\n1;2\n");
}

TEST_F(FitBatch, AListThatSaysSomethingElseIsRefusedWithItsLine) {
    const std::string files = start_ + "," + target_;
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"start,target,colour\n" + files + ",red\n", "line 1: the heading names the columns"},
        {"start,start\n" + files + "\n", "line 1: the column \"start\" stands twice"},
        {"start,target\n" + files + ",6\n", "line 2: the heading has 2 columns, and this line has 3"},
        {"start,target,inverse\n" + files + ",maybe\n", "line 2: the cell of --inverse is yes or no"},
        {"start,target\n-," + target_ + "\n", "line 2: - is standard input"},
        {"start,target,report\n" + files + ",-\n", "line 2: --report writes to standard output"},
        {"start,target,report\n" + files + ",r.html\n\n" + files + ",./r.html\n",
         "line 4: --report would write \"./r.html\", as line 2 does"},
        {"start,target,report\n" + files + "," + PathOf("results.csv") + "\n", "line 2: "},
        {"start,target\n\"" + files + "\n", "line 2: a quote has no end"},
        {"start,target\n", "a heading and a line a fit were expected"},
        {"", "a heading and a line a fit were expected"}};
    const std::string out = PathOf("results.csv");
    for (const auto& [text, expected] : cases) {
        const std::string list = Write("list.csv", text);
        const Outcome run = Fit({"--batch", list, "--out", out});
        EXPECT_EQ(run.Status, 3) << text;
        EXPECT_NE(run.Err.find("list.csv"), std::string::npos) << run.Err;
        EXPECT_NE(run.Err.find(expected), std::string::npos) << run.Err;
        EXPECT_FALSE(File_Exist(out)) << text;
    }
}

TEST_F(FitBatch, WhatIsOfOneFitDoesNotGoWithAList) {
    const std::string list = Write("list.csv", "start,target\n" + start_ + "," + target_ + "\n");
    const std::string out = PathOf("results.csv");
    EXPECT_EQ(Fit({start_, target_, "--batch", list, "--out", out}).Status, 2);
    EXPECT_EQ(Fit({"--batch", list, "--out", out, "--report", PathOf("r.html")}).Status, 2);
    EXPECT_EQ(Fit({"--batch", list, "--out", out, "--csv"}).Status, 2);
    EXPECT_EQ(Fit({"--batch", list}).Status, 2);
    EXPECT_EQ(Fit({start_, target_, "--out", out}).Status, 2);
    EXPECT_EQ(Fit({"--batch", list, "--out", PathOf("results.txt")}).Status, 3);
    EXPECT_EQ(Fit({"--batch", list, "--out", "-"}).Status, 2);
    EXPECT_EQ(Fit({"--batch", list, "--out", list}).Status, 2);
    EXPECT_FALSE(File_Exist(out));
}

TEST_F(FitBatch, ADiskThatRefusesLosesNoResult) {
    const std::string list = Write("list.csv", "start,target\n" + start_ + "," + target_ + "\n");
    const std::string out = PathOf("results.csv");
    ASSERT_EQ(Fit({"--batch", list, "--out", out}).Status, 0);
    const std::string before = Contents(out);
    FileFaults.Refuse = [](const std::string& operation, const std::string&) {
        return operation == "write" ? std::string("no space left on device") : "";
    };
    const Outcome run = Fit({"--batch", list, "--out", out});
    FileFaults.Refuse = nullptr;
    EXPECT_EQ(run.Status, 3);
    EXPECT_NE(run.Err.find("no space left"), std::string::npos) << run.Err;
    EXPECT_EQ(Contents(out), before);
}

TEST_F(FitBatch, ProgressTellsHowManyHaveEnded) {
    const std::string list = Write("list.csv", "start,target\n" + start_ + "," + target_ + "\n");
    const Outcome run = CommandLine({"fit", "--batch", list, "--out", PathOf("results.csv")}, true);
    EXPECT_EQ(run.Status, 0);
    EXPECT_NE(run.Err.find("\r1 of 1 fits, 0 failed"), std::string::npos) << run.Err;
}

TEST_F(FitBatch, OptionsOfAllGiveWayToThoseOfALine) {
    const std::string files = start_ + "," + target_;
    const std::string list = Write("list.csv", "start,target,parameters,hold,hold,inverse\n" + files +
                                                   ",,rotx=0,roty=0,yes\n" + files + ",6,,,no\n");
    const std::string out = PathOf("results.jsonl");
    const Outcome run =
        Fit({"--batch", list, "--out", out, "--parameters", "7", "--hold", "rotz=0", "--inverse"});
    ASSERT_EQ(run.Status, 0) << run.Err;
    const auto rows = Rows(out);
    const auto state = [&rows](std::size_t row, std::size_t parameter) {
        return rows[row]["result"]["parameters"][parameter]["state"].get<std::string>();
    };
    EXPECT_EQ(state(0, 9), "float");
    EXPECT_EQ(state(1, 9), "not used");
    EXPECT_EQ(state(0, 3), "held");
    EXPECT_EQ(state(0, 4), "held");
    EXPECT_EQ(state(0, 5), "float") << "the line's own stand in place of those of all";
    EXPECT_EQ(state(1, 5), "held");
    EXPECT_TRUE(rows[0]["result"].contains("inverse"));
    EXPECT_FALSE(rows[1]["result"].contains("inverse"));
}

TEST_F(FitBatch, AKillLeavesWhatIsDoneAndTheNextRunGoesOnBehindIt) {
    // The second fit waits for points that do not come.
    const std::string pipe = PathOf("pipe.txt"), out = PathOf("results.csv");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const std::string list = Write("list.csv", "start,target\n" + start_ + "," + target_ + "\n" + pipe + "," +
                                                   target_ + "\n" + target_ + "," + start_ + "\n");
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        const std::string program = ProgramPath();
        execl(program.c_str(), program.c_str(), "fit", "--batch", list.c_str(), "--out", out.c_str(), "-j",
              "1", "--decimal", ".", nullptr);
        _exit(127);
    }
    const auto ended = [&out] {
        return File_Exist(out) ? Lines(Contents(out)).size() : 0;  // the heading is one
    };
    while (ended() < 2 && waitpid(child, nullptr, WNOHANG) == 0) usleep(1000);
    ASSERT_EQ(ended(), 2U);
    // What holds the pipe open ends with it, once the fit reads.
    std::ofstream writer(pipe);
    const Outcome second = Fit({"--batch", list, "--out", out});
    EXPECT_EQ(second.Status, 3);
    EXPECT_NE(second.Err.find("another run of --batch is writing it"), std::string::npos) << second.Err;
    ASSERT_EQ(kill(child, SIGKILL), 0);
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status));
    writer.close();
    std::filesystem::remove(pipe);
    Write("pipe.txt", Contents(start_));
    const Outcome again = Fit({"--batch", list, "--out", out});
    EXPECT_EQ(again.Status, 0) << again.Err;
    EXPECT_NE(again.Err.find("1 fit is done already"), std::string::npos) << again.Err;
    EXPECT_EQ(ended(), 4U);
    EXPECT_FALSE(File_Exist(out + ".lock"));
}

}  // namespace
