// The fit of start points to a shape of revolution, on points that are gathered: the nearest points of the
// shape become the targets, the transformation is fitted to them, and so on until the mean error rests.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <limits>
#include <vector>

#include "fit/adjustment.h"
#include "fit/fit_run.h"
#include "fit/gathered_points.h"

namespace corvinade::fit {

struct ShapeRun;

// Who hears what a fit to a shape does, and may end it. Any of them may be unset.
struct ShapeListener {
    // At each point of a pass, at each sum of a search and behind each pass of a loop; false: what the fit
    // works on has been replaced. `moved` tells whether the parameters may be others than the last time.
    std::function<bool(const ShapeRun&, bool moved)> GoesOn;
    // The adjustment of a pass begins at these parameters: its limits and its listener. Unset: those of the
    // run, heard by nobody.
    std::function<FitRun(const Parameters& begin)> BeginFit;
    std::function<bool(const FitRun& fit)> Fitted;    // and has ended; false as above
    std::function<void(const ShapeRun&)> PassCounts;  // of a loop, before the parameters are sent ahead
    std::function<void()> MostPasses;                 // a loop has come to its limit
    std::function<bool()> StopIsWanted;               // true: no result is wanted
    std::function<bool()> RestIsWanted;               // true: what stands is taken as the end
    bool Stops() const { return StopIsWanted && StopIsWanted(); }
    bool StopsOrRests() const { return Stops() || (RestIsWanted && RestIsWanted()); }
};

enum class PassEnd : std::uint8_t {
    Done,
    Failed,  // the fit did not converge, or its result is no number
    Lost     // what it works on has been replaced
};

// A fit to a shape while it works.
struct ShapeRun {
    Matrix Shape;  // radius and height (shape.h)
    FitModel Model;
    Parameters Now;  // as they stand
    ChainRecord Chain;
    FitLimits Limits{.MaxIteration = 100};
    GatheredPoints Points;
    Column P;                // three a pair, 0 takes no part
    IterationResult Result;  // of the last pass
    double s0 = 0;           // likewise, mm
    ShapeListener Listener;

    bool Lost(bool moved = true) const { return Listener.GoesOn && !Listener.GoesOn(*this, moved); }
};

// Where the present parameters carry a point of the start system; mm.
Vec3 ImageOf(ShapeRun& run, const Vec3& p);

// The nearest points of the shape become the targets, and the fit to them is made, from the present
// parameters on.
PassEnd Pass(ShapeRun& run);

// From near the place where the passes stand still on to that place. Passes alone creep there, since points
// slide along a surface, and their s0 comes to rest long before the parameters do; so their fixed point is
// extrapolated from the last few of them ("Anderson mixing", Journal of the ACM 12(4), 1965), which needs
// about as many passes as there are unknowns. The parameters are then those of the pass with the least s0, or
// as they were where none is better, and where the search was stopped.
// The way goes along directions that the shape holds, and only along those in which the sum of squares falls
// by more than its rounding; the rotation about the shape's axis takes no part. What the shape does not hold
// stays where the passes before have left it.
//   moved  out: the parameters are others than before
//   Lost   the parameters are of no use
PassEnd GoToRest(ShapeRun& run, bool& moved);

// --- The loop of passes -----------------------------------------------------------------------------------

// How a parameter has moved over the last passes. Points slide along a surface with little resistance, so
// a parameter that moves steadily is sent ahead.
struct ParameterTrend {
    int Parameter = 0;
    Column History = Column(6);  // elements 0 to 5: 5 the present value, 4 the one of the pass before
    std::int16_t Boost = 0;      // steady steps so far
};

struct ShapeLoop {
    double PreviousS0 = 100;  // s0 of the pass before, mm; the loop begins with 100
    bool Accelerates = true;
    Parameters Best;  // behind the fit of the pass with the least s0 of this loop, and that
    double LeastS0 = std::numeric_limits<double>::infinity();
    // A shape of revolution does not hold the rotation about its axis, so that has no trend.
    std::array<ParameterTrend, 5> Trends{
        ParameterTrend{.Parameter = kTraX}, ParameterTrend{.Parameter = kTraY},
        ParameterTrend{.Parameter = kTraZ}, ParameterTrend{.Parameter = kRotX},
        ParameterTrend{.Parameter = kRotY}};
};

// No history, no steady step, PreviousS0 as large as no fit has it.
void BeginLoop(ShapeLoop& loop);

// The fit of a pass has ended well, with these parameters: the best one of the loop, perhaps.
void KeepBest(ShapeLoop& loop, double s0, const Parameters& now);

// The end of a pass with the new s0: sends what floats and moves steadily ahead, or begins anew where s0 has
// not become smaller. Sets PreviousS0.
void Accelerate(ShapeLoop& loop, const std::array<bool, kParameterEnd>& floats, double s0, Parameters& now);

// The loop has come to rest: the last two s0 differ by no more than `tolerance`, or are no numbers.
bool AtRest(double s0Before, double s0, double tolerance);

// Does a loop end with this s0 far from where its best pass has been? The acceleration may throw it past the
// shape.
bool IsThrownOff(const ShapeLoop& loop, double s0);

inline constexpr int kMostPasses = 32767;

}  // namespace corvinade::fit
