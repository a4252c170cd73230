// The automation, line by line as its document fixes it.
#include "cli/automate.h"

#include <array>
#include <filesystem>
#include <functional>
#include <nlohmann/json.hpp>
#include <random>
#include <sstream>

#include "cli/commands.h"
#include "cli/headless.h"
#include "core/files.h"
#include "core/job.h"
#include "core/records.h"
#include "core/window.h"
#include "support/fixture.h"

using namespace corvinade;

using nlohmann::json;

namespace {

class Automation : public Program {
protected:
    void Start(const AutomationOptions& options = {}) { StartAutomation(options); }

    static json Ask(const json& request) { return AskLine(request.dump()); }
    static json AskLine(const std::string& line) {
        bool quit = false;
        const std::string reply = AnswerLine(line, quit);
        EXPECT_EQ(reply.find('\n'), std::string::npos);
        return json::parse(reply);
    }
    static json Set(const char* at, const json& value) {
        return Ask({{"do", "set"}, {"at", at}, {"value", value}});
    }
    static json Click(const char* at) { return Ask({{"do", "click"}, {"at", at}}); }
    static json Get(const char* at) { return Ask({{"do", "get"}, {"at", at}}); }
    static json Record(const char* name) { return Ask({{"do", "record"}, {"name", name}})["value"]; }
    static json Answer(const char* kind, const json& value) {
        return Ask({{"do", "answer"}, {"kind", kind}, {"value", value}});
    }
    json Import(const std::string& start, const std::string& target) {
        Click("FormMain.MenuFileInputFiles");
        Set("FormInputFiles.TextNameMCS", Write("start.txt", start));
        Set("FormInputFiles.TextNameOCS", Write("target.txt", target));
        return Click("FormInputFiles.BtnOK");
    }
};

const char* const kStart = "A;0;0;0\nB;100;0;0\nC;0;200;0\nD;5;5;5\n";
const char* const kTarget = "A;5;6;7\nB;105;6;7\nC;5;206;7\nE;1;1;1\n";

}  // namespace

// --- Running ----------------------------------------------------------------------------------------------

TEST_F(Automation, AnswersEachLineInOrderAndEndsOnQuit) {
    std::istringstream in(
        "{\"do\":\"get\",\"at\":\"Windows\"}\n\n{\"do\":\"quit\"}\n{\"do\":\"get\",\"at\":\"Windows\"}\n");
    std::ostringstream out;
    Automate({}, in, out);
    EXPECT_EQ(out.str(), "{\"ok\":true,\"windows\":[\"FormMain\"]}\n{\"ok\":true}\n");
}

TEST_F(Automation, EndsAtTheEndOfInput) {
    std::istringstream in("");
    std::ostringstream out;
    Automate({}, in, out);
    EXPECT_EQ(out.str(), "");
}

TEST_F(Automation, StartsAsTheDesktopDoesInTheSettingsFolder) {
    Start();
    EXPECT_TRUE(std::filesystem::exists(folder_ + "/settings/Corvinade/Corvinade.ini"));
    EXPECT_EQ(Get("FormMain")["caption"], "Corvinade Version 2.0.64 | ..\\default.cvn");
}

TEST_F(Automation, DialogsOfTheStartStandInTheFirstReply) {
    Write("settings/Corvinade/Corvinade.ini", "[Global]\r\nMaxIteration=many\r\n");
    Start();
    const json first = Get("Windows");
    ASSERT_EQ(first["dialogs"].size(), 1u);
    EXPECT_NE(first["dialogs"][0]["text"].get<std::string>().find("line 2"), std::string::npos);
    EXPECT_NE(first["platformError"].get<std::string>().find("many"), std::string::npos);
    EXPECT_FALSE(Get("Windows").contains("dialogs"));
}

TEST_F(Automation, AJobIsOpenedAsAQuotedArgumentWouldBe) {
    AutomationOptions options;
    options.Job = PathOf("a.cvn");
    Start(options);
    Get("Windows");
    EXPECT_EQ(Record("JobFilePath"), PathOf("a.cvn"));
}

TEST_F(Automation, AnEmptyNameOfTheSettingsFolderIsWrongUsage) {
    const std::array<const char*, 4> argv = {"corvinade-cli", "automate", "--settings-dir", ""};
    std::istringstream in;
    std::ostringstream out;
    std::ostringstream err;
    EXPECT_EQ(RunCommandLine(4, argv.data(), in, out, err, false, false), 2);
    EXPECT_EQ(out.str(), "");
    EXPECT_NE(err.str().find("--settings-dir"), std::string::npos);
}

