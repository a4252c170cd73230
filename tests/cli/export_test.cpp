// `corvinade-cli export --as` and `fit --export`: from a job, from a printed result, and from the fit itself.
#include <array>
#include <cmath>
#include <filesystem>
#include <sstream>

#include "analysis/export_forms.h"
#include "cli/fit_command.h"
#include "core/job.h"
#include "core/job_file.h"
#include "core/notes.h"
#include "support/memory_use.h"

using namespace corvinade;

namespace {

const std::string kTips = kExamples + "robot_tool_measured.txt", kRobot = kExamples + "robot_tool.dat";

class ExportCommand : public FitCommand {
protected:
    ExportCommand() {
        EXPECT_EQ(FreshCommandLine({"fit", kMeasured, kNominal, "--leave-out", "F09", "--save", job_}).Status,
                  0);
        Write("result.json",
              FreshCommandLine({"fit", kMeasured, kNominal, "--leave-out", "F09", "--json"}).Out);
    }
    static std::string Text(const std::string& from, const std::string& form) {
        const Outcome outcome = FreshCommandLine({"export", from, "--as", form});
        EXPECT_EQ(outcome.Status, 0) << form << ": " << outcome.Err;
        return outcome.Out;
    }
    // The result with one change, and what an export of it says.
    Outcome OfChanged(const std::function<void(json&)>& change, const std::string& form = "matrix") {
        json all = json::parse(Contents(result_));
        change(all);
        return FreshCommandLine({"export", Write("changed.json", all.dump(2)), "--as", form});
    }
    std::string job_ = PathOf("cell.cvn"), result_ = PathOf("result.json");
};

// The 4 by 4 of the JSON and the text that is written of it.
TEST_F(ExportCommand, TheMatrixIsThatOfTheResult) {
    const json matrix = json::parse(Contents(result_))["transformation"]["matrix"];
    std::istringstream text(Text(job_, "matrix"));
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j) {
            double value = 0;
            ASSERT_TRUE(text >> value);
            EXPECT_NEAR(value, matrix[i][j].get<double>(), 1e-12);
        }
}

TEST_F(ExportCommand, AJobAndItsPrintedResultGiveTheSameInEveryForm) {
    const std::string again = Write("cell.json", Contents(result_));  // the name is part of declarations
    for (const std::string& form : analysis::ExportFormNames())
        EXPECT_EQ(Text(again, form), Text(job_, form)) << form;
    EXPECT_NE(Text(job_, "points").find("ST1\t"), std::string::npos);
}

TEST_F(ExportCommand, AFitHandsItsResultOnInSeveralForms) {
    const std::string kuka = PathOf("cell.src"), matrix = PathOf("m.txt");
    const Outcome outcome =
        FreshCommandLine({"fit", kMeasured, kNominal, "--leave-out", "F09", "--export", "kuka-base=" + kuka,
                          "--export", "quaternion=-", "--export", "matrix=" + matrix});
    ASSERT_EQ(outcome.Status, 0) << outcome.Err;
    EXPECT_EQ(outcome.Out, Text(job_, "quaternion"));
    EXPECT_EQ(Contents(kuka), Text(job_, "kuka-base"));
    EXPECT_EQ(Contents(matrix), Text(job_, "matrix"));
    // With a file alone the table is there as ever.
    EXPECT_EQ(FreshCommandLine({"fit", start_, target_, "--export", "ros=" + PathOf("r")}).Out,
              FreshCommandLine({"fit", start_, target_}).Out);
}

TEST_F(ExportCommand, NoDecimalCommaComesIntoAFormButThePoints) {
    const std::string from =
                          Write("from.txt", "A;0,5;0;0\nB;1000,25;0;0\nC;0;2000;0\nD;0;0;3000\nE;1;2;3,5\n"),
                      to = Write("to.txt", "A;5,5;6;7\nB;1005,25;6;7\nC;5;2006;7\nD;5;6;3007,5\n");
    std::vector<std::string> fit = {"fit", from, to, "--decimal", ",", "--save", PathOf("from.cvn")};
    for (const std::string& form : analysis::ExportFormNames())
        fit.insert(fit.end(), {"--export", form + "=" + PathOf(form + ".out")});
    const Outcome outcome = FreshCommandLine(fit);
    ASSERT_EQ(outcome.Status, 0) << outcome.Err;
    for (const std::string& form : analysis::ExportFormNames()) {
        if (form == "points") {
            EXPECT_EQ(Contents(PathOf("points.out")).substr(0, 2), "E\t");
            EXPECT_NE(Contents(PathOf("points.out")).find(','), std::string::npos) << "as --decimal says";
            continue;
        }
        EXPECT_EQ(Contents(PathOf(form + ".out")), Text(PathOf("from.cvn"), form)) << form;
    }
}

