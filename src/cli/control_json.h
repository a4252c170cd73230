// The state of windows and controls as the automation hands it out.
#pragma once

#include <nlohmann/json_fwd.hpp>

#include "core/window.h"

nlohmann::json ControlToJson(Control& control);
nlohmann::json WindowToJson(const WindowEntry& window);
