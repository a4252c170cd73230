// The window of the settings that hold for the whole program: what a calculation puts on the clipboard,
// the copy of the main sheet, Monte Carlo, and the border of the gimbal lock.
#pragma once

#include "core/rooms.h"
#include "core/window.h"

namespace corvinade::analysis {

struct FormOptions {
    WindowState Window{.Caption = "Options"};

    Control OptionNIX = Option("Do &not copy anything to clipboard", 1);
    Control OptionALL = Option("&Complete results to clipboard after each calculation", 1);
    Control OptionRobot = Option("&Robot measurement protocol results after each calculation", 1);
    Control OptionBMW = WithTip(Option("BMW Cell Calibration Component Parameters", 1),
                                "Tra x, Tra y, Tra z, -rot x, -rot y, -rot z");
    Control CheckInverted = CheckBox("give inverted Parameters to Clipboard (SWAP Trafo direction)");
    Control OptionKuka = WithTip(Option("Kuka Robot Parameter X, Y, Z, A, B, C", 1),
                                 "Copys Tra x, Tra y, Tra z and -Rotz, -Roty, -Rotx to the Clipboard");
    Control CheckAdTCP = CheckBox("&ad TCP xyz to Kuka Parameter");
    Control Option1 = Option("Shenyang Parameter - UNFERTIG! INVISIBLE", 1);

    Control CheckTabelHeading = CheckBox("copy Tabel heading with data");

    Control LabelSx = Label("Standard Deviation for MCS x Coordinates");
    Control TextSx = TextBox();
    Control LabelSy = Label("Standard Deviation for MCS y Coordinates");
    Control TextSy = TextBox();
    Control LabelSz = Label("Standard Deviation for MCS z Coordinates");
    Control TextSz = TextBox();
    Control LabelMonteCarloRuns = Label("Monte Carlo runs");
    Control TextMonteCarloRuns = TextBox();
    Control LabelGimbalLock = Label("Gimbal Lock Border");
    Control TextGimbalLock = TextBox();

    std::string BorderShown;  // what TextGimbalLock showed at first

    Control BtnOK = Button("OK");
    Control BtnCancel = Button("Cancel");

    static void Form_Load();
    static void Form_Escape();
    static void OptionNIX_Click();
    static void OptionALL_Click();
    static void OptionRobot_Click();
    static void OptionBMW_Click();
    static void OptionKuka_Click();
    static void Option1_Click();
    static void BtnOK_Click();
    static void BtnCancel_Click();

    // Takes the settings from the controls and writes them to the settings file in one go. Throws
    // PlatformError naming the field when a text is no number or too large; nothing is stored then.
    //   TextSx, TextSy, TextSz   mm          TextMonteCarloRuns   whole number, below 2 counts as 2
    //   TextGimbalLock           in the angle unit
    static void EinstellungenÜbernehmen();

private:
    static Control WithTip(Control control, const char* tip) {
        control.ToolTip = tip;
        return control;
    }
};
inline FormOptions OptionsWindow;
extern const WindowEntry FormOptions_Entry;

}  // namespace corvinade::analysis
