// The trumpet plot in the automation: its points and axes as numbers, and the mouse in it.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string_view>

#include "core/rooms.h"

namespace corvinade::cli {

// Does "at" name the plot?
bool IsTrumpetPlace(std::string_view at);

// Adds what the plot shows to the state of its control; mm.
void AddTrumpet(const nlohmann::json& request, nlohmann::json& state);
nlohmann::json TrumpetMouse(const nlohmann::json& request);
// Writes the plot as SVG, in its present size and with the axes that its state tells.
nlohmann::json TrumpetPicture(const nlohmann::json& request);
nlohmann::json TrumpetResize(const nlohmann::json& request);

}  // namespace corvinade::cli
