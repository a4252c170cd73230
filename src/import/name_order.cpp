// Sorting of point names. A million names are sorted by short keys, not by moving their texts.
#include "import/name_order.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace corvinade::import {

namespace {

constexpr std::size_t kWidth = 50;

bool IsNumber(std::string_view name) {
    if (name.empty() || name.size() >= kWidth) return false;  // nothing to fill up from 50 on
    return std::all_of(name.begin(), name.end(), [](char c) { return c >= '0' && c <= '9'; });
}

// Up to eight characters as a number that compares as they do; missing ones count as 0.
std::uint64_t EightCharacters(std::string_view text) {
    std::uint64_t key = 0;
    std::memcpy(&key, text.data(), std::min<std::size_t>(text.size(), 8));
    if constexpr (std::endian::native == std::endian::little) key = __builtin_bswap64(key);
    return key;
}

// The start of a name as it is compared. Where two keys are equal, the names decide.
struct SortKey {
    std::uint64_t First = 0;   // characters 1 to 8
    std::uint64_t Second = 0;  // characters 9 to 16, or the value of a number
    std::int32_t Place = 0;
    enum : std::int32_t { Text, ShortNumber, LongNumber } Kind = Text;  // short: at most 18 digits
};

SortKey KeyOf(std::string_view name, std::int32_t place) {
    SortKey key;
    key.Place = place;
    if (!IsNumber(name)) {
        key.First = EightCharacters(name);
        if (name.size() > 8) key.Second = EightCharacters(name.substr(8));
        return key;
    }
    const std::size_t zeros = kWidth - name.size();
    std::string start(std::min<std::size_t>(zeros, 8), '0');
    if (start.size() < 8) start += name.substr(0, 8 - start.size());
    key.First = EightCharacters(start);
    key.Kind = name.size() > 18 ? SortKey::LongNumber : SortKey::ShortNumber;
    if (key.Kind == SortKey::LongNumber) return key;
    for (const char c : name) key.Second = key.Second * 10 + static_cast<std::uint64_t>(c - '0');
    return key;
}

int Compare(const SortKey& a, const SortKey& b, std::span<const std::string> names) {
    if (a.First != b.First) return a.First < b.First ? -1 : 1;
    if (a.Kind == b.Kind && a.Kind != SortKey::LongNumber && a.Second != b.Second)
        return a.Second < b.Second ? -1 : 1;
    if (a.Kind == SortKey::ShortNumber && b.Kind == SortKey::ShortNumber) return 0;
    return CompareNames(names[static_cast<std::size_t>(a.Place)], names[static_cast<std::size_t>(b.Place)]);
}

// Sorts a part at a time, the parts then being merged two by two. False once `goesOn` gives false.
template <class Before>
bool SortInParts(std::vector<SortKey>& keys, Before before, const std::function<bool()>& goesOn) {
    constexpr std::size_t kPart = 1 << 16;
    const std::size_t n = keys.size();
    const auto at = [n](auto& all, std::size_t place) {
        return all.begin() + static_cast<std::ptrdiff_t>(std::min(place, n));
    };
    for (std::size_t begin = 0; begin < n; begin += kPart) {
        std::sort(at(keys, begin), at(keys, begin + kPart), before);
        if (goesOn && !goesOn()) return false;
    }
    std::vector<SortKey> merged(n > kPart ? n : 0);
    for (std::size_t part = kPart; part < n; part *= 2) {
        for (std::size_t begin = 0; begin < n; begin += 2 * part) {
            std::merge(at(keys, begin), at(keys, begin + part), at(keys, begin + part),
                       at(keys, begin + 2 * part), at(merged, begin), before);
            if (goesOn && !goesOn()) return false;
        }
        keys.swap(merged);
    }
    return true;
}

// Ranks are ascending here; level elements are brought into the quicksort's order.
void OrderLevelNames(NameOrder& order, std::size_t n, const std::function<bool()>& goesOn) {
    std::vector<std::int32_t> rank(n + 1), place(n + 1);
    for (std::size_t k = 1; k <= n; ++k) {
        rank[static_cast<std::size_t>(order.Place[k])] = order.Rank[k];
        place[k] = static_cast<std::int32_t>(k);
    }
    // Given up, the level names stay in the order of their places.
    if (QuicksortRanks(rank, place, goesOn)) order.Place = std::move(place);
}

}  // namespace

int CompareNames(std::string_view first, std::string_view second) {
    const bool firstNumber = IsNumber(first), secondNumber = IsNumber(second);
    if (!firstNumber && !secondNumber) return first.compare(second);
    if (firstNumber && secondNumber) {
        // Without their leading zeros the longer one is the larger.
        first.remove_prefix(std::min(first.find_first_not_of('0'), first.size()));
        second.remove_prefix(std::min(second.find_first_not_of('0'), second.size()));
        if (first.size() != second.size()) return first.size() < second.size() ? -1 : 1;
        return first.compare(second);
    }
    const auto filled = [](std::string_view name) {
        return std::string(kWidth - name.size(), '0').append(name);
    };
    return firstNumber ? filled(first).compare(second) : first.compare(filled(second));
}

