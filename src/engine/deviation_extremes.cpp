// The largest and smallest deviations of a calculation and the points that have them.
#include "engine/deviation_extremes.h"

#include "engine/calculation.h"
#include "fit/vector.h"

namespace corvinade::engine {

Extremes FindExtremes() {
    const auto At = [](int i) { return static_cast<std::size_t>(i); };
    Extremes found;
    const Column &v = Calculation.v, &P = Calculation.P;
    for (int k = 1; k <= Calculation.nObs; k += 3) {
        const int point = k / 3 + 1;
        bool whole = true;
        for (std::size_t axis = 0; axis < 3; ++axis) {
            const std::size_t row = At(k) + axis;
            if (P[row] == 0) {
                whole = false;
                continue;
            }
            if (v[row] > found.Max[axis]) {
                found.Max[axis] = v[row];
                found.MaxPoint[axis] = point;
            }
            if (v[row] < found.Min[axis]) {
                found.Min[axis] = v[row];
                found.MinPoint[axis] = point;
            }
        }
        if (!whole) continue;
        const double length = Hypot3(v[At(k)], v[At(k) + 1], v[At(k) + 2]);
        if (length > found.Max3D) {
            found.Max3D = length;
            found.Max3DPoint = point;
        }
    }
    return found;
}

}  // namespace corvinade::engine
