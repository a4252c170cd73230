// The pass over all points that sums the normal equations, for each instruction set.
#include <algorithm>
#include <cmath>

#include "fit/normal_equations.h"
#include "fit/require.h"

namespace corvinade::fit {

namespace {

// The columns of gathered points that a block reads.
struct BlockPoints {
    int Count;  // whole groups of lanes
    const double* Start[3];
    const double* Target[3];
    const double* Weight = nullptr;  // null: all weights are 1
    const double* Pose[9] = {};

    BlockPoints(const GatheredPoints& points, int first) : Count(std::min(kBlock, points.Padded - first)) {
        for (std::size_t axis = 0; axis < 3; ++axis) {
            Start[axis] = points.Start[axis].data() + first;
            Target[axis] = points.Target[axis].data() + first;
        }
        for (std::size_t k = 0; k < 9; ++k)
            if (!points.Pose[k].empty()) Pose[k] = points.Pose[k].data() + first;
    }

    // The points that fill up the last group of lanes have weight 0 in any case; `tail` has room for
    // the weights of a block that ends with such points.
    void TakeWeight(const GatheredPoints& points, int first, int axis, double* tail) {
        if (!points.AllInUse) {
            Weight = points.Weight[static_cast<std::size_t>(axis - 1)].data() + first;
        } else if (first + Count > points.Count) {
            for (int p = 0; p < Count; ++p) tail[p] = first + p < points.Count ? 1 : 0;
            Weight = tail;
        } else {
            Weight = nullptr;
        }
    }
};

#define LANES_BODY "fit/normal_pass.inl"
#include "fit/all_widths.inl"

}  // namespace

VectorWidth WidestVectors() {
#if defined(__x86_64__) && !defined(CORVINADE_NO_CLONES)
    if (__builtin_cpu_supports("avx512f")) return VectorWidth::Eight;
    if (__builtin_cpu_supports("avx2")) return VectorWidth::Four;
#endif
    return VectorWidth::Two;
}

void SumNormalEquations(const GatheredPoints& points, const FitModel& model, const Linearisation& at,
                        VectorWidth width, NormalSums& sums) {
    Require(width <= WidestVectors());
    sums.Lanes.fill(0);
#if defined(__x86_64__) && !defined(CORVINADE_NO_CLONES)
    if (width == VectorWidth::Eight) return lanes512::Pass(points, model, at, sums);
    if (width == VectorWidth::Four) return lanes256::Pass(points, model, at, sums);
#endif
    lanes128::Pass(points, model, at, sums);
}

void SumNormalEquations(const GatheredPoints& points, const FitModel& model, const Linearisation& at,
                        NormalSums& sums) {
    static const VectorWidth widest = WidestVectors();
    SumNormalEquations(points, model, at, widest, sums);
}

}  // namespace corvinade::fit
