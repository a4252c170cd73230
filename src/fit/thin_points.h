// Points all but on a line or in a plane: what they stand off it by is lost in sums about any other axes.
#pragma once

#include <optional>

#include "fit/best_transformation.h"
#include "fit/gathered_points.h"

namespace corvinade::fit {

// A rotation matrix whose columns are the principal axes of the start points, the longest first, where these
// are so thin that double precision loses in the sums about the axes of the coordinates what a fit of the
// model depends on: rigid and similarity on a line, affine on a line or in a plane. Nothing for other points
// and models, and where what stands off is the rounding of the coordinates themselves.
std::optional<Mat3> AxesOfThinPoints(const GatheredPoints& points, const PointMoments& moments,
                                     PlainModel model);

// The points with their start coordinates along those axes, about the same centre: p becomes axes' p, and a
// transformation M of them M axes. Each small coordinate then has its own last digits, and so have the sums.
GatheredPoints AlongAxes(const GatheredPoints& points, const Mat3& axes);

// The best of a model as by BestOfModel, of moments of points along their axes. Products are scaled by the
// spread along each axis before they are solved or decomposed, so that small ones keep their digits (Demmel
// and Veselic, Jacobi's method is more accurate than QR, SIAM J. Matrix Anal. Appl. 13, 1992). Where an
// affine transformation fits best as a mirror image there is no least proper one: the nearer it comes to a
// flat image, the less its sum. The proper one beside it is then that without what stands off. Empty where
// the target tells no more than the usual sums do.
BestTransformations BestOfThinPoints(const GatheredPoints& points, const PointMoments& moments,
                                     PlainModel model);

}  // namespace corvinade::fit
