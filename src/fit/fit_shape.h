// A whole fit of points to a shape of revolution, and its runs of Monte Carlo: values in, values out.
#pragma once

#include <array>
#include <functional>
#include <span>
#include <vector>

#include "fit/better_place.h"
#include "fit/monte_carlo.h"
#include "fit/shape_run.h"

namespace corvinade::fit {

struct ShapeProblem {
    CleanPoints Start;              // points of the start system, mm
    std::span<const double> InUse;  // three a point, x y z: 0 takes no part, 1 does; empty: all do
    Matrix Shape;                   // radius and height of its profile from row 1 on (shape.h), mm
    FitModel Model;                 // which parameters float
    Parameters Begin;               // of all of them, those that are held included
    FitLimits Limits{.MaxIteration = 100};
    double Tolerance = 1e-6;  // mm, of the s0 of two passes
};

struct ShapeResult {
    Parameters Values;
    PassEnd End = PassEnd::Done;  // Lost: nothing here is of use; Failed: Values is where it ended
    double s0 = 0;                // mm, of the residuals
    Column Residuals, Weights;    // three a point from 1 on: transformed point minus nearest place, mm
    std::vector<int> Open;        // parameters that the shape does not hold
    std::vector<double> Sigmas;   // by the distances from the shape alone (SigmasByDistances)
    BesideSearch Beside;
};

// Require: the shape serves; all columns are as long, three of InUse a point or none; the model is that of
// points which are to coincide.
ShapeResult FitShape(const ShapeProblem& problem, const ShapeListener& listener = {});

// The run of a problem as it begins.
ShapeRun BeginShape(const ShapeProblem& problem, const ShapeListener& listener);

// Runs of Monte Carlo, each a loop of passes of its own with new noise, from where the one before has ended.
struct ShapeRuns {
    std::array<std::vector<double>, 3> Clean;  // the start points as measured; mm
    Vec3 Sigma;                                // of the noise; mm
    int Runs = 0;
    double Tolerance = 1e-5;  // mm, of the s0 of two passes
};
struct ShapeRunsListener {
    std::function<void(int run)> Begins;  // a run, from 1 on
    // One counts: element k of `values` is its result of array k (monte_carlo.h).
    std::function<void(int run, const Column& values)> Counts;
};

// The points stand without noise again behind it; the parameters are those of the last run.
MonteCarloEnd RunMonteCarloOfShape(const ShapeRuns& runs, ShapeRun& fit, ShapeLoop& loop, NoiseRecord& noise,
                                   const ShapeRunsListener& listener);

}  // namespace corvinade::fit
