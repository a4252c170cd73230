// The values of a solution that a search has found become those of the run.
#include "fit/found_values.h"

#include "fit/double_double.h"

namespace corvinade::fit {

void TakeFoundValues(NormRun& fit, const ChainValues& values, const Mat3& M, const Vec3& shift) {
    for (int k = kTraX; k <= kAngleZtoXY; ++k) {
        const auto index = static_cast<std::size_t>(k);
        if (fit.Model.UnknownOf[index] == 0) continue;
        double value = values.Value[index];
        if (k <= kTraZ) {
            const int axis = k - kTraX + 1;
            DoubleDouble sum{shift(axis), 0};
            sum.Add(fit.Points.TargetCentre(axis));
            for (int j = 1; j <= 3; ++j) sum.AddProduct(-M(axis, j), fit.Points.StartCentre(j));
            value = sum.Value();
        }
        fit.Run.Now[k] = value;
        if (k == kScaleXYZ)
            for (const int scale : {kScaleX, kScaleY, kScaleZ}) fit.Run.Now[scale] = value;
    }
}

}  // namespace corvinade::fit
