// The main window: menus, tool bars, status bar.
#pragma once

#include "core/rooms.h"
#include "core/window.h"

namespace corvinade::core {

struct FormMain {
    WindowState Window;

    Control MenuFile = Menu("&File");
    Control MenuFileNew = Menu("&New...");
    Control MenuFileOpen = Menu("&Open...");
    Control MenuFileSave = Menu("&Save");
    Control MenuFileSaveAs = Menu("Save &As...");
    Control MenuFileInputFiles = Menu("&Input Files...");
    Control MenueFileExport = Menu("Export");
    Control MenueFileExportRobCad = Menu("Rob&Cad Robface *.rf File");
    Control MenueFileExportROCAL = Menu("&Rocal *.bas File");
    Control MenueOnlyMCStoTilde = Menu("OnlyMCS Pts to txt File");
    Control MenüDateiAlt1 = Menu("&1 ");
    Control MenüDateiAlt2 = Menu("&2 ");
    Control MenüDateiAlt3 = Menu("&3 ");
    Control MenüDateiAlt4 = Menu("&4 ");
    Control MenuFileExit = Menu("E&xit");

    Control MenuEdit = Menu("&Edit");
    Control MenuEditCopy = Menu("&Copy");
    Control MenuEditGraphData = Menu("&Graph Data...");

    Control MenuView = Menu("&View");
    Control MenuVievMainSheet = Menu("&Main Sheet");
    Control MenüViewInputStatistic = Menu("&Input Statistic");
    Control MenuViewNotes = Menu("&Notes");
    Control MenüViewS = Menu("Saved &Views");
    Control MenüViewLastView = Menu("&Last View");
    Control MenüViewNextView = Menu("&Next View");
    Control MenüViewSaveView = Menu("&Save View...");
    Control MenüViewDeleteView = Menu("&Delete View");

    Control MenuTransformation = Menu("&Transformation");
    Control MenuTransformationCalculation = Menu("&Calculation");
    Control MenuTransformationReliability = Menu("&Reliability");
    Control MenuTransformationDistanceScale = Menu("&Distance Scale");
    Control MenuTransformationBundle = Menu("B&undle...");
    Control MenueTransformationBatch = Menu("&Batch...");

    Control MenueGraphics = Menu("&Graphics");
    Control MenueGraphicsWindow = Menu("Graphics &Window");
    Control MenüAnsichtAnpassen = Menu("&Fit");
    Control MenüAnsichtcenter = Menu("&Center");
    Control MenüAnsichtTopview = Menu("&Top View");
    Control MenüAnsichtSideView = Menu("&Side View");
    Control MenüAnsichtFrontView = Menu("F&ront View");
    Control MenüAnsichtIsometricView = Menu("&Isometric View");
    Control MenüAnsichtPunkte = Menu("&Points");
    Control MenüAnsichtPunkteBigger = Menu("&Bigger");
    Control MenüAnsichtPunkteSmaller = Menu("&Smaller");
    Control MenüAnsichtPunkteSmallPoints = Menu("S&mall Points");
    Control MenüAnsichtVektoren = Menu("&Vectors");
    Control MenüAnsichtVektorenVektorModeActive = Menu("&Vector Mode");
    Control MenüAnsichtVektorenLonger = Menu("&Longer");
    Control MenüAnsichtVektorenShorter = Menu("&Shorter");
    Control MenüAnsichtAnalyse = Menu("&Analyse");
    Control MenüAnsichtAnalyseModeActive = Menu("&Analyse Mode");
    Control MenüAnsichtAnalyseKeepPoints = Menu("&Keep Points");
    Control MenüAnsichtAnalyseModeMore = Menu("&More");
    Control MenüAnsichtAnalyseModeLess = Menu("&Less");
    Control MenüAnsichtToleranzen = Menu("T&olerances");
    Control MenüAnsichtToleranzenColorbar = Menu("&Color Bar");
    Control MenüAnsichtToleranzenEinstellungen = Menu("&Settings...");
    Control MenüGrafikBlackPlane = Menu("&Black Planes...");
    Control MenüGraphicsPrint = Menu("Pict&ure to Clipboard");
    Control MenüGraphicsLines = Menu("&Lines");
    Control MenüGraphicsLinesLineModeActive = Menu("&Line Mode");
    Control MenüGraphicsLinesSetLines = Menu("&Set Lines");
    Control MenüGraphicsLinesDeleteLines = Menu("&Delete Lines");
    Control MenuFahne = Menu("Fla&g");
    Control MenuFahneEdit = Menu("&Edit...");
    Control MenuFahneCopy = Menu("&Copy");
    Control MenuFahneDelete = Menu("&Delete");

