// The sweep in blocks for one instruction set. Included once for each by sweep.cpp, which says how many
// doubles one vector holds (LANES_WIDTH) and which instructions may be used (LANES_TARGET). Nothing but speed
// depends on these.

typedef double Vector __attribute__((vector_size(LANES_WIDTH * sizeof(double)), may_alias));
typedef double Loose __attribute__((vector_size(LANES_WIDTH * sizeof(double)), may_alias, aligned(8)));

#define LANES_INLINE LANES_TARGET inline __attribute__((always_inline))
#define AT(place) (*reinterpret_cast<Vector*>(place))
#define READ(place) (*reinterpret_cast<const Vector*>(place))
#define AT_LOOSE(place) (*reinterpret_cast<Loose*>(place))

// A tile is as large as the registers hold.
#if LANES_WIDTH == 8
constexpr int kTileRows = 8;
#else
constexpr int kTileRows = 4;
#endif
constexpr int kVectors = 3;
constexpr int kTileColumns = kVectors * LANES_WIDTH;
static_assert(kBlock % kTileRows == 0 && kBlock % kTileColumns == 0 && kRowsTogether % kTileRows == 0);

// The rows of the block in the columns of one tile: step k makes row k the one that all others take, and the
// block's other rows take it at once.
LANES_INLINE void SweepRows(const Elements& B, const Block& block, int column, int columns, double* out) {
    alignas(64) double rows[kBlock][kTileColumns] = {};
    const std::size_t bytes = At(columns) * sizeof(double);
    for (int k = 0; k < block.Steps; ++k) std::memcpy(rows[k], B(block.Begin + k, column), bytes);
    for (int k = 0; k < block.Steps; ++k) {
        Vector rowK[kVectors];
        for (int v = 0; v < kVectors; ++v) {
            rowK[v] = -AT(rows[k] + v * LANES_WIDTH) * block.Pivot[k];
            AT(rows[k] + v * LANES_WIDTH) = rowK[v];
            AT(out + k * kTileColumns + v * LANES_WIDTH) = rowK[v];
        }
        const auto take = [&](int i) __attribute__((always_inline)) {
            const double factor = block.OwnFactor[i][k];
            for (int v = 0; v < kVectors; ++v) AT(rows[i] + v * LANES_WIDTH) += factor * rowK[v];
        };
        for (int i = 0; i < k; ++i) take(i);
        for (int i = k + 1; i < block.Steps; ++i) take(i);
    }
    for (int k = 0; k < block.Steps; ++k) std::memcpy(B(block.Begin + k, column), rows[k], bytes);
}

// The columns of the block in the rows of one tile, with the factor that each row has at each step.
LANES_INLINE void SweepColumns(const Elements& B, const Block& block, int row, int rows, double* out) {
    alignas(64) double columns[kBlock][kTileRows] = {};
    for (int r = 0; r < rows; ++r)
        for (int k = 0; k < block.Steps; ++k) columns[k][r] = *B(row + r, block.Begin + k);
    for (int k = 0; k < block.Steps; ++k) {
        for (int r = 0; r < kTileRows; r += LANES_WIDTH) {
            const Vector factor = AT(columns[k] + r);
            AT(out + k * kTileRows + r) = factor;
            for (int j = 0; j < k; ++j) AT(columns[j] + r) += factor * block.OwnRow[k][j];
            for (int j = k + 1; j < block.Steps; ++j) AT(columns[j] + r) += factor * block.OwnRow[k][j];
            AT(columns[k] + r) = factor * block.Pivot[k];
        }
    }
    for (int r = 0; r < rows; ++r)
        for (int k = 0; k < block.Steps; ++k) *B(row + r, block.Begin + k) = columns[k][r];
}

// A whole tile takes the products of all steps of the block.
LANES_INLINE void AddToTile(double* place, std::size_t step, const double* factor, const double* row,
                            int steps) {
    Vector sum[kTileRows][kVectors];
    for (int i = 0; i < kTileRows; ++i)
        for (int v = 0; v < kVectors; ++v) sum[i][v] = AT_LOOSE(place + At(i) * step + v * LANES_WIDTH);
    for (int k = 0; k < steps; ++k) {
        Vector rowK[kVectors];
        for (int v = 0; v < kVectors; ++v) rowK[v] = READ(row + v * LANES_WIDTH);
#pragma GCC unroll 8
        for (int i = 0; i < kTileRows; ++i)
            for (int v = 0; v < kVectors; ++v) sum[i][v] += factor[i] * rowK[v];
        row += kTileColumns;
        factor += kTileRows;
    }
    for (int i = 0; i < kTileRows; ++i)
        for (int v = 0; v < kVectors; ++v) AT_LOOSE(place + At(i) * step + v * LANES_WIDTH) = sum[i][v];
}

// A tile at the end of the matrix, in a whole one beside it.
LANES_TARGET inline __attribute__((noinline)) void AddToPart(const Elements& B, int row, int rows, int column,
                                                             int columns, const double* factor,
                                                             const double* rowK, int steps) {
    alignas(64) double whole[kTileRows][kTileColumns] = {};
    for (int i = 0; i < rows; ++i) std::memcpy(whole[i], B(row + i, column), At(columns) * sizeof(double));
    AddToTile(whole[0], kTileColumns, factor, rowK, steps);
    for (int i = 0; i < rows; ++i) std::memcpy(B(row + i, column), whole[i], At(columns) * sizeof(double));
}

LANES_INLINE bool Outside(const Block& block, int first) {
    return first < block.Begin || first >= block.Begin + block.Steps;
}

LANES_TARGET inline bool SweepBlock(const Elements& B, int n, Block& block, GoOn& goOn) {
    SweepSquare(B, block);
    for (int j = 0; j < n; j += kTileColumns)
        if (Outside(block, j))
            SweepRows(B, block, j, std::min(kTileColumns, n - j), &block.Row[At(j) * kBlock]);
    for (int i = 0; i < n; i += kTileRows)
        if (Outside(block, i))
            SweepColumns(B, block, i, std::min(kTileRows, n - i), &block.Factor[At(i) * kBlock]);
    for (int begin = 0; begin < n; begin += kRowsTogether) {
        const int end = std::min(n, begin + kRowsTogether);
        for (int j = 0; j < n; j += kTileColumns) {
            if (!Outside(block, j)) continue;
            const double* const row = &block.Row[At(j) * kBlock];
            for (int i = begin; i < end; i += kTileRows) {
                if (!Outside(block, i)) continue;
                const double* const factor = &block.Factor[At(i) * kBlock];
                if (i + kTileRows <= n && j + kTileColumns <= n) {
                    AddToTile(B(i, j), B.Step, factor, row, block.Steps);
                } else {
                    AddToPart(B, i, std::min(kTileRows, n - i), j, std::min(kTileColumns, n - j), factor, row,
                              block.Steps);
                }
            }
        }
        if (!goOn(2.0 * block.Steps * n * (end - begin))) return false;
    }
    return true;
}

LANES_TARGET bool Sweep(const Elements& B, int n, GoOn goOn) {
    Block block;
    block.Factor.resize(At(n + kTileRows) * kBlock);
    block.Row.resize(At(n + kTileColumns) * kBlock);
    for (block.Begin = 0; block.Begin < n; block.Begin += kBlock) {
        block.Steps = std::min(kBlock, n - block.Begin);
        if (!SweepBlock(B, n, block, goOn)) return false;
    }
    return true;
}

#undef AT
#undef READ
#undef AT_LOOSE
#undef LANES_INLINE
