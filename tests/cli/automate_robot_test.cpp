// Robot programs by the names of controls: import, spans, and both robot models, on the example of a cell.
#include <cmath>
#include <nlohmann/json.hpp>

#include "cli/automate.h"
#include "cli/automation.h"
#include "support/fixture.h"

using namespace corvinade;

using nlohmann::json;

namespace {

const std::string kRobotTool = std::string(CORVINADE_SOURCE_DIR) + "/examples/robot_tool";

struct RobotKind {
    const char* Entry;  // of the list
    const char* File;
    const char* Flag;
    bool HasSpans;  // that the statistic shows
};
const RobotKind kKinds[] = {
    {"Kuka Robot file (*.dat) A = Rz, B = Ry', C = Rx''", ".dat", "IsKuka", true},
    {"ABB Robot file (*.modx) x y z q1 q2 q3 q4", ".modx", "IsABBModx", false},
    {"Fanuc Robot file (*.ls) W = Rx, P = Ry', R = Rz''", ".ls", "IsFanuc", false},
    {"only coordinates and R-Angles x, y, z, A = Rz, B = Ry', C = Rx''", "_xyzabc.txt", "IsXYZABC", false},
    {"only coordinates and quaternions x, y, z, q1, q2, q3, q4", "_quaternion.txt", "IsQuaternion", true},
};

class RobotsByName : public Automated {
protected:
    RobotsByName() { StartAutomation({}); }

    static json Set(const std::string& at, const json& value) {
        return Good({{"do", "set"}, {"at", at}, {"value", value}});
    }
    static json Click(const std::string& at) { return Good({{"do", "click"}, {"at", at}}); }
    static std::string Text(const std::string& at) { return Good({{"do", "get"}, {"at", at}})["text"]; }
    static json Record(const std::string& name) { return Good({{"do", "record"}, {"name", name}})["value"]; }

    static json Import(const json& kind, const std::string& program) {
        Click("FormMain.MenuFileInputFiles");
        Set("FormInputFiles.TextNameMCS", kRobotTool + "_measured.txt");
        Set("FormInputFiles.TextNameOCS", program);
        Set("FormInputFiles.ComboOCS_Data", kind);
        if (Record("JobDataValid") == -1) Good({{"do", "answer"}, {"kind", "message"}, {"value", "Yes"}});
        return Click("FormInputFiles.BtnOK");
    }
};

}  // namespace

TEST_F(RobotsByName, EveryKindIsImportedAndFittedWithItsToolVector) {
    for (const RobotKind& kind : kKinds) {
        const json reply = Import(kind.Entry, kRobotTool + kind.File);
        EXPECT_FALSE(reply.contains("platformError")) << reply;
        EXPECT_EQ(Record("JobDataValid"), -1) << kind.Entry;
        EXPECT_EQ(Record("nIdent"), 10);
        EXPECT_EQ(Record("PathOCS"), kRobotTool + kind.File);
        EXPECT_EQ(Record(kind.Flag), -1);
        EXPECT_EQ(Record("OCS_Name")[10], "10");
        EXPECT_EQ(Record("OCS_X")[10], 1275.05);
        EXPECT_EQ(Record("RobotABC").size(), 11u);
        EXPECT_NEAR(Record("RobotABC")[10][2].get<double>(), -14.925 * std::acos(-1.0) / 180, 1e-8);
        EXPECT_NEAR(Record("SpanA").get<double>(), 207.545 * std::acos(-1.0) / 180, 1e-8);

        Click("FormMain.MenüViewInputStatistic");
        EXPECT_EQ(Text("FormInputStatistic.Text3"), "10");
        EXPECT_EQ(Text("FormInputStatistic.TextRangeA"), kind.HasSpans ? "207.5450" : "not in use");
        EXPECT_EQ(Text("FormInputStatistic.TextRangeB"), kind.HasSpans ? "86.1650" : "not in use");
        Good({{"do", "close"}, {"at", "FormInputStatistic"}});

        Click("FormMain.MenuTransformationCalculation");
        Set("FormTrafoBerechnung.CheckUseABC", 1);
        Click("FormTrafoBerechnung.BtnCalculate");
        EXPECT_EQ(Record("TrafoValid"), -1);
        EXPECT_EQ(Record("nFloat"), 9);
        // What the points were made from, up to their noise of 0.1 mm.
        EXPECT_NEAR(Record("TraX").get<double>(), 2310.4, 0.4);
        EXPECT_NEAR(Record("TraY").get<double>(), 1187.9, 0.4);
        EXPECT_NEAR(Record("TraZ").get<double>(), -412.6, 0.4);
        EXPECT_NEAR(Record("Rvec_x").get<double>(), -62.4, 0.15);
        EXPECT_NEAR(Record("Rvec_y").get<double>(), 18.75, 0.15);
        EXPECT_NEAR(Record("Rvec_z").get<double>(), -214.3, 0.15);
        EXPECT_LT(Record("s0").get<double>(), 0.12);
        Good({{"do", "close"}, {"at", "FormTrafoBerechnung"}});
    }
}

