// Which model of a fit holds, what the status bar tells of its passes, and the trace on the clipboard.
#include <cmath>
#include <sstream>

#include "cli/headless.h"
#include "core/form_main.h"
#include "core/settings.h"
#include "core/units.h"
#include "engine/adjustment.h"
#include "engine/design.h"
#include "engine/fit_job.h"
#include "engine/selection.h"
#include "engine/start_values.h"
#include "support/fixture.h"

using namespace corvinade;

class FitModels : public Program {
protected:
    FitModels() { BeginFit(); }

    void RunFit() {
        P_ = Column(Job.UseFlags.begin(), Job.UseFlags.end());
        BestFitIteration(CountUnknowns(Job.ParamText), 3 * Job.Pairs(), Job.ParamText, Q_, v_, P_);
    }
    // Three pairs that differ by a shift alone, and a start of the translations at 0.
    static void ShiftedPairs(double x, double y) {
        for (const reference::Point& p :
             {reference::Point{0, 0, 0}, reference::Point{100, 0, 0}, reference::Point{0, 100, 0}})
            AddPair(p, {p[0] + x, p[1] + y, p[2]});
        FloatParameters({kTraX, kTraY});
        Selection.DialogOpen = true;
        Selection.FieldText = Job.ParamText;
        for (const std::size_t k : {kTraX, kTraY}) {
            Selection.Float[k] = Selection.Seed[k] = true;
            Selection.SeedText[k] = "0";
        }
    }

    Matrix Q_;
    Column v_, P_;
};

TEST_F(FitModels, DistanceOrToolFollowFromBoxesValuesAndTheFieldOnShow) {
    struct Case {
        bool CheckRDist, CheckUseABC, Shown;
        double RDist, Rvec_z;
        FitMode Expected;
    };
    using enum FitMode;
    const Case cases[] = {
        {false, false, true, 0, 0, Coincide},  {true, false, true, 0, 0, Distance},
        {true, false, false, 0, 0, Distance},  {false, true, true, 0, 0, Tool},
        {false, true, false, 0, 0, Tool},      {true, true, true, 0, 0, Tool},
        {false, false, true, 40, 0, Distance}, {false, false, false, 40, 0, Coincide},
        {false, true, true, 40, 0, Tool},      {false, false, true, 0, 30, Coincide},
        {false, false, false, 0, 30, Tool},    {false, false, true, 40, 30, Distance},
        {false, false, false, 40, 30, Tool},   {false, false, true, -40, 0, Distance},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(&c - cases);
        Selection.CheckRDist = c.CheckRDist;
        Selection.CheckUseABC = c.CheckUseABC;
        Selection.RDistShown = c.Shown;
        Job.ParamText[kRDist] = c.CheckRDist ? kFloat : "held";
        Job.RDist = c.RDist;
        Job.Rvec_x = Job.Rvec_y = 0;
        Job.Rvec_z = c.Rvec_z;
        EXPECT_EQ(ChooseMode(Job.ParamText), c.Expected);
    }
}

TEST_F(FitModels, TheToolVectorFloatsOnlyWithAllItsParts) {
    FloatParameters({kTraX, kRvecX, kRvecY});
    EXPECT_EQ(CountUnknowns(Job.ParamText), 1);
    FloatParameters({kRvecZ});
    EXPECT_EQ(CountUnknowns(Job.ParamText), 4);
    EXPECT_EQ(ChooseModel(Job.ParamText).UnknownOf[kRvecZ], 4);
}

TEST_F(FitModels, UnknownsAreNumberedInTheOrderOfTheParameters) {
    FloatParameters({kTraZ, kRotX, kScaleY, kScaleXYZ, kAzimuth, kRDist});
    const FitModel model = ChooseModel(Job.ParamText);
    EXPECT_EQ(model.Unknowns, 6);
    int expected = 0;
    for (const int parameter : {kTraZ, kRotX, kScaleY, kScaleXYZ, kAzimuth, kRDist})
        EXPECT_EQ(model.UnknownOf[static_cast<std::size_t>(parameter)], ++expected);
    EXPECT_EQ(model.UnknownOf[kTraX], 0);
}

