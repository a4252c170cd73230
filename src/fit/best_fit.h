// Whether the solution that the iteration has found is the best one there is, and the way to that where not.
#pragma once

#include "fit/norm_run.h"

namespace corvinade::fit {

// Compares the fit that the told iteration has ended in with the best of all solutions that keep the values
// the user has held: in closed form for 6, 7 and 12 parameters that all float, by several starts for other
// choices. Where another one is better by more than rounding, or the iteration found no end, the iteration
// begins again from there, a remark says it, and `fit` is that of the new run; where
// it cannot settle even there (Rot y at a right angle, where its equations are singular; an outlier of the
// size of the whole) the closed solution itself is the result. Everything else is left as it is, bit by bit.
// A mirrored solution is taken only where it fits better by more than noise explains, or where the start
// scales ask for it. With start values of the user's own a fit that converged is left, and a remark tells of
// a better one. For the plain model with weights 0 and 1, and by best_tool_fit.h for the tool
// model; does nothing for others, nor where SeeksBest is false. False when the fit was abandoned.
bool SeekBestFit(NormRun& fit);

}  // namespace corvinade::fit
