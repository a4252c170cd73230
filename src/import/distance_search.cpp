// The search of distances: a few rows by a plain scan, many rows by an index of the target distances.
#include "import/distance_search.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>

#include "fit/any_vectors.h"
#include "fit/require.h"

namespace corvinade::import {

namespace {

constexpr double kNothing = 1e10;  // where both searches begin: what lies farther off is not found
constexpr std::int64_t kNoRow = -1;
constexpr double kEndless = std::numeric_limits<double>::infinity();

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
ON_ANY_VECTORS void DistancesToRest(const double* x, const double* y, const double* z, std::size_t count,
                                    double* out) {
    for (std::size_t j = 0; j < count; ++j) {
        const double dx = x[0] - x[j + 1], dy = y[0] - y[j + 1], dz = z[0] - z[j + 1];
        out[j] = std::sqrt(dx * dx + dy * dy + dz * dz);
    }
}

// --- By scan ----------------------------------------------------------------------------------------------

using Lanes = double __attribute__((vector_size(64)));
constexpr std::size_t kLanes = 8;

// The smallest |value - distance| below 1e10, or 1e10. A minimum is the same in any order.
ON_ANY_VECTORS double SmallestDifference(const double* distance, std::size_t count, double value) {
    Lanes least = Lanes{} + kNothing, least2 = least;
    std::size_t i = 0;
    for (; i + 2 * kLanes <= count; i += 2 * kLanes) {
        Lanes a, b;
        std::memcpy(&a, distance + i, sizeof a);
        std::memcpy(&b, distance + i + kLanes, sizeof b);
        a = value - a;
        b = value - b;
        a = a < 0 ? -a : a;
        b = b < 0 ? -b : b;
        least = a < least ? a : least;
        least2 = b < least2 ? b : least2;
    }
    least = least2 < least ? least2 : least;
    double smallest = kNothing;
    for (std::size_t lane = 0; lane < kLanes; ++lane) smallest = std::min(smallest, least[lane]);
    for (; i < count; ++i) {
        const double d = std::fabs(value - distance[i]);
        if (d < smallest) smallest = d;
    }
    return smallest;
}

// The nearest distance among rows `begin` to `end` - 1, the lowest row of several, if it is nearer than
// `nearest` is. Block by block, so that the row is looked for in one block alone.
void ScanRows(std::span<const double> target, std::size_t begin, std::size_t end, double value,
              Nearest& nearest) {
    constexpr std::size_t kBlock = 1024;
    double least = std::fabs(nearest.Difference);
    std::size_t place = end;
    for (std::size_t i = begin; i < end; i += kBlock) {
        const double smallest = SmallestDifference(target.data() + i, std::min(kBlock, end - i), value);
        if (!(smallest < least)) continue;
        least = smallest;
        place = i;
    }
    if (place == end) return;
    while (std::fabs(value - target[place]) != least) ++place;
    nearest = {static_cast<std::int64_t>(place), value - target[place]};
}

// The candidate of a start distance by the two searches, one after the other.
bool ScanForCandidate(std::span<const double> target, double value, float etta,
                      DistanceCandidate& candidate) {
    Nearest match;
    ScanRows(target, 0, target.size(), value, match);
    if (match.Row == kNoRow || !Below(match.Difference, etta)) return false;
    const auto row = static_cast<std::size_t>(match.Row);
    Nearest neighbour;
    ScanRows(target, 0, row, target[row], neighbour);
    ScanRows(target, row + 1, target.size(), target[row], neighbour);
    if (!Above(neighbour.Difference, etta)) return false;
    candidate.TargetRow = match.Row;
    candidate.Best1 = match.Difference;
    candidate.Best2 = neighbour.Difference;
    return true;
}

// --- By index ---------------------------------------------------------------------------------------------

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

// The finite target distances in buckets of ascending lengths. A bucket is sorted when it is first looked
// into: most searches end long before they have seen them all.
class DistanceIndex {
public:
    explicit DistanceIndex(std::span<const double> target) {
        const std::size_t buckets = target.size() / 2 + 1;
        perMm_ = static_cast<double>(buckets) / UsualLength(target);
        start_.resize(buckets + 2);
        sorted_.resize(buckets);
        for (const double distance : target)
            if (IsFinite(distance)) ++start_[BucketOf(distance) + 2];
        for (std::size_t b = 1; b < start_.size(); ++b) start_[b] += start_[b - 1];
        value_.resize(start_.back());
        // The start of the next bucket counts up while this one is filled, and ends at its own place.
        for (const double distance : target)
            if (IsFinite(distance)) value_[start_[BucketOf(distance) + 1]++] = distance;
    }

