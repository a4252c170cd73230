// The way of a fit to a shape, from its first pass to the best place that is found. Whose passes these are is
// the caller's: those of gathered points (shape_run.h), or a whole calculation of the program each.
#pragma once

#include <cstdint>
#include <functional>

#include "fit/better_place.h"
#include "fit/shape_run.h"

namespace corvinade::fit {

enum class LoopEnd : std::uint8_t {
    Rest,     // s0 has changed by no more than the tolerance
    Stopped,  // by the user, or since a fit failed
    Lost      // what the fit works on has been replaced, or a pass was refused
};

// The passes of a loop.
struct LoopSteps {
    // One pass, counted, and its parameters sent ahead (EndOfPass).
    std::function<PassEnd(double& s0)> Pass;
    std::function<bool()> GoesOn;        // behind each; false: Lost
    std::function<bool()> StopIsWanted;  // behind that: by the user, or since the pass has failed
    std::function<bool()> RestIsWanted;  // what stands is taken as the rest; may be unset
    std::function<void()> MostPasses;    // kMostPasses have been made: the loop stops; may be unset
};

// Passes until s0 rests; `tolerance` in mm.
LoopEnd LoopToRest(ShapeLoop& loop, double tolerance, const LoopSteps& steps);

// Behind the fit of a pass: keeps the best where it is `settled`, and sends ahead what floats.
void EndOfPass(ShapeLoop& loop, const std::array<bool, kParameterEnd>& floats, double s0, bool settled,
               Parameters& now);

// All of the way. Parameters and s0 are those of the last pass.
struct WaySteps {
    std::function<LoopEnd()> Loop;  // from the present parameters on
    std::function<PassEnd(bool& moved)> GoToRest;
    std::function<PassEnd(BesideSearch& found)> SearchBeside;
    std::function<Parameters()> Now;
    std::function<void(const Parameters&)> Put;
    std::function<double()> s0;
    std::function<bool()> Stopped;
    std::function<void()> ThrownOff;  // the result is that of passes without acceleration; may be unset
};

// The loop; where it has been thrown off, on from its best pass without acceleration, unless what stands is
// no worse; and where s0 rests, on to where the passes stand still. There the parameters may still be far
// from where s0 rests, by tenths of a millimetre on a dish of metres, and the last acceleration stands behind
// the last fit.
LoopEnd FitToRest(ShapeLoop& loop, const WaySteps& steps);

// Along a table of few rows points hang at its kinks, and passes rest at places that hang on where they
// began: on to the best place beside. What stands is left as it is where that is not better.
LoopEnd FitBeside(ShapeLoop& loop, const WaySteps& steps, BesideSearch& found);

}  // namespace corvinade::fit
