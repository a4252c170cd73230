// A new settings file byte by byte, and the reading of settings.
#include "core/settings.h"

#include <map>

#include "cli/headless.h"
#include "core/files.h"
#include "core/job.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/window.h"
#include "support/fixture.h"

using namespace corvinade;

class SettingsFile : public Program {
protected:
    SettingsFile() { Run.SettingsFilePath = PathOf("Corvinade.ini"); }
    void Hold(const std::string& text) const { Write("Corvinade.ini", text); }
    std::string Held() const { return Contents(Run.SettingsFilePath); }
    std::string ReadingError() const {
        try {
            IniLesen();
        } catch (const PlatformError& error) {
            return error.What;
        }
        return "";
    }
};

namespace {

std::string With(const std::string& text, const std::string& section, const std::string& key,
                 const std::string& value) {
    return WithIniValue(text, {section, key, value});
}

// The windows of a new settings file: height, width, top, left.
struct Place {
    const char* Window;
    const char *Height, *Width, *Top = "100", *Left = "100";
};
constexpr Place kPlaces[] = {{"FormTrafoBerechnung", "11610", "19380"},
                             {"FormOptions", "7050", "6855"},
                             {"FormColorBar", "5505", "12045"},
                             {"FormGrafik", "500", "500"},
                             {"FormGraphData", "50", "50"},
                             {"FormGraphicsOptions", "10095", "11340"},
                             {"FormInputFiles", "10458", "9540"},
                             {"FormInputStatistic", "6810", "6180"},
                             {"FormMenuHelpInfo", "5880", "13410"},
                             {"FormScreen", "11700", "16515"},
                             {"FormTrafoDetails", "11625", "17895"},
                             {"FormTrompete", "10845", "13845"},
                             {"FormUnits", "3315", "4575"},
                             {"FormMainSheet", "13470", "9570"},
                             {"FormBlackPlane", "3840", "5400"},
                             {"FormBatch", "10110", "8610", "1635", "4965"},
                             {"FormChangeDir", "8130", "8265", "2295", "6540"},
                             {"FormStopParaTrafo", "2580", "3675", "1125", "7245"}};

std::string ExpectedDefaults(const std::string& etta) {
    // Each later key of a section leaves one blank line before the end mark, and a new section sets its
    // head behind that and a line end of its own.
    std::string text =
        "[Global]\nMaxIteration=100\nBestFit_Etta=" + etta +
        "\n\n\n[GraphicsSettings]\nDevVecDirection=True\nViewAllOCS=False\nViewAllMCS=True\n"
        "ViewAllonlyOCS=True\nViewAllonlyMCS=True\nShowPointsBigger=True\nShowCoordinateSystemLabels=True\n"
        "ShowPointNames=False\nShowColorBar=True\nScreenBackColor=0\n"
        "\n\n[Settings]\nClipboardValue=2\nRawScale=2\n\n\n[Window]\n";
    for (const Place& place : kPlaces) {
        const std::string name = place.Window;
        text += name + "Top=" + place.Top + "\n" + name + "Left=" + place.Left + "\n";
        text += name + "Height=" + place.Height + "\n" + name + "Width=" + place.Width + "\n";
    }
    return CrLf(text + "\n[LastEntry]");
}

using Keys = std::vector<std::string>;
const std::vector<std::pair<std::string, Keys>>& KnownKeys() {
    static const std::vector<std::pair<std::string, Keys>> keys = {
        {"Global", {"MaxIteration", "BestFit_Etta"}},
        {"Files", {"LastFile1", "LastFile2", "LastFile3", "LastFile4"}},
        {"Units", {"UnitLength", "UnitAngle", "DigitLength", "DigitAngle", "DigitScale", "PhiThetaAsQ"}},
        {"Roots",
         {"LastMCSRoot", "LastOCSRoot", "MCS_FileName", "OCS_FileName", "LastRobCadRoot", "LastRocalRoot",
          "LastDir", "BatchMCSDir", "BatchTCSDir"}},
        {"RobCad", {"Place", "ToolName"}},
        {"Settings",
         {"NameMCS", "NameOCS", "LastDropDownInfoInOCS", "ClipboardValue", "InvertedBMW", "AdTCP",
          "TabelHeadMainSheet", "sigmaX", "sigmaY", "sigmaZ", "MonteCarloRuns", "GimbalLockBorder",
          "CheckForGimbalLock", "BatchType", "BatchWriteType", "RawScale"}},
        {"GraphicsSettings",
         {"DevVecDirection", "ViewAllOCS", "ViewAllMCS", "ViewAllonlyOCS", "ViewAllonlyMCS",
          "ShowPointsBigger", "ShowCoordinateSystemLabels", "ShowPointNames", "ShowColorBar",
          "ScreenBackColor", "ViewOnlyIfTrafo", "ViewOnlyIfNotTrafo", "DontViewOOT", "VectorThick",
          "VectorQuat", "ShowRVec"}},
        {"LocalGraphics", {"VectorMode",    "BigNess",
                           "Vec_Maßstab",   "GridLength",
                           "AnzKlassenPos", "AnzKlassenNeg",
                           "AusserhalbTol", "Min",
                           "Max",           "showVeX",
                           "showVeY",       "showVeZ",
                           "ColorBased",    "ShowOnlyUsedComponent",
                           "OuterColor",    "CS_Type",
                           "BinärModus",    "GridXY",
                           "GridYZ",        "GridZX",
                           "ADis",          "BDis",
                           "Cdis",          "ShowGridDim"}},
        {"FahnenProp", {"ShowPointNumber", "ShowActual",    "ShowNominal", "ShowDevXYZ",    "showX",
                        "showY",           "showZ",         "show3D",      "showR",         "showPhi",
                        "showRho",         "showTheta",     "ShowDev",     "ShowTolCol",    "ShowLegendeXYZ",
                        "ShowLegendeName", "ShowUseNotUse", "ShowGrid",    "ChangeAll",     "SnaptoGrid",
                        "WithinScreen",    "Left",          "Top",         "Bold",          "Charset",
                        "Italic",          "Name",          "Size",        "Strikethrough", "Underline",
                        "Weight",          "Forecolor"}},
        {"", {"Editor"}}};
    return keys;
}

}  // namespace

