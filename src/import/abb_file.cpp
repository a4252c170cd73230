// Modules with their poses in robot targets:
// CONST robtarget p1:=[[600,-20.5,900],[0.7071068,0,0.7071068,0],[0,0,0,0],[9E9,9E9,9E9,9E9,9E9,9E9]];
#include <algorithm>
#include <array>
#include <cctype>
#include <set>
#include <utility>
#include <vector>

#include "core/notes.h"
#include "core/platform.h"
#include "core/text.h"
#include "import/abb_targets.h"
#include "import/pose_quaternion.h"
#include "import/robot_files.h"
#include "import/robot_program.h"
#include "import/row_notes.h"

namespace corvinade::import {

namespace {

constexpr std::string_view kPoseBegin = "[[";
constexpr double kRadians = 1;  // which the angles of quaternions are in

void TellOfFurtherBlocks(std::int64_t poses) {
    ShowMessage(
        "myabe there are more than one Block in the File - only importing the First block in file with " +
        std::to_string(poses) + " Points");
}

// One note of all that a program has and that is not taken, as there are places for one of a file.
void NoteLeft(const RobotProgram& program, const std::vector<std::pair<AbbLeft, std::string>>& kinds) {
    std::string all;
    AbbLeft sum;
    for (const auto& [left, text] : kinds) {
        if (left.Count == 0) continue;
        if (all.empty()) {
            sum.First = left.First;
            all = text;
            all[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(all[0])));
        } else {
            all += "; " + text + ", as in line " + std::to_string(left.First);
        }
        sum.Count += left.Count;
    }
    if (sum.Count == 0) return;
    AddNote(NoteCode::PosesSkipped, all + kNumberedByTurn, program.File.Path, static_cast<int>(sum.First),
            static_cast<int>(sum.Count));
}

// The next number of the line, up to `ending`; `place` goes on behind it.
double NextNumber(const RobotProgram& program, std::size_t& place, std::string_view ending) {
    const std::size_t end = PlaceOf(program, ending, place);
    const double value = NumberBetween(program, place, end);
    place = end + ending.size();
    return value;
}

void TakePose(const RobotProgram& program, PoseTable& poses, MatrixAngles& fromMatrix) {
    std::size_t place = PlaceOf(program, kPoseBegin) + kPoseBegin.size();
    std::array<double, 3> position{};
    std::array<double, 4> q{};
    for (std::size_t k = 0; k < 3; ++k) position[k] = NextNumber(program, place, k < 2 ? "," : "]");
    constexpr std::string_view kBetween = ",[";  // behind the bracket that ends the position
    if (program.Line.substr(place, kBetween.size()) != kBetween)
        FailAtLine(program, "\"],[\" is expected before the orientation");
    place += kBetween.size();
    for (std::size_t k = 0; k < 4; ++k) q[k] = NextNumber(program, place, k < 3 ? "," : "]");
    poses.Take(program, position, AnglesOfQuaternion(q, program, fromMatrix));
    NoteProgramUnits(program, true, false);  // a quaternion has none
}

// --- By declarations --------------------------------------------------------------------------------------

AbbLeft LeftOf(const std::vector<AbbTarget>& targets) {
    return {static_cast<std::int64_t>(targets.size()), targets.empty() ? 0 : targets.front().Row};
}

// Where the bytes of a target's text stand in the file, from `from` on: blanks, line ends and remarks may
// stand between them. None where it does not stand there as it was put together.
std::vector<std::size_t> PlacesOf(const AbbTarget& target, std::string_view file, std::size_t from) {
    const auto passOver = [file](std::size_t at) {
        while (at < file.size() && std::string_view(" \t\r\n!").find(file[at]) != std::string_view::npos)
            at = file[at] == '!' ? std::min(file.find_first_of("\r\n", at), file.size()) : at + 1;
        return at;
    };
    for (std::size_t begin = file.find('[', from); begin != std::string_view::npos;
         begin = file.find('[', begin + 1)) {
        std::vector<std::size_t> places;
        std::size_t at = begin;
        for (const char c : target.Text) {
            if (c != ' ') at = passOver(at);
            if (at >= file.size() || (c != ' ' && file[at] != c)) break;
            places.push_back(at);
            if (c != ' ') ++at;
        }
        if (places.size() == target.Text.size()) return places;
    }
    return {};
}

std::size_t BeginOfRow(const RobotProgram& program, std::int64_t row) {
    LineWalk lines(program.File);
    std::string_view line;
    while (lines.Next(line) && lines.Row < row) {
    }
    return static_cast<std::size_t>(line.data() - program.File.Text.data());
}

void ReadByDeclarations(const TargetFile& file) {
    RobotProgram program(file);
    const AbbTargets found = FindTargets(program);
    const auto n = static_cast<std::int64_t>(found.FirstBlock.size());
    if (found.EmptyLine) TellOfFurtherBlocks(n);
    MatrixAngles fromMatrix;
    NamesSeen names;
    {
        PoseTable poses(program, n, kRadians);
        std::size_t behind = 0;  // the target before
        for (const AbbTarget& target : found.FirstBlock) {
            // What there is to say of it names the line in which it begins.
            program.Line = target.Text;
            program.Lines.Row = target.Row;
            if (program.Places != nullptr) {
                const std::size_t from = std::max(BeginOfRow(program, target.Row), behind);
                program.LinePlaces = PlacesOf(target, program.File.Text, from);
                if (program.LinePlaces.empty())
                    FailAtLine(program, "the pose cannot be found again where it stands");
                behind = program.LinePlaces.back();
            }
            names.Add(UpperAscii(target.Name), target.Name, target.Row);
            TakePose(program, poses, fromMatrix);
            poses.CalledInProgram(target.Name);
        }
    }
    NoteLeft(program,
             {{found.NoTargets,
               "what looks like a pose is no robot target and is not taken: a remark, a tool, a work "
               "object, joint values or what a function is given"},
              {found.Seconds, "a second pose in the statement of another one is not taken"},
              {LeftOf(found.Behind), "what stands behind the end of the first block is not taken"}});
    names.Write(program.File.Path);
    NoteMatrixAngles(program, fromMatrix);
}

// --- By lines ---------------------------------------------------------------------------------------------

// Goes on to the next pose of the first block. False at its end: at an empty line behind a pose, at the end
// of the module or of the file.
bool NextPose(RobotProgram& program, std::int64_t& poses, bool& emptyLine) {
    while (NextLine(program) && program.Line != "ENDMODULE") {
        if (program.Line.find(kPoseBegin) != std::string_view::npos) {
            ++poses;
            return true;
        }
        emptyLine = poses > 0 && program.Line.empty();
        if (emptyLine) return false;
    }
    return false;
}

std::int64_t CountPoses(RobotProgram& program) {
    std::int64_t poses = 0;
    bool emptyLine = false;
    while (NextPose(program, poses, emptyLine)) {
    }
    if (emptyLine) TellOfFurtherBlocks(poses);
    return poses;
}

// Holds the lines that were taken as poses against the robot targets that the program has.
void NoteOtherThanTargets(RobotProgram& program, std::set<std::int64_t> rows) {
    program.Lines = LineWalk(program.File);
    const AbbTargets found = FindTargets(program);
    AbbLeft left = found.Seconds, doubtful;
    for (const auto* targets : {&found.FirstBlock, &found.Behind})
        for (const AbbTarget& target : *targets) {
            if (rows.erase(target.Row) > 0) continue;
            if (left.Count++ == 0 || target.Row < left.First) left.First = target.Row;
        }
    if (!rows.empty()) doubtful = {static_cast<std::int64_t>(rows.size()), *rows.begin()};
    NoteLeft(program,
             {{left,
               "a pose is not taken: a second one in the line of another, one whose [[ is divided, or "
               "one behind the end of the first block"}});
    if (doubtful.Count > 0)
        AddNote(
            NoteCode::PosesDoubtful,
            "What is no robot target but a remark, a tool, a work object, joint values or what a function "
            "is given is taken as a pose, because [[ stands in its line",
            program.File.Path, static_cast<int>(doubtful.First), static_cast<int>(doubtful.Count));
}

void ReadByLines(const TargetFile& file) {
    RobotProgram program(file);
    const std::int64_t n = CountPoses(program);
    program.Lines = LineWalk(program.File);
    MatrixAngles fromMatrix;
    std::set<std::int64_t> rows;
    {
        PoseTable poses(program, n, kRadians);
        std::int64_t taken = 0;
        bool emptyLine = false;
        while (NextPose(program, taken, emptyLine)) {
            TakePose(program, poses, fromMatrix);
            rows.insert(program.Lines.Row);
        }
    }
    NoteOtherThanTargets(program, std::move(rows));
    NoteMatrixAngles(program, fromMatrix);
}

}  // namespace

void EinlesenABB_MODX(const TargetFile& file) {
    file.ByDeclarations ? ReadByDeclarations(file) : ReadByLines(file);
}

}  // namespace corvinade::import
