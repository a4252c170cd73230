// The table of the main window's controls and the commands that open what they name.
#include "core/form_main.h"

#include "core/controller.h"
#include "core/files.h"
#include "core/job.h"
#include "core/platform.h"
#include "core/refresh.h"
#include "core/run.h"
#include "core/text.h"

namespace {

// Buttons of a tool bar stand behind it, in their order on the screen.
const ControlEntry kControls[] = {
    {"MenuFile", &Main.MenuFile},
    {"MenuFileNew", &Main.MenuFileNew, {.Click = FormMain::MenuFileNew_Click}},
    {"MenuFileOpen", &Main.MenuFileOpen, {.Click = FormMain::MenuFileOpen_Click}},
    {"MenuFileSave", &Main.MenuFileSave, {.Click = FormMain::MenuFileSave_Click}},
    {"MenuFileSaveAs", &Main.MenuFileSaveAs, {.Click = FormMain::MenuFileSaveAs_Click}},
    {"MenuFileInputFiles", &Main.MenuFileInputFiles, {.Click = FormMain::MenuFileInputFiles_Click}},
    {"MenueFileExport", &Main.MenueFileExport},
    {"MenueFileExportRobCad", &Main.MenueFileExportRobCad},
    {"MenueFileExportROCAL", &Main.MenueFileExportROCAL},
    {"MenüDateiAlt1", &Main.MenüDateiAlt1, {.Click = FormMain::MenüDateiAlt1_Click}},
    {"MenüDateiAlt2", &Main.MenüDateiAlt2, {.Click = FormMain::MenüDateiAlt2_Click}},
    {"MenüDateiAlt3", &Main.MenüDateiAlt3, {.Click = FormMain::MenüDateiAlt3_Click}},
    {"MenüDateiAlt4", &Main.MenüDateiAlt4, {.Click = FormMain::MenüDateiAlt4_Click}},
    {"MenuFileExit", &Main.MenuFileExit, {.Click = FormMain::MenuFileExit_Click}},
    {"MenuEdit", &Main.MenuEdit},
    {"MenuEditCopy", &Main.MenuEditCopy},
    {"MenuEditGraphData", &Main.MenuEditGraphData},
    {"MenuView", &Main.MenuView},
    {"MenuVievMainSheet", &Main.MenuVievMainSheet, {.Click = FormMain::MenuVievMainSheet_Click}},
    {"MenüViewInputStatistic",
     &Main.MenüViewInputStatistic,
     {.Click = FormMain::MenüViewInputStatistic_Click}},
    {"MenüViewS", &Main.MenüViewS},
    {"MenüViewLastView", &Main.MenüViewLastView},
    {"MenüViewNextView", &Main.MenüViewNextView},
    {"MenüViewSaveView", &Main.MenüViewSaveView},
    {"MenüViewDeleteView", &Main.MenüViewDeleteView},
    {"MenuTransformation", &Main.MenuTransformation},
    {"MenuTransformationCalculation",
     &Main.MenuTransformationCalculation,
     {.Click = FormMain::MenuTransformationCalculation_Click}},
    {"MenuTransformationDistanceScale",
     &Main.MenuTransformationDistanceScale,
     {.Click = FormMain::MenuTransformationDistanceScale_Click}},
    {"MenueTransformationBatch",
     &Main.MenueTransformationBatch,
     {.Click = FormMain::MenueTransformationBatch_Click}},
    {"MenueGraphics", &Main.MenueGraphics},
    {"MenueGraphicsWindow", &Main.MenueGraphicsWindow},
    {"MenüAnsichtAnpassen", &Main.MenüAnsichtAnpassen},
    {"MenüAnsichtcenter", &Main.MenüAnsichtcenter},
    {"MenüAnsichtTopview", &Main.MenüAnsichtTopview},
    {"MenüAnsichtSideView", &Main.MenüAnsichtSideView},
    {"MenüAnsichtFrontView", &Main.MenüAnsichtFrontView},
    {"MenüAnsichtIsometricView", &Main.MenüAnsichtIsometricView},
    {"MenüAnsichtPunkte", &Main.MenüAnsichtPunkte},
    {"MenüAnsichtPunkteBigger", &Main.MenüAnsichtPunkteBigger},
    {"MenüAnsichtPunkteSmaller", &Main.MenüAnsichtPunkteSmaller},
    {"MenüAnsichtPunkteSmallPoints", &Main.MenüAnsichtPunkteSmallPoints},
    {"MenüAnsichtVektoren", &Main.MenüAnsichtVektoren},
    {"MenüAnsichtVektorenVektorModeActive", &Main.MenüAnsichtVektorenVektorModeActive},
    {"MenüAnsichtVektorenLonger", &Main.MenüAnsichtVektorenLonger},
    {"MenüAnsichtVektorenShorter", &Main.MenüAnsichtVektorenShorter},
    {"MenüAnsichtAnalyse", &Main.MenüAnsichtAnalyse},
    {"MenüAnsichtAnalyseModeMore", &Main.MenüAnsichtAnalyseModeMore},
    {"MenüAnsichtAnalyseModeLess", &Main.MenüAnsichtAnalyseModeLess},
    {"MenüAnsichtToleranzen", &Main.MenüAnsichtToleranzen},
    {"MenüAnsichtToleranzenColorbar", &Main.MenüAnsichtToleranzenColorbar},
    {"MenüAnsichtToleranzenEinstellungen", &Main.MenüAnsichtToleranzenEinstellungen},
    {"MenüGrafikBlackPlane", &Main.MenüGrafikBlackPlane},
    {"MenüGraphicsPrint", &Main.MenüGraphicsPrint},
    {"MenüGraphicsLines", &Main.MenüGraphicsLines},
    {"MenüGraphicsLinesLineModeActive", &Main.MenüGraphicsLinesLineModeActive},
    {"MenüGraphicsLinesSetLines", &Main.MenüGraphicsLinesSetLines},
    {"MenüGraphicsLinesDeleteLines", &Main.MenüGraphicsLinesDeleteLines},
    {"MenüGlobalGraphics", &Main.MenüGlobalGraphics},
    {"MenüGlobalRotateAbout", &Main.MenüGlobalRotateAbout},
    {"MenüGlobalFlagsMode", &Main.MenüGlobalFlagsMode},
    {"MenüAnsichtDynamicFlag", &Main.MenüAnsichtDynamicFlag},
    {"MenüGlobalGeneralGraphicsSettings", &Main.MenüGlobalGeneralGraphicsSettings},
    {"MenuSettings", &Main.MenuSettings},
    {"MenuSettingsUnits", &Main.MenuSettingsUnits, {.Click = FormMain::MenuSettingsUnits_Click}},
    {"MenueExtrasOptions", &Main.MenueExtrasOptions, {.Click = FormMain::MenueExtrasOptions_Click}},
    {"MenuHelp", &Main.MenuHelp},
    {"MenueHelpQuestion", &Main.MenueHelpQuestion, {.Click = FormMain::MenueHelpQuestion_Click}},
    {"MenuHelpInfo", &Main.MenuHelpInfo, {.Click = FormMain::MenuHelpInfo_Click}},
    {"MenueHelpSpezial", &Main.MenueHelpSpezial, {.Click = FormMain::MenueHelpSpezial_Click}},
    {"Toolbar1", &Main.Toolbar1},
    {"Toolbar1.InputFiles", &Main.Toolbar1_InputFiles, {.Click = FormMain::MenuFileInputFiles_Click}},
    {"Toolbar1.Copy", &Main.Toolbar1_Copy},
    {"Toolbar1.TrafoBerechnung",
     &Main.Toolbar1_TrafoBerechnung,
     {.Click = FormMain::MenuTransformationCalculation_Click}},
    {"Toolbar2", &Main.Toolbar2},
    {"Toolbar2.FileNew", &Main.Toolbar2_FileNew, {.Click = FormMain::MenuFileNew_Click}},
    {"Toolbar2.FileOpen", &Main.Toolbar2_FileOpen, {.Click = FormMain::MenuFileOpen_Click}},
    {"Toolbar2.FileSave", &Main.Toolbar2_FileSave, {.Click = FormMain::MenuFileSave_Click}},
    {"ToolbarGraphics", &Main.ToolbarGraphics},
    {"ToolbarGraphics.Graphics", &Main.ToolbarGraphics_Graphics},
    {"ToolbarGraphics.RotateAbout", &Main.ToolbarGraphics_RotateAbout},
    {"ToolbarGraphics.ViewTop", &Main.ToolbarGraphics_ViewTop},
    {"ToolbarGraphics.ViewFront", &Main.ToolbarGraphics_ViewFront},
    {"ToolbarGraphics.ViewSide", &Main.ToolbarGraphics_ViewSide},
    {"ToolbarGraphics.ViewIso", &Main.ToolbarGraphics_ViewIso},
    {"ToolbarGraphics.FlagMode", &Main.ToolbarGraphics_FlagMode},
    {"ToolbarGraphics.ZoomAll", &Main.ToolbarGraphics_ZoomAll},
    {"ToolbarGraphics.ZoomOut", &Main.ToolbarGraphics_ZoomOut},
    {"ToolbarGraphics.ZoomIn", &Main.ToolbarGraphics_ZoomIn},
    {"ToolbarGraphics.ColorBar", &Main.ToolbarGraphics_ColorBar},
    {"ToolbarGraphics.PointsBigger", &Main.ToolbarGraphics_PointsBigger},
    {"ToolbarGraphics.PointsSmaller", &Main.ToolbarGraphics_PointsSmaller},
    {"ToolbarGraphics.VectorMode", &Main.ToolbarGraphics_VectorMode},
    {"ToolbarGraphics.VectorLonger", &Main.ToolbarGraphics_VectorLonger},
    {"ToolbarGraphics.VectorShorter", &Main.ToolbarGraphics_VectorShorter},
    {"ToolbarGraphics.AnalyseMode", &Main.ToolbarGraphics_AnalyseMode},
    {"ToolbarLines", &Main.ToolbarLines},
    {"ToolbarLines.LineMode", &Main.ToolbarLines_LineMode},
    {"ToolbarLines.SetLines", &Main.ToolbarLines_SetLines},
    {"ToolbarLines.DeleteLines", &Main.ToolbarLines_DeleteLines},
    {"ToolbarSaveView", &Main.ToolbarSaveView},
    {"ToolbarSaveView.LastView", &Main.ToolbarSaveView_LastView},
    {"ToolbarSaveView.NextView", &Main.ToolbarSaveView_NextView},
    {"ToolbarSaveView.SaveView", &Main.ToolbarSaveView_SaveView},
    {"ToolbarSaveView.DeleteView", &Main.ToolbarSaveView_DeleteView},
    {"ComboSaveView", &Main.ComboSaveView},
    {"StatusBar.1", &Main.StatusBar_1},
    {"StatusBar.2", &Main.StatusBar_2},
    {"StatusBar.3", &Main.StatusBar_3},
    {"StatusBar.4", &Main.StatusBar_4},
    {"StatusBar.5", &Main.StatusBar_5},
    {"StatusBar.6", &Main.StatusBar_6},
    {"StatusBar.7", &Main.StatusBar_7},
    {"StatusBar.8", &Main.StatusBar_8},
    {"StatusBar.9", &Main.StatusBar_9},
};

}  // namespace

