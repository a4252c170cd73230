// The plain model by moments.
#include "engine/moments.h"

#include <algorithm>
#include <cmath>

#include "core/require.h"
#include "engine/lanes.h"

namespace {

constexpr int kMomentBlock = 512;  // points a block, in the nearest cache for its three axes
constexpr int kProducts = 10;      // w, wx, wy, wz, wxx, wxy, wxz, wyy, wyz, wzz

// Four sums with the observation and ten products for each axis, in eight lanes.
struct MomentSums {
    alignas(kLaneAlignment) std::array<double, 3 * (4 + kProducts) * kLanes> Lanes{};

    double* Place(int axis, int sum) {
        return &Lanes[static_cast<std::size_t>(((axis - 1) * (4 + kProducts) + sum) * kLanes)];
    }
};

struct MomentBlock {
    int Count;  // whole groups of lanes
    const double* Start[3];

    MomentBlock(const GatheredPoints& points, int first)
        : Count(std::min(kMomentBlock, points.Padded - first)),
          Start{points.Start[0].data() + first, points.Start[1].data() + first,
                points.Start[2].data() + first} {}
};

struct AxisOfPass {
    const double* Target;
    const double* Weight = nullptr;  // null: all weights are 1
    double Shift, M[3];

    // The points that fill up the last group of lanes have weight 0 in any case, for which `tail` has room.
    AxisOfPass(const GatheredPoints& points, const MomentBlock& block, const Linearisation& at, int first,
               int axis, double* tail)
        : Target(points.Target[static_cast<std::size_t>(axis - 1)].data() + first),
          Shift(at.Shift(axis)),
          M{at.M(axis, 1), at.M(axis, 2), at.M(axis, 3)} {
        if (!points.AllInUse) {
            Weight = points.Weight[static_cast<std::size_t>(axis - 1)].data() + first;
        } else if (first + block.Count > points.Count) {
            for (int p = 0; p < block.Count; ++p) tail[p] = first + p < points.Count ? 1 : 0;
            Weight = tail;
        }
    }
};

#if defined(__x86_64__) && !defined(CORVINADE_NO_CLONES)

namespace lanes512 {
#define LANES_TARGET __attribute__((target("avx512f")))
#define LANES_WIDTH 8
#include "engine/moments_pass.inl"
#undef LANES_TARGET
#undef LANES_WIDTH
}  // namespace lanes512

namespace lanes256 {
#define LANES_TARGET __attribute__((target("avx2")))
#define LANES_WIDTH 4
#include "engine/moments_pass.inl"
#undef LANES_TARGET
#undef LANES_WIDTH
}  // namespace lanes256

#endif

namespace lanes128 {
#define LANES_TARGET
#define LANES_WIDTH 2
#include "engine/moments_pass.inl"
#undef LANES_TARGET
#undef LANES_WIDTH
}  // namespace lanes128

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

// From the lanes to the matrices. Without weights the products of the first axis serve all three.
void PutTogether(const GatheredPoints& points, MomentSums& sums, PointMoments& moments) {
    constexpr std::array<std::array<int, 4>, 4> kPlaceOf = {
        {{0, 1, 2, 3}, {1, 4, 5, 6}, {2, 5, 7, 8}, {3, 6, 8, 9}}};
    for (int axis = 1; axis <= 3; ++axis) {
        const int from = points.AllInUse ? 1 : axis;
        for (int row = 0; row < 4; ++row) {
            moments.m[At(axis)][At(row)] = SumOfLanes(sums.Place(axis, row));
            for (int column = 0; column < 4; ++column)
                moments.B[At(axis)][At(row)][At(column)] =
                    SumOfLanes(sums.Place(from, 4 + kPlaceOf[At(row)][At(column)]));
        }
        if (points.AllInUse) moments.B[At(axis)][0][0] = points.Count;
    }
}

// The columns of one axis as linear forms of [1 p].
struct AxisForms {
    int Count = 0;
    std::array<int, kMostInner + 1> Unknown{};
    std::array<std::array<double, 4>, kMostInner + 1> Form{};

