// Singular values of small matrices, each to its own last digits.
#pragma once

#include <vector>

#include "fit/arrays.h"

namespace corvinade::fit {

// A = U diag(s) V' of m rows and n columns, m >= n or not; A row by row. The singular values fall.
//   U  m by n, row by row: unit columns, 0 where the singular value is 0
//   V  n by n, row by row: orthogonal
// By one-sided rotations (Hestenes 1958; Demmel and Veselic 1992 on why small values keep their digits where
// the columns are scaled alike). What is no number gives NaN and no failure.
struct SmallSvd {
    std::vector<double> s, U, V;
};
SmallSvd DecomposeSmall(const std::vector<double>& A, int m, int n);

// The same of 3 by 3, with U and V completed to rotations or reflections where singular values are 0.
struct Svd3 {
    Mat3 U, V;
    Vec3 s;
};
Svd3 Decompose3(const Mat3& A);
// The same with columns of U as DecomposeSmall has them: small ones are not taken for rounding.
Svd3 DecomposeToLastDigits(const Mat3& A);

double Determinant3(const Mat3& A);

// The proper rotation R that makes trace(R' H) largest, and that trace. Where the least singular value of H
// is 0 and others are, several are equally good, and one of them is given. (Kabsch 1976; with the
// determinant's sign Umeyama 1991, IEEE PAMI 13(4).)
//   sign  -1 for the best reflection instead
Mat3 NearestRotation(const Mat3& H, int sign, double& trace);

}  // namespace corvinade::fit
