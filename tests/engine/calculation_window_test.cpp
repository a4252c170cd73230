// The run of a calculation in its window: the click, the stop, the direction, and what a refusal leaves.
#include "engine/calculation_window.h"

#include <cmath>

#include "core/controller.h"
#include "core/settings.h"
#include "engine/adjustment.h"
#include "engine/calculation_job.h"
#include "engine/trafo_window.h"

using namespace corvinade;

namespace {

class CalculationWindowRun : public CalculationJob {
protected:
    static std::string Field(double value) { return ShownLength(value); }
};

double Root(double x, double y, double z) {
    return std::sqrt(x * x + y * y + z * z);
}

}  // namespace

TEST_F(CalculationWindowRun, AClickCalculatesAndShowsTheParameters) {
    AddPairs(6, 0);
    Open();
    Calculate();
    EXPECT_TRUE(IsTrue(Run.TrafoValid));
    EXPECT_TRUE(IsTrue(Run.JobDirty));
    EXPECT_TRUE(IsTrue(Run.CalcDone));
    EXPECT_EQ(trafoWindow.TextTraX.Text, "100.000");
    EXPECT_EQ(trafoWindow.TextTraY.Text, "200.000");
    EXPECT_EQ(trafoWindow.TextTraZ.Text, "300.000");
    EXPECT_EQ(trafoWindow.TextRotX.Text, "10.0000");
    EXPECT_EQ(trafoWindow.TextRotY.Text, "20.0000");
    EXPECT_EQ(trafoWindow.TextRotZ.Text, "30.0000");
    EXPECT_EQ(trafoWindow.TextScaleX.Text, "1.000000");
    EXPECT_EQ(trafoWindow.TextScaleXYZ.Text, "not used") << "shown only while it floats";
    EXPECT_EQ(trafoWindow.TextSxyz.Text, "0.000");
    EXPECT_TRUE(trafoWindow.BtnSEED.Enabled);
    EXPECT_TRUE(trafoWindow.BtnCalculate.Enabled);
    EXPECT_FALSE(trafoWindow.BtnSTOP.Enabled);
    EXPECT_EQ(::Run.WaitPointers, 0);
}

TEST_F(CalculationWindowRun, TheShownValuesOfAFitBecomeNoConstraintsOfTheNext) {
    AddPairs();
    Open();
    Calculate();
    const double x = Job.TraX, angle = Job.RotY;
    Calculate();
    EXPECT_EQ(Job.TraX, x);
    EXPECT_EQ(Job.RotY, angle);
}

TEST_F(CalculationWindowRun, LastSolutionIsWhatStoodWhenTheButtonWasPressed) {
    AddPairs(6, 0);
    Open();
    Job.TraX = 17;
    Calculate();
    EXPECT_EQ(CalculationWindow.LastSolution[kTraX], 17);
    EXPECT_EQ(trafoWindow.TextTraX.ToolTip, "delta to last calculation: 83.000");
    Calculate();
    EXPECT_NEAR(CalculationWindow.LastSolution[kTraX], 100, 1e-9);
    EXPECT_EQ(trafoWindow.TextTraX.ToolTip, "delta to last calculation: 0.000");
    EXPECT_EQ(trafoWindow.TextRotX.ToolTip, "delta to last calculation: 0.0000");
}

TEST_F(CalculationWindowRun, AsManyObservationsAsUnknownsLeaveNoResiduals) {
    AddPairs(6, 0.5);
    Open();
    std::fill(Job.UseFlags.begin(), Job.UseFlags.end(), std::int16_t{0});
    for (const std::size_t flag : {1, 2, 3, 4, 5, 9}) Job.UseFlags[flag] = 1;
    Calculate();
    EXPECT_TRUE(Messages().empty()) << LastMessage();
    for (const std::size_t flag : {1, 2, 3, 4, 5, 9}) EXPECT_NEAR(Calculation.v[flag], 0, 1e-8);
    EXPECT_NEAR(Calculation.s0, 0, 1e-8);
}

