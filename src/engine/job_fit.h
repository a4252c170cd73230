// From the job to a fit of its points, and back.
#pragma once

#include "core/rooms.h"
#include "fit/fit_run.h"
#include "fit/norm_run.h"

namespace corvinade::engine {

// A fit that begins at the job's parameters, by the limits of the settings. Its listener is the program: it
// shows each pass, and each round of the norm's loop, in the status bar and on the clipboard, puts the
// parameters into the job and serves events. The fit is abandoned when the job's points are replaced
// meanwhile, and stops where Run.StopRequested says so.
FitRun BeginFitOfJob(FitNorm norm = FitNorm::LeastSquares);

// The same for fits that are repeated thousands of times: the listener serves events and leaves the empty
// trace on the clipboard, and shows nothing.
FitRun BeginQuietFitOfJob();

// What the fit leaves: the job's parameters, the copies of the angles, `Chain`, and `Adjustment` apart from
// its model. Nothing of a fit that was abandoned but that mark.
void TakeFit(const FitRun& run);

}  // namespace corvinade::engine
