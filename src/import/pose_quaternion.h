// Orientations that a file has as quaternions.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "import/robot_program.h"

// Which poses have angles that do not turn as their quaternions do.
struct LostOrientations {
    std::int64_t Count = 0;
    std::int64_t FirstLine = 0;
};

// The angles of a pose by QuaternionToAngles, which turn points where that one's turn axes: with the other
// sign and in the order of RobotABC, rad.
//   q     q1 to q4 of the file, the real part first
//   lost  counts the pose of the present line when the angles do not give the rotation of q. That is so for
//         quaternions whose length is not 1, and at right angles: where the second angle is 90 degrees, and
//         where both divisors of QuaternionToAngles vanish, its fixed answers are others.
// The result may hold NaN, which no table of poses takes.
PoseAngles AnglesOfQuaternion(const std::array<double, 4>& q, const RobotProgram& program,
                              LostOrientations& lost);

// Tells the user of them; nothing when there are none.
void ShowLostOrientations(const RobotProgram& program, const LostOrientations& lost);
