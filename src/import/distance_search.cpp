// The search of distances: a few rows by a plain scan, many rows by an index of the target distances.
#include "import/distance_search.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>

#include "core/require.h"

#if defined(__x86_64__) && !defined(CORVINADE_NO_CLONES)
#define CORVINADE_HOT __attribute__((target_clones("avx512f", "avx2", "default")))
#else
#define CORVINADE_HOT
#endif

namespace {

constexpr double kNothing = 1e10;  // where both searches begin: what lies farther off is not found
constexpr std::int64_t kNoRow = -1;

struct Nearest {
    std::int64_t Row = kNoRow;
    double Difference = kNothing;
};

bool Below(double difference, float etta) {
    return static_cast<float>(std::fabs(difference)) < etta;
}
bool Above(double difference, float etta) {
    return static_cast<float>(std::fabs(difference)) > etta;
}

// Distances of a point to those behind it.
CORVINADE_HOT void DistancesToRest(const double* x, const double* y, const double* z, std::size_t count,
                                   double* out) {
    for (std::size_t j = 0; j < count; ++j) {
        const double dx = x[0] - x[j + 1], dy = y[0] - y[j + 1], dz = z[0] - z[j + 1];
        out[j] = std::sqrt(dx * dx + dy * dy + dz * dz);
    }
}

// --- By scan -------------------------------------------------------------------------------------------

// The smallest |value - distance| below 1e10, or 1e10. A minimum is the same in any order.
CORVINADE_HOT double SmallestDifference(const double* distance, std::size_t count, double value) {
    using Lanes = double __attribute__((vector_size(64)));
    constexpr std::size_t kLanes = 8;
    Lanes least = Lanes{} + kNothing;
    std::size_t i = 0;
    for (; i + kLanes <= count; i += kLanes) {
        Lanes d;
        std::memcpy(&d, distance + i, sizeof d);
        d = value - d;
        d = d < 0 ? -d : d;
        least = d < least ? d : least;
    }
    double smallest = kNothing;
    for (std::size_t lane = 0; lane < kLanes; ++lane) smallest = std::min(smallest, least[lane]);
    for (; i < count; ++i) {
        const double d = std::fabs(value - distance[i]);
        if (d < smallest) smallest = d;
    }
    return smallest;
}

// The lowest row at which `smallest` is reached, other than `without`.
Nearest FirstAt(std::span<const double> distance, double value, double smallest, std::int64_t without) {
    if (!(smallest < kNothing)) return {};
    for (std::size_t i = 0; i < distance.size(); ++i)
        if (std::fabs(value - distance[i]) == smallest && static_cast<std::int64_t>(i) != without)
            return {static_cast<std::int64_t>(i), value - distance[i]};
    return {};
}

Nearest ScanNearest(std::span<const double> target, double value) {
    return FirstAt(target, value, SmallestDifference(target.data(), target.size(), value), kNoRow);
}

Nearest ScanNeighbour(std::span<const double> target, std::int64_t row) {
    const auto place = static_cast<std::size_t>(row);
    const double value = target[place];
    const double before = SmallestDifference(target.data(), place, value);
    const double behind = SmallestDifference(target.data() + place + 1, target.size() - place - 1, value);
    return FirstAt(target, value, std::min(before, behind), row);
}

// --- By index ------------------------------------------------------------------------------------------

struct Entry {
    double Distance = 0;
    std::uint32_t Row = 0;  // the lowest one of this distance
    bool Repeated = false;  // further rows have the same distance
};

// A table of buckets over ascending values that leads to the right place with hardly a search.
struct Buckets {
    std::vector<std::uint32_t> Start;  // place of the first value of each bucket; one more at the end
    double PerMm = 0;

