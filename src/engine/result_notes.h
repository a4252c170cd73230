// What there is to say of a result that its numbers alone do not tell.
#pragma once

#include <array>
#include <string>

#include "core/parameter_names.h"
#include "core/rooms.h"
#include "engine/norms.h"

namespace corvinade::engine {

// Notes of parameters that the points leave open, of gimbal lock, of a scale that has gone to 0, of a
// mirrored result and of missing redundancy. Takes the sigma and the significance of open parameters from
// Calculation: they are no numbers (NaN) then. Reads the job's parameters, Adjustment and Calculation.
void NoteResult(const NormFit& fit);

// Of a fit to a shape, whose nearest points shrink with the images of the points: the note of a scale that
// has gone to 0 alone.
void NoteCollapseOnShape(const GatheredPoints& points);

// The points leave this parameter of the last calculation open, or as good as open: it has no significance.
// So has the length of a tool vector of which a part is open. Those of Job.LeftOpen are among them; the
// others are arbitrary by themselves and not in what all of them do together, as two angles at gimbal lock.
bool IsLeftOpen(int parameter);
// Of these one that has no sigma either: nothing but a choice determines it.
bool IsWithoutSigma(int parameter);

// What stands in the places of sigma and significance of such a parameter, wherever they are shown.
inline constexpr const char* kOpenSigma = "-";
inline constexpr const char* kOpenSignificance = "open";

// "Rot x, Tra y and Tra z": the unknowns that are left open; "" where there are none.
std::string NamesLeftOpen();

}  // namespace corvinade::engine
