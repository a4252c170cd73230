// A whole calculation by the names of its controls alone.
#include <cmath>
#include <nlohmann/json.hpp>

#include "cli/automate.h"
#include "cli/automation.h"
#include "support/fixture.h"

using namespace corvinade;

using nlohmann::json;

namespace {

// Two files of a cloud of seven points: the target is the start turned by 10, 20 and 30 degrees and shifted
// by 100, 200, 300 mm; P7 may have a blunder in z. The rotation is written out by hand: the point is turned
// about x, then y, then z of the fixed frame, each against the sense of the angle, which is that of the
// frame.
class CalculationByNames : public Automated {
protected:
    static constexpr double kDegree = 3.14159265358979323846 / 180;
    static constexpr std::array<std::array<double, 3>, 7> kPoints = {{{0, 0, 0},
                                                                      {1000, 0, 50},
                                                                      {0, 800, -60},
                                                                      {1000, 800, 0},
                                                                      {500, 400, 600},
                                                                      {200, 700, 300},
                                                                      {900, 100, 450}}};

    CalculationByNames() { StartAutomation({}); }

    static std::string At(const std::string& control) { return "FormTrafoBerechnung." + control; }
    static json Set(const std::string& control, const json& value) {
        return Good({{"do", "set"}, {"at", At(control)}, {"value", value}});
    }
    static json Click(const std::string& control) { return Good({{"do", "click"}, {"at", At(control)}}); }
    static json Get(const std::string& control) { return Good({{"do", "get"}, {"at", At(control)}}); }
    static std::string Text(const std::string& control) { return Get(control)["text"]; }
    static json Record(const std::string& name) { return Good({{"do", "record"}, {"name", name}})["value"]; }
    static std::string Clipboard() { return Good({{"do", "clipboard"}})["value"]; }
    static void Answer(const std::string& kind, const json& value) {
        Good({{"do", "answer"}, {"kind", kind}, {"value", value}});
    }

    // Angles in degrees.
    static std::array<double, 3> Turned(std::array<double, 3> p, double a, double b, double c) {
        const auto turn = [](double& u, double& v, double angle) {
            const double cosine = std::cos(angle * kDegree), sine = -std::sin(angle * kDegree), u0 = u;
            u = cosine * u0 - sine * v;
            v = sine * u0 + cosine * v;
        };
        turn(p[1], p[2], a);
        turn(p[2], p[0], b);
        turn(p[0], p[1], c);
        return p;
    }
    static std::string Line(std::size_t i, const std::array<double, 3>& p) {
        char text[120];
        std::snprintf(text, sizeof text, "P%zu;%.9f;%.9f;%.9f\n", i + 1, p[0], p[1], p[2]);
        return text;
    }
    void Import(double a, double b, double c, double blunder) {
        std::string start, target;
        for (std::size_t i = 0; i < kPoints.size(); ++i) {
            auto q = Turned(kPoints[i], a, b, c);
            q[0] += 100;
            q[1] += 200;
            q[2] += 300 + (i == 6 ? blunder : 0);
            start += Line(i, kPoints[i]);
            target += Line(i, q);
        }
        Good({{"do", "click"}, {"at", "FormMain.MenuFileInputFiles"}});
        Good({{"do", "set"}, {"at", "FormInputFiles.TextNameMCS"}, {"value", Write("start.txt", start)}});
        Good({{"do", "set"}, {"at", "FormInputFiles.TextNameOCS"}, {"value", Write("target.txt", target)}});
        Good({{"do", "click"}, {"at", "FormInputFiles.BtnOK"}});
        Good({{"do", "click"}, {"at", "FormMain.MenuTransformationCalculation"}});
    }
    static json Cells() { return Get("Tabelle")["cells"]; }
};

}  // namespace

TEST_F(CalculationByNames, AFreshJobFitsSixParameters) {
    Import(10, 20, 30, 0);
    EXPECT_EQ(Get("Option6Parameter")["value"], 1);
    EXPECT_EQ(Text("LabelDirection"), "MCS => OCS");
    Click("BtnCalculate");
    EXPECT_EQ(Text("TextTraX"), "100.000");
    EXPECT_EQ(Text("TextTraZ"), "300.000");
    EXPECT_EQ(Text("TextRotX"), "10.0000");
    EXPECT_EQ(Text("TextRotY"), "20.0000");
    EXPECT_EQ(Text("TextRotZ"), "30.0000");
    EXPECT_EQ(Text("TextSxyz"), "0.000");
    EXPECT_EQ(Record("TrafoValid"), -1);
    EXPECT_EQ(Record("nFloat"), 6);
    EXPECT_EQ(Record("nObs"), 21);
    EXPECT_EQ(Record("LastSolution")[1], 0);
}

TEST_F(CalculationByNames, EveryPresetFits) {
    Import(0, 0, 30, 0);
    Set("CheckAutoRec", 1);
    const std::pair<const char*, int> presets[] = {{"OptionHoldLevel", 4},
                                                   {"Option7Parameter", 7},
                                                   {"Option9Parameter", 9},
                                                   {"Option12", 12},
                                                   {"Option6Parameter", 6}};
    for (const auto& [preset, unknowns] : presets) {
        Set(preset, true);
        EXPECT_EQ(Record("nFloat"), unknowns);
        EXPECT_EQ(Text("TextRotZ"), "30.0000") << preset;
        EXPECT_EQ(Text("TextTraY"), "200.000") << preset;
    }
}