const WindowEntry FormMain_Entry = {"FormMain", &Main.Window,          kControls, [] { Main = FormMain{}; },
                                    nullptr,    FormMain::Form_Unload, nullptr,   false};

void FormMain::MenuFileNew_Click() {
    MenuFileNew_Command();
}
void FormMain::MenuFileOpen_Click() {
    MenuFileOpen_Command();
}
void FormMain::MenuFileSave_Click() {
    MenuFileSave_Command();
}
void FormMain::MenuFileSaveAs_Click() {
    MenuFileSaveAs_Command();
}
void FormMain::MenuFileInputFiles_Click() {
    ShowWindow("FormInputFiles");
}
void FormMain::MenüDateiAlt1_Click() {
    OpenLastProjekt(Main.MenüDateiAlt1.Text);
}
void FormMain::MenüDateiAlt2_Click() {
    OpenLastProjekt(Main.MenüDateiAlt2.Text);
}
void FormMain::MenüDateiAlt3_Click() {
    OpenLastProjekt(Main.MenüDateiAlt3.Text);
}
void FormMain::MenüDateiAlt4_Click() {
    OpenLastProjekt(Main.MenüDateiAlt4.Text);
}
void FormMain::MenuFileExit_Click() {
    CloseProgram();
}
void FormMain::MenuVievMainSheet_Click() {
    ShowWindow("FormMainSheet");
}
void FormMain::MenüViewInputStatistic_Click() {
    ShowWindow("FormInputStatistic");
}
void FormMain::MenueTransformationBatch_Click() {
    ShowWindow("FormBatch");
}
void FormMain::MenueExtrasOptions_Click() {
    ShowWindow("FormOptions");
}
void FormMain::MenuHelpInfo_Click() {
    ShowWindow("FormMenuHelpInfo");
}

