// The window that shows all points of the job in one grid, in cartesian, cylindrical and spherical form.
#pragma once

#include "analysis/main_sheet_cells.h"
#include "core/rooms.h"
#include "core/window.h"

namespace corvinade::analysis {

struct FormMainSheet {
    WindowState Window{.Caption = "Main Sheet"};

    Control ComboFilter, LabelFilter;  // which points are shown, and how many these are
    Control MSFlexGrid1;

    MainSheetCells Cells;  // what the grid shows

    static void Form_Load();
    static void Form_Unload();
    static void ComboFilter_Click();
    static void MSFlexGrid1_Click();
    static void MSFlexGrid1_DblClick();
    static void MSFlexGrid1_SelChange();
    static void MSFlexGrid1_RightClick();
    static void MSFlexGrid1_Key();
};
extern FormMainSheet MainSheetWindow;
extern const WindowEntry FormMainSheet_Entry;

// Refills the sheet where it is open, from a job with valid data. Yields at each row.
void FuellenHaupttabelle();

// Shows what the filter leaves now, where one is on: use flags or the tolerance may be others.
void MainSheet_FilterAgain();

// The line that shows a row as the sheet was filled, from 1; 0 where the sheet is closed, shows other
// points, or a filter leaves the row out.
int MainSheet_LineOf(int filledRow);
void MainSheet_ShowLine(int line);  // makes it the current one, centred. Require: the line exists
// The row as filled that the cursor is on; 0 where the sheet is closed or shows other points.
int MainSheet_CursorRow();

// The identical point in the row of the cursor; 0 where it is none, or the sheet shows other points.
int MainSheet_Pair();
void MainSheet_ShowPoint(int point);  // makes the row of an identical point the current one, centred
void MainSheet_Copy();                // copies the selected cells
void MenuEditCopy_Click();            // ... as the entry of the main window

// Outlives the window.
struct MainSheetRecord {
    GridSort Sorting;
    std::uint64_t Fills = 0;  // counts them; one that begins during a yield overtakes the one that yielded
};
inline MainSheetRecord MainSheet;

}  // namespace corvinade::analysis
