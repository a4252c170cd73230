// The neater of the two triples of angles that describe a rotation.
#pragma once

#include <optional>

#include "fit/arrays.h"

namespace corvinade::fit {

// The triple of EulerFromMatrixXYZ whose absolute angles have the smaller sum; of equal sums the second. The
// digits are those of the given angles (about x, y, z; rad), moved by half turns. Where the second angle
// stands at plus or minus 90 degrees, or an angle is no number, the decomposition may give no triple of this
// rotation: then there is nothing, and the angles are to stay as they are.
std::optional<Vec3> NicerRotation(const Vec3& angles);

}  // namespace corvinade::fit
