// The small window whose button ends the fit to a shape. It is open while the fit runs.
#pragma once

#include "core/rooms.h"
#include "core/window.h"

namespace corvinade::paraboloid {

struct FormStopParaTrafo {
    WindowState Window{.Caption = "Paraboloid"};

    Control LabelStopParaTrafo;
    Control BtnStopParaTrafo;

    static void BtnStopParaTrafo_Click();
    static void Form_Unload();
};
extern FormStopParaTrafo StopParaTrafo;
extern const WindowEntry FormStopParaTrafo_Entry;

// Ends the fit behind its present pass: sets ParaboloidRun.ParaStopRequested, closes this window and lets the
// user into the calculation window again. Closing the window does the same.
void StopIt();

// Closes this window without ending anything.
void CloseStopWindow();

}  // namespace corvinade::paraboloid