TEST_F(CalculationByNames, HeldAndSeedValuesAreTyped) {
    Import(10, 20, 30, 0);
    Set("CheckTraX", 0);
    Set("TextTraX", "90");
    EXPECT_FALSE(Ask({{"do", "set"}, {"at", At("TextTraY")}, {"value", "1"}})["ok"]) << "it floats";
    Click("BtnCalculate");
    EXPECT_EQ(Text("TextTraX"), "90.000");
    EXPECT_NE(Text("TextSxyz"), "0.000");
    Click("BtnSEED");
    EXPECT_EQ(Text("TextSeedRotz"), Text("TextRotZ"));
    Set("CheckSeedRotz", 1);
    Set("TextSeedRotz", "29.5");
    Click("BtnCalculate");
    EXPECT_EQ(Text("TextTraX"), "90.000");
}

TEST_F(CalculationByNames, NormsDealWithABlunderEachInItsWay) {
    Import(0, 0, 0, 2);
    // Shifts alone: the mean, the median and near the middle of the extremes of six zeros and one 2.
    for (const char* box : {"CheckRotX", "CheckRotY", "CheckRotZ"}) Set(box, 0);
    Click("BtnCalculate");
    EXPECT_EQ(Text("TextTraZ"), "300.286");
    Set("OptionL1", true);
    Click("BtnCalculate");
    EXPECT_EQ(Text("TextTraZ"), "300.000");
    Set("OptionLoo", true);
    Click("BtnCalculate");
    const double middle = Record("TraZ");
    EXPECT_NEAR(middle, 301, 0.05);
    EXPECT_FALSE(Get("CheckMonteCarlo")["enabled"]);
}

TEST_F(CalculationByNames, PointsAreSwitchedOffInTheTableAndByTheExtremes) {
    Import(10, 20, 30, 2);
    Click("BtnCalculate");
    EXPECT_EQ(Text("TextMaxDevXYZPkt"), "P7");
    EXPECT_EQ(Cells()[7][1], "P7");
    EXPECT_EQ(Cells()[7][7], "X");
    Good({{"do", "dblclick"}, {"at", At("Tabelle")}, {"row", 7}, {"col", 7}});
    EXPECT_EQ(Cells()[7][7], "");
    EXPECT_EQ(Record("UseFlags")[21], 0);
    Click("BtnUseAllPts");
    EXPECT_EQ(Record("UseFlags")[21], 1);
    Set("CheckAutoRec", 1);
    Good({{"do", "dblclick"}, {"at", At("TextMaxDevXYZPkt")}});
    for (const int flag : {19, 20, 21}) EXPECT_EQ(Record("UseFlags")[static_cast<std::size_t>(flag)], 0);
    EXPECT_EQ(Text("TextSxyz"), "0.000");
    EXPECT_EQ(Text("TextTraZ"), "300.000");
    Good({{"do", "dblclick"}, {"at", At("Tabelle")}, {"row", 6}, {"col", 1}});
    EXPECT_EQ(Record("SeedName"), json({"", "P6", "P1", "P2"}));
}

TEST_F(CalculationByNames, TheDirectionIsSwitchedAndBack) {
    Import(0, 0, 30, 0);
    Click("BtnSwitchMcsOcs");
    EXPECT_EQ(Text("LabelDirection"), "OCS -> MCS");
    EXPECT_EQ(Record("DirectionMCStoOCS"), 0);
    Click("BtnCalculate");
    EXPECT_EQ(Text("TextRotZ"), "-30.0000");
    EXPECT_EQ(Text("TextTraZ"), "-300.000");
    Click("BtnSwitchMcsOcs");
    EXPECT_EQ(Text("LabelDirection"), "MCS -> OCS");
    Click("BtnCalculate");
    EXPECT_EQ(Text("TextRotZ"), "30.0000");
}

