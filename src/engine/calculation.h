// One calculation of the job in its norm, and what it leaves for the report.
#pragma once

#include <array>

#include "core/arrays.h"

struct CalculationRecord {
    Matrix Q;     // nFloat by nFloat, inverse of the normal matrix
    Column v, P;  // nObs residuals (mm) and weights, those that the norm has left
    int nFloat = 0, nObs = 0;
    bool Refused =
        false;  // too few observations or too many runs: parameters and everything below are those of before
    bool Converged = false;  // the iteration ended by itself, neither by its limit nor by the user
    bool Finite = true;      // all parameters are numbers; if not, nothing was transformed with them
    double s0 = 0, sx = 0, sy = 0, sz = 0, SigmaXYZ = 0;
    // By parameter number 1 to 17; 0 for a parameter that is held.
    std::array<double, 18> Sigma{}, Significance{};
};
inline CalculationRecord Calculation;

// The calculation that stands behind the button, for a job without paraboloid.
// Reads Job.ParamText and Job.NormType, the job's points and use flags, Selection and Settings. Writes the
// job's parameters, the transformed points, Calculation, Run.TrafoValid and Run.JobDirty. Shows "This is not
// a redundant calculation" and changes nothing when the weights in use are fewer than the unknowns.
void ButtonCalcErsatz();

// The transformed start points of the present parameters: with `v` the pairs are the targets plus their
// residuals, without it they go through the chain as all points without partner do.
void TransformAllPoints(const Column* v);
