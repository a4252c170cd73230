// The dialog of the colour scale. It refers to the graphics window that is active.
#include "graphics/form_color_bar.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <type_traits>

#include "core/desktop_defaults.h"
#include "core/job.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/records.h"
#include "core/run.h"
#include "core/units.h"
#include "graphics/color_bar_limits.h"
#include "graphics/drawing.h"
#include "graphics/point_trust.h"
#include "graphics/tolerance.h"
#include "graphics/view_undo.h"
#include "graphics/view_values.h"

namespace corvinade::graphics {

FormColorBar ColorBarWindow;

namespace {

using Dialog = FormColorBar;

const ControlEntry kControls[] = {
    {"FrameClasses", &ColorBarWindow.FrameClasses, Frame("Tolerance Classes")},
    {"ScreenColorBar", &ColorBarWindow.ScreenColorBar, Frame("")},
    {"LabelTextObereGrenze", &ColorBarWindow.LabelTextObereGrenze, Label("Upper Limit")},
    {"LabelTextUntereGrenze", &ColorBarWindow.LabelTextUntereGrenze, Label("Lower Limit")},
    {"TextObereGrenze",
     &ColorBarWindow.TextObereGrenze,
     TextBox(),
     {.Change = Dialog::TextObereGrenze_Change}},
    {"TextUntereGrenze",
     &ColorBarWindow.TextUntereGrenze,
     TextBox(),
     {.Change = Dialog::TextUntereGrenze_Change}},
    {"LabelUnit1", &ColorBarWindow.LabelUnit1, Label("")},
    {"LabelUnit2", &ColorBarWindow.LabelUnit2, Label("")},
    {"BtnSetMaxAsTol",
     &ColorBarWindow.BtnSetMaxAsTol,
     Button("Set Ma&ximum"),
     {.Click = Dialog::BtnSetMaxAsTol_Click}},
    {"BtnSetMinAsTol",
     &ColorBarWindow.BtnSetMinAsTol,
     Button("Set Mi&nimum"),
     {.Click = Dialog::BtnSetMinAsTol_Click}},
    {"LabelLimits", &ColorBarWindow.LabelLimits, Label("")},
    {"CheckSetMinMaxOnChange",
     &ColorBarWindow.CheckSetMinMaxOnChange,
     CheckBox("Limits follow the &data"),
     {.Click = Dialog::Setting_Click}},
    {"LabelTextAnzahlTolKlassePos", &ColorBarWindow.LabelTextAnzahlTolKlassePos, Label("Classes above 0")},
    {"LabelTextAnzahlTolKlasseNeg", &ColorBarWindow.LabelTextAnzahlTolKlasseNeg, Label("Classes below 0")},
    {"TextAnzahlTolKlassePos",
     &ColorBarWindow.TextAnzahlTolKlassePos,
     TextBox(),
     {.Change = Dialog::TextAnzahlTolKlassePos_Change}},
    {"TextAnzahlTolKlasseNeg",
     &ColorBarWindow.TextAnzahlTolKlasseNeg,
     TextBox(),
     {.Change = Dialog::TextAnzahlTolKlasseNeg_Change}},
    {"VScrollAnzKlaPos",
     &ColorBarWindow.VScrollAnzKlaPos,
     ScrollBar(1, 100),
     {.Click = Dialog::VScrollAnzKlaPos_Change}},
    {"VScrollAnzKlaNeg",
     &ColorBarWindow.VScrollAnzKlaNeg,
     ScrollBar(1, 100),
     {.Click = Dialog::VScrollAnzKlaNeg_Change}},
    {"FrameComponents", &ColorBarWindow.FrameComponents, Frame("Components")},
    {"CART", &ColorBarWindow.CART, Option("Cartesian", 1), {.Click = Dialog::System_Click}},
    {"CYL", &ColorBarWindow.CYL, Option("Cylinder", 1), {.Click = Dialog::System_Click}},
    {"SPH", &ColorBarWindow.SPH, Option("Sphere", 1), {.Click = Dialog::System_Click}},
    {"showX", &ColorBarWindow.showX, CheckBox(""), {.Click = Dialog::Component_Click}},
    {"showY", &ColorBarWindow.showY, CheckBox(""), {.Click = Dialog::Component_Click}},
    {"showZ", &ColorBarWindow.showZ, CheckBox(""), {.Click = Dialog::Component_Click}},
    {"ShowXYZ", &ColorBarWindow.ShowXYZ, CheckBox(""), {.Click = Dialog::ShowXYZ_Click}},
    {"CheckShowOnlyUsedComponent",
     &ColorBarWindow.CheckShowOnlyUsedComponent,
     CheckBox("Show only &used Components"),
     {.Click = Dialog::Setting_Click}},
    {"FrameColor", &ColorBarWindow.FrameColor, Frame("Color")},
    {"ColorABS",
     &ColorBarWindow.ColorABS,
     Option("based on the Length", 2),
     {.Click = Dialog::Setting_Click}},
    {"ColorX", &ColorBarWindow.ColorX, Option("", 2), {.Click = Dialog::Setting_Click}},
    {"ColorY", &ColorBarWindow.ColorY, Option("", 2), {.Click = Dialog::Setting_Click}},
    {"ColorZ", &ColorBarWindow.ColorZ, Option("", 2), {.Click = Dialog::Setting_Click}},
    {"ColorStandardized",
     &ColorBarWindow.ColorStandardized,
     Option("based on the standardised Residual", 2),
     {.Click = Dialog::Setting_Click}},
    {"ColorAccuracy",
     &ColorBarWindow.ColorAccuracy,
     Option("based on the Accuracy", 2),
     {.Click = Dialog::Setting_Click}},
    {"CheckAusserhalbTol",
     &ColorBarWindow.CheckAusserhalbTol,
     CheckBox("Own Color out of &Tolerance"),
     {.Click = Dialog::Setting_Click}},
    {"BtnSetOuterColor",
     &ColorBarWindow.BtnSetOuterColor,
     Button("Set &Color..."),
     {.Click = Dialog::BtnSetOuterColor_Click}},
    {"LabelOuterColor", &ColorBarWindow.LabelOuterColor, Label("")},
    {"CheckBinärModus",
     &ColorBarWindow.CheckBinärModus,
     CheckBox("Two Colors (&binary)"),
     {.Click = Dialog::Setting_Click}},
    {"FrameGrid", &ColorBarWindow.FrameGrid, Frame("Grid")},
    {"CheckShowXY", &ColorBarWindow.CheckShowXY, CheckBox("XY Plane"), {.Click = Dialog::GridPlane_Click}},
    {"CheckShowYZ", &ColorBarWindow.CheckShowYZ, CheckBox("YZ Plane"), {.Click = Dialog::GridPlane_Click}},
    {"CheckShowZX", &ColorBarWindow.CheckShowZX, CheckBox("ZX Plane"), {.Click = Dialog::GridPlane_Click}},
    {"CheckShowGridDim",
     &ColorBarWindow.CheckShowGridDim,
     CheckBox("Show Dimensions"),
     {.Click = Dialog::Setting_Click}},
    {"LabelTextADis", &ColorBarWindow.LabelTextADis, Label("Distance X [mm]")},
    {"LabelTextBDis", &ColorBarWindow.LabelTextBDis, Label("Distance Y [mm]")},
    {"LabelTextCDis", &ColorBarWindow.LabelTextCDis, Label("Distance Z [mm]")},
    {"TextADis", &ColorBarWindow.TextADis, TextBox(), {.Change = Dialog::TextADis_Change}},
    {"TextBDis", &ColorBarWindow.TextBDis, TextBox(), {.Change = Dialog::TextBDis_Change}},
    {"TextCDis", &ColorBarWindow.TextCDis, TextBox(), {.Change = Dialog::TextCDis_Change}},
    {"CheckAutoApply",
     &ColorBarWindow.CheckAutoApply,
     CheckBox("&Auto Apply"),
     {.Click = Dialog::Setting_Click}},
    {"CheckSynch", &ColorBarWindow.CheckSynch, CheckBox("&Synchronize")},
    {"CheckLegend", &ColorBarWindow.CheckLegend, CheckBox("&Legend")},
    {"BtnApply", &ColorBarWindow.BtnApply, Button("A&pply"), {.Click = Dialog::BtnApply_Click}},
    {"BtnOK", &ColorBarWindow.BtnOK, Button("&OK"), {.Click = Dialog::BtnOK_Click}},
};

// --- Texts and numbers ------------------------------------------------------------------------------------

// Digits, one separator and a leading minus stay, all else goes.
std::string NumberCharacters(const std::string& text) {
    const char separator = SystemDecimal();
    std::string kept;
    bool separated = false;
    for (const char c : text) {
        const bool digit = c >= '0' && c <= '9';
        const bool first = c == '-' && kept.empty();
        const bool separates = c == separator && !separated;
        if (digit || first || separates) kept += c;
        separated = separated || separates;
    }
    return kept;
}

// A spacing of the grid, mm.
std::int32_t SpacingOf(const Control& text) {
    return static_cast<std::int32_t>(std::clamp(std::nearbyint(ColorBar_NumberOf(text.Text)), 0.0, 1e9));
}

std::int16_t ClassesOf(const Control& text) {
    return static_cast<std::int16_t>(std::clamp(Val(text.Text), 1.0, static_cast<double>(kMostClasses)));
}

Flag FlagOf(const Control& check) {
    return ToFlag(check.Value == 1);
}
int ValueOf(Flag flag) {
    return IsTrue(flag) ? 1 : 0;
}

// --- Applying ---------------------------------------------------------------------------------------------

// Do two states differ in a number or a text?
bool Differs(const ScreenRecord& one, const ScreenRecord& other) {
    const auto differs = [&one, &other](const auto& place) {
        using Value = std::remove_cvref_t<decltype(one.*place)>;
        if constexpr (std::is_arithmetic_v<Value> || std::is_same_v<Value, std::string>)
            return one.*place != other.*place;
        else
            return false;
    };
    return std::ranges::any_of(ScreenFields(),
                               [&](const ScreenField& field) { return std::visit(differs, field.Place); });
}

void Apply() {
    ScreenWindow* window = findLFDFORM();
    if (window == nullptr) return;
    const ScreenRecord before = window->State;
    Dialog::Update();
    Stelle_Grafik_dar(*window);
    if (Differs(before, window->State)) StoreScreenPropertiesToRecord(*window);
}

void ApplyIfAuto() {
    if (ColorBarWindow.CheckAutoApply.Value == 1) Apply();
}

void NumberChanged(Control& text) {
    text.Text = NumberCharacters(text.Text);
    struct Typed {
        Typed() { ColorBarWindow.Typing = true; }
        ~Typed() { ColorBarWindow.Typing = false; }
        Typed(const Typed&) = delete;
        Typed& operator=(const Typed&) = delete;
    };
    const Typed typed;
    ApplyIfAuto();
}

void ClassesChanged(Control& text, Control& scroll) {
    const double value = Val(text.Text);
    if (value > kMostClasses) ShowMessage("max = 100");
    const std::int16_t classes = ClassesOf(text);
    text.Text = std::to_string(classes);
    scroll.Value = classes;
    ApplyIfAuto();
}

void ShowClasses(int classes, Control& text, Control& scroll) {
    text.Text = std::to_string(classes);
    scroll.Value = std::clamp(classes, scroll.Min, scroll.Max);
}

void EnableSpacings() {
    Dialog& d = ColorBarWindow;
    const bool xy = d.CheckShowXY.Value == 1, yz = d.CheckShowYZ.Value == 1, zx = d.CheckShowZX.Value == 1;
    d.TextADis.Enabled = xy || zx;
    d.TextBDis.Enabled = xy || yz;
    d.TextCDis.Enabled = yz || zx;
}

bool AllComponents() {
    const Dialog& d = ColorBarWindow;
    return d.showX.Value == 1 && d.showY.Value == 1 && d.showZ.Value == 1;
}

void Close() {
    UnloadWindow("FormColorBar");
}

}  // namespace

const WindowEntry FormColorBar_Entry = {
    .Name = "FormColorBar",
    .State = &ColorBarWindow.Window,
    .Controls = kControls,
    .Fresh = [] { ColorBarWindow = FormColorBar{}; },
    .Load = FormColorBar::Form_Load,
    .Unload = FormColorBar::Form_Unload,
    .Escape = FormColorBar::Form_Escape,
    .Stand = WindowStand::Beside,
};

void FormColorBar::SetFormtoVars() {
    const ScreenWindow* window = findLFDFORM();
    if (window == nullptr) return;
    Dialog& d = ColorBarWindow;
    const ScreenRecord& state = window->State;
    ShowClasses(state.AnzKlassenPos, d.TextAnzahlTolKlassePos, d.VScrollAnzKlaPos);
    ShowClasses(state.AnzKlassenNeg, d.TextAnzahlTolKlasseNeg, d.VScrollAnzKlaNeg);
    ColorBar_ShowLimits(*window);
    d.showX.Value = ValueOf(state.showVeX);
    d.showY.Value = ValueOf(state.showVeY);
    d.showZ.Value = ValueOf(state.showVeZ);
    d.ShowXYZ.Value = AllComponents() ? 1 : 0;
    d.CheckSetMinMaxOnChange.Value = window->SetMinMaxOnChange ? 1 : 0;
    d.ColorX.Value = state.ColorBased == "x" ? 1 : 0;
    d.ColorY.Value = state.ColorBased == "y" ? 1 : 0;
    d.ColorZ.Value = state.ColorBased == "z" ? 1 : 0;
    d.ColorStandardized.Value = state.ColorBased == kByStandardized ? 1 : 0;
    d.ColorAccuracy.Value = state.ColorBased == kByAccuracy ? 1 : 0;
    d.ColorABS.Value = 1 - d.ColorX.Value - d.ColorY.Value - d.ColorZ.Value - d.ColorStandardized.Value -
                       d.ColorAccuracy.Value;
    d.CYL.Value = state.CS_Type == "CYL" ? 1 : 0;
    d.SPH.Value = state.CS_Type == "SPH" ? 1 : 0;
    d.CART.Value = 1 - d.CYL.Value - d.SPH.Value;
    CS_Type_Wahl();
    d.CheckShowOnlyUsedComponent.Value = ValueOf(state.ShowOnlyUsedComponent);
    d.CheckAusserhalbTol.Value = ValueOf(state.AusserhalbTol);
    d.OuterColor = d.LabelOuterColor.BackColor = state.OuterColor & 0xFFFFFF;
    d.CheckBinärModus.Value = ValueOf(state.BinärModus);
    d.CheckShowXY.Value = ValueOf(state.GridXY);
    d.CheckShowYZ.Value = ValueOf(state.GridYZ);
    d.CheckShowZX.Value = ValueOf(state.GridZX);
    d.CheckShowGridDim.Value = ValueOf(state.ShowGridDim);
    d.TextADis.Text = std::to_string(state.ADis);
    d.TextBDis.Text = std::to_string(state.BDis);
    d.TextCDis.Text = std::to_string(state.Cdis);
    EnableSpacings();
}

void FormColorBar::Update() {
    ScreenWindow* window = findLFDFORM();
    if (window == nullptr) return;
    Dialog& d = ColorBarWindow;
    ScreenRecord& state = window->State;
    state.AnzKlassenPos = ClassesOf(d.TextAnzahlTolKlassePos);
    state.AnzKlassenNeg = ClassesOf(d.TextAnzahlTolKlasseNeg);
    const bool typed = ColorBar_TakeLimits(state);
    state.showVeX = FlagOf(d.showX);
    state.showVeY = FlagOf(d.showY);
    state.showVeZ = FlagOf(d.showZ);
    window->SetMinMaxOnChange = d.CheckSetMinMaxOnChange.Value == 1;
    const std::string before = state.ColorBased;
    state.ColorBased = d.ColorX.Value == 1              ? "x"
                       : d.ColorY.Value == 1            ? "y"
                       : d.ColorZ.Value == 1            ? "z"
                       : d.ColorStandardized.Value == 1 ? kByStandardized
                       : d.ColorAccuracy.Value == 1     ? kByAccuracy
                                                        : "";
    // Limits of deviations say nothing of tests and accuracies, and the other way round.
    if (before != state.ColorBased && (ColoursByTrust(before) || ColoursByTrust(state.ColorBased))) {
        state.Max = ColoursByTrust(state.ColorBased) ? TrustLimit(state.ColorBased) : 0;
        state.Min = 0;
    }
    // Those of another component are taken from the points when the classes are next filled.
    if (before != state.ColorBased && !typed && HasDesktopLimits(state)) state.Max = state.Min = 0;
    state.CS_Type = d.CYL.Value == 1 ? "CYL" : d.SPH.Value == 1 ? "SPH" : "CART";
    state.ShowOnlyUsedComponent = FlagOf(d.CheckShowOnlyUsedComponent);
    state.AusserhalbTol = FlagOf(d.CheckAusserhalbTol);
    state.OuterColor = d.OuterColor;
    state.BinärModus = FlagOf(d.CheckBinärModus);
    state.GridXY = FlagOf(d.CheckShowXY);
    state.GridYZ = FlagOf(d.CheckShowYZ);
    state.GridZX = FlagOf(d.CheckShowZX);
    state.ShowGridDim = FlagOf(d.CheckShowGridDim);
    state.ADis = SpacingOf(d.TextADis);
    state.BDis = SpacingOf(d.TextBDis);
    state.Cdis = SpacingOf(d.TextCDis);
    ForgetClasses();
    Transform_dev_to_klasse(*window);
    ColorBar_ShowLimits(*window);
}

void FormColorBar::CS_Type_Wahl() {
    Dialog& d = ColorBarWindow;
    const bool cylinder = d.CYL.Value == 1, sphere = d.SPH.Value == 1;
    const auto [first, second, third] = ComponentNames(cylinder ? "CYL" : sphere ? "SPH" : "CART");
    const std::string between = cylinder || sphere ? "_" : "";
    const auto show = [](const std::string& component) { return "Show ve." + component + " Component"; };
    d.showX.Text = show(first);
    d.showY.Text = show(second);
    d.showZ.Text = show(third);
    d.ShowXYZ.Text = show(first + between + second + between + third);
    d.ColorX.Text = std::string("based on ve.") + first;
    d.ColorY.Text = std::string("based on ve.") + second;
    d.ColorZ.Text = std::string("based on ve.") + third;
}

void ColorBar_ShowWindow(const ScreenWindow& window) {
    if (IsLoaded("FormColorBar") && &window == Screens().Active) FormColorBar::SetFormtoVars();
}

std::vector<Colour> ColorBarSample(int& below) {
    std::vector<Colour> colours;
    const ScreenWindow* window = findLFDFORM();
    // What has no sign has no side below zero, in the picture's bar either.
    const bool oneSided = window != nullptr && DesktopDefaults.ColorBar && !IsSigned(window->State);
    below = window == nullptr || oneSided ? 0 : std::max<int>(window->State.AnzKlassenNeg, 0);
    if (window == nullptr) return colours;
    for (int k = 1 - below; k <= window->State.AnzKlassenPos; ++k) colours.push_back(ClassColour(*window, k));
    return colours;
}

void FormColorBar::Form_Load() {
    Run.ColorBarOpen = kTrue;
    CS_Type_Wahl();
    EnableSpacings();
    SetFormtoVars();
    // Nothing asks for these two; scripts find them where they were.
    if (DesktopDefaults.ColorBar)
        for (Control* control : {&ColorBarWindow.CheckSynch, &ColorBarWindow.CheckLegend})
            control->Visible = false;
}
void FormColorBar::Form_Unload() {
    Run.ColorBarOpen = kFalse;
}
void FormColorBar::Form_Escape() {
    Close();
}
void FormColorBar::BtnSetMaxAsTol_Click() {
    ColorBar_SetUpperLimit();
}
void FormColorBar::BtnSetMinAsTol_Click() {
    ColorBar_SetLowerLimit();
}
void FormColorBar::BtnSetOuterColor_Click() {
    const std::optional<std::int32_t> chosen = AskColour(ColorBarWindow.OuterColor);
    if (!chosen) return;
    ColorBarWindow.OuterColor = ColorBarWindow.LabelOuterColor.BackColor = *chosen & 0xFFFFFF;
    ApplyIfAuto();
}
void FormColorBar::BtnApply_Click() {
    Apply();
}
void FormColorBar::BtnOK_Click() {
    Apply();
    Close();
}
void FormColorBar::TextObereGrenze_Change() {
    NumberChanged(ColorBarWindow.TextObereGrenze);
}
void FormColorBar::TextUntereGrenze_Change() {
    NumberChanged(ColorBarWindow.TextUntereGrenze);
}
void FormColorBar::TextADis_Change() {
    NumberChanged(ColorBarWindow.TextADis);
}
void FormColorBar::TextBDis_Change() {
    NumberChanged(ColorBarWindow.TextBDis);
}
void FormColorBar::TextCDis_Change() {
    NumberChanged(ColorBarWindow.TextCDis);
}
void FormColorBar::TextAnzahlTolKlassePos_Change() {
    ClassesChanged(ColorBarWindow.TextAnzahlTolKlassePos, ColorBarWindow.VScrollAnzKlaPos);
}
void FormColorBar::TextAnzahlTolKlasseNeg_Change() {
    ClassesChanged(ColorBarWindow.TextAnzahlTolKlasseNeg, ColorBarWindow.VScrollAnzKlaNeg);
}
void FormColorBar::VScrollAnzKlaPos_Change() {
    SetText(ColorBarWindow.TextAnzahlTolKlassePos, std::to_string(ColorBarWindow.VScrollAnzKlaPos.Value));
}
void FormColorBar::VScrollAnzKlaNeg_Change() {
    SetText(ColorBarWindow.TextAnzahlTolKlasseNeg, std::to_string(ColorBarWindow.VScrollAnzKlaNeg.Value));
}
void FormColorBar::Component_Click() {
    ColorBarWindow.ShowXYZ.Value = AllComponents() ? 1 : 0;
    ApplyIfAuto();
}
void FormColorBar::ShowXYZ_Click() {
    Dialog& d = ColorBarWindow;
    d.showX.Value = d.showY.Value = d.showZ.Value = d.ShowXYZ.Value == 1 ? 1 : 0;
    ApplyIfAuto();
}
void FormColorBar::System_Click() {
    CS_Type_Wahl();
    ApplyIfAuto();
}
void FormColorBar::GridPlane_Click() {
    EnableSpacings();
    ApplyIfAuto();
}
void FormColorBar::Setting_Click() {
    ApplyIfAuto();
}

}  // namespace corvinade::graphics