    AxisForms(const FitModel& model, const Linearisation& at, int axis) {
        for (int k = 0; k < at.InnerCount; ++k) {
            const InnerDerivative& inner = at.Inner[At(k)];
            Add(inner.Unknown, {at.Held(inner, axis), inner.D(axis, 1), inner.D(axis, 2), inner.D(axis, 3)});
        }
        if (at.AxisFloats[At(axis)]) Add(model.UnknownOf[At(kTraX + axis - 1)], {1, 0, 0, 0});
    }
    void Add(int unknown, const std::array<double, 4>& form) {
        Unknown[At(Count)] = unknown;
        Form[At(Count++)] = form;
    }
};

using Square = std::array<std::array<double, 4>, 4>;

std::array<double, 4> Times(const Square& B, const std::array<double, 4>& form) {
    std::array<double, 4> result{};
    for (std::size_t row = 0; row < 4; ++row)
        for (std::size_t column = 0; column < 4; ++column) result[row] += B[row][column] * form[column];
    return result;
}

double Product(const std::array<double, 4>& a, const std::array<double, 4>& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2] + a[3] * b[3];
}

// The largest that f'B f could be with these absolute values: what its rounding goes by.
double ProductWithoutSigns(const Square& B, const std::array<double, 4>& form) {
    double sum = 0;
    for (std::size_t row = 0; row < 4; ++row)
        for (std::size_t column = 0; column < 4; ++column)
            sum += std::fabs(form[row] * B[row][column] * form[column]);
    return sum;
}

// What the shift and the matrix have changed by since the moments were taken, as a form of [1 p].
std::array<double, 4> Change(const Linearisation& at, const PointMoments& moments, int axis) {
    return {at.Shift(axis) - moments.Shift(axis), at.M(axis, 1) - moments.M(axis, 1),
            at.M(axis, 2) - moments.M(axis, 2), at.M(axis, 3) - moments.M(axis, 3)};
}

}  // namespace

void SumMoments(const GatheredPoints& points, const Linearisation& at, VectorWidth width,
                PointMoments& moments) {
    Require(width <= WidestVectors());
    MomentSums sums;
    switch (width) {
#if defined(__x86_64__) && !defined(CORVINADE_NO_CLONES)
        case VectorWidth::Eight:
            lanes512::Pass(points, at, sums);
            break;
        case VectorWidth::Four:
            lanes256::Pass(points, at, sums);
            break;
#endif
        default:
            lanes128::Pass(points, at, sums);
    }
    moments.M = at.M;
    moments.Shift = at.Shift;
    PutTogether(points, sums, moments);
}

void SumMoments(const GatheredPoints& points, const Linearisation& at, PointMoments& moments) {
    static const VectorWidth widest = WidestVectors();
    SumMoments(points, at, widest, moments);
}

bool NormalEquations(const FitModel& model, const Linearisation& at, const PointMoments& moments, Matrix& N,
                     Column& w) {
    // Below this share the diagonal has lost three digits that the rows would have kept.
    constexpr double kLeastShare = 1e-3;
    const int u = model.Unknowns;
    Column withoutSigns(At(u) + 1);
    for (int i = 1; i <= u; ++i) {
        w[At(i)] = 0;
        for (int j = 1; j <= u; ++j) N(i, j) = 0;
    }
    for (int axis = 1; axis <= 3; ++axis) {
        const AxisForms forms(model, at, axis);
        const Square& B = moments.B[At(axis)];
        std::array<double, 4> l = Times(B, Change(at, moments, axis));
        for (std::size_t k = 0; k < 4; ++k) l[k] = moments.m[At(axis)][k] - l[k];
        for (int i = 0; i < forms.Count; ++i) {
            const int row = forms.Unknown[At(i)];
            w[At(row)] += Product(forms.Form[At(i)], l);
            withoutSigns[At(row)] += ProductWithoutSigns(B, forms.Form[At(i)]);
            const std::array<double, 4> BForm = Times(B, forms.Form[At(i)]);
            for (int j = i; j < forms.Count; ++j) {
                const int column = forms.Unknown[At(j)];
                const double sum = Product(BForm, forms.Form[At(j)]);
                N(row, column) += sum;
                if (row != column) N(column, row) += sum;
            }
        }
    }
    for (int i = 1; i <= u; ++i)
        if (N(i, i) < kLeastShare * withoutSigns[At(i)]) return false;
    return true;
}

double MovedSince(const Linearisation& at, const PointMoments& moments) {
    double moved = 0, size = 0;
    for (int axis = 1; axis <= 3; ++axis) {
        const Square& B = moments.B[At(axis)];
        const std::array<double, 4> change = Change(at, moments, axis);
        double way = std::fabs(change[0]);
        for (std::size_t k = 1; k < 4; ++k) {
            const double extent = B[0][0] > 0 ? std::sqrt(B[k][k] / B[0][0]) : 0;
            way += std::fabs(change[k]) * extent;
            size = std::fmax(size, extent);
        }
        moved = std::fmax(moved, way);
    }
    return size > 0 ? moved / size : 1;
}
