// Shapes of revolution by the names of controls: import, fit, stop, Monte Carlo, the job saved and opened.
#include <array>
#include <cmath>

#include "cli/automation.h"

using namespace corvinade;

namespace {

const std::string kDishes = std::string(CORVINADE_SOURCE_DIR) + "/examples/";
constexpr double kFocus = 1080;  // mm, of the example
constexpr double kShownDegree = 3.14159265358979 / 180;

class ShapesByName : public Automated {
protected:
    ShapesByName() { StartAutomation({}); }

    static json Set(const std::string& at, const json& value) {
        return Good({{"do", "set"}, {"at", at}, {"value", value}});
    }
    static json Click(const std::string& at) { return Good({{"do", "click"}, {"at", at}}); }
    static json Get(const std::string& at) { return Good({{"do", "get"}, {"at", at}}); }
    static json Record(const std::string& name) { return Good({{"do", "record"}, {"name", name}})["value"]; }
    static double Number(const std::string& name) { return Record(name).get<double>(); }
    static json During(int yield, const json& request) {
        return Good({{"do", "during"}, {"yield", yield}, {"request", request}});
    }

    static json Import(const std::string& shape = kDishes + "dish_shape.txt") {
        Click("FormMain.MenuFileInputFiles");
        Set("FormInputFiles.TextNameMCS", kDishes + "dish_measured.txt");
        Set("FormInputFiles.TextNameOCS", shape);
        Set("FormInputFiles.ComboOCS_Data", "Paraboloid Shape Data");
        return Click("FormInputFiles.BtnOK");
    }
    static void Open() {
        Click("FormMain.MenuTransformationCalculation");
        Set("FormTrafoBerechnung.CheckRotZ", 0);
        Set("FormTrafoBerechnung.TextRotZ", "0");
    }
    static json Calculate() { return Click("FormTrafoBerechnung.BtnCalculate"); }

    // Three times what noise of 0.03 mm along the normals of the surface makes of each parameter.
    static void ExpectTruth() {
        EXPECT_NEAR(Number("RotX"), 1.2 * kShownDegree, 3.4e-4);
        EXPECT_NEAR(Number("RotY"), -0.8 * kShownDegree, 3.4e-4);
        EXPECT_NEAR(Number("TraX"), 12.4, 0.87);
        EXPECT_NEAR(Number("TraY"), -7.9, 0.87);
        EXPECT_NEAR(Number("TraZ"), -35.2, 0.015);
        EXPECT_LT(Number("s0"), 0.03);
    }
};

}  // namespace

TEST_F(ShapesByName, TheImportReadsTheShapeAndTakesItsNearestPointsAsTargets) {
    const json reply = Import();
    EXPECT_FALSE(reply.contains("platformError")) << reply;
    ASSERT_EQ(reply["dialogs"].size(), 1u) << reply;
    EXPECT_NE(reply["dialogs"][0]["text"].get<std::string>().find("Chapter Paraboloid Option"),
              std::string::npos);
    EXPECT_EQ(Record("IsParaboloid"), -1);
    EXPECT_EQ(Record("PathOCS"), kDishes + "dish_shape.txt");
    EXPECT_EQ(Record("ParaboloidFile"), kDishes + "dish_shape.txt");
    EXPECT_EQ(Record("ParaboloidShape").size(), 302u);
    EXPECT_EQ(Record("nIdent"), 52);
    EXPECT_EQ(Record("JobDirty"), -1);
    EXPECT_EQ(Record("LastDropDownInfoInOCS"), 6);
    const json x = Record("OCS_X"), y = Record("OCS_Y"), z = Record("OCS_Z"), startZ = Record("MCS_Z");
    int moved = 0;
    for (std::size_t i = 1; i <= 52; ++i) {
        const double r = std::hypot(x[i].get<double>(), y[i].get<double>());
        // Chords of 5 mm, whose lines are taken beyond their ends too.
        EXPECT_NEAR(z[i].get<double>(), r * r / (4 * kFocus), 0.006) << i;
        moved += startZ[i] != z[i] ? 1 : 0;
    }
    EXPECT_EQ(moved, 52);
}

