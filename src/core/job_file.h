// The job file: one job in one binary file, a flat sequence of fields. docs/job-file.md tells the layout,
// core/job_file_fields.h holds it as the table that reader and writer run.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "core/job.h"
#include "core/job_file_fields.h"
#include "core/notes.h"
#include "core/rooms.h"

namespace corvinade::core {

// --- Without windows --------------------------------------------------------------------------------------

// What stands at the beginning of a file.
struct JobFileHead {
    // False: the file does not begin like a job file. The user is asked kNoJobFileQuestion, and on "Yes" it
    // is read as one of version 1.2.40.
    bool Known = true;
    JobVersion Version;
    std::size_t Length = 0;  // bytes of the version text with its length; 0 where the fields begin at once
};
extern const char* const kNoJobFileQuestion;

// Throws PlatformError when the file ends inside the head. `path` is the name that errors give.
JobFileHead ReadJobHead(std::string_view bytes, const std::string& path);

// What the user is told of a file of another version than the program's; empty for the program's own.
std::string JobVersionMessage(const JobVersion& version);

inline constexpr const char* kViewsCannotBeLoaded = "Sorry, Saved Views can not be loaded";

struct JobFileContent {
    JobRecord Job;
    std::vector<std::string> ViewNames;  // of the saved views, as many as Job.nSavedViews
    JobVersion Version;                  // by which the last fields were read
    bool HeadKnown = true;               // false: only on the user's wish is this a job file
    std::vector<std::string> Said;       // the messages that opening it shows, in their order
    // What is wrong with the block behind the fields, with path and byte; "" when nothing is. The job has
    // nothing of the block then. Whoever opens the job asks before it is opened without.
    std::string BlockFault;
    std::vector<Note> Noticed;  // for the list of notes, without the file's name
};

// Reads a job of any version. A file without a known head is read as if the user had wished so.
//   path     the name that errors give
//   before   the job that is open now: what an old file does not have, and what then stays as it is
//            (some entries of ParamText, RDist), is taken from here
// A block behind the fields is read too; one that is damaged is told in BlockFault.
// Throws PlatformError with path, byte and field for bytes that are no job: cut off, with counts that do
// not fit the bytes left or each other, with unknown tags. Takes memory of at most about ten times the
// bytes.
JobFileContent ReadJobBytes(std::string_view bytes, const std::string& path, const JobRecord& before = {});

// Adds what was noticed in a file to the list of notes, under its path.
void NoteJobFile(const JobFileContent& content, const std::string& path);

// A job as a file of the program's version. `viewNames` are the names of its saved views; without any the
// file has no views. Throws PlatformError for a job that could not be read back: a text that is too long,
// counts that do not fit the arrays.
std::string JobBytes(const JobRecord& job, const std::vector<std::string>& viewNames);

// The same bytes handed to `take` slice by slice, for jobs whose file should not stand in memory beside
// them. It throws as JobBytes does, some slices being taken by then.
void WriteJobBytes(const JobRecord& job, const std::vector<std::string>& viewNames,
                   const std::function<void(std::string_view)>& take);

// How many bytes JobBytes gives. It throws as JobBytes does; after it WriteJobBytes of the same job does not.
std::size_t JobSize(const JobRecord& job, const std::vector<std::string>& viewNames);

// A job's counts, and the upper bounds of its arrays: names, X, Y, Z of each set.
struct JobLengths {
    std::int32_t Pairs = 0, Start = 0, Target = 0;
    std::array<int, 4> StartEnds{}, TargetEnds{}, TransformedEnds{};
    int UseFlagsEnd = 0;
};
// `points` is a PointSet or PointArrays.
template <class Points>
std::array<int, 4> LengthsOf(const Points& points) {
    return {UpperBound(points.Name), UpperBound(points.X), UpperBound(points.Y), UpperBound(points.Z)};
}
JobLengths LengthsOf(const JobRecord& job);

// What is wrong with a job's counts and the lengths of its arrays; empty when they fit each other.
std::string JobFault(const JobLengths& lengths);

// --- The open job -----------------------------------------------------------------------------------------

// Opens a job file: closes all windows, sets the run to "no data", asks and tells what there is to say of the
// file's version, and fills the job. A file that is missing gives a message; throws PlatformError for one
// that is no job (as ReadJobBytes), the job is then without data.
void OpenFile(const std::string& path);

// Writes the job that is open. The file is replaced in one step; where an old one is longer the rest of it
// stays behind the job, unless either of them has a block, which ends its file. Throws PlatformError when
// that is refused; Run.JobDirty then stays as it is.
void SaveFileAs(const std::string& path);

// The same for the user's commands: where another program has written the file since it was read, the user is
// asked whether it shall be replaced. Throws PlatformError at "No"; the job stays unsaved then.
void SaveUnlessChanged(const std::string& path);

// Says so where another program that keeps recovery copies has the job open; nothing where this one keeps
// none.
void TellWhetherOpenElsewhere(const std::string& path);

}  // namespace corvinade::core