bool QuicksortRanks(std::span<std::int32_t> rank, std::span<std::int32_t> place,
                    const std::function<bool()>& goesOn) {
    struct Range {
        std::int64_t Low, High;
    };
    const auto n = static_cast<std::int64_t>(rank.size()) - 1;
    std::int64_t budget = 8 * (n + 16) * static_cast<std::int64_t>(std::bit_width(rank.size()));
    constexpr std::int64_t kElementsBetweenCalls = 1 << 19;  // some milliseconds
    std::int64_t sinceCall = 0;
    std::vector<Range> waiting{{1, n}};
    while (!waiting.empty()) {
        const Range range = waiting.back();
        waiting.pop_back();
        if (range.Low >= range.High) continue;
        std::int64_t low = range.Low, high = range.High;
        const std::int32_t pivot = rank[static_cast<std::size_t>((low + high) / 2)];
        do {
            while (rank[static_cast<std::size_t>(low)] < pivot) ++low;
            while (rank[static_cast<std::size_t>(high)] > pivot) --high;
            if (low <= high) {
                std::swap(rank[static_cast<std::size_t>(low)], rank[static_cast<std::size_t>(high)]);
                std::swap(place[static_cast<std::size_t>(low)], place[static_cast<std::size_t>(high)]);
                ++low;
                --high;
            }
        } while (low <= high);
        budget -= range.High - range.Low + 1;
        if (budget < 0) return false;
        sinceCall += range.High - range.Low + 1;
        if (sinceCall > kElementsBetweenCalls) {
            sinceCall = 0;
            if (goesOn && !goesOn()) return false;
        }
        waiting.push_back({range.Low, high});
        waiting.push_back({low, range.High});
    }
    return true;
}

NameOrder SortNames(std::span<const std::string> names, const std::function<bool()>& goesOn) {
    const std::size_t n = names.empty() ? 0 : names.size() - 1;
    std::vector<SortKey> keys(n);
    for (std::size_t i = 1; i <= n; ++i) keys[i - 1] = KeyOf(names[i], static_cast<std::int32_t>(i));
    if (goesOn && !goesOn()) return {};
    const auto before = [names](const SortKey& a, const SortKey& b) {
        const int order = Compare(a, b, names);
        return order != 0 ? order < 0 : a.Place < b.Place;
    };
    if (!std::is_sorted(keys.begin(), keys.end(), before) && !SortInParts(keys, before, goesOn)) return {};

    NameOrder order;
    order.Place.resize(n + 1);
    order.Rank.resize(n + 1);
    for (std::size_t k = 1; k <= n; ++k) {
        const bool level = k > 1 && Compare(keys[k - 2], keys[k - 1], names) == 0;
        order.Place[k] = keys[k - 1].Place;
        order.Rank[k] = order.Rank[k - 1] + (level ? 0 : 1);
        if (level) order.Distinct = false;
    }
    if (!order.Distinct) {
        OrderLevelNames(order, n, goesOn);
        if (goesOn && !goesOn()) return {};
    }
    return order;
}

NameOrder JoinOrders(std::span<const std::string> firstNames, const NameOrder& first,
                     std::span<const std::string> secondNames, const NameOrder& second,
                     const std::function<bool()>& goesOn) {
    const std::size_t n1 = first.Place.size() - 1, n2 = second.Place.size() - 1;
    NameOrder joined;
    joined.Place.resize(n1 + n2 + 1);
    joined.Rank.resize(n1 + n2 + 1);
    // Group by group: all names of a set that are level, and those of the other set level with them.
    const auto takeGroup = [&joined](const NameOrder& from, std::size_t& at, std::size_t& k,
                                     std::int32_t rank, std::size_t shift) {
        const std::int32_t group = from.Rank[at];
        for (; at < from.Rank.size() && from.Rank[at] == group; ++at, ++k) {
            joined.Rank[k] = rank;
            joined.Place[k] = from.Place[at] + static_cast<std::int32_t>(shift);
        }
    };
    std::size_t a = 1, b = 1, k = 1;
    for (std::int32_t rank = 1; a <= n1 || b <= n2; ++rank) {
        int order = a <= n1 ? -1 : 1;
        if (a <= n1 && b <= n2)
            order = CompareNames(firstNames[static_cast<std::size_t>(first.Place[a])],
                                 secondNames[static_cast<std::size_t>(second.Place[b])]);
        if (order <= 0) takeGroup(first, a, k, rank, 0);
        if (order >= 0) takeGroup(second, b, k, rank, n1);
    }
    // Two level names of different sets are a pair or not, whichever comes first.
    joined.Distinct = first.Distinct && second.Distinct;
    if (!joined.Distinct) OrderLevelNames(joined, n1 + n2, goesOn);
    return joined;
}

}  // namespace corvinade::import
