// The norms L1 and L-infinity of residuals that are divided by their a-priori standard deviations.
#pragma once

#include "fit/norm_run.h"
#include "fit/pair_weights.h"

namespace corvinade::fit {

// Goes on from where the plain loop of the run's norm has ended (FitByLoop), by the same ways of weighting:
// each fit's residuals give the next one's weights. What is made least is the sum of |v| / s or the largest
// of them, s the root of C_ii (fit/pair_weights.h) in units of its own mean over the coordinates in use, so
// that the tolerances of the plain loops stand, and equal sigmas change nothing, bit by bit. s moves with M
// from round to round. The best round is the result. Near the optimum, as the plain loops are. For the plain
// model, and not for what has run on to the true optimum. Gives what FitWeighted does: the first pair without
// a weight, or 0.
int FitWeightedNorm(NormRun& fit, const PairSigmas& sigmas);

}  // namespace corvinade::fit
