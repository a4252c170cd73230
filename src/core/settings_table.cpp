// Which key of the settings file belongs to which global, and what a new file holds.
#include <array>

#include "core/job.h"
#include "core/numbers.h"
#include "core/run.h"
#include "core/settings.h"
#include "core/units.h"
#include "fit/require.h"

namespace corvinade::core {

namespace {

SettingsRecord& S = Settings;
ScreenRecord& L = Settings.LocalGraphics;
FlagRecord& F = Settings.FlagDefault;

// Within "FahnenProp" the order counts: "ShowPointNumber" makes room for the keys behind it.
const SettingEntry kSettings[] = {
    {"Global", "MaxIteration", &S.MaxIteration},
    {"Global", "BestFit_Etta", &S.BestFit_Etta},

    {"Files", "LastFile1", &Run.LastFile[1]},
    {"Files", "LastFile2", &Run.LastFile[2]},
    {"Files", "LastFile3", &Run.LastFile[3]},
    {"Files", "LastFile4", &Run.LastFile[4]},

    {"Units", "UnitLength", &Job.LengthUnitName},
    {"Units", "UnitAngle", &Job.AngleUnitName},
    {"Units", "DigitLength", &Job.LengthDigits},
    {"Units", "DigitAngle", &Job.AngleDigits},
    {"Units", "PhiThetaAsQ", FlagPlace{&S.PhiThetaAsQ}},
    {"Units", "DigitScale", &S.ScaleDigits},

    {"Roots", "LastMCSRoot", &S.LastMCSRoot},
    {"Roots", "LastOCSRoot", &S.LastOCSRoot},
    {"Roots", "MCS_FileName", &S.MCS_FileName},
    {"Roots", "OCS_FileName", &S.OCS_FileName},
    {"Roots", "LastRobCadRoot", &S.LastRobCadRoot},
    {"Roots", "LastRocalRoot", &S.LastRocalRoot},
    {"Roots", "LastDir", &S.LastDir},
    {"Roots", "BatchMCSDir", &S.BatchMCSDir},
    {"Roots", "BatchTCSDir", &S.BatchTCSDir},

    {"RobCad", "Place", &S.Place},
    {"RobCad", "ToolName", &S.ToolName},

    {"Settings", "NameMCS", &Job.NameMCS},
    {"Settings", "NameOCS", &Job.NameOCS},
    {"Settings", "LastDropDownInfoInOCS", &S.LastDropDownInfoInOCS},
    {"Settings", "ClipboardValue", &S.ClipboardValue},
    {"Settings", "InvertedBMW", FlagPlace{&S.InvertedBMW}},
    {"Settings", "AdTCP", FlagPlace{&S.AdTCP}},
    {"Settings", "TabelHeadMainSheet", FlagPlace{&S.TabelHeadMainSheet}},
    {"Settings", "sigmaX", &S.SigmaX},
    {"Settings", "sigmaY", &S.SigmaY},
    {"Settings", "sigmaZ", &S.SigmaZ},
    {"Settings", "MonteCarloRuns", &S.MonteCarloRuns},
    {"Settings", "GimbalLockBorder", &S.GimbalLockBorder},
    {"Settings", "CheckForGimbalLock", FlagPlace{&S.CheckForGimbalLock}},
    {"Settings", "BatchType", &S.BatchType},
    {"Settings", "BatchWriteType", &S.BatchWriteType},
    {"Settings", "RawScale", &S.RawScale},

    {"GraphicsSettings", "DevVecDirection", FlagPlace{&S.DevVecDirection}},
    {"GraphicsSettings", "ViewAllOCS", FlagPlace{&Job.ViewAllOCS}},
    {"GraphicsSettings", "ViewAllMCS", FlagPlace{&Job.ViewAllMCS}},
    {"GraphicsSettings", "ViewAllonlyOCS", FlagPlace{&Job.ViewAllonlyOCS}},
    {"GraphicsSettings", "ViewAllonlyMCS", FlagPlace{&Job.ViewAllonlyMCS}},
    {"GraphicsSettings", "ShowPointsBigger", FlagPlace{&S.ShowPointsBigger}},
    {"GraphicsSettings", "ShowCoordinateSystemLabels", FlagPlace{&S.ShowCoordinateSystemLabels}},
    {"GraphicsSettings", "ShowPointNames", FlagPlace{&S.ShowPointNames}},
    {"GraphicsSettings", "ShowColorBar", FlagPlace{&S.ShowColorBar}},
    {"GraphicsSettings", "ScreenBackColor", &S.ScreenBackColor},
    {"GraphicsSettings", "ViewOnlyIfTrafo", FlagPlace{&S.ViewOnlyIfTrafo}},
    {"GraphicsSettings", "ViewOnlyIfNotTrafo", FlagPlace{&S.ViewOnlyIfNotTrafo}},
    {"GraphicsSettings", "DontViewOOT", FlagPlace{&S.DontViewOOT}},
    {"GraphicsSettings", "VectorThick", FlagPlace{&S.VectorThick}},
    {"GraphicsSettings", "VectorQuat", FlagPlace{&S.VectorQuat}},
    {"GraphicsSettings", "ShowRVec", FlagPlace{&S.ShowRVec}},

    {"LocalGraphics", "VectorMode", FlagPlace{&L.VectorMode}},
    {"LocalGraphics", "BigNess", &L.BigNess},
    {"LocalGraphics", "Vec_Maßstab", &L.Vec_Maßstab},
    {"LocalGraphics", "GridLength", &L.GridLength},
    {"LocalGraphics", "AnzKlassenPos", &L.AnzKlassenPos},
    {"LocalGraphics", "AnzKlassenNeg", &L.AnzKlassenNeg},
    {"LocalGraphics", "AusserhalbTol", FlagPlace{&L.AusserhalbTol}},
    {"LocalGraphics", "Min", &L.Min},
    {"LocalGraphics", "Max", &L.Max},
    {"LocalGraphics", "showVeX", FlagPlace{&L.showVeX}},
    {"LocalGraphics", "showVeY", FlagPlace{&L.showVeY}},
    {"LocalGraphics", "showVeZ", FlagPlace{&L.showVeZ}},
    {"LocalGraphics", "ColorBased", &L.ColorBased},
    {"LocalGraphics", "ShowOnlyUsedComponent", FlagPlace{&L.ShowOnlyUsedComponent}},
    {"LocalGraphics", "OuterColor", &L.OuterColor},
    {"LocalGraphics", "CS_Type", &L.CS_Type},
    {"LocalGraphics", "BinärModus", FlagPlace{&L.BinärModus}},
    {"LocalGraphics", "GridXY", FlagPlace{&L.GridXY}},
    {"LocalGraphics", "GridYZ", FlagPlace{&L.GridYZ}},
    {"LocalGraphics", "GridZX", FlagPlace{&L.GridZX}},
    {"LocalGraphics", "ADis", &L.ADis},
    {"LocalGraphics", "BDis", &L.BDis},
    {"LocalGraphics", "Cdis", &L.Cdis},
    {"LocalGraphics", "ShowGridDim", FlagPlace{&L.ShowGridDim}},

    {"FahnenProp", "ShowPointNumber", FlagPlace{&F.ShowPointNumber}},
    {"FahnenProp", "ShowActual", FlagPlace{&F.ShowActual}},
    {"FahnenProp", "ShowNominal", FlagPlace{&F.ShowNominal}},
    {"FahnenProp", "ShowDevXYZ", FlagPlace{&F.ShowDevXYZ}},
    {"FahnenProp", "showX", FlagPlace{&F.showX}},
    {"FahnenProp", "showY", FlagPlace{&F.showY}},
    {"FahnenProp", "showZ", FlagPlace{&F.showZ}},
    {"FahnenProp", "show3D", FlagPlace{&F.show3D}},
    {"FahnenProp", "showR", FlagPlace{&F.showR}},
    {"FahnenProp", "showPhi", FlagPlace{&F.showPhi}},
    {"FahnenProp", "showRho", FlagPlace{&F.showRho}},
    {"FahnenProp", "showTheta", FlagPlace{&F.showTheta}},
    {"FahnenProp", "ShowDev", FlagPlace{&F.ShowDev}},
    {"FahnenProp", "ShowTolCol", FlagPlace{&F.ShowTolCol}},
    {"FahnenProp", "ShowLegendeXYZ", FlagPlace{&F.ShowLegendeXYZ}},
    {"FahnenProp", "ShowLegendeName", FlagPlace{&F.ShowLegendeName}},
    {"FahnenProp", "ShowUseNotUse", FlagPlace{&F.ShowUseNotUse}},
    {"FahnenProp", "ShowGrid", FlagPlace{&F.ShowGrid}},
    {"FahnenProp", "ChangeAll", FlagPlace{&F.ChangeAll}},
    {"FahnenProp", "SnaptoGrid", FlagPlace{&F.SnaptoGrid}},
    {"FahnenProp", "WithinScreen", FlagPlace{&F.WithinScreen}},
    {"FahnenProp", "Left", &F.Left},
    {"FahnenProp", "Top", &F.Top},
    {"FahnenProp", "Bold", FlagPlace{&F.Bold}},
    {"FahnenProp", "Charset", &F.Charset},
    {"FahnenProp", "Italic", FlagPlace{&F.Italic}},
    {"FahnenProp", "Name", &F.Name},
    {"FahnenProp", "Size", &F.Size},
    {"FahnenProp", "Strikethrough", FlagPlace{&F.Strikethrough}},
    {"FahnenProp", "Underline", FlagPlace{&F.Underline}},
    {"FahnenProp", "Weight", &F.Weight},
    {"FahnenProp", "Forecolor", &F.Forecolor},

    {"", "Editor", &S.Editor},
};

struct DefaultPlace {
    const char* Window;
    int Height, Width, Top = 100, Left = 100;  // twips
};
constexpr DefaultPlace kDefaultPlaces[] = {
    {"FormTrafoBerechnung", 11610, 19380},
    {"FormOptions", 7050, 6855},
    {"FormColorBar", 5505, 12045},
    {"FormGrafik", 500, 500},
    {"FormGraphData", 50, 50},
    {"FormGraphicsOptions", 10095, 11340},
    {"FormInputFiles", 10458, 9540},
    {"FormInputStatistic", 6810, 6180},
    {"FormMenuHelpInfo", 5880, 13410},
    {"FormScreen", 11700, 16515},
    {"FormTrafoDetails", 11625, 17895},
    {"FormTrompete", 10845, 13845},
    {"FormUnits", 3315, 4575},
    {"FormMainSheet", 13470, 9570},
    {"FormBlackPlane", 3840, 5400},
    {"FormBatch", 10110, 8610, 1635, 4965},
    {"FormChangeDir", 8130, 8265, 2295, 6540},
    {"FormStopParaTrafo", 2580, 3675, 1125, 7245},
};

struct ToText {
    std::string operator()(FlagPlace flag) const { return IsTrue(*flag.Place) ? "True" : "False"; }
    std::string operator()(const std::string* text) const { return *text; }
    template <class Number>
    std::string operator()(const Number* number) const {
        return PlainText(*number);
    }
};

}  // namespace

std::span<const SettingEntry> AllSettings() {
    return kSettings;
}

std::string SettingText(std::string_view key) {
    for (const SettingEntry& entry : kSettings)
        if (key == entry.Key) return std::visit(ToText{}, entry.Place);
    Require(!"the setting is in the table");
    return {};
}

bool IsFirstPlace(const WindowPlace& place, std::string_view name) {
    constexpr int kMissing = 1000;
    const auto is = [&place](int left, int top, int width, int height) {
        return place.Left == left && place.Top == top && place.Width == width && place.Height == height;
    };
    for (const DefaultPlace& first : kDefaultPlaces)
        if (name == first.Window && is(first.Left, first.Top, first.Width, first.Height)) return true;
    return is(kMissing, kMissing, kMissing, kMissing);
}

std::string DefaultSettingsText() {
    std::string text;
    const auto add = [&text](const char* section, const std::string& key, const std::string& value) {
        text = WithIniValue(text, {section, key, value});
    };
    add("Global", "MaxIteration", "100");
    add("Global", "BestFit_Etta", PlainText(1e-9));
    add("GraphicsSettings", "DevVecDirection", "True");
    add("GraphicsSettings", "ViewAllOCS", "False");
    for (const char* key :
         {"ViewAllMCS", "ViewAllonlyOCS", "ViewAllonlyMCS", "ShowPointsBigger", "ShowCoordinateSystemLabels"})
        add("GraphicsSettings", key, "True");
    add("GraphicsSettings", "ShowPointNames", "False");
    add("GraphicsSettings", "ShowColorBar", "True");
    add("GraphicsSettings", "ScreenBackColor", "0");
    add("Settings", "ClipboardValue", "2");
    add("Settings", "RawScale", "2");
    for (const DefaultPlace& place : kDefaultPlaces) {
        const std::string name = place.Window;
        add("Window", name + "Top", std::to_string(place.Top));
        add("Window", name + "Left", std::to_string(place.Left));
        add("Window", name + "Height", std::to_string(place.Height));
        add("Window", name + "Width", std::to_string(place.Width));
    }
    return text;
}

}  // namespace corvinade::core
