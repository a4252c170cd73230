// The parameters of the job as the outputs show them.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "core/rooms.h"
#include "engine/parameter_kind.h"

namespace corvinade::cli {

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
const char* InternalUnitOf(ParameterKind kind);  // "mm", "rad" or ""

// A parameter 1 to 17 for programs: name, state, value in mm and rad, and the same in the units in use.
nlohmann::ordered_json ParameterAsJson(int parameter);

// The names of the parameters that the open job's result is marked with as open.
nlohmann::ordered_json NamesOfOpen();

// "float", "held" or "not used".
const char* StateOfParameter(int parameter);

}  // namespace corvinade::cli
