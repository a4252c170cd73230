// The dialog of the colour scale, by its controls' names.
#include "graphics/form_color_bar.h"

#include "cli/headless.h"
#include "graphics/drawing.h"
#include "graphics/graphics_fixture.h"
#include "graphics/graphics_refresh.h"
#include "graphics/tolerance.h"
#include "graphics/view_undo.h"

using namespace corvinade;

namespace {

class ColourBarDialog : public GraphicsJob {
protected:
    ColourBarDialog() {
        FivePoints();
        OpenScreenWindow();
        ShowWindow("FormColorBar");
    }
    static Control& C(const char* name) {
        Control* control = FindControl(FormColorBar_Entry, name);
        EXPECT_NE(control, nullptr) << name;
        static Control none;
        return control != nullptr ? *control : none;
    }
    static std::string Type(const char* name, const std::string& text) {
        UserSetText(C(name), text);
        return C(name).Text;
    }
    static void Check(const char* name, int value = 1) { UserSetValue(C(name), value); }
    static ScreenRecord& State() { return findLFDFORM()->State; }
};

}  // namespace

TEST_F(ColourBarDialog, IsOpenAsTheProgramKnows) {
    EXPECT_EQ(Run.ColorBarOpen, kTrue);
    UserClose(FormColorBar_Entry);
    EXPECT_EQ(Run.ColorBarOpen, kFalse);
    UserClick(Main.MenüAnsichtToleranzenEinstellungen);
    EXPECT_TRUE(IsLoaded("FormColorBar"));
    UserEscape(FormColorBar_Entry);
    EXPECT_FALSE(IsLoaded("FormColorBar"));
    UserClick(Main.ToolbarGraphics_ColorBar);
    EXPECT_EQ(Run.ColorBarOpen, kTrue);
}

TEST_F(ColourBarDialog, ShowsTheFieldsOfTheActiveWindow) {
    ScreenWindow& window = OpenScreenWindow();
    ScreenRecord& state = window.State;
    state.AnzKlassenPos = 12;
    state.AnzKlassenNeg = 34;
    state.Max = 1.5;
    state.Min = -0.0625;
    state.showVeY = kFalse;
    state.ColorBased = "z";
    state.CS_Type = "SPH";
    state.AusserhalbTol = state.ShowOnlyUsedComponent = state.BinärModus = kTrue;
    state.OuterColor = 0x123456;
    state.GridYZ = state.ShowGridDim = kTrue;
    state.ADis = 100;
    state.BDis = 200;
    state.Cdis = 300;
    window.SetMinMaxOnChange = true;
    FormColorBar::SetFormtoVars();
    EXPECT_EQ(C("TextAnzahlTolKlassePos").Text, "12");
    EXPECT_EQ(C("VScrollAnzKlaPos").Value, 12);
    EXPECT_EQ(C("TextAnzahlTolKlasseNeg").Text, "34");
    EXPECT_EQ(C("VScrollAnzKlaNeg").Value, 34);
    EXPECT_EQ(C("TextObereGrenze").Text, "1.50");
    EXPECT_EQ(C("TextUntereGrenze").Text, "-0.0625");
    EXPECT_EQ(C("showX").Value, 1);
    EXPECT_EQ(C("showY").Value, 0);
    EXPECT_EQ(C("ShowXYZ").Value, 0);
    EXPECT_EQ(C("ColorZ").Value, 1);
    EXPECT_EQ(C("ColorABS").Value, 0);
    EXPECT_EQ(C("SPH").Value, 1);
    EXPECT_EQ(C("CART").Value, 0);
    for (const char* name : {"CheckSetMinMaxOnChange", "CheckShowOnlyUsedComponent", "CheckAusserhalbTol",
                             "CheckBinärModus", "CheckShowYZ", "CheckShowGridDim"})
        EXPECT_EQ(C(name).Value, 1) << name;
    EXPECT_EQ(C("CheckShowXY").Value, 0);
    EXPECT_EQ(C("LabelOuterColor").BackColor, 0x123456);
    EXPECT_EQ(C("TextADis").Text, "100");
    EXPECT_EQ(C("TextBDis").Text, "200");
    EXPECT_EQ(C("TextCDis").Text, "300");
}

