// Values that the user holds parameters at: as typed, in whatever unit, from one calculation to the next.
#include "core/notes.h"
#include "engine/adjustment.h"
#include "engine/calculation_job.h"
#include "engine/calculation_window.h"
#include "engine/field_number.h"
#include "engine/selection.h"
#include "engine/trafo_window.h"

using namespace corvinade;

namespace {

class HeldValues : public CalculationJob {
protected:
    static void AddPoses() {
        Job.RobotABC = Matrix(Job.Pairs(), 3);
        for (int i = 1; i <= Job.Pairs(); ++i)
            for (int k = 1; k <= 3; ++k) Job.RobotABC(i, k) = 2 * NextNumber();
    }
};

}  // namespace

TEST_F(HeldValues, AUnitChangedKeepsTheValueThatTheUserHasJustTyped) {
    AddPairs();
    Open();
    Calculate();
    UserSetValue(trafoWindow.CheckTraZ, 0);
    UserSetText(trafoWindow.TextTraZ, "5");
    UserSetValue(trafoWindow.CheckRotX, 0);
    UserSetText(trafoWindow.TextRotX, "9");
    Job.LengthUnitName = "meter";
    Job.AngleUnitName = "grad (gon)";
    RhoFestlegung();
    CalculationWindow_UnitsChanged();
    Calculate();
    EXPECT_NEAR(Job.TraZ, 5, 1e-12);
    EXPECT_NEAR(Job.RotX, 9 * kPi / 180, 1e-14);
}

TEST_F(HeldValues, AUnitChangedThereAndBackLosesNoDigits) {
    AddPairs();
    Open();
    UserSetValue(trafoWindow.CheckTraZ, 0);
    UserSetText(trafoWindow.TextTraZ, "0.3217");
    UserSetValue(trafoWindow.CheckSeedTrax, 1);
    UserSetText(trafoWindow.TextSeedTrax, "12.34567");
    UserSetValue(trafoWindow.CheckRotX, 0);
    UserSetText(trafoWindow.TextRotX, "-0 30 0.5");
    for (const char* length : {"meter", "inch", "feet", "millimeter"}) {
        Job.LengthUnitName = length;
        Job.AngleUnitName = std::string(length) == "millimeter" ? "degree" : kDegreeMinuteSecond;
        RhoFestlegung();
        CalculationWindow_UnitsChanged();
        TakeSelection();
        EXPECT_NEAR(ParameterFromText(kTraZ, Job.ParamText[kTraZ]), 0.3217, 1e-12) << length;
        EXPECT_NEAR(ParameterFromText(kTraX, trafoWindow.TextSeedTrax.Text), 12.34567, 1e-12) << length;
        EXPECT_NEAR(ParameterFromText(kRotX, Job.ParamText[kRotX]), -(0.5 + 0.5 / 3600) * kPi / 180, 1e-14)
            << length;
    }
}

TEST_F(HeldValues, TextsThatAreNoNumbersDoNotStopAChangeOfUnits) {
    AddPairs();
    Open();
    for (Control* const box : {&trafoWindow.CheckTraY, &trafoWindow.CheckTraZ, &trafoWindow.CheckRotX})
        UserSetValue(*box, 0);
    UserSetText(trafoWindow.TextTraY, "none");
    UserSetText(trafoWindow.TextRotX, "10 - 30");
    UserSetText(trafoWindow.TextTraZ, "300");
    Job.LengthUnitName = "meter";
    RhoFestlegung();
    CalculationWindow_UnitsChanged();
    EXPECT_EQ(trafoWindow.TextTraY.Text, "none");
    EXPECT_EQ(trafoWindow.TextRotX.Text, "10 - 30");
    EXPECT_EQ(trafoWindow.TextTraZ.Text, "0.300");
    EXPECT_EQ(Main.StatusBar_8.Text, "meter");
}

