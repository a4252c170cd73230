// Where a fit of the distance model may begin.
#pragma once

#include <string>

#include "core/rooms.h"

namespace corvinade::engine {

// The first pair that the start values of Job.ParamText put onto its target point, as far as coordinates
// tell; "" when there is none, or when the distance model does not hold. There the way between the two has
// no direction, and neither has the row of the design matrix. Pairs whose Z is out of use do not count.
std::string PairThatStartsOnItsTarget();

}  // namespace corvinade::engine
