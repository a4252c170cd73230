// Points and notes of the program as the library hands them on.
#include "library/named_points.h"

#include "core/job.h"
#include "core/run.h"
#include "core/units.h"
#include "import/robot_files.h"
#include "library/records.h"

namespace corvinade::library {

NamedPoints NamedPointsOf(const core::PointSet& points, const core::PointAccuracies& sigmas) {
    NamedPoints told;
    const auto count = static_cast<std::size_t>(points.Count());
    told.Names.assign(points.Name.begin() + 1, points.Name.begin() + 1 + points.Count());
    told.Coordinates.reserve(3 * count);
    for (int i = 1; i <= points.Count(); ++i) {
        const fit::Vec3 point = points.Point(i);
        for (int axis = 1; axis <= 3; ++axis) told.Coordinates.push_back(point(axis));
    }
    told.Sigmas.reserve(3 * sigmas.Count());
    for (std::size_t i = 0; i < sigmas.Count(); ++i)
        for (const auto& axis : sigmas.Of) told.Sigmas.push_back(axis[i]);
    return told;
}

std::vector<FileNote> FileNotesOf(const std::vector<core::Note>& notes) {
    std::vector<FileNote> told;
    for (const core::Note& note : notes)
        told.push_back({core::NoteKindOf(note.Code).Name, note.Text, note.Line});
    return told;
}

// --- The records of the program ---------------------------------------------------------------------------

namespace {

std::mutex RecordsMutex;

void MakeRecordsFresh() {
    core::Job = {};
    core::Run = {};
    core::Units = {};
    core::Notes = {};
    import::ProgramPoses = {};
}

}  // namespace

RecordsHeld::RecordsHeld() : alone_(RecordsMutex) {
    MakeRecordsFresh();
}
RecordsHeld::~RecordsHeld() {
    MakeRecordsFresh();
}

std::vector<FileNote> RecordsHeld::Notes() {
    return FileNotesOf(core::Notes.List);
}

}  // namespace corvinade::library
