// One pass over the points for one instruction set. Included once for each by normal_pass.cpp, which
// says how many of the eight lanes one vector holds (LANES_WIDTH) and which instructions may be used
// (LANES_TARGET). Nothing but speed depends on these: each sum takes its points in the same lanes and the
// same order.

// How large the tiles are that the registers hold.
#if LANES_WIDTH == 8
#define TILE 4
#else
#define TILE 3
#endif

typedef double Vector __attribute__((vector_size(LANES_WIDTH * sizeof(double)), may_alias));

#define LANES_INLINE LANES_TARGET inline __attribute__((always_inline))
#define AT(place) (*reinterpret_cast<Vector*>(place))
#define READ(place) (*reinterpret_cast<const Vector*>(place))

// out = r (x, y, z) + held
LANES_INLINE void PointColumn(const BlockPoints& block, const double* r, double held, double* out) {
    for (int p = 0; p < block.Count; p += LANES_WIDTH)
        AT(out + p) = r[0] * READ(block.Start[0] + p) + r[1] * READ(block.Start[1] + p) +
                      r[2] * READ(block.Start[2] + p) + held;
}

// Columns of the inner parameters along one axis.
LANES_INLINE void InnerColumns(const BlockPoints& block, const Linearisation& at, int axis, double* A) {
    for (int k = 0; k < at.InnerCount; ++k) {
        const InnerDerivative& inner = at.Inner[static_cast<std::size_t>(k)];
        double* const out = A + k * kBlock;
        const double held = at.Held(inner, axis);
        const double r[3] = {inner.D(axis, 1), inner.D(axis, 2), inner.D(axis, 3)};
        if (inner.OnlyColumn == 0) {
            PointColumn(block, r, held, out);
            continue;
        }
        const double only = r[inner.OnlyColumn - 1];
        const double* const start = block.Start[inner.OnlyColumn - 1];
        for (int p = 0; p < block.Count; p += LANES_WIDTH) AT(out + p) = only * READ(start + p) + held;
    }
}

LANES_INLINE void Constant(const BlockPoints& block, double value, double* out) {
    const Vector constant = Vector{} + value;
    for (int p = 0; p < block.Count; p += LANES_WIDTH) AT(out + p) = constant;
}

// The observation along one axis: target less transformed point.
LANES_INLINE void Observation(const BlockPoints& block, const Linearisation& at, int axis, double* out) {
    const double r[3] = {at.M(axis, 1), at.M(axis, 2), at.M(axis, 3)};
    const double shift = at.Shift(axis);
    const double* const target = block.Target[axis - 1];
    for (int p = 0; p < block.Count; p += LANES_WIDTH)
        AT(out + p) =
            (READ(target + p) - shift) - (r[0] * READ(block.Start[0] + p) + r[1] * READ(block.Start[1] + p) +
                                          r[2] * READ(block.Start[2] + p));
}

// The rows of a block along one axis, column by column as LayoutOf tells.
LANES_INLINE void BuildDesignMatrix(const BlockPoints& block, const FitModel& model, const Linearisation& at,
                                    int axis, double* A) {
    InnerColumns(block, at, axis, A);
    double* out = A + at.InnerCount * kBlock;
    const bool tool = model.Mode == FitMode::Tool;
    if (tool && model.ToolFloats)
        for (int j = 0; j < 3; ++j, out += kBlock)
            for (int p = 0; p < block.Count; p += LANES_WIDTH)
                AT(out + p) = READ(block.Pose[3 * (axis - 1) + j] + p);
    if (at.AxisFloats[static_cast<std::size_t>(axis)]) {
        Constant(block, 1, out);
        out += kBlock;
    }
    Observation(block, at, axis, out);
    if (!tool) return;
    const double* const g = block.Pose[3 * (axis - 1)];
    const double* const h = block.Pose[3 * (axis - 1) + 1];
    const double* const i = block.Pose[3 * (axis - 1) + 2];
    for (int p = 0; p < block.Count; p += LANES_WIDTH)
        AT(out + p) -= at.Tool(1) * READ(g + p) + at.Tool(2) * READ(h + p) + at.Tool(3) * READ(i + p);
}

// The rows of the distance model: those of the three axes, put together along the direction to the target.
LANES_INLINE void BuildDistanceRows(const BlockPoints& block, const FitModel& model, const Linearisation& at,
                                    double* A) {
    alignas(kLaneAlignment) double direction[3][kBlock];
    alignas(kLaneAlignment) double distance[kBlock];
    for (int axis = 1; axis <= 3; ++axis) Observation(block, at, axis, direction[axis - 1]);
    for (int p = 0; p < block.Count; ++p) {
        const double dx = direction[0][p], dy = direction[1][p], dz = direction[2][p];
        const double D = distance[p] = std::sqrt(dx * dx + dy * dy + dz * dz);
        // A distance of 0 or beyond the range has no direction. It spoils the fit of the point that has
        // it, and must not do so where the point takes no part.
        const bool takesPart = block.Weight == nullptr || block.Weight[p] != 0;
        for (int axis = 0; axis < 3; ++axis)
            direction[axis][p] = takesPart ? direction[axis][p] * (1 / D) : 0;
    }
    double* out = A;
    for (int k = 0; k < at.InnerCount; ++k, out += kBlock) {
        const InnerDerivative& inner = at.Inner[static_cast<std::size_t>(k)];
        Constant(block, 0, out);
        for (int axis = 1; axis <= 3; ++axis) {
            const double r[3] = {inner.D(axis, 1), inner.D(axis, 2), inner.D(axis, 3)};
            const double held = at.Held(inner, axis);
            for (int p = 0; p < block.Count; p += LANES_WIDTH)
                AT(out + p) += READ(direction[axis - 1] + p) *
                               (r[0] * READ(block.Start[0] + p) + r[1] * READ(block.Start[1] + p) +
                                r[2] * READ(block.Start[2] + p) + held);
        }
    }
    for (int axis = 1; axis <= 3; ++axis) {
        if (!at.AxisFloats[static_cast<std::size_t>(axis)]) continue;
        for (int p = 0; p < block.Count; p += LANES_WIDTH) AT(out + p) = READ(direction[axis - 1] + p);
        out += kBlock;
    }
    if (model.UnknownOf[kRDist] != 0) {
        Constant(block, 1, out);
        out += kBlock;
    }
    for (int p = 0; p < block.Count; p += LANES_WIDTH) AT(out + p) = READ(distance + p) - at.RDist;
}

