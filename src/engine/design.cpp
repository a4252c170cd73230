// The model that the job's choice of parameters asks for.
#include "engine/design.h"

#include "core/job.h"
#include "engine/selection.h"
#include "engine/transform.h"

namespace corvinade::engine {

namespace {

using ParameterTexts = std::array<std::string, 18>;

bool Floats(const ParameterTexts& ParamText, int parameter) {
    return ParamText[static_cast<std::size_t>(parameter)] == kFloat;
}

bool ToolFloats(const ParameterTexts& ParamText) {
    return Floats(ParamText, kRvecX) && Floats(ParamText, kRvecY) && Floats(ParamText, kRvecZ);
}

}  // namespace

int CountUnknowns(const ParameterTexts& ParamText) {
    int unknowns = ToolFloats(ParamText) ? 3 : 0;
    for (int parameter = kTraX; parameter <= kRDist; ++parameter)
        if (Floats(ParamText, parameter)) ++unknowns;
    return unknowns;
}

FitMode ChooseMode(const ParameterTexts& ParamText) {
    return ChooseMode(ParamText, ParametersOf(Job));
}

FitMode ChooseMode(const ParameterTexts& ParamText, const Parameters& held) {
    const bool distanceHeld = !Floats(ParamText, kRDist) && held[kRDist] != 0;
    if (!Selection.CheckUseABC && (Selection.CheckRDist || (distanceHeld && Selection.RDistShown)))
        return FitMode::Distance;
    const bool toolHeld = held[kRvecX] != 0 || held[kRvecY] != 0 || held[kRvecZ] != 0;
    if (Selection.CheckUseABC || (toolHeld && !Selection.RDistShown)) return FitMode::Tool;
    return FitMode::Coincide;
}

FitModel ChooseModel(const ParameterTexts& ParamText) {
    FitModel model;
    model.Mode = ChooseMode(ParamText);
    model.ToolFloats = ToolFloats(ParamText);
    for (int parameter = kTraX; parameter < kParameterEnd; ++parameter) {
        const bool floats = parameter >= kRvecX ? model.ToolFloats : Floats(ParamText, parameter);
        if (floats) model.UnknownOf[static_cast<std::size_t>(parameter)] = ++model.Unknowns;
    }
    return model;
}

Linearisation Linearise(const FitModel& model, const GatheredPoints& points) {
    Linearisation at;
    Linearise(model, points, at);
    return at;
}

void Linearise(const FitModel& model, const GatheredPoints& points, Linearisation& at) {
    Job.RotXCopy = Job.RotX;
    Job.RotYCopy = Job.RotY;
    Job.RotZCopy = Job.RotZ;
    Linearise(model, ParametersOf(Job), points, Chain, at);
}

}  // namespace corvinade::engine
