// What the parts of one fit share while it works.
#pragma once

#include <limits>

#include "fit/chain.h"
#include "fit/design.h"
#include "fit/fit_listener.h"
#include "fit/parameters.h"

namespace corvinade::fit {

// How an iteration has gone.
struct IterationState {
    int Iterations = 0;      // passes so far
    bool Converged = false;  // the largest correction fell below the threshold, or AtRest
    bool AtRest = false;     // at its limit only rounding moved it any more
    bool Finite = true;      // no parameter has become infinite or undefined
    bool Abandoned = false;  // the listener says that the points have been replaced: there is no result
    FitModel Model;          // of the last iteration
};

// How the loop of a norm has gone.
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

struct FitLimits {
    int MaxIteration = 0;     // passes; one more may be made, that the limit is seen to be passed
    double Threshold = 1e-9;  // a largest correction below this ends an iteration
};

struct FitRun {
    FitLimits Limits;
    FitListener Listener;
    Parameters Now;     // as they stand
    ChainRecord Chain;  // of the last linearisation
    IterationState State;
    Convergence Last;
    NormRecord Norm;  // Rounds and steps of its events are Iterations and Linearisations

    // False: the work ends at once.
    bool Tell(FitStep step, const Column* corrections = nullptr, double value = 0) {
        return Tell(FitEvent{.Step = step,
                             .Iterations = State.Iterations,
                             .Now = Now,
                             .Last = Last,
                             .Corrections = corrections,
                             .Rounds = Norm.Iterations,
                             .Steps = Norm.Linearisations,
                             .Value = value});
    }
    bool Tell(FitStep step, double value) { return Tell(step, nullptr, value); }
    bool Tell(const FitEvent& event) {
        State.Abandoned = State.Abandoned || !Listener.GoesOn(event);
        return !State.Abandoned;
    }
    bool Stops() const { return Listener.Stops(); }
};

}  // namespace corvinade::fit
