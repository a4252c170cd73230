// Sums and trends of a series of numbers, elements 1 to the upper bound.
#pragma once

#include "fit/arrays.h"

namespace corvinade::fit {

// True when the series keeps its pace: no step a(i) - a(i-1) differs from the first, a(2) - a(1), by more
// than `percent` of it, its sign aside. Series of fewer than three numbers do.
void ArrayTrend(const Column& a, double percent, bool& constant);

void SummeArray(const Column& a, double& sum);

}  // namespace corvinade::fit
