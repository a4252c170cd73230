// Job files on the command line: `info`, `convert`, `fit --save` and `fit --job`.
#include <filesystem>
#include <fstream>

#include "cli/fit_command.h"
#include "core/files.h"
#include "core/job.h"
#include "core/settings.h"

using namespace corvinade;

namespace {

class JobFiles : public FitCommand {
protected:
    static Outcome Command(const std::vector<std::string>& arguments) { return FreshCommandLine(arguments); }
    static json Info(const std::string& job) {
        const Outcome outcome = Command({"info", job, "--json"});
        EXPECT_EQ(outcome.Status, 0) << outcome.Err;
        return json::parse(outcome.Out);
    }
    // The job of a fit with choices of all kinds.
    std::string Saved() {
        const std::string path = PathOf("cell.cvn");
        const Outcome outcome =
            Command({"fit",         kMeasured,      kNominal, "--parameters",  "7",     "--hold",
                     "rotx=0.1",    "--leave-out",  "F09",    "--leave-out",   "F03:z", "--seed-points",
                     "F05,F02,F11", "--norm",       "l1",     "--length-unit", "m",     "--digits",
                     "5",           "--angle-unit", "gon",    "--save",        path});
        EXPECT_EQ(outcome.Status, 0) << outcome.Err;
        return path;
    }
};

}  // namespace

TEST_F(JobFiles, AFitThatWasSavedIsTheSameFitAgain) {
    const std::string path = Saved();
    const Outcome first =
        Command({"fit",         kMeasured,      kNominal, "--parameters",  "7",     "--hold",
                 "rotx=0.1",    "--leave-out",  "F09",    "--leave-out",   "F03:z", "--seed-points",
                 "F05,F02,F11", "--norm",       "l1",     "--length-unit", "m",     "--digits",
                 "5",           "--angle-unit", "gon",    "--json"});
    const Outcome again = Command({"fit", "--job", path, "--json"});
    ASSERT_EQ(again.Status, 0) << again.Err;
    json a = json::parse(first.Out), b = json::parse(again.Out);
    for (json* fit : {&a, &b}) {
        fit->erase("input");
        fit->erase("files");
    }
    EXPECT_EQ(a, b);
    EXPECT_EQ(b["norm"], "l1");
}

TEST_F(JobFiles, TheExampleJobHoldsTheExampleFit) {
    const json job = json::parse(Command({"fit", "--job", kExamples + "robot_cell.cvn", "--json"}).Out);
    const json files = json::parse(Command({"fit", kMeasured, kNominal, "--leave-out", "F09", "--json"}).Out);
    EXPECT_EQ(job["points"].size(), 14u);
    EXPECT_EQ(job["counts"]["observations"], 39);
    for (std::size_t row = 0; row < 3; ++row)
        for (std::size_t column = 0; column < 4; ++column)
            EXPECT_NEAR(job["transformation"]["matrix"][row][column].get<double>(),
                        files["transformation"]["matrix"][row][column].get<double>(), 1e-9);
}

TEST_F(JobFiles, OptionsGoBeforeWhatTheJobSays) {
    const std::string path = Saved();
    const json l2 = json::parse(Command({"fit", "--job", path, "--norm", "l2", "--json"}).Out);
    EXPECT_EQ(l2["norm"], "l2");
    EXPECT_EQ(l2["parameters"][kRotX - 1]["state"], "held") << "the rest stays";
    EXPECT_EQ(l2["counts"]["observations"], 3 * 14 - 4);
    const json six = json::parse(Command({"fit", "--job", path, "--parameters", "6", "--json"}).Out);
    EXPECT_EQ(six["parameters"][kRotX - 1]["state"], "float");
    EXPECT_EQ(six["parameters"][kScaleXYZ - 1]["state"], "not used");
    const json less = json::parse(Command({"fit", "--job", path, "--leave-out", "F01", "--json"}).Out);
    EXPECT_EQ(less["counts"]["observations"], 3 * 14 - 7) << "what was left out stays so";
    const json held = json::parse(Command({"fit", "--job", path, "--hold", "trax=1.25", "--json"}).Out);
    EXPECT_EQ(held["parameters"][0]["value"], 1250) << "in the units of the job";
}

TEST_F(JobFiles, AJobSavedFromAFitInTheOtherDirectionKeepsIt) {
    const std::string path = PathOf("back.cvn");
    const json first = json::parse(
        Command({"fit", start_, target_, "--direction", "ocs-mcs", "--save", path, "--json"}).Out);
    const json again = json::parse(Command({"fit", "--job", path, "--json"}).Out);
    EXPECT_EQ(again["transformation"], first["transformation"]);
    EXPECT_EQ(again["input"]["direction"], first["input"]["direction"]);
    EXPECT_EQ(Info(path)["direction"], "ocs-mcs");
}

