// A result of a fit with what it stands on, for who judges how well the points determine it.
#pragma once

#include <cstddef>
#include <functional>
#include <vector>

#include "fit/arrays.h"
#include "fit/design.h"
#include "fit/gathered_points.h"
#include "fit/parameters.h"

namespace corvinade::fit {

// Views of what the caller keeps, of a model without distance floating or held.
struct JudgedResult {
    const GatheredPoints& Points;  // with poses where the model is that of the tool; weights do not count
    const FitModel& Model;
    const Linearisation& At;  // at Values
    const Parameters& Values;
    // Of a coordinate by its index, three a pair, x y z, from 1 on: whether it takes part.
    std::function<bool(std::size_t)> InUse;
    // The norm lets gross errors stand aside: they have no part in what is known of the result.
    bool Robust = false;
    // Directions of the flange along which the tool vector does not float: unit vectors at right angles.
    std::vector<Vec3> Still = {};

    //   i  a pair, from 0 on;  axis  1 to 3
    bool Used(int i, int axis) const {
        return InUse(3 * static_cast<std::size_t>(i) + static_cast<std::size_t>(axis));
    }
};

}  // namespace corvinade::fit
