// The window that tells the program's version.
#include "core/form_help_info.h"

#include "core/controller.h"
#include "core/platform.h"
#include "core/run.h"

namespace corvinade::core {

FormMenuHelpInfo HelpInfo;

namespace {

const ControlEntry kControls[] = {
    {"LabelName", &HelpInfo.LabelName, Label("Corvinade - 13 Parameter - least square 3D Transformations")},
    {"LabelVersion", &HelpInfo.LabelVersion, Label("")},
    {"BtnEditIniFile",
     &HelpInfo.BtnEditIniFile,
     Button("&Edit settings file"),
     {.Click = FormMenuHelpInfo::BtnEditIniFile_Click}},
    {"BtnOK", &HelpInfo.BtnOK, Button("OK"), {.Click = FormMenuHelpInfo::BtnOK_Click}},
};

}  // namespace

const WindowEntry FormMenuHelpInfo_Entry = {
    .Name = "FormMenuHelpInfo",
    .State = &HelpInfo.Window,
    .Controls = kControls,
    .Fresh = [] { HelpInfo = FormMenuHelpInfo{}; },
    .Load = FormMenuHelpInfo::Form_Load,
    .Escape = FormMenuHelpInfo::Form_Escape,
    .Stand = WindowStand::Dialog,
};

void FormMenuHelpInfo::Form_Load() {
    HelpInfo.LabelVersion.Text = "Version " + ProgramVersion();
}
void FormMenuHelpInfo::Form_Escape() {
    UnloadWindow("FormMenuHelpInfo");
}
void FormMenuHelpInfo::BtnEditIniFile_Click() {
    StartFile("Open", Run.SettingsFilePath);
}
void FormMenuHelpInfo::BtnOK_Click() {
    UnloadWindow("FormMenuHelpInfo");
}

}  // namespace corvinade::core
