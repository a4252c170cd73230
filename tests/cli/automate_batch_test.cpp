// The batch, the choice of a folder and the exports, by names alone.
#include "cli/automation.h"
#include "cli/fit_command.h"
#include "core/files.h"

using namespace corvinade;

namespace {

class BatchByNames : public Automated {
protected:
    BatchByNames() {
        StartAutomation({.Job = kExamples + "robot_cell.cvn"});
        Click("FormMain.MenuTransformationCalculation");
        Click("FormTrafoBerechnung.BtnCalculate");
        Click("FormMain.MenueTransformationBatch");
    }
    static json Click(const std::string& at) { return Good({{"do", "click"}, {"at", at}}); }
    static void Set(const std::string& at, const json& value) {
        Good({{"do", "set"}, {"at", at}, {"value", value}});
    }
    static std::string Text(const std::string& at) { return Good({{"do", "get"}, {"at", at}})["text"]; }
    static void Answer(const std::string& kind, const json& value) {
        Good({{"do", "answer"}, {"kind", kind}, {"value", value}});
    }
};

}  // namespace

TEST_F(BatchByNames, AFolderIsTransformed) {
    Write("in/a.txt", "A;0;0;0\n");
    Write("in/b.txt", "A;0;0;0\n");
    Write("out/b_out.txt", "old");
    Set("FormBatch.TextNameMCSDirectory", PathOf("in"));
    Set("FormBatch.TextNameTCSDirectory", PathOf("out"));
    Answer("message", "overwrite all ");
    const json reply = Click("FormBatch.BtnStartBatch");
    ASSERT_EQ(reply["dialogs"].size(), 1u) << reply;
    EXPECT_EQ(reply["dialogs"][0]["title"], "File does exist");
    EXPECT_EQ(Text("FormBatch.LabelStatus"), "Calculating on File 2 of 2 Files");
    // The origin comes to the translation.
    const auto shown = [](const char* name) {
        const double value = Good({{"do", "record"}, {"name", name}})["value"];
        char text[40];
        std::snprintf(text, sizeof text, "%.3f", value);
        return std::string(text);
    };
    const std::string expected = "A\t" + shown("TraX") + "\t" + shown("TraY") + "\t" + shown("TraZ") + "\r\n";
    EXPECT_EQ(Contents(PathOf("out/a_out.txt")), expected);
    EXPECT_EQ(Contents(PathOf("out/b_out.txt")), expected);
}

TEST_F(BatchByNames, AFolderIsChosenByRequestsOrByItsPath) {
    Write("in/deep/a.txt", "");
    Set("FormBatch.TextNameMCSDirectory", PathOf("in"));
    Answer("form", json::array({{{"do", "set"}, {"at", "FormChangeDir.Dir1"}, {"value", "deep"}},
                                {{"do", "dblclick"}, {"at", "FormChangeDir.Dir1"}},
                                {{"do", "click"}, {"at", "FormChangeDir.BtnOK"}}}));
    json reply = Click("FormBatch.BtnBrowseMCS");
    EXPECT_EQ(reply["dialogs"][0]["kind"], "form");
    EXPECT_EQ(reply["dialogs"][0]["title"], "Choose the MCS = Start Directory");
    EXPECT_EQ(Text("FormBatch.TextNameMCSDirectory"), PathOf("in/deep")) << reply;
    Answer("folder", PathOf("in"));
    reply = Click("FormBatch.BtnBrowseTCS");
    EXPECT_EQ(reply["dialogs"][0]["kind"], "folder");
    EXPECT_EQ(reply["dialogs"][0]["title"], "Choose the TCS = Target Directory");
    EXPECT_EQ(Text("FormBatch.TextNameTCSDirectory"), PathOf("in"));
    Answer("folder", nullptr);
    Click("FormBatch.BtnBrowseTCS");
    EXPECT_EQ(Text("FormBatch.TextNameTCSDirectory"), PathOf("in"));
}

TEST_F(BatchByNames, AFolderThatIsNotThereIsToldAndTheWindowClosed) {
    Answer("folder", PathOf("none"));
    const json reply = Click("FormBatch.BtnBrowseTCS");
    EXPECT_NE(reply.dump().find("There is no folder"), std::string::npos) << reply;
    EXPECT_EQ(Text("FormBatch.TextNameTCSDirectory"), "");
    EXPECT_EQ(Good({{"do", "get"}, {"at", "FormChangeDir"}})["loaded"], false);
}

TEST_F(BatchByNames, TheExportsAnswerToTheirNames) {
    Answer("save", PathOf("cell"));
    for (const char* name : {"Wob", "afo910", "r2a"}) Answer("input", name);
    json reply = Click("FormMain.MenueFileExportRobCad");
    EXPECT_EQ(reply["shell"], json::array({{{"verb", "Open"}, {"path", PathOf("cell.rf")}}}));
    EXPECT_TRUE(Contents(PathOf("cell.rf")).starts_with("HEADER/ 00 , 00 , 00 , ROBFACEOUT ;\r\nCOMPONENT"));
    Answer("save", PathOf("cell.bas"));
    reply = Click("FormMain.MenueFileExportROCAL");
    EXPECT_TRUE(reply["dialogs"][0]["default"].get<std::string>().ends_with("robot_cell.bas"));
    EXPECT_TRUE(Contents(PathOf("cell.bas")).ends_with("0,0,0,1]"));
}
