// What a shape holds of the parameters of a fit to it.
#include "fit/held_directions.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "fit/angles.h"
#include "fit/design.h"
#include "fit/shape.h"

namespace corvinade::fit {

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

using Square = std::vector<std::vector<double>>;

// Jacobi's rotations: `a`, symmetric, becomes diagonal, and the columns of `v` its eigenvectors.
void Diagonalise(Square& a, Square& v) {
    constexpr int kMostSweeps = 60;
    const std::size_t n = a.size();
    v.assign(n, std::vector<double>(n));
    for (std::size_t i = 0; i < n; ++i) v[i][i] = 1;
    for (int sweep = 0; sweep < kMostSweeps; ++sweep) {
        bool rotated = false;
        for (std::size_t p = 0; p + 1 < n; ++p)
            for (std::size_t q = p + 1; q < n; ++q) {
                constexpr double kNothing = 1e-18;
                if (!(std::fabs(a[p][q]) > kNothing * std::sqrt(std::fabs(a[p][p] * a[q][q])))) continue;
                rotated = true;
                const double theta = (a[q][q] - a[p][p]) / (2 * a[p][q]);
                const double t = std::copysign(1, theta) / (std::fabs(theta) + std::hypot(theta, 1));
                const double c = 1 / std::hypot(t, 1), s = t * c;
                for (std::size_t k = 0; k < n; ++k) {
                    const double kp = a[k][p], kq = a[k][q];
                    a[k][p] = c * kp - s * kq;
                    a[k][q] = s * kp + c * kq;
                }
                for (std::size_t k = 0; k < n; ++k) {
                    const double pk = a[p][k], qk = a[q][k];
                    a[p][k] = c * pk - s * qk;
                    a[q][k] = s * pk + c * qk;
                    const double vp = v[k][p], vq = v[k][q];
                    v[k][p] = c * vp - s * vq;
                    v[k][q] = s * vp + c * vq;
                }
            }
        if (!rotated) return;
    }
}

// The sums over the points that the directions follow from.
struct Sums {
    Square Across, Whole;  // of squared ways along the normal, and of all
    double Squares = 0;    // of the distances, mm^2
    double Kinks = 0;      // of what the table leaves open of the normals, squared
    double Far = 0;        // largest coordinate, mm
    int Points = 0;
};

void AddPoint(const std::vector<Vec3>& ways, const ShapeFoot& foot, Sums& sums) {
    const Vec3& n = foot.Normal;
    std::vector<double> across(ways.size());
    for (std::size_t i = 0; i < ways.size(); ++i)
        across[i] = n(1) * ways[i](1) + n(2) * ways[i](2) + n(3) * ways[i](3);
    for (std::size_t i = 0; i < ways.size(); ++i)
        for (std::size_t j = 0; j < ways.size(); ++j) {
            sums.Across[i][j] += across[i] * across[j];
            sums.Whole[i][j] += ways[i](1) * ways[j](1) + ways[i](2) * ways[j](2) + ways[i](3) * ways[j](3);
        }
    sums.Squares += foot.Distance * foot.Distance;
    // A circle's chords: an eighth of the kink squared is the order of what even turning leaves.
    const double left = foot.Kink * foot.Kink / 8;
    sums.Kinks += left * left;
    ++sums.Points;
}

Sums SumsOf(ShapeRun& run, const FloatingParameters& floating) {
    const GatheredPoints& points = run.Points;
    const Linearisation at = Linearise(run.Model, run.Now, points, run.Chain);
    const std::size_t n = floating.Numbers.size();
    Sums sums{.Across = Square(n, std::vector<double>(n)), .Whole = Square(n, std::vector<double>(n))};
    for (std::size_t k = 0; k < At(points.Count); ++k) {
        if (!PointInUse(points, k)) continue;
        const Vec3 c = points.StartCentre;
        const Vec3 p(points.Start[0][k] + c(1), points.Start[1][k] + c(2), points.Start[2][k] + c(3));
        const Vec3 image = ImageOf(run, p);
        AddPoint(WaysOfPoint(run.Model, at, floating, p),
                 NearestShapeFoot(image(1), image(2), image(3), run.Shape), sums);
        for (int axis = 1; axis <= 3; ++axis)
            sums.Far = std::max({sums.Far, std::fabs(p(axis)), std::fabs(image(axis))});
    }
    return sums;
}

double Form(const Square& a, const ParameterPlace& x) {
    double sum = 0;
    for (std::size_t i = 0; i < x.size(); ++i)
        for (std::size_t j = 0; j < x.size(); ++j) sum += x[i] * a[i][j] * x[j];
    return sum;
}

bool AllFinite(const Square& a) {
    for (const auto& row : a)
        for (const double value : row)
            if (!std::isfinite(value)) return false;
    return true;
}

}  // namespace

std::vector<Vec3> WaysOfPoint(const FitModel& model, const Linearisation& at,
                              const FloatingParameters& floating, const Vec3& p) {
    std::vector<Vec3> ways(floating.Numbers.size());
    for (std::size_t i = 0; i < ways.size(); ++i) {
        const int parameter = floating.Numbers[i], unknown = model.UnknownOf[At(parameter)];
        if (parameter <= kTraZ) {
            ways[i](parameter) = 1;
            continue;
        }
        for (int k = 0; k < at.InnerCount; ++k) {
            const InnerDerivative& inner = at.Inner[At(k)];
            if (inner.Unknown != unknown) continue;
            for (int row = 1; row <= 3; ++row)
                ways[i](row) = (inner.D(row, 1) * p(1) + inner.D(row, 2) * p(2) + inner.D(row, 3) * p(3)) /
                               floating.Factor(parameter);
        }
    }
    return ways;
}

