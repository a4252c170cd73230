// The dialog of the black planes. It refers to the graphics window that is active.
#pragma once

#include "core/rooms.h"
#include "core/window.h"

namespace corvinade::graphics {

struct ScreenWindow;

struct FormBlackPlane {
    WindowState Window{.Caption = "Black Planes"};

    Control CheckActivate;
    Control CheckShowBlackPlanes;
    Control BtnInit;
    Control LabelKeys;
    Control BtnApply, BtnOK, BtnCancel;

    // Takes the present view of the active window as the frame of its planes, paints and stores the step.
    static void Initialisieren();
    // Copies the dialog to the active window, paints, stores the step and marks the job as changed.
    static void Übernehmen();

    static void Form_Load();
    static void CheckActivate_Click();
    static void BtnInit_Click();
    static void BtnApply_Click();
    static void BtnOK_Click();
    static void BtnCancel_Click();
};
extern FormBlackPlane BlackPlaneWindow;
extern const WindowEntry FormBlackPlane_Entry;

// Shows the planes of a window where the dialog is open and refers to it.
void BlackPlane_ShowWindow(const ScreenWindow& window);

}  // namespace corvinade::graphics
