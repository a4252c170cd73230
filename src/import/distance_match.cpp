// Distances that both sets of points have, and the transformation that three of them give.
#include "import/distance_match.h"

#include <algorithm>
#include <cmath>

#include "core/numbers.h"
#include "fit/require.h"
#include "fit/seed.h"

namespace corvinade::import {

namespace {

// What the search holds in memory for each row of a table. The start table has its distances alone.
constexpr std::int64_t kMemoryLimit_bytes = std::int64_t{1} << 30;
constexpr std::int64_t kStartRow_bytes = 8, kTargetRow_bytes = 24;

constexpr std::int64_t RowsOf(std::int64_t points) {
    return points * (points - 1) / 2;
}

// Points 0 to count of a set as plain columns; point 0 is the origin.
struct Columns {
    std::vector<double> X, Y, Z;
};
Columns Gather(const PointSet& points, std::int64_t count) {
    Columns columns;
    for (std::size_t i = 0; i <= static_cast<std::size_t>(count); ++i) {
        columns.X.push_back(points.X[i].value_or(0));
        columns.Y.push_back(points.Y[i].value_or(0));
        columns.Z.push_back(points.Z[i]);
    }
    return columns;
}

struct Tables {
    std::vector<double> Start, Target;
};

Tables MakeTables(const PointSet& startSet, const PointSet& targetSet, std::int64_t targetPoints) {
    Tables tables;
    const Columns start = Gather(startSet, startSet.Count());
    const Columns target = Gather(targetSet, targetPoints);
    tables.Start = DistancesOfPairs(start.X, start.Y, start.Z, startSet.Count());
    tables.Target = DistancesOfPairs(target.X, target.Y, target.Z, targetPoints);
    // The rest of the target table holds zeros. They are searched like any distance, and the two lowest
    // rows of them decide all that more of them would.
    const std::int64_t zeros = RowsOf(targetSet.Count()) - RowsOf(targetPoints);
    tables.Target.insert(tables.Target.end(), static_cast<std::size_t>(std::min<std::int64_t>(zeros, 2)),
                         0.0);
    return tables;
}

std::string Refusal(std::int64_t points, std::int64_t row_bytes, const char* label) {
    if (RowsOf(points) <= kMemoryLimit_bytes / row_bytes) return "";
    std::int64_t most = points;
    while (RowsOf(most) > kMemoryLimit_bytes / row_bytes) most = most > 2 * 20000 ? most / 2 : most - 1;
    return "The table of the distances between all " + std::to_string(points) + " points of the " + label +
           " File does not fit into memory. Please use " + std::to_string(most) + " points at most.";
}

// The three candidates that stand clearest of all other distances; of equal ones the earlier.
std::vector<DistancePair> ChooseThree(const std::vector<DistancePair>& candidates) {
    if (candidates.size() == 3) return candidates;
    std::vector<DistancePair> chosen;
    std::vector<bool> used(candidates.size());
    for (int k = 1; k <= 3; ++k) {
        std::size_t best = candidates.size();
        double clearest = -1;
        for (std::size_t i = 0; i < candidates.size(); ++i) {
            const double clear = std::fabs(NumberFromText(candidates[i].NextNearest, "NextNearest"));
            if (used[i] || !(clear > clearest)) continue;
            best = i;
            clearest = clear;
        }
        used[best] = true;
        chosen.push_back(candidates[best]);
    }
    return chosen;
}

Vec3 Middle(const Vec3& a, const Vec3& b) {
    return {(a(1) + b(1)) / 2, (a(2) + b(2)) / 2, (a(3) + b(3)) / 2};
}

}  // namespace

std::string StartTableRefusal(std::int64_t points, const char* label) {
    return Refusal(points, kStartRow_bytes, label);
}
std::string TargetTableRefusal(std::int64_t points, const char* label) {
    return Refusal(points, kTargetRow_bytes, label);
}

std::vector<DistancePair> FindDistancePairs(const PointSet& start, const PointSet& target,
                                            std::int64_t targetPoints, float etta,
                                            const DistanceRowCall& beforeRow) {
    // The tables are made before anything is asked, which may replace the points.
    const std::int64_t startPoints = start.Count();
    const Tables tables = MakeTables(start, target, targetPoints);
    std::vector<DistancePair> pairs;
    for (const DistanceCandidate& match : SearchDistances(tables.Start, tables.Target, etta, beforeRow)) {
        DistancePair pair;
        pair.Start = PairOfRow(match.StartRow, startPoints);
        if (match.TargetRow < RowsOf(targetPoints))  // a row of zeros has points 0 and 0
            pair.Target = PairOfRow(match.TargetRow, targetPoints);
        pair.Difference = PlainText(match.Best1);
        pair.NextNearest = PlainText(match.Best2);
        pairs.push_back(pair);
    }
    return pairs;
}

DistanceSeeds SeedsOf(const std::vector<DistancePair>& pairs, const PointSet& start, const PointSet& target) {
    constexpr std::size_t kSeeds = 3;
    Require(pairs.size() >= kSeeds);
    const std::vector<DistancePair> chosen = ChooseThree(pairs);
    DistanceSeeds found;
    SeedPoints seeds;
    for (std::size_t k = 0; k < kSeeds; ++k) {
        const auto middle = [](const PointSet& points, const PointPair& ends) {
            return Middle(points.Point(static_cast<int>(ends.First)),
                          points.Point(static_cast<int>(ends.Second)));
        };
        found.Start[k] = middle(start, chosen[k].Start);
        found.Target[k] = middle(target, chosen[k].Target);
        seeds.Pair[k + 1] = static_cast<int>(k + 1);
        seeds.Start[k + 1] = found.Start[k];
        seeds.Target[k + 1] = found.Target[k];
    }
    seeds.Reference = ReferenceInFrame(seeds.Target);
    seeds.ScalesAreOne = true;
    RawSolution(seeds, found.Raw);
    return found;
}

}  // namespace corvinade::import
