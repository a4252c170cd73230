// The window that shows how far long work has come and lets the user stop it.
#include "core/form_progress_bar.h"

#include "core/run.h"

namespace corvinade::core {

FormProgressBar Progress;

namespace {

const ControlEntry kControls[] = {
    {"ProgressBar1", &Progress.ProgressBar1, ProgressBar()},
    {"BtnCancel", &Progress.BtnCancel, Button("&Cancel"), {.Click = FormProgressBar::BtnCancel_Click}},
};

}  // namespace

const WindowEntry FormProgressBar_Entry = {
    .Name = "FormProgressBar",
    .State = &Progress.Window,
    .Controls = kControls,
    .Fresh = [] { Progress = FormProgressBar{}; },
    .Escape = FormProgressBar::BtnCancel_Click,
    .Stand = WindowStand::LongWork,
    .StoresPlace = false,
};

void FormProgressBar::BtnCancel_Click() {
    Run.StopRequested = kTrue;
}

ProgressWindow::ProgressWindow(const std::string& caption) {
    ShowWindow("FormProgressBar");
    Progress.Window.Caption = caption;
}

ProgressWindow::~ProgressWindow() {
    UnloadWindow("FormProgressBar");
}

}  // namespace corvinade::core
