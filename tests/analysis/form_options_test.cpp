// The options by their controls: what they show, what they take, and what reaches the settings file.
#include "analysis/form_options.h"

#include <array>
#include <cmath>

#include "cli/headless.h"
#include "core/controller.h"
#include "core/files.h"
#include "core/form_main.h"
#include "core/job.h"
#include "core/settings.h"
#include "core/text.h"
#include "core/units.h"
#include "support/fixture.h"

using namespace corvinade;

class Options : public Program {
protected:
    Options() { StartUp(""); }

    static void Open() { ASSERT_TRUE(UserClick(Main.MenueExtrasOptions)); }
    static void UseAngles(const char* unit, int digits) {
        Job.AngleUnitName = unit;
        Job.AngleDigits = static_cast<std::int16_t>(digits);
        RhoFestlegung();
    }
    static std::string Stored() { return Contents(Run.SettingsFilePath); }
    static const Control& Named(const char* name) {
        const Control* control = FindControl(FormOptions_Entry, name);
        if (control == nullptr) throw std::runtime_error(name);
        return *control;
    }
    // All that the window can set.
    static std::string State() {
        std::string state;
        for (const char* key : {"ClipboardValue", "InvertedBMW", "AdTCP", "TabelHeadMainSheet", "sigmaX",
                                "sigmaY", "sigmaZ", "MonteCarloRuns", "GimbalLockBorder"})
            state += std::string(key) + "=" + SettingText(key) + "\n";
        return state;
    }
};

namespace {

constexpr double kDegreeAsShown = 3.14159265358979 / 180;

Control& OptionNumber(int number) {
    FormOptions& w = OptionsWindow;
    const std::array<Control*, 5> options = {&w.OptionNIX, &w.OptionALL, &w.OptionRobot, &w.OptionBMW,
                                             &w.OptionKuka};
    return *options.at(static_cast<std::size_t>(number - 1));
}

}  // namespace

// --- What is shown ----------------------------------------------------------------------------------------

TEST_F(Options, OpenByTheMenuEntryWithTheirStoredPlace) {
    Open();
    EXPECT_TRUE(IsLoaded("FormOptions"));
    EXPECT_EQ(OptionsWindow.Window.Place.Height, 7050);
    EXPECT_EQ(OptionsWindow.Window.Place.Width, 6855);
    EXPECT_EQ(OptionsWindow.Window.Place.Left, 100);
    EXPECT_EQ(OptionsWindow.Window.Place.Top, 100);
}

TEST_F(Options, BearTheirCaptionsAndTips) {
    const std::vector<std::pair<const char*, const char*>> captions = {
        {"OptionNIX", "Do &not copy anything to clipboard"},
        {"OptionALL", "&Complete results to clipboard after each calculation"},
        {"OptionRobot", "&Robot measurement protocol results after each calculation"},
        {"OptionBMW", "BMW Cell Calibration Component Parameters"},
        {"OptionKuka", "Kuka Robot Parameter X, Y, Z, A, B, C"},
        {"Option1", "Shenyang Parameter - UNFERTIG! INVISIBLE"},
        {"CheckInverted", "give inverted Parameters to Clipboard (SWAP Trafo direction)"},
        {"CheckAdTCP", "&ad TCP xyz to Kuka Parameter"},
        {"CheckTabelHeading", "copy Tabel heading with data"},
        {"LabelSx", "Standard Deviation for MCS x Coordinates"},
        {"LabelSy", "Standard Deviation for MCS y Coordinates"},
        {"LabelSz", "Standard Deviation for MCS z Coordinates"},
        {"LabelMonteCarloRuns", "Monte Carlo runs"}};
    Open();
    for (const auto& [name, caption] : captions) EXPECT_EQ(Named(name).Text, caption) << name;
    EXPECT_EQ(Named("OptionBMW").ToolTip, "Tra x, Tra y, Tra z, -rot x, -rot y, -rot z");
    EXPECT_EQ(Named("OptionKuka").ToolTip,
              "Copys Tra x, Tra y, Tra z and -Rotz, -Roty, -Rotx to the Clipboard");
}

