// The answer to the choice of a font: an object with any of name, size, bold, italic, underline and
// strikethrough.
#pragma once

#include <nlohmann/json.hpp>

// Refuses what is no such object.
void RefuseNoFont(const nlohmann::json& value);
