// The small window whose button ends the fit to a shape.
#include "paraboloid/form_stop_para_trafo.h"

#include "engine/form_trafo_berechnung.h"
#include "paraboloid/paraboloid.h"

namespace corvinade::paraboloid {

FormStopParaTrafo StopParaTrafo;

namespace {

const ControlEntry kControls[] = {
    {"LabelStopParaTrafo", &StopParaTrafo.LabelStopParaTrafo, Label("Fitting the points to the shape...")},
    {"BtnStopParaTrafo",
     &StopParaTrafo.BtnStopParaTrafo,
     Button("&STOP"),
     {.Click = FormStopParaTrafo::BtnStopParaTrafo_Click}},
};

}  // namespace

const WindowEntry FormStopParaTrafo_Entry = {
    .Name = "FormStopParaTrafo",
    .State = &StopParaTrafo.Window,
    .Controls = kControls,
    .Fresh = [] { StopParaTrafo = FormStopParaTrafo{}; },
    .Unload = FormStopParaTrafo::Form_Unload,
    .Escape = StopIt,
    .Stand = WindowStand::LongWork,
};

void FormStopParaTrafo::BtnStopParaTrafo_Click() {
    StopIt();
}

void FormStopParaTrafo::Form_Unload() {
    ParaboloidRun.ParaStopRequested = kTrue;
    TrafoWindow.Window.Enabled = true;
}

void StopIt() {
    UnloadWindow("FormStopParaTrafo");
    FormStopParaTrafo::Form_Unload();  // where it was not open
}

void CloseStopWindow() {
    const bool enabled = TrafoWindow.Window.Enabled;
    const Flag stop = ParaboloidRun.ParaStopRequested;
    UnloadWindow("FormStopParaTrafo");
    TrafoWindow.Window.Enabled = enabled;
    ParaboloidRun.ParaStopRequested = stop;
}

}  // namespace corvinade::paraboloid
