// The parameters that make up a matrix, by the sectors of the shown angle unit, and what is said of none.
#pragma once

#include "core/rooms.h"
#include "fit/inverted_solutions.h"

namespace corvinade::engine {

// As InvertedSolutions of fit/. Where none is found a message says so and `list` was never sized.
void InvertedSolutions(const Mat3& W, bool anyShear, bool anyScale, Matrix& list);

void DecomposeShear(const Mat3& K, Vec3& first, Vec3& second);

// The one angle whose sine is about s and whose cosine is about c.
double ChooseAngleBySinCos(double s, double c);

}  // namespace corvinade::engine