TEST_F(CalculationByNames, BothRobotModelsHaveTheirControls) {
    Import(10, 20, 30, 0);
    // Every pose is shifted by a tool of 40 mm along its own x axis.
    std::string poses;
    json x = Record("OCS_X"), y = Record("OCS_Y"), z = Record("OCS_Z");
    for (std::size_t i = 1; i <= 7; ++i) {
        const double a = 20.0 * static_cast<double>(i), b = 70 - a;  // about z, then about the new y
        x[i] = x[i].get<double>() + 40 * std::cos(b * kDegree) * std::cos(a * kDegree);
        y[i] = y[i].get<double>() + 40 * std::cos(b * kDegree) * std::sin(a * kDegree);
        z[i] = z[i].get<double>() - 40 * std::sin(b * kDegree);
        poses += "P" + std::to_string(i) + " 0 0 0 " + std::to_string(a) + " " + std::to_string(b) + " 0\n";
    }
    Good({{"do", "record"}, {"name", "OCS_X"}, {"value", x}});
    Good({{"do", "record"}, {"name", "OCS_Y"}, {"value", y}});
    Good({{"do", "record"}, {"name", "OCS_Z"}, {"value", z}});
    Set("CheckUseABC", 1);
    Set("CheckRDataKnown", 1);
    Answer("open", Write("poses.txt", poses));
    Click("BtnLoadRData");
    Click("BtnCalculate");
    EXPECT_EQ(Text("TextTraX"), "100.000");
    EXPECT_NEAR(std::fabs(Record("Rvec_x").get<double>()), 40, 1e-6);
    EXPECT_EQ(Text("TextRDist"), "40.000");
    Set("CheckUseABC", 0);
    Set("CheckRDist", 1);
    Set("CheckSeedTrax", 1);
    Set("TextSeedTrax", "110");
    Click("BtnCalculate");
    // Seven distances for seven unknowns: they are met exactly.
    EXPECT_EQ(Record("nFloat"), 7);
    EXPECT_NEAR(Record("s0").get<double>(), 0, 1e-6);
    EXPECT_EQ(Text("TextRvec_x"), "not used");
}

TEST_F(CalculationByNames, MonteCarloIsStoppedByItsWindow) {
    Import(10, 20, 30, 0);
    Good({{"do", "record"}, {"name", "nIdent"}});
    Set("CheckMonteCarlo", 1);
    Good({{"do", "during"},
          {"yield", 20},
          {"request", {{"do", "click"}, {"at", "FormProgressBar.BtnCancel"}}}});
    const json reply = Click("BtnCalculate");
    EXPECT_EQ(reply["during"][0]["ok"], true);
    EXPECT_EQ(Record("MonteCarloDone"), 0);
    EXPECT_EQ(Text("TextTraX"), "100.000");
    Click("BtnCalculate");
    EXPECT_EQ(Record("MonteCarloDone"), -1);
    const json windows = Good({{"do", "get"}, {"at", "Windows"}})["windows"];
    EXPECT_NE(std::find(windows.begin(), windows.end(), "FormTrafoDetails"), windows.end());
}

TEST_F(CalculationByNames, GimbalLockAsksAndHoldsTheFirstAngle) {
    Good({{"do", "click"}, {"at", "FormMain.MenueExtrasOptions"}});
    Good({{"do", "set"}, {"at", "FormOptions.TextGimbalLock"}, {"value", "0.01"}});
    Good({{"do", "click"}, {"at", "FormOptions.BtnOK"}});
    Import(10, 90, 30, 0);
    Answer("message", "Yes");
    const json reply = Click("BtnCalculate");
    ASSERT_EQ(reply["dialogs"].size(), 1u);
    EXPECT_EQ(reply["dialogs"][0]["title"], "Multiple Solution Warning - Gimbal Lock");
    EXPECT_EQ(Get("CheckRotX")["value"], 0);
    EXPECT_EQ(Text("TextRotX"), "0.0000");
    EXPECT_EQ(Text("TextSxyz"), "0.000");
}

TEST_F(CalculationByNames, TheSecondSolutionIsShownAndTakenBack) {
    Import(10, 20, 30, 0);
    Click("BtnCalculate");
    Click("BtnSecSolution");
    EXPECT_EQ(Text("TextRotX"), "-170.0000");
    EXPECT_EQ(Text("TextRotY"), "160.0000");
    EXPECT_EQ(Text("TextRotZ"), "-150.0000");
    Click("BtnSecSolution");
    EXPECT_EQ(Text("TextRotX"), "10.0000");
}

TEST_F(CalculationByNames, EveryModeOfTheClipboardHasItsText) {
    Import(0, 0, 30, 0);
    const auto choose = [](const std::string& option) {
        Good({{"do", "click"}, {"at", "FormMain.MenueExtrasOptions"}});
        Good({{"do", "set"}, {"at", "FormOptions." + option}, {"value", true}});
        Good({{"do", "click"}, {"at", "FormOptions.BtnOK"}});
        Click("BtnCalculate");
        return Clipboard();
    };
    EXPECT_EQ(choose("OptionNIX"), "");
    EXPECT_EQ(choose("OptionRobot"), "");
    EXPECT_EQ(choose("OptionKuka"),
              "100.000\t200.000\t300.000\t-30.0000\t0.0000\t0.0000\tTrala xyz, Rot -z-y'-x''");
    EXPECT_EQ(choose("OptionALL").rfind("Start = MCS File: ", 0), 0u);
    EXPECT_NE(choose("OptionBMW").find("100.000\t200.000\t300.000\t"), std::string::npos);
    Good({{"do", "click"}, {"at", At("BtnDetails")}});
    Good({{"do", "click"}, {"at", "FormTrafoDetails.BtnClipHomogen"}});
    EXPECT_NE(Clipboard().find("0\t0\t0\t1"), std::string::npos);
    Good({{"do", "clipboard"}, {"refuse", true}});
    const json refused = Good({{"do", "click"}, {"at", "FormTrafoDetails.BtnClipALL"}});
    EXPECT_EQ(refused["dialogs"][0]["text"], "Clipboard coud not be set due unknown error");
}
