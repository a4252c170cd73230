// Greedy pairing by distance with a tree over the target points that are still free.
#include "import/coordinate_pairs.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numeric>
#include <utility>

#include "fit/require.h"

namespace corvinade::import {

namespace {

constexpr double kInfinite = std::numeric_limits<double>::infinity();
constexpr std::int32_t kNone = std::numeric_limits<std::int32_t>::max();
constexpr std::size_t kLeafPoints = 8;

using Place = std::array<double, 3>;

// The distance whose rounding every comparison uses. Each step is monotone in the size of its operands,
// which is what makes the bounds below exact.
double Length(double dx, double dy, double dz) {
    return std::sqrt(dx * dx + dy * dy + dz * dz);
}

// The free points of a part of the tree: their bounds and the lowest of their numbers.
struct Node {
    Place Low{kInfinite, kInfinite, kInfinite}, High{-kInfinite, -kInfinite, -kInfinite};
    std::int32_t LowestNumber = kNone;  // kNone = no free point is left
};

struct Best {
    double Distance = 1e10;
    std::int32_t Number = kNone;
};

// A balanced tree in one array: the children of node k are 2k and 2k + 1, leaves hold up to eight points.
class FreePoints {
public:
    // The call is made now and then while the tree is built; once it has given false the tree is of no use.
    FreePoints(const CoordinateColumns& points, std::vector<std::int32_t> numbers, const PairingCall& call)
        : number_(std::move(numbers)), whileBuilding_(call) {
        std::size_t leaves = 1;
        while (leaves * kLeafPoints < number_.size()) leaves *= 2;
        nodes_.resize(2 * leaves);
        place_.resize(number_.size());
        leafOf_.resize(points.X.size());
        Build(points, 1, 0, number_.size());
    }

    bool Stopped() const { return stopped_; }

    // The nearest free point, of several the one of the lowest number, within the limits.
    Best Nearest(const Place& at, float etta) {
        Best best;
        if (nodes_[1].LowestNumber != kNone) Visit(1, Bound(nodes_[1], at), at, etta, best);
        return best;
    }

    // Leaves looked into since the last call.
    std::int64_t TakeVisits() { return std::exchange(visits_, 0); }

    void Remove(std::int32_t number) {
        std::size_t node = leafOf_[static_cast<std::size_t>(number)];
        const auto [begin, end] = Range(node);
        std::size_t k = begin;
        while (number_[k] != number) ++k;
        number_[k] = kNone;
        for (; node >= 1; node /= 2) Summarise(node);
    }

private:
    // The points of a leaf stand together.
    struct PointRange {
        std::size_t Begin, End;
    };
    bool IsLeaf(std::size_t node) const { return 2 * node >= nodes_.size(); }
    PointRange Range(std::size_t leaf) const {
        const std::size_t first = leaf - nodes_.size() / 2;
        return {leafStart_[first], leafStart_[first + 1]};
    }

    // Counts points that have been gone through, and makes the call where they are many.
    void CallAfter(std::size_t points) {
        constexpr std::size_t kPointsBetweenCalls = 1 << 17;  // some milliseconds
        sinceCall_ += points;
        if (sinceCall_ <= kPointsBetweenCalls) return;
        sinceCall_ = 0;
        if (whileBuilding_ && !stopped_ && !whileBuilding_(0)) stopped_ = true;
    }

    void Build(const CoordinateColumns& points, std::size_t node, std::size_t begin, std::size_t end) {
        CallAfter(end - begin);
        if (stopped_) return;
        if (IsLeaf(node)) {
            if (leafStart_.empty()) leafStart_.push_back(0);
            leafStart_.push_back(end);
            for (std::size_t k = begin; k < end; ++k) {
                const auto number = static_cast<std::size_t>(number_[k]);
                place_[k] = {points.X[number], points.Y[number], points.Z[number]};
                leafOf_[number] = static_cast<std::uint32_t>(node);
            }
        } else {
            // Halved across the widest side; which of level points go left does not matter.
            const std::span<const double> column = Widest(points, begin, end);
            CallAfter(end - begin);
            if (stopped_) return;
            const std::size_t middle = begin + (end - begin) / 2;
            const auto at = [this](std::size_t k) {
                return number_.begin() + static_cast<std::ptrdiff_t>(k);
            };
            std::nth_element(at(begin), at(middle), at(end), [column](std::int32_t a, std::int32_t b) {
                return column[static_cast<std::size_t>(a)] < column[static_cast<std::size_t>(b)];
            });
            Build(points, 2 * node, begin, middle);
            Build(points, 2 * node + 1, middle, end);
        }
        Summarise(node);
    }

    std::span<const double> Widest(const CoordinateColumns& points, std::size_t begin,
                                   std::size_t end) const {
        const std::array<std::span<const double>, 3> columns = {points.X, points.Y, points.Z};
        std::size_t widest = 0;
        double width = -1;
        for (std::size_t axis = 0; axis < 3; ++axis) {
            double low = kInfinite, high = -kInfinite;
            for (std::size_t k = begin; k < end; ++k) {
                const double value = columns[axis][static_cast<std::size_t>(number_[k])];
                low = std::min(low, value);
                high = std::max(high, value);
            }
            if (high - low > width) {
                width = high - low;
                widest = axis;
            }
        }
        return columns[widest];
    }

