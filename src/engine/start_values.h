// Where the iteration of the adjustment begins.
#pragma once

#include <array>
#include <string>

#include "core/rooms.h"
#include "engine/seed.h"

namespace corvinade::engine {

// Fills the job's parameters: the raw solution, the user's own start values while the calculation
// window is open, and the value of every parameter that is held. Depends on nothing of an earlier run.
//   ParamText  indices 1 to 17: "float", "not used" or a value in the shown units
void TakeStartValues(const std::array<std::string, 18>& ParamText);

// A choice of parameters and the user's own start values, read from their texts once for many runs.
StartChoice ReadStartChoice(const std::array<std::string, 18>& ParamText);

// The same from a choice that has been read, and from seed points that may have been moved.
void TakeStartValues(const StartChoice& choice, const SeedPoints& seeds);

}  // namespace corvinade::engine
