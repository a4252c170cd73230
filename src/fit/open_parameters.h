// Whether the points of a fit, and its poses, tell its parameters apart.
#pragma once

#include <array>
#include <cstddef>
#include <functional>

#include "fit/arrays.h"
#include "fit/design.h"
#include "fit/gathered_points.h"

namespace corvinade::fit {

// What can be changed together without a change of any observation, to first order at the result.
struct OpenParameters {
    int Count = 0;  // independent ways to do so: unknowns less the rank of the design matrix
    std::array<bool, kParameterEnd> Open{};  // by parameter number: it takes part in such a change
    // One of the ways is turning Rot x against Rot z while Rot y is at a right angle, which is a matter of
    // the angles and not of the points. It counts in Count, and its two angles are open.
    bool GimbalLock = false;
    // The azimuth alone, while z to xy is 0: it counts likewise.
    bool AzimuthWithoutEffect = false;

    // Left open by the points or poses themselves.
    int ByPoints() const { return Count - (GimbalLock ? 1 : 0) - (AzimuthWithoutEffect ? 1 : 0); }
};

// By the singular values of the design matrix of the coordinates in use, of all three models, whatever the
// norm's weights are. A value counts as 0 where the rounding of the coordinates makes as much; with
// LeastKnown the smallest one counts as 0 in any case, for who has found that there is such a way.
//   points  gathered pairs, with poses where the model is that of the tool; their weights do not count
//   inUse   of a coordinate by its index, three a pair, x y z, from 1 on: whether it takes part
//   result  whose linearisation is `at`
enum class OpenBy { Rounding, LeastKnown };
OpenParameters FindOpenParameters(const GatheredPoints& points, const FitModel& model,
                                  const std::function<bool(std::size_t)>& inUse, const Parameters& result,
                                  const Linearisation& at, OpenBy by = OpenBy::Rounding);

}  // namespace corvinade::fit