TEST_F(Options, ShowTheChoiceOfTheClipboardAndTheBoxThatBelongsToIt) {
    for (int value = 1; value <= 5; ++value) {
        Settings.ClipboardValue = static_cast<std::int16_t>(value);
        Open();
        for (int other = 1; other <= 5; ++other)
            EXPECT_EQ(OptionNumber(other).Value, other == value ? 1 : 0) << value << " " << other;
        EXPECT_EQ(OptionsWindow.CheckInverted.Visible, value == 4) << value;
        EXPECT_EQ(OptionsWindow.CheckAdTCP.Visible, value == 5) << value;
        EXPECT_FALSE(OptionsWindow.Option1.Visible);
        EXPECT_EQ(OptionsWindow.Option1.Value, 0);
        UserClick(OptionsWindow.BtnCancel);
    }
}

TEST_F(Options, ANewProgramCopiesTheCompleteResults) {
    Open();
    EXPECT_EQ(OptionsWindow.OptionALL.Value, 1);
}

TEST_F(Options, AClickOnAnOptionShowsAndHidesTheBoxes) {
    Open();
    for (const int chosen : {4, 5, 4, 1, 5, 2, 4, 3}) {
        UserSetValue(OptionNumber(chosen), 1);
        EXPECT_EQ(OptionsWindow.CheckInverted.Visible, chosen == 4) << chosen;
        EXPECT_EQ(OptionsWindow.CheckAdTCP.Visible, chosen == 5) << chosen;
        for (int other = 1; other <= 5; ++other)
            EXPECT_EQ(OptionNumber(other).Value, other == chosen ? 1 : 0) << chosen << " " << other;
    }
}

TEST_F(Options, EveryOptionShowsAndHidesTheBoxesWhenItIsClicked) {
    Open();
    for (const ControlEntry& entry : FormOptions_Entry.Controls) {
        if (entry.Place->Kind != ControlKind::Option) continue;
        OptionsWindow.CheckInverted.Visible = OptionsWindow.CheckAdTCP.Visible = true;
        UserClick(*entry.Place);
        EXPECT_FALSE(OptionsWindow.CheckInverted.Visible || OptionsWindow.CheckAdTCP.Visible) << entry.Name;
    }
}

TEST_F(Options, TheBoxesFollowTheFlags) {
    for (int bits = 0; bits < 8; ++bits) {
        Settings.InvertedBMW = ToFlag((bits & 1) != 0);
        Settings.AdTCP = ToFlag((bits & 2) != 0);
        Settings.TabelHeadMainSheet = ToFlag((bits & 4) != 0);
        Open();
        EXPECT_EQ(OptionsWindow.CheckInverted.Value, bits & 1);
        EXPECT_EQ(OptionsWindow.CheckAdTCP.Value, (bits & 2) / 2);
        EXPECT_EQ(OptionsWindow.CheckTabelHeading.Value, (bits & 4) / 4);
        UserClick(OptionsWindow.BtnCancel);
    }
}

TEST_F(Options, NumbersStandAsPlainText) {
    Settings.SigmaX = 0.05;
    Settings.SigmaY = 1e-9;
    Settings.SigmaZ = 123456.75;
    Settings.MonteCarloRuns = 2500;
    Open();
    EXPECT_EQ(OptionsWindow.TextSx.Text, "0.05");
    EXPECT_EQ(OptionsWindow.TextSy.Text, "1E-09");
    EXPECT_EQ(OptionsWindow.TextSz.Text, "123456.75");
    EXPECT_EQ(OptionsWindow.TextMonteCarloRuns.Text, "2500");
}

TEST_F(Options, NumbersBearTheDelimiterOfTheSystem) {
    Headless.Decimal = ',';
    Settings.SigmaX = 0.05;
    Settings.GimbalLockBorder = kDegreeAsShown * 2.5;
    Open();
    EXPECT_EQ(OptionsWindow.TextSx.Text, "0,05");
    EXPECT_EQ(OptionsWindow.TextGimbalLock.Text, "2,5000");
}