TEST_F(ColourBarDialog, FollowsTheWindowThatBecomesActive) {
    ScreenWindow& first = *findLFDFORM();
    first.State.AnzKlassenPos = 21;
    OpenScreenWindow();
    EXPECT_EQ(C("TextAnzahlTolKlassePos").Text, "10");
    ActivateScreenWindow(first);
    EXPECT_EQ(C("TextAnzahlTolKlassePos").Text, "21");
}

TEST_F(ColourBarDialog, FillingAppliesNothing) {
    ScreenWindow& first = *findLFDFORM();
    Check("CheckAutoApply");
    first.State.CS_Type = "CYL";
    first.State.AnzKlassenPos = 21;
    ScreenWindow& second = OpenScreenWindow();
    const std::uint64_t paints = first.PaintCount + second.PaintCount;
    const int steps = first.UndoCount + second.UndoCount;
    ActivateScreenWindow(first);
    ActivateScreenWindow(second);
    EXPECT_EQ(first.PaintCount + second.PaintCount, paints);
    EXPECT_EQ(first.UndoCount + second.UndoCount, steps);
    EXPECT_EQ(first.State.AnzKlassenPos, 21);
    EXPECT_EQ(second.State.AnzKlassenPos, 10);
}

TEST_F(ColourBarDialog, LabelsFollowTheSystemOfTheComponents) {
    struct Row {
        const char* Option;
        std::array<const char*, 7> Texts;
    };
    const Row rows[] = {
        {"CYL",
         {"Show ve.R Component", "Show ve.Phi Component", "Show ve.H Component", "Show ve.R_Phi_H Component",
          "based on ve.R", "based on ve.Phi", "based on ve.H"}},
        {"SPH",
         {"Show ve.Rho Component", "Show ve.Phi Component", "Show ve.Theta Component",
          "Show ve.Rho_Phi_Theta Component", "based on ve.Rho", "based on ve.Phi", "based on ve.Theta"}},
        {"CART",
         {"Show ve.x Component", "Show ve.y Component", "Show ve.z Component", "Show ve.xyz Component",
          "based on ve.x", "based on ve.y", "based on ve.z"}}};
    const char* names[] = {"showX", "showY", "showZ", "ShowXYZ", "ColorX", "ColorY", "ColorZ"};
    for (const Row& row : rows) {
        Check(row.Option);
        for (std::size_t i = 0; i < 7; ++i) EXPECT_EQ(C(names[i]).Text, row.Texts[i]);
    }
}

TEST_F(ColourBarDialog, ApplyStoresEverythingPaintsAndKeepsTheDialog) {
    ScreenWindow& window = *findLFDFORM();
    const std::uint64_t paints = window.PaintCount;
    const int steps = window.UndoCount;
    Type("TextAnzahlTolKlassePos", "7");
    Type("TextAnzahlTolKlasseNeg", "3");
    Type("TextObereGrenze", "0.5");
    Type("TextUntereGrenze", "-0.25");
    Check("showY", 0);
    Check("ColorY");
    Check("CYL");
    for (const char* name :
         {"CheckSetMinMaxOnChange", "CheckShowOnlyUsedComponent", "CheckAusserhalbTol", "CheckBinärModus",
          "CheckShowXY", "CheckShowYZ", "CheckShowZX", "CheckShowGridDim"})
        Check(name);
    Check("CheckSetMinMaxOnChange", 0);
    Type("TextADis", "50");
    Type("TextBDis", "60.4");
    Type("TextCDis", "-70");
    EXPECT_EQ(State().AnzKlassenPos, 10);  // values take effect when they are applied
    EXPECT_EQ(window.PaintCount, paints);
    UserClick(C("BtnApply"));
    const ScreenRecord& state = window.State;
    EXPECT_EQ(state.AnzKlassenPos, 7);
    EXPECT_EQ(state.AnzKlassenNeg, 3);
    EXPECT_EQ(state.Max, 0.5);
    EXPECT_EQ(state.Min, -0.25);
    EXPECT_EQ(state.showVeX, kTrue);
    EXPECT_EQ(state.showVeY, kFalse);
    EXPECT_EQ(state.showVeZ, kTrue);
    EXPECT_EQ(state.ColorBased, "y");
    EXPECT_EQ(state.CS_Type, "CYL");
    EXPECT_EQ(state.ShowOnlyUsedComponent, kTrue);
    EXPECT_EQ(state.AusserhalbTol, kTrue);
    EXPECT_EQ(state.BinärModus, kTrue);
    EXPECT_EQ(state.GridXY, kTrue);
    EXPECT_EQ(state.GridYZ, kTrue);
    EXPECT_EQ(state.GridZX, kTrue);
    EXPECT_EQ(state.ShowGridDim, kTrue);
    EXPECT_EQ(state.ADis, 50);
    EXPECT_EQ(state.BDis, 60);
    EXPECT_EQ(state.Cdis, 0);
    EXPECT_EQ(window.PaintCount, paints + 1);
    EXPECT_EQ(window.UndoCount, steps + 1);
    EXPECT_TRUE(IsLoaded("FormColorBar"));
    EXPECT_EQ(Tolerance.Positive.Class.size(), 8U);
    EXPECT_EQ(Tolerance.Negative.Class.size(), 4U);
}

