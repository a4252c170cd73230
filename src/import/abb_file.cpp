// Modules with their poses in robot targets, one a line:
// CONST robtarget p1:=[[600,-20.5,900],[0.7071068,0,0.7071068,0],[0,0,0,0],[9E9,9E9,9E9,9E9,9E9,9E9]];
#include <array>

#include "core/platform.h"
#include "core/run.h"
#include "import/pose_quaternion.h"
#include "import/robot_files.h"
#include "import/robot_program.h"

namespace {

constexpr std::string_view kPoseBegin = "[[";

// Goes on to the next pose of the first block. False at its end: at an empty line behind a pose, which sets
// `emptyLine`, at the end of the module or of the file.
bool NextPose(RobotProgram& program, bool isBehindPose, bool& emptyLine) {
    while (NextLine(program) && program.Line != "ENDMODULE") {
        if (program.Line.find(kPoseBegin) != std::string_view::npos) return true;
        emptyLine = isBehindPose && program.Line.empty();
        if (emptyLine) return false;
    }
    return false;
}

std::int64_t CountPoses(RobotProgram& program) {
    std::int64_t count = 0;
    bool emptyLine = false;
    while (NextPose(program, count > 0, emptyLine)) ++count;
    if (emptyLine)
        ShowMessage(
            "myabe there are more than one Block in the File - only importing the First block in file with " +
            std::to_string(count) + " Points");
    return count;
}

// The next number of the line, up to `ending`; `place` goes on behind it.
double NextNumber(const RobotProgram& program, std::size_t& place, std::string_view ending) {
    const std::size_t end = PlaceOf(program, ending, place);
    const double value = NumberBetween(program, place, end);
    place = end + ending.size();
    return value;
}

void TakePose(const RobotProgram& program, PoseTable& poses, LostOrientations& lost) {
    std::size_t place = PlaceOf(program, kPoseBegin) + kPoseBegin.size();
    std::array<double, 3> position{};
    std::array<double, 4> q{};
    for (std::size_t k = 0; k < 3; ++k) position[k] = NextNumber(program, place, k < 2 ? "," : "]");
    constexpr std::string_view kBetween = ",[";  // behind the bracket that ends the position
    if (program.Line.substr(place, kBetween.size()) != kBetween)
        FailAtLine(program, "\"],[\" is expected before the orientation");
    place += kBetween.size();
    for (std::size_t k = 0; k < 4; ++k) q[k] = NextNumber(program, place, k < 3 ? "," : "]");
    poses.Take(program, position, AnglesOfQuaternion(q, program, lost));
}

}  // namespace

void EinlesenABB_MODX() {
    RobotProgram program(Run.PathReader);
    const std::int64_t n = CountPoses(program);
    program.Lines = LineWalk(program.File);
    LostOrientations lost;
    {
        constexpr double kRadians = 1;  // which the angles of quaternions are in
        PoseTable poses(program, n, kRadians);
        bool emptyLine = false;
        for (std::int64_t pose = 0; NextPose(program, pose > 0, emptyLine); ++pose)
            TakePose(program, poses, lost);
    }
    ShowLostOrientations(program, lost);
}
