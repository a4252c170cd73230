// Undo and redo of use, norm and parameters, by the commands and controls of the windows.
#include "engine/undo.h"

#include <algorithm>

#include "core/changes.h"
#include "core/desktop_defaults.h"
#include "core/form_units.h"
#include "core/job_file.h"
#include "core/job_tolerance.h"
#include "engine/calculation_job.h"
#include "engine/norm_table.h"

using namespace corvinade;

namespace {

FormTrafoBerechnung& w = TrafoWindow;

class UndoOfChoices : public CalculationJob {
protected:
    UndoOfChoices() { AddPairs(8); }
    static void Back() { UserClick(Main.MenuEditUndo); }
    static void Again() { UserClick(Main.MenuEditRedo); }
    static std::size_t OutOfUse() {
        return static_cast<std::size_t>(std::count(Job.UseFlags.begin() + 1, Job.UseFlags.end(), 0));
    }
    // What Save would write.
    static std::string SavedBytes() { return JobBytes(Job, Main.ComboSaveView.Items); }
    // The window shows deviations alone, a row a point.
    static void OpenWithDeviations() {
        Open();
        UserSetValue(w.CheckMeasurement, 0);
        UserSetValue(w.CheckObject, 0);
    }
    static void TurnDeviation(int pair) {
        LookAt(w.Tabelle.Grid);
        UserDblClickCell(w.Tabelle, pair, kColUseX);
    }
};

}  // namespace

TEST_F(UndoOfChoices, NothingIsOfferedBeforeTheFirstChange) {
    OpenWithDeviations();
    EXPECT_FALSE(Main.MenuEditUndo.Enabled);
    EXPECT_FALSE(Main.MenuEditRedo.Enabled);
    EXPECT_EQ(Main.MenuEditUndo.Text, "&Undo");
}

TEST_F(UndoOfChoices, AUseCellComesBackWithItsCellAndGoesAgain) {
    OpenWithDeviations();
    const auto before = Job.UseFlags;
    TurnDeviation(2);
    const auto after = Job.UseFlags;
    ASSERT_NE(before, after);
    EXPECT_EQ(Main.MenuEditUndo.Text, "&Undo Use of Points");
    LookAt(w.Tabelle.Grid);
    const std::string out = CellText(w.Tabelle.Grid, 2, kColUseX);
    Back();
    EXPECT_EQ(Job.UseFlags, before);
    LookAt(w.Tabelle.Grid);
    EXPECT_NE(CellText(w.Tabelle.Grid, 2, kColUseX), out);
    EXPECT_FALSE(Main.MenuEditUndo.Enabled);
    EXPECT_EQ(Main.MenuEditRedo.Text, "&Redo Use of Points");
    Again();
    EXPECT_EQ(Job.UseFlags, after);
    EXPECT_FALSE(Main.MenuEditRedo.Enabled);
}

TEST_F(UndoOfChoices, ANewStepEndsWhatCouldBeRedone) {
    OpenWithDeviations();
    TurnDeviation(1);
    TurnDeviation(2);
    Back();
    UserSetValue(w.OptionL1, 1);
    EXPECT_FALSE(Main.MenuEditRedo.Enabled);
    EXPECT_EQ(Main.MenuEditUndo.Text, "&Undo Norm");
    EXPECT_EQ(OutOfUse(), 1u);
}

TEST_F(UndoOfChoices, TheNormIsThatOfBeforeInJobAndWindow) {
    Open();
    UserSetValue(w.OptionL1, 1);
    ASSERT_FALSE(IsLeastSquares(NormOfJob()));
    Back();
    EXPECT_TRUE(IsLeastSquares(NormOfJob()));
    EXPECT_EQ(w.OptionL2.Value, 1);
    EXPECT_EQ(w.OptionL1.Value, 0);
    Again();
    EXPECT_EQ(w.OptionL1.Value, 1);
}

TEST_F(UndoOfChoices, WhatIsTypedAsToleranceIsOneStep) {
    OpenWithDeviations();
    for (const char* typed : {"0", "0.", "0.0", "0.07", "0.075"}) UserSetText(w.TextTolerance, typed);
    EXPECT_EQ(Main.MenuEditUndo.Text, "&Undo Tolerance");
    TurnDeviation(1);
    UserSetText(w.TextTolerance, "2");
    Back();
    EXPECT_EQ(ToleranceOf(Job), 0.075);
    EXPECT_EQ(w.TextTolerance.Text, "0.075");
    EXPECT_EQ(OutOfUse(), 1u);
    Back();
    EXPECT_EQ(OutOfUse(), 0u);
    EXPECT_EQ(ToleranceOf(Job), 0.075);
    Back();
    EXPECT_EQ(ToleranceOf(Job), 0);
    EXPECT_EQ(w.TextTolerance.Text, "");
    EXPECT_FALSE(Main.MenuEditUndo.Enabled);
    Again();
    Again();
    Again();
    EXPECT_EQ(ToleranceOf(Job), 2);
    EXPECT_EQ(w.TextTolerance.Text, "2");
    EXPECT_EQ(OutOfUse(), 1u);
}

