// The columns of a table as the user wants them: moved by the mouse, chosen in the menu of the headings, and
// kept in the settings.
#pragma once

#include "core/rooms.h"
#include "core/window.h"

class QTableView;

namespace corvinade::ui {

// Of a table with headings: moves, menu and what was kept. To be called once the view has its model.
void BindColumns(Control& grid, QTableView& view);

// Brings the columns where the grid has them, what was kept before included.
void ShowColumns(Control& grid, QTableView& view);

}  // namespace corvinade::ui
