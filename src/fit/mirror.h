// When a mirrored result may stand: one that no movement of the points can bring about.
#pragma once

#include "fit/norm_run.h"

namespace corvinade::fit {

// A floating parameter begins at a value of the user's own.
bool StartsAreOwn(const StartChoice& choice);

// A scale begins or is held below 0, which asks for a mirrored result.
bool NegativeScaleIsWanted(const StartChoice& choice);

// A mirrored solution fits better by more than noise explains where the noise of the norm (normally
// distributed of least squares, of Laplace's distribution of the least sum, evenly distributed of the least
// largest) makes it e^8 times as likely as the proper one. Its size being open, that is the ratio of what the
// norm makes least, to the power of the redundancy.
//   proper, mirrored  what the norm makes least: a sum of squares (mm^2), a sum or a largest (mm)
//   rounding          of these
//   power             2 of squares, else 1
bool MirrorIsReal(double proper, double mirrored, double rounding, int redundancy, int power);

// Does R K S mirror? That of the last linearisation.
bool IsMirrored(const ChainRecord& chain);

// All of translation, rotation, three scales and the frame's angles float: any matrix can be the result, and
// what is best of it is found in a closed form.
bool IsAffine(const FitModel& model);

}  // namespace corvinade::fit
