// The least-squares adjustment: finds the float parameters of the transformation from the identical
// points by a Gauss-Newton iteration with analytic derivatives.
#pragma once

#include <array>
#include <string>

#include "core/arrays.h"
#include "core/rooms.h"
#include "engine/design.h"
#include "engine/gathered_points.h"
#include "engine/job_fit.h"
#include "fit/adjustment.h"
#include "fit/moments.h"
#include "fit/statistics.h"

namespace corvinade::engine {

// How the last run of the adjustment went, and what outlives a run.
struct AdjustmentRecord {
    int Iterations = 0;       // passes so far, shown in the status bar
    bool Converged = false;   // the largest correction fell below the threshold, or AtRest
    bool AtRest = false;      // at its limit only rounding moved it any more: far from the origin
    bool Finite = true;       // no parameter has become infinite or undefined
    bool JobChanged = false;  // the points were replaced while events were served: nothing was written
    bool LeftMoving = false;  // and the job was left with the parameters of the pass that served them
    FitModel Model;           // of this run; the choice may change while events are served
    bool AngleUnitsConfirmed = false;  // the user wants no more warnings of the poses' angle unit
};
inline AdjustmentRecord Adjustment;

// The whole adjustment, from the start values on.
//   u          number of unknowns, CountUnknowns(ParamText)
//   n          observations, 3 Job.Pairs()
//   ParamText  state of parameters 1 to 17
//   Q          out, u by u: inverse of the normal matrix
//   v          out, n: residuals, transformed minus target, mm. In the distance model row i belongs to
//              pair i and the rows behind Job.Pairs() are 0
//   P          n weights, 0 = takes no part. The distance model sets all three of a point to that of its Z
// Leaves the result in the job's parameters, after every kind of end: converged, limit reached (with a
// message) or stopped by the user. A singular normal matrix gives huge values and no failure. Corrections
// that are no numbers end the run as the limit does, since all passes behind would be the same. When
// the points are replaced while events are served, the run ends without writing anything more.
// Reads Settings.MaxIteration and BestFit_Etta, Selection; writes Adjustment and the status bar.
void BestFitIteration(int u, int n, const std::array<std::string, 18>& ParamText, Matrix& Q, Column& v,
                      Column& P);

// Gathers the job's points for fits with these weights, the poses too where the tool model may hold. With
// poses in another angle unit than degree the user is warned first. False when the job's points were
// replaced meanwhile.
bool GatherForFit(const Column& P, GatheredPoints& points);

// The same fit for points that are gathered already, for runs that repeat it with other weights or noise.
void BestFitIteration(int u, int n, const std::array<std::string, 18>& ParamText, Matrix& Q, Column& v,
                      Column& P, GatheredPoints& points);

// The same from the parameters on that stand in the job, without start values of its own.
void IterateFromHere(int u, int n, const std::array<std::string, 18>& ParamText, Matrix& Q, Column& v,
                     Column& P, GatheredPoints& points);

// The same of a model that is not that of the job's choice: it holds what floats there.
void IterateFromHere(const FitModel& model, Matrix& Q, Column& v, Column& P, GatheredPoints& points);

// The same without the message where the limit of iterations was reached, for a caller who goes on from there
// and tells of it in the end.
void IterateQuietly(int u, int n, const std::array<std::string, 18>& ParamText, Matrix& Q, Column& v,
                    Column& P, GatheredPoints& points);
void TellOfLimit();  // the message, where the last run has reached the limit

// A fresh record of a run of this model, for a caller whose fit begins elsewhere.
void BeginAdjustment(const FitModel& model);

// The same fit of points and their moments, without residuals. For models that MomentsServe.
void IterateFromHere(int u, int n, const std::array<std::string, 18>& ParamText, Matrix& Q,
                     GatheredPoints& points, FitOnMoments& fit);

}  // namespace corvinade::engine
