// Accuracies and reliability of a fit by least squares.
#include "fit/adjustment_statistics.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

#include "fit/chain.h"
#include "fit/distributions.h"
#include "fit/moments.h"
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

// Those of a problem with a-priori sigmas.
class Weights {
public:
    Weights(const StatisticsProblem& problem, const Mat3& M) : problem_(problem) {
        if (problem.Sigmas != nullptr) known_.emplace(*problem.Sigmas, M);
    }
    const PairWeight& Of(int pair) { return known_->Of(pair, &problem_.InUse[At(3 * pair + 1)]); }

private:
    const StatisticsProblem& problem_;
    std::optional<PairWeights> known_;
};

// Of unit weights: their sums are the moments of the points.
std::array<Form4, kAxisPairs> SumsOfUnitWeights(const StatisticsProblem& problem, const Linearisation& at,
                                                AdjustmentStatistics& s) {
    PointMoments moments;
    SumMoments(problem.Points, at, moments);
    std::array<Form4, kAxisPairs> sums{};
    for (int axis = 1; axis <= 3; ++axis) {
        const auto& B = moments.B[At(axis)];
        sums[At(AxisPair(axis, axis))] = {B[0][0], B[0][1], B[0][2], B[0][3], B[1][1],
                                          B[1][2], B[1][3], B[2][2], B[2][3], B[3][3]};
    }
    // Three sums, so that no addition has to wait for the one before.
    Vec3 squares;
    const double *const v = problem.Residuals.data(), *const use = problem.InUse.data();
    for (std::size_t i = 1; i <= At(3 * problem.Points.Count); i += 3)
        for (int axis = 0; axis < 3; ++axis) {
            const double r = use[i + At(axis)] != 0 ? v[i + At(axis)] : 0;
            squares(axis + 1) += r * r;
        }
    s.Vtpv = squares(1) + squares(2) + squares(3);
    return sums;
}

std::array<Form4, kAxisPairs> SumsOfWeights(const StatisticsProblem& problem, Weights& weights,
                                            AdjustmentStatistics& s) {
    std::array<Form4, kAxisPairs> sums{};
    const GatheredPoints& points = problem.Points;
    for (int i = 0; i < points.Count; ++i) {
        const std::size_t k = At(i);
        const Form4 square = SquareOf(points.Start[0][k], points.Start[1][k], points.Start[2][k]);
        const Mat3& W = weights.Of(i).W;
        const double* const v = &problem.Residuals[At(3 * i)];
        for (int a = 1; a <= 3; ++a)
            for (int b = a; b <= 3; ++b) {
                const double w = W(a, b);
                if (w == 0) continue;
                Form4& sum = sums[At(AxisPair(a, b))];
                for (std::size_t j = 0; j < square.size(); ++j) sum[j] += w * square[j];
                s.Vtpv += (a == b ? 1 : 2) * w * v[a] * v[b];
            }
    }
    return sums;
}

// The largest size of a column's values, which stand about a centre.
double FarthestOf(const LaneArray& column, int count, double centre) {
    double least = 0, most = 0;
    for (std::size_t i = 0; i < At(count); ++i) {
        least = column[i] < least ? column[i] : least;
        most = column[i] > most ? column[i] : most;
    }
    return std::max(std::fabs(centre + least), std::fabs(centre + most));
}

// Whether residuals in use are no more than what the rounding of coordinates makes.
bool AreOfRounding(const StatisticsProblem& problem, const Mat3& M) {
    constexpr double kDigits = 64 * std::numeric_limits<double>::epsilon();
    const GatheredPoints& points = problem.Points;
    double far = 0;
    for (int axis = 1; axis <= 3; ++axis) {
        far = std::max(far, FarthestOf(points.Target[At(axis - 1)], points.Count, points.TargetCentre(axis)));
        const double start = FarthestOf(points.Start[At(axis - 1)], points.Count, points.StartCentre(axis));
        for (int row = 1; row <= 3; ++row) far = std::max(far, std::fabs(M(row, axis)) * start);
    }
    // Most fits have a residual that says it among the first.
    for (std::size_t i = 1; i <= At(3 * points.Count); ++i)
        if (problem.InUse[i] != 0 && !(std::fabs(problem.Residuals[i]) <= kDigits * far)) return false;
    return true;
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
        s.Control[index] = variance;
    }
}

