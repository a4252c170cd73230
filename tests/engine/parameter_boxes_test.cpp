// The calculation window's choice of parameters: what boxes, presets and norms do to each other.
#include "core/settings.h"
#include "engine/calculation_job.h"
#include "engine/selection.h"

using namespace corvinade;

namespace {

FormTrafoBerechnung& w = TrafoWindow;

class ParameterBoxes : public CalculationJob {
protected:
    ParameterBoxes() { AddPairs(); }

    static int Set(const std::vector<Control*>& boxes) {
        int set = 0;
        for (const Control* box : boxes) set += box->Value == 1;
        return set;
    }
    static std::vector<Control*> AllBoxes() {
        std::vector<Control*> boxes;
        for (const ParameterControls& row : ParameterRows())
            if (row.Parameter <= kRvecX) boxes.push_back(row.Check);
        return boxes;
    }
    static std::vector<int> FloatingParameters() {
        std::vector<int> floating;
        for (const ParameterControls& row : ParameterRows())
            if (row.Check->Value == 1) floating.push_back(row.Parameter);
        return floating;
    }
};

using Numbers = std::vector<int>;

}  // namespace

TEST_F(ParameterBoxes, AFreshJobStandsOnSixParametersWithAllCoordinatesInUse) {
    std::fill(Job.UseFlags.begin(), Job.UseFlags.end(), std::int16_t{0});
    Job.UseFlags[2] = 0;
    Open();
    EXPECT_EQ(FloatingParameters(), (Numbers{kTraX, kTraY, kTraZ, kRotX, kRotY, kRotZ}));
    EXPECT_EQ(w.Option6Parameter.Value, 1);
    EXPECT_EQ(w.Option12.Value, 0);
    for (std::size_t i = 1; i < Job.UseFlags.size(); ++i) EXPECT_EQ(Job.UseFlags[i], 1);
    for (const Control* text : {&w.TextXY, &w.TextAzimuth, &w.TextZtoXY, &w.TextRDist}) {
        EXPECT_EQ(text->Text, "not used");
        EXPECT_FALSE(text->Enabled);
    }
    for (const Control* text : {&w.TextScaleX, &w.TextScaleY, &w.TextScaleZ, &w.TextScaleXYZ})
        EXPECT_EQ(text->Text, "not used");
    EXPECT_TRUE(w.TextScaleXYZ.Locked);
    for (const Control* text :
         {&w.TextTraX, &w.TextTraY, &w.TextTraZ, &w.TextRotX, &w.TextRotY, &w.TextRotZ}) {
        EXPECT_EQ(text->Text, "float");
        EXPECT_FALSE(text->Enabled);
    }
    for (const Control* text : {&w.TextRvec_x, &w.TextRvec_y, &w.TextRvec_z})
        EXPECT_EQ(text->Text, "not used");
    EXPECT_EQ(w.CheckDeviation.Value, 1);
    EXPECT_FALSE(w.BtnSTOP.Enabled);
    EXPECT_EQ(Main.StatusBar_8.Text, "millimeter");
    EXPECT_EQ(Main.StatusBar_9.Text, "degree");
}

TEST_F(ParameterBoxes, AFreshJobKeepsTheFlagsWhenAnyXIsInUse) {
    std::fill(Job.UseFlags.begin(), Job.UseFlags.end(), std::int16_t{0});
    Job.UseFlags[4] = 1;
    Open();
    EXPECT_EQ(Job.UseFlags[4], 1);
    EXPECT_EQ(Job.UseFlags[1], 0);
    EXPECT_EQ(Job.UseFlags[5], 0);
}

TEST_F(ParameterBoxes, OpeningCalculatesNothing) {
    Job.AutoRecalc = kTrue;
    Open();
    EXPECT_FALSE(IsTrue(Run.TrafoValid));
    EXPECT_TRUE(IsTrue(Job.AutoRecalc));
    EXPECT_EQ(w.CheckAutoRec.Value, 1);
}

TEST_F(ParameterBoxes, TheTipsTellTheSystems) {
    Open();
    EXPECT_EQ(w.BtnSwitchMcsOcs.ToolTip, "Switch Transformation Direction  MCS = Cell   |   OCS = Robot");
    EXPECT_EQ(w.LabelDirection.Text, "MCS => OCS");
    EXPECT_EQ(w.LabelDirection.ToolTip, "Cell => Robot");
    EXPECT_EQ(w.LabelDirection.ForeColor, 0);
}

