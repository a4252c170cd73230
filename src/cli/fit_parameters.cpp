// The parameters of the job as the outputs show them.
#include "cli/fit_parameters.h"

#include <array>
#include <nlohmann/json.hpp>

#include "cli/fit_selection.h"
#include "core/job.h"
#include "core/numbers.h"
#include "core/units.h"
#include "engine/calculation.h"

namespace {

struct Row {
    int Parameter;
    const char* Name;
};
constexpr std::array<Row, 17> kRows = {{{kTraX, "Tra x"},
                                        {kTraY, "Tra y"},
                                        {kTraZ, "Tra z"},
                                        {kRotX, "Rot x"},
                                        {kRotY, "Rot y"},
                                        {kRotZ, "Rot z"},
                                        {kScaleXYZ, "Scale xyz"},
                                        {kScaleX, "Scale x"},
                                        {kScaleY, "Scale y"},
                                        {kScaleZ, "Scale z"},
                                        {kAngleXY, "xy"},
                                        {kAzimuth, "Azimuth"},
                                        {kAngleZtoXY, "z to xy"},
                                        {kRDist, "R Dist"},
                                        {kRvecX, "R vec x"},
                                        {kRvecY, "R vec y"},
                                        {kRvecZ, "R vec z"}}};

}  // namespace

const char* InternalUnitOf(ParameterKind kind) {
    if (kind == ParameterKind::Length) return "mm";
    return kind == ParameterKind::Angle ? "rad" : "";
}

std::string UnitOf(ParameterKind kind) {
    if (kind == ParameterKind::Length) return Job.LengthUnitName;
    return kind == ParameterKind::Angle ? Job.AngleUnitName : "";
}

double FactorOf(ParameterKind kind) {
    if (kind == ParameterKind::Length) return Units.LengthFactor;
    return kind == ParameterKind::Angle ? Units.AngleFactor : 1;
}

std::vector<ShownParameter> ShownParameters() {
    std::vector<ShownParameter> shown;
    for (const Row& row : kRows) {
        const auto index = static_cast<std::size_t>(row.Parameter);
        if (Job.ParamText[index] == kNotUsed) continue;
        const bool floats = Job.ParamText[index] == kFloat;
        const ParameterKind is = KindOf(row.Parameter);
        shown.push_back({row.Parameter, is, row.Name, ShownAs(is, ParameterValue(Job, row.Parameter)),
                         floats ? ShownAs(is, Calculation.Sigma[index]) : "-",
                         floats ? FormatNumber(Calculation.Significance[index], "0.0") : "held", UnitOf(is),
                         floats});
    }
    return shown;
}

const char* StateOfParameter(int parameter) {
    const std::string& text = Job.ParamText[static_cast<std::size_t>(parameter)];
    if (text == kFloat) return "float";
    return text == kNotUsed ? "not used" : "held";
}

nlohmann::ordered_json ParameterAsJson(int parameter) {
    const ParameterKind kind = KindOf(parameter);
    const double value = ParameterValue(Job, parameter);
    return {{"name", HeldParameterName(parameter)},
            {"state", StateOfParameter(parameter)},
            {"value", value},
            {"unit", InternalUnitOf(kind)},
            {"shown", value * FactorOf(kind)},
            {"shownUnit", UnitOf(kind)}};
}
