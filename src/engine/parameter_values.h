// All parameters of the job at once: to remember them, and to put them back.
#pragma once

#include <array>

#include "core/job.h"

// The values of parameters 1 to 17 by their numbers; mm, rad and factors.
using ParameterValues = std::array<double, kParameterEnd>;

ParameterValues JobParameters();
void SetJobParameters(const ParameterValues& values);
