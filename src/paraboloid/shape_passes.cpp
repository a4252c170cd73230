// One pass of the fit to a shape on gathered points.
#include "paraboloid/shape_passes.h"

#include "core/job.h"
#include "core/platform.h"
#include "core/run.h"
#include "engine/adjustment.h"
#include "engine/design.h"
#include "engine/monte_carlo.h"
#include "engine/transform.h"
#include "paraboloid/shape.h"

namespace corvinade::paraboloid {

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

}  // namespace

bool ShapePasses::Begin() {
    Generation = Run.JobGeneration;
    MonteCarloStarted = MonteCarlo.Started;
    const int n = 3 * Job.Pairs();
    Fit.u = CountUnknowns(Job.ParamText);
    Fit.n = n;
    Fit.ParamText = Job.ParamText;
    Fit.P.assign(At(n) + 1, 0);
    for (int i = 1; i <= n; ++i) Fit.P[At(i)] = CoordinateInUse(At(i)) ? 1 : 0;
    return GatherForFit(Fit.P, Fit.Points);
}

bool ShapePasses::Overtaken() const {
    return Run.JobGeneration != Generation || MonteCarlo.Started != MonteCarloStarted;
}

PassEnd ShapePasses::Pass() {
    Job.RotXCopy = Job.RotX;
    Job.RotYCopy = Job.RotY;
    Job.RotZCopy = Job.RotZ;
    GatheredPoints& points = Fit.Points;
    const Vec3 c = points.StartCentre, q = points.TargetCentre;
    double distance = 0;
    for (std::size_t k = 0; k < At(points.Count); ++k) {
        YieldToEvents();
        if (Overtaken()) return PassEnd::Lost;
        Vec3 image, nearest;
        TransformPoint(points.Start[0][k] + c(1), points.Start[1][k] + c(2), points.Start[2][k] + c(3),
                       image(1), image(2), image(3));
        NearestShapePoint(image(1), image(2), image(3), Job.ParaboloidShape, nearest(1), nearest(2),
                          nearest(3), distance);
        for (int axis = 1; axis <= 3; ++axis) points.Target[At(axis - 1)][k] = nearest(axis) - q(axis);
    }
    IterateFromHere(Fit.u, Fit.n, Fit.ParamText, Fit.Q, Fit.v, Fit.P, points);
    if (Adjustment.JobChanged || Overtaken()) return PassEnd::Lost;
    double sx = 0, sy = 0, sz = 0;
    Statistics(Fit.v, Fit.P, Fit.n, s0, sx, sy, sz);
    return Adjustment.Converged && Adjustment.Finite ? PassEnd::Done : PassEnd::Failed;
}

}  // namespace corvinade::paraboloid
