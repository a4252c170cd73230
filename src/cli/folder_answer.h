// The answer to the choice of a folder by its path alone.
#pragma once

#include "core/rooms.h"

namespace corvinade::cli {

// Chooses the folder that is queued in the window for it, which is open, and records the dialog; the window
// is closed then. False where none is queued.
bool ChooseQueuedFolder();

}  // namespace corvinade::cli
