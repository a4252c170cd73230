// Modules with their poses in robot targets, one a line:
// CONST robtarget p1:=[[600,-20.5,900],[0.7071068,0,0.7071068,0],[0,0,0,0],[9E9,9E9,9E9,9E9,9E9,9E9]];
#include <algorithm>
#include <array>

#include "core/notes.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/text.h"
#include "import/form_input_files.h"
#include "import/pose_quaternion.h"
#include "import/robot_files.h"
#include "import/robot_program.h"

namespace {

constexpr std::string_view kPoseBegin = "[[";

// --- What a line declares ---------------------------------------------------------------------------------

bool IsBlank(char c) {
    return c == ' ' || c == '\t';
}

std::string_view Trimmed(std::string_view text) {
    while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
    return text;
}

// A line up to its remark, which an exclamation mark outside of a string begins.
std::string_view WithoutRemark(std::string_view line) {
    bool inString = false;
    for (std::size_t at = 0; at < line.size(); ++at) {
        if (line[at] == '"') inString = !inString;
        if (line[at] == '!' && !inString) return line.substr(0, at);
    }
    return line;
}

// The type that the text before ":=" declares, in capital letters; "" for an assignment to what is declared
// elsewhere.
std::string DeclaredType(std::string_view text) {
    std::array<std::string, 2> words;  // type and name
    std::string scratch;
    std::size_t count = 0;
    while (!(text = Trimmed(text)).empty() && count < words.size()) {
        const std::string word = UpperAscii(CutField(text, '\0', scratch));
        if (word != "LOCAL" && word != "TASK" && word != "CONST" && word != "PERS" && word != "VAR")
            words[count++] = word;
    }
    return count == words.size() ? words[0] : "";
}

// Goes from line to line with what is declared there; a declaration ends at its semicolon, lines later
// perhaps.
class Declarations {
public:
    // Does a line in which kPoseBegin stands hold a robot target?
    bool HoldsTarget(std::string_view whole) {
        const std::string_view line = WithoutRemark(whole);
        const std::size_t place = line.find(kPoseBegin);
        std::string type = type_;
        const std::size_t assigned = line.find(":=");
        if (type.empty() && assigned != std::string_view::npos) type = DeclaredType(line.substr(0, assigned));
        type_ = Trimmed(line).ends_with(';') ? "" : type;
        if (place == std::string_view::npos) return false;
        if (!type.empty()) return type == "ROBTARGET";
        // Without a declaration: not a part of something larger, and three coordinates come first. Joint
        // values are six.
        const std::string_view before = Trimmed(line.substr(0, place));
        if (before.ends_with(',') || before.ends_with('[')) return false;
        const std::string_view first = line.substr(place, line.find(']', place) - place);
        return std::count(first.begin(), first.end(), ',') == 2;
    }

private:
    std::string type_;  // of the declaration that is open behind the last line
};

// --- The poses of the first block -------------------------------------------------------------------------

struct Walk {
    bool ByDeclarations;  // robot targets alone are poses; else every line with kPoseBegin is one
    Declarations Declared{};
    bool EmptyLine = false;                         // the block has ended at one
    std::int64_t Poses = 0;                         // so far
    std::int64_t NoTargets = 0, FirstNoTarget = 0;  // lines with kPoseBegin that hold no robot target
    std::int64_t Seconds = 0, FirstSecond = 0;      // lines of a pose with kPoseBegin once more
};

bool IsEnd(std::string_view line, bool byDeclarations) {
    if (!byDeclarations) return line == "ENDMODULE";
    return UpperAscii(Trimmed(WithoutRemark(line))) == "ENDMODULE";
}

// Goes on to the next pose of the first block. False at its end: at an empty line behind a pose, at the end
// of the module or of the file.
bool NextPose(RobotProgram& program, Walk& walk) {
    while (NextLine(program) && !IsEnd(program.Line, walk.ByDeclarations)) {
        const bool isTarget = walk.Declared.HoldsTarget(program.Line);
        const bool looksLikeOne = program.Line.find(kPoseBegin) != std::string_view::npos;
        if (looksLikeOne && !isTarget && walk.NoTargets++ == 0) walk.FirstNoTarget = program.Lines.Row;
        if (walk.ByDeclarations ? isTarget : looksLikeOne) {
            ++walk.Poses;
            const std::string_view line = WithoutRemark(program.Line);
            const std::size_t behind = std::min(line.find(kPoseBegin), line.size());
            if (isTarget && line.find(kPoseBegin, behind + 1) != std::string_view::npos &&
                walk.Seconds++ == 0)
                walk.FirstSecond = program.Lines.Row;
            return true;
        }
        walk.EmptyLine = walk.Poses > 0 && program.Line.empty();
        if (walk.EmptyLine) return false;
    }
    return false;
}

std::int64_t CountPoses(RobotProgram& program) {
    Walk walk{.ByDeclarations = InputFiles.ReadsDeclarations};
    while (NextPose(program, walk)) {
    }
    if (walk.EmptyLine)
        ShowMessage(
            "myabe there are more than one Block in the File - only importing the First block in file with " +
            std::to_string(walk.Poses) + " Points");
    return walk.Poses;
}

void NoteNoTargets(const RobotProgram& program, const Walk& walk) {
    const bool noTargetsSkipped = walk.ByDeclarations && walk.NoTargets > 0;
    if (walk.Seconds > 0 && !noTargetsSkipped)
        AddNote(NoteCode::PosesSkipped, "A second pose in the line of another one is not taken",
                program.File.Path, static_cast<int>(walk.FirstSecond), static_cast<int>(walk.Seconds));
    if (walk.NoTargets == 0) return;
    const auto line = static_cast<int>(walk.FirstNoTarget), count = static_cast<int>(walk.NoTargets);
    if (walk.ByDeclarations) {
        std::string text =
            "What looks like a pose is no robot target and is not taken: a remark, a tool, a work object or "
            "joint values";
        if (walk.Seconds > 0)
            text += "; nor is a second pose in the line of another one, as in line " +
                    std::to_string(walk.FirstSecond);
        AddNote(NoteCode::PosesSkipped, std::move(text), program.File.Path, line,
                count + static_cast<int>(walk.Seconds));
    } else {
        AddNote(
            NoteCode::PosesDoubtful,
            "What is no robot target but a remark, a tool, a work object or joint values is taken as a pose, "
            "because [[ stands in its line",
            program.File.Path, line, count);
    }
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
}

}  // namespace

void EinlesenABB_MODX() {
    RobotProgram program(Run.PathReader);
    const std::int64_t n = CountPoses(program);
    program.Lines = LineWalk(program.File);
    MatrixAngles fromMatrix;
    Walk walk{.ByDeclarations = InputFiles.ReadsDeclarations};
    {
        constexpr double kRadians = 1;  // which the angles of quaternions are in
        PoseTable poses(program, n, kRadians);
        while (NextPose(program, walk)) TakePose(program, poses, fromMatrix);
    }
    NoteNoTargets(program, walk);
    NoteMatrixAngles(program, fromMatrix);
}
