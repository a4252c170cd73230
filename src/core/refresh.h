// What a room needs done by one above it. These few procedures may be called from any room; each stands in
// the namespace of the room that defines it, and nothing else calls upwards. What only shows a change is no
// call: it is a row in the table of core/changes.h.
#pragma once

#include "core/rooms.h"

namespace corvinade::import {

void ClipboardRoundTrip();  // the menu entry "&Spezial"
// Makes the transformed points those of the start, and sizes RVec* and UseFlags (whose content stays) by the
// pairs. A job that the calculation window has marked as switched is switched again. An import that is
// cancelled meanwhile leaves all of them as they were.
void IdentischePkte_Neu();

}  // namespace corvinade::import

namespace corvinade::engine {

// The held values of the job, typed in units of the factors `lengthBefore` and `angleBefore`, in the present
// ones.
void HeldValues_UnitsChanged(double lengthBefore, double angleBefore);

}  // namespace corvinade::engine

namespace corvinade::analysis {

void MainSheet_Copy();                // copies the selected cells of the main sheet
void MainSheet_ShowPoint(int point);  // makes the row of an identical point the current one, centred

}  // namespace corvinade::analysis

namespace corvinade::graphics {

void CloseAllGraphicsWindows();
void Grafik_Festlegen_Main();    // recomputes what the first graphics window shows
void SetActivePoint(int point);  // the active point of the pictures, by identical point
bool GraphicsDefaultsTaken();    // a graphics window has set the grid spacing, so its defaults are stored

}  // namespace corvinade::graphics