// Products of R weighted columns with C columns, added to their sums. With Triangle only those on and
// above the diagonal. The block's sums begin at 0, so that no sum grows by single points for long.
template <int R, int C, bool Triangle>
LANES_INLINE void Tile(const double* weighted, const double* plain, int count, double* sums) {
    for (int half = 0; half < kLanes; half += LANES_WIDTH) {
        Vector sum[R][C];
#pragma GCC unroll 8
        for (int i = 0; i < R; ++i)
#pragma GCC unroll 8
            for (int j = 0; j < C; ++j) sum[i][j] = Vector{};
        for (int p = half; p < count; p += kLanes) {
            Vector row[R];
#pragma GCC unroll 8
            for (int i = 0; i < R; ++i) row[i] = READ(weighted + i * kBlock + p);
#pragma GCC unroll 8
            for (int j = 0; j < C; ++j) {
                const Vector column = READ(plain + j * kBlock + p);
#pragma GCC unroll 8
                for (int i = 0; i < R; ++i)
                    if (!Triangle || j >= i) sum[i][j] += row[i] * column;
            }
        }
#pragma GCC unroll 8
        for (int i = 0; i < R; ++i)
#pragma GCC unroll 8
            for (int j = 0; j < C; ++j)
                if (!Triangle || j >= i) AT(sums + (i * kMostColumns + j) * kLanes + half) += sum[i][j];
    }
}

template <int R>
LANES_INLINE void TilesOfRows(const double* weighted, const double* plain, int columns, int count,
                              double* sums) {
    Tile<R, R, true>(weighted, plain, count, sums);
    for (int j = R; j < columns; j += TILE) {
        const double* const right = plain + j * kBlock;
        double* const place = sums + j * kLanes;
        switch (columns - j) {
            case 1:
                Tile<R, 1, false>(weighted, right, count, place);
                break;
            case 2:
                Tile<R, 2, false>(weighted, right, count, place);
                break;
            case 3:
                Tile<R, 3, false>(weighted, right, count, place);
                break;
            default:
                Tile<R, TILE, false>(weighted, right, count, place);
                break;
        }
    }
}

// Adds the products of all columns of a block. The observation is a column, but no row.
LANES_INLINE void AddProducts(const BlockPoints& block, double* A, double* weighted, int columns,
                              double* sums) {
    const double* rows = A;
    if (block.Weight != nullptr) {
        for (int k = 0; k + 1 < columns; ++k)
            for (int p = 0; p < block.Count; p += LANES_WIDTH)
                AT(weighted + k * kBlock + p) = READ(A + k * kBlock + p) * READ(block.Weight + p);
        // Products with a factor 0 are left out: an observation without weight may be no number.
        double* const observation = A + (columns - 1) * kBlock;
        for (int p = 0; p < block.Count; p += LANES_WIDTH)
            AT(observation + p) = READ(block.Weight + p) != 0 ? READ(observation + p) : Vector{};
        rows = weighted;
    }
    for (int i = 0; i + 1 < columns; i += TILE) {
        const double* const left = rows + i * kBlock;
        const double* const plain = A + i * kBlock;
        double* const place = sums + i * (kMostColumns + 1) * kLanes;
        switch (columns - 1 - i) {
            case 1:
                TilesOfRows<1>(left, plain, columns - i, block.Count, place);
                break;
            case 2:
                TilesOfRows<2>(left, plain, columns - i, block.Count, place);
                break;
            case 3:
                TilesOfRows<3>(left, plain, columns - i, block.Count, place);
                break;
            default:
                TilesOfRows<TILE>(left, plain, columns - i, block.Count, place);
                break;
        }
    }
}

LANES_TARGET void Pass(const GatheredPoints& points, const FitModel& model, const Linearisation& at,
                       NormalSums& sums) {
    alignas(kLaneAlignment) double A[kMostColumns * kBlock];
    alignas(kLaneAlignment) double weighted[kMostColumns * kBlock];
    alignas(kLaneAlignment) double tail[kBlock];
    const bool distance = model.Mode == FitMode::Distance;
    for (int first = 0; first < points.Padded; first += kBlock) {
        BlockPoints block(points, first);
        for (int axis = 1; axis <= (distance ? 1 : 3); ++axis) {
            block.TakeWeight(points, first, axis, tail);
            if (distance) {
                BuildDistanceRows(block, model, at, A);
            } else {
                BuildDesignMatrix(block, model, at, axis, A);
            }
            const int columns = LayoutOf(model, at, axis).Columns;
            AddProducts(block, A, weighted, columns, sums.Place(axis, 0, 0));
        }
    }
}

#undef READ
#undef AT
#undef LANES_INLINE

#undef TILE
