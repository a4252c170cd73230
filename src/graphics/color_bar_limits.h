// The two limits of the colour scale, between the fields of their dialog and the active window.
#pragma once

#include <string>

#include "core/rooms.h"
#include "core/screen_record.h"

namespace corvinade::graphics {

double ColorBar_NumberOf(std::string text);  // 0 where the text is no number

// Takes the limits from the fields. On the desktop a signed component keeps an end on each side of zero: what
// would take it is not taken, and the dialog says so. True where the user has typed one of them.
bool ColorBar_TakeLimits(ScreenRecord& state);

void ColorBar_SetUpperLimit();  // from the largest shown size of the active window
void ColorBar_SetLowerLimit();  // from the smallest

}  // namespace corvinade::graphics
