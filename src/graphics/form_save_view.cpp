// The dialog that names a view to be saved.
#include "graphics/form_save_view.h"

#include <algorithm>

#include "core/form_main.h"
#include "core/platform.h"

namespace corvinade::graphics {

FormSaveView SaveViewWindow;

namespace {

FormSaveView& w = SaveViewWindow;

const ControlEntry kControls[] = {
    {"ListViews", &w.ListViews, ComboBox(), {.Click = FormSaveView::ListViews_Click}},
    {"TextNewName", &w.TextNewName, TextBox()},
    {"BtnOK", &w.BtnOK, Button("&OK"), {.Click = FormSaveView::BtnOK_Click}},
    {"BtnAbbrechen", &w.BtnAbbrechen, Button("&Cancel"), {.Click = FormSaveView::BtnAbbrechen_Click}},
};

bool IsInUse(const std::string& name) {
    const std::vector<std::string>& names = w.ListViews.Items;
    return std::find(names.begin(), names.end(), name) != names.end();
}

}  // namespace

const WindowEntry FormSaveView_Entry = {
    .Name = "FormSaveView",
    .State = &w.Window,
    .Controls = kControls,
    .Fresh = [] { w = FormSaveView{}; },
    .Load = FormSaveView::Form_Load,
    .Escape = FormSaveView::BtnAbbrechen_Click,
    .Stand = WindowStand::Dialog,
};

void FormSaveView::Form_Load() {
    SaveViewAnswer.Name.clear();
    w.ListViews.Items = Main.ComboSaveView.Items;
}

// A view that is there already is replaced under its name.
void FormSaveView::ListViews_Click() {
    if (w.ListViews.Index >= 0) SetText(w.TextNewName, w.ListViews.Text);
}

void FormSaveView::BtnOK_Click() {
    const std::string name = w.TextNewName.Text;
    if (name.empty()) return;
    if (IsInUse(name) &&
        !AskYesNo(name + " is already in use for a view, will you replace the old one?", "Name in use"))
        return;
    // The question has let events be handled.
    if (!w.Window.Loaded) return;
    SaveViewAnswer.Name = name;
    UnloadWindow("FormSaveView");
}

void FormSaveView::BtnAbbrechen_Click() {
    UnloadWindow("FormSaveView");
}

}  // namespace corvinade::graphics