TEST_F(ParameterBoxes, ASwitchedJobOpensInRed) {
    Job.DirectionMCStoOCS = kFalse;
    Open();
    EXPECT_EQ(w.LabelDirection.Text, "OCS => MCS");
    EXPECT_EQ(w.LabelDirection.ToolTip, "Robot => Cell");
    EXPECT_EQ(w.LabelDirection.ForeColor, 0x0000FF);
    EXPECT_EQ(w.BtnSwitchMcsOcs.BackColor, 0x0000FF);
}

TEST_F(ParameterBoxes, PresetsSetTheirBoxes) {
    Open();
    const struct {
        Control* Option;
        Numbers Floating;
    } presets[] = {
        {&w.OptionHoldLevel, {1, 2, 3, 6}},
        {&w.Option7Parameter, {1, 2, 3, 4, 5, 6, 10}},
        {&w.Option9Parameter, {1, 2, 3, 4, 5, 6, 7, 8, 9}},
        {&w.Option12, {1, 2, 3, 4, 5, 6, 7, 8, 9, 11, 12, 13}},
        {&w.Option6Parameter, {1, 2, 3, 4, 5, 6}},
    };
    for (const auto& preset : presets) {
        UserSetValue(*preset.Option, 1);
        EXPECT_EQ(FloatingParameters(), preset.Floating);
    }
}

TEST_F(ParameterBoxes, AnOpenedJobMarksThePresetThatItStandsOn) {
    Open();
    for (Control* const option :
         {&w.OptionHoldLevel, &w.Option7Parameter, &w.Option9Parameter, &w.Option12, &w.Option6Parameter}) {
        SCOPED_TRACE(option->Text);
        UserSetValue(*option, 1);
        Calculate();
        UnloadWindow("FormTrafoBerechnung");
        Open();
        EXPECT_EQ(option->Value, 1);
        int marked = 0;
        for (const Control* other :
             {&w.OptionHoldLevel, &w.Option6Parameter, &w.Option7Parameter, &w.Option9Parameter, &w.Option12})
            marked += other->Value;
        EXPECT_EQ(marked, 1);
    }
}

TEST_F(ParameterBoxes, AJobThatHoldsAValueOfItsOwnStandsOnNoPreset) {
    Open();
    UserSetText(w.TextScaleXYZ, "1.001");
    Calculate();
    UnloadWindow("FormTrafoBerechnung");
    Open();
    EXPECT_EQ(FloatingParameters().size(), 6u);
    EXPECT_EQ(w.Option6Parameter.Value, 0);
}

