// The system's clipboard. Work that copies at every step hands its texts over a few times a second only; the
// last one always arrives.
#pragma once

#include "core/rooms.h"

namespace corvinade::ui {

// Hands over what waits. Called whenever the screen is brought up to date; inside running work only what has
// waited long enough goes.
void PutClipboard(bool insideWork);

}  // namespace corvinade::ui