// The same where all weights are 1.
void TakePairsOfUnitWeights(const StatisticsProblem& problem, double scale, AdjustmentStatistics& s) {
    const GatheredPoints& points = problem.Points;
    const std::array<Form4, 3> forms = {s.Variances[At(AxisPair(1, 1))], s.Variances[At(AxisPair(2, 2))],
                                        s.Variances[At(AxisPair(3, 3))]};
    const double *const v = problem.Residuals.data(), *const use = problem.InUse.data();
    for (std::size_t i = 0; i < At(points.Count); ++i) {
        const double x = points.Start[0][i], y = points.Start[1][i], z = points.Start[2][i];
        for (std::size_t axis = 0; axis < 3; ++axis) {
            const std::size_t index = 3 * i + axis + 1;
            const double A = Value(forms[axis], x, y, z), redundancy = 1 - A;
            const bool used = use[index] != 0, tested = !used || redundancy >= kLeastRedundancy;
            s.Redundancies[index] = !used ? kNone : redundancy > 0 ? redundancy : 0;
            s.Standardized[index] =
                tested ? v[index] / (scale * std::sqrt(used ? redundancy : 1 + A)) : kNone;
        }
    }
}

void TakePairs(const StatisticsProblem& problem, Weights& weights, AdjustmentStatistics& s) {
    const GatheredPoints& points = problem.Points;
    const std::size_t size = At(3 * points.Count) + 1;
    s.Redundancies.resize(size, kNone);
    s.Standardized.resize(size, kNone);
    const double scale = s.APriori ? 1 : s.OfRounding ? kNone : s.s0;
    if (!s.APriori) return TakePairsOfUnitWeights(problem, scale, s);
    s.Control.resize(size, kNone);
    for (int i = 0; i < points.Count; ++i) {
        const std::size_t k = At(i);
        Mat3 A;
        for (int a = 1; a <= 3; ++a)
            for (int b = a; b <= 3; ++b)
                A(a, b) = A(b, a) = Value(s.Variances[At(AxisPair(a, b))], points.Start[0][k],
                                          points.Start[1][k], points.Start[2][k]);
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
    const std::array<Form4, kAxisPairs> sums =
        s.APriori ? SumsOfWeights(problem, weights, s) : SumsOfUnitWeights(problem, at, s);
    const bool inverted = InvertPositive(NormalMatrixOf(forms, sums), s.Unknowns, Q);
    s.s0 = s.Redundancy > 0 ? std::sqrt(s.Vtpv / s.Redundancy) : kNone;
    s.VarianceFactor = s.APriori ? 1 : s.s0 * s.s0;
    const auto openBy = [&](OpenBy by) {
        return FindOpenParameters(
            points, problem.Model, [&problem](std::size_t i) { return problem.InUse[i] != 0; },
            problem.Result, at, by);
    };
    OpenParameters open = openBy(OpenBy::Rounding);
    // Squares have half of the digits: what cannot be inverted may leave nothing open yet.
    if (!inverted && open.Count == 0) open = openBy(OpenBy::LeastKnown);
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

double AdjustmentStatistics::Mdb(std::size_t index) const {
    const double control = APriori ? Control[index] : Redundancies[index];
    if (!(Redundancies[index] >= kLeastRedundancy) || OfRounding) return kNone;
    return Shift * (APriori ? 1 : s0) / std::sqrt(control);
}

double AdjustmentStatistics::Sigma(int unknown) const {
    return std::sqrt(Covariance(unknown, unknown));
}

double AdjustmentStatistics::Correlation(int i, int j) const {
    return i == j ? 1 : Q(i, j) / std::sqrt(Q(i, i) * Q(j, j));
}

Mat3 CovarianceOfTransformed(const AdjustmentStatistics& statistics, const Vec3& start) {
    const Vec3& c = statistics.Centre;
    const double x = start(1) - c(1), y = start(2) - c(2), z = start(3) - c(3);
    Mat3 covariance;
    for (int a = 1; a <= 3; ++a)
        for (int b = a; b <= 3; ++b)
            covariance(a, b) = covariance(b, a) =
                statistics.VarianceFactor * Value(statistics.Variances[At(AxisPair(a, b))], x, y, z);
    return covariance;
}

Vec3 SigmaOfTransformed(const AdjustmentStatistics& statistics, const Vec3& start) {
    const Vec3& c = statistics.Centre;
    Vec3 sigma;
    for (int axis = 1; axis <= 3; ++axis) {
        const double variance = Value(statistics.Variances[At(AxisPair(axis, axis))], start(1) - c(1),
                                      start(2) - c(2), start(3) - c(3));
        sigma(axis) = std::sqrt(statistics.VarianceFactor * (variance > 0 ? variance : 0));
    }
    return sigma;
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