TEST_F(ParameterBoxes, APresetIsNoLongerMarkedOnceItsBoxesHaveChangedAndCanBeChosenAgain) {
    Open();
    UserSetValue(w.CheckScaleXYZ, 1);
    EXPECT_EQ(w.Option6Parameter.Value, 0);
    UserSetValue(w.Option6Parameter, 1);
    EXPECT_EQ(FloatingParameters(), (Numbers{1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(w.Option6Parameter.Value, 1);
    UserSetValue(w.CheckRotX, 0);
    EXPECT_EQ(w.Option6Parameter.Value, 0);
}

TEST_F(ParameterBoxes, HoldLevelLeavesNoScale) {
    Open();
    UserSetValue(w.Option9Parameter, 1);
    UserSetValue(w.OptionHoldLevel, 1);
    for (const Control* text : {&w.TextScaleX, &w.TextScaleY, &w.TextScaleZ, &w.TextScaleXYZ})
        EXPECT_EQ(text->Text, "not used");
    EXPECT_TRUE(w.TextScaleXYZ.Locked);
    EXPECT_EQ(w.TextRotX.Text, "0");
    EXPECT_TRUE(w.TextRotX.Enabled);
    EXPECT_EQ(w.TextXY.Text, "not used") << "left as the six parameters had it";
}

TEST_F(ParameterBoxes, ResetUnchecksAllBoxes) {
    Open();
    UserSetValue(w.Option12, 1);
    UserSetValue(w.CheckRDist, 1);
    CheckReset();
    EXPECT_EQ(Set(AllBoxes()), 0);
}

TEST_F(ParameterBoxes, ThePresetBlanksSigmasAndDeviationsButNotTheMeanErrors) {
    Open();
    w.TextSigmaTraX.Text = w.TextSignifikanzRDist.Text = w.TextSx.Text = w.TextMaxDevxyz.Text = "1";
    w.TextMinDevY.Text = w.TextMaxMinZ.Text = w.TextSxyz.Text = w.TextS0.Text = "1";
    UserSetValue(w.Option7Parameter, 1);
    for (const Control* text : {&w.TextSigmaTraX, &w.TextSignifikanzRDist, &w.TextSx, &w.TextMaxDevxyz,
                                &w.TextMinDevY, &w.TextMaxMinZ})
        EXPECT_EQ(text->Text, "");
    EXPECT_EQ(w.TextSxyz.Text, "1");
    EXPECT_EQ(w.TextS0.Text, "1");
}

TEST_F(ParameterBoxes, ThePresetsOfNineAndTwelveDoNotAskWhetherTheyAreSelected) {
    Open();
    w.Option9Parameter.Value = 0;
    FormTrafoBerechnung::Option9Parameter_Click();
    EXPECT_EQ(FloatingParameters().size(), 9u);
    FormTrafoBerechnung::Option12_Click();
    EXPECT_EQ(FloatingParameters().size(), 12u);
    w.Option6Parameter.Value = w.Option7Parameter.Value = w.OptionHoldLevel.Value = 0;
    for (void (*const click)() :
         {FormTrafoBerechnung::Option6Parameter_Click, FormTrafoBerechnung::Option7Parameter_Click,
          FormTrafoBerechnung::OptionHoldLevel_Click}) {
        click();
        EXPECT_TRUE(FloatingParameters().empty());
    }
}

TEST_F(ParameterBoxes, APlainBoxFloatsOrHoldsItsField) {
    Open();
    for (const int parameter : {kTraX, kTraY, kTraZ, kRotX, kRotY, kRotZ, kAngleXY}) {
        SCOPED_TRACE(parameter);
        const ParameterControls& row = RowOf(parameter);
        SetValue(*row.Check, 1);
        row.SeedCheck->Value = 0;
        UserSetValue(*row.Check, 0);
        EXPECT_TRUE(row.Text->Enabled);
        EXPECT_EQ(row.Text->Text, "0");
        EXPECT_FALSE(row.SeedCheck->Enabled);
        EXPECT_FALSE(row.SeedText->Enabled);
        UserSetText(*row.Text, "12.5");
        UserSetValue(*row.Check, 1);
        EXPECT_FALSE(row.Text->Enabled);
        EXPECT_EQ(row.Text->Text, "float");
        EXPECT_TRUE(row.SeedCheck->Enabled);
        EXPECT_FALSE(row.SeedText->Enabled);
        UserSetValue(*row.SeedCheck, 1);
        EXPECT_TRUE(row.SeedText->Enabled);
        EXPECT_EQ(row.SeedText->Text, "0");
        UserSetValue(*row.Check, 0);
        EXPECT_FALSE(row.SeedText->Enabled);
        UserSetValue(*row.Check, 1);
        EXPECT_TRUE(row.SeedText->Enabled) << "its box is still set";
        UserSetValue(*row.SeedCheck, 0);
        EXPECT_FALSE(row.SeedText->Enabled);
    }
}

TEST_F(ParameterBoxes, AFieldThatShowsAResultKeepsItWhenItIsHeld) {
    Open();
    w.TextTraX.Text = "17.250";
    UserSetValue(w.CheckTraX, 0);
    EXPECT_EQ(w.TextTraX.Text, "17.250");
}

TEST_F(ParameterBoxes, SingleScalesExcludeTheCommonOne) {
    Open();
    UserSetValue(w.Option7Parameter, 1);
    EXPECT_EQ(w.TextScaleXYZ.Text, "float");
    EXPECT_TRUE(w.TextScaleXYZ.Locked);
    EXPECT_TRUE(w.TextScaleXYZ.Enabled) << "locked and not disabled, so that it can be copied";
    EXPECT_EQ(w.TextScaleXYZ.ForeColor, QbColor(8));
    EXPECT_EQ(w.TextScaleX.Text, "not used");
    UserSetValue(w.CheckScaleY, 1);
    EXPECT_EQ(w.CheckScaleXYZ.Value, 0);
    EXPECT_EQ(w.TextScaleY.Text, "float");
    EXPECT_TRUE(w.TextScaleY.Locked);
    EXPECT_EQ(w.TextScaleY.ForeColor, QbColor(8));
    EXPECT_EQ(w.TextScaleXYZ.Text, "not used");
    EXPECT_TRUE(w.TextScaleXYZ.Locked);
    UserSetValue(w.CheckScaleY, 0);
    EXPECT_EQ(w.TextScaleY.Text, "1");
    EXPECT_FALSE(w.TextScaleY.Locked);
    EXPECT_EQ(w.TextScaleY.ForeColor, QbColor(0));
    UserSetValue(w.CheckScaleX, 1);
    UserSetValue(w.CheckScaleXYZ, 1);
    EXPECT_EQ(w.CheckScaleX.Value, 0);
    for (const Control* text : {&w.TextScaleX, &w.TextScaleY, &w.TextScaleZ}) {
        EXPECT_EQ(text->Text, "not used");
        EXPECT_TRUE(text->Locked);
    }
    UserSetValue(w.CheckScaleXYZ, 0);
    EXPECT_EQ(w.TextScaleXYZ.Text, "1");
    EXPECT_FALSE(w.TextScaleXYZ.Locked);
    EXPECT_EQ(w.TextScaleXYZ.ForeColor, QbColor(0));
    EXPECT_EQ(w.TextScaleZ.Text, "not used");
}

TEST_F(ParameterBoxes, TheAzimuthFloatsOnlyWithTheAngleOfZToThePlane) {
    Open();
    UserSetValue(w.CheckAzimuth, 1);
    EXPECT_EQ(w.CheckZtoXY.Value, 1);
    UserSetValue(w.CheckZtoXY, 0);
    EXPECT_EQ(w.CheckAzimuth.Value, 0);
    UserSetValue(w.CheckZtoXY, 1);
    EXPECT_EQ(w.CheckAzimuth.Value, 0);
}

TEST_F(ParameterBoxes, DistanceAndRVectorExcludeEachOther) {
    Open();
    UserSetValue(w.CheckRDist, 1);
    EXPECT_FALSE(w.CheckUseABC.Enabled);
    EXPECT_EQ(w.TextRDist.Text, "float");
    EXPECT_TRUE(w.CheckSeedRdist.Enabled);
    EXPECT_TRUE(w.TextSeedRdist.Enabled);
    EXPECT_FALSE(IsTrue(CalculationWindow.UseABCActive));
    for (const int parameter : {kRvecX, kRvecY, kRvecZ}) {
        EXPECT_EQ(RowOf(parameter).Text->Text, "not used");
        EXPECT_FALSE(RowOf(parameter).Text->Enabled);
        EXPECT_FALSE(RowOf(parameter).SeedCheck->Enabled);
    }
    UserSetValue(w.CheckRDist, 0);
    EXPECT_TRUE(w.CheckUseABC.Enabled);
    EXPECT_FALSE(w.CheckRDataKnown.Enabled);
    EXPECT_EQ(w.TextRDist.Text, "0");

    UserSetValue(w.OptionL1, 1);
    UserSetValue(w.CheckUseABC, 1);
    EXPECT_FALSE(w.CheckRDist.Enabled);
    EXPECT_TRUE(IsTrue(CalculationWindow.UseABCActive));
    EXPECT_EQ(w.TextRDist.Text, "not used");
    EXPECT_FALSE(w.TextRDist.Enabled);
    EXPECT_FALSE(w.OptionL1.Enabled);
    EXPECT_FALSE(w.OptionLoo.Enabled);
    EXPECT_EQ(w.OptionL1.Value, 0);
    EXPECT_EQ(w.OptionL2.Value, 1);
    EXPECT_EQ(Job.NormType, 2);
    EXPECT_FALSE(w.BtnSwitchMcsOcs.Enabled);
    EXPECT_FALSE(w.CheckSeedRdist.Enabled);
    for (const int parameter : {kRvecX, kRvecY, kRvecZ}) {
        EXPECT_EQ(RowOf(parameter).Text->Text, "float");
        EXPECT_TRUE(RowOf(parameter).Text->Locked);
        EXPECT_TRUE(RowOf(parameter).SeedCheck->Enabled);
    }
    UserSetValue(w.CheckUseABC, 0);
    EXPECT_TRUE(w.CheckRDist.Enabled);
    EXPECT_TRUE(IsTrue(CalculationWindow.UseABCActive)) << "only the distance takes it back";
    for (const int parameter : {kRvecX, kRvecY, kRvecZ}) {
        EXPECT_EQ(RowOf(parameter).Text->Text, "0");
        EXPECT_TRUE(RowOf(parameter).Text->Enabled);
        EXPECT_FALSE(RowOf(parameter).Text->Locked);
        EXPECT_FALSE(RowOf(parameter).SeedText->Enabled);
    }
    UserSetValue(w.CheckRDist, 1);
    EXPECT_FALSE(IsTrue(CalculationWindow.UseABCActive));
    EXPECT_TRUE(w.OptionL1.Enabled);
    EXPECT_TRUE(w.BtnSwitchMcsOcs.Enabled);
}

TEST_F(ParameterBoxes, TheRVectorTurnsASwitchedJobBack) {
    Open();
    UserClick(w.BtnSwitchMcsOcs);
    EXPECT_FALSE(IsTrue(Job.DirectionMCStoOCS));
    const double x = *Job.Start.X[1];
    UserSetValue(w.CheckUseABC, 1);
    EXPECT_TRUE(IsTrue(Job.DirectionMCStoOCS));
    EXPECT_EQ(*Job.Target.X[1], x);
    EXPECT_EQ(w.LabelDirection.Text, "MCS -> OCS");
}

TEST_F(ParameterBoxes, KnownPosesOpenTheirButton) {
    Open();
    UserSetValue(w.CheckUseABC, 1);
    EXPECT_FALSE(w.BtnLoadRData.Enabled);
    UserSetValue(w.CheckRDataKnown, 1);
    EXPECT_TRUE(w.BtnLoadRData.Enabled);
    UserSetValue(w.CheckRDataKnown, 0);
    EXPECT_FALSE(w.BtnLoadRData.Enabled);
}

TEST_F(ParameterBoxes, ASavedJobComesBackWithSlotsTwelveAndThirteenExchanged) {
    Job.ParamText.fill(kNotUsed);
    for (std::size_t k = 1; k <= 6; ++k) Job.ParamText[k] = kFloat;
    Job.ParamText[kTraZ] = "12.5";
    Job.ParamText[kAzimuth] = kFloat;
    Job.ParamText[kAngleZtoXY] = "0.25";
    Open();
    EXPECT_EQ(w.CheckZtoXY.Value, 1);
    EXPECT_EQ(w.TextZtoXY.Text, "float");
    EXPECT_EQ(w.CheckAzimuth.Value, 0);
    EXPECT_EQ(w.TextAzimuth.Text, "0.25");
    EXPECT_EQ(w.CheckTraZ.Value, 0);
    EXPECT_EQ(w.TextTraZ.Text, "12.5");
    EXPECT_EQ(w.CheckRotX.Value, 1);
}

TEST_F(ParameterBoxes, TheCalculationWritesSlotsTwelveAndThirteenInTheirOrder) {
    Open();
    UserSetValue(w.CheckAzimuth, 0);
    UserSetValue(w.CheckZtoXY, 1);
    UserSetText(w.TextAzimuth, "0.5");
    w.TextAzimuth.Text = "0.5";
    TakeSelection();
    EXPECT_EQ(Job.ParamText[kAzimuth], "0.5");
    EXPECT_EQ(Job.ParamText[kAngleZtoXY], "float");
}

TEST_F(ParameterBoxes, AnglesInDegreesMinutesSecondsAreStoredAsDegrees) {
    Open();
    UserSetValue(w.CheckRotX, 0);
    UserSetText(w.TextRotX, "10 30 0");
    TakeSelection();
    EXPECT_EQ(Job.ParamText[kRotX], "10.5");
    EXPECT_EQ(Selection.FieldText[kRotX], "10 30 0");
}

TEST_F(ParameterBoxes, NormsOtherThanLeastSquaresHaveNoMonteCarlo) {
    Open();
    EXPECT_EQ(w.OptionL2.Value, 1) << "a job without a norm takes least squares";
    EXPECT_EQ(Job.NormType, 2);
    UserSetValue(w.CheckMonteCarlo, 1);
    UserSetValue(w.OptionL1, 1);
    EXPECT_EQ(Job.NormType, 1);
    EXPECT_EQ(w.CheckMonteCarlo.Value, 0);
    EXPECT_FALSE(w.CheckMonteCarlo.Enabled);
    UserSetValue(w.OptionL2, 1);
    EXPECT_TRUE(w.CheckMonteCarlo.Enabled);
    EXPECT_EQ(w.CheckMonteCarlo.Value, 0);
    UserSetValue(w.OptionLoo, 1);
    EXPECT_EQ(Job.NormType, 3);
    EXPECT_FALSE(w.CheckMonteCarlo.Enabled);
    EXPECT_EQ(w.OptionLoo.Text, "Loo - max to min\r\n- in Betta state -");
}

TEST_F(ParameterBoxes, AJobWithAShapeHasNoOtherNormAndNoDirection) {
    Job.IsParaboloid = kTrue;
    Open();
    EXPECT_FALSE(w.BtnSwitchMcsOcs.Enabled);
    EXPECT_FALSE(w.OptionL1.Enabled);
    EXPECT_FALSE(w.OptionLoo.Enabled);
    EXPECT_FALSE(w.CheckRDist.Enabled);
}

TEST_F(ParameterBoxes, FieldsAreSelectedWholeWhenTheyGetTheFocus) {
    for (const ParameterControls& row : ParameterRows()) {
        EXPECT_TRUE(row.Text->SelectsOnFocus);
        EXPECT_TRUE(row.SeedText->SelectsOnFocus);
    }
}
