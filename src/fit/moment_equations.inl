// The normal equations of few unknowns from moments for one instruction set, included by
// moment_equations.cpp once for each: see normal_pass.inl for what LANES_WIDTH and LANES_TARGET say. Here the
// lanes hold unknowns, and no sum runs across them.

typedef double Vector __attribute__((vector_size(LANES_WIDTH * sizeof(double)), may_alias));
typedef long long Bits __attribute__((vector_size(LANES_WIDTH * sizeof(double)), may_alias));

#define LANES_INLINE LANES_TARGET inline __attribute__((always_inline))
#define AT(place) (*reinterpret_cast<Vector*>(place))
#define READ(place) (*reinterpret_cast<const Vector*>(place))

LANES_INLINE Vector Absolute(Vector value) {
    return (Vector)((Bits)value & (Bits{} + 0x7fffffffffffffffLL));
}

// f' B f of the columns of unknowns, and with the observations behind them f' l: the observations where the
// moments were taken stand in m, what has changed since is a column as the others are.
LANES_TARGET void Equate(const PointMoments& moments, const LaneColumns* columns, int u, int whole,
                         LaneSums& sums) {
    for (int part = 0; part < whole; part += LANES_WIDTH) {
        for (int i = 0; i < u; ++i) AT(sums.Equations.N[At(i)].data() + part) = Vector{};
        Vector most = {}, behind = {};
        for (int j = 0; j < LANES_WIDTH; ++j) behind[j] = part + j == u ? 1 : 0;
        for (int axis = 1; axis <= 3; ++axis) {
            const LaneColumns& of = columns[axis - 1];
            const Square& B = moments.B[At(axis)];
            const Vector column[4] = {READ(of.Of[0] + part), READ(of.Of[1] + part), READ(of.Of[2] + part),
                                      READ(of.Of[3] + part)};
            Vector E[4];
#pragma GCC unroll 4
            for (std::size_t c = 0; c < 4; ++c)
                E[c] = moments.m[At(axis)][c] * behind + ((B[0][c] * column[0] + B[1][c] * column[1]) +
                                                          (B[2][c] * column[2] + B[3][c] * column[3]));
            const Vector size = (of.Root[0] * Absolute(column[0]) + of.Root[1] * Absolute(column[1])) +
                                (of.Root[2] * Absolute(column[2]) + of.Root[3] * Absolute(column[3]));
            most += size * size;
            for (int k = 0; k < of.Count; ++k) {
                const int place = of.Place[At(k)];
                AT(sums.Equations.N[At(place)].data() + part) +=
                    (of.Of[0][place] * E[0] + of.Of[1][place] * E[1]) +
                    (of.Of[2][place] * E[2] + of.Of[3][place] * E[3]);
            }
        }
        AT(sums.Most + part) = most;
    }
}

#undef READ
#undef AT
#undef LANES_INLINE