    // Can the row of this start distance be a candidate? It is one unless several distances are equally
    // near, which the rows decide.
    bool MayBeCandidate(double value, float etta) {
        if (value_.empty() || !IsFinite(value)) return false;
        const std::size_t bucket = BucketOf(value);
        Sort(bucket);
        const auto begin = value_.begin();
        const auto next = static_cast<std::size_t>(
            std::lower_bound(begin + start_[bucket], begin + start_[bucket + 1], value) - begin);
        const double left = std::fabs(value - At(next - 1)), right = std::fabs(value - At(next));
        const double own = std::min(left, right);
        if (!(own < kNothing) || !Below(own, etta)) return false;
        return (left <= right && IsClear(next - 1, etta)) || (right <= left && IsClear(next, etta));
    }

private:
    std::size_t BucketOf(double distance) const {
        const double bucket = distance * perMm_;
        const std::size_t last = sorted_.size() - 1;
        return bucket < static_cast<double>(last) ? static_cast<std::size_t>(std::max(bucket, 0.0)) : last;
    }

    // Are the neighbours of a place farther off than the tolerance?
    bool IsClear(std::size_t place, float etta) {
        const double gap = std::min(At(place) - At(place - 1), At(place + 1) - At(place));
        return Above(std::min(gap, kNothing), etta);
    }

    // The distance at a place of the whole order; endlessly far off outside of it.
    double At(std::size_t place) {
        if (place >= value_.size())  // also one before the first
            return place == value_.size() ? kEndless : -kEndless;
        // Which one stands there is known once its bucket is sorted; which bucket that is does not change.
        Sort(BucketOf(value_[place]));
        return value_[place];
    }

    void Sort(std::size_t bucket) {
        if (sorted_[bucket] != 0) return;
        sorted_[bucket] = 1;
        std::sort(value_.begin() + start_[bucket], value_.begin() + start_[bucket + 1]);
    }

    double perMm_ = 0;
    std::vector<std::uint32_t> start_;  // place of the first value of each bucket, and the end
    std::vector<double> value_;         // bucket by bucket
    std::vector<std::uint8_t> sorted_;  // 1 once a bucket is
};

}  // namespace

std::vector<DistanceCandidate> SearchDistances(std::span<const double> start, std::span<const double> target,
                                               float etta, const DistanceRowCall& beforeRow) {
    Require(target.size() < std::numeric_limits<std::uint32_t>::max());
    std::vector<DistanceCandidate> found;
    // No difference is below a tolerance of 0, and none above one of 1e10, where both searches begin.
    if (!(etta > 0 && etta < static_cast<float>(kNothing)) || target.empty()) return found;

    // Measured data often give enough candidates at once; only after these rows an index pays.
    constexpr std::int64_t kScannedRows = 12;
    std::optional<DistanceIndex> index;
    const auto rows = static_cast<std::int64_t>(start.size());
    for (std::int64_t row = 0; row < rows; ++row) {
        if (beforeRow && !beforeRow(row, static_cast<int>(found.size()))) break;
        const double value = start[static_cast<std::size_t>(row)];
        if (row >= kScannedRows) {
            if (!index) index.emplace(target);
            if (!index->MayBeCandidate(value, etta)) continue;
        }
        DistanceCandidate candidate;
        if (!ScanForCandidate(target, value, etta, candidate)) continue;
        candidate.StartRow = row;
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

}  // namespace corvinade::import
