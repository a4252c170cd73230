// The round trip through the clipboard: a table of pairs becomes a job, and its result comes behind the
// table.
#pragma once

#include "core/rooms.h"

namespace corvinade::import {

void ClipboardRoundTrip();  // the menu entry "&Spezial"

}  // namespace corvinade::import
