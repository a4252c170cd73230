// The passes of a fit to a shape.
#include "fit/shape_run.h"

#include <algorithm>
#include <cmath>

#include "fit/shape.h"
#include "fit/statistics.h"
#include "fit/trend.h"

namespace corvinade::fit {

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

// False when what the fit works on has been replaced.
bool Project(ShapeRun& run) {
    GatheredPoints& points = run.Points;
    const Vec3 c = points.StartCentre, q = points.TargetCentre;
    double distance = 0;
    BuildChain(ChainSourceOf(run.Now), run.Chain);
    for (std::size_t k = 0; k < At(points.Count); ++k) {
        if (run.Lost(k == 0)) return false;
        const Vec3 image =
            ImageOf(run, {points.Start[0][k] + c(1), points.Start[1][k] + c(2), points.Start[2][k] + c(3)});
        Vec3 nearest;
        NearestShapePoint(image(1), image(2), image(3), run.Shape, nearest(1), nearest(2), nearest(3),
                          distance);
        for (int axis = 1; axis <= 3; ++axis) points.Target[At(axis - 1)][k] = nearest(axis) - q(axis);
    }
    return true;
}

}  // namespace

Vec3 ImageOf(ShapeRun& run, const Vec3& p) {
    BuildChain(ChainSourceOf(run.Now), run.Chain);
    const Mat3& M = run.Chain.Product;
    const Vec3 turned(M(1, 1) * p(1) + M(1, 2) * p(2) + M(1, 3) * p(3),
                      M(2, 1) * p(1) + M(2, 2) * p(2) + M(2, 3) * p(3),
                      M(3, 1) * p(1) + M(3, 2) * p(2) + M(3, 3) * p(3));
    return {run.Now[kTraX] + turned(1), run.Now[kTraY] + turned(2), run.Now[kTraZ] + turned(3)};
}

PassEnd Pass(ShapeRun& run) {
    if (!Project(run)) return PassEnd::Lost;
    FitRun fit;
    fit.Limits = run.Limits;
    if (run.Listener.BeginFit) fit = run.Listener.BeginFit(run.Now);
    fit.Now = run.Now;
    fit.Chain = run.Chain;
    Iterate(fit, run.Model, run.Points, run.P, run.Result);
    const bool ours = !run.Listener.Fitted || run.Listener.Fitted(fit);
    if (!ours || fit.State.Abandoned) return PassEnd::Lost;
    run.Now = fit.Now;
    run.Chain = fit.Chain;
    double sx = 0, sy = 0, sz = 0;
    Statistics(run.Result.v, run.P, 3 * run.Points.Count, run.s0, sx, sy, sz);
    return fit.State.Converged && fit.State.Finite ? PassEnd::Done : PassEnd::Failed;
}

void BeginLoop(ShapeLoop& loop) {
    loop.PreviousS0 = 100;
    loop.LeastS0 = std::numeric_limits<double>::infinity();
    for (ParameterTrend& trend : loop.Trends) {
        trend.History.assign(6, 0);
        trend.Boost = 0;
    }
}

void KeepBest(ShapeLoop& loop, double s0, const Parameters& now) {
    if (!(s0 < loop.LeastS0)) return;
    loop.LeastS0 = s0;
    loop.Best = now;
}

void Accelerate(ShapeLoop& loop, const std::array<bool, kParameterEnd>& floats, double s0, Parameters& now) {
    const bool smaller = s0 < loop.PreviousS0;
    loop.PreviousS0 = s0;
    for (ParameterTrend& trend : loop.Trends) {
        if (!smaller) {
            trend.Boost = 0;
            continue;
        }
        if (!floats[At(trend.Parameter)]) continue;
        double& value = now[trend.Parameter];
        Column& history = trend.History;
        history.erase(history.begin());
        history.push_back(value);
        constexpr double kTwice = 200;  // percent
        bool steady = false;
        ArrayTrend(history, kTwice, steady);
        if (!steady) continue;
        const double boost = trend.Boost;
        value += boost * boost * boost * boost * (value - history[4]);
        ++trend.Boost;
    }
}

bool AtRest(double s0Before, double s0, double tolerance) {
    return !(std::fabs(s0Before - s0) > tolerance);
}

bool IsThrownOff(const ShapeLoop& loop, double s0) {
    constexpr double kFar = 1.5;  // of the least s0
    return std::isfinite(loop.LeastS0) && !(s0 <= kFar * loop.LeastS0);
}

}  // namespace corvinade::fit
