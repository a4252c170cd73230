// Monte Carlo.
#include "fit/monte_carlo.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "fit/angles.h"
#include "fit/equal_forms.h"
#include "fit/nice_rotation.h"
#include "fit/norms.h"
#include "fit/repeated_fit.h"
#include "fit/require.h"
#include "fit/statistics.h"

namespace corvinade::fit {

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

bool IsAngleOfRotation(int parameter) {
    return parameter >= kRotX && parameter <= kRotZ;
}

CleanPoints CleanOf(const MonteCarloRun& run) {
    return {run.Clean[0], run.Clean[1], run.Clean[2]};
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

// The fits of the runs. Most of them go without telling their steps, which would cost more than the fit does;
// those that the listener wants so go the whole way.
class FitsOfRuns {
public:
    FitsOfRuns(MonteCarloRun& run, const MonteCarloListener& listener)
        : run_(run), listener_(listener), seeds_(run.Seeds), short_(run.Model) {
        SetWeights(run_.P, run_.Points);
        run_.Result.v.resize(3 * At(run_.Points.Count) + 1);
        shortServes_ = RepeatedFitServes(run_.Model, run_.Points);
    }

    // False when what the runs work on has been replaced.
    bool Fit(bool whole) {
        MoveSeeds(run_.Points, seeds_);
        FitFrom(run_.Begin, whole);
        if (!Converged() && run_.Again && !last_->State.Abandoned && !run_.Quiet.Stops()) {
            FitFrom(run_.Again, whole);
            if (Converged()) ++run_.BeganAgain;
        }
        const bool goesOn = !listener_.Fitted || listener_.Fitted(*last_, last_ == &whole_);
        return goesOn && !last_->State.Abandoned;
    }

    bool Converged() const { return last_->State.Converged; }

    // The last fit counts.
    void Tell(int i) {
        if (!listener_.Counts) return;
        Parameters now = last_->Now;
        const std::optional<Vec3> nicer = TakeNicerRotation(now);
        ResultOfRun(run_.Model, run_.Held, now, sigma_, values_);
        listener_.Counts(i, values_, nicer);
    }

private:
    // From the start values, with what floats at those of `from` where there are any.
    void FitFrom(const std::optional<Parameters>& from, bool whole) {
        const Parameters begin = Begin(from);
        last_ = &run_.Quiet;
        if (shortServes_ && !whole) {
            run_.Quiet.Now = begin;
            const FitEnd end = FitAgain(short_, run_.Quiet, run_.Points);
            sigma_ = end == FitEnd::Converged ? SigmaXYZOf(short_, run_.Points) : 0;
            if (end != FitEnd::Unfinished) return;
        }
        Require(listener_.BeginWhole != nullptr);
        last_ = &whole_;
        whole_ = listener_.BeginWhole(begin);
        whole_.Now = begin;
        Iterate(whole_, run_.Model, run_.Points, run_.P, run_.Result);
        if (!whole_.State.Abandoned) sigma_ = SigmaXYZOf(run_.Result.v, run_.P);
    }

    Parameters Begin(const std::optional<Parameters>& from) const {
        Parameters begin = StartValues(run_.Choice, seeds_);
        if (!from) return begin;
        const auto floats = [this](int k) { return run_.Model.UnknownOf[At(k)] != 0; };
        for (int k = kTraX; k < kParameterEnd; ++k)
            if (floats(k)) begin[k] = (*from)[k];
        if (floats(kScaleXYZ)) begin[kScaleX] = begin[kScaleY] = begin[kScaleZ] = begin[kScaleXYZ];
        return begin;
    }

    MonteCarloRun& run_;
    const MonteCarloListener& listener_;
    SeedPoints seeds_;
    RepeatedFit short_;
    bool shortServes_ = false;
    FitRun whole_;
    const FitRun* last_ = nullptr;  // the fit of the run, the short or the whole one
    Column values_;
    double sigma_ = 0;
};

MonteCarloEnd AllRuns(MonteCarloRun& run, NoiseRecord& noise, const MonteCarloListener& listener) {
    FitsOfRuns fits(run, listener);
    for (int i = 1; i <= run.Runs; ++i) {
        const bool whole = listener.Begins && listener.Begins(i);
        if (listener.GoesOn && !listener.GoesOn()) return MonteCarloEnd::Abandoned;
        AddNoise(CleanOf(run), run.Sigma, noise, run.Points);
        if (!fits.Fit(whole)) return MonteCarloEnd::Abandoned;
        if (!fits.Converged() || run.Quiet.Stops()) return MonteCarloEnd::Ended;
        run.Done = i;
        fits.Tell(i);
    }
    return MonteCarloEnd::Complete;
}

void TakeRuns(const MonteCarloProblem& problem, const NormRun& fit, MonteCarloRun& run) {
    run.Choice = ChoiceOfRuns(fit.Choice, fit.HeldByFit, fit.RunsBegin);
    run.Model = ModelOf(run.Choice, problem.Fit.Mode);
    run.Seeds = fit.Seeds;
    run.Begin = fit.RunsBegin;
    run.Again = fit.RunsAgain;
    run.Held = fit.HeldByFit;
    for (std::size_t axis = 0; axis < 3; ++axis)
        run.Clean[axis].assign(problem.Fit.Pairs.Start[axis].begin(), problem.Fit.Pairs.Start[axis].end());
    run.Sigma = problem.Sigma;
    run.Runs = problem.Runs;
    run.Points = fit.Points;
    run.P = fit.InUse;
    run.Quiet.Limits = fit.Run.Limits;
    run.Quiet.Listener = fit.Run.Listener;
}

}  // namespace

void AddNoise(const CleanPoints& clean, const Vec3& sigma, NoiseRecord& noise, GatheredPoints& points) {
    for (const std::span<const double>& column : clean) Require(column.size() == At(points.Count));
    constexpr int kAtOnce = 64;  // points
    std::array<double, std::size_t{3} * kAtOnce> numbers;
    const Vec3 c = points.StartCentre, by = sigma;
    for (int first = 0; first < points.Count; first += kAtOnce) {
        const int count = std::min(kAtOnce, points.Count - first);
        FillWithNoise(noise, {numbers.data(), At(3 * count)});
        for (int k = 0; k < count; ++k) {
            const double* const n = &numbers[At(3 * k)];
            const std::size_t i = At(first + k);
            points.Start[0][i] = (clean[0][i] + n[0] * by(1)) - c(1);
            points.Start[1][i] = (clean[1][i] + n[1] * by(2)) - c(2);
            points.Start[2][i] = (clean[2][i] + n[2] * by(3)) - c(3);
        }
    }
}

void TakeNoiseOff(const CleanPoints& clean, GatheredPoints& points) {
    for (int axis = 1; axis <= 3; ++axis) {
        const std::span<const double>& column = clean[At(axis - 1)];
        Require(column.size() == At(points.Count));
        for (std::size_t i = 0; i < column.size(); ++i)
            points.Start[At(axis - 1)][i] = column[i] - points.StartCentre(axis);
    }
}

StartChoice ChoiceOfRuns(StartChoice choice, const std::array<bool, kParameterEnd>& held,
                         const std::optional<Parameters>& begin) {
    for (std::size_t k = kTraX; k < kParameterEnd; ++k) {
        if (!held[k]) continue;
        Require(begin.has_value());
        choice.Floats[k] = choice.Seeded[k] = false;
        choice.Held[k] = true;
        choice.Value[k] = (*begin)[static_cast<int>(k)];
        choice.Own[k].reset();
    }
    return choice;
}

std::optional<Vec3> TakeNicerRotation(Parameters& values) {
    const std::optional<Vec3> angles = NicerRotation({values[kRotX], values[kRotY], values[kRotZ]});
    if (angles)
        for (int axis = 1; axis <= 3; ++axis) values[kRotX + axis - 1] = (*angles)(axis);
    return angles;
}

void ResultOfRun(const FitModel& model, const std::array<bool, kParameterEnd>& held, const Parameters& values,
                 double sigmaXYZ, Column& result) {
    result.assign(At(kMonteCarloArrays) + 1, 0);
    for (int k = kTraX; k < kParameterEnd; ++k) {
        if (model.UnknownOf[At(k)] != 0)
            result[At(k)] = IsAngleOfRotation(k) ? WrapAngle(values[k]) : values[k];
        if (held[At(k)]) result[At(k)] = values[k];
    }
    result[kSigmaXYZ] = sigmaXYZ;
}

double SigmaXYZOf(const Column& v, const Column& P) {
    double s0 = 0, sx = 0, sy = 0, sz = 0;
    Statistics(v, P, UpperBound(v), s0, sx, sy, sz);
    return std::sqrt(sx * sx + sy * sy + sz * sz);
}

MonteCarloEnd RunMonteCarlo(MonteCarloRun& run, NoiseRecord& noise, const MonteCarloListener& listener) {
    const MonteCarloEnd end = AllRuns(run, noise, listener);
    TakeNoiseOff(CleanOf(run), run.Points);
    return end;
}

int BringRunsToForm(const FitModel& model, const Parameters& result, Matrix& results) {
    const std::vector<EqualForm> forms = EqualForms(model, result);
    int others = 0;
    for (int i = 1; i <= results.Columns; ++i) {
        Parameters values = result;
        for (int k = kRotX; k <= kAngleZtoXY; ++k)
            if (model.UnknownOf[At(k)] != 0) values[k] = results(k, i);
        if (TakeNearestForm(model, forms, result, values)) ++others;
        for (int k = kRotX; k <= kAngleZtoXY; ++k)
            if (model.UnknownOf[At(k)] != 0) results(k, i) = values[k];
    }
    return others;
}

MonteCarloResult FitWithRuns(const MonteCarloProblem& problem, const FitListener& listener) {
    Require(problem.Runs >= 2 && problem.Fit.Norm == FitNorm::LeastSquares);
    MonteCarloResult result;
    MonteCarloRun run;
    {
        NormRun fit = BeginFit(problem.Fit, listener);
        result.End = SeekBeginOfRuns(fit) ? MonteCarloEnd::Complete : MonteCarloEnd::Abandoned;
        TakeRuns(problem, fit, run);
    }
    result.Results = Matrix(kMonteCarloArrays, problem.Runs);
    NoiseRecord noise;
    SeedNoise(noise, problem.Seed);
    const MonteCarloListener runs = {.BeginWhole = [&](const Parameters&) { return run.Quiet; },
                                     .Counts =
                                         [&result](int i, const Column& values, const std::optional<Vec3>&) {
                                             for (int k = 1; k <= kMonteCarloArrays; ++k)
                                                 result.Results(k, i) = values[At(k)];
                                         }};
    if (result.End == MonteCarloEnd::Complete) result.End = RunMonteCarlo(run, noise, runs);
    result.BeganAgain = run.BeganAgain;
    if (result.End == MonteCarloEnd::Abandoned) return result;
    result.Fit = Fit(problem.Fit, listener);
    if (result.End == MonteCarloEnd::Complete)
        result.OtherForms = BringRunsToForm(result.Fit.Model, result.Fit.Values, result.Results);
    return result;
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

}  // namespace corvinade::fit
