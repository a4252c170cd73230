// The parameters of the transformation, by number.
#include "fit/parameters.h"

ParameterKind KindOf(int parameter) {
    if (parameter <= kTraZ || parameter >= kRDist) return ParameterKind::Length;
    return parameter >= kScaleX && parameter <= kScaleXYZ ? ParameterKind::Scale : ParameterKind::Angle;
}
