// What each pass of the adjustment does with its corrections.
#pragma once

#include "core/rooms.h"
#include "fit/corrections.h"

namespace corvinade::engine {

// A largest correction below this ends the iteration. Reads Settings.BestFit_Etta.
double Threshold();

// Adds corrections to the job's floating parameters in the order of their indices, and wraps the angles.
//   x  corrections of the parameters themselves, not of the centred unknowns
void AddCorrections(const FitModel& model, const Column& x);

}  // namespace corvinade::engine
