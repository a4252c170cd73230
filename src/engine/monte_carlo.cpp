// Monte Carlo.
#include "engine/monte_carlo.h"

#include <cmath>
#include <optional>
#include <span>
#include <utility>

#include "core/job.h"
#include "core/notes.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/settings.h"
#include "engine/adjustment.h"
#include "engine/job_fit.h"
#include "engine/nice_rotation.h"
#include "engine/noise.h"
#include "engine/seed.h"
#include "engine/start_values.h"
#include "fit/require.h"

namespace corvinade::engine {

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

CleanPoints SavedPoints() {
    const auto saved = [](const Column& column) { return std::span<const double>(column).subspan(1); };
    return {saved(MonteCarlo.MCSaveX), saved(MonteCarlo.MCSaveY), saved(MonteCarlo.MCSaveZ)};
}

// The job's side of the runs: lends them what the fit has gathered, and takes what they leave.
class RunsOfJob {
public:
    explicit RunsOfJob(NormFit& fit) : fit_(fit) {
        Run.Choice = ChoiceOfRuns(fit.Choice, fit.HeldByFit, fit.RunsBegin);
        Run.Seeds = TakeSeedPoints();
        // The start values decide on the model, with held values that are those of each run.
        TakeStartValues(Run.Choice, Run.Seeds);
        Run.Model = ModelOf(Run.Choice, ChooseMode(fit.ParamText));
        Run.Begin = fit.RunsBegin;
        Run.Again = fit.RunsAgain;
        Run.Held = fit.HeldByFit;
        const CleanPoints saved = SavedPoints();
        for (std::size_t axis = 0; axis < 3; ++axis)
            Run.Clean[axis].assign(saved[axis].begin(), saved[axis].end());
        Run.Sigma = {Settings.SigmaX, Settings.SigmaY, Settings.SigmaZ};
        Run.Runs = MonteCarlo.MCResults.Columns;
        Run.Quiet = BeginQuietFitOfJob();
        Lend();
    }
    ~RunsOfJob() { Lend(); }
    RunsOfJob(const RunsOfJob&) = delete;
    RunsOfJob& operator=(const RunsOfJob&) = delete;
    MonteCarloRun Run;

private:
    void Lend() {
        std::swap(Run.P, fit_.P);
        std::swap(Run.Points, fit_.Points);
        std::swap(Run.Result.Q, fit_.Q);
        std::swap(Run.Result.v, fit_.v);
    }
    NormFit& fit_;
};

// What the program does with what it hears of them.
MonteCarloListener ListenerOfRuns(const MonteCarloRun& run, std::uint64_t jobGeneration) {
    const auto overtaken = [jobGeneration, started = MonteCarlo.Started] {
        return Run.JobGeneration != jobGeneration || MonteCarlo.Started != started;
    };
    return {.Begins = [runs = run.Runs](int i) { return ShowRunOfMonteCarlo(i, runs); },
            .GoesOn =
                [overtaken] {
                    YieldToEvents();
                    return !overtaken();
                },
            .BeginWhole =
                [&run](const Parameters& begin) {
                    PutParameters(begin, Job);
                    BeginAdjustment(run.Model);
                    return BeginFitOfJob();
                },
            .Fitted =
                [&run, overtaken](const FitRun& fit, bool whole) {
                    if (!whole) Adjustment.Model = run.Model;
                    TakeFit(fit);
                    if (whole && !Adjustment.JobChanged) TellOfLimit();
                    return !overtaken();
                },
            .Counts =
                [](int i, const Column& values, const std::optional<Vec3>& nicer) {
                    if (nicer) TakeRotation(*nicer);
                    TakeRunOfMonteCarlo(i, values);
                }};
}

// Runs that went another way than from their start values, and one that none led to an end.
void NoteRuns(const MonteCarloRun& run, MonteCarloEnd end) {
    if (run.BeganAgain > 0)
        AddNote(NoteCode::BetterStart,
                PlainText(run.BeganAgain) +
                    " of the Monte Carlo runs found no end from their start values and began again from the "
                    "result",
                "", 0, run.BeganAgain);
    if (end == MonteCarloEnd::Ended && !run.Quiet.Stops())
        AddNote(NoteCode::UnsettledFits,
                "Monte Carlo run " + PlainText(run.Done + 1) + " of " + PlainText(run.Runs) +
                    " did not converge, from the result on neither: the runs ended there, and there is no "
                    "spread to show");
}

// The window goes, whatever ends the runs.
struct ClosesWindow {
    ~ClosesWindow() { MonteCarlo.Shown.reset(); }
};

}  // namespace

