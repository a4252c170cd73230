// The normal equations of a fit and their solution.
#include "fit/normal_equations.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "fit/any_vectors.h"
#include "fit/matrix.h"
#include "fit/require.h"

namespace corvinade::fit {

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

int EquationsOfPoint(const FitModel& model) {
    return model.Mode == FitMode::Distance ? 1 : 3;
}

int TranslationUnknown(const FitModel& model, int axis) {
    return model.UnknownOf[At(kTraX + axis - 1)];
}

}  // namespace

BlockLayout LayoutOf(const FitModel& model, const Linearisation& at, int axis) {
    BlockLayout layout;
    const auto add = [&layout](int unknown) { layout.Unknown[At(layout.Columns++)] = unknown; };
    for (int k = 0; k < at.InnerCount; ++k) add(at.Inner[At(k)].Unknown);
    if (model.Mode == FitMode::Distance) {
        for (int any = 1; any <= 3; ++any)
            if (at.AxisFloats[At(any)]) add(TranslationUnknown(model, any));
        if (model.UnknownOf[kRDist] != 0) add(model.UnknownOf[kRDist]);
    } else {
        if (model.Mode == FitMode::Tool && model.ToolFloats)
            for (int j = 0; j < 3; ++j) add(model.UnknownOf[At(kRvecX + j)]);
        if (at.AxisFloats[At(axis)]) add(TranslationUnknown(model, axis));
    }
    add(0);
    return layout;
}

void NormalEquations(const FitModel& model, const Linearisation& at, NormalSums& sums, Matrix& N, Column& w) {
    const int u = model.Unknowns;
    for (int i = 1; i <= u; ++i) {
        w[At(i)] = 0;
        for (int j = 1; j <= u; ++j) N(i, j) = 0;
    }
    for (int axis = 1; axis <= EquationsOfPoint(model); ++axis) {
        const BlockLayout layout = LayoutOf(model, at, axis);
        const int observation = layout.Columns - 1;
        for (int i = 0; i < observation; ++i) {
            const int row = layout.Unknown[At(i)];
            w[At(row)] += SumOfLanes(sums.Place(axis, i, observation));
            for (int j = i; j < observation; ++j) {
                const int column = layout.Unknown[At(j)];
                const double sum = SumOfLanes(sums.Place(axis, i, j));
                N(row, column) += sum;
                if (row != column) N(column, row) += sum;
            }
        }
    }
}

namespace {

// The inverse as MatrixInverse has it, operation by operation, for matrices whose rows fit into one or two
// groups of lanes. What stands in the lanes behind the row is never looked at.
template <int Lanes>
inline void Invert(int u, double (*B)[Lanes]) {
    for (int k = 0; k < u; ++k) {
        const double pivot = 1 / (1e-12 + B[k][k]);
        double rowK[Lanes];
        for (int j = 0; j < Lanes; ++j) rowK[j] = -B[k][j] * pivot;
        for (int i = 0; i < u; ++i) {
            const double factor = B[i][k];
            for (int j = 0; j < Lanes; ++j) B[i][j] += factor * rowK[j];
            B[i][k] = factor * pivot;
        }
        for (int j = 0; j < Lanes; ++j) B[k][j] = rowK[j];
        B[k][k] = pivot;
    }
}
ON_ANY_VECTORS void Invert8(int u, double (*B)[8]) {
    Invert<8>(u, B);
}
ON_ANY_VECTORS void Invert16(int u, double (*B)[16]) {
    Invert<16>(u, B);
}

// Elimination above and below each pivot; what it leaves in the column of w is the solution.
template <int Lanes>
inline __attribute__((always_inline)) void Eliminate(int u, SmallEquations& equations) {
    for (int k = 0; k < u; ++k) {
        double* const rowK = equations.N[At(k)].data();
        const double pivot = 1 / (1e-12 + rowK[k]);
        double scaled[Lanes];
        for (int j = 0; j < Lanes; ++j) scaled[j] = rowK[j] * pivot;
        for (int i = 0; i < u; ++i) {
            double* const row = equations.N[At(i)].data();
            const double factor = row[k];
            for (int j = 0; j < Lanes; ++j) row[j] -= factor * scaled[j];
        }
        for (int j = 0; j < Lanes; ++j) rowK[j] = scaled[j];
    }
}
ON_ANY_VECTORS void Eliminate8(int u, SmallEquations& equations) {
    Eliminate<8>(u, equations);
}
ON_ANY_VECTORS void Eliminate16(int u, SmallEquations& equations) {
    Eliminate<16>(u, equations);
}

template <int Lanes, class Inversion>
void InverseInLanes(const Matrix& N, int u, Inversion invert, Matrix& Q) {
    alignas(kLaneAlignment) double B[Lanes][Lanes] = {};
    for (int i = 0; i < u; ++i) std::copy_n(N.Row(i + 1) + 1, u, B[i]);
    invert(u, B);
    for (int i = 0; i < u; ++i) std::copy_n(B[i], u, Q.Row(i + 1) + 1);
}

void Inverse(const Matrix& N, int u, Matrix& Q) {
    if (u <= 8) {
        InverseInLanes<8>(N, u, Invert8, Q);
    } else if (u <= 16) {
        InverseInLanes<16>(N, u, Invert16, Q);
    } else {
        MatrixInverse(N, u, u, Q);
    }
}

}  // namespace

