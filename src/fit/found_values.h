// What a search on sums has found, as the parameters of a fit.
#pragma once

#include "fit/chain_search.h"
#include "fit/norm_run.h"

namespace corvinade::fit {

// Puts the floating parameters of the run at the values of a solution; held ones stay. With one scale the
// three others follow it.
//   values  of the solution, mm, rad, factors; its translation does not count
//   M       its matrix R K S
//   shift   the image of the points' start centre less their target centre, mm, from which the translation
//           follows in twice the digits: T = shift + target centre - M start centre
void TakeFoundValues(NormRun& fit, const ChainValues& values, const Mat3& M, const Vec3& shift);

}  // namespace corvinade::fit
