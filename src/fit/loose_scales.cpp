// Scales and angles of the frame that only noise determines.
#include "fit/loose_scales.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "fit/normal_equations.h"
#include "fit/open_parameters.h"
#include "fit/principal_axes.h"
#include "fit/statistics.h"
#include "fit/tool_tips.h"

namespace corvinade::fit {

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

constexpr double kEpsilon = 2.220446049250313e-16;

// One scale of all axes depends on the plane of the points no more than they do, but tips all but at one
// place leave it to noise.
bool IsOfFrame(int parameter, FitMode mode) {
    if (parameter == kScaleXYZ) return mode == FitMode::Tool;
    return parameter >= kScaleX && parameter <= kAngleZtoXY;
}

// Whole pairs, without gross errors where they are to stand aside.
struct WholePairs {
    std::vector<int> List;  // from 0
    double Noise = 0;       // of a coordinate, mm

    // Of the tips of the poses where the model is that of the tool.
    WholePairs(const GatheredPoints& points, const JudgedResult& result) {
        const Linearisation& at = result.At;
        const int unknowns = result.Model.Unknowns;
        constexpr double kGross = 20;
        std::vector<double> deviations;
        double largest = 0;
        for (int i = 0; i < points.Count; ++i) {
            if (!result.Used(i, 1) || !result.Used(i, 2) || !result.Used(i, 3)) continue;
            double squares = 0;
            for (int axis = 1; axis <= 3; ++axis) {
                const double target = points.Target[At(axis - 1)][At(i)];
                double off = at.Shift(axis) - target;
                for (int j = 1; j <= 3; ++j) off += at.M(axis, j) * points.Start[At(j - 1)][At(i)];
                squares += off * off;
                largest = std::max(largest, std::fabs(target) + std::fabs(points.TargetCentre(axis)));
            }
            List.push_back(i);
            deviations.push_back(std::sqrt(squares));
        }
        if (List.empty()) return;
        const double most = result.Robust
                                ? kGross * MiddleDeviation(deviations, unknowns) + kEpsilon * largest
                                : std::numeric_limits<double>::infinity();
        double squares = 0;
        std::size_t kept = 0;
        for (std::size_t k = 0; k < List.size(); ++k) {
            if (!(deviations[k] <= most)) continue;
            squares += deviations[k] * deviations[k];
            List[kept++] = List[k];
        }
        List.resize(kept);
        const double redundancy = 3.0 * static_cast<double>(kept) - unknowns;
        Noise = redundancy > 0 ? std::sqrt(squares / redundancy) : 0;
        Noise = std::max(Noise, 8 * kEpsilon * largest);
    }
};

// Standard deviations of a set of so many points along its axes, mm, the least last.
Vec3 ReliefOf(const PrincipalAxes& axes, std::size_t points) {
    Vec3 relief;
    for (int k = 1; k <= 3; ++k) relief(k) = std::sqrt(axes.Squares(k) / static_cast<double>(points));
    return relief;
}

// What would be open if the start points had no relief at all along their flat directions. Of the least
// relief the normal equations hold no digits.
//   flat  a direction is, whose share of the longest is no more
std::array<bool, kParameterEnd> OpenWithoutRelief(GatheredPoints points, const JudgedResult& result,
                                                  const PrincipalAxes& axes, double flat) {
    for (int i = 0; i < points.Count; ++i)
        for (int way = 2; way <= 3; ++way) {
            if (axes.Squares(way) > flat * flat * axes.Squares(1)) continue;
            double off = 0;
            for (int k = 1; k <= 3; ++k)
                off += axes.Axes(k, way) * (points.Start[At(k - 1)][At(i)] - axes.Middle(k));
            for (int k = 1; k <= 3; ++k) points.Start[At(k - 1)][At(i)] -= off * axes.Axes(k, way);
        }
    OpenParameters left = FindOpenParameters(points, result.Model, result.InUse, result.Values, result.At);
    left.Open[kAzimuth] = left.Open[kAzimuth] && !left.AzimuthWithoutEffect;
    return left.Open;
}

double SizeOf(const Vec3& relief) {
    return std::hypot(relief(1), relief(2), relief(3));
}

// Fastens what the poses leave open of the tool vector: its part along directions of the flange, and the
// parts that are told as open.
void HoldTool(const JudgedResult& result, const std::array<bool, kParameterEnd>& open, double weight,
              Matrix& N) {
    const FitModel& model = result.Model;
    for (int j = 1; j <= 3; ++j) {
        const int row = model.UnknownOf[At(kRvecX + j - 1)];
        if (open[At(kRvecX + j - 1)]) N(row, row) += weight;
        for (int k = 1; k <= 3; ++k)
            for (const Vec3& w : result.Still)
                N(row, model.UnknownOf[At(kRvecX + k - 1)]) += weight * w(j) * w(k);
    }
}

// The diagonal of the inverse of the normal matrix with equal weights, by unknown; of some of the pairs where
// these are many.
Column Cofactors(const GatheredPoints& points, const JudgedResult& result, const std::vector<int>& pairs,
                 const std::array<bool, kParameterEnd>& open) {
    const FitModel& model = result.Model;
    const Linearisation& at = result.At;
    constexpr std::size_t kSample = 2000;
    const std::size_t step = std::max<std::size_t>(1, pairs.size() / kSample);
    const int u = model.Unknowns;
    // Of a lean of next to nothing the direction is anything: the lean alone counts.
    const int without = model.UnknownOf[kAzimuth];
    const bool tool = model.Mode == FitMode::Tool && model.ToolFloats;
    Matrix N(u, u), Q(u, u);
    Column w(At(u) + 1), x(At(u) + 1), row(At(u) + 1), cofactors(At(u) + 1);
    for (std::size_t k = 0; k < pairs.size(); k += step)
        for (int axis = 1; axis <= 3; ++axis) {
            std::fill(row.begin(), row.end(), 0);
            if (const int unknown = model.UnknownOf[At(kTraX + axis - 1)]; unknown != 0) row[At(unknown)] = 1;
            for (int inner = 0; inner < at.InnerCount; ++inner) {
                const InnerDerivative& derivative = at.Inner[At(inner)];
                if (derivative.Unknown == without) continue;
                double value = at.Held(derivative, axis);
                for (int j = 1; j <= 3; ++j)
                    value += derivative.D(axis, j) * points.Start[At(j - 1)][At(pairs[k])];
                row[At(derivative.Unknown)] = value;
            }
            for (int j = 1; j <= 3 && tool; ++j)
                row[At(model.UnknownOf[At(kRvecX + j - 1)])] =
                    points.Pose[At(3 * (axis - 1) + j - 1)][At(pairs[k])];
            for (int i = 1; i <= u; ++i)
                for (int j = 1; j <= u; ++j) N(i, j) += row[At(i)] * row[At(j)] * static_cast<double>(step);
        }
    if (without != 0) N(without, without) = 1;
    if (tool) HoldTool(result, open, static_cast<double>(pairs.size()), N);
    SolveNormalEquations(N, w, u, Q, x);
    for (int i = 1; i <= u; ++i) cofactors[At(i)] = Q(i, i);
    return cofactors;
}

}  // namespace