TEST_F(ExportCommand, TheOptionsOfBeforeWriteTheSameAsTheirForms) {
    const std::pair<const char*, const char*> both[] = {
        {"--rocal", "rocal"}, {"--robcad", "robcad"}, {"--points", "points"}};
    for (const auto& [option, form] : both) {
        ASSERT_EQ(FreshCommandLine({"export", job_, option, PathOf("old")}).Status, 0);
        ASSERT_EQ(FreshCommandLine({"export", job_, "--as", form, "--out", PathOf("new")}).Status, 0);
        EXPECT_EQ(Contents(PathOf("old")), Contents(PathOf("new"))) << form;
    }
    const Outcome named = FreshCommandLine(
        {"export", job_, "--as", "robcad", "--place", "Wob", "--tool", "a9", "--robot", "r2"});
    EXPECT_NE(named.Out.find("COMPONENT / a9_Wob_r2 "), std::string::npos);
}

TEST_F(ExportCommand, TheTipOfAToolIsWhatTheToolFormsHold) {
    const std::string path = PathOf("tool.cvn");
    const Outcome fit = FreshCommandLine({"fit", kTips, kRobot, "--as", "kuka", "--tool", "--save", path,
                                          "--json", "--export", "kuka-tool=" + PathOf("t.src")});
    ASSERT_EQ(fit.Status, 0) << fit.Err;
    const json result = json::parse(fit.Out);
    std::array<double, 3> tip{};
    for (const json& parameter : result["parameters"])
        for (std::size_t k = 0; k < 3; ++k)
            if (parameter["name"] == std::string("rvec") + "xyz"[k])
                tip[k] = -parameter["value"].get<double>();
    const std::string expected = "$TOOL={X " + analysis::ExactText(tip[0]) + ", Y " +
                                 analysis::ExactText(tip[1]) + ", Z " + analysis::ExactText(tip[2]) +
                                 ", A 0, B 0, C 0}\n";
    EXPECT_NEAR(tip[2], 214.43, 0.2) << "of the example";
    EXPECT_EQ(Contents(PathOf("t.src")), expected);
    EXPECT_EQ(Text(path, "kuka-tool"), expected);
    EXPECT_EQ(Text(Write("tool.json", fit.Out), "kuka-tool"), expected);
    EXPECT_EQ(Text(Write("tool.json", fit.Out), "kuka-base"), Text(path, "kuka-base"));
}

// Files of before have no place for it, and a tool of no length would be wrong without a word.
TEST_F(ExportCommand, AJobThatHasLostItsToolVectorHasNoToolToExport) {
    const std::string path = PathOf("tool.cvn");
    ASSERT_EQ(FreshCommandLine({"fit", kTips, kRobot, "--as", "kuka", "--tool", "--save", path}).Status, 0);
    JobFileContent content = ReadJobBytes(Contents(path), path);
    EXPECT_NEAR(content.Job.Rvec_x, -62.44, 0.2) << "of the example";
    content.Job.Rvec_x = content.Job.Rvec_y = content.Job.Rvec_z = 0;
    const std::string lost = Write("lost.cvn", JobBytes(content.Job, {}));
    for (const char* form : {"kuka-tool", "fanuc-utool", "abb-tool"}) {
        const Outcome outcome = FreshCommandLine({"export", lost, "--as", form});
        EXPECT_EQ(outcome.Status, 1);
        EXPECT_EQ(outcome.Out, "");
        EXPECT_NE(outcome.Err.find("which the job has lost"), std::string::npos) << outcome.Err;
    }
    EXPECT_EQ(Text(lost, "kuka-base"), Text(path, "kuka-base"));
}

