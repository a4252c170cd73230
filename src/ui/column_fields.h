// Fields that stand above the columns of a table, and go with them.
#pragma once

#include "core/rooms.h"

class QWidget;

namespace corvinade::ui {

// A widget of the form whose property "above" names a table of it holds such fields: each has its column as
// the property "column". They follow when columns are drawn, scrolled or made anew. Does nothing in a form
// without.
void PutAboveColumns(const QWidget& form);

}  // namespace corvinade::ui
