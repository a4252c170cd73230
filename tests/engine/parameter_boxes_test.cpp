// The calculation window's choice of parameters: what boxes, presets and norms do to each other.
#include "core/settings.h"
#include "engine/calculation_job.h"
#include "engine/selection.h"
#include "engine/trafo_window.h"

using namespace corvinade;

namespace {

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
    EXPECT_EQ(trafoWindow.Option6Parameter.Value, 1);
    EXPECT_EQ(trafoWindow.Option12.Value, 0);
    for (std::size_t i = 1; i < Job.UseFlags.size(); ++i) EXPECT_EQ(Job.UseFlags[i], 1);
    for (const Control* text :
         {&trafoWindow.TextXY, &trafoWindow.TextAzimuth, &trafoWindow.TextZtoXY, &trafoWindow.TextRDist}) {
        EXPECT_EQ(text->Text, "not used");
        EXPECT_FALSE(text->Enabled);
    }
    for (const Control* text : {&trafoWindow.TextScaleX, &trafoWindow.TextScaleY, &trafoWindow.TextScaleZ,
                                &trafoWindow.TextScaleXYZ})
        EXPECT_EQ(text->Text, "not used");
    EXPECT_TRUE(trafoWindow.TextScaleXYZ.Locked);
    for (const Control* text : {&trafoWindow.TextTraX, &trafoWindow.TextTraY, &trafoWindow.TextTraZ,
                                &trafoWindow.TextRotX, &trafoWindow.TextRotY, &trafoWindow.TextRotZ}) {
        EXPECT_EQ(text->Text, "float");
        EXPECT_FALSE(text->Enabled);
    }
    for (const Control* text : {&trafoWindow.TextRvec_x, &trafoWindow.TextRvec_y, &trafoWindow.TextRvec_z})
        EXPECT_EQ(text->Text, "not used");
    EXPECT_EQ(trafoWindow.CheckDeviation.Value, 1);
    EXPECT_FALSE(trafoWindow.BtnSTOP.Enabled);
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
    EXPECT_EQ(trafoWindow.CheckAutoRec.Value, 1);
}

TEST_F(ParameterBoxes, TheTipsTellTheSystems) {
    Open();
    EXPECT_EQ(trafoWindow.BtnSwitchMcsOcs.ToolTip,
              "Switch Transformation Direction  MCS = Cell   |   OCS = Robot");
    EXPECT_EQ(trafoWindow.LabelDirection.Text, "MCS => OCS");
    EXPECT_EQ(trafoWindow.LabelDirection.ToolTip, "Cell => Robot");
    EXPECT_EQ(trafoWindow.LabelDirection.ForeColor, 0);
}

TEST_F(ParameterBoxes, ASwitchedJobOpensInRed) {
    Job.DirectionMCStoOCS = kFalse;
    Open();
    EXPECT_EQ(trafoWindow.LabelDirection.Text, "OCS => MCS");
    EXPECT_EQ(trafoWindow.LabelDirection.ToolTip, "Robot => Cell");
    EXPECT_EQ(trafoWindow.LabelDirection.ForeColor, 0x0000FF);
    EXPECT_EQ(trafoWindow.BtnSwitchMcsOcs.BackColor, 0x0000FF);
}

TEST_F(ParameterBoxes, PresetsSetTheirBoxes) {
    Open();
    const struct {
        Control* Option;
        Numbers Floating;
    } presets[] = {
        {&trafoWindow.OptionHoldLevel, {1, 2, 3, 6}},
        {&trafoWindow.Option7Parameter, {1, 2, 3, 4, 5, 6, 10}},
        {&trafoWindow.Option9Parameter, {1, 2, 3, 4, 5, 6, 7, 8, 9}},
        {&trafoWindow.Option12, {1, 2, 3, 4, 5, 6, 7, 8, 9, 11, 12, 13}},
        {&trafoWindow.Option6Parameter, {1, 2, 3, 4, 5, 6}},
    };
    for (const auto& preset : presets) {
        UserSetValue(*preset.Option, 1);
        EXPECT_EQ(FloatingParameters(), preset.Floating);
    }
}