TEST_F(ExportCommand, ScaleAndShearAreRefusedAndNothingIsWritten) {
    for (const char* parameters : {"7", "9", "12"}) {
        const std::string path = PathOf("scaled.cvn"), out = PathOf("out.txt"), kept = PathOf("kept.cvn");
        const std::vector<std::string> fit = {"fit", kMeasured, kNominal, "--parameters", parameters};
        std::vector<std::string> saved = fit;
        saved.insert(saved.end(), {"--save", path});
        ASSERT_EQ(FreshCommandLine(saved).Status, 0);
        for (const std::string& name : analysis::ExportFormNames()) {
            const bool rigid = analysis::FindExportForm(name)->Form.Rigid;
            const Outcome outcome = FreshCommandLine({"export", path, "--as", name, "--out", out});
            EXPECT_EQ(outcome.Status, rigid ? 1 : 0) << name << outcome.Err;
            EXPECT_EQ(std::filesystem::exists(out), !rigid) << name;
            EXPECT_EQ(outcome.Err.find("scales x, y, z by") != std::string::npos, rigid) << outcome.Err;
            std::filesystem::remove(out);
        }
        std::vector<std::string> refused = fit;
        refused.insert(refused.end(), {"--save", kept, "--export", "matrix=" + out, "--export", "ros=-"});
        const Outcome outcome = FreshCommandLine(refused);
        EXPECT_EQ(outcome.Status, 1);
        EXPECT_EQ(outcome.Out, "");
        EXPECT_FALSE(std::filesystem::exists(out) || std::filesystem::exists(kept));
    }
}

TEST_F(ExportCommand, AMirroredResultIsRefusedByTheRigidForms) {
    const std::string mirrored =
        Write("m.txt", "A;0;0;0\nB;1000;0;0\nC;0;2000;0\nD;0;0;-3000\nE;700;800;-900\n");
    const std::string path = PathOf("mirror.cvn");
    ASSERT_EQ(FreshCommandLine({"fit", start_, mirrored, "--parameters", "12", "--save", path}).Status, 0);
    const Outcome outcome = FreshCommandLine({"export", path, "--as", "urdf"});
    EXPECT_EQ(outcome.Status, 1);
    EXPECT_NE(outcome.Err.find("is mirrored"), std::string::npos) << outcome.Err;
    EXPECT_NE(Text(path, "matrix").find("0 0 -1 "), std::string::npos);
}

TEST_F(ExportCommand, AResultThatDidNotConvergeWantsConsent) {
    JobFileContent content = ReadJobBytes(Contents(job_), job_);
    content.Job.Unconverged = kTrue;
    const std::string job = Write("open.cvn", JobBytes(content.Job, {}));
    json result = json::parse(Contents(result_));
    result["converged"] = false;
    for (const std::string& from : {job, Write("open.json", result.dump())}) {
        const Outcome refused = FreshCommandLine({"export", from, "--as", "ros"});
        EXPECT_EQ(refused.Status, 4) << refused.Err;
        EXPECT_EQ(refused.Out, "");
        const Outcome taken = FreshCommandLine({"export", from, "--as", "ros", "--unconverged"});
        EXPECT_EQ(taken.Status, 0);
        EXPECT_EQ(taken.Out, Text(job_, "ros"));
        EXPECT_NE(taken.Err.find("not converge"), std::string::npos);
    }
}

