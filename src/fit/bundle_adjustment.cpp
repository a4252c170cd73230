// The adjustment of a network by distances, to an end of its own.
#include "fit/bundle_adjustment.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "fit/bundle_open.h"
#include "fit/require.h"

namespace corvinade::fit {

namespace {

bool IsFinite(const BundleNetwork& network) {
    const auto finite = [](const std::vector<double>& values) {
        return std::all_of(values.begin(), values.end(), [](double x) { return std::fabs(x) < 1e150; });
    };
    return finite(network.StationXYZ.Elements) && finite(network.ObjectXYZ.Elements) &&
           finite(network.DistanceValue);
}

// Asks the listener; what it has said once of the network holds.
struct Asked {
    const BundleListener& Listener;
    bool Ours = true;

    bool StillOurs() {
        const bool goesOn = !Listener.GoesOn || Listener.GoesOn();
        return Ours = Ours && goesOn;
    }
    bool GoOn() { return StillOurs() && !(Listener.StopIsWanted && Listener.StopIsWanted()); }
};

BundleEnd Iterate(BundleNetwork& network, BundleWork& work, double limit_mm, int most,
                  const BundleListener& listener) {
    if (!IsFinite(network)) return BundleEnd::NotFinite;
    const Matrix stations = network.StationXYZ, objects = network.ObjectXYZ;
    Asked asked{listener};
    const BundleStepListener steps = {listener.Heard, [&asked] { return asked.GoOn(); }};
    while (work.Iterations < most) {
        const BundleStep step = BundleIteration(network, work, steps);
        if (!asked.Ours) return BundleEnd::Abandoned;
        if (step == BundleStep::Ended) return BundleEnd::Stopped;
        if (step == BundleStep::OnALine) return BundleEnd::OnALine;
        if (step == BundleStep::NotFinite) {
            network.StationXYZ = stations;
            network.ObjectXYZ = objects;
            return BundleEnd::NotFinite;
        }
        if (listener.Iteration) listener.Iteration(work);
        const bool goOn = asked.GoOn();
        if (!asked.Ours) return BundleEnd::Abandoned;
        if (work.BiggestX < limit_mm) return BundleEnd::Converged;
        if (!goOn) return BundleEnd::Stopped;
    }
    return BundleEnd::NoEnd;
}

void RequireItsPoints(const BundleNetwork& network, const BundleChoice& choice) {
    Require(choice.StationOf.size() == network.DistanceValue.size());
    Require(choice.ObjectOf.size() == network.DistanceValue.size());
    for (std::size_t k = 1; k < choice.StationOf.size(); ++k) {
        Require((choice.StationOf[k] == 0) == (choice.ObjectOf[k] == 0));
        Require(choice.StationOf[k] >= 0 && choice.StationOf[k] <= network.Stations());
        Require(choice.ObjectOf[k] >= 0 && choice.ObjectOf[k] <= UpperBound(choice.UsedObject));
    }
    for (std::size_t k = 1; k < choice.UsedObject.size(); ++k)
        Require(choice.UsedObject[k] >= 1 && choice.UsedObject[k] <= network.ObjectXYZ.Rows);
}

}  // namespace

BundleEnd AdjustBundle(BundleNetwork& network, BundleWork& work, double limit_mm, int mostIterations,
                       const BundleListener& listener) {
    const int stations = network.Stations();
    const BundleEnd end = Iterate(network, work, limit_mm, mostIterations, listener);
    const bool hasResult =
        end == BundleEnd::Converged || end == BundleEnd::NoEnd || end == BundleEnd::Stopped;
    if (!hasResult || work.Iterations == 0) return end;
    Asked asked{listener};
    FindOpenCoordinates(stations, work, [&asked] { asked.StillOurs(); });
    return asked.Ours ? end : BundleEnd::Abandoned;
}

BundleResult AdjustBundle(const BundleProblem& problem, const BundleListener& listener) {
    RequireItsPoints(problem.Approximate, problem.Choice);
    BundleResult result{.Adjusted = problem.Approximate,
                        .Work = BeginBundle(problem.Approximate.Stations(), problem.Choice)};
    result.End = AdjustBundle(result.Adjusted, result.Work, problem.Limit, problem.MostIterations, listener);
    return result;
}

}  // namespace corvinade::fit
