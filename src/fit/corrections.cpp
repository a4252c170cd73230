// What each pass of the adjustment does with its corrections.
#include "fit/corrections.h"

#include <algorithm>
#include <cmath>

#include "fit/angles.h"

namespace corvinade::fit {

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

// The library's circle is short by 2e-10 rad, so an angle at half a turn that is wrapped is moved. Seen
// from the origin of a hall that is more than a converged fit may still change, and the next pass would
// wrap it back: there it is left as it is.
double WrappedInFit(double angle) {
    constexpr double kAtHalfTurn = 1e-9;
    return std::fabs(std::fabs(angle) - kPi) < kAtHalfTurn ? angle : WrapAngle(angle);
}

}  // namespace

LargestCorrection FindLargest(const Column& x, int u) {
    double size = 0;
    int unknown = 1;
    for (int i = 1; i <= u; ++i) {
        const double here = std::fabs(x[At(i)]);
        const bool larger = here > size;
        size = larger ? here : size;
        unknown = larger ? i : unknown;
    }
    return {size, unknown};
}

bool AllFinite(const Column& x, int u) {
    return std::all_of(x.begin() + 1, x.begin() + 1 + u, [](double value) { return std::isfinite(value); });
}

void AddCorrections(const FitModel& model, const Column& x, Parameters& parameters) {
    for (int parameter = kTraX; parameter < kParameterEnd; ++parameter) {
        const int unknown = model.UnknownOf[At(parameter)];
        if (unknown == 0) continue;
        double& value = parameters[parameter];
        value += x[At(unknown)];
        const bool angle =
            (parameter >= kRotX && parameter <= kRotZ) || (parameter >= kAngleXY && parameter <= kAngleZtoXY);
        if (angle) value = WrappedInFit(value);
        if (parameter == kScaleXYZ) parameters[kScaleX] = parameters[kScaleY] = parameters[kScaleZ] = value;
    }
}

}  // namespace corvinade::fit
