// A grid: a table of cells with a current cell, a selection and a sort state. The rows and columns that
// hold headings are counted like all others, from 0.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "core/rooms.h"

namespace corvinade::core {

enum class GridAlign : std::uint8_t { Left, Centre, Right };

struct GridRect {
    int Row = 0, Col = 0, Row2 = 0, Col2 = 0;  // both corners belong to it
};

// The same rectangle with its start not behind its end.
GridRect Normalised(GridRect rect);

struct GridState {
    int Rows = 0, Cols = 0;
    int FixedRows = 0, FixedCols = 0;      // headings: they stay in place and are not sorted
    std::vector<std::string> Cells;        // row by row; a large grid makes its cells when they are asked for
    std::vector<std::int32_t> BackColors;  // likewise; empty: the desktop's own everywhere
    std::vector<GridAlign> Aligns;         // a column; missing: left
    std::vector<int> ColWidths;            // twips; missing or 0: the desktop's own
    std::vector<bool> HiddenCols;          // missing: shown

    // What the user has made of the columns. They keep their numbers wherever they stand.
    std::vector<int> ColOrder;  // as they stand from left to right; empty: by their numbers
    std::vector<bool> LeftOut;  // taken out of sight; missing: shown

    // A grid that is filled when it is looked at. Fill runs before anything is read and is then dropped;
    // Text and BackColor stand for Cells and BackColors, for rows as they were filled.
    std::function<void()> Fill;
    std::function<std::string(int row, int col)> Text;
    std::function<std::int32_t(int row, int col)> BackColor;
    std::function<double(int row, int col)> Bar;  // how much of the cell a bar takes, 0 to 1; unset: no bars

    std::vector<int> Kept;   // the filled rows that a filter leaves, headings included; empty: all
    std::vector<int> Order;  // the filled row that stands in each row; empty: as filled
    int TopRow = 0;
    int Row = 0, Col = 0;        // the current cell
    int RowSel = 0, ColSel = 0;  // the other corner of the selection
    int SortCol = -1;            // -1: never sorted
    bool SortDescending = false;
    bool SortBySize = false;  // numbers without their signs

    // Of the user's last event, for its handler.
    int MouseRow = 0, MouseCol = 0;
    bool MouseShift = false;
    std::string Key;
};

// Gives a small grid its size, with empty cells.
void SizeGrid(GridState& grid, int rows, int cols);

// Text of a cell, "" outside. Cells that are made when asked for are made here.
std::string CellText(GridState& grid, int row, int col);
std::int32_t CellBackColor(GridState& grid, int row, int col);
double CellBar(GridState& grid, int row, int col);                         // 0: none
void SetCell(GridState& grid, int row, int col, const std::string& text);  // Require: inside, filled cells
void SetCellBackColor(GridState& grid, int row, int col, std::int32_t colour);  // likewise

// Brings a grid that is filled when looked at up to date.
void LookAt(GridState& grid);

// The row as it was filled that stands in a row.
int FilledRow(const GridState& grid, int row);

// Sorts all rows but the headings by a column: by the value of the shown text where it is a number, numbers
// before other texts, other texts by their characters. Rows of the same value keep their order. The sort
// column and direction are remembered; selection and current cell stay where they are.
// `bySize` leaves the signs of numbers out.
void SortGrid(GridState& grid, int col, bool descending, bool bySize = false);

// What the user has sorted a grid by, for grids that are filled again; Col -1: nothing yet.
struct GridSort {
    int Col = -1;
    bool Descending = false;
    bool BySize = false;
};

// What a click on the heading of a column does: sorts by it, the first time ascending and each further time
// the other way round, and selects all rows. With Shift it goes by size without sign, the largest first.
void SortByHeading(GridState& grid, int col, GridSort& sort);

// Sorts a grid that has been filled anew as it was sorted before.
void SortAgain(GridState& grid, const GridSort& sort);

bool IsHiddenCol(const GridState& grid, int col);

// The place of a column from the left, from 0, and the column that stands there. What the user has put
// elsewhere counts as long as it is of as many columns as the grid has.
int PlaceOfCol(const GridState& grid, int col);
int ColAtPlace(const GridState& grid, int place);

// The selection: from the first to the last row, and from the column farther left to that farther right.
GridRect Selected(const GridState& grid);

// The current cell and the selection inside the grid, after its size has changed.
void KeepSelectionInside(GridState& grid);

// Cells of a rectangle as text: tabs between cells, CR LF between rows. Hidden columns are left out.
// A carriage return inside a cell becomes carriage return plus line feed.
std::string RectText(GridState& grid, const GridRect& rect);

// The selected cells below their headings; "" without a row.
std::string TextWithHeadings(GridState& grid);

// What the user has made of the columns, as one line for the settings: "0,2,1-,3", from left to right, with a
// "-" behind what is left out. A line that is not of this grid's columns leaves them as they are.
std::string ColumnsText(const GridState& grid);
void TakeColumnsText(const std::string& text, GridState& grid);

}  // namespace corvinade::core
