// The peer of the adjustment: a plain Gauss-Newton that streams over the points with Eigen.
#pragma once

#include <array>
#include <vector>

#include "fit_data.h"

struct EigenFitResult {
    std::vector<double> Parameters;
    std::vector<std::array<double, 3>> Residuals;
    int Iterations = 0;
};

// Begins at `begin` (12 values as FitData::Truth) and ends at corrections below 1e-9, or after 50 passes.
//   parameters  7 or 12
//   weights     one for each coordinate
void EigenFit(const FitData& data, int parameters, const std::array<double, 12>& begin,
              EigenFitResult& result, const std::vector<std::array<double, 3>>* weights = nullptr);

// L1 by reweighting, each fit from `begin` on, until the sum of absolute residuals stands still within 1e-3.
// Returns the number of fits.
int EigenL1(const FitData& data, int parameters, const std::array<double, 12>& begin, EigenFitResult& result);
