// What a fit has decided on its own, as notes.
#pragma once

#include "fit/norm_run.h"

// Adds a note for each remark of the run, in their order.
void NoteRemarks(const NormRun& run);
