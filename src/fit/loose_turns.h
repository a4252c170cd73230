// Turns of the result that the points hardly tell apart, judged by how far they reach off the axis of the
// turn in both systems, and by the noise.
#pragma once

#include <array>
#include <vector>

#include "fit/judged_result.h"

namespace corvinade::fit {

struct LooseTurn {
    bool Open = false;  // whatever the turn is, the sum of the squares is the same, but for rounding
    double Sigma = 0;   // else how well the points determine the turn, rad: 0.1 and above
    std::array<bool, kParameterEnd> Moves{};  // by parameter number: it takes part in the turn
    Vec3 Axis;                                // in the target system, a unit vector
};

// The turns about axes through the middle of the images, of a result of the plain model whose translations
// float; with a translation held, or a tool vector, what turns_left.h says; none where a distance floats.
// What the rank of the design matrix shows may be among them.
// With e the images and f the targets, each less their middle, the turn by the angle t about the unit vector
// w makes the sum of squares S(t) = const - 2 (C cos t + D sin t), C = sum((w x e) (w x f)): where C and D
// are 0 the turn is open. Noise of the size s in f makes an error of s |w x e| / C of the turn, noise in e
// one of s |w x f| / C, the norms over all points; the larger of both is Sigma.
std::vector<LooseTurn> FindLooseTurns(const JudgedResult& result);

}  // namespace corvinade::fit
