// A-priori standard deviations, and the weight that they give a pair.
#include "fit/pair_weights.h"

#include <cmath>

namespace corvinade::fit {

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

// The inverse of the rows and columns `axes` of C, put into their places of W (Cholesky of the correlations,
// so that axes of very different accuracy lose nothing). False where it is not positive definite.
bool InvertPart(const Mat3& C, const std::array<int, 3>& axes, int n, Mat3& W) {
    constexpr double kSingular = 1e-13;
    double size[3], L[3][3] = {}, inverse[3][3] = {};
    for (int i = 0; i < n; ++i) {
        const double variance = C(axes[At(i)], axes[At(i)]);
        if (!(variance > 0) || !std::isfinite(variance)) return false;
        size[i] = std::sqrt(variance);
    }
    for (int j = 0; j < n; ++j)
        for (int i = j; i < n; ++i) {
            double sum = C(axes[At(i)], axes[At(j)]) / (size[i] * size[j]);
            for (int k = 0; k < j; ++k) sum -= L[i][k] * L[j][k];
            if (i == j && !(sum > kSingular)) return false;
            L[i][j] = i == j ? std::sqrt(sum) : sum / L[j][j];
        }
    for (int j = 0; j < n; ++j)
        for (int i = j; i < n; ++i) {
            double sum = i == j ? 1 : 0;
            for (int k = j; k < i; ++k) sum -= L[i][k] * inverse[k][j];
            inverse[i][j] = sum / L[i][i];
        }
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < n; ++j) {
            double sum = 0;
            for (int k = i > j ? i : j; k < n; ++k) sum += inverse[k][i] * inverse[k][j];
            W(axes[At(i)], axes[At(j)]) = sum / (size[i] * size[j]);
        }
    return true;
}

}  // namespace

Mat3 CovarianceOf(const PairSigmas& sigmas, const Mat3& M, int pair) {
    Mat3 C;
    for (int k = 1; k <= 3; ++k) {
        const double start = sigmas.Start.At(k, pair), target = sigmas.Target.At(k, pair);
        for (int i = 1; i <= 3; ++i)
            for (int j = 1; j <= 3; ++j) C(i, j) += M(i, k) * M(j, k) * start * start;
        C(k, k) += target * target;
    }
    return C;
}

PairWeight WeightOf(const PairSigmas& sigmas, const Mat3& M, int pair, const double* inUse) {
    PairWeight weight;
    weight.C = CovarianceOf(sigmas, M, pair);
    for (int i = 1; i <= 3; ++i) {
        const double start = sigmas.Start.At(i, pair);
        for (int j = 1; j <= 3; ++j) weight.SM(i, j) = start * start * M(j, i);
    }
    std::array<int, 3> axes{};
    int n = 0;
    for (int axis = 1; axis <= 3; ++axis)
        if (inUse[axis - 1] != 0) axes[At(n++)] = axis;
    weight.Positive = InvertPart(weight.C, axes, n, weight.W);
    return weight;
}

int PairWithoutWeight(const PairSigmas& sigmas, const Mat3& M, int pairs, const Column& inUse) {
    PairWeights weights(sigmas, M);
    const bool alike = sigmas.AlikeForAll();
    // Where the sigmas are the same for all, the first pair of all three coordinates speaks for the others.
    bool whole = false;
    for (int i = 0; i < pairs; ++i) {
        const double* const use = &inUse[At(3 * i + 1)];
        const bool all = use[0] != 0 && use[1] != 0 && use[2] != 0;
        if (alike && all && whole) continue;
        whole = whole || all;
        if (!weights.Of(i, use).Positive) return i + 1;
    }
    return 0;
}

}  // namespace corvinade::fit
