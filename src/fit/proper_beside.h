// A proper result where the best one is mirrored for no reason.
#pragma once

#include "fit/norm_run.h"

namespace corvinade::fit {

// What a norm's fit is made of here.
struct NormToHold {
    bool (*Fit)(NormRun&);                // the whole fit, from the start values on; false: abandoned
    double (*Objective)(const NormRun&);  // what it makes least
    int Power;                            // 2 of squares, else 1
};

// Behind the fit. Points all but on one line or in one plane leave it to their noise whether a scale across
// them comes out above or below 0. Where it is below, all proper transformations are the better the nearer
// that scale is to 0, and none is the best. Then the points do not determine it, and neither the angles of
// the frame that may do the same: it is held where the sizes of both point sets put it, an angle at 0, each
// at a start value of the user's own where there is one, and the others are fitted again. As few parameters
// are held as will do, and of as many those that fit best by least squares.
//
// With a tool vector the target points are the tips of the poses. Nothing of this is done where a distance
// floats.
//
// Not of all 12 parameters: their optimum is that of a linear problem, and there is but one of it.
//
// The result is taken where the mirrored one fits no better than noise explains (mirror.h): HeldByFit and a
// remark say so, and Q is that of all unknowns at it. Where no held fit is proper, where there is no
// redundancy to tell noise by, or where a negative scale is wanted, the run stays as it is. False when the
// listener has abandoned the fit.
//   squares  the fit by least squares, by which the held parameters are chosen
bool HoldWhereMirrored(NormRun& fit, const NormToHold& norm, const NormToHold& squares);

}  // namespace corvinade::fit
