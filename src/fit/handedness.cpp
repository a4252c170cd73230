// Whether two point sets tell right from left.
#include "fit/handedness.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "fit/design.h"
#include "fit/matrix.h"
#include "fit/mirror.h"
#include "fit/small_svd.h"
#include "fit/statistics.h"
#include "fit/tool_tips.h"

namespace corvinade::fit {

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

constexpr double kEpsilon = 2.220446049250313e-16;

enum class Part { None, Some, All };
Part PartOf(const GatheredPoints& points, int pair) {
    if (points.AllInUse) return Part::All;
    int used = 0;
    for (const LaneArray& weight : points.Weight)
        if (weight[At(pair)] != 0) ++used;
    return used == 3 ? Part::All : used == 0 ? Part::None : Part::Some;
}

Vec3 PointOf(const std::array<LaneArray, 3>& set, int pair) {
    return {set[0][At(pair)], set[1][At(pair)], set[2][At(pair)]};
}

Vec3 Product(const Mat3& M, const Vec3& p) {
    Vec3 image;
    for (int i = 1; i <= 3; ++i) image(i) = M(i, 1) * p(1) + M(i, 2) * p(2) + M(i, 3) * p(3);
    return image;
}

double Length(const Vec3& p) {
    return std::hypot(p(1), p(2), p(3));
}

// Sums over pairs about their means.
struct Scatter {
    Vec3 StartMean, TargetMean;
    Mat3 Start, Target, Cross;  // start by start, target by target, start by target

    Scatter(const GatheredPoints& points, const std::vector<int>& pairs) {
        const auto n = static_cast<double>(pairs.size());
        for (const int pair : pairs)
            for (int i = 1; i <= 3; ++i) {
                StartMean(i) += points.Start[At(i - 1)][At(pair)] / n;
                TargetMean(i) += points.Target[At(i - 1)][At(pair)] / n;
            }
        for (const int pair : pairs) {
            Vec3 p = PointOf(points.Start, pair), q = PointOf(points.Target, pair);
            for (int i = 1; i <= 3; ++i) {
                p(i) -= StartMean(i);
                q(i) -= TargetMean(i);
            }
            for (int i = 1; i <= 3; ++i)
                for (int j = 1; j <= 3; ++j) {
                    Start(i, j) += p(i) * p(j);
                    Target(i, j) += q(i) * q(j);
                    Cross(i, j) += p(i) * q(j);
                }
        }
    }
};

// Whether something is left of a smallest direction beside the rounding of the largest.
bool HasRelief(const Svd3& scatter) {
    return scatter.s(3) > 64 * kEpsilon * scatter.s(1);
}

// Of a scatter with relief: the matrix that makes it the unit matrix.
Mat3 Whitening(const Svd3& scatter) {
    Mat3 W;
    for (int i = 1; i <= 3; ++i)
        for (int j = 1; j <= 3; ++j)
            for (int k = 1; k <= 3; ++k)
                W(i, j) += scatter.U(i, k) * scatter.U(j, k) / std::sqrt(scatter.s(k));
    return W;
}

// The smallest directions go together, and as a mirror image.
bool GoTogetherMirrored(const Scatter& scatter, const Svd3& start, const Svd3& target, double pairs) {
    constexpr double kLogOdds = 9.2;  // of one in ten thousand
    const double freedom = pairs - 4;
    if (!(freedom > 0)) return false;
    const Mat3 correlation = MatrixProduct(MatrixProduct(Whitening(start), scatter.Cross), Whitening(target));
    if (!(Determinant3(correlation) < 0)) return false;
    const double least = std::fmin(Decompose3(correlation).s(3), 1 - kEpsilon);
    return -freedom / 2 * std::log1p(-least * least) > kLogOdds;
}

}  // namespace

Handedness HandednessOf(const GatheredPoints& points, const Mat3& M, const Vec3& shift, FitNorm norm,
                        int unknowns, double scale) {
    constexpr double kThick = 10;  // of the noise
    constexpr double kBlunder = 20;
    Handedness told;
    std::vector<int> pairs;
    std::vector<double> residuals;
    bool some = false;
    double size = 0;
    for (int pair = 0; pair < points.Count; ++pair) {
        const Part part = PartOf(points, pair);
        some = some || part == Part::Some;
        if (part != Part::All) continue;
        const Vec3 image = Product(M, PointOf(points.Start, pair)), q = PointOf(points.Target, pair);
        pairs.push_back(pair);
        residuals.push_back(
            Length({image(1) + shift(1) - q(1), image(2) + shift(2) - q(2), image(3) + shift(3) - q(3)}));
        size = std::max(size, Length(q));
    }
    if (norm == FitNorm::LeastSum) {
        const double most = std::max(kBlunder * MiddleDeviation(residuals, unknowns), 1e3 * kEpsilon * size);
        std::vector<int> good;
        std::vector<double> kept;
        for (std::size_t k = 0; k < pairs.size(); ++k)
            if (residuals[k] <= most) {
                good.push_back(pairs[k]);
                kept.push_back(residuals[k]);
            }
        pairs.swap(good);
        residuals.swap(kept);
    }
    const auto n = static_cast<double>(pairs.size());
    if (some && n < 4) return told;
    if (n < 1) return told;
    const Scatter scatter(points, pairs);
    const Svd3 start = Decompose3(scatter.Start), target = Decompose3(scatter.Target);
    const Vec3 normal = {start.U(1, 3), start.U(2, 3), start.U(3, 3)};
    const double stretch = std::max(Length(Product(M, normal)), std::isfinite(scale) ? scale : 0);
    double squares = 0, noise = 0;
    for (std::size_t k = 0; k < pairs.size(); ++k) {
        const Vec3 p = PointOf(points.Start, pairs[k]);
        double off = 0;
        for (int i = 1; i <= 3; ++i) off += normal(i) * (p(i) - scatter.StartMean(i));
        off = std::fabs(off) * stretch;
        squares += off * off;
        told.Sum += off;
        told.Largest = std::max(told.Largest, off);
        noise += residuals[k] * residuals[k];
    }
    told.Root = std::sqrt(squares);
    const double redundancy = 3 * n - unknowns;
    noise = redundancy > 0 ? std::sqrt(noise / redundancy) : std::numeric_limits<double>::infinity();
    noise = std::max(noise, 8 * kEpsilon * size);
    Mat3 transposed;
    MatrixTranspose(M, 3, 3, transposed);
    const Mat3 image = MatrixProduct(MatrixProduct(M, scatter.Start), transposed);
    const auto relief = [n](double leastSquares) { return std::sqrt(std::fmax(0, leastSquares) / n); };
    const bool both = HasRelief(start) && HasRelief(target);
    const bool thick = std::fmin(relief(Decompose3(image).s(3)), relief(target.s(3))) > kThick * noise;
    told.Sure = both && (thick || GoTogetherMirrored(scatter, start, target, n));
    return told;
}