    Buckets(std::size_t count, double length)
        : Start(count + 1), PerMm(static_cast<double>(count) / length) {}
    std::size_t Of(double distance) const {
        const double bucket = distance * PerMm;
        const auto last = static_cast<double>(Start.size() - 2);
        return bucket < last ? static_cast<std::size_t>(std::max(bucket, 0.0)) : Start.size() - 2;
    }
    void StartsFromCounts() {  // Start[b + 1] held the number of values in bucket b
        for (std::size_t b = 1; b < Start.size(); ++b) Start[b] += Start[b - 1];
    }
};

bool IsFinite(double distance) {
    return distance < std::numeric_limits<double>::infinity();  // no distance is negative
}

// A length that nearly all distances stay below, so that a few far points do not squeeze all others into
// one bucket.
double UsualLength(std::span<const double> target) {
    std::vector<double> sample;
    const std::size_t step = target.size() / 1024 + 1;
    for (std::size_t i = 0; i < target.size(); i += step)
        if (IsFinite(target[i])) sample.push_back(target[i]);
    if (sample.empty()) return 1;
    const auto high = sample.end() - 1 - static_cast<std::ptrdiff_t>(sample.size() / 50);
    std::nth_element(sample.begin(), high, sample.end());
    return std::clamp(*high * 1.05, 1e-200, 1e200);
}

// The finite distances in ascending order, each once.
std::vector<Entry> SortedDistances(std::span<const double> target) {
    Buckets buckets(target.size() / 2 + 1, UsualLength(target));
    std::vector<std::uint32_t> bucketOf(target.size());
    for (std::size_t i = 0; i < target.size(); ++i) {
        bucketOf[i] = static_cast<std::uint32_t>(IsFinite(target[i]) ? buckets.Of(target[i]) : 0);
        if (IsFinite(target[i])) ++buckets.Start[bucketOf[i] + 1];
    }
    buckets.StartsFromCounts();
    std::vector<Entry> sorted(buckets.Start.back());
    // In the order of the rows, so that a bucket's level distances have theirs; each start moves on to
    // that of the next bucket.
    for (std::size_t i = 0; i < target.size(); ++i)
        if (IsFinite(target[i]))
            sorted[buckets.Start[bucketOf[i]]++] = {target[i], static_cast<std::uint32_t>(i), false};
    const auto before = [](const Entry& a, const Entry& b) {
        return a.Distance != b.Distance ? a.Distance < b.Distance : a.Row < b.Row;
    };
    std::size_t begin = 0, kept = 0;
    for (std::size_t b = 0; b + 1 < buckets.Start.size(); ++b) {
        const std::size_t end = buckets.Start[b];
        if (end - begin > 1)
            std::sort(sorted.begin() + static_cast<std::ptrdiff_t>(begin),
                      sorted.begin() + static_cast<std::ptrdiff_t>(end), before);
        for (; begin < end; ++begin) {
            if (kept > 0 && sorted[kept - 1].Distance == sorted[begin].Distance) {
                sorted[kept - 1].Repeated = true;
            } else {
                sorted[kept++] = sorted[begin];
            }
        }
    }
    sorted.resize(kept);
    return sorted;
}

// Among the entries from `from` on, `step` by `step`, those that are as near to `value` as the first one:
// rounding can make several distances equally near. The one of the lowest row, or `best` if that is nearer
// or has a lower one still.
void TakeNearest(const std::vector<Entry>& sorted, double value, std::size_t from, int step, Nearest& best) {
    const auto end = step < 0 ? std::size_t{0} - 1 : sorted.size();
    for (std::size_t i = from; i != end; i += static_cast<std::size_t>(step)) {
        const double difference = value - sorted[i].Distance;
        const double size = std::fabs(difference), bestSize = std::fabs(best.Difference);
        if (size > bestSize) break;
        const auto row = static_cast<std::int64_t>(sorted[i].Row);
        if (size < bestSize || (best.Row != kNoRow && row < best.Row)) best = {row, difference};
    }
}

// Only a target distance whose neighbours are farther off than the tolerance can make a candidate, and in
// a dense table there are few of them. So these alone are looked through for each start row.
class ClearDistances {
public:
    ClearDistances(std::span<const double> target, float etta)
        : etta_(etta), sorted_(SortedDistances(target)), buckets_(1, 1) {
        for (std::size_t k = 0; k < sorted_.size(); ++k)
            if (!sorted_[k].Repeated && Above(Neighbour(k).Difference, etta)) {
                clear_.push_back(sorted_[k].Distance);
                place_.push_back(static_cast<std::uint32_t>(k));
            }
        if (clear_.empty()) return;
        buckets_ = Buckets(2 * clear_.size(), std::max(UsualLength(clear_), 1e-200));
        for (const double distance : clear_) ++buckets_.Start[buckets_.Of(distance) + 1];
        buckets_.StartsFromCounts();
    }