TEST_F(FitModels, HeldDistanceAndToolVectorAreTakenAsTheyStandInAnyUnit) {
    AddCloud({.Points = 5, .Truth = Truth({1, 2, 3, 0, 0, 0, 1, 1, 1, 1})});
    Units.LengthFactor = 1.0 / 1000;
    Job.ParamText[kRDist] = "40";
    Job.ParamText[kRvecX] = "1";
    Job.ParamText[kRvecY] = "2";
    Job.ParamText[kRvecZ] = "3";
    Job.ParamText[kScaleX] = "1.25";
    TakeStartValues(Job.ParamText);
    EXPECT_EQ(Job.RDist, 40);
    EXPECT_EQ(Job.Rvec_x, 1);
    EXPECT_EQ(Job.Rvec_y, 2);
    EXPECT_EQ(Job.Rvec_z, 3);
    EXPECT_EQ(Job.ScaleX, 1.25);
}

TEST_F(FitModels, TheToolVectorIsTakenOnlyWhereItsFirstPartIsANumber) {
    AddCloud({.Points = 5, .Truth = Truth({1, 2, 3, 0, 0, 0, 1, 1, 1, 1})});
    Job.Rvec_x = Job.Rvec_y = Job.Rvec_z = 99;  // of an earlier run
    Job.RDist = 99;
    Job.ParamText[kRvecY] = "2";
    TakeStartValues(Job.ParamText);
    EXPECT_EQ(Job.Rvec_x, 0);
    EXPECT_EQ(Job.Rvec_y, 0);
    EXPECT_EQ(Job.Rvec_z, 0);
    EXPECT_EQ(Job.RDist, 0);
}

TEST_F(FitModels, ParametersNotUsedAreNeutral) {
    AddCloud({.Points = 5, .Truth = Truth({100, 200, 300, 0.4, 0.5, 0.6, 2, 2, 2, 2})});
    Job.Azimuth = Job.AngleZtoXY = Job.AngleXY = 1;
    TakeStartValues(Job.ParamText);
    for (const int parameter : {kTraX, kTraY, kTraZ, kRotX, kRotY, kRotZ, kAngleXY, kAzimuth, kAngleZtoXY})
        EXPECT_EQ(ParameterValue(Job, parameter), 0) << parameter;
    for (const int parameter : {kScaleX, kScaleY, kScaleZ, kScaleXYZ})
        EXPECT_EQ(ParameterValue(Job, parameter), 1) << parameter;
}

TEST_F(FitModels, SeededFrameAnglesAndScalesStartAtTheirSeeds) {
    AddCloud({.Points = 5, .Truth = Truth({1, 2, 3, 0, 0, 0, 1, 1, 1, 1})});
    FloatParameters({kScaleY, kAngleXY, kAzimuth, kAngleZtoXY});
    Selection.DialogOpen = true;
    Selection.FieldText.fill(kNotUsed);
    for (const std::size_t k : {kScaleY, kAngleXY, kAzimuth, kAngleZtoXY}) Selection.Float[k] = true;
    for (const std::size_t k : {kScaleY, kAngleXY, kAzimuth}) Selection.Seed[k] = true;
    Selection.SeedText[kScaleY] = "1.5";
    Selection.SeedText[kAngleXY] = "180";
    Selection.SeedText[kAzimuth] = "90";
    TakeStartValues(Job.ParamText);
    EXPECT_EQ(Job.ScaleX, 1);
    EXPECT_EQ(Job.ScaleY, 1.5);
    EXPECT_NEAR(Job.AngleXY, 3.14159265358979, 1e-14);
    EXPECT_NEAR(Job.Azimuth, 3.14159265358979 / 2, 1e-14);
    EXPECT_EQ(Job.AngleZtoXY, 0.1 / 180 * 3.14159265358979);  // its own box is not set
    // A number in the choice counts before any seed.
    Job.ParamText[kAngleXY] = "90";
    TakeStartValues(Job.ParamText);
    EXPECT_NEAR(Job.AngleXY, 3.14159265358979 / 2, 1e-14);
}

TEST_F(FitModels, TheStatusBarShowsTheLargestCorrectionOfThePassBefore) {
    ShiftedPairs(5, -7);
    RunFit();
    ASSERT_EQ(Adjustment.Iterations, 2);
    // The shift is found in the first pass, the second corrects by next to nothing, so the ratio is
    // 7 / (1e-9 + 0) but for the 1e-12 that each pivot of 3 gets.
    EXPECT_EQ(Main.StatusBar_4.Text, "on VarNumber: 2");
    const std::string ratio = Main.StatusBar_3.Text, delta = Main.StatusBar_5.Text;
    ASSERT_TRUE(ratio.starts_with("Convergence Ratio: "));
    ASSERT_TRUE(delta.starts_with("delta x(i): "));
    EXPECT_NEAR(std::stod(delta.substr(12)), 7, 1e-10);
    EXPECT_NEAR(std::stod(ratio.substr(19)), 7e9, 3e7);
    EXPECT_EQ(ratio.size() - ratio.find('.'), 4U);  // three decimals, as lengths have
    EXPECT_EQ(Main.StatusBar_1.Text, "Iteration 1");
    EXPECT_EQ(Q_(1, 1), 1 / (3 + 1e-12));
}

