// The dialog of the switches that hold for all graphics windows.
#pragma once

#include "core/rooms.h"
#include "core/window.h"

namespace corvinade::graphics {

struct FormGraphicsOptions {
    WindowState Window{.Caption = "Graphics Settings"};

    Control FramePoints = Frame("Points shown");
    Control CheckPlotOCSIdent = CheckBox("&OCS points with a partner");
    Control CheckPlotMCSIdent = CheckBox("&MCS points with a partner");
    Control CheckPlotOnlyOCS = CheckBox("Points that only OC&S has");
    Control CheckPlotOnlyMCS = CheckBox("Points that only MCS &has");
    Control CheckViewOnlyTrafo = CheckBox("Also points that are &used in the transformation");
    Control CheckViewOnlyNotTrafo = CheckBox("Also points that are &not in use");
    Control CheckDontViewOOT = CheckBox("Hide points out of &tolerance");

    Control FrameLook = Frame("Look");
    Control CheckShowPointsBigger = CheckBox("Near points &bigger");
    Control CheckShowPointNames = CheckBox("&Point names");
    Control CheckShowCoordinateSystemLabels = CheckBox("&Labels of the axes");
    Control CheckShowColorBar = CheckBox("&Color bar");
    Control BtnLabelFont = Button("Label &Font...");

    Control FrameVectors = Frame("Vectors");
    Control OptionVecDeviation = Option("Show the &deviation", 1);
    Control OptionVecCorrection = Option("Show the correct&ion", 1);
    Control CheckVectorThick = CheckBox("As &wide as the points");
    Control CheckVectorQuat = CheckBox("&Quaternion axis");
    Control CheckShowRDistVec = CheckBox("&R vectors");
    Control CheckShowEllipsoids = CheckBox("Ellipsoids of the points, enlar&ged by");
    Control TextEllipsoidFactor = TextBox();

    Control CheckAutoUpdate = CheckBox("Auto Updat&e");
    Control BtnApply = Button("&Apply"), BtnOK = Button("OK"), BtnCancel = Button("Cancel");

    // Takes the switches from the controls, writes them to the settings file in one go and paints all
    // graphics windows anew. Reads and writes Job, Settings.
    static void Übernehmen();

    static void Form_Load();
    static void Form_Escape();
    static void Setting_Click();  // every control but the buttons
    static void BtnLabelFont_Click();
    static void BtnApply_Click();
    static void BtnOK_Click();
    static void BtnCancel_Click();
};
inline FormGraphicsOptions GraphicsOptionsWindow;
extern const WindowEntry FormGraphicsOptions_Entry;

// The switch of the colour bar has been turned elsewhere; the open dialog follows.
void GraphicsOptions_ShowColorBar();

}  // namespace corvinade::graphics
