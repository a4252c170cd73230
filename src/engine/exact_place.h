// A place on the way to an exact norm's optimum: the job's parameters, and the residuals made linear there.
#pragma once

#include <array>
#include <functional>
#include <vector>

#include "engine/linear_optimum.h"
#include "engine/linear_rows.h"
#include "engine/norms.h"

using ParameterArray = std::array<double, kParameterEnd>;
ParameterArray JobParameters();
void SetJobParameters(const ParameterArray& parameters);

struct ExactPlace {
    const GatheredPoints& Points;
    const FitModel& Model;
    Linearisation Here;
    LinearRows Rows;  // orthonormal columns, those of y
    std::vector<std::vector<double>> T;
    bool AllTold = true;  // the points tell all unknowns apart

    // At the present parameters of the job.
    void Linearise();

    // The corrections of the parameters that y stands for here.
    Column Corrections(const std::vector<double>& y) const;

    // Goes by y, mm, and linearises there. The image of the points' centre moves as y says and by nothing
    // else, where its translations float: a turn far from the origin would carry it away by its square.
    void Step(const std::vector<double>& y);

    // How the sum of the rows, each times its weight, curves in y: how fast its gradient turns.
    //   weights  one a row
    //   Returns columns by columns, row by row.
    std::vector<double> Curvature(const std::vector<double>& weights) const;
};

// The sum of the rows in use, each times its weight: A'w. One entry a column.
std::vector<double> WeightedSum(const LinearRows& rows, const std::vector<double>& weights);
