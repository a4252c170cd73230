// What the graphics windows show of a change.
#pragma once

#include <span>

#include "core/changes.h"
#include "core/rooms.h"

namespace corvinade::graphics {

std::span<const ChangeRow> GraphicsChanges();  // the room's rows in the table of changes

void UpdateAllGraphicsWindows();     // recomputes and redraws all of them where the job holds points
void DrawResultInGraphicsWindows();  // the same, whatever the job holds

void CloseAllGraphicsWindows();
void Grafik_Festlegen_Main();  // recomputes what the first graphics window shows
bool GraphicsDefaultsTaken();  // a graphics window has set the grid spacing, so its defaults are stored

}  // namespace corvinade::graphics
