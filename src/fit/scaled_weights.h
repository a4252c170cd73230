// The weights that a-priori standard deviations give single coordinates, as a fit with weights of its rows
// takes them.
#pragma once

#include "fit/arrays.h"
#include "fit/gathered_points.h"
#include "fit/pair_weights.h"

namespace corvinade::fit {

struct ScaledWeights {
    double Mean = 1;          // of 1 / C_ii over the coordinates in use, what they were divided by; 1/mm^2
    bool AllPositive = true;  // each coordinate in use has a weight, or the sigmas are alike for all
};

// Weights 1 / C_ii of the coordinates in use, C the pair's matrix, divided by their mean; 0 of the others.
// What differs from 1 by rounding is 1.
//   inUse  0 or 1, three a pair, from 1 on
//   P      sized as that; where all weights are 1 and it has the size already, it is taken to be inUse
ScaledWeights ScaleWeights(const GatheredPoints& points, const Column& inUse, const PairSigmas& sigmas,
                           const Mat3& M, Column& P);

}  // namespace corvinade::fit
