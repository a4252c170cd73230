// Units, formats, the form degree minute second, and the window in which they are chosen.
#include "core/units.h"

#include <cmath>

#include "cli/headless.h"
#include "core/controller.h"
#include "core/form_main.h"
#include "core/form_units.h"
#include "core/job.h"
#include "core/platform.h"
#include "core/settings.h"
#include "core/text.h"
#include "support/fixture.h"

using namespace corvinade;

class UnitsAndFormats : public Program {
protected:
    UnitsAndFormats() {
        Run.SettingsFilePath = PathOf("Corvinade.ini");
        ShowWindow("FormMain");
        Initialisieren();
    }
    static void OpenWindow() { ASSERT_TRUE(UserClick(Main.MenuSettingsUnits)); }
};

namespace {

constexpr double kFifteenDigitPi = 3.14159265358979;
const std::string kDms = "360°60'60''";

struct Unit {
    const char* Name;
    double Factor;
};
const Unit kLengths[] = {{"millimeter", 1.0}, {"meter", 0.001}, {"inch", 1 / 25.4}, {"feet", 1 / 304.8}};
const Unit kAngles[] = {{"degree", 180 / kFifteenDigitPi},
                        {"grad (gon)", 200 / kFifteenDigitPi},
                        {"rad", 1},
                        {"mrad", 1000},
                        {"arcsecond", 648000 / kFifteenDigitPi},
                        {"arcminute", 10800 / kFifteenDigitPi},
                        {"360°60'60''", 180 / kFifteenDigitPi}};

std::string Digits(int digits) {
    return digits == 0 ? "0" : "0." + std::string(static_cast<std::size_t>(digits), '0');
}

}  // namespace

TEST_F(UnitsAndFormats, TheConstantHasFifteenDigits) {
    EXPECT_EQ(kPi, 3.14159265358979);
    EXPECT_NE(kPi, std::acos(-1.0));
}

TEST_F(UnitsAndFormats, EveryLengthUnitHasItsFactor) {
    for (const Unit& unit : kLengths) {
        Job.LengthUnitName = unit.Name;
        RhoFestlegung();
        EXPECT_DOUBLE_EQ(Units.LengthFactor, unit.Factor) << unit.Name;
        EXPECT_EQ(Main.StatusBar_1.Text, unit.Name);
    }
    EXPECT_NEAR(1 / Units.LengthFactor, 304.8, 1e-12);
}

TEST_F(UnitsAndFormats, EveryAngleUnitHasItsFactor) {
    for (const Unit& unit : kAngles) {
        Job.AngleUnitName = unit.Name;
        RhoFestlegung();
        EXPECT_DOUBLE_EQ(Units.AngleFactor, unit.Factor) << unit.Name;
        EXPECT_EQ(Main.StatusBar_2.Text, unit.Name);
    }
}

TEST_F(UnitsAndFormats, AnUnknownNameLeavesItsFactor) {
    Job.LengthUnitName = "inch";
    Job.AngleUnitName = "mrad";
    RhoFestlegung();
    for (const char* name : {"Inch", "", "yard", "degree "}) {
        Job.LengthUnitName = Job.AngleUnitName = name;
        RhoFestlegung();
        EXPECT_DOUBLE_EQ(Units.LengthFactor, 1 / 25.4);
        EXPECT_EQ(Units.AngleFactor, 1000);
        EXPECT_EQ(Main.StatusBar_1.Text, name);
        EXPECT_EQ(Main.StatusBar_2.Text, name);
    }
}

TEST_F(UnitsAndFormats, DigitsGiveTheirFormat) {
    for (int digits = 0; digits <= 6; ++digits) {
        Job.LengthDigits = static_cast<std::int16_t>(digits);
        Job.AngleDigits = static_cast<std::int16_t>(6 - digits);
        RhoFestlegung();
        EXPECT_EQ(Units.FmtLength, Digits(digits));
        EXPECT_EQ(Units.FmtAngle, Digits(6 - digits));
    }
    Settings.ScaleDigits = 1;
    RhoFestlegung();
    EXPECT_EQ(Units.FmtScale, "0.000000000000");
    Settings.ScaleDigits = 0;
    RhoFestlegung();
    EXPECT_EQ(Units.FmtScale, "0.000000");
}

