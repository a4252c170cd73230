// The largest and smallest deviations of a calculation and the points that have them.
#pragma once

#include <array>

#include "core/rooms.h"

namespace corvinade::engine {

// By axis and of whole points, mm. Points are numbered as pairs; 0 where no coordinate takes part, the value
// then being that which the search begins with. Of equal deviations the first point stands.
struct Extremes {
    std::array<double, 3> Max{-1e9, -1e9, -1e9}, Min{1e9, 1e9, 1e9};
    std::array<int, 3> MaxPoint{}, MinPoint{};
    double Max3D = -1e9;  // of the points with all three coordinates in use
    int Max3DPoint = 0;
};

// Reads the residuals and weights of Calculation.
Extremes FindExtremes();

}  // namespace corvinade::engine
