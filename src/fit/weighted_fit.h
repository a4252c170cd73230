// Least squares under a-priori standard deviations of both systems.
#pragma once

#include "fit/norm_run.h"
#include "fit/pair_weights.h"

namespace corvinade::fit {

// Goes on from the plain fit that the run has ended in to the parameters that make
//   sum over the pairs of r' (target + M start M')^-1 r,  r = T + M x - X,  M = R K S
// least, M in the weight included: what the adjustment of conditions with unknowns (Gauss and Helmert) finds
// for errors in both systems. The matrix of a pair is that of its coordinates in use, which is cut out before
// it is inverted. With errors of the target alone this is the fit with weights 1 / sigma^2. Equal ones of the
// target are the plain fit, which is left as it is, bit by bit; so are equal ones of the start, with such of
// the target or none, where the transformation only moves and turns. For the plain model.
//
// Leaves residuals, and weights 1 / C_ii of the coordinates in use (C the pair's matrix) scaled to a mean of
// 1; Result.Q is (sum A' W A)^-1 with W scaled alike, so that figures made of them keep their units. Gives
// the first pair whose coordinates in use have no weight, numbered from 1; the run is as it was then. 0: all
// have one. Require: the run has its plain result, and that is finite.
int FitWeighted(NormRun& fit, const PairSigmas& sigmas);

}  // namespace corvinade::fit
