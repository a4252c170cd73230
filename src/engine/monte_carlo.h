// Monte Carlo: repeats the least-squares fit with normally distributed noise on the start points. The
// spread of each parameter over the runs tells how far the noise of the measurement carries into it.
#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "core/arrays.h"
#include "core/form_progress_bar.h"
#include "core/job.h"
#include "core/rooms.h"
#include "core/window.h"
#include "engine/norms.h"
#include "fit/monte_carlo.h"

namespace corvinade::engine {

// What the user sees while the runs last.
struct MonteCarloShown {
    ProgressWindow Window{"Calculating MonteCarlo"};
    BusyPointer Pointer;
};

struct MonteCarloRecord {
    Flag MonteCarloOn = kFalse;        // the next calculation by least squares begins with the runs
    Flag MonteCarloDone = kFalse;      // MCResults is complete; stays so until the next runs begin
    bool WithoutNoise = false;         // what the runs spread is rounding then
    Column MCSaveX, MCSaveY, MCSaveZ;  // 1 to Job.Pairs(): the start points without noise, mm
    // Row k holds array k, entries 1 to the number of runs; mm and rad. Those of a held parameter are 0.
    Matrix MCResults;
    std::uint64_t Started = 0;  // counts the starts: a run that was overtaken by another writes nothing
    std::unique_ptr<MonteCarloShown> Shown;
};
inline MonteCarloRecord MonteCarlo;

// More runs would need more memory (144 byte a run) than a calculation should take.
inline constexpr int kMostMonteCarloRuns = 5'000'000;

// The number of runs by Settings.MonteCarloRuns: at least 2, and 100 where none has been set.
int RunsOfMonteCarlo();

// The runs belong to the fit. For a job with a shape they are wrapped around its outer loop of fits.
bool MonteCarloIsInTheFit();

// False, with a message, when there are too many runs to hold. Nothing has been changed then.
bool MonteCarloCanBeHeld();

// Moves the progress bar to run i of `runs`. True when that moved it.
bool ShowRunOfMonteCarlo(int i, int runs);

// The steps of the runs on the job's side, which a caller takes only when they can be held. The noise lives
// in gathered points, never in the job, so that a save while events are served stores what was measured.
void MonteCarloInitialisieren();                        // sizes and saves, shows progress and busy pointer
void TakeRunOfMonteCarlo(int i, const Column& values);  // of run i: element k into array k of MCResults
void MonteCarloFinalisieren(GatheredPoints& points);    // the points without noise, the window away

// All runs on points that are gathered; they stand without noise again behind it. A stop, a run that does
// not converge and one that is no number end the runs: MonteCarloDone is then false. False when the job's
// points were replaced while events were served, or when there are too many runs: the calculation ends then.
//   fit  Q and v are left as the last run has made them that showed its texts
// Reads Settings.SigmaX, SigmaY, SigmaZ (mm) as the runs begin; writes MonteCarlo, Noise, the job's
// parameters; clears Run.StopRequested.
bool RunMonteCarlo(NormFit& fit);

// Behind the fit that follows the runs: BringRunsToForm with the job's result. A note tells how many runs
// there were in another form. Nothing where the runs are not complete.
//   Reads Adjustment.Model, the job's parameters; writes MCResults
void BringRunsToFormOfResult();

// Array k of MCResults.
std::span<const double> MonteCarloArray(int k);

}  // namespace corvinade::engine
