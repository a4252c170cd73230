// The picture of the colour scale in its dialog.
#pragma once

#include "core/rooms.h"

class QWidget;

namespace corvinade::ui {

// Gives the frame ScreenColorBar of a form its picture, which is drawn anew when `ShowColourSample` finds the
// colours or the limits changed.
void AddColourSample(QWidget& form);
void ShowColourSample(const QWidget& form);

}  // namespace corvinade::ui
