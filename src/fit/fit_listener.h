// Who hears what a fit does while it works, and may end it.
#pragma once

#include <cstdint>
#include <functional>

#include "fit/arrays.h"
#include "fit/parameters.h"

namespace corvinade::fit {

enum class FitStep : std::uint8_t {
    PassBegins,  // of the iteration, behind its corrections of the pass before
    Linearised,  // the pass has its linearisation
    Summed,      // the sums over the points stand, the normal equations are to be solved
    Solved,      // they are
    PassEnds,    // with its corrections, which are to be added next
    IterationEnds,
    LoopRound,    // of a norm's loop is over: Value is how far the sum has changed, or the largest residual
    OptimumStep,  // on the way to a norm's optimum is over: Value is what the norm makes least
    Searching     // in the middle of long work
};

// Of a pass: how its largest correction stands to that of the pass before.
struct Convergence {
    bool Known = false;  // from the second pass on
    double Ratio = 0;
    double Largest = 0;  // of the pass before; lengths, radians and factors as they are
    int Unknown = 1;     // which it was
};

// What is told of a step. References last as long as the call.
struct FitEvent {
    FitStep Step;
    int Iterations = 0;  // passes that are over
    const Parameters& Now;
    Convergence Last = {};
    const Column* Corrections = nullptr;  // of the pass, of unknowns 1 to u; at PassEnds
    int Rounds = 0;                       // of a norm's loop that have begun
    int Steps = 0;                        // likewise on the way to its optimum
    double Value = 0;                     // mm; at LoopRound and OptimumStep
};

struct FitListener {
    // False: what the fit works on has been replaced. It ends at once, and its result is none.
    std::function<bool(const FitEvent&)> Hear;
    // Asked between two passes, and between two fits of a loop: true ends the work with what it has.
    std::function<bool()> StopIsWanted;

    bool GoesOn(const FitEvent& event) const { return !Hear || Hear(event); }
    bool Stops() const { return StopIsWanted && StopIsWanted(); }
};

}  // namespace corvinade::fit
