// Passes of the fit to a shape on points that are gathered: the runs of Monte Carlo, whose noise is never in
// the job, and the way to where the passes stand still.
#pragma once

#include <cstdint>

#include "core/rooms.h"
#include "engine/norms.h"

namespace corvinade::paraboloid {

enum class PassEnd {
    Done,
    Failed,  // the fit did not converge, or its result is no number
    Lost     // the job's points were replaced while events were served, or other runs have begun
};

struct ShapePasses {
    NormFit Fit;  // its points are gathered, its weights set
    std::uint64_t Generation = 0, MonteCarloStarted = 0;
    double s0 = 0;  // of the last pass, mm

    // The choice and the weights of the job, and its points. False when they were replaced meanwhile.
    bool Begin();
    bool Overtaken() const;

    // The nearest points of the shape become the targets, and the fit to them is made, from the parameters on
    // that stand in the job. Serves events at each point.
    PassEnd Pass();
};

// From near the place where the passes stand still on to that place. Passes alone creep there, since points
// slide along a surface, and their s0 comes to rest long before the parameters do; so their fixed point is
// extrapolated from the last few of them ("Anderson mixing", Journal of the ACM 12(4), 1965), which needs
// about as many passes as there are unknowns. The job's parameters are then those of the pass with the
// least s0, or as they were where none is better, and where the user has stopped the search.
// The way goes along directions that the shape holds, and only along those in which the sum of squares falls
// by more than its rounding; the rotation about the shape's axis takes no part. What the shape does not hold
// stays where the passes before have left it.
//   moved  out: the parameters are others than before
//   Lost   the parameters are left as they are
PassEnd GoToRest(ShapePasses& passes, bool& moved);

}  // namespace corvinade::paraboloid
