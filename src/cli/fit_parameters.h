// The parameters of a fit as the outputs for people show them.
#pragma once

#include <string>
#include <vector>

#include "engine/parameter_kind.h"  // ShownLength

// What a parameter is measured in.
enum class ShownKind { Length, Angle, Scale };

struct ShownParameter {
    int Number;
    ShownKind Is;
    std::string Name;
    std::string Value, Sigma, Significance;  // "-" and "held" for a parameter that does not float
    std::string Unit;
    bool Floats;
};

// All parameters that are used, in the order in which people read them.
std::vector<ShownParameter> ShownParameters();

// A value of one of the three kinds in the unit and format in use, and that unit's name.
std::string ShownValue(ShownKind kind, double value);
std::string UnitOf(ShownKind kind);

double FactorOf(ShownKind kind);  // from mm and rad to that unit
