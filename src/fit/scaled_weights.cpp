// The weights that a-priori standard deviations give single coordinates.
#include "fit/scaled_weights.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "fit/any_vectors.h"

namespace corvinade::fit {

namespace {

constexpr double kSame = 1e-12;
constexpr int kBlock = 256;  // pairs

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

// Adds the squares of factor * sigma of the pairs from `first` on.
ON_ANY_VECTORS void AddSquares(const std::span<const double>& sigmas, double factor, int first, int count,
                               double* __restrict sums) {
    if (sigmas.size() <= 1) {
        const double one = factor * (sigmas.empty() ? 0 : sigmas[0]);
        for (int j = 0; j < count; ++j) sums[j] += one * one;
        return;
    }
    const double* const each = sigmas.data() + first;
    for (int j = 0; j < count; ++j) sums[j] += (factor * each[j]) * (factor * each[j]);
}

ON_ANY_VECTORS void Invert(int count, double* values) {
    for (int j = 0; j < count; ++j) values[j] = 1 / values[j];
}

ON_ANY_VECTORS void DivideBy(double mean, std::size_t n, double* values) {
    for (std::size_t i = 0; i < n; ++i)
        values[i] = std::fabs(values[i] - mean) <= kSame * mean ? 1 : values[i] / mean;
}

ScaledWeights OfEach(const GatheredPoints& points, const Column& inUse, const PairSigmas& sigmas,
                     const Mat3& M, Column& P) {
    ScaledWeights scaled;
    P.resize(At(3 * points.Count) + 1);
    P[0] = 0;
    std::array<std::array<double, kBlock>, 3> weights;
    std::array<double, 3> sum{}, observations{};
    for (int first = 0; first < points.Count; first += kBlock) {
        const int count = std::min(kBlock, points.Count - first);
        for (int axis = 1; axis <= 3; ++axis) {
            double* const w = weights[At(axis - 1)].data();
            std::fill_n(w, count, 0.0);
            AddSquares(sigmas.Target.Of[At(axis - 1)], 1, first, count, w);
            for (int k = 1; k <= 3; ++k) AddSquares(sigmas.Start.Of[At(k - 1)], M(axis, k), first, count, w);
            Invert(count, w);
        }
        for (int j = 0; j < count; ++j)
            for (std::size_t axis = 0; axis < 3; ++axis) {
                const std::size_t index = At(3 * (first + j) + 1) + axis;
                const double w = inUse[index] != 0 ? weights[axis][At(j)] : 0;
                scaled.AllPositive =
                    scaled.AllPositive &
                    ((inUse[index] == 0) | ((w > 0) & (w < std::numeric_limits<double>::infinity())));
                P[index] = w;
                sum[axis] += w;
                observations[axis] += inUse[index];
            }
    }
    const double n = observations[0] + observations[1] + observations[2];
    scaled.Mean = n > 0 ? (sum[0] + sum[1] + sum[2]) / n : 1;
    DivideBy(scaled.Mean, P.size() - 1, P.data() + 1);
    return scaled;
}

}  // namespace

ScaledWeights ScaleWeights(const GatheredPoints& points, const Column& inUse, const PairSigmas& sigmas,
                           const Mat3& M, Column& P) {
    if (!sigmas.AlikeForAll()) return OfEach(points, inUse, sigmas, M, P);
    const std::size_t n = At(3 * points.Count);
    std::array<double, 3> ofAll{}, used{};
    double sum = 0, observations = 0;
    const Mat3 C = CovarianceOf(sigmas, M, 0);
    used.fill(points.AllInUse ? points.Count : 0);
    for (std::size_t i = 1; i <= n && !points.AllInUse; i += 3)
        for (std::size_t axis = 0; axis < 3; ++axis) used[axis] += inUse[i + axis];
    for (std::size_t axis = 0; axis < 3; ++axis) {
        // An axis that nobody uses may well be free of errors.
        if (used[axis] > 0) ofAll[axis] = 1 / C(static_cast<int>(axis) + 1, static_cast<int>(axis) + 1);
        sum += used[axis] * ofAll[axis];
        observations += used[axis];
    }
    const double mean = observations > 0 ? sum / observations : 1;
    for (double& weight : ofAll) weight = std::fabs(weight - mean) <= kSame * mean ? 1 : weight / mean;
    // Those of a plain fit stand there already.
    const bool same = ofAll[0] == 1 && ofAll[1] == 1 && ofAll[2] == 1;
    if (!same || P.size() != inUse.size()) P = inUse;
    for (std::size_t i = 1; i <= n && !same; i += 3)
        for (std::size_t axis = 0; axis < 3; ++axis) P[i + axis] *= ofAll[axis];
    return {.Mean = mean};
}

}  // namespace corvinade::fit
