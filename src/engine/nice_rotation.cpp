// The rotation of the job's result.
#include "engine/nice_rotation.h"

#include "core/job.h"

namespace corvinade::engine {

void TakeRotation(const Vec3& angles) {
    Job.RotX = Job.RotXCopy = angles(1);
    Job.RotY = Job.RotYCopy = angles(2);
    Job.RotZ = Job.RotZCopy = angles(3);
}

}  // namespace corvinade::engine