void FormMain::MenuSettingsUnits_Click() {
    ShowWindow("FormUnits");
    Run.JobDirty = kTrue;
}

void FormMain::MenuTransformationCalculation_Click() {
    if (Job.nIdent < 2) {
        ShowMessage(std::string("There are less then two identically Points for a calculation!") + kLineEnd +
                    "That makes no sence." + kLineEnd +
                    "Please load more identically Points to do Transformation Calculations.");
        return;
    }
    if (Job.nIdent == 2)
        ShowMessage(
            std::string("There are less than three identically Points for a calculation.") + kLineEnd +
            "By rational settings of the Transformation Parameters logical Calculations can be made." +
            kLineEnd + "Be sure what you are doing!");
    if (!Main.MenuTransformationCalculation.Checked) {
        ShowWindow("FormTrafoBerechnung");
        Main.MenuTransformationCalculation.Checked = true;
        Main.Toolbar1_TrafoBerechnung.Value = 1;
    } else {
        UnloadWindow("FormTrafoBerechnung");
        Main.MenuTransformationCalculation.Checked = false;
        Main.Toolbar1_TrafoBerechnung.Value = 0;
    }
}

void FormMain::MenuTransformationDistanceScale_Click() {
    if (Job.nIdent < 2) {
        ShowMessage("There are not enough identically Points for a calculation");
        return;
    }
    ShowWindow("FormDistanceScale");
}

void FormMain::MenueHelpQuestion_Click() {
    StartFile("Open", JoinPath(ProgramFolder(), "manual Corvinade English 2.0.0.pdf"));
}

void FormMain::MenueHelpSpezial_Click() {
    ClipboardRoundTrip();
}
