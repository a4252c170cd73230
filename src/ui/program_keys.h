// The keys that act in the whole program, wherever the keyboard is.
#pragma once

#include "core/rooms.h"

class QObject;

namespace corvinade::ui {

// A filter for all events of the application: F5 calculates; F1 tells of the window that it is
// pressed in; Esc stops what runs, or closes the dialog that
// it is pressed in. It belongs to `parent`.
QObject* NewProgramKeys(QObject& parent);

}  // namespace corvinade::ui