    Control MenüGlobalGraphics = Menu("G&lobal Graphics");
    Control MenüGlobalRotateAbout = Menu("&Rotate about a Point");
    Control MenüGlobalFlagsMode = Menu("&Flag Mode");
    Control MenüAnsichtDynamicFlag = Menu("&Dynamic Flag");
    Control MenüGlobalGeneralGraphicsSettings = Menu("&Graphics Settings...");

    Control MenuSettings = Menu("&Settings");
    Control MenuSettingsUnits = Menu("&Units...");
    Control MenueExtrasOptions = Menu("&Options...");

    Control MenuHelp = Menu("&Help");
    Control MenueHelpQuestion = Menu("&Manual");
    Control MenuHelpBindings = Menu("&Keys and Mouse in 3D Windows");
    Control MenuHelpInfo = Menu("&Info...");
    Control MenueHelpSpezial = Menu("&Spezial");

    Control Toolbar1 = Toolbar();
    Control Toolbar1_InputFiles = ToolButton("Input files");
    Control Toolbar1_Copy = ToolButton("Copy");
    Control Toolbar1_TrafoBerechnung = ToolButton("Calculation");

    Control ToolbarReliability = Toolbar();
    Control ToolbarReliability_Reliability = ToolButton("Reliability");

    Control Toolbar2 = Toolbar();
    Control Toolbar2_FileNew = ToolButton("New job");
    Control Toolbar2_FileOpen = ToolButton("Open a job");
    Control Toolbar2_FileSave = ToolButton("Save the job");

    Control ToolbarGraphics = Toolbar();
    Control ToolbarGraphics_Graphics = ToolButton("Graphics window");
    Control ToolbarGraphics_RotateAbout = ToolButton("Rotate about a point");
    Control ToolbarGraphics_ViewTop = ToolButton("Top view");
    Control ToolbarGraphics_ViewFront = ToolButton("Front view");
    Control ToolbarGraphics_ViewSide = ToolButton("Side view");
    Control ToolbarGraphics_ViewIso = ToolButton("Isometric view");
    Control ToolbarGraphics_FlagMode = ToolButton("Flag mode");
    Control ToolbarGraphics_ZoomAll = ToolButton("Fit");
    Control ToolbarGraphics_ZoomOut = ToolButton("Zoom out");
    Control ToolbarGraphics_ZoomIn = ToolButton("Zoom in");
    Control ToolbarGraphics_ColorBar = ToolButton("Color bar");
    Control ToolbarGraphics_PointsBigger = ToolButton("Bigger points");
    Control ToolbarGraphics_PointsSmaller = ToolButton("Smaller points");
    Control ToolbarGraphics_VectorMode = ToolButton("Vector mode");
    Control ToolbarGraphics_VectorLonger = ToolButton("Longer vectors");
    Control ToolbarGraphics_VectorShorter = ToolButton("Shorter vectors");
    Control ToolbarGraphics_AnalyseMode = ToolButton("Analyse mode");

    Control ToolbarLines = Toolbar();
    Control ToolbarLines_LineMode = ToolButton("Line mode");
    Control ToolbarLines_SetLines = ToolButton("Set lines");
    Control ToolbarLines_DeleteLines = ToolButton("Delete lines");

    Control ToolbarSaveView = Toolbar();
    Control ToolbarSaveView_LastView = ToolButton("Last view");
    Control ToolbarSaveView_NextView = ToolButton("Next view");
    Control ToolbarSaveView_SaveView = ToolButton("Save view");
    Control ToolbarSaveView_DeleteView = ToolButton("Delete view");
    Control ComboSaveView = ComboBox();