// --- A new file -------------------------------------------------------------------------------------------

TEST_F(SettingsFile, ANewFileHoldsTheDefaultsByteByByte) {
    IniDateiAnlegen();
    EXPECT_EQ(Held(), ExpectedDefaults("1E-09"));
    EXPECT_EQ(Settings.DevVecDirection, kTrue);
}

TEST_F(SettingsFile, ANewFileReplacesWhatWasThere) {
    Hold("[Old]\r\nold=1\r\n");
    IniDateiAnlegen();
    EXPECT_EQ(Held(), ExpectedDefaults("1E-09"));
}

TEST_F(SettingsFile, DefaultsAreReadBackAndTheRestStaysEmpty) {
    IniDateiAnlegen();
    IniLesen();
    EXPECT_EQ(Settings.MaxIteration, 100);
    EXPECT_EQ(Settings.BestFit_Etta, 1e-9);
    EXPECT_EQ(Job.ViewAllOCS, kFalse);
    EXPECT_EQ(Job.ViewAllMCS, kTrue);
    EXPECT_EQ(Job.ViewAllonlyOCS, kTrue);
    EXPECT_EQ(Job.ViewAllonlyMCS, kTrue);
    EXPECT_EQ(Settings.ShowPointsBigger, kTrue);
    EXPECT_EQ(Settings.ShowCoordinateSystemLabels, kTrue);
    EXPECT_EQ(Settings.ShowPointNames, kFalse);
    EXPECT_EQ(Settings.ShowColorBar, kTrue);
    EXPECT_EQ(Settings.ScreenBackColor, 0);
    EXPECT_EQ(Settings.ClipboardValue, 2);
    EXPECT_EQ(Settings.RawScale, 2);
    EXPECT_EQ(Job.LengthUnitName, "");
    EXPECT_EQ(Settings.MonteCarloRuns, 0);
    EXPECT_FALSE(Settings.FlagDefined);
    for (const Place& place : kPlaces) {
        const std::string name = place.Window;
        EXPECT_EQ(IniWertLesen(name + "Top"), place.Top);
        EXPECT_EQ(IniWertLesen(name + "Left"), place.Left);
        EXPECT_EQ(IniWertLesen(name + "Height"), place.Height);
        EXPECT_EQ(IniWertLesen(name + "Width"), place.Width);
    }
}

