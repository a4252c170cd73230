// From quaternions to the angles of a pose.
#include "import/pose_quaternion.h"

#include <algorithm>
#include <cmath>

#include "core/notes.h"
#include "core/platform.h"
#include "core/text.h"
#include "engine/transform.h"
#include "fit/quaternion.h"

namespace corvinade::import {

namespace {

using Quaternion = std::array<double, 4>;

double LengthOf(const Quaternion& q) {
    return std::sqrt(q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3]);
}

// A quaternion of n digits is off from length 1 by its rounding, and from that the angles of either way
// differ by as much. Beyond 1e-5, which a tool of 200 mm shows as 0.002 mm, digits explain nothing any more.
double Tolerance(const Quaternion& q) {
    constexpr double kExact = 1e-9, kMost = 1e-5;
    const double length = LengthOf(q);
    return std::min(kExact + 4 * std::fabs(length * length - 1), kMost);
}

// How far rounding takes a quaternion off length 1, by the decimals of its numbers. Programs write more of
// them than the single precision holds that they compute in.
double RoundingOf(const Quaternion& q) {
    constexpr int kMostDecimals = 9;
    constexpr double kSinglePrecision = 1e-5, kOfAll = 2;
    double unit = 1;
    for (int decimals = 0; decimals < kMostDecimals; ++decimals, unit /= 10) {
        const bool whole = std::all_of(q.begin(), q.end(), [unit](double value) {
            constexpr double kWhole = 1e-6;
            return std::fabs(value / unit - std::round(value / unit)) < kWhole;
        });
        if (whole) break;
    }
    return std::max(kOfAll * unit, kSinglePrecision);
}

bool TurnAlike(const PoseAngles& angles, const Mat3& wanted, double tolerance) {
    Mat3 turned;
    RotMatrixXYZ(-angles[2], -angles[1], -angles[0], turned);
    for (int row = 1; row <= 3; ++row)
        for (int column = 1; column <= 3; ++column)
            if (!(std::fabs(turned(row, column) - wanted(row, column)) <= tolerance)) return false;
    return true;
}

// A, B, C of Rz(A) Ry(B) Rx(C) = M. Where B is a right angle A and C are one rotation: C is 0 then.
PoseAngles AnglesOfMatrix(const Mat3& M) {
    const double c = std::hypot(M(1, 1), M(2, 1));
    constexpr double kPole = 1e-9;
    const double B = std::atan2(-M(3, 1), c);
    if (c < kPole) return {std::atan2(-M(1, 2), M(2, 2)), B, 0};
    // Near it C goes with what rounding has made of A, so that both together give M.
    const double A = std::atan2(M(2, 1), M(1, 1)), s = std::sin(A), k = std::cos(A);
    return {A, B, std::atan2(s * M(1, 3) - k * M(2, 3), k * M(2, 2) - s * M(1, 2))};
}

}  // namespace

PoseAngles AnglesOfQuaternion(const Quaternion& q, const RobotProgram& program, MatrixAngles& fromMatrix) {
    const double length = LengthOf(q);
    if (!std::isfinite(length) || !(length > 0))
        FailAtLine(program, "these numbers are no pose: \"" + Printable(program.Line) + "\"");
    double a = 0, b = 0, c = 0;
    QuaternionToAngles(q[0], q[1], q[2], q[3], a, b, c);
    const PoseAngles angles = {-c, -b, -a};
    const Mat3 wanted = RotationOf(q);
    if (TurnAlike(angles, wanted, Tolerance(q))) return angles;
    if (std::fabs(length - 1) > RoundingOf(q) && fromMatrix.Misread++ == 0)
        fromMatrix.FirstMisread = program.Lines.Row;
    if (fromMatrix.Count++ == 0) fromMatrix.FirstLine = program.Lines.Row;
    return AnglesOfMatrix(wanted);
}

void NoteMatrixAngles(const RobotProgram& program, const MatrixAngles& fromMatrix) {
    if (fromMatrix.Count == 0) return;
    AddNote(
        NoteCode::AnglesOfPose,
        "The angles of a pose are taken from its rotation, because its quaternion has not length 1 or stands "
        "at a right angle",
        program.File.Path, static_cast<int>(fromMatrix.FirstLine), static_cast<int>(fromMatrix.Count));
    if (fromMatrix.Misread > 0)
        AddNote(NoteCode::PosesDoubtful,
                "The quaternion of a pose is not of length 1 by far more than its digits explain: one of its "
                "numbers may be mistyped, and its orientation wrong",
                program.File.Path, static_cast<int>(fromMatrix.FirstMisread),
                static_cast<int>(fromMatrix.Misread));
}

}  // namespace corvinade::import
