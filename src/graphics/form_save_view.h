// The dialog that names a view to be saved.
#pragma once

#include <string>

#include "core/rooms.h"
#include "core/window.h"

namespace corvinade::graphics {

struct FormSaveView {
    WindowState Window{.Caption = "Save View"};

    Control ListViews;  // the names that there are
    Control TextNewName;
    Control BtnOK;
    Control BtnAbbrechen;

    static void Form_Load();
    static void ListViews_Click();
    static void BtnOK_Click();
    static void BtnAbbrechen_Click();
};
extern FormSaveView SaveViewWindow;
extern const WindowEntry FormSaveView_Entry;

// Outlives the window, for whoever waits for it.
struct SaveViewRecord {
    std::string Name;  // empty: cancelled
};
inline SaveViewRecord SaveViewAnswer;

}  // namespace corvinade::graphics
