// Where the iteration of the adjustment begins.
#pragma once

#include <array>
#include <string>

// Fills the job's parameters: the raw solution, the user's own start values while the calculation
// window is open, and the value of every parameter that is held. Depends on nothing of an earlier run.
//   ParamText  indices 1 to 17: "float", "not used" or a value in the shown units
void TakeStartValues(const std::array<std::string, 18>& ParamText);