    // The candidate of a start distance, if there is one.
    bool Find(double value, DistanceCandidate& candidate) const {
        if (clear_.empty() || !IsFinite(value)) return false;
        const std::size_t bucket = buckets_.Of(value);
        const auto begin = clear_.begin() + buckets_.Start[bucket];
        const auto end = clear_.begin() + buckets_.Start[bucket + 1];
        const auto next = static_cast<std::size_t>(std::lower_bound(begin, end, value) - clear_.begin());
        const bool left = next > 0 && IsNear(value - clear_[next - 1]);
        const bool right = next < clear_.size() && IsNear(value - clear_[next]);
        return (left && Check(value, place_[next - 1], candidate)) ||
               (right && Check(value, place_[next], candidate));
    }

private:
    bool IsNear(double difference) const {
        return std::fabs(difference) < kNothing && Below(difference, etta_);
    }

    Nearest Neighbour(std::size_t k) const {
        Nearest nearest;
        if (k > 0) TakeNearest(sorted_, sorted_[k].Distance, k - 1, -1, nearest);
        if (k + 1 < sorted_.size()) TakeNearest(sorted_, sorted_[k].Distance, k + 1, 1, nearest);
        return nearest;
    }

    // Is this one, which is clear and near enough, also the nearest of all?
    bool Check(double value, std::size_t k, DistanceCandidate& candidate) const {
        Nearest nearest;
        const std::size_t next = k + (sorted_[k].Distance < value ? 1 : 0);
        if (next > 0) TakeNearest(sorted_, value, next - 1, -1, nearest);
        if (next < sorted_.size()) TakeNearest(sorted_, value, next, 1, nearest);
        if (nearest.Row != static_cast<std::int64_t>(sorted_[k].Row)) return false;
        candidate.TargetRow = nearest.Row;
        candidate.Best1 = nearest.Difference;
        candidate.Best2 = Neighbour(k).Difference;
        return true;
    }

    float etta_;
    std::vector<Entry> sorted_;
    std::vector<double> clear_;         // ascending
    std::vector<std::uint32_t> place_;  // of a clear distance in sorted_
    Buckets buckets_;                   // over the clear ones
};

}  // namespace

std::vector<DistanceCandidate> SearchDistances(std::span<const double> start, std::span<const double> target,
                                               float etta, const DistanceRowCall& beforeRow) {
    Require(target.size() < std::numeric_limits<std::uint32_t>::max());
    std::vector<DistanceCandidate> found;
    // No difference is below a tolerance of 0, and none above one of 1e10, where both searches begin.
    if (!(etta > 0 && etta < static_cast<float>(kNothing)) || target.empty()) return found;

    // Measured data often give enough candidates at once; only after these rows an index pays.
    constexpr std::int64_t kScannedRows = 6;
    std::optional<ClearDistances> index;
    const auto rows = static_cast<std::int64_t>(start.size());
    for (std::int64_t row = 0; row < rows; ++row) {
        if (beforeRow && !beforeRow(row, static_cast<int>(found.size()))) break;
        const double value = start[static_cast<std::size_t>(row)];
        DistanceCandidate candidate;
        if (row < kScannedRows) {
            const Nearest match = ScanNearest(target, value);
            if (match.Row == kNoRow || !Below(match.Difference, etta)) continue;
            const Nearest neighbour = ScanNeighbour(target, match.Row);
            if (!Above(neighbour.Difference, etta)) continue;
            candidate = {row, match.Row, match.Difference, neighbour.Difference};
        } else {
            if (!index) index.emplace(target, etta);
            if (!index->Find(value, candidate)) continue;
            candidate.StartRow = row;
        }
        found.push_back(candidate);
        if (found.size() > kEnoughCandidates) break;
    }
    return found;
}

std::vector<double> DistancesOfPairs(std::span<const double> x, std::span<const double> y,
                                     std::span<const double> z, std::int64_t count) {
    std::vector<double> distances(static_cast<std::size_t>(count * (count - 1) / 2));
    double* out = distances.data();
    for (std::int64_t i = 1; i <= count; ++i) {
        DistancesToRest(x.data() + i, y.data() + i, z.data() + i, static_cast<std::size_t>(count - i), out);
        out += count - i;
    }
    return distances;
}

PointPair PairOfRow(std::int64_t row, std::int64_t count) {
    // Point i begins (i - 1) count - i (i - 1) / 2 rows behind the start.
    const auto begin = [count](std::int64_t i) { return (i - 1) * count - i * (i - 1) / 2; };
    std::int64_t low = 1, high = count;
    while (high - low > 1) {
        const std::int64_t middle = (low + high) / 2;
        (begin(middle) <= row ? low : high) = middle;
    }
    return {low, low + 1 + row - begin(low)};
}
