// One calculation of the job in its norm, and what it leaves for the report.
#pragma once

#include <array>
#include <cstdint>

#include "core/arrays.h"
#include "core/rooms.h"
#include "engine/design.h"

namespace corvinade::engine {

struct CalculationRecord {
    Matrix Q;     // nFloat by nFloat, inverse of the normal matrix
    Column v, P;  // nObs residuals (mm) and weights, those that the norm has left
    int nFloat = 0, nObs = 0;
    std::array<int, 18> UnknownOf{};  // number 1 to nFloat of each parameter, 0 = held
    bool Done = false;                // a calculation has ended since the job's points were last replaced
    std::uint64_t JobGeneration = 0;  // of the points that all this belongs to
    // Too few observations, too many runs: parameters and everything below are those of before.
    bool Refused = false;
    bool Converged = false;  // the iteration ended by itself, neither by its limit nor by the user
    bool Finite = true;      // all parameters are numbers; if not, nothing was transformed with them
    double s0 = 0, sx = 0, sy = 0, sz = 0, SigmaXYZ = 0;
    // By parameter number 1 to 17; 0 for a parameter that is held, no numbers (NaN) for one that the points
    // leave open. The significance is how many sigmas the parameter lies from the value that does nothing: 0,
    // for scales 1, for angles half turns too.
    std::array<double, 18> Sigma{}, Significance{};
    std::array<bool, 18> HeldByFit{};  // by parameter number: it floats, and the fit had to hold it
};
inline CalculationRecord Calculation;

// A calculation has ended for the points that the job holds now.
bool CalculationIsOfThisJob();

// Sigmas and significance of the model's parameters from residuals, weights and Q of Calculation.
void FillStatistics(const FitModel& model);

// The weights of n observations that a calculation begins with. Pairs that have no flags yet take part.
Column WeightsFromUseFlags(int n);

// What no fit can begin with: fewer observations than unknowns, or a choice that leaves nothing to fit. True
// with the message, which Calculation.Refused keeps.
bool CalculationIsRefused();

// The calculation that stands behind the button, for a job without paraboloid.
// Reads Job.ParamText and Job.NormType, the job's points and use flags, Selection and Settings. Writes the
// job's parameters, the transformed points, the second points of the R vectors (those of a fit to distances
// while Settings.ShowRVec is on, none otherwise), Calculation, Run.TrafoValid and Run.JobDirty. Shows "This
// is not a redundant calculation" and changes nothing when the weights in use are fewer than the unknowns.
void ButtonCalcErsatz();

// The end of a calculation: the marks that the job carries from now on, and the note of a result that did not
// converge. Those about the result of before go. Of the parameters those are marked as open that the fit
// held; what else the points or the shape leave open, and a scale that has collapsed, is marked where it is
// noted.
void MarkResult(bool converged);

// The transformed start points of the present parameters: with `v` the pairs are the targets plus their
// residuals, without it they go through the chain as all points without partner do.
void TransformAllPoints(const Column* v);

}  // namespace corvinade::engine
