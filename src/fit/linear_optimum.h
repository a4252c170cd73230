// The least sum and the least largest of the absolute residuals of linear rows, by linear programming:
// exchanges of few rows, each chosen from all. Bounds from the dual tell how near the optimum is.
#pragma once

#include <functional>
#include <vector>

#include "fit/linear_rows.h"

namespace corvinade::fit {

// What holds an optimum where it is, in a later linearisation too.
struct Holding {
    // The rows that do. A number below 0 stands for a bound of the search and is no row; an optimum that the
    // rows hold alone has none.
    std::vector<int> Rows;
    // Of the least largest: the side, -1 or 1, on which each of these rows lies. Of the least sum: the side
    // on which each other row lies. Rows that fit by chance lie on the side that the search has found for
    // them, whatever their rounding says later. Empty: as they lie.
    std::vector<double> Sides;
};

// Asked before each exchange; false ends the search where it is.
using MayGoOn = std::function<bool()>;

// The least largest residual. Rows that hold it are then left as they are, and the largest of the others is
// brought down as far as they allow, until no unknown is free: so the result is one point.
//   y        out: the optimum
//   holding  out: Columns + 1 rows of the first, the largest of all
//   Returns the exchanges that it took.
int LeastLargest(LinearRows rows, std::vector<double>& y, Holding& holding, const MayGoOn& mayGoOn);

// The least sum of the absolute residuals. `holding`: Columns rows that fit exactly; those that come in
// are where the search begins, if they tell the unknowns apart.
int LeastSum(LinearRows rows, std::vector<double>& y, Holding& holding, const MayGoOn& mayGoOn);

// What no choice of y can be below, from the dual solution that belongs to these rows. Its rounding is
// allowed for: any y that is at least as good as 0 moves the rows by a bounded length.
double LowerBoundOfLargest(const LinearRows& rows, const Holding& holding);
double LowerBoundOfSum(const LinearRows& rows, const Holding& holding);

}  // namespace corvinade::fit