TEST_F(ShapesByName, TheMainSheetShowsTheTargetsThatTheImportHasTaken) {
    Click("FormMain.MenuVievMainSheet");
    Import();
    const json cells = Get("FormMainSheet.MSFlexGrid1");
    bool found = false;
    const double z = Record("OCS_Z")[7];
    for (const json& row : cells["cells"])
        for (const json& cell : row)
            found |= cell.is_string() && !cell.get<std::string>().empty() &&
                     std::fabs(std::atof(cell.get<std::string>().c_str()) - z) < 6e-4;
    EXPECT_TRUE(found) << z;
}

TEST_F(ShapesByName, TheFitBringsBackTiltAndShift) {
    Import();
    Open();
    EXPECT_EQ(Get("FormTrafoBerechnung.OptionL1")["enabled"], false);
    const json reply = Calculate();
    EXPECT_FALSE(reply.contains("dialogs") && !reply["dialogs"].empty()) << reply;
    ExpectTruth();
    EXPECT_EQ(Record("TrafoValid"), -1);
    EXPECT_EQ(Record("CalcDone"), -1);
    EXPECT_EQ(Record("ParaStopRequested"), 0);
    EXPECT_NEAR(Number("PreviousS0"), Number("s0"), 1e-6);
    EXPECT_NE(Get("FormTrafoBerechnung.TextS0")["text"], "");
    EXPECT_EQ(Get("FormTrafoBerechnung")["enabled"], true);
    // What the table shows as deviations is the way from the surface to the transformed point.
    const json x = Record("TMCS_X"), ox = Record("OCS_X"), v = Record("v");
    for (std::size_t i = 1; i <= 52; ++i)
        EXPECT_NEAR(x[i].get<double>() - ox[i].get<double>(), v[3 * i - 2].get<double>(), 1e-6);
}

TEST_F(ShapesByName, WhileItRunsTheSmallWindowStopsItAndTheLargeOneIsOutOfReach) {
    Import();
    Open();
    During(300, {{"do", "click"}, {"at", "FormTrafoBerechnung.BtnCalculate"}});
    During(301, {{"do", "get"}, {"at", "Windows"}});
    During(302, {{"do", "get"}, {"at", "FormTrafoBerechnung"}});
    During(310, {{"do", "click"}, {"at", "FormStopParaTrafo.BtnStopParaTrafo"}});
    const json reply = Calculate();
    ASSERT_EQ(reply["during"].size(), 4u) << reply;
    EXPECT_EQ(reply["during"][0]["ok"], false) << reply;
    const json windows = reply["during"][1]["windows"];
    EXPECT_NE(std::find(windows.begin(), windows.end(), "FormStopParaTrafo"), windows.end());
    EXPECT_EQ(reply["during"][2]["enabled"], false);
    EXPECT_EQ(reply["during"][3]["ok"], true);
    EXPECT_LT(Record("ParaPass"), 12);
    EXPECT_EQ(Record("ParaStopRequested"), 0);
    EXPECT_EQ(Record("TrafoValid"), -1);
    EXPECT_EQ(Get("FormTrafoBerechnung")["enabled"], true);
    EXPECT_EQ(Get("FormTrafoBerechnung.BtnCalculate")["enabled"], true);
    Calculate();
    ExpectTruth();
}