TEST_F(Automation, RepliesThatNobodyTakesEndItWithoutSuccess) {
    const std::string folder = PathOf("settings");
    const std::array<const char*, 4> argv = {"corvinade-cli", "automate", "--settings-dir", folder.c_str()};
    std::istringstream in(
        "{\"do\":\"get\",\"at\":\"Windows\"}\n{\"do\":\"click\",\"at\":\"FormMain.MenuSettingsUnits\"}\n");
    std::ostream out(nullptr);
    std::ostringstream err;
    EXPECT_NE(RunCommandLine(4, argv.data(), in, out, err, false, false), 0);
    EXPECT_FALSE(IsLoaded("FormUnits")) << "no request runs whose reply would be lost";
}

// --- Requests that are none -------------------------------------------------------------------------------

TEST_F(Automation, RefusesWhatItDoesNotUnderstandAndGoesOn) {
    Start();
    for (const char* line :
         {"nonsense", "[]", "7", "{}", "{\"do\":7}", "{\"do\":\"fly\"}", "{\"do\":\"set\"}",
          "{\"do\":\"set\",\"at\":7}", "{\"do\":\"click\",\"at\":\"FormNone.Btn\"}",
          "{\"do\":\"click\",\"at\":\"FormMain.None\"}", "{\"do\":\"click\",\"at\":\"FormMain\"}",
          "{\"do\":\"record\",\"name\":\"Nothing\"}",
          "{\"do\":\"answer\",\"kind\":\"smile\",\"value\":\"x\"}",
          "{\"do\":\"during\",\"yield\":0,\"request\":{}}",
          "{\"do\":\"mouse\",\"at\":\"Screen#1\",\"event\":\"move\",\"x\":1,\"y\":1}", "\xff\xfe"}) {
        const json reply = AskLine(line);
        EXPECT_EQ(reply["ok"], false) << line;
        EXPECT_FALSE(reply["error"].get<std::string>().empty()) << line;
    }
    EXPECT_EQ(Get("Windows")["windows"], json({"FormMain"}));
}

TEST_F(Automation, AControlOutOfReachTakesNothing) {
    Start();
    EXPECT_EQ(Set("FormUnits.ComboLength", "inch")["error"], "FormUnits is not open");
    EXPECT_EQ(Click("FormMain.MenuTransformation")["error"], "FormMain.MenuTransformation is disabled");
    EXPECT_EQ(Click("FormMain.MenuTransformationCalculation")["error"],
              "FormMain.MenuTransformationCalculation stands in MenuTransformation, which is disabled");
    EXPECT_EQ(Click("FormMain.ToolbarLines.SetLines")["error"], "FormMain.ToolbarLines.SetLines is disabled");
    Click("FormMain.MenuFileInputFiles");
    EXPECT_EQ(Set("FormInputFiles.CheckRenameMCS", 1)["error"], "FormInputFiles.CheckRenameMCS is hidden");
    EXPECT_EQ(Set("FormInputFiles.TextPreSuff", "x")["ok"], false) << "its frame is disabled without data";
}

// --- Controls ---------------------------------------------------------------------------------------------

TEST_F(Automation, ChangesUnitsByNamesAlone) {
    Start();
    Click("FormMain.MenuSettingsUnits");
    EXPECT_EQ(Set("FormUnits.ComboLength", "inch")["ok"], true);
    EXPECT_EQ(Set("FormUnits.ComboDigitLength", 5)["ok"], true);
    EXPECT_EQ(Set("FormUnits.ComboAngle", "parsec")["ok"], false);
    EXPECT_EQ(Set("FormUnits.CheckPhiThetaAsQ", 1)["ok"], true);
    Click("FormUnits.BtnOK");
    EXPECT_EQ(Record("LengthUnitName"), "inch");
    EXPECT_EQ(Record("LengthDigits"), 5);
    EXPECT_DOUBLE_EQ(Record("LengthFactor").get<double>(), 1 / 25.4);
    EXPECT_EQ(Record("JobDirty"), -1);
    EXPECT_EQ(Get("FormMain.StatusBar.1")["text"], "inch");
}

