// The window that tells the program's version.
#include "core/form_help_info.h"

#include "core/controller.h"
#include "core/platform.h"
#include "core/run.h"

namespace {

const ControlEntry kControls[] = {
    {"LabelName", &HelpInfo.LabelName},
    {"LabelVersion", &HelpInfo.LabelVersion},
    {"BtnEditIniFile", &HelpInfo.BtnEditIniFile, {.Click = FormMenuHelpInfo::BtnEditIniFile_Click}},
    {"BtnOK", &HelpInfo.BtnOK, {.Click = FormMenuHelpInfo::BtnOK_Click}},
};

}  // namespace

const WindowEntry FormMenuHelpInfo_Entry = {"FormMenuHelpInfo",
                                            &HelpInfo.Window,
                                            kControls,
                                            [] { HelpInfo = FormMenuHelpInfo{}; },
                                            FormMenuHelpInfo::Form_Load,
                                            nullptr,
                                            FormMenuHelpInfo::Form_Escape};

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
