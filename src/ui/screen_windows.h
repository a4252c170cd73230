// The graphics windows inside the frame: one for each that the logic has open.
#pragma once

#include <cstdint>

#include "core/rooms.h"

class QMdiArea;
class QWidget;

namespace corvinade::graphics {
struct ScreenWindow;
}

namespace corvinade::ui {

class ScreenView;

// From here on new windows of the logic have a picture, and the size that they will have in the area.
void BeginScreens(QMdiArea& area);
// Takes all of them down, whatever the logic holds.
void EndScreens();

// Opens, closes and shows what differs from what the logic holds. `insideWork`: events of the user are still
// running; what closes then stays in memory until they are over.
void ShowScreens(bool insideWork);

ScreenWindow* ScreenOf(std::uint64_t id);        // null where it is not open
ScreenView* ViewOf(const ScreenWindow& window);  // null where it is not shown
bool IsReduced(const QWidget& view);             // to its mere title

// A window whose picture runs by itself has shown a round since this was last asked.
bool TakeRoundShown();

}  // namespace corvinade::ui
