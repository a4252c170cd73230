// The plain and the tool model by moments. Each residual is linear in the twelve numbers (shift, R K S)
// and in the tool vector, so a handful of weighted sums an axis hold all that the points say to a fit: for
// the plain model ten of [1 p][1 p]' and four of l [1 p], for the tool model those of [1 p g], g the row
// of the pose's matrix. One pass over the points carries every step of a Gauss-Newton iteration.
#pragma once

#include <array>

#include "fit/arrays.h"
#include "fit/design.h"
#include "fit/gathered_points.h"
#include "fit/normal_equations.h"

namespace corvinade::fit {

inline constexpr int kMostPlaces = 7;

// p are the start points about their centre, l the observations of the linearisation that the sums were
// taken at: sums of l and not of the targets, or the digits of the deviations would be lost.
struct PointMoments {
    Mat3 M;      // of that linearisation
    Vec3 Shift;  // mm
    Vec3 Tool;   // mm; 0 in the plain model
    int Places = 4;
    // By axis 1 to 3 and place: 1, x, y, z are places 0 to 3, the pose's three numbers places 4 to 6.
    std::array<std::array<std::array<double, kMostPlaces>, kMostPlaces>, 4> B{};  // w [1 p g][1 p g]'
    std::array<std::array<double, kMostPlaces>, 4> m{};                           // w l [1 p g]
    bool Reweighted = false;  // the weights are those that the observations themselves make
    double AbsoluteSum = 0;   // of |l|, only where reweighted; mm
};

// Which sums a pass takes.
struct MomentPass {
    bool Tool = false;  // those of the tool model; the points have poses then
    // Each row in use weighs ResidualWeight of its own observation. The columns of weights then only say
    // which rows are in use.
    bool Reweighted = false;
    VectorWidth Width = WidestVectors();
};

// What a row weighs in a fit for the least sum of absolute residuals. The summand keeps a residual of 0
// from an infinite weight.
inline constexpr double kLeastResidual = 1e-12;
inline double ResidualWeight(double residual) {
    return 1 / (kLeastResidual + (residual < 0 ? -residual : residual));
}

// Whether the moments say as much as the rows do: with weights that are alike, and not in the distance
// model, which has a root in each row.
bool MomentsServe(const FitModel& model, const GatheredPoints& points);

// One pass over all points, the same bit for bit on every instruction set. The short form takes the sums
// of the plain model.
void SumMoments(const GatheredPoints& points, const Linearisation& at, const MomentPass& pass,
                PointMoments& moments);
void SumMoments(const GatheredPoints& points, const Linearisation& at, PointMoments& moments);

// Writes the weights that a reweighted pass gave to the rows into the points' columns.
void TakeResidualWeights(const PointMoments& moments, GatheredPoints& points);

// Normal equations N x = w of the centred unknowns at any linearisation of the same points. False when
// products of the moments cancel so far that the rows themselves would give digits that are lost here.
bool NormalEquations(const FitModel& model, const Linearisation& at, const PointMoments& moments, Matrix& N,
                     Column& w);

// The same for models without tool of at most kMostSmall unknowns. The equations are the same bit for bit
// on every instruction set; which one is used can be told, up to the widest that the machine has.
bool NormalEquations(const FitModel& model, const Linearisation& at, const PointMoments& moments,
                     VectorWidth width, SmallEquations& equations);
bool NormalEquations(const FitModel& model, const Linearisation& at, const PointMoments& moments,
                     SmallEquations& equations);

// How far the transformed points have moved since the moments were taken, as a share of the cloud's
// size. The sums l [1 p] carried along lose as many digits as this has before the point.
double MovedSince(const Linearisation& at, const PointMoments& moments);

}  // namespace corvinade::fit
