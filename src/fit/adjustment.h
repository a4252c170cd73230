// The least-squares adjustment: finds the floating parameters of the transformation by a Gauss-Newton
// iteration with analytic derivatives.
#pragma once

#include "fit/arrays.h"
#include "fit/design.h"
#include "fit/fit_run.h"
#include "fit/gathered_points.h"
#include "fit/moments.h"

namespace corvinade::fit {

// What an iteration leaves beside its parameters.
struct IterationResult {
    Matrix Q;  // u by u: inverse of the normal matrix
    Column v;  // three a pair: residuals, transformed minus target, mm. In the distance model row i belongs
               // to pair i, and the rows behind the last pair are 0
};

// Iterates from the parameters `run.Now` on.
//   P  weights, three a pair, 0 = takes no part. The distance model sets all three of a point to that of its
//   Z
// The parameters stay in `run`, after every kind of end: converged, limit reached or stopped. A singular
// normal matrix gives huge values and no failure. Corrections that are no numbers end the run as the limit
// does, since all passes behind would be the same. Where the points' moments serve and end at the limit the
// rows are taken in a run of their own, from the same parameters: thin clouds far from the origin cost the
// moments digits. An iteration that was abandoned leaves `result` as it was.
void Iterate(FitRun& run, const FitModel& model, GatheredPoints& points, Column& P, IterationResult& result);

// Of an iteration that has not converged: its last residuals are those that its last correction was to bring
// about, which may be far from those of the parameters that it has led to. Takes the latter where they
// differ.
void RenewResiduals(FitRun& run, const FitModel& model, const GatheredPoints& points, Column& v);

// Takes the parameters as they stand as the result: residuals and Q are those of a linearisation there.
void SettleHere(FitRun& run, const FitModel& model, GatheredPoints& points, const Column& P,
                IterationResult& result);

// The same with a tool vector that does not move along `still`, unit vectors at right angles: Q is that of
// the unknowns under this condition. None of them: as above.
void SettleHolding(FitRun& run, const FitModel& model, GatheredPoints& points, const Column& P,
                   const std::vector<Vec3>& still, IterationResult& result);

// A fit on sums that its caller takes, so that residuals, weights and the sums of the next fit need one
// pass over the points.
struct FitOnMoments {
    PointMoments Moments;  // in: what the fit stands on
    // Out: false when digits would have been lost. The fit has gone by the rows then, with the weights that
    // the moments stand for, and these are set in the points.
    bool ByMoments = true;
    // Out: the last pass's linearisation and corrections of the centred unknowns, which `Residuals` takes.
    Linearisation At;
    Column Centred;
};

// The same iteration of points and their moments, without residuals. For models that MomentsServe.
void Iterate(FitRun& run, const FitModel& model, GatheredPoints& points, FitOnMoments& fit, Matrix& Q);

}  // namespace corvinade::fit
