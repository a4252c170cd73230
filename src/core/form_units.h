// The window in which units and digits are chosen.
#pragma once

#include "core/rooms.h"
#include "core/window.h"

namespace corvinade::core {

struct FormUnits {
    WindowState Window{.Caption = "Units"};

    Control LabelLength;
    Control ComboLength;
    Control ComboDigitLength;
    Control LabelAngle;
    Control ComboAngle;
    Control ComboDigitAngle;
    Control LabelScale;
    Control ComboDigitScale;
    Control CheckPhiThetaAsQ;
    Control BtnOK;

    double LengthBefore = 1, AngleBefore = 1;  // the factors that stood when OK was pressed

    static void Form_Load();
    static void Form_Escape();
    static void BtnOK_Click();
};
extern FormUnits UnitsWindow;
extern const WindowEntry FormUnits_Entry;

}  // namespace corvinade::core
