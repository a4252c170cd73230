// The file of all pairs of points and their distances.
#pragma once

#include <string>

#include "analysis/distance_pairs.h"
#include "core/rooms.h"

namespace corvinade::analysis {

// Writes a line a pair: the names, the two distances in mm, and delta s in the shown unit, with tabs between
// and CR LF behind. Points i < j, so each pair once, i running slowest. Whole or not at all; false when
// `goOn`, asked a few times a second, ended it. Throws PlatformError as WriteFile.
// Reads Units.
bool WriteTrumpetFile(const std::string& path, const DistancePoints& points, const WorkGoesOn& goOn = {});

}  // namespace corvinade::analysis
