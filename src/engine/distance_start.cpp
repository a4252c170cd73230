// Where a fit of the distance model may begin.
#include "engine/distance_start.h"

#include "core/job.h"
#include "engine/design.h"
#include "engine/start_values.h"
#include "fit/chain.h"
#include "fit/start_values.h"
#include "fit/vector.h"

namespace corvinade::engine {

namespace {

bool OnItsTarget(int pair, const Parameters& start, const Mat3& M) {
    // Start values of points that fit exactly come as near as this, and no direction is worth anything there.
    constexpr double kRounding = 1e-9;
    const Vec3 p = StartPoint(pair), q = TargetPoint(pair);
    Vec3 off;
    for (int axis = 1; axis <= 3; ++axis)
        off(axis) =
            start[kTraX + axis - 1] + M(axis, 1) * p(1) + M(axis, 2) * p(2) + M(axis, 3) * p(3) - q(axis);
    return Hypot3(off(1), off(2), off(3)) <=
           kRounding * (Hypot3(q(1), q(2), q(3)) + Hypot3(start[kTraX], start[kTraY], start[kTraZ]));
}

}  // namespace

std::string PairThatStartsOnItsTarget() {
    const Parameters start = StartValues(ReadStartChoice(Job.ParamText), TakeSeedPoints());
    if (ChooseMode(Job.ParamText, start) != FitMode::Distance) return "";
    ChainRecord chain;
    BuildChain(ChainSourceOf(start), chain);
    for (int pair = 1; pair <= Job.Pairs(); ++pair)
        if (Used(pair, 3) && OnItsTarget(pair, start, chain.Product))
            return Job.Start.Name[static_cast<std::size_t>(pair)];
    return "";
}

}  // namespace corvinade::engine