TEST_F(ShapesByName, MonteCarloRepeatsTheWholeFit) {
    Import();
    Click("FormMain.MenueExtrasOptions");
    for (const char* field : {"TextSx", "TextSy", "TextSz"}) Set(std::string("FormOptions.") + field, "0.03");
    Set("FormOptions.TextMonteCarloRuns", "100");
    Click("FormOptions.BtnOK");
    Open();
    Set("FormTrafoBerechnung.CheckMonteCarlo", 1);
    Calculate();
    EXPECT_EQ(Record("MonteCarloDone"), -1);
    EXPECT_TRUE(Get("FormTrafoDetails").contains("controls") || Get("FormTrafoDetails")["ok"] == true);
    const json results = Record("MCResults");
    const auto spread = [&results](std::size_t row) {
        double sum = 0, squares = 0;
        for (std::size_t i = 1; i <= 100; ++i) sum += results[row][i].get<double>();
        for (std::size_t i = 1; i <= 100; ++i)
            squares += std::pow(results[row][i].get<double>() - sum / 100, 2);
        return std::sqrt(squares / 99);
    };
    // The normals of the surface make 0.29 mm and 1.1e-4 rad of noise of 0.03 mm. Of 100 runs a spread is
    // known to 7 percent.
    EXPECT_NEAR(spread(1), 0.29, 0.08);
    EXPECT_NEAR(spread(2), 0.287, 0.08);
    EXPECT_NEAR(spread(3), 0.0049, 0.0014);
    EXPECT_NEAR(spread(4), 1.13e-4, 0.3e-4);
    EXPECT_NEAR(spread(5), 1.15e-4, 0.3e-4);
    EXPECT_EQ(spread(6), 0) << "held";
    ExpectTruth();
}

TEST_F(ShapesByName, StoppedRunsOfMonteCarloGiveNoSpreadAndTheFitOfThePointsThemselves) {
    Import();
    Open();
    Set("FormTrafoBerechnung.CheckMonteCarlo", 1);
    const json starts = Record("MCS_X");
    During(2000, {{"do", "get"}, {"at", "Windows"}});
    During(2001, {{"do", "click"}, {"at", "FormProgressBar.BtnCancel"}});
    const json reply = Calculate();
    const json windows = reply["during"][0]["windows"];
    EXPECT_EQ(std::find(windows.begin(), windows.end(), "FormStopParaTrafo"), windows.end())
        << "the progress window has its place";
    EXPECT_EQ(Record("MonteCarloDone"), 0);
    EXPECT_EQ(Record("MCS_X"), starts);
    ExpectTruth();
    EXPECT_EQ(Record("StopRequested"), 0);
    EXPECT_EQ(Get("FormTrafoBerechnung")["enabled"], true);
}

TEST_F(ShapesByName, AJobWithAShapeIsSavedOpenedAndFittedAgain) {
    Import();
    Open();
    Calculate();
    const std::string path = PathOf("dish.cvn");
    Good({{"do", "answer"}, {"kind", "save"}, {"value", path}});
    Click("FormMain.MenuFileSaveAs");
    const json shape = Record("ParaboloidShape");
    const double traX = Number("TraX"), rotX = Number("RotX");
    Good({{"do", "answer"}, {"kind", "open"}, {"value", path}});
    Click("FormMain.MenuFileOpen");
    EXPECT_EQ(Record("IsParaboloid"), -1);
    EXPECT_EQ(Record("ParaboloidShape"), shape);
    EXPECT_EQ(Number("TraX"), traX);
    Click("FormMain.MenuTransformationCalculation");
    EXPECT_EQ(Get("FormTrafoBerechnung.OptionLoo")["enabled"], false);
    Calculate();
    EXPECT_NEAR(Number("TraX"), traX, 1e-3);
    EXPECT_NEAR(Number("RotX"), rotX, 1e-6);
}

TEST_F(ShapesByName, AnImportWhoseShapeFailsLeavesNoShapeToFitTo) {
    Import(Write("bad.txt", "10;1\n"));
    EXPECT_EQ(Record("ImportFailed"), -1);
    EXPECT_EQ(Record("nIdent"), 52);
    Open();
    const json reply = Calculate();
    ASSERT_EQ(reply["dialogs"].size(), 1u);
    EXPECT_NE(reply["dialogs"][0]["text"].get<std::string>().find("There is no shape of a paraboloid"),
              std::string::npos);
    EXPECT_EQ(Record("TrafoValid"), 0);
}