TEST_F(SettingsFile, EveryKeyStandsInItsSectionAndSurvivesWritingAndReading) {
    std::map<std::string, std::string> sectionOf;
    std::size_t count = 0;
    for (const auto& [section, keys] : KnownKeys())
        for (const std::string& key : keys) {
            sectionOf[key] = section;
            ++count;
        }
    ASSERT_EQ(AllSettings().size(), count);
    std::string text = "ShowPointNumber=True\r\n";
    std::map<std::string, std::string> values;
    int next = 1;
    for (const SettingEntry& entry : AllSettings()) {
        ASSERT_TRUE(sectionOf.contains(entry.Key)) << entry.Key;
        EXPECT_EQ(sectionOf[entry.Key], entry.Section);
        const std::string number = std::to_string(1 + next++ % 5);
        std::string value = number;
        if (std::holds_alternative<FlagPlace>(entry.Place)) value = next % 2 == 0 ? "True" : "False";
        if (std::holds_alternative<std::string*>(entry.Place)) value = std::string("Größe=") + entry.Key;
        if (std::holds_alternative<double*>(entry.Place)) value = number + ".25";
        if (std::holds_alternative<float*>(entry.Place)) value = number + ".5";
        text = With(text, entry.Section, entry.Key, value);
        values[entry.Key] = value;
    }
    Hold(text);
    IniLesen();
    for (const SettingEntry& entry : AllSettings())
        EXPECT_EQ(SettingText(entry.Key), values[entry.Key]) << entry.Key;
}

TEST_F(SettingsFile, TheFlagKeysAreWrittenWithShowPointNumberFirst) {
    Keys written;
    for (const SettingEntry& entry : AllSettings())
        if (std::string(entry.Section) == "FahnenProp") written.emplace_back(entry.Key);
    EXPECT_EQ(written, KnownKeys()[8].second);
}

// --- Reading ----------------------------------------------------------------------------------------------

TEST_F(SettingsFile, OneValueIsTheFirstInTheFileAndTheWholeFileGivesTheLast) {
    Hold(CrLf("[A]\nMaxIteration=3\n[B]\nMaxIteration=4\n"));
    EXPECT_EQ(IniWertLesen("MaxIteration"), "3");
    IniLesen();
    EXPECT_EQ(Settings.MaxIteration, 4);
}

TEST_F(SettingsFile, AMissingKeyOrFileGivesThousand) {
    EXPECT_EQ(IniWertLesen("FormUnitsTop"), "1000");
    Hold(CrLf("[A]\nformunitstop=5\n'FormUnitsTop=6\nREM\nFormUnitsTop =7\n"));
    EXPECT_EQ(IniWertLesen("FormUnitsTop"), "1000");
    EXPECT_EQ(IniWertLesen("formunitstop"), "5");
}

TEST_F(SettingsFile, AnEmptyValueIsAValue) {
    Hold(CrLf("[A]\nNameMCS=\nNameOCS=a=b\n"));
    Job.NameMCS = "before";
    EXPECT_EQ(IniWertLesen("NameMCS"), "");
    IniLesen();
    EXPECT_EQ(Job.NameMCS, "");
    EXPECT_EQ(Job.NameOCS, "a=b");
}

TEST_F(SettingsFile, RemarksAreTestedExactlyOnReading) {
    Hold(CrLf("REMMaxIteration=1\n[MaxIteration=2]\n'MaxIteration=3\nrem=4\nREM=5\n"));
    IniLesen();
    EXPECT_EQ(Settings.MaxIteration, 0);
    EXPECT_EQ(IniWertLesen("rem"), "4");
    EXPECT_EQ(IniWertLesen("REM"), "1000");
    EXPECT_EQ(IniWertLesen("[MaxIteration"), "1000");
}

TEST_F(SettingsFile, GermanTruthValuesAreTaken) {
    Hold(CrLf("ShowPointNames=Wahr\nShowColorBar=Falsch\nAdTCP=True\nInvertedBMW=False\n"));
    Settings.ShowColorBar = Settings.InvertedBMW = kTrue;
    IniLesen();
    EXPECT_EQ(Settings.ShowPointNames, kTrue);
    EXPECT_EQ(Settings.ShowColorBar, kFalse);
    EXPECT_EQ(Settings.AdTCP, kTrue);
    EXPECT_EQ(Settings.InvertedBMW, kFalse);
    EXPECT_EQ(IniWertLesen("ShowPointNames"), "Wahr");
}

TEST_F(SettingsFile, AWrongClipboardValueBecomesTwoInMemoryAndFile) {
    for (const char* wrong : {"0", "6", "-1", "", "abc", "1.5", "1e400"}) {
        Hold(CrLf(std::string("[Settings]\nClipboardValue=") + wrong + "\nRawScale=1\n[LastEntry]\n"));
        IniLesen();
        EXPECT_EQ(Settings.ClipboardValue, 2) << wrong;
        EXPECT_EQ(Held(), CrLf("[Settings]\nClipboardValue=2\nRawScale=1\n[LastEntry]")) << wrong;
    }
}