void SolveSmall(SmallEquations& equations, int u, Column& x) {
    Require(u <= kMostSmall);
    u < kLanes ? Eliminate8(u, equations) : Eliminate16(u, equations);
    for (std::size_t k = 0; k < At(u); ++k) x[k + 1] = equations.N[k][At(u)];
}

void SolveNormalEquations(const Matrix& N, const Column& w, int u, Matrix& Q, Column& x) {
    Inverse(N, u, Q);
    MatrixMultiply(Q, u, u, w, 1, x);
}

void FromCentre(const FitModel& model, const Linearisation& at, Column& x) {
    for (int axis = 1; axis <= 3; ++axis) {
        const int unknown = TranslationUnknown(model, axis);
        if (unknown == 0) continue;
        for (int k = 0; k < at.InnerCount; ++k) {
            const InnerDerivative& inner = at.Inner[At(k)];
            x[At(unknown)] -= inner.AtCentre(axis) * x[At(inner.Unknown)];
        }
    }
}

void FromCentre(const FitModel& model, const Linearisation& at, Matrix& Q) {
    const int u = model.Unknowns;
    Matrix L(u, u), LQ(u, u), transposed(u, u);
    for (int i = 1; i <= u; ++i) L(i, i) = 1;
    for (int axis = 1; axis <= 3; ++axis) {
        const int unknown = TranslationUnknown(model, axis);
        if (unknown == 0) continue;
        for (int k = 0; k < at.InnerCount; ++k)
            L(unknown, at.Inner[At(k)].Unknown) = -at.Inner[At(k)].AtCentre(axis);
    }
    MatrixMultiply(L, u, u, Q, u, LQ);
    MatrixTranspose(L, u, u, transposed);
    MatrixMultiply(LQ, u, u, transposed, u, Q);
}

namespace {

// What one axis of the plain model's residuals is made of.
struct PlainAxis {
    double Shift, Constant, M[3], D[3];

    // D p + t less the observation.
    inline double Of(double x, double y, double z, double target) const {
        const double l = (target - Shift) - (M[0] * x + M[1] * y + M[2] * z);
        return (D[0] * x + D[1] * y + D[2] * z + Constant) - l;
    }
};

// Plain pointers, all three axes in one loop: so the results of several points are computed at once.
ON_ANY_VECTORS void PlainResiduals(int count, const double* x, const double* y, const double* z,
                                   const double* qx, const double* qy, const double* qz, PlainAxis a,
                                   PlainAxis b, PlainAxis c, double* __restrict v) {
    for (int k = 0; k < count; ++k) {
        v[3 * k] = a.Of(x[k], y[k], z[k], qx[k]);
        v[3 * k + 1] = b.Of(x[k], y[k], z[k], qy[k]);
        v[3 * k + 2] = c.Of(x[k], y[k], z[k], qz[k]);
    }
}

// Those of one axis in eight lanes; `weight` may be null, where all points are in use.
ON_ANY_VECTORS void SquarePlainResiduals(int count, const double* x, const double* y, const double* z,
                                         const double* q, const double* weight, PlainAxis a,
                                         double* __restrict lanes) {
    double sums[kLanes] = {};
    for (int first = 0; first < count; first += kLanes) {
        double squares[kLanes] = {};
        const int here = std::min(kLanes, count - first);
        const auto square = [&](int k) {
            const double v = a.Of(x[first + k], y[first + k], z[first + k], q[first + k]);
            return v * v;
        };
        if (here == kLanes) {
            for (int k = 0; k < kLanes; ++k) squares[k] = square(k);
        } else {
            for (int k = 0; k < here; ++k) squares[k] = square(k);
        }
        if (weight != nullptr)
            for (int k = 0; k < here; ++k) squares[k] = weight[first + k] != 0 ? squares[k] : 0;
        for (int k = 0; k < kLanes; ++k) sums[k] += squares[k];
    }
    for (int k = 0; k < kLanes; ++k) lanes[k] = sums[k];
}

// The part of A x that a point's coordinates have, D p + t, is the same matrix for all points.
struct PlainStep {
    Mat3 D;
    Vec3 t;

