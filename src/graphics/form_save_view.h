// The dialog that names a view to be saved.
#pragma once

#include "core/window.h"

struct FormSaveView {
    WindowState Window{.Caption = "Save View"};

    Control BtnOK = Button("&OK");
    Control BtnAbbrechen = Button("&Cancel");

    static void BtnOK_Click();
    static void BtnAbbrechen_Click();
};
inline FormSaveView SaveViewWindow;
extern const WindowEntry FormSaveView_Entry;
