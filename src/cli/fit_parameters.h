// The parameters of the job as the outputs show them.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "core/rooms.h"
#include "engine/shown_parameters.h"

namespace corvinade::cli {

const char* InternalUnitOf(ParameterKind kind);  // "mm", "rad" or ""

// A parameter 1 to 17 for programs: name, state, value in mm and rad, and the same in the units in use.
nlohmann::ordered_json ParameterAsJson(int parameter);

// The names of the parameters that the open job's result is marked with as open.
nlohmann::ordered_json NamesOfOpen();

// "float", "held" or "not used".
const char* StateOfParameter(int parameter);

}  // namespace corvinade::cli
