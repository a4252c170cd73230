// Where the frame and its windows stand on the screen.
#pragma once

#include <QRect>
#include <string_view>

#include "core/rooms.h"
#include "core/window.h"

class QMainWindow;
class QMdiArea;
class QWidget;

namespace corvinade::ui {

// Where the frame stood at the last end of the program; at the first start in the middle of the screen, its
// title and borders on it too. No place is off every screen. To be called before the frame is shown.
void PlaceFrame(QMainWindow& frame);

// Keeps the frame's place, size and maximised state in the settings file.
void StoreFrame(const QMainWindow& frame);

// Gives a window its stored place. One that has none of its own opens where it hides least of the others
// (inside the frame), or in its natural size in the middle of the frame (a dialog).
//   form   with the controls     outer  what has the title
void PlaceChild(const WindowEntry& window, QWidget& form, QWidget& outer, const QMdiArea& area);
//   beside  the dialog is at work while one looks at the frame, and opens in its lower right corner
void PlaceDialog(const WindowEntry& window, QWidget& form, QWidget& outer, const QWidget& frame, bool beside);

// The place of a graphics window, with its title. The first takes the stored one, the others look for theirs.
//   outer  the window itself, null before there is one
QRect ScreenPlace(const WindowPlace& place, std::string_view name, bool first, const QWidget* outer,
                  const QMdiArea& area);

// Where the window stands now becomes its place.
void TakePlace(const WindowEntry& window, const QWidget& outer);

}  // namespace corvinade::ui
