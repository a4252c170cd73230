// The parameters of the job as reports and tables show them.
#pragma once

#include <string>
#include <vector>

#include "core/rooms.h"
#include "engine/parameter_kind.h"

namespace corvinade::engine {

struct ShownParameter {
    int Number;
    ParameterKind Is;
    std::string Name;
    std::string Value, Sigma, Significance;  // "-" and "held" for a parameter that does not float
    std::string Unit;
    bool Floats;
};

// All parameters that are used, in the order in which people read them.
std::vector<ShownParameter> ShownParameters();

// The unit in which a kind is shown, and the factor from mm and rad to it.
std::string UnitOf(ParameterKind kind);
double FactorOf(ParameterKind kind);

}  // namespace corvinade::engine
