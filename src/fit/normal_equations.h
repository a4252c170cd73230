// The normal equations of a fit, summed over the points block by block, and their solution. No matrix
// of observations by parameters ever exists: the rows of a block are built, added and dropped.
#pragma once

#include <array>

#include "fit/arrays.h"
#include "fit/design.h"
#include "fit/gathered_points.h"
#include "fit/lanes.h"

namespace corvinade::fit {

inline constexpr int kBlock = 128;       // points a block, so that its rows stay in the nearest cache
inline constexpr int kMostColumns = 16;  // inner and tool columns, translation or distance, observation

// Which unknown each column of a block belongs to; the observation l is the last column.
struct BlockLayout {
    int Columns = 0;
    std::array<int, kMostColumns> Unknown{};
};
//   axis  1 to 3; the distance model has one equation a point and no axes
BlockLayout LayoutOf(const FitModel& model, const Linearisation& at, int axis);

// Products of the columns summed over the points, an upper triangle for each axis, in eight lanes.
struct NormalSums {
    alignas(kLaneAlignment) std::array<double, 3 * kMostColumns * kMostColumns * kLanes> Lanes;

    double* Place(int axis, int row, int column) {
        return &Lanes[static_cast<std::size_t>((((axis - 1) * kMostColumns + row) * kMostColumns + column) *
                                               kLanes)];
    }
};

// One pass over all points. The sums are the same, bit for bit, on every instruction set; which one is
// used can be told, up to the widest that the machine has.
void SumNormalEquations(const GatheredPoints& points, const FitModel& model, const Linearisation& at,
                        VectorWidth width, NormalSums& sums);
void SumNormalEquations(const GatheredPoints& points, const FitModel& model, const Linearisation& at,
                        NormalSums& sums);

// Puts the sums together: N x = w for the unknowns 1 to u, the translations being those of the centre.
void NormalEquations(const FitModel& model, const Linearisation& at, NormalSums& sums, Matrix& N, Column& w);

// One solution: Q the inverse of N and x = Q w, both of the centred unknowns. A singular N gives huge
// values and no failure.
void SolveNormalEquations(const Matrix& N, const Column& w, int u, Matrix& Q, Column& x);

// Normal equations of few unknowns, in whole lanes and without memory of their own, for fits that are
// repeated thousands of times. Unknown k stands at place k - 1.
inline constexpr int kMostSmall = 15;
struct SmallEquations {
    // The column behind the last unknown is w, the ones behind that are of no meaning.
    alignas(kLaneAlignment) std::array<std::array<double, kMostSmall + 1>, kMostSmall + 1> N;
};

// The solution of u equations without the inverse, which is left to the fits that are told of: by the
// pivots of MatrixInverse in their order, so that a singular N gives huge values here too. Destroys N.
void SolveSmall(SmallEquations& equations, int u, Column& x);

// From the centred unknowns to the parameters themselves: x = L x', Q = L Q' L'.
void FromCentre(const FitModel& model, const Linearisation& at, Column& x);
void FromCentre(const FitModel& model, const Linearisation& at, Matrix& Q);

// v = A x - l of one linearisation, x the corrections of the centred unknowns. Three rows a pair; the
// distance model has its row i for pair i, and 0 in the rows behind.
void Residuals(const GatheredPoints& points, const FitModel& model, const Linearisation& at, const Column& x,
               Column& v);

// For each axis the sum of the squared residuals of the plain model, without keeping these. Points whose
// weight is 0 do not count, all others count once.
Vec3 SquaresOfResiduals(const GatheredPoints& points, const FitModel& model, const Linearisation& at,
                        const Column& x);

}  // namespace corvinade::fit