    PlainStep(const FitModel& model, const Linearisation& at, const Column& x) {
        for (int axis = 1; axis <= 3; ++axis) {
            const int unknown = TranslationUnknown(model, axis);
            t(axis) = unknown == 0 ? 0 : x[At(unknown)];
            for (int k = 0; k < at.InnerCount; ++k) {
                const InnerDerivative& inner = at.Inner[At(k)];
                const double correction = x[At(inner.Unknown)];
                t(axis) += at.Held(inner, axis) * correction;
                for (int j = 1; j <= 3; ++j) D(axis, j) += inner.D(axis, j) * correction;
            }
        }
    }
    PlainAxis Axis(const Linearisation& at, int k) const {
        return {at.Shift(k), t(k), {at.M(k, 1), at.M(k, 2), at.M(k, 3)}, {D(k, 1), D(k, 2), D(k, 3)}};
    }
};

void PlainResiduals(const GatheredPoints& points, const Linearisation& at, const PlainStep& step, Column& v) {
    PlainResiduals(points.Count, points.Start[0].data(), points.Start[1].data(), points.Start[2].data(),
                   points.Target[0].data(), points.Target[1].data(), points.Target[2].data(),
                   step.Axis(at, 1), step.Axis(at, 2), step.Axis(at, 3), v.data() + 1);
}

}  // namespace

void Residuals(const GatheredPoints& points, const FitModel& model, const Linearisation& at, const Column& x,
               Column& v) {
    const PlainStep step(model, at, x);
    const auto& [D, t] = step;
    const bool tool = model.Mode == FitMode::Tool;
    const bool distance = model.Mode == FitMode::Distance;
    Vec3 toolCorrection;
    if (tool && model.ToolFloats)
        for (int j = 1; j <= 3; ++j) toolCorrection(j) = x[At(model.UnknownOf[At(kRvecX + j - 1)])];
    const double distanceCorrection =
        distance && model.UnknownOf[kRDist] != 0 ? x[At(model.UnknownOf[kRDist])] : 0;

    if (model.Mode == FitMode::Coincide) return PlainResiduals(points, at, step, v);
    for (int i = 1; i <= points.Count; ++i) {
        const std::size_t k = At(i - 1);
        const double p[3] = {points.Start[0][k], points.Start[1][k], points.Start[2][k]};
        double l[3], Ax[3];
        for (int axis = 1; axis <= 3; ++axis) {
            l[axis - 1] = (points.Target[At(axis - 1)][k] - at.Shift(axis)) -
                          (at.M(axis, 1) * p[0] + at.M(axis, 2) * p[1] + at.M(axis, 3) * p[2]);
            Ax[axis - 1] = D(axis, 1) * p[0] + D(axis, 2) * p[1] + D(axis, 3) * p[2] + t(axis);
            if (!tool) continue;
            const std::size_t g = At(3 * (axis - 1));
            for (int j = 0; j < 3; ++j) {
                const double pose = points.Pose[g + At(j)][k];
                l[axis - 1] -= at.Tool(j + 1) * pose;
                Ax[axis - 1] += toolCorrection(j + 1) * pose;
            }
        }
        if (distance) {
            const double length = std::sqrt(l[0] * l[0] + l[1] * l[1] + l[2] * l[2]);
            // A point out of use may stand on its target, where no direction leads to it.
            const double along = length == 0 ? 0 : (l[0] * Ax[0] + l[1] * Ax[1] + l[2] * Ax[2]) / length;
            v[At(i)] = along + distanceCorrection - (length - at.RDist);
        } else {
            for (int axis = 1; axis <= 3; ++axis) v[At(3 * (i - 1) + axis)] = Ax[axis - 1] - l[axis - 1];
        }
    }
    if (distance)
        for (int row = points.Count + 1; row <= 3 * points.Count; ++row) v[At(row)] = 0;
}

Vec3 SquaresOfResiduals(const GatheredPoints& points, const FitModel& model, const Linearisation& at,
                        const Column& x) {
    const PlainStep step(model, at, x);
    Vec3 squares;
    for (int axis = 1; axis <= 3; ++axis) {
        alignas(kLaneAlignment) double lanes[kLanes];
        const double* const weight = points.AllInUse ? nullptr : points.Weight[At(axis - 1)].data();
        SquarePlainResiduals(points.Count, points.Start[0].data(), points.Start[1].data(),
                             points.Start[2].data(), points.Target[At(axis - 1)].data(), weight,
                             step.Axis(at, axis), lanes);
        squares(axis) = SumOfLanes(lanes);
    }
    return squares;
}

}  // namespace corvinade::fit
