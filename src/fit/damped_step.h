// The step that both searches over the parameters of the chain climb by.
#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

#include "fit/chain_search.h"
#include "fit/linear_rows.h"

namespace corvinade::fit {

// One damped Gauss-Newton step (Levenberg, Marquardt): up to twelve attempts, each with ten times the damping
// of the one before, until the gain grows. False where none makes it grow; `at` and `gain` are then as they
// were.
//   N, g      the normal equations of u unknowns: u x u, row by row, and u
//   moved     (x): the values behind corrections x of the unknowns
//   gainOf    (values): the gain there
//   damping   share of the diagonal that is added to it; kept from step to step, a tenth behind one that
//   climbed
template <class Moved, class GainOf>
bool StepUp(const std::vector<double>& N, const std::vector<double>& g, Moved moved, GainOf gainOf,
            ChainValues& at, double& gain, double& damping) {
    constexpr int kMostAttempts = 12;
    const std::size_t u = g.size();
    for (int attempt = 0; attempt < kMostAttempts; ++attempt) {
        std::vector<double> damped = N, x = g;
        for (std::size_t k = 0; k < u; ++k) damped[k * u + k] += damping * N[k * u + k] + 1e-300;
        if (SolveSquare(std::move(damped), static_cast<int>(u), x.data())) {
            ChainValues to = moved(x);
            const double better = gainOf(to);
            if (better > gain) {
                at = to;
                gain = better;
                damping = std::max(damping / 10, 1e-15);
                return true;
            }
        }
        damping *= 10;
    }
    return false;
}

// Where all three rotations float their angles are not followed on the way: they are taken from R at its end.
inline void TakeAnglesOfTurns(const ChainChoice& choice, ChainValues& at) {
    if (!choice.RotatesFreely()) return;
    const Vec3 angles = AnglesOf(at.R);
    for (int k = 1; k <= 3; ++k) at.Value[static_cast<std::size_t>(kRotX + k - 1)] = angles(k);
}

}  // namespace corvinade::fit
