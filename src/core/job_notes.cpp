// Notes on opening and saving a job file.
#include "core/job_notes.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "core/job.h"
#include "core/notes.h"
#include "core/parameter_names.h"

void NoteMarks(const std::string& path) {
    if (IsTrue(Job.Unconverged))
        AddNote(NoteCode::NotConverged,
                "The result of the job is of a calculation that did not converge; it is not the best fit",
                path);
    if (const std::string open = NamesMarkedOpen(); !open.empty())
        AddNote(
            NoteCode::OpenParameters,
            "The result of the job leaves " + open +
                " open: what it holds for that is arbitrary, and so is where it puts whatever lies off the "
                "points that it was calculated from",
            path);
    if (IsTrue(Job.Collapsed))
        AddNote(
            NoteCode::CollapsedScale,
            "A scale in the result of the job has collapsed, to 0 or what noise makes of it: this is no "
            "fit, and where it puts whatever lies off the points that it was calculated from is arbitrary",
            path);
}

std::string NamesMarkedOpen() {
    std::array<bool, kParameterEnd> open{};
    std::transform(Job.LeftOpen.begin(), Job.LeftOpen.end(), open.begin(),
                   [](std::int16_t mark) { return mark != 0; });
    return NamesOf(open);
}

void NoteOrientationsLost(const std::string& path) {
    if (Job.RobotABC.Rows < 1 || IsTrue(Job.IsKuka) || IsTrue(Job.IsQuaternion)) return;
    AddNote(
        NoteCode::NoOrientation,
        "A job file keeps the orientations of Kuka programs and of quaternions alone; those of this job are "
        "not in its file",
        path);
}

void NoteShortNames(const std::string& path) {
    constexpr std::size_t kOfSearch = 3;
    const auto note = [&path](const char* set, std::size_t names, std::size_t points) {
        if (points <= names + kOfSearch) return;
        AddNote(NoteCode::NamesShort,
                std::string("The ") + set + " has " + std::to_string(names - 1) +
                    " names and coordinates of " + std::to_string(points - 1) +
                    " points; those without a name are left out",
                path, 0, static_cast<int>(points - names));
    };
    note("start system", Job.MCS_Name.size(),
         std::max({Job.MCS_X.size(), Job.MCS_Y.size(), Job.MCS_Z.size()}));
    note("target system", Job.OCS_Name.size(),
         std::max({Job.OCS_X.size(), Job.OCS_Y.size(), Job.OCS_Z.size()}));
}
