// The rows of the plain model's design matrix as forms of [1 x y z]: the same coefficients for all points.
#pragma once

#include <array>
#include <vector>

#include "fit/arrays.h"
#include "fit/design.h"

namespace corvinade::fit {

// A symmetric 4 by 4 matrix of [1 x y z], upper triangle row by row.
using Form4 = std::array<double, 10>;

// Columns of the centred unknowns 1 to u, places 1 to 3 the axes: the element of a row is the product with
// [1 x y z], x y z of the start point about its centre.
struct AxisForms {
    int Unknowns = 0;
    std::array<std::vector<std::array<double, 4>>, 4> Of;  // by axis and unknown
};
AxisForms FormsOf(const FitModel& model, const Linearisation& at);

// The products of two axes, in the order in which they are kept: 11, 12, 13, 22, 23, 33.
inline constexpr int kAxisPairs = 6;
constexpr int AxisPair(int a, int b) {
    return a <= b ? 3 * (a - 1) - (a - 1) * (a - 2) / 2 + b - a : AxisPair(b, a);
}

// [1 x y z] [1 x y z]'.
inline Form4 SquareOf(double x, double y, double z) {
    return {1, x, y, z, x * x, x * y, x * z, y * y, y * z, z * z};
}

// N = sum over points and axes a, b of the weight w_ab times the rows' product, where `sums` has for each
// pair of axes the sum of w_ab [1 x y z] [1 x y z]'. u by u.
Matrix NormalMatrixOf(const AxisForms& forms, const std::array<Form4, kAxisPairs>& sums);

// A Q A' of the three rows of any point, as forms of [1 x y z]: Value of a form is their value there. Q of
// the centred unknowns.
std::array<Form4, kAxisPairs> VarianceForms(const AxisForms& forms, const Matrix& Q);
inline double Value(const Form4& form, double x, double y, double z) {
    return form[0] + x * (form[1] + form[4] * x + form[5] * y + form[6] * z) +
           (y * (form[2] + form[7] * y + form[8] * z) + z * (form[3] + form[9] * z));
}

// The inverse of a symmetric positive definite matrix (Cholesky), its rows and columns brought to the same
// size first. False where rounding leaves no doubt that it is singular; Q is of no meaning then.
bool InvertPositive(const Matrix& N, int u, Matrix& Q);

}  // namespace corvinade::fit