TEST_F(RobotsByName, AToolVectorWithoutOrientationsIsRefusedWithTheReason) {
    const auto open = [](const std::string& job) {
        Good({{"do", "answer"}, {"kind", "open"}, {"value", job}});
        Click("FormMain.MenuFileOpen");
    };
    for (const RobotKind& kind : kKinds) {
        Import(kind.Entry, kRobotTool + kind.File);
        const std::string job = PathOf("job.cvn");
        Good({{"do", "answer"}, {"kind", "save"}, {"value", job}});
        Click("FormMain.MenuFileSaveAs");
        open(job);
        Click("FormMain.MenuTransformationCalculation");
        Set("FormTrafoBerechnung.CheckUseABC", 1);
        const json reply = Click("FormTrafoBerechnung.BtnCalculate");
        if (kind.HasSpans) {
            EXPECT_EQ(Record("TrafoValid"), -1) << kind.Entry << reply;
            EXPECT_LT(Record("s0").get<double>(), 0.12);
        } else {
            EXPECT_EQ(Record("TrafoValid"), 0) << kind.Entry;
            EXPECT_NE(reply.dump().find("10 of the 10 pairs have no orientation"), std::string::npos)
                << reply;
            EXPECT_NE(reply.dump().find("import the robot program again"), std::string::npos);
        }
        Good({{"do", "close"}, {"at", "FormTrafoBerechnung"}});
    }
}

TEST_F(RobotsByName, TheDistanceModelTakesThePositionsOfEveryKind) {
    for (const RobotKind& kind : kKinds) {
        SCOPED_TRACE(kind.Entry);
        Import(kind.Entry, kRobotTool + kind.File);
        Click("FormMain.MenuTransformationCalculation");
        Set("FormTrafoBerechnung.CheckRDist", 1);
        const std::pair<const char*, const char*> seeds[] = {{"Trax", "2309"}, {"Tray", "1189"},
                                                             {"Traz", "-412"}, {"Rotx", "-0.6"},
                                                             {"Roty", "1.8"},  {"Rotz", "-64.2"}};
        for (const auto& [name, value] : seeds) {
            Set("FormTrafoBerechnung.CheckSeed" + std::string(name), 1);
            Set("FormTrafoBerechnung.TextSeed" + std::string(name), value);
        }
        Click("FormTrafoBerechnung.BtnCalculate");
        EXPECT_EQ(Record("TrafoValid"), -1);
        EXPECT_EQ(Record("nFloat"), 7);
        EXPECT_NEAR(std::fabs(Record("RDist").get<double>()),
                    std::sqrt(62.4 * 62.4 + 18.75 * 18.75 + 214.3 * 214.3), 0.5);
        Good({{"do", "close"}, {"at", "FormTrafoBerechnung"}});
    }
}

TEST_F(RobotsByName, AnErrorInAProgramIsToldAndTheRunGoesOn) {
    std::string program = Contents(kRobotTool + ".ls");
    program.replace(program.find("P =    31.420"), 13, "P =    31,x20");
    const json reply = Import(3, Write("torn.ls", program));
    EXPECT_EQ(reply["dialogs"][0]["text"], "Error while importing FANUC Data");
    EXPECT_NE(reply["platformError"].get<std::string>().find("torn.ls\", line 20: \"   31,x20\""),
              std::string::npos)
        << reply;
    EXPECT_EQ(Record("JobDataValid"), 0);
    EXPECT_EQ(Record("PathOCS"), PathOf("torn.ls"));
    Import(1, kRobotTool + ".dat");
    EXPECT_EQ(Record("JobDataValid"), -1);
}
