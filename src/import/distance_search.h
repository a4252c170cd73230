// The search for distances of the start set that occur in the target set as well, on plain tables.
//
// It gives exactly what two nested loops give, row by row of the start table: the target distance nearest
// to the start distance (the lowest row of several), and the distance from that one to the nearest other
// one. A row is a candidate when the first is below and the second above the tolerance.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "core/rooms.h"

namespace corvinade::import {

struct DistanceCandidate {
    std::int64_t StartRow = 0, TargetRow = 0;  // rows of the tables, from 0
    double Best1 = 0;                          // start distance less target distance, mm
    double Best2 = 0;  // target distance less the nearest other target distance; 1e10 without any

    bool operator==(const DistanceCandidate&) const = default;
};

// The search ends once it has one candidate more than this.
inline constexpr int kEnoughCandidates = 5;

// Called before each row with the number of candidates so far; false ends the search.
using DistanceRowCall = std::function<bool(std::int64_t row, int found)>;

// The candidates in the order of the start rows.
//   start, target  distances in mm; values that are no finite numbers match nothing
//   etta           the tolerance; the comparisons are made in 32-bit floats
//   beforeRow      may be empty
std::vector<DistanceCandidate> SearchDistances(std::span<const double> start, std::span<const double> target,
                                               float etta, const DistanceRowCall& beforeRow = {});

// The distances of all pairs of points 1 to `count`: (1, 2), (1, 3), ... (2, 3), ... The coordinates have
// their elements from 1.
std::vector<double> DistancesOfPairs(std::span<const double> x, std::span<const double> y,
                                     std::span<const double> z, std::int64_t count);

// The two points of a row of such a table.
struct PointPair {
    std::int64_t First = 0, Second = 0;
};
PointPair PairOfRow(std::int64_t row, std::int64_t count);

}  // namespace corvinade::import