TEST_F(JobFiles, AJobOfARobotProgramKeepsItsOrientations) {
    const std::string tips = kExamples + "robot_tool_measured.txt", program = kExamples + "robot_tool.dat";
    const std::string path = PathOf("tool.cvn"), plain = PathOf("plain.cvn"), points = PathOf("points.cvn");
    const json first =
        json::parse(Command({"fit", tips, program, "--as", "kuka", "--tool", "--save", path, "--json"}).Out);
    ASSERT_GT(std::abs(first["parameters"].back()["value"].get<double>()), 100) << "a tool of some length";
    const json again = json::parse(Command({"fit", "--job", path, "--json"}).Out);
    EXPECT_EQ(again["parameters"], first["parameters"]);
    EXPECT_EQ(Info(path)["targetKind"], "a Kuka robot file with 10 poses");
    ASSERT_EQ(Command({"fit", tips, program, "--as", "kuka", "--save", plain}).Status, 0);
    const json later = json::parse(Command({"fit", "--job", plain, "--tool", "--json"}).Out);
    EXPECT_EQ(later["parameters"], first["parameters"]);
    ASSERT_EQ(Command({"fit", start_, target_, "--save", points}).Status, 0);
    const Outcome none = Command({"fit", "--job", points, "--tool"});
    EXPECT_EQ(none.Status, 1);
    EXPECT_NE(none.Err.find("no orientations"), std::string::npos) << none.Err;
    EXPECT_EQ(Command({"fit", tips, program, "--tool"}).Status, 2) << "the kind of the program is missing";
}

TEST_F(JobFiles, AJobKeepsThePlacesOfItsFilesForEveryFolder) {
    const std::string path = PathOf("cell.cvn");
    const std::string relative = std::filesystem::relative(start_);
    ASSERT_EQ(Command({"fit", relative, target_, "--save", path}).Status, 0);
    EXPECT_EQ(Info(path)["systems"]["start"]["path"], std::filesystem::weakly_canonical(start_).string());
}

TEST_F(JobFiles, InfoTellsWhatAJobHolds) {
    const std::string path = Saved();
    const json info = Info(path);
    EXPECT_EQ(info["schema"], "corvinade-job");
    EXPECT_EQ(info["file"]["version"], "2.0.64");
    EXPECT_EQ(info["file"]["bytes"], std::filesystem::file_size(path));
    EXPECT_EQ(info["counts"]["identical"], 14);
    EXPECT_EQ(info["counts"]["coordinatesInUse"], 3 * 14 - 4);
    EXPECT_EQ(info["units"],
              (json{{"length", "meter"}, {"lengthDigits", 5}, {"angle", "grad (gon)"}, {"angleDigits", 4}}));
    EXPECT_EQ(info["seedPoints"], (json{"F05", "F02", "F11"}));
    EXPECT_EQ(info["norm"], "L1");
    EXPECT_EQ(info["parameters"].size(), 17u);
    EXPECT_EQ(info["parameters"][kRotX - 1]["state"], "held");
    EXPECT_NEAR(info["parameters"][kRotX - 1]["shown"].get<double>(), 0.1, 1e-12);
    EXPECT_EQ(info["savedViews"], json::array());

    const Outcome table = Command({"info", path});
    EXPECT_EQ(table.Status, 0);
    for (const char* said : {"version 2.0.64", "14 identical", "left out", "F09", "F03:z",
                             "meter (5 decimals)", "F05, F02, F11", "L1, MCS => OCS", "Scale xyz", "held"})
        EXPECT_NE(table.Out.find(said), std::string::npos) << said << " in\n" << table.Out;
    EXPECT_EQ(table.Err, "");
}

TEST_F(JobFiles, ConvertWritesTheSameJobAndEverythingAsJson) {
    const std::string path = Saved();
    ASSERT_EQ(Command({"convert", path, PathOf("again.cvn")}).Status, 0);
    EXPECT_EQ(Contents(PathOf("again.cvn")), Contents(path));
    const Outcome outcome = Command({"convert", path, PathOf("all.JSON")});
    ASSERT_EQ(outcome.Status, 0) << outcome.Err;
    EXPECT_EQ(outcome.Out, "");
    const json all = json::parse(Contents(PathOf("all.JSON")));
    const json& records = all["records"];
    EXPECT_EQ(records["MCS_Name"][1], Job.Start.Name[1]);
    EXPECT_EQ(records["MCS_X"][0], json());
    EXPECT_EQ(records["MCS_X"][1], *Job.Start.X[1]);
    EXPECT_EQ(records["UseFlags"].size(), Job.UseFlags.size());
    EXPECT_EQ(records["ParamText"][kRotX], "0.1");
    EXPECT_EQ(records["SavedView"].size(), 51u);
    EXPECT_FALSE(records.contains("JobDirty")) << "the program's run is no part of the job";
    EXPECT_EQ(all["counts"]["identical"], 14);
}

