// The dialog of the flags: what one flag of the active graphics window shows, or all of them, and where many
// are placed.
#pragma once

#include "core/rooms.h"
#include "core/window.h"
#include "graphics/screen_window.h"

namespace corvinade::graphics {

struct FormEditFahne {
    WindowState Window{.Caption = "Flags"};

    Control FrameRows;
    Control CheckShowOnlyPointNumber;
    Control CheckActual, CheckNominal;
    Control CheckDev, CheckUse;
    Control CheckLegendexyz, CheckLegendeName;

    Control FrameColumns;
    Control CheckX, CheckY, CheckZ;
    Control Check3D;
    Control CheckR, CheckPhi;
    Control CheckRho, CheckTheta;

    Control FrameLook;
    Control CheckSetTolCol;
    Control CheckGrid;
    Control CheckFlagWithinScreen;
    Control CmdFonts;
    Control CheckSnaptoGrid;
    Control LabelGridLength;
    Control TextGridLength;
    Control VScroll1;

    Control FramePlace;
    Control OptionPlaceClose;
    Control OptionPlaceRadial;
    Control TextFaktor;
    Control OptionPlaceBorder;
    Control OptionSpeziale;
    Control CheckPutAll;
    Control CheckPutToEvery;
    Control TextFlagOnEvery;

    Control CheckChangeAll;
    Control BtnFahneLöschen;
    Control BtnAlleLöschen;
    Control BtnOK, BtnCancel;

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
extern FormEditFahne EditFahneWindow;
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