TEST_F(Automation, EscapeAndCloseCloseADialog) {
    Start();
    Click("FormMain.MenuSettingsUnits");
    EXPECT_EQ(Ask({{"do", "key"}, {"at", "FormUnits"}, {"key", "Escape"}})["ok"], true);
    EXPECT_EQ(Get("FormUnits")["loaded"], false);
    Click("FormMain.MenuSettingsUnits");
    EXPECT_EQ(Ask({{"do", "close"}, {"at", "FormUnits"}})["ok"], true);
    EXPECT_EQ(Get("FormUnits")["loaded"], false);
    EXPECT_EQ(Ask({{"do", "close"}, {"at", "FormUnits"}})["ok"], false);
}

TEST_F(Automation, TellsTheStateOfAControl) {
    Start();
    Click("FormMain.MenuFileInputFiles");
    const json list = Get("FormInputFiles.ComboOCS_Data");
    EXPECT_EQ(list["kind"], "list");
    EXPECT_EQ(list["index"], 0);
    EXPECT_EQ(list["items"].size(), 7u);
    EXPECT_EQ(list["text"], list["items"][0]);
    const json menu = Get("FormMain.MenuTransformation");
    EXPECT_EQ(menu["enabled"], false);
    EXPECT_EQ(menu["checked"], false);
    const json tool = Get("FormMain.Toolbar2.FileNew");
    EXPECT_EQ(tool["kind"], "toolbutton");
    EXPECT_EQ(tool["enabled"], true);
    const json window = Get("FormInputFiles");
    EXPECT_EQ(window["loaded"], true);
    EXPECT_EQ(window["place"]["height"], 10458);
    EXPECT_NE(std::find(window["controls"].begin(), window["controls"].end(), "BtnOK"),
              window["controls"].end());
}

TEST_F(Automation, OptionsAndChecksFollowTheClick) {
    Start();
    Click("FormMain.MenuFileInputFiles");
    Set("FormInputFiles.OptionByCoordinate", true);
    EXPECT_EQ(Get("FormInputFiles.OptionByID")["value"], 0);
    Click("FormInputFiles.CheckRenameMCS");
    EXPECT_EQ(Get("FormInputFiles.CheckRenameMCS")["value"], 1);
    Click("FormInputFiles.CheckRenameMCS");
    EXPECT_EQ(Get("FormInputFiles.CheckRenameMCS")["value"], 0);
    EXPECT_EQ(Set("FormInputFiles.OptionByID", false)["ok"], false);
    EXPECT_EQ(Set("FormInputFiles.CheckRenameMCS", 3)["ok"], false);
    EXPECT_EQ(Set("FormInputFiles.BtnOK", 1)["ok"], false);
}

// --- Import and records -----------------------------------------------------------------------------------

TEST_F(Automation, ImportsByIdAndReadsEveryRecord) {
    Start();
    const json reply = Import(kStart, kTarget);
    EXPECT_EQ(reply["ok"], true) << reply;
    EXPECT_EQ(Record("nIdent"), 3);
    EXPECT_EQ(Record("MCS_Name"), json({"", "A", "B", "C", "D"}));
    EXPECT_EQ(Record("MCS_X"), json({nullptr, 0.0, 100.0, 0.0, 5.0}));
    EXPECT_EQ(Record("MCS_Z"), json({0.0, 0.0, 0.0, 0.0, 5.0}));
    EXPECT_EQ(Record("JobDataValid"), -1);
    EXPECT_EQ(Record("Delimiter"), ";");
    for (const auto& room : AllRecords())
        for (const RecordEntry& record : room)
            EXPECT_EQ(Ask({{"do", "record"}, {"name", record.Name}})["ok"], true) << record.Name;
}

TEST_F(Automation, ImportsByCoordinateAndByDistance) {
    Start();
    Click("FormMain.MenuFileInputFiles");
    Set("FormInputFiles.TextNameMCS", Write("start.txt", kStart));
    Set("FormInputFiles.TextNameOCS", Write("target.txt", "p;0;0;0\nq;100;0;0\nr;0;200;0.5\n"));
    Set("FormInputFiles.OptionByCoordinate", true);
    Answer("input", "0.1");
    json reply = Click("FormInputFiles.BtnApply");
    ASSERT_EQ(reply["dialogs"].size(), 1u);
    EXPECT_EQ(reply["dialogs"][0]["kind"], "input");
    EXPECT_EQ(reply["dialogs"][0]["title"], "Etta Value");
    EXPECT_EQ(reply["dialogs"][0]["default"], "0.8");
    EXPECT_EQ(reply["dialogs"][0]["answer"], "0.1");
    EXPECT_EQ(Record("nIdent"), 2);
    Set("FormInputFiles.OptionByDis", true);
    Answer("input", "0.1");
    Answer("message", "Yes");
    reply = Click("FormInputFiles.BtnApply");
    EXPECT_EQ(reply["ok"], true);
    EXPECT_EQ(Record("JobDataValid"), -1);
}

