// The fit of the plain model by moments for runs that repeat it thousands of times: the same passes as the
// adjustment makes, with everything sized beforehand and no texts in the status bar.
#pragma once

#include "core/arrays.h"
#include "engine/design.h"
#include "engine/gathered_points.h"
#include "engine/moments.h"
#include "engine/normal_equations.h"

enum class FitEnd {
    Converged,
    Stopped,     // by the user
    JobChanged,  // the points were replaced while events were served
    Unfinished   // digits would be lost, no convergence, no numbers: a case for the whole adjustment
};

struct RepeatedFit {
    FitModel Model;
    Linearisation At;  // of the last pass
    PointMoments Moments;
    SmallEquations Equations;
    Column Centred, x;

    explicit RepeatedFit(const FitModel& model);
};

// True for models and weights that moments alone serve, without poses and distances.
bool RepeatedFitServes(const FitModel& model, const GatheredPoints& points);

// One fit, from the parameters on that stand in the job; the points' weights have been set.
// Writes the job's parameters and Adjustment; each pass serves events and leaves its empty trace on the
// clipboard, as the adjustment does.
FitEnd FitAgain(RepeatedFit& fit, const GatheredPoints& points);

// The mean error xyz of a fit that converged: the root of the squares of what Statistics gives for the axes.
double SigmaXYZOf(const RepeatedFit& fit, const GatheredPoints& points);
