// The window of the settings that hold for the whole program.
#include "analysis/form_options.h"

#include "core/job.h"
#include "core/numbers.h"
#include "core/settings.h"
#include "core/units.h"

namespace corvinade::analysis {

FormOptions OptionsWindow;

namespace {

const ControlEntry kControls[] = {
    {"OptionNIX",
     &OptionsWindow.OptionNIX,
     Option("Do &not copy anything to clipboard", 1),
     {.Click = FormOptions::OptionNIX_Click}},
    {"OptionALL",
     &OptionsWindow.OptionALL,
     Option("&Complete results to clipboard after each calculation", 1),
     {.Click = FormOptions::OptionALL_Click}},
    {"OptionRobot",
     &OptionsWindow.OptionRobot,
     Option("&Robot measurement protocol results after each calculation", 1),
     {.Click = FormOptions::OptionRobot_Click}},
    {"OptionBMW",
     &OptionsWindow.OptionBMW,
     WithTip(Option("BMW Cell Calibration Component Parameters", 1),
             "Tra x, Tra y, Tra z, -rot x, -rot y, -rot z"),
     {.Click = FormOptions::OptionBMW_Click}},
    {"CheckInverted", &OptionsWindow.CheckInverted,
     CheckBox("give inverted Parameters to Clipboard (SWAP Trafo direction)")},
    {"OptionKuka",
     &OptionsWindow.OptionKuka,
     WithTip(Option("Kuka Robot Parameter X, Y, Z, A, B, C", 1),
             "Copys Tra x, Tra y, Tra z and -Rotz, -Roty, -Rotx to the Clipboard"),
     {.Click = FormOptions::OptionKuka_Click}},
    {"CheckAdTCP", &OptionsWindow.CheckAdTCP, CheckBox("&ad TCP xyz to Kuka Parameter")},
    {"Option1",
     &OptionsWindow.Option1,
     Option("Shenyang Parameter - UNFERTIG! INVISIBLE", 1),
     {.Click = FormOptions::Option1_Click}},
    {"CheckTabelHeading", &OptionsWindow.CheckTabelHeading, CheckBox("copy Tabel heading with data")},
    {"LabelSx", &OptionsWindow.LabelSx, Label("Standard Deviation for MCS x Coordinates")},
    {"TextSx", &OptionsWindow.TextSx, TextBox()},
    {"LabelSy", &OptionsWindow.LabelSy, Label("Standard Deviation for MCS y Coordinates")},
    {"TextSy", &OptionsWindow.TextSy, TextBox()},
    {"LabelSz", &OptionsWindow.LabelSz, Label("Standard Deviation for MCS z Coordinates")},
    {"TextSz", &OptionsWindow.TextSz, TextBox()},
    {"LabelMonteCarloRuns", &OptionsWindow.LabelMonteCarloRuns, Label("Monte Carlo runs")},
    {"TextMonteCarloRuns", &OptionsWindow.TextMonteCarloRuns, TextBox()},
    {"LabelGimbalLock", &OptionsWindow.LabelGimbalLock, Label("Gimbal Lock Border")},
    {"TextGimbalLock", &OptionsWindow.TextGimbalLock, TextBox()},
    {"BtnOK", &OptionsWindow.BtnOK, Button("OK"), {.Click = FormOptions::BtnOK_Click}},
    {"BtnCancel", &OptionsWindow.BtnCancel, Button("Cancel"), {.Click = FormOptions::BtnCancel_Click}},
};

// The options in the order of their numbers, which begin at 1.
Control* const kClipboardOptions[] = {&OptionsWindow.OptionNIX, &OptionsWindow.OptionALL,
                                      &OptionsWindow.OptionRobot, &OptionsWindow.OptionBMW,
                                      &OptionsWindow.OptionKuka};

struct FlagBox {
    Control* Box;
    Flag* Setting;
};
const FlagBox kFlagBoxes[] = {{&OptionsWindow.CheckInverted, &Settings.InvertedBMW},
                              {&OptionsWindow.CheckAdTCP, &Settings.AdTCP},
                              {&OptionsWindow.CheckTabelHeading, &Settings.TabelHeadMainSheet}};

constexpr std::int32_t kUsualRuns = 100;  // where no number of runs has been chosen yet
constexpr std::int32_t kFewestRuns = 2;   // below that there is no spread

// The two boxes belong to one option each.
void ShowBoxesOfOption() {
    OptionsWindow.CheckInverted.Visible = OptionsWindow.OptionBMW.Value == 1;
    OptionsWindow.CheckAdTCP.Visible = OptionsWindow.OptionKuka.Value == 1;
}

double NumberOf(const Control& text, const Control& label) {
    return NumberFromText(text.Text, label.Text);
}

}  // namespace

const WindowEntry FormOptions_Entry = {
    .Name = "FormOptions",
    .State = &OptionsWindow.Window,
    .Controls = kControls,
    .Fresh = [] { OptionsWindow = FormOptions{}; },
    .Load = FormOptions::Form_Load,
    .Escape = FormOptions::Form_Escape,
    .Stand = WindowStand::Dialog,
};

void FormOptions::Form_Load() {
    FormOptions& w = OptionsWindow;
    w.Option1.Visible = false;
    const int chosen = Settings.ClipboardValue;
    if (chosen >= 1 && chosen <= static_cast<int>(std::size(kClipboardOptions)))
        SetValue(*kClipboardOptions[chosen - 1], 1);
    ShowBoxesOfOption();
    for (const FlagBox& flag : kFlagBoxes) SetValue(*flag.Box, IsTrue(*flag.Setting) ? 1 : 0);
    SetText(w.TextSx, PlainText(Settings.SigmaX));
    SetText(w.TextSy, PlainText(Settings.SigmaY));
    SetText(w.TextSz, PlainText(Settings.SigmaZ));
    SetText(w.TextMonteCarloRuns,
            PlainText(Settings.MonteCarloRuns == 0 ? kUsualRuns : Settings.MonteCarloRuns));
    w.LabelGimbalLock.Text = "Gimbal Lock Border in " + Job.AngleUnitName;
    SetText(w.TextGimbalLock, FormatNumber(Settings.GimbalLockBorder * Units.AngleFactor, Units.FmtAngle));
    w.BorderShown = w.TextGimbalLock.Text;
}

void FormOptions::Form_Escape() {
    UnloadWindow("FormOptions");
}

void FormOptions::OptionNIX_Click() {
    ShowBoxesOfOption();
}
void FormOptions::OptionALL_Click() {
    ShowBoxesOfOption();
}
void FormOptions::OptionRobot_Click() {
    ShowBoxesOfOption();
}
void FormOptions::OptionBMW_Click() {
    ShowBoxesOfOption();
}
void FormOptions::OptionKuka_Click() {
    ShowBoxesOfOption();
}
void FormOptions::Option1_Click() {
    ShowBoxesOfOption();
}

void FormOptions::EinstellungenÜbernehmen() {
    const FormOptions& w = OptionsWindow;
    // All texts are read before the first setting changes, so that a wrong one stores nothing.
    const double sigmaX = NumberOf(w.TextSx, w.LabelSx);
    const double sigmaY = NumberOf(w.TextSy, w.LabelSy);
    const double sigmaZ = NumberOf(w.TextSz, w.LabelSz);
    const std::int32_t runs =
        ToInt32(NumberOf(w.TextMonteCarloRuns, w.LabelMonteCarloRuns), w.LabelMonteCarloRuns.Text);
    // The format has few digits, down to none: a border that nobody has touched keeps all of its own.
    const double border_rad = w.TextGimbalLock.Text == w.BorderShown
                                  ? Settings.GimbalLockBorder
                                  : NumberOf(w.TextGimbalLock, w.LabelGimbalLock) / Units.AngleFactor;

    for (std::size_t i = 0; i < std::size(kClipboardOptions); ++i)
        if (kClipboardOptions[i]->Value == 1) Settings.ClipboardValue = static_cast<std::int16_t>(i + 1);
    for (const FlagBox& flag : kFlagBoxes) *flag.Setting = ToFlag(flag.Box->Value == 1);
    Settings.SigmaX = sigmaX;
    Settings.SigmaY = sigmaY;
    Settings.SigmaZ = sigmaZ;
    Settings.MonteCarloRuns = runs < kFewestRuns ? kFewestRuns : runs;
    Settings.GimbalLockBorder = border_rad;
    SettingsSchreiben({"ClipboardValue", "InvertedBMW", "AdTCP", "TabelHeadMainSheet", "sigmaX", "sigmaY",
                       "sigmaZ", "MonteCarloRuns", "GimbalLockBorder"});
}

void FormOptions::BtnOK_Click() {
    EinstellungenÜbernehmen();
    UnloadWindow("FormOptions");
}

void FormOptions::BtnCancel_Click() {
    UnloadWindow("FormOptions");
}

}  // namespace corvinade::analysis
