// The least largest residual by exchange of weight between the worst and the best row.
#include <cmath>

#include "core/controller.h"
#include "core/job.h"
#include "core/numbers.h"
#include "core/run.h"
#include "core/units.h"
#include "engine/adjustment.h"
#include "engine/norms.h"

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

bool RowInUse(int i) {
    return CoordinateInUse(static_cast<std::size_t>(i));
}

void FindExtremes(NormFit& fit, Extremes& found) {
    found.Max = -1e11;
    found.Min = 1e11;
    if (Adjustment.Model.Mode == FitMode::Distance) {
        // A point's residual counts for its three rows. The place is the number of points before it, as
        // results have always been made with: the exchange reaches a row beside the point's own.
        for (int i = 1; i <= fit.n; ++i)
            if (At(fit.P, i) != 0) found.Consider(std::fabs(At(fit.v, (i - 1) / 3 + 1)), (i - 1) / 3);
    } else {
        for (int i = 1; i <= fit.n; ++i)
            if (RowInUse(i)) found.Consider(std::fabs(At(fit.v, i)), i);
    }
}

bool Fit(NormFit& fit) {
    Norm.Iterations == 0 ? FirstFitOfLoop(fit) : FitFromStart(fit);
    CountUnsettledFit();
    return !Adjustment.JobChanged;
}

// The user wants no more, or all fits behind would give no numbers either.
bool MustEnd() {
    return IsTrue(Run.StopRequested) || !Adjustment.Finite;
}

void ShowRound(double max) {
    SetStatus(7, FormatNumber(std::fabs(max) * Units.LengthFactor, Units.FmtLength) + "[v max]: ");
    SetStatus(6, "Loo Iterat.: " + std::to_string(Norm.Iterations));
}

}  // namespace

bool FitLoo(NormFit& fit) {
    SetStatus(6, "Loo...max is min");
    SetStatus(7, "Loo...max is min");
    if (!Fit(fit)) return false;
    if (MustEnd()) return true;
    Norm.NormTolerance = 1e-4;
    Extremes previous, now;
    for (;;) {
        previous = now;
        ++Norm.Iterations;
        if (!Fit(fit)) return false;
        FindExtremes(fit, now);
        // Both may be the same row, whose weight then stays.
        At(fit.P, now.iMax) *= kExchange;
        At(fit.P, now.iMin) /= kExchange;
        ShowRound(now.Max);
        if (MustEnd()) return true;
        if (std::fabs(previous.Max - now.Max) < Norm.NormTolerance) break;
        if (Norm.Iterations > 1 && now.Max > previous.Max) break;
        if (Norm.Iterations == kMostNormRounds) return true;
    }
    At(fit.P, now.iMax) /= kExchange;
    At(fit.P, previous.iMax) /= kExchange;
    At(fit.P, now.iMin) *= kExchange;
    At(fit.P, previous.iMin) *= kExchange;
    if (!Fit(fit)) return false;
    ShowRound(now.Max);
    Norm.Converged = Adjustment.Converged;
    return true;
}
