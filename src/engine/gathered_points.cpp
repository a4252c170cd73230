// The identical points of the job as plain columns of numbers.
#include "engine/gathered_points.h"

#include <algorithm>
#include <vector>

#include "core/job.h"
#include "fit/gathering.h"

namespace corvinade::engine {

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

void GatherPosesOfJob(GatheredPoints& points) {
    std::array<std::vector<double>, 3> angles;
    if (Job.RobotABC.Columns >= 3)
        for (int i = 1; i <= std::min(points.Count, Job.RobotABC.Rows); ++i)
            for (int column = 1; column <= 3; ++column)
                angles[At(column - 1)].push_back(Job.RobotABC(i, column));
    GatherPoses({angles[0], angles[1], angles[2]}, points);
}

}  // namespace

void GatherPoints(const Column& P, bool poses, GatheredPoints& points) {
    BeginGathering(Job.Pairs(), StartPoint, TargetPoint, P, points);
    // Straight from the tagged columns of the job: a copy of a million points would cost as much as a fit.
    const Vec3 c = points.StartCentre, q = points.TargetCentre;
    for (std::size_t k = 0; k < At(points.Count); ++k) {
        points.Start[0][k] = Job.Start.X[k + 1].value_or(0) - c(1);
        points.Start[1][k] = Job.Start.Y[k + 1].value_or(0) - c(2);
        points.Start[2][k] = Job.Start.Z[k + 1] - c(3);
        points.Target[0][k] = Job.Target.X[k + 1].value_or(0) - q(1);
        points.Target[1][k] = Job.Target.Y[k + 1].value_or(0) - q(2);
        points.Target[2][k] = Job.Target.Z[k + 1] - q(3);
    }
    if (poses) GatherPosesOfJob(points);
}

}  // namespace corvinade::engine
