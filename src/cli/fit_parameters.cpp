// The parameters of a fit as the outputs for people show them.
#include "cli/fit_parameters.h"

#include <array>

#include "core/job.h"
#include "core/numbers.h"
#include "core/units.h"
#include "engine/calculation.h"

namespace {

struct Row {
    int Parameter;
    const char* Name;
    ShownKind Is;
};
constexpr std::array<Row, 13> kRows = {{{kTraX, "Tra x", ShownKind::Length},
                                        {kTraY, "Tra y", ShownKind::Length},
                                        {kTraZ, "Tra z", ShownKind::Length},
                                        {kRotX, "Rot x", ShownKind::Angle},
                                        {kRotY, "Rot y", ShownKind::Angle},
                                        {kRotZ, "Rot z", ShownKind::Angle},
                                        {kScaleXYZ, "Scale xyz", ShownKind::Scale},
                                        {kScaleX, "Scale x", ShownKind::Scale},
                                        {kScaleY, "Scale y", ShownKind::Scale},
                                        {kScaleZ, "Scale z", ShownKind::Scale},
                                        {kAngleXY, "xy", ShownKind::Angle},
                                        {kAzimuth, "Azimuth", ShownKind::Angle},
                                        {kAngleZtoXY, "z to xy", ShownKind::Angle}}};

}  // namespace

std::string ShownValue(ShownKind kind, double value) {
    if (kind == ShownKind::Length) return ShownLength(value);
    return kind == ShownKind::Angle ? WinkelFormat(value) : FormatNumber(value, Units.FmtScale);
}

std::string UnitOf(ShownKind kind) {
    if (kind == ShownKind::Length) return Job.LengthUnitName;
    return kind == ShownKind::Angle ? Job.AngleUnitName : "";
}

double FactorOf(ShownKind kind) {
    if (kind == ShownKind::Length) return Units.LengthFactor;
    return kind == ShownKind::Angle ? Units.AngleFactor : 1;
}

std::vector<ShownParameter> ShownParameters() {
    std::vector<ShownParameter> shown;
    for (const Row& row : kRows) {
        const auto index = static_cast<std::size_t>(row.Parameter);
        if (Job.ParamText[index] == kNotUsed) continue;
        const bool floats = Job.ParamText[index] == kFloat;
        shown.push_back(
            {row.Parameter, row.Is, row.Name, ShownValue(row.Is, ParameterValue(Job, row.Parameter)),
             floats ? ShownValue(row.Is, Calculation.Sigma[index]) : "-",
             floats ? FormatNumber(Calculation.Significance[index], "0.0") : "held", UnitOf(row.Is), floats});
    }
    return shown;
}