TEST_F(ColourBarDialog, OkAppliesAndCloses) {
    Type("TextAnzahlTolKlassePos", "7");
    UserClick(C("BtnOK"));
    EXPECT_EQ(State().AnzKlassenPos, 7);
    EXPECT_FALSE(IsLoaded("FormColorBar"));
}

TEST_F(ColourBarDialog, ApplyingNothingNewIsNoUndoStepAndChangesNoDigit) {
    ScreenWindow& window = *findLFDFORM();
    window.State.Max = 1.0 / 3;
    FormColorBar::SetFormtoVars();
    StoreScreenPropertiesToRecord(window);
    const int steps = window.UndoCount;
    UserClick(C("BtnApply"));
    EXPECT_EQ(window.UndoCount, steps);
    EXPECT_EQ(window.State.Max, 1.0 / 3);
}

TEST_F(ColourBarDialog, AutoApplyAppliesEachChangeAtOnce) {
    Check("CheckAutoApply");
    ScreenWindow& window = *findLFDFORM();
    std::uint64_t paints = window.PaintCount;
    const auto expectPaint = [&](const char* what) {
        EXPECT_EQ(window.PaintCount, paints + 1) << what;
        paints = window.PaintCount;
    };
    Type("TextAnzahlTolKlassePos", "8");
    expectPaint("classes");
    EXPECT_EQ(State().AnzKlassenPos, 8);
    Check("VScrollAnzKlaNeg", 4);
    expectPaint("scroll bar");
    EXPECT_EQ(State().AnzKlassenNeg, 4);
    Type("TextObereGrenze", "9");
    expectPaint("limit");
    EXPECT_EQ(State().Max, 9);
    Check("showX", 0);
    expectPaint("component");
    EXPECT_EQ(State().showVeX, kFalse);
    Check("ShowXYZ");
    expectPaint("all components");
    EXPECT_EQ(State().showVeX, kTrue);
    Check("SPH");
    expectPaint("system");
    EXPECT_EQ(State().CS_Type, "SPH");
    Check("ColorX");
    expectPaint("sign");
    EXPECT_EQ(State().ColorBased, "x");
    Check("ColorABS");
    expectPaint("no sign");
    EXPECT_EQ(State().ColorBased, "");
    Check("CheckShowZX");
    expectPaint("grid");
    EXPECT_EQ(State().GridZX, kTrue);
    Type("TextADis", "12");
    expectPaint("spacing");
    EXPECT_EQ(State().ADis, 12);
}

TEST_F(ColourBarDialog, ALimitTypedBackToTheOneThatWasShownIsTaken) {
    State().Max = 2;
    State().Min = -3;
    FormColorBar::SetFormtoVars();
    Check("CheckAutoApply");
    Type("TextObereGrenze", "5");
    Type("TextUntereGrenze", "-6");
    EXPECT_EQ(State().Max, 5);
    EXPECT_EQ(State().Min, -6);
    Type("TextObereGrenze", "2.00");
    Type("TextUntereGrenze", "-3.00");
    EXPECT_EQ(State().Max, 2);
    EXPECT_EQ(State().Min, -3);
}

TEST_F(ColourBarDialog, LimitsAreEnteredInTheLengthUnit) {
    UserClose(FormColorBar_Entry);
    Job.LengthUnitName = "meter";
    RhoFestlegung();
    State().Max = 1500;
    ShowWindow("FormColorBar");
    EXPECT_EQ(C("TextObereGrenze").Text, "1.50");
    EXPECT_EQ(C("LabelUnit1").Text, "meter");
    Type("TextObereGrenze", "0.25");
    UserClick(C("BtnApply"));
    EXPECT_DOUBLE_EQ(State().Max, 250);
}

