// The norm of a calculation: one fit for least squares, and loops of fits with changing weights for the
// least sum of absolute residuals (L1) and the least largest one (L-infinity, "Loo").
#pragma once

#include <array>
#include <limits>
#include <optional>
#include <string>

#include "core/arrays.h"
#include "core/job.h"
#include "engine/gathered_points.h"
#include "engine/start_values.h"

// How the last calculation's loop went.
struct NormRecord {
    double NormTolerance = 1e-10;  // change at which a loop ends: of the sum (L1) or the largest (Loo), mm
    int Iterations = 0;            // fits of the loop; 0 for least squares
    int Unsettled = 0;             // of all inner fits those that ended at their limit
    bool Converged = false;        // the loop ended by its own rule and its last fit converged
    // Behind the loops of L1 and Loo: run on to the true optimum. Stays as it is from calculation to
    // calculation.
    bool RunOn = false;
    int Linearisations = 0, Exchanges = 0;  // that it took
    // How far the sum (L1) or the largest (Loo) can at most be above that of the optimum, mm. Infinite where
    // the points leave an unknown open; NaN where nothing was run on. It is told from the rows made linear
    // at the result: it is about this minimum, and knows nothing of another one off it. Only where the model
    // is linear there is no other, and BoundOfAll is true.
    double AboveOptimum = std::numeric_limits<double>::quiet_NaN();
    bool BoundOfAll = false;
    int Starts = 0;  // places that the optimum was looked for from; the result is the best
};
inline NormRecord Norm;

// Where a fit of a loop has ended.
struct EndOfFit {
    Parameters Values{};
    double Objective = 0;  // what the norm makes least: the sum (L1) or the largest (Loo) residual, mm
    double Squares = 0;    // sum of the squared residuals, mm^2
    bool Mirrored = false;
};

// One calculation, from the weights that its use flags give to those that its result stands on.
struct NormFit {
    int u = 0;  // unknowns
    int n = 0;  // observations, 3 Job.nIdent
    std::array<std::string, 18> ParamText;
    // The start values that the texts meant when the norm began: the units may change while it runs.
    StartChoice Choice;
    Matrix Q;  // out: u by u, of the last fit
    Column v;  // out: n residuals of the last fit, mm
    Column P;  // in: n weights 0 or 1; out: as the loop leaves them
    GatheredPoints Points;
    // Where the runs of Monte Carlo, and the fits of a loop, begin, by parameter number: at the best fit,
    // where the start values lead the iteration astray. Nothing: at the start values, each run by its own
    // seed points.
    std::optional<Parameters> RunsBegin = {};
    // Of a loop: where its first fit has ended, with weights 0 and 1. Nothing: it has not settled.
    std::optional<EndOfFit> FirstOfLoop = {};
};

// Runs the norm that Job.NormType names: 1 L1, 3 Loo, any other number least squares. The points are
// gathered once. False when the job's points were replaced meanwhile: nothing more was written then.
// The result is in the job's parameters and in `fit`. A stop ends each loop at its next test, and so does a
// fit whose result is no number: all fits behind would do the same. A fit that runs into
// Settings.MaxIteration ends nothing, for the weights behind it may be kinder. How many did so a note says;
// the message of the limit comes once, where the last fit is one of them.
// A loop whose end is worse in its norm than its first fit, or mirrored where that is not and by no more than
// noise explains, has been led astray: it is gone through again from the first fit, and where that leads
// nowhere either the first fit is the result. Where points fit badly, so that it hangs on the seed points
// where the weightings end, the better one of both ways is the result. A note says so.
// With Norm.RunOn the loops of L1 and Loo are followed by the way to their optimum.
// Reads Job.NormType and Job.UseFlags; writes Norm, Adjustment, the job's parameters, panels 6 and 7.
bool FitInNorm(NormFit& fit);

// The start values of a fit, or where the best fit by least squares has shown them to lead astray that one.
void TakeBeginOfFit(const NormFit& fit);

// One fit of the norm, from there on.
void FitFromStart(NormFit& fit);

// The first fit of a loop, whose weights are 0 and 1. Where the start values led it elsewhere than to the
// best fit, or nowhere, the best one takes its place and is where the fits behind begin; a note says so.
void FirstFitOfLoop(NormFit& fit);

// Behind each inner fit of a loop: counts it in Norm.Unsettled if it has come to its limit.
void CountUnsettledFit();

// L1 by reweighting: each fit's residuals give the weights 1/|v| of the next, until their sum stands
// still within 1e-3. The weights left are those made from the last residuals; no fit follows them.
bool FitL1(NormFit& fit);

// Loo by exchange of weight: the worst row gains a tenth and the best one loses it, until the largest
// residual stands still within 1e-4 or grows. The last two exchanges are then taken back for a final
// fit. This ends near the least largest residual, not on it. After a stop the weights stay as they are.
bool FitLoo(NormFit& fit);

// No loop goes on for ever: rounds that a count of 16 bits holds. A loop that ends by such a limit, and not
// by its own rule, says so in a message.
inline constexpr int kMostNormRounds = 32767;