TEST_F(CalculationWindowRun, ARefusalKeepsParametersTableAndFields) {
    AddPairs();
    Open();
    Calculate();
    const JobRecord before = Job;
    const Column v = Calculation.v;
    UserSetValue(trafoWindow.CheckTraX, 0);
    UserSetText(trafoWindow.TextTraX, "5");
    std::fill(Job.UseFlags.begin(), Job.UseFlags.end(), std::int16_t{0});
    const std::string rotation = trafoWindow.TextRotX.Text, sigma = trafoWindow.TextSxyz.Text,
                      largest = trafoWindow.TextMaxDevX.Text;
    Calculate();
    EXPECT_EQ(Messages(), (std::vector<std::string>{"This is not a redundant calculation"}));
    for (int k = kTraX; k < kParameterEnd; ++k)
        EXPECT_EQ(ParameterValue(Job, k), ParameterValue(const_cast<JobRecord&>(before), k));
    EXPECT_EQ(Job.Transformed.X, before.Transformed.X);
    EXPECT_EQ(Calculation.v, v);
    EXPECT_EQ(trafoWindow.TextTraX.Text, "5") << "what the user typed is not lost";
    EXPECT_EQ(trafoWindow.TextRotX.Text, rotation);
    EXPECT_EQ(trafoWindow.TextSxyz.Text, sigma);
    EXPECT_EQ(trafoWindow.TextMaxDevX.Text, largest);
    EXPECT_TRUE(IsTrue(Run.TrafoValid));
}

TEST_F(CalculationWindowRun, ARefusalBeforeAnyResultShowsNone) {
    AddPairs(1);
    Open();
    Calculate();
    EXPECT_EQ(Messages(), (std::vector<std::string>{"This is not a redundant calculation"}));
    EXPECT_EQ(trafoWindow.TextTraX.Text, "float");
    EXPECT_EQ(trafoWindow.TextSigmaTraX.Text, "");
    EXPECT_EQ(trafoWindow.TextMaxDevX.Text, "");
    EXPECT_FALSE(IsTrue(Run.CalcDone));
    EXPECT_FALSE(IsTrue(Run.TrafoValid));
    EXPECT_FALSE(trafoWindow.BtnSEED.Enabled);
}

TEST_F(CalculationWindowRun, AHeldAngleWhoseDigitsTellNoTurnIsRefused) {
    AddPairs();
    Open();
    for (const char* text : {"1e300", "-1e9", "100000000"}) {
        UserSetValue(trafoWindow.Option6Parameter, 1);
        UserSetValue(trafoWindow.CheckRotZ, 0);
        UserSetText(trafoWindow.TextRotZ, text);
        Headless.Dialogs.clear();
        Calculate();
        EXPECT_EQ(
            LastMessage(),
            "Rot z is held at an angle of so many turns that its digits do not tell where it ends. Please "
            "hold it within a few turns.");
        EXPECT_FALSE(IsTrue(Run.TrafoValid));
    }
    // Some turns are an angle as any other.
    UserSetText(trafoWindow.TextRotZ, "3600000");
    Calculate();
    EXPECT_TRUE(IsTrue(Run.TrafoValid));
}

TEST_F(CalculationWindowRun, AHeldScaleOfZeroIsRefused) {
    AddPairs();
    Open();
    for (const char* text : {"0", "0.000", "nothing"}) {
        UserSetValue(trafoWindow.Option9Parameter, 1);
        UserSetValue(trafoWindow.CheckScaleY, 0);
        UserSetText(trafoWindow.TextScaleY, text);
        Headless.Dialogs.clear();
        Calculate();
        EXPECT_EQ(
            LastMessage(),
            "Scale y is held at 0, which leaves nothing of the points. Please hold it at another value.");
        EXPECT_FALSE(IsTrue(Run.TrafoValid));
    }
}

TEST_F(CalculationWindowRun, AFieldWithoutANumberCountsAsZero) {
    AddPairs(6, 0);
    Open();
    UserSetValue(trafoWindow.CheckTraZ, 0);
    UserSetText(trafoWindow.TextTraZ, "none");
    Calculate();
    EXPECT_EQ(Job.TraZ, 0);
    EXPECT_EQ(trafoWindow.TextTraZ.Text, "0.000");
}

TEST_F(CalculationWindowRun, AnAngleThatIsNoDegreeMinuteSecondChangesNothing) {
    AddPairs(6, 0);
    Open();
    UserSetValue(trafoWindow.CheckRotZ, 0);
    UserSetText(trafoWindow.TextRotZ, "10 - 30");
    Calculate();
    EXPECT_FALSE(Run.LastPlatformError.empty());
    EXPECT_FALSE(IsTrue(Run.TrafoValid));
    EXPECT_TRUE(trafoWindow.BtnCalculate.Enabled);
    EXPECT_FALSE(trafoWindow.BtnSTOP.Enabled);
    EXPECT_EQ(::Run.WaitPointers, 0);
}