TEST_F(UnitsAndFormats, DigitsOutsideTheirRangeLeaveTheFormat) {
    Job.LengthDigits = 2;
    Job.AngleDigits = 5;
    Settings.ScaleDigits = 1;
    RhoFestlegung();
    for (const int digits : {-1, 7, 32767, -32768}) {
        Job.LengthDigits = Job.AngleDigits = Settings.ScaleDigits = static_cast<std::int16_t>(digits);
        RhoFestlegung();
        EXPECT_EQ(Units.FmtLength, "0.00");
        EXPECT_EQ(Units.FmtAngle, "0.00000");
        EXPECT_EQ(Units.FmtScale, "0.000000000000");
    }
}

TEST_F(UnitsAndFormats, AnAngleIsShownInEveryUnit) {
    const double quarter = kFifteenDigitPi / 2;
    const std::vector<std::pair<std::string, std::string>> shown = {
        {"degree", "90.00"},         {"grad (gon)", "100.00"},   {"rad", "1.57"},
        {"mrad", "1570.80"},         {"arcsecond", "324000.00"}, {"arcminute", "5400.00"},
        {"360°60'60''", "90 0 0.00"}};
    Job.AngleDigits = 2;
    for (const auto& [unit, text] : shown) {
        Job.AngleUnitName = unit;
        RhoFestlegung();
        EXPECT_EQ(WinkelFormat(quarter), text);
    }
    for (const auto& [unit, text] : shown) {
        Job.AngleUnitName = unit;
        RhoFestlegung();
        EXPECT_EQ(WinkelFormat(-quarter), "-" + text);
        EXPECT_EQ(WinkelFormat(0), unit == kDms ? "0 0 0.00" : "0.00");
    }
}

TEST_F(UnitsAndFormats, ZeroHasTheSignOne) {
    Job.AngleDigits = 4;
    RhoFestlegung();
    EXPECT_EQ(WinkelFormat(0, 180 / kFifteenDigitPi, "0.0000", kDms), "0 0 0.0000");
    EXPECT_EQ(WinkelFormat(-0.0, 180 / kFifteenDigitPi, "0.0000", kDms), "0 0 0.0000");
}

TEST_F(UnitsAndFormats, DegreesMinutesAndSecondsAreTakenApart) {
    // With the factor 1 the value is the number of degrees itself, so that the parts are exact.
    EXPECT_EQ(WinkelFormat(12.5, 1, "0", kDms), "12 30 0.0000");
    EXPECT_EQ(WinkelFormat(-12.5, 1, "0", kDms), "-12 30 0.0000");
    EXPECT_EQ(WinkelFormat(1.0078125, 1, "0", kDms), "1 0 28.1250");
    EXPECT_EQ(WinkelFormat(359.9921875, 1, "0", kDms), "359 59 31.8750");
    EXPECT_EQ(WinkelFormat(-720.25, 1, "0", kDms), "-720 15 0.0000");
}

TEST_F(UnitsAndFormats, SecondsHaveTheFormatOfTheSettings) {
    Job.AngleDigits = 1;
    RhoFestlegung();
    EXPECT_EQ(WinkelFormat(1.0078125, 1, "0.000000", kDms), "1 0 28.1");
}

TEST_F(UnitsAndFormats, BetweenMinusOneAndZeroDegreesTheSignIsLost) {
    EXPECT_EQ(WinkelFormat(-0.5, 1, "0", kDms), "0 30 0.0000");
    EXPECT_EQ(WinkelFormat(0.5, 1, "0", kDms), "0 30 0.0000");
    EXPECT_EQ(WinkelFormat(-1, 1, "0", kDms), "-1 0 0.0000");
}

TEST_F(UnitsAndFormats, AnglesThatAreNotFiniteAreShownAsAWord) {
    EXPECT_EQ(WinkelFormat(std::nan(""), 1, "0.0", "degree"), "NaN");
    EXPECT_EQ(WinkelFormat(INFINITY, 1, "0.0", "degree"), "Infinity");
    EXPECT_EQ(WinkelFormat(INFINITY, 1, "0.0", kDms), "NaN NaN NaN");  // its sign is no number
}

TEST_F(UnitsAndFormats, ABlankMakesTheFormDegreeMinuteSecond) {
    for (const char* text : {"12 30 0", "-0 30 0", " 5", "5 ", " ", "1 x", "1.5 2,5", "- 1"})
        EXPECT_TRUE(IsItGradMinSek(text)) << text;
    for (const char* text :
         {"", "12.5", "-12", "12,5", "x 1 2", "12°30 0", "12x 30", "+1 2", "1\t2", "float"})
        EXPECT_FALSE(IsItGradMinSek(text)) << text;
}