TEST_F(FitModels, TheTraceHasALineOfTabsForEachPass) {
    // All is held but the distance, which is 5 for both pairs: one pass finds it, one confirms it.
    AddPair({0, 0, 0}, {3, 4, 0});
    AddPair({10, 0, 0}, {10, 0, 5});
    for (int k = kTraX; k <= kRotZ; ++k) Job.ParamText[static_cast<std::size_t>(k)] = "0";
    FloatParameters({kRDist});
    Selection.CheckRDist = true;
    RunFit();
    EXPECT_NEAR(Job.RDist, 5, 1e-10);
    ASSERT_EQ(Adjustment.Iterations, 2);
    const std::string trace = Headless.Clipboard;
    const std::size_t end = trace.find("\t\r\n");
    ASSERT_NE(end, std::string::npos);
    EXPECT_NEAR(std::stod(trace.substr(0, end)), 5, 1e-10);
    const std::string second = trace.substr(end + 3);
    ASSERT_TRUE(second.ends_with("\t\r\n"));
    EXPECT_EQ(second.find('\t'), second.size() - 3);
    EXPECT_NEAR(std::stod(second), 0, 1e-9);
    EXPECT_NEAR(v_[1], 0, 1e-10);
    EXPECT_NEAR(v_[2], 0, 1e-10);
}

TEST_F(FitModels, AHeldDistanceLeavesNoTrace) {
    AddPair({0, 0, 0}, {3, 4, 0});
    AddPair({10, 0, 0}, {10, 0, 5});
    for (int k = kTraY; k <= kRotZ; ++k) Job.ParamText[static_cast<std::size_t>(k)] = "0";
    FloatParameters({kTraX});
    Job.ParamText[kRDist] = "5";
    Settings.MaxIteration = 3;
    Headless.Clipboard = "the user's own";
    RunFit();
    EXPECT_EQ(Headless.Clipboard, "");
}

TEST_F(FitModels, TheWeightOfAPointInTheDistanceModelIsThatOfItsZ) {
    // The distances are 5, 6 and 10 with the weights 1, 3 and 0 of the third coordinates alone.
    AddPair({0, 0, 0}, {3, 4, 0});
    AddPair({10, 0, 0}, {10, 0, 6});
    AddPair({20, 0, 0}, {20, 10, 0});
    for (int k = kTraX; k <= kRotZ; ++k) Job.ParamText[static_cast<std::size_t>(k)] = "0";
    FloatParameters({kRDist});
    Selection.CheckRDist = true;
    P_ = {0, 7, 0, 1, 0, 9, 3, 5, 5, 0};
    BestFitIteration(1, 9, Job.ParamText, Q_, v_, P_);
    EXPECT_NEAR(Job.RDist, (5.0 + 3 * 6) / 4, 1e-10);
    EXPECT_NEAR(Q_(1, 1), 0.25, 1e-12);
    EXPECT_EQ(P_, (Column{0, 1, 1, 1, 3, 3, 3, 0, 0, 0}));
    EXPECT_NEAR(v_[1], 0.75, 1e-10);
    EXPECT_NEAR(v_[2], -0.25, 1e-10);
    EXPECT_NEAR(v_[3], -4.25, 1e-10);
}

TEST_F(FitModels, ConvergenceAtTheLastForbiddenPassStillBringsTheMessage) {
    ShiftedPairs(0, 0);
    Settings.MaxIteration = 0;
    RunFit();
    EXPECT_TRUE(Adjustment.Converged);
    EXPECT_EQ(LastMessage(), "Calculation stopped after 0 Iterations, Convergence not reached yet!");
}

TEST_F(FitModels, AnAxisWithOneWeightDividesByTheSmallConstant) {
    double s0 = 0, sx = 0, sy = 0, sz = 0;
    Statistics({0, 2, 3, 0, 0, 3, 5}, {0, 1, 1, 0, 0, 1, 0}, 6, s0, sx, sy, sz);
    EXPECT_NEAR(s0, std::sqrt((4 + 9 + 9) / (2 + 1e-9)), 1e-12);
    EXPECT_NEAR(sx * std::sqrt(1e-9), 2, 1e-6);
    EXPECT_NEAR(sy, std::sqrt(18 / (1 + 1e-9)), 1e-12);
    EXPECT_EQ(sz, 0);
}
