// A-priori standard deviations of the measured coordinates, and the weight that they give a pair.
#pragma once

#include <array>
#include <span>

#include "fit/arrays.h"

namespace corvinade::fit {

// Standard deviations of one side's coordinates, mm, x y z: none (free of errors), one for all pairs, or one
// a pair, the first pair's first.
struct SideSigmas {
    std::array<std::span<const double>, 3> Of;

    double At(int axis, int pair) const {  // axis 1 to 3, pair from 0
        const std::span<const double>& sigmas = Of[static_cast<std::size_t>(axis - 1)];
        if (sigmas.empty()) return 0;
        return sigmas.size() == 1 ? sigmas[0] : sigmas[static_cast<std::size_t>(pair)];
    }
    bool FreeOfErrors() const {  // all are 0
        for (const auto& sigmas : Of)
            for (const double sigma : sigmas)
                if (sigma != 0) return false;
        return true;
    }
    bool AlikeForAll() const {
        for (const auto& sigmas : Of)
            if (sigmas.size() > 1) return false;
        return true;
    }
};

struct PairSigmas {
    SideSigmas Start, Target;
    bool AlikeForAll() const { return Start.AlikeForAll() && Target.AlikeForAll(); }
};

// Weight of a pair's residual T + M x - X under the errors of both systems.
struct PairWeight {
    Mat3 C;                 // covariance of the residual: target + M start M', mm^2; of all three coordinates
    Mat3 W;                 // inverse of its part in use, 0 elsewhere; 1/mm^2
    Mat3 SM;                // start M', mm^2: the start point's correction is -SM W r
    bool Positive = false;  // the part in use is positive definite, so that there is a W
};
//   pair   from 0
//   inUse  the pair's coordinates x y z: 0 takes no part
PairWeight WeightOf(const PairSigmas& sigmas, const Mat3& M, int pair, const double* inUse);

// C alone.
Mat3 CovarianceOf(const PairSigmas& sigmas, const Mat3& M, int pair);

// The weights of all pairs at one M. Where the sigmas are the same for all, those of the eight choices of
// coordinates in use are kept.
class PairWeights {
public:
    PairWeights(const PairSigmas& sigmas, const Mat3& M)
        : sigmas_(sigmas), M_(M), alike_(sigmas.AlikeForAll()) {}
    const PairWeight& Of(int pair, const double* inUse) {
        const std::size_t choice =
            (inUse[0] != 0 ? 1U : 0U) + (inUse[1] != 0 ? 2U : 0U) + (inUse[2] != 0 ? 4U : 0U);
        if (!alike_ || !known_[choice]) kept_[choice] = WeightOf(sigmas_, M_, pair, inUse);
        known_[choice] = true;
        return kept_[choice];
    }

private:
    const PairSigmas& sigmas_;
    const Mat3& M_;
    bool alike_;
    std::array<bool, 8> known_{};
    std::array<PairWeight, 8> kept_;
};

// The first pair whose coordinates in use have no weight, numbered from 1: without an error on either side,
// or with a matrix that is not positive definite. 0: all have one.
//   inUse  three a pair, from index 1 on
int PairWithoutWeight(const PairSigmas& sigmas, const Mat3& M, int pairs, const Column& inUse);

}  // namespace corvinade::fit