// See unconverged_test.cpp: an iteration that finds no rest.
TEST_F(ExportCommand, AFitThatDidNotConvergeExportsWithConsentAlone) {
    const std::string from =
        Write("from.txt",
              "A;0;0;0\nB;1000;0;0\nC;0;1000;0\nD;0;0;1000\nE;700;800;900\nF;300;100;500\nG;-200;500;100\n");
    const std::string to = Write(
        "to.txt",
        "A;5;6;7\nB;1005;6;7\nC;5;1006;7\nD;5;6;1007\nE;705;806;100907\nF;305;106;507\nG;-195;506;107\n");
    const std::string out = PathOf("out.txt");
    std::vector<std::string> fit = {"fit",    from,      to,       "--r-dist", "--hold",   "trax=50",
                                    "--hold", "tray=20", "--hold", "traz=-30", "--export", "matrix=" + out};
    const Outcome refused = FreshCommandLine(fit);
    ASSERT_EQ(refused.Status, 4) << refused.Err;
    EXPECT_FALSE(std::filesystem::exists(out));
    EXPECT_NE(refused.Err.find("with --unconverged it does"), std::string::npos) << refused.Err;
    EXPECT_NE(refused.Out, "") << "the table is there all the same";
    fit.emplace_back("--unconverged");
    EXPECT_EQ(FreshCommandLine(fit).Status, 4);
    EXPECT_TRUE(std::filesystem::exists(out));
}

TEST_F(ExportCommand, OpenParametersOfAPrintedResultAreToldAsThoseOfAJob) {
    const std::string start = Write("ls.txt", "A;0;0;0\nB;1000;0;0\nC;2000;0;0\n"),
                      target = Write("lt.txt", "A;5;6;7\nB;1005;6;7\nC;2005;6;7\n"), job = PathOf("line.cvn");
    const Outcome fit = FreshCommandLine({"fit", start, target, "--json", "--save", job});
    ASSERT_EQ(fit.Status, 0);
    json result = json::parse(fit.Out);
    ASSERT_FALSE(result["openParameters"].empty());
    const std::string now = Write("line.json", result.dump());
    result.erase("openParameters");
    result.erase("collapsedScale");
    const std::string before = Write("before.json", result.dump());
    for (const std::string& from : {job, now, before}) {
        EXPECT_EQ(FreshCommandLine({"export", from, "--as", "matrix"}).Status, 0);
        int warnings = 0;
        for (const Note& note : Notes.List) warnings += note.Code == NoteCode::OpenParameters ? 1 : 0;
        EXPECT_EQ(warnings, 1) << from;
        const Outcome strict = FreshCommandLine({"export", from, "--as", "matrix", "--strict"});
        EXPECT_EQ(strict.Status, 3);
        EXPECT_EQ(strict.Out, "");
    }
}

// --- What is refused of a printed result ------------------------------------------------------------------

TEST_F(ExportCommand, ADamagedResultIsRefusedWithThePlace) {
    const struct {
        const char* Says;
        std::function<void(json&)> Change;
    } cases[] = {
        {"schema is \"corvinade-job\"", [](json& all) { all["schema"] = "corvinade-job"; }},
        {"member schema is missing", [](json& all) { all.erase("schema"); }},
        {"schemaVersion is not 1", [](json& all) { all["schemaVersion"] = 2; }},
        {"schemaVersion is not 1", [](json& all) { all["schemaVersion"] = "1"; }},
        {"converged is neither true nor false", [](json& all) { all["converged"] = nullptr; }},
        {"input.lengthUnit is \"furlong\"", [](json& all) { all["input"]["lengthUnit"] = "furlong"; }},
        {"parameters[0].value is no number", [](json& all) { all["parameters"][0]["value"] = nullptr; }},
        {"parameters[0].value is no number", [](json& all) { all["parameters"][0]["value"] = "12"; }},
        {"parameters[5].state is \"open\"", [](json& all) { all["parameters"][5]["state"] = "open"; }},
        {"parameters has no \"ztoxy\"", [](json& all) { all["parameters"].erase(12); }},
        {"parameters[13] is a second \"trax\"",
         [](json& all) { all["parameters"].push_back(all["parameters"][0]); }},
        {"transformation.matrix has not 4 rows", [](json& all) { all["transformation"]["matrix"].erase(3); }},
        {"transformation.matrix[1] has not 4 elements",
         [](json& all) { all["transformation"]["matrix"][1].push_back(0); }},
        {"transformation.matrix[2][3] is no number",
         [](json& all) { all["transformation"]["matrix"][2][3] = nullptr; }},
        {"transformation.matrix is not that of the parameters: row 1, column 4",
         [](json& all) { all["transformation"]["matrix"][0][3] = 1; }},
        {"transformation.matrix is not that of the parameters: row 4, column 1",
         [](json& all) { all["transformation"]["matrix"][3][0] = 1; }},
        {"openParameters[0] is \"rot\"", [](json& all) { all["openParameters"] = {"rot"}; }},
    };
    for (const auto& [says, change] : cases) {
        const Outcome outcome = OfChanged(change);
        EXPECT_EQ(outcome.Status, 3) << says;
        EXPECT_EQ(outcome.Out, "");
        EXPECT_NE(outcome.Err.find(says), std::string::npos) << says << "\n" << outcome.Err;
        EXPECT_NE(outcome.Err.find("Cannot read \"" + PathOf("changed.json") + "\""), std::string::npos);
    }
    EXPECT_EQ(OfChanged([](json&) {}).Status, 0);
}

