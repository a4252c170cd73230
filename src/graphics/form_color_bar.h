// The dialog of the colour scale: classes, limits, components, colours and grid of the active graphics
// window.
#pragma once

#include "core/window.h"
#include "graphics/screen_window.h"

struct FormColorBar {
    WindowState Window{.Caption = "Color Bar"};

    Control BtnOK = Button("&OK");

    static void Form_Load();
    static void BtnOK_Click();
};
inline FormColorBar ColorBarWindow;
extern const WindowEntry FormColorBar_Entry;

void ColorBar_ShowWindow(const ScreenWindow& window);  // SetFormtoVars, where the dialog is open