    void Summarise(std::size_t node) {
        Node all;
        const auto add = [&all](const Place& low, const Place& high, std::int32_t number) {
            for (std::size_t axis = 0; axis < 3; ++axis) {
                all.Low[axis] = std::min(all.Low[axis], low[axis]);
                all.High[axis] = std::max(all.High[axis], high[axis]);
            }
            all.LowestNumber = std::min(all.LowestNumber, number);
        };
        if (IsLeaf(node)) {
            const auto [begin, end] = Range(node);
            for (std::size_t k = begin; k < end; ++k)
                if (number_[k] != kNone) add(place_[k], place_[k], number_[k]);
        } else {
            for (const std::size_t child : {2 * node, 2 * node + 1})
                add(nodes_[child].Low, nodes_[child].High, nodes_[child].LowestNumber);
        }
        nodes_[node] = all;
    }

    // No free point of the node is nearer than this, roundings included.
    static double Bound(const Node& node, const Place& at) {
        Place gap{};
        for (std::size_t axis = 0; axis < 3; ++axis)
            gap[axis] = std::max({node.Low[axis] - at[axis], at[axis] - node.High[axis], 0.0});
        return Length(gap[0], gap[1], gap[2]);
    }

    static bool CanHold(const Node& node, double bound, float etta, const Best& best) {
        if (node.LowestNumber == kNone) return false;
        if (bound > best.Distance || (bound == best.Distance && node.LowestNumber >= best.Number))
            return false;
        return static_cast<float>(bound) < etta;
    }

    void Visit(std::size_t node, double bound, const Place& at, float etta, Best& best) {
        if (!CanHold(nodes_[node], bound, etta, best)) return;
        if (IsLeaf(node)) {
            ++visits_;
            const auto [begin, end] = Range(node);
            for (std::size_t k = begin; k < end; ++k) {
                if (number_[k] == kNone) continue;
                const double distance =
                    Length(place_[k][0] - at[0], place_[k][1] - at[1], place_[k][2] - at[2]);
                const bool better =
                    distance < best.Distance ||
                    (distance == best.Distance && number_[k] < best.Number && best.Number != kNone);
                if (better && static_cast<float>(distance) < etta) best = {distance, number_[k]};
            }
            return;
        }
        // First where a nearer point, or one of a lower number, may be.
        std::size_t first = 2 * node, second = first + 1;
        double firstBound = Bound(nodes_[first], at), secondBound = Bound(nodes_[second], at);
        if (secondBound < firstBound ||
            (secondBound == firstBound && nodes_[second].LowestNumber < nodes_[first].LowestNumber)) {
            std::swap(first, second);
            std::swap(firstBound, secondBound);
        }
        Visit(first, firstBound, at, etta, best);
        Visit(second, secondBound, at, etta, best);
    }

    std::vector<Node> nodes_;             // from 1
    std::vector<std::int32_t> number_;    // of the points, leaf by leaf; kNone once it is taken
    std::vector<Place> place_;            // in the same order
    std::vector<std::size_t> leafStart_;  // place of the first point of each leaf
    std::vector<std::uint32_t> leafOf_;   // by number
    std::int64_t visits_ = 0;
    PairingCall whileBuilding_;
    std::size_t sinceCall_ = 0;
    bool stopped_ = false;
};

bool AllFinite(const CoordinateColumns& points, std::size_t i) {
    return std::isfinite(points.X[i]) && std::isfinite(points.Y[i]) && std::isfinite(points.Z[i]);
}

}  // namespace

std::vector<std::int32_t> PairByCoordinates(const CoordinateColumns& start, const CoordinateColumns& target,
                                            float etta, const PairingCall& whileLong) {
    Require(start.X.size() == start.Y.size() && start.X.size() == start.Z.size());
    Require(target.X.size() == target.Y.size() && target.X.size() == target.Z.size());
    std::vector<std::int32_t> partner(std::max<std::size_t>(start.X.size(), 1));
    if (!(etta > 0)) return partner;  // no distance is below it
    std::vector<std::int32_t> usable;
    for (std::size_t j = 1; j < target.X.size(); ++j)
        if (AllFinite(target, j)) usable.push_back(static_cast<std::int32_t>(j));
    if (usable.empty()) return partner;
    FreePoints free(target, std::move(usable), whileLong);
    if (free.Stopped()) return partner;
    constexpr std::int64_t kVisitsBetweenCalls = 1
                                                 << 14;  // some ten milliseconds where each misses the cache
    std::int64_t visits = 0;
    for (std::size_t i = 1; i < start.X.size(); ++i) {
        visits += free.TakeVisits();
        if (visits >= kVisitsBetweenCalls) {
            visits = 0;
            if (whileLong && !whileLong(i - 1)) break;
        }
        if (!AllFinite(start, i)) continue;
        const Best best = free.Nearest({start.X[i], start.Y[i], start.Z[i]}, etta);
        if (best.Number == kNone) continue;
        partner[i] = best.Number;
        free.Remove(best.Number);
    }
    return partner;
}

}  // namespace corvinade::import
