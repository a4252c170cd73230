// The axes that the floating angles of a result turn about.
#pragma once

#include <array>
#include <vector>

#include "fit/design.h"
#include "fit/parameters.h"

namespace corvinade::fit {

// In the target system: the derivative of R by each angle is [axis]x R. Made at the angles of the result.
struct TurnAxes {
    std::vector<int> Parameters;
    std::vector<Vec3> Of;

    TurnAxes(const FitModel& model, const fit::Parameters& result);

    // Unit vectors at right angles that span what can be turned about. All three angles reach every turn,
    // at gimbal lock too, where their axes lie in one plane: but for a moment.
    std::vector<Vec3> Span() const;

    // The angles that take part in a turn about the unit vector w, by shares of the largest above `least`.
    std::array<bool, kParameterEnd> Marked(const Vec3& w, double least) const;
};

// Adds unit vectors within the span of these ones, which stand at right angles, along which the symmetric
// form is least to greatest, in no order.
void AddAxes(const std::vector<Vec3>& span, const Mat3& form, std::vector<Vec3>& axes);

}  // namespace corvinade::fit
