// The window in which units and digits are chosen.
#pragma once

#include "core/rooms.h"
#include "core/window.h"

namespace corvinade::core {

struct FormUnits {
    WindowState Window{.Caption = "Units"};

    Control LabelLength = Label("&Length");
    Control ComboLength = ComboBox();
    Control ComboDigitLength = ComboBox();
    Control LabelAngle = Label("&Angle");
    Control ComboAngle = ComboBox();
    Control ComboDigitAngle = ComboBox();
    Control LabelScale = Label("&Scale");
    Control ComboDigitScale = ComboBox();
    Control CheckPhiThetaAsQ = CheckBox("&Phi and Theta as length of arc");
    Control BtnOK = Button("OK");

    static void Form_Load();
    static void Form_Escape();
    static void BtnOK_Click();
};
inline FormUnits UnitsWindow;
extern const WindowEntry FormUnits_Entry;

}  // namespace corvinade::core