TEST_F(ExportCommand, TextThatIsNoJsonIsRefusedWithLineAndColumn) {
    const std::pair<const char*, const char*> cases[] = {
        {"{\n  \"schema\": \"a\",\n  x\n}", "line 3, column 3"},
        {"{\"schema\": \"a\"", "line 1, column 15"},
        {"{}}", "line 1, column 3"},
        {"{\n\"a\": 1,\n\"a\": 2}", "\"a\" stands twice"},
        {"{\"a\": 1e999}", "too large"}};
    for (const auto& [text, says] : cases) {
        const Outcome outcome = FreshCommandLine({"export", Write("bad.json", text), "--as", "json"});
        EXPECT_EQ(outcome.Status, 3) << text;
        EXPECT_NE(outcome.Err.find(says), std::string::npos) << outcome.Err;
    }
    // Cut anywhere, it is no result, and never half of one.
    const std::string whole = Contents(result_);
    for (std::size_t size = 1; size < whole.size() - 2; size += UnderSanitizers() ? 970 : 97)
        EXPECT_EQ(
            FreshCommandLine({"export", Write("cut.json", whole.substr(0, size)), "--as", "json"}).Status, 3);
}

TEST_F(ExportCommand, AResultWithoutPointsHasNoneToExport) {
    const std::string bare = Write(
        "bare.json",
        FreshCommandLine({"fit", kMeasured, kNominal, "--leave-out", "F09", "--json", "--no-points"}).Out);
    const json all = json::parse(Contents(bare));
    for (const char* member : {"points", "startOnly", "targetOnly"}) EXPECT_FALSE(all.contains(member));
    EXPECT_TRUE(all.contains("notes"));
    EXPECT_EQ(Text(bare, "matrix"), Text(job_, "matrix"));
    EXPECT_EQ(FreshCommandLine({"export", bare, "--as", "points"}).Status, 1);
}

TEST_F(ExportCommand, WrongUsage) {
    const std::vector<std::vector<std::string>> commands = {
        {"export", job_},
        {"export", job_, "--as", "kuka"},
        {"export", job_, "--as", "ros", "--rocal", PathOf("a")},
        {"export", job_, "--out", PathOf("a")},
        {"export", job_, "--as", "ros", "--out", ""},
        {"export", job_, "--as", "ros", "--place", "Wob"},
        {"export", job_, "--as", "ros", "--json"},
        {"export", job_, "--as", "ros", "--out", job_},
        {"export", job_, "--rocal", job_},
        {"fit", start_, target_, "--export", "ros"},
        {"fit", start_, target_, "--export", "ros="},
        {"fit", start_, target_, "--export", "none=" + PathOf("a")},
        {"fit", start_, target_, "--export", "ros=" + start_},
        {"fit", start_, target_, "--export", "ros=" + PathOf("a"), "--export", "urdf=" + PathOf("a")},
        {"fit", start_, target_, "--export", "ros=-", "--export", "urdf=-"},
        {"fit", start_, target_, "--export", "ros=-", "--json"},
        {"fit", start_, target_, "--export", "ros=-", "--csv"},
        {"fit", start_, target_, "--export", "ros=-", "--protocol"},
        {"fit", start_, target_, "--unconverged"},
        {"fit", start_, target_, "--no-points"},
        {"fit", start_, target_, "--limit", "-1"},
        {"fit", start_, target_, "--limit", "much"}};
    const std::string before = Contents(job_);
    for (const auto& command : commands) {
        const Outcome outcome = FreshCommandLine(command);
        EXPECT_EQ(outcome.Status, 2) << command.back() << ": " << outcome.Err;
        EXPECT_NE(outcome.Err + outcome.Out, "");
    }
    EXPECT_EQ(Contents(job_), before);
}