TEST_F(SettingsFile, ARightClipboardValueTouchesNothing) {
    for (int value = 1; value <= 5; ++value) {
        const std::string text = CrLf("[Settings]\nClipboardValue=" + std::to_string(value) + "\n \n");
        Hold(text);
        IniLesen();
        EXPECT_EQ(Settings.ClipboardValue, value);
        EXPECT_EQ(Held(), text);
    }
}

TEST_F(SettingsFile, TheLastClipboardValueDecides) {
    const std::string text = CrLf("[Settings]\nClipboardValue=9\n[Other]\nClipboardValue=3\n");
    Hold(text);
    IniLesen();
    EXPECT_EQ(Settings.ClipboardValue, 3);
    EXPECT_EQ(Held(), text);
}

TEST_F(SettingsFile, ATextInANumericKeyIsNamedWithFileLineAndKey) {
    for (const auto& [key, value] :
         std::vector<std::pair<std::string, std::string>>{{"MaxIteration", "many"},
                                                          {"MaxIteration", ""},
                                                          {"MaxIteration", "40000"},
                                                          {"ScreenBackColor", "3000000000"},
                                                          {"sigmaX", "0,5"},
                                                          {"Vec_Maßstab", "1e300"},
                                                          {"ShowColorBar", "yes"},
                                                          {"ShowColorBar", "-1"}}) {
        Hold(CrLf("[A]\n\nRawScale=1\n" + key + "=" + value + "\nMonteCarloRuns=5\n"));
        Settings = SettingsRecord{};
        EXPECT_EQ(ReadingError(), "\"" + Run.SettingsFilePath + "\", line 4: \"" + value +
                                      "\" is no value for \"" + key + "\"");
        EXPECT_EQ(Settings.RawScale, 1);
        EXPECT_EQ(Settings.MonteCarloRuns, 0);
    }
}

TEST_F(SettingsFile, NumbersAreWrittenAndReadWithTheSystemsDelimiter) {
    Headless.Decimal = ',';
    Settings.SigmaX = 0.25;
    SettingsSchreiben({"sigmaX"});
    EXPECT_EQ(IniWertLesen("sigmaX"), "0,25");
    Settings.SigmaX = 0;
    IniLesen();
    EXPECT_EQ(Settings.SigmaX, 0.25);
    Headless.Decimal = '.';
    EXPECT_NE(ReadingError(), "");
}

TEST_F(SettingsFile, WholeNumbersAreRoundedHalfToEven) {
    Hold(CrLf("MaxIteration=2.5\nMonteCarloRuns=1E+03\n"));
    IniLesen();
    EXPECT_EQ(Settings.MaxIteration, 2);
    EXPECT_EQ(Settings.MonteCarloRuns, 1000);
}

TEST_F(SettingsFile, FlagKeysBeforeShowPointNumberAreIgnored) {
    Hold(CrLf("Left=5\nName=abc\nshowX=what\nShowPointNumber=False\nTop=7\nName=Arial\n"));
    IniLesen();
    EXPECT_TRUE(Settings.FlagDefined);
    EXPECT_EQ(Settings.FlagDefault.Left, 0);
    EXPECT_EQ(Settings.FlagDefault.Top, 7);
    EXPECT_EQ(Settings.FlagDefault.Name, "Arial");
    EXPECT_EQ(Settings.FlagDefault.ShowPointNumber, kFalse);
}

TEST_F(SettingsFile, WindowPlacesNeverCollideWithKeysOfFlags) {
    Hold(CrLf("ShowPointNumber=True\nLeft=1\nTop=2\nFormUnitsLeft=3\nFormUnitsTop=4\nMin=1.5\nMinimum=9\n"));
    IniLesen();
    EXPECT_EQ(Settings.FlagDefault.Left, 1);
    EXPECT_EQ(Settings.FlagDefault.Top, 2);
    EXPECT_EQ(IniWertLesen("FormUnitsLeft"), "3");
    EXPECT_EQ(Settings.LocalGraphics.Min, 1.5);
}

TEST_F(SettingsFile, UnknownKeysAndLooseLinesAreIgnored) {
    Hold(CrLf("[A\nfoo\n=\n==\nmaxiteration=9\n MaxIteration=8\nMaxIteration =7\n[]\n["));
    EXPECT_EQ(ReadingError(), "");
    EXPECT_EQ(Settings.MaxIteration, 0);
}

// --- Window places ----------------------------------------------------------------------------------------

