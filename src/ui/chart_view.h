// The chart of a column of the main sheet on the screen.
#pragma once

#include <string>

#include "core/rooms.h"
#include "graphics/form_picture.h"

class QWidget;

namespace corvinade::ui {

// Gives the frame Chart of a form its chart; it fills the frame whatever its size.
void AddChart(QWidget& form);
// Takes over what the window holds where that, or the palette of the screen, is another than was shown.
void ShowChart(const QWidget& form);

// The chart as the bytes of a file, at a size and resolution of its own. Empty where there is no memory for
// it.
std::string ChartFile(const PictureOrder& order, PictureFormat format);

}  // namespace corvinade::ui
