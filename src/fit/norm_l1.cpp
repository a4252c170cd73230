// The least sum of absolute residuals by reweighting.
#include <cmath>

#include "fit/moments.h"
#include "fit/normal_equations.h"
#include "fit/norms.h"

namespace corvinade::fit {

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
    NormRun& Fit;
    FitOnMoments Last;
    bool ByMoments = false;

    // False when the job's points were replaced meanwhile.
    bool Next() {
        if (ByMoments) {
            TakeBeginOfFit(Fit);
            Iterate(Fit.Run, Fit.Model, Fit.Points, Last, Fit.Result.Q);
            if (Fit.Abandoned()) return false;
            if (!Last.ByMoments || !Fit.Run.State.Converged) LeaveMoments();
            return true;
        }
        Fit.Run.Norm.Iterations <= 1 ? FirstFitOfLoop(Fit) : FitFromStart(Fit);
        if (Fit.Abandoned()) return false;
        ByMoments =
            Fit.Run.Norm.Iterations == 1 && Fit.Run.State.Converged && MomentsServe(Fit.Model, Fit.Points);
        return true;
    }

    // The sum of absolute residuals of the last fit.
    double Reweigh() {
        if (ByMoments) {
            const bool tool = Fit.Model.Mode == FitMode::Tool;
            SumMoments(Fit.Points, Linearise(Fit.Model, Fit.Run.Now, Fit.Points, Fit.Run.Chain),
                       {.Tool = tool, .Reweighted = true}, Last.Moments);
            return Last.Moments.AbsoluteSum;
        }
        return Fit.Model.Mode == FitMode::Distance ? ReweightDistances(Fit.Result.v, Fit.Rows(), Fit.P)
                                                   : Reweight(Fit.Result.v, Fit.Rows(), Fit.P);
    }

    void End() {
        if (!ByMoments) return;
        if (Fit.Run.Norm.Iterations > 1) LeaveMoments();
        Reweight(Fit.Result.v, Fit.Rows(), Fit.P);
    }

    // The last fit's residuals come from the points. The weights have stayed 0 and 1 up to here.
    void LeaveMoments() {
        ByMoments = false;
        Residuals(Fit.Points, Fit.Model, Last.At, Last.Centred, Fit.Result.v);
    }
};

}  // namespace

bool FitL1(NormRun& fit) {
    fit.Run.Norm.NormTolerance = 1e-3;
    L1Rounds rounds{.Fit = fit};
    double d = 1e12, lowest = d;
    int idle = 0;
    bool goOn = true;
    while (goOn) {
        const double dPrev = d;
        ++fit.Run.Norm.Iterations;
        if (!rounds.Next()) return false;
        d = rounds.Reweigh();
        const double change = std::fabs(d - dPrev);
        if (!fit.Run.Tell(FitStep::LoopRound, change)) return false;
        idle = d < lowest ? 0 : idle + 1;
        lowest = std::fmin(lowest, d);
        CountUnsettledFit(fit);
        const bool mayGoOn = !fit.Stops() && fit.Run.State.Finite;
        const bool still = mayGoOn && change < fit.Run.Norm.NormTolerance;
        fit.Run.Norm.Converged = still && fit.Run.State.Converged;
        goOn = mayGoOn && !still && idle < kMostIdleRounds && fit.Run.Norm.Iterations < kMostNormRounds;
    }
    rounds.End();
    return true;
}

}  // namespace corvinade::fit
