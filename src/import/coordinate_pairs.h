// Pairing of points by their coordinates, on plain tables.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "core/rooms.h"

namespace corvinade::import {

// Points as columns, elements from 1; element 0 is unused. All columns have the same length.
struct CoordinateColumns {
    std::span<const double> X, Y, Z;  // mm
};

// Called every few milliseconds of a long search with the number of start points that are done; false ends
// the search.
using PairingCall = std::function<bool(std::size_t done)>;

// Each start point, in their order, takes the nearest target point that is still free; of several equally
// near ones that of the lowest number. Its distance, rounded to a 32-bit float, must be below `etta`, and
// itself below 1e10. There is no global optimum: the first points have the first choice.
// Returns the number of the target point of each start point, 0 = none; elements from 1. Points with a
// coordinate that is no finite number pair with nothing. The time is about n log n, but where many start
// points see very many target points equally far off (at the centre of a sphere of them) it is n².
std::vector<std::int32_t> PairByCoordinates(const CoordinateColumns& start, const CoordinateColumns& target,
                                            float etta, const PairingCall& whileLong = {});

}  // namespace corvinade::import
