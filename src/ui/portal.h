// What the user's desktop wishes: the portal that desktops answer such questions through, over D-Bus.
#pragma once

#include <functional>

#include "core/rooms.h"

class QObject;

namespace corvinade::ui {

// Whether the desktop asks for dark windows. False without an answer: where there is no bus, no portal or no
// such setting, and where the answer takes too long for a start.
bool DesktopIsDark();

// Calls `changed` whenever the desktop has changed its mind, for as long as `owner` lives. Nothing happens
// where there is no bus.
void WatchDesktop(QObject* owner, const std::function<void()>& changed);

}  // namespace corvinade::ui
