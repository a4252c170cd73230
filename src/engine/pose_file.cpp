// The orientations of the poses, for jobs whose target points came without them.
#include "engine/pose_file.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "core/files.h"
#include "core/job.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/text.h"
#include "core/units.h"
#include "engine/calculation_window.h"

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
    for (int i = 1; i <= Job.nIdent; ++i) {
        const auto k = static_cast<std::size_t>(i);
        const std::string& target = Job.OCS_Name[k];
        pairs.emplace(Job.MCS_Name[k], i);
        pairs.emplace(target, i);
        constexpr std::string_view kMark = "=OCS_";
        if (const std::size_t at = target.rfind(kMark); at != std::string::npos)
            pairs.emplace(target.substr(at + kMark.size()), i);
    }
    return pairs;
}

struct PoseLine {
    std::string Place;               // file and line, for messages
    std::string Name;                // "" where the file has none
    std::array<double, 3> Angles{};  // rad
};

PoseLine ReadLine(const std::vector<std::string>& fields, const std::string& place) {
    PoseLine pose{.Place = place};
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
        if (k >= 3) pose.Angles[k - 3] = value / Units.AngleFactor;
    }
    return pose;
}

std::vector<PoseLine> ReadPoses(const std::string& path) {
    const std::string content = DecodeText(ReadFile(path).View());
    std::string_view rest = content, line;
    std::vector<PoseLine> poses;
    for (int number = 1; CutLine(rest, line); ++number) {
        const std::vector<std::string> fields = FieldsOf(line);
        if (!fields.empty()) poses.push_back(ReadLine(fields, path + ", line " + std::to_string(number)));
    }
    return poses;
}

}  // namespace

void LoadPoses(const std::string& path) {
    const std::vector<PoseLine> poses = ReadPoses(path);
    Matrix robot(Job.nIdent, 3);
    std::vector<bool> known(static_cast<std::size_t>(Job.nIdent) + 1);
    const auto pairs = PairsByName();
    int place = 0;
    for (const PoseLine& pose : poses) {
        if (!pose.Name.empty() && !pairs.contains(pose.Name)) continue;  // a point without partner
        const int pair = pose.Name.empty() ? ++place : pairs.at(pose.Name);
        if (pair > Job.nIdent)
            throw PlatformError{pose.Place + ": there are only " + std::to_string(Job.nIdent) +
                                " identical points; with names in front, the poses need no order"};
        known[static_cast<std::size_t>(pair)] = true;
        for (int k = 1; k <= 3; ++k) robot(pair, k) = pose.Angles[static_cast<std::size_t>(k - 1)];
    }
    for (int i = 1; i <= Job.nIdent; ++i)
        if (!known[static_cast<std::size_t>(i)])
            throw PlatformError{path + ": there is no pose for the identical point \"" +
                                Printable(Job.MCS_Name[static_cast<std::size_t>(i)]) + "\""};
    Job.RobotABC = std::move(robot);
    Run.JobDirty = kTrue;
}

void FormTrafoBerechnung::BtnLoadRData_Click() {
    const std::uint64_t generation = Run.JobGeneration;
    const std::optional<std::string> path = AskOpenFile(
        {"Points with orientation: x y z a b c", "Text files|*.txt;*.dat;*.csv|All files|*.*", "", ""});
    if (path && Run.JobGeneration == generation) LoadPoses(*path);
}
