// The poses of a robot program by their names.
#include "import/named_poses.h"

#include <algorithm>
#include <set>
#include <string_view>
#include <utility>

#include "core/job.h"
#include "core/notes.h"
#include "core/pose_spans.h"
#include "core/text.h"

namespace corvinade::import {

namespace {

std::size_t PosesNamed() {
    return std::min(ProgramPoses.Name.size(), Job.Target.Name.size());
}

// How many start points bear the names of the program, and how many the numbers of the poses' turns.
std::pair<int, int> StartPointsNamed() {
    std::set<std::string_view> program, turns;
    for (std::size_t i = 1; i < PosesNamed(); ++i) {
        if (!ProgramPoses.Name[i].empty()) program.insert(ProgramPoses.Name[i]);
        turns.insert(Job.Target.Name[i]);
    }
    std::pair<int, int> count;
    for (std::size_t i = 1; i < Job.Start.Name.size(); ++i) {
        if (Job.Start.Name[i].empty()) continue;
        count.first += program.count(Job.Start.Name[i]) > 0 ? 1 : 0;
        count.second += turns.count(Job.Start.Name[i]) > 0 ? 1 : 0;
    }
    return count;
}

// The first names, for a message.
std::string SomeNames() {
    constexpr std::size_t kMost = 12;
    std::string text;
    std::size_t named = 0;
    for (std::size_t i = 1; i < Job.Target.Name.size(); ++i) {
        const bool program = i < ProgramPoses.Name.size() && !ProgramPoses.Name[i].empty();
        const std::string& name = program ? ProgramPoses.Name[i] : Job.Target.Name[i];
        if (name.empty() || ++named > kMost) continue;
        text += (text.empty() ? "" : ", ") + Printable(name);
    }
    return named > kMost ? text + " and " + std::to_string(named - kMost) + " more" : text;
}

// Marks the poses of a name; false where there is none.
bool Mark(const std::vector<std::string>& names, const std::string& wanted, std::vector<bool>& chosen) {
    bool found = false;
    for (std::size_t i = 1; i < names.size() && i < chosen.size(); ++i) {
        if (names[i].empty() || UpperAscii(names[i]) != wanted) continue;
        chosen[i] = found = true;
    }
    return found;
}

}  // namespace

bool NamePoses(const ImportRequest& request) {
    if (request.Names == PoseNames::ByTurn) return false;
    if (request.Names == PoseNames::Match) {
        if (request.Way != Pairing::ByID) return false;
        const auto [program, turns] = StartPointsNamed();
        if (program == 0 || program < turns) return false;
    }
    bool other = false;
    for (std::size_t i = 1; i < PosesNamed(); ++i) {
        if (ProgramPoses.Name[i].empty()) continue;
        other = other || Job.Target.Name[i] != ProgramPoses.Name[i];
        Job.Target.Name[i] = ProgramPoses.Name[i];
    }
    if (other && request.Names == PoseNames::Match)
        AddNote(
            NoteCode::PoseNames,
            "The poses are paired by the names that the program gives them, since start points bear these "
            "names; --names number numbers them by their turn",
            request.TargetPath);
    return true;
}

std::string SelectPoses(const ImportRequest& request) {
    std::vector<bool> chosen(Job.Target.Name.size(), request.Select.empty());
    for (const std::string& name : request.Select) {
        const std::string wanted = UpperAscii(name);
        if (!Mark(ProgramPoses.Name, wanted, chosen) && !Mark(Job.Target.Name, wanted, chosen))
            return "--select: there is no pose \"" + Printable(name) + "\"; there are " + SomeNames();
    }
    std::vector<int> kept;
    for (std::size_t i = 1; i < chosen.size(); ++i)
        if (chosen[i] && !Job.Target.Name[i].empty()) kept.push_back(static_cast<int>(i));
    if (kept.size() + 1 == chosen.size()) return "";
    PointArrays points;
    Matrix angles(static_cast<int>(kept.size()), 3);
    const bool turned = Job.RobotABC.Rows + 1 == static_cast<int>(chosen.size());
    for (const int i : kept) {
        const auto k = static_cast<std::size_t>(i);
        points.Name.push_back(Job.Target.Name[k]);
        points.X.push_back(Job.Target.X[k]);
        points.Y.push_back(Job.Target.Y[k]);
        points.Z.push_back(Job.Target.Z[k]);
        if (turned) std::copy_n(Job.RobotABC.Row(i), 4, angles.Row(static_cast<int>(points.Name.size()) - 1));
    }
    Job.Target = PointSet(std::move(points));
    if (turned) {
        Job.RobotABC = std::move(angles);
        FindPoseSpans();
    }
    return "";
}

}  // namespace corvinade::import
