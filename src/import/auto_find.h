// Pairing without names and without a known transformation, from the distances inside each set.
#pragma once

#include "core/rooms.h"
#include "import/matching.h"

namespace corvinade::import {

// Looks for distances between start points that occur between target points as well and are clear of all
// others there, computes a transformation from the middles of three such pairs, and pairs the points by
// coordinate under it (PärchenSuchen).
//   Reads   the point sets, Run.Etta (mm), Run.RobotFileHasId
//   Writes  Job.TraX to TraZ, RotXCopy to RotZCopy, ScaleX to ScaleZ, SeedIndex; names as PärchenSuchen
//           does; the coordinate arrays stay three elements longer than the names. Clears
//           Run.StopRequested first.
// Without a solution the transformation stays, the message says so, and no point has a partner. The same
// where a set has so many points that the table of their distances would not fit. Yields before each row
// of the start table; when the points have been replaced meanwhile it ends without a further write to the
// job and sets Run.ImportFailed.
void AutoFindPts(const MatchingOptions& options);

}  // namespace corvinade::import
