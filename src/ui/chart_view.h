// The chart of a column of the main sheet on the screen.
#pragma once

#include "core/rooms.h"

class QWidget;

namespace corvinade::ui {

// Gives the frame Chart of a form its chart; it fills the frame whatever its size.
void AddChart(QWidget& form);
// Takes over what the window holds where that, or the palette of the screen, is another than was shown.
void ShowChart(const QWidget& form);

}  // namespace corvinade::ui
