// Distances between all pairs of identical points in the two systems.
#include "analysis/distance_pairs.h"

#include <algorithm>
#include <cmath>
#include <span>

#include "core/job.h"
#include "core/run.h"
#include "fit/any_vectors.h"
#include "fit/require.h"

namespace corvinade::analysis {

namespace {

constexpr double kEps = 1e-10;  // mm, keeps the scale of points that coincide a number

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

int PairsOfJob() {
    return IsTrue(Run.JobDataValid) ? Job.Pairs() : 0;
}

ON_ANY_VECTORS void Distances(const double* x, const double* y, const double* z, double px, double py,
                              double pz, std::size_t count, double* out) {
    for (std::size_t j = 0; j < count; ++j) {
        const double dx = px - x[j], dy = py - y[j], dz = pz - z[j];
        out[j] = std::sqrt(dx * dx + dy * dy + dz * dz);
    }
}

void DistancesIn(const std::array<std::vector<double>, 3>& p, int i, int first, double* out) {
    const std::size_t begin = At(first), count = p[0].size() - begin;
    Distances(p[0].data() + begin, p[1].data() + begin, p[2].data() + begin, p[0][At(i)], p[1][At(i)],
              p[2][At(i)], count, out);
}

// Takes the pairs with the points `first`, `first` + 1, ... into the extremes of a point. Every value is
// rounded to 32 bits where it is kept, so that one equal to the present extreme does not take its place.
void TakePairs(DistanceExtremes& row, int first, std::span<const double> from, std::span<const double> to) {
    for (std::size_t k = 0; k < from.size(); ++k) {
        const double scale = to[k] / (from[k] + kEps), delta = to[k] - from[k];
        const auto scale32 = static_cast<float>(scale), delta32 = static_cast<float>(delta);
        const int partner = first + static_cast<int>(k);
        if (delta32 > row.MaxDelta) row.MaxDelta = delta32, row.MaxDeltaAt = partner;
        if (delta32 < row.MinDelta) row.MinDelta = delta32, row.MinDeltaAt = partner;
        if (scale32 > row.MaxScale) row.MaxScale = scale32, row.MaxScaleAt = partner;
        if (scale32 < row.MinScale) row.MinScale = scale32, row.MinScaleAt = partner;
        row.SumAbs = static_cast<float>(row.SumAbs + std::fabs(delta));
        row.SumScale = static_cast<float>(row.SumScale + scale);
    }
}

}  // namespace

DistancePoints TakeDistancePoints(bool transformed) {
    DistancePoints points;
    const int count = PairsOfJob();
    points.Names.assign(Job.Start.Name.begin(), Job.Start.Name.begin() + (count + 1));
    for (auto* side : {&points.From, &points.To})
        for (std::vector<double>& column : *side) column.assign(At(count) + 1, 0.0);
    for (int i = 1; i <= count; ++i) {
        const std::size_t k = At(i);
        const Vec3 start = transformed ? TransformedPoint(i) : StartPoint(i), target = TargetPoint(i);
        for (int axis = 1; axis <= 3; ++axis) {
            points.From[At(axis) - 1][k] = start(axis);
            points.To[At(axis) - 1][k] = target(axis);
        }
    }
    return points;
}

TrumpetPair PairOfPoints(const DistancePoints& points, int i, int j) {
    Require(i >= 1 && j >= 1 && i <= points.Count() && j <= points.Count() && i != j);
    const auto distance = [i, j](const std::array<std::vector<double>, 3>& p) {
        double d = 0;
        Distances(&p[0][At(j)], &p[1][At(j)], &p[2][At(j)], p[0][At(i)], p[1][At(i)], p[2][At(i)], 1, &d);
        return d;
    };
    const double from = distance(points.From), to = distance(points.To);
    return {static_cast<float>(from), static_cast<float>(to), static_cast<float>(to - from)};
}

void DistancesOfPoint(const DistancePoints& points, int i, int first, double* from, double* to) {
    Require(i >= 1 && i <= points.Count() && first >= 1);
    if (first > points.Count()) return;
    DistancesIn(points.From, i, first, from);
    DistancesIn(points.To, i, first, to);
}

bool MeasurePoints(const DistancePoints& points, std::vector<DistanceExtremes>& rows,
                   const WorkGoesOn& goOn) {
    const int n = points.Count();
    rows.assign(At(n) + 1, {});
    std::vector<double> from(At(n)), to(At(n));
    const std::span<const double> s1 = from, s2 = to;
    for (int i = 1; i <= n; ++i) {
        if (goOn && !goOn(static_cast<double>(i - 1) / n)) return false;
        DistancesOfPoint(points, i, 1, from.data(), to.data());
        // The pair of the point with itself is left out.
        TakePairs(rows[At(i)], 1, s1.first(At(i) - 1), s2.first(At(i) - 1));
        TakePairs(rows[At(i)], i + 1, s1.subspan(At(i)), s2.subspan(At(i)));
    }
    return true;
}

bool RangeOfPairs(const DistancePoints& points, TrumpetRange& range, const WorkGoesOn& goOn) {
    const int n = points.Count();
    range = {};
    std::vector<double> from(At(n)), to(At(n));
    for (int i = 1; i < n; ++i) {
        // Behind point i lie n - i pairs.
        const double share =
            1 - static_cast<double>(n - i + 1) * (n - i) / (static_cast<double>(n) * (n - 1));
        if (goOn && !goOn(share)) return false;
        DistancesOfPoint(points, i, i + 1, from.data(), to.data());
        for (std::size_t k = 0; k < At(n - i); ++k) {
            const auto x = static_cast<float>(to[k]), y = static_cast<float>(to[k] - from[k]);
            if (!std::isfinite(x) || !std::isfinite(y)) continue;
            if (range.Pairs++ == 0) range.YMin = range.YMax = y;
            range.XMax = std::max(range.XMax, x);
            range.YMin = std::min(range.YMin, y);
            range.YMax = std::max(range.YMax, y);
        }
    }
    return true;
}

}  // namespace corvinade::analysis
