// The least largest residual by exchange of weight between the worst and the best row.
#include <cmath>

#include "fit/norms.h"

namespace corvinade::fit {

namespace {

constexpr double kExchange = 1.1;  // a row's weight changes by this factor

double& At(Column& column, int i) {
    return column[static_cast<std::size_t>(i)];
}

// One search's result. A place that a search does not find stays that of the search before.
struct Extremes {
    double Max = 0, Min = 0;
    int iMax = 0, iMin = 0;

    void Consider(double residual, int place) {
        if (residual > Max) {
            Max = residual;
            iMax = place;
        }
        if (residual < Min) {
            Min = residual;
            iMin = place;
        }
    }
};

void FindExtremes(NormRun& fit, Extremes& found) {
    found.Max = -1e11;
    found.Min = 1e11;
    if (fit.Model.Mode == FitMode::Distance) {
        // A point's residual counts for its three rows. The place is the number of points before it, as
        // results have always been made with: the exchange reaches a row beside the point's own.
        for (int i = 1; i <= fit.Rows(); ++i)
            if (At(fit.P, i) != 0) found.Consider(std::fabs(At(fit.Result.v, (i - 1) / 3 + 1)), (i - 1) / 3);
    } else {
        for (int i = 1; i <= fit.Rows(); ++i)
            if (At(fit.InUse, i) != 0) found.Consider(std::fabs(At(fit.Result.v, i)), i);
    }
}

bool Fit(NormRun& fit) {
    fit.Run.Norm.Iterations == 0 ? FirstFitOfLoop(fit) : FitFromStart(fit);
    CountUnsettledFit(fit);
    return !fit.Abandoned();
}

// The user wants no more, or all fits behind would give no numbers either.
bool MustEnd(const NormRun& fit) {
    return fit.Stops() || !fit.Run.State.Finite;
}

void ShowRound(NormRun& fit, double max) {
    fit.Run.Tell(FitStep::LoopRound, std::fabs(max));
}

}  // namespace

bool FitLoo(NormRun& fit) {
    if (!Fit(fit)) return false;
    if (MustEnd(fit)) return true;
    fit.Run.Norm.NormTolerance = 1e-4;
    Extremes previous, now;
    for (;;) {
        previous = now;
        ++fit.Run.Norm.Iterations;
        if (!Fit(fit)) return false;
        FindExtremes(fit, now);
        // Both may be the same row, whose weight then stays.
        At(fit.P, now.iMax) *= kExchange;
        At(fit.P, now.iMin) /= kExchange;
        ShowRound(fit, now.Max);
        if (MustEnd(fit)) return true;
        if (std::fabs(previous.Max - now.Max) < fit.Run.Norm.NormTolerance) break;
        if (fit.Run.Norm.Iterations > 1 && now.Max > previous.Max) break;
        if (fit.Run.Norm.Iterations == kMostNormRounds) return true;
    }
    At(fit.P, now.iMax) /= kExchange;
    At(fit.P, previous.iMax) /= kExchange;
    At(fit.P, now.iMin) *= kExchange;
    At(fit.P, previous.iMin) *= kExchange;
    if (!Fit(fit)) return false;
    ShowRound(fit, now.Max);
    fit.Run.Norm.Converged = fit.Run.State.Converged;
    return true;
}

}  // namespace corvinade::fit
