// The best solution of the tool model, and what the poses of it leave open.
#pragma once

#include "fit/norm_run.h"

namespace corvinade::fit {

// As SeekBestFit (best_fit.h), for the tool model: the fit that the told iteration has ended in is held
// against the best of several starts (tool_search.h), and where another one is better by more than rounding,
// or the iteration found no end, it begins again from there and a remark says it. All else stays bit by bit.
//
// Poses that are all turned about one axis do not tell the tool vector's part along that axis of the flange
// from a translation. In a file that part is determined all the same, by the rounding of the angles and by
// what the robot's joints leave of the axis: the poses turn its direction w by small angles, root mean square
// d of |G w - mean|, which are errors and no turns. A part that is found from those is attenuated towards
// anything. So it is open where d is no more than four times the noise of an angle, which is at least 0.001
// degree, the resolution of robot programs, and at least s0 / lever: what the residuals allow with the part
// of the tool vector across w as the lever, s0 being that of the fit with all parts floating. Where that
// lever is short s0 says nothing of angles; poses that turn w by more than a quarter of a degree are always
// believed. The tool vector then is put at 0 along w and everything else is fitted; LeftByPoses of the run
// says so, and Q is that of the parameters with this part held. Where the rank of the design matrix shows the
// same already (open_parameters.h) a fit that has converged stays.
//
// False when the fit was abandoned.
bool SeekBestToolFit(NormRun& fit);

}  // namespace corvinade::fit
