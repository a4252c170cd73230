// A calculation in its norm: one fit for least squares, and loops of fits with changing weights for the least
// sum of absolute residuals (L1) and the least largest one (L-infinity, "Loo").
//
// All take a run whose points are gathered, with choice, seeds, model, weights in use and limits; what they
// find is its parameters, result, record and remarks. False when the listener has abandoned the fit: what is
// in the run then is of no use. A stop ends each loop at its next test, and so does a fit whose result is no
// number: all fits behind would do the same. A fit that runs into its limit ends nothing, for the weights
// behind it may be kinder; how many did so a remark says.
#pragma once

#include "fit/norm_run.h"

namespace corvinade::fit {

// The fit from the start values on, held against the best one there is (best_fit.h).
bool FitLeastSquares(NormRun& fit);

// The loop of the run's norm. One whose end is worse in its norm than its first fit, or mirrored where that
// is not and by no more than noise explains, has been led astray: it is gone through again from the first
// fit, and where that leads nowhere either the first fit is the result. Where points fit badly, so that it
// hangs on the seed points where the weightings end, the better one of both ways is the result. A remark says
// so. With Norm.RunOn the way to the optimum follows (exact_norms.h).
bool FitByLoop(NormRun& fit);

// Where the runs of Monte Carlo are to begin: in RunsBegin, where the start values lead a fit elsewhere than
// to the best one, as they would in the runs as well.
bool SeekBeginOfRuns(NormRun& fit);

// L1 by reweighting: each fit's residuals give the weights 1/|v| of the next, until their sum stands
// still within 1e-3. The weights left are those made from the last residuals; no fit follows them.
bool FitL1(NormRun& fit);

// Loo by exchange of weight: the worst row gains a tenth and the best one loses it, until the largest
// residual stands still within 1e-4 or grows. The last two exchanges are then taken back for a final
// fit. This ends near the least largest residual, not on it. After a stop the weights stay as they are.
bool FitLoo(NormRun& fit);

// No loop goes on for ever: rounds that a count of 16 bits holds. Norm.Converged is false of one that ends
// so.
inline constexpr int kMostNormRounds = 32767;

// What the above is made of.

// The iteration from the present parameters on, and the present parameters as the result.
void IterateFit(NormRun& fit);
void SettleFit(NormRun& fit);

// The start values of a fit, or where the best fit by least squares has shown them to lead astray that one.
void TakeBeginOfFit(NormRun& fit);

// One fit of the norm, from there on.
void FitFromStart(NormRun& fit);

// The first fit of a loop, whose weights are 0 and 1. Where the start values led it elsewhere than to the
// best fit, or nowhere, the best one takes its place and is where the fits behind begin; a remark says so.
void FirstFitOfLoop(NormRun& fit);

// Behind each inner fit of a loop: counts it in Norm.Unsettled if it has come to its limit.
void CountUnsettledFit(NormRun& fit);

// How many times as large the one is as the other; infinite from a million times on, and beside 0.
double TimesAsMuch(double more, double less);

}  // namespace corvinade::fit