TEST_F(Options, WithoutANumberOfRunsAHundredAreOffered) {
    Open();
    EXPECT_EQ(OptionsWindow.TextMonteCarloRuns.Text, "100");
    UserClick(OptionsWindow.BtnOK);
    EXPECT_EQ(Settings.MonteCarloRuns, 100);
}

TEST_F(Options, TheBorderStandsInTheAngleUnitAndItsFormat) {
    Settings.GimbalLockBorder = 3.14159265358979 / 4;
    const std::vector<std::pair<const char*, const char*>> shown = {
        {"degree", "45.000"},        {"grad (gon)", "50.000"},  {"rad", "0.785"},         {"mrad", "785.398"},
        {"arcsecond", "162000.000"}, {"arcminute", "2700.000"}, {"360°60'60''", "45.000"}};
    for (const auto& [unit, text] : shown) {
        UseAngles(unit, 3);
        Open();
        EXPECT_EQ(OptionsWindow.TextGimbalLock.Text, text) << unit;
        UserClick(OptionsWindow.BtnCancel);
    }
}

// --- What OK takes ----------------------------------------------------------------------------------------

TEST_F(Options, OkStoresEachChoiceOfTheClipboard) {
    for (int value = 1; value <= 5; ++value) {
        Open();
        UserSetValue(OptionNumber(value), 1);
        UserClick(OptionsWindow.BtnOK);
        EXPECT_FALSE(IsLoaded("FormOptions"));
        EXPECT_EQ(Settings.ClipboardValue, value);
        EXPECT_EQ(IniWertLesen("ClipboardValue"), std::to_string(value));
    }
}

TEST_F(Options, OkStoresEachFlag) {
    for (const int value : {1, 0}) {
        const std::string text = value == 1 ? "True" : "False";
        Open();
        UserSetValue(OptionsWindow.OptionBMW, 1);
        UserSetValue(OptionsWindow.CheckInverted, value);
        UserSetValue(OptionsWindow.OptionKuka, 1);
        UserSetValue(OptionsWindow.CheckAdTCP, value);
        UserSetValue(OptionsWindow.CheckTabelHeading, value);
        UserClick(OptionsWindow.BtnOK);
        EXPECT_EQ(Settings.InvertedBMW, ToFlag(value == 1)) << "a hidden box keeps its tick";
        EXPECT_EQ(Settings.AdTCP, ToFlag(value == 1));
        EXPECT_EQ(Settings.TabelHeadMainSheet, ToFlag(value == 1));
        for (const char* key : {"InvertedBMW", "AdTCP", "TabelHeadMainSheet"})
            EXPECT_EQ(IniWertLesen(key), text) << key;
    }
}

TEST_F(Options, OkStoresTheNumbers) {
    UseAngles("grad (gon)", 4);
    Open();
    UserSetText(OptionsWindow.TextSx, "0.05");
    UserSetText(OptionsWindow.TextSy, " 1e-3 ");
    UserSetText(OptionsWindow.TextSz, "2");
    UserSetText(OptionsWindow.TextMonteCarloRuns, "10000");
    UserSetText(OptionsWindow.TextGimbalLock, "50");
    UserClick(OptionsWindow.BtnOK);
    EXPECT_EQ(Settings.SigmaX, 0.05);
    EXPECT_EQ(Settings.SigmaY, 0.001);
    EXPECT_EQ(Settings.SigmaZ, 2);
    EXPECT_EQ(Settings.MonteCarloRuns, 10000);
    EXPECT_DOUBLE_EQ(Settings.GimbalLockBorder, 3.14159265358979 / 4);
    EXPECT_EQ(IniWertLesen("sigmaX"), "0.05");
    EXPECT_EQ(IniWertLesen("sigmaY"), "0.001");
    EXPECT_EQ(IniWertLesen("sigmaZ"), "2");
    EXPECT_EQ(IniWertLesen("MonteCarloRuns"), "10000");
    EXPECT_NEAR(std::stod(IniWertLesen("GimbalLockBorder")), 3.14159265358979 / 4, 1e-14);
}

