#include "graphics/form_color_bar.h"

namespace {
const ControlEntry kControls[] = {{"BtnOK", &ColorBarWindow.BtnOK, {.Click = FormColorBar::BtnOK_Click}}};
}
const WindowEntry FormColorBar_Entry = {"FormColorBar", &ColorBarWindow.Window, kControls,
                                        [] { ColorBarWindow = FormColorBar{}; }, FormColorBar::Form_Load};
void FormColorBar::Form_Load() {}
void FormColorBar::BtnOK_Click() {
    UnloadWindow("FormColorBar");
}
void ColorBar_ShowWindow(const ScreenWindow&) {}