TEST_F(UnitsAndFormats, TheFormDegreeMinuteSecondBecomesDecimalDegrees) {
    EXPECT_EQ(GradMinSekToZahl("12 30 0"), 12.5);
    EXPECT_EQ(GradMinSekToZahl("-0 30 0"), -0.5);
    EXPECT_EQ(GradMinSekToZahl("-12 30 36"), -12.51);
    EXPECT_EQ(GradMinSekToZahl("  12   30   0  "), 12.5);
    EXPECT_EQ(GradMinSekToZahl("12 30"), 12.5);
    EXPECT_EQ(GradMinSekToZahl("12 "), 12);
    EXPECT_EQ(GradMinSekToZahl("1 0 0.36"), 1.0001);
    EXPECT_EQ(GradMinSekToZahl("12 -30 0"), 11.5);
    EXPECT_EQ(GradMinSekToZahl("12 90 0 77"), 13.5);
    EXPECT_EQ(GradMinSekToZahl(" "), 0);
}

TEST_F(UnitsAndFormats, FieldsOfTheFormUseTheSystemsDelimiter) {
    Headless.Decimal = ',';
    EXPECT_EQ(GradMinSekToZahl("12,5 30 0"), 13);
    EXPECT_EQ(SaveWinkelZurück("12 30 0"), "12,5");
    EXPECT_THROW(GradMinSekToZahl("12.5 30 0"), PlatformError);
}

TEST_F(UnitsAndFormats, AFieldThatIsNoNumberIsAnError) {
    for (const char* text : {"- 30 0", "1 x 0", "1 2 3-4", "1 . 0"})
        EXPECT_THROW(GradMinSekToZahl(text), PlatformError) << text;
}

TEST_F(UnitsAndFormats, AnAngleInputBecomesANumberText) {
    for (const Unit& unit : kAngles) {
        Job.AngleUnitName = unit.Name;
        RhoFestlegung();
        EXPECT_EQ(SaveWinkelZurück("12 30 0"), "12.5");
        EXPECT_EQ(SaveWinkelZurück("-0 30 0"), "-0.5");
        EXPECT_EQ(SaveWinkelZurück("12.5"), "12.5");
        EXPECT_EQ(SaveWinkelZurück("float"), "float");
        EXPECT_EQ(SaveWinkelZurück(""), "");
        EXPECT_EQ(SaveWinkelZurück("0 0 0"), "0");
    }
}

// --- The window -------------------------------------------------------------------------------------------

TEST_F(UnitsAndFormats, TheWindowListsAllUnitsAndFormatsInTheirOrder) {
    OpenWindow();
    std::vector<std::string> lengths;
    std::vector<std::string> angles;
    std::vector<std::string> digits;
    for (const Unit& unit : kLengths) lengths.emplace_back(unit.Name);
    for (const Unit& unit : kAngles) angles.emplace_back(unit.Name);
    for (int i = 0; i <= 6; ++i) digits.push_back(Digits(i));
    EXPECT_EQ(UnitsWindow.ComboLength.Items, lengths);
    EXPECT_EQ(UnitsWindow.ComboAngle.Items, angles);
    EXPECT_EQ(UnitsWindow.ComboDigitLength.Items, digits);
    EXPECT_EQ(UnitsWindow.ComboDigitAngle.Items, digits);
    EXPECT_EQ(UnitsWindow.ComboDigitScale.Items, (std::vector<std::string>{"0.000000", "0.000000000000"}));
}

TEST_F(UnitsAndFormats, TheWindowOpensWithThePresentChoice) {
    Job.LengthUnitName = "feet";
    Job.AngleUnitName = kDms;
    Job.LengthDigits = 6;
    Job.AngleDigits = 0;
    Settings.ScaleDigits = 1;
    Settings.PhiThetaAsQ = kTrue;
    OpenWindow();
    EXPECT_EQ(UnitsWindow.ComboLength.Text, "feet");
    EXPECT_EQ(UnitsWindow.ComboLength.Index, 3);
    EXPECT_EQ(UnitsWindow.ComboAngle.Index, 6);
    EXPECT_EQ(UnitsWindow.ComboDigitLength.Index, 6);
    EXPECT_EQ(UnitsWindow.ComboDigitAngle.Index, 0);
    EXPECT_EQ(UnitsWindow.ComboDigitScale.Index, 1);
    EXPECT_EQ(UnitsWindow.CheckPhiThetaAsQ.Value, 1);
}