TEST_F(Options, TheBorderIsTypedInTheAngleUnit) {
    const std::vector<std::pair<const char*, const char*>> oneDegree = {{"degree", "1"},
                                                                        {"grad (gon)", "1.11111111111111"},
                                                                        {"rad", "0.0174532925199433"},
                                                                        {"mrad", "17.4532925199433"},
                                                                        {"arcsecond", "3600"},
                                                                        {"arcminute", "60"},
                                                                        {"360°60'60''", "1"}};
    for (const auto& [unit, text] : oneDegree) {
        UseAngles(unit, 4);
        Open();
        UserSetText(OptionsWindow.TextGimbalLock, text);
        UserClick(OptionsWindow.BtnOK);
        EXPECT_NEAR(Settings.GimbalLockBorder, kDegreeAsShown, 1e-15) << unit;
    }
}

TEST_F(Options, AllKeysStandUnderSettingsAndSurviveANewStart) {
    Open();
    UserSetValue(OptionsWindow.OptionKuka, 1);
    UserSetValue(OptionsWindow.CheckAdTCP, 1);
    UserSetText(OptionsWindow.TextSx, "0.25");
    UserSetText(OptionsWindow.TextGimbalLock, "2");
    UserClick(OptionsWindow.BtnOK);
    const std::string held = State();
    const std::string text = Stored();
    const std::size_t section = text.find("[Settings]");
    const std::size_t next = text.find("\r\n[", section);
    for (const char* key : {"ClipboardValue", "InvertedBMW", "AdTCP", "TabelHeadMainSheet", "sigmaX",
                            "sigmaY", "sigmaZ", "MonteCarloRuns", "GimbalLockBorder"}) {
        const std::size_t place = text.find(std::string("\r\n") + key + "=");
        EXPECT_TRUE(place > section && place < next) << key;
    }
    Settings = SettingsRecord{};
    IniLesen();
    EXPECT_EQ(State(), held);
}

TEST_F(Options, NumbersAreWrittenWithTheDelimiterOfTheSystem) {
    Headless.Decimal = ',';
    Open();
    UserSetText(OptionsWindow.TextSx, "0,5");
    UserClick(OptionsWindow.BtnOK);
    EXPECT_EQ(Settings.SigmaX, 0.5);
    EXPECT_EQ(IniWertLesen("sigmaX"), "0,5");
}

TEST_F(Options, ANumberWithTheOtherDelimiterIsNone) {
    Headless.Decimal = ',';
    Open();
    UserSetText(OptionsWindow.TextSx, "0.5");
    EXPECT_FALSE(UserClick(OptionsWindow.BtnOK));
    EXPECT_EQ(Settings.SigmaX, 0);
}

TEST_F(Options, AllKeysAreWrittenInOneGo) {
    Open();
    UserSetValue(OptionsWindow.OptionKuka, 1);
    UserSetText(OptionsWindow.TextSz, "9");
    int replaced = 0;
    std::string afterFirst;
    FileFaults.Refuse = [&](const std::string& operation, const std::string&) {
        if (operation == "rename" && replaced++ == 1) afterFirst = Stored();
        return std::string();
    };
    UserClick(OptionsWindow.BtnOK);
    EXPECT_EQ(replaced, 2) << "the settings, then the window's place";
    EXPECT_NE(afterFirst.find("ClipboardValue=5\r\n"), std::string::npos);
    EXPECT_NE(afterFirst.find("sigmaZ=9\r\n"), std::string::npos);
    EXPECT_NE(afterFirst.find("GimbalLockBorder=0\r\n"), std::string::npos);
}

TEST_F(Options, FewerThanTwoRunsAreTwo) {
    const std::vector<std::pair<const char*, int>> typed = {
        {"1", 2}, {"0", 2},      {"-7", 2},
        {"2", 2}, {"1.5", 2},    {"2.5", 2},
        {"3", 3}, {"1e3", 1000}, {"2147483647", 2147483647}};
    for (const auto& [text, runs] : typed) {
        Open();
        UserSetText(OptionsWindow.TextMonteCarloRuns, text);
        UserClick(OptionsWindow.BtnOK);
        EXPECT_EQ(Settings.MonteCarloRuns, runs) << text;
        EXPECT_EQ(IniWertLesen("MonteCarloRuns"), std::to_string(runs)) << text;
    }
}

