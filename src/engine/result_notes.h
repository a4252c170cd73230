// What there is to say of a result that its numbers alone do not tell.
#pragma once

#include "engine/norms.h"

// Notes of parameters that the points leave open, of gimbal lock, of a scale that has gone to 0, of a
// mirrored result and of missing redundancy. Takes the sigma and the significance of open parameters from
// Calculation: they are no numbers (NaN) then. Reads the job's parameters, Adjustment and Calculation.
void NoteResult(const NormFit& fit);

// "Rot x": a parameter by its number, as the tables have it.
const char* ParameterName(int parameter);