TEST_F(UndoOfChoices, ParametersHeldValuesAndSeedsComeBack) {
    Open();
    UserSetValue(w.CheckTraX, 0);
    UserSetText(w.TextTraX, "1");
    UserSetText(w.TextTraX, "12");
    UserSetText(w.TextTraX, "125");
    UserSetValue(w.CheckSeedTray, 1);
    UserSetText(w.TextSeedTray, "7");
    Back();
    EXPECT_EQ(w.TextSeedTray.Text, "0");
    Back();
    EXPECT_EQ(w.CheckSeedTray.Value, 0);
    EXPECT_EQ(w.TextTraX.Text, "125");
    Back();
    EXPECT_EQ(w.CheckTraX.Value, 0);
    EXPECT_NE(w.TextTraX.Text, "125") << "three letters are one step";
    EXPECT_NE(w.TextTraX.Text, "12");
    Back();
    EXPECT_EQ(w.CheckTraX.Value, 1);
    EXPECT_FALSE(Main.MenuEditUndo.Enabled);
    for (int i = 0; i < 4; ++i) Again();
    EXPECT_EQ(w.TextTraX.Text, "125");
    EXPECT_EQ(w.TextSeedTray.Text, "7");
}

TEST_F(UndoOfChoices, APresetIsOneStep) {
    Open();
    UserSetValue(w.Option9Parameter, 1);
    ASSERT_EQ(w.CheckScaleX.Value, 1);
    Back();
    EXPECT_EQ(w.CheckScaleX.Value, 0);
    EXPECT_EQ(w.Option6Parameter.Value, 1);
    EXPECT_FALSE(Main.MenuEditUndo.Enabled);
}

TEST_F(UndoOfChoices, ACalculationIsNoStep) {
    OpenWithDeviations();
    TurnDeviation(3);
    Calculate();
    EXPECT_EQ(Main.MenuEditUndo.Text, "&Undo Use of Points");
    Back();
    EXPECT_EQ(OutOfUse(), 0u);
    EXPECT_FALSE(Main.MenuEditUndo.Enabled);
}

TEST_F(UndoOfChoices, AParameterStepOpensTheWindowThatWasClosed) {
    Open();
    UserSetValue(w.CheckTraX, 0);
    UnloadWindow("FormTrafoBerechnung");
    Back();
    ASSERT_TRUE(IsLoaded("FormTrafoBerechnung"));
    EXPECT_EQ(w.CheckTraX.Value, 1);
}

TEST_F(UndoOfChoices, AnotherJobForgetsTheSteps) {
    OpenWithDeviations();
    TurnDeviation(1);
    ASSERT_TRUE(Main.MenuEditUndo.Enabled);
    const auto flags = Job.UseFlags;
    ++::Run.JobGeneration;
    Back();
    EXPECT_EQ(Job.UseFlags, flags) << "a step of other points must not act on these";
    EXPECT_FALSE(Main.MenuEditUndo.Enabled);
}

TEST_F(UndoOfChoices, TheDirectionComesBackWithTheResultThatStood) {
    DesktopDefaults = DesktopDefaultsRecord{.ResultState = true};
    OpenWithDeviations();
    Calculate();
    const std::string before = SavedBytes();
    UserClick(w.BtnSwitchMcsOcs);
    const std::string behind = SavedBytes();
    ASSERT_TRUE(before != behind);
    EXPECT_FALSE(IsTrue(::Run.TrafoValid));
    EXPECT_EQ(Main.MenuEditUndo.Text, "&Undo Direction");
    Back();
    EXPECT_TRUE(SavedBytes() == before);
    EXPECT_EQ(w.LabelDirection.Text, "MCS -> OCS");
    EXPECT_TRUE(IsTrue(::Run.TrafoValid));
    EXPECT_FALSE(w.LabelResultState.Visible) << "the result is that of the points that are back";
    EXPECT_FALSE(Main.MenuEditUndo.Enabled);
    Again();
    EXPECT_TRUE(SavedBytes() == behind);
    EXPECT_EQ(w.LabelDirection.Text, "OCS -> MCS");
    EXPECT_FALSE(IsTrue(::Run.TrafoValid));
}