TEST_F(SettingsFile, AWindowPlaceIsWrittenAndReadUnderItsName) {
    SaveWindowPlace({1, -2, 30000, 40000}, "FormX");
    EXPECT_EQ(Held(), CrLf("[Window]\nFormXHeight=40000\nFormXTop=-2\nFormXWidth=30000\nFormXLeft=1\n"
                           "\n[LastEntry]"));
    WindowPlace place;
    LoadWindowPlace(place, "FormX");
    EXPECT_EQ(place.Left, 1);
    EXPECT_EQ(place.Top, -2);
    EXPECT_EQ(place.Width, 30000);
    EXPECT_EQ(place.Height, 40000);
    LoadWindowPlace(place, "FormY");
    EXPECT_EQ(place.Left, 1000);
    EXPECT_EQ(place.Top, 1000);
    EXPECT_EQ(place.Width, 1000);
    EXPECT_EQ(place.Height, 1000);
}

TEST_F(SettingsFile, APlaceThatIsNoNumberIsNamedAndTheUsualOneTaken) {
    Hold("FormXTop=here\r\nFormXLeft=1e20\r\nFormXWidth=700\r\n");
    WindowPlace place;
    LoadWindowPlace(place, "FormX");
    EXPECT_EQ(Messages(), (std::vector<std::string>{"\"" + Run.SettingsFilePath +
                                                    "\", key \"FormXTop\": \"here\" is not a number.\r\n\r\n"
                                                    "The window opens at its usual place."}));
    EXPECT_EQ(place.Top, 1000);
    EXPECT_EQ(place.Left, 1000);
    EXPECT_EQ(place.Width, 700);
}

TEST_F(SettingsFile, SixteenBitTextIsRefusedAndLeftAsItIs) {
    std::string wide;
    for (const char c : std::string("[Global]\r\n")) wide += {c, '\0'};
    Hold(wide);
    EXPECT_NE(ReadingError().find("is no text of single bytes or UTF-8"), std::string::npos);
    IniWertSchreiben("Settings", "RawScale", "1");
    EXPECT_NE(LastMessage().find("The settings could not be stored."), std::string::npos);
    EXPECT_EQ(Held(), wide);
}

TEST_F(SettingsFile, AColumnWidthComesFromTheFirstKeyThatTheFileHas) {
    Hold("[Cols]\r\na=700\r\nb=1000\r\nc=12,5\r\nd=\r\ne=0\r\nf=100001\r\ng=100000\r\n");
    EXPECT_EQ(LoadColWidth({"a"}, 900), 700);
    EXPECT_EQ(LoadColWidth({"none", "a"}, 900), 700);
    EXPECT_EQ(LoadColWidth({"b", "a"}, 900), 1000);  // a width of 1000 is not a missing key
    EXPECT_EQ(LoadColWidth({"none"}, 900), 1000);
    EXPECT_EQ(LoadColWidth({"c"}, 900), 12);
    for (const char* none : {"d", "e", "f"}) EXPECT_EQ(LoadColWidth({none, "a"}, 900), 900);
    EXPECT_EQ(LoadColWidth({"g"}, 900), 100000);
    EXPECT_EQ(FindIniWert("d"), "");
    EXPECT_EQ(FindIniWert("none"), std::nullopt);
}

// --- Places of windows ------------------------------------------------------------------------------------

TEST_F(SettingsFile, APlaceOfAFileIsAFirstOneWhereNobodyHasMovedTheWindow) {
    const std::string text = DefaultSettingsText();
    const auto valueOf = [&text](const std::string& key) {
        const std::size_t at = text.find("\n" + key + "=");
        EXPECT_NE(at, std::string::npos) << key;
        return std::stoi(text.substr(at + key.size() + 2));
    };
    for (const std::string name : {"FormOptions", "FormGrafik", "FormBatch", "FormChangeDir"}) {
        const WindowPlace place = {valueOf(name + "Left"), valueOf(name + "Top"), valueOf(name + "Width"),
                                   valueOf(name + "Height")};
        EXPECT_TRUE(IsFirstPlace(place, name));
        EXPECT_FALSE(IsFirstPlace(place, "FormUnits")) << "that of " << name;
        for (std::int32_t WindowPlace::*side :
             {&WindowPlace::Left, &WindowPlace::Top, &WindowPlace::Width, &WindowPlace::Height}) {
            WindowPlace moved = place;
            moved.*side += 15;
            EXPECT_FALSE(IsFirstPlace(moved, name));
        }
    }
    // What a file without a place is read as.
    EXPECT_TRUE(IsFirstPlace({1000, 1000, 1000, 1000}, "FormOptions"));
    EXPECT_TRUE(IsFirstPlace({1000, 1000, 1000, 1000}, "none"));
    EXPECT_FALSE(IsFirstPlace({1000, 1000, 1000, 1015}, "none"));
}
