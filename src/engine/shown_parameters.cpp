// The parameters of the job as reports and tables show them.
#include "engine/shown_parameters.h"

#include <array>

#include "core/job.h"
#include "core/numbers.h"
#include "core/units.h"
#include "engine/calculation.h"
#include "engine/result_notes.h"

namespace corvinade::engine {

namespace {

// In the order of the tables.
constexpr std::array kOrder = {kTraX,       kTraY,   kTraZ,   kRotX,   kRotY,    kRotZ,
                               kScaleXYZ,   kScaleX, kScaleY, kScaleZ, kAngleXY, kAzimuth,
                               kAngleZtoXY, kRDist,  kRvecX,  kRvecY,  kRvecZ};

}  // namespace

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

}  // namespace corvinade::engine