TEST_F(Automation, AQuestionWithoutAnAnswerIsCancelledAndSaidSo) {
    ExpectUnanswered();
    Start();
    Import(kStart, kTarget);
    const json reply = Import(kTarget, kStart);
    EXPECT_EQ(reply["unanswered"], true);
    EXPECT_EQ(reply["dialogs"][0]["answer"], nullptr);
    EXPECT_EQ(reply["dialogs"][0]["buttons"], json({"Yes", "No"}));
    EXPECT_EQ(Record("MCS_Name")[1], "A");
    EXPECT_FALSE(Get("Windows").contains("unanswered"));
}

TEST_F(Automation, AnAnswerThatTheBoxDoesNotHaveIsNoAnswer) {
    ExpectUnanswered();
    Start();
    Import(kStart, kTarget);
    Answer("message", "Maybe");
    EXPECT_EQ(Import(kTarget, kStart)["unanswered"], true);
}

TEST_F(Automation, PlatformErrorsAreToldInTheReply) {
    Start();
    const json reply = Import("A;1;2;3\nB;1;x;3\n", kTarget);
    EXPECT_EQ(reply["ok"], true);
    EXPECT_NE(reply["platformError"].get<std::string>().find("line 2"), std::string::npos) << reply;
    EXPECT_EQ(Record("JobDataValid"), 0);
}

TEST_F(Automation, FilesHandedToTheDesktopAreTold) {
    Start();
    const json reply = Click("FormMain.MenueHelpQuestion");
    EXPECT_EQ(reply["shell"],
              json({{{"verb", "Open"}, {"path", folder_ + "/program/manual Corvinade English 2.0.0.pdf"}}}));
}

TEST_F(Automation, RecordsCanBeWritten) {
    Start();
    Import(kStart, kTarget);
    const auto write = [](const char* name, const json& value) {
        return Ask({{"do", "record"}, {"name", name}, {"value", value}});
    };
    EXPECT_EQ(write("TraX", 12.5)["value"], 12.5);
    EXPECT_EQ(Job.TraX, 12.5);
    EXPECT_EQ(write("UseFlags", json::parse("[0,1,1,1,1,1,1,1,1,0]"))["ok"], true);
    EXPECT_EQ(Job.UseFlags[8], 1);
    EXPECT_EQ(
        write("ParamText", json::parse(R"(["","float","float","float","0","0","float","not used","not used",
        "not used","not used","0","0","0","0","0","0","0"])"))["ok"],
        true);
    EXPECT_EQ(Job.ParamText[6], "float");
    EXPECT_EQ(write("MCS_X", json::parse("[null,1,2,3,null]"))["ok"], true);
    EXPECT_FALSE(Job.Start.X[4].has_value());
    EXPECT_EQ(write("StopRequested", -1)["ok"], true);
}

TEST_F(Automation, RecordsThatWouldNotFitAreRefusedAndUnchanged) {
    Start();
    Import(kStart, kTarget);
    const auto refused = [](const char* name, const json& value) {
        const json reply = Ask({{"do", "record"}, {"name", name}, {"value", value}});
        return reply["ok"] == false;
    };
    EXPECT_TRUE(refused("nIdent", 100));
    EXPECT_EQ(Job.Pairs(), 3);
    EXPECT_TRUE(refused("MCS_Name", json({"", "A"})));
    EXPECT_EQ(Job.Start.Name.size(), 5u);
    EXPECT_TRUE(refused("MCS_X", json({nullptr})));
    EXPECT_TRUE(refused("TraX", "12"));
    EXPECT_TRUE(refused("LengthDigits", 40000));
    EXPECT_TRUE(refused("LengthDigits", 1.5));
    EXPECT_TRUE(refused("nMCS", 18446744073709551615ULL));
    EXPECT_TRUE(refused("Etta", 1e300));
    EXPECT_TRUE(refused("ParamText", json({"a"})));
    EXPECT_TRUE(refused("SavedView", json::array()));
    EXPECT_TRUE(JobIsWhole(Job));
}

