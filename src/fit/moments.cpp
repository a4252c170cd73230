// The plain model by moments.
#include "fit/moments.h"

#include <algorithm>
#include <cmath>

#include "fit/lanes.h"
#include "fit/require.h"

namespace corvinade::fit {

namespace {

constexpr int kMomentBlock = 512;  // points a block, in the nearest cache for its three axes
constexpr int kProducts = 10;      // w, wx, wy, wz, wxx, wxy, wxz, wyy, wyz, wzz
constexpr int kAbsolute = 4 + kProducts;
constexpr int kToolSums = 21;  // wlg, wlh, wli; for g, h and i: w, wx, wy, wz; wgg, wgh, wgi, whh, whi, wii
constexpr int kSums = kAbsolute + 1 + kToolSums;

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

// For each axis four sums with the observation, ten products, the sum of absolute values and what the tool
// vector needs, in eight lanes.
struct MomentSums {
    alignas(kLaneAlignment) std::array<double, 3 * kSums * kLanes> Lanes;

    // Those of the tool model are many, and most passes have no use for them.
    explicit MomentSums(bool tool) {
        for (int axis = 1; axis <= 3; ++axis)
            std::fill_n(Place(axis, 0), (tool ? kSums : kAbsolute + 1) * kLanes, 0.0);
    }
    double* Place(int axis, int sum) { return &Lanes[At(((axis - 1) * kSums + sum) * kLanes)]; }
};

struct MomentBlock {
    int Count;  // whole groups of lanes
    const double* Start[3];

    MomentBlock(const GatheredPoints& points, int first)
        : Count(std::min(kMomentBlock, points.Padded - first)),
          Start{points.Start[0].data() + first, points.Start[1].data() + first,
                points.Start[2].data() + first} {}
};

// Weights and weighted observations of a block along one axis.
struct ToolScratch {
    alignas(kLaneAlignment) double Weight[kMomentBlock], Observed[kMomentBlock];
};

struct AxisOfPass {
    const double* Target;
    const double* Weight = nullptr;  // null: all weights are 1
    const double* Pose[3] = {};
    double Shift, M[3], Tool[3];

