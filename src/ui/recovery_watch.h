// Recovery copies on the desktop: between events, and before a signal ends the program.
#pragma once

#include "core/rooms.h"

namespace corvinade::ui {

// Begins with the copies; shows what was left behind. A termination and a hang-up write the copy first from
// now on: the program then ends by the signal. One that comes again while long work keeps it waiting ends it
// at once.
void WatchRecovery();

// An event of the user begins, or has ended, with none around it.
void TendBeforeEvent();
void TendAfterEvent();

}  // namespace corvinade::ui