    Control StatusBar_1 = Panel(), StatusBar_2 = Panel(), StatusBar_3 = Panel(), StatusBar_4 = Panel(),
            StatusBar_5 = Panel(), StatusBar_6 = Panel(), StatusBar_7 = Panel(), StatusBar_8 = Panel(),
            StatusBar_9 = Panel();
    Control StatusBar_Notes = HiddenButton();  // how many notes there are

    static void MenuFileNew_Click();
    static void MenuFileOpen_Click();
    static void MenuFileSave_Click();
    static void MenuFileSaveAs_Click();
    static void MenuFileInputFiles_Click();
    static void MenüDateiAlt1_Click();
    static void MenüDateiAlt2_Click();
    static void MenüDateiAlt3_Click();
    static void MenüDateiAlt4_Click();
    static void MenuFileExit_Click();
    static void MenuEditCopy_Click();
    static void MenuEditGraphData_Click();  // in analysis/form_grafik.cpp
    static void MenuVievMainSheet_Click();
    static void MenüViewInputStatistic_Click();
    static void MenuViewNotes_Click();
    static void StatusBar_Notes_Click();
    static void MenuTransformationCalculation_Click();
    static void MenuTransformationDistanceScale_Click();
    static void MenuTransformationBundle_Click();
    static void MenueTransformationBatch_Click();
    static void MenuTransformationReliability_Click();
    static void MenuSettingsUnits_Click();
    static void MenueExtrasOptions_Click();
    static void MenueHelpQuestion_Click();
    static void MenuHelpInfo_Click();
    static void MenueHelpSpezial_Click();

    // Of the exports, defined in analysis/form_main_exports.cpp.
    static void MenueFileExportRobCad_Click();
    static void MenueFileExportROCAL_Click();
    static void MenueOnlyMCStoTilde_Click();

    // Of the graphics windows, defined in graphics/form_main_graphics.cpp.
    static void MenueGraphics_Click();
    static void MenüAnsichtAnpassen_Click();
    static void MenüAnsichtcenter_Click();
    static void MenüAnsichtTopview_Click();
    static void MenüAnsichtSideView_Click();
    static void MenüAnsichtFrontView_Click();
    static void MenüAnsichtIsometricView_Click();
    static void MenüAnsichtPunkteBigger_Click();
    static void MenüAnsichtPunkteSmaller_Click();
    static void MenüAnsichtPunkteSmallPoints_Click();
    static void MenüAnsichtVektorenVektorModeActive_Click();
    static void MenüAnsichtVektorenLonger_Click();
    static void MenüAnsichtVektorenShorter_Click();
    static void MenüAnsichtAnalyseModeActive_Click();
    static void MenüAnsichtAnalyseKeepPoints_Click();
    static void MenüAnsichtAnalyseModeMore_Click();
    static void MenüAnsichtAnalyseModeLess_Click();
    static void MenüAnsichtToleranzenColorbar_Click();
    static void MenüAnsichtToleranzenEinstellungen_Click();
    static void MenüGrafikBlackPlane_Click();
    static void MenüGraphicsPrint_Click();
    static void MenüGraphicsLinesLineModeActive_Click();
    static void MenüGraphicsLinesSetLines_Click();
    static void MenüGraphicsLinesDeleteLines_Click();
    static void MenüGlobalRotateAbout_Click();
    static void MenüGlobalFlagsMode_Click();
    static void MenüGlobalGeneralGraphicsSettings_Click();
    static void MenüAnsichtDynamicFlag_Click();
    static void MenuFahneEdit_Click();
    static void MenuFahneCopy_Click();
    static void MenuFahneDelete_Click();
    static void MenüViewSaveView_Click();
    static void MenüViewDeleteView_Click();
    static void MenüViewLastView_Click();
    static void MenüViewNextView_Click();
    static void MenuHelpBindings_Click();
    static void ToolbarGraphics_ZoomOut_Click();
    static void ToolbarGraphics_ZoomIn_Click();
    static void ComboSaveView_Click();

    static void Form_Unload();

private:
    static Control HiddenButton() {
        Control button = Button("");
        button.Visible = false;
        return button;
    }
};
inline FormMain Main;
extern const WindowEntry FormMain_Entry;

}  // namespace corvinade::core
