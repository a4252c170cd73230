// The sums of a weighted fit where each pair has sigmas of its own: one pass over the points, eight of them
// at a time.
#pragma once

#include <array>

#include "fit/alike_moments.h"
#include "fit/arrays.h"
#include "fit/axis_forms.h"
#include "fit/design.h"
#include "fit/gathered_points.h"
#include "fit/pair_weights.h"

namespace corvinade::fit {

// At one linearisation, of which M and the shift count alone. The objective is NaN where a pair's coordinates
// in use have no weight.
//   inUse  three a pair, from 1 on
WeightedSums SumOverPairs(const GatheredPoints& points, const Column& inUse, const PairSigmas& sigmas,
                          const Linearisation& at);

// The sums w_ab [1 p] [1 p]' of the points as they were measured.
std::array<Form4, kAxisPairs> SquaresOverPairs(const GatheredPoints& points, const Column& inUse,
                                               const PairSigmas& sigmas, const Linearisation& at);

}  // namespace corvinade::fit
