// Results whose scale has gone to 0, or to what noise makes of 0.
#pragma once

#include <string>

#include "core/rooms.h"
#include "engine/design.h"
#include "engine/gathered_points.h"

namespace corvinade::engine {

// Marks the job and notes it.
void NoteCollapsed(std::string text);

// Sums of products of points nearer to each other than 1e-70 mm are below the least number that is kept in
// full: the angles that float are marked as open then, and it is noted.
void NoteTooNear(const FitModel& model);

// A scale of next to nothing carries all points to one place, or into one plane, and fits whatever is there.
// True where all of them are at one place: no angle means anything then. Reads the job's points and
// parameters, and Calculation's residuals.
//
// In the plain model the scale is judged by how near to each other the images and the targets are, and the
// deviations long. With a tool the targets are the tips of the poses. Those of one tip touched again and
// again are at one place, but for what the coordinates and angles are rounded by, while the points have the
// noise of their instrument: the scale then is anything from there to some hundredths, and the deviations are
// no longer than the rounding. So less than a tenth is told where the images stand no more than three times
// as far apart as half of the deviations are long; chance alone makes hardly more of that.
//   points  gathered, with poses where the model is that of the tool
//   at      the linearisation at the result
bool NoteCollapse(const FitModel& model, const GatheredPoints& points, const Linearisation& at);

}  // namespace corvinade::engine