TEST_F(ParameterBoxes, AnOpenedJobMarksThePresetThatItStandsOn) {
    Open();
    for (Control* const option :
         {&trafoWindow.OptionHoldLevel, &trafoWindow.Option7Parameter, &trafoWindow.Option9Parameter,
          &trafoWindow.Option12, &trafoWindow.Option6Parameter}) {
        SCOPED_TRACE(option->Text);
        UserSetValue(*option, 1);
        Calculate();
        UnloadWindow("FormTrafoBerechnung");
        Open();
        EXPECT_EQ(option->Value, 1);
        int marked = 0;
        for (const Control* other :
             {&trafoWindow.OptionHoldLevel, &trafoWindow.Option6Parameter, &trafoWindow.Option7Parameter,
              &trafoWindow.Option9Parameter, &trafoWindow.Option12})
            marked += other->Value;
        EXPECT_EQ(marked, 1);
    }
}

TEST_F(ParameterBoxes, AJobThatHoldsAValueOfItsOwnStandsOnNoPreset) {
    Open();
    UserSetText(trafoWindow.TextScaleXYZ, "1.001");
    Calculate();
    UnloadWindow("FormTrafoBerechnung");
    Open();
    EXPECT_EQ(FloatingParameters().size(), 6u);
    EXPECT_EQ(trafoWindow.Option6Parameter.Value, 0);
}

