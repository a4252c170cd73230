// The chart of a column of the main sheet in the automation.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string_view>

#include "core/rooms.h"

namespace corvinade::cli {

// Does "at" name the chart?
bool IsChartPlace(std::string_view at);

// Adds what the chart shows to the state of its control.
void AddChart(nlohmann::json& state);

}  // namespace corvinade::cli
