// The adjustment of a network by distances, from its approximate coordinates to an end: values in, values
// out.
#pragma once

#include <cstdint>
#include <functional>

#include "fit/bundle_iteration.h"
#include "fit/bundle_network.h"

namespace corvinade::fit {

enum class BundleEnd : std::uint8_t {
    Converged,
    Stopped,    // by the listener; Work.Iterations tells how many whole iterations were done, none perhaps
    NoEnd,      // the changes did not become small in the iterations that were allowed
    OnALine,    // all stations are on one line
    NotFinite,  // the coordinates went beyond numbers, and the network is as it was at the start
    Abandoned   // the listener says that the network is not the caller's any more; nothing is to be handed on
};

inline constexpr double kBundleLimit = 1e-5;  // mm, biggest absolute x at which the iteration ends
inline constexpr int kMostBundleIterations = 1000;

// Who hears an adjustment, and may end it. Any of them may be unset.
struct BundleListener {
    std::function<void(BundleStage)> Heard;            // each step
    std::function<void(const BundleWork&)> Iteration;  // each whole iteration
    // After each iteration, and again and again within a long step; false: what it works on has been
    // replaced, and it ends at once.
    std::function<bool()> GoesOn;
    std::function<bool()> StopIsWanted;  // asked likewise: true ends the work with what it has
};

struct BundleProblem {
    BundleNetwork Approximate;
    BundleChoice Choice;
    double Limit = kBundleLimit;  // mm
    int MostIterations = kMostBundleIterations;
};

struct BundleResult {
    BundleNetwork Adjusted;
    BundleWork Work;  // of the last whole iteration; what the distances leave open stands in Work.Open
    BundleEnd End = BundleEnd::Converged;
};

// Require: numbers of the choice are those of points of the network, or 0; a distance has both or none.
BundleResult AdjustBundle(const BundleProblem& problem, const BundleListener& listener = {});

// The same in place, for a caller who shows network and work while they change.
BundleEnd AdjustBundle(BundleNetwork& network, BundleWork& work, double limit_mm, int mostIterations,
                       const BundleListener& listener);

}  // namespace corvinade::fit
