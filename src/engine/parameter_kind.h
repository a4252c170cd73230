// The kinds of parameters: what unit and format a parameter is typed and shown in.
#pragma once

#include <cstdint>
#include <string>

enum class ParameterKind : std::uint8_t {
    Length,  // mm, shown in the length unit
    Angle,   // rad, shown in the angle unit
    Scale    // a factor
};

// Of parameter 1 to 17.
ParameterKind KindOf(int parameter);

// A value as a field of its kind shows it, in the present units and formats.
std::string ShownAs(ParameterKind kind, double value);
std::string ShownLength(double value_mm);
std::string ShownAngle(double value_rad);
