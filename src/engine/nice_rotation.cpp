// The neater of the two triples of angles that describe the rotation of a result.
#include "engine/nice_rotation.h"

#include "core/job.h"
#include "fit/nice_rotation.h"

namespace corvinade::engine {

void NiceRotSol() {
    const std::optional<Vec3> angles = NicerRotation({Job.RotX, Job.RotY, Job.RotZ});
    if (!angles) return;
    Job.RotX = Job.RotXCopy = (*angles)(1);
    Job.RotY = Job.RotYCopy = (*angles)(2);
    Job.RotZ = Job.RotZCopy = (*angles)(3);
}

}  // namespace corvinade::engine
