// The inverse of a transformation.
#include "fit/inverse.h"

#include "fit/chain.h"
#include "fit/matrix.h"
#include "fit/rotations.h"

namespace corvinade::fit {

namespace {

Mat3 InverseOf(const Mat3& A) {
    Mat3 B;
    MatrixInverse(A, 3, 3, B);
    return B;
}

}  // namespace

InverseMatrix InverseOf(const Parameters& p) {
    Mat3 R, K, S;
    RotMatrixXYZ(p[kRotX], p[kRotY], p[kRotZ], R);
    BuildShearMatrix(p[kAngleXY], p[kAzimuth], p[kAngleZtoXY], K);
    S(1, 1) = p[kScaleX];
    S(2, 2) = p[kScaleY];
    S(3, 3) = p[kScaleZ];
    InverseMatrix inverse;
    Mat3& W = inverse.Linear;
    W = MatrixProduct(MatrixProduct(InverseOf(S), InverseOf(K)), InverseRotation(R));
    for (int i = 1; i <= 3; ++i)
        inverse.Shift(i) = -(W(i, 1) * p[kTraX] + W(i, 2) * p[kTraY] + W(i, 3) * p[kTraZ]);
    return inverse;
}

}  // namespace corvinade::fit
