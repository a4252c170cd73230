// A grid of the logic in a table view. Nothing is copied: the view asks for the cells that it paints.
#pragma once

#include "core/rooms.h"
#include "core/window.h"

class QTableView;

namespace corvinade::ui {

// Gives the view its model and its events. The first fixed row stands in the view's heading.
void BindGrid(Control& grid, QTableView& view);

// Brings size, columns, selection and what is visible up to date.
void ShowGrid(Control& grid, QTableView& view);

}  // namespace corvinade::ui
