// Monte Carlo.
#include "engine/monte_carlo.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "core/job.h"
#include "core/notes.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/settings.h"
#include "engine/adjustment.h"
#include "engine/equal_forms.h"
#include "engine/job_fit.h"
#include "engine/nice_rotation.h"
#include "engine/noise.h"
#include "engine/seed.h"
#include "engine/start_values.h"
#include "fit/angles.h"
#include "fit/fit.h"
#include "fit/repeated_fit.h"
#include "fit/require.h"

namespace corvinade::engine {

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

bool IsAngleOfRotation(int parameter) {
    return parameter >= kRotX && parameter <= kRotZ;
}

// The seed points as they stand with noise.
void MoveSeeds(const GatheredPoints& points, SeedPoints& seeds) {
    for (std::size_t k = 1; k <= 3; ++k) {
        if (seeds.Pair[k] == 0) continue;
        for (int axis = 1; axis <= 3; ++axis)
            seeds.Start[k](axis) =
                points.Start[At(axis - 1)][At(seeds.Pair[k] - 1)] + points.StartCentre(axis);
    }
}

// Of run i, as the job's parameters stand.
void WriteRun(int i, double sigmaXYZ) {
    Matrix& results = MonteCarlo.MCResults;
    Require(i >= 1 && i <= results.Columns);
    NiceRotSol();
    const FitModel& model = Adjustment.Model;
    for (int parameter = kTraX; parameter < kParameterEnd; ++parameter) {
        if (model.UnknownOf[At(parameter)] == 0) continue;
        const double value = ParameterValue(Job, parameter);
        results(parameter, i) = IsAngleOfRotation(parameter) ? WrapAngle(value) : value;
    }
    results(kSigmaXYZ, i) = sigmaXYZ;
}

// The fits of the runs. Most of them go without the status bar's texts, which would cost more than the
// fit does; at each step of the progress bar one goes the whole way and shows them.
struct FitsOfRuns {
    NormFit& Fit;
    StartChoice Choice;
    SeedPoints Seeds = TakeSeedPoints();
    RepeatedFit Short;
    FitRun Quiet = BeginQuietFitOfJob();
    bool ShortServes;
    bool ByShort = false;  // the last run, which has left no residuals then

    explicit FitsOfRuns(NormFit& fit) : Fit(fit), Choice(ChoiceOfRuns(fit)), Short(ModelOfRuns()) {
        SetWeights(Fit.P, Fit.Points);
        Fit.v.resize(At(Fit.n) + 1);
        ShortServes = RepeatedFitServes(Short.Model, Fit.Points);
    }

    // What the fit holds the runs hold as well.
    static StartChoice ChoiceOfRuns(const NormFit& fit) {
        StartChoice choice = fit.Choice;
        for (std::size_t k = kTraX; k < kParameterEnd; ++k) {
            if (!fit.HeldByFit[k]) continue;
            choice.Floats[k] = choice.Seeded[k] = false;
            choice.Held[k] = true;
            choice.Value[k] = (*fit.RunsBegin)[static_cast<int>(k)];
            choice.Own[k].reset();
        }
        return choice;
    }

    // The start values decide on the model, with held values that are those of each run.
    FitModel ModelOfRuns() const {
        TakeStartValues(Choice, Seeds);
        return ModelOf(Choice, ChooseMode(Fit.ParamText));
    }

    Parameters Begin() const {
        Parameters begin = StartValues(Choice, Seeds);
        if (!Fit.RunsBegin) return begin;
        const auto floats = [this](int k) { return Short.Model.UnknownOf[At(k)] != 0; };
        for (int k = kTraX; k < kParameterEnd; ++k)
            if (floats(k)) begin[k] = (*Fit.RunsBegin)[k];
        if (floats(kScaleXYZ)) begin[kScaleX] = begin[kScaleY] = begin[kScaleZ] = begin[kScaleXYZ];
        return begin;
    }

    // False when the job's points were replaced meanwhile. Adjustment.Converged tells whether it came to its
    // end.
    bool Run(bool shown) {
        ByShort = false;
        MoveSeeds(Fit.Points, Seeds);
        if (ShortServes && !shown) {
            Quiet.Now = Begin();
            const FitEnd end = FitAgain(Short, Quiet, Fit.Points);
            ByShort = end != FitEnd::Unfinished;
            if (ByShort) {
                Adjustment.Model = Short.Model;
                TakeFit(Quiet);
                return end != FitEnd::Abandoned;
            }
        }
        PutParameters(Begin(), Job);
        IterateFromHere(Short.Model, Fit.Q, Fit.v, Fit.P, Fit.Points);
        return !Adjustment.JobChanged;
    }

