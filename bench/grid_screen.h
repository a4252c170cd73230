// What a desktop asks of a large grid for one screen.
#pragma once

#include <benchmark/benchmark.h>

#include "core/grid.h"

using namespace corvinade;

// Texts and colours of fifty rows in the middle of 100,000.
inline void LookAtScreen(GridState& grid) {
    for (int row = 50'000; row < 50'050; ++row)
        for (int col = 0; col < grid.Cols; ++col) {
            benchmark::DoNotOptimize(CellText(grid, row, col));
            benchmark::DoNotOptimize(CellBackColor(grid, row, col));
        }
}
