// The norm of the job's calculation: least squares, the least sum of absolute residuals (L1) or the least
// largest one (L-infinity, "Loo").
#pragma once

#include <array>
#include <optional>
#include <string>

#include "core/arrays.h"
#include "core/rooms.h"
#include "engine/gathered_points.h"
#include "engine/start_values.h"
#include "fit/norm_run.h"
#include "fit/norms.h"

namespace corvinade::engine {

// Of the last calculation. RunOn stays as it is from calculation to calculation.
inline NormRecord Norm;

// One calculation, from the weights that its use flags give to those that its result stands on.
struct NormFit {
    int u = 0;  // unknowns
    int n = 0;  // observations, 3 Job.Pairs()
    std::array<std::string, 18> ParamText;
    // The start values that the texts meant when the norm began: the units may change while it runs.
    StartChoice Choice;
    Matrix Q;  // out: u by u, of the last fit
    Column v;  // out: n residuals of the last fit, mm
    Column P;  // in: n weights 0 or 1; out: as the loop leaves them
    GatheredPoints Points;
    // Where the runs of Monte Carlo begin: at the best fit, where the start values lead the iteration astray.
    // Nothing: at the start values, each run by its own seed points.
    std::optional<Parameters> RunsBegin = {}, RunsAgain = {};  // and where one that found no end goes on
    // Parameters that were to float and that the fit holds (fit/proper_beside.h), in the runs likewise.
    std::array<bool, kParameterEnd> HeldByFit{};
    PosesLeave LeftByPoses;  // of the tool vector
};

// Runs the norm that Job.NormType names (norm_table.h) as it begins, whatever becomes of that meanwhile. The
// points are gathered once. False when the job's points were replaced meanwhile: nothing more was written
// then. The result is in the job's parameters and in `fit`. The message of the limit of iterations comes
// once, where the last fit has run into it. What the fit decided on its own becomes a note. Reads
// Job.NormType and Job.UseFlags; writes Norm, Certificate, Adjustment, the job's parameters, panels 6 and 7.
bool FitInNorm(NormFit& fit);

}  // namespace corvinade::engine
