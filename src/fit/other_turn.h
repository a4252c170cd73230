// A second place for points on one line, where held values leave them two.
#pragma once

#include <array>

#include "fit/judged_result.h"

namespace corvinade::fit {

struct OtherTurn {
    double Angle = 0;                         // of the turn that leads there, rad; 0: there is none
    std::array<bool, kParameterEnd> Moves{};  // by parameter number: what is another there
};

// Points that are all but on one line are held about it by what is held of the translation or the angles
// alone. Where that is one value, there are two turns as a rule that bring the line to it, and which of them
// is shown is left to noise: a line at a given height goes round a circle, which a plane cuts twice.
//
// Looked at where the turn would be loose (loose_turns.h) if everything floated: the sum of squares S along
// the turn, translations and the tool vector following as far as they float, and where angles are held that
// of the whole line turned on to keep them: the images' squares times those of what the angles are off.
// Another minimum, or of one held angle another turn that keeps it (with `asShown` in the form whose Rot y is
// no more than a right angle: in the other form each angle can be kept twice), counts where its S is no more
// than twice that of the result and 25 squares of the noise: of what is told apart by the points it is far
// more.
OtherTurn FindOtherTurn(const JudgedResult& result, bool asShown = false);

}  // namespace corvinade::fit
