// Whether two point sets tell right from left.
#pragma once

#include <functional>

#include "fit/gathered_points.h"
#include "fit/norm_run.h"

namespace corvinade::fit {

// What the points say of a transformation that mirrors them. Points all but in one plane are carried as well
// by one that does not: on the other side of the plane stand but the small distances by which they are off
// it.
struct Handedness {
    // Both sets have relief enough: their smallest directions are ten times as large as the noise, or go
    // together so well that chance would make it of noise alone no more than once in ten thousand times.
    bool Sure = true;
    // How far the images of the start points stand off their plane, mm: root of the sum of squares, sum, and
    // largest.
    double Root = 0, Sum = 0, Largest = 0;
};

// The transformation x -> M x + shift mirrors, of points as they are gathered; pairs that take no part, or
// with some of their coordinates only, say nothing. Of the least sum (LeastSum) pairs that lie twenty times
// as far off as the middle one do not, either: they are blunders. The measure of going together is the least
// canonical correlation of the sets (H. Hotelling, Relations between two sets of variates, Biometrika 28,
// 1936), which no scale, turn or shear of either set changes.
//   unknowns  of the fit, for the size of its noise
//   scale     of the target by the start, where the transformation may have pressed the relief flat
Handedness HandednessOf(const GatheredPoints& points, const Mat3& M, const Vec3& shift, FitNorm norm,
                        int unknowns, double scale);

// The same of the transformation at which a fit stands, in its norm; with a tool vector the targets are the
// tips of the poses.
Handedness HandednessHere(const NormRun& fit);

// Size of the target set by that of the start set: by the roots of the sums of squares about the middles, and
// of the least sum by the middle one of the ratios of distances, which blunders hardly change. NaN where the
// start has no size.
double SizeRatio(const GatheredPoints& points, FitNorm norm);
double SizeRatioHere(const NormRun& fit);  // of a fit where it stands, in its norm, of tips likewise

// A mirrored result may stand: it fits better than a proper one by more than noise explains, by its size
// (MirrorIsReal in mirror.h) and by what the points tell.
//   proper, mirrored  what the norm makes least, as of MirrorIsReal
bool MirrorMayStand(double proper, double mirrored, double rounding, int redundancy, FitNorm norm,
                    const std::function<Handedness()>& handedness);

}  // namespace corvinade::fit
