// The sums of a weighted fit where each pair has sigmas of its own.
//
// Groups of eight pairs that are in use with all coordinates go through in lanes: the weight of a pair is the
// inverse of its matrix C by C = L D L', whose pivots tell whether it is positive definite. All others, and a
// group with a pair that is not, go pair by pair (WeightOf).
#include "fit/pair_sums.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <span>

#include "fit/any_vectors.h"
#include "fit/lanes.h"

namespace corvinade::fit {

namespace {

using Lanes = double __attribute__((vector_size(kLanes * sizeof(double))));
using Mask = long long __attribute__((vector_size(kLanes * sizeof(double))));
static_assert(sizeof(Lanes) == sizeof(Mask));

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

// The sums of eight lanes, and those of the pairs that go one by one.
struct LaneSums {
    Lanes Squares[kAxisPairs][10] = {}, Gradient[3][4] = {}, Objective = {};
};

// The sigmas of an axis: those of each pair, or one for all.
struct AxisSigmas {
    const double* OfEach = nullptr;
    double OfAll = 0;
    explicit AxisSigmas(const std::span<const double>& sigmas) {
        if (sigmas.size() == 1) OfAll = sigmas[0];
        if (sigmas.size() > 1) OfEach = sigmas.data();
    }
};

struct PairPass {
    const GatheredPoints& Points;
    const Linearisation& At;
    AxisSigmas Start[3], Target[3];
    bool Corrected;  // the start points by the weights that they have, and the residuals beside them
    PairPass(const GatheredPoints& points, const PairSigmas& sigmas, const Linearisation& at, bool corrected)
        : Points(points),
          At(at),
          Start{AxisSigmas(sigmas.Start.Of[0]), AxisSigmas(sigmas.Start.Of[1]),
                AxisSigmas(sigmas.Start.Of[2])},
          Target{AxisSigmas(sigmas.Target.Of[0]), AxisSigmas(sigmas.Target.Of[1]),
                 AxisSigmas(sigmas.Target.Of[2])},
          Corrected(corrected) {}
};

// Whether a number is below 0 or none, by signs and sums alone: a comparison in lanes becomes eight.
inline bool MayHaveNoWeight(Lanes a, Lanes b, Lanes c) {
    const Mask signs = (Mask)a | (Mask)b | (Mask)c;
    const Lanes nothing = (a + b + c) * 0;
    double sum[kLanes];
    long long sign[kLanes];
    std::memcpy(sum, &nothing, sizeof sum);
    std::memcpy(sign, &signs, sizeof sign);
    const long long any =
        ((sign[0] | sign[4]) | (sign[2] | sign[6])) | ((sign[1] | sign[5]) | (sign[3] | sign[7]));
    return any < 0 || SumOfLanes(sum) != 0;
}

// Groups of pairs, `first` to `end` whole ones. Gives the begin of the first group with a pair whose matrix
// may not be positive definite, which is not in the sums, or `end`.
ON_ANY_VECTORS int AddGroups(const PairPass& pass, int first, int end, LaneSums& sums) {
    constexpr double kSingular = 1e-13, kTiny = 1e-300;
    const Mat3& M = pass.At.M;
    double m[3][3], shift[3];
    for (int a = 0; a < 3; ++a) {
        shift[a] = pass.At.Shift(a + 1);
        for (int k = 0; k < 3; ++k) m[a][k] = M(a + 1, k + 1);
    }
    for (int i = first; i < end; i += kLanes) {
        Lanes p[3], q[3], s[3], t[3];
        for (std::size_t a = 0; a < 3; ++a) {
            std::memcpy(&p[a], pass.Points.Start[a].data() + i, sizeof p[a]);
            std::memcpy(&q[a], pass.Points.Target[a].data() + i, sizeof q[a]);
            s[a] = Lanes{} + pass.Start[a].OfAll;
            t[a] = Lanes{} + pass.Target[a].OfAll;
            if (pass.Start[a].OfEach != nullptr) std::memcpy(&s[a], pass.Start[a].OfEach + i, sizeof s[a]);
            if (pass.Target[a].OfEach != nullptr) std::memcpy(&t[a], pass.Target[a].OfEach + i, sizeof t[a]);
            s[a] *= s[a];
            t[a] *= t[a];
        }
        Lanes x[3], y[3], z[3];  // the rows of M, each element with the start's variance of its axis
        for (int k = 0; k < 3; ++k) {
            x[k] = m[0][k] * s[k];
            y[k] = m[1][k] * s[k];
            z[k] = m[2][k] * s[k];
        }
        const Lanes c11 = (x[0] * m[0][0] + x[1] * m[0][1] + x[2] * m[0][2]) + t[0];
        const Lanes c12 = x[0] * m[1][0] + x[1] * m[1][1] + x[2] * m[1][2];
        const Lanes c13 = x[0] * m[2][0] + x[1] * m[2][1] + x[2] * m[2][2];
        const Lanes c22 = (y[0] * m[1][0] + y[1] * m[1][1] + y[2] * m[1][2]) + t[1];
        const Lanes c23 = y[0] * m[2][0] + y[1] * m[2][1] + y[2] * m[2][2];
        const Lanes c33 = (z[0] * m[2][0] + z[1] * m[2][1] + z[2] * m[2][2]) + t[2];
        const Lanes i1 = 1 / c11, l21 = c12 * i1, l31 = c13 * i1;
        const Lanes d2 = c22 - l21 * c12, i2 = 1 / d2, l32 = (c23 - l31 * c12) * i2;
        const Lanes d3 = (c33 - l31 * c13) - l32 * l32 * d2, i3 = 1 / d3;
        if (MayHaveNoWeight(c11 - kTiny, d2 - (kSingular * c22 + kTiny), d3 - (kSingular * c33 + kTiny)))
            return i;
        // The rows of the inverse of L: 1; k21 1; k31 k32 1.
        const Lanes k21 = -l21, k32 = -l32, k31 = l21 * l32 - l31;
        const Lanes a31 = k31 * i3, a32 = k32 * i3;
        const Lanes w[kAxisPairs] = {
            (i1 + k21 * k21 * i2) + k31 * a31, k21 * i2 + k32 * a31, a31, i2 + k32 * a32, a32, i3};
        if (pass.Corrected) {
            Lanes r[3];
            for (int a = 0; a < 3; ++a)
                r[a] = (shift[a] - q[a]) + (m[a][0] * p[0] + m[a][1] * p[1] + m[a][2] * p[2]);
            const Lanes v[3] = {w[0] * r[0] + w[1] * r[1] + w[2] * r[2],
                                w[1] * r[0] + w[3] * r[1] + w[4] * r[2],
                                w[2] * r[0] + w[4] * r[1] + w[5] * r[2]};
            sums.Objective += r[0] * v[0] + r[1] * v[1] + r[2] * v[2];
            for (int k = 0; k < 3; ++k) p[k] -= x[k] * v[0] + y[k] * v[1] + z[k] * v[2];
            for (int a = 0; a < 3; ++a) {
                sums.Gradient[a][0] += v[a];
                for (int k = 0; k < 3; ++k) sums.Gradient[a][k + 1] += v[a] * p[k];
            }
        }
        const Lanes square[9] = {p[0],        p[1],        p[2],        p[0] * p[0], p[0] * p[1],
                                 p[0] * p[2], p[1] * p[1], p[1] * p[2], p[2] * p[2]};
        for (int k = 0; k < kAxisPairs; ++k) {
            Lanes* const sum = sums.Squares[k];
            sum[0] += w[k];
            for (int j = 0; j < 9; ++j) sum[j + 1] += w[k] * square[j];
        }
    }
    return end;
}

Vec3 Times(const Mat3& A, const Vec3& x) {
    Vec3 y;
    for (int i = 1; i <= 3; ++i) y(i) = A(i, 1) * x(1) + A(i, 2) * x(2) + A(i, 3) * x(3);
    return y;
}

// One pair, whichever of its coordinates are in use; residuals of the others may be anything, no numbers too.
void AddPair(const PairPass& pass, const PairSigmas& sigmas, const double* use, int i, WeightedSums& sums) {
    const GatheredPoints& points = pass.Points;
    const PairWeight weight = WeightOf(sigmas, pass.At.M, i, use);
    if (!weight.Positive) sums.Objective = std::numeric_limits<double>::quiet_NaN();
    Vec3 p = {points.Start[0][At(i)], points.Start[1][At(i)], points.Start[2][At(i)]};
    if (pass.Corrected) {
        Vec3 r;
        for (int a = 1; a <= 3; ++a)
            r(a) = use[a - 1] == 0
                       ? 0
                       : (pass.At.Shift(a) - points.Target[At(a - 1)][At(i)]) +
                             (pass.At.M(a, 1) * p(1) + pass.At.M(a, 2) * p(2) + pass.At.M(a, 3) * p(3));
        const Vec3 Wr = Times(weight.W, r), e = Times(weight.SM, Wr);
        sums.Objective += r(1) * Wr(1) + r(2) * Wr(2) + r(3) * Wr(3);
        for (int a = 1; a <= 3; ++a) p(a) -= e(a);
        for (int a = 1; a <= 3; ++a) {
            sums.Gradient[At(a)][0] += Wr(a);
            for (int k = 1; k <= 3; ++k) sums.Gradient[At(a)][At(k)] += Wr(a) * p(k);
        }
    }
    const Form4 square = SquareOf(p(1), p(2), p(3));
    for (int a = 1; a <= 3; ++a)
        for (int b = a; b <= 3; ++b)
            for (std::size_t k = 0; k < square.size(); ++k)
                sums.Squares[At(AxisPair(a, b))][k] += weight.W(a, b) * square[k];
}

double SumOf(const Lanes& lanes) {
    double each[kLanes];
    std::memcpy(each, &lanes, sizeof each);
    return SumOfLanes(each);
}

// Pairs from `first` to the end of the run of whole groups that are in use with all coordinates.
int EndOfWhole(const GatheredPoints& points, const Column& inUse, int first) {
    const int whole = points.Count / kLanes * kLanes;
    if (points.AllInUse) return std::max(first, whole);
    int end = first;
    for (; end < whole; end += kLanes)
        for (int k = 3 * end + 1; k <= 3 * (end + kLanes); ++k)
            if (inUse[At(k)] == 0) return end;
    return end;
}

WeightedSums SumAll(const PairPass& pass, const PairSigmas& sigmas, const Column& inUse) {
    const GatheredPoints& points = pass.Points;
    WeightedSums sums;
    LaneSums lanes;
    for (int i = 0; i < points.Count;) {
        const int end = EndOfWhole(points, inUse, i);
        if (i < end) i = AddGroups(pass, i, end, lanes);
        // The group that stopped it.
        const int behind = std::min(i + kLanes, points.Count);
        for (; i < behind; ++i) AddPair(pass, sigmas, &inUse[At(3 * i + 1)], i, sums);
    }
    sums.Objective += SumOf(lanes.Objective);
    for (std::size_t a = 0; a < 3; ++a)
        for (std::size_t k = 0; k < 4; ++k) sums.Gradient[a + 1][k] += SumOf(lanes.Gradient[a][k]);
    for (std::size_t k = 0; k < kAxisPairs; ++k)
        for (std::size_t j = 0; j < 10; ++j) sums.Squares[k][j] += SumOf(lanes.Squares[k][j]);
    return sums;
}

}  // namespace

WeightedSums SumOverPairs(const GatheredPoints& points, const Column& inUse, const PairSigmas& sigmas,
                          const Linearisation& at) {
    return SumAll(PairPass(points, sigmas, at, true), sigmas, inUse);
}

std::array<Form4, kAxisPairs> SquaresOverPairs(const GatheredPoints& points, const Column& inUse,
                                               const PairSigmas& sigmas, const Linearisation& at) {
    return SumAll(PairPass(points, sigmas, at, false), sigmas, inUse).Squares;
}

}  // namespace corvinade::fit