TEST_F(Automation, FullPrecisionSurvivesAReadAndAWrite) {
    Start();
    const double value = 0.1 + 0.2;
    Ask({{"do", "record"}, {"name", "RotZ"}, {"value", value}});
    EXPECT_EQ(Record("RotZ").get<double>(), value);
}

// --- Clipboard, yields ------------------------------------------------------------------------------------

TEST_F(Automation, TheClipboardIsReadSetAndMadeToRefuse) {
    Start();
    EXPECT_EQ(Ask({{"do", "clipboard"}, {"value", "Grüße\t1"}})["value"], "Grüße\t1");
    EXPECT_EQ(Ask({{"do", "clipboard"}})["value"], "Grüße\t1");
    EXPECT_EQ(Ask({{"do", "clipboard"}, {"refuse", true}})["ok"], true);
    EXPECT_TRUE(Headless.ClipboardRefuses);
    EXPECT_EQ(Ask({{"do", "clipboard"}, {"value", 7}})["ok"], false);
}

TEST_F(Automation, RequestsRunAtAComingYieldInsideTheWork) {
    Start();
    Click("FormMain.MenuFileInputFiles");
    std::string grid;  // a regular grid: equal distances, so the search runs through all its rows
    for (int i = 0; i < 25; ++i)
        grid += "P" + std::to_string(i) + ";" + std::to_string(i % 5) + ";" + std::to_string(i / 5) + ";0\n";
    Set("FormInputFiles.TextNameMCS", Write("start.txt", grid));
    Set("FormInputFiles.TextNameOCS", Write("target.txt", grid));
    Set("FormInputFiles.OptionByDis", true);
    Answer("input", "0.01");
    Ask({{"do", "during"}, {"yield", 10}, {"request", {{"do", "get"}, {"at", "FormProgressBar"}}}});
    Ask({{"do", "during"},
         {"yield", 20},
         {"request", {{"do", "click"}, {"at", "FormProgressBar.BtnCancel"}}}});
    Ask({{"do", "during"}, {"yield", 22}, {"request", {{"do", "get"}, {"at", "Windows"}}}});
    const json reply = Click("FormInputFiles.BtnOK");
    ASSERT_EQ(reply["during"].size(), 2u) << reply << "the search ends at its next test of the stop flag";
    EXPECT_EQ(reply["during"][0]["loaded"], true);
    EXPECT_EQ(reply["during"][0]["caption"], "AutoFind Indentically Points - Progress");
    EXPECT_EQ(reply["during"][1]["ok"], true);
    EXPECT_EQ(Get("Windows")["windows"], json({"FormMain"}));
}

TEST_F(Automation, AllRequestsOfOneYieldRunAlsoWhenOneOfThemYieldsItself) {
    Start();
    Click("FormMain.MenuFileInputFiles");
    Set("FormInputFiles.TextNameMCS", Write("start.txt", kStart));
    Set("FormInputFiles.TextNameOCS", Write("target.txt", kTarget));
    Set("FormInputFiles.OptionByDis", true);
    Answer("input", "0.01");
    Answer("input", "0.01");
    Ask({{"do", "during"}, {"yield", 1}, {"request", {{"do", "click"}, {"at", "FormInputFiles.BtnApply"}}}});
    Ask({{"do", "during"}, {"yield", 1}, {"request", {{"do", "get"}, {"at", "Windows"}}}});
    const json reply = Click("FormInputFiles.BtnApply");
    ASSERT_EQ(reply["during"].size(), 2u) << reply;
    EXPECT_TRUE(reply["during"][1].contains("windows"));
}

