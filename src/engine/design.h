// The model that the job's choice of parameters asks for, and its linearisation at the job's parameters.
#pragma once

#include <array>
#include <string>

#include "core/rooms.h"
#include "engine/gathered_points.h"
#include "fit/design.h"

namespace corvinade::engine {

// Number of unknowns of a parameter choice. The tool vector floats only when all its three parts do.
int CountUnknowns(const std::array<std::string, 18>& ParamText);

// Reads the choice, Selection and the job's distance and tool vector, which decide on the mode.
FitModel ChooseModel(const std::array<std::string, 18>& ParamText);

// The mode alone, for a choice whose held values have been taken over into the job.
FitMode ChooseMode(const std::array<std::string, 18>& ParamText);
FitMode ChooseMode(const std::array<std::string, 18>& ParamText, const Parameters& held);

// Reads the job's parameters; writes Job.RotXCopy, RotYCopy, RotZCopy and Chain.
Linearisation Linearise(const FitModel& model, const GatheredPoints& points);
void Linearise(const FitModel& model, const GatheredPoints& points, Linearisation& at);

}  // namespace corvinade::engine
