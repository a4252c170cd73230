// Sorting the rows of a table of numbers.
#include "fit/sort_table.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "fit/require.h"

namespace corvinade::fit {

void SortTable(Matrix& table, std::span<const int> columns) {
    for (const int column : columns) Require(column >= 0 && column <= table.Columns);
    if (table.Rows < 2) return;
    const auto before = [&](int left, int right) {
        for (const int column : columns) {
            const double a = table(left, column), b = table(right, column);
            if (std::isnan(a) != std::isnan(b)) return std::isnan(b);
            if (a < b) return true;
            if (b < a) return false;
        }
        return false;
    };
    std::vector<int> order(static_cast<std::size_t>(table.Rows));
    std::iota(order.begin(), order.end(), 1);
    std::stable_sort(order.begin(), order.end(), before);
    Matrix sorted = table;
    for (int row = 1; row <= table.Rows; ++row)
        std::copy_n(table.Row(order[static_cast<std::size_t>(row - 1)]), table.Columns + 1, sorted.Row(row));
    table = std::move(sorted);
}

}  // namespace corvinade::fit
