// Places to look for an exact norm's optimum from.
#include "engine/exact_starts.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

#include "core/job.h"
#include "engine/best_transformation.h"
#include "engine/chain_search.h"

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

bool Floats(const FitModel& model, int parameter) {
    return model.UnknownOf[At(parameter)] != 0;
}

bool MovesFreely(const FitModel& model) {
    for (int k = kTraX; k <= kRotZ; ++k)
        if (!Floats(model, k)) return false;
    return true;
}

// Into the parameters that float; held ones stay.
void TakeParameters(const FitModel& model, const GatheredPoints& points, const CentredTransformation& found,
                    PlainModel plain) {
    constexpr double kSomeLean = 1e-3;  // rad; of none the azimuth would mean nothing
    const ChainValues values = ValuesOf(found.M, plain);
    for (int k = kTraX; k <= kAngleZtoXY; ++k) {
        if (!Floats(model, k)) continue;
        double value = values.Value[At(k)];
        if (k == kAngleZtoXY) value = kSomeLean;
        if (k <= kTraZ) {
            const int axis = k - kTraX + 1;
            value = found.Shift(axis) + points.TargetCentre(axis);
            for (int j = 1; j <= 3; ++j) value -= found.M(axis, j) * points.StartCentre(j);
        }
        ParameterValue(Job, k) = value;
        if (k == kScaleXYZ) Job.ScaleX = Job.ScaleY = Job.ScaleZ = value;
    }
}

// The proper solution of the points in use by these weights. False where there is none.
bool TakeSolution(const FitModel& model, GatheredPoints& points, const Column& P) {
    const bool scale = Floats(model, kScaleXYZ) || Floats(model, kScaleX) || Floats(model, kScaleY) ||
                       Floats(model, kScaleZ);
    const PlainModel plain = scale ? PlainModel::Similarity : PlainModel::Rigid;
    SetWeights(P, points);
    PointMoments moments;
    SumMoments(points, Linearise(model, points), moments);
    const BestTransformations best = BestOfModel(moments, plain);
    if (!best.Proper) return false;
    TakeParameters(model, points, *best.Proper, plain);
    return true;
}

}  // namespace

std::vector<ParameterArray> StartsByPoints(const NormFit& fit, ExactPlace& place,
                                           double (*objective)(const LinearRows&), int most) {
    constexpr int kTriples = 120;
    const FitModel& model = place.Model;
    std::vector<ParameterArray> starts;
    const ParameterArray before = JobParameters();
    std::vector<int> whole;  // points whose three coordinates are in use
    Column all(At(fit.n) + 1);
    for (int i = 1; i <= fit.n; ++i) all[At(i)] = fit.P[At(i)] != 0 ? 1 : 0;
    for (int k = 0; k < fit.n / 3; ++k)
        if (all[At(3 * k + 1)] * all[At(3 * k + 2)] * all[At(3 * k + 3)] != 0) whole.push_back(k);
    if (most < 1 || !MovesFreely(model) || whole.size() < 3) return starts;
    GatheredPoints points = fit.Points;
    if (TakeSolution(model, points, all)) starts.push_back(JobParameters());
    std::uint64_t seed = 1;
    const auto any = [&] {
        seed = seed * 6364136223846793005ULL + 1442695040888963407ULL;
        return whole[(seed >> 33U) % whole.size()];
    };
    std::vector<std::pair<double, ParameterArray>> tried;
    for (int trial = 0; trial < kTriples; ++trial) {
        const int a = any(), b = any(), c = any();
        if (a == b || b == c || a == c) continue;
        Column P(all.size());
        for (const int k : {a, b, c}) P[At(3 * k + 1)] = P[At(3 * k + 2)] = P[At(3 * k + 3)] = 1;
        SetJobParameters(before);
        if (!TakeSolution(model, points, P)) continue;
        place.Linearise();
        tried.emplace_back(objective(place.Rows), JobParameters());
    }
    std::stable_sort(tried.begin(), tried.end(),
                     [](const auto& one, const auto& other) { return one.first < other.first; });
    for (std::size_t i = 0; i < tried.size() && static_cast<int>(starts.size()) < most; ++i)
        if (i == 0 || tried[i].first != tried[i - 1].first) starts.push_back(tried[i].second);
    SetJobParameters(before);
    return starts;
}
