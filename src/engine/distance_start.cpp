// Where a fit of the distance model may begin.
#include "engine/distance_start.h"

#include <array>
#include <cmath>

#include "core/job.h"
#include "engine/design.h"
#include "engine/start_values.h"
#include "engine/transform.h"
#include "fit/vector.h"

namespace corvinade::engine {

namespace {

// Puts the parameters back that the start values replace.
class ParametersKept {
public:
    ParametersKept() = default;
    ~ParametersKept() {
        PutParameters(before_, Job);
        Job.RotXCopy = copies_[0];
        Job.RotYCopy = copies_[1];
        Job.RotZCopy = copies_[2];
    }
    ParametersKept(const ParametersKept&) = delete;
    ParametersKept& operator=(const ParametersKept&) = delete;

private:
    Parameters before_ = ParametersOf(Job);
    std::array<double, 3> copies_ = {Job.RotXCopy, Job.RotYCopy, Job.RotZCopy};
};

bool InUse(int pair) {
    return Used(pair, 3);
}

bool OnItsTarget(int pair) {
    // Start values of points that fit exactly come as near as this, and no direction is worth anything there.
    constexpr double kRounding = 1e-9;
    const Vec3 p = StartPoint(pair), q = TargetPoint(pair);
    Vec3 image;
    TransformPoint(p(1), p(2), p(3), image(1), image(2), image(3));
    const double distance = Hypot3(image(1) - q(1), image(2) - q(2), image(3) - q(3));
    return distance <= kRounding * (Hypot3(q(1), q(2), q(3)) + Hypot3(Job.TraX, Job.TraY, Job.TraZ));
}

}  // namespace

std::string PairThatStartsOnItsTarget() {
    const ParametersKept kept;
    TakeStartValues(Job.ParamText);
    if (ChooseMode(Job.ParamText) != FitMode::Distance) return "";
    Job.RotXCopy = Job.RotX;
    Job.RotYCopy = Job.RotY;
    Job.RotZCopy = Job.RotZ;
    for (int pair = 1; pair <= Job.Pairs(); ++pair)
        if (InUse(pair) && OnItsTarget(pair)) return Job.Start.Name[static_cast<std::size_t>(pair)];
    return "";
}

}  // namespace corvinade::engine
