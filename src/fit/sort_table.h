// Sorting the rows of a table of numbers.
#pragma once

#include <span>

#include "fit/arrays.h"

namespace corvinade::fit {

// Sorts rows 1 to Rows ascending by the columns named, the first of them counting most. Row 0 stays; rows
// that are equal in all of these columns keep their order; a value that is no number stands behind all
// numbers. A column outside the table is a broken promise of the caller.
void SortTable(Matrix& table, std::span<const int> columns);

}  // namespace corvinade::fit
