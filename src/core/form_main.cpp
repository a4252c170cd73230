// The table of the main window's controls and the commands that open what they name.
#include "core/form_main.h"

#include "core/controller.h"
#include "core/files.h"
#include "core/job.h"
#include "core/job_commands.h"
#include "core/platform.h"
#include "core/refresh.h"
#include "core/run.h"
#include "core/text.h"

namespace corvinade::core {

namespace {

// Buttons of a tool bar stand behind it, in their order on the screen.
const ControlEntry kControls[] = {
    {"MenuFile", &Main.MenuFile},
    {"MenuFileNew", &Main.MenuFileNew, {.Click = FormMain::MenuFileNew_Click}, "MenuFile"},
    {"MenuFileOpen", &Main.MenuFileOpen, {.Click = FormMain::MenuFileOpen_Click}, "MenuFile"},
    {"MenuFileSave", &Main.MenuFileSave, {.Click = FormMain::MenuFileSave_Click}, "MenuFile"},
    {"MenuFileSaveAs", &Main.MenuFileSaveAs, {.Click = FormMain::MenuFileSaveAs_Click}, "MenuFile"},
    {"MenuFileInputFiles",
     &Main.MenuFileInputFiles,
     {.Click = FormMain::MenuFileInputFiles_Click},
     "MenuFile"},
    {"MenueFileExport", &Main.MenueFileExport, {}, "MenuFile"},
    {"MenueFileExportRobCad",
     &Main.MenueFileExportRobCad,
     {.Click = FormMain::MenueFileExportRobCad_Click},
     "MenueFileExport"},
    {"MenueFileExportROCAL",
     &Main.MenueFileExportROCAL,
     {.Click = FormMain::MenueFileExportROCAL_Click},
     "MenueFileExport"},
    {"MenueOnlyMCStoTilde",
     &Main.MenueOnlyMCStoTilde,
     {.Click = FormMain::MenueOnlyMCStoTilde_Click},
     "MenueFileExport"},
    {"MenüDateiAlt1", &Main.MenüDateiAlt1, {.Click = FormMain::MenüDateiAlt1_Click}, "MenuFile"},
    {"MenüDateiAlt2", &Main.MenüDateiAlt2, {.Click = FormMain::MenüDateiAlt2_Click}, "MenuFile"},
    {"MenüDateiAlt3", &Main.MenüDateiAlt3, {.Click = FormMain::MenüDateiAlt3_Click}, "MenuFile"},
    {"MenüDateiAlt4", &Main.MenüDateiAlt4, {.Click = FormMain::MenüDateiAlt4_Click}, "MenuFile"},
    {"MenuFileExit", &Main.MenuFileExit, {.Click = FormMain::MenuFileExit_Click}, "MenuFile"},
    {"MenuEdit", &Main.MenuEdit},
    {"MenuEditCopy", &Main.MenuEditCopy, {.Click = FormMain::MenuEditCopy_Click}, "MenuEdit"},
    {"MenuEditGraphData", &Main.MenuEditGraphData, {.Click = FormMain::MenuEditGraphData_Click}, "MenuEdit"},
    {"MenuView", &Main.MenuView},
    {"MenuVievMainSheet", &Main.MenuVievMainSheet, {.Click = FormMain::MenuVievMainSheet_Click}, "MenuView"},
    {"MenüViewInputStatistic",
     &Main.MenüViewInputStatistic,
     {.Click = FormMain::MenüViewInputStatistic_Click},
     "MenuView"},
    {"MenuViewNotes", &Main.MenuViewNotes, {.Click = FormMain::MenuViewNotes_Click}, "MenuView"},
    {"MenüViewS", &Main.MenüViewS, {}, "MenuView"},
    {"MenüViewLastView", &Main.MenüViewLastView, {.Click = FormMain::MenüViewLastView_Click}, "MenüViewS"},
    {"MenüViewNextView", &Main.MenüViewNextView, {.Click = FormMain::MenüViewNextView_Click}, "MenüViewS"},
    {"MenüViewSaveView", &Main.MenüViewSaveView, {.Click = FormMain::MenüViewSaveView_Click}, "MenüViewS"},
    {"MenüViewDeleteView",
     &Main.MenüViewDeleteView,
     {.Click = FormMain::MenüViewDeleteView_Click},
     "MenüViewS"},
    {"MenuTransformation", &Main.MenuTransformation},
    {"MenuTransformationCalculation",
     &Main.MenuTransformationCalculation,
     {.Click = FormMain::MenuTransformationCalculation_Click},
     "MenuTransformation"},
    {"MenuTransformationDistanceScale",
     &Main.MenuTransformationDistanceScale,
     {.Click = FormMain::MenuTransformationDistanceScale_Click},
     "MenuTransformation"},
    {"MenuTransformationReliability",
     &Main.MenuTransformationReliability,
     {.Click = FormMain::MenuTransformationReliability_Click},
     "MenuTransformation"},
    {"MenuTransformationBundle",
     &Main.MenuTransformationBundle,
     {.Click = FormMain::MenuTransformationBundle_Click},
     "MenuTransformation"},
    {"MenueTransformationBatch",
     &Main.MenueTransformationBatch,
     {.Click = FormMain::MenueTransformationBatch_Click},
     "MenuTransformation"},
    {"MenueGraphics", &Main.MenueGraphics, {.Click = FormMain::MenueGraphics_Click}, "MenuView"},
    {"MenueGraphicsWindow", &Main.MenueGraphicsWindow},
    {"MenüAnsichtAnpassen",
     &Main.MenüAnsichtAnpassen,
     {.Click = FormMain::MenüAnsichtAnpassen_Click},
     "MenueGraphicsWindow"},
    {"MenüAnsichtcenter",
     &Main.MenüAnsichtcenter,
     {.Click = FormMain::MenüAnsichtcenter_Click},
     "MenueGraphicsWindow"},
    {"MenüAnsichtTopview",
     &Main.MenüAnsichtTopview,
     {.Click = FormMain::MenüAnsichtTopview_Click},
     "MenueGraphicsWindow"},
    {"MenüAnsichtSideView",
     &Main.MenüAnsichtSideView,
     {.Click = FormMain::MenüAnsichtSideView_Click},
     "MenueGraphicsWindow"},
    {"MenüAnsichtFrontView",
     &Main.MenüAnsichtFrontView,
     {.Click = FormMain::MenüAnsichtFrontView_Click},
     "MenueGraphicsWindow"},
    {"MenüAnsichtIsometricView",
     &Main.MenüAnsichtIsometricView,
     {.Click = FormMain::MenüAnsichtIsometricView_Click},
     "MenueGraphicsWindow"},
    {"MenüAnsichtPunkte", &Main.MenüAnsichtPunkte, {}, "MenueGraphicsWindow"},
    {"MenüAnsichtPunkteBigger",
     &Main.MenüAnsichtPunkteBigger,
     {.Click = FormMain::MenüAnsichtPunkteBigger_Click},
     "MenüAnsichtPunkte"},
    {"MenüAnsichtPunkteSmaller",
     &Main.MenüAnsichtPunkteSmaller,
     {.Click = FormMain::MenüAnsichtPunkteSmaller_Click},
     "MenüAnsichtPunkte"},
    {"MenüAnsichtPunkteSmallPoints",
     &Main.MenüAnsichtPunkteSmallPoints,
     {.Click = FormMain::MenüAnsichtPunkteSmallPoints_Click},
     "MenüAnsichtPunkte"},
    {"MenüAnsichtVektoren", &Main.MenüAnsichtVektoren, {}, "MenueGraphicsWindow"},
    {"MenüAnsichtVektorenVektorModeActive",
     &Main.MenüAnsichtVektorenVektorModeActive,
     {.Click = FormMain::MenüAnsichtVektorenVektorModeActive_Click},
     "MenüAnsichtVektoren"},
    {"MenüAnsichtVektorenLonger",
     &Main.MenüAnsichtVektorenLonger,
     {.Click = FormMain::MenüAnsichtVektorenLonger_Click},
     "MenüAnsichtVektoren"},
    {"MenüAnsichtVektorenShorter",
     &Main.MenüAnsichtVektorenShorter,
     {.Click = FormMain::MenüAnsichtVektorenShorter_Click},
     "MenüAnsichtVektoren"},
    {"MenüAnsichtAnalyse", &Main.MenüAnsichtAnalyse, {}, "MenueGraphicsWindow"},
    {"MenüAnsichtAnalyseModeActive",
     &Main.MenüAnsichtAnalyseModeActive,
     {.Click = FormMain::MenüAnsichtAnalyseModeActive_Click},
     "MenüAnsichtAnalyse"},
    {"MenüAnsichtAnalyseKeepPoints",
     &Main.MenüAnsichtAnalyseKeepPoints,
     {.Click = FormMain::MenüAnsichtAnalyseKeepPoints_Click},
     "MenüAnsichtAnalyse"},
    {"MenüAnsichtAnalyseModeMore",
     &Main.MenüAnsichtAnalyseModeMore,
     {.Click = FormMain::MenüAnsichtAnalyseModeMore_Click},
     "MenüAnsichtAnalyse"},
    {"MenüAnsichtAnalyseModeLess",
     &Main.MenüAnsichtAnalyseModeLess,
     {.Click = FormMain::MenüAnsichtAnalyseModeLess_Click},
     "MenüAnsichtAnalyse"},
    {"MenüAnsichtToleranzen", &Main.MenüAnsichtToleranzen, {}, "MenueGraphicsWindow"},
    {"MenüAnsichtToleranzenColorbar",
     &Main.MenüAnsichtToleranzenColorbar,
     {.Click = FormMain::MenüAnsichtToleranzenColorbar_Click},
     "MenüAnsichtToleranzen"},
    {"MenüAnsichtToleranzenEinstellungen",
     &Main.MenüAnsichtToleranzenEinstellungen,
     {.Click = FormMain::MenüAnsichtToleranzenEinstellungen_Click},
     "MenüAnsichtToleranzen"},
    {"MenüGrafikBlackPlane",
     &Main.MenüGrafikBlackPlane,
     {.Click = FormMain::MenüGrafikBlackPlane_Click},
     "MenueGraphicsWindow"},
    {"MenüGraphicsPrint",
     &Main.MenüGraphicsPrint,
     {.Click = FormMain::MenüGraphicsPrint_Click},
     "MenueGraphicsWindow"},
    {"MenüGraphicsLines", &Main.MenüGraphicsLines, {}, "MenueGraphicsWindow"},
    {"MenüGraphicsLinesLineModeActive",
     &Main.MenüGraphicsLinesLineModeActive,
     {.Click = FormMain::MenüGraphicsLinesLineModeActive_Click},
     "MenüGraphicsLines"},
    {"MenüGraphicsLinesSetLines",
     &Main.MenüGraphicsLinesSetLines,
     {.Click = FormMain::MenüGraphicsLinesSetLines_Click},
     "MenüGraphicsLines"},
    {"MenüGraphicsLinesDeleteLines",
     &Main.MenüGraphicsLinesDeleteLines,
     {.Click = FormMain::MenüGraphicsLinesDeleteLines_Click},
     "MenüGraphicsLines"},
    {"MenuFahne", &Main.MenuFahne, {}, "MenueGraphicsWindow"},
    {"MenuFahneEdit", &Main.MenuFahneEdit, {.Click = FormMain::MenuFahneEdit_Click}, "MenuFahne"},
    {"MenuFahneCopy", &Main.MenuFahneCopy, {.Click = FormMain::MenuFahneCopy_Click}, "MenuFahne"},
    {"MenuFahneDelete", &Main.MenuFahneDelete, {.Click = FormMain::MenuFahneDelete_Click}, "MenuFahne"},
    {"MenüGlobalGraphics", &Main.MenüGlobalGraphics},
    {"MenüGlobalRotateAbout",
     &Main.MenüGlobalRotateAbout,
     {.Click = FormMain::MenüGlobalRotateAbout_Click},
     "MenüGlobalGraphics"},
    {"MenüGlobalFlagsMode",
     &Main.MenüGlobalFlagsMode,
     {.Click = FormMain::MenüGlobalFlagsMode_Click},
     "MenüGlobalGraphics"},
    {"MenüAnsichtDynamicFlag",
     &Main.MenüAnsichtDynamicFlag,
     {.Click = FormMain::MenüAnsichtDynamicFlag_Click},
     "MenüGlobalGraphics"},
    {"MenüGlobalGeneralGraphicsSettings",
     &Main.MenüGlobalGeneralGraphicsSettings,
     {.Click = FormMain::MenüGlobalGeneralGraphicsSettings_Click},
     "MenüGlobalGraphics"},
    {"MenuSettings", &Main.MenuSettings},
    {"MenuSettingsUnits",
     &Main.MenuSettingsUnits,
     {.Click = FormMain::MenuSettingsUnits_Click},
     "MenuSettings"},
    {"MenueExtrasOptions",
     &Main.MenueExtrasOptions,
     {.Click = FormMain::MenueExtrasOptions_Click},
     "MenuSettings"},
    {"MenuHelp", &Main.MenuHelp},
    {"MenueHelpQuestion", &Main.MenueHelpQuestion, {.Click = FormMain::MenueHelpQuestion_Click}, "MenuHelp"},
    {"MenuHelpBindings", &Main.MenuHelpBindings, {.Click = FormMain::MenuHelpBindings_Click}, "MenuHelp"},
    {"MenuHelpInfo", &Main.MenuHelpInfo, {.Click = FormMain::MenuHelpInfo_Click}, "MenuHelp"},
    {"MenueHelpSpezial", &Main.MenueHelpSpezial, {.Click = FormMain::MenueHelpSpezial_Click}, "MenuHelp"},
    {"Toolbar1", &Main.Toolbar1},
    {"Toolbar1.InputFiles",
     &Main.Toolbar1_InputFiles,
     {.Click = FormMain::MenuFileInputFiles_Click},
     "Toolbar1"},
    {"Toolbar1.Copy", &Main.Toolbar1_Copy, {.Click = FormMain::MenuEditCopy_Click}, "Toolbar1"},
    {"Toolbar1.TrafoBerechnung",
     &Main.Toolbar1_TrafoBerechnung,
     {.Click = FormMain::MenuTransformationCalculation_Click},
     "Toolbar1"},
    {"ToolbarReliability", &Main.ToolbarReliability},
    {"ToolbarReliability.Reliability",
     &Main.ToolbarReliability_Reliability,
     {.Click = FormMain::MenuTransformationReliability_Click},
     "ToolbarReliability"},
    {"Toolbar2", &Main.Toolbar2},
    {"Toolbar2.FileNew", &Main.Toolbar2_FileNew, {.Click = FormMain::MenuFileNew_Click}, "Toolbar2"},
    {"Toolbar2.FileOpen", &Main.Toolbar2_FileOpen, {.Click = FormMain::MenuFileOpen_Click}, "Toolbar2"},
    {"Toolbar2.FileSave", &Main.Toolbar2_FileSave, {.Click = FormMain::MenuFileSave_Click}, "Toolbar2"},
    {"ToolbarGraphics", &Main.ToolbarGraphics},
    {"ToolbarGraphics.Graphics",
     &Main.ToolbarGraphics_Graphics,
     {.Click = FormMain::MenueGraphics_Click},
     "ToolbarGraphics"},
    {"ToolbarGraphics.RotateAbout",
     &Main.ToolbarGraphics_RotateAbout,
     {.Click = FormMain::MenüGlobalRotateAbout_Click},
     "ToolbarGraphics"},
    {"ToolbarGraphics.ViewTop",
     &Main.ToolbarGraphics_ViewTop,
     {.Click = FormMain::MenüAnsichtTopview_Click},
     "ToolbarGraphics"},
    {"ToolbarGraphics.ViewFront",
     &Main.ToolbarGraphics_ViewFront,
     {.Click = FormMain::MenüAnsichtFrontView_Click},
     "ToolbarGraphics"},
    {"ToolbarGraphics.ViewSide",
     &Main.ToolbarGraphics_ViewSide,
     {.Click = FormMain::MenüAnsichtSideView_Click},
     "ToolbarGraphics"},
    {"ToolbarGraphics.ViewIso",
     &Main.ToolbarGraphics_ViewIso,
     {.Click = FormMain::MenüAnsichtIsometricView_Click},
     "ToolbarGraphics"},
    {"ToolbarGraphics.FlagMode",
     &Main.ToolbarGraphics_FlagMode,
     {.Click = FormMain::MenüGlobalFlagsMode_Click},
     "ToolbarGraphics"},
    {"ToolbarGraphics.ZoomAll",
     &Main.ToolbarGraphics_ZoomAll,
     {.Click = FormMain::MenüAnsichtAnpassen_Click},
     "ToolbarGraphics"},
    {"ToolbarGraphics.ZoomOut",
     &Main.ToolbarGraphics_ZoomOut,
     {.Click = FormMain::ToolbarGraphics_ZoomOut_Click},
     "ToolbarGraphics"},
    {"ToolbarGraphics.ZoomIn",
     &Main.ToolbarGraphics_ZoomIn,
     {.Click = FormMain::ToolbarGraphics_ZoomIn_Click},
     "ToolbarGraphics"},
    {"ToolbarGraphics.ColorBar",
     &Main.ToolbarGraphics_ColorBar,
     {.Click = FormMain::MenüAnsichtToleranzenEinstellungen_Click},
     "ToolbarGraphics"},
    {"ToolbarGraphics.PointsBigger",
     &Main.ToolbarGraphics_PointsBigger,
     {.Click = FormMain::MenüAnsichtPunkteBigger_Click},
     "ToolbarGraphics"},
    {"ToolbarGraphics.PointsSmaller",
     &Main.ToolbarGraphics_PointsSmaller,
     {.Click = FormMain::MenüAnsichtPunkteSmaller_Click},
     "ToolbarGraphics"},
    {"ToolbarGraphics.VectorMode",
     &Main.ToolbarGraphics_VectorMode,
     {.Click = FormMain::MenüAnsichtVektorenVektorModeActive_Click},
     "ToolbarGraphics"},
    {"ToolbarGraphics.VectorLonger",
     &Main.ToolbarGraphics_VectorLonger,
     {.Click = FormMain::MenüAnsichtVektorenLonger_Click},
     "ToolbarGraphics"},
    {"ToolbarGraphics.VectorShorter",
     &Main.ToolbarGraphics_VectorShorter,
     {.Click = FormMain::MenüAnsichtVektorenShorter_Click},
     "ToolbarGraphics"},
    {"ToolbarGraphics.AnalyseMode",
     &Main.ToolbarGraphics_AnalyseMode,
     {.Click = FormMain::MenüAnsichtAnalyseModeActive_Click},
     "ToolbarGraphics"},
    {"ToolbarLines", &Main.ToolbarLines},
    {"ToolbarLines.LineMode",
     &Main.ToolbarLines_LineMode,
     {.Click = FormMain::MenüGraphicsLinesLineModeActive_Click},
     "ToolbarLines"},
    {"ToolbarLines.SetLines",
     &Main.ToolbarLines_SetLines,
     {.Click = FormMain::MenüGraphicsLinesSetLines_Click},
     "ToolbarLines"},
    {"ToolbarLines.DeleteLines",
     &Main.ToolbarLines_DeleteLines,
     {.Click = FormMain::MenüGraphicsLinesDeleteLines_Click},
     "ToolbarLines"},
    {"ToolbarSaveView", &Main.ToolbarSaveView},
    {"ToolbarSaveView.LastView",
     &Main.ToolbarSaveView_LastView,
     {.Click = FormMain::MenüViewLastView_Click},
     "ToolbarSaveView"},
    {"ToolbarSaveView.NextView",
     &Main.ToolbarSaveView_NextView,
     {.Click = FormMain::MenüViewNextView_Click},
     "ToolbarSaveView"},
    {"ToolbarSaveView.SaveView",
     &Main.ToolbarSaveView_SaveView,
     {.Click = FormMain::MenüViewSaveView_Click},
     "ToolbarSaveView"},
    {"ToolbarSaveView.DeleteView",
     &Main.ToolbarSaveView_DeleteView,
     {.Click = FormMain::MenüViewDeleteView_Click},
     "ToolbarSaveView"},
    {"ComboSaveView", &Main.ComboSaveView, {.Click = FormMain::ComboSaveView_Click}, "ToolbarSaveView"},
    {"StatusBar.1", &Main.StatusBar_1},
    {"StatusBar.2", &Main.StatusBar_2},
    {"StatusBar.3", &Main.StatusBar_3},
    {"StatusBar.4", &Main.StatusBar_4},
    {"StatusBar.5", &Main.StatusBar_5},
    {"StatusBar.6", &Main.StatusBar_6},
    {"StatusBar.7", &Main.StatusBar_7},
    {"StatusBar.8", &Main.StatusBar_8},
    {"StatusBar.9", &Main.StatusBar_9},
    {"StatusBar.Notes", &Main.StatusBar_Notes, {.Click = FormMain::StatusBar_Notes_Click}},
};

}  // namespace

const WindowEntry FormMain_Entry = {
    .Name = "FormMain",
    .State = &Main.Window,
    .Controls = kControls,
    .Fresh = [] { Main = FormMain{}; },
    .Unload = FormMain::Form_Unload,
    .Stand = WindowStand::Frame,
    .StoresPlace = false,
};

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
void FormMain::MenuEditCopy_Click() {
    Main.MenuEdit.Value = 0;
    MainSheet_Copy();
}
void FormMain::MenuVievMainSheet_Click() {
    ShowWindow("FormMainSheet");
}
void FormMain::MenüViewInputStatistic_Click() {
    ShowWindow("FormInputStatistic");
}
void FormMain::MenuViewNotes_Click() {
    ShowWindow("FormNotes");
}
void FormMain::StatusBar_Notes_Click() {
    ShowWindow("FormNotes");
}
void FormMain::MenuTransformationBundle_Click() {
    ShowWindow("FormBündel");
}
void FormMain::MenuTransformationReliability_Click() {
    ShowWindow("FormReliability");
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
    if (Job.Pairs() < 2) {
        ShowMessage(std::string("There are less then two identically Points for a calculation!") + kLineEnd +
                    "That makes no sence." + kLineEnd +
                    "Please load more identically Points to do Transformation Calculations.");
        return;
    }
    if (Job.Pairs() == 2)
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
    if (Job.Pairs() < 2) {
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

}  // namespace corvinade::core
