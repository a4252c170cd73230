// The identical points of the job as plain columns of numbers, gathered once for many passes and runs.
#pragma once

#include "core/rooms.h"
#include "fit/gathered_points.h"

namespace corvinade::engine {

// Gathers the first Job.Pairs() pairs; their weights come apart.
//   P      weights, three entries a pair; what has weight 0 is left out of the choice of centres
//   poses  gathers the orientation matrices Rz(A) Ry(B) Rx(C) of Job.RobotABC as well; a pair without
//          an entry there counts as turned by 0, which CalculationIsRefused lets no fit come to
void GatherPoints(const Column& P, bool poses, GatheredPoints& points);

}  // namespace corvinade::engine
