// The way of a fit to a shape.
#include "fit/shape_way.h"

namespace corvinade::fit {

namespace {

LoopEnd FitWithoutThrow(ShapeLoop& loop, const WaySteps& steps) {
    const LoopEnd end = steps.Loop();
    if (end == LoopEnd::Lost || steps.Stopped() || !IsThrownOff(loop, steps.s0())) return end;
    const Parameters thrown = steps.Now();
    const double s0 = steps.s0();
    steps.Put(loop.Best);
    loop.Accelerates = false;
    LoopEnd plain = steps.Loop();
    if (plain == LoopEnd::Rest && !(steps.s0() < s0)) {
        steps.Put(thrown);
        plain = steps.Loop();
    } else if (plain == LoopEnd::Rest && steps.ThrownOff) {
        steps.ThrownOff();
    }
    loop.Accelerates = true;
    return plain;
}

// False when nothing more is to follow.
bool GoOnToRest(const WaySteps& steps) {
    bool moved = false;
    return steps.GoToRest(moved) == PassEnd::Done && moved && !steps.Stopped();
}

}  // namespace

LoopEnd LoopToRest(ShapeLoop& loop, double tolerance, const LoopSteps& steps) {
    for (int pass = 1;; ++pass) {
        const double before = loop.PreviousS0;
        double s0 = 0;
        const PassEnd end = steps.Pass(s0);
        if (end != PassEnd::Done) return end == PassEnd::Lost ? LoopEnd::Lost : LoopEnd::Stopped;
        if (!steps.GoesOn()) return LoopEnd::Lost;
        // All passes behind one that failed would do the same.
        if (steps.StopIsWanted()) return LoopEnd::Stopped;
        if (AtRest(before, s0, tolerance) || (steps.RestIsWanted && steps.RestIsWanted()))
            return LoopEnd::Rest;
        if (pass < kMostPasses) continue;
        if (steps.MostPasses) steps.MostPasses();
        return LoopEnd::Stopped;
    }
}

void EndOfPass(ShapeLoop& loop, const std::array<bool, kParameterEnd>& floats, double s0, bool settled,
               Parameters& now) {
    if (settled) KeepBest(loop, s0, now);
    if (loop.Accelerates) Accelerate(loop, floats, s0, now);
    loop.PreviousS0 = s0;
}

LoopEnd FitToRest(ShapeLoop& loop, const WaySteps& steps) {
    const LoopEnd end = FitWithoutThrow(loop, steps);
    return end == LoopEnd::Rest && GoOnToRest(steps) ? steps.Loop() : end;
}

LoopEnd FitBeside(ShapeLoop& loop, const WaySteps& steps, BesideSearch& found) {
    const Parameters before = steps.Now();
    const double s0 = steps.s0();
    if (steps.SearchBeside(found) == PassEnd::Lost) return LoopEnd::Lost;
    if (!found.Better || steps.Stopped()) return LoopEnd::Rest;
    const LoopEnd end = FitToRest(loop, steps);
    if (end != LoopEnd::Rest || steps.s0() < s0) return end;
    steps.Put(before);
    found.Better = false;
    return steps.Loop();
}

}  // namespace corvinade::fit