Handedness HandednessHere(const NormRun& fit) {
    ChainRecord chain;
    const Linearisation at = Linearise(fit.Model, fit.Run.Now, fit.Points, chain);
    const auto of = [&](const GatheredPoints& points) {
        return HandednessOf(points, at.M, at.Shift, fit.Kind, fit.Model.Unknowns,
                            SizeRatio(points, fit.Kind));
    };
    return fit.Model.Mode == FitMode::Tool ? of(AtTips(fit.Points, at.Tool)) : of(fit.Points);
}

double SizeRatioHere(const NormRun& fit) {
    if (fit.Model.Mode != FitMode::Tool) return SizeRatio(fit.Points, fit.Kind);
    const Vec3 tool(fit.Run.Now[kRvecX], fit.Run.Now[kRvecY], fit.Run.Now[kRvecZ]);
    return SizeRatio(AtTips(fit.Points, tool), fit.Kind);
}

namespace {

double RatioOfRoots(const GatheredPoints& points) {
    const auto sizeOf = [&](const std::array<LaneArray, 3>& set) {
        double squares = 0;
        for (int axis = 0; axis < 3; ++axis) {
            const auto used = [&](int i) { return points.AllInUse || points.Weight[At(axis)][At(i)] != 0; };
            double count = 0, middle = 0;
            for (int i = 0; i < points.Count; ++i)
                if (used(i)) {
                    ++count;
                    middle += set[At(axis)][At(i)];
                }
            middle /= std::max(1.0, count);
            for (int i = 0; i < points.Count; ++i)
                if (used(i)) squares += (set[At(axis)][At(i)] - middle) * (set[At(axis)][At(i)] - middle);
        }
        return std::sqrt(squares);
    };
    return sizeOf(points.Target) / sizeOf(points.Start);
}

// Of the distances between each pair and the one half the list away. NaN where there are none.
double RatioOfMiddles(const GatheredPoints& points) {
    std::vector<double> ratios;
    const int away = std::max(1, points.Count / 2);
    for (int i = 0; i < points.Count; ++i) {
        const int other = (i + away) % points.Count;
        if (PartOf(points, i) != Part::All || PartOf(points, other) != Part::All) continue;
        const auto distance = [&](const std::array<LaneArray, 3>& set) {
            const Vec3 a = PointOf(set, i), b = PointOf(set, other);
            return Length({a(1) - b(1), a(2) - b(2), a(3) - b(3)});
        };
        const double start = distance(points.Start);
        if (start > 0) ratios.push_back(distance(points.Target) / start);
    }
    return ratios.empty() ? std::numeric_limits<double>::quiet_NaN() : MiddleOf(std::move(ratios));
}

}  // namespace

double SizeRatio(const GatheredPoints& points, FitNorm norm) {
    const double middle =
        norm == FitNorm::LeastSum ? RatioOfMiddles(points) : std::numeric_limits<double>::quiet_NaN();
    return middle > 0 ? middle : RatioOfRoots(points);
}

bool MirrorMayStand(double proper, double mirrored, double rounding, int redundancy, FitNorm norm,
                    const std::function<Handedness()>& handedness) {
    const bool squares = norm == FitNorm::LeastSquares;
    if (!MirrorIsReal(proper, mirrored, rounding, redundancy, squares ? 2 : 1)) return false;
    const Handedness told = handedness();
    if (told.Sure) return true;
    // There is a proper transformation beside the mirrored one, worse by twice the relief at most.
    if (squares) return !(std::sqrt(proper) <= std::sqrt(mirrored) + 2 * told.Root + std::sqrt(rounding));
    const double most = norm == FitNorm::LeastSum ? std::sqrt(3.0) * told.Sum : told.Largest;
    return !(proper <= mirrored + 2 * most + rounding);
}

}  // namespace corvinade::fit
