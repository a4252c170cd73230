// The parameters of the transformation, by number.
#include "fit/parameters.h"

namespace corvinade::fit {

ParameterKind KindOf(int parameter) {
    if (parameter <= kTraZ || parameter >= kRDist) return ParameterKind::Length;
    return parameter >= kScaleX && parameter <= kScaleXYZ ? ParameterKind::Scale : ParameterKind::Angle;
}

}  // namespace corvinade::fit