TEST_F(HeldValues, TextsThatAreNoNumbersAreWarnedOf) {
    AddPairs();
    Open();
    UserSetValue(trafoWindow.CheckTraY, 0);
    UserSetText(trafoWindow.TextTraY, "abc");
    UserSetValue(trafoWindow.CheckRotZ, 0);
    UserSetText(trafoWindow.TextRotZ, "5.5.5");
    Calculate();
    EXPECT_EQ(Job.TraY, 0);
    EXPECT_NEAR(Job.RotZ, 5.5 * kPi / 180, 1e-14);
    std::vector<std::string> texts;
    for (const Note& note : Notes.List)
        if (note.Code == NoteCode::HeldText) texts.push_back(note.Text);
    EXPECT_EQ(texts,
              (std::vector<std::string>{"Tra y is held at \"abc\", which is no number and counts as 0",
                                        "Rot z is held at \"5.5.5\", which is no number and counts as 5.5"}));
    for (const char* text : {"7", "7,5", "-1.25e1", "", "0"}) {
        UserSetText(trafoWindow.TextTraY, text);
        UserSetText(trafoWindow.TextRotZ, "30");
        Calculate();
        for (const Note& note : Notes.List) EXPECT_NE(note.Code, NoteCode::HeldText) << note.Text;
    }
}

TEST_F(HeldValues, StartValuesThatAreNoNumbersAreWarnedOf) {
    const auto texts = [] {
        std::vector<std::string> found;
        for (const Note& note : Notes.List)
            if (note.Code == NoteCode::HeldText) found.push_back(note.Text);
        return found;
    };
    AddPairs();
    Open();
    UserSetValue(trafoWindow.CheckSeedTrax, 1);
    UserSetText(trafoWindow.TextSeedTrax, "1O0");
    UserSetText(trafoWindow.TextSeedTray, "no start of its own");
    Calculate();
    EXPECT_EQ(texts(),
              std::vector<std::string>{"Tra x starts from \"1O0\", which is no number and counts as 1"});
    UserSetText(trafoWindow.TextSeedTrax, "100");
    Calculate();
    EXPECT_EQ(texts(), std::vector<std::string>{});
}

TEST_F(HeldValues, AHeldValueWithMoreDigitsThanShownIsHeldInEveryCalculation) {
    AddPairs();
    Open();
    UserSetValue(trafoWindow.Option7Parameter, 1);
    UserSetValue(trafoWindow.CheckTraX, 0);
    UserSetText(trafoWindow.TextTraX, "99.12345");
    UserSetValue(trafoWindow.CheckRotY, 0);
    UserSetText(trafoWindow.TextRotY, "20.000012");
    UserSetValue(trafoWindow.CheckScaleXYZ, 0);
    UserSetText(trafoWindow.TextScaleXYZ, "1.0000004");
    for (int run = 1; run <= 3; ++run) {
        Calculate();
        EXPECT_NEAR(Job.TraX, 99.12345, 1e-12);
        EXPECT_NEAR(Job.RotY, 20.000012 * kPi / 180, 1e-14);
        EXPECT_NEAR(Job.ScaleX, 1.0000004, 1e-15);
    }
    UserSetText(trafoWindow.TextTraX, "99");
    Calculate();
    EXPECT_EQ(trafoWindow.TextTraX.Text, "99.000") << "shown as all lengths are where no digit is lost";
}

TEST_F(HeldValues, AHeldAngleBelowOneDegreeKeepsItsSign) {
    AddPairs();
    Job.AngleUnitName = kDegreeMinuteSecond;
    RhoFestlegung();
    Open();
    UserSetValue(trafoWindow.CheckRotX, 0);
    UserSetText(trafoWindow.TextRotX, "-0 30 0");
    Calculate();
    Calculate();
    EXPECT_NEAR(Job.RotX, -0.5 * kPi / 180, 1e-14);
}

TEST_F(HeldValues, AHeldFieldWithTheWordOfAFloatingOneIsHeldAtZero) {
    AddPairs();
    Open();
    UserSetValue(trafoWindow.CheckTraX, 0);
    UserSetText(trafoWindow.TextTraX, "float");
    Calculate();
    EXPECT_EQ(Calculation.nFloat, 5);
    EXPECT_EQ(Job.TraX, 0);
}

