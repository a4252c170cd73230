// The answer to the choice of a font: an object with any of name, size, bold, italic, underline,
// strikethrough and color (RGB with red in the low byte).
#pragma once

#include <nlohmann/json.hpp>

#include "core/rooms.h"

namespace corvinade::cli {

// Refuses what is no such object.
void RefuseNoFont(const nlohmann::json& value);

}  // namespace corvinade::cli