TEST_F(ParameterBoxes, APresetIsNoLongerMarkedOnceItsBoxesHaveChangedAndCanBeChosenAgain) {
    Open();
    UserSetValue(trafoWindow.CheckScaleXYZ, 1);
    EXPECT_EQ(trafoWindow.Option6Parameter.Value, 0);
    UserSetValue(trafoWindow.Option6Parameter, 1);
    EXPECT_EQ(FloatingParameters(), (Numbers{1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(trafoWindow.Option6Parameter.Value, 1);
    UserSetValue(trafoWindow.CheckRotX, 0);
    EXPECT_EQ(trafoWindow.Option6Parameter.Value, 0);
}

TEST_F(ParameterBoxes, HoldLevelLeavesNoScale) {
    Open();
    UserSetValue(trafoWindow.Option9Parameter, 1);
    UserSetValue(trafoWindow.OptionHoldLevel, 1);
    for (const Control* text : {&trafoWindow.TextScaleX, &trafoWindow.TextScaleY, &trafoWindow.TextScaleZ,
                                &trafoWindow.TextScaleXYZ})
        EXPECT_EQ(text->Text, "not used");
    EXPECT_TRUE(trafoWindow.TextScaleXYZ.Locked);
    EXPECT_EQ(trafoWindow.TextRotX.Text, "0");
    EXPECT_TRUE(trafoWindow.TextRotX.Enabled);
    EXPECT_EQ(trafoWindow.TextXY.Text, "not used") << "left as the six parameters had it";
}

TEST_F(ParameterBoxes, ResetUnchecksAllBoxes) {
    Open();
    UserSetValue(trafoWindow.Option12, 1);
    UserSetValue(trafoWindow.CheckRDist, 1);
    CheckReset();
    EXPECT_EQ(Set(AllBoxes()), 0);
}

TEST_F(ParameterBoxes, ThePresetBlanksSigmasAndDeviationsButNotTheMeanErrors) {
    Open();
    trafoWindow.TextSigmaTraX.Text = trafoWindow.TextSignifikanzRDist.Text = trafoWindow.TextSx.Text =
        trafoWindow.TextMaxDevxyz.Text = "1";
    trafoWindow.TextMinDevY.Text = trafoWindow.TextMaxMinZ.Text = trafoWindow.TextSxyz.Text =
        trafoWindow.TextS0.Text = "1";
    UserSetValue(trafoWindow.Option7Parameter, 1);
    for (const Control* text :
         {&trafoWindow.TextSigmaTraX, &trafoWindow.TextSignifikanzRDist, &trafoWindow.TextSx,
          &trafoWindow.TextMaxDevxyz, &trafoWindow.TextMinDevY, &trafoWindow.TextMaxMinZ})
        EXPECT_EQ(text->Text, "");
    EXPECT_EQ(trafoWindow.TextSxyz.Text, "1");
    EXPECT_EQ(trafoWindow.TextS0.Text, "1");
}

TEST_F(ParameterBoxes, ThePresetsOfNineAndTwelveDoNotAskWhetherTheyAreSelected) {
    Open();
    trafoWindow.Option9Parameter.Value = 0;
    FormTrafoBerechnung::Option9Parameter_Click();
    EXPECT_EQ(FloatingParameters().size(), 9u);
    FormTrafoBerechnung::Option12_Click();
    EXPECT_EQ(FloatingParameters().size(), 12u);
    trafoWindow.Option6Parameter.Value = trafoWindow.Option7Parameter.Value =
        trafoWindow.OptionHoldLevel.Value = 0;
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
    trafoWindow.TextTraX.Text = "17.250";
    UserSetValue(trafoWindow.CheckTraX, 0);
    EXPECT_EQ(trafoWindow.TextTraX.Text, "17.250");
}

TEST_F(ParameterBoxes, SingleScalesExcludeTheCommonOne) {
    Open();
    UserSetValue(trafoWindow.Option7Parameter, 1);
    EXPECT_EQ(trafoWindow.TextScaleXYZ.Text, "float");
    EXPECT_TRUE(trafoWindow.TextScaleXYZ.Locked);
    EXPECT_TRUE(trafoWindow.TextScaleXYZ.Enabled) << "locked and not disabled, so that it can be copied";
    EXPECT_EQ(trafoWindow.TextScaleXYZ.ForeColor, QbColor(8));
    EXPECT_EQ(trafoWindow.TextScaleX.Text, "not used");
    UserSetValue(trafoWindow.CheckScaleY, 1);
    EXPECT_EQ(trafoWindow.CheckScaleXYZ.Value, 0);
    EXPECT_EQ(trafoWindow.TextScaleY.Text, "float");
    EXPECT_TRUE(trafoWindow.TextScaleY.Locked);
    EXPECT_EQ(trafoWindow.TextScaleY.ForeColor, QbColor(8));
    EXPECT_EQ(trafoWindow.TextScaleXYZ.Text, "not used");
    EXPECT_TRUE(trafoWindow.TextScaleXYZ.Locked);
    UserSetValue(trafoWindow.CheckScaleY, 0);
    EXPECT_EQ(trafoWindow.TextScaleY.Text, "1");
    EXPECT_FALSE(trafoWindow.TextScaleY.Locked);
    EXPECT_EQ(trafoWindow.TextScaleY.ForeColor, QbColor(0));
    UserSetValue(trafoWindow.CheckScaleX, 1);
    UserSetValue(trafoWindow.CheckScaleXYZ, 1);
    EXPECT_EQ(trafoWindow.CheckScaleX.Value, 0);
    for (const Control* text : {&trafoWindow.TextScaleX, &trafoWindow.TextScaleY, &trafoWindow.TextScaleZ}) {
        EXPECT_EQ(text->Text, "not used");
        EXPECT_TRUE(text->Locked);
    }
    UserSetValue(trafoWindow.CheckScaleXYZ, 0);
    EXPECT_EQ(trafoWindow.TextScaleXYZ.Text, "1");
    EXPECT_FALSE(trafoWindow.TextScaleXYZ.Locked);
    EXPECT_EQ(trafoWindow.TextScaleXYZ.ForeColor, QbColor(0));
    EXPECT_EQ(trafoWindow.TextScaleZ.Text, "not used");
}

TEST_F(ParameterBoxes, TheAzimuthFloatsOnlyWithTheAngleOfZToThePlane) {
    Open();
    UserSetValue(trafoWindow.CheckAzimuth, 1);
    EXPECT_EQ(trafoWindow.CheckZtoXY.Value, 1);
    UserSetValue(trafoWindow.CheckZtoXY, 0);
    EXPECT_EQ(trafoWindow.CheckAzimuth.Value, 0);
    UserSetValue(trafoWindow.CheckZtoXY, 1);
    EXPECT_EQ(trafoWindow.CheckAzimuth.Value, 0);
}

TEST_F(ParameterBoxes, DistanceAndRVectorExcludeEachOther) {
    Open();
    UserSetValue(trafoWindow.CheckRDist, 1);
    EXPECT_FALSE(trafoWindow.CheckUseABC.Enabled);
    EXPECT_EQ(trafoWindow.TextRDist.Text, "float");
    EXPECT_TRUE(trafoWindow.CheckSeedRdist.Enabled);
    EXPECT_TRUE(trafoWindow.TextSeedRdist.Enabled);
    EXPECT_FALSE(IsTrue(CalculationWindow.UseABCActive));
    for (const int parameter : {kRvecX, kRvecY, kRvecZ}) {
        EXPECT_EQ(RowOf(parameter).Text->Text, "not used");
        EXPECT_FALSE(RowOf(parameter).Text->Enabled);
        EXPECT_FALSE(RowOf(parameter).SeedCheck->Enabled);
    }
    UserSetValue(trafoWindow.CheckRDist, 0);
    EXPECT_TRUE(trafoWindow.CheckUseABC.Enabled);
    EXPECT_FALSE(trafoWindow.CheckRDataKnown.Enabled);
    EXPECT_EQ(trafoWindow.TextRDist.Text, "0");

    UserSetValue(trafoWindow.OptionL1, 1);
    UserSetValue(trafoWindow.CheckUseABC, 1);
    EXPECT_FALSE(trafoWindow.CheckRDist.Enabled);
    EXPECT_TRUE(IsTrue(CalculationWindow.UseABCActive));
    EXPECT_EQ(trafoWindow.TextRDist.Text, "not used");
    EXPECT_FALSE(trafoWindow.TextRDist.Enabled);
    EXPECT_FALSE(trafoWindow.OptionL1.Enabled);
    EXPECT_FALSE(trafoWindow.OptionLoo.Enabled);
    EXPECT_EQ(trafoWindow.OptionL1.Value, 0);
    EXPECT_EQ(trafoWindow.OptionL2.Value, 1);
    EXPECT_EQ(Job.NormType, 2);
    EXPECT_FALSE(trafoWindow.BtnSwitchMcsOcs.Enabled);
    EXPECT_FALSE(trafoWindow.CheckSeedRdist.Enabled);
    for (const int parameter : {kRvecX, kRvecY, kRvecZ}) {
        EXPECT_EQ(RowOf(parameter).Text->Text, "float");
        EXPECT_TRUE(RowOf(parameter).Text->Locked);
        EXPECT_TRUE(RowOf(parameter).SeedCheck->Enabled);
    }
    UserSetValue(trafoWindow.CheckUseABC, 0);
    EXPECT_TRUE(trafoWindow.CheckRDist.Enabled);
    EXPECT_TRUE(IsTrue(CalculationWindow.UseABCActive)) << "only the distance takes it back";
    for (const int parameter : {kRvecX, kRvecY, kRvecZ}) {
        EXPECT_EQ(RowOf(parameter).Text->Text, "0");
        EXPECT_TRUE(RowOf(parameter).Text->Enabled);
        EXPECT_FALSE(RowOf(parameter).Text->Locked);
        EXPECT_FALSE(RowOf(parameter).SeedText->Enabled);
    }
    UserSetValue(trafoWindow.CheckRDist, 1);
    EXPECT_FALSE(IsTrue(CalculationWindow.UseABCActive));
    EXPECT_TRUE(trafoWindow.OptionL1.Enabled);
    EXPECT_TRUE(trafoWindow.BtnSwitchMcsOcs.Enabled);
}

TEST_F(ParameterBoxes, TheRVectorTurnsASwitchedJobBack) {
    Open();
    UserClick(trafoWindow.BtnSwitchMcsOcs);
    EXPECT_FALSE(IsTrue(Job.DirectionMCStoOCS));
    const double x = *Job.Start.X[1];
    UserSetValue(trafoWindow.CheckUseABC, 1);
    EXPECT_TRUE(IsTrue(Job.DirectionMCStoOCS));
    EXPECT_EQ(*Job.Target.X[1], x);
    EXPECT_EQ(trafoWindow.LabelDirection.Text, "MCS -> OCS");
}

TEST_F(ParameterBoxes, KnownPosesOpenTheirButton) {
    Open();
    UserSetValue(trafoWindow.CheckUseABC, 1);
    EXPECT_FALSE(trafoWindow.BtnLoadRData.Enabled);
    UserSetValue(trafoWindow.CheckRDataKnown, 1);
    EXPECT_TRUE(trafoWindow.BtnLoadRData.Enabled);
    UserSetValue(trafoWindow.CheckRDataKnown, 0);
    EXPECT_FALSE(trafoWindow.BtnLoadRData.Enabled);
}

TEST_F(ParameterBoxes, ASavedJobComesBackWithSlotsTwelveAndThirteenExchanged) {
    Job.ParamText.fill(kNotUsed);
    for (std::size_t k = 1; k <= 6; ++k) Job.ParamText[k] = kFloat;
    Job.ParamText[kTraZ] = "12.5";
    Job.ParamText[kAzimuth] = kFloat;
    Job.ParamText[kAngleZtoXY] = "0.25";
    Open();
    EXPECT_EQ(trafoWindow.CheckZtoXY.Value, 1);
    EXPECT_EQ(trafoWindow.TextZtoXY.Text, "float");
    EXPECT_EQ(trafoWindow.CheckAzimuth.Value, 0);
    EXPECT_EQ(trafoWindow.TextAzimuth.Text, "0.25");
    EXPECT_EQ(trafoWindow.CheckTraZ.Value, 0);
    EXPECT_EQ(trafoWindow.TextTraZ.Text, "12.5");
    EXPECT_EQ(trafoWindow.CheckRotX.Value, 1);
}

TEST_F(ParameterBoxes, TheCalculationWritesSlotsTwelveAndThirteenInTheirOrder) {
    Open();
    UserSetValue(trafoWindow.CheckAzimuth, 0);
    UserSetValue(trafoWindow.CheckZtoXY, 1);
    UserSetText(trafoWindow.TextAzimuth, "0.5");
    trafoWindow.TextAzimuth.Text = "0.5";
    TakeSelection();
    EXPECT_EQ(Job.ParamText[kAzimuth], "0.5");
    EXPECT_EQ(Job.ParamText[kAngleZtoXY], "float");
}

TEST_F(ParameterBoxes, AnglesInDegreesMinutesSecondsAreStoredAsDegrees) {
    Open();
    UserSetValue(trafoWindow.CheckRotX, 0);
    UserSetText(trafoWindow.TextRotX, "10 30 0");
    TakeSelection();
    EXPECT_EQ(Job.ParamText[kRotX], "10.5");
    EXPECT_EQ(Selection.FieldText[kRotX], "10 30 0");
}

TEST_F(ParameterBoxes, NormsOtherThanLeastSquaresHaveNoMonteCarlo) {
    Open();
    EXPECT_EQ(trafoWindow.OptionL2.Value, 1) << "a job without a norm takes least squares";
    EXPECT_EQ(Job.NormType, 2);
    UserSetValue(trafoWindow.CheckMonteCarlo, 1);
    UserSetValue(trafoWindow.OptionL1, 1);
    EXPECT_EQ(Job.NormType, 1);
    EXPECT_EQ(trafoWindow.CheckMonteCarlo.Value, 0);
    EXPECT_FALSE(trafoWindow.CheckMonteCarlo.Enabled);
    UserSetValue(trafoWindow.OptionL2, 1);
    EXPECT_TRUE(trafoWindow.CheckMonteCarlo.Enabled);
    EXPECT_EQ(trafoWindow.CheckMonteCarlo.Value, 0);
    UserSetValue(trafoWindow.OptionLoo, 1);
    EXPECT_EQ(Job.NormType, 3);
    EXPECT_FALSE(trafoWindow.CheckMonteCarlo.Enabled);
    EXPECT_EQ(trafoWindow.OptionLoo.Text, "Loo - max to min\r\n- in Betta state -");
}

TEST_F(ParameterBoxes, AJobWithAShapeHasNoOtherNormAndNoDirection) {
    Job.IsParaboloid = kTrue;
    Open();
    EXPECT_FALSE(trafoWindow.BtnSwitchMcsOcs.Enabled);
    EXPECT_FALSE(trafoWindow.OptionL1.Enabled);
    EXPECT_FALSE(trafoWindow.OptionLoo.Enabled);
    EXPECT_FALSE(trafoWindow.CheckRDist.Enabled);
}

TEST_F(ParameterBoxes, FieldsAreSelectedWholeWhenTheyGetTheFocus) {
    for (const ParameterControls& row : ParameterRows()) {
        EXPECT_TRUE(row.Text->SelectsOnFocus);
        EXPECT_TRUE(row.SeedText->SelectsOnFocus);
    }
}
