// The result of a fit as a table for people, as JSON, and as CSV.
#pragma once

#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

#include "cli/fit_options.h"
#include "cli/fit_statistics.h"
#include "core/arrays.h"
#include "core/rooms.h"
#include "engine/solution_details.h"
#include "engine/tolerance_check.h"

namespace corvinade::cli {

// Everything that the outputs say of one identical point; lengths in mm.
struct FitPoint {
    int Pair = 0;
    std::string_view Name;  // of the job
    double Start[3], Target[3], Transformed[3];
    double Deviation[3];  // transformed minus target
    double Deviation3D;
    bool Used[3];
};
FitPoint FitPointOf(int pair);

std::vector<FitPoint> FitPoints();  // of all pairs; those of a million take 130 MB

// The names of the system that is transformed and of that which it is fitted to, whatever the direction.
std::string StartSystem();
std::string TargetSystem();

// Coordinates that take part in the fit.
int ObservationsInUse();

// Over the coordinates that take part, what the norms L1 and L-infinity make least; mm.
struct FitNorms {
    double Sum = 0, Largest = 0;  // of the absolute deviations
};
FitNorms NormsOfDeviations();

// True when Monte Carlo was asked for and all its runs were done.
bool HasMonteCarlo(const FitOptions& options);
// "1000 runs with noise of 0.05, 0.05, 0.1 mm in x, y, z of the start points"
std::string NoiseInWords(const FitOptions& options);

// The matrix R K S of the present parameters, elements (1, 1) to (3, 3).
Mat3 FitMatrix();

// `details`: all forms of the rotation as well; null = not asked for.
void WriteFitTable(const FitOptions& options, const SolutionDetails* details, const FitStatistics& statistics,
                   std::ostream& out, bool colour);
void WriteFitJson(const FitOptions& options, const SolutionDetails* details, const FitStatistics& statistics,
                  std::ostream& out);
void WriteFitCsv(const FitOptions& options, std::ostream& out);

}  // namespace corvinade::cli