TEST_F(UnitsAndFormats, OkTakesAllSelectionsAndWritesThem) {
    OpenWindow();
    UserSetIndex(UnitsWindow.ComboLength, 2);
    UserSetIndex(UnitsWindow.ComboAngle, 6);
    UserSetIndex(UnitsWindow.ComboDigitLength, 5);
    UserSetIndex(UnitsWindow.ComboDigitAngle, 1);
    UserSetIndex(UnitsWindow.ComboDigitScale, 1);
    UserSetValue(UnitsWindow.CheckPhiThetaAsQ, 1);
    EXPECT_EQ(Job.LengthUnitName, "millimeter");  // nothing is taken before OK
    EXPECT_TRUE(UserClick(UnitsWindow.BtnOK));
    EXPECT_FALSE(IsLoaded("FormUnits"));
    EXPECT_EQ(Job.LengthUnitName, "inch");
    EXPECT_EQ(Job.AngleUnitName, kDms);
    EXPECT_EQ(Job.LengthDigits, 5);
    EXPECT_EQ(Job.AngleDigits, 1);
    EXPECT_EQ(Settings.ScaleDigits, 1);
    EXPECT_EQ(Settings.PhiThetaAsQ, kTrue);
    EXPECT_DOUBLE_EQ(Units.LengthFactor, 1 / 25.4);
    EXPECT_EQ(Units.FmtLength, "0.00000");
    EXPECT_EQ(Main.StatusBar_1.Text, "inch");
    EXPECT_EQ(Main.StatusBar_2.Text, kDms);
    EXPECT_EQ(Run.JobDirty, kTrue);
    EXPECT_EQ(Contents(Run.SettingsFilePath),
              CrLf("[Window]\nFormUnitsHeight=1000\nFormUnitsTop=1000\nFormUnitsWidth=1000\n"
                   "FormUnitsLeft=1000\n\n\n[Units]\nUnitLength=inch\nUnitAngle=360\xB0"
                   "60'60''\n"
                   "DigitLength=5\nDigitAngle=1\nPhiThetaAsQ=True\nDigitScale=1\n\n[LastEntry]"));
}

TEST_F(UnitsAndFormats, WrittenUnitsAreTakenAtTheNextStart) {
    OpenWindow();
    UserSetIndex(UnitsWindow.ComboAngle, 6);
    UserClick(UnitsWindow.BtnOK);
    Job = JobRecord{};
    IniLesen();
    EXPECT_EQ(Job.AngleUnitName, kDms);
    EXPECT_EQ(Job.LengthUnitName, "millimeter");
    EXPECT_EQ(Job.LengthDigits, 3);
    EXPECT_EQ(Job.AngleDigits, 4);
}

TEST_F(UnitsAndFormats, EscapeClosesWithoutAChange) {
    OpenWindow();
    UserSetIndex(UnitsWindow.ComboLength, 1);
    UserSetIndex(UnitsWindow.ComboDigitAngle, 6);
    UserSetValue(UnitsWindow.CheckPhiThetaAsQ, 1);
    UserEscape(FormUnits_Entry);
    EXPECT_FALSE(IsLoaded("FormUnits"));
    EXPECT_EQ(Job.LengthUnitName, "millimeter");
    EXPECT_EQ(Job.AngleDigits, 4);
    EXPECT_EQ(Settings.PhiThetaAsQ, kFalse);
    EXPECT_EQ(IniWertLesen("UnitLength"), "1000");
    EXPECT_EQ(Run.JobDirty, kTrue);  // set by the command that opened the window
}

TEST_F(UnitsAndFormats, WhatTheWindowCannotShowIsKeptByOk) {
    Job.LengthUnitName = "yard";
    Job.AngleDigits = 9;
    Settings.ScaleDigits = -1;
    OpenWindow();
    EXPECT_EQ(UnitsWindow.ComboLength.Index, -1);
    EXPECT_EQ(UnitsWindow.ComboDigitAngle.Index, -1);
    UserClick(UnitsWindow.BtnOK);
    EXPECT_EQ(Job.LengthUnitName, "yard");
    EXPECT_EQ(Job.AngleDigits, 9);
    EXPECT_EQ(Settings.ScaleDigits, -1);
    EXPECT_EQ(Units.LengthFactor, 1);
}
