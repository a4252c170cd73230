// The way from the result of a norm's loop to the norm's true optimum, for the plain model.
#pragma once

#include <optional>

#include "engine/norms.h"

// Runs on from the parameters of the last fit to the least sum of absolute residuals. Each step makes the
// residuals linear and goes to the optimum of the linear problem; a step that would make the sum larger is
// halved. Where that does not end a smooth way takes over (smooth_norms.h), and other places are begun at as
// well (exact_starts.h), of which the best end is the result. The weights become those that L1 gives to the
// residuals left. A stop ends the way where it is: Norm.Converged is then false. The distance and the tool
// model are refused with a message, the result of the loop then stays. So it does after a loop that was
// stopped or whose last fit is no number, for there is nothing to begin at. False when the job's points were
// replaced meanwhile: nothing more was written then. Reads and writes Norm, the job's parameters, fit.v and
// fit.P, panels 6 and 7.
bool RunOnToLeastSum(NormFit& fit);

// The same for the least largest absolute residual. The weights stay those of the loop. Where several
// results have the same largest residual it is the one whose next smaller ones are least, and so on.
bool RunOnToLeastLargest(NormFit& fit);

// The parameters of these optima alone, found from the job's on, whatever the loop is. The job and `fit` stay
// as they are, but for the weights in use of its points. Nothing for thousands of points, where a loop is
// through sooner, and after a stop.
std::optional<Parameters> SeekLeastSum(NormFit& fit);
std::optional<Parameters> SeekLeastLargest(NormFit& fit);