    void Write(int i) const {
        if (ByShort) {
            WriteRun(i, SigmaXYZOf(Short, Fit.Points));
        } else {
            MonteCarloWriteiResults(i, Fit.v, Fit.P);
        }
        for (int k = kTraX; k < kParameterEnd; ++k)
            if (Fit.HeldByFit[At(k)]) MonteCarlo.MCResults(k, i) = ParameterValue(Job, k);
    }
};

// Puts everything back, whatever ends the runs.
struct Finaliser {
    GatheredPoints& Points;
    ~Finaliser() { MonteCarloFinalisieren(Points); }
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

void MCS_verrauschen(GatheredPoints& points) {
    Require(UpperBound(MonteCarlo.MCSaveX) == points.Count);
    constexpr int kAtOnce = 64;  // points
    std::array<double, std::size_t{3} * kAtOnce> noise;
    const Vec3 c = points.StartCentre;
    for (int first = 0; first < points.Count; first += kAtOnce) {
        const int count = std::min(kAtOnce, points.Count - first);
        FillWithNoise({noise.data(), At(3 * count)});
        for (int k = 0; k < count; ++k) {
            const double* const n = &noise[At(3 * k)];
            const std::size_t i = At(first + k);
            points.Start[0][i] = (MonteCarlo.MCSaveX[i + 1] + n[0] * Settings.SigmaX) - c(1);
            points.Start[1][i] = (MonteCarlo.MCSaveY[i + 1] + n[1] * Settings.SigmaY) - c(2);
            points.Start[2][i] = (MonteCarlo.MCSaveZ[i + 1] + n[2] * Settings.SigmaZ) - c(3);
        }
    }
}

void MonteCarloWriteiResults(int i, const Column& v, const Column& P) {
    double s0 = 0, sx = 0, sy = 0, sz = 0;
    Statistics(v, P, UpperBound(v), s0, sx, sy, sz);
    WriteRun(i, std::sqrt(sx * sx + sy * sy + sz * sz));
}

void MonteCarloFinalisieren(GatheredPoints& points) {
    MonteCarlo.Shown.reset();
    // Runs that were overtaken by others find the points of those, and their own ones are done with.
    if (UpperBound(MonteCarlo.MCSaveX) != points.Count) return;
    for (int i = 0; i < points.Count; ++i) {
        points.Start[0][At(i)] = MonteCarlo.MCSaveX[At(i) + 1] - points.StartCentre(1);
        points.Start[1][At(i)] = MonteCarlo.MCSaveY[At(i) + 1] - points.StartCentre(2);
        points.Start[2][At(i)] = MonteCarlo.MCSaveZ[At(i) + 1] - points.StartCentre(3);
    }
}

bool RunMonteCarlo(NormFit& fit) {
    // Asked again, since a message box of this calculation may have let the settings change.
    if (!MonteCarloCanBeHeld()) return false;
    const std::uint64_t generation = Run.JobGeneration;
    MonteCarloInitialisieren();
    const Finaliser finaliser{fit.Points};
    const std::uint64_t started = MonteCarlo.Started;
    const auto overtaken = [=] { return Run.JobGeneration != generation || MonteCarlo.Started != started; };
    FitsOfRuns fits(fit);
    const int runs = MonteCarlo.MCResults.Columns;
    bool complete = true;
    for (int i = 1; i <= runs && complete; ++i) {
        const bool shown = ShowRunOfMonteCarlo(i, runs);
        YieldToEvents();
        if (overtaken()) return false;
        MCS_verrauschen(fit.Points);
        if (!fits.Run(shown) || overtaken()) return false;
        complete = Adjustment.Converged && !IsTrue(Run.StopRequested);
        if (complete) fits.Write(i);
    }
    Run.StopRequested = kFalse;
    MonteCarlo.MonteCarloDone = ToFlag(complete);
    return true;
}

void BringRunsToFormOfResult() {
    if (!IsTrue(MonteCarlo.MonteCarloDone)) return;
    const FitModel& model = Adjustment.Model;
    const Parameters reference = ParametersOf(Job);
    const std::vector<EqualForm> forms = EqualForms(model, reference);
    Matrix& results = MonteCarlo.MCResults;
    int others = 0;
    for (int i = 1; i <= results.Columns; ++i) {
        Parameters values = reference;
        for (int k = kRotX; k <= kAngleZtoXY; ++k)
            if (model.UnknownOf[At(k)] != 0) values[k] = results(k, i);
        if (TakeNearestForm(model, forms, reference, values)) ++others;
        for (int k = kRotX; k <= kAngleZtoXY; ++k)
            if (model.UnknownOf[At(k)] != 0) results(k, i) = values[k];
    }
    if (others == 0) return;
    AddNote(NoteCode::NearestForm,
            PlainText(others) + " of " + PlainText(results.Columns) +
                " Monte Carlo runs ended in another form of the same transformation and were brought to the "
                "form nearest to the result");
}

double MeanOfArray(std::span<const double> a) {
    double sum = 0;
    for (const double value : a.subspan(1)) sum += value;
    return sum / static_cast<double>(a.size() - 1);
}

double SigmaOfArray(std::span<const double> a) {
    const double mean = MeanOfArray(a);
    double sum = 0;
    for (const double value : a.subspan(1)) sum += (value - mean) * (value - mean);
    return std::sqrt(sum / (static_cast<double>(a.size() - 1) - 1));
}

std::span<const double> MonteCarloArray(int k) {
    const Matrix& results = MonteCarlo.MCResults;
    Require(k >= 1 && k <= results.Rows);
    return {results.Row(k), At(results.Columns) + 1};
}

}  // namespace corvinade::engine