int RunsOfMonteCarlo() {
    constexpr int kUsualRuns = 100, kFewestRuns = 2;
    if (Settings.MonteCarloRuns == 0) return kUsualRuns;
    return Settings.MonteCarloRuns < kFewestRuns ? kFewestRuns : Settings.MonteCarloRuns;
}

bool MonteCarloIsInTheFit() {
    return IsTrue(MonteCarlo.MonteCarloOn) && !IsTrue(Job.IsParaboloid);
}

bool ShowRunOfMonteCarlo(int i, int runs) {
    const auto percent = static_cast<float>(100.0 * i / runs);
    const int value = static_cast<int>(std::nearbyint(percent));
    return std::exchange(Progress.ProgressBar1.Value, value) != value;
}

bool MonteCarloCanBeHeld() {
    const int runs = RunsOfMonteCarlo();
    if (runs <= kMostMonteCarloRuns) return true;
    ShowMessage("The results of " + PlainText(runs) + " Monte Carlo runs cannot be held in memory. At most " +
                PlainText(kMostMonteCarloRuns) + " runs are possible.");
    return false;
}

void MonteCarloInitialisieren() {
    Require(RunsOfMonteCarlo() <= kMostMonteCarloRuns);
    ++MonteCarlo.Started;
    MonteCarlo.MonteCarloDone = kFalse;
    MonteCarlo.WithoutNoise = Settings.SigmaX == 0 && Settings.SigmaY == 0 && Settings.SigmaZ == 0;
    MonteCarlo.Shown.reset();  // of runs that these overtake; closing it later would close the new window
    const auto size = At(Job.Pairs()) + 1;
    for (Column* const saved : {&MonteCarlo.MCSaveX, &MonteCarlo.MCSaveY, &MonteCarlo.MCSaveZ})
        saved->assign(size, 0);
    for (int i = 1; i <= Job.Pairs(); ++i) {
        const Vec3 p = StartPoint(i);
        MonteCarlo.MCSaveX[At(i)] = p(1);
        MonteCarlo.MCSaveY[At(i)] = p(2);
        MonteCarlo.MCSaveZ[At(i)] = p(3);
    }
    MonteCarlo.MCResults = {};  // its memory goes before the new one is taken
    MonteCarlo.MCResults = Matrix(kMonteCarloArrays, RunsOfMonteCarlo());
    MonteCarlo.Shown = std::make_unique<MonteCarloShown>();
}

void TakeRunOfMonteCarlo(int i, const Column& values) {
    Matrix& results = MonteCarlo.MCResults;
    Require(i >= 1 && i <= results.Columns);
    for (int k = 1; k <= kMonteCarloArrays; ++k) results(k, i) = values[At(k)];
}

void MonteCarloFinalisieren(GatheredPoints& points) {
    MonteCarlo.Shown.reset();
    // Runs that were overtaken by others find the points of those, and their own ones are done with.
    if (UpperBound(MonteCarlo.MCSaveX) == points.Count) TakeNoiseOff(SavedPoints(), points);
}

bool RunMonteCarlo(NormFit& fit) {
    // Asked again, since a message box of this calculation may have let the settings change.
    if (!MonteCarloCanBeHeld()) return false;
    const std::uint64_t generation = Run.JobGeneration;
    MonteCarloInitialisieren();
    const ClosesWindow closes;
    RunsOfJob job(fit);
    const MonteCarloEnd end = RunMonteCarlo(job.Run, Noise, ListenerOfRuns(job.Run, generation));
    if (end == MonteCarloEnd::Abandoned) return false;
    NoteRuns(job.Run, end);
    Run.StopRequested = kFalse;
    MonteCarlo.MonteCarloDone = ToFlag(end == MonteCarloEnd::Complete);
    return true;
}

void BringRunsToFormOfResult() {
    if (!IsTrue(MonteCarlo.MonteCarloDone)) return;
    Matrix& results = MonteCarlo.MCResults;
    const int others = BringRunsToForm(Adjustment.Model, ParametersOf(Job), results);
    if (others == 0) return;
    AddNote(NoteCode::NearestForm,
            PlainText(others) + " of " + PlainText(results.Columns) +
                " Monte Carlo runs ended in another form of the same transformation and were brought to the "
                "form nearest to the result");
}

std::span<const double> MonteCarloArray(int k) {
    const Matrix& results = MonteCarlo.MCResults;
    Require(k >= 1 && k <= results.Rows);
    return {results.Row(k), At(results.Columns) + 1};
}

}  // namespace corvinade::engine
