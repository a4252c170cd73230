// Jobs for tests of the fit: points put into the job, parameter choices, and the same problem for the
// independent solution.
#pragma once

#include <initializer_list>
#include <vector>

#include "core/job.h"
#include "engine/fit_reference.h"

using namespace corvinade;

// Settings as a new settings file has them, and no parameter chosen: all "not used".
void BeginFit();

// Adds pairs to the job, all coordinates in use, and names them "P1", "P2", ...
void AddPair(const reference::Point& start, const reference::Point& target);

// The named parameters float; the others keep their text.
void FloatParameters(std::initializer_list<int> parameters);
inline const std::initializer_list<int> kRigid = {kTraX, kTraY, kTraZ, kRotX, kRotY, kRotZ};

// A seeded cloud about `centre`, `size` wide, transformed by `truth` (numbers 1 to 17, scales filled)
// with noise of standard deviation `noise`, all pairs added to the job.
struct CloudEntry {
    int Points = 20;
    reference::Point Centre{};
    double Size = 1000, Noise = 0;
    std::array<reference::Real, 18> Truth{};
};
std::array<reference::Real, 18> Truth(std::initializer_list<double> thirteen);
// A rigid motion, and one with scales and angles between the axes.
inline const std::array<reference::Real, 18> kTruth = Truth({100, -200, 300, 0.4, -0.7, 2.1, 1, 1, 1, 1});
inline const std::array<reference::Real, 18> kSkewed =
    Truth({100, -200, 300, 0.4, -0.7, 2.1, 1.1, 0.9, 1.2, 1, 0.02, 0.6, 0.03});
void AddCloud(const CloudEntry& cloud);

// The job's problem for the independent solution, with the job's use flags as weights and the held
// parameters at their present values, starting at `begin`.
reference::Problem ProblemOfJob(const std::array<reference::Real, 18>& begin);

// Repeatable numbers between -1 and 1.
double NextNumber();
