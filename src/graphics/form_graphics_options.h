// The dialog of the switches that hold for all graphics windows.
#pragma once

#include "core/rooms.h"
#include "core/window.h"

namespace corvinade::graphics {

struct FormGraphicsOptions {
    WindowState Window{.Caption = "Graphics Settings"};

    Control FramePoints;
    Control CheckPlotOCSIdent;
    Control CheckPlotMCSIdent;
    Control CheckPlotOnlyOCS;
    Control CheckPlotOnlyMCS;
    Control CheckViewOnlyTrafo;
    Control CheckViewOnlyNotTrafo;
    Control CheckDontViewOOT;

    Control FrameLook;
    Control CheckShowPointsBigger;
    Control CheckShowPointNames;
    Control CheckShowCoordinateSystemLabels;
    Control CheckShowColorBar;
    Control BtnLabelFont;

    Control FrameVectors;
    Control OptionVecDeviation;
    Control OptionVecCorrection;
    Control CheckVectorThick;
    Control CheckVectorQuat;
    Control CheckShowRDistVec;
    Control CheckShowEllipsoids;
    Control TextEllipsoidFactor;

    Control CheckAutoUpdate;
    Control BtnApply, BtnOK, BtnCancel;

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
extern FormGraphicsOptions GraphicsOptionsWindow;
extern const WindowEntry FormGraphicsOptions_Entry;

// The switch of the colour bar has been turned elsewhere; the open dialog follows.
void GraphicsOptions_ShowColorBar();

}  // namespace corvinade::graphics
