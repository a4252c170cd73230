// The main window: menus, tool bars, status bar.
#pragma once

#include "core/rooms.h"
#include "core/window.h"

namespace corvinade::core {

struct FormMain {
    WindowState Window;

    Control MenuFile;
    Control MenuFileNew;
    Control MenuFileOpen;
    Control MenuFileSave;
    Control MenuFileSaveAs;
    Control MenuFileInputFiles;
    Control MenuFileRecovery;
    Control MenueFileExport;
    Control MenueFileExportResult;
    Control MenuFileReport;
    Control MenueFileExportRobCad;
    Control MenueFileExportROCAL;
    Control MenueOnlyMCStoTilde;
    Control MenüDateiAlt1;
    Control MenüDateiAlt2;
    Control MenüDateiAlt3;
    Control MenüDateiAlt4;
    Control MenuFileExit;

    Control MenuEdit;
    Control MenuEditUndo;
    Control MenuEditRedo;
    Control MenuEditCopy;
    Control MenuEditGraphData;
    Control MenuEditPicture;

    Control MenuView;
    Control MenuVievMainSheet;
    Control MenüViewInputStatistic;
    Control MenuViewNotes;
    Control MenuViewStart;
    Control MenüViewS;
    Control MenüViewLastView;
    Control MenüViewNextView;
    Control MenüViewSaveView;
    Control MenüViewDeleteView;

    Control MenuTransformation;
    Control MenuTransformationCalculation;
    Control MenuTransformationReliability;
    Control MenuTransformationDistanceScale;
    Control MenuTransformationBundle;
    Control MenueTransformationBatch;

    Control MenueGraphics;
    Control MenueGraphicsWindow;
    Control MenüAnsichtAnpassen;
    Control MenüAnsichtcenter;
    Control MenüAnsichtTopview;
    Control MenüAnsichtSideView;
    Control MenüAnsichtFrontView;
    Control MenüAnsichtIsometricView;
    Control MenüAnsichtPunkte;
    Control MenüAnsichtPunkteBigger;
    Control MenüAnsichtPunkteSmaller;
    Control MenüAnsichtPunkteSmallPoints;
    Control MenüAnsichtVektoren;
    Control MenüAnsichtVektorenVektorModeActive;
    Control MenüAnsichtVektorenLonger;
    Control MenüAnsichtVektorenShorter;
    Control MenüAnsichtAnalyse;
    Control MenüAnsichtAnalyseModeActive;
    Control MenüAnsichtAnalyseKeepPoints;
    Control MenüAnsichtAnalyseModeMore;
    Control MenüAnsichtAnalyseModeLess;
    Control MenüAnsichtToleranzen;
    Control MenüAnsichtToleranzenColorbar;
    Control MenüAnsichtToleranzenEinstellungen;
    Control MenüGrafikBlackPlane;
    Control MenüGraphicsPrint;
    Control MenuGraphicsDistance;
    Control MenuGraphicsWhite;
    Control MenüGraphicsLines;
    Control MenüGraphicsLinesLineModeActive;
    Control MenüGraphicsLinesSetLines;
    Control MenüGraphicsLinesDeleteLines;
    Control MenuFahne;
    Control MenuFahneEdit;
    Control MenuFahneCopy;
    Control MenuFahneDelete;
    Control MenuPicture;

    Control MenüGlobalGraphics;
    Control MenüGlobalRotateAbout;
    Control MenüGlobalFlagsMode;
    Control MenüAnsichtDynamicFlag;
    Control MenüGlobalGeneralGraphicsSettings;

    Control MenuSettings;
    Control MenuSettingsUnits;
    Control MenueExtrasOptions;

    Control MenuHelp;
    Control MenueHelpQuestion;
    Control MenuHelpBindings;
    Control MenuHelpInfo;
    Control MenueHelpSpezial;

    Control Toolbar1;
    Control Toolbar1_InputFiles;
    Control Toolbar1_Copy;
    Control Toolbar1_TrafoBerechnung;

    Control ToolbarReliability;
    Control ToolbarReliability_Reliability;

    Control Toolbar2;
    Control Toolbar2_FileNew;
    Control Toolbar2_FileOpen;
    Control Toolbar2_FileSave;

    Control ToolbarGraphics;
    Control ToolbarGraphics_Graphics;
    Control ToolbarGraphics_RotateAbout;
    Control ToolbarGraphics_ViewTop;
    Control ToolbarGraphics_ViewFront;
    Control ToolbarGraphics_ViewSide;
    Control ToolbarGraphics_ViewIso;
    Control ToolbarGraphics_FlagMode;
    Control ToolbarGraphics_ZoomAll;
    Control ToolbarGraphics_ZoomOut;
    Control ToolbarGraphics_ZoomIn;
    Control ToolbarGraphics_ColorBar;
    Control ToolbarGraphics_PointsBigger;
    Control ToolbarGraphics_PointsSmaller;
    Control ToolbarGraphics_VectorMode;
    Control ToolbarGraphics_VectorLonger;
    Control ToolbarGraphics_VectorShorter;
    Control ToolbarGraphics_AnalyseMode;

    Control ToolbarLines;
    Control ToolbarLines_LineMode;
    Control ToolbarLines_SetLines;
    Control ToolbarLines_DeleteLines;

    Control ToolbarSaveView;
    Control ToolbarSaveView_LastView;
    Control ToolbarSaveView_NextView;
    Control ToolbarSaveView_SaveView;
    Control ToolbarSaveView_DeleteView;
    Control ComboSaveView;

    Control StatusBar_1, StatusBar_2, StatusBar_3, StatusBar_4, StatusBar_5, StatusBar_6, StatusBar_7,
        StatusBar_8, StatusBar_9;
    Control StatusBar_Notes;  // how many notes there are

    static void MenuFileNew_Click();
    static void MenuFileOpen_Click();
    static void MenuFileSave_Click();
    static void MenuFileSaveAs_Click();
    static void MenuFileInputFiles_Click();
    static void MenuFileRecovery_Click();
    static void MenüDateiAlt1_Click();
    static void MenüDateiAlt2_Click();
    static void MenüDateiAlt3_Click();
    static void MenüDateiAlt4_Click();
    static void MenuFileExit_Click();
    static void MenuVievMainSheet_Click();
    static void MenüViewInputStatistic_Click();
    static void MenuViewNotes_Click();
    static void MenuViewStart_Click();
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

    static void Form_Unload();
};
extern FormMain Main;
// Its controls stand above all rooms (main_window.cpp), for its commands are those of all of them.
extern const WindowEntry FormMain_Entry;

}  // namespace corvinade::core
