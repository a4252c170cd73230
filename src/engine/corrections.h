// What each pass of the adjustment does with its corrections.
#pragma once

#include "fit/corrections.h"

// A largest correction below this ends the iteration. Reads Settings.BestFit_Etta.
double Threshold();

// Adds corrections to the job's floating parameters in the order of their indices, and wraps the angles.
//   x  corrections of the parameters themselves, not of the centred unknowns
void AddCorrections(const FitModel& model, const Column& x);