TEST_F(ExportCommand, JsonTellsWhatWasWritten) {
    const std::string out = PathOf("a.txt");
    const Outcome outcome = FreshCommandLine({"export", job_, "--as", "ros", "--out", out, "--json"});
    ASSERT_EQ(outcome.Status, 0) << outcome.Err;
    const json told = json::parse(outcome.Out);
    EXPECT_EQ(told["schema"], "corvinade-export");
    EXPECT_EQ(told["written"], json::array({out}));
    EXPECT_EQ(Contents(out), Text(job_, "ros"));
}

// --- The limit --------------------------------------------------------------------------------------------

TEST_F(ExportCommand, ALimitOfTheDeviationsEndsWithAStatusOfItsOwn) {
    const std::vector<std::string> fit = {"fit", kMeasured, kNominal, "--leave-out", "F09", "--json"};
    const auto limited = [&fit](const std::string& limit) {
        std::vector<std::string> all = fit;
        all.insert(all.end(), {"--limit", limit});
        return FreshCommandLine(all);
    };
    const Outcome plain = FreshCommandLine(fit);
    // The largest coordinate in use, by hand from the points.
    double largest = 0;
    const json points = json::parse(plain.Out)["points"];
    for (const json& point : points)
        for (std::size_t k = 0; k < 3; ++k)
            if (point["used"][k])
                largest = std::max(largest, std::fabs(point["residual_mm"][k].get<double>()));
    ASSERT_GT(largest, 0.01);
    ASSERT_LT(largest, 1) << "F09 is 3 mm off and not in use";
    const Outcome above = limited(std::to_string(largest * 0.999)),
                  below = limited(std::to_string(largest * 1.001));
    EXPECT_EQ(above.Status, 5);
    EXPECT_EQ(below.Status, 0);
    EXPECT_EQ(above.Out, plain.Out) << "the whole result all the same";
    EXPECT_EQ(below.Out, plain.Out);
    EXPECT_NE(above.Err.find("--limit"), std::string::npos);
    EXPECT_EQ(below.Err, plain.Err);
    EXPECT_EQ(limited("0").Status, 5);
}

// The line of the README, with its files where they stand: the base is that of the same points without a
// heading, in millimetres.
TEST_F(ExportCommand, FromATrackersTableAndARobotProgramToABaseItIsOneLine) {
    const std::string readme = Contents(std::string(CORVINADE_SOURCE_DIR) + "/README.md"), run = "`./run ";
    const std::size_t end = readme.find(" --export kuka-base=base.src`");
    ASSERT_NE(end, std::string::npos);
    const std::size_t begin = readme.rfind(run, end) + run.size();
    std::istringstream words(readme.substr(begin, end - begin));
    std::vector<std::string> line;
    for (std::string word; words >> word;)
        line.push_back(word.starts_with("examples/") ? kExamples + word.substr(9) : word);
    ASSERT_GT(line.size(), 3u);
    EXPECT_NE(Contents(line[1]).find("X [m]"), std::string::npos);
    std::vector<std::string> plain = line;
    plain[1] = kExamples + "robot_tool_measured.txt";
    for (auto* command : {&line, &plain}) command->insert(command->end(), {"--export", "kuka-base=-"});
    const Outcome table = FreshCommandLine(line), list = FreshCommandLine(plain);
    ASSERT_EQ(table.Status, 0) << table.Err;
    ASSERT_EQ(list.Status, 0) << list.Err;
    const auto numbers = [](const std::string& text) {
        std::vector<double> found;
        for (const char* const name : {"{X ", " Y ", " Z ", " A ", " B ", " C "})
            found.push_back(std::stod(text.substr(text.find(name) + 3)));
        return found;
    };
    for (std::size_t i = 0; i < 6; ++i)
        EXPECT_NEAR(numbers(table.Out)[i], numbers(list.Out)[i], 1e-9) << table.Out << list.Out;
}

}  // namespace
