// Orientations that a file has as quaternions.
#pragma once

#include <array>
#include <cstdint>

#include "core/rooms.h"
#include "import/robot_program.h"

namespace corvinade::import {

// Which poses have their angles from the rotation itself.
struct MatrixAngles {
    std::int64_t Count = 0;
    std::int64_t FirstLine = 0;
    // Of them those whose quaternions are too far from length 1 for any rounding.
    std::int64_t Misread = 0, FirstMisread = 0;
};

// The angles of a pose by QuaternionToAngles, which turn points where that one's turn axes: with the other
// sign and in the order of RobotABC, rad.
//   q           q1 to q4 of the file, the real part first
//   fromMatrix  counts the pose of the present line when these angles do not give the rotation of q, and
//   those of
//               its rotation matrix are the result. That is so for quaternions whose length is not 1 by more
//               than their digits explain, and at right angles: where the second angle is 90 degrees, and
//               where both divisors of QuaternionToAngles vanish, its fixed answers are others.
// Throws PlatformError, with the line in it, for a quaternion of length 0 or beyond the range of numbers: it
// turns nothing.
PoseAngles AnglesOfQuaternion(const std::array<double, 4>& q, const RobotProgram& program,
                              MatrixAngles& fromMatrix);

// Notes them; nothing when there are none.
void NoteMatrixAngles(const RobotProgram& program, const MatrixAngles& fromMatrix);

}  // namespace corvinade::import