TEST_F(Options, AWrongChoiceOfTheClipboardIsRepairedAtTheStart) {
    WriteFile(Run.SettingsFilePath, CrLf("[Settings]\nClipboardValue=7\n[LastEntry]\n"));
    StartUp("");
    EXPECT_EQ(Settings.ClipboardValue, 2);
    EXPECT_EQ(IniWertLesen("ClipboardValue"), "2");
    Open();
    EXPECT_EQ(OptionsWindow.OptionALL.Value, 1);
}

TEST_F(Options, WithoutAChosenOptionTheChoiceStaysAsItIs) {
    Settings.ClipboardValue = 0;
    Open();
    EXPECT_FALSE(OptionsWindow.CheckInverted.Visible || OptionsWindow.CheckAdTCP.Visible);
    UserClick(OptionsWindow.BtnOK);
    EXPECT_EQ(Settings.ClipboardValue, 0);
}

TEST_F(Options, TheHiddenOptionHasNoNumber) {
    Settings.ClipboardValue = 3;
    Open();
    UserSetValue(OptionsWindow.Option1, 1);
    EXPECT_EQ(OptionsWindow.OptionRobot.Value, 0);
    UserClick(OptionsWindow.BtnOK);
    EXPECT_EQ(Settings.ClipboardValue, 3);
}

// --- What is no number ------------------------------------------------------------------------------------

TEST_F(Options, ATextThatIsNoNumberStoresNothing) {
    const auto fields = [] {
        FormOptions& w = OptionsWindow;
        return std::vector<std::pair<Control*, std::string>>{
            {&w.TextSx, "Standard Deviation for MCS x Coordinates"},
            {&w.TextSy, "Standard Deviation for MCS y Coordinates"},
            {&w.TextSz, "Standard Deviation for MCS z Coordinates"},
            {&w.TextMonteCarloRuns, "Monte Carlo runs"},
            {&w.TextGimbalLock, "Gimbal Lock Border"}};
    };
    const std::string before = State();
    const std::string file = Stored();
    for (const auto& [field, name] : fields())
        for (const char* wrong : {"", " ", "many", "1,5", "1 2", "0 30 0", "nan", "inf", "1e999", "5mm"}) {
            Open();
            UserSetValue(OptionsWindow.OptionBMW, 1);
            UserSetValue(OptionsWindow.CheckInverted, 1);
            UserSetText(OptionsWindow.TextSx, "7");
            UserSetText(*field, wrong);
            const std::size_t told = Messages().size();
            EXPECT_FALSE(UserClick(OptionsWindow.BtnOK)) << name << " " << wrong;
            ASSERT_EQ(Messages().size(), told + 1);
            EXPECT_NE(LastMessage().find(name), std::string::npos) << LastMessage();
            EXPECT_NE(LastMessage().find(std::string("\"") + wrong + "\""), std::string::npos);
            EXPECT_TRUE(IsLoaded("FormOptions")) << "the text can be put right";
            EXPECT_EQ(field->Text, wrong);
            EXPECT_EQ(State(), before);
            EXPECT_EQ(Stored(), file);
            UserSetText(*field, "3");
            EXPECT_TRUE(UserClick(OptionsWindow.BtnOK));
            EXPECT_EQ(Settings.ClipboardValue, 4);
            WriteFile(Run.SettingsFilePath, file);
            Settings = SettingsRecord{};
            IniLesen();
        }
}

TEST_F(Options, MoreRunsThanTheirTypeHoldsAreRefused) {
    const std::string before = State();
    Open();
    for (const char* wrong : {"2147483648", "1e12", "-2147483649"}) {
        UserSetText(OptionsWindow.TextMonteCarloRuns, wrong);
        EXPECT_FALSE(UserClick(OptionsWindow.BtnOK)) << wrong;
        EXPECT_NE(LastMessage().find("Monte Carlo runs"), std::string::npos);
        EXPECT_EQ(State(), before);
    }
}

