// How far the angles of the poses of a robot program spread.
#include "core/pose_spans.h"

#include <algorithm>
#include <array>

#include "core/job.h"
#include "core/run.h"

namespace corvinade::core {

void FindPoseSpans() {
    const Matrix& angles = Job.RobotABC;
    std::array<double, 3> lowest{}, highest{};
    bool any = false;
    for (int row = 1; row <= angles.Rows && angles.Columns >= 3; ++row) {
        const auto k = static_cast<std::size_t>(row);
        if (k < Job.Target.Name.size() && Job.Target.Name[k].empty()) continue;
        for (std::size_t column = 0; column < 3; ++column) {
            const double angle = angles(row, static_cast<int>(column) + 1);
            lowest[column] = any ? std::min(lowest[column], angle) : angle;
            highest[column] = any ? std::max(highest[column], angle) : angle;
        }
        any = true;
    }
    Run.SpanA = highest[0] - lowest[0];
    Run.SpanB = highest[1] - lowest[1];
    Run.SpanC = highest[2] - lowest[2];
}

}  // namespace corvinade::core
