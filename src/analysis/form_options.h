// The window of the settings that hold for the whole program: what a calculation puts on the clipboard,
// the copy of the main sheet, Monte Carlo, and the border of the gimbal lock.
#pragma once

#include "core/rooms.h"
#include "core/window.h"

namespace corvinade::analysis {

struct FormOptions {
    WindowState Window{.Caption = "Options"};

    Control OptionNIX;
    Control OptionALL;
    Control OptionRobot;
    Control OptionBMW;
    Control CheckInverted;
    Control OptionKuka;
    Control CheckAdTCP;
    Control Option1;

    Control CheckTabelHeading;

    Control LabelSx;
    Control TextSx;
    Control LabelSy;
    Control TextSy;
    Control LabelSz;
    Control TextSz;
    Control LabelMonteCarloRuns;
    Control TextMonteCarloRuns;
    Control LabelGimbalLock;
    Control TextGimbalLock;

    std::string BorderShown;  // what TextGimbalLock showed at first

    Control BtnOK;
    Control BtnCancel;

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
};
extern FormOptions OptionsWindow;
extern const WindowEntry FormOptions_Entry;

}  // namespace corvinade::analysis
