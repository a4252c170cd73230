// The dialog of the colour scale: classes, limits, components, colours and grid of the active graphics
// window.
#pragma once

#include <string>
#include <vector>

#include "core/rooms.h"
#include "core/window.h"
#include "graphics/screen_window.h"

namespace corvinade::graphics {

struct FormColorBar {
    WindowState Window{.Caption = "Color Bar"};

    Control FrameClasses;
    Control ScreenColorBar;  // its picture is made from the Tolerance tables
    Control LabelTextObereGrenze, LabelTextUntereGrenze;
    Control TextObereGrenze, TextUntereGrenze;  // in the length unit
    Control LabelUnit1, LabelUnit2;             // its name
    Control BtnSetMaxAsTol, BtnSetMinAsTol;
    Control LabelLimits;  // what the program has decided about the limits
    Control CheckSetMinMaxOnChange;
    Control LabelTextAnzahlTolKlassePos;
    Control LabelTextAnzahlTolKlasseNeg;
    Control TextAnzahlTolKlassePos, TextAnzahlTolKlasseNeg;
    Control VScrollAnzKlaPos, VScrollAnzKlaNeg;

    Control FrameComponents;
    Control CART, CYL, SPH;
    Control showX, showY, showZ;
    Control ShowXYZ;  // all three of them
    Control CheckShowOnlyUsedComponent;

    Control FrameColor;
    Control ColorABS;
    Control ColorX, ColorY, ColorZ;
    Control ColorStandardized, ColorAccuracy;
    Control CheckAusserhalbTol;
    Control BtnSetOuterColor;
    Control LabelOuterColor;  // shows the colour as its BackColor
    Control CheckBinärModus;

    Control FrameGrid;
    Control CheckShowXY, CheckShowYZ;
    Control CheckShowZX, CheckShowGridDim;
    Control LabelTextADis, LabelTextBDis;
    Control LabelTextCDis;
    Control TextADis, TextBDis, TextCDis;

    Control CheckAutoApply, CheckSynch;
    Control CheckLegend;
    Control BtnApply, BtnOK;

    Colour OuterColor = 0;  // as chosen
    // The limits as they were filled in or last read, and the length factor of then; unchanged they are not
    // read back.
    std::string UpperShown, LowerShown;
    double LengthFactor = 1;
    std::string LimitRefused;  // why a limit has not been taken
    bool Typing = false;       // a number is being typed: its field stays as it is

    // Copies the active window's fields to the dialog, which applies nothing. Nothing happens without a
    // window.
    static void SetFormtoVars();
    // Copies the dialog to the fields of the active window and computes classes and colours.
    static void Update();
    static void CS_Type_Wahl();  // the labels of the components

    static void Form_Load();
    static void Form_Unload();
    static void Form_Escape();
    static void BtnSetMaxAsTol_Click();
    static void BtnSetMinAsTol_Click();
    static void BtnSetOuterColor_Click();
    static void BtnApply_Click();
    static void BtnOK_Click();
    static void TextObereGrenze_Change();
    static void TextUntereGrenze_Change();
    static void TextADis_Change();
    static void TextBDis_Change();
    static void TextCDis_Change();
    static void TextAnzahlTolKlassePos_Change();
    static void TextAnzahlTolKlasseNeg_Change();
    static void VScrollAnzKlaPos_Change();
    static void VScrollAnzKlaNeg_Change();
    static void Component_Click();  // showX, showY, showZ
    static void ShowXYZ_Click();
    static void System_Click();     // CART, CYL, SPH
    static void GridPlane_Click();  // CheckShowXY, CheckShowYZ, CheckShowZX
    static void Setting_Click();    // all that has no more to do than to be applied
};
extern FormColorBar ColorBarWindow;
extern const WindowEntry FormColorBar_Entry;

void ColorBar_ShowWindow(const ScreenWindow& window);  // SetFormtoVars, where the dialog is open
void ColorBar_ShowLimits(const ScreenWindow& window);  // the two limits alone
// What ScreenColorBar shows: the colours of the active window's classes, from the lowest to the highest; of
// equal height below and above zero, `below` of them are below. Empty without a window.
std::vector<Colour> ColorBarSample(int& below);

}  // namespace corvinade::graphics
