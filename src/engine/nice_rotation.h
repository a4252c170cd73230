// The rotation of the job's result.
#pragma once

#include "core/rooms.h"
#include "fit/nice_rotation.h"

namespace corvinade::engine {

// The angles about x, y and z, rad, into Job.RotX, RotY, RotZ and their copies.
void TakeRotation(const Vec3& angles);

}  // namespace corvinade::engine
