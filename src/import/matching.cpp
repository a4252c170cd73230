// Pairing by names, and the counts and working arrays that follow from it.
#include "import/matching.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "core/job.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/text.h"
#include "engine/calculation_window.h"
#include "import/long_import.h"
#include "import/name_order.h"
#include "import/row_notes.h"

namespace corvinade::import {

namespace {

// One of the job's two point sets, and what goes with its points.
struct MatchedSet {
    PointSet& Points;
    const char* Label;
    Matrix* Poses = nullptr;            // orientations, a row a point; null = the points have none
    PointAccuracies* Sigmas = nullptr;  // null = the points have none
};
PointAccuracies* SigmasOfPoints(PointAccuracies& sigmas, const PointSet& points) {
    return !sigmas.Of[0].empty() && sigmas.Count() + 1 == points.Name.size() ? &sigmas : nullptr;
}
MatchedSet StartSet() {
    return {Job.Start, "MCS", nullptr, SigmasOfPoints(SigmasUnderWay.Start, Job.Start)};
}
MatchedSet TargetSet() {
    // Orientations of another number of poses are not those of these points.
    const bool arePoses = Job.RobotABC.Rows > 0 && Job.RobotABC.Rows == UpperBound(Job.Target.Name);
    return {Job.Target, "OCS", arePoses ? &Job.RobotABC : nullptr,
            SigmasOfPoints(SigmasUnderWay.Target, Job.Target)};
}

// Shares of the whole import that the steps of the pairing have.
constexpr double kSorting = 0.72, kArranging = 0.80, kPairing = 0.90, kInFront = 0.95;

bool GoesOn(double share) {
    if (LongImport.Active) LongImport.From = 0, LongImport.To = 100;
    return ImportGoesOn(share);
}

// Element k of the arranged values is what stands at place[k]; what lies behind the last place stays. Nothing
// when the import must end.
template <class Value>
std::optional<std::vector<Value>> Arranged(const std::vector<Value>& values,
                                           const std::vector<std::int32_t>& place) {
    constexpr std::size_t kBetweenYields = 1 << 16;
    std::vector<Value> arranged(values.size());
    for (std::size_t k = 1; k < place.size(); ++k) {
        arranged[k] = values[static_cast<std::size_t>(place[k])];
        if (k % kBetweenYields == 0 && !GoesOn(kArranging)) return std::nullopt;
    }
    std::copy(values.begin() + static_cast<std::ptrdiff_t>(place.size()), values.end(),
              arranged.begin() + static_cast<std::ptrdiff_t>(place.size()));
    arranged.front() = values.front();
    return arranged;
}

// Gives names back whose place others have taken; so many take a while. False when the import must end.
bool Discard(std::vector<std::string> names) {
    constexpr std::size_t kBetweenYields = 1 << 16;
    for (std::size_t k = 1; k < names.size(); ++k) {
        std::string().swap(names[k]);
        if (k % kBetweenYields == 0 && !GoesOn(kArranging)) return false;
    }
    return true;
}

void RearrangeRows(Matrix& rows, const std::vector<std::int32_t>& place) {
    Matrix arranged(rows.Rows, rows.Columns);
    for (int k = 1; k <= rows.Rows; ++k)
        std::copy_n(rows.Row(place[static_cast<std::size_t>(k)]), rows.Columns + 1, arranged.Row(k));
    rows = std::move(arranged);
}

void Rearrange(PointAccuracies& sigmas, const std::vector<std::int32_t>& place) {
    for (std::vector<double>& axis : sigmas.Of) {
        const std::vector<double> before = axis;
        for (std::size_t k = 1; k < place.size(); ++k)
            axis[k - 1] = before[static_cast<std::size_t>(place[k]) - 1];
    }
}

// Sorts a set by its names; the order then is that of the places. While it yields the set is as it was, or
// sorted; nothing when the import must end.
std::optional<NameOrder> SortSet(MatchedSet set) {
    PointSet& points = set.Points;
    NameOrder order = SortNames(points.Name, [] { return GoesOn(kSorting); });
    if (order.Place.empty()) return std::nullopt;
    if (std::is_sorted(order.Place.begin(), order.Place.end())) return order;
    auto x = Arranged<TaggedValue>(points.X, order.Place);
    if (!x || !GoesOn(kArranging)) return std::nullopt;
    auto y = Arranged<TaggedValue>(points.Y, order.Place);
    if (!y || !GoesOn(kArranging)) return std::nullopt;
    auto z = Arranged<double>(points.Z, order.Place);
    if (!z || !GoesOn(kArranging)) return std::nullopt;
    auto names = Arranged<std::string>(points.Name, order.Place);
    if (!names || !GoesOn(kArranging)) return std::nullopt;
    points.Exchange(points.Name, *names);
    points.Exchange(points.X, *x);
    points.Exchange(points.Y, *y);
    points.Exchange(points.Z, *z);
    if (set.Poses != nullptr) RearrangeRows(*set.Poses, order.Place);
    if (set.Sigmas != nullptr) Rearrange(*set.Sigmas, order.Place);
    for (std::size_t k = 1; k < order.Place.size(); ++k) order.Place[k] = static_cast<std::int32_t>(k);
    if (!Discard(std::move(*names))) return std::nullopt;
    return order;
}

// A name that a sorted set holds twice; null when there is none. Names that are level with each other
// ("7", "007") may stand in any order, so a double need not be a neighbour. Elements without a name, which
// stand first, are no points.
const std::string* DoubleName(const std::vector<std::string>& names, const NameOrder& order) {
    if (order.Distinct) return nullptr;
    std::size_t first = 1;
    while (first < names.size() && names[first].empty()) ++first;
    for (std::size_t i = first + 1; i < names.size(); ++i)
        if (names[i - 1] == names[i]) return &names[i];
    for (std::size_t i = first; i < names.size(); ++i)
        for (std::size_t j = i; j > 1 && order.Rank[j - 1] == order.Rank[i]; --j)
            if (names[j - 1] == names[i]) return &names[i];
    return nullptr;
}

bool RefuseDoubleName(MatchedSet set, const NameOrder& order) {
    const std::string* name = DoubleName(set.Points.Name, order);
    if (name == nullptr) return false;
    const std::string message = "There might be a double Pointnumber in the " + std::string(set.Label) +
                                " File. " + kLineEnd + "Please check Point Number " + *name;
    const bool isStart = &set.Points == &Job.Start;
    const std::string prefix = std::string(set.Label) + "_";  // which pairing without names puts in front
    const std::string& path = isStart ? Job.PathMCS : Job.PathOCS;
    NoteDoubleName(path, *name);
    if (name->starts_with(prefix)) NoteDoubleName(path, name->substr(prefix.size()));
    Run.ImportFailed = kTrue;
    ShowMessage(message);
    return true;
}

// The pairs in both sets, by their positions; elements from 1.
struct Pairs {
    std::vector<std::int32_t> Start{0}, Target{0};
};

Pairs FindPairs(const NameOrder& joined) {
    const auto isStart = [](std::int32_t place) { return place <= UpperBound(Job.Start.Name); };
    const auto name = [&](std::int32_t place) -> const std::string& {
        return isStart(place) ? Job.Start.Name[static_cast<std::size_t>(place)]
                              : Job.Target.Name[static_cast<std::size_t>(place - UpperBound(Job.Start.Name))];
    };
    Pairs pairs;
    const auto add = [&](std::int32_t one, std::int32_t other) {
        pairs.Start.push_back(isStart(one) ? one : other);
        pairs.Target.push_back((isStart(one) ? other : one) - UpperBound(Job.Start.Name));
    };
    // An element without a name is the one that a line too short for a point has left unused: no point.
    const auto match = [&](std::int32_t one, std::int32_t other) {
        return isStart(one) != isStart(other) && name(one) == name(other) && !name(one).empty();
    };
    const std::size_t end = joined.Place.size();
    std::vector<std::int32_t> left;  // level names without an equal neighbour
    for (std::size_t begin = 1, next = 1; begin < end; begin = next) {
        while (next < end && joined.Rank[next] == joined.Rank[begin]) ++next;
        left.clear();
        for (std::size_t i = begin; i < next; ++i) {
            if (i + 1 < next && match(joined.Place[i], joined.Place[i + 1])) {
                add(joined.Place[i], joined.Place[i + 1]);
                ++i;
            } else {
                left.push_back(joined.Place[i]);
            }
        }
        if (left.size() < 2) continue;
        // Level names may stand between two equal ones. They are one point all the same.
        std::unordered_map<std::string_view, std::int32_t> starts;
        for (const std::int32_t place : left)
            if (isStart(place) && !name(place).empty()) starts.emplace(name(place), place);
        for (const std::int32_t place : left) {
            const auto partner = isStart(place) ? starts.end() : starts.find(name(place));
            if (partner == starts.end()) continue;
            add(partner->second, place);
            starts.erase(partner);
        }
    }
    return pairs;
}

// Swaps pair c to position c, for all pairs. A swap may move a point that a later pair is waiting for,
// so the positions are kept up to date.
void BringToFront(MatchedSet set, std::vector<std::int32_t>& position) {
    PointSet& points = set.Points;
    std::vector<std::int32_t> pairAt(points.Name.size());
    for (std::size_t c = 1; c < position.size(); ++c)
        pairAt[static_cast<std::size_t>(position[c])] = static_cast<std::int32_t>(c);
    for (std::size_t c = 1; c < position.size(); ++c) {
        const auto from = static_cast<std::size_t>(position[c]);
        if (from == c) continue;
        std::swap(points.Name[c], points.Name[from]);
        std::swap(points.X[c], points.X[from]);
        std::swap(points.Y[c], points.Y[from]);
        std::swap(points.Z[c], points.Z[from]);
        if (set.Poses != nullptr) {
            double* const row = set.Poses->Row(static_cast<int>(c));
            std::swap_ranges(row, row + set.Poses->Columns + 1, set.Poses->Row(static_cast<int>(from)));
        }
        if (set.Sigmas != nullptr)
            for (std::vector<double>& axis : set.Sigmas->Of) std::swap(axis[c - 1], axis[from - 1]);
        const std::int32_t moved = pairAt[c];
        pairAt[from] = moved;
        if (moved != 0) position[static_cast<std::size_t>(moved)] = static_cast<std::int32_t>(from);
    }
}

void SortForIdentPts(const NameOrder& start, const NameOrder& target) {
    const NameOrder joined =
        JoinOrders(Job.Start.Name, start, Job.Target.Name, target, [] { return GoesOn(kArranging); });
    if (!GoesOn(kPairing)) return;
    Pairs pairs = FindPairs(joined);
    if (!GoesOn(kInFront)) return;
    BringToFront(StartSet(), pairs.Start);
    if (!GoesOn(kInFront)) return;
    BringToFront(TargetSet(), pairs.Target);
    GoesOn(1);
}

}  // namespace

void SortForIdentPts() {
    SortForIdentPts(SortNames(Job.Start.Name), SortNames(Job.Target.Name));
}

void MCS_OCS_aufbereiten() {
    ++Run.JobGeneration;
    const auto start = SortSet(StartSet());
    if (!start || !GoesOn(kArranging)) return;
    const auto target = SortSet(TargetSet());
    if (!target || !GoesOn(kArranging)) return;
    if (RefuseDoubleName(StartSet(), *start) || RefuseDoubleName(TargetSet(), *target)) {
        CountAllPoints();
        return;
    }
    SortForIdentPts(*start, *target);
}

void GetInfoFromData() {
    Job.Start.CountAll();
    Job.Target.CountAll();
    const auto both = static_cast<std::size_t>(std::min(Job.Start.Count(), Job.Target.Count()));
    int pairs = 0;
    for (std::size_t i = 1; i <= both; ++i)
        if (Job.Start.Name[i] == Job.Target.Name[i] && !Job.Start.Name[i].empty()) ++pairs;
    Job.SetPairs(pairs);
}

void IdentischePkte_Neu() {
    const auto points = static_cast<std::size_t>(Job.Start.Count()) + 1;
    const auto pairs = static_cast<std::size_t>(Job.Pairs()) + 1;
    // Many names take a while. They are copied beside the present ones, which a cancelled import keeps.
    constexpr std::size_t kBetweenYields = 1 << 16;
    std::vector<std::string> names(points);
    for (std::size_t i = 0; i < points; ++i) {
        names[i] = Job.Start.Name[i];
        if (i % kBetweenYields == kBetweenYields - 1 && !GoesOn(1)) return;
    }
    Job.Transformed.Copy(Job.Start, std::move(names));
    Job.RVecX.assign(pairs, {});
    Job.RVecY.assign(pairs, {});
    Job.RVecZ.assign(pairs, 0);
    Job.RVecInFile.fill(-1);
    // What is in use stays; a place that is new takes part, or a larger job would be fitted by a part of it.
    Job.UseFlags.resize(3 * (pairs - 1) + 1, 1);
    if (DirectionSwitched()) MCS_OCS();
}

}  // namespace corvinade::import
