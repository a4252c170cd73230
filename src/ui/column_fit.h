// Columns that nobody has given a width yet.
#pragma once

#include "core/window.h"

class QTableView;

// Makes the columns that still have the width of a missing setting wide enough for their headings and their
// values, and no narrower again while the table has the same rows, so that nothing jumps; `anew` where it has
// got others. What the grid holds, and with it the settings file, stays as it is. Costs little where the
// values are those of the last call.
void FitColumns(Control& grid, QTableView& view, bool anew);
