// The inverse of a transformation.
#pragma once

#include "fit/arrays.h"
#include "fit/parameters.h"

namespace corvinade::fit {

// x = Linear X + Shift leads from the target system back to the start system.
struct InverseMatrix {
    Mat3 Linear;  // W = S^-1 K^-1 R^-1
    Vec3 Shift;   // -W t, mm
};

// Always exists; a singular transformation gives huge values and no failure.
InverseMatrix InverseOf(const Parameters& parameters);

}  // namespace corvinade::fit
