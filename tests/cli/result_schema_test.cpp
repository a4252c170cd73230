// What `fit --json` prints, and the errors, against the schema that is published of them.
#include <fstream>
#include <set>

#include "cli/fit_command.h"

using namespace corvinade;

namespace {

// The keywords of JSON Schema that the file uses; another one fails. Members that the schema does not name
// are faults here, though it lets others pass: each is to be written down.
class Validator {
public:
    explicit Validator(json schema) : schema_(std::move(schema)) {}

    std::vector<std::string> Faults(const json& value, const std::string& definition = "") {
        faults_.clear();
        Check(value, definition.empty() ? schema_ : schema_.at("$defs").at(definition), "");
        return faults_;
    }

private:
    void Fault(const std::string& at, const std::string& what) { faults_.push_back(at + ": " + what); }

    static bool IsOf(const json& value, const std::string& type) {
        if (type == "integer") return value.is_number_integer();
        return type == "null"     ? value.is_null()
               : type == "string" ? value.is_string()
               : type == "number" ? value.is_number()
               : type == "array"  ? value.is_array()
               : type == "object" ? value.is_object()
                                  : type == "boolean" && value.is_boolean();
    }

    void Check(const json& value, const json& schema, const std::string& at) {
        for (const auto& [keyword, what] : schema.items()) {
            if (keyword == "$schema" || keyword == "title" || keyword == "description" || keyword == "$defs")
                continue;
            if (keyword == "$ref") {
                const std::string name = what.get<std::string>();
                const std::string begin = "#/$defs/";
                ASSERT_TRUE(name.starts_with(begin)) << name;
                Check(value, schema_.at("$defs").at(name.substr(begin.size())), at);
            } else if (keyword == "type") {
                const json types = what.is_array() ? what : json::array({what});
                if (std::none_of(types.begin(), types.end(),
                                 [&](const json& type) { return IsOf(value, type); }))
                    Fault(at, value.dump().substr(0, 60) + " is no " + what.dump());
            } else if (keyword == "const") {
                if (value != what) Fault(at, value.dump() + " is not " + what.dump());
            } else if (keyword == "enum") {
                if (std::find(what.begin(), what.end(), value) == what.end()) Fault(at, value.dump());
            } else if (keyword == "minimum") {
                if (value.is_number() && value < what) Fault(at, value.dump());
            } else if (keyword == "maximum") {
                if (value.is_number() && value > what) Fault(at, value.dump());
            } else if (keyword == "minItems") {
                if (value.is_array() && value.size() < what.get<std::size_t>()) Fault(at, "too few");
            } else if (keyword == "maxItems") {
                if (value.is_array() && value.size() > what.get<std::size_t>()) Fault(at, "too many");
            } else if (keyword == "items") {
                if (!value.is_array()) continue;
                for (std::size_t i = 0; i < value.size(); ++i)
                    Check(value[i], what, at + "[" + std::to_string(i) + "]");
            } else if (keyword == "required") {
                if (!value.is_object()) continue;
                for (const json& name : what)
                    if (!value.contains(name)) Fault(at, name.dump() + " is missing");
            } else if (keyword == "properties") {
                if (!value.is_object()) continue;
                for (const auto& [name, member] : value.items()) {
                    if (!what.contains(name)) {
                        Fault(at + "." + name, "the schema does not name it");
                    } else {
                        Check(member, what.at(name), at + "." + name);
                    }
                }
            } else {
                ADD_FAILURE() << "unknown keyword " << keyword;
            }
        }
    }

    json schema_;
    std::vector<std::string> faults_;
};

class ResultSchema : public FitCommand {
protected:
    Validator schema_{json::parse(Contents(std::string(CORVINADE_SOURCE_DIR) + "/docs/result.schema.json"))};

