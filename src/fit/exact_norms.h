// The way from the result of a norm's loop to the norm's true optimum, for the plain model.
#pragma once

#include <optional>

#include "fit/norm_run.h"

namespace corvinade::fit {

// Runs on from the parameters of the last fit to the least sum of absolute residuals, or to the least largest
// one. Each step makes the residuals linear and goes to the optimum of the linear problem; a step that would
// make the value larger is halved. Where that does not end a smooth way takes over (smooth_norms.h), and
// other places are begun at as well (exact_starts.h), of which the best end is the result. Of the sum the
// weights become those that L1 gives to the residuals left; of the largest they stay those of the loop, and
// where several results have the same largest residual it is the one whose next smaller ones are least, and
// so on. A stop ends the way where it is: Norm.Converged is then false. The distance and the tool model are
// left as the loop has them, not converged. So is a loop that was stopped or whose last fit is no number, for
// there is nothing to begin at. Reads and writes Norm, the parameters, the residuals, the weights and the
// remarks.
void RunOnToOptimum(NormRun& fit);

// The parameters of that optimum alone, found from the present ones on, whatever the loop is. `fit` stays as
// it is, but for the weights in use of its points. Nothing for thousands of points, where a loop is through
// sooner, and where the search was stopped or abandoned.
std::optional<Parameters> SeekOptimum(NormRun& fit);

}  // namespace corvinade::fit