TEST_F(ColourBarDialog, NumberFieldsTakeDigitsOneSeparatorAndALeadingMinus) {
    for (const char* name : {"TextObereGrenze", "TextUntereGrenze", "TextADis", "TextBDis", "TextCDis"}) {
        EXPECT_EQ(Type(name, "12.5"), "12.5") << name;
        EXPECT_EQ(Type(name, "-12.5"), "-12.5") << name;
        EXPECT_EQ(Type(name, "1-2.5"), "12.5") << name;
        EXPECT_EQ(Type(name, "--3"), "-3") << name;
        EXPECT_EQ(Type(name, "1.2.5"), "1.25") << name;
        EXPECT_EQ(Type(name, "1e5 mm"), "15") << name;
        EXPECT_EQ(Type(name, "1,5"), "15") << name;
        EXPECT_EQ(Type(name, "äöü"), "") << name;
    }
    UserClick(C("BtnApply"));
    EXPECT_EQ(State().ADis, 0);
}

TEST_F(ColourBarDialog, TheSeparatorIsThatOfTheSystem) {
    Headless.Decimal = ',';
    EXPECT_EQ(Type("TextObereGrenze", "1.2,5"), "12,5");
    EXPECT_EQ(Type("TextUntereGrenze", "-0,75"), "-0,75");
    UserClick(C("BtnApply"));
    EXPECT_EQ(State().Max, 12.5);
    EXPECT_EQ(State().Min, -0.75);
    EXPECT_EQ(C("TextObereGrenze").Text, "12,50");
}

TEST_F(ColourBarDialog, ClassesAreFromOneToAHundred) {
    EXPECT_EQ(Type("TextAnzahlTolKlassePos", "0"), "1");
    EXPECT_EQ(Type("TextAnzahlTolKlassePos", "-5"), "1");
    EXPECT_EQ(Type("TextAnzahlTolKlassePos", ""), "1");
    EXPECT_EQ(Type("TextAnzahlTolKlasseNeg", "100"), "100");
    EXPECT_TRUE(Messages().empty());
    Headless.Answers["message"] = {"OK", "OK"};
    EXPECT_EQ(Type("TextAnzahlTolKlasseNeg", "101"), "100");
    EXPECT_EQ(Type("TextAnzahlTolKlassePos", "99999999999999999999"), "100");
    EXPECT_EQ(Messages(), (std::vector<std::string>{"max = 100", "max = 100"}));
    EXPECT_EQ(C("VScrollAnzKlaPos").Value, 100);
}

TEST_F(ColourBarDialog, ScrollBarsStepTheClasses) {
    Check("VScrollAnzKlaPos", 11);
    EXPECT_EQ(C("TextAnzahlTolKlassePos").Text, "11");
    Check("VScrollAnzKlaNeg", 9);
    EXPECT_EQ(C("TextAnzahlTolKlasseNeg").Text, "9");
    Check("VScrollAnzKlaPos", 1000);
    EXPECT_EQ(C("TextAnzahlTolKlassePos").Text, "100");
    Check("VScrollAnzKlaPos", -4);
    EXPECT_EQ(C("TextAnzahlTolKlassePos").Text, "1");
    EXPECT_TRUE(Messages().empty());
}

TEST_F(ColourBarDialog, LimitsAreSetFromTheDataTwoDecimalsDown) {
    // Sizes of 2.236, 2.062 and 3 mm.
    UserClick(C("BtnSetMaxAsTol"));
    UserClick(C("BtnSetMinAsTol"));
    EXPECT_EQ(C("TextObereGrenze").Text, "3.00");
    EXPECT_EQ(C("TextUntereGrenze").Text, "2.06");
    EXPECT_EQ(State().Min, 0);  // nothing is applied
    State().ColorBased = "x";   // -2.236, 2.062 (no sign for 0), 3
    FormColorBar::SetFormtoVars();
    Check("CheckAutoApply");
    UserClick(C("BtnSetMinAsTol"));
    EXPECT_EQ(C("TextUntereGrenze").Text, "-2.24");
    EXPECT_EQ(State().Min, -2.24);
}

