// What the parts of one fit share while it works.
#pragma once

#include "fit/chain.h"
#include "fit/design.h"
#include "fit/fit_listener.h"
#include "fit/parameters.h"

// How an iteration has gone.
struct IterationState {
    int Iterations = 0;      // passes so far
    bool Converged = false;  // the largest correction fell below the threshold
    bool Finite = true;      // no parameter has become infinite or undefined
    bool Abandoned = false;  // the listener says that the points have been replaced: there is no result
    FitModel Model;          // of the last iteration
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

    // False: the work ends at once.
    bool Tell(FitStep step, const Column* corrections = nullptr) {
        const FitEvent event{step, State.Iterations, Now, Last, corrections};
        State.Abandoned = State.Abandoned || !Listener.GoesOn(event);
        return !State.Abandoned;
    }
    bool Stops() const { return Listener.Stops(); }
};
