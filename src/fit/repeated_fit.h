// The fit of the plain model by moments for runs that repeat it thousands of times: the same passes as the
// adjustment makes, with everything sized beforehand and nothing told but that a pass begins and ends.
#pragma once

#include "fit/arrays.h"
#include "fit/design.h"
#include "fit/fit_run.h"
#include "fit/gathered_points.h"
#include "fit/moments.h"
#include "fit/normal_equations.h"

namespace corvinade::fit {

enum class FitEnd {
    Converged,
    Stopped,    // the listener wanted it
    Abandoned,  // the points were replaced
    Unfinished  // digits would be lost, no convergence, no numbers: a case for the whole adjustment
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

// One fit, from the parameters `run.Now` on; the points' weights have been set.
FitEnd FitAgain(RepeatedFit& fit, FitRun& run, const GatheredPoints& points);

// The mean error xyz of a fit that converged: the root of the squares of what Statistics gives for the axes.
double SigmaXYZOf(const RepeatedFit& fit, const GatheredPoints& points);

}  // namespace corvinade::fit
