// The warning where the first and the third rotation share an axis, and the calculation that it offers.
#include <cmath>
#include <numbers>

#include "core/numbers.h"
#include "core/settings.h"
#include "engine/calculation_job.h"
#include "engine/form_trafo_details.h"
#include "engine/monte_carlo.h"
#include "engine/trafo_window.h"
#include "support/degrees.h"

using namespace corvinade;

namespace {

constexpr std::int32_t kLightRed = 0x0000FF, kWhite = 0xFFFFFF;
const char* const kTitle = "Multiple Solution Warning - Gimbal Lock";

class GimbalLock : public CalculationJob {
protected:
    GimbalLock() { Settings.GimbalLockBorder = 0.5 * kDegree; }

    // A cloud turned about y alone, shifted by 100, 200, 300 mm.
    static void AddTurned(double y_degree, double noise = 0) {
        AddCloud({.Points = 8,
                  .Noise = noise,
                  .Truth = Truth({100, 200, 300, 0, y_degree * kDegree, 0, 1, 1, 1, 1, 0, 0, 0})});
    }
    // A window on which nothing has been calculated; all six parameters float, y is held.
    static void OpenWithRotYHeld() {
        AddPairs();
        Open();
        SetValue(trafoWindow.CheckRotY, 0);
    }
    static void Type(const std::string& text) { UserSetText(trafoWindow.TextRotY, text); }
    static void Answer(const char* answer) { Headless.Answers["message"].push_back(answer); }
    static std::size_t Questions() {
        std::size_t count = 0;
        for (const DialogShown& dialog : Headless.Dialogs) count += dialog.Title == kTitle ? 1 : 0;
        return count;
    }
    static double LargestMiss() {
        double largest = 0;
        for (std::size_t i = 1; i <= static_cast<std::size_t>(Job.Pairs()); ++i)
            for (const double miss :
                 {*Job.Transformed.X[i] - *Job.Target.X[i], *Job.Transformed.Y[i] - *Job.Target.Y[i],
                  Job.Transformed.Z[i] - Job.Target.Z[i]})
                largest = std::max(largest, std::fabs(miss));
        return largest;
    }
};

}  // namespace

TEST_F(GimbalLock, TheQuestionHasItsTitleItsFourLinesAndTwoAnswers) {
    OpenWithRotYHeld();
    Answer("No");
    Type("90");
    ASSERT_EQ(Headless.Dialogs.size(), 1U);
    const DialogShown& question = Headless.Dialogs[0];
    EXPECT_EQ(question.Title, kTitle);
    EXPECT_EQ(
        question.Text,
        CrLf("If rot y' is +-90° or CLOSE to +-90° (in general the second rotation for all rotation types!) "
             "there are multiple solutions for x and z rotation!\n"
             "This situation is called the Gimbal Lock and means the first and third rotation is in the same "
             "axis; you can visualize with a Gyroscop.\n"
             "Fix x rotation to any value and related z rotation will be calculated, also you can do "
             "contrariwise.\n"
             "Should x rotation be fixed to 0 and the transformation be calculated again?"));
    EXPECT_EQ(question.Buttons, (std::vector<std::string>{"Yes", "No"}));
}

TEST_F(GimbalLock, NoLeavesTheFieldRedAndNothingElseChanges) {
    OpenWithRotYHeld();
    Answer("No");
    Type("90");
    EXPECT_EQ(trafoWindow.TextRotY.BackColor, kLightRed);
    EXPECT_EQ(trafoWindow.CheckRotX.Value, 1);
    EXPECT_EQ(trafoWindow.TextRotX.Text, "float");
    EXPECT_EQ(CalculationWindow.Started, 0U);
}

TEST_F(GimbalLock, AnAngleFarFromTheLockTurnsTheFieldWhiteAndClearsItsTip) {
    OpenWithRotYHeld();
    Answer("No");
    Type("90");
    trafoWindow.TextRotY.ToolTip = "old";
    Type("45");
    EXPECT_EQ(trafoWindow.TextRotY.BackColor, kWhite);
    EXPECT_EQ(trafoWindow.TextRotY.ToolTip, "");
    EXPECT_EQ(Questions(), 1U);
}

TEST_F(GimbalLock, TheBorderItselfIsFarAndBothSignsCount) {
    OpenWithRotYHeld();
    Settings.GimbalLockBorder = 0.5 * kDegree;
    for (const char* far : {"89.499", "90.501", "-89.499", "-90.501", "270"}) {
        Type(far);
        EXPECT_EQ(trafoWindow.TextRotY.BackColor, kWhite) << far;
    }
    EXPECT_EQ(Questions(), 0U);
    for (const char* near : {"89.501", "90.499", "-89.501", "-90.499"}) {
        Answer("No");
        Type(near);
        EXPECT_EQ(trafoWindow.TextRotY.BackColor, kLightRed) << near;
    }
    EXPECT_EQ(Questions(), 4U);
}

