// The parameters that make up a matrix, by the sectors of the shown angle unit, and what is said of none.
#include "engine/inverted_solutions.h"

#include "core/platform.h"
#include "core/units.h"
#include "fit/angles.h"

namespace corvinade::engine {

double ChooseAngleBySinCos(double s, double c) {
    return fit::ChooseAngleBySinCos(s, c, Units.AngleFactor);
}

void DecomposeShear(const Mat3& K, Vec3& first, Vec3& second) {
    fit::DecomposeShear(K, Units.AngleFactor, first, second);
}

void InvertedSolutions(const Mat3& W, bool anyShear, bool anyScale, Matrix& list) {
    list = fit::InvertedSolutions(W, anyShear, anyScale, Units.AngleFactor);
    if (list.Rows < 1)
        ShowMessage(
            "No inverted Solutions found. Notice: A transformation with any scale in a SEPPARATE Axis does "
            "not have an inverted solution!");
}

}  // namespace corvinade::engine
