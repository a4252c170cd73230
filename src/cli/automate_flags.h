// The flags of a graphics window in the automation: "Fahne#1", and "DynamicFlag" for the one at the mouse.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "core/rooms.h"
#include "graphics/screen_window.h"

namespace corvinade::cli {

// Does a part of a graphics window name a flag, be it there or not?
bool IsFlagPart(const std::string& part);

// The state of the flag. Throws RequestError where there is none of this number.
nlohmann::json FlagToJson(const ScreenWindow& window, const std::string& part);

// The place of the mouse, x and y, on the middle of the cell that a click names by "row" and "col", with the
// request's button and keys. Throws RequestError where a user could not click there.
nlohmann::json MouseOnFlag(const ScreenWindow& window, const std::string& part,
                           const nlohmann::json& request);

}  // namespace corvinade::cli
