// The entries and tool bar keys of the main window that act on the graphics window on top.
#pragma once

#include "core/rooms.h"

namespace corvinade::graphics {

void MenueGraphics_Click();
void MenüAnsichtAnpassen_Click();
void MenüAnsichtcenter_Click();
void MenüAnsichtTopview_Click();
void MenüAnsichtSideView_Click();
void MenüAnsichtFrontView_Click();
void MenüAnsichtIsometricView_Click();
void ToolbarGraphics_ZoomIn_Click();
void ToolbarGraphics_ZoomOut_Click();
void MenüAnsichtPunkteBigger_Click();
void MenüAnsichtPunkteSmaller_Click();
void MenüAnsichtPunkteSmallPoints_Click();
void MenüAnsichtVektorenVektorModeActive_Click();
void MenüAnsichtVektorenLonger_Click();
void MenüAnsichtVektorenShorter_Click();
void MenüAnsichtAnalyseModeActive_Click();
void MenüAnsichtAnalyseKeepPoints_Click();
void MenüAnsichtAnalyseModeMore_Click();
void MenüAnsichtAnalyseModeLess_Click();
void MenüAnsichtToleranzenColorbar_Click();
void MenüAnsichtToleranzenEinstellungen_Click();
void MenüGrafikBlackPlane_Click();
void MenüGraphicsPrint_Click();
void MenüGraphicsLinesLineModeActive_Click();
void MenüGraphicsLinesSetLines_Click();
void MenüGraphicsLinesDeleteLines_Click();
void MenüGlobalRotateAbout_Click();
void MenüGlobalFlagsMode_Click();
void MenüGlobalGeneralGraphicsSettings_Click();
void MenüAnsichtDynamicFlag_Click();
void MenuFahneEdit_Click();
void MenuFahneCopy_Click();
void MenuFahneDelete_Click();
void MenüViewSaveView_Click();
void MenüViewDeleteView_Click();
void ComboSaveView_Click();
void MenüViewLastView_Click();
void MenüViewNextView_Click();
void MenuGraphicsDistance_Click();
void MenuGraphicsWhite_Click();
void MenuHelpBindings_Click();

}  // namespace corvinade::graphics
