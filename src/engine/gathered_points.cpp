// The identical points of the job as plain columns of numbers.
#include "engine/gathered_points.h"

#include <algorithm>
#include <vector>

#include "core/job.h"

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

std::vector<double> Untagged(const std::vector<TaggedValue>& column, int count) {
    std::vector<double> numbers(At(count));
    for (std::size_t k = 0; k < numbers.size(); ++k) numbers[k] = column[k + 1].value_or(0);
    return numbers;
}

}  // namespace

void GatherPoints(const Column& P, bool poses, GatheredPoints& points) {
    const int count = Job.nIdent;
    // X and Y are tagged in the job, Z is not.
    const std::vector<double> x = Untagged(Job.MCS_X, count), y = Untagged(Job.MCS_Y, count);
    const std::vector<double> X = Untagged(Job.OCS_X, count), Y = Untagged(Job.OCS_Y, count);
    const std::span<const double> z(Job.MCS_Z.data() + 1, At(count)), Z(Job.OCS_Z.data() + 1, At(count));
    PairColumns pairs{.Start = {x, y, z}, .Target = {X, Y, Z}, .PoseAngles = {}};
    std::array<std::vector<double>, 3> angles;
    if (poses && Job.RobotABC.Columns >= 3)
        for (int column = 1; column <= 3; ++column) {
            std::vector<double>& one = angles[At(column - 1)];
            for (int i = 1; i <= std::min(count, Job.RobotABC.Rows); ++i)
                one.push_back(Job.RobotABC(i, column));
            pairs.PoseAngles[At(column - 1)] = one;
        }
    GatherPoints(pairs, P, poses, points);
}
