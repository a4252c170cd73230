// Ctrl+F in any table: a line to type into, and the next row that has it.
#pragma once

#include "core/rooms.h"

class QTableView;

namespace corvinade::ui {

void AddTableSearch(QTableView& view);

}  // namespace corvinade::ui