TEST_F(CalculationWindowRun, ResultsThatAreNoNumbersShowInTheFields) {
    AddPairs(6, 0);
    Job.Target.X[2] = 1e308;
    Job.Target.X[3] = -1e308;
    Job.Target.Y[4] = 1e308;
    Open();
    Calculate();
    EXPECT_FALSE(IsTrue(Run.TrafoValid));
    bool shows = false;
    for (const ParameterControls& row : ParameterRows())
        shows |= row.Text->Text == "NaN" || row.Text->Text.find("Infinity") != std::string::npos;
    EXPECT_TRUE(shows);
}

TEST_F(CalculationWindowRun, AStopInTheFirstPassEndsTheRunAndNotTheNext) {
    AddPairs();
    Open();
    int yields = 0;
    Headless.OnYield = [&yields] {
        if (++yields == 2) UserClick(trafoWindow.BtnSTOP);
    };
    Settings.BestFit_Etta = 1e-13;
    Calculate();
    EXPECT_EQ(Adjustment.Iterations, 1);
    EXPECT_FALSE(IsTrue(::Run.StopRequested));
    EXPECT_FALSE(trafoWindow.BtnSTOP.Enabled);
    EXPECT_TRUE(Messages().empty());
    Headless.OnYield = nullptr;
    Settings.BestFit_Etta = 1e-9;
    Calculate();
    EXPECT_TRUE(Adjustment.Converged);
}

TEST_F(CalculationWindowRun, BtnCalculateIsDisabledAndBtnSTOPEnabledMeanwhile) {
    AddPairs();
    Open();
    bool seen = false;
    Headless.OnYield = [&seen] {
        seen = true;
        EXPECT_FALSE(trafoWindow.BtnCalculate.Enabled);
        EXPECT_TRUE(trafoWindow.BtnSTOP.Enabled);
        EXPECT_EQ(::Run.WaitPointers, 1);
    };
    Calculate();
    EXPECT_TRUE(seen);
}

TEST_F(CalculationWindowRun, AChangeDuringARunCalculatesBehindItAndNotInsideIt) {
    AddPairs();
    Open();
    UserSetValue(trafoWindow.CheckAutoRec, 1);
    bool changed = false;
    int runs = 0;
    Headless.OnYield = [&] {
        if (Adjustment.Iterations == 0 &&
            Main.StatusBar_2.Text == "... calculating Matrix for LeastSquare calc...")
            ++runs;
        if (changed) return;
        changed = true;
        UserSetValue(trafoWindow.CheckTraX, 0);
        UserSetText(trafoWindow.TextTraX, "5");
        EXPECT_TRUE(CalculationWindow.Running);
    };
    Calculate();
    EXPECT_EQ(Job.TraX, 5);
    EXPECT_EQ(runs, 2);
}

TEST_F(CalculationWindowRun, ACalculationFromAPresetRunsOnce) {
    AddPairs();
    Open();
    UserSetValue(trafoWindow.CheckAutoRec, 1);
    int runs = 0;
    Headless.OnYield = [&runs] {
        if (Main.StatusBar_2.Text == "... calculating Matrix for LeastSquare calc..." &&
            Adjustment.Iterations == 0)
            ++runs;
    };
    for (Control* const option :
         {&trafoWindow.Option7Parameter, &trafoWindow.Option9Parameter, &trafoWindow.OptionHoldLevel,
          &trafoWindow.Option6Parameter, &trafoWindow.Option12}) {
        runs = 0;
        Main.StatusBar_2.Text.clear();
        UserSetValue(*option, 1);
        EXPECT_EQ(runs, 1);
        EXPECT_EQ(trafoWindow.CheckAutoRec.Value, 1);
    }
}

TEST_F(CalculationWindowRun, APlainBoxCalculatesWhenAutomatic) {
    AddPairs();
    Open();
    UserSetValue(trafoWindow.CheckTraX, 0);
    EXPECT_FALSE(IsTrue(Run.TrafoValid));
    UserSetValue(trafoWindow.CheckAutoRec, 1);
    EXPECT_TRUE(IsTrue(Job.AutoRecalc));
    EXPECT_FALSE(IsTrue(Run.TrafoValid));
    UserSetValue(trafoWindow.CheckTraX, 1);
    EXPECT_TRUE(IsTrue(Run.TrafoValid));
}

TEST_F(CalculationWindowRun, ClosingTheWindowDuringARunKeepsTheResult) {
    AddPairs(6, 0);
    Open();
    Headless.OnYield = [] { UnloadWindow("FormTrafoBerechnung"); };
    Calculate();
    EXPECT_TRUE(IsTrue(Run.TrafoValid));
    EXPECT_NEAR(Job.TraX, 100, 1e-9);
    EXPECT_FALSE(IsLoaded("FormTrafoBerechnung"));
}

