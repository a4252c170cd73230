// The dialog of the flags: what one flag of the active graphics window shows, or all of them, and where many
// are placed.
#pragma once

#include "core/rooms.h"
#include "core/window.h"
#include "graphics/screen_window.h"

namespace corvinade::graphics {

struct FormEditFahne {
    WindowState Window{.Caption = "Flags"};

    Control FrameRows = Frame("Rows");
    Control CheckShowOnlyPointNumber = CheckBox("Point &Number only");
    Control CheckActual = CheckBox("&Actual"), CheckNominal = CheckBox("N&ominal");
    Control CheckDev = CheckBox("&Deviation"), CheckUse = CheckBox("&Use");
    Control CheckLegendexyz = CheckBox("&Heading Row"), CheckLegendeName = CheckBox("Na&me Column");

    Control FrameColumns = Frame("Columns");
    Control CheckX = CheckBox("x"), CheckY = CheckBox("y"), CheckZ = CheckBox("z");
    Control Check3D = CheckBox("3D Dev.");
    Control CheckR = CheckBox("R"), CheckPhi = CheckBox("Phi");
    Control CheckRho = CheckBox("Rho"), CheckTheta = CheckBox("Theta");

    Control FrameLook = Frame("Look");
    Control CheckSetTolCol = CheckBox("&Tolerance Color");
    Control CheckGrid = CheckBox("&Grid Lines");
    Control CheckFlagWithinScreen = CheckBox("Only while the Point is in the &Picture");
    Control CmdFonts = Button("&Font...");
    Control CheckSnaptoGrid = CheckBox("&Snap to Grid");
    Control LabelGridLength = Label("Grid Length [Pixel]");
    Control TextGridLength = TextBox();
    Control VScroll1 = ScrollBar(10, 1000);

    Control FramePlace = Frame("Place");
    Control OptionPlaceClose = Option("&Close to the Point", 1);
    Control OptionPlaceRadial = Option("&Radial, Factor", 1);
    Control TextFaktor = TextBox("1.50");
    Control OptionPlaceBorder = Option("At the &Border", 1);
    Control OptionSpeziale = Option("Stac&ked at the nearest Side", 1);
    Control CheckPutAll = CheckBox("Flags to all Po&ints");
    Control CheckPutToEvery = CheckBox("Only to e&very n-th, n =");
    Control TextFlagOnEvery = TextBox("2.00");

    Control CheckChangeAll = CheckBox("Change all F&lags");
    Control BtnFahneLöschen = Button("D&elete Flag");
    Control BtnAlleLöschen = Button("Delete All");
    Control BtnOK = Button("OK"), BtnCancel = Button("Cancel");

    std::uint64_t Screen = 0;  // Id of the graphics window that it was opened for
    FlagRecord Record;         // font and all that has no control, as it was opened
    bool Filling = false;      // from a record: no rule between the boxes applies

    static void Form_Load();
    static void Form_Escape();
    static void CheckShowOnlyPointNumber_Click();
    static void CheckActual_Click();
    static void CheckNominal_Click();
    static void CheckDev_Click();
    static void CheckUse_Click();
    static void TextGridLength_Change();
    static void VScroll1_Change();
    static void TextFaktor_Change();
    static void TextFlagOnEvery_Change();
    static void Option_Click();  // of the four placements
    static void CheckPutAll_Click();
    static void CmdFonts_Click();
    static void BtnFahneLöschen_Click();
    static void BtnAlleLöschen_Click();
    static void BtnOK_Click();
    static void BtnCancel_Click();
};
inline FormEditFahne EditFahneWindow;
extern const WindowEntry FormEditFahne_Entry;

// An open dialog turns to another window that has become the active one.
void EditFahne_ShowWindow(const ScreenWindow& window);
// Its buttons for deleting go by the flags that are there now.
void EditFahne_EnableDeleting();

// Applies the dialog to the active flag of its window, and to new ones, and stores the view.
void ÜbernehmenEditFahne();
// Applies the dialog to all flags of its window.
void DoChangesOnFlags();

}  // namespace corvinade::graphics
