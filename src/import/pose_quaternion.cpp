// From quaternions to the angles of a pose.
#include "import/pose_quaternion.h"

#include <cmath>

#include "core/platform.h"
#include "core/text.h"
#include "engine/quaternion.h"
#include "engine/transform.h"

namespace {

// Far above what rounding to four digits makes of a quaternion, and with a tool of 200 mm 0.2 mm.
constexpr double kNoticeable_rad = 1e-3;

// The rotation of a quaternion of any length but 0.
Mat3 MatrixOf(const std::array<double, 4>& q) {
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

bool TurnAlike(const PoseAngles& angles, const std::array<double, 4>& q) {
    Mat3 turned;
    RotMatrixXYZ(-angles[2], -angles[1], -angles[0], turned);
    const Mat3 wanted = MatrixOf(q);
    for (int row = 1; row <= 3; ++row)
        for (int column = 1; column <= 3; ++column)
            if (!(std::fabs(turned(row, column) - wanted(row, column)) <= kNoticeable_rad)) return false;
    return true;
}

}  // namespace

PoseAngles AnglesOfQuaternion(const std::array<double, 4>& q, const RobotProgram& program,
                              LostOrientations& lost) {
    double a = 0, b = 0, c = 0;
    QuaternionToAngles(q[0], q[1], q[2], q[3], a, b, c);
    const PoseAngles angles = {-c, -b, -a};
    if (!TurnAlike(angles, q) && lost.Count++ == 0) lost.FirstLine = program.Lines.Row;
    return angles;
}

void ShowLostOrientations(const RobotProgram& program, const LostOrientations& lost) {
    if (lost.Count == 0) return;
    const std::string gap = std::string(kLineEnd) + kLineEnd;
    std::string poses = "1 pose, in line ";
    if (lost.Count > 1) poses = std::to_string(lost.Count) + " poses, the first in line ";
    ShowMessage(
        "File: " + program.File.Path + gap + "The angles A, B, C of " + poses +
        std::to_string(lost.FirstLine) + ", do not turn as the quaternion does." + gap +
        "Its length is not 1, or it stands at a right angle. Positions are not touched; please do not "
        "use these orientations for a tool vector.");
}
