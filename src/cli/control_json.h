// The state of windows and controls as the automation hands it out.
#pragma once

#include <nlohmann/json_fwd.hpp>

#include "core/rooms.h"
#include "core/window.h"

namespace corvinade::cli {

nlohmann::json ControlToJson(Control& control);
nlohmann::json WindowToJson(const WindowEntry& window);

}  // namespace corvinade::cli
