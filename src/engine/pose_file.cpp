// The orientations of the poses, for jobs whose target points came without them.
#include "engine/pose_file.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "core/files.h"
#include "core/job.h"
#include "core/lost_digits.h"
#include "core/notes.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/pose_spans.h"
#include "core/run.h"
#include "core/text.h"
#include "core/units.h"
#include "engine/calculation_window.h"

namespace corvinade::engine {

namespace {

constexpr int kPoseNumbers = 6;  // x y z a b c

// The fields of a line, between blanks, tabs, semicolons and, where numbers have none, commas.
std::vector<std::string> FieldsOf(std::string_view line) {
    const char* const kBetween = SystemDecimal() == ',' ? " \t;" : " \t;,";
    std::vector<std::string> fields;
    std::size_t at = line.find_first_not_of(kBetween);
    while (at != std::string_view::npos) {
        const std::size_t end = std::min(line.find_first_of(kBetween, at), line.size());
        fields.emplace_back(line.substr(at, end - at));
        at = line.find_first_not_of(kBetween, end);
    }
    return fields;
}

// The pairs by every name that a file may give them; pairs found by coordinates or distances bear the names
// of both their points.
std::unordered_map<std::string, int> PairsByName() {
    std::unordered_map<std::string, int> pairs;
    for (int i = 1; i <= Job.Pairs(); ++i) {
        const auto k = static_cast<std::size_t>(i);
        const std::string& target = Job.Target.Name[k];
        pairs.emplace(Job.Start.Name[k], i);
        pairs.emplace(target, i);
        constexpr std::string_view kMark = "=OCS_";
        if (const std::size_t at = target.rfind(kMark); at != std::string::npos)
            pairs.emplace(target.substr(at + kMark.size()), i);
    }
    return pairs;
}

struct PoseLine {
    std::string Place;  // file and line, for messages
    int Line = 0;
    std::string Name;                  // "" where the file has none
    std::array<double, 3> Angles{};    // rad
    std::array<double, 3> Position{};  // mm
};

PoseLine ReadLine(const std::vector<std::string>& fields, const std::string& path, int line) {
    const std::string place = path + ", line " + std::to_string(line);
    PoseLine pose{.Place = place, .Line = line};
    const bool named = fields.size() == kPoseNumbers + 1;
    if (!named && fields.size() != kPoseNumbers)
        throw PlatformError{place +
                            ": x y z a b c are expected, with a name before them or without; there are " +
                            std::to_string(fields.size()) + " fields"};
    if (named) pose.Name = fields[0];
    for (std::size_t k = 0; k < kPoseNumbers; ++k) {
        const std::string& text = fields[k + (named ? 1 : 0)];
        double value = 0;
        if (!TextToNumber(text, value) && !TextToNumber(text, '.', value))
            throw PlatformError{place + ": \"" + Printable(text) + "\" is no number"};
        if (std::string lost = LostDigits(text); !lost.empty())
            AddNote(NoteCode::DigitsCut, std::move(lost), path, line);
        if (k >= 3)
            pose.Angles[k - 3] = value / Units.AngleFactor;
        else
            pose.Position[k] = value / Units.LengthFactor;
    }
    return pose;
}

// Two delimiters with nothing between them: the fields behind have moved on by one.
void NoteEmptyField(std::string_view line, const std::string& path, int number) {
    const std::string_view delimiters = SystemDecimal() == ',' ? ";" : ";,";
    bool before = true;  // a delimiter, or the beginning of the line
    for (const char c : line) {
        const bool here = delimiters.find(c) != std::string_view::npos;
        if (here && before) {
            AddNote(NoteCode::DelimitersSideBySide,
                    "Delimiters stand side by side and count as one: the fields behind them move on", path,
                    number);
            return;
        }
        if (c != ' ' && c != '\t') before = here;
    }
}

// Only the orientation of a pose is taken. A position far from the target of its pair belongs to another
// pose, or to another system. A file that has zeros for all positions says nothing of them.
void NotePositions(const std::vector<PoseLine>& poses, const std::vector<int>& known,
                   const std::string& path) {
    constexpr double kFar = 1;  // mm
    const bool any = std::any_of(poses.begin(), poses.end(), [](const PoseLine& pose) {
        return pose.Position != std::array<double, 3>{};
    });
    if (!any) return;
    for (const PoseLine& pose : poses) {
        const auto pair = std::find(known.begin() + 1, known.end(), pose.Line);
        if (pair == known.end()) continue;
        const int i = static_cast<int>(pair - known.begin());
        const Vec3 target = TargetPoint(i);
        double square = 0;
        for (int axis = 1; axis <= 3; ++axis) {
            const double apart = pose.Position[static_cast<std::size_t>(axis - 1)] - target(axis);
            square += apart * apart;
        }
        const double apart = std::sqrt(square);
        if (apart > kFar)
            AddNote(NoteCode::PosesDoubtful,
                    "The position of the pose for point \"" +
                        Printable(Job.Target.Name[static_cast<std::size_t>(i)]) + "\" is " +
                        FormatNumber(apart * Units.LengthFactor, Units.FmtLength) +
                        " off the target point; the orientation is taken all the same",
                    path, pose.Line);
    }
}

std::vector<PoseLine> ReadPoses(const std::string& path) {
    const std::string content = DecodeText(ReadFile(path).View());
    std::string_view rest = content, line;
    std::vector<PoseLine> poses;
    for (int number = 1; CutLine(rest, line); ++number) {
        const std::vector<std::string> fields = FieldsOf(line);
        if (fields.empty()) continue;
        poses.push_back(ReadLine(fields, path, number));
        NoteEmptyField(line, path, number);
    }
    return poses;
}

}  // namespace

void LoadPoses(const std::string& path) {
    const std::vector<PoseLine> poses = ReadPoses(path);
    Matrix robot(Job.Pairs(), 3);
    std::vector<int> known(static_cast<std::size_t>(Job.Pairs()) +
                           1);  // line of each pair's pose; 0 = none yet
    const auto pairs = PairsByName();
    int place = 0;
    for (const PoseLine& pose : poses) {
        if (!pose.Name.empty() && !pairs.contains(pose.Name)) {  // a point without partner
            AddNote(NoteCode::PosesSkipped,
                    "The pose \"" + Printable(pose.Name) + "\" is of no identical point and is not taken",
                    path, pose.Line);
            continue;
        }
        if (pose.Name.empty() != poses.front().Name.empty())
            throw PlatformError{pose.Place +
                                ": lines with a name and lines without one stand in the same file"};
        const int pair = pose.Name.empty() ? ++place : pairs.at(pose.Name);
        if (pair > Job.Pairs())
            throw PlatformError{pose.Place + ": there are only " + std::to_string(Job.Pairs()) +
                                " identical points; with names in front, the poses need no order"};
        int& line = known[static_cast<std::size_t>(pair)];
        if (line > 0)
            AddNote(NoteCode::DuplicateName,
                    "The poses of line " + std::to_string(line) + " and of line " +
                        std::to_string(pose.Line) + " are of the same point; the later one is taken",
                    path, line);
        line = pose.Line;
        for (int k = 1; k <= 3; ++k) robot(pair, k) = pose.Angles[static_cast<std::size_t>(k - 1)];
    }
    for (int i = 1; i <= Job.Pairs(); ++i)
        if (known[static_cast<std::size_t>(i)] == 0)
            throw PlatformError{path + ": there is no pose for the identical point \"" +
                                Printable(Job.Start.Name[static_cast<std::size_t>(i)]) + "\""};
    NotePositions(poses, known, path);
    Job.RobotABC = std::move(robot);
    FindPoseSpans();
    Run.JobDirty = kTrue;
}

void FormTrafoBerechnung::BtnLoadRData_Click() {
    const std::uint64_t generation = Run.JobGeneration;
    const std::optional<std::string> path = AskOpenFile(
        {"Points with orientation: x y z a b c", "Text files|*.txt;*.dat;*.csv|All files|*.*", "", ""});
    if (path && Run.JobGeneration == generation) LoadPoses(*path);
}

}  // namespace corvinade::engine
