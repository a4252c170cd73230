// The tables that all graphics windows share, as JSON by their names: ScenePoints, PixelX and the like. They
// hold what the window that computed last has left in them, and can only be read.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string_view>

#include "core/rooms.h"

namespace corvinade::cli {

// Is there such a table? Fills `table` then: element 0 of each index unused, two indices as rows.
bool SceneTableToJson(std::string_view name, nlohmann::json& table);

}  // namespace corvinade::cli