TEST_F(CalculationWindowRun, SwitchingDuringARunEndsItWithoutWriting) {
    AddPairs(6, 0);
    Open();
    bool switched = false;
    Headless.OnYield = [&switched] {
        if (!switched) {
            switched = true;
            UserClick(trafoWindow.BtnSwitchMcsOcs);
        }
    };
    Calculate();
    EXPECT_FALSE(IsTrue(Run.TrafoValid));
    EXPECT_FALSE(IsTrue(Run.CalcDone));
}

TEST_F(CalculationWindowRun, TheSwitchExchangesTheSetsAndTheirCounts) {
    AddPairs(4);
    Job.Start.Add("only start", 1, 2, 3);
    const JobRecord before = Job;
    Open();
    UserClick(trafoWindow.BtnSwitchMcsOcs);
    EXPECT_EQ(Job.Start.X, before.Target.X);
    EXPECT_EQ(Job.Target.Z, before.Start.Z);
    EXPECT_EQ(Job.Target.Name, before.Start.Name);
    EXPECT_EQ(Job.Start.Count(), 4);
    EXPECT_EQ(Job.Target.Count(), 5);
    EXPECT_EQ(Job.StartOnly(), 0);
    EXPECT_EQ(Job.TargetOnly(), 1);
    EXPECT_EQ(Job.Transformed.X.size(), 5u);
    EXPECT_EQ(Job.NameMCS, "Cell");
    EXPECT_EQ(Job.UseFlags, before.UseFlags);
    EXPECT_TRUE(JobIsWhole(Job));
    EXPECT_FALSE(IsTrue(Job.DirectionMCStoOCS));
    EXPECT_EQ(trafoWindow.LabelDirection.Text, "OCS -> MCS");
    EXPECT_EQ(trafoWindow.LabelDirection.ForeColor, QbColor(12));
    EXPECT_EQ(trafoWindow.BtnSwitchMcsOcs.BackColor, QbColor(12));
    EXPECT_EQ(trafoWindow.LabelDirection.ToolTip, "Robot => Cell");
    UserClick(trafoWindow.BtnSwitchMcsOcs);
    EXPECT_EQ(Job.Start.Name, before.Start.Name);
    EXPECT_EQ(Job.Target.X, before.Target.X);
    EXPECT_EQ(trafoWindow.LabelDirection.Text, "MCS -> OCS");
    EXPECT_EQ(trafoWindow.LabelDirection.ForeColor, QbColor(0));
    EXPECT_EQ(trafoWindow.BtnSwitchMcsOcs.BackColor, kSystemColour);
    EXPECT_EQ(trafoWindow.LabelDirection.ToolTip, "Cell => Robot");
}

TEST_F(CalculationWindowRun, AResultOfTheOtherDirectionIsNoneOfThis) {
    AddPairs(6, 0);
    Open();
    Calculate();
    EXPECT_TRUE(Main.MenueFileExport.Enabled);
    UserClick(trafoWindow.BtnSwitchMcsOcs);
    EXPECT_FALSE(IsTrue(Run.TrafoValid));
    EXPECT_FALSE(IsTrue(Run.CalcDone));
    EXPECT_FALSE(Main.MenueFileExport.Enabled) << "it would give away the parameters of the way back";
    Calculate();
    EXPECT_TRUE(Main.MenueFileExport.Enabled);
}

TEST_F(CalculationWindowRun, TheSwitchedFitIsTheInverse) {
    AddPairs(8, 0);
    Open();
    UserClick(trafoWindow.BtnSwitchMcsOcs);
    Calculate();
    // The inverse of a rigid motion has the same length of shift and a rotation of the same angle.
    EXPECT_NEAR(Root(Job.TraX, Job.TraY, Job.TraZ), Root(100, 200, 300), 1e-8);
    for (int i = 1; i <= Job.Pairs(); ++i)
        EXPECT_NEAR(*Job.Transformed.X[static_cast<std::size_t>(i)],
                    *Job.Target.X[static_cast<std::size_t>(i)], 1e-9);
}

