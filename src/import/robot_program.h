// What the readers of robot programs share: the lines of a program, the numbers that stand between known
// places of a line, and the poses on their way into the job.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "core/arrays.h"
#include "core/point_set.h"
#include "core/rooms.h"
#include "import/point_text.h"
#include "import/robot_files.h"

namespace corvinade::import {

// What a note on poses left out ends with.
inline constexpr const char* kNumberedByTurn = "; those that are taken are numbered by their turn";

// A file and the line that its reader has come to.
struct RobotProgram {
    PointText File;
    LineWalk Lines;
    std::string_view Line;
    std::string Decoded;  // what Line points into where the file is not plain ASCII
    char Decimal;         // of its numbers, beside the point
    PosePlaces* Places;   // null where nobody wants them
    // Of each byte of Line in the file, where Line is none of its lines and places are wanted.
    std::vector<std::size_t> LinePlaces{};

    // Throws PlatformError as LoadPointText does.
    explicit RobotProgram(const TargetFile& file);
    RobotProgram(const RobotProgram&) = delete;
    RobotProgram& operator=(const RobotProgram&) = delete;
    ~RobotProgram() = default;
};

// Goes on to the next line. False at the end of the file; the present line then stays.
bool NextLine(RobotProgram& program);

// The same where a line must follow: throws PlatformError at the end of the file.
void NeedLine(RobotProgram& program);

// Is there no line behind the present one? A line end at the very end of a file begins none.
bool HasEnded(const RobotProgram& program);

// Throws PlatformError that names the file, the number of the present line and what is wrong there.
[[noreturn]] void FailAtLine(const RobotProgram& program, const std::string& what);

// The place of a text in the present line, searched for from `from` on. Throws PlatformError, with the line
// in it, when it is not there.
std::size_t PlaceOf(const RobotProgram& program, std::string_view text, std::size_t from = 0);

// The number that stands in the places `begin` to `end` - 1 of the present line, and nothing but blanks
// beside it, with the decimal delimiter of its reading or with a point: robot programs have the point
// whatever the system. Digits of it that are not kept are noted. Throws PlatformError, with the text in it,
// when there is none or no such places.
double NumberBetween(const RobotProgram& program, std::size_t begin, std::size_t end);

// For each pose taken: notes that its positions, which the program has in millimetres, or its angles, which
// it has in degrees, are read in another unit, since that is in use.
void NoteProgramUnits(const RobotProgram& program, bool millimetres, bool degrees);

// The three angles of a pose: about z, the new y and the new x, as the columns 1 to 3 of RobotABC.
using PoseAngles = std::array<double, 3>;

// Poses as they are read. However the reading ends, they become the target set of the job with its
// orientations: Job.Target, RobotABC, ProgramPoses, Run.SpanA to SpanC; no pairs are left. Places for which
// no pose has come hold nothing, not even a name, so that they pair with nothing.
class PoseTable {
public:
    // Room for `count` poses. Angles are divided by `angleFactor`, positions by Units.LengthFactor.
    // Throws PlatformError, the job untouched, when there is no pose, and when so many are announced that
    // the file cannot hold them.
    PoseTable(const RobotProgram& program, std::int64_t count, double angleFactor);
    ~PoseTable();
    PoseTable(const PoseTable&) = delete;
    PoseTable& operator=(const PoseTable&) = delete;

    // Takes the pose of the present line, in the units of the file; without a name its number is its name.
    // Throws PlatformError when all places are taken, and where a number is too large for its unit.
    void Take(const RobotProgram& program, const std::array<double, 3>& position, const PoseAngles& angles);
    // What the program calls the pose that was taken last.
    void CalledInProgram(std::string_view name);
    void Take(const RobotProgram& program, const std::array<double, 3>& position, const PoseAngles& angles,
              std::string name);

private:
    PointSet points_;
    Matrix angles_;  // rad
    std::vector<std::string> programNames_;
    std::size_t taken_ = 0;
    double angleFactor_;
    // Of the angles as the file has them.
    PoseAngles highest_{-1e10, -1e10, -1e10}, lowest_{1e10, 1e10, 1e10};
};

}  // namespace corvinade::import
