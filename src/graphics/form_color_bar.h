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

    Control FrameClasses = Frame("Tolerance Classes");
    Control ScreenColorBar = Frame("");  // its picture is made from the Tolerance tables
    Control LabelTextObereGrenze = Label("Upper Limit"), LabelTextUntereGrenze = Label("Lower Limit");
    Control TextObereGrenze = TextBox(), TextUntereGrenze = TextBox();  // in the length unit
    Control LabelUnit1 = Label(""), LabelUnit2 = Label("");             // its name
    Control BtnSetMaxAsTol = Button("Set Ma&ximum"), BtnSetMinAsTol = Button("Set Mi&nimum");
    Control CheckSetMinMaxOnChange = CheckBox("Limits follow the &data");
    Control LabelTextAnzahlTolKlassePos = Label("Classes above 0");
    Control LabelTextAnzahlTolKlasseNeg = Label("Classes below 0");
    Control TextAnzahlTolKlassePos = TextBox(), TextAnzahlTolKlasseNeg = TextBox();
    Control VScrollAnzKlaPos = ScrollBar(1, 100), VScrollAnzKlaNeg = ScrollBar(1, 100);

    Control FrameComponents = Frame("Components");
    Control CART = Option("Cartesian", 1), CYL = Option("Cylinder", 1), SPH = Option("Sphere", 1);
    Control showX = CheckBox(""), showY = CheckBox(""), showZ = CheckBox("");
    Control ShowXYZ = CheckBox("");  // all three of them
    Control CheckShowOnlyUsedComponent = CheckBox("Show only &used Components");

    Control FrameColor = Frame("Color");
    Control ColorABS = Option("based on the Length", 2);
    Control ColorX = Option("", 2), ColorY = Option("", 2), ColorZ = Option("", 2);
    Control ColorStandardized = Option("based on the standardised Residual", 2);
    Control ColorAccuracy = Option("based on the Accuracy", 2);
    Control CheckAusserhalbTol = CheckBox("Own Color out of &Tolerance");
    Control BtnSetOuterColor = Button("Set &Color...");
    Control LabelOuterColor = Label("");  // shows the colour as its BackColor
    Control CheckBinärModus = CheckBox("Two Colors (&binary)");

    Control FrameGrid = Frame("Grid");
    Control CheckShowXY = CheckBox("XY Plane"), CheckShowYZ = CheckBox("YZ Plane");
    Control CheckShowZX = CheckBox("ZX Plane"), CheckShowGridDim = CheckBox("Show Dimensions");
    Control LabelTextADis = Label("Distance X [mm]"), LabelTextBDis = Label("Distance Y [mm]");
    Control LabelTextCDis = Label("Distance Z [mm]");
    Control TextADis = TextBox(), TextBDis = TextBox(), TextCDis = TextBox();

    Control CheckAutoApply = CheckBox("&Auto Apply"), CheckSynch = CheckBox("&Synchronize");
    Control CheckLegend = CheckBox("&Legend");
    Control BtnApply = Button("A&pply"), BtnOK = Button("&OK");

    Colour OuterColor = 0;  // as chosen
    // The limits as they were filled in or last read, and the length factor of then; unchanged they are not
    // read back.
    std::string UpperShown, LowerShown;
    double LengthFactor = 1;
    bool Typing = false;  // a number is being typed: its field stays as it is

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
inline FormColorBar ColorBarWindow;
extern const WindowEntry FormColorBar_Entry;

void ColorBar_ShowWindow(const ScreenWindow& window);  // SetFormtoVars, where the dialog is open
void ColorBar_ShowLimits(const ScreenWindow& window);  // the two limits alone
// What ScreenColorBar shows: the colours of the active window's classes, from the lowest to the highest; of
// equal height below and above zero, `below` of them are below. Empty without a window.
std::vector<Colour> ColorBarSample(int& below);

}  // namespace corvinade::graphics