TEST_F(CalculationWindowRun, TheResultBecomesTheSeeds) {
    AddPairs(6, 0);
    Open();
    UserSetValue(trafoWindow.Option9Parameter, 1);
    Calculate();
    UserClick(trafoWindow.BtnSEED);
    EXPECT_EQ(trafoWindow.TextSeedTrax.Text, "100.000");
    EXPECT_EQ(trafoWindow.TextSeedRotz.Text, "30.0000");
    EXPECT_EQ(trafoWindow.TextSeedScalex.Text, "1.000000");
    EXPECT_EQ(trafoWindow.TextSeedScalexyz.Text, "") << "not used, so there is nothing to begin with";
}

TEST_F(CalculationWindowRun, SeedsOfTheUserAreWhereTheIterationBegins) {
    AddPairs(6, 0);
    Open();
    Settings.MaxIteration = 0;
    UserSetValue(trafoWindow.CheckSeedTrax, 1);
    UserSetText(trafoWindow.TextSeedTrax, "100");
    Calculate();
    EXPECT_NEAR(Job.TraX, 100, 1e-6);
}

TEST_F(CalculationWindowRun, WithoutItsWindowACalculationTakesTheChoiceOfTheJob) {
    AddPairs(6, 0);
    myButtonCalculate();
    EXPECT_TRUE(IsTrue(Run.TrafoValid));
    EXPECT_NEAR(Job.RotZ, 30 * kPi / 180, 1e-9);
    EXPECT_EQ(Calculation.nFloat, 6);
}

TEST_F(CalculationWindowRun, TheUnitsOfTheFieldsFollowTheSettings) {
    AddPairs(6, 0);
    Open();
    UserSetValue(trafoWindow.CheckTraZ, 0);
    UserSetText(trafoWindow.TextTraZ, "300");
    UserSetValue(trafoWindow.CheckSeedTrax, 1);
    UserSetText(trafoWindow.TextSeedTrax, "1500");
    Job.LengthUnitName = "meter";
    Job.LengthDigits = 6;
    RhoFestlegung();
    CalculationWindow_UnitsChanged();
    EXPECT_EQ(trafoWindow.TextTraZ.Text, "0.300000");
    EXPECT_EQ(trafoWindow.TextSeedTrax.Text, "1.500000");
    Calculate();
    EXPECT_EQ(trafoWindow.TextTraX.Text, "0.100000");
    EXPECT_NEAR(Job.TraZ, 300, 1e-9);
    Job.AngleUnitName = "rad";
    Job.LengthUnitName = "millimeter";
    Job.LengthDigits = 1;
    RhoFestlegung();
    CalculationWindow_UnitsChanged();
    EXPECT_EQ(trafoWindow.TextTraX.Text, "100.0");
    EXPECT_EQ(trafoWindow.TextRotX.Text, "0.1745");
    EXPECT_EQ(Main.StatusBar_9.Text, "rad");
}

TEST_F(CalculationWindowRun, TheMenuOpensAndClosesTheWindow) {
    AddPairs();
    ProgrammLogik();
    UserClick(Main.MenuTransformationCalculation);
    EXPECT_TRUE(IsLoaded("FormTrafoBerechnung"));
    EXPECT_TRUE(Main.MenuTransformationCalculation.Checked);
    EXPECT_EQ(Main.Toolbar1_TrafoBerechnung.Value, 1);
    UserClick(Main.MenuTransformationCalculation);
    EXPECT_FALSE(IsLoaded("FormTrafoBerechnung"));
    EXPECT_FALSE(Main.MenuTransformationCalculation.Checked);
    EXPECT_EQ(Main.Toolbar1_TrafoBerechnung.Value, 0);
    UserClick(Main.MenuTransformationCalculation);
    UserClose(FormTrafoBerechnung_Entry);
    EXPECT_FALSE(Main.MenuTransformationCalculation.Checked) << "closed by its own button";
}

TEST_F(CalculationWindowRun, OnePairIsTooFewAndTwoAreWarnedOf) {
    AddPairs(1);
    UserClick(Main.MenuTransformationCalculation);
    EXPECT_FALSE(IsLoaded("FormTrafoBerechnung"));
    EXPECT_EQ(LastMessage(),
              "There are less then two identically Points for a calculation!\r\nThat makes no sence.\r\n"
              "Please load more identically Points to do Transformation Calculations.");
    AddPairs(1);
    UserClick(Main.MenuTransformationCalculation);
    EXPECT_TRUE(IsLoaded("FormTrafoBerechnung"));
    EXPECT_EQ(
        LastMessage(),
        "There are less than three identically Points for a calculation.\r\nBy rational settings of the "
        "Transformation Parameters logical Calculations can be made.\r\nBe sure what you are doing!");
}
