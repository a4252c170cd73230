// Fonts and images need Qt's application object; a program without a screen starts it at its first picture.
#pragma once

#include "core/rooms.h"

namespace corvinade::paint {

// Starts Qt with the platform that has no screen, unless an application is there already. What Qt says about
// the machine's locale goes nowhere, and the locale for numbers stays as it was.
void EnsureGui();

}  // namespace corvinade::paint
