// Scales and angles of the frame that only the noise of the points across a plane or a line determines.
#pragma once

#include <array>

#include "fit/judged_result.h"

namespace corvinade::fit {

struct LooseScales {
    std::array<bool, kParameterEnd> Of{};  // by parameter number
    double Relief = 0, Noise = 0;          // mm, in the target system: across the points, and of a coordinate
    bool Any() const;
};

// Of a result of the plain model with scales of the axes, or of that of the tool with any scale, where the
// targets are the tips of the poses and the tool vector floats along; nothing where a distance floats, for
// one scale of all axes of the plain model, and where there is no redundancy.
//
// A parameter is loose where its standard deviation, by equal weights and the noise that the deviations show,
// is above a tenth (of the scale, or rad); and where points stand off their best plane by less than four
// times the noise in either system, a parameter that is known a hundred times worse than the best, or to less
// than 0.005: noise of the start points draws a scale across them towards 0 then, however many there are.
// Where gross errors stand aside, pairs that deviate twenty times as much as the middle one have no part in
// it.
//   open  what is known to be open already, by parameter number
LooseScales FindLooseScales(const JudgedResult& result, const std::array<bool, kParameterEnd>& open);

}  // namespace corvinade::fit