    // The points that fill up the last group of lanes have weight 0 in any case, for which `tail` has room.
    AxisOfPass(const GatheredPoints& points, const MomentBlock& block, const Linearisation& at,
               const MomentPass& pass, int first, int axis, double* tail)
        : Target(points.Target[At(axis - 1)].data() + first),
          Shift(at.Shift(axis)),
          M{at.M(axis, 1), at.M(axis, 2), at.M(axis, 3)},
          Tool{at.Tool(1), at.Tool(2), at.Tool(3)} {
        if (pass.Tool)
            for (int j = 0; j < 3; ++j) Pose[j] = points.Pose[At(3 * (axis - 1) + j)].data() + first;
        if (!points.AllInUse) {
            Weight = points.Weight[At(axis - 1)].data() + first;
        } else if (first + block.Count > points.Count) {
            for (int p = 0; p < block.Count; ++p) tail[p] = first + p < points.Count ? 1 : 0;
            Weight = tail;
        }
    }
};

#define LANES_BODY "fit/moments_pass.inl"
#include "fit/all_widths.inl"

// From the lanes to the matrices. Without weights the products of the first axis serve all three.
void PutTogether(const GatheredPoints& points, const MomentPass& pass, MomentSums& sums,
                 PointMoments& moments) {
    constexpr std::array<std::array<int, 4>, 4> kPlaceOf = {
        {{0, 1, 2, 3}, {1, 4, 5, 6}, {2, 5, 7, 8}, {3, 6, 8, 9}}};
    const bool noWeights = points.AllInUse && !pass.Reweighted;
    for (int axis = 1; axis <= 3; ++axis) {
        for (int row = 0; row < 4; ++row) moments.m[At(axis)][At(row)] = SumOfLanes(sums.Place(axis, row));
        auto& B = moments.B[At(axis)];
        if (noWeights && axis > 1) {
            B = moments.B[1];
            continue;
        }
        double products[kProducts];
        for (int k = 0; k < kProducts; ++k) products[k] = SumOfLanes(sums.Place(axis, 4 + k));
        if (noWeights) products[0] = points.Count;
        for (std::size_t row = 0; row < 4; ++row)
            for (std::size_t column = 0; column < 4; ++column)
                B[row][column] = products[kPlaceOf[row][column]];
    }
    moments.AbsoluteSum = 0;
    if (!pass.Reweighted) return;
    for (int axis = 1; axis <= 3; ++axis) moments.AbsoluteSum += SumOfLanes(sums.Place(axis, kAbsolute));
}

void PutToolTogether(MomentSums& sums, PointMoments& moments) {
    constexpr std::array<std::array<int, 3>, 3> kPlaceOf = {{{15, 16, 17}, {16, 18, 19}, {17, 19, 20}}};
    for (int axis = 1; axis <= 3; ++axis) {
        const auto sum = [&sums, axis](int k) { return SumOfLanes(sums.Place(axis, kAbsolute + 1 + k)); };
        auto& B = moments.B[At(axis)];
        for (int j = 0; j < 3; ++j) {
            moments.m[At(axis)][At(4 + j)] = sum(j);
            for (int k = 0; k < 4; ++k) B[At(4 + j)][At(k)] = B[At(k)][At(4 + j)] = sum(3 + 4 * j + k);
            for (int k = 0; k < 3; ++k) B[At(4 + j)][At(4 + k)] = sum(kPlaceOf[At(j)][At(k)]);
        }
    }
}

}  // namespace

bool MomentsServe(const FitModel& model, const GatheredPoints& points) {
    return model.Mode != FitMode::Distance && points.OnlyInUse && !points.ByRows;
}

void SumMoments(const GatheredPoints& points, const Linearisation& at, const MomentPass& pass,
                PointMoments& moments) {
    Require(pass.Width <= WidestVectors());
    MomentSums sums(pass.Tool);
    switch (pass.Width) {
#if defined(__x86_64__) && !defined(CORVINADE_NO_CLONES)
        case VectorWidth::Eight:
            lanes512::Pass(points, at, pass, sums);
            break;
        case VectorWidth::Four:
            lanes256::Pass(points, at, pass, sums);
            break;
#endif
        default:
            lanes128::Pass(points, at, pass, sums);
    }
    moments.M = at.M;
    moments.Shift = at.Shift;
    moments.Tool = pass.Tool ? at.Tool : Vec3{};
    moments.Places = pass.Tool ? kMostPlaces : 4;
    moments.Reweighted = pass.Reweighted;
    PutTogether(points, pass, sums, moments);
    if (pass.Tool) PutToolTogether(sums, moments);
}

void SumMoments(const GatheredPoints& points, const Linearisation& at, PointMoments& moments) {
    SumMoments(points, at, MomentPass{}, moments);
}

void TakeResidualWeights(const PointMoments& moments, GatheredPoints& points) {
    const bool tool = moments.Places == kMostPlaces;
    for (int axis = 1; axis <= 3; ++axis) {
        LaneArray& weight = points.Weight[At(axis - 1)];
        if (points.AllInUse) {
            weight.resize(At(points.Padded));
            for (int k = 0; k < points.Padded; ++k) weight[At(k)] = k < points.Count ? 1 : 0;
        }
        for (std::size_t k = 0; k < At(points.Count); ++k) {
            if (weight[k] == 0) continue;
            double l = (points.Target[At(axis - 1)][k] - moments.Shift(axis)) -
                       (moments.M(axis, 1) * points.Start[0][k] + moments.M(axis, 2) * points.Start[1][k] +
                        moments.M(axis, 3) * points.Start[2][k]);
            if (tool) {
                const auto* pose = &points.Pose[At(3 * (axis - 1))];
                l -= moments.Tool(1) * pose[0][k] + moments.Tool(2) * pose[1][k] +
                     moments.Tool(3) * pose[2][k];
            }
            weight[k] = ResidualWeight(l);
        }
    }
    points.AllInUse = points.OnlyInUse = false;
}

}  // namespace corvinade::fit
