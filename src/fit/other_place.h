// A second result for flat points, where held values and floating scales leave them one.
#pragma once

#include <array>

#include "fit/judged_result.h"

namespace corvinade::fit {

struct OtherPlace {
    bool Found = false;
    std::array<bool, kParameterEnd> Moves{};  // by parameter number: what is another there
};

// Points that are all but on one line or in one plane determine no more than how they themselves are carried.
// Where scales of the axes float beside rotations, and something else is held, several transformations do
// that, and they differ in where they put what lies off the points: a scale may grow, or change its sign, and
// a turn make up for it.
//
// Searched by damped Gauss-Newton steps on the sums of the points (chain_search.h), from quarter turns of the
// angles that float and each sign of the scales. Another proper result counts where its sum of squares is no
// more than twice that of the result and 25 squares of its noise, and its matrix another by a hundredth.
// Nothing for points with relief, without a held value, and for the models of the tool and of the distance.
// Where gross errors stand aside, pairs that deviate twenty times as much as the middle one have no part in
// it.
OtherPlace FindOtherPlace(const JudgedResult& result);

}  // namespace corvinade::fit
