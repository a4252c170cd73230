// Notes on opening and saving a job file.
#include "core/job_notes.h"

#include <algorithm>

#include "core/job.h"
#include "core/notes.h"

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
