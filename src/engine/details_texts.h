// The texts that the details window puts on the clipboard. Cells are divided by tabs, every line ends in
// CR LF. Numbers of matrices and quaternions and angles stand in full, with up to 15 digits and in the angle
// unit as a decimal number; lengths as the window shows them.
#pragma once

#include <string>

#include "core/rooms.h"
#include "engine/solution_details.h"

namespace corvinade::engine {

std::string RotationMatrixText(const SolutionDetails& details);
std::string AffineMatrixText(const SolutionDetails& details);
std::string ScaleMatrixText(const SolutionDetails& details);
std::string InverseText(const SolutionDetails& details);  // the cells of the window
std::string HomogenText(const SolutionDetails& details);
std::string RotationText(const SolutionDetails& details, RotationOrder order);
std::string QuaternionText(const SolutionDetails& details);
std::string MonteCarloText(const SolutionDetails& details);  // likewise

// All of them, one behind the other.
std::string DetailsText(const SolutionDetails& details);

}  // namespace corvinade::engine