TEST_F(ColourBarDialog, LimitsOfUsedComponentsCountPairsUsedAsAWhole) {
    Job.UseFlags[9] = 0;  // z of the third pair
    State().ShowOnlyUsedComponent = kTrue;
    UserClick(C("BtnSetMaxAsTol"));
    EXPECT_EQ(C("TextObereGrenze").Text, "2.23");
    for (std::int16_t& flag : Job.UseFlags) flag = 0;
    C("TextObereGrenze").Text = "8";
    UserClick(C("BtnSetMaxAsTol"));
    EXPECT_EQ(C("TextObereGrenze").Text, "8");  // no pair counts
}

TEST_F(ColourBarDialog, LimitsThatFollowTheDataAreShown) {
    ScreenWindow& window = *findLFDFORM();
    Check("CheckSetMinMaxOnChange");
    UserClick(C("BtnApply"));
    EXPECT_EQ(window.State.Max, 3);
    EXPECT_EQ(window.State.Min, 2.06);
    EXPECT_EQ(C("TextUntereGrenze").Text, "2.06");
    Job.Transformed.X[3] = 32;  // 5 mm from its target
    UpdateAllGraphicsWindows();
    EXPECT_EQ(C("TextObereGrenze").Text, "5.00");
}

TEST_F(ColourBarDialog, TheOuterColourIsChosen) {
    Headless.Answers["colour"] = {std::nullopt, "255"};
    UserClick(C("BtnSetOuterColor"));
    EXPECT_EQ(State().OuterColor, 0);
    UserClick(C("BtnSetOuterColor"));
    EXPECT_EQ(C("LabelOuterColor").BackColor, 255);
    EXPECT_EQ(State().OuterColor, 0);
    UserClick(C("BtnApply"));
    EXPECT_EQ(State().OuterColor, 255);
}

TEST_F(ColourBarDialog, GridPlanesEnableTheSpacingsThatTheyNeed) {
    const auto expectEnabled = [](bool a, bool b, bool c) {
        EXPECT_EQ(C("TextADis").Enabled, a);
        EXPECT_EQ(C("TextBDis").Enabled, b);
        EXPECT_EQ(C("TextCDis").Enabled, c);
    };
    expectEnabled(false, false, false);
    Check("CheckShowXY");
    expectEnabled(true, true, false);
    Check("CheckShowXY", 0);
    Check("CheckShowYZ");
    expectEnabled(false, true, true);
    Check("CheckShowYZ", 0);
    Check("CheckShowZX");
    expectEnabled(true, false, true);
    Check("CheckShowXY");
    expectEnabled(true, true, true);
}

TEST_F(ColourBarDialog, AllComponentsAreOneCheckBox) {
    EXPECT_EQ(C("ShowXYZ").Value, 1);
    Check("showZ", 0);
    EXPECT_EQ(C("ShowXYZ").Value, 0);
    Check("ShowXYZ");
    EXPECT_EQ(C("showZ").Value, 1);
    Check("ShowXYZ", 0);
    EXPECT_EQ(C("showX").Value + C("showY").Value + C("showZ").Value, 0);
}

TEST_F(ColourBarDialog, TheSampleShowsTheClassesOfTheActiveWindow) {
    State().AnzKlassenPos = 2;
    State().AnzKlassenNeg = 1;
    int below = 0;
    const std::vector<Colour> sample = ColorBarSample(below);
    EXPECT_EQ(below, 1);
    // Class 0 green; classes 1 and 2 of two: (255, 155, 0) and red.
    EXPECT_EQ(sample, (std::vector<Colour>{255 << 8, 255 | 155 << 8, 255}));
}

TEST_F(ColourBarDialog, DoesNothingWithoutAWindow) {
    CloseAllGraphicsWindows();
    ShowWindow("FormColorBar");
    EXPECT_TRUE(IsLoaded("FormColorBar"));
    Check("CheckAutoApply");
    Check("CYL");
    for (const char* name : {"BtnApply", "BtnSetMaxAsTol", "BtnSetMinAsTol"}) UserClick(C(name));
    int below = 5;
    EXPECT_TRUE(ColorBarSample(below).empty());
    UserClick(C("BtnOK"));
    EXPECT_FALSE(IsLoaded("FormColorBar"));
}
