// The identical points as plain columns of numbers.
#include "fit/gathered_points.h"

#include <algorithm>
#include <bit>
#include <cstdint>

#include "fit/chain.h"
#include "fit/gathering.h"
#include "fit/require.h"

namespace corvinade::fit {

namespace {

// Enough points for a centre inside the cloud; of more points only every so many are taken.
constexpr int kMostForCentre = 4096;

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

bool TakesPart(const Column& P, int i) {
    return P[At(3 * i - 2)] != 0 || P[At(3 * i - 1)] != 0 || P[At(3 * i)] != 0;
}

Vec3 PointOf(const std::array<std::span<const double>, 3>& columns, int i) {
    const std::size_t k = At(i) - 1;
    return {columns[0][k], columns[1][k], columns[2][k]};
}

// Takes every so many points; false when none of them takes part.
bool FindCentres(const PointAt& startOf, const PointAt& targetOf, const Column& P, int step,
                 GatheredPoints& points) {
    int taken = 0;
    std::array<int, 4> targetsTaken{};
    Vec3 start, target;
    for (int i = 1; i <= points.Count; i += step) {
        if (!TakesPart(P, i)) continue;
        ++taken;
        // Running means: no sum that could overflow where the points do not. A target coordinate that
        // is out of use may be anything, and must not draw the centre away from the others.
        const Vec3 p = startOf(i), q = targetOf(i);
        for (int axis = 1; axis <= 3; ++axis) {
            start(axis) += (p(axis) - start(axis)) / taken;
            if (P[At(3 * (i - 1) + axis)] != 0)
                target(axis) += (q(axis) - target(axis)) / ++targetsTaken[At(axis)];
        }
    }
    points.StartCentre = start;
    points.TargetCentre = target;
    return taken > 0;
}

// Without a branch for each weight; an array is all ones or has another value near its beginning.
bool AllOnes(const double* weights, int n) {
    constexpr int kAtOnce = 1024;
    constexpr auto kOne = std::bit_cast<std::uint64_t>(1.0);
    for (int begin = 0; begin < n; begin += kAtOnce) {
        const int end = std::min(n, begin + kAtOnce);
        std::uint64_t different = 0;
        for (int i = begin; i < end; ++i) different |= std::bit_cast<std::uint64_t>(weights[i]) ^ kOne;
        if (different != 0) return false;
    }
    return true;
}

}  // namespace

void GatherPoses(const std::array<std::span<const double>, 3>& angles, GatheredPoints& points) {
    for (LaneArray& column : points.Pose) column.resize(At(points.Padded));
    for (int i = 1; i <= points.Padded; ++i) {
        Mat3 G;
        if (i <= points.Count && At(i) <= angles[0].size()) {
            const std::size_t k = At(i) - 1;
            RotMatrixXYZ(-angles[2][k], -angles[1][k], -angles[0][k], G);
        } else {
            RotMatrixXYZ(0, 0, 0, G);
        }
        for (int row = 1; row <= 3; ++row)
            for (int column = 1; column <= 3; ++column)
                points.Pose[At(3 * (row - 1) + column - 1)][At(i - 1)] = G(row, column);
    }
}

void BeginGathering(int count, const PointAt& start, const PointAt& target, const Column& P,
                    GatheredPoints& points) {
    points.Count = count;
    points.Padded = WholeLanes(count);
    Require(UpperBound(P) >= 3 * count);
    const int step = std::max(1, count / kMostForCentre);
    if (!FindCentres(start, target, P, step, points) && step > 1) FindCentres(start, target, P, 1, points);
    for (auto* columns : {&points.Start, &points.Target})
        for (LaneArray& column : *columns) {
            column.resize(At(points.Padded));
            std::fill(column.begin() + count, column.end(), 0);
        }
}

void GatherPoints(const PairColumns& pairs, const Column& P, bool poses, GatheredPoints& points) {
    BeginGathering(
        static_cast<int>(pairs.Start[0].size()), [&](int i) { return PointOf(pairs.Start, i); },
        [&](int i) { return PointOf(pairs.Target, i); }, P, points);
    for (int axis = 0; axis < 3; ++axis)
        for (std::size_t k = 0; k < At(points.Count); ++k) {
            points.Start[At(axis)][k] = pairs.Start[At(axis)][k] - points.StartCentre(axis + 1);
            points.Target[At(axis)][k] = pairs.Target[At(axis)][k] - points.TargetCentre(axis + 1);
        }
    if (poses) GatherPoses(pairs.PoseAngles, points);
}

void SetWeights(const Column& P, GatheredPoints& points) {
    // Weights that are all 1 are left out of the products, which changes no bit of them.
    const double* const first = P.data() + 1;
    const int n = 3 * points.Count;
    points.AllInUse = AllOnes(first, n);
    points.OnlyInUse = points.AllInUse || std::all_of(first, first + n, [](double weight) {
                           return weight == 0 || weight == 1;
                       });
    for (int axis = 0; axis < 3; ++axis) {
        LaneArray& weight = points.Weight[At(axis)];
        weight.resize(points.AllInUse ? 0 : At(points.Padded));
        if (points.AllInUse) continue;
        for (int i = 1; i <= points.Count; ++i) weight[At(i - 1)] = P[At(3 * (i - 1) + axis + 1)];
        for (int i = points.Count; i < points.Padded; ++i) weight[At(i)] = 0;
    }
}

}  // namespace corvinade::fit