TEST_F(GimbalLock, WithABorderOfZeroTheWarningNeverComes) {
    Settings.GimbalLockBorder = 0;
    AddTurned(90);
    Open();
    Calculate();
    SetValue(trafoWindow.CheckRotY, 0);
    Type("1");
    Type("90");
    EXPECT_EQ(Questions(), 0U);
    EXPECT_EQ(trafoWindow.TextRotY.BackColor, kWhite);
}

TEST_F(GimbalLock, AHeldRotationAboutXOrZKeepsTheWarningAway) {
    OpenWithRotYHeld();
    for (Control* const box : {&trafoWindow.CheckRotX, &trafoWindow.CheckRotZ}) {
        SetValue(*box, 0);
        Type("90");
        EXPECT_EQ(trafoWindow.TextRotY.BackColor, kWhite);
        SetValue(*box, 1);
        Type("0");
    }
    EXPECT_EQ(Questions(), 0U);
}

TEST_F(GimbalLock, TextsThatAreNoAngleAreNeverNearTheLock) {
    OpenWithRotYHeld();
    for (const char* text : {"", "abc", "float", "not used", "NaN", "Infinity", "1e999", "-", "90 x",
                             "90 1e 0", "x 90", "9 0 . 0 0 -", "\xff\xfe"}) {
        Type(text);
        EXPECT_EQ(trafoWindow.TextRotY.BackColor, kWhite) << text;
    }
    EXPECT_TRUE(Messages().empty()) << LastMessage();
}

TEST_F(GimbalLock, TheAngleIsReadInItsUnitAndDelimiter) {
    OpenWithRotYHeld();
    Headless.Decimal = ',';
    struct Example {
        const char *Unit, *Text;
    };
    for (const Example& example : {Example{"degree", "90,0"},
                                   {"degree", "89,9999"},
                                   {"degree", "90.0"},
                                   {"grad (gon)", "100,0"},
                                   {"rad", "1,5708"},
                                   {"mrad", "-1570,8"},
                                   {"360°60'60''", "90 0 0,0"},
                                   {"360°60'60''", "-89 59 59,9"},
                                   {"360°60'60''", "90"}}) {
        Job.AngleUnitName = example.Unit;
        RhoFestlegung();
        Type("0");
        Answer("No");
        Type(example.Text);
        EXPECT_EQ(trafoWindow.TextRotY.BackColor, kLightRed) << example.Unit << " " << example.Text;
    }
    EXPECT_EQ(Questions(), 9U);
    Type("9 0 0,0");  // nine degrees
    EXPECT_EQ(trafoWindow.TextRotY.BackColor, kWhite);
}

TEST_F(GimbalLock, ACalculationThatReachesTheLockAsksOnceAndYesFixesX) {
    AddTurned(90);
    Open();
    Answer("Yes");
    Calculate();
    EXPECT_EQ(Questions(), 1U);
    EXPECT_EQ(CalculationWindow.Started, 2U);
    EXPECT_EQ(trafoWindow.CheckRotX.Value, 0);
    EXPECT_EQ(Job.RotX, 0);
    EXPECT_EQ(trafoWindow.TextRotX.Text, "0.0000");
    EXPECT_EQ(trafoWindow.TextRotY.Text, "90.0000");
    EXPECT_EQ(trafoWindow.TextRotY.BackColor, kLightRed) << "the colour changes with the text alone";
    EXPECT_LT(LargestMiss(), 1e-6);
    EXPECT_TRUE(IsTrue(Run.CalcDone));
    EXPECT_TRUE(trafoWindow.BtnCalculate.Enabled);
    EXPECT_FALSE(trafoWindow.BtnSTOP.Enabled);
    EXPECT_FALSE(CalculationWindow.Running);
    EXPECT_EQ(::Run.WaitPointers, 0);
    // The next click holds x at 0 too.
    Calculate();
    EXPECT_EQ(Questions(), 1U);
    EXPECT_EQ(Job.RotX, 0);
}

TEST_F(GimbalLock, ACalculationWithXHeldNeverAsks) {
    AddTurned(90, 0.05);
    Open();
    SetValue(trafoWindow.CheckRotX, 0);
    Calculate();
    EXPECT_EQ(Questions(), 0U);
    EXPECT_EQ(trafoWindow.TextRotY.BackColor, kWhite);
    EXPECT_LT(LargestMiss(), 1);
}

TEST_F(GimbalLock, OnNoTheCalculationShowsItsResult) {
    AddTurned(-90, 0.05);
    Open();
    Answer("No");
    Calculate();
    EXPECT_EQ(Questions(), 1U);
    EXPECT_EQ(CalculationWindow.Started, 1U);
    EXPECT_EQ(trafoWindow.TextRotY.BackColor, kLightRed);
    EXPECT_EQ(trafoWindow.TextTraX.Text, ShownLength(Job.TraX));
    EXPECT_NE(trafoWindow.TextSxyz.Text, "");
    EXPECT_EQ(trafoWindow.TextSxyz.Text, ShownLength(Calculation.SigmaXYZ));
    EXPECT_EQ(trafoWindow.TextRotY.ToolTip.substr(0, 27), "delta to last calculation: ");
    EXPECT_TRUE(IsTrue(Run.CalcDone));
}

