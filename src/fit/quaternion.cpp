// Rotation matrix, quaternion and axis with angle.
#include "fit/quaternion.h"

#include <cmath>

#include "fit/angles.h"
#include "fit/require.h"

namespace corvinade::fit {

void MatrixToQuaternion(const Mat3& M, Column& record, double& a, double& b, double& c) {
    Require(UpperBound(record) >= 8);
    const double trace = M(1, 1) + M(2, 2) + M(3, 3);
    double q0 = 0, q1 = 0, q2 = 0, q3 = 0;
    // The largest component comes from the root, so the divisor is never small.
    if (trace > 0) {
        const double S = 2 * std::sqrt(trace + 1);
        q0 = S / 4;
        q1 = (M(3, 2) - M(2, 3)) / S;
        q2 = (M(1, 3) - M(3, 1)) / S;
        q3 = (M(2, 1) - M(1, 2)) / S;
    } else if (M(1, 1) > M(2, 2) && M(1, 1) >= M(3, 3)) {
        const double S = 2 * std::sqrt(M(1, 1) + 1 - M(2, 2) - M(3, 3));
        q0 = (M(3, 2) - M(2, 3)) / S;
        q1 = S / 4;
        q2 = (M(1, 2) + M(2, 1)) / S;
        q3 = (M(1, 3) + M(3, 1)) / S;
    } else if (M(2, 2) > M(3, 3)) {
        const double S = 2 * std::sqrt(M(2, 2) + 1 - M(1, 1) - M(3, 3));
        q0 = (M(1, 3) - M(3, 1)) / S;
        q1 = (M(1, 2) + M(2, 1)) / S;
        q2 = S / 4;
        q3 = (M(2, 3) + M(3, 2)) / S;
    } else {
        const double S = 2 * std::sqrt(M(3, 3) + 1 - M(1, 1) - M(2, 2));
        q0 = (M(2, 1) - M(1, 2)) / S;
        q1 = (M(1, 3) + M(3, 1)) / S;
        q2 = (M(2, 3) + M(3, 2)) / S;
        q3 = S / 4;
    }
    const double theta = 2 * ArcCos(q0);
    const double divisor = std::sin(theta / 2) + 1e-10;
    record[1] = q0;
    record[2] = q1;
    record[3] = q2;
    record[4] = q3;
    record[5] = theta;
    record[6] = q1 / divisor;
    record[7] = q2 / divisor;
    record[8] = q3 / divisor;
    QuaternionToAngles(q0, q1, q2, q3, a, b, c);
}

void QuaternionToAngles(double q0, double q1, double q2, double q3, double& a, double& b, double& c) {
    b = ArcSin(-2 * q1 * q3 + 2 * q0 * q2);
    const double p = 2 * q0 * q0 + 2 * q1 * q1 - 1;
    const double r = 2 * q0 * q0 + 2 * q3 * q3 - 1;
    if (p == 0 && r == 0) {
        // At the pole nothing is wrapped or turned round.
        a = c = kLibraryPi / 4;
        return;
    }
    c = std::atan((2 * q0 * q3 + 2 * q1 * q2) / p);
    if (p < 0) c += kLibraryPi;
    a = std::atan((2 * q2 * q3 + 2 * q0 * q1) / r);
    if (r < 0) a += kLibraryPi;
    // The quaternion's angles are active, those of RotMatrixXYZ passive.
    a = -WrapAngle(a);
    b = -WrapAngle(b);
    c = -WrapAngle(c);
}

Mat3 RotationOf(const std::array<double, 4>& q) {
    const double length = std::sqrt(q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3]);
    const double w = q[0] / length, x = q[1] / length, y = q[2] / length, z = q[3] / length;
    Mat3 M;
    M(1, 1) = 1 - 2 * (y * y + z * z);
    M(1, 2) = 2 * (x * y - w * z);
    M(1, 3) = 2 * (x * z + w * y);
    M(2, 1) = 2 * (x * y + w * z);
    M(2, 2) = 1 - 2 * (x * x + z * z);
    M(2, 3) = 2 * (y * z - w * x);
    M(3, 1) = 2 * (x * z - w * y);
    M(3, 2) = 2 * (y * z + w * x);
    M(3, 3) = 1 - 2 * (x * x + y * y);
    return M;
}

}  // namespace corvinade::fit
