// Where the poses put the tip of the tool.
#include "fit/tool_tips.h"

#include <cstddef>

namespace corvinade::fit {

GatheredPoints AtTips(const GatheredPoints& points, const Vec3& tool) {
    GatheredPoints tips = points;
    const auto count = static_cast<std::size_t>(tips.Count);
    for (std::size_t axis = 0; axis < 3; ++axis)
        for (std::size_t i = 0; i < count; ++i)
            for (std::size_t k = 0; k < 3; ++k)
                tips.Target[axis][i] -= tips.Pose[3 * axis + k][i] * tool(static_cast<int>(k) + 1);
    return tips;
}

}  // namespace corvinade::fit
