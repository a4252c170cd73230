// The pass that sums moments for one instruction set, included by moments.cpp once for each: see
// normal_pass.inl for what LANES_WIDTH and LANES_TARGET say.

typedef double Vector __attribute__((vector_size(LANES_WIDTH * sizeof(double)), may_alias));
typedef long long Bits __attribute__((vector_size(LANES_WIDTH * sizeof(double)), may_alias));

#define LANES_INLINE LANES_TARGET inline __attribute__((always_inline))
#define AT(place) (*reinterpret_cast<Vector*>(place))
#define READ(place) (*reinterpret_cast<const Vector*>(place))

LANES_INLINE Vector Absolute(Vector value) {
    return (Vector)((Bits)value & (Bits{} + 0x7fffffffffffffffLL));
}

// Adds a block's sums along one axis. Without Products only those with the observation, for the others
// are the same for all axes where no weights are. In the tool model the weights and the weighted
// observations are kept for the sums with the pose.
template <bool Products, bool Weighted, bool Reweighted, bool Tool>
LANES_INLINE void AddMoments(const MomentBlock& block, const AxisOfPass& axis, double* sums,
                             ToolScratch& kept) {
    for (int half = 0; half < kLanes; half += LANES_WIDTH) {
        Vector products[kProducts] = {};
        Vector observed[4] = {};
        Vector absolute = {};
        for (int p = half; p < block.Count; p += kLanes) {
            const Vector x = READ(block.Start[0] + p);
            const Vector y = READ(block.Start[1] + p);
            const Vector z = READ(block.Start[2] + p);
            Vector wl =
                (READ(axis.Target + p) - axis.Shift) - (axis.M[0] * x + axis.M[1] * y + axis.M[2] * z);
            if (Tool)
                wl -= axis.Tool[0] * READ(axis.Pose[0] + p) + axis.Tool[1] * READ(axis.Pose[1] + p) +
                      axis.Tool[2] * READ(axis.Pose[2] + p);
            Vector wx = x, wy = y, wz = z;
            if (Weighted || Reweighted) {
                // A product with a weight of 0 is left out: such an observation may be no number.
                Vector w = Weighted ? READ(axis.Weight + p) : Vector{};
                if (Reweighted) {
                    const Vector size = Absolute(wl);
                    const Vector made = 1 / (kLeastResidual + size);
                    absolute += Weighted ? (w != 0 ? size : Vector{}) : size;
                    const Vector use = w;
                    w = Weighted ? (use != 0 ? made : Vector{}) : made;
                    wl = Weighted ? (use != 0 ? wl * w : Vector{}) : wl * w;
                } else {
                    wl = w != 0 ? wl * w : Vector{};
                }
                if (Products) {
                    wx *= w;
                    wy *= w;
                    wz *= w;
                    products[0] += w;
                }
                if (Tool) AT(kept.Weight + p) = w;
            }
            if (Tool) AT(kept.Observed + p) = wl;
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
        if (Reweighted) AT(sums + kAbsolute * kLanes + half) += absolute;
        if (!Products) continue;
        for (int k = 0; k < kProducts; ++k) AT(sums + (4 + k) * kLanes + half) += products[k];
    }
}

// Adds a block's sums with the three numbers of the pose along one axis.
LANES_INLINE void AddToolMoments(const MomentBlock& block, const AxisOfPass& axis, bool weighted,
                                 const ToolScratch& kept, double* sums) {
    for (int half = 0; half < kLanes; half += LANES_WIDTH) {
        Vector sum[kToolSums] = {};
        for (int p = half; p < block.Count; p += kLanes) {
            const Vector point[3] = {READ(block.Start[0] + p), READ(block.Start[1] + p),
                                     READ(block.Start[2] + p)};
            const Vector wl = READ(kept.Observed + p);
            Vector g[3], wg[3];
#pragma GCC unroll 3
            for (int j = 0; j < 3; ++j) {
                g[j] = READ(axis.Pose[j] + p);
                wg[j] = weighted ? g[j] * READ(kept.Weight + p) : g[j];
                sum[j] += wl * g[j];
                sum[3 + 4 * j] += wg[j];
#pragma GCC unroll 3
                for (int k = 0; k < 3; ++k) sum[4 + 4 * j + k] += wg[j] * point[k];
            }
            sum[15] += wg[0] * g[0];
            sum[16] += wg[0] * g[1];
            sum[17] += wg[0] * g[2];
            sum[18] += wg[1] * g[1];
            sum[19] += wg[1] * g[2];
            sum[20] += wg[2] * g[2];
        }
        for (int k = 0; k < kToolSums; ++k) AT(sums + (kAbsolute + 1 + k) * kLanes + half) += sum[k];
    }
}

template <bool Reweighted, bool Tool>
LANES_INLINE void AddAxis(const MomentBlock& block, const AxisOfPass& on, bool products, double* place,
                          ToolScratch& kept) {
    if (on.Weight != nullptr) {
        products ? AddMoments<true, true, Reweighted, Tool>(block, on, place, kept)
                 : AddMoments<false, true, Reweighted, Tool>(block, on, place, kept);
    } else {
        products ? AddMoments<true, false, Reweighted, Tool>(block, on, place, kept)
                 : AddMoments<false, false, Reweighted, Tool>(block, on, place, kept);
    }
    if (Tool) AddToolMoments(block, on, Reweighted || on.Weight != nullptr, kept, place);
}

LANES_TARGET void Pass(const GatheredPoints& points, const Linearisation& at, const MomentPass& pass,
                       MomentSums& sums) {
    alignas(kLaneAlignment) double tail[kMomentBlock];
    ToolScratch kept;
    for (int first = 0; first < points.Padded; first += kMomentBlock) {
        const MomentBlock block(points, first);
        for (int axis = 1; axis <= 3; ++axis) {
            const AxisOfPass on(points, block, at, pass, first, axis, tail);
            double* const place = sums.Place(axis, 0);
            const bool products = axis == 1 || pass.Reweighted || !points.AllInUse;
            if (pass.Tool) {
                pass.Reweighted ? AddAxis<true, true>(block, on, products, place, kept)
                                : AddAxis<false, true>(block, on, products, place, kept);
            } else {
                pass.Reweighted ? AddAxis<true, false>(block, on, products, place, kept)
                                : AddAxis<false, false>(block, on, products, place, kept);
            }
        }
    }
}

#undef READ
#undef AT
#undef LANES_INLINE
