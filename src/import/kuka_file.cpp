// Programs with their poses in declarations, one a line: DECL E6POS XP1={X 1.5,Y 2,Z 3,A 4,B 5,C 6,S 2,T 35}
#include <algorithm>
#include <array>
#include <vector>

#include "core/notes.h"
#include "core/text.h"
#include "core/units.h"
#include "import/point_file_checks.h"
#include "import/robot_files.h"
#include "import/robot_program.h"
#include "import/row_notes.h"

namespace corvinade::import {

namespace {

// --- Words ------------------------------------------------------------------------------------------------

bool IsGap(char c) {
    return c == ' ' || c == '\t' || c == '#';
}

std::size_t BehindGap(std::string_view line, std::size_t at) {
    while (at < line.size() && IsGap(line[at])) ++at;
    return at;
}

// Cuts a word of letters, digits, underlines and dollars off at `at`, in capital letters: the language knows
// no others.
std::string CutWord(std::string_view line, std::size_t& at) {
    at = BehindGap(line, at);
    const std::size_t begin = at;
    const auto isPart = [](char c) {
        return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' ||
               c == '$';
    };
    while (at < line.size() && isPart(line[at])) ++at;
    return UpperAscii(line.substr(begin, at - begin));
}

// The name of the first value behind a brace, in capital letters. That of the type and a colon may stand
// before it.
std::string FirstValueName(std::string_view line, std::size_t brace) {
    std::size_t place = brace + 1;
    std::string word = CutWord(line, place);
    place = BehindGap(line, place);
    if (place < line.size() && line[place] == ':') word = CutWord(line, ++place);
    return word;
}

// --- By the beginnings of lines ---------------------------------------------------------------------------

// A program has blanks between its words; some programs have sharps in their place. What stands behind the
// orientation ends it.
struct Declaration {
    std::string_view Begin;
    std::array<std::string_view, 6> Markers;  // X, Y, Z, A, B, C
    std::array<std::string_view, 2> Ends;     // the first one that is there
};
constexpr Declaration kWithBlanks = {"DECL E6POS", {"X ", "Y ", "Z ", "A ", "B ", "C "}, {", S ", ",S "}};
constexpr Declaration kWithSharps = {"DECL#E6POS", {"X#", "Y#", "Z#", "A#", "B#", "C#"}, {", S#", ",S#"}};

constexpr std::size_t kMarkerLength = 2;

void TakePose(const RobotProgram& program, const Declaration& form, PoseTable& poses) {
    std::array<std::size_t, 6> places{};
    for (std::size_t k = 0; k < 6; ++k) places[k] = PlaceOf(program, form.Markers[k]);
    std::size_t end = program.Line.find(form.Ends[0], places[5]);
    if (end == std::string_view::npos) end = PlaceOf(program, form.Ends[1], places[5]);

    std::array<double, 6> values{};
    for (std::size_t k = 0; k < 5; ++k) {
        // A value ends one place before the next marker: there the comma stands.
        const std::size_t comma = places[k + 1] - 1;
        values[k] = NumberBetween(program, places[k] + kMarkerLength, comma);
        if (program.Line[comma] != ',')
            FailAtLine(program, "\"" + std::string(form.Markers[k + 1]) +
                                    "\" stands without a comma before it in \"" +
                                    Printable(program.Line.substr(places[k], comma + 1 - places[k])) + "\"");
    }
    values[5] = NumberBetween(program, places[5] + kMarkerLength, end);
    poses.Take(program, {values[0], values[1], values[2]}, {values[3], values[4], values[5]});
    NoteProgramUnits(program, true, true);
}

// How often a pose seems to begin in a line, the type before its values or not.
std::int64_t MarksOf(std::string_view line) {
    std::int64_t marks = 0;
    for (std::size_t at = line.find('{'); at != std::string_view::npos; at = line.find('{', at + 1))
        if (line.substr(at).starts_with("{X") || FirstValueName(line, at) == "X") ++marks;
    return marks;
}

void ReadByBeginnings(const TargetFile& file) {
    RobotProgram program(file);
    std::int64_t n = 0, taken = 0, left = 0, firstLeft = 0;
    wieOftStringinFile(program.File, "{X", n);
    PoseTable poses(program, n, Units.AngleFactor);
    // A pose in the very last line is not taken: its place stays empty.
    while (NextLine(program)) {
        const std::int64_t before = taken;
        const bool isLast = HasEnded(program);
        for (const Declaration& form : {kWithBlanks, kWithSharps}) {
            if (isLast || !program.Line.starts_with(form.Begin)) continue;
            TakePose(program, form, poses);
            ++taken;
        }
        const std::int64_t more = MarksOf(program.Line) - (taken - before);
        if (more > 0) {
            left += more;
            if (firstLeft == 0) firstLeft = program.Lines.Row;
        }
        if (isLast) break;
    }
    left = std::max(left, n - taken);
    if (left > 0)
        AddNote(
            NoteCode::PosesSkipped,
            std::string(
                "What looks like a pose is not taken: its line does not begin with DECL E6POS, holds another "
                "pose before it, or is the last one; the place that its {X makes stays without a point") +
                kNumberedByTurn,
            program.File.Path, static_cast<int>(firstLeft), static_cast<int>(left));
}

// --- By declarations --------------------------------------------------------------------------------------

// A pose that a line declares.
struct DeclaredPose {
    std::size_t Brace;      // the place of the one that opens its value
    std::string_view Name;  // as it stands there
};

// Does a line declare a pose with its value?
bool DeclaresPose(std::string_view line, DeclaredPose& pose) {
    std::size_t at = 0;
    std::string word = CutWord(line, at);
    while (word == "DECL" || word == "GLOBAL" || word == "CONST") word = CutWord(line, at);
    if (word != "E6POS" && word != "POS") return false;
    const std::size_t begin = BehindGap(line, at);
    if (CutWord(line, at).empty()) return false;
    std::size_t equals = line.find('=', at);
    if (equals == std::string_view::npos) return false;
    pose.Brace = BehindGap(line, equals + 1);
    while (IsGap(line[equals - 1])) --equals;
    pose.Name = line.substr(begin, equals - begin);
    return pose.Brace < line.size() && line[pose.Brace] == '{';
}

// The poses that a line declares: `DECL E6POS P1={...},P2={...}` has two. `behind` is where nothing of them
// stands any more.
std::vector<DeclaredPose> PosesOf(std::string_view line, std::size_t& behind) {
    std::vector<DeclaredPose> poses;
    DeclaredPose pose{};
    behind = 0;
    if (!DeclaresPose(line, pose)) return poses;
    for (;;) {
        poses.push_back(pose);
        behind = line.find('}', pose.Brace);
        if (behind == std::string_view::npos) break;
        std::size_t at = BehindGap(line, ++behind);
        if (at >= line.size() || line[at] != ',') break;
        const std::size_t begin = BehindGap(line, ++at);
        if (CutWord(line, at).empty()) break;
        pose.Name = line.substr(begin, at - begin);
        at = BehindGap(line, at);
        if (at >= line.size() || line[at] != '=') break;
        pose.Brace = BehindGap(line, at + 1);
        if (pose.Brace >= line.size() || line[pose.Brace] != '{') break;
    }
    behind = std::min(behind, line.size());
    return poses;
}

// Positions and joint values of any kind open with a brace and the name of a value; that of the type may
// stand before it.
bool LooksLikePose(std::string_view line) {
    for (std::size_t at = line.find('{'); at != std::string_view::npos; at = line.find('{', at + 1)) {
        const std::string word = FirstValueName(line, at);
        if (word == "X" || word == "Y" || word == "Z" || word == "A1") return true;
    }
    return false;
}

// Where the value that begins at `at` ends: at a comma before the name of the next one. Another comma is a
// decimal one.
std::size_t EndOfValue(std::string_view line, std::size_t at, std::size_t end) {
    for (; at < end; ++at) {
        if (line[at] != ',') continue;
        std::size_t next = at + 1;
        const std::string word = CutWord(line, next);
        if (word.empty() || (word[0] >= 'A' && word[0] <= 'Z')) break;
    }
    return at;
}

void TakeDeclaredPose(const RobotProgram& program, std::size_t brace, PoseTable& poses) {
    const std::string_view line = program.Line;
    const std::string names = "XYZABC";
    std::array<double, 6> values{};
    std::array<bool, 6> known{};
    const std::size_t end = std::min(line.find('}', brace), line.size());
    std::size_t at = brace + 1;
    while (at < end) {
        const std::string name = CutWord(line, at);
        if (at < end && line[at] == ':') {  // the name of the type stands before the first value
            ++at;
            continue;
        }
        const std::size_t stop = EndOfValue(line, at, end);
        const std::size_t k = name.size() == 1 ? names.find(name[0]) : std::string::npos;
        if (k != std::string::npos) {
            if (known[k]) FailAtLine(program, "\"" + name + "\" stands twice in \"" + Printable(line) + "\"");
            values[k] = NumberBetween(program, BehindGap(line, at), stop);
            known[k] = true;
        }
        at = stop + 1;
    }
    for (std::size_t k = 0; k < 6; ++k)
        if (!known[k])
            FailAtLine(program,
                       std::string("there is no \"") + names[k] + "\" in \"" + Printable(line) + "\"");
    poses.Take(program, {values[0], values[1], values[2]}, {values[3], values[4], values[5]});
    NoteProgramUnits(program, true, true);
}

void ReadByDeclarations(const TargetFile& file) {
    RobotProgram program(file);
    std::int64_t n = 0, skipped = 0, firstSkipped = 0;
    std::size_t behind = 0;
    while (NextLine(program)) {
        n += static_cast<std::int64_t>(PosesOf(program.Line, behind).size());
        if (LooksLikePose(program.Line.substr(behind)) && skipped++ == 0) firstSkipped = program.Lines.Row;
    }
    program.Lines = LineWalk(program.File);
    PoseTable poses(program, n, Units.AngleFactor);
    NamesSeen names;
    while (NextLine(program))
        for (const DeclaredPose& pose : PosesOf(program.Line, behind)) {
            names.Add(UpperAscii(pose.Name), pose.Name, program.Lines.Row);
            TakeDeclaredPose(program, pose.Brace, poses);
            poses.CalledInProgram(pose.Name);
        }
    names.Write(program.File.Path);
    if (skipped > 0)
        AddNote(
            NoteCode::PosesSkipped,
            std::string(
                "What looks like a pose declares none and is not taken: a remark, a frame, joint values, an "
                "assignment or an instruction") +
                kNumberedByTurn,
            program.File.Path, static_cast<int>(firstSkipped), static_cast<int>(skipped));
}

}  // namespace

void EinlesenKUKAdatDatei(const TargetFile& file) {
    file.ByDeclarations ? ReadByDeclarations(file) : ReadByBeginnings(file);
}

}  // namespace corvinade::import
