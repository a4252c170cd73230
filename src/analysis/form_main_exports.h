// The export commands of the main window.
#pragma once

#include "core/rooms.h"

namespace corvinade::analysis {

void MenueFileExportResult_Click();  // in form_export.cpp
void MenueFileExportRobCad_Click();
void MenueFileExportROCAL_Click();
void MenueOnlyMCStoTilde_Click();

}  // namespace corvinade::analysis