TEST_F(HeldValues, AJobWithAHeldToolVectorComesBackWithIt) {
    AddPairs(8);
    AddPoses();
    Open();
    UserSetValue(trafoWindow.CheckUseABC, 1);
    Calculate();
    Calculate();
    UserSetValue(trafoWindow.CheckUseABC, 0);
    UserSetText(trafoWindow.TextRvec_x, "12");
    UserSetText(trafoWindow.TextRvec_y, "0");
    UserSetText(trafoWindow.TextRvec_z, "-5");
    Calculate();
    const double x = Job.TraX;
    EXPECT_NEAR(Job.RDist, 13, 1e-12) << "the length of the vector that is held";
    EXPECT_EQ(trafoWindow.TextRDist.Text, "13.000");
    UnloadWindow("FormTrafoBerechnung");

    CalculationWindow = {};  // a new program that has opened the job
    Job.TraX = 0;
    myButtonCalculate();
    EXPECT_NEAR(Job.TraX, x, 1e-9) << "without the window";
    Job.TraX = 0;
    Open();
    Calculate();
    EXPECT_NEAR(Job.TraX, x, 1e-9);
    EXPECT_EQ(Job.Rvec_z, -5);
}

TEST_F(HeldValues, AJobWithoutToolVectorDoesNotInheritThatOfTheJobBefore) {
    AddPairs(8, 0);
    CalculationWindow.UseABCActive = kTrue;
    Job.ParamText.fill(kNotUsed);
    for (std::size_t k = 1; k <= 6; ++k) Job.ParamText[k] = kFloat;
    Job.ParamText[kRDist] = "50";
    Open();
    EXPECT_FALSE(IsTrue(CalculationWindow.UseABCActive));
    TakeSelection();
    EXPECT_TRUE(Selection.RDistShown);
}

TEST_F(HeldValues, TheLengthOfTheToolVectorIsShownInTheLengthUnit) {
    AddPairs(8);
    Job.LengthUnitName = "meter";
    Job.LengthDigits = 6;
    RhoFestlegung();
    AddPoses();
    Open();
    UserSetValue(trafoWindow.CheckUseABC, 1);
    Calculate();
    EXPECT_EQ(trafoWindow.TextRDist.Text, ShownLength(Job.RDist));
    EXPECT_EQ(trafoWindow.TextRvec_x.Text, ShownLength(Job.Rvec_x));
}

TEST_F(HeldValues, AHeldAngleBeginsInTheTripleThatItBelongsTo) {
    AddPairs();
    Open();
    UserSetValue(trafoWindow.CheckRotY, 0);
    UserSetText(trafoWindow.TextRotY, "20");
    Calculate();
    EXPECT_LE(Adjustment.Iterations, 5);
    EXPECT_NEAR(Job.RotX * 180 / kPi, 10, 0.1);
    EXPECT_NEAR(Job.RotZ * 180 / kPi, 30, 0.1);
    UserSetText(trafoWindow.TextRotY, "160");
    Calculate();
    EXPECT_LE(Adjustment.Iterations, 5) << "the other triple of the same rotation";
    EXPECT_NEAR(Job.RotX * 180 / kPi, 10, 0.1) << "the result stands in the nicer one";
}