bool LooseScales::Any() const {
    return std::find(Of.begin(), Of.end(), true) != Of.end();
}

LooseScales FindLooseScales(const JudgedResult& result, const std::array<bool, kParameterEnd>& open) {
    constexpr double kLoose = 0.1, kLooseIfThin = 0.005, kWorse = 100, kThin = 4, kFlat = 1e-6,
                     kRounding = 1e-11;
    const FitModel& model = result.Model;
    LooseScales loose;
    bool ofFrame = false;
    for (int k = kScaleX; k <= kAngleZtoXY; ++k)
        ofFrame = ofFrame || (IsOfFrame(k, model.Mode) && model.UnknownOf[At(k)] != 0);
    if (model.Mode == FitMode::Distance || !ofFrame) return loose;
    const GatheredPoints tips =
        model.Mode == FitMode::Tool ? AtTips(result.Points, result.At.Tool) : GatheredPoints{};
    const GatheredPoints& points = model.Mode == FitMode::Tool ? tips : result.Points;
    const WholePairs pairs(points, result);
    if (3 * static_cast<int>(pairs.List.size()) <= model.Unknowns) return loose;
    const PrincipalAxes axes = AxesOf(points.Start, pairs.List);
    const Vec3 start = ReliefOf(axes, pairs.List.size()),
               target = ReliefOf(AxesOf(points.Target, pairs.List), pairs.List.size());
    const double scale = SizeOf(target) / SizeOf(start);
    if (!(scale > 0) || !std::isfinite(scale)) return loose;
    loose.Relief = std::fmin(start(3) * scale, target(3));
    loose.Noise = pairs.Noise;
    const bool thin = loose.Relief < kThin * loose.Noise;
    const bool flat = start(3) <= kFlat * start(1), rounded = start(3) <= kRounding * start(1);
    if (flat && (thin || rounded)) {
        const auto without = OpenWithoutRelief(points, result, axes, kFlat);
        for (int k = kScaleX; k <= kAngleZtoXY; ++k)
            loose.Of[At(k)] = without[At(k)] && IsOfFrame(k, model.Mode) && model.UnknownOf[At(k)] != 0;
    }
    if (rounded) return loose;
    const Column cofactors = Cofactors(points, result, pairs.List, open);
    std::array<double, kParameterEnd> sigma{};
    double best = std::numeric_limits<double>::infinity();
    for (int k = kScaleX; k <= kAngleZtoXY; ++k) {
        const int unknown = model.UnknownOf[At(k)];
        if (!IsOfFrame(k, model.Mode) || unknown == 0 || k == kAzimuth) continue;
        const double one = KindOf(k) == ParameterKind::Scale ? scale : 1;
        sigma[At(k)] = loose.Noise * std::sqrt(std::fabs(cofactors[At(unknown)])) / one;
        best = std::fmin(best, sigma[At(k)]);
    }
    for (int k = kScaleX; k <= kAngleZtoXY; ++k)
        loose.Of[At(k)] = loose.Of[At(k)] || sigma[At(k)] > kLoose ||
                          (thin && k != kScaleXYZ && sigma[At(k)] > 0 &&
                           (sigma[At(k)] > kLooseIfThin || sigma[At(k)] > kWorse * best));
    loose.Of[kAzimuth] = loose.Of[kAzimuth] || (loose.Of[kAngleZtoXY] && model.UnknownOf[kAzimuth] != 0);
    return loose;
}

}  // namespace corvinade::fit
