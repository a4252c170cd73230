// The job's result in the neatest of its equal forms.
#pragma once

#include "core/rooms.h"
#include "engine/design.h"
#include "fit/equal_forms.h"

namespace corvinade::engine {

// The neater rotation for the result of a fit, with Q (TakeNicerRotation). Writes the rotation's copies too.
void NiceRotSolOfFit(const FitModel& model, Matrix& Q);

// Takes the job's parameters from a form with a negative scale to the equal one without, if there is one, and
// says so in a note. False, and nothing is changed, where there is none.
bool TakePositiveForm(const FitModel& model, Matrix& Q);

}  // namespace corvinade::engine
