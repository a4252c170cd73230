// The search among candidates of rotation and shear for those that make up a given matrix.
#pragma once

#include "fit/arrays.h"

namespace corvinade::fit {

// Candidates of the parameters of R K S, rad; element 0 is unused. The scales are settled already.
struct Candidates {
    Column RotX, RotY, RotZ;
    Column AngleXY, Azimuth, AngleZtoXY;
    Vec3 Scale;
};

// Tries every combination, the rotation about x running slowest and AngleZtoXY fastest. One is accepted
// when the sum of |R K S - W| over the elements is below 1e-5. Of accepted combinations that differ by no
// more than 1e-4 in every column the first stays.
//   rows  out, (0 to n, 0 to 7): columns 1 to 7 are RotX, RotY, RotZ, AngleXY, Azimuth, AngleZtoXY, sum;
//         never sized when nothing was accepted
// Candidates that are no numbers are passed over. At most 32 candidates each, so that the time stays
// bounded: the largest search takes a few milliseconds.
void SearchCombinations(const Mat3& W, Candidates candidates, Matrix& rows);

}  // namespace corvinade::fit
