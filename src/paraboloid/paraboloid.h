// The fit of the start points to a shape. An outer loop takes the nearest points of the shape as targets and
// fits the transformation to them, until the mean error comes to rest.
#pragma once

#include <cstdint>
#include <string>

#include "core/arrays.h"
#include "core/job.h"
#include "core/rooms.h"
#include "fit/shape_run.h"
#include "fit/shape_way.h"
#include "import/robot_files.h"

namespace corvinade::paraboloid {

struct ParaboloidRecord {
    std::string ParaboloidFile;       // the shape file that was read last
    Column ShapeTest{0};              // delta1 by row of the shape, mm; rows 1 to 4 have none
    Flag ParaStopRequested = kFalse;  // the user wants the outer loop to end
    double S0 = 0;                    // of the last pass
    std::int32_t ParaPass = 1;        // number of the pass to come
    ShapeLoop Loop;                   // of the passes that run, or have run last
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

// The outer loop, to its end. `tolerance` in mm.
LoopEnd FitToShape(double tolerance);

// The passes of a calculation of a job with a shape, and its Monte Carlo runs.
void CalculateParaboloid();

// --- The shape of an import -------------------------------------------------------------------------------

void EinlesenParaboloidData(const TargetFile& file);  // reads its shape file
void ParaboloidNearestTargets();         // each start point's nearest point of the shape becomes its target
void TakeShape(const TargetFile& file);  // both

// --- What the passes share with those of Monte Carlo ------------------------------------------------------

// BeginLoop of ParaboloidRun.Loop.
void BeginOuterLoop();

// The start values of the first pass.
void TakeStartOfShape();

void CountPass();

// The message of kMostPasses, more than which no count of 16 bits holds.
void TellOfMostPasses();

// All runs, each an outer loop of its own on start points with new noise, which are gathered and never in the
// job. False when the job's points were replaced meanwhile.
bool RunMonteCarloOfShape();

// True where the job has a shape that serves; otherwise false, and a message says what is missing.
bool JobHasShape();

// Target point i of the job.
void PutTarget(int i, const Vec3& target);

}  // namespace corvinade::paraboloid
