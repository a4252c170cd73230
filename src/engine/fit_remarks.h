// What a fit has decided on its own, as notes.
#pragma once

#include "core/rooms.h"
#include "fit/norm_run.h"

namespace corvinade::engine {

// Adds a note for each remark of the run, in their order.
void NoteRemarks(const NormRun& run);

}  // namespace corvinade::engine