TEST_F(UndoOfChoices, AResultThatAnotherOneHasReplacedIsStored) {
    DesktopDefaults = DesktopDefaultsRecord{.ResultState = true};
    OpenWithDeviations();
    Calculate();
    const std::string before = SavedBytes();
    UserClick(w.BtnSwitchMcsOcs);
    Calculate();
    const std::string behind = SavedBytes();
    Back();
    EXPECT_TRUE(SavedBytes() == before);
    EXPECT_EQ(w.LabelResultState.Text, "stored");
    Again();
    EXPECT_TRUE(SavedBytes() == behind);
}

TEST_F(UndoOfChoices, StepsBeforeAnotherDirectionGoOnBeingUndone) {
    OpenWithDeviations();
    const std::string before = SavedBytes();
    TurnDeviation(1);
    UserClick(w.BtnSwitchMcsOcs);
    TurnDeviation(2);
    const std::string behind = SavedBytes();
    for (int i = 0; i < 3; ++i) Back();
    EXPECT_TRUE(SavedBytes() == before);
    EXPECT_FALSE(Main.MenuEditUndo.Enabled);
    for (int i = 0; i < 3; ++i) Again();
    EXPECT_TRUE(SavedBytes() == behind);
}

TEST_F(UndoOfChoices, UnitsComeBackAndHeldTextsToTheirLastDigit) {
    Open();
    UserSetValue(w.CheckTraX, 0);
    UserSetText(w.TextTraX, "100.123456789");
    Calculate();
    const std::string before = SavedBytes();
    const double factor = Units.LengthFactor;
    ShowWindow("FormUnits");
    for (std::size_t i = 0; i < UnitsWindow.ComboLength.Items.size(); ++i)
        if (UnitsWindow.ComboLength.Items[i] == "inch")
            UserSetIndex(UnitsWindow.ComboLength, static_cast<int>(i));
    UserSetIndex(UnitsWindow.ComboDigitLength, 1);
    UserClick(UnitsWindow.BtnOK);
    ASSERT_EQ(Job.LengthUnitName, "inch");
    const std::string behind = SavedBytes(), text = w.TextTraX.Text;
    EXPECT_EQ(Main.MenuEditUndo.Text, "&Undo Units");
    Back();
    EXPECT_TRUE(SavedBytes() == before);
    EXPECT_EQ(w.TextTraX.Text, "100.123456789");
    EXPECT_EQ(Units.LengthFactor, factor);
    EXPECT_EQ(Main.MenuEditUndo.Text, "&Undo Parameters");
    Again();
    EXPECT_TRUE(SavedBytes() == behind);
    EXPECT_EQ(w.TextTraX.Text, text);
}

TEST_F(UndoOfChoices, APointSetThatIsTooLargeToBeKeptEndsTheStepsAndSaysSo) {
    AddPairs(400'000);
    OpenWithDeviations();
    UserSetValue(w.OptionL1, 1);
    ASSERT_TRUE(Main.MenuEditUndo.Enabled);
    UserClick(w.BtnSwitchMcsOcs);
    EXPECT_FALSE(Main.MenuEditUndo.Enabled);
    EXPECT_EQ(Main.MenuEditUndo.Text, "&Undo (too many points to keep those of before)");
    TurnDeviation(1);
    EXPECT_EQ(Main.MenuEditUndo.Text, "&Undo Use of Points") << "what is done from here on can be undone";
}

TEST_F(UndoOfChoices, TwoHundredStepsAreKept) {
    OpenWithDeviations();
    for (int i = 0; i < 205; ++i) TurnDeviation(1 + i % 8);
    int steps = 0;
    while (Main.MenuEditUndo.Enabled && steps < 300) {
        Back();
        ++steps;
    }
    EXPECT_EQ(steps, 200);
    // The first five turns stay: those of points 1 to 5.
    EXPECT_EQ(OutOfUse(), 5u);
}

TEST_F(UndoOfChoices, StepsOfManyPointsAreBoundedInMemory) {
    AddPairs(400'000);
    Open();
    for (int i = 0; i < 6; ++i) {
        const std::int16_t flag = i % 2 == 0 ? 0 : 1;
        std::fill(Job.UseFlags.begin() + 1, Job.UseFlags.end(), flag);
        Dispatch([] { Changed(What::Use); });
    }
    std::size_t bytes = 0;
    for (const auto& step : Undo.Steps) bytes += step.Use.size() * sizeof(UseTurn);
    EXPECT_LE(bytes, kUndoBytes);
    EXPECT_GT(Undo.Steps.size(), 1u);
    Back();
    EXPECT_EQ(OutOfUse(), Job.UseFlags.size() - 1);
}
