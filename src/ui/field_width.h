// Fields that are wide enough for the number that stands in them.
#pragma once

#include "core/rooms.h"

class QLineEdit;

namespace corvinade::ui {

// Makes a field whose form says that it "fits" as wide as its text needs, at most about 30 digits. It does
// not become narrower again, so that a window is calm while numbers change; the form says how wide it is at
// least.
void FitWidthToText(QLineEdit& field);

}  // namespace corvinade::ui
