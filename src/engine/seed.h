// Start values of the adjustment: a closed solution from three seed points, and the user's own.
#pragma once

#include <string>

// Transformation of the seed points Job.SeedIndex(1 to 3), without iteration: translation in mm,
// rotation in rad, one scale an axis. Reads the job's points, use flags and Settings.RawScale. With
// fewer than three pairs the third one counts as 0 and the result is a start value only. Seed points
// that lie on a line or on each other give a poor start and no failure. The user's own start values
// (GetSeed) are applied to the job by the caller that owns the run, not here.
void RawSolution(double& tx, double& ty, double& tz, double& rx, double& ry, double& rz, double& sx,
                 double& sy, double& sz);

// Applies the start values of the calculation window to the job's parameters.
void GetSeed();

// True when the name is that of one of the three seed points.
bool ItsASeed(const std::string& name);
