// The fit of the start points to a shape. An outer loop takes the nearest points of the shape as targets and
// fits the transformation to them, until the mean error comes to rest.
#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <string>

#include "core/arrays.h"
#include "core/job.h"
#include "core/rooms.h"

namespace corvinade::paraboloid {

// How a parameter has moved over the last passes. Points slide along a surface with little resistance, so
// a parameter that moves steadily is sent ahead.
struct ParameterTrend {
    int Parameter = 0;
    Column History = Column(6);  // elements 0 to 5: 5 the present value, 4 the one of the pass before
    std::int16_t Boost = 0;      // steady steps so far
};

struct ParaboloidRecord {
    std::string ParaboloidFile;       // the shape file that was read last
    Column ShapeTest{0};              // delta1 by row of the shape, mm; rows 1 to 4 have none
    Flag ParaStopRequested = kFalse;  // the user wants the outer loop to end
    double PreviousS0 = 100;          // s0 of the pass before, mm; the loop begins with 100
    double S0 = 0;                    // of the last pass
    std::int32_t ParaPass = 1;        // number of the pass to come
    bool Accelerates = true;          // the passes of this loop
    Parameters Best;                  // behind the fit of the pass with the least s0 of this loop, and that
    double LeastS0 = std::numeric_limits<double>::infinity();
    // A shape of revolution does not hold the rotation about its axis, so that has no trend.
    std::array<ParameterTrend, 5> Trends{
        ParameterTrend{.Parameter = kTraX}, ParameterTrend{.Parameter = kTraY},
        ParameterTrend{.Parameter = kTraZ}, ParameterTrend{.Parameter = kRotX},
        ParameterTrend{.Parameter = kRotY}};
};
inline ParaboloidRecord ParaboloidRun;

// One pass: the nearest points of the shape become the targets of the pairs, the fit to them is made, and
// parameters that move steadily are accelerated. The first pass begins at the raw solution, with the user's
// own start values. False when it was not carried through: the fit was refused, or the job's points were
// replaced while events were served.
//   Reads   Job's points, parameters and shape, Selection; requires that the shape serves
//   Writes  Job.Target of the pairs, Job.Transformed, the job's parameters, Calculation, ParaboloidRun
bool CalcParaboloid();

// The same, and s0 and the overall mean error in the fields of the calculation window.
bool Paraboloid();

enum class LoopEnd {
    Rest,     // s0 has changed by no more than the tolerance
    Stopped,  // by the user, or since a fit failed
    Lost      // as where CalcParaboloid gives false
};

// The outer loop, to its end. `tolerance` in mm.
LoopEnd FitToShape(double tolerance);

// --- What the passes share with those of Monte Carlo ------------------------------------------------------

// The loop begins: no history, no steady step, PreviousS0 as large as no fit has it.
void BeginOuterLoop();

// The start values of the first pass.
void TakeStartOfShape();

// The end of a pass with the new s0: accelerates what moves steadily, or begins anew where s0 has not become
// smaller. Sets PreviousS0.
void Accelerate(double s0);

// The loop has come to rest: the last two s0 differ by no more than `tolerance`, or are no numbers.
bool AtRest(double s0Before, double s0, double tolerance);

void CountPass();

// More passes than a count of 16 bits holds end the loop, with a message.
inline constexpr int kMostPasses = 32767;
void TellOfMostPasses();

// All runs, each an outer loop of its own on start points with new noise, which are gathered and never in the
// job. False when the job's points were replaced meanwhile.
bool RunMonteCarloOfShape();

// Target point i of the job.
void PutTarget(int i, const Vec3& target);

// Shows the targets wherever they are on show.

}  // namespace corvinade::paraboloid
