// The menu "Window": the windows inside the frame, and how they stand to each other.
#pragma once

#include "core/rooms.h"

class QMainWindow;

namespace corvinade::ui {

void FurnishWindowMenu(const QMainWindow& frame);

}  // namespace corvinade::ui
