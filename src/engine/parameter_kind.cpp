// What unit and format a parameter is shown in.
#include "engine/parameter_kind.h"

#include "core/numbers.h"
#include "core/units.h"

namespace corvinade::engine {

std::string ShownAs(ParameterKind kind, double value) {
    if (kind == ParameterKind::Length) return ShownLength(value);
    return kind == ParameterKind::Angle ? ShownAngle(value) : FormatNumber(value, Units.FmtScale);
}

std::string ShownLength(double value_mm) {
    return FormatNumber(value_mm * Units.LengthFactor, Units.FmtLength);
}

std::string ShownAngle(double value_rad) {
    return WinkelFormat(value_rad);
}

}  // namespace corvinade::engine