    json Result(std::vector<std::string> arguments, int status = 0) {
        arguments.insert(arguments.begin(), "fit");
        arguments.emplace_back("--json");
        const Outcome outcome = FreshCommandLine(arguments);
        EXPECT_EQ(outcome.Status, status) << outcome.Err;
        return json::parse(outcome.Out);
    }
};

TEST_F(ResultSchema, HoldsForEveryKindOfResult) {
    const std::string tips = kExamples + "robot_tool_measured.txt", robot = kExamples + "robot_tool.dat";
    const std::string line = Write("l.txt", "A;0;0;0\nB;1000;0;0\nC;2000;0;0\n");
    const std::vector<std::vector<std::string>> fits = {
        {kMeasured, kNominal},
        {kMeasured, kNominal, "--details", "--protocol"},
        {kMeasured, kNominal, "--inverse", "--parameters", "12", "--no-points"},
        {kMeasured, kNominal, "--norm", "minimax"},
        {kMeasured, kNominal, "--norm", "l1-exact", "--parameters", "12"},
        {kMeasured, kNominal, "--monte-carlo", "10", "--sigma", "0.05"},
        {kMeasured, kNominal, "--direction", "ocs-mcs", "--length-unit", "in", "--angle-unit", "gon"},
        {tips, robot, "--as", "kuka", "--tool"},
        {line, line},
        {start_, target_, "--hold", "rotz=0", "--parameters", "7"},
        {kExamples + "dish_measured.txt", kExamples + "dish_shape.txt", "--as", "paraboloid", "--hold",
         "rotz=0"},
        {"--job", kExamples + "robot_cell.cvn"}};
    for (const auto& fit : fits)
        EXPECT_EQ(schema_.Faults(Result(fit)), std::vector<std::string>()) << fit[0] << " " << fit.back();
}

TEST_F(ResultSchema, FindsWhatIsWrong) {
    const json good = Result({start_, target_});
    const std::pair<std::function<void(json&)>, const char*> cases[] = {
        {[](json& all) { all["schemaVersion"] = 2; }, ".schemaVersion"},
        {[](json& all) { all.erase("counts"); }, "\"counts\" is missing"},
        {[](json& all) { all["points"][1]["start_mm"].push_back(1); }, ".points[1].start_mm: too many"},
        {[](json& all) { all["parameters"][2]["value"] = nullptr; }, ".parameters[2].value"},
        {[](json& all) { all["new"] = 1; }, ".new"}};
    for (const auto& [change, says] : cases) {
        json bad = good;
        change(bad);
        const std::vector<std::string> faults = schema_.Faults(bad);
        ASSERT_EQ(faults.size(), 1u) << says;
        EXPECT_NE(faults[0].find(says), std::string::npos) << faults[0];
    }
}

// --- Errors -----------------------------------------------------------------------------------------------

class JsonErrors : public ResultSchema {
protected:
    json Error(const std::vector<std::string>& command, int status) {
        const Outcome outcome = FreshCommandLine(command);
        EXPECT_EQ(outcome.Status, status) << command[0] << ": " << outcome.Err;
        // All of standard output is one document.
        const json all = json::parse(outcome.Out, nullptr, false);
        EXPECT_FALSE(all.is_discarded()) << outcome.Out;
        if (all.is_discarded()) return {};
        EXPECT_EQ(schema_.Faults(all, "error"), std::vector<std::string>()) << outcome.Out;
        EXPECT_EQ(outcome.Err.find("corvinade-cli:"), std::string::npos) << outcome.Err;
        EXPECT_EQ(all["error"]["status"], status);
        EXPECT_NE(all["error"]["text"], "");
        return all["error"];
    }
};

TEST_F(JsonErrors, NameFileAndLine) {
    const std::string program = Write(
        "bad.dat", "DECL E6POS P1={X 1,Y 2,Z 3,A 4,B 5,C 6}\nDECL E6POS P2={X 1,Y q,Z 3,A 4,B 5,C 6}\n");
    const json pose = Error({"fit", start_, program, "--as", "kuka", "--json"}, 3);
    EXPECT_EQ(pose["file"], program);
    EXPECT_EQ(pose["line"], 2);
    EXPECT_EQ(pose["text"].get<std::string>().find("corvinade-cli:"), std::string::npos);

    const std::string gone = PathOf("gone.txt");
    const json missing = Error({"fit", gone, target_, "--json"}, 3);
    EXPECT_EQ(missing["file"], gone);
    EXPECT_EQ(missing["line"], nullptr);

    const std::string twice = Write("twice.txt", "A;0;0;0\nB;1;0;0\nA;0;2;0\n");
    const json names = Error({"fit", twice, target_, "--json"}, 3);
    EXPECT_EQ(names["file"], twice);
    EXPECT_FALSE(names["line"].is_null());

    const std::string json = Write("r.json", "{\n \"schema\" 1}");
    const nlohmann::json result = Error({"export", json, "--as", "ros", "--out", PathOf("o"), "--json"}, 3);
    EXPECT_EQ(result["file"], json);
    EXPECT_EQ(result["line"], 2);
}

TEST_F(JsonErrors, AreThereInEveryCommandAndForWrongUsage) {
    const std::string gone = PathOf("gone.cvn"), out = PathOf("out");
    const std::vector<std::vector<std::string>> commands = {{"info", gone},
                                                            {"convert", gone, out + ".csv"},
                                                            {"render", gone, "--out", out + ".png"},
                                                            {"distances", gone},
                                                            {"bundle", gone},
                                                            {"transform", gone, start_, "--to", out},
                                                            {"export", gone, "--rocal", out},
                                                            {"fit", "--job", gone}};
    for (std::vector<std::string> command : commands) {
        command.emplace_back("--json");
        EXPECT_EQ(Error(command, 3)["file"], gone) << command[0];
    }
    EXPECT_EQ(Error({"fit", "--json"}, 2)["file"], nullptr);
    EXPECT_NE(Error({"fit", start_, target_, "--json", "--no-such"}, 2)["text"].get<std::string>().find(
                  "--no-such"),
              std::string::npos);
    EXPECT_EQ(Error({"fit", start_, target_, "--json", "--report", start_}, 2)["file"], start_);
    EXPECT_EQ(Error({"fit", start_, Write("one.txt", "A;0;0;0\n"), "--json"}, 1)["line"], nullptr);
}

// "6 unknowns" is no file, though the command line says 6.
TEST_F(JsonErrors, TakeNoOtherValueForAFile) {
    const std::string two = Write("two.txt", "A;0;0;0\nB;1000;0;0\n");
    const json few = Error({"fit", two, two, "--parameters", "12", "--leave-out", "B:x", "--json"}, 1);
    EXPECT_NE(few["text"].get<std::string>().find("12 unknowns"), std::string::npos) << few;
    EXPECT_EQ(few["file"], nullptr);
    EXPECT_EQ(few["line"], nullptr);
}

TEST_F(JsonErrors, TheResultAloneIsThereWhereThereIsOne) {
    const std::vector<std::string> fit = {"fit", kMeasured, kNominal, "--limit", "0.001"};
    std::vector<std::string> asJson = fit;
    asJson.emplace_back("--json");
    const Outcome outcome = FreshCommandLine(asJson);
    EXPECT_EQ(outcome.Status, 5);
    EXPECT_EQ(schema_.Faults(json::parse(outcome.Out)), std::vector<std::string>());
    EXPECT_EQ(outcome.Err, FreshCommandLine(fit).Err);
    // A batch that has left a file tells it in its own object.
    const std::string job = PathOf("a.cvn"), gone = PathOf("gone.txt");
    ASSERT_EQ(FreshCommandLine({"fit", start_, target_, "--save", job}).Status, 0);
    const Outcome batch = FreshCommandLine({"transform", job, gone, start_, "--to", PathOf("to"), "--json"});
    EXPECT_EQ(batch.Status, 3);
    EXPECT_EQ(json::parse(batch.Out)["schema"], "corvinade-transform");
    EXPECT_EQ(json::parse(batch.Out)["left"][0]["path"], gone);
}

// Standard output that takes nothing: the error is not lost with it.
TEST_F(JsonErrors, AreTextOnStandardErrorWhereOutputIsFull) {
    std::istringstream in;
    std::ostringstream err;
    std::ostream full(nullptr);
    const std::string gone = PathOf("gone.cvn");
    const char* const command[] = {"corvinade-cli", "info", gone.c_str(), "--json"};
    FreshStart();
    Headless = HeadlessRecord{};
    EXPECT_EQ(RunCommandLine(4, command, in, full, err, false, false), 3);
    EXPECT_NE(err.str().find(gone), std::string::npos) << err.str();
}

TEST_F(JsonErrors, StandardInputAndOutputAreNoFiles) {
    EXPECT_EQ(Error({"fit", start_, target_, "--save", "-", "--json"}, 2)["file"], nullptr);
}

TEST_F(JsonErrors, LeaveNotesOnStandardError) {
    const std::string start = Write("s.txt", "A;0;0;0\nB;1000;;0\nC;0;2000;0\n");
    const Outcome strict =
        FreshCommandLine({"fit", start, target_, "--format", "plain", "--json", "--strict"});
    EXPECT_EQ(strict.Status, 3);
    EXPECT_TRUE(strict.Err.starts_with("warning: ")) << strict.Err;
    const json all = json::parse(strict.Out);
    EXPECT_EQ(all["error"]["file"], start);
    EXPECT_EQ(all["error"]["line"], 2);
    // Quiet it is the object alone, which says the warnings.
    const Outcome quiet =
        FreshCommandLine({"fit", start, target_, "--format", "plain", "--json", "--strict", "--quiet"});
    EXPECT_EQ(quiet.Status, 3);
    EXPECT_EQ(quiet.Err, "");
    const json alone = json::parse(quiet.Out);
    EXPECT_NE(alone["error"]["text"].get<std::string>().find("warning: "), std::string::npos);
}

// --- --quiet ----------------------------------------------------------------------------------------------

TEST_F(JsonErrors, QuietLeavesNotesOutAndErrorsStay) {
    const std::string start = Write("s.txt", "A;0;0;0\nB;1000;;0\nC;0;2000;0\n\nD;0;0;3000\n");
    for (const bool asJson : {false, true}) {
        std::vector<std::string> fit = {"fit", start, target_, "--format", "plain"};
        if (asJson) fit.emplace_back("--json");
        const Outcome loud = FreshCommandLine(fit);
        EXPECT_EQ(loud.Status, 0) << loud.Err;
        EXPECT_NE(loud.Err.find("warning: "), std::string::npos) << loud.Err;
        fit.emplace_back("--quiet");
        const Outcome quiet = FreshCommandLine(fit);
        EXPECT_EQ(quiet.Status, 0);
        EXPECT_EQ(quiet.Err, "");
        EXPECT_EQ(quiet.Out, loud.Out);
    }
    // What --strict ends for are errors.
    const Outcome strict =
        FreshCommandLine({"fit", start, target_, "--format", "plain", "--strict", "--quiet"});
    EXPECT_EQ(strict.Status, 3);
    EXPECT_NE(strict.Err.find("warning: "), std::string::npos) << strict.Err;
    const Outcome gone = FreshCommandLine({"info", PathOf("gone.cvn"), "--quiet"});
    EXPECT_EQ(gone.Status, 3);
    EXPECT_NE(gone.Err.find("gone.cvn"), std::string::npos);
    const Outcome refused = FreshCommandLine({"fit", start_, Write("one.txt", "A;0;0;0\n"), "--quiet"});
    EXPECT_EQ(refused.Status, 1);
    EXPECT_NE(refused.Err.find("at least 2"), std::string::npos) << refused.Err;
}

// --- One form ---------------------------------------------------------------------------------------------

TEST_F(ResultSchema, TheProgramIsToldInOneForm) {
    const std::string job = PathOf("a.cvn"), network = kExamples + "hall_network.txt";
    ASSERT_EQ(FreshCommandLine({"fit", start_, target_, "--save", job}).Status, 0);
    const std::vector<std::vector<std::string>> commands = {
        {"fit", start_, target_},
        {"info", job},
        {"convert", job, PathOf("a.csv")},
        {"render", job, "--size", "64x64", "--out", PathOf("a.svg")},
        {"distances", job},
        {"bundle", network},
        {"transform", job, start_, "--to", PathOf("to"), "--delimiter", "semicolon"},
        {"export", job, "--rocal", PathOf("a.bas")}};
    for (std::vector<std::string> command : commands) {
        command.emplace_back("--json");
        const Outcome outcome = FreshCommandLine(command);
        ASSERT_EQ(outcome.Status, 0) << command[0] << outcome.Err;
        EXPECT_EQ(schema_.Faults(json::parse(outcome.Out)["program"], "program"), std::vector<std::string>())
            << command[0];
    }
}

}  // namespace
