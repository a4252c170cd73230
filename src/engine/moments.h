// The plain model by moments. Each residual is linear in the twelve numbers (shift, R K S), so fourteen
// weighted sums an axis hold all that the points say to a fit: ten of [1 p][1 p]' and four of l [1 p].
// One pass over the points carries every step of a Gauss-Newton iteration.
#pragma once

#include <array>

#include "core/arrays.h"
#include "engine/design.h"
#include "engine/gathered_points.h"
#include "engine/normal_equations.h"

// p are the start points about their centre, l the observations of the linearisation that the sums were
// taken at: sums of l and not of the targets, or the digits of the deviations would be lost.
struct PointMoments {
    Mat3 M;      // of that linearisation
    Vec3 Shift;  // mm
    // By axis 1 to 3 and place: 1, x, y, z are places 0 to 3.
    std::array<std::array<std::array<double, 4>, 4>, 4> B{};  // sums of w [1 p][1 p]'
    std::array<std::array<double, 4>, 4> m{};                 // sums of w l [1 p]
};

// One pass over all points of the plain model, the same bit for bit on every instruction set.
void SumMoments(const GatheredPoints& points, const Linearisation& at, VectorWidth width,
                PointMoments& moments);
void SumMoments(const GatheredPoints& points, const Linearisation& at, PointMoments& moments);

// Normal equations N x = w of the centred unknowns at any linearisation of the same points. False when
// products of the moments cancel so far that the rows themselves would give digits that are lost here.
bool NormalEquations(const FitModel& model, const Linearisation& at, const PointMoments& moments, Matrix& N,
                     Column& w);

// How far the transformed points have moved since the moments were taken, as a share of the cloud's
// size. The sums l [1 p] carried along lose as many digits as this has before the point.
double MovedSince(const Linearisation& at, const PointMoments& moments);
