// Accuracies and reliability of a fit by least squares.
#include "fit/adjustment_statistics.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

#include "fit/chain.h"
#include "fit/distributions.h"
#include "fit/normal_equations.h"
#include "fit/open_parameters.h"
#include "fit/require.h"
#include "fit/small_svd.h"

namespace corvinade::fit {

namespace {

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
// A coordinate that is controlled by less has a residual of rounding alone.
constexpr double kLeastRedundancy = 1e-9;

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

// The weight of a pair, whichever kind the fit has.
class Weights {
public:
    Weights(const StatisticsProblem& problem, const Mat3& M) : problem_(problem) {
        if (problem.Sigmas != nullptr) known_.emplace(*problem.Sigmas, M);
        for (int axis = 1; axis <= 3; ++axis) unit_.C(axis, axis) = 1;
    }
    const PairWeight& Of(int pair) {
        const double* const inUse = &problem_.InUse[At(3 * pair + 1)];
        if (known_) return known_->Of(pair, inUse);
        for (int axis = 1; axis <= 3; ++axis) unit_.W(axis, axis) = inUse[axis - 1] != 0 ? 1 : 0;
        return unit_;
    }

private:
    const StatisticsProblem& problem_;
    std::optional<PairWeights> known_;
    PairWeight unit_;
};

Form4 SquareAt(const GatheredPoints& points, int pair) {
    const std::size_t i = At(pair);
    return SquareOf(points.Start[0][i], points.Start[1][i], points.Start[2][i]);
}

// Q of the centred unknowns, and vtpv. False where the normal matrix is singular.
bool TakeSums(const StatisticsProblem& problem, const AxisForms& forms, Weights& weights,
              AdjustmentStatistics& s, Matrix& Q) {
    std::array<Form4, kAxisPairs> sums{};
    for (int i = 0; i < problem.Points.Count; ++i) {
        const Form4 square = SquareAt(problem.Points, i);
        const Mat3& W = weights.Of(i).W;
        const double* const v = &problem.Residuals[At(3 * i)];
        for (int a = 1; a <= 3; ++a)
            for (int b = a; b <= 3; ++b) {
                const double w = W(a, b);
                if (w == 0) continue;
                Form4& sum = sums[At(AxisPair(a, b))];
                for (std::size_t k = 0; k < square.size(); ++k) sum[k] += w * square[k];
                s.Vtpv += (a == b ? 1 : 2) * w * v[a] * v[b];
            }
    }
    return InvertPositive(NormalMatrixOf(forms, sums), s.Unknowns, Q);
}

// Whether residuals in use are no more than what the rounding of coordinates makes.
bool AreOfRounding(const StatisticsProblem& problem, const Mat3& M) {
    constexpr double kDigits = 64 * std::numeric_limits<double>::epsilon();
    const GatheredPoints& points = problem.Points;
    double far = 0, largest = 0;
    for (int i = 0; i < points.Count; ++i)
        for (int axis = 1; axis <= 3; ++axis) {
            const std::size_t index = At(3 * i + axis);
            if (problem.InUse[index] == 0) continue;
            largest = std::max(largest, std::fabs(problem.Residuals[index]));
            double size = std::fabs(points.Target[At(axis - 1)][At(i)] + points.TargetCentre(axis));
            for (int j = 1; j <= 3; ++j)
                size = std::max(size, std::fabs(M(axis, j)) *
                                          std::fabs(points.Start[At(j - 1)][At(i)] + points.StartCentre(j)));
            far = std::max(far, size);
        }
    return largest <= kDigits * far;
}

void TakeLimits(AdjustmentStatistics& s) {
    const double r = s.Redundancy, alpha = s.Levels.AlphaSingle, outside = 1 - s.Levels.Confidence;
    if (s.APriori) {
        s.CriticalValue = s.CriticalPredicted = NormalQuantile(alpha / 2);
        s.Shift = NormalShift(s.CriticalValue, s.Levels.Power);
        s.EllipsoidFactor = std::sqrt(ChiSquareQuantile(outside, 3));
        s.ChiSquareLow = ChiSquareLowQuantile(s.Levels.AlphaGlobal / 2, r);
        s.ChiSquareHigh = ChiSquareQuantile(s.Levels.AlphaGlobal / 2, r);
        return;
    }
    s.ChiSquareLow = s.ChiSquareHigh = kNone;
    s.CriticalValue = TauQuantile(alpha / 2, r);
    s.CriticalPredicted = StudentQuantile(alpha / 2, r);
    s.Shift = r < 2 ? kNone : StudentShift(StudentQuantile(alpha / 2, r - 1), r - 1, s.Levels.Power);
    s.EllipsoidFactor = std::sqrt(3 * FisherQuantile(outside, 3, r));
}

// Redundancy, test and MDB of each coordinate of a pair.
//   A  A Q A' of the pair
void TakePair(const StatisticsProblem& problem, const PairWeight& weight, const Mat3& A, double scale,
              int pair, AdjustmentStatistics& s) {
    const Mat3& W = weight.W;
    const std::size_t before = At(3 * pair);
    const double* const v = &problem.Residuals[before];
    Mat3 AW;
    for (int i = 1; i <= 3; ++i)
        for (int j = 1; j <= 3; ++j) AW(i, j) = A(i, 1) * W(1, j) + A(i, 2) * W(2, j) + A(i, 3) * W(3, j);
    for (int i = 1; i <= 3; ++i) {
        const std::size_t index = before + At(i);
        if (problem.InUse[index] == 0) {
            // The residual of a coordinate that has had no part in the result, by its own error and that of
            // the result.
            s.Standardized[index] = v[i] / (scale * std::sqrt(weight.C(i, i) + A(i, i)));
            continue;
        }
        const double redundancy = 1 - AW(i, i);
        // (W v)_i and (W Qvv W)_ii = (W - W A Q A' W)_ii.
        double Wv = 0, variance = W(i, i);
        for (int k = 1; k <= 3; ++k) {
            Wv += W(i, k) * v[k];
            variance -= W(i, k) * AW(k, i);
        }
        s.Redundancies[index] = std::max(0.0, redundancy);
        if (!(redundancy >= kLeastRedundancy) || !(variance > 0)) continue;
        const double sigma = std::sqrt(variance);
        s.Standardized[index] = Wv / (scale * sigma);
        s.Mdb[index] = s.Shift * scale / sigma;
    }
}

void TakePairs(const StatisticsProblem& problem, Weights& weights, AdjustmentStatistics& s) {
    const std::size_t size = At(3 * problem.Points.Count) + 1;
    for (Column* column : {&s.Redundancies, &s.Standardized, &s.Mdb}) column->assign(size, kNone);
    const double scale = s.APriori ? 1 : s.OfRounding ? kNone : s.s0;
    for (int i = 0; i < problem.Points.Count; ++i) {
        const Form4 square = SquareAt(problem.Points, i);
        Mat3 A;
        for (int a = 1; a <= 3; ++a)
            for (int b = a; b <= 3; ++b) A(a, b) = A(b, a) = Value(s.Variances[At(AxisPair(a, b))], square);
        TakePair(problem, weights.Of(i), A, scale, i, s);
    }
}

}  // namespace

AdjustmentStatistics StatisticsOf(const StatisticsProblem& problem) {
    const GatheredPoints& points = problem.Points;
    Require(problem.Model.Mode == FitMode::Coincide);
    Require(UpperBound(problem.InUse) >= 3 * points.Count &&
            UpperBound(problem.Residuals) >= 3 * points.Count);
    AdjustmentStatistics s;
    s.Model = problem.Model;
    s.Levels = problem.Levels;
    s.APriori = problem.Sigmas != nullptr;
    s.Unknowns = problem.Model.Unknowns;
    s.Observations = static_cast<int>(std::count_if(problem.InUse.begin() + 1,
                                                    problem.InUse.begin() + 1 + 3 * points.Count,
                                                    [](double use) { return use != 0; }));
    s.Redundancy = s.Observations - s.Unknowns;
    ChainRecord chain;
    const Linearisation at = Linearise(problem.Model, problem.Result, points, chain);
    const AxisForms forms = FormsOf(problem.Model, at);
    Weights weights(problem, at.M);
    Matrix Q;
    const bool inverted = TakeSums(problem, forms, weights, s, Q);
    s.s0 = s.Redundancy > 0 ? std::sqrt(s.Vtpv / s.Redundancy) : kNone;
    s.VarianceFactor = s.APriori ? 1 : s.s0 * s.s0;
    const OpenParameters open = FindOpenParameters(
        points, problem.Model, [&problem](std::size_t i) { return problem.InUse[i] != 0; }, problem.Result,
        at);
    s.Undetermined = open.Open;
    s.Singular = open.Count > 0 || !inverted;
    if (s.Singular) return s;
    s.OfRounding = AreOfRounding(problem, at.M);
    TakeLimits(s);
    s.Centre = points.StartCentre;
    s.Variances = VarianceForms(forms, Q);
    FromCentre(problem.Model, at, Q);
    s.Q = std::move(Q);
    TakePairs(problem, weights, s);
    return s;
}

double AdjustmentStatistics::Sigma(int unknown) const {
    return std::sqrt(Covariance(unknown, unknown));
}

double AdjustmentStatistics::Correlation(int i, int j) const {
    return i == j ? 1 : Q(i, j) / std::sqrt(Q(i, i) * Q(j, j));
}

Mat3 CovarianceOfTransformed(const AdjustmentStatistics& statistics, const Vec3& start) {
    const Vec3& c = statistics.Centre;
    const Form4 square = SquareOf(start(1) - c(1), start(2) - c(2), start(3) - c(3));
    Mat3 covariance;
    for (int a = 1; a <= 3; ++a)
        for (int b = a; b <= 3; ++b)
            covariance(a, b) = covariance(b, a) =
                statistics.VarianceFactor * Value(statistics.Variances[At(AxisPair(a, b))], square);
    return covariance;
}

Ellipsoid EllipsoidOf(const Mat3& covariance, double factor) {
    const Svd3 svd = Decompose3(covariance);
    Ellipsoid ellipsoid;
    for (int k = 1; k <= 3; ++k) {
        ellipsoid.SemiAxes(k) = factor * std::sqrt(std::max(0.0, svd.s(k)));
        int greatest = 1;
        for (int i = 2; i <= 3; ++i)
            if (std::fabs(svd.U(i, k)) > std::fabs(svd.U(greatest, k)) * (1 + 1e-9)) greatest = i;
        for (int i = 1; i <= 3; ++i)
            ellipsoid.Directions(k, i) = svd.U(greatest, k) < 0 ? -svd.U(i, k) : svd.U(i, k);
    }
    return ellipsoid;
}

}  // namespace corvinade::fit
