// What unit and format a parameter is shown in, by its kind: lengths in the length unit, angles in the angle
// unit.
#pragma once

#include <string>

#include "core/rooms.h"
#include "fit/parameters.h"

namespace corvinade::engine {

// A value as a field of its kind shows it, in the present units and formats.
std::string ShownAs(ParameterKind kind, double value);
std::string ShownLength(double value_mm);
std::string ShownAngle(double value_rad);

}  // namespace corvinade::engine
