// The window that tells the program's version.
#pragma once

#include "core/rooms.h"
#include "core/window.h"

namespace corvinade::core {

struct FormMenuHelpInfo {
    WindowState Window{.Caption = "Info"};

    Control LabelName;
    Control LabelVersion;
    Control BtnEditIniFile;
    Control BtnOK;

    static void Form_Load();
    static void Form_Escape();
    static void BtnEditIniFile_Click();
    static void BtnOK_Click();
};
extern FormMenuHelpInfo HelpInfo;
extern const WindowEntry FormMenuHelpInfo_Entry;

}  // namespace corvinade::core
