// The order of point names: plain numbers by their value, everything else by character code.
//
// A name that consists of digits alone is compared as if it were filled up with "0" on its left to 50
// characters. So "2" stands before "10" and numbers before names that begin with a letter, while "007"
// and "7" are different names that compare as equal.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/rooms.h"

namespace corvinade::import {

// Negative, 0, positive as the first name stands before, level with or behind the second.
int CompareNames(std::string_view first, std::string_view second);

struct NameOrder {
    std::vector<std::int32_t> Place;  // place in the given array of the element that comes first, second...
    std::vector<std::int32_t> Rank;   // in the same order: 1, 2, 3...; level names share their rank
    bool Distinct = true;             // no two names are level
};

// The ascending order of names 1 to names.size() - 1; `Place` and `Rank` have their elements from 1.
// Where names are level their order is that which a quicksort with the middle element as pivot gives.
// `goesOn` is called now and then; once it gives false the names are not looked at any more, and the order
// has no elements at all.
NameOrder SortNames(std::span<const std::string> names, const std::function<bool()>& goesOn = {});

// The order of two sets together whose own orders are known: names of the first set keep their place,
// names of the second one count on behind them. Once `goesOn` has given false, level names are in any order.
NameOrder JoinOrders(std::span<const std::string> firstNames, const NameOrder& first,
                     std::span<const std::string> secondNames, const NameOrder& second,
                     const std::function<bool()>& goesOn = {});

// That quicksort: pivot (low + high) / 2, swapping `place` with `rank`; both have elements from 1. Stops
// and returns false, with the arrays in some order, after about 8 n log n comparisons or once `goesOn`, which
// is called every few milliseconds, gives false.
bool QuicksortRanks(std::span<std::int32_t> rank, std::span<std::int32_t> place,
                    const std::function<bool()>& goesOn = {});

}  // namespace corvinade::import