TEST_F(JobFiles, ConvertWritesThePointsAsCsv) {
    const std::string start = Write("s.txt", "A;0;0;0\nB;1000;0;0\nC;0;2000;0\n\"x;7;8;9\n");
    const std::string target = Write("t.txt", "A;5;6;7\nB;1005;6;7\nC;5;2006;7\nT;1;2;3\n");
    ASSERT_EQ(Command({"fit", start, target, "--leave-out", "B:y", "--save", PathOf("c.cvn")}).Status, 0);
    ASSERT_EQ(Command({"convert", PathOf("c.cvn"), PathOf("c.csv")}).Status, 0);
    std::istringstream csv(Contents(PathOf("c.csv")));
    std::vector<std::string> lines;
    for (std::string line; std::getline(csv, line);) lines.push_back(line);
    ASSERT_EQ(lines.size(), 6u);
    EXPECT_EQ(lines[0].substr(0, 24), "kind;name;start_x;start_");
    EXPECT_EQ(lines[2].substr(0, 30), "pair;B;1000;0;0;1005;6;7;1005;");
    EXPECT_EQ(lines[2].substr(lines[2].size() - 7), ";1;0;1\r");
    EXPECT_EQ(lines[4].substr(0, 23), "start;\"\"\"x\";7;8;9;;;;12");
    EXPECT_EQ(lines[5], "target;T;;;;1;2;3;;;;;;;;;\r");
}

TEST_F(JobFiles, JobsThatCannotBeReadOrWrittenSayWhere) {
    const std::string path = Saved();
    const Outcome missing = Command({"info", PathOf("none.cvn")});
    EXPECT_EQ(missing.Status, 3);
    EXPECT_NE(missing.Err.find("none.cvn"), std::string::npos) << missing.Err;
    EXPECT_EQ(missing.Out, "");
    const std::string bytes = Contents(path);
    const std::string cut = Write("cut.cvn", bytes.substr(0, bytes.size() / 2));
    for (const std::vector<std::string>& command :
         {std::vector<std::string>{"info", cut}, {"convert", cut, PathOf("x.cvn")}, {"fit", "--job", cut}}) {
        const Outcome outcome = Command(command);
        EXPECT_EQ(outcome.Status, 3);
        EXPECT_NE(outcome.Err.find("cut.cvn"), std::string::npos) << outcome.Err;
        EXPECT_NE(outcome.Err.find("byte"), std::string::npos) << outcome.Err;
        EXPECT_EQ(outcome.Out, "");
    }
    EXPECT_FALSE(File_Exist(PathOf("x.cvn")));
    const Outcome unwritable = Command({"convert", path, PathOf("no/folder.cvn")});
    EXPECT_EQ(unwritable.Status, 1);
    EXPECT_NE(unwritable.Err.find("folder.cvn"), std::string::npos) << unwritable.Err;
    EXPECT_EQ(Command({"fit", start_, target_, "--save", PathOf("no/folder.cvn")}).Status, 1);
}

TEST_F(JobFiles, AFileThatIsNoJobIsReadAsOneOnlyWithYes) {
    const std::string text = Write("points.txt", "this is no job, but a text\n");
    const Outcome none = Command({"info", text});
    EXPECT_EQ(none.Status, 3);
    EXPECT_NE(none.Err.find("--yes"), std::string::npos) << none.Err;
    EXPECT_EQ(Command({"info", text, "--no"}).Status, 3);
    const Outcome yes = Command({"info", text, "--yes"});
    EXPECT_EQ(yes.Status, 3) << "it still is none";
    EXPECT_NE(yes.Err.find("byte"), std::string::npos) << yes.Err;
}

TEST_F(JobFiles, WrongUsageIsToldBeforeAnythingIsRead) {
    for (const std::vector<std::string>& command : {std::vector<std::string>{"info"},
                                                    {"convert", "a.cvn"},
                                                    {"convert", "a.cvn", "b.txt"},
                                                    {"fit"},
                                                    {"fit", start_},
                                                    {"fit", start_, target_, "--job", "a.cvn"},
                                                    {"fit", "--job", "a.cvn", "--digits", "2"},
                                                    {"fit", "--job", "a.cvn", "--direction", "ocs-mcs"},
                                                    {"fit", start_, target_, "--save", ""}}) {
        const Outcome outcome = Command(command);
        EXPECT_EQ(outcome.Status, 2) << command.back();
        EXPECT_NE(outcome.Err, "");
    }
}
