// Quality of a finished fit.
#pragma once

#include <vector>

#include "fit/arrays.h"

namespace corvinade::fit {

// s0 divides by the sum of the weights less one, not by n - u: that is the form that the reports are
// calibrated on. sx, sy, sz the same for each axis alone. Of n residuals v (mm) and weights P, three a pair.
void Statistics(const Column& v, const Column& P, int n, double& s0, double& sx, double& sy, double& sz);

// Of an axis alone, by the sum of its squared residuals with their weights and that of the weights.
double SigmaOfAxis(double squares, double weights);

// The value that half of them reach: of an even number the greater of the two in the middle. 0 of none.
double MiddleOf(std::vector<double> values);

// The middle of the lengths of the deviations of whole pairs. A least sum of absolute values goes through as
// many points exactly as its unknowns allow; where these are half of all or more, they say nothing of how
// long a deviation is, and the middle is that of the others.
double MiddleDeviation(std::vector<double> deviations, int unknowns);

}  // namespace corvinade::fit
