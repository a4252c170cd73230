// Monte Carlo: repeats the least-squares fit with normally distributed noise on the start points. The
// spread of each parameter over the runs tells how far the noise of the measurement carries into it.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <vector>

#include "fit/adjustment.h"
#include "fit/fit.h"
#include "fit/noise.h"

namespace corvinade::fit {

// The arrays of the runs' results, one a parameter in the order of their numbers 1 to 17, and behind them the
// mean error xyz of each run.
inline constexpr int kSigmaXYZ = kParameterEnd;
inline constexpr int kMonteCarloArrays = kSigmaXYZ;

// Start points as they were measured, element 0 the first; mm.
using CleanPoints = std::array<std::span<const double>, 3>;

// Puts each start point of `points` where it was measured, plus new noise of these deviations (mm).
void AddNoise(const CleanPoints& clean, const Vec3& sigma, NoiseRecord& noise, GatheredPoints& points);
void TakeNoiseOff(const CleanPoints& clean, GatheredPoints& points);

// The runs on points that are gathered.
struct MonteCarloRun {
    FitModel Model;  // of all runs
    StartChoice Choice;
    SeedPoints Seeds;                          // as measured; each run begins with those of its own points
    std::optional<Parameters> Begin;           // where each run begins instead, of what floats
    std::optional<Parameters> Again;           // where one begins again that found no end from there
    int BeganAgain = 0;                        // out: runs that did, and converged
    int Done = 0;                              // out: runs that count
    std::array<bool, kParameterEnd> Held{};    // parameters that float by choice and that the fit holds
    std::array<std::vector<double>, 3> Clean;  // x, y, z; mm
    Vec3 Sigma;                                // of the noise; mm
    int Runs = 0;
    GatheredPoints Points;
    Column P;                // three a pair
    FitRun Quiet;            // of fits that tell no more than that a pass begins and ends
    IterationResult Result;  // of the last whole fit
};

struct MonteCarloListener {
    // A run, from 1 on, begins. True: its fit goes the whole way, which tells each step and costs more.
    std::function<bool(int run)> Begins;
    // Behind that; false: what the runs work on has been replaced.
    std::function<bool()> GoesOn;
    // A fit that goes the whole way begins at these parameters: its limits and its listener. Must be set.
    std::function<FitRun(const Parameters& begin)> BeginWhole;
    // The fit of a run has ended, whichever start it had in the end; false as above.
    std::function<bool(const FitRun& run, bool whole)> Fitted;
    // The run counts. Element k of `values` is its result of array k, mm and rad; 0 for what is held. Its
    // rotation is the neater one, `nicer`, where there is one.
    std::function<void(int run, const Column& values, const std::optional<Vec3>& nicer)> Counts;
};

enum class MonteCarloEnd : std::uint8_t {
    Complete,
    Ended,     // by a stop, or by a run that did not converge
    Abandoned  // what the runs work on has been replaced
};

// A choice that holds what the fit holds, at the values where the runs begin.
StartChoice ChoiceOfRuns(StartChoice choice, const std::array<bool, kParameterEnd>& held,
                         const std::optional<Parameters>& begin);

// All runs; the points stand without noise again behind them, whatever ends them. Require: clean points are
// as many as those gathered.
MonteCarloEnd RunMonteCarlo(MonteCarloRun& run, NoiseRecord& noise, const MonteCarloListener& listener);

// Brings each run to the form of its transformation that is nearest to the result, for several sets of
// parameters mean the same (equal_forms.h), and a spread over a mixture of them would be that of their signs
// and half turns. Angles stand less than half a turn from the result's. Gives how many runs were in another
// form.
//   results  array k in row k, entries 1 to the number of runs
int BringRunsToForm(const FitModel& model, const Parameters& result, Matrix& results);

// Takes the neater rotation of two (nice_rotation.h), and gives it; nothing where there is none.
std::optional<Vec3> TakeNicerRotation(Parameters& values);

// What a run leaves: element k of array k, the angles of the rotation less than half a turn from 0; 0 for
// what neither floats nor is `held`.
void ResultOfRun(const FitModel& model, const std::array<bool, kParameterEnd>& held, const Parameters& values,
                 double sigmaXYZ, Column& result);
// The mean error xyz of residuals and weights, three a pair.
double SigmaXYZOf(const Column& v, const Column& P);

struct MonteCarloProblem {
    FitProblem Fit;  // by least squares; its parameters, limits and seed pairs are those of the runs as well
    Vec3 Sigma;      // of the noise on the start points; mm
    int Runs = 100;  // at least 2
    std::uint32_t Seed = kUsualSeed;
};

struct MonteCarloResult {
    FitResult Fit;   // of the points as they were measured
    Matrix Results;  // array k in row k, entries 1 to Runs, in the form nearest to the fit's
    MonteCarloEnd End = MonteCarloEnd::Complete;
    int OtherForms = 0;  // runs that were brought to it
    int BeganAgain = 0;  // runs that found no end from their start values, and did from the fit's own
};

// The runs, and the fit behind them. `listener` hears the passes of all fits.
MonteCarloResult FitWithRuns(const MonteCarloProblem& problem, const FitListener& listener = {});

// Over the entries 1 to n of an array whose entry 0 is unused; n the array's upper bound.
double MeanOfArray(std::span<const double> a);
double SigmaOfArray(std::span<const double> a);  // with the divisor n - 1

}  // namespace corvinade::fit
