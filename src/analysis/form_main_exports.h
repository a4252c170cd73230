// The export commands of the main window.
#pragma once

#include "core/rooms.h"

namespace corvinade::analysis {

void MenueFileExportRobCad_Click();
void MenueFileExportROCAL_Click();
void MenueOnlyMCStoTilde_Click();

}  // namespace corvinade::analysis
