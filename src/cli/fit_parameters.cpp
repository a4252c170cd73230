// The parameters of the job as the outputs show them.
#include "cli/fit_parameters.h"

#include <array>
#include <nlohmann/json.hpp>

#include "cli/fit_selection.h"
#include "core/job.h"
#include "core/numbers.h"
#include "core/units.h"
#include "engine/calculation.h"
#include "engine/result_notes.h"

namespace corvinade::cli {

namespace {

// In the order of the tables.
constexpr std::array kOrder = {kTraX,       kTraY,   kTraZ,   kRotX,   kRotY,    kRotZ,
                               kScaleXYZ,   kScaleX, kScaleY, kScaleZ, kAngleXY, kAzimuth,
                               kAngleZtoXY, kRDist,  kRvecX,  kRvecY,  kRvecZ};

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
    for (const int parameter : kOrder) {
        const auto index = static_cast<std::size_t>(parameter);
        if (Job.ParamText[index] == kNotUsed) continue;
        const bool floats = Job.ParamText[index] == kFloat;
        const ParameterKind is = KindOf(parameter);
        const bool known = floats && !IsLeftOpen(parameter);
        const bool hasSigma = floats && !IsWithoutSigma(parameter);
        const std::string significance = known    ? FormatNumber(Calculation.Significance[index], "0.0")
                                         : floats ? kOpenSignificance
                                                  : "held";
        shown.push_back({parameter, is, ParameterName(parameter), ShownAs(is, ParameterValue(Job, parameter)),
                         hasSigma ? ShownAs(is, Calculation.Sigma[index]) : kOpenSigma, significance,
                         UnitOf(is), floats});
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

nlohmann::ordered_json NamesOfOpen() {
    nlohmann::ordered_json names = nlohmann::ordered_json::array();
    for (int k = kTraX; k < kParameterEnd; ++k)
        if (Job.LeftOpen[static_cast<std::size_t>(k)] != 0) names.push_back(HeldParameterName(k));
    return names;
}

}  // namespace corvinade::cli
