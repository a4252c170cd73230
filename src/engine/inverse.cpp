// The inverse of the transformation, as a matrix and as parameters of the model's own form.
#include "engine/inverse.h"

#include "core/job.h"
#include "engine/inverted_solutions.h"
#include "engine/transform.h"
#include "fit/matrix.h"
#include "fit/rotations.h"

namespace {

Mat3 InverseOf(const Mat3& A) {
    Mat3 B;
    MatrixInverse(A, 3, 3, B);
    return B;
}

}  // namespace

void InverseTransformation() {
    Mat3 R, K, S;
    RotMatrixXYZ(Job.RotX, Job.RotY, Job.RotZ, R);
    BuildShearMatrix(Job.AngleXY, Job.Azimuth, Job.AngleZtoXY, K);
    S(1, 1) = Job.ScaleX;
    S(2, 2) = Job.ScaleY;
    S(3, 3) = Job.ScaleZ;
    const Mat3 W = MatrixProduct(MatrixProduct(InverseOf(S), InverseOf(K)), InverseRotation(R));

    Inverse.InvMatrix = W;
    const auto shift = [&W](int i) {
        return -(W(i, 1) * Job.TraX + W(i, 2) * Job.TraY + W(i, 3) * Job.TraZ);
    };
    Inverse.InvTraX = shift(1);
    Inverse.InvTraY = shift(2);
    Inverse.InvTraZ = shift(3);

    const bool anyShear = Job.AngleXY != 0 || Job.Azimuth != 0 || Job.AngleZtoXY != 0;
    const bool anyScale = Job.ScaleX != 1 || Job.ScaleY != 1 || Job.ScaleZ != 1 || Job.ScaleXYZ != 1;
    InvertedSolutions(W, anyShear, anyScale, Inverse.InvSolutions);
}
