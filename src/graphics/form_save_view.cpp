#include "graphics/form_save_view.h"

namespace {
const ControlEntry kControls[] = {
    {"BtnOK", &SaveViewWindow.BtnOK, {.Click = FormSaveView::BtnOK_Click}},
    {"BtnAbbrechen", &SaveViewWindow.BtnAbbrechen, {.Click = FormSaveView::BtnAbbrechen_Click}}};
}
const WindowEntry FormSaveView_Entry = {"FormSaveView", &SaveViewWindow.Window, kControls,
                                        [] { SaveViewWindow = FormSaveView{}; }};
void FormSaveView::BtnOK_Click() {}
void FormSaveView::BtnAbbrechen_Click() {
    UnloadWindow("FormSaveView");
}
