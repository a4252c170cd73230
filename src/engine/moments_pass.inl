// The pass that sums moments for one instruction set, included by moments.cpp once for each: see
// normal_pass.inl for what LANES_WIDTH and LANES_TARGET say.

typedef double Vector __attribute__((vector_size(LANES_WIDTH * sizeof(double)), may_alias));

#define LANES_INLINE LANES_TARGET inline __attribute__((always_inline))
#define AT(place) (*reinterpret_cast<Vector*>(place))
#define READ(place) (*reinterpret_cast<const Vector*>(place))

// Adds a block's sums along one axis. Without Products only those with the observation, for the others
// are the same for all axes where no weights are.
template <bool Products, bool Weighted>
LANES_INLINE void AddMoments(const MomentBlock& block, const AxisOfPass& axis, double* sums) {
    for (int half = 0; half < kLanes; half += LANES_WIDTH) {
        Vector products[kProducts] = {};
        Vector observed[4] = {};
        for (int p = half; p < block.Count; p += kLanes) {
            const Vector x = READ(block.Start[0] + p);
            const Vector y = READ(block.Start[1] + p);
            const Vector z = READ(block.Start[2] + p);
            Vector wl =
                (READ(axis.Target + p) - axis.Shift) - (axis.M[0] * x + axis.M[1] * y + axis.M[2] * z);
            Vector wx = x, wy = y, wz = z;
            if (Weighted) {
                const Vector w = READ(axis.Weight + p);
                // A product with a weight of 0 is left out: such an observation may be no number.
                wl = w != 0 ? wl * w : Vector{};
                if (Products) {
                    wx *= w;
                    wy *= w;
                    wz *= w;
                    products[0] += w;
                }
            }
            observed[0] += wl;
            observed[1] += wl * x;
            observed[2] += wl * y;
            observed[3] += wl * z;
            if (!Products) continue;
            products[1] += wx;
            products[2] += wy;
            products[3] += wz;
            products[4] += wx * x;
            products[5] += wx * y;
            products[6] += wx * z;
            products[7] += wy * y;
            products[8] += wy * z;
            products[9] += wz * z;
        }
        for (int k = 0; k < 4; ++k) AT(sums + k * kLanes + half) += observed[k];
        if (!Products) continue;
        for (int k = 0; k < kProducts; ++k) AT(sums + (4 + k) * kLanes + half) += products[k];
    }
}

LANES_TARGET void Pass(const GatheredPoints& points, const Linearisation& at, MomentSums& sums) {
    alignas(kLaneAlignment) double tail[kMomentBlock];
    for (int first = 0; first < points.Padded; first += kMomentBlock) {
        const MomentBlock block(points, first);
        for (int axis = 1; axis <= 3; ++axis) {
            const AxisOfPass on(points, block, at, first, axis, tail);
            double* const place = sums.Place(axis, 0);
            if (!points.AllInUse) {
                AddMoments<true, true>(block, on, place);
            } else if (on.Weight != nullptr) {
                axis == 1 ? AddMoments<true, true>(block, on, place)
                          : AddMoments<false, true>(block, on, place);
            } else {
                axis == 1 ? AddMoments<true, false>(block, on, place)
                          : AddMoments<false, false>(block, on, place);
            }
        }
    }
}

#undef READ
#undef AT
#undef LANES_INLINE
