// Parameters of the model's own form that make up a given matrix.
#pragma once

#include "fit/arrays.h"

namespace corvinade::fit {

// Finds sets of rotation, scale and shear with R K S = W, to a sum of differences below 1e-5: (0 to n, 0 to
// 9), columns 1 to 3 the rotation, 4 to 6 the scales, 7 to 9 xy, azimuth and zt; rad. Sorted by xy, then
// rotation about z, then azimuth. Never sized (Rows -1) where there is none; a matrix with infinite or
// undefined elements has none.
//   anyShear, anyScale  whether shear angles other than 0 and scales other than 1 are to be looked for;
//                       the one scale of an axis is the length of its image
//   perRad              of the angle unit whose sectors choose among equal angles (ChooseAngleBySinCos)
Matrix InvertedSolutions(const Mat3& W, bool anyShear, bool anyScale, double perRad);

// Splits a shear matrix into its two triples (xy, azimuth, zt), rad: leaning by zt towards the azimuth, and
// by -zt towards the opposite side. A matrix that is no shear gives some angles and no failure.
void DecomposeShear(const Mat3& K, double perRad, Vec3& first, Vec3& second);

}  // namespace corvinade::fit