bool PointInUse(const GatheredPoints& points, std::size_t k) {
    return points.AllInUse || points.Weight[0][k] != 0 || points.Weight[1][k] != 0 ||
           points.Weight[2][k] != 0;
}

FloatingParameters::FloatingParameters(const ShapeRun& run) {
    for (int k = kTraX; k <= kAngleZtoXY; ++k)
        if (run.Model.UnknownOf[At(k)] != 0) Numbers.push_back(k);
    double largest = 0;
    for (const LaneArray& column : run.Points.Start)
        for (const double value : column) largest = std::max(largest, std::fabs(value));
    if (largest > 0) Size = largest;
}

ParameterPlace FloatingParameters::Take(const Parameters& from) const {
    ParameterPlace place;
    place.reserve(Numbers.size());
    for (const int k : Numbers) place.push_back(from[k] * Factor(k));
    return place;
}

void FloatingParameters::Put(const ParameterPlace& place, Parameters& into) const {
    for (std::size_t i = 0; i < Numbers.size(); ++i) {
        const int k = Numbers[i];
        into[k] = place[i] / Factor(k);
        if (k == kScaleXYZ) into[kScaleX] = into[kScaleY] = into[kScaleZ] = into[kScaleXYZ];
    }
}

ParameterPlace FloatingParameters::Moved(const ParameterPlace& from, const ParameterPlace& to) const {
    ParameterPlace moved(from.size());
    for (std::size_t i = 0; i < from.size(); ++i) {
        moved[i] = to[i] - from[i];
        if (KindOf(Numbers[i]) == ParameterKind::Angle)
            moved[i] = Size * std::remainder(moved[i] / Size, 2 * kPi);
    }
    return moved;
}

HeldDirections FindHeldDirections(ShapeRun& run, const FloatingParameters& floating, int without) {
    constexpr double kAlong = 1e-12;  // of the whole way, squared: what rounding makes of a normal
    constexpr double kEps = std::numeric_limits<double>::epsilon();
    Sums sums = SumsOf(run, floating);
    HeldDirections found;
    if (sums.Points == 0 || !AllFinite(sums.Across) || !AllFinite(sums.Whole)) return found;
    found.SumOfSquares = sums.Squares;
    found.Points = sums.Points;
    found.Rounding = 2 * std::sqrt(sums.Points * sums.Squares) * kEps * sums.Far +
                     sums.Points * kEps * sums.Far * kEps * sums.Far;
    std::vector<std::size_t> part;
    for (std::size_t i = 0; i < floating.Numbers.size(); ++i)
        if (floating.Numbers[i] != without) part.push_back(i);
    Square a(part.size(), std::vector<double>(part.size())), v;
    for (std::size_t i = 0; i < part.size(); ++i)
        for (std::size_t j = 0; j < part.size(); ++j) a[i][j] = sums.Across[part[i]][part[j]];
    Diagonalise(a, v);
    const double along = std::max(kAlong, sums.Kinks / sums.Points);
    const double variance = sums.Squares / sums.Points;
    for (std::size_t k = 0; k < part.size(); ++k) {
        ParameterPlace direction(floating.Numbers.size());
        for (std::size_t i = 0; i < part.size(); ++i) direction[part[i]] = v[i][k];
        const double across = Form(sums.Across, direction);
        const bool held =
            across > along * Form(sums.Whole, direction) && across * floating.Size * floating.Size > variance;
        if (held) {
            found.Held.push_back(std::move(direction));
            found.Weight.push_back(across);
        } else {
            found.Open.push_back(std::move(direction));
        }
    }
    return found;
}

namespace {

// Does a part of an open direction fall on the floating parameter in this place?
bool IsOpen(const HeldDirections& directions, std::size_t i) {
    constexpr double kPart = 0.1;
    return std::any_of(directions.Open.begin(), directions.Open.end(),
                       [i](const ParameterPlace& open) { return std::fabs(open[i]) > kPart; });
}

}  // namespace

std::vector<int> OpenOfShape(ShapeRun& run) {
    const FloatingParameters floating(run);
    const HeldDirections directions = FindHeldDirections(run, floating, 0);
    std::vector<int> parameters;
    for (std::size_t i = 0; i < floating.Numbers.size(); ++i)
        if (IsOpen(directions, i)) parameters.push_back(floating.Numbers[i]);
    return parameters;
}

std::vector<double> SigmasByDistances(ShapeRun& run) {
    const FloatingParameters floating(run);
    const HeldDirections directions = FindHeldDirections(run, floating, 0);
    const int spare = directions.Points - static_cast<int>(directions.Held.size());
    if (spare <= 0) return {};
    const double variance = directions.SumOfSquares / spare;
    std::vector<double> sigmas(At(kAngleZtoXY) + 1);
    for (std::size_t i = 0; i < floating.Numbers.size(); ++i) {
        double cofactor = 0;
        for (std::size_t k = 0; k < directions.Held.size(); ++k)
            cofactor += directions.Held[k][i] * directions.Held[k][i] / directions.Weight[k];
        const int parameter = floating.Numbers[i];
        sigmas[At(parameter)] = IsOpen(directions, i)
                                    ? std::numeric_limits<double>::quiet_NaN()
                                    : std::sqrt(variance * cofactor) / floating.Factor(parameter);
    }
    return sigmas;
}

}  // namespace corvinade::fit
