// The sweep of a large matrix in blocks of steps. The rows and columns of a block are swept first, which
// gives every product's two factors; all other elements then take the products of the whole block at once,
// in tiles that stay in the registers.
#include "fit/sweep.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "fit/require.h"

namespace corvinade::fit {

namespace {

constexpr int kBlock = 48;            // steps, a whole number of tiles of every width
constexpr int kRowsTogether = 240;    // their factors stay in the second-level cache, a whole number of tiles
constexpr double kWorkBetween = 3e8;  // operations between two questions whether to go on

constexpr std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

// The matrix, elements from (0, 0).
struct Elements {
    double* First;
    std::size_t Step;
    double* operator()(int row, int column) const { return First + At(row) * Step + At(column); }
};

// What the steps of one block leave for the elements outside it. `Own` is the block's square, rows and
// columns of the block alone.
struct Block {
    int Begin = 0, Steps = 0;
    double Pivot[kBlock];              // the new diagonal elements
    double OwnFactor[kBlock][kBlock];  // (i, k): what row i takes row k times
    double OwnRow[kBlock][kBlock];     // (k, j): row k after its own step
    LaneArray Factor, Row;             // the same outside, tile by tile, step by step within
};

// The square of the block, swept.
void SweepSquare(const Elements& B, Block& block) {
    const int begin = block.Begin;
    for (int k = 0; k < block.Steps; ++k) {
        double* const rowK = B(begin + k, begin);
        const double pivot = 1 / (1e-12 + rowK[k]);
        for (int j = 0; j < block.Steps; ++j) block.OwnRow[k][j] = rowK[j] = -rowK[j] * pivot;
        rowK[k] = block.Pivot[k] = pivot;
        for (int i = 0; i < block.Steps; ++i) {
            if (i == k) continue;
            double* const row = B(begin + i, begin);
            const double factor = block.OwnFactor[i][k] = row[k];
            for (int j = 0; j < block.Steps; ++j)
                if (j != k) row[j] += factor * rowK[j];
            row[k] = factor * pivot;
        }
    }
}

// Counts the work and asks whether to go on.
struct GoOn {
    const std::function<bool()>* Ask;
    double Work = 0;

    bool operator()(double work) {
        Work += work;
        if (Ask == nullptr || Work < kWorkBetween) return true;
        Work = 0;
        return (*Ask)();
    }
};

#define LANES_BODY "fit/sweep_tiles.inl"
#include "fit/all_widths.inl"

}  // namespace

bool BlockedSweep(MatrixView B, int n, VectorWidth width, const std::function<bool()>* goOn) {
    Require(n >= 1 && n <= B.Rows && n <= B.Columns && width <= WidestVectors());
    const Elements elements = {&B(1, 1), B.Step};
#if defined(__x86_64__) && !defined(CORVINADE_NO_CLONES)
    if (width == VectorWidth::Eight) return lanes512::Sweep(elements, n, {goOn});
    if (width == VectorWidth::Four) return lanes256::Sweep(elements, n, {goOn});
#endif
    return lanes128::Sweep(elements, n, {goOn});
}

}  // namespace corvinade::fit