TEST_F(GimbalLock, TheRepeatedCalculationIsComparedWithTheOneBeforeItsOwnOnce) {
    AddTurned(90, 0.05);
    Open();
    Answer("Yes");
    Calculate();
    // The first calculation was overtaken before it showed its quality: what shows is a first run, all red,
    // and the quality that the next run is compared with is that of the second.
    for (int quality = kSxyz; quality < kQualityEnd; ++quality) {
        EXPECT_TRUE(QualityRow(quality).ArrRed->Visible) << quality;
        EXPECT_FALSE(QualityRow(quality).ArrGreen->Visible) << quality;
    }
    EXPECT_EQ(CalculationWindow.LastQuality[kSxyz], Calculation.SigmaXYZ);
    for (int parameter = kTraX; parameter <= kRotZ; ++parameter)
        EXPECT_EQ(RowOf(parameter).Text->Text, ShownAs(KindOf(parameter), ParameterValue(Job, parameter)));
}

TEST_F(GimbalLock, YesWhileEveryChangeCalculatesEndsWithXFixedTo0) {
    AddTurned(90);
    Open();
    SetValue(trafoWindow.CheckAutoRec, 1);
    Answer("Yes");
    Calculate();
    EXPECT_EQ(Questions(), 1U);
    EXPECT_EQ(trafoWindow.TextRotX.Text, "0.0000");
    EXPECT_EQ(Job.RotX, 0);
    EXPECT_TRUE(IsTrue(Job.AutoRecalc));
    EXPECT_LT(LargestMiss(), 1e-6);
}

TEST_F(GimbalLock, AWindowClosedWhileTheQuestionStandsEndsTheReport) {
    for (const char* answer : {"Yes", "No"}) {
        Job = JobRecord{};
        BeginFit();
        Job.ParamText.fill("");
        AddTurned(90);
        Open();
        Headless.OnQuestion = [answer](const DialogShown&) -> std::optional<std::string> {
            UnloadWindow("FormTrafoBerechnung");
            return answer;
        };
        const std::uint64_t before = CalculationWindow.Started;
        Calculate();
        EXPECT_FALSE(IsLoaded("FormTrafoBerechnung"));
        EXPECT_EQ(CalculationWindow.Started, before + 1);
        EXPECT_EQ(::Run.WaitPointers, 0);
        Open();
        EXPECT_TRUE(trafoWindow.BtnCalculate.Enabled);
        UnloadWindow("FormTrafoBerechnung");
    }
}

TEST_F(GimbalLock, AnAngleTypedWhileACalculationRunsAsksForOneMoreBehindIt) {
    AddTurned(20, 0.05);
    Open();
    bool typed = false;
    Answer("Yes");
    Headless.OnYield = [&typed] {
        if (typed) return;
        typed = true;
        UserSetText(trafoWindow.TextRotY, "90");
    };
    Calculate();
    Headless.OnYield = nullptr;
    EXPECT_TRUE(typed);
    EXPECT_EQ(Questions(), 1U);
    EXPECT_EQ(CalculationWindow.Started, 2U);
    EXPECT_EQ(trafoWindow.CheckRotX.Value, 0);
    EXPECT_FALSE(CalculationWindow.Running);
}

TEST_F(GimbalLock, MonteCarloRunsOfBothCalculationsShowTheirSpreadOnce) {
    AddTurned(90);
    Settings.SigmaX = Settings.SigmaY = Settings.SigmaZ = 0.01;
    Settings.MonteCarloRuns = 20;
    Open();
    MonteCarlo.MonteCarloOn = kTrue;
    Answer("Yes");
    Calculate();
    EXPECT_TRUE(IsLoaded("FormTrafoDetails"));
    EXPECT_TRUE(DetailsWindow.Shown.HasSpread);
    EXPECT_EQ(DetailsWindow.Shown.Spread[kRotX], 0) << "held in the second";
    EXPECT_GT(DetailsWindow.Shown.Spread[kRotZ], 0);
}

TEST_F(GimbalLock, AYesBehindTheSecondSolutionForTheClipboardEndsWithThatCalculation) {
    AddTurned(89.9);
    Settings.ClipboardValue = 4;  // shows the second solution before it writes its line
    Open();
    Answer("No");   // 89.9 as calculated
    Answer("Yes");  // 90.1, its second solution
    Calculate();
    EXPECT_EQ(Questions(), 2U);
    EXPECT_EQ(CalculationWindow.Started, 2U);
    EXPECT_EQ(trafoWindow.CheckRotX.Value, 0);
    EXPECT_NEAR(Job.RotX, 0, 1e-12);
    // The line is that of the second calculation: shift and negated rotations of the solution.
    EXPECT_EQ(Headless.Clipboard, "100.000\t200.000\t300.000\t0.0000\t-89.9000\t0.0000\t");
    EXPECT_LT(LargestMiss(), 1e-6);
}
