// The dialog of the black planes.
#include "graphics/form_black_plane.h"

#include "core/run.h"
#include "graphics/black_planes.h"
#include "graphics/drawing.h"
#include "graphics/view_undo.h"

namespace corvinade::graphics {

FormBlackPlane BlackPlaneWindow;

namespace {

FormBlackPlane& w = BlackPlaneWindow;
using Dialog = FormBlackPlane;

const ControlEntry kControls[] = {
    {"CheckActivate",
     &w.CheckActivate,
     CheckBox("&Activate Black Planes"),
     {.Click = Dialog::CheckActivate_Click}},
    {"CheckShowBlackPlanes", &w.CheckShowBlackPlanes, CheckBox("&Show Black Planes")},
    {"BtnInit", &w.BtnInit, Button("&Initialize with Current View"), {.Click = Dialog::BtnInit_Click}},
    {"LabelKeys", &w.LabelKeys,
     Label(
         "In the picture: hold T and drag with the left mouse button to move the slab, hold B and drag to change its thickness.")},
    {"BtnApply", &w.BtnApply, Button("A&pply"), {.Click = Dialog::BtnApply_Click}},
    {"BtnOK", &w.BtnOK, Button("&OK"), {.Click = Dialog::BtnOK_Click}},
    {"BtnCancel", &w.BtnCancel, Button("&Cancel"), {.Click = Dialog::BtnCancel_Click}},
};

bool IsSet(const Control& check) {
    return check.Value == 1;
}

void EnableInit() {
    w.BtnInit.Enabled = IsSet(w.CheckActivate);
}

// What has been set is seen, can be gone back from, and is saved with the job's views.
void PaintAndStore(ScreenWindow& window) {
    Stelle_Grafik_dar(window);
    StoreScreenPropertiesToRecord(window);
    Run.JobDirty = kTrue;
}

void Close() {
    UnloadWindow("FormBlackPlane");
}

}  // namespace

const WindowEntry FormBlackPlane_Entry = {
    .Name = "FormBlackPlane",
    .State = &w.Window,
    .Controls = kControls,
    .Fresh = [] { w = FormBlackPlane{}; },
    .Load = FormBlackPlane::Form_Load,
    .Escape = FormBlackPlane::BtnCancel_Click,
    .Stand = WindowStand::Beside,
};

void FormBlackPlane::Initialisieren() {
    ScreenWindow* window = findLFDFORM();
    if (window == nullptr) return;
    Initialisieren_BlackPlane(*window, IsSet(w.CheckActivate), IsSet(w.CheckShowBlackPlanes));
    PaintAndStore(*window);
}

void FormBlackPlane::Übernehmen() {
    ScreenWindow* window = findLFDFORM();
    if (window == nullptr) return;
    ScreenRecord& state = window->State;
    const bool active = IsSet(w.CheckActivate);
    state.BlackPlane = ToFlag(active);
    state.BlackPlaneBorders = ToFlag(IsSet(w.CheckShowBlackPlanes));
    if (active && !HasPlaneFrame(state))
        Initialisieren_BlackPlane(*window, true, IsSet(w.CheckShowBlackPlanes));
    PaintAndStore(*window);
}

void BlackPlane_ShowWindow(const ScreenWindow& window) {
    if (!IsLoaded("FormBlackPlane") || &window != Screens().Active) return;
    w.CheckActivate.Value = IsTrue(window.State.BlackPlane) ? 1 : 0;
    w.CheckShowBlackPlanes.Value = IsTrue(window.State.BlackPlaneBorders) ? 1 : 0;
    EnableInit();
}

void FormBlackPlane::Form_Load() {
    EnableInit();
    if (const ScreenWindow* window = findLFDFORM()) BlackPlane_ShowWindow(*window);
}
void FormBlackPlane::CheckActivate_Click() {
    EnableInit();
}
void FormBlackPlane::BtnInit_Click() {
    Initialisieren();
}
void FormBlackPlane::BtnApply_Click() {
    Übernehmen();
}
void FormBlackPlane::BtnOK_Click() {
    Übernehmen();
    Close();
}
void FormBlackPlane::BtnCancel_Click() {
    Close();
}

}  // namespace corvinade::graphics
