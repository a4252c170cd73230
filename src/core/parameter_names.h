// What the parameters are called where people read them.
#pragma once

#include <array>
#include <string>

#include "core/rooms.h"
#include "fit/parameters.h"

namespace corvinade::core {

// "Rot x": a parameter 1 to 17 by its number, as the tables have it.
const char* ParameterName(int parameter);

// "Rot x, Tra y and Tra z": the parameters that are marked, by number; "" where none is.
std::string NamesOf(const std::array<bool, kParameterEnd>& parameters);

}  // namespace corvinade::core