TEST_F(Options, ABorderThatNobodyHasTouchedKeepsItsDigits) {
    Settings.GimbalLockBorder = 0.4 * kDegreeAsShown;
    UseAngles("degree", 0);
    Open();
    EXPECT_EQ(OptionsWindow.TextGimbalLock.Text, "0");
    UserClick(OptionsWindow.BtnOK);
    EXPECT_EQ(Settings.GimbalLockBorder, 0.4 * kDegreeAsShown);
    Open();
    UserSetText(OptionsWindow.TextGimbalLock, "2");
    UserClick(OptionsWindow.BtnOK);
    EXPECT_NEAR(Settings.GimbalLockBorder, 2 * kDegreeAsShown, 1e-15);
}

TEST_F(Options, ABorderBeyondAllNumbersIsShownAsSuchAndCannotBeTyped) {
    Settings.GimbalLockBorder = 1e308;
    Open();
    EXPECT_EQ(OptionsWindow.TextGimbalLock.Text, "Infinity");
    UserSetText(OptionsWindow.TextGimbalLock, "-Infinity");
    EXPECT_FALSE(UserClick(OptionsWindow.BtnOK));
    EXPECT_EQ(Settings.GimbalLockBorder, 1e308);
}

// --- Leaving ----------------------------------------------------------------------------------------------

TEST_F(Options, CancelEscapeAndTheCrossChangeNothing) {
    Open();
    UserClick(OptionsWindow.BtnCancel);  // from here on the place is stored and the file at rest
    const std::string before = State();
    const std::string file = Stored();
    const std::vector<void (*)()> ways = {[] { UserClick(OptionsWindow.BtnCancel); },
                                          [] { UserEscape(FormOptions_Entry); },
                                          [] { UserClose(FormOptions_Entry); }};
    for (void (*const leave)() : ways) {
        Open();
        UserSetValue(OptionsWindow.OptionKuka, 1);
        UserSetValue(OptionsWindow.CheckAdTCP, 1);
        UserSetValue(OptionsWindow.CheckTabelHeading, 1);
        UserSetText(OptionsWindow.TextSx, "no number");
        UserSetText(OptionsWindow.TextMonteCarloRuns, "5");
        leave();
        EXPECT_FALSE(IsLoaded("FormOptions"));
        EXPECT_EQ(State(), before);
        EXPECT_EQ(Stored(), file);
        EXPECT_EQ(Messages(), std::vector<std::string>{});
    }
}

TEST_F(Options, TheirPlaceIsKept) {
    Open();
    OptionsWindow.Window.Place = {21, 22, 23, 24};
    UserClick(OptionsWindow.BtnOK);
    Open();
    EXPECT_EQ(OptionsWindow.Window.Place.Left, 21);
    EXPECT_EQ(OptionsWindow.Window.Place.Top, 22);
    EXPECT_EQ(OptionsWindow.Window.Place.Width, 23);
    EXPECT_EQ(OptionsWindow.Window.Place.Height, 24);
}

TEST_F(Options, AreNoChangeOfTheJob) {
    Open();
    UserSetText(OptionsWindow.TextSx, "1");
    UserClick(OptionsWindow.BtnOK);
    EXPECT_EQ(Run.JobDirty, kFalse);
}

TEST_F(Options, ASettingsFileThatRefusesIsToldOnceAndTheRunKeepsTheChoice) {
    Open();
    const std::string file = Stored();
    UserSetValue(OptionsWindow.OptionKuka, 1);
    FileFaults.Refuse = [](const std::string&, const std::string&) { return std::string("no room"); };
    EXPECT_TRUE(UserClick(OptionsWindow.BtnOK));
    EXPECT_EQ(Messages().size(), 1U);
    EXPECT_EQ(Settings.ClipboardValue, 5);
    EXPECT_EQ(Stored(), file);
}
