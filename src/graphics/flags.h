// The flags of a graphics window: small tables, each joined to one row of the scene. Their records are part
// of the window's state; their labels are made from them.
#pragma once

#include "core/rooms.h"
#include "graphics/screen_window.h"

namespace corvinade::graphics {

inline constexpr int kMostFlags = 32767;  // their numbers are 16-bit ones

// The record that a new flag of the window begins with: its template, else the one of the settings, else all
// switches on but that for the number alone.
FlagRecord NewFlagRecord(const ScreenWindow& window);
// Makes a record the template of the window's flags and the default of the settings.
void TakeAsTemplate(ScreenWindow& window, const FlagRecord& record);

// The flags that have a record: their number, unless the state is one that nobody has put in order.
int FlagsOf(const ScreenRecord& state);
// The record of a flag, from 1. Require: it exists.
FlagRecord& FlagOf(ScreenWindow& window, int flag);
// The flag of a row of the scene, 0 = none.
int FlagOfRow(const ScreenWindow& window, int row);

// Gives a row of the scene a flag, with its label, at a place in pixels; that flag is then the active one.
// Gives its number, or 0 where there are as many flags as there can be. No repaint. Require: the row exists
// and has none.
int AddFlag(ScreenWindow& window, int row, int left, int top);
// Where a flag may stand at all, pixels.
std::int16_t ToFlagPlace(double pixel);

// Writes the texts of a flag and gives it its size.
void FahneFüllen(ScreenWindow& window, int row, int flag);
// The same for any label: of `record`, for a row of the scene. Reads Job, Units, Settings, Scene.
void FillFlagLabel(const ScreenWindow& window, int row, const FlagRecord& record, FlagLabel& label);
// The font of a flag; one that no platform has room for is brought to what can be read.
TextFont FontOfFlag(const FlagRecord& record);

void Fahne_Löschen(ScreenWindow& window, int flag);  // repaints; Require: it exists
void AlleLöschen(ScreenWindow& window);              // repaints
// Makes all labels anew from the records. No repaint.
void FahnenReset(ScreenWindow& window);
// Writes the texts of the flag that follows the mouse anew.
void RefillDynamicFlag(ScreenWindow& window);
// Writes the texts of all flags anew and paints the window.
void RefreshFlags(ScreenWindow& window);
void Alle_Fahnen_neu_zeichnen();  // in all windows
// Puts the fields of flags in order, so that every number leads to a record.
void MakeFlagsUsable(ScreenRecord& view);

// The text of a flag as it is shown: tabs between cells, CR LF between rows.
std::string FlagText(const FlagLabel& label);
void MenuFahneCopy_Command();  // that of the active flag of the active window to the clipboard
void ShowFlagCommands();       // enables the entries for the active flag

// --- Painting ---------------------------------------------------------------------------------------------

// Decides which flags are visible and draws their leader lines. Pixel tables are those of the window.
void DrawFlagLines(ScreenWindow& window);
// The tables themselves, on top of all; hides the names that would lie on them.
void DrawFlags(ScreenWindow& window);
void ZeichneLinieZuFahne(ScreenWindow& window, const FlagLabel& label, const FlagRecord& record, int row);

// The edges of shown columns (or rows) of a flag from its left (or upper) one, pixels: one more than cells.
std::array<float, kFlagCols + 1> FlagColumnEdges(const FlagLabel& label);
std::array<float, kFlagRows + 1> FlagRowEdges(const FlagLabel& label);
// Colours of a flag in the last paint: ground, and ground of a cell.
Colour FlagGround(const FlagRecord& record, const FlagLabel& label);
Colour FlagCellGround(const FlagRecord& record, const FlagLabel& label, int row, int column);
// That of its letters; dark ones would not be read on a dark ground.
Colour FlagLetterColour(const FlagRecord& record, const FlagLabel& label, int row, int column);

// --- Mouse ------------------------------------------------------------------------------------------------

// The visible flag on top at a place, 0 = none.
int FlagAt(const ScreenWindow& window, float x, float y);
struct FlagCell {
    int Row = -1, Column = -1;  // -1: none is shown there
};
FlagCell FlagCellAt(const ScreenWindow& window, int flag, float x, float y);

void PressFlag(ScreenWindow& window, int flag, float x, float y);
void DragFlag(ScreenWindow& window, float x, float y);
void ReleaseFlag(ScreenWindow& window);  // paints and stores where it has been moved
void ShowFlagMenu(ScreenWindow& window, int flag);
// A click at (x, y) on a row of the scene in the flag mode.
void FlagByClick(ScreenWindow& window, int row, float x, float y);
// A double click on a cell of row "use" turns the use of that coordinate over.
void FlagDoubleClicked(ScreenWindow& window, int flag, const FlagCell& cell);
// The dynamic flag goes to the row under the mouse, 0 = none.
void DynamicFlagTo(ScreenWindow& window, int row);

}  // namespace corvinade::graphics
