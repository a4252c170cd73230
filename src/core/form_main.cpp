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
    {"MenuFileNew", &Main.MenuFileNew, {.Click = FormMain::MenuFileNew_Click}, "MenuFile"},
    {"MenuFileOpen", &Main.MenuFileOpen, {.Click = FormMain::MenuFileOpen_Click}, "MenuFile"},
    {"MenuFileSave", &Main.MenuFileSave, {.Click = FormMain::MenuFileSave_Click}, "MenuFile"},
    {"MenuFileSaveAs", &Main.MenuFileSaveAs, {.Click = FormMain::MenuFileSaveAs_Click}, "MenuFile"},
    {"MenuFileInputFiles",
     &Main.MenuFileInputFiles,
     {.Click = FormMain::MenuFileInputFiles_Click},
     "MenuFile"},
    {"MenueFileExport", &Main.MenueFileExport, {}, "MenuFile"},
    {"MenueFileExportRobCad", &Main.MenueFileExportRobCad, {}, "MenueFileExport"},
    {"MenueFileExportROCAL", &Main.MenueFileExportROCAL, {}, "MenueFileExport"},
    {"MenüDateiAlt1", &Main.MenüDateiAlt1, {.Click = FormMain::MenüDateiAlt1_Click}, "MenuFile"},
    {"MenüDateiAlt2", &Main.MenüDateiAlt2, {.Click = FormMain::MenüDateiAlt2_Click}, "MenuFile"},
    {"MenüDateiAlt3", &Main.MenüDateiAlt3, {.Click = FormMain::MenüDateiAlt3_Click}, "MenuFile"},
    {"MenüDateiAlt4", &Main.MenüDateiAlt4, {.Click = FormMain::MenüDateiAlt4_Click}, "MenuFile"},
    {"MenuFileExit", &Main.MenuFileExit, {.Click = FormMain::MenuFileExit_Click}, "MenuFile"},
    {"MenuEdit", &Main.MenuEdit},
    {"MenuEditCopy", &Main.MenuEditCopy, {.Click = FormMain::MenuEditCopy_Click}, "MenuEdit"},
    {"MenuEditGraphData", &Main.MenuEditGraphData, {}, "MenuEdit"},
    {"MenuView", &Main.MenuView},
    {"MenuVievMainSheet", &Main.MenuVievMainSheet, {.Click = FormMain::MenuVievMainSheet_Click}, "MenuView"},
    {"MenüViewInputStatistic",
     &Main.MenüViewInputStatistic,
     {.Click = FormMain::MenüViewInputStatistic_Click},
     "MenuView"},
    {"MenüViewS", &Main.MenüViewS, {}, "MenuView"},
    {"MenüViewLastView", &Main.MenüViewLastView, {}, "MenüViewS"},
    {"MenüViewNextView", &Main.MenüViewNextView, {}, "MenüViewS"},
    {"MenüViewSaveView", &Main.MenüViewSaveView, {}, "MenüViewS"},
    {"MenüViewDeleteView", &Main.MenüViewDeleteView, {}, "MenüViewS"},
    {"MenuTransformation", &Main.MenuTransformation},
    {"MenuTransformationCalculation",
     &Main.MenuTransformationCalculation,
     {.Click = FormMain::MenuTransformationCalculation_Click},
     "MenuTransformation"},
    {"MenuTransformationDistanceScale",
     &Main.MenuTransformationDistanceScale,
     {.Click = FormMain::MenuTransformationDistanceScale_Click},
     "MenuTransformation"},
    {"MenueTransformationBatch",
     &Main.MenueTransformationBatch,
     {.Click = FormMain::MenueTransformationBatch_Click},
     "MenuTransformation"},
    {"MenueGraphics", &Main.MenueGraphics, {}, "MenuView"},
    {"MenueGraphicsWindow", &Main.MenueGraphicsWindow},
    {"MenüAnsichtAnpassen", &Main.MenüAnsichtAnpassen, {}, "MenueGraphicsWindow"},
    {"MenüAnsichtcenter", &Main.MenüAnsichtcenter, {}, "MenueGraphicsWindow"},
    {"MenüAnsichtTopview", &Main.MenüAnsichtTopview, {}, "MenueGraphicsWindow"},
    {"MenüAnsichtSideView", &Main.MenüAnsichtSideView, {}, "MenueGraphicsWindow"},
    {"MenüAnsichtFrontView", &Main.MenüAnsichtFrontView, {}, "MenueGraphicsWindow"},
    {"MenüAnsichtIsometricView", &Main.MenüAnsichtIsometricView, {}, "MenueGraphicsWindow"},
    {"MenüAnsichtPunkte", &Main.MenüAnsichtPunkte, {}, "MenueGraphicsWindow"},
    {"MenüAnsichtPunkteBigger", &Main.MenüAnsichtPunkteBigger, {}, "MenüAnsichtPunkte"},
    {"MenüAnsichtPunkteSmaller", &Main.MenüAnsichtPunkteSmaller, {}, "MenüAnsichtPunkte"},
    {"MenüAnsichtPunkteSmallPoints", &Main.MenüAnsichtPunkteSmallPoints, {}, "MenüAnsichtPunkte"},
    {"MenüAnsichtVektoren", &Main.MenüAnsichtVektoren, {}, "MenueGraphicsWindow"},
    {"MenüAnsichtVektorenVektorModeActive",
     &Main.MenüAnsichtVektorenVektorModeActive,
     {},
     "MenüAnsichtVektoren"},
    {"MenüAnsichtVektorenLonger", &Main.MenüAnsichtVektorenLonger, {}, "MenüAnsichtVektoren"},
    {"MenüAnsichtVektorenShorter", &Main.MenüAnsichtVektorenShorter, {}, "MenüAnsichtVektoren"},
    {"MenüAnsichtAnalyse", &Main.MenüAnsichtAnalyse, {}, "MenueGraphicsWindow"},
    {"MenüAnsichtAnalyseModeMore", &Main.MenüAnsichtAnalyseModeMore, {}, "MenüAnsichtAnalyse"},
    {"MenüAnsichtAnalyseModeLess", &Main.MenüAnsichtAnalyseModeLess, {}, "MenüAnsichtAnalyse"},
    {"MenüAnsichtToleranzen", &Main.MenüAnsichtToleranzen, {}, "MenueGraphicsWindow"},
    {"MenüAnsichtToleranzenColorbar", &Main.MenüAnsichtToleranzenColorbar, {}, "MenüAnsichtToleranzen"},
    {"MenüAnsichtToleranzenEinstellungen",
     &Main.MenüAnsichtToleranzenEinstellungen,
     {},
     "MenüAnsichtToleranzen"},
    {"MenüGrafikBlackPlane", &Main.MenüGrafikBlackPlane, {}, "MenueGraphicsWindow"},
    {"MenüGraphicsPrint", &Main.MenüGraphicsPrint, {}, "MenueGraphicsWindow"},
    {"MenüGraphicsLines", &Main.MenüGraphicsLines, {}, "MenueGraphicsWindow"},
    {"MenüGraphicsLinesLineModeActive", &Main.MenüGraphicsLinesLineModeActive, {}, "MenüGraphicsLines"},
    {"MenüGraphicsLinesSetLines", &Main.MenüGraphicsLinesSetLines, {}, "MenüGraphicsLines"},
    {"MenüGraphicsLinesDeleteLines", &Main.MenüGraphicsLinesDeleteLines, {}, "MenüGraphicsLines"},
    {"MenüGlobalGraphics", &Main.MenüGlobalGraphics},
    {"MenüGlobalRotateAbout", &Main.MenüGlobalRotateAbout, {}, "MenüGlobalGraphics"},
    {"MenüGlobalFlagsMode", &Main.MenüGlobalFlagsMode, {}, "MenüGlobalGraphics"},
    {"MenüAnsichtDynamicFlag", &Main.MenüAnsichtDynamicFlag, {}, "MenüGlobalGraphics"},
    {"MenüGlobalGeneralGraphicsSettings", &Main.MenüGlobalGeneralGraphicsSettings, {}, "MenüGlobalGraphics"},
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
    {"Toolbar2", &Main.Toolbar2},
    {"Toolbar2.FileNew", &Main.Toolbar2_FileNew, {.Click = FormMain::MenuFileNew_Click}, "Toolbar2"},
    {"Toolbar2.FileOpen", &Main.Toolbar2_FileOpen, {.Click = FormMain::MenuFileOpen_Click}, "Toolbar2"},
    {"Toolbar2.FileSave", &Main.Toolbar2_FileSave, {.Click = FormMain::MenuFileSave_Click}, "Toolbar2"},
    {"ToolbarGraphics", &Main.ToolbarGraphics},
    {"ToolbarGraphics.Graphics", &Main.ToolbarGraphics_Graphics, {}, "ToolbarGraphics"},
    {"ToolbarGraphics.RotateAbout", &Main.ToolbarGraphics_RotateAbout, {}, "ToolbarGraphics"},
    {"ToolbarGraphics.ViewTop", &Main.ToolbarGraphics_ViewTop, {}, "ToolbarGraphics"},
    {"ToolbarGraphics.ViewFront", &Main.ToolbarGraphics_ViewFront, {}, "ToolbarGraphics"},
    {"ToolbarGraphics.ViewSide", &Main.ToolbarGraphics_ViewSide, {}, "ToolbarGraphics"},
    {"ToolbarGraphics.ViewIso", &Main.ToolbarGraphics_ViewIso, {}, "ToolbarGraphics"},
    {"ToolbarGraphics.FlagMode", &Main.ToolbarGraphics_FlagMode, {}, "ToolbarGraphics"},
    {"ToolbarGraphics.ZoomAll", &Main.ToolbarGraphics_ZoomAll, {}, "ToolbarGraphics"},
    {"ToolbarGraphics.ZoomOut", &Main.ToolbarGraphics_ZoomOut, {}, "ToolbarGraphics"},
    {"ToolbarGraphics.ZoomIn", &Main.ToolbarGraphics_ZoomIn, {}, "ToolbarGraphics"},
    {"ToolbarGraphics.ColorBar", &Main.ToolbarGraphics_ColorBar, {}, "ToolbarGraphics"},
    {"ToolbarGraphics.PointsBigger", &Main.ToolbarGraphics_PointsBigger, {}, "ToolbarGraphics"},
    {"ToolbarGraphics.PointsSmaller", &Main.ToolbarGraphics_PointsSmaller, {}, "ToolbarGraphics"},
    {"ToolbarGraphics.VectorMode", &Main.ToolbarGraphics_VectorMode, {}, "ToolbarGraphics"},
    {"ToolbarGraphics.VectorLonger", &Main.ToolbarGraphics_VectorLonger, {}, "ToolbarGraphics"},
    {"ToolbarGraphics.VectorShorter", &Main.ToolbarGraphics_VectorShorter, {}, "ToolbarGraphics"},
    {"ToolbarGraphics.AnalyseMode", &Main.ToolbarGraphics_AnalyseMode, {}, "ToolbarGraphics"},
    {"ToolbarLines", &Main.ToolbarLines},
    {"ToolbarLines.LineMode", &Main.ToolbarLines_LineMode, {}, "ToolbarLines"},
    {"ToolbarLines.SetLines", &Main.ToolbarLines_SetLines, {}, "ToolbarLines"},
    {"ToolbarLines.DeleteLines", &Main.ToolbarLines_DeleteLines, {}, "ToolbarLines"},
    {"ToolbarSaveView", &Main.ToolbarSaveView},
    {"ToolbarSaveView.LastView", &Main.ToolbarSaveView_LastView, {}, "ToolbarSaveView"},
    {"ToolbarSaveView.NextView", &Main.ToolbarSaveView_NextView, {}, "ToolbarSaveView"},
    {"ToolbarSaveView.SaveView", &Main.ToolbarSaveView_SaveView, {}, "ToolbarSaveView"},
    {"ToolbarSaveView.DeleteView", &Main.ToolbarSaveView_DeleteView, {}, "ToolbarSaveView"},
    {"ComboSaveView", &Main.ComboSaveView, {}, "ToolbarSaveView"},
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
