// How far the angles of the poses of a robot program spread.
#pragma once

#include "core/rooms.h"

namespace corvinade::core {

// Run.SpanA to SpanC from the rows of Job.RobotABC: largest minus smallest angle of each column, rad; 0
// without rows. Rows of target points without a name hold no pose. An import has the spans from its file,
// where the angles are not yet divided by their unit; this is for orientations that come from elsewhere.
void FindPoseSpans();

}  // namespace corvinade::core
