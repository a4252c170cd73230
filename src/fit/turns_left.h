// Turns of the result that the points hardly tell apart, where more or less than the translations may follow
// them: with a tool vector, and with translations that are held.
#pragma once

#include <functional>
#include <vector>

#include "fit/judged_result.h"
#include "fit/loose_turns.h"

namespace corvinade::fit {

// As FindLooseTurns (loose_turns.h), of the plain model and that of the tool.
//
// A turn about the unit vector w moves the images e by w x e. What floats beside the angles follows it: each
// floating translation along its axis, the tool vector by G d in every pose G. A translation that is held
// does not: along its axis e counts from where the start system's origin is carried to, and the turn is one
// about that place. With P the projection to what no translation and no tool makes up for, r the residuals,
// E = P (w x e) and F = E - w x r, which is what the turn does to the targets, the sum of squares has half
// the slope E r and half the curvature C = E E + (w x (w x e)) r. Noise s of the targets makes an error of s
// |E| / C of the turn, noise of the start points one of s |F| / C. Where three translations float and nothing
// else this is what loose_turns.h has.
//
// Such a turn is told where its arm is short beside that of others without the farthest pair, and where the
// images as a whole stand no more than three times as far apart as their noise, as at one tip, all
// translations floating.
// Of no more than six spare observations a Sigma of a tenth is told that is 1 + 10 / spare times as large,
// for these fit well by chance now and then.
std::vector<LooseTurn> FindTurnsLeft(const JudgedResult& result);

// The open ones of the axes, then the loose ones; of those that are near each other the first alone.
//   take  whether the turn about w is open, or else loose, and what is known of it then
using TakeTurn = std::function<bool(const Vec3& w, bool open, LooseTurn& turn)>;
std::vector<LooseTurn> OneForEachAxis(const std::vector<Vec3>& axes, const TakeTurn& take);

}  // namespace corvinade::fit
