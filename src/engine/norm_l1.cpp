// The least sum of absolute residuals by reweighting.
#include <cmath>

#include "core/controller.h"
#include "core/job.h"
#include "core/numbers.h"
#include "core/run.h"
#include "core/units.h"
#include "engine/adjustment.h"
#include "engine/norms.h"

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

// Keeps a residual of 0 from an infinite weight.
constexpr double kLeastResidual = 1e-12;

// Each round lowers the sum, except for what rounding adds to it. So many rounds without a new lowest
// sum mean that rounding is larger than the tolerance.
constexpr int kMostIdleRounds = 100;

// New weights from the residuals of every row in use; returns the sum of absolute residuals. Rows out of
// use stay so for good.
double Reweight(const Column& v, int n, Column& P) {
    double d = 0;
    for (int i = 1; i <= n; ++i) {
        if (P[At(i)] == 0) continue;
        const double residual = std::fabs(v[At(i)]);
        P[At(i)] = 1 / (kLeastResidual + residual);
        d += residual;
    }
    return d;
}

// The distance model has one residual a point, which its three rows share.
double ReweightDistances(const Column& v, int n, Column& P) {
    double d = 0;
    for (int i = 1; i <= n; ++i) {
        if (P[At(i)] == 0) continue;
        const int j = (i - 1) / 3 + 1;
        P[At(i)] = 1 / std::fabs(kLeastResidual + v[At(j)]);
        d += std::fabs(v[At(i)]);
    }
    return d / 3;
}

}  // namespace

bool FitL1(NormFit& fit) {
    Norm.NormTolerance = 1e-3;
    double d = 1e12, lowest = d;
    int idle = 0;
    for (;;) {
        const double dPrev = d;
        ++Norm.Iterations;
        BestFitIteration(fit.u, fit.n, fit.ParamText, fit.Q, fit.v, fit.P, fit.Points);
        if (Adjustment.JobChanged) return false;
        const bool distances = Adjustment.Model.Mode == FitMode::Distance;
        d = distances ? ReweightDistances(fit.v, fit.n, fit.P) : Reweight(fit.v, fit.n, fit.P);
        const double change = std::fabs(d - dPrev);
        SetStatus(7, "d[v]: " + PlainText(change * Units.LengthFactor));
        SetStatus(6, "L1 Iterationen: " + std::to_string(Norm.Iterations));
        if (IsTrue(Run.StopRequested) || !Adjustment.Converged) return true;
        if (change < Norm.NormTolerance) {
            Norm.Converged = true;
            return true;
        }
        idle = d < lowest ? 0 : idle + 1;
        lowest = std::fmin(lowest, d);
        if (idle == kMostIdleRounds || Norm.Iterations == kMostNormRounds) return true;
    }
}
