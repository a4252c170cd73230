// The parameters of a fit as the outputs for people show them.
#include "cli/fit_parameters.h"

#include <array>

#include "core/job.h"
#include "core/numbers.h"
#include "core/units.h"
#include "engine/calculation.h"

namespace {

enum class Kind { Length, Angle, Scale };
struct Row {
    int Parameter;
    const char* Name;
    Kind Is;
};
constexpr std::array<Row, 13> kRows = {{{kTraX, "Tra x", Kind::Length},
                                        {kTraY, "Tra y", Kind::Length},
                                        {kTraZ, "Tra z", Kind::Length},
                                        {kRotX, "Rot x", Kind::Angle},
                                        {kRotY, "Rot y", Kind::Angle},
                                        {kRotZ, "Rot z", Kind::Angle},
                                        {kScaleXYZ, "Scale xyz", Kind::Scale},
                                        {kScaleX, "Scale x", Kind::Scale},
                                        {kScaleY, "Scale y", Kind::Scale},
                                        {kScaleZ, "Scale z", Kind::Scale},
                                        {kAngleXY, "xy", Kind::Angle},
                                        {kAzimuth, "Azimuth", Kind::Angle},
                                        {kAngleZtoXY, "z to xy", Kind::Angle}}};

std::string Shown(Kind kind, double value) {
    if (kind == Kind::Length) return ShownLength(value);
    return kind == Kind::Angle ? WinkelFormat(value) : FormatNumber(value, Units.FmtScale);
}

std::string UnitOf(Kind kind) {
    if (kind == Kind::Length) return Job.LengthUnitName;
    return kind == Kind::Angle ? Job.AngleUnitName : "";
}

}  // namespace

std::string ShownLength(double value_mm) {
    return FormatNumber(value_mm * Units.LengthFactor, Units.FmtLength);
}

std::vector<ShownParameter> ShownParameters() {
    std::vector<ShownParameter> shown;
    for (const Row& row : kRows) {
        const auto index = static_cast<std::size_t>(row.Parameter);
        if (Job.ParamText[index] == kNotUsed) continue;
        const bool floats = Job.ParamText[index] == kFloat;
        shown.push_back({row.Name, Shown(row.Is, ParameterValue(Job, row.Parameter)),
                         floats ? Shown(row.Is, Calculation.Sigma[index]) : "-",
                         floats ? FormatNumber(Calculation.Significance[index], "0.0") : "held",
                         UnitOf(row.Is), floats});
    }
    return shown;
}
