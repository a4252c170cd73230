// The inverse of the transformation, as a matrix and as parameters of the model's own form.
#pragma once

#include "core/arrays.h"
#include "core/rooms.h"

namespace corvinade::engine {

// x = InvMatrix X + (InvTraX, InvTraY, InvTraZ) leads back from the target system to the start system.
struct InverseRecord {
    Mat3 InvMatrix;                                // W = S^-1 K^-1 R^-1
    double InvTraX = 0, InvTraY = 0, InvTraZ = 0;  // mm
    // (0 to n, 0 to 9), a row a solution: columns 1 to 3 the rotation, 4 to 6 the scales, 7 to 9 xy, azimuth
    // and zt, rad; never sized when there is none.
    Matrix InvSolutions;
};
inline InverseRecord Inverse;

// Inverts the job's transformation and looks for parameter sets that reproduce it. They need not exist: the
// inverse has the order of scale, shear and rotation reversed, so that with different scales and a rotation
// it generally has no such set, which a message then says. Matrix and translation always exist; a singular
// transformation gives huge values and no failure.
// Reads Job.TraX to AngleZtoXY; writes Inverse.
void InverseTransformation();

}  // namespace corvinade::engine
