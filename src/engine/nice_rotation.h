// The neater of the two triples of angles that describe the rotation of a result.
#pragma once

#include "core/rooms.h"

namespace corvinade::engine {

// Replaces the rotation of the job by that triple (NicerRotation). Writes Job.RotX, RotY, RotZ and their
// copies; where there is none nothing changes.
void NiceRotSol();

}  // namespace corvinade::engine
