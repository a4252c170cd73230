// Start values of the adjustment: a closed solution from three seed points, and the user's own.
#pragma once

#include <string>

#include "core/rooms.h"
#include "fit/seed.h"
#include "fit/start_values.h"

namespace corvinade::engine {

// The seed points of the job. Reads the job's points, use flags and Settings.RawScale.
SeedPoints TakeSeedPoints();

// Transformation of the seed points Job.SeedIndex(1 to 3), without iteration: translation in mm,
// rotation in rad, one scale an axis. Reads the job's points, use flags and Settings.RawScale. With
// fewer than three pairs the third one counts as 0 and the result is a start value only. Seed points
// that lie on a line or on each other give a poor start and no failure. The user's own start values
// (GetSeed) are applied to the job by the caller that owns the run, not here.
void RawSolution(double& tx, double& ty, double& tz, double& rx, double& ry, double& rz, double& sx,
                 double& sy, double& sz);

// The start values of the calculation window; nothing where the raw one stays.
OwnStarts ReadOwnStarts();

// Applies the start values of the calculation window to the job's parameters.
void GetSeed();

// True when the name is that of one of the three seed points.
bool ItsASeed(const std::string& name);

// Where no seed points have been chosen (Job.SeedName(1) is empty): pairs 1, 2 and, if there is one, 3.
void ChooseDefaultSeeds();

// Makes an identical point the newest seed: it becomes the first one, the first the second, the second
// the third. A point that is a seed already changes nothing. Require: 1 <= pair <= Job.Pairs(). Throws
// PlatformError, the seeds unchanged, for a pair beyond 32767, the last that a job file can name.
void TakeAsNewestSeed(int pair);

// Turns the last result into start values: every parameter whose field holds a value gives its seed
// field the job's present value in the shown unit and format, and so does the distance.
void SeedsFromResult();

}  // namespace corvinade::engine
