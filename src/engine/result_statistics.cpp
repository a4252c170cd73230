// How far the job's result can be trusted.
#include "engine/result_statistics.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <span>

#include "core/job.h"
#include "core/parameter_names.h"
#include "core/text.h"
#include "engine/adjustment.h"
#include "engine/calculation.h"
#include "engine/design.h"
#include "engine/gathered_points.h"
#include "engine/monte_carlo.h"
#include "engine/norm_table.h"
#include "engine/norms.h"
#include "engine/result_notes.h"
#include "engine/selection.h"

namespace corvinade::engine {

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

// One for all pairs, where they are the same.
std::span<const double> OfPairs(const std::vector<double>& points) {
    const std::span<const double> pairs(points.data(), std::min(points.size(), At(Job.Pairs())));
    const bool same = std::adjacent_find(pairs.begin(), pairs.end(), std::not_equal_to<>()) == pairs.end();
    return same && !pairs.empty() ? pairs.first(1) : pairs;
}

}  // namespace

JobSigmas::JobSigmas(const MeasurementSigmas& sigmas)
    : sigmas_(sigmas),
      start_(sigmas.Start.value_or(SideAccuracy{})),
      target_(sigmas.Target.value_or(SideAccuracy{})) {}

PairSigmas JobSigmas::View() const {
    PairSigmas view;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        view.Start.Of[axis] = {&start_[axis], 1};
        view.Target.Of[axis] = {&target_[axis], 1};
        if (sigmas_.StartOfEach != nullptr) view.Start.Of[axis] = OfPairs(sigmas_.StartOfEach->Of[axis]);
        if (sigmas_.TargetOfEach != nullptr) view.Target.Of[axis] = OfPairs(sigmas_.TargetOfEach->Of[axis]);
    }
    return view;
}

std::string WhyNotWithSigmas() {
    const MeasurementSigmas sigmas = SigmasOf(Job);
    if (!sigmas.Any()) return "";
    for (const SharedAccuracies& side : {sigmas.StartOfEach, sigmas.TargetOfEach})
        if (side != nullptr && side->Count() < At(Job.Pairs()))
            return "The job has standard deviations of " + std::to_string(side->Count()) + " points, but " +
                   std::to_string(Job.Pairs()) + " pairs. Please import the points again.";
    const char* other = nullptr;
    if (!IsLeastSquares(NormOfJob()) && Norm.RunOn) {
        other = "the way on to the true optimum of L1 and L-infinity";
    } else if (IsTrue(Job.IsParaboloid)) {
        other = "a shape";
    } else if (ChooseMode(Job.ParamText) != FitMode::Coincide) {
        other = "the distance R_Dist and the tool vector";
    } else if (MonteCarloIsInTheFit()) {
        other = "the runs of Monte Carlo, which are plain fits";
    }
    if (other == nullptr) return "";
    return std::string(
               "The job has standard deviations of its points, which fits of points that are to coincide "
               "take as weights. They do not go with ") +
           other + ".";
}

std::string PairHasNoWeight(int pair) {
    return "The standard deviations give point \"" + Printable(Job.Start.Name[At(pair)]) +
           "\" no weight: each of its coordinates in use needs one above 0 on one side at least, and those of "
           "the start alone have to be above 0 along all axes. Please give larger ones, or take the coordinate "
           "out.";
}

std::optional<AdjustmentStatistics> StatisticsOfResult(const TestLevels& levels) {
    if (!CalculationIsOfThisJob() || Calculation.Refused || !Calculation.Converged || !Calculation.Finite)
        return std::nullopt;
    if (IsTrue(Job.IsParaboloid) || !IsLeastSquares(NormOfJob()) ||
        Adjustment.Model.Mode != FitMode::Coincide)
        return std::nullopt;
    const Column inUse = WeightsFromUseFlags(3 * Job.Pairs());
    GatheredPoints points;
    GatherPoints(inUse, false, points);
    SetWeights(inUse, points);
    const JobSigmas sigmas(SigmasOf(Job));
    const PairSigmas view = sigmas.View();
    AdjustmentStatistics statistics = StatisticsOf({.Points = points,
                                                    .Model = Adjustment.Model,
                                                    .Result = ParametersOf(Job),
                                                    .InUse = inUse,
                                                    .Residuals = Calculation.v,
                                                    .Sigmas = sigmas.Any() ? &view : nullptr,
                                                    .Levels = levels});
    for (int k = kTraX; k < kParameterEnd; ++k) {
        if (Adjustment.Model.UnknownOf[At(k)] == 0 || !IsWithoutSigma(k)) continue;
        statistics.Undetermined[At(k)] = statistics.Singular = true;
    }
    return statistics;
}

std::string NoteOfStatistics(const AdjustmentStatistics& s) {
    if (s.Singular) {
        const std::string names = NamesOf(s.Undetermined);
        return names.empty() ? "the coordinates in use do not tell the parameters apart"
                             : "the coordinates in use do not tell these parameters apart: " + names;
    }
    if (s.Redundancy == 0)
        return s.APriori ? "the redundancy is 0: there is nothing to test the standard deviations by"
                         : "the redundancy is 0: nothing tells how accurate the coordinates are";
    if (s.OfRounding) return "the residuals are no more than rounding, which no test can be made of";
    if (s.Redundancy == 1 && !s.APriori)
        return "the redundancy is 1: a single residual cannot be tested by itself";
    return "";
}

Coordinate WorstOutlier(const AdjustmentStatistics& s) {
    constexpr int kLeastRedundancy = 3;
    Coordinate worst;
    if (s.Singular || s.Redundancy - 1 < kLeastRedundancy) return worst;
    double largest = s.CriticalValue;
    for (int pair = 1; pair <= Job.Pairs(); ++pair)
        for (int axis = 1; axis <= 3; ++axis) {
            if (!Used(pair, axis)) continue;
            const double size = std::fabs(s.Standardized[At(3 * (pair - 1) + axis)]);
            if (!(size > largest)) continue;
            largest = size;
            worst = {pair, axis};
        }
    return worst;
}

std::string VerdictOf(const AdjustmentStatistics& s, int pair, int axis) {
    const std::size_t index = At(3 * (pair - 1) + axis);
    const bool used = Used(pair, axis);
    if (s.IsOutlier(index, used)) return used ? "outlier" : "would not fit";
    if (!used) return "out of use";
    return std::isfinite(s.Standardized[index]) ? "ok" : "no control";
}

}  // namespace corvinade::engine