TEST_F(HeldValues, HeldValuesOfAClosedWindowKeepTheirSizeInOtherUnits) {
    AddPairs();
    Open();
    UserSetValue(trafoWindow.CheckTraZ, 0);
    UserSetText(trafoWindow.TextTraZ, "290");
    UserSetValue(trafoWindow.CheckRotX, 0);
    UserSetText(trafoWindow.TextRotX, "9");
    Calculate();
    UnloadWindow("FormTrafoBerechnung");
    ShowWindow("FormUnits");
    UserSetIndex(*FindControl(*FindWindow("FormUnits"), "ComboLength"), 1);
    UserSetIndex(*FindControl(*FindWindow("FormUnits"), "ComboAngle"), 6);
    UserClick(*FindControl(*FindWindow("FormUnits"), "BtnOK"));
    EXPECT_EQ(Job.ParamText[kTraZ], "0.290");
    EXPECT_EQ(Job.ParamText[kRotX], "9");
    EXPECT_EQ(Job.ParamText[kTraX], "float");
    Open();
    EXPECT_EQ(trafoWindow.TextTraZ.Text, "0.290");
    Calculate();
    EXPECT_NEAR(Job.TraZ, 290, 1e-9);
    EXPECT_NEAR(Job.RotX, 9 * kPi / 180, 1e-14);
}

TEST_F(HeldValues, CommasAreDecimalsWhereTheSystemHasThem) {
    Headless.Decimal = ',';
    AddPairs(6, 0);
    Open();
    UserSetValue(trafoWindow.CheckTraX, 0);
    UserSetText(trafoWindow.TextTraX, "99,5");
    UserSetValue(trafoWindow.CheckRotX, 0);
    UserSetText(trafoWindow.TextRotX, "10 0 1,5");
    Calculate();
    EXPECT_EQ(Job.TraX, 99.5);
    EXPECT_EQ(trafoWindow.TextTraX.Text, "99,500");
    EXPECT_NEAR(Job.RotX, (10 + 1.5 / 3600) * kPi / 180, 1e-14);
    Calculate();
    EXPECT_EQ(Job.TraX, 99.5);
    EXPECT_NEAR(Job.RotX, (10 + 1.5 / 3600) * kPi / 180, 1e-14);
    UserClick(trafoWindow.BtnSEED);
    EXPECT_EQ(trafoWindow.TextSeedTrax.Text, "99,500");
}

TEST_F(HeldValues, AJobFromASystemWithTheOtherDelimiterHoldsTheSameValues) {
    AddPairs(6, 0);
    for (const auto& [system, text] : {std::pair{'.', "99,5"}, {',', "99.5"}}) {
        SCOPED_TRACE(text);
        Headless.Decimal = system;
        Job.ParamText = {"",  text, "float", "float", "float", "float", "float", "1",      "1",
                         "1", "1",  "0",     "0",     "0",     "0",     "0",     kNotUsed, "0"};
        Open();
        Calculate();
        EXPECT_EQ(Job.TraX, 99.5);
        UnloadWindow("FormTrafoBerechnung");
    }
}

TEST_F(HeldValues, AnAngleWithBlanksAroundItIsItself) {
    AddPairs(6, 0);
    Open();
    UserSetValue(trafoWindow.CheckRotX, 0);
    for (const char* text : {"9", " 9", "9 ", "  9  "}) {
        UserSetText(trafoWindow.TextRotX, text);
        Calculate();
        EXPECT_NEAR(Job.RotX * 180 / kPi, 9, 1e-12) << '"' << text << '"';
    }
}

TEST_F(HeldValues, AUnitChangedInsideALoopOfFitsLeavesTheValueThatItBeganWith) {
    for (Control* const norm : {&trafoWindow.OptionL1, &trafoWindow.OptionLoo}) {
        AddPairs(8, 0.5);
        if (!IsLoaded("FormTrafoBerechnung")) Open();
        UserSetValue(*norm, 1);
        UserSetValue(trafoWindow.CheckTraZ, 0);
        UserSetText(trafoWindow.TextTraZ, "290");
        int yields = 0;
        Headless.OnYield = [&yields] {
            if (++yields != 8) return;
            Job.LengthUnitName = "meter";
            RhoFestlegung();
            CalculationWindow_UnitsChanged();
        };
        Calculate();
        EXPECT_GT(yields, 8);
        EXPECT_NEAR(Job.TraZ, 290, 1e-9);
        Headless.OnYield = nullptr;
        Job.LengthUnitName = "millimeter";
        RhoFestlegung();
        CalculationWindow_UnitsChanged();
    }
}
