// The parameters of the job as the outputs show them.
#include "cli/fit_parameters.h"

#include <nlohmann/json.hpp>

#include "cli/fit_selection.h"
#include "core/job.h"
#include "core/numbers.h"
#include "core/units.h"
#include "engine/calculation.h"
#include "engine/result_notes.h"

namespace corvinade::cli {

const char* InternalUnitOf(ParameterKind kind) {
    if (kind == ParameterKind::Length) return "mm";
    return kind == ParameterKind::Angle ? "rad" : "";
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