TEST_F(Automation, AnImportInsideTheSearchOfAnotherOneHasTheLastWord) {
    Start();
    Click("FormMain.MenuFileInputFiles");
    Set("FormInputFiles.TextNameMCS", Write("start.txt", kStart));
    Set("FormInputFiles.TextNameOCS", Write("target.txt", kTarget));
    Set("FormInputFiles.OptionByDis", true);
    Answer("input", "0.01");
    const auto during = [](int yield, const json& request) {
        Ask({{"do", "during"}, {"yield", yield}, {"request", request}});
    };
    // The inner import breaks off at a number, with one start point read.
    during(1, {{"do", "set"},
               {"at", "FormInputFiles.TextNameMCS"},
               {"value", Write("half.txt", "A;1;2;3\nB;4;five;6\n")}});
    during(1, {{"do", "set"}, {"at", "FormInputFiles.OptionByID"}, {"value", true}});
    during(1, {{"do", "click"}, {"at", "FormInputFiles.BtnApply"}});
    const json reply = Click("FormInputFiles.BtnApply");
    ASSERT_EQ(reply["during"].size(), 3u) << reply;
    EXPECT_TRUE(reply["during"][2].contains("platformError"));
    EXPECT_EQ(Record("JobDataValid"), 0) << "the outer import has no points left to call a job";
    EXPECT_TRUE(JobIsWhole(Job));
}

// --- Anything at all --------------------------------------------------------------------------------------

TEST_F(Automation, SurvivesAnyLine) {
    ExpectUnanswered();
    Start();
    std::mt19937 random(20261121);
    const std::vector<std::string> verbs = {"set",    "click",  "dblclick",  "key",    "close",
                                            "get",    "record", "clipboard", "answer", "during",
                                            "select", "mouse",  "resize",    "picture"};
    const std::vector<std::string> members = {"do",  "at",   "value", "name",    "kind", "yield",
                                              "key", "file", "row",   "request", "x"};
    std::vector<std::string> places = {"Windows", "Screen#1", "Screen#1.ScreenPixel", ".", "FormMain.", ""};
    std::vector<std::string> names;
    for (const WindowEntry* window : AllWindows()) {
        places.emplace_back(window->Name);
        for (const ControlEntry& entry : window->Controls)
            places.push_back(std::string(window->Name) + "." + entry.Name);
    }
    for (const auto& room : AllRecords())
        for (const RecordEntry& record : room) names.emplace_back(record.Name);
    const auto pick = [&random](const auto& list) { return list[random() % list.size()]; };
    const std::function<json(int)> any = [&](int depth) -> json {
        switch (random() % (depth > 2 ? 7 : 9)) {
            case 0:
                return nullptr;
            case 1:
                return static_cast<int>(random() % 7) - 2;
            case 2:
                return 1e300;
            case 3:
                return true;
            case 4:
                return pick(places);
            case 5:
                return std::string(random() % 40, static_cast<char>('0' + random() % 70));
            case 6:
                return pick(names);
            case 7: {
                json list = json::array();
                for (std::size_t i = random() % 5; i > 0; --i) list.push_back(any(depth + 1));
                return list;
            }
            default: {
                json object = json::object();
                for (std::size_t i = random() % 4; i > 0; --i) object[pick(members)] = any(depth + 1);
                return object;
            }
        }
    };
    for (int round = 0; round < 4000; ++round) {
        json request = any(0);
        if (random() % 8 != 0) {
            request = json::object();
            request["do"] = pick(verbs);
            request["at"] = pick(places);
            request["name"] = pick(names);
            request["value"] = any(0);
            if (random() % 3 == 0) request[pick(members)] = any(0);
        }
        std::string line = request.dump(-1, ' ', false, json::error_handler_t::replace);
        if (random() % 10 == 0) line.resize(random() % (line.size() + 1));
        if (random() % 10 == 0 && !line.empty())
            line[random() % line.size()] = static_cast<char>(random() % 256);
        bool quit = false;
        const json reply = json::parse(AnswerLine(line, quit));
        ASSERT_TRUE(reply.contains("ok"));
        ASSERT_FALSE(quit);
        ASSERT_TRUE(JobIsWhole(Job)) << line;
    }
    Headless.Unanswered = false;
}

TEST_F(Automation, SurvivesVeryLongAndVeryDeepLines) {
    Start();
    EXPECT_EQ(AskLine(std::string(10'000'000, '['))["ok"], false);
    EXPECT_EQ(AskLine("{\"do\":\"" + std::string(10'000'000, 'x') + "\"}")["ok"], false);
    const std::string deep = std::string(200'000, '[') + std::string(200'000, ']');
    for (const std::string& line : {deep, R"({"do":"record","name":"MCS_X","value":)" + deep + "}",
                                    R"({"do":"during","yield":1,"request":{"do":)" + deep + "}}"})
        EXPECT_EQ(AskLine(line)["error"], "the line is nested too deeply");
    EXPECT_EQ(Get("Windows")["ok"], true);
}
