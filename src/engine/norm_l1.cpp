// The least sum of absolute residuals by reweighting.
#include <cmath>

#include "core/controller.h"
#include "core/job.h"
#include "core/numbers.h"
#include "core/run.h"
#include "core/units.h"
#include "engine/adjustment.h"
#include "engine/design.h"
#include "engine/norms.h"
#include "fit/moments.h"
#include "fit/normal_equations.h"

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

// Each round lowers the sum, except for what rounding adds to it. So many rounds without a new lowest
// sum mean that rounding is larger than the tolerance.
constexpr int kMostIdleRounds = 100;

// New weights from the residuals of every row in use; returns the sum of absolute residuals. Rows out of
// use stay so for good.
double Reweight(const Column& v, int n, Column& P) {
    double d = 0;
    for (int i = 1; i <= n; ++i) {
        if (P[At(i)] == 0) continue;
        P[At(i)] = ResidualWeight(v[At(i)]);
        d += std::fabs(v[At(i)]);
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

// The loop's fits and the reweighting behind each. As long as the points' moments serve, a round is one
// pass over the points: it takes the residuals of the last fit, their sum, and the sums of the next fit
// with the weights that the residuals make. These sums are taken where the last fit has ended, so that
// even the heaviest rows say little that is still to be told, and drown nothing of the others.
struct L1Rounds {
    NormFit& Fit;
    FitOnMoments Last;
    bool ByMoments = false;

    // False when the job's points were replaced meanwhile.
    bool Next() {
        if (ByMoments) {
            TakeBeginOfFit(Fit);
            IterateFromHere(Fit.u, Fit.n, Fit.ParamText, Fit.Q, Fit.Points, Last);
            if (Adjustment.JobChanged) return false;
            if (!Last.ByMoments || !Adjustment.Converged) LeaveMoments();
            return true;
        }
        Norm.Iterations <= 1 ? FirstFitOfLoop(Fit) : FitFromStart(Fit);
        if (Adjustment.JobChanged) return false;
        ByMoments =
            Norm.Iterations == 1 && Adjustment.Converged && MomentsServe(Adjustment.Model, Fit.Points);
        return true;
    }

    // The sum of absolute residuals of the last fit.
    double Reweigh() {
        if (ByMoments) {
            const bool tool = Adjustment.Model.Mode == FitMode::Tool;
            SumMoments(Fit.Points, Linearise(Adjustment.Model, Fit.Points),
                       {.Tool = tool, .Reweighted = true}, Last.Moments);
            return Last.Moments.AbsoluteSum;
        }
        return Adjustment.Model.Mode == FitMode::Distance ? ReweightDistances(Fit.v, Fit.n, Fit.P)
                                                          : Reweight(Fit.v, Fit.n, Fit.P);
    }

    void End() {
        if (!ByMoments) return;
        if (Norm.Iterations > 1) LeaveMoments();
        Reweight(Fit.v, Fit.n, Fit.P);
    }

    // The last fit's residuals come from the points. The weights have stayed 0 and 1 up to here.
    void LeaveMoments() {
        ByMoments = false;
        Residuals(Fit.Points, Adjustment.Model, Last.At, Last.Centred, Fit.v);
    }
};

}  // namespace

bool FitL1(NormFit& fit) {
    Norm.NormTolerance = 1e-3;
    L1Rounds rounds{.Fit = fit};
    double d = 1e12, lowest = d;
    int idle = 0;
    bool goOn = true;
    while (goOn) {
        const double dPrev = d;
        ++Norm.Iterations;
        if (!rounds.Next()) return false;
        d = rounds.Reweigh();
        const double change = std::fabs(d - dPrev);
        SetStatus(7, "d[v]: " + PlainText(change * Units.LengthFactor));
        SetStatus(6, "L1 Iterationen: " + std::to_string(Norm.Iterations));
        idle = d < lowest ? 0 : idle + 1;
        lowest = std::fmin(lowest, d);
        CountUnsettledFit();
        const bool mayGoOn = !IsTrue(Run.StopRequested) && Adjustment.Finite;
        const bool still = mayGoOn && change < Norm.NormTolerance;
        Norm.Converged = still && Adjustment.Converged;
        goOn = mayGoOn && !still && idle < kMostIdleRounds && Norm.Iterations < kMostNormRounds;
    }
    rounds.End();
    return true;
}
