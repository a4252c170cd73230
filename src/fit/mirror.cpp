// When a mirrored result may stand.
#include "fit/mirror.h"

#include <cmath>

#include "fit/small_svd.h"

namespace corvinade::fit {

bool StartsAreOwn(const StartChoice& choice) {
    for (std::size_t k = kTraX; k <= kAngleZtoXY; ++k)
        if (choice.Floats[k] && choice.Own[k]) return true;
    return false;
}

bool NegativeScaleIsWanted(const StartChoice& choice) {
    for (std::size_t k = kScaleX; k <= kScaleXYZ; ++k)
        if ((choice.Own[k] && *choice.Own[k] < 0) || (choice.Held[k] && choice.Value[k] < 0)) return true;
    return false;
}

bool MirrorIsReal(double proper, double mirrored, double rounding, int redundancy, int power) {
    constexpr double kLogOdds = 8;
    if (redundancy <= 0 || !(proper > mirrored)) return false;
    return proper + rounding > (mirrored + rounding) * std::exp(power * kLogOdds / redundancy);
}

bool IsMirrored(const ChainRecord& chain) {
    // Not of the product: where one direction is carried a million times as far as the others, its
    // determinant cancels. The frame is triangular, and a rotation mirrors nothing.
    const Mat3& S = chain.ScaleMatrix;
    return Determinant3(chain.ShearMatrix) * S(1, 1) * S(2, 2) * S(3, 3) < 0;
}

bool IsAffine(const FitModel& model) {
    for (std::size_t k = kTraX; k <= kAngleZtoXY; ++k)
        if ((model.UnknownOf[k] != 0) == (k == kScaleXYZ)) return false;
    return true;
}

}  // namespace corvinade::fit
