// The trumpet plot on the screen: axes and points, painted once for each size, and the point under the mouse.
#pragma once

#include "core/rooms.h"

class QWidget;

namespace corvinade::ui {

// Gives the frame Trumpet of a form its plot.
void AddTrumpet(QWidget& form);
// Paints it anew where it has been drawn since, or the units are others; otherwise costs nothing.
void ShowTrumpet(const QWidget& form);

}  // namespace corvinade::ui
