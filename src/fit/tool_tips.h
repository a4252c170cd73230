// Where the poses put the tip of the tool.
#pragma once

#include "fit/gathered_points.h"

namespace corvinade::fit {

// The points with the tool vector, turned by each pose, taken off the targets: the pairs of a plain fit,
// which has the same deviations. The points have poses.
//   tool  in the system of the flange, mm
GatheredPoints AtTips(const GatheredPoints& points, const Vec3& tool);

}  // namespace corvinade::fit
