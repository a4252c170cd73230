// The sums of a weighted fit where the sigmas are the same for all pairs. All weights are the same then, but
// for the coordinates in use, and second moments of [1 p r] hold all that the pairs say: one pass over the
// points carries every step of the iteration.
#pragma once

#include <array>

#include "fit/arrays.h"
#include "fit/axis_forms.h"
#include "fit/design.h"
#include "fit/gathered_points.h"
#include "fit/pair_weights.h"

namespace corvinade::fit {

// Sums over the pairs at one linearisation.
struct WeightedSums {
    std::array<Form4, kAxisPairs> Squares{};          // w_ab [1 p] [1 p]', p the corrected start point
    std::array<std::array<double, 4>, 4> Gradient{};  // by axis: (W r)_a [1 p]
    double Objective = 0;                             // r' W r
};

// 1, the start point about its centre, and T + M x - X: places 0, 1 to 3, 4 to 6.
inline constexpr int kAlikePlaces = 7;
using AlikeSquare = std::array<std::array<double, kAlikePlaces>, kAlikePlaces>;

// By which coordinates of a pair are in use: x 1, y 2, z 4, added up.
struct AlikeMoments {
    Mat3 M;      // of the linearisation that the residuals are of
    Vec3 Shift;  // mm
    std::array<AlikeSquare, 8> Of{};
    std::array<bool, 8> Any{};
};

// One pass. Residuals out of use count as 0. The points have these weights (SetWeights).
//   inUse  three a pair, from 1 on
AlikeMoments TakeMoments(const GatheredPoints& points, const Column& inUse, const Linearisation& at);

// Whether the residuals have changed so much since that the moments have lost digits of them.
bool HasLostDigits(const AlikeMoments& moments, const Linearisation& at);

// At any linearisation of the same points. Sigmas the same for all pairs.
WeightedSums SumsByMoments(const AlikeMoments& moments, const PairSigmas& sigmas, const Linearisation& at);

// The sums w_ab [1 p] [1 p]' of the points as they were measured.
std::array<Form4, kAxisPairs> SquaresByMoments(const AlikeMoments& moments, const PairSigmas& sigmas,
                                               const Linearisation& at);

}  // namespace corvinade::fit
