// The orientations of the poses, for jobs whose target points came without them.
#pragma once

#include <string>

#include "core/rooms.h"

namespace corvinade::engine {

// Reads a text file of lines x y z a b c, with or without a name before them, and fills Job.RobotABC with the
// angles, in the present angle unit. Lines with a name belong to the identical point of that name, the
// others to the identical points in their order; names without partner are passed over.
// Throws PlatformError, naming file, line and what is wrong, and where an identical point is left without a
// pose; the job is then as it was.
void LoadPoses(const std::string& path);

}  // namespace corvinade::engine
