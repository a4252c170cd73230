// What each pass of the adjustment does with its corrections.
#pragma once

#include "fit/arrays.h"
#include "fit/design.h"
#include "fit/parameters.h"

namespace corvinade::fit {

struct LargestCorrection {
    double Size = 0;
    int Unknown = 1;
};

// The largest of the corrections 1 to u, lengths, radians and factors compared as they are.
LargestCorrection FindLargest(const Column& x, int u);

bool AllFinite(const Column& x, int u);

// How far the transformed points may have moved, as MovedSince tells it, for moments to be good enough for
// the pass that is to be the last. Those of poor start values are good for the way there, and no more.
inline constexpr double kFarFromMoments = 1e-3;

// Adds corrections to the floating parameters in the order of their indices, and wraps the angles.
//   x  corrections of the parameters themselves, not of the centred unknowns
void AddCorrections(const FitModel& model, const Column& x, Parameters& parameters);

}  // namespace corvinade::fit
